"""Many entries at a time, and files of them."""
from __future__ import annotations

import os
import queue
import secrets
import stat
import threading
from collections.abc import Callable, Iterable, Iterator
from contextlib import contextmanager
from itertools import islice
from typing import IO, TYPE_CHECKING, Any, TypeAlias

from . import _converter
from ._types import AceconvError, Entry, Loss, LossError, Tally, UsageError

if TYPE_CHECKING:
    from ._converter import Converter, EntryLike

_ENCODE, _DECODE, _CONVERT, _READ = 1, 2, 3, 6
_CBOR, _BARE_CBOR = 4, 5
_TEXTS = {"json": 1, "ndjson": 2, "xml": 3}
_CHUNK = 4096  # entries that a call of encode_many converts at once, for each thread
_WAITING = 8   # batches that iter_entries reads ahead
_MOST_JOBS = 256

Path: TypeAlias = "str | os.PathLike[str]"
Source: TypeAlias = "str | os.PathLike[str] | int | bytes | IO[bytes]"
OnFault: TypeAlias = "Callable[[Exception], object] | None"
Progress: TypeAlias = "Callable[[int, int | None, int], object] | None"
OnLoss: TypeAlias = "Callable[[Loss], object] | None"


def _text_of(entry: EntryLike) -> Any:
    return entry if type(entry) in (bytes, str) else _converter._taken(entry)[0]


def encode_many(converter: Converter, entries: Iterable[EntryLike], schema: str | None,
                jobs: int, on_fault: OnFault) -> Iterator[Any]:
    code = _converter.code_of(_converter.SCHEMA_CODES, schema, "schema")
    if not 1 <= jobs <= _MOST_JOBS:
        raise UsageError(f"{jobs} threads; expected 1 to {_MOST_JOBS}")

    def encoded() -> Iterator[Any]:
        rest, first = iter(entries), 1
        while chunk := list(islice(rest, _CHUNK * jobs)):
            # What one entry tells of its schema holds for those behind it in a batch.
            bags: list[bytes | None] = [None] * len(chunk)
            all_good = False
            if code or converter._schema:
                bags, all_good = converter._native.encode_lines(list(map(_text_of, chunk)), code,
                                                                jobs)
            if all_good:
                yield from bags
                first += len(chunk)
                continue
            for at, bag in enumerate(bags):
                if bag is not None:
                    yield bag
                    continue
                # The call for one entry says what is wrong, or lost, or that nothing is.
                try:
                    yield converter.encode(chunk[at], schema=schema)
                except AceconvError as fault:
                    fault.ordinal, fault.line = first + at, None
                    if on_fault is None or isinstance(fault, LossError):
                        raise
                    on_fault(fault)
                    yield None
            first += len(chunk)

    return encoded()


class _Stopped(Exception):
    """Nobody wants the rest."""


@contextmanager
def _opened(source: Source) -> Iterator[tuple[Any, int | None]]:
    """What the library reads `source` from, and its size if that is known."""
    if isinstance(source, int):
        yield source, None
    elif isinstance(source, bytes):
        yield source, len(source)
    elif not isinstance(source, (str, os.PathLike)):
        data = source.read()
        if not isinstance(data, bytes):
            raise TypeError("a file opened for text; expected one opened for bytes")
        yield data, len(data)
    else:
        file = os.open(source, os.O_RDONLY | os.O_CLOEXEC)
        try:
            found = os.fstat(file)
            yield file, found.st_size if stat.S_ISREG(found.st_mode) else None
        finally:
            os.close(file)


def iter_entries(file: Source, *, schema: str | None = None, format: str | None = None,
                 on_fault: OnFault = None) -> Iterator[Entry]:
    """The entries of a file, each by itself, as they came: texts or bags.

    `file` is a path, the number of an open file, an object opened for bytes, which is read
    whole, or bytes; of files a bounded number of entries is held. `format` is "json", "ndjson", "xml"
    or "cbor", None to recognise it. The first bad entry raises; with `on_fault` it is handed to
    that, and the next one follows. Reading ends when the iterator is closed.
    """
    converter = _converter.Converter(schema, on_loss="ignore")
    form = _converter.code_of(_converter.FORMAT_CODES, format, "format")

    def entries() -> Iterator[Entry]:
        waiting: queue.Queue[Any] = queue.Queue(_WAITING)
        stop = threading.Event()

        def put(item: Any) -> None:
            while not stop.is_set():
                try:
                    return waiting.put(item, timeout=0.1)
                except queue.Full:
                    pass
            raise _Stopped

        def tick(_bytes: int, _entries: int) -> None:
            if stop.is_set():
                raise _Stopped

        def read() -> None:
            try:
                with _opened(file) as (source, _):
                    converter._native.run(_READ, form, 0, 0, 0, 1, source, -1, put, None,
                                          None if on_fault is None else put, tick)
                put(None)
            except _Stopped:
                pass
            except BaseException as fault:  # goes on where the entries are wanted
                try:
                    put((fault,))
                except _Stopped:
                    pass

        thread = threading.Thread(target=read, name="aceconv.iter_entries", daemon=True)
        thread.start()
        try:
            while (item := waiting.get()) is not None:
                if isinstance(item, tuple):
                    raise item[0]
                if isinstance(item, list):
                    for data, name, sequence, told, line, ordinal in item:
                        yield Entry(data, name, sequence or None, told, line or None,
                                    ordinal or None)
                elif on_fault is not None:
                    on_fault(item)
        finally:
            stop.set()
            thread.join()

    return entries()


