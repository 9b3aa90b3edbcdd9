"""What the command reports to programs, against the schemas in docs/."""
import json
import re
import subprocess
import unittest
import xml.etree.ElementTree

import jsonschema

from harness import EXAMPLES, Case, document, numbered

SCHEMA = json.loads((EXAMPLES.parent / "docs/schemas/reports.json").read_text())
WHOLE = jsonschema.Draft202012Validator(SCHEMA)
LOSSY = {"permit": {"source": {"host": "192.0.2.1"}, "capture": {}, "icmp": {"message-type-name": "Echo"},
                    "udf-entries": {"udf": [{"udf-name": "f"}]}, "police": {"value": 1, "unit": "pps"},
                    "log": {}, "log-input": {}},
         "remark": "r"}


class Reports(Case):
    def valid(self, kind, text):
        """The report, which is one of this kind and of no other."""
        report = json.loads(text)
        WHOLE.validate(report)
        WHOLE.evolve(schema={"$ref": f"#/$defs/{kind}", "$defs": SCHEMA["$defs"]}).validate(report)
        return report

    def test_schema(self):
        WHOLE.check_schema(SCHEMA)
        for change in ({"stopped": 1}, {"more": 1}, {"losses": [{}]}):  # that it can fail
            good = {"verb": "encode", "losses": [], "entries": 1, "errors": 0, "stopped": False,
                    "entries-with-losses": 0, "entries-that-match-more": 0}
            self.valid("losses", json.dumps(good))
            self.assertFalse(WHOLE.is_valid({**good, **change}), change)

    def test_losses_in_every_verb(self):
        path, report = self.file("um", document("um", ("X", numbered(LOSSY)))), self.dir / "report"
        bags = self.file("bags", self.run_command("encode", path)[1])
        for *call, source in (("convert", "--to", "base", path), ("convert", "--to", "base", bags),
                              ("check", path), ("encode", path), ("inspect", path),
                              ("decode", bags), ("diff", path, path)):
            self.run_command(*call, "-q", "--report", report, source)
            told = self.valid("losses", report.read_text())
            self.assertEqual(told.get("verb", "convert"), call[0])
        self.run_command("convert", "-q", "--to", "base", "--report", report, path)
        told = self.valid("losses", report.read_text())
        values = {loss.get("field", loss["leaf"]): loss["before"] for loss in told["losses"]}
        self.assertEqual(values["Police.PoliceUnit"], {"text": "0 (pps)", "number": 0, "keyword": "pps"})
        self.assertEqual(values["Police.PoliceValue"], {"text": "1", "number": 1})
        self.assertEqual({(loss["words"], loss["words-after"]) for loss in told["losses"]}, {(
            '10 permit 192.0.2.1 any icmp echo udf "f" 0x0/0x0 police 1 police-unit pps capture '
            'log-input remark "r"',
            '10 permit 192.0.2.1 any icmp echo capture log-input remark "r"')})

    def test_check_and_diff(self):
        good, bad = document("um", ("X", numbered(LOSSY, {"permit": {}}))), '{"permit":{"protocol":"x"}}'
        path = self.file("um", good)
        code, out, _ = self.run_command("check", "--json", path)
        told = self.valid("check", out)
        self.assertEqual((code, told["entries"], [row["sequence"] for row in told["entries-that-differ"]]),
                         (1, 2, [10]))
        self.assertIn("log", [change["leaf"].split("/")[-1] for change in
                              told["entries-that-differ"][0]["changes"]])
        code, out, _ = self.run_command("check", "--json", "--keep-going", path, self.file("bad", bad))
        told = self.valid("check", out)
        self.assertEqual((code, told["errors"], told["stopped"], told["entries-that-differ"][0]["file"]),
                         (2, 1, False, path))
        told = self.valid("check", self.run_command("check", "--json", stdin=bad)[1])
        self.assertTrue(told["stopped"])
        other = self.file("other", document("um", ("X", [{"sequence-number": 20, "permit": {"protocol": "tcp"}},
                                                         {"sequence-number": 30, "deny": {}}])))
        code, out, _ = self.run_command("diff", "--json", "--no-losses", path, other)
        told = self.valid("diff", out)
        self.assertEqual((code, told["a"], told["b"], told["different"]), (1, path, other, 3))
        changed, = [row for row in told["differences"] if row["a"] and row["b"]]
        self.assertEqual([changed[side]["words"] for side in "ab"], ["20 permit any any", "20 permit tcp any any"])
        self.assertEqual(changed["changes"][0]["after"], {"text": "6 (tcp)", "number": 6, "keyword": "tcp"})
        self.assertEqual([row["b"]["words"] for row in told["differences"] if not row["a"]],
                         ["30 deny any any"])
        self.valid("diff", self.ok("diff", "--json", other, other))
        for a, b in ((path, other), (other, self.file("turned", document("um", ("X", numbered(
                {"deny": {}}, {"permit": {"protocol": "tcp"}})))))):
            told = self.valid("diff", self.run_command("diff", "--json", "--no-losses", "--by", "content", a, b)[1])
        self.assertEqual([(row.get("moved"), row["b"]["line"]) for row in told["differences"] if row["b"]],
                         [({"sequence": 20, "line": 1}, 1)])

    def test_lint(self):
        twice = document("base", ("X", numbered({"grant": "deny"}, {"grant": "deny", "protocol": "tcp"})), ("Y", []))
        told = self.valid("lint", self.ok("lint", "-q", "--json", stdin=twice))
        self.assertEqual([row["rule"] for row in told["warnings"]], ["shadowed", "empty-list"])
        self.assertEqual(told["warnings"][0]["earlier"], {"sequence": 10, "line": 1})
        code, out, _ = self.run_command("lint", "--json", stdin='{"grant":"x"}')
        self.assertEqual((code, self.valid("lint", out)["stopped"]), (2, True))

    def test_errors_and_test_report(self):
        name = "a<\u202e&\"]]>\ufffd"
        lossy = self.file("lossy", document("um", (name, numbered(LOSSY)), ("good", numbered({"deny": {}}))))
        bad = self.file("bad", '{"permit":{}}\n{"permit":{"protocol":"\u001b<&"}}\n{"deny":{"log":1}}\n')
        bare = self.file("bare", self.ok("encode", "--no-labels", stdin='{"grant":"permit"}')[:-1] + b"\7")
        errors, junit = self.dir / "errors", self.dir / "junit"
        base = self.file("base", document("um", (name, numbered({"permit": {}}))))
        keep = ("--keep-going", lossy, bad)
        for call, files, code, faults, cases in (
                # of each case: its list, what is wrong, and how often
                (("check",), keep, 2, 2, [(name, "failure", 1), ("good", "", 0), ("(no list)", "error", 2)]),
                (("convert", "--to", "base"), (lossy,), 0, 0, [(name, "", 0), ("good", "", 0)]),
                (("convert", "--to", "base", "--strict"), (lossy,), 1, 0,
                 [(name, "failure", 4), ("good", "", 0)]),
                (("encode", "-o", "/dev/null"), (lossy, bad), 2, 1,
                 [(name, "", 0), ("good", "", 0), ("(no list)", "error", 1)]),
                (("decode",), (bare,), 2, 1, [("(no list)", "error", 1)]),
                (("inspect", "--json"), keep, 2, 2, [(name, "", 0), ("good", "", 0), ("(no list)", "error", 2)]),
                (("lint",), (base,), 0, 0, [(name, "", 0)]),
                (("diff",), (lossy, base), 1, 0, [(name, "failure", 1), ("good", "failure", 1)])):
            with self.subTest(call=call):
                self.assertEqual(self.run_command(*call, "--errors", errors, "--junit", junit, *files)[0], code)
                told = [self.valid("fault", line) for line in errors.read_text().splitlines()]
                self.assertEqual(len(told), faults)
                subprocess.run(["xmllint", "--noout", "--nonet", "--schema",
                                EXAMPLES.parent / "docs/schemas/junit.xsd", junit],
                               check=True, stderr=subprocess.DEVNULL)
                suite = xml.etree.ElementTree.parse(junit).getroot()
                found = []
                for case in suite.iter("testcase"):
                    list_name = case.get("name").replace("\\xe2\\x80\\xae", "\u202e")
                    wrong = [(part.tag, len(part.text.splitlines())) for part in case]
                    found += [(list_name, *(wrong[0] if wrong else ("", 0)))]
                self.assertEqual(found, cases)
                self.assertEqual([int(suite.get(count)) for count in ("tests", "failures", "errors")],
                                 [len(cases), *(sum(row[1] == kind for row in cases)
                                                for kind in ("failure", "error"))])
        self.run_command("check", "--errors", errors, *keep)
        told = [json.loads(line) for line in errors.read_text().splitlines()]
        self.assertEqual([(row["file"], row["line"]) for row in told], [(bad, 2), (bad, 3)])
        self.assertIn("/deny/log", told[1]["path"])
        self.run_command("decode", "--errors", errors, bare)
        self.assertEqual(json.loads(errors.read_text())["words"], "no-action any any [grant=7]")
        unknown = self.ok("encode", "--no-labels", stdin='{"permit":{"police":{"value":1}}}')
        for call in (("decode",), ("check", base), ("diff", base)):  # for want of a schema
            self.assertEqual(self.run_command(*call, "--errors", errors, "--junit", junit,
                                              self.file("unknown", unknown))[0], 2)
            told, = [self.valid("fault", line) for line in errors.read_text().splitlines()]
            self.assertRegex(told["text"], "depends on the schema, .*; give --schema(-b)? base or --schema(-b)? um")
            self.assertIn('<error message="', junit.read_text())
        self.ok("check", "-q", "--errors", errors, base)  # what a program looks at is never of another run
        self.assertEqual(errors.read_text(), "")
        for call in (("check", "--errors", base, base), ("check", "--errors", junit, "--junit", junit, base),
                     ("diff", "--junit", base, lossy, base)):
            self.assertEqual(self.run_command(*call)[0], 2)

    def test_explain_and_schema(self):
        nodes = [self.valid("node", line) for line in self.ok("schema", "--json").splitlines()]
        leaves = [node for node in nodes if node["type"] not in ("container", "list")]
        self.assertEqual((len(nodes), len(leaves), len(self.ok("schema", "base").splitlines())), (309, 225, 59))
        self.assertEqual(len(self.ok("schema", "--tree").splitlines()), len(nodes) + 2)
        for leaf, schema, record in (
                ("first-source-port", "base", [("sport1", ["5"], 50, "source/port")]),
                ("deny/source/port/eq", "um", [("sopr", ["4"], 48, "source-port/source-operator"),
                                               ("sport1", ["5"], 50, "source-port/first-source-port")]),
                ("dscp-value", "um", [("dscp", ["15"], 69, "dscp/dscp-min")]),
                ("permit", "um", [("grant", ["0"], 16, "grant")]),
                ("match-any/tcp-bits", "um", [("tcpflagsopr", ["20"], 80, "tcp/tcp-bits-match-operator"),
                                              ("tcpflags", ["21"], 81, "tcp/tcp-bits"),
                                              ("tcpflags_mask", ["22"], 82, "tcp/tcp-bits-mask")]),
                ("peak-unit", "um", [("Police.PolicePeakUnit", ["2:27"], 256, None)]),
                ("sequence-str", "base", [("SequenceStr", ["52"], 208, None)]),
                ("source/any", "um", [])):
            told = self.valid("node", self.ok("explain", "--json", leaf))
            self.assertEqual((told["schema"], [(row["field"], row["bits"], row["offset"], row["other-leaf"])
                                               for row in told["record"]]), (schema, record), leaf)
        self.assertEqual(self.ok("explain", "log-option").decode(), """\
log-option (base)
  type     name
  names    log 1, log-input 2
  record   log, bit 13, offset 60, 4 bytes; in um, below permit and deny: log|log-input
""")
        code, _, err = self.run_command("explain", "log-opton")
        self.assertEqual(code, 2)
        self.assertIn("no node log-opton, aceconv schema shows all; did you mean log-option?", err)

    def test_inspect(self):
        for path in sorted(EXAMPLES.glob("*.json")):
            for line in self.ok("inspect", "--json", "--no-losses", path).splitlines():
                self.valid("record", line)

    def test_bytes_of_encodings(self):
        page = (EXAMPLES.parent / "docs/record_format.md").read_text()
        shown = re.search(r"(?m)^### An example\n[^\0]*?\n\n((?:    .*\n)+)", page)[1]
        entry = '{"permit":{"protocol":"tcp","destination":{"host":"192.0.2.1","port":{"eq":"WWW"}}}}'
        self.assertEqual(re.sub(r"(?m)^  ", "", shown), self.ok("inspect", "-q", "--hex", stdin=entry).decode()
                         .split("80 (WWW)\n", 1)[1])
        entry = {"permit": {"udf-entries": {"udf": [{"udf-name": "f~", "udf-value": "0x7"}, {"udf-name": "\\\""}]},
                            "police": {"value": 1, "unit": "pps"}}, "remark": "\x9b" + 40 * "x"}
        path = self.file("um", document("um", ("X", numbered(entry, {}))))
        for path in (path, *EXAMPLES.glob("*.json")):
            lines = self.ok("inspect", "--hex", "--json", "--no-losses", path).splitlines()
            told = [self.valid("record", line) for line in lines]
            parts = [part for record in told for part in record["encoding"]]
            self.assertEqual(bytes.fromhex("".join(part["hex"] for part in parts)),
                             self.run_command("encode", "--no-labels", path)[1])
            for record in told:
                at, parts = 0, record["encoding"]
                for part in parts:
                    self.assertEqual(part["offset"], at)
                    at += len(part["hex"]) // 2
                self.assertEqual(record["bytes"], at)
                named = {part["member"]: part["text"] for part in parts if "member" in part}
                for field in record["fields"]:
                    if field.get("value") not in (None, 0, "0.0.0.0", []):  # zeros have no bytes
                        self.assertIn(field["name"], named)
                    if isinstance(field.get("value"), int) and field["name"] in named:
                        self.assertTrue(named[field["name"]].startswith(str(field["value"]).lower()), field)
            text = self.ok("inspect", "-q", "--hex", "--no-losses", path).decode()
            digits = re.findall(r"(?m)^[\d ]{8}([0-9A-F ]{40}|[0-9A-F ]{1,40}$)", text)
            self.assertEqual("".join(digits).replace(" ", ""),
                             "".join(part["hex"] for record in told for part in record["encoding"]))


if __name__ == "__main__":
    unittest.main()
