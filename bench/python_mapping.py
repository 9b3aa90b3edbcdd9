#!/usr/bin/env python3
"""Base-schema entries to numbered members with Python's json module.

Reads one entry a line, looks every member up in the tables of the YANG module,
turns names and addresses into numbers and writes the (member, number) pairs of
an entry as one line: what encoding does, without checking ranges.

usage: python_mapping.py MODULE <entries.ndjson >members.ndjson
"""
import json
import re
import socket
import sys


def statements(tokens):
    """The YANG statements up to the closing brace, as (keyword, argument, substatements)."""
    found = []
    for token in tokens:
        if token == "}":
            break
        words = [token]
        for token in tokens:
            if token in "{;":
                break
            words.append(token)
        argument = words[1].strip('"') if len(words) > 1 else ""
        found.append((words[0], argument, statements(tokens) if token == "{" else []))
    return found


def names_below(tree, typedefs):
    """The names of the enumerations and bits of a leaf or typedef."""
    names = {}
    for keyword, argument, below in tree:
        if keyword in ("enum", "bit"):
            names[argument] = int(next(a for k, a, _ in below if k in ("value", "position")))
        elif keyword == "type":
            names |= typedefs.get(argument, {}) | names_below(below, typedefs)
    return names


def members(tree, definitions, numbers):
    """Member name to the members below it, or to (number, type, names)."""
    typedefs, groupings = definitions
    found = {}
    for keyword, name, below in tree:
        if keyword == "container":
            found[name] = members(below, definitions, numbers)
        elif keyword == "uses":
            found |= members(groupings[name], definitions, numbers)
        elif keyword == "leaf":
            kind = next(argument for keyword, argument, _ in below if keyword == "type")
            found[name] = (next(numbers), kind, names_below(below, typedefs))
    return found


def load(path):
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"//[^\n]*|/\*.*?\*/", "", file.read(), flags=re.S)
    tokens = re.findall(r'"(?:[^"\\]|\\.)*"|[{};]|[^\s{};"]+', text)
    tree = statements(iter(tokens))[0][2]
    typedefs = {}
    groupings = {}
    for keyword, name, below in tree:
        if keyword == "typedef":
            typedefs[name] = names_below(below, typedefs)
        elif keyword == "grouping":
            groupings[name] = below
    for name in ("acls", "acl", "entry"):
        tree = next(below for _, argument, below in tree if argument == name)
    return members(tree, (typedefs, groupings), iter(range(1000)))


def number(value, kind, names):
    if value == [None]:
        return 1
    if not isinstance(value, str):
        return int(value)
    if kind.startswith("inet:"):
        return int.from_bytes(socket.inet_aton(value), "big")
    if value in names:
        return names[value]
    return sum(1 << names[word] for word in value.split()) if names else value


def convert(entry, table, result):
    for name, value in entry.items():
        place = table[name]
        if isinstance(value, dict):
            convert(value, place, result)
        else:
            result.append((place[0], number(value, *place[1:])))
    return result


def main():
    table = load(sys.argv[1])
    for line in sys.stdin:
        sys.stdout.write(json.dumps(convert(json.loads(line), table, [])) + "\n")


if __name__ == "__main__":
    main()
