"""The converter."""
from __future__ import annotations

import json
from collections.abc import Callable, Iterable, Iterator, Mapping
from typing import Any, TypeAlias

from . import _native
from ._types import Field, Loss, LossError, UsageError

EntryLike: TypeAlias = "Mapping[str, Any] | str | bytes | bytearray | memoryview"
BytesLike: TypeAlias = "bytes | bytearray | memoryview"
OnLoss: TypeAlias = "str | Callable[[Loss], object]"

SCHEMA_CODES = {None: 0, "base": 1, "um": 2}
BACKEND_CODES = {"bulk": 0, "validating": 1}
FORMAT_CODES = {None: 0, "json": 1, "ndjson": 2, "xml": 3, "cbor": 4, "bare-cbor": 5}
TEXT_CODES = {"json": 1, "xml": 3}

_text_of = json.JSONEncoder(ensure_ascii=False, allow_nan=False, separators=(",", ":")).encode
_dict_of = json.JSONDecoder().decode


def code_of(codes: Mapping[Any, int], name: Any, what: str) -> int:
    try:
        return codes[name]
    except (KeyError, TypeError):
        known = ", ".join(repr(known) for known in codes)
        raise UsageError(f"{name!r} is no {what}; expected one of {known}") from None


def _taken(entry: EntryLike) -> tuple[Any, int]:
    """What the library reads of an entry, and in which format it is, 0 if it shows."""
    if isinstance(entry, Mapping):
        return _text_of(entry if isinstance(entry, dict) else dict(entry)), 1
    if isinstance(entry, (str, bytes, bytearray, memoryview)):
        return entry, 0
    raise TypeError(f"an entry is a mapping, a str or bytes, not {type(entry).__name__}")


class Converter:
    """Converts entries of IPv4 access lists between YANG data and encoded records.

    An *entry* is the YANG data of one access-list entry: a dictionary in the shape of its JSON
    (RFC 7951, `{"sequence-number": 10, "grant": "permit", ...}`), or text in JSON or XML as
    `str` or `bytes`; a whole document that holds one entry will do. A *bag* is an encoding,
    bytes, with or without its label.

    `schema` is "base" or "um", or None where the data tell theirs. `backend` is "bulk" or
    "validating", which gives the same by way of libyang. `modules` is a folder with the YANG modules
    and `plugin` the file of another build of the plug-in; None for those of the installation.

    `on_loss` says what happens where a product does not say all of its entry and the
    method has no losses to return: "raise" raises LossError, a function is called with each Loss,
    "ignore" does not even look for losses, in no method, which saves time.

    Methods raise DataError for bad data, SchemaUnknownError where the data do not tell a schema
    that matters, UsageError for arguments that cannot be meant, MemoryError. Any thread may
    call a converter; one call waits for the other. Threads that are to work at the same time
    have a converter each. A forked process can go on with it, unless the fork is done
    while another thread calls it.
    """

    def __init__(self, schema: str | None = None, *, backend: str = "bulk",
                 modules: str | None = None, plugin: str | None = None,
                 on_loss: OnLoss = "raise") -> None:
        if not callable(on_loss) and on_loss not in ("raise", "ignore"):
            raise UsageError(f"{on_loss!r} for on_loss; expected 'raise', 'ignore' or a function")
        self._on_loss = on_loss
        self._looks = on_loss != "ignore"
        self._schema = code_of(SCHEMA_CODES, schema, "schema")
        self._native = _native.Converter(
            self._schema, code_of(BACKEND_CODES, backend, "backend"),
            modules, plugin, self._looks)

    def _settle(self, losses: list[Loss] | None, product: Any) -> None:
        if losses is None:
            return
        if not callable(self._on_loss):
            raise LossError(losses, product)
        for loss in losses:
            self._on_loss(loss)

    def encode(self, entry: EntryLike, *, schema: str | None = None, list: str | None = None,
               sequence: int | None = None, stored: BytesLike | None = None) -> bytes:
        """The bag of an entry, without a label: list and number are the caller's to keep.

        `list` and `sequence` name the entry where its data do not. `stored` is its earlier bag:
        the base schema cannot say user-defined fields, and takes them over from there.
        """
        text, form = _taken(entry)
        bag, losses = self._native.encode(text, form, code_of(SCHEMA_CODES, schema, "schema"), list,
                                          sequence or 0, stored)
        self._settle(losses, bag)
        return bag

    def decode(self, bag: BytesLike, *, to: str | None = None,
               sequence: int | None = None) -> dict[str, Any]:
        """The entry of a bag, as a dictionary.

        `to` is its schema and `sequence` its number where no label tells them; a record has
        neither, and without a number the entry has none.
        """
        return _dict_of(self.decode_text(bag, to=to, sequence=sequence))  # type: ignore[no-any-return]

    def decode_text(self, bag: BytesLike, *, to: str | None = None, sequence: int | None = None,
                    format: str = "json") -> str:
        """As `decode`, with a text on one line; `format` is "json" or "xml"."""
        text, losses = self._native.decode(bag, code_of(SCHEMA_CODES, to, "schema"), sequence or 0,
                                           code_of(TEXT_CODES, format, "format of a text"))
        self._settle(losses, text)
        return text

    def convert(self, entry: EntryLike, *, to: str,
                schema: str | None = None) -> tuple[dict[str, Any], list[Loss]]:
        """An entry or a bag in the schema `to`, as a dictionary, and what it no longer says."""
        text, losses = self.convert_text(entry, to=to, schema=schema)
        return _dict_of(text), losses

    def convert_text(self, entry: EntryLike, *, to: str, schema: str | None = None,
                     format: str = "json") -> tuple[str, list[Loss]]:
        """As `convert`, with a text on one line; `format` is "json" or "xml"."""
        data, form = _taken(entry)
        text, losses = self._native.convert(
            data, form, code_of(SCHEMA_CODES, schema, "schema"), code_of(SCHEMA_CODES, to, "schema"),
            code_of(TEXT_CODES, format, "format of a text"))
        return text, losses or []

    def inspect(self, entry: EntryLike, *, schema: str | None = None) -> list[Field]:
        """The fields of the record of an entry or a bag, in the record's order."""
        data, form = _taken(entry)
        return self._native.inspect(data, form, code_of(SCHEMA_CODES, schema, "schema"))[0]

    def check(self, entry: EntryLike, *, schema: str | None = None) -> list[Loss]:
        """What does not come back when an entry is encoded and decoded again."""
        data, form = _taken(entry)
        return self._native.check(data, form, code_of(SCHEMA_CODES, schema, "schema"))[1] or []

    def diff(self, a: EntryLike, b: EntryLike, *, schema: str | None = None) -> list[Loss]:
        """How the meaning of two entries or bags differs, of either schema; [] where it does not."""
        before, before_form = _taken(a)
        after, after_form = _taken(b)
        return self._native.diff(before, before_form, after, after_form,
                                 code_of(SCHEMA_CODES, schema, "schema"))

    def encode_many(self, entries: Iterable[EntryLike], *, schema: str | None = None,
                    jobs: int = 1,
                    on_fault: Callable[[Exception], object] | None = None) -> Iterator[Any]:
        """The bags of entries, in order, made in batches on `jobs` threads.

        The first bad entry raises, when its turn comes; with `on_fault` each is handed to it, and
        the bag is None. `ordinal` of an exception counts from 1 within `entries`.
        """
        from . import _runs
        return _runs.encode_many(self, entries, schema, jobs, on_fault)
