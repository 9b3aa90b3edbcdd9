"""Measurements as tables in GitHub's Markdown."""
import statistics

from contenders import run_name


def table(head, rows):
    lines = (f"| {' | '.join(cells)} |" for cells in (head, ["---"] * len(head), *rows))
    return "\n".join(lines).replace("|  |", "| |") + "\n"


def reference(rows):
    return rows["aceconv " + run_name("encode", "base")]


def contender_table(rows, count):
    def cells(row):
        low, high = (1e6 * seconds / count for seconds in row.spread())
        return [
            row.contender.name,
            f"{row.ratio_to(reference(rows)):.2f}",
            f"{1e6 * row.seconds() / count:.2f}",
            "one run" if len(row.samples) == 1 else f"{low:.2f} to {high:.2f}",
            f"{1e6 * row.processor() / count:.2f}",
            f"{count / row.seconds():,.0f}",
            f"{row.peak:.1f}",
            f"{round(row.peak - row.rest, 1) + 0:.1f}",  # without a negative zero
        ]

    return table(["", "Ratio", "us an entry", "Spread", "Processor us", "Entries a second",
                  "Peak MB", "Above rest"], map(cells, rows.values()))


def cold_table(rows):
    def cells(row):
        seconds = [1e3 * sample.seconds for sample in row.samples]
        low, _, high = statistics.quantiles(seconds, n=4)
        return [row.contender.name, f"{row.ratio_to(reference(rows)):.2f}",
                f"{1e3 * row.seconds():.2f}", f"{low:.2f} to {high:.2f}"]

    return table(["", "Ratio", "ms", "Quartiles"], map(cells, rows.values()))
