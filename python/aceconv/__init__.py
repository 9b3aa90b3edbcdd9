"""Entries of IPv4 access lists, between YANG data and encoded records.

    >>> converter = aceconv.Converter(schema="base")
    >>> bag = converter.encode({"sequence-number": 10, "grant": "permit"})
    >>> converter.decode(bag, sequence=10)
    {'sequence-number': 10, 'grant': 'permit'}
"""
from ._converter import BytesLike, Converter, EntryLike
from ._native import version as __version__
from ._runs import convert_file, decode_file, encode_file, iter_entries
from ._types import (AceconvError, DataError, Entry, Field, InputError, Loss, LossError,
                     SchemaUnknownError, Tally, UnavailableError, UsageError, Value)

__all__ = ["AceconvError", "BytesLike", "Converter", "DataError", "Entry", "EntryLike", "Field",
           "InputError", "Loss", "LossError", "SchemaUnknownError", "Tally", "UnavailableError",
           "UsageError", "Value", "__version__", "convert_file", "decode_file", "encode_file",
           "iter_entries"]
