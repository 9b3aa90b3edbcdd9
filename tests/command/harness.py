"""Runs the command for the tests."""
import json
import os
import pathlib
import re
import resource
import signal
import subprocess
import tempfile
import unittest

ACECONV = os.environ["ACECONV"]
EXAMPLES = pathlib.Path(os.environ["ACECONV_SOURCE"]) / "examples"
LONG = "ACECONV_LONG_TESTS" in os.environ
SUMMARY = re.compile(r"aceconv: (stopped: )?((\d+ entr(y matches|ies match) more than before; )?"
                     r"\d+ entr(y|ies), \d+ errors?.*); [\d.]+ s, "
                     r"\d+ entries a second\n\Z")
TIMES = re.compile(r"; \d+\.\d+ s, \d+ entries a second")
VERDICTS = re.compile(r"(aceconv: (.*: \d+ entr(y|ies), \d+ errors?.*|\d+ (inputs?|other files?) not read"
                      r".*)\n)+\Z")
MODULE = {"base": "aceconv-base", "um": "aceconv-um"}

# Under nohup and in background jobs these come ignored, and would be for the command.
for sign in (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT):
    signal.signal(sign, signal.SIG_DFL)
resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
# Sanitizers would take these signals for themselves.
for name in ("ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"):
    os.environ[name] = os.environ.get(name, "") + ":handle_segv=0:handle_sigbus=0"


def document(schema, *lists):
    """A JSON document of (name, entries) lists."""
    return json.dumps({MODULE[schema] + ":acls": {
        "acl": [{"name": name, "entry": entries} for name, entries in lists]}})


def numbered(*entries):
    return [{"sequence-number": 10 * (i + 1), **entry} for i, entry in enumerate(entries)]


class Case(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.dir = pathlib.Path(self.folder.name)

    def file(self, name, content):
        path = self.dir / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return str(path)

    def run_command(self, *args, stdin=b"", **more):
        """(exit code, standard output as bytes, standard error as text); the summary at the end
        of the latter is left out and kept."""
        data = stdin if isinstance(stdin, bytes) else stdin.encode()
        done = subprocess.run([ACECONV, *map(str, args)], input=data, capture_output=True,
                              timeout=120, check=False, **more)
        found = SUMMARY.search(said := done.stderr.decode())
        self.summary = found.group() if found else ""
        said = said[:len(said) - len(self.summary)]
        found = VERDICTS.search(said)
        self.verdicts = found.group() if found else ""
        said = said[:len(said) - len(self.verdicts)]
        return done.returncode, done.stdout, said

    def ok(self, *args, stdin=b"", **more):
        """Standard output of a run that must succeed and say nothing."""
        code, out, err = self.run_command(*args, stdin=stdin, **more)
        self.assertEqual((code, err), (0, ""), args)
        return out

    def records(self, *args, stdin=b""):
        """inspect --json, a dictionary an entry."""
        lines = self.ok("inspect", "--json", "--no-losses", *args, stdin=stdin).splitlines()
        return [json.loads(line) for line in lines]

    def fields(self, entry, schema):
        """The fields of one entry by name, without the place in the record."""
        record, = self.records("--schema", schema, stdin=json.dumps(entry))
        return {f["name"]: f.get("value") for f in record["fields"]}
