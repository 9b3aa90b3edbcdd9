#!/usr/bin/env python3
"""Whole processes over the same access list: aceconv and what it compares with.

usage: end_to_end.py BUILD_DIR [--sizes ENTRIES:ROUNDS,...] [--cold-starts N]

Every contender runs once a round; shown are medians (of ratios: those of the rounds), the spread from the fastest
to the slowest round, processor time and the peak of resident memory, also above
that of the same command with an empty input. Every run's output is checked to
hold all entries. The last table compares the run with the targets.
"""
import argparse
import contextlib
import pathlib
import sys
import tempfile

import contenders
import measuring
import tables

SIZES = "10000:9,100000:7,1000000:2"


@contextlib.contextmanager
def inputs_of(build, count):
    with tempfile.TemporaryDirectory() as directory:
        yield contenders.Inputs(build, pathlib.Path(directory), count)


def compare(build, count, rounds):
    print(f"Measuring with {count:,} entries", file=sys.stderr)
    with inputs_of(build, count) as inputs:
        rows = measuring.measure(contenders.contenders(inputs), rounds, inputs.work)
        sizes = ", ".join(
            f"{path.stat().st_size / count:.0f} of {what}" for what, path in
            (("JSON", inputs.base), ("bag", inputs.base_bags), ("protobuf", inputs.messages)))
    print(f"\n### {count:,} entries\n\nRounds: {rounds}. Bytes an entry: {sizes}.\n")
    tables.contender_table(rows, count)
    return rows


def cold_starts(build, rounds):
    with inputs_of(build, 1) as inputs:
        rows = measuring.measure(contenders.cold_start(inputs), rounds, inputs.work)
    print(f"\n### One entry\n\nRounds: {rounds}.\n")
    tables.cold_table(rows)
    return rows


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--sizes", default=SIZES)
    parser.add_argument("--cold-starts", type=int, default=50)
    options = parser.parse_args()
    build = options.build.resolve()
    sizes = [map(int, size.split(":")) for size in options.sizes.split(",")]
    try:
        results = {count: compare(build, count, rounds) for count, rounds in sizes}
        cold = cold_starts(build, options.cold_starts)
    except measuring.Failed as failure:
        sys.exit(f"end_to_end.py: {failure}")
    print("\n### Targets\n")
    tables.target_table(results, cold)


main()
