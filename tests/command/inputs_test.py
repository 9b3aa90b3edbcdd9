"""What engineers hand in: what servers put around access lists, many files, and encodings as text."""
import base64
import json
import resource
import textwrap
import unittest

from harness import Case, document, numbered

RULES = numbered({"grant": "deny"}, {"grant": "permit", "remark": "r"})
LISTS = {"acl": [{"name": "X", "entry": RULES}]}
ACLS = json.dumps({"aceconv-base:acls": LISTS})
XMLNS = 'xmlns="urn:aceconv:base"'
ENTRIES = ("<entry><sequence-number>10</sequence-number><grant>deny</grant></entry><entry>"
           "<sequence-number>20</sequence-number><grant>permit</grant><remark>r</remark></entry>")
ACL = f"<acl %s><name>X</name>{ENTRIES}</acl>"
XML = f"<acls {XMLNS}>{ACL % ''}</acls>"
NETCONF = 'xmlns="urn:ietf:params:xml:ns:netconf:base:1.0"'
RESTCONF = 'xmlns="urn:ietf:params:xml:ns:yang:ietf-restconf"'
NMDA = 'xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-nmda"'
OTHER = '<interfaces xmlns="urn:i"><interface a="1"><?x?>eth<acls/><!-- --></interface></interfaces>'
REPLY = f'<?xml version="1.0"?>\n<rpc-reply {NETCONF} message-id="101" u:user="x" xmlns:u="u">%s</rpc-reply>\n'
OTHERS = {"i:interfaces": [{"name": "]}\\\"", "n": -1.5e3}, None], "j:s": "a\\\"}", "k:n": 12, "l:t": True}

# input, and what the summary names
WRAPPED = [
    (REPLY % f"<data>{XML}</data>", ", out of rpc-reply, data"),
    (REPLY % f"<data {NMDA}>{XML}</data>", ", out of rpc-reply, data"),
    (f"<config {NETCONF}>{XML}</config>", ", out of config"),
    (f"<data {RESTCONF}>{XML}</data><!-- behind -->\n", ", out of data"),
    (ACL % XMLNS, ", out of acl"),
    (json.dumps({"ietf-restconf:data": {"aceconv-base:acls": LISTS}}), ", out of ietf-restconf:data"),
    (json.dumps({"aceconv-base:acl": LISTS["acl"]}), ", out of aceconv-base:acl"),
    (json.dumps({"ietf-restconf:data": {}}) + ACLS + '{"aceconv-base:acls":{}}',
     ", out of ietf-restconf:data"),
    (f"<data {NETCONF}/>\n<?xml version='1.0'?>\n" + XML, ", out of data"),
    (f"{REPLY % f'<data>{XML}</data>'}]]>]]>\n{REPLY % '<data/>'}]]>]]>", ", out of rpc-reply, data"),
]
# input, the nodes that are stepped over, and how they are named
BESIDE = [
    (f"<data {NETCONF}>{OTHER}{XML}{OTHER}</data>", 2, "urn:i:interfaces"),
    (OTHER + XML, 1, "urn:i:interfaces"),
    (json.dumps({**OTHERS, "aceconv-base:acls": LISTS}), 4, "i:interfaces, j:s, k:n, l:t"),
    (json.dumps({"aceconv-base:acls": LISTS, **{f"m{i}:n": {} for i in range(9)}}), 9,
     ", ".join(f"m{i}:n" for i in range(8)) + ", ..."),
    (json.dumps({"ietf-restconf:data": {"i:x": "y" * (3 << 20), "aceconv-base:acls": LISTS}}, indent=1),
     1, "i:x"),
]
ERROR = ("<error-type>application</error-type><error-tag>invalid-value</error-tag><error-message "
         "xml:lang='en'>no such\nlist</error-message><error-info><x xmlns='u'>y</x></error-info>")
