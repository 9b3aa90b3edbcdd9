#!/usr/bin/env python3
"""The Python package against the command and against Python's json, in one process.

usage: python_speed.py SCHEMA LINES COMMAND ROUNDS; prints the medians of the rounds' ratios as JSON.
PYTHONPATH names the package.
"""
import json
import statistics
import subprocess
import sys
import time

import aceconv


def seconds(call):
    start = time.perf_counter()
    call()
    return time.perf_counter() - start


def main():
    schema, path, command, rounds = sys.argv[1:]
    with open(path, "rb") as file:
        lines = file.read().splitlines()
    entries = [json.loads(line) for line in lines]
    converter = aceconv.Converter(schema)

    def by_command():
        subprocess.run([command, "encode", "-q", "-j", "1", "--schema", schema, path, "-o",
                        "/dev/null"], check=True)

    def in_batches():
        if sum(1 for _ in converter.encode_many(lines)) != len(lines):
            sys.exit("entries are missing")

    def one_by_one():
        for entry in entries:
            converter.decode(converter.encode(entry), sequence=entry["sequence-number"])

    def by_json():
        for entry in entries:
            json.loads(json.dumps(entry))

    ratios = {"batch": [], "round trip": []}
    for _ in range(int(rounds)):
        for name, mine, other in (("batch", in_batches, by_command),
                                  ("round trip", one_by_one, by_json)):
            ratios[name].append(seconds(mine) / seconds(other))
    print(json.dumps({name: statistics.median(found) for name, found in ratios.items()}))


main()
