"""Measurements as tables in GitHub's Markdown."""
import statistics
from dataclasses import dataclass

from contenders import (CONVERT, DECODE, ENCODE, LARGE, VALIDATING, WALK, YANGLINT, YANGLINT_EDIT,
                        workers)

SMALLEST, LARGEST = 10_000, 1_000_000  # between these an entry's time must not grow


def print_table(head, rows):
    for cells in (head, ["---"] * len(head), *rows):
        print(f"| {' | '.join(cells)} |".replace("|  |", "| |"))


def contender_table(rows, count):
    reference = rows[workers(ENCODE, 1)]

    def cells(row):
        low, high = (1e6 * seconds / count for seconds in row.spread())
        once = len(row.timed()) == 1
        return [
            row.contender.name,
            f"{row.ratio_to(reference):.2f}",
            f"{1e6 * row.seconds() / count:.2f}",
            "one run" if once else f"{low:.2f} to {high:.2f}",
            f"{1e6 * row.processor() / count:.2f}",
            f"{count / row.seconds():,.0f}",
            f"{row.peak:.1f}",
            f"{round(row.peak - row.rest, 1) + 0:.1f}",  # without a negative zero
        ]

    print_table(["", "Ratio", "us an entry", "Spread", "Processor us", "Entries a second",
                 "Peak MB", "Above rest"], map(cells, rows.values()))


def cold_table(rows):
    reference = rows[workers(ENCODE, 1)]

    def cells(row):
        seconds = [1e3 * sample.seconds for sample in row.samples]
        low, _, high = statistics.quantiles(seconds, n=4)
        return [row.contender.name, f"{row.ratio_to(reference):.2f}",
                f"{1e3 * row.seconds():.2f}", f"{low:.2f} to {high:.2f}"]

    print_table(["", "Ratio", "ms", "Quartiles"], map(cells, rows.values()))


@dataclass
class Target:
    what: str
    wanted: str  # "at least" or "at most"
    bound: float
    measured: float  # None where the run has not what it takes
    unit: str = " times"

    def verdict(self):
        if self.measured is None:
            return "not measured"
        good = self.measured >= self.bound if self.wanted == "at least" else (
            self.measured <= self.bound)
        return "met" if good else "not met"

    def cells(self):
        measured = "" if self.measured is None else f"{self.measured:.2f}{self.unit}"
        return [self.what, f"{self.wanted} {self.bound:g}{self.unit}", measured, self.verdict()]


def targets(results, cold):
    """results: rows by name, by number of entries."""
    at = LARGE if LARGE in results else max(results)
    one_encode, one_convert = workers(ENCODE, 1), workers(CONVERT, 1)

    def ratio(slower, faster, rows=results[at]):
        return rows[slower].ratio_to(rows[faster])

    def an_entry(name, count):
        return results[count][name].seconds() / count

    def growth(name):
        if SMALLEST not in results or LARGEST not in results:
            return None
        return an_entry(name, LARGEST) / an_entry(name, SMALLEST)

    memory = max(row.peak - row.rest for rows in results.values() for name, row in rows.items()
                 if name.startswith("aceconv"))
    size = f"{at:,} entries"
    yield Target(f"encode against the simdjson walk, {size}", "at most", 4,
                 ratio(one_encode, WALK))
    yield Target(f"encode faster than yanglint, validated, {size}", "at least", 25,
                 ratio(YANGLINT, one_encode))
    yield Target(f"encode faster than yanglint, `-t edit`, {size}", "at least", 12,
                 ratio(YANGLINT_EDIT, one_encode))
    yield Target(f"convert faster than yanglint, validated, {size}", "at least", 13,
                 ratio(YANGLINT, one_convert))
    for name in (ENCODE, DECODE, CONVERT):
        yield Target(f"{name.split()[1]}, two workers against one, {size}", "at least", 1.8,
                     ratio(workers(name, 1), workers(name, 2)))
    for name in (ENCODE, DECODE, CONVERT):
        yield Target(f"{name.split()[1]}, time an entry, {LARGEST:,} against "
                     f"{SMALLEST:,} entries", "at most", 1.15, growth(workers(name, 1)))
    yield Target("memory above rest, largest of all runs of aceconv", "at most", 30, memory, " MB")
    yield Target(f"validating backend faster than yanglint, validated, {size}", "at least", 2,
                 ratio(YANGLINT, VALIDATING))
    yield Target("cold start against yanglint's, one entry", "at most", 1,
                 ratio(one_encode, YANGLINT, cold))


def target_table(results, cold):
    print_table(["Target", "Wanted", "Measured", ""],
                [target.cells() for target in targets(results, cold)])
