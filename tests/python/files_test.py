"""Whole files."""
import io
import json
import os
import pathlib
import signal
import subprocess
import sys
import threading
import time

import pytest

import aceconv

EXAMPLES = pathlib.Path(os.environ["ACECONV_SOURCE"]) / "examples"
BASE = EXAMPLES / "border-filter.json"


def command(*args):
    return subprocess.run([os.environ["ACECONV"], *map(str, args)], capture_output=True,
                          check=False).stdout


def test_iter_entries():
    source = json.loads(BASE.read_text())["aceconv-base:acls"]["acl"]
    expected = [(acl["name"], entry) for acl in source for entry in acl["entry"]]
    for file in (BASE, str(BASE), io.BytesIO(BASE.read_bytes())):
        entries = list(aceconv.iter_entries(file))
        assert [(e.list, json.loads(e.data)) for e in entries] == expected
    assert [e.ordinal for e in entries] == list(range(1, len(expected) + 1))
    assert {e.schema for e in entries} == {"base"}


def test_iter_entries_stops_early_and_at_faults(tmp_path):
    lines = tmp_path / "many.ndjson"
    lines.write_text('{"sequence-number":1,"grant":"permit"}\n' * 200000)
    before = threading.active_count()
    entries = aceconv.iter_entries(lines, schema="base")
    assert next(entries).sequence == 1
    entries.close()
    assert threading.active_count() == before
    lines.write_text('{"sequence-number":1}\n{"sequence-number":0x}\n{"sequence-number":3}\n')
    entries = aceconv.iter_entries(lines, schema="base")
    assert next(entries).sequence == 1
    with pytest.raises(aceconv.AceconvError) as caught:
        next(entries)
    assert caught.value.line == 2
    faults = []
    found = list(aceconv.iter_entries(lines, schema="base", on_fault=faults.append))
    assert [e.sequence for e in found] == [1, 3] and [f.line for f in faults] == [2]
    with pytest.raises(FileNotFoundError):
        next(aceconv.iter_entries(tmp_path / "missing"))
    with pytest.raises(TypeError, match="opened for text"):
        next(aceconv.iter_entries(io.StringIO("{}")))


@pytest.mark.parametrize("options", [{}, {"format": "ndjson"}, {"format": "xml"}, {"jobs": 2}])
def test_files_are_the_commands(tmp_path, options):
    bags, text, other = (tmp_path / name for name in ("bags", "text", "other"))
    tally, losses = aceconv.encode_file(BASE, bags)
    assert bags.read_bytes() == command("encode", "-q", BASE)
    assert (tally.entries, tally.faults, losses) == (len(list(aceconv.iter_entries(BASE))), 0, [])
    aceconv.decode_file(bags, text, **options)
    form = ["--format", options.get("format", "json")]
    assert text.read_bytes() == command("decode", "-q", *form, bags)
    tally, losses = aceconv.convert_file(bags, other, to="um", **options)
    assert other.read_bytes() == command("convert", "-q", "--to", "um", *form, bags)
    assert tally.losses == len(losses)


def test_faults_and_what_becomes_of_the_target(tmp_path):
    source, target = tmp_path / "in", tmp_path / "out"
    source.write_text('{"sequence-number":1}\n{"sequence-number":2,"x":1}\n{"sequence-number":3}\n')
    target.write_text("before")
    target.chmod(0o640)
    with pytest.raises(aceconv.DataError) as caught:
        aceconv.convert_file(source, target, to="um", schema="base")
    assert caught.value.line == 2
    with pytest.raises(ZeroDivisionError):
        aceconv.convert_file(source, target, to="um", schema="base", on_fault=lambda f: 1 / 0)
    assert target.read_text() == "before" and set(os.listdir(tmp_path)) == {"in", "out"}
    faults = []
    tally, _ = aceconv.convert_file(source, target, to="um", schema="base", format="ndjson",
                                    on_fault=faults.append)
    assert (tally.entries, tally.faults, len(faults)) == (3, 1, 1)
    assert len(target.read_text().splitlines()) == 2
    assert target.stat().st_mode & 0o777 == 0o640
    with pytest.raises(OSError):
        aceconv.convert_file(source, tmp_path / "no" / "out", to="um", schema="base")


def test_losses_of_files(tmp_path):
    source, target = tmp_path / "in", tmp_path / "out"
    source.write_text('{"sequence-number":7,"grant":"deny","sequence-str":"ten"}\n')
    tally, losses = aceconv.convert_file(source, target, to="um", schema="base")
    assert (tally.losses, [(loss.sequence, loss.leaf) for loss in losses]) == (
        1, [(7, "sequence-str")])
    seen = []
    assert aceconv.convert_file(source, target, to="um", schema="base",
                                on_loss=seen.append)[1] == []
    assert seen == losses


def test_progress_and_interruption(tmp_path):
    """An endless input: progress is told, and what it raises and Control-C end the run."""
    program = tmp_path / "run.py"
    program.write_text("""
import os, sys, threading, aceconv
reader, writer = os.pipe()
def feed():
    while True:
        os.write(writer, b'{"sequence-number":1,"grant":"permit"}\\n' * 100)
threading.Thread(target=feed, daemon=True).start()
def progress(done, size, entries):
    assert done > 0 and size is None
    print("at work", flush=True)
    if sys.argv[1] == "raise":
        raise LookupError("enough")
try:
    aceconv.convert_file(reader, sys.argv[2], to="um", schema="base", progress=progress)
except (KeyboardInterrupt, LookupError) as e:
    print(type(e).__name__, flush=True)
    os._exit(0)
""")
    for how, ended in (("raise", "LookupError"), ("interrupt", "KeyboardInterrupt")):
        target = tmp_path / "out"
        with subprocess.Popen([sys.executable, program, how, target], text=True,
                              stdout=subprocess.PIPE) as run:
            assert run.stdout.readline() == "at work\n"
            if how == "interrupt":
                time.sleep(0.05)
                run.send_signal(signal.SIGINT)
            assert run.stdout.read().splitlines()[-1] == ended
            assert run.wait(60) == 0
        assert os.listdir(tmp_path) == ["run.py"]
