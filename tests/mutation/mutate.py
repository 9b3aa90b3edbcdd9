#!/usr/bin/env python3
"""Changes one line at a time at random and tells which changes the tests miss.

    ./dev mutate [-n COUNT] [--seed SEED] [FOLDER...]

Works on a copy of the tree with a build folder of its own (build/mutation). A
change that does not compile, or compiles to the same object file, does not
count. Survivors are printed as diffs: each is either a gap in the tests or a
change that makes no difference, which only a reader can tell.
"""
import argparse
import hashlib
import pathlib
import random
import re
import signal
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
COPY = ROOT / "build" / "mutation"
FOLDERS = ["host", "stream", "compare", "converter", "tools"]
TIMEOUT = 120  # seconds that a build or the tests may take

# What is changed into what: the first group is replaced.
CHANGES = [(re.compile(pattern), replacement) for pattern, replacement in [
    (r" (==) ", "!="), (r" (!=) ", "=="), (r" (<) ", "<="), (r" (<=) ", "<"),
    (r" (>) ", ">="), (r" (>=) ", ">"), (r" (&&) ", "||"), (r" (\|\|) ", "&&"),
    (r" (\+) ", "-"), (r" (-) ", "+"), (r" (&) ", "|"), (r" (\+=) ", "-="),
    (r"\b(true)\b", "false"), (r"\b(false)\b", "true"),
    (r"if \((?!const|auto|std::\w+ \w+ =)(?=[^;]*\) \{$)()", "!"),
    (r"return (?=[^;]+ && [^;]+;$)()", "!"),
    (r"\b(\d+)U?\b(?![.x'])", None),  # a number becomes the next one
    (r"^\s+((?!return|break|continue|case|default|using|const|auto|throw|[A-Z]\w+ \w+[;(={])"
     r"[\w.\->:\[\]*+]+(?:\(.*\)| [-+|&]?= .*|\+\+);)$", ";"),  # a statement goes
    (r"^\s+(break;)$", ";"), (r"^\s+(continue;)$", ";"),
    (r'"([^"]{4,})"', "mutated"),  # a text
]]


def candidates(folders):
    files = subprocess.check_output(["git", "ls-files", "--", *folders], cwd=ROOT, text=True)
    for name in files.split():
        if not name.endswith((".cpp", ".h")):
            continue
        for number, line in enumerate((ROOT / name).read_text().splitlines()):
            code = line.split("//")[0].rstrip()
            if code.startswith(("#", "}")) or "static_assert" in code:
                continue
            for pattern, replacement in CHANGES:
                for match in pattern.finditer(code):
                    yield name, number, match.span(1), replacement


def changed(line, span, replacement):
    old = line[span[0]:span[1]]
    new = replacement if replacement is not None else str(int(old) + 1)
    return line[:span[0]] + new + line[span[1]:]


known_objects = {}


def objects():
    """The digests of the object files; what has not been written since is not read again."""
    for path in (COPY / "build/dev").rglob("*.o"):
        written = path.stat().st_mtime_ns
        if known_objects.get(path, (0,))[0] != written:
            known_objects[path] = written, hashlib.sha1(path.read_bytes()).digest()
    return {path: digest for path, (_, digest) in known_objects.items()}


def run(command, timeout=TIMEOUT):
    """The exit code, or None when it took too long."""
    process = subprocess.Popen(command, cwd=COPY, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        return process.wait(timeout)
    except subprocess.TimeoutExpired:
        subprocess.run(["pkill", "-KILL", "-s", str(process.pid)], check=False)
        process.send_signal(signal.SIGKILL)
        process.wait()
        return None


def build(timeout=TIMEOUT):
    return run(["cmake", "--build", "build/dev", "--", "--quiet"], timeout) == 0


def passes(timeout=TIMEOUT):
    """Whether the tests pass; the quickest run first, the plug-in's, which know nothing
    of these folders, last."""
    ctest = ["ctest", "--test-dir", "build/dev", "-j2", "--stop-on-failure"]
    groups = [["-E", "^(command|plugin)"], ["-R", "^command"], ["-R", "^plugin"]]
    return all(run([*ctest, *group], timeout) == 0 for group in groups)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("-n", type=int, default=50, help="changes that count (50)")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("folders", nargs="*", default=FOLDERS)
    options = parser.parse_args()
    # The latest commit, so that what is being edited meanwhile does not disturb.
    if not COPY.exists():
        subprocess.run(["git", "clone", "-q", str(ROOT), str(COPY)], check=True)
    subprocess.run(["git", "fetch", "-q", "origin", "HEAD"], cwd=COPY, check=True)
    subprocess.run(["git", "checkout", "-q", "-f", "FETCH_HEAD"], cwd=COPY, check=True)
    # Without what a debugger needs, which tells lines apart that do the same.
    flags = ["-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DCMAKE_C_FLAGS_DEBUG=-O0"]
    if run(["cmake", "--preset", "dev", *flags]) != 0 or not build(None):
        sys.exit("the tree itself does not build")
    if not passes(None):
        sys.exit("the tests fail on the tree as it is")
    places = list(candidates(options.folders))
    random.Random(options.seed).shuffle(places)
    caught, survivors = 0, 0
    for name, number, span, replacement in places:
        if caught + survivors == options.n:
            break
        path = COPY / name
        original = path.read_text()
        lines = original.splitlines(keepends=True)
        before = lines[number]
        lines[number] = changed(before, span, replacement)
        kept = objects()
        path.write_text("".join(lines))
        if build() and objects() != kept:
            if passes():
                survivors += 1
                print(f"survives: {name}:{number + 1}\n-{before}+{lines[number]}", flush=True)
            else:
                caught += 1
                print(f"{caught} noticed", end="\r", file=sys.stderr, flush=True)
        path.write_text(original)
    print(f"{caught} of {caught + survivors} changes noticed")


if __name__ == "__main__":
    main()
