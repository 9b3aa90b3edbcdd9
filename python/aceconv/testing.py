"""For test suites: entries compared by what they mean."""
from __future__ import annotations

from collections.abc import Sequence
from typing import Any

from ._converter import Converter, EntryLike


def assert_same(a: EntryLike | Sequence[Any], b: EntryLike | Sequence[Any], *,
                schema: str | None = None) -> None:
    """Fails with the differences unless two entries, or two sequences of them in order, mean the
    same: texts, dictionaries or bags, of either schema."""
    __tracebackhide__ = True
    many = [isinstance(side, Sequence) and not isinstance(side, (str, bytes, bytearray, memoryview))
            for side in (a, b)]
    if many[0] != many[1]:
        raise AssertionError("one entry against a sequence of entries")
    before: Any = a if many[0] else [a]
    after: Any = b if many[0] else [b]
    converter = Converter(schema)
    differences = [
        f"  {f'entry {at}: ' if many[0] else ''}{change}"
        for at, (left, right) in enumerate(zip(before, after), 1)
        for change in converter.diff(left, right)]
    if len(before) != len(after):
        differences.append(f"  {len(before)} entries against {len(after)}")
    if differences:
        raise AssertionError("the entries differ:\n" + "\n".join(differences))
