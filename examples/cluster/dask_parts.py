#!/usr/bin/env python3
"""part.sh for each of some parts, on the workers of Dask.

usage: dask_parts.py LINES PART... -- ARGUMENTS OF aceconv

DASK_SCHEDULER_ADDRESS names the scheduler; without it the workers are processes of this machine.
All see the parts and aceconv under the same paths. Messages come in the order of the parts, and
the first part that fails ends it all with its exit code.
"""
import pathlib
import subprocess
import sys

from distributed import Client

PART = str(pathlib.Path(__file__).resolve().with_name("part.sh"))


def convert(part, lines, arguments):
    done = subprocess.run([PART, lines, part, *arguments], capture_output=True, check=False)
    return done.returncode, done.stderr.decode()


def main(lines, *more):
    end = more.index("--")
    parts = [str(pathlib.Path(part).resolve()) for part in more[:end]]
    with Client() as client:
        tasks = client.map(convert, parts, lines=lines, arguments=more[end + 1:], pure=False)
        for task in tasks:
            code, said = task.result()
            sys.stderr.write(said)
            if code != 0:
                client.cancel(tasks)
                return code
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
