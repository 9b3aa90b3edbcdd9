#!/usr/bin/env python3
"""Whole processes over the same access list: aceconv, yanglint and Python's json.

usage: end_to_end.py BUILD_DIR [--sizes N,N...] [--rounds N]

Every contender runs once a round, so that all meet the same machine; shown are
medians, the spread from the fastest to the slowest round, processor time and
the highest resident memory. Every run's output is checked to hold all entries.
"""
import argparse
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass, field

ROOT = pathlib.Path(__file__).resolve().parent.parent


@dataclass
class Contender:
    name: str
    command: list
    source: pathlib.Path  # standard input
    complete: object  # tells from the output's path whether all entries are there
    output: pathlib.Path = None
    seconds: list = field(default_factory=list)
    processor: list = field(default_factory=list)
    peak: int = 0  # kB


def fail(message):
    sys.exit(f"end_to_end.py: {message}")


def run(contender, work):
    """One timed run."""
    errors, memory = work / "stderr", work / "memory"
    # What wait4 says about memory counts this process too, from which it was forked.
    command = ["time", "-q", "-f", "%M", "-o", memory, *contender.command]
    with open(contender.source, "rb") as source, open(contender.output, "wb") as output, open(
        errors, "wb"
    ) as stderr:
        start = time.perf_counter()
        process = subprocess.Popen(
            [str(word) for word in command], stdin=source, stdout=output, stderr=stderr
        )
        _, status, usage = os.wait4(process.pid, 0)
        contender.seconds.append(time.perf_counter() - start)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        fail(f"{contender.name}: exit {process.returncode}: {errors.read_text()[:400]}")
    contender.processor.append(usage.ru_utime + usage.ru_stime)
    contender.peak = max(contender.peak, int(memory.read_text()))
    if not contender.complete(contender.output):
        fail(f"{contender.name}: the output does not hold all entries")


def has_lines(count):
    def complete(path):
        with open(path, "rb") as file:
            return sum(1 for _ in file) == count

    return complete


def has_text(text, count):
    def complete(path):
        return path.read_bytes().count(text) == count

    return complete


def encodings(count):
    # Each encoding carries its type's name once.
    return has_text(b"ipv4_acl_config_ace", count)


def contenders(build, work, count):
    def generate(path, *options):
        with open(path, "wb") as file:
            subprocess.run(
                [build / "bin/generate_entries", str(count), *options], stdout=file, check=True
            )
        return path

    base, um, document = work / "base.ndjson", work / "um.ndjson", work / "base.json"
    generate(base)
    generate(um, "--um")
    generate(document, "--document")
    aceconv = build / "bin/aceconv"
    bags = {}
    for schema, path in (("base", base), ("um", um)):
        bags[schema] = work / f"{schema}.bags"
        with open(path, "rb") as source, open(bags[schema], "wb") as file:
            subprocess.run(
                [aceconv, "encode", "-q", "--schema", schema], stdin=source, stdout=file, check=True
            )

    module = ROOT / "yang/aceconv-base.yang"
    yanglint = ["yanglint", "-p", ROOT / "yang", "-f", "xml"]
    xml = has_text(b"<entry>", count)
    lines = has_lines(count)
    result = [
        Contender("aceconv encode, base", [aceconv, "encode", "-q"], base, encodings(count)),
        Contender("aceconv encode, UM", [aceconv, "encode", "-q"], um, encodings(count)),
        Contender(
            "aceconv decode, base",
            [aceconv, "decode", "-q", "--schema", "base", "--to", "ndjson"],
            bags["base"],
            lines,
        ),
        Contender(
            "aceconv decode, UM",
            [aceconv, "decode", "-q", "--schema", "um", "--to", "ndjson"],
            bags["um"],
            lines,
        ),
        Contender(
            "aceconv convert, base to UM",
            [aceconv, "convert", "-q", "--from", "base", "--to", "um", "--to-format", "ndjson"],
            base,
            lines,
        ),
        Contender(
            "yanglint JSON to XML, validated", [*yanglint, "-t", "config", module, document], base, xml
        ),
        Contender(
            "yanglint JSON to XML, -t edit", [*yanglint, "-t", "edit", module, document], base, xml
        ),
        Contender(
            "Python json to members",
            [sys.executable, ROOT / "bench/python_mapping.py", module],
            base,
            lines,
        ),
    ]
    for number, contender in enumerate(result):
        contender.output = work / f"output-{number}"
    sizes = ", ".join(
        f"{name} {path.stat().st_size / count:.0f}"
        for name, path in (
            ("base JSON", base), ("UM JSON", um),
            ("base bag", bags["base"]), ("UM bag", bags["um"]),
        )
    )
    return result, sizes


def table(result, count, sizes, rounds):
    reference = statistics.median(result[0].seconds)
    print(f"\n{count} entries, {rounds} rounds; bytes an entry: {sizes}")
    print(
        f"{'':34} {'ratio':>6} {'us/entry':>9} {'spread':>15} {'cpu us':>7} {'entries/s':>10}"
        f" {'peak MB':>8}"
    )
    for contender in result:
        seconds = statistics.median(contender.seconds)
        processor = 1e6 * statistics.median(contender.processor) / count
        low, high = (1e6 * f(contender.seconds) / count for f in (min, max))
        print(
            f"{contender.name:34} {seconds / reference:6.2f} {1e6 * seconds / count:9.2f}"
            f" {f'{low:.2f}-{high:.2f}':>15} {processor:7.2f} {count / seconds:10.0f}"
            f" {contender.peak / 1024:8.1f}"
        )


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--sizes", default="10000,100000")
    parser.add_argument("--rounds", type=int, default=5)
    options = parser.parse_args()
    build = options.build.resolve()
    print("Whole processes; ratio: time against aceconv's encoding of the base schema.")
    for count in map(int, options.sizes.split(",")):
        with tempfile.TemporaryDirectory() as directory:
            work = pathlib.Path(directory)
            result, sizes = contenders(build, work, count)
            for _ in range(options.rounds):
                for contender in result:
                    run(contender, work)
            table(result, count, sizes, options.rounds)


main()