# input, and what must be said behind "aceconv: <stdin>:"
REFUSED = [
    (REPLY % f"\n<rpc-error>{ERROR}</rpc-error>", r"3: the reply is an error: invalid-value: no such\\x0alist\n"),
    (f"<errors {RESTCONF}><error>{ERROR}</error></errors>", "1: the reply is an error: invalid-value: no such"),
    (json.dumps({"ietf-restconf:errors": {"error": [{"error-tag": "access-denied", "error-message": "no"}]}}),
     "1: the reply is an error: access-denied: no\n"),
    (REPLY % "<ok/>", "2: the reply says <ok/>, and holds no data"),
    (REPLY % XML, "2: unknown element 'acls'"),
    (f"<data {NETCONF}>{ACL % XMLNS}</data>", "1: unknown element 'acl'"),
    (f"<rpc {NETCONF}/>", "1: unknown element 'rpc'"),
    (f"<data {NETCONF}>\nx</data>", "2: unexpected text"),
    (f"<data {NETCONF} operation='merge'/>", '1: unknown attribute "operation"; it asks for a change, while'),
    (f'<acls {XMLNS} xmlns:nc="{NETCONF[7:-1]}"><acl nc:operation="delete"/></acls>',
     '1: /aceconv-base:acls: unknown attribute "operation"; it asks for a change'),
    (f'<acls {XMLNS} xmlns:nc="{NETCONF[7:-1]}"><acl><name>X</name><entry nc:operation="delete"/></acl></acls>',
     '1: acl \'X\': .*unknown attribute "operation"; it asks for a change'),
    (f"<data {NETCONF}>\n{OTHER}</data>", "2: <interfaces> in an unknown namespace; .*; --ignore-other-modules"),
    (f"{XML}\n<interfaces/>", '2: <interfaces> in an unknown namespace; expected "urn:aceconv:base"\n'),
    (f"{XML}\n\n<acls {XMLNS}>\n<acl><x/>", "4: /aceconv-base:acls/acl.1.: unknown element 'x'"),
    (f"{XML}\nhello", "2: not well-formed XML"),
    (f"{XML}\n]]>]]>\n\nhello", "4: not well-formed XML"),
    (f"<data {NETCONF}>]]>]]></data>", "1: not well-formed XML"),
    ('{"ietf-restconf:data":\n{"i:x":1}}', '2: unknown member "i:x"; .*; --ignore-other-modules steps over'),
    ('{"ietf-restconf:data":{"aceconv-base:acl":[]}}', '1: unknown member "aceconv-base:acl"; expected'),
    ('{"ietf-restconf:data":{"ietf-restconf:data":{}}}', '1: unknown member "ietf-restconf:data"; expected'),
    (ACLS + "\n" + ACLS, "2: acl 'X' entry 10: a second entry of this sequence number"),
    (ACLS + "\n{}", "2: expected the member \"acls\", found '}'"),
]


class Wrappers(Case):
    def encoded(self, *args, stdin):
        code, out, err = self.run_command("encode", *args, stdin=stdin)
        self.assertEqual((code, err), (0, ""), stdin[:300])
        return out, self.summary.partition(" errors")[2].rpartition("; ")[0]

    def test_are_taken_off_and_named(self):
        wanted = self.encoded(stdin=ACLS)
        self.assertEqual(wanted[1], "")
        for text, said in WRAPPED:
            with self.subTest(text[:200]):
                self.assertEqual(self.encoded(stdin=text), (wanted[0], said))
        # Both schemas side by side, and documents of either one after the other.
        other = document("um", ("X", numbered({"permit": {}})))
        um = self.encoded(stdin=other)[0]
        both = json.dumps({"ietf-restconf:data": {**json.loads(ACLS), **json.loads(other)}})
        for text in (both, ACLS + other, XML + '<acls xmlns="urn:aceconv:um"><acl><name>X</name><entry>'
                     "<sequence-number>10</sequence-number><permit/></entry></acl></acls>"):
            code, out, err = self.run_command("inspect", "--json", stdin=text)
            self.assertIn("acl 'X' entry 10: a second entry", err)
            apart = text.replace('"X"', '"Y"', 1).replace(">X<", ">Y<", 1)
            self.assertEqual(self.encoded(stdin=apart)[0], wanted[0].replace(b"\x61X", b"\x61Y") + um)

    def test_an_entry_by_itself_has_no_list(self):
        text = json.dumps({"aceconv-base:entry": RULES})
        self.assertEqual([(r["acl"], r["sequence"]) for r in self.records(stdin=text)],
                         [(None, 10), (None, 20)])
        self.assertIn(", out of aceconv-base:entry, which names no list; ", self.summary)

    def test_other_modules_are_stepped_over_when_asked(self):
        wanted, _ = self.encoded(stdin=ACLS)
        for text, count, names in BESIDE:
            with self.subTest(names):
                out, said = self.encoded("--ignore-other-modules", stdin=text)
                self.assertEqual(out, wanted)
                self.assertTrue(said.endswith(f" stepped over ({names})"), said)
                self.assertIn(f", {count} node", said)
                code, _, err = self.run_command("encode", stdin=text)
                self.assertEqual((code, "; --ignore-other-modules steps" in err), (2, True), err)

    def test_what_is_not_data_is_refused(self):
        for text, said in REFUSED:
            with self.subTest(text[:200]):
                for options in ((), ("--ignore-other-modules",))[:1 if "--ignore" in said else 2]:
                    code, _, err = self.run_command("inspect", *options, stdin=text)
                    self.assertEqual(code, 2)
                    self.assertRegex(err, "^aceconv: <stdin>:" + said)


