from collections.abc import Callable
from typing import Any

from ._types import Field, Loss

version: str

class Converter:
    def __init__(self, schema: int, backend: int, modules: str | None, plugin: str | None,
                 losses: bool) -> None: ...
    def encode(self, entry: Any, format: int, schema: int, list: str | None, sequence: int,
               stored: Any) -> tuple[bytes, list[Loss] | None]: ...
    def decode(self, encoding: Any, schema: int, sequence: int,
               format: int) -> tuple[str, list[Loss] | None]: ...
    def convert(self, entry: Any, from_format: int, schema: int, to: int,
                format: int) -> tuple[str, list[Loss] | None]: ...
    def inspect(self, entry: Any, format: int,
                schema: int) -> tuple[list[Field], list[Loss] | None]: ...
    def check(self, entry: Any, format: int,
              schema: int) -> tuple[bytes, list[Loss] | None]: ...
    def diff(self, before: Any, before_format: int, after: Any, after_format: int,
             schema: int) -> list[Loss]: ...
    def run(self, verb: int, from_format: int, schema: int, to: int, format: int, jobs: int,
            source: Any, sink: int, on_entries: Callable[[list[Any]], object] | None,
            on_losses: Callable[[Loss], object] | None,
            on_fault: Callable[[Exception], object] | None,
            on_tick: Callable[[int, int], object] | None) -> tuple[int, int, int, int, int]: ...