@contextmanager
def _written(target: Path) -> Iterator[int]:
    """An open file whose content replaces `target` when all has gone well, and never in part."""
    path = os.path.realpath(target)
    try:
        found = os.stat(path)
    except FileNotFoundError:
        found = None
    if found is not None and not stat.S_ISREG(found.st_mode):
        file = os.open(path, os.O_WRONLY | os.O_CLOEXEC)
        try:
            yield file
        finally:
            os.close(file)
        return
    folder = os.path.dirname(path)
    unfinished = os.path.join(folder, ".aceconv." + secrets.token_hex(8))
    file = os.open(unfinished, os.O_WRONLY | os.O_CREAT | os.O_EXCL | os.O_CLOEXEC,
                   0o666 if found is None else 0o600)
    try:
        try:
            yield file
            if found is not None:
                try:
                    os.fchown(file, found.st_uid, found.st_gid)
                except PermissionError:
                    pass  # the mode holds for its new owner
                os.fchmod(file, stat.S_IMODE(found.st_mode))
            os.fsync(file)
        finally:
            os.close(file)
        os.replace(unfinished, path)
    except BaseException:
        os.unlink(unfinished)
        raise
    parent = os.open(folder, os.O_RDONLY | os.O_DIRECTORY | os.O_CLOEXEC)
    try:
        os.fsync(parent)
    finally:
        os.close(parent)


def _run_file(verb: int, source: Source, target: Path, *, to: int = 0, format: int,
              schema: str | None, from_format: str | None, jobs: int, backend: str,
              progress: Progress, on_loss: OnLoss, on_fault: OnFault) -> tuple[Tally, list[Loss]]:
    converter = _converter.Converter(schema, backend=backend)
    form = _converter.code_of(_converter.FORMAT_CODES, from_format, "format")
    losses: list[Loss] = []
    with _opened(source) as (data, size), _written(target) as sink:
        tick = None if progress is None else lambda done, count: progress(done, size, count)
        tally = converter._native.run(verb, form, 0, to, format, jobs, data, sink, None,
                                      on_loss or losses.append, on_fault, tick)
    return Tally(*tally), losses


def convert_file(source: Source, target: Path, *, to: str, schema: str | None = None,
                 format: str = "json", from_format: str | None = None, jobs: int = 1,
                 backend: str = "bulk", progress: Progress = None,
                 on_loss: OnLoss = None,
                 on_fault: OnFault = None) -> tuple[Tally, list[Loss]]:
    """Converts a file of entries or bags to the schema `to`; what came of it, and all losses.

    `source` is as for `iter_entries`. `target` is replaced when all has gone well, and
    stays as it is otherwise. `format` is "json", "ndjson" or "xml". `progress` is called ten times
    a second with the bytes read, their number in all or None, and the entries done; what
    it raises ends the run. The first bad entry raises; with `on_fault` each is handed to that and
    left out. With `on_loss` losses are handed to that instead, for files with more of
    them than memory holds.
    """
    return _run_file(_CONVERT, source, target,
                     to=_converter.code_of(_converter.SCHEMA_CODES, to, "schema"),
                     format=_converter.code_of(_TEXTS, format, "format of texts"), schema=schema,
                     from_format=from_format, jobs=jobs, backend=backend, progress=progress,
                     on_loss=on_loss, on_fault=on_fault)


def encode_file(source: Source, target: Path, *, schema: str | None = None,
                labels: bool = True, from_format: str | None = None, jobs: int = 1,
                backend: str = "bulk", progress: Progress = None,
                on_loss: OnLoss = None,
                on_fault: OnFault = None) -> tuple[Tally, list[Loss]]:
    """Encodes a file of entries; see `convert_file`. Bags are labelled with list, number and
    schema unless `labels` is false."""
    return _run_file(_ENCODE, source, target, format=_CBOR if labels else _BARE_CBOR, schema=schema,
                     from_format=from_format, jobs=jobs, backend=backend, progress=progress,
                     on_loss=on_loss, on_fault=on_fault)


def decode_file(source: Source, target: Path, *, schema: str | None = None,
                format: str = "json", from_format: str | None = None, jobs: int = 1,
                backend: str = "bulk", progress: Progress = None,
                on_loss: OnLoss = None,
                on_fault: OnFault = None) -> tuple[Tally, list[Loss]]:
    """Decodes a file of bags; see `convert_file`."""
    return _run_file(_DECODE, source, target,
                     format=_converter.code_of(_TEXTS, format, "format of texts"), schema=schema,
                     from_format=from_format, jobs=jobs, backend=backend, progress=progress,
                     on_loss=on_loss, on_fault=on_fault)