class Files(Case):
    def setUp(self):
        super().setUp()
        for path, text in (("in/a.json", ACLS), ("in/sub/b.xml", XML), ("in/sub/c", ACLS), ("in/z.cbor", ""),
                           ("in/readme.md", "x"), ("in/d.ndjson", '{"acl":"X","entry":{"sequence-number":10}}')):
            (self.dir / path).parent.mkdir(parents=True, exist_ok=True)
            (self.dir / path).write_text(text)
        (self.dir / "in/z.cbor").write_bytes(self.ok("encode", "-q", self.dir / "in/a.json"))
        (self.dir / "in/loop").symlink_to(self.dir / "in")

    def tree(self, name="out"):
        return sorted(str(p.relative_to(self.dir / name)) for p in (self.dir / name).rglob("*") if p.is_file())

    def run_in(self, *args, **more):
        return self.run_command(*args, cwd=self.dir, **more)

    def test_a_folder_stands_for_its_files(self):
        code, out, err = self.run_in("check", "--schema", "base", "in")
        self.assertEqual((code, err), (0, ""))
        self.assertEqual(out, b"7 entries checked, 0 do not come back the same\n")
        self.assertEqual(self.verdicts, "".join(f"aceconv: {line}\n" for line in (
            "in/a.json: 2 entries, 0 errors", "in/d.ndjson: 1 entry, 0 errors",
            "in/sub/b.xml: 2 entries, 0 errors", "in/z.cbor: 2 entries, 0 errors",
            "3 other files not read, whose names do not end like an input's")))
        self.assertEqual(self.run_in("check", "-q", "in/sub", "--schema", "base")[2], "")

    def test_an_output_for_each_input(self):
        for args, names in ((("encode", "in/a.json", "in/sub", "in/sub/c", "--schema", "base"),
                             ["a.bags", "b.bags", "c.bags"]),
                            (("decode", "out", "--format", "xml"), ["a.xml", "b.xml", "c.xml"])):
            target = "out" if args[0] == "encode" else "new/deep"
            code, _, err = self.run_in(*args, "--output-dir", target)
            self.assertEqual((code, err), (0, ""))
            self.assertEqual(self.tree(target), names)
        self.assertEqual((self.dir / "out/a.bags").read_bytes(), (self.dir / "in/z.cbor").read_bytes())
        code, _, err = self.run_in("convert", "--to", "um", "in", "--output-dir", "um", "--schema", "base",
                                   "--report", "um.losses")
        self.assertEqual((code, self.tree("um")), (0, ["a.json", "d.json", "sub/b.json", "z.json"]), err)
        self.ok("diff", self.dir / "in/sub/b.xml", self.dir / "um/sub/b.json")
        # An input without entries has an output all the same; nothing is lost of it.
        (self.dir / "none.json").write_text('{"aceconv-um:acls":{}}')
        code, _, err = self.run_in("convert", "--to", "base", "none.json", "in/a.json", "none.json",
                                   "--output-dir", "um")
        self.assertIn("both be written to um/none.json", err)
        code, _, err = self.run_in("convert", "--to", "base", "none.json", "in/a.json", "--output-dir", "um")
        self.assertEqual((code, (self.dir / "um/none.json").read_text()), (0, '{"aceconv-base:acls":{}}\n'))

    def test_all_outputs_or_none(self):
        bad = self.dir / "in/sub/y.json"
        bad.write_text(document("base", ("Y", numbered({"grant": "drop"}))))
        args = ("encode", "in/a.json", "in/sub", "in/d.ndjson", "--schema", "base", "--output-dir", "out/deep")
        code, _, err = self.run_in(*args)
        self.assertEqual((code, (self.dir / "out").exists()), (2, False), err)
        self.assertIn("aceconv: in/sub/y.json: 1 entry, 1 error\naceconv: 1 input not read\n", self.verdicts)
        code, _, err = self.run_in(*args, "--keep-going")
        self.assertEqual((code, self.tree()), (2, ["deep/a.bags", "deep/b.bags", "deep/d.bags"]))
        self.assertEqual(err.count("\n"), 1)
        self.assertIn("aceconv: in/sub/y.json: 1 entry, 1 error\naceconv: in/d.ndjson: 1 entry, 0 errors\n",
                      self.verdicts)

    def test_more_files_than_may_be_open(self):
        (self.dir / "many").mkdir()
        for i in range(300):
            (self.dir / f"many/{i}.json").write_text(ACLS)
        limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (32, 32))
        code, _, err = self.run_in("encode", "-q", "many", "--output-dir", "out", preexec_fn=limit)
        self.assertEqual((code, err, len(self.tree())), (0, "", 300))

    def test_what_cannot_be_meant(self):
        (self.dir / "empty").mkdir()
        (self.dir / "in/a.xml").write_text(XML)
        for args, said in (
                (("check", "empty"), "empty: no file in it ends in one of .json "),
                (("encode", "in", "--output-dir", "out"), "in/a.json and in/a.xml would both be written to out/a.bags"),
                (("convert", "--to", "um", "in/a.json", "--output-dir", "in"), "to be read and written at once"),
                (("encode", "in", "--output-dir", "in/out"), "in/out lies in in, whose files are read"),
                (("encode", "--output-dir", "out"), "standard input has no name"),
                (("diff", "in", "in/a.json"), "in is a folder; diff compares two files")):
            code, _, err = self.run_in(*args)
            self.assertEqual((code, said in err), (2, True), err)
        self.assertFalse((self.dir / "out").exists())


