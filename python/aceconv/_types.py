"""What the package gives and raises."""
from __future__ import annotations

from typing import Any, NamedTuple

SCHEMAS: dict[int, str | None] = {0: None, 1: "base", 2: "um"}
VALUE_KINDS = {0: "absent", 1: "present", 2: "number", 3: "keyword", 4: "boolean",
               5: "address", 6: "text", 7: "user fields"}


class Value(NamedTuple):
    """A value of a record.

    `kind` is "absent", "present" (without a value of its own), "number", "keyword" (a number
    that has a name), "boolean", "address", "text" or "user fields".
    """

    kind: str
    number: int | None  # number, keyword, boolean; an address with its first byte highest
    text: str | None    # a keyword's name or names, an address as a dotted quad, a text
    shown: str | None   # as people read it: "80 (www)"; None if absent

    def __str__(self) -> str:
        return self.shown if self.shown is not None else "nothing"


class Loss(NamedTuple):
    """What the product does not say of an entry; of `diff`, a difference."""

    list: str | None      # the access list, if it is known
    sequence: int | None  # the entry's number, if it is known
    line: int | None      # where it stands in its input, from 1
    field: str            # of the record, "" for what no record carries
    leaf: str             # path below the entry, "" where the schema has none
    before: Value
    after: Value
    reason: str           # "" only of a plain difference
    widens: bool          # the entry matches more packets than before

    def __str__(self) -> str:
        reason = f" ({self.reason})" if self.reason else ""
        return f"{self.leaf or self.field}: {self.before} became {self.after}{reason}"


class Field(NamedTuple):
    """A field of a record that is marked or not zero, or a mark without a field."""

    name: str
    leaf: str    # path below the entry, "" where its schema has none
    bits: str    # presence bits that are set: "5", "2:0-2,8-10"; "-" for none
    offset: int  # bytes from the record's start
    width: int   # bytes; 0 of a mark without a field
    value: Value
    note: str    # what is unusual about it, or ""


class Entry(NamedTuple):
    """An entry of a stream, and what was made of it."""

    data: bytes           # a text or an encoding
    list: str | None      # the access list, if it is known
    sequence: int | None  # the entry's number, if it is known
    schema: str | None    # "base" or "um", None where an encoding does not tell
    line: int | None      # where it stands in its input, from 1
    ordinal: int | None   # which entry of the input it is, from 1


class Tally(NamedTuple):
    """What a run over many entries came to."""

    entries: int              # bad ones included
    faults: int               # bad entries
    losses: int
    entries_with_losses: int
    entries_widened: int      # that match more packets than before


class AceconvError(Exception):
    """Why something could not be done, and where.

    `text` says what was found and what was expected; `path` is the node's, "" for none; `list`,
    `sequence`, `line` and `ordinal` (both from 1) are None where they are not known.
    """

    def __init__(self, text: str, path: str = "", list: str | None = None,
                 sequence: int | None = None, line: int | None = None,
                 ordinal: int | None = None) -> None:
        super().__init__(text, path, list, sequence, line, ordinal)
        self.text, self.path, self.list = text, path, list
        self.sequence, self.line, self.ordinal = sequence, line, ordinal

    def __str__(self) -> str:
        number = "an unknown number" if self.sequence is None else str(self.sequence)
        where = [f"line {self.line}" if self.line else "",
                 f"entry {number} of list {self.list}" if self.list is not None else
                 f"entry {self.sequence}" if self.sequence is not None else "", self.path]
        return ": ".join([part for part in where if part] + [self.text])


class DataError(AceconvError, ValueError):
    """An entry that cannot be converted; others may follow."""


class InputError(AceconvError, ValueError):
    """An input whose rest cannot be read."""


class SchemaUnknownError(AceconvError, ValueError):
    """The data do not tell their schema, and no argument does."""


class UsageError(AceconvError, ValueError):
    """Arguments that cannot be meant."""


class UnavailableError(AceconvError, OSError):
    """The plug-in, the YANG modules or a file cannot be used."""


class LossError(AceconvError, ValueError):
    """An entry's product does not say all of it.

    `losses` says what, `product` is what was made of the entry.
    """

    def __init__(self, losses: list[Loss], product: Any) -> None:
        first = losses[0]
        more = f", and {len(losses) - 1} more" if len(losses) > 1 else ""
        super().__init__(f"lost: {first}{more}", "", first.list, first.sequence, first.line)
        self.losses, self.product = losses, product

    def __reduce__(self) -> Any:
        return LossError, (self.losses, self.product)


_ERRORS = {1: DataError, 2: InputError, 3: SchemaUnknownError, 4: UsageError,
           5: UnavailableError}


def make_error(code: int, *said: Any) -> AceconvError:
    return _ERRORS.get(code, AceconvError)(*said)
