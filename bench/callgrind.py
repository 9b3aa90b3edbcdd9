"""Instructions that a command executes, counted by valgrind's callgrind.

valgrind shows a program one and the same processor wherever it runs, if only the real
one has AVX2, so that libc and simdjson choose the same code; addresses are not random.
What is left between two counts of one program is a few instructions.
"""
import os
import pathlib
import re
import subprocess
import tempfile
from collections import Counter


class Failed(Exception):
    """The command failed, or cannot be counted here."""


def short(function):
    """A function's name without parameters and what the compiler made of it."""
    name = re.sub(r"'\d+$|\[clone .*|\[abi:\w+\]", "", function).replace("(anonymous namespace)::", "")
    return re.sub(r"\(.*", "", name.replace("operator()", "operator call"))[:100].strip()


def parse(lines):
    """Self cost by (object, function)."""
    costs, where, function = Counter(), "", ""
    lines = iter(lines)
    for line in lines:
        if line.startswith("ob="):
            where = line[3:].strip().rpartition("/")[2]
        elif line.startswith("fn="):
            function = short(line[3:].strip())
            if function.startswith("0x"):
                function = "unnamed"
        elif line.startswith("calls="):
            next(lines)  # what the callee took, counted with the callee
        elif line[0].isdigit():
            costs[where, function] += int(line.split()[1])
    return costs


def count(command, ends_with=(0,), environment=None):
    """The instructions of one run, by (object, function)."""
    with tempfile.TemporaryDirectory() as directory:
        out = pathlib.Path(directory) / "callgrind"
        done = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={out}",
             "--compress-strings=no", "--compress-pos=no", *map(str, command)],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
            check=False, text=True, env={**os.environ, **(environment or {})})
        if done.returncode not in ends_with:
            raise Failed(f"{' '.join(map(str, command))}: exit {done.returncode}\n{done.stderr}")
        with open(out, encoding="utf-8") as file:
            return parse(line for line in file if line.strip())


def of_one(command_for, few, many, ends_with=(0,)):
    """What one of many takes: the difference of two runs, so that start-up cancels."""
    before, after = (count(command_for(number), ends_with) for number in (few, many))
    after.subtract(before)
    return {at: cost / (many - few) for at, cost in after.items() if cost}
