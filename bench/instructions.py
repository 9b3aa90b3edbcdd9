#!/usr/bin/env python3
"""Instructions of the plug-in's conversions and of the command, against the kept figures.

usage: instructions.py BUILD_DIR [--keep]

Figures are instructions an entry or a conversion; `start` is a whole run over no entries.
More than 3 % above the kept figure fails, and the functions that grew are named; as much
below is a note, and --keep writes what was measured into bench/kept/. Figures of another
compiler, libc or valgrind are not compared.
"""
import argparse
import concurrent.futures
import os
import pathlib
import platform
import subprocess
import sys
import tempfile

import callgrind

KEPT = pathlib.Path(__file__).resolve().parent / "kept"
FIGURES, FUNCTIONS = KEPT / "instructions.txt", KEPT / "functions.txt"
TOLERANCE = 0.03
WORTH_KEEPING = 0.01  # of a case, for a function
CONVERSIONS, ENTRIES = (100, 1100), (250, 1250)
OTHER = {"base": "um", "um": "base"}

# Arguments of each verb; {lines} and {bags} are the same entries, of {schema}.
VERBS = {
    "encode": "encode --schema {schema} {lines} -o /dev/null",
    "decode": "decode --schema {schema} --format ndjson {bags} -o /dev/null",
    "convert": "convert --schema {schema} --to {other} --format ndjson {lines} -o /dev/null",
    "inspect": "inspect --schema {schema} {bags} -o /dev/null",
    "check": "check --schema {schema} {lines}",
    "diff": "diff --schema-a {schema} --schema-b {schema} {lines} {bags}",
}


def first_line(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.split("\n")[0]


def made_by():
    """What the figures depend on besides the sources."""
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        avx2 = "with" if " avx2 " in file.read() else "without"
    return ", ".join((first_line("g++", "--version"), " ".join(platform.libc_ver()),
                      first_line("valgrind", "--version"), f"{platform.machine()} {avx2} AVX2"))


def inputs(programs, work):
    """Files of few and of many entries: {(schema, count): (lines, encodings)}."""
    files = {}
    for schema in OTHER:
        for number in ENTRIES:
            lines, bags = (work / f"{schema}-{number}.{kind}" for kind in ("ndjson", "bags"))
            with open(lines, "wb") as file:
                subprocess.run([programs / "generate_entries", str(number),
                                *["--um"] * (schema == "um")], stdout=file, check=True)
            subprocess.run([programs / "aceconv", "encode", "-q", "--no-losses", "--schema", schema,
                            lines, "-o", bags], check=True)
            files[schema, number] = lines, bags
    return files


def cases(programs, files):
    """By name, what counts its instructions by (object, function)."""
    loop = programs / "converter_loop"
    for line in subprocess.run([loop], check=True, capture_output=True, text=True).stdout.split("\n"):
        if name := line.partition(" ")[0]:
            yield f"plug-in/{name}", lambda name=name: callgrind.of_one(
                lambda number: [loop, name, number], *CONVERSIONS)

    def command(verb, schema, number):
        lines, bags = files[schema, number]
        arguments = VERBS[verb].format(schema=schema, other=OTHER[schema], lines=lines, bags=bags)
        return [programs / "aceconv", *arguments.split(" "), "-q", "-j", "1"]

    for verb in VERBS:
        for schema in OTHER:
            yield f"{verb}-{schema}", lambda verb=verb, schema=schema: callgrind.of_one(
                lambda number: command(verb, schema, number), *ENTRIES, ends_with=(0, 1))
    for schema in OTHER:
        yield f"library-encode-{schema}", lambda schema=schema: callgrind.of_one(
            lambda number: [programs / "library_loop", "encode", schema, files[schema, number][0]],
            *ENTRIES)
    yield "start", lambda: callgrind.count(
        [programs / "aceconv", "encode", "-q", "--from-format", "ndjson", "/dev/null"])


def measure(build, wanted=lambda name: True):
    """Instructions by (object, function), by case."""
    programs = build.resolve() / "bin"
    with tempfile.TemporaryDirectory() as work, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        files = inputs(programs, pathlib.Path(work))
        counts = {name: pool.submit(count) for name, count in cases(programs, files) if wanted(name)}
        return {name: counts[name].result() for name in sorted(counts)}


def total(costs):
    return round(sum(costs.values()))


def by_function(costs):
    """Whole instructions by "FUNCTION (OBJECT)"."""
    return {f"{function} ({where})": round(cost) for (where, function), cost in costs.items()}


def keep(measured):
    KEPT.mkdir(exist_ok=True)
    head = f"# ./dev instructions --keep; {made_by()}\n"
    with open(FIGURES, "w", encoding="utf-8") as file:
        file.write(head)
        file.writelines(f"{name:29} {total(costs):9}\n" for name, costs in measured.items())
    with open(FUNCTIONS, "w", encoding="utf-8") as file:
        file.write(f"{head}# case, instructions, function: those of 1 % of their case and more\n")
        for name, costs in measured.items():
            least = total(costs) * WORTH_KEEPING
            file.writelines(f"{name:29} {cost:8} {function}\n"
                            for function, cost in sorted(by_function(costs).items()) if cost >= least)


def kept():
    """The figures by case, the functions' by case and function, and what they were made by."""
    with open(FIGURES, encoding="utf-8") as file:
        head = next(file).partition("; ")[2].strip()
        figures = {name: int(figure) for name, figure in map(str.split, file)}
    functions = {name: {} for name in figures}
    with open(FUNCTIONS, encoding="utf-8") as file:
        for line in file:
            if not line.startswith("#"):
                name, cost, function = line.split(None, 2)
                functions[name][function.strip()] = int(cost)
    return figures, functions, head


def growth(figure, before, costs):
    """The functions that account for a case's growth, a line each.

    One that is not kept took less than 1 %; it may have taken nearly that.
    """
    now = by_function(costs)
    grown = {name: cost - before.get(name, figure * WORTH_KEEPING) for name, cost in now.items()}
    telling = (total(costs) - figure) / 10
    for name in sorted(grown, key=grown.get, reverse=True):
        if grown[name] >= telling:
            was = f"{before[name]:,}" if name in before else "less than 1 %"
            yield f"    {name}: {was}, now {now[name]:,}"


def compare(measured):
    """Prints what differs; whether nothing is above its kept figure."""
    figures, functions, _ = kept()
    above = below = 0
    for name in sorted(figures.keys() | measured.keys()):
        if name not in figures or name not in measured:
            print(f"{name}: {'not kept' if name in measured else 'kept, but there is no such case'}")
            above += 1
            continue
        now = total(measured[name])
        change = now / figures[name] - 1
        if abs(change) > TOLERANCE:
            print(f"{name}: {figures[name]:,} kept, now {now:,}: {change:+.1%}")
        if change > TOLERANCE:
            above += 1
            print(*growth(figures[name], functions[name], measured[name]), sep="\n")
        below += change < -TOLERANCE
    print(f"{len(measured)} cases: {above} above the kept figures, {below} below.")
    if below:
        print("Renew the kept figures with ./dev instructions --keep.")
    return not above


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--keep", action="store_true")
    options = parser.parse_args()
    of, here = kept()[2], made_by()
    if not options.keep and of != here:
        print(f"Nothing compared: the kept figures are of {of}; here is {here}.")
        return
    try:
        measured = measure(options.build)
        if options.keep:
            keep(measured)
        elif not compare(measured):
            sys.exit(1)
    except callgrind.Failed as failure:
        sys.exit(f"instructions.py: {failure}")


if __name__ == "__main__":
    main()