class Digits(Case):
    """Encodings as text."""
    def setUp(self):
        super().setUp()
        self.one = self.ok("encode", stdin='{"grant":"permit","remark":"rr"}')
        self.hex, self.base64 = self.one.hex(), base64.b64encode(self.one).decode()
        self.wanted = self.ok("decode", "--format", "ndjson", stdin=self.one)

    def test_are_recognised(self):
        twice = base64.b64encode(self.one * 2).decode()
        pairs = " ".join(f"0x{byte:02x}" for byte in self.one)
        for text, count in ((self.hex, 1), (self.hex.upper() + "\r\n", 1), (f" \n{self.hex}\n\n{self.hex}\n", 2),
                            (pairs, 1), ("0x" + self.hex + "\n0x" + self.hex, 2),
                            ("\n".join(textwrap.wrap(self.hex * 2, 32)), 2),
                            (self.base64, 1), (f"{self.base64}\n{self.base64}\n", 2), (self.base64 * 2, 2),
                            ("\n".join(textwrap.wrap(twice, 76)), 2), (textwrap.fill(twice, 4), 2)):
            with self.subTest(text[:100]):
                self.assertEqual(self.ok("decode", "--format", "ndjson", stdin=text), self.wanted * count)
        for form in ("hex", "base64"):
            self.assertEqual(self.ok("decode", "--format", "ndjson",
                                     "--from-format", form, stdin=" \n"), b"")

    def test_entries_have_the_line_of_their_first_digit(self):
        bad = self.one[:-2] + b"\xff" + self.one[-1:]  # text that is no UTF-8
        for digits in (bytes.hex, lambda data: base64.b64encode(data).decode()):
            for text, line in ((digits(self.one) + "\n\n" + digits(bad), 3), (digits(bad), 1),
                               ("\n" + textwrap.fill(digits(self.one), 4) + "\n" + textwrap.fill(digits(bad), 8),
                                2 + -(-len(digits(self.one)) // 4)),
                               (textwrap.fill(digits(200 * self.one), 64) + "\n" + digits(bad),
                                1 + -(-len(digits(200 * self.one)) // 64))):
                code, _, err = self.run_command("decode", "--keep-going", "--format", "ndjson",
                                                "--errors", self.dir / "errors", stdin=text)
                self.assertEqual(code, 2)
                self.assertRegex(err, rf"^aceconv: <stdin>:{line}: byte ")
                self.assertEqual(json.loads((self.dir / "errors").read_text())["line"], line)

    def test_faults_have_line_and_column(self):
        self.assertTrue(self.base64.endswith("="))
        for text, said, read in (
                (self.hex + "\n83zz", ":2: column 3: 'z' is no hexadecimal digit", 1),
                (self.hex[:-1] + "\n", f":1: column {len(self.hex)}: the line ends inside of a byte", 0),
                (self.hex[:-1], f":1: column {len(self.hex) - 1}: the input ends inside of a byte", 0),
                (self.hex + "\n8 3", ":2: column 2: a blank stands inside of a byte", 1),
                (self.base64 + "\ng\u00e9", ":2: column 2: '\\xc3' is no base64 digit", 1),
                (self.base64 + "\ng=", ":2: column 2: '=' is no base64 digit", 1),
                (self.base64 + "\ngg=g", ":2: column 4: 'g' is no base64 digit", 1),
                (self.base64 + "\ngh==", ":2: column 4: the last digit before the padding", 1),
                (self.base64[:-5] + "\n", "the line ends inside of a group of four digits", 0),
                (self.hex[:-2], ":1: the encoding at byte 8 is cut off or malformed", 0),
                ("c0ffee", "expected a JSON object, XML or encodings, found 'c0ffee'; --from-format hex or", 0)):
            with self.subTest(said):
                code, out, err = self.run_command("decode", "--keep-going", "--format", "ndjson", stdin=text)
                self.assertEqual((code, out), (2, self.wanted * read), err)
                self.assertIn(said, err)


if __name__ == "__main__":
    unittest.main()
