"""The access lists that are measured with, and the commands that take them."""
import filecmp
import functools
import json
import os
import pathlib
import subprocess
import sys
from dataclasses import dataclass

from measuring import Contender

ROOT = pathlib.Path(__file__).resolve().parent.parent
SMALL, LARGE, HUGE = 10_000, 100_000, 1_000_000
SCHEMAS = "base", "um"
OTHER = {"base": "um", "um": "base"}

PROTOBUF = "protobuf, binary to binary"


def module(schema):
    return ROOT / f"yang/aceconv-{schema}.yang"


def run_name(verb, schema, threads=1, losses=True):
    return f"{verb} {schema}, {threads} thread{'s' * (threads > 1)}" + ", no losses" * (not losses)


def document_name(schema):
    return f"encode {schema}, a document"


def library_name(schema):
    return f"library, encode {schema}, one call an entry"


def validating_name(schema):
    return f"encode {schema}, validating backend"


def yanglint_name(schema):
    return f"yanglint {schema}, validated"


def walk_name(schema, text="lines"):
    return f"simdjson walk {schema}, {text}"


@dataclass
class Inputs:
    """The same entries in every form, written when first asked for."""
    build: pathlib.Path
    work: pathlib.Path
    count: int

    def write(self, name, program, *options, source=None):
        path = self.work / name
        with open(path, "wb") as output, open(source or "/dev/null", "rb") as stdin:
            command = [self.build / "bin" / program, *options]
            subprocess.run(command, stdin=stdin, stdout=output, check=True)
        return path

    @functools.cache
    def lines(self, schema):
        return self.write(f"{schema}.ndjson", "generate_entries", str(self.count),
                          *["--um"] * (schema == "um"))

    @functools.cache
    def document(self, schema):
        return self.write(f"{schema}.json", "generate_entries", str(self.count), "--document",
                          *["--um"] * (schema == "um"))

    @functools.cache
    def sorted_document(self, schema):
        """Members in the order of their names: entries come before their list's name."""
        path = self.work / f"{schema}.sorted.json"
        with open(self.document(schema), encoding="utf-8") as file:
            text = json.dumps(json.load(file), sort_keys=True, separators=(",", ":"))
        path.write_text(text, encoding="utf-8")
        return path

    @functools.cache
    def bags(self, schema):
        return self.write(f"{schema}.bags", "aceconv", "encode", "-q", "--schema", schema,
                          source=self.lines(schema))

    @functools.cache
    def decoded(self, schema):
        return self.write(f"{schema}.decoded", "aceconv", "decode", "-q", "--schema", schema,
                          "--format", "ndjson", source=self.bags(schema))

    @functools.cache
    def messages(self):
        return self.write("messages", "protobuf_entries", "json", source=self.lines("base"))

    @functools.cache
    def empty_document(self):
        path = self.work / "empty.json"
        path.write_text("{}")
        return path

    def __hash__(self):
        return id(self)


def members(lines):
    """How many members the objects of all lines have."""
    count = 0

    def add(pairs):
        nonlocal count
        count += len(pairs)

    with open(lines, encoding="utf-8") as file:
        for line in file:
            json.loads(line, object_pairs_hook=add)
    return count


def has_text(text, count):
    def complete(path):
        with open(path, "rb") as file:
            return sum(line.count(text) for line in file) == count

    return complete


def has_lines(count):
    return has_text(b"\n", count)


def encodings(count):
    """Each encoding carries its type's name once."""
    return has_text(b"ipv4_acl_config_ace", count)


def starts_with(text):
    def complete(path):
        with open(path, "rb") as file:
            return file.read(len(text)) == text

    return complete


def same_as(expected):
    return lambda path: filecmp.cmp(expected, path, shallow=False)


def messages(count):
    """Messages, each behind its length."""
    def complete(path):
        data = path.read_bytes()
        at = found = 0
        while at < len(data):
            size = shift = 0
            while data[at] >= 0x80:
                size |= (data[at] & 0x7F) << shift
                shift += 7
                at += 1
            at += 1 + (size | data[at] << shift)
            found += 1
        return at == len(data) and found == count

    return complete


