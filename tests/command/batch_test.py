"""Long runs: several threads, progress, and what is left when a run is cut short."""
import os
import pty
import random
import re
import resource
import signal
import subprocess
import threading
import time
import unittest

from harness import ACECONV, Case

COUNT = 6000  # some thirty batches


def generated(*options, count=COUNT):
    return subprocess.run([os.environ["ACECONV_GENERATOR"], str(count), *options], check=True,
                          capture_output=True).stdout


class Workers(Case):
    def test_any_number_of_threads_gives_the_same(self):
        lines = generated().splitlines(keepends=True)
        for at in range(500, COUNT, 1500):  # bad ones, and one number twice in a list
            lines[at] = b'{"grant":"drop"}\n'
            lines[at + 700] = b'{"acl":"X","entry":{"sequence-number":7,"grant":"deny"}}\n'
        source = self.file("lines", b"".join(lines))
        whole, um = self.file("document", generated("--document")), self.file("um", generated("--um"))
        bags = self.file("bags", self.ok("encode", whole))
        for args in (("encode", "--schema", "base", "--keep-going", source),
                     ("encode", "--schema", "base", source),
                     ("convert", "--schema", "base", "--to", "um", "--format", "ndjson",
                      "--keep-going", source),
                     ("convert", "--schema", "um", "--to", "base", um), ("decode", bags),
                     ("decode", "--format", "ndjson", bags), ("inspect", bags), ("check", um),
                     ("diff", "--schema-a", "base", "--keep-going", source, whole)):
            with self.subTest(args[:-1]):
                runs = []
                for jobs in (1, 4):
                    done = self.run_command(args[0], "-j", jobs, *args[1:])
                    runs.append((*done, re.sub(";.*", "", self.summary)))
                self.assertTrue(runs[0][1])
                self.assertEqual(runs[0], runs[1])
                self.assertEqual(runs[0][0] == 2, source in args)

    def test_a_missing_entry_is_noticed_in_order(self):
        """Everything before a fault comes out, nothing behind it, whichever thread met it."""
        lines = generated().splitlines(keepends=True)
        for bad in (0, 1, 255, 256, 3333, COUNT - 1):
            text = b"".join(lines[:bad] + [b"{}}\n"] + lines[bad + 1:])
            code, out, err = self.run_command("encode", "-j", 4, "--schema", "base", stdin=text)
            self.assertEqual((code, err.count("\n")), (2, 1))
            self.assertRegex(err, rf"^aceconv: <stdin>:{bad + 1}: ")
            self.assertEqual(out.count(b"ipv4_acl_config_ace"), bad)


