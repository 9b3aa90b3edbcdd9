"""Lint: each rule as docs/lint.md shows it, lists without a warning, what is not claimed."""
import json
import os
import re
import subprocess
import unittest

from harness import ACECONV, EXAMPLES, Case, document, numbered

TEXT = (EXAMPLES.parent / "docs/lint.md").read_text()
EXAMPLE = re.compile(r"(?s)\n### (\S+)\n\n([^\n]*)\n(?:\n[^#\n]*\n)?\n```json\n(.*?)```\n```text\n(.*?)```")
DENY = {"grant": "deny"}


def tcp(**more):
    return {"grant": "permit", "protocol": "tcp", **{k.replace("_", "-"): v for k, v in more.items()}}


def source(address, **more):
    return {"source-network": {"source-address": address,
                               **{"source-" + k.replace("_", "-"): v for k, v in more.items()}}}


def port(operator, first, last=None):
    values = {"destination-operator": operator, "first-destination-port": first}
    return {"destination-port": values if last is None else {**values, "second-destination-port": last}}


GROUP, FLAGS = {"source-prefix-group": "G"}, {"tcp": {"tcp-bits-match-operator": "match-all",
                                                      "tcp-bits-mask": "syn"}}


class Lint(Case):
    def lint(self, *args, stdin=b"", code=0):
        got, out, err = self.run_command("lint", "-q", *args, stdin=stdin)
        self.assertEqual((got, err), (code, ""))
        return out.decode()

    def rules(self, *args, **more):
        """The rules that warn, by line and entry."""
        return re.findall(r"(?m)^[^:]*:(\d+): .* \[(\S+)\]$", self.lint(*args, **more))

    def test_each_rule_as_documented(self):
        examples = EXAMPLE.findall(TEXT)
        told = re.findall(r"(?m)^(\S+) +(.*)$", self.ok("lint", "--list-rules").decode())
        self.assertEqual([(name, meaning) for name, meaning, _, _ in examples], told)
        for name, _, data, shown in examples:
            path = self.file("list.json", data)
            call = [ACECONV, "lint", "-q", "list.json"]
            done = subprocess.run(call, cwd=self.dir, check=True, capture_output=True, text=True)
            self.assertEqual((done.stdout, done.stderr), (shown, ""))
            self.assertEqual({rule for _, rule in self.rules(path)}, {name})
            self.assertEqual(self.lint("--rule", name, "--strict", path, code=1).count("\n"),
                             shown.count("\n"))
            self.assertNotIn(f"[{name}]", self.lint("--no-rule", name, path))
            if name != "empty-list":  # the same of encodings, which have no lines
                bags = self.file("bags", self.run_command("encode", path)[1])
                self.assertEqual({rule for _, rule in re.findall(r"(#\d+): .* \[(\S+)\]", self.lint(bags))},
                                 {name})

    def test_nothing_to_warn_of(self):
        for path in EXAMPLES.glob("*.json"):
            self.assertEqual(self.lint(path), "", path)
        for schema in ((), ("--um",)):
            made = subprocess.run([os.environ["ACECONV_GENERATOR"], "2000", *schema, "--document", "--seed", "5"], check=True,
                                  capture_output=True).stdout
            self.assertEqual(self.lint("--no-rule", "never-met,duplicate,shadowed", stdin=made), "")

    def test_shadowing_claims(self):
        wide, host = source("192.0.2.0", prefix_length=24), source("192.0.2.7")
        for earlier, later, warned in (
                (tcp(**wide), tcp(**host), True),
                (tcp(**host), tcp(**wide), False),
                (DENY, {"remark": "A note"}, False),
                ({"remark": "A note"}, DENY, False),
                ({"protocol": "tcp"}, DENY, False),
                (tcp(**GROUP), tcp(), False),
                (tcp(**GROUP), tcp(**host), False),
                (tcp(**GROUP), tcp(**GROUP, log_option="log"), True),
                (tcp(), tcp(**GROUP), True),
                (tcp(**GROUP), tcp(**GROUP, **host), False),
                (tcp(**GROUP), tcp(source_prefix_group="H"), False),
                (tcp(**FLAGS), tcp(**host), False),
                (tcp(**FLAGS), tcp(**FLAGS, **host), True),
                (tcp(**port("range", 0, 65535)), tcp(), False),
                (tcp(**port("greater-than", 1023)), tcp(**port("range", 1024, 2000)), True),
                (tcp(**port("greater-than", 1023)), tcp(**port("range", 1023, 2000)), False),
                (tcp(**port("not-equal", 22)), tcp(**port("less-than", 22)), True),
                (tcp(**port("not-equal", 22)), tcp(**port("range", 21, 23)), False),
                (tcp(fragments=[None]), tcp(), False),
                (tcp(log_option="log", counter_name="c"), tcp(**host), True),
                (source("192.0.2.0", wild_card_bits="0.0.0.254") | DENY, DENY | source("192.0.2.6"), True),
                (source("192.0.2.0", wild_card_bits="0.0.0.254") | DENY, DENY | source("192.0.2.7"), False),
                ({"grant": "permit", "icmp": {"icmp-type-code": "unreachable"}},
                 {"grant": "deny", "icmp": {"icmp-type-code": "host-unreachable"}}, True)):
            path = self.file("list", document("base", ("X", numbered(earlier, later))))
            said = self.lint("--rule", "shadowed", path)
            self.assertEqual("[shadowed]" in said, warned, (earlier, later, said))

    def test_whose_entries_are_compared(self):
        """Those of one list of one input; none that nothing says the list of."""
        first, second = numbered(tcp(), {**tcp(), "log-option": "log"})
        lists = document("base", ("X", [first]), ("Y", [second]))
        self.assertEqual(self.lint(stdin=lists), "")
        one, other = (self.file(name, document("base", ("X", [entry])))
                      for name, entry in (("a", first), ("b", second)))
        self.assertEqual(self.lint(one, other), "")
        self.assertEqual(self.lint(stdin=document("base", ("X", [first])) + document("base", ("X", [second]))), "")
        backwards = document("base", ("X", [first, {**second, "sequence-number": 5}]))
        self.assertEqual(self.lint(stdin=backwards), "")
        lines = "".join(json.dumps(entry) + "\n" for entry in (first, second))
        code, out, err = self.run_command("lint", "-q", "--schema", "base", stdin=lines)
        self.assertEqual((code, out, err),
                         (0, b"", "aceconv: 2 entries of no named list: not compared with one another\n"))

    def test_empty_lists_and_bad_entries(self):
        empty = document("base", ("X", []), ("Y", [{"sequence-number": 10}]), ("Z", []))
        xml = '<acls xmlns="urn:aceconv:base"><acl><name>X</name></acl>\n<acl><name>Z</name></acl></acls>'
        for text, lines in ((empty, ["1", "1"]), (xml, ["1", "2"])):
            found = self.rules("--rule", "empty-list", stdin=text)
            self.assertEqual(found, [(line, "empty-list") for line in lines])
        code, out, err = self.run_command("lint", "--keep-going", "-q", stdin=empty.replace(
            '"sequence-number": 10', '"protocol": "x"'))
        self.assertEqual((code, out.count(b"empty-list"), err.count("\n")), (2, 2, 1))

    def test_unknown_rule(self):
        code, out, err = self.run_command("lint", "--rule", "shadow", stdin="")
        self.assertEqual((code, out, err.splitlines()[0]), (
            2, b"", "aceconv: unknown rule shadow; did you mean shadowed?; --list-rules shows all"))


if __name__ == "__main__":
    unittest.main()
