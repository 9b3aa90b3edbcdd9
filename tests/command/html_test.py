"""The page of --html: what it tells, and that no data becomes a part of its markup."""
import base64
import collections
import hashlib
import json
import pathlib
import re
import unittest

import html5lib

from harness import EXAMPLES, Case, document, numbered

HOSTILE = "</script><script>alert(1)</script><!-- ]]> \" ' & \u202e <b>\u00e9"
SHOWN = HOSTILE.replace("\u202e", "\\xe2\\x80\\xae")
LOSSY = {"permit": {"police": {"value": 1, "unit": "pps"}, "log": {}, "log-input": {}}}
SVG = "http://www.w3.org/2000/svg"
UM = EXAMPLES / "um-only.json"


class Page:
    """A page as a browser without scripts has it, and the data inside."""

    def __init__(self, text):
        parser = html5lib.HTMLParser(strict=True, namespaceHTMLElements=False)  # any fault raises
        self.text, self.root = text, parser.parse(text)
        self.scripts = list(self.root.iter("script"))
        self.rows, self.shared = (json.loads(self.one("script", id=name).text) for name in ("rows", "shared"))

    def all(self, tag, **attributes):
        return [node for node in self.root.iter(tag)
                if all(node.get(name.rstrip("_")) == value for name, value in attributes.items())]

    def one(self, tag, **attributes):
        node, = self.all(tag, **attributes)
        return node

    def table(self, heading):
        """The cells of the rows below this heading, as text."""
        section, = [section for section in self.all("section") if section.get("aria-labelledby") == heading]
        return [["".join(cell.itertext()) for cell in row] for row in section.find(".//tbody")]

    def figures(self):
        return {"".join(row[0].itertext()): int("".join(row[1].itertext()))
                for row in self.one("dl", class_="figures")}

    def changes(self):
        """(list, sequence, leaf, before, after, reason) of each change in the data."""
        def value(reference):
            return self.shared["strings"][reference] if isinstance(reference, int) else reference
        return [(self.shared["lists"][row[1]][0], row[2], *map(value, change[:4]))
                for row in self.rows for change in row[6]]

    @staticmethod
    def words(row):
        """Before and after, which the data has by what the two share."""
        if row[5] is None:
            return [row[4]]
        first, last, *between = row[5]
        pieces = row[4].split(" ")
        return [row[4], " ".join([*pieces[:first], *between, *pieces[len(pieces) - last:]])]

    def shown(self):
        """The words of each entry that stands on the page."""
        return ["".join(code.itertext()) for body in self.all("tbody") if body.get("id")
                for code in body.iter("code")]


