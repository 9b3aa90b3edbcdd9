"""The examples and the documentation of the package."""
import inspect
import os
import pathlib
import re
import subprocess
import sys

import aceconv
import aceconv.testing

SOURCE = pathlib.Path(os.environ["ACECONV_SOURCE"])


def run(*args, **more):
    return subprocess.run([sys.executable, "-B", *map(str, args)], capture_output=True, text=True,
                          timeout=300, **more)


def test_audit():
    done = run("audit_reply.py", "reply.xml", cwd=SOURCE / "examples/python")
    assert (done.returncode, done.stderr) == (1, "")
    assert done.stdout == ("edge-in 20: permits telnet from anywhere\n"
                           "3 entries looked at\n")


def test_migration(tmp_path):
    for name in ("border-filter", "qos-nexthop"):
        (tmp_path / f"{name}.json").write_bytes((SOURCE / f"examples/{name}.json").read_bytes())
    done = run(SOURCE / "examples/python/migrate_folder.py", tmp_path, tmp_path / "um")
    assert done.returncode == 0, done.stderr
    assert {p.name for p in (tmp_path / "um").iterdir()} == {"border-filter.json",
                                                             "qos-nexthop.json"}
    assert re.search(r"^border-filter.json +\d+ entries +\d+ losses$", done.stdout, re.M)


def test_property():
    done = run("-m", "pytest", "-q", "-p", "no:cacheprovider",
               SOURCE / "examples/python/property_test.py", cwd="/tmp")
    assert done.returncode == 0, done.stdout


def test_everything_public_is_documented():
    for name in aceconv.__all__:
        thing = getattr(aceconv, name)
        if inspect.isclass(thing) or inspect.isfunction(thing):
            assert thing.__doc__ and "(" not in thing.__doc__.split("\n")[0][:len(name) + 1], name
    for name, method in inspect.getmembers(aceconv.Converter, inspect.isfunction):
        assert name.startswith("_") or method.__doc__, name


def test_documentation_runs():
    """The blocks of docs/python.md, one after the other."""
    blocks = re.findall(r"```python\n(.*?)```", (SOURCE / "docs/python.md").read_text(), re.S)
    assert len(blocks) > 3
    done = run("-c", "\n".join(blocks), cwd=SOURCE / "examples")
    assert done.returncode == 0, done.stderr
    assert list(SOURCE.glob("examples/*.tmp")) == []
