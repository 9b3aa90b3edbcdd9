#!/usr/bin/env python3
"""The entry of the base schema as a protobuf message, made of the YANG module.

A field for every leaf, a message for every container. With enumeration names
read regardless of case the message takes the same JSON text, with two
exceptions from a closer likeness:

- an enumeration of which a name holds a space is a Value;
- leaves without a value are lists of nulls, as YANG's JSON writes them.

An enumeration of proto3 is open and so takes numbers without a name too.
Addresses and sets of bits are strings.

usage: entry_message.py MODULE >entry.proto
"""
import sys

from python_mapping import load

HEAD = """syntax = "proto3";
package aceconv.bench.pb;
import "google/protobuf/struct.proto";
"""
PLAIN = {"boolean": "optional bool", "empty": "repeated google.protobuf.NullValue",
         "tcp-bits": "optional string"}


def camel(name):
    return "".join(word.capitalize() for word in name.split("-"))


def enumeration(name, names):
    values = sorted(names.items(), key=lambda item: item[1])
    if values[0][1] != 0:
        values.insert(0, ("none", 0))
    rows = "".join(f"{text.replace('-', '_').upper()} = {number}; " for text, number in values)
    return f"message {camel(name)} {{ enum Value {{ {rows}}} }}"


def leaf(name, kind, names):
    """The type of the leaf's field, and what has to be declared for it."""
    if kind in PLAIN:
        return PLAIN[kind], []
    if any(" " in text for text in names):
        return "google.protobuf.Value", []
    if names:
        return f"optional {camel(name)}.Value", [enumeration(name, names)]
    return "optional uint32" if kind.startswith("uint") else "optional string", []


def message(name, table):
    lines = []
    for number, (member, place) in enumerate(table.items(), 1):
        if isinstance(place, dict):
            kind, below = camel(member) + "Below", message(camel(member) + "Below", place)
        else:
            kind, below = leaf(member, *place[1:])
        field = member.replace("-", "_")
        lines += [*below, f'{kind} {field} = {number} [json_name = "{member}"];']
    return [f"message {name} {{", *(f"  {line}" for line in lines), "}"]


print(HEAD + "\n".join(message("Entry", load(sys.argv[1]))))
