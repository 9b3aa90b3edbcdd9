"""What is said of losses, verb by verb: the cases of losses.txt, the report, the tally."""
import json
import pathlib
import unittest

from harness import Case, document, numbered

CASES = pathlib.Path(__file__).with_name("losses.txt")


def sections():
    """Of each call of a section (the call, [(entry, lines of its losses)])."""
    found = []
    for line in CASES.read_text().splitlines():
        if line.startswith("== "):
            rows = []
            found += [(call.split(), rows) for call in line[3:].split("|")]
        elif line.startswith("{"):
            rows.append((json.loads(line), []))
        elif line.startswith("    "):
            rows[-1][1].append(line.strip())
    return found


class Losses(Case):
    def said(self, call, entries, report):
        """The lines of losses by sequence number, and the exit code."""
        schema = "base" if "convert --schema base" in " ".join(call) else "um"
        source = document(schema, ("X", numbered(*entries))).encode()
        if call[0] == "decode":
            bare = [self.ok("encode", "--no-labels", "--schema", schema, stdin=json.dumps(entry))
                    for entry in entries]
            source = b"".join(bare)
        code, out, err = self.run_command(*call, "--report", report, stdin=source)
        lines = {}
        for line in (out.decode() if call[0] == "check" else err).splitlines():
            place, _, loss = line.partition(": " if call[0] == "check" else ": loss: ")
            if " -> " in loss:  # the other lines are entries in words
                number = place.split("#")[1] + "0" if "#" in place else place.split("entry ")[1]
                lines.setdefault(int(number), []).append(loss)
        return lines, code

    def test_cases(self):
        for call, rows in sections():
            report = self.dir / "report"
            said, code = self.said(call, [entry for entry, _ in rows], report)
            self.assertEqual(code, 1 if call[0] == "check" else 0)
            for i, (entry, wanted) in enumerate(rows):
                with self.subTest(call=call, entry=entry):
                    self.assertEqual(said.get(10 * (i + 1), []), wanted)
            told = json.loads(report.read_text())
            asked = dict(zip(call[1::2], call[2::2])) if call[0] == "convert" else {}
            self.assertEqual((told.get("from"), told.get("to"), told.get("verb")),
                             (asked.get("--schema"), asked.get("--to"),
                              None if asked else call[0]))
            lost = [lines for _, lines in rows if lines]
            more = [lines for lines in lost if any("matches more" in line for line in lines)]
            self.assertEqual([told[name] for name in ("entries", "entries-with-losses",
                                                      "entries-that-match-more")],
                             [len(rows), len(lost), len(more)])
            self.assertEqual([f"{loss.get('field') or loss['leaf']}|{loss['reason']}"
                              for loss in told["losses"]],
                             [f"{line.split(' ')[0].rstrip(':')}|"
                              f"{line.split('; ', 1)[1].removesuffix('; matches more than before')}"
                              for lines in lost for line in lines])
            self.assertEqual(sum(loss["widens"] for loss in told["losses"]),
                             sum(line.endswith("matches more than before")
                                 for lines in lost for line in lines))
            self.assertRegex(self.summary, f"aceconv: {len(more)} entr(y matches|ies match) more "
                                           f"than before; {len(rows)} entries, 0 errors, "
                                           f"{len(told['losses'])} losses in {len(lost)} entries; ")

    def test_every_verb_takes_the_options(self):
        lossy = '{"permit":{"log":{},"log-input":{},"police":{"value":1}}}'
        bare = self.ok("encode", "--no-labels", stdin='{"permit":{"police":{"value":1}}}')
        for *call, source in (("convert", "--schema", "um", "--to", "base", lossy),
                              ("decode", "--schema", "base", bare), ("check", lossy),
                              ("encode", lossy),
                              ("inspect", lossy), ("inspect", "--schema", "base", bare)):
            with self.subTest(call=call):
                shown = self.run_command(*call, "-q", stdin=source)
                lines = sum(text.count("-> absent") for text in (repr(shown[1]), shown[2]))
                self.assertGreater(lines, 0)
                self.assertEqual(self.summary, "")
                code, out, err = self.run_command(*call, "--strict", "--no-losses", stdin=source)
                self.assertEqual((code, err), (1, ""))
                self.assertIn(" in 1 entry; ", self.summary)
                self.assertNotIn(b"-> absent", out)
                report = self.dir / "report"
                self.run_command(*call, "--no-losses", "--report", report, stdin=source)
                told = json.loads(report.read_text())
                self.assertEqual(told["entries-with-losses"], 1)
                self.assertEqual(told.get("verb", "convert"), call[0])

    def test_diff_tells_what_its_records_do_not_show(self):
        plain = self.file("plain", '{"permit":{"log-input":{}}}')
        replaced = self.file("replaced", '{"permit":{"log":{},"log-input":{}}}')
        for left, right in ((plain, replaced), (replaced, plain)):
            code, out, err = self.run_command("diff", left, right)
            self.assertEqual((code, out), (0, b""))
            self.assertRegex(err, f"^aceconv: {replaced}:1: permit any any log-input\n"
                                  f"aceconv: {replaced}:1: loss: permit/log: [^\n]*\n$")
            report = self.dir / "report"
            self.assertEqual(self.run_command("diff", "--strict", "--report", report, left, right)[0], 1)
            self.assertEqual(json.loads(report.read_text())["verb"], "diff")

    def test_names_that_print_alike_are_not_the_same(self):
        udf = '{"permit":{"udf-entries":{"udf":[{"udf-name":"a1b","udf-value":"1"}]}}}'
        encoded = self.ok("encode", stdin=udf)
        self.assertEqual(encoded.count(b"a1b"), 1)
        kinds = {name: self.file(f"f{i}", encoded.replace(b"a1b", name))
                 for i, name in enumerate((b"a1b", b"a\0b", b"a\tb", b"a\\b"))}
        shown = {b"a1b": "a1b", b"a\0b": "a\\x00b", b"a\tb": "a\\x09b", b"a\\b": "a\\\\b"}
        for a, left in kinds.items():
            for b, right in kinds.items():
                code, out, _ = self.run_command("diff", left, right)
                self.assertEqual(code, int(a != b), (a, b))
                if a != b:
                    self.assertIn(f": {shown[a]} 0x1/0x0 -> {shown[b]} 0x1/0x0", out.decode())
        code, _, err = self.run_command("decode", kinds[b"a\0b"])
        self.assertIn("a\\x00b 0x1/0x0 -> a 0x1/0x0; a name ends at its first NUL; matches", err)


if __name__ == "__main__":
    unittest.main()
