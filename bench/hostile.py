#!/usr/bin/env python3
"""Instructions that hostile inputs take: in proportion to their bytes, and no more a byte than stated.

usage: hostile.py BUILD_DIR

Counts the command's instructions for an input of some bytes and for one of twice and of four times
as many. Where what the last of the doublings adds is more than 2.2 times what the first one adds, or
more for a byte than the row allows, the row fails: what grows with the square shows whatever its factor,
and a factor of thousands whatever it grows with. Rows are what once took too long, or would if each byte
were looked at as often as it could be.
"""
import collections
import concurrent.futures
import contextlib
import itertools
import os
import pathlib
import string
import sys
import tempfile

import callgrind

BYTES = 5000
MOST_GROWTH = 2.2
# Instructions a byte, where it is read, where short entries have what stands around them in their
# texts, and where each entry of some bytes has a message.
READ, AROUND, MESSAGES = 4000, 30000, 90000
BASE, UM = ('xmlns="urn:aceconv:base"', 'xmlns="urn:aceconv:um"')
DATA = '<data xmlns="urn:ietf:params:xml:ns:netconf:base:1.0">%s</data>'
ENCODE = "encode -q --keep-going --no-losses -j 1"
LINES = ENCODE + " --from-format ndjson --schema "


def up_to(size, piece):
    """Pieces of numbers from 1 on, `size` bytes at least."""
    text, number = [], 0
    while size > 0:
        number += 1
        text.append(piece(number))
        size -= len(text[-1])
    return "".join(text)


def prefixes(size):
    """Declarations of as many namespaces as `size` bytes hold."""
    letters = string.ascii_letters + "_"
    names = ("".join(name) for length in (1, 2, 3) for name in itertools.product(letters, repeat=length))
    declared = []
    for name in names:
        size -= len(name) + 1
        if size < 0:
            return " ".join(declared)
        declared.append(f'xmlns:{name}="u"')


def xml(entries, declared=""):
    return f"<acls {BASE} {declared}><acl><name>X</name>{entries}</acl></acls>"


def xml_entry(number):
    return f"<entry><sequence-number>{number}</sequence-number><grant>deny</grant></entry>"


def flags(text):
    return '{"permit":{"tcp-flags":{"match-all":{"tcp-bits":"%s"}}}}\n' % text


def members(number):
    return "{" + ",".join(f'"m{number}{i}":1' for i in range(10)) + "}\n"


def numbered(number):
    return '{"acl":"X","entry":{"sequence-number":%d}}\n' % (70000 - number)


