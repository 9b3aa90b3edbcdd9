"""The command as the worker of GNU parallel, as the page on large lists shows it."""
import json
import os
import subprocess
import unittest

from harness import ACECONV, Case

ENCODE = ("encode", "-q", "-j", "1", "--schema", "base", "-")
CONVERT = ("convert", "-q", "--no-losses", "-j", "1", "--schema", "base", "--to", "um",
           "--from-format", "ndjson", "--format", "ndjson", "-")
GENERATED = subprocess.run([os.environ["ACECONV_GENERATOR"], "2000"], capture_output=True,
                           check=True).stdout


class Parallel(Case):
    def parallel(self, *command, stdin, options=()):
        """(exit code, output, messages) of workers over blocks of whole lines."""
        env = {**os.environ, "PARALLEL_HOME": self.folder.name}
        done = subprocess.run(
            ["parallel", "--pipe", "--keep-order", "--block", "100k", "-j", "3", *options,
             ACECONV, *command], input=stdin, capture_output=True, timeout=120, check=False, env=env)
        return done.returncode, done.stdout, done.stderr.decode()

    def test_output_is_that_of_one_process(self):
        self.assertGreater(len(GENERATED), 500_000)  # several blocks
        for command in (ENCODE, CONVERT):
            alone = self.ok(*command, stdin=GENERATED)
            self.assertEqual(self.parallel(*command, stdin=GENERATED), (0, alone, ""))

    def test_reports_of_the_blocks_are_that_of_one_process(self):
        report = str(self.dir / "losses.{#}")
        code, out, _ = self.run_command(*CONVERT, "--strict", "--report", report, stdin=GENERATED)
        self.assertEqual(code, 1)
        told = json.loads((self.dir / "losses.{#}").read_text())
        parts = self.parallel(*CONVERT, "--strict", "--report", report, stdin=GENERATED)
        self.assertEqual((parts[0] > 0, parts[1:]), (True, (out, "")))
        found = [json.loads((self.dir / f"losses.{i + 1}").read_text())
                 for i in range(len(list(self.dir.glob("losses.[0-9]*"))))]
        self.assertGreater(len(found), 1)
        for report in (told, *found):
            for loss in report["losses"]:
                del loss["line"]  # of the block
        self.assertEqual(sum((part["losses"] for part in found), []), told["losses"])

    def test_a_bad_entry_shows_in_the_exit_code(self):
        lines = GENERATED.splitlines(keepends=True)
        lines[1500:1500] = [b'{"grant":"drop"}\n']
        bad = b"".join(lines)
        for command in (ENCODE, CONVERT):
            code, out, err = self.parallel(*command, stdin=bad)
            self.assertEqual((code, err.count("\n")), (1, 1))
            self.assertIn('grant: "drop"; expected one of: deny, permit', err)
            self.assertLess(len(out), len(self.ok(*command, stdin=GENERATED)))
            kept = self.parallel(*command, "--keep-going", stdin=bad)
            self.assertEqual(kept[:2], (1, self.ok(*command, stdin=GENERATED)))
        code, _, err = self.parallel(*ENCODE, stdin=bad, options=("--halt", "now,fail=1"))
        self.assertEqual(code, 2, err)


if __name__ == "__main__":
    unittest.main()
