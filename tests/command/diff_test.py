"""Which entries of two inputs `diff` compares, and what it tells of them."""
import json
import re
import unittest

from harness import Case, document, numbered


class Diff(Case):
    def test_by_meaning(self):
        a = self.file("a", document("base", ("X", numbered(
            {"grant": "permit", "protocol": "tcp"}, {"grant": "deny"}, {"remark": "r"})), ("Y", [])))
        b = self.file("b", document("um", ("X", [
            {"sequence-number": 20, "deny": {"log": {}}},
            {"sequence-number": 10, "permit": {"protocol": 6}},
            {"sequence-number": 40, "remark": "r"}])))
        code, out, err = self.run_command("diff", a, b)
        self.assertEqual((code, err), (1, ""))
        self.assertEqual(out.decode().splitlines(), [
            "acl 'X' entry 20: - 20 deny any any", "acl 'X' entry 20: + 20 deny any any log",
            "acl 'X' entry 20: log (log-option): absent -> 1 (log)",
            f"acl 'X' entry 30: - only in {a}: 30 remark \"r\"",
            "acl 'X' entry 30: remark (remark): \"r\" -> absent",
            f"acl 'X' entry 40: + only in {b}: 40 remark \"r\"",
            "acl 'X' entry 40: remark (../remark): absent -> \"r\""])
        encoded = self.ok("encode", b)
        self.assertEqual(self.ok("diff", "--schema-b", "um", b, "-", stdin=encoded), b"")
        self.assertEqual(self.run_command("diff", "-q", "--by", "sequence", a, b)[:2], (1, out))
        self.assertEqual(self.summary, "")

    RULES = [{"grant": "permit", "protocol": "tcp", "fragment-type": "last-fragment"}, {"remark": "r"},
             {"grant": "deny", "protocol": "udp"}, {"remark": "r"}, {"grant": "deny", "protocol": "ip"}]

    def told(self, a, b, *options):
        """diff --by content: for each row the words of both sides, and where it was moved."""
        code, out, _ = self.run_command("diff", "--no-losses", "--by", "content", "--json", *options, a, b)
        rows = json.loads(out)["differences"]
        self.assertEqual(code, 1 if rows else 0)
        text = self.run_command("diff", "--no-losses", "--by", "content", *options, a, b)[1].decode()
        for row in rows:
            for side, sign in (("a", "-"), ("b", "+")):
                if row[side]:
                    self.assertRegex(text, rf"(?m): \{sign} .*{re.escape(row[side]['words'])}$")
        return [(*(row[side] and row[side]["words"] for side in "ab"),
                 row.get("moved", {}).get("sequence")) for row in rows]

    def test_by_content(self):
        rules = self.RULES
        a = self.file("a", document("base", ("X", numbered(*rules)), ("Y", numbered(*rules))))
        new = {"grant": "deny", "protocol": "gre"}
        changed = {**rules[4], "log-option": "log"}
        for edited, told in (
                (rules, []),
                (rules[:1] + [new] + rules[1:], [(None, "20 deny gre any any", None)]),
                (rules[:2] + rules[3:], [("30 deny udp any any", None, None)]),
                (rules[:4] + [changed], [("50 deny ip any any", "50 deny ip any any log", None)]),
                ([new] + rules[:4] + [changed], [(None, "10 deny gre any any", None),
                                                 ("50 deny ip any any", "60 deny ip any any log", None)]),
                (rules[1:] + rules[:1], [("10 permit tcp any any fragment-type last-fragment", None, 50),
                                         (None, "50 permit tcp any any fragment-type last-fragment", 10)]),
                ([changed] + rules[2:], [
                    ("10 permit tcp any any fragment-type last-fragment", "10 deny ip any any log", None),
                    ("20 remark \"r\"", None, None)]),
                ([{**rules[0], "sequence-str": "5"}] + rules[1:], []),
                ([{**rules[0], "sequence-str": "web"}] + rules[1:], [
                    ("10 permit tcp any any fragment-type last-fragment",
                     "5 permit tcp any any fragment-type last-fragment sequence-text \"web\"", None)])):
            entries = numbered(*edited)
            entries[0]["sequence-number"] = 5 if "sequence-str" in edited[0] else 10
            b = self.file("b", document("base", ("Y", numbered(*rules)), ("X", entries)))
            with self.subTest(told=told):
                self.assertEqual(self.told(a, b), told)
                self.assertEqual(self.told(a, self.file("bags", self.run_command("encode", b)[1])), told)
                if not any("sequence-str" in rule for rule in edited):
                    um = self.file("um", self.ok("convert", "--to", "um", b))
                    self.assertEqual(self.told(a, um), told)
        bare = self.file("bare", "\n".join(json.dumps(rule) for rule in rules))
        less = self.file("less", "\n".join(json.dumps(rule) for rule in rules[:2] + rules[3:]))
        self.assertEqual(self.told(bare, less, "--schema", "base"), [("deny udp any any", None, None)])
        parts = self.file("parts", "\n".join(json.dumps({"acl": name, "entry": entry})
                                             for entry in numbered(*rules) for name in "XY"))
        self.assertEqual(self.told(a, parts, "--schema", "base"), [])
        self.assertEqual([row[0] for row in self.told(a, self.file("none", document("base", ("Y", numbered(*rules)))))],
                         [f"{10 * (i + 1)} {words}" for i, words in enumerate((
                             "permit tcp any any fragment-type last-fragment", 'remark "r"', "deny udp any any",
                             'remark "r"', "deny ip any any"))])
        # A bad entry may be any one of its list.
        bad = self.file("bad", document("base", ("X", numbered({"grant": "x"}, *rules[1:])), ("Y", numbered(*rules))))
        for sides in ((a, bad), (bad, a)):
            code, out, _ = self.run_command("diff", "-q", "--by", "content", "--keep-going", "--json", *sides)
            row, = json.loads(out)["differences"]
            self.assertEqual((code, row["may-be-bad"], bool(row["changes"])), (2, True, True))
            self.assertEqual(self.run_command("diff", "-q", "--by", "content", *sides)[:2], (2, b""))
        bags = self.ok("encode", a)
        for sides in (("bags", "cut"), ("cut", "bags")):  # what was not read is not missing
            self.assertEqual(self.run_command("diff", "-q", "--by", "content", "--keep-going",
                                              *(self.file(name, bags[:len(bags) - (name == "cut")])
                                                for name in sides))[:2], (2, b""))

    def test_renamed_lists(self):
        a = self.file("a", document("base", ("OLD", numbered(*self.RULES)), ("KEPT", numbered({"grant": "deny"}))))
        b = self.file("b", document("base", ("KEPT", numbered({"grant": "deny"})), ("a=b", numbered(*self.RULES))))
        junit = self.dir / "junit"
        for by in ("sequence", "content"):
            diff = ("diff", "-q", "--no-losses", "--by", by)
            self.ok(*diff, "--acl", r"OLD=a\=b", a, b)
            self.ok(*diff, "--acl", r"a\=b=OLD", b, a)
            both = ("--acl", "OLD=KEPT", "--acl", r"KEPT=a\=b")
            code, out, _ = self.run_command(*diff, "--json", "--junit", junit, *both, a, b)
            told = json.loads(out)
            self.assertEqual((code, told["different"]), (1, 10))
            self.assertEqual(re.findall('<testcase .*? name="([^"]*)"', junit.read_text()), ["OLD", "KEPT"])
            # The new name of one list takes it from another one.
            code, out, _ = self.run_command(*diff, "--json", "--acl", "OLD=KEPT", a, b)
            sides = [tuple(row[side] and row[side]["acl"] for side in "ab")
                     for row in json.loads(out)["differences"]]
            self.assertLessEqual(set(sides), {("OLD", "KEPT"), ("OLD", None), (None, "KEPT"), ("KEPT", None),
                                              (None, "a=b")})
            self.assertEqual(sum(side[0] == "KEPT" for side in sides), 1)
            self.assertEqual(sum(side[1] == "a=b" for side in sides), 5)
            code, _, err = self.run_command(*diff, "--acl", "NONE=a\\=b", a, b)
            self.assertEqual((code, err), (2, f"aceconv: {a}: no list 'NONE', which --acl names\n"))
        for acl, said in ((["X"], "expected OLD=NEW"), (["=X"], "expected OLD=NEW"),
                          (["X=Y", "X=Z"], "--acl X=Z: a list can be renamed once"),
                          (["X=Y", "Z=Y"], "--acl Z=Y: a list can be renamed once")):
            code, _, err = self.run_command("diff", *(word for name in acl for word in ("--acl", name)), a, b)
            self.assertEqual(code, 2)
            self.assertIn(said, err)


if __name__ == "__main__":
    unittest.main()
