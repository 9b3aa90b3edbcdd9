"""Runs whole processes and measures their time and memory."""
import os
import pathlib
import statistics
import subprocess
import time
from collections.abc import Callable
from dataclasses import dataclass, field

SLOW_ROUNDS = 2


class Failed(Exception):
    """A contender that fails, or leaves entries out, spoils the run."""


@dataclass
class Contender:
    name: str
    command: list
    source: pathlib.Path  # standard input
    complete: Callable[[pathlib.Path], bool]  # whether an output holds all entries
    at_rest: list = None  # the command for an empty input, where standard input is not read
    slow: bool = False  # takes part in the first rounds only


@dataclass
class Sample:
    seconds: float
    processor: float  # seconds of all its threads


@dataclass
class Row:
    """What was measured of a contender at one number of entries."""
    contender: Contender
    samples: list = field(default_factory=list)
    peak: float = 0  # MB
    rest: float = 0  # MB, with an empty input

    def seconds(self):
        return statistics.median(sample.seconds for sample in self.samples)

    def ratio_to(self, *others):
        """How many times as long as the others together: the median of the rounds' ratios,
        since a round's runs stand close together and the machine may drift between rounds."""
        rounds = zip(self.samples, *(other.samples for other in others))
        return statistics.median(
            mine.seconds / sum(other.seconds for other in theirs) for mine, *theirs in rounds)

    def processor(self):
        return statistics.median(sample.processor for sample in self.samples)

    def spread(self):
        seconds = [sample.seconds for sample in self.samples]
        return min(seconds), max(seconds)


def run(name, command, source, output):
    """One run from start to end."""
    errors = output.with_suffix(".stderr")
    with open(source, "rb") as stdin, open(output, "wb") as stdout, open(errors, "wb") as stderr:
        start = time.perf_counter()
        process = subprocess.Popen(
            [str(word) for word in command], stdin=stdin, stdout=stdout, stderr=stderr
        )
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise Failed(f"{name}: exit {process.returncode}: {errors.read_text()[:400]}")
    return Sample(seconds, usage.ru_utime + usage.ru_stime)


def run_for_memory(name, command, source, output):
    """One run and its peak of resident memory in MB.

    What wait4 says of memory counts the process that forked, which `time` keeps small.
    """
    memory = output.with_suffix(".memory")
    sample = run(name, ["time", "-q", "-f", "%M", "-o", memory, *command], source, output)
    return sample, int(memory.read_text()) / 1024


def check(contender, output):
    if not contender.complete(output):
        raise Failed(f"{contender.name}: the output does not hold all entries")


def measure(contenders, rounds, work):
    """All contenders once a round, so that each meets the same machine; rows by name.

    A round before the others measures memory, and warms the caches.
    """
    output = work / "output"
    rows = {contender.name: Row(contender) for contender in contenders}
    for row in rows.values():
        one = row.contender
        _, row.rest = run_for_memory(one.name, one.at_rest or one.command, os.devnull, output)
        _, row.peak = run_for_memory(one.name, one.command, one.source, output)
        check(one, output)
    for number in range(rounds):
        for row in rows.values():
            one = row.contender
            if not one.slow or number < SLOW_ROUNDS:
                row.samples.append(run(one.name, one.command, one.source, output))
                check(one, output)
    output.unlink()
    return rows
