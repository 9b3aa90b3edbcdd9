"""The plug-in over the minimal host: instructions and nanoseconds a conversion."""
import json
import subprocess

import instructions
from measuring import Failed
from tables import table

PREFIX = "plug-in/"
OWNERS = (("libipv4_acl_ace", "plug-in"), ("libsafec", "libsafec"), ("libc.", "libc"),
          ("ld-linux", "libc"), ("", "host"))


def by_owner(costs):
    sums = dict.fromkeys(("plug-in", "libsafec", "libc", "host"), 0)
    for (where, _), cost in costs.items():
        sums[next(owner for start, owner in OWNERS if where.startswith(start))] += cost
    return sums


def counted(build):
    """Instructions of a conversion by who executes them, by case."""
    measured = instructions.measure(build, lambda name: name.startswith(PREFIX))
    return {name.removeprefix(PREFIX): by_owner(costs) for name, costs in measured.items()}


def instruction_table(owners):
    rows = ([name, *(f"{figure:,.0f}" for figure in (sum(costs.values()), *costs.values()))]
            for name, costs in owners.items())
    return table(["", "Total", "Plug-in", "libsafec", "libc", "Host"], rows)


def timed(build, repetitions, seconds):
    """Google Benchmark's aggregates by case."""
    done = subprocess.run(
        [build / "bin/converter_bench", "--benchmark_format=json",
         f"--benchmark_repetitions={repetitions}", f"--benchmark_min_time={seconds}",
         "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true"],
        check=False, capture_output=True, text=True)
    if done.returncode != 0:
        raise Failed(f"converter_bench: {done.stderr}")
    cases = {}
    for run in json.loads(done.stdout)["benchmarks"]:
        if run.get("error_occurred"):
            raise Failed(f"{run['name']}: {run['error_message']}")
        cases.setdefault(run["run_name"], {})[run["aggregate_name"]] = run
    return cases


def time_table(cases):
    rows = ([name, f"{case['median']['nodes']:.0f}",
             *(f"{case[aggregate]['cpu_time']:,.0f}" for aggregate in ("median", "mean", "stddev"))]
            for name, case in sorted(cases.items()))
    return table(["", "Nodes", "Median", "Mean", "Deviation"], rows)