class Html(Case):
    def page(self, *call, code=0, **more):
        path = self.dir / "page.html"
        self.assertEqual(self.run_command(*call, "-q", "--html", path, **more)[0], code, call)
        return Page(path.read_text())

    def test_complete_in_itself(self):
        page = self.page("convert", "--to", "base", UM, "-o", self.dir / "out")
        for node in page.root.iter():
            for name in set(node.keys()) & {"src", "href", "style", "action", "srcset"}:
                self.assertTrue(name == "href" and node.get(name).startswith("#"), (node.tag, name))
        targets = [node.get("href")[1:] for node in page.all("a")]
        ids = [node.get("id") for node in page.root.iter() if node.get("id")]
        self.assertEqual((len(ids), set(targets) - set(ids)), (len(set(ids)), set()))
        self.assertEqual(re.findall(r"https?:[\w/.]*|url\(|@import|\{\{", page.text), [SVG])
        policy = page.one("meta", **{"http-equiv": "Content-Security-Policy"}).get("content")
        for tag, text in (("style", page.one("style").text), ("script", page.scripts[-1].text)):
            digest = base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()
            self.assertIn(f"{tag}-src 'sha256-{digest}'", policy)
        self.assertTrue(policy.startswith("default-src 'none'; "))

    def test_agrees_with_the_report(self):
        report, out = self.dir / "report", self.dir / "out"
        lossy = document("um", ("two", numbered(LOSSY, {"deny": {}})))
        for call, inputs in ((("convert", "--to", "base"), (UM, "-")), (("check",), ("-", UM)),
                             (("encode",), (UM, "-")), (("inspect",), (UM, "-"))):
            more = () if call[0] == "check" else ("-o", out)
            with self.subTest(call=call):
                page = self.page(*call, "--report", report, *more, *inputs, stdin=lossy,
                                 code=int(call[0] == "check"))
                told = json.loads(report.read_text())
                self.assertEqual(
                    [(list_, number, leaf, before, after, reason)
                     for list_, number, leaf, before, after, reason in page.changes()],
                    [(loss["acl"], loss["sequence"], loss["leaf"], *(
                        loss[side]["text"] if loss[side] else "absent" for side in ("before", "after")),
                      loss["reason"]) for loss in told["losses"]])
                figures = page.figures()
                self.assertEqual(
                    [figures[name] for name in ("Entries", "Bad entries", "Losses", "Entries with losses",
                                                "Match more")],
                    [told["entries"], told["errors"], len(told["losses"]), told["entries-with-losses"],
                     told["entries-that-match-more"]])
                by_list = collections.Counter(loss["acl"] for loss in told["losses"])
                self.assertEqual({row[0]: (int(row[2]), int(row[4])) for row in page.table("lists")},
                                 {"CONTROL-PLANE-UM": (35, by_list["CONTROL-PLANE-UM"]), "two": (2, by_list["two"])})
                by_leaf = collections.Counter((loss["leaf"], loss["reason"]) for loss in told["losses"])
                self.assertEqual({(row[0], row[1]): int(row[2]) for row in page.table("leaves")}, by_leaf)
                first = [row for at, row in enumerate(page.rows)
                         if sum(other[1] == row[1] for other in page.rows[:at]) < 25]
                self.assertEqual(page.shown(), [words for row in first for words in page.words(row) if words])
                self.assertLessEqual({loss["words"] for loss in told["losses"]}, set(page.shown()))
                files = {tuple(row[:2]): row[3] for row in page.table("files")}
                for part, name, content in (("Input", str(UM), UM.read_bytes()), ("Input", "<stdin>", lossy.encode()),
                                            ("Output", str(out), out.read_bytes() if more else None)):
                    self.assertEqual(files.get((part, name)),
                                     content and hashlib.sha256(content).hexdigest())

    def test_differences_and_warnings(self):
        a, b = (self.file(name, document("um", ("X", [
            {"sequence-number": number, "deny": {"protocol": protocol}, "remark": HOSTILE}
            for number, protocol in entries]))) for name, entries in (
                ("a", ((10, "tcp"), (20, "udp"), (30, "icmp"))), ("b", ((10, "tcp"), (20, "gre"), (40, "udp")))))
        for more, kinds in (((), [1, 2, 3]), (("--by", "content"), None)):
            told = json.loads(self.run_command("diff", "--json", *more, a, b)[1])
            page = self.page("diff", *more, a, b, code=1)
            self.assertEqual(len(page.rows), told["different"])
            self.assertEqual([row[0] for row in page.rows], kinds or [row[0] for row in page.rows])
            self.assertEqual([len(row[6]) for row in page.rows],
                             [len(row["changes"]) if "moved" not in row else 0 for row in told["differences"]])
            figures = page.figures()
            self.assertEqual(sum(figures[name] for name in ("Changed", "Only in A", "Only in B", "Moved")),
                             told["different"])
            self.assertEqual([row[:2] for row in page.table("files")[:2]], [["Input A", a], ["Input B", b]])
            self.assertTrue(all(len(row[3]) == 64 for row in page.table("files")))
        self.assertIn("Both inputs mean the same", self.page("diff", a, a).text)
        page = self.page("lint", stdin=document("um", ("X", numbered({"deny": {}}, {"deny": {}})), ("Y", [])))
        self.assertEqual([(row[0], row[2]) for row in page.rows], [(6, 20), (6, None)])
        self.assertEqual([row[0] for row in page.table("leaves")], ["duplicate", "empty-list"])

    def test_records_are_drawn(self):
        page = self.page("inspect", UM, "-o", self.dir / "out", "--no-losses")
        records = self.records(UM)
        self.assertEqual(sum(width for _, _, width in page.shared["layout"]), 264)
        self.assertEqual([row[8][1] for row in page.rows],
                         [record["ConfigurationMask"] for record in records])
        drawn = [body for body in page.all("tbody") if body.get("id")]
        self.assertEqual(len(drawn), 25)
        for body, record in zip(drawn, records):
            members = [cell for cell in body.iter("td") if cell.get("tabindex")]
            self.assertEqual(["".join(cell[0].itertext()) for cell in members],
                             [field["name"] for field in record["fields"] if "offset" in field])
            for cell, field in zip(members, record["fields"]):
                tip = "".join(cell[2].itertext())
                self.assertIn(f"offset {field['offset']}, width {field['width']}, ", tip)
                self.assertIn(f"({field['keyword']})" if "keyword" in field else field["name"], tip)
            self.assertEqual(sorted(title.text.split()[1].rstrip(":") for title in body.iter(f"{{{SVG}}}title")),
                             sorted(bit for field in record["fields"] for bit in field["bits"]))

    def test_digests_of_every_format(self):
        xml, lines, bags = (self.dir / name for name in ("a.xml", "a.ndjson", "a.bags"))
        for path in (xml, lines):
            self.ok("convert", "-q", "--to", "um", "--format", path.suffix[1:], UM, "-o", path)
        self.ok("encode", "-q", "--no-losses", UM, "-o", bags)
        text = self.file("a.hex", bags.read_bytes().hex())
        for path in (xml, lines, bags, text):
            page = self.page("check", "--keep-going", path, code=0)
            self.assertEqual(page.table("files")[0][1:4:2],
                             [str(path), hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()])

    def test_no_text_becomes_markup(self):
        entry = {**LOSSY, "remark": HOSTILE}
        path = self.dir / "<img src=x onerror=alert(1)>&\u202e\n\"'.json"
        path.write_text(document("um", (HOSTILE, numbered(entry))))
        bad = self.file("bad", json.dumps({"permit": {HOSTILE: 1}}))
        plain = self.page("convert", "--to", "base", UM, "-o", self.dir / "out")
        page = self.page("convert", "--to", "base", "--keep-going", "-o", self.dir / "out", path, bad, code=2)
        self.assertEqual({node.tag for node in page.root.iter()}, {node.tag for node in plain.root.iter()} | {"del"})
        self.assertEqual(len(page.scripts), 3)
        self.assertEqual(page.shared["lists"][0][0], SHOWN)
        self.assertIn(SHOWN, "".join(page.all("h3")[0].itertext()))
        self.assertIn("onerror=alert(1)>&\\xe2\\x80\\xae\\x0a", "".join(page.all("h3")[0].itertext()))
        quoted = SHOWN.replace('"', '\\"')
        for words in (page.rows[0][4], page.shown()[0]):
            self.assertIn(f'remark "{quoted}"', words)
        self.assertIn("alert(1)", page.changes()[-1][5] + page.changes()[-1][2])
        self.assertFalse(set("\u202e\0\x1b") & set(page.text))

    def test_long_lists(self):
        lists = [(f"L{i}", numbered(*[{"deny": {"icmp-on": {}}}] * (1 if i else 4000))) for i in range(510)]
        page = self.page("convert", "--to", "base", "-o", "/dev/null", stdin=document("um", *lists))
        self.assertEqual((len(page.rows), page.figures()["Losses"]), (4509, 4509))
        self.assertEqual(page.table("lists")[-1], ["10 further lists", "", "10", "10", "10", "0"])
        self.assertIn("4000 entries, the first 25 of them here", page.text)
        self.assertEqual(len(page.shown()), 2 * (25 + 509))

    def test_a_fault_ends_it(self):
        bad = self.file("bad", json.dumps(LOSSY) + '\n{"permit":{"protocol":"x"}}\n' + "{}\n" * 100000)
        out = self.dir / "out"
        page = self.page("convert", "--to", "base", bad, "-o", out, code=2)
        self.assertFalse(out.exists())
        files = {row[0]: row[3] for row in page.table("files")}
        self.assertEqual((files["Input"], files["Output"]), ("not read to its end", "not written"))
        self.assertEqual([row[0] for row in page.rows], [0, 5])
        self.assertTrue("".join(page.all("p")[0].itertext()).startswith("Stopped at a fault"))
        clean = self.page("check", stdin='{"deny":{}}')
        self.assertEqual("".join(clean.one("p", class_="verdict clean").itertext()),
                         "All entries come back the same.")

    def test_is_a_file_of_the_run(self):
        base = self.file("base", '{"grant":"deny"}')
        for call in (("check", "--html", base, base), ("check", "--html", "p", "--junit", "p", base),
                     ("convert", "--to", "um", "-o", "p", "--html", "p", base)):
            self.assertEqual(self.run_command(*call, cwd=self.dir)[0], 2, call)
        report = self.dir / "p"
        def said():
            self.run_command("convert", "--to", "base", "-j4", UM, "--html", report, "-o", self.dir / "out")
            return re.sub("<time>.*?</time>", "", report.read_text())
        self.assertEqual(said(), said())


if __name__ == "__main__":
    unittest.main()
