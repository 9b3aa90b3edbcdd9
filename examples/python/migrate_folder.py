"""Migrates a folder of base access lists to the UM schema, with a table of what was lost."""
import pathlib
import sys
from collections import Counter

import aceconv

source, target = map(pathlib.Path, sys.argv[1:3])
target.mkdir(exist_ok=True)
leaves = Counter()
for path in sorted(source.glob("*.json")):
    try:
        tally, losses = aceconv.convert_file(path, target / path.name, to="um", schema="base")
    except aceconv.AceconvError as fault:
        sys.exit(f"{path}: {fault}")
    print(f"{path.name:30} {tally.entries:6} entries {tally.losses:6} losses")
    leaves.update((loss.leaf, loss.reason) for loss in losses)
for (leaf, reason), count in leaves.most_common():
    print(f"{count:6}  {leaf}: {reason}")