def two_lists(size):
    """Bad entries, and as many bytes of entries that the other list does not have."""
    return (up_to(size // 2, lambda i: '{"sequence-number":%d,"x":1}\n' % i),
            up_to(size // 2, lambda i: '{"sequence-number":%d}\n' % (100000 + i)))


def outlines(number):
    """An entry of a list, of which no two limit the same bits."""
    return '{"acl":"X","entry":{"sequence-number":%d,"grant":"deny","source-network":{' \
           '"source-address":"10.0.0.0","source-wild-card-bits":"0.0.%d.%d"}}}\n' % (
               number, number >> 8 & 255, number & 255)


# Whether a read gives one byte; what makes the input, or two of them, of so many bytes; the most
# instructions a byte; the fewest bytes at which it would show.
Row = collections.namedtuple("Row", "name arguments by_byte make allowed least", defaults=(BYTES,))
ROWS = tuple(Row(*row) for row in (
    ("XML: attributes of one element", ENCODE + " --ignore-other-modules", False,
     lambda n: DATA % ('<o xmlns="u"' + up_to(n, lambda i: f' a{i}=""') + "/>"), READ),
    ("XML: attributes in a long namespace", ENCODE + " --ignore-other-modules", False,
     lambda n: DATA % (f'<o xmlns="u" xmlns:p="{"v" * 4000}"' + up_to(n, lambda i: f' p:a{i}=""') + "/>"), AROUND),
    ("XML: namespaces on one element", ENCODE, False,
     lambda n: f"<acls {BASE}" + up_to(n, lambda i: f' xmlns:a{i}="u"') + "/>", READ),
    ("XML: namespaces around entries", ENCODE, False,
     lambda n: xml(up_to(n, xml_entry), prefixes(4000)), READ),
    ("XML: namespaces around short entries", ENCODE, False,
     lambda n: xml(up_to(n, lambda i: "<entry/>"), prefixes(4000)), AROUND),
    ("XML: namespaces of each entry", ENCODE, False,
     lambda n: xml(up_to(n, lambda i: f"<entry {prefixes(100)}/>")), READ),
    ("XML: a comment, byte by byte", ENCODE, True,
     lambda n: f"<acls {BASE}><!--{'>' * n}--></acls>", READ),
    ("XML: a tag, byte by byte", ENCODE, True,
     lambda n: f"<acls {BASE}><acl a='{'>' * n}'/></acls>", READ),
    ("XML: blanks, byte by byte", ENCODE, True, lambda n: f"<acls {BASE}/>" + " " * n, READ),
    ("JSON: lines without a schema that are bad", ENCODE + " --from-format ndjson", False,
     lambda n: "x\n" * (n // 2), MESSAGES),
    ("JSON: a string, byte by byte", ENCODE + " --ignore-other-modules", True,
     lambda n: '{"i:j":"' + "x" * n + '"}', READ),
    ("JSON: an entry, byte by byte", LINES + "base", True,
     lambda n: '{"remark":"' + "x" * n + '"}\n', READ),
    ("JSON: unknown members", LINES + "base", False, lambda n: up_to(n, members), READ),
    ("JSON: a name nearly known", LINES + "base", False, lambda n: '{"protoc":1}\n' * (n // 13), MESSAGES),
    ("JSON: brackets in brackets", LINES + "base", False,
     lambda n: '{"sequence-number":' + "[" * (n // 2) + "]" * (n // 2) + "}\n", READ),
    ("JSON: a number", LINES + "base", False, lambda n: '{"sequence-number":' + "1" * n + "}\n", READ),
    ("JSON: sequence numbers downwards", LINES + "base", False, lambda n: up_to(n, numbered), READ),
    ("flag text: withdrawn and set", LINES + "um", False, lambda n: flags("-+" * (n // 2)), READ),
    ("flag text: blanks", LINES + "um", False, lambda n: flags(" " * n + "+ack"), READ),
    ("encodings: an array, byte by byte", "decode -q --keep-going --no-losses -j 1", True,
     lambda n: b"\x9f" + b"\x01" * n + b"\xff", READ),
    ("encodings: nothing but arrays, byte by byte", "decode -q --keep-going --no-losses -j 1", True,
     lambda n: b"\x81" * n + b"\x01", READ),
    ("encodings: short ones", "decode -q --keep-going --no-losses -j 1", False,
     lambda n: b"\x81\x01" * (n // 2), MESSAGES),
    ("lint: limits of other bits", "lint -q -j 1 --from-format ndjson --schema base", False,
     lambda n: up_to(n, outlines), READ),
    ("diff: bad entries here, others there", "diff -q --keep-going -j 1 --schema base", False,
     two_lists, MESSAGES, 8 * BYTES),
))


def count(build, row, size):
    made = row.make(size)
    with contextlib.ExitStack() as stack:
        names = []
        for data in made if isinstance(made, tuple) else (made,):
            file = stack.enter_context(tempfile.NamedTemporaryFile())
            file.write(data if isinstance(data, bytes) else data.encode())
            file.flush()
            names.append(file.name)
        return sum(callgrind.count(
            [build / "bin/aceconv", *row.arguments.split(" "), *names], (0, 1, 2),
            {"LD_PRELOAD": str(build / "lib/libone_byte_reads.so")} if row.by_byte else {}).values())


def faults(build, row):
    """What is wrong with a row."""
    few, more, most = (count(build, row, row.least * times) for times in (1, 2, 4))
    growth, of_byte = (most - more) / (more - few), (most - more) / (2 * row.least)
    print(f"{row.name:45} {of_byte:8,.0f} a byte, times {growth:.2f}", flush=True)
    if growth > MOST_GROWTH:
        yield f"{row.name}: {growth:.1f} times the instructions for twice the bytes"
    if of_byte > row.allowed:
        yield f"{row.name}: {of_byte:,.0f} instructions a byte; at most {row.allowed:,}"


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        found = list(itertools.chain(*pool.map(lambda row: list(faults(build, row)), ROWS)))
    print(*found, f"{len(ROWS)} hostile inputs: {len(found)} faults.", sep="\n")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
