"""The access lists that are measured with, and the commands that take them."""
import filecmp
import functools
import json
import pathlib
import subprocess
import sys
from dataclasses import dataclass

from measuring import Contender

ROOT = pathlib.Path(__file__).resolve().parent.parent
MODULE = ROOT / "yang/aceconv-base.yang"
LARGE = 100_000  # with more entries only what streams is run round for round

ENCODE, DECODE, CONVERT = "aceconv encode", "aceconv decode", "aceconv convert"
VALIDATING = "aceconv encode, validating backend"
YANGLINT, YANGLINT_EDIT = "yanglint, validated", "yanglint, `-t edit`"
WALK = "simdjson walk"


def workers(name, number):
    return f"{name} -j {number}"


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

    def generate(self, name, *options):
        return self.write(name, "generate_entries", str(self.count), *options)

    def encode(self, schema, source):
        return self.write(f"{schema}.bags", "aceconv", "encode", "-q", "--schema", schema,
                          source=source)

    @functools.cached_property
    def base(self):
        return self.generate("base.ndjson")

    @functools.cached_property
    def um(self):
        return self.generate("um.ndjson", "--um")

    @functools.cached_property
    def document(self):
        return self.generate("base.json", "--document")

    @functools.cached_property
    def base_bags(self):
        return self.encode("base", self.base)

    @functools.cached_property
    def um_bags(self):
        return self.encode("um", self.um)

    @functools.cached_property
    def messages(self):
        return self.write("base.messages", "protobuf_entries", "json", source=self.base)

    @functools.cached_property
    def empty_document(self):
        path = self.work / "empty.json"
        path.write_text("{}")
        return path

    def members(self):
        """How many members the objects of all entries have."""
        count = 0

        def add(pairs):
            nonlocal count
            count += len(pairs)

        with open(self.base, encoding="utf-8") as lines:
            for line in lines:
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


def aceconv(inputs, name, source, complete, *arguments, threads=1, once=False):
    command = [inputs.build / "bin/aceconv", *arguments, "-q", "-j", str(threads)]
    return Contender(name, command, source, complete, once=once)


BASE_TO_LINES = "decode", "--schema", "base", "--to", "ndjson"
UM_TO_LINES = "decode", "--schema", "um", "--to", "ndjson"
BASE_TO_UM = "convert", "--no-losses", "--from", "base", "--to", "um", "--to-format", "ndjson"


def aceconv_streams(inputs):
    """Each verb with one and two workers."""
    encoded, lines = encodings(inputs.count), has_lines(inputs.count)
    for name, source, complete, arguments in (
        (ENCODE, inputs.base, encoded, ("encode", "--schema", "base")),
        (DECODE, inputs.base_bags, lines, BASE_TO_LINES),
        (CONVERT, inputs.base, lines, BASE_TO_UM),
    ):
        for number in (1, 2):
            yield aceconv(inputs, workers(name, number), source, complete, *arguments,
                          threads=number)


def aceconv_document(inputs):
    return aceconv(inputs, f"{ENCODE}, a document", inputs.document, encodings(inputs.count),
                   "encode", "--schema", "base", once=inputs.count > LARGE)


def aceconv_others(inputs):
    encoded, lines = encodings(inputs.count), has_lines(inputs.count)
    yield aceconv(inputs, f"{ENCODE}, UM", inputs.um, encoded, "encode", "--schema", "um")
    yield aceconv(inputs, f"{DECODE}, UM", inputs.um_bags, lines, *UM_TO_LINES)
    yield aceconv(inputs, VALIDATING, inputs.base, encoded, "encode", "--schema", "base",
                  "--backend", "validating")


def yanglint(name, kind, inputs):
    """yanglint from JSON to XML; it wants the document's name."""
    command = ["yanglint", "-p", ROOT / "yang", "-f", "xml", "-t", kind, MODULE]
    return Contender(name, [*command, inputs.document], inputs.document,
                     has_text(b"<entry>", inputs.count),
                     at_rest=[*command, inputs.empty_document], once=inputs.count > LARGE)


def contenders(inputs):
    count, programs = inputs.count, inputs.build / "bin"
    protobuf = programs / "protobuf_entries"
    result = [*aceconv_streams(inputs), aceconv_document(inputs)]
    if count <= LARGE:
        result += aceconv_others(inputs)
    walked = f"{count} entries, {inputs.members()} members,".encode()
    result += [
        Contender(WALK, [programs / "simdjson_walk"], inputs.base, starts_with(walked)),
        Contender("protobuf, binary to binary", [protobuf, "binary"], inputs.messages,
                  same_as(inputs.messages)),
        yanglint(YANGLINT, "config", inputs),
    ]
    if count <= LARGE:
        mapping = [sys.executable, ROOT / "bench/python_mapping.py", MODULE]
        result += [
            yanglint(YANGLINT_EDIT, "edit", inputs),
            Contender("protobuf, JSON to binary", [protobuf, "json"], inputs.base,
                      messages(count)),
            Contender("Python json to members", mapping, inputs.base, has_lines(count)),
        ]
    return result


def cold_start(inputs):
    """What takes one entry as it takes many."""
    chosen = (workers(ENCODE, 1), VALIDATING, YANGLINT, YANGLINT_EDIT)
    return [one for one in contenders(inputs) if one.name in chosen]
