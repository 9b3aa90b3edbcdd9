"""Calls that fail, by failing_calls.c: each call of a run in turn, once and for good."""
import collections
import concurrent.futures
import errno
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import unittest

from harness import ACECONV, LONG, TIMES, Case, document, numbered

FOR_GOOD = 1 << 30
LOSSY = {"permit": {"police": {"value": 1}}}
GOOD = {"grant": "deny", "remark": "r", "protocol": 6}
RUNS = (
    "encode um.json -o old --report old.report", "encode um.xml --backend validating -o out",
    "encode lines --schema base --keep-going --errors errors --junit junit",
    "encode base.json --stored stored -o out", "encode --trace um.json -o out",
    "decode bags -o old --report report", "decode bags --format xml --backend validating -o out",
    "decode hex --format ndjson --junit junit",
    "convert um.json --to base --format xml -o old --report report --errors old.errors --junit junit",
    "convert um.xml --to base --format ndjson --backend validating -o out",
    "convert folder --to base --output-dir made/outs --report old.report",
    "inspect bags -o out --report report", "inspect um.xml --json --backend validating",
    "check um.json --json --report report --errors errors", "check um.xml --backend validating --junit junit",
    "diff um.json base.json --json --report report --errors errors",
    "diff um.xml base.json --backend validating --junit junit",
    "convert um.json --to base --html old.html -o out --report report --junit junit",
    "diff um.json base.json --by content --acl X=X --html page", "inspect bags --html page",
    "check um.json --html page --json", "lint um.json --html page --backend validating",
    "lint um.json --json --errors errors --junit junit", "lint base.json --backend validating",
    "explain permit/police/value --json", "schema um --tree", "schema base --json", "help convert", "--version",
    "encode nameless -o out",  # entries that wait for their list's name
    "convert many --schema base --to um --no-losses --format ndjson -j 3 -o old",
)
LARGE = ("nameless", "many")
# Each call, the errors that it has, and what may come of them: the run fails, it does without the call, or either.
CALLS = (
    ("malloc", errno.ENOMEM, "fails"), ("read", errno.EIO, "fails"), ("pread", errno.EIO, "fails"),
    ("write", errno.ENOSPC, "fails"), ("open", errno.EMFILE, "either"), ("openat", errno.EMFILE, "fails"),
    ("close", errno.EIO, "either"),  # of inputs and folders
    ("mkostemp", errno.ENOSPC, "fails"), ("fsync", errno.EIO, "fails"), ("rename", errno.EIO, "fails"),
    ("renameat2", errno.EIO, "fails"), ("renameat2", errno.EINVAL, "same"), ("unlink", errno.EIO, "same"),
    ("mkdir", errno.ENOSPC, "fails"), ("fdopendir", errno.EMFILE, "fails"), ("readdir", errno.EIO, "fails"),
    # What they tell may be found again when a file is opened, or is not needed then.
    *((name, errno.EIO, "either") for name in ("stat", "lstat", "fstat", "realpath", "readlink")),
    ("fchmod", errno.EPERM, "either"), ("fchown", errno.EPERM, "either"), ("poll", errno.ENOMEM, "either"),
    # libyang reads the modules then.
    ("fopen", errno.EMFILE, "either"), ("fread", errno.EIO, "either"), ("mmap", errno.ENODEV, "fails"),
    ("dlopen", errno.EMFILE, "fails"),
    ("pthread_create", errno.EAGAIN, "either"),  # fewer threads do as well
    *((name, error, "same") for name in ("read", "pread", "write") for error in (errno.EINTR, 0)),
)
TEST_TIME = re.compile(rb' (time|timestamp)="[^"]*"|<time>[^<]*')
Outcome = collections.namedtuple("Outcome", "code out err files")


def generated(count):
    return subprocess.run([os.environ["ACECONV_GENERATOR"], str(count)], check=True, capture_output=True).stdout