def aceconv(inputs, name, source, arguments, threads=1, losses=True, slow=False):
    """A verb over standard input; no entries are told by the format alone."""
    verb, nothing = arguments[0], "cbor" if arguments[0] == "decode" else "ndjson"
    command = [inputs.build / "bin/aceconv", *arguments, "-q", "-j", str(threads),
               *["--no-losses"] * (not losses)]
    complete = (encodings if verb == "encode" else has_lines)(inputs.count)
    return Contender(f"aceconv {name}", command, source, complete,
                     at_rest=[*command, "--from-format", nothing], slow=slow)


def verbs(inputs, schema, variants):
    """Each verb from a schema, by (threads, whether losses are looked for)."""
    for verb, source, arguments in (
        ("encode", inputs.lines(schema), ("--schema", schema)),
        ("decode", inputs.bags(schema), ("--schema", schema, "--format", "ndjson")),
        ("convert", inputs.lines(schema),
         ("--schema", schema, "--to", OTHER[schema], "--format", "ndjson")),
    ):
        for threads, losses in variants:
            yield aceconv(inputs, run_name(verb, schema, threads, losses), source,
                          (verb, *arguments), threads, losses)


def document(inputs, schema):
    return aceconv(inputs, document_name(schema), inputs.document(schema),
                   ("encode", "--schema", schema))


def sorted_document(inputs, schema):
    return aceconv(inputs, f"{document_name(schema)}, members sorted",
                   inputs.sorted_document(schema), ("encode", "--schema", schema))


def validating(inputs, schema):
    return aceconv(inputs, validating_name(schema), inputs.lines(schema),
                   ("encode", "--schema", schema, "--backend", "validating"), slow=True)


def yanglint(inputs, schema, name=None, kind="config"):
    """yanglint from JSON to XML; it wants the document's name."""
    command = ["yanglint", "-p", ROOT / "yang", "-f", "xml", "-t", kind, module(schema)]
    return Contender(name or yanglint_name(schema), [*command, inputs.document(schema)],
                     inputs.document(schema), has_text(b"<entry>", inputs.count),
                     at_rest=[*command, inputs.empty_document()], slow=True)


def library(inputs, schema):
    """One call an entry."""
    command = [inputs.build / "bin/library_loop", "encode", schema]
    lines = inputs.lines(schema)
    return Contender(library_name(schema), [*command, lines], lines,
                     starts_with(f"{inputs.count} entries".encode()),
                     at_rest=[*command, os.devnull])


def walk(inputs, schema, text, lines):
    walked = f"{inputs.count} entries, {members(lines)} members,".encode()
    return Contender(walk_name(schema, text), [inputs.build / "bin/simdjson_walk"], lines,
                     starts_with(walked))


def contenders(inputs):
    """In the order of a round: what is compared stands close together."""
    if inputs.count > LARGE:
        for schema in SCHEMAS:
            yield from verbs(inputs, schema, [(1, True)])
            yield document(inputs, schema)
        return
    binary = [inputs.build / "bin/protobuf_entries", "binary"]
    for schema in SCHEMAS:
        yield from verbs(inputs, schema, [(1, True), (2, True), (1, False)])
        yield library(inputs, schema)
        yield document(inputs, schema)
        yield sorted_document(inputs, schema)
        yield walk(inputs, schema, "lines", inputs.lines(schema))
        yield walk(inputs, schema, "decoded", inputs.decoded(schema))
        if schema == "base":
            yield Contender(PROTOBUF, binary, inputs.messages(), same_as(inputs.messages()))
        yield validating(inputs, schema)
        yield yanglint(inputs, schema)
    if inputs.count <= SMALL:
        yield from far_slower(inputs)


def far_slower(inputs):
    lines, mapping = inputs.lines("base"), ROOT / "bench/python_mapping.py"
    yield yanglint(inputs, "base", "yanglint base, `-t edit`", "edit")
    yield Contender("protobuf, JSON to binary", [inputs.build / "bin/protobuf_entries", "json"],
                    lines, messages(inputs.count), slow=True)
    yield Contender("Python json to members", [sys.executable, mapping, module("base")], lines,
                    has_lines(inputs.count), slow=True)


def cold_start(inputs):
    """What takes one entry as it takes many."""
    for schema in SCHEMAS:
        for one in (*verbs(inputs, schema, [(1, True)]), validating(inputs, schema),
                    yanglint(inputs, schema)):
            one.slow = False
            yield one