class EightThreads(Case):
    """On inputs with faults in the middle, for readers that linger or go away; the sanitizers look on."""

    def read(self, args, wanted, pause):
        """(exit code, output, messages) of a run of whose output so much is read, in pieces."""
        with subprocess.Popen([ACECONV, *args], stdout=subprocess.PIPE, stderr=subprocess.PIPE, bufsize=0) as process:
            guard = threading.Timer(300, process.kill)
            guard.start()
            came = b""
            while len(came) < wanted and (got := process.stdout.read(min(wanted - len(came), 65536))):
                came += got
                time.sleep(pause)
            process.stdout.close()
            said = process.stderr.read().decode()
            guard.cancel()
            return process.wait(), came, re.sub("aceconv: .* entries a second", "", said)

    def test_faults_and_readers(self):
        lines = generated(count=3000).splitlines(keepends=True)
        whole = self.file("whole", b"".join(lines))
        bags = self.ok("encode", "--schema", "base", whole)
        xml = self.ok("convert", "--schema", "base", "--to", "base", "--format", "xml", stdin=generated("--document", count=3000))
        for at in (1200, 1201, 2000):
            lines[at] = b'{"grant":"drop"}\n'
        faulty, cut = self.file("faulty", b"".join(lines)), self.file("cut", b"".join(lines[:2500]) + b"{")
        bags = self.file("bags", bags[:len(bags) // 2] + b"\xff" + bags[len(bags) // 2:])
        xml = self.file("xml", xml.replace(b"<grant>permit", b"<grant>drop", 3))
        base, um = ("--schema", "base"), ("--schema", "base", "--to", "um", "--format", "ndjson")
        for args in (("encode", *base, faulty), ("encode", *base, "--keep-going", "--backend", "validating", cut),
                     ("convert", "--no-losses", *um, "--keep-going", faulty), ("decode", "--format", "ndjson", bags),
                     ("convert", "--to", "um", "--keep-going", xml), ("inspect", *base, "--keep-going", cut),
                     ("check", *base, "--keep-going", faulty), ("lint", *base, "--keep-going", faulty),
                     ("diff", "--schema-a", "base", "--schema-b", "base", "--keep-going", faulty, whole)):
            with self.subTest(args[:-1]):
                alone = self.read((args[0], "-j", "1", *args[1:]), 1 << 30, 0)
                self.assertEqual(self.read((args[0], "-j", "8", *args[1:]), 1 << 30, 0.002), alone)
                self.assertEqual(alone[0], 2)
                for wanted in (0, 1000, len(alone[1]) // 2):
                    code, out, said = self.read((args[0], "-j", "8", *args[1:]), wanted, 0)
                    self.assertIn(code, (0, 2))
                    self.assertEqual(out, alone[1][:wanted])
                    self.assertLessEqual(set(said.splitlines()), set(alone[2].splitlines()))


class Partner(Case):
    """Whoever writes an entry and waits for its result gets it."""

    def ask(self, pieces, *args):
        """Writes a piece, reads until the wanted bytes have come, and so on; the messages."""
        with subprocess.Popen([ACECONV, *args], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, bufsize=0) as process:
            guard = threading.Timer(60, process.kill)
            guard.start()
            for piece, wanted, stream in pieces:
                process.stdin.write(piece)
                came = b""
                while wanted not in came:
                    got = (process.stderr if stream == 2 else process.stdout).read(65536)
                    self.assertTrue(got, (args, piece, came))
                    came += got
            process.stdin.close()
            process.stdout.read()
            code = process.wait()
            guard.cancel()
            return code

    def test_gets_each_result_before_it_writes_on(self):
        lines = [b'{"acl":"A","entry":{"sequence-number":%d,"grant":"deny"}}\n' % n
                 for n in range(1, 20)]
        entries = [b'{"sequence-number":%d,"grant":"deny"}' % n for n in range(1, 20)]
        bags = [self.ok("encode", "--schema", "base", stdin=line) for line in lines]
        results = [b'"sequence-number":%d,' % n for n in range(1, 20)]
        document = [b"%s%s" % (b"," if n else b'{"aceconv-base:acls":{"acl":[{"name":"A","entry":[', e)
                    for n, e in enumerate(entries)]
        xml = [b"%s<entry><sequence-number>%d</sequence-number><grant>deny</grant></entry>" % (
            b"" if n else b'<acls xmlns="urn:aceconv:base"><acl><name>A</name>', n + 1)
            for n in range(19)]
        convert = ("convert", "--schema", "base", "--to", "um", "--format", "ndjson")
        other = self.file("other", b"".join(lines).replace(b"deny", b"permit"))
        differences = [b"entry %d: grant" % n for n in range(1, 20)]
        for sides in (("-", other), (other, "-")):
            self.assertEqual(self.ask([(p, w, 1) for p, w in zip(lines, differences)], "diff", "-q",
                                      *sides), 1)
        lines[3:3] = [b'{"grant":"drop"}\n']
        for pieces, wanted, ending, args in (
                (lines, results[:3] + [b"drop"] + results[3:], b"", convert),
                (document, results, b"]}]}}", convert), (xml, results, b"</acl></acls>", convert),
                (document, bags, b"]}]}}", ("encode",)), (bags, results, b"", ("decode",))):
            for jobs in ("1", "4"):
                with self.subTest((args, jobs, ending)):
                    asked = [(p, w, 2 if w == b"drop" else 1) for p, w in zip(pieces, wanted)]
                    asked[-1] = (asked[-1][0] + ending, *asked[-1][1:])
                    self.assertEqual(self.ask(asked, args[0], "-q", "-j", jobs, "--keep-going",
                                              *args[1:]), 2 if pieces is lines else 0)


class CutShort(Case):
    def setUp(self):
        super().setUp()
        self.source = self.file("source", generated(count=8000))
        self.args = [ACECONV, "convert", "-q", "--no-losses", "-j", "4", "--schema", "base",
                     "--to", "um", "--format", "ndjson", self.source]

    def left(self):
        return sorted(set(os.listdir(self.dir)) - {"source"})

    def test_killed_at_any_moment(self):
        start = time.monotonic()
        whole = subprocess.run(self.args, check=True, capture_output=True).stdout
        lasts = time.monotonic() - start
        seed = random.randrange(1 << 32)
        chance, target = random.Random(seed), self.dir / "out"
        cut = 0
        for sign in [signal.SIGTERM, signal.SIGINT, signal.SIGKILL] * 4:
            with subprocess.Popen([*self.args, "-o", target]) as process:
                time.sleep(chance.uniform(0, lasts))
                process.send_signal(sign)
                code = process.wait(60)
            self.assertIn(code, (0, -sign), seed)
            there = target.exists()  # with another code when the signal came behind the renaming
            cut += not there
            self.assertTrue(there or code != 0, seed)
            if there:
                self.assertEqual(target.read_bytes(), whole)
                target.unlink()
            if sign == signal.SIGKILL:  # nobody is left to clean up
                for name in self.left():
                    self.assertTrue(name.startswith(".out."))
                    (self.dir / name).unlink()
            self.assertEqual(self.left(), [], seed)
        self.assertGreater(cut, 0)

    def test_a_reader_that_goes_away(self):
        for wanted in (0, 1, 100000):
            with subprocess.Popen(self.args, stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE) as process:
                self.assertEqual(len(process.stdout.read(wanted)), wanted)
                process.stdout.close()
                self.assertEqual((process.stderr.read(), process.wait(60)), (b"", 0))

    def test_a_full_disk(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100000, 100000))

        done = subprocess.run([*self.args, "-o", str(self.dir / "out")], check=False,
                              capture_output=True, preexec_fn=limit)
        self.assertEqual(done.returncode, 3)
        self.assertRegex(done.stderr, b"^aceconv: .*/out: cannot write: File too large\n$")
        self.assertEqual(self.left(), [])
        small = self.dir / "small"
        small.mkdir()
        script = ('mount -t tmpfs -o size=256k none "$0" || exit 77; "$@" -o "$0/out"; '
                  'code=$?; ls -A "$0"; exit $code')
        done = subprocess.run(["unshare", "-rm", "sh", "-c", script, small, *self.args], check=False,
                              capture_output=True)
        if done.returncode == 77 or b"unshare" in done.stderr:
            self.skipTest("no file system can be mounted here")
        self.assertEqual((done.returncode, done.stdout), (3, b""), done.stderr)
        self.assertRegex(done.stderr, b"^aceconv: .*/out: cannot write: No space left on device\n$")


@unittest.skipUnless("ACECONV_FAILING" in os.environ, "sanitizers have an allocator of their own")
class Bounded(Case):
    """At most what docs/security.md says, in MB, of which this process lends 40 to its children."""

    def test_memory(self):
        long = (1 << 20) - 100
        lines = ("--from-format", "ndjson", "--schema", "base")
        for text, count, most, args in (
                ('{"sequence-number":1,' + " " * long + '"grant":"deny"}\n', 24, 160, lines),
                ('{"sequence-number":1,' + " " * long + '"grant":"deny"}\n', 24, 160,
                 (*lines, "--backend", "validating")),
                ('{"remark":' + "[" * (long // 2) + "]" * (long // 2) + "}\n", 24, 160, lines),
                ('{"remark":[' + "1," * (long // 2) + "1]}\n", 24, 160, lines),
                ("x\n", 100000, 48, ("--from-format", "ndjson")),
                ('<o xmlns="u" xmlns:p="%s"%s/>\n' % ("v" * 4000, "".join(f' p:a{i}=""' for i in range(6000))),
                 1, 100, ("--ignore-other-modules",))):
            with self.subTest((text[:40], args)), open(self.dir / "in", "w+b") as file:
                for _ in range(count):
                    file.write(text.encode())
                file.seek(0)
                with subprocess.Popen([ACECONV, "encode", "-q", "--keep-going", "-j", "8", *args],
                                      stdin=file, stdout=subprocess.DEVNULL,
                                      stderr=subprocess.DEVNULL) as process:
                    _, status, used = os.wait4(process.pid, 0)
                    process.returncode = os.waitstatus_to_exitcode(status)
                self.assertIn(process.returncode, (0, 2))
                self.assertLess(used.ru_maxrss >> 10, most)


class Progress(Case):
    def run_slowly(self, *args, call=("encode", "--schema", "base"), **streams):
        """Standard error of a run whose input takes two seconds to come."""
        main, side = pty.openpty()
        lines = generated(count=400).splitlines(keepends=True)
        call = [*call, "-o", str(self.dir / "out")] if call[0] == "encode" else call
        with subprocess.Popen([ACECONV, *call, *args], stdin=subprocess.PIPE, stderr=side,
                              **{"stdout": side, **streams}) as process:
            os.close(side)
            for part in (lines[:300], lines[300:] + [b"{}\n"] * 300, [b"bad\n"]):
                process.stdin.write(b"".join(part))
                process.stdin.flush()
                time.sleep(1.2)
            process.stdin.close()
            code = process.wait(60)
        shown = b""
        try:
            while part := os.read(main, 65536):
                shown += part
        except OSError:  # the end of a terminal
            pass
        os.close(main)
        return code, shown.decode()

    def test_a_line_on_a_terminal_only(self):
        code, shown = self.run_slowly()
        self.assertEqual(code, 2)
        self.assertRegex(shown, r"\r\x1b\[Kaceconv: \d+ entries, \d+ entries a second")
        self.assertRegex(shown, r"\x1b\[K[^\n]*aceconv:[^\n]* <stdin>:701: ")  # not behind the line
        self.assertRegex(shown, r"aceconv: stopped: 701 entries, 1 error; [\d.]+ s, \d+ entries a")
        self.assertNotIn("a second", self.run_slowly("-q")[1])
        # Of two inputs the first one keeps the pace.
        one = self.file("one", generated(count=1))
        code, shown = self.run_slowly("--progress", "-", call=("diff", "--schema-a", "base",
                                      "--schema-b", "base", one), stdout=subprocess.DEVNULL)
        self.assertEqual((code, shown.count("a second")), (2, 1), shown)
        # Asked for, a line of its own each time, with how much of a file is left.
        args = ("convert", "--no-losses", "--progress", "-j1", "--schema", "base", "--to", "um",
                "--format", "ndjson", self.file("source", generated()))
        with subprocess.Popen([ACECONV, *args], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              text=True) as process:
            time.sleep(1.2)  # while its output is full
            said = process.communicate()[1]
        entries, rate, percent, left = map(int, re.search(
            r"\Aaceconv: (\d+) entries, (\d+) entries a second, (\d+) %, (\d+) s left\n", said).groups())
        self.assertTrue(100 * entries // COUNT <= percent <= 100 * entries // COUNT + 30, said)
        self.assertAlmostEqual(left, entries / rate * (100 - percent) / percent, delta=2 + left / 10)
        lines = self.file("lines", generated(count=100))
        self.assertEqual(self.run_command("encode", "--schema", "base", "-o", self.dir / "o", lines)[2],
                         "")


if __name__ == "__main__":
    unittest.main()