@unittest.skipUnless("ACECONV_FAILING" in os.environ, "sanitizers have an allocator of their own")
class Failing(Case):
    def with_failing(self, call, run, folder=None, **env):
        env = {**os.environ, "LD_PRELOAD": os.environ["ACECONV_FAILING"], "FAIL": call, "TMPDIR": ".", **env}
        folder = folder or self.dir
        done = subprocess.run([ACECONV, *run.split()], cwd=folder, env=env, capture_output=True, check=False,
                              timeout=1200 if LONG else 120, stdin=subprocess.DEVNULL)
        return Outcome(done.returncode, done.stdout, TIMES.sub("", done.stderr.decode()),
                       {str(path.relative_to(folder)): path.is_file() and TEST_TIME.sub(b"", path.read_bytes())
                        for path in folder.rglob("*")})

    def in_folder(self, call, run, **env):
        """The outcome in a folder of the inputs."""
        with tempfile.TemporaryDirectory(dir=self.dir) as name:
            folder = pathlib.Path(name) / "in"
            shutil.copytree(self.inputs, folder, copy_function=os.link)
            return self.with_failing(call, run, folder, **env)

    def make_inputs(self):
        self.inputs = self.dir / "inputs"
        (self.inputs / "folder").mkdir(parents=True)
        um, base = document("um", ("X", numbered(LOSSY, {"remark": "<r>"}))), document("base", ("X", numbered(GOOD, GOOD)))
        for name, content in (
                ("um.json", um), ("base.json", base), ("folder/a.json", um), ("folder/b.json", um),
                ("lines", '{"grant":"deny"}\n{"grant":"drop"}\n{"remark":"r"}\n'),
                ("um.xml", self.ok("convert", "--to", "um", "--format", "xml", stdin=um)),
                ("bags", bags := self.ok("encode", stdin=um)), ("hex", bags.hex()),
                ("stored", self.ok("encode", stdin=base)),
                *((name, "old\n") for name in ("old", "old.report", "old.errors", "old.html")),
                ("many", generated(count=6000)),
                ("nameless", '{"aceconv-base:acls":{"acl":[{"entry":[%s],"name":"X"}]}}' % ",".join(
                    '{"sequence-number":%d,"remark":"%s"}' % (n, "r" * 10000) for n in range(1, 60)))):
            self.file(self.inputs / name, content)

    def fault(self, run, whole, name, error, expected, at, count):
        """(exit code, what is wrong, if anything) when the call fails."""
        got = self.in_folder(f"{name} {at} {count} {error}", run)
        if name == "unlink":  # the only thing that may leave a temporary file
            got = got._replace(files={path: got.files[path] for path in got.files if not path.startswith(".")})
        said = (got.err.splitlines() or [""])[-1]
        failed = (got.code == 3 and got.files == self.before and whole.out.startswith(got.out)
                  and said.startswith("aceconv: ") and (said == "aceconv: out of memory" or name != "malloc"))
        if (got == whole and expected != "fails") or (failed and expected != "same"):
            return got.code, None
        return got.code, (run, name, errno.errorcode.get(error), at, count, got.code, said, got == whole,
                          [path for path in got.files if got.files[path] != self.before.get(path)])

    def test_each_allocation(self):
        """Each in a twin of the process, which ends, while the run itself goes on to the same as ever."""
        self.make_inputs()
        log, tries = self.dir / "calls", []
        for run in RUNS:
            if not any(name in run for name in (*LARGE, "made")):
                whole = self.in_folder("", run, CALLS=str(log))
                allocations, behind = map(int, log.read_text().split()[:2])
                self.assertEqual(behind, 0, run)  # nothing can fail once an output has its name
                tries += [(run, whole, allocations, count) for count in (1, FOR_GOOD)[:1 + LONG]]
                log.unlink()
        step, tried, said = 1 if LONG else 61, 0, "aceconv: out of memory\n"
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count() if LONG else 1) as pool:
            for (run, whole, allocations, _), got in zip(tries, pool.map(
                    lambda row: self.in_folder(f"each {step} {row[-1]} {errno.ENOMEM}", row[0]), tries)):
                tried += (times := got.err.count(said))
                self.assertGreaterEqual(times, (allocations - 1) // step, run)  # the last one is of the count itself
                self.assertEqual(got._replace(err=got.err.replace(said, "")), whole, run)
        print("malloc ENOMEM in twins, exit 3:", tried, flush=True)

    def test_each_call(self):
        self.make_inputs()
        self.before = self.in_folder("", "help").files
        log, tries = self.dir / "calls", []
        for row, run in enumerate(RUNS):
            whole = self.in_folder("", run, CALLS=str(log))
            allocations, _, *called = log.read_text().split()
            log.unlink()
            called = collections.Counter(called, malloc=int(allocations))
            large = any(name in run for name in LARGE)  # and with threads, so that calls come in any order
            apart = large or "made" in run  # not for twins
            for number, (name, error, expected) in enumerate(CALLS):
                positions = range(0, called[name] * 9 // 10 if large and called[name] > 99 else called[name])
                wanted = (200 if large else len(positions)) if LONG else (row // 2 + number) % 2
                wanted = 0 if name == "malloc" and not apart else wanted
                step = max(1, -(-len(positions) // (wanted or 1)))
                counts = (1,) if error == errno.EINTR else (1, FOR_GOOD) if LONG else ((1, FOR_GOOD)[row % 2],)
                tries += [(run, whole, name, error, expected, at, count) for count in counts
                          for at in positions[(7 * row + number) % step::step] if wanted]
        outcomes = collections.defaultdict(collections.Counter)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count() if LONG else 1) as pool:
            wrong = []
            for tried, (code, fault) in zip(tries, pool.map(lambda tried: self.fault(*tried), tries)):
                outcomes[tried[2], errno.errorcode.get(tried[3], "a byte"), min(tried[-1], 2)][code] += 1
                wrong += [fault] if fault else []
        for (name, error, count), codes in outcomes.items():
            print(name, error, ("once", "for good")[count - 1], ", ".join(
                f"exit {code}: {times}" for code, times in sorted(codes.items())), flush=True)
        self.assertEqual("\n".join(map(str, wrong)), "")

    def test_output_and_report_are_one(self):
        self.make_inputs()
        before = self.in_folder("", "help").files
        run = "convert -q --no-losses --to um --schema base base.json -o old --report report"
        for call, code in (("mkostemp 0 0", -signal.SIGTERM), ("mkostemp 1 0", -signal.SIGTERM), ("fsync 2 1 5", 3),
                           ("open 1 1 24", 3), ("renameat2 1 1 5", 3)):
            got = self.in_folder(call, run)
            self.assertEqual((got.code, got.files), (code, before), call)
        log = self.dir / "calls"
        self.assertEqual(self.in_folder("", run, CALLS=str(log)).code, 0)
        self.assertEqual([name for name in log.read_text().split() if "sync" in name or "rename" in name],
                         ["fsync"] * 2 + ["renameat2", "rename"] + ["renameat2", "fsync"])
        log.unlink()
        run = "encode base.json --output-dir made/outs"  # so are the folders
        for call in ("mkdir 0 0", "mkdir 1 0", "mkostemp 0 0"):
            got = self.in_folder(call, run)
            self.assertEqual((got.code, got.files), (-signal.SIGTERM, before), call)
        self.in_folder("", run, CALLS=str(log))
        self.assertEqual([name for name in log.read_text().split() if name in ("mkdir", "fsync")],
                         ["mkdir", "fsync"] * 2 + ["fsync"] * 2)

    def test_no_stack(self):
        """Also that of a worker."""
        self.make_inputs()
        got = self.in_folder("stack 100 1", "encode many --schema base -j 3 -o old")
        self.assertEqual((got.code, got.err), (-signal.SIGSEGV, "aceconv: ended by a fault of the program\n"))
        self.assertEqual(got.files, self.in_folder("", "help").files)

    def test_little_memory(self):
        source, codes = self.file("source", generated(count=8000)), set()
        for kilobytes in range(16000, 64000, 4000):
            done = subprocess.run(
                [ACECONV, "encode", "-q", "-j", "4", "--schema", "base", "-o", self.dir / "out", source],
                check=False, capture_output=True,
                preexec_fn=lambda k=kilobytes: resource.setrlimit(resource.RLIMIT_AS, (k << 10,) * 2))
            if done.returncode == 127:  # it could not be started
                continue
            codes.add(done.returncode)
            if done.returncode != 0:
                self.assertRegex(done.stderr, rb"\Aaceconv: .*([Oo]ut of|allocate) memory\n\Z")
            self.assertEqual(sorted(os.listdir(self.dir)), ["out"] * (done.returncode == 0) + ["source"])
            if done.returncode == 0:
                os.unlink(self.dir / "out")
        self.assertEqual(codes, {0, 3})


if __name__ == "__main__":
    unittest.main()
