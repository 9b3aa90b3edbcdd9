"""What each verb does with good data, in every format."""
import json
import os
import re
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

from harness import ACECONV, Case, EXAMPLES, TIMES, document, numbered

WEB = {"grant": "permit", "protocol": "tcp",
       "source-network": {"source-address": "192.0.2.0", "source-prefix-length": 24},
       "destination-port": {"destination-operator": "equal", "first-destination-port": "www"},
       "icmp": {"icmp-type-code": "echo"}, "tcp": {"tcp-bits": "syn ack"},
       "next-hop": {"next-hop-2": {"next-hop": "198.51.100.7", "vrf-name": "blue"}},
       "capture": True, "remark": "caf\u00e9 \"web\""}
UDF = {"permit": {"udf-entries": {"udf": [
    {"udf-name": "offset-a", "udf-value": "1f", "udf-mask": "ff"}]}}}


class Inspect(Case):
    def test_every_present_field_with_its_place(self):
        record, = self.records(stdin=json.dumps({"sequence-number": 7, **WEB}))
        self.assertEqual((record["acl"], record["sequence"]), (None, 7))
        rows = [(f["name"], f["bits"], f.get("offset"), f.get("width"), f.get("value"),
                 f.get("keyword")) for f in record["fields"]]
        self.assertEqual(rows, [
            ("grant", ["0"], 16, 1, 1, "permit"),
            ("protocol", ["1"], 18, 2, 6, "tcp"),
            ("saddr", ["2"], 24, 4, "192.0.2.0", None),
            ("spfx_len", ["36"], 32, 4, 24, None),
            ("dopr", ["9"], 54, 1, 1, "equal"),
            ("dport1", ["10"], 56, 2, 80, "www"),
            ("capture", ["38"], 64, 4, True, None),
            ("icmp_type_code", ["19"], 76, 4, 0x8FFFF, "echo"),
            ("tcpflags", ["21"], 81, 1, 0x12, "syn ack"),
            ("nexthop2", ["34"], 104, 4, "198.51.100.7", None),
            ("vrf2", ["40"], 120, 8, "blue", None),
            ("remark", ["31"], 200, 8, "caf\u00e9 \"web\"", None),
            ("bit 42", ["42"], None, None, None, None)])
        self.assertEqual(record["fields"][-1]["note"], "next hop 2 is configured")
        self.assertEqual(record["ConfigurationMask"], "0x%016x" % sum(
            1 << b for b in (0, 1, 2, 36, 9, 10, 38, 19, 21, 34, 40, 31, 42)))

    def test_second_mask_and_arrays(self):
        entry = {"permit": {**UDF["permit"], "police": {
            "value": 5, "unit": "kbps", "priority": "medium"}}}
        record, = self.records(stdin=json.dumps(entry))
        self.assertEqual((record["ConfigurationMask"], record["ConfigurationMask2"]),
                         ("0x0000000000000001", "0x0000000013010101"))
        rows = {f["name"]: (f["bits"], f["offset"], f["value"], f.get("keyword"))
                for f in record["fields"]}
        self.assertEqual(rows, {
            "grant": (["0"], 16, 1, "permit"),
            "UDF": (["2:0", "2:8", "2:16"], 224,
                    [{"name": "offset-a", "value": "0x1f", "mask": "0xff"}], None),
            "Police.PoliceValue": (["2:24"], 244, 5, None),
            "Police.PoliceUnit": (["2:25"], 248, 2, "kbps"),
            "Priority": (["2:28"], 260, 3, "medium")})

    def test_text(self):
        line = '  10 deny any any remark "r"\n'
        entry = {"grant": "deny", "remark": "r"}
        lists = self.ok("encode", stdin=document("base", ("a \"b", numbered(entry, {})),
                                                 ("c", numbered(entry))))
        um = self.ok("encode", stdin=document("um", ("c", numbered({"deny": {}, "remark": "r"}))))
        bare = self.ok("encode", stdin=json.dumps(entry))
        said = self.ok("decode", "--strict", "--format", "text", stdin=lists + bare + um)
        self.assertEqual(said.decode(), f'acl "a \\"b"\n{line}  20 no-action any any\nacl "c"\n{line}'
                                        f'deny any any remark "r"\nacl "c"\n{line}')
        record, = self.records(stdin=um)
        self.assertEqual(f"  {record['words']}\n", line)
        permit = self.ok("encode", "--no-labels", stdin='{"grant":"permit"}')
        bad = permit.removesuffix(b"\1") + b"\7"  # no action, and so no text
        self.assertEqual(self.ok("decode", "--format", "text", stdin=bad),
                         b"no-action any any [grant=7]\n")
        self.assertTrue(self.run_command("decode", stdin=bad)[2].endswith(
            "; the entry: no-action any any [grant=7]\n"))

    def test_names_follow_the_schema(self):
        encoded = self.ok("encode", "--no-labels", stdin=json.dumps(
            {"fragment-type": "first-fragment", "protocol": 512}))
        for schema, names in (("base", {"FragmentFlags": "first-fragment"}),
                              ("um", {"FragmentFlags": "dont-fragment is-fragment",
                                      "protocol": "ipv4"})):
            record, = self.records("--schema", schema, stdin=encoded)
            self.assertEqual(names, {f["name"]: f["keyword"] for f in record["fields"]
                                     if "keyword" in f})

    def test_unmarked_values_are_shown(self):
        encoded = self.ok("encode", "--schema", "base", stdin='{"qos-group": 5}')
        self.assertIn((1 << 55).to_bytes(8, "big"), encoded)
        for mask, row in ((1 << 56, ("qos_group", [], 5, "not marked present")),
                          (1 << 55 | 1 << 61, ("bit 61", ["61"], None, "marks no field")),
                          (1 << 55 | 1 << 31, ("remark", ["31"], None, "marked present, but null"))):
            marked = encoded.replace((1 << 55).to_bytes(8, "big"), mask.to_bytes(8, "big"))
            record, = self.records(stdin=marked)
            self.assertIn(row, [(f["name"], f["bits"], f.get("value"), f.get("note"))
                                for f in record["fields"]])
        code, out, err = self.run_command("inspect", stdin=marked)
        self.assertRegex(err, "loss: entry: present -> absent; the base schema cannot write it: "
                         "the entry marks a text that it does not hold\n$")
        self.assertIn(b"remark                 null  ! marked present, but null\n", out)

    def test_text(self):
        entry = {"permit": {"tcp-flags": {"match-all": {"tcp-bits": "+syn"}}, "log": {},
                            "source": {"host": "192.0.2.1"}, "nexthop1": {"vrf": "v"},
                            "nexthop2": {"vrf": "w"}, "icmp": {"message-type-name": "Echo"},
                            "udf-entries": {"udf": [{"udf-name": "a"}, {"udf-name": "b"}]}}}
        self.assertEqual(self.ok("inspect", stdin=json.dumps(entry)).decode(), """\
  presence bits      offset  field                  value
entry #1: permit 192.0.2.1 any icmp echo tcp-flags match-all +syn udf "a" 0x0/0x0 udf "b" 0x0/0x0 \
regular-next-hop vrf-1 "v" vrf-2 "w" log
  95 bytes encoded, masks 0x0000018100782005 0x0000000000030303
  0                      16  grant                  1 (permit)
  2                      24  saddr                  192.0.2.1
  13                     60  log                    1 (log)
  19                     76  icmp_type_code         589823 (Echo)
  20                     80  tcpflagsopr            1 (match-all)
  21                     81  tcpflags               2 (syn)
  22                     82  tcpflags_mask          2 (syn)
  32                     96  nexthop                1 (regular-next-hop)
  39                    112  vrf1                   "v"
  40                    120  vrf2                   "w"
  2:0-1,8-9,16-17       224  UDF                    a 0x0/0x0, b 0x0/0x0
""")


class Formats(Case):
    def test_examples_come_back_through_every_format(self):
        for path in sorted(EXAMPLES.glob("*.json")):
            first = path.read_text().lstrip()
            schema = "um" if first.startswith('{"aceconv-um:') else "base"
            with self.subTest(path.name):
                encoded = self.ok("encode", path)
                for form in ("json", "xml", "ndjson"):
                    out = self.dir / ("out." + form)
                    self.ok("decode", "--schema", schema, "--format", form, "-o", out, stdin=encoded)
                    self.assertEqual(self.ok("encode", out), encoded, form)
                    self.ok("diff", path, out)
                self.assertEqual(self.ok("check", "-q", path), b"")

    def test_document_has_an_entry_a_line(self):
        source = document("base", ("A", numbered({"remark": "1"}, {"remark": "2"})), ("B", []),
                          ("C\n<&>\"", numbered({"remark": "3"})))
        encoded = self.ok("encode", stdin=source)
        lines = self.ok("decode", stdin=encoded).decode().splitlines()
        self.assertEqual(lines[1], '{"name":"A","entry":[')
        self.assertTrue(lines[2].endswith("},") and "\"remark\":\"1\"" in lines[2])
        again = json.loads("".join(lines))["aceconv-base:acls"]["acl"]
        self.assertEqual([acl["name"] for acl in again], ["A", "C\n<&>\""])
        xml = self.ok("decode", "--format", "xml", stdin=encoded)
        names = [e.text for e in ElementTree.fromstring(xml).iter("{urn:aceconv:base}name")]
        self.assertEqual(names, ["A", "C\n<&>\""])
        self.assertEqual(self.ok("encode", stdin=xml), encoded)

    def test_the_longest_name_and_control_characters_go_through_every_format(self):
        for name in ('"' * 4096, "\u00e9" * 2048, "\t" * 4096):
            encoded = self.ok("encode", stdin=document("base", (name, numbered(
                {"remark": " \r\n\t\r"}))))
            for form, backend in (("json", "bulk"), ("json", "validating"), ("xml", "bulk"),
                                  ("ndjson", "validating")):
                options = ("--backend", backend)
                text = self.ok("decode", "--format", form, *options, stdin=encoded)
                self.assertEqual(self.ok("encode", "--schema", "base", *options, stdin=text), encoded)
            self.ok("encode", "--schema", "base", "--stored", self.file("stored", encoded),
                    stdin='{"grant":"deny"}')

    def test_labels(self):
        # RFC 8949: array of three, text or null, unsigned or null, text
        base, um = b"\x64base", b"\x62um"
        for source, label in (
                (document("base", ("X", numbered({"remark": "r"}))), b"\x83\x61X\x0a" + base),
                (document("um", ("X", numbered({"remark": "r"}))), b"\x83\x61X\x0a" + um),
                ('{"sequence-number":300,"grant":"deny"}', b"\x83\xf6\x19\x01\x2c" + base),
                ('{"acl":"X","entry":{"permit":{}}}', b"\x83\x61X\xf6" + um),
                ('{"permit":{}}', b"\x83\xf6\xf6" + um)):
            bare = self.ok("encode", "--no-labels", stdin=source)
            self.assertEqual(self.ok("encode", stdin=source), label + bare)
            # Labels of two tell the same, but for the schema.
            schema = "um" if label.endswith(um) else "base"
            old = b"\x82" + label[1:].removesuffix(base).removesuffix(um)
            self.assertEqual(self.records("--schema", schema, stdin=old + bare),
                             self.records(stdin=label + bare))
        self.assertEqual(self.ok("decode", "--format", "ndjson", stdin=bare * 2).count(b"\n"), 2)

    def test_each_encoding_has_the_schema_of_its_label(self):
        entries = {"base": {"fragment-type": "is-fragment"}, "um": {"permit": {"protocol": 512}}}
        encoded = {schema: self.ok("encode", stdin=document(schema, (schema, numbered(entry))))
                   for schema, entry in entries.items()}
        for schema, other in (("base", "um"), ("um", "base")):
            for form in ("json", "xml", "ndjson"):
                wanted = self.ok("decode", "--format", form, stdin=encoded[schema])
                code, out, err = self.run_command(
                    "decode", "--keep-going", "--format", form, stdin=encoded[schema] + encoded[other])
                self.assertEqual((code, out), (2, wanted))
                self.assertIn(f":#2: acl '{other}' entry 10: an entry of the {other} schema; the "
                              f"output is of the {schema} schema", err)
            self.assertEqual(self.ok("encode", stdin=wanted), encoded[schema])
            code, _, err = self.run_command("decode", "--schema", other, stdin=encoded[schema])
            self.assertEqual(code, 2)
            self.assertRegex(err, f"labelled as of the {schema} schema, not the {other} schema.*: "
                                  f"convert --to {other}")
        names = [(record["schema"], [f["keyword"] for f in record["fields"] if "keyword" in f])
                 for record in self.records(stdin=encoded["base"] + encoded["um"])]
        self.assertEqual(names, [("base", ["is-fragment"]), ("um", ["permit", "ipv4"])])

    def test_encodings_whose_meaning_depends_on_an_untold_schema(self):
        police = {"permit": {"police": {"value": 1, "unit": "pps"}}}
        for schema, entry, fields in (
                ("base", {"fragment-type": "dont-fragment"}, "FragmentFlags"),
                ("base", {"protocol": "ip", "fragment-type": 8}, "protocol, FragmentFlags"),
                ("base", {"protocol-operator": "range", "protocol": 1, "protocol2": 512},
                 "protocol2"),
                ("um", {"deny": {"protocol": 512, "icmp-on": {}}}, "protocol, icmp_on"),
                ("um", UDF, "UDF"), ("um", police, "Police"),
                ("um", {"permit": {"police": {"priority": "low"}}}, "Priority"),
                ("base", WEB, None), ("um", {"deny": {"protocol": "tcp", "log": {}}}, None)):
            path = self.file("raw", self.ok("encode", "--no-labels", stdin=json.dumps(entry)))
            for option, *args in (("--schema", "decode", path), ("--schema", "inspect", path),
                                  ("--schema", "check", path), ("--schema-a", "diff", path, path),
                                  ("--schema-b", "diff", "--schema-a", schema, path, path),
                                  ("--schema", "convert", "--to", "um", "--no-losses", path),
                                  ("--schema", "convert", "--to", "base", "--no-losses", path)):
                with self.subTest(args=args, fields=fields):
                    if fields is None:
                        self.ok(*args)
                        continue
                    code, out, err = self.run_command(*args, "--keep-going")
                    self.assertEqual((code, b"grant" in out), (2, False))
                    self.assertIn(f"{path}:#1: the meaning of {fields} depends on the schema, which "
                                  f"no label tells; give {option} base or {option} um\n", err)
            self.ok("decode", "--schema", schema, path)
            self.ok("diff", "--schema-a", schema, "--schema-b", schema, path, path)
            self.ok("diff", "--schema", schema, path, path)

    def test_ways_to_write_the_same_entries(self):
        one, two = {"sequence-number": 10, "grant": "deny"}, {"sequence-number": 20, **WEB}
        ns = 'xmlns="urn:aceconv:base"'
        whole = document("base", ("X", [one, two]))
        wanted = self.ok("encode", stdin=whole)
        same = {
            "indented": json.dumps(json.loads(whole), indent=4),
            "byte order mark": "\ufeff" + whole,
            "name last": json.dumps({"aceconv-base:acls": {"acl": [
                {"entry": [one, two], "name": "X"}]}}),
            "lines": "".join(json.dumps({"acl": "X", "entry": e}) + "\r\n\n" for e in (one, two)),
            "members turned": json.dumps({"entry": one, "acl": "X"}) + "\n" +
                              json.dumps({"entry": two, "acl": "X"}),
            "objects": json.dumps({"acl": "X", "entry": one}, indent=1) +
                       json.dumps({"acl": "X", "entry": two}, indent=1),
        }
        for name, text in same.items():
            with self.subTest(name):
                self.assertEqual(self.ok("encode", stdin=text), wanted)
        for encoding in ("", ' encoding="Utf-8"', ' encoding="us-ascii"'):
            xml = f"""<?xml version="1.0"{encoding}?><!-- c --><a:acls xmlns:a="urn:aceconv:base">
                <a:acl><a:entry><a:sequence-number>10</a:sequence-number><a:remark>&lt;</a:remark>
                </a:entry><a:name>X</a:name></a:acl></a:acls>"""
            record, = self.records(stdin=xml)
            self.assertEqual((record["acl"], record["sequence"], record["fields"][0]["value"]),
                             ("X", 10, "<"))
        record, = self.records(stdin=f"<entry {ns}><remark>r</remark></entry>")
        self.assertEqual(record["acl"], None)

    def test_schema_of_bare_entries_is_told_by_a_later_one(self):
        lines = '{"remark":"a"}\n{"sequence-number":5,"remark":"b"}\n{"permit":{}}\n'
        self.assertEqual(len(self.records(stdin=lines)), 3)
        silent = self.file("silent", '{"remark":"a"}')
        for option, *args in (("--schema", "encode", silent), ("--schema-b", "diff",
                               "--schema-a", "um", silent, silent)):
            code, _, err = self.run_command(*args)
            self.assertEqual(code, 2)
            self.assertIn(f"{silent}: nothing in the entries tells their schema; give {option} "
                          f"base or {option} um\n", err)
        self.assertEqual(self.fields({"remark": "a"}, "um"), {"remark": "a"})

    def test_no_entries(self):
        """Lines and encodings may be none; an empty document has been lost on its way."""
        target = self.dir / "out"
        for verb in ("encode", "decode", "inspect", "check"):
            for form, data, code in ((None, b" \n", 2), (None, b"", 2), ("json", b"", 2),
                                     ("xml", b"\n", 2), ("ndjson", b"\n\n", 0), ("cbor", b"", 0)):
                args = (() if form is None else ("--from-format", form)) + (
                    () if verb == "check" else ("-o", target))
                for going in ((), ("--keep-going",)):
                    got, _, err = self.run_command(verb, *args, *going, stdin=data)
                    self.assertEqual((got, "the input is empty" in err), (code, code == 2), args)
                    self.assertEqual(self.summary == "", code == 2)  # there is nothing to sum up
                    self.assertEqual(target.exists(), code == 0 and verb != "check", (verb, args))
                    target.unlink(missing_ok=True)
        self.assertEqual(self.ok("encode", stdin='{"aceconv-um:acls":{}}'), b"")

    def test_several_inputs(self):
        """Of any format and schema; in the order given, with one account of them."""
        one = self.file("one", document("base", ("X", numbered({"grant": "deny"}, WEB))))
        line = '{"acl":"%s","entry":{"sequence-number":%d,"permit":{}}}\n'
        two = self.file("two", line % ("X", 30) + line % ("Y", 10))
        alone = self.ok("encode", one) + self.ok("encode", two)
        self.assertEqual(self.ok("encode", one, two), alone)
        self.assertTrue(self.summary.startswith("aceconv: 4 entries, 0 errors; "))
        encoded = self.file("encoded", alone)
        self.assertEqual(len(self.records(encoded, "-", stdin=line % ("Z", 1))), 5)
        rows = self.records(one, two)
        self.assertEqual([(r["file"], r["acl"], r["sequence"]) for r in rows],
                         [(one, "X", 10), (one, "X", 20), (two, "X", 30), (two, "Y", 10)])
        self.assertIn(f"{two}: acl 'Y' entry 10: ".encode(), self.ok("inspect", one, two))
        # What stands in one output has each number of a list once; what is looked at need not.
        code, _, err = self.run_command("encode", one, one)
        self.assertEqual((code, err.count("\n")), (2, 1))
        self.assertTrue(err.startswith(f"aceconv: {one}:1: acl 'X' entry 10: a second entry"))
        self.assertEqual(b"4 entries checked, 0 do not come back the same\n", self.ok("check", one, one))
        self.assertIn(b"1 entry checked, 1 does not come back",
                      self.run_command("check", stdin='{"permit":{},"deny":{}}')[1])
        # A fault ends an input, and with --keep-going that one alone.
        bad, left = self.file("bad", "none"), self.dir / "left"
        lossy = self.file("lossy", json.dumps({"acl": "L", "entry": {"sequence-number": 1, **UDF}}))
        for going, codes in (((), (2, 0)), (("--keep-going",), (2, 3))):
            args = ("--schema", "um", "--to", "base", two, bad, lossy, "-o", left, *going)
            code, _, err = self.run_command("convert", *args)
            self.assertEqual((code, left.exists() and len(self.records(left))), codes, err)
            self.assertEqual(f"aceconv: {lossy}:1: acl 'L' entry 1: loss: " in err, codes[1] == 3)
            self.assertIn(f"aceconv: {bad}:1: ", err)

    def test_stored_encodings_keep_user_defined_fields(self):
        deny, lines = {"grant": "deny"}, '{"grant":"deny"}\n' * 2
        def stored(name, *numbers):
            return self.ok("encode", stdin=document("um", (
                name, [{"sequence-number": number, **UDF} for number in numbers])))
        def base(name):
            return document("base", (name, numbered(deny, deny)))
        plain = self.ok("encode", stdin=base("X"))
        raw = self.ok("encode", "--no-labels", stdin=json.dumps(UDF))
        field = r"loss: UDF\b.*: offset-a 0x1f/0xff -> absent; "
        unmet = field + "no entry of this list and sequence number"
        # stored encodings, entries, which of them have the fields, what is lost
        for kept, text, wanted, lost in (
                (stored("X", 20), base("X"), [False, True], []),
                (plain, base("Y"), [False, False], []),
                (stored("X", 10, 30), base("X"), [True, False], ["#2: acl 'X' entry 30: " + unmet]),
                (stored("X", 10, 20), base("Y"), [False, False],
                 ["#1: acl 'X' entry 10: " + unmet, "#2: acl 'X' entry 20: " + unmet]),
                (raw + raw, lines, [True, True], []),
                (raw * 3, lines, [True, True], ["#3: " + field + "no entry was encoded in its place"]),
                (raw, base("X"), [False, False], ["#1: .*, while the entries have"]),
                (raw + stored("X", 20), base("X"), [False, True],
                 ["#1: .*, while other stored encodings have"]),
                (raw + plain, lines, [False, False], ["#1: .*, while other stored encodings have"])):
            with self.subTest(lost=lost, wanted=wanted):
                path = self.file("stored", kept)
                report = self.dir / "report"
                code, encoded, err = self.run_command("encode", "--strict", "--report", report,
                                                      "--stored", path, stdin=text)
                self.assertEqual([(path, "UDF")] * len(lost), [
                    (loss["file"], loss["field"]) for loss in json.loads(report.read_text())["losses"]])
                self.assertEqual((code, len(err.splitlines())), (1 if lost else 0, len(lost)))
                for line, said in zip(err.splitlines(), lost):
                    self.assertRegex(line, f"aceconv: {path}:{said}")
                self.assertEqual(wanted, ["UDF" in [f["name"] for f in r["fields"]]
                                          for r in self.records(stdin=encoded)])
        # Places are those of the first input.
        one, path = self.file("one", json.dumps(deny)), self.file("stored", raw * 2)
        code, encoded, err = self.run_command("encode", "--stored", path, one, one)
        self.assertEqual((code, len(err.splitlines())), (0, 1))
        self.assertIn(f"{path}:#2: loss", err)
        self.assertEqual([2, 1], [len(r["fields"]) for r in self.records(stdin=encoded)])
        for kept, text, said in (
                (stored("X", 10) * 2, base("X"), "stored:#2: acl 'X' entry 10: a second encoding"),
                (plain + b"\x83\x61X\x05\x62um\x05", base("X"), "stored:#3: acl 'X' entry 5: byte 0"),
                (raw, lines + '{"sequence-number":5}', "<stdin>:3: entry 5: entries with and without"),
                (raw, '{"sequence-number":5,"grant":"deny"}\n' + lines, "<stdin>:2: entries with and"),
                (self.ok("encode", stdin=json.dumps({"acl": "X", "entry": UDF})) * 2, lines,
                 "stored:#2: acl 'X': a second encoding under this label"),
                (self.ok("encode", stdin='{"sequence-number":5,' + json.dumps(UDF)[1:]),
                 '{"sequence-number":5,"grant":"deny"}\n' * 2, "<stdin>:2: entry 5: a second entry")):
            code, _, err = self.run_command("encode", "--stored", self.file("stored", kept),
                                            stdin=text)
            self.assertEqual((code, err.count("\n")), (2, 1))
            self.assertIn(said, err)
        # A bad one is named, and the others are used.
        kept = self.file("stored", stored("X", 20) * 2)
        code, encoded, err = self.run_command("encode", "-q", "--keep-going", "--stored", kept,
                                              stdin=base("X"))
        self.assertEqual((code, err), (2, f"aceconv: {kept}:#2: acl 'X' entry 20: a second encoding "
                                          "under this label; the entry: 20 permit any any udf "
                                          "\"offset-a\" 0x1f/0xff\n"))
        self.assertEqual([False, True], ["UDF" in [f["name"] for f in r["fields"]]
                                         for r in self.records(stdin=encoded)])


def generated(schema, *options):
    """500 random entries, the same every time."""
    schema_options = ["--um"] if schema == "um" else []
    return subprocess.run([os.environ["ACECONV_GENERATOR"], "500", *schema_options, *options],
                          check=True, stdout=subprocess.PIPE).stdout


class Convert(Case):
    def test_fragment_types_are_renumbered(self):
        base = ["dont-fragment", "is-fragment", "first-fragment", "last-fragment",
                "dont-fragment is-fragment", "dont-fragment first-fragment",
                "dont-fragment last-fragment"]
        numbers = {"base": [1, 2, 4, 8, 3, 5, 9], "um": [0, 2, 1, 3, 4, 5, 6]}
        source = document("base", ("X", numbered(*(
            {"grant": "deny", "fragment-type": name} for name in base))))
        um = self.ok("convert", "--schema", "base", "--to", "um", stdin=source)
        for schema, text in (("base", source), ("um", um)):
            found = [f["value"] for r in self.records(stdin=text) for f in r["fields"]
                     if f["name"] == "FragmentFlags"]
            self.assertEqual(found, numbers[schema])
        self.ok("diff", self.file("a", source), self.file("b", um))

    def test_every_protocol_is_one_meaning_under_two_numbers(self):
        base = document("base", ("X", numbered(
            {"grant": "deny", "protocol": "ip"},
            {"grant": "deny", "protocol-operator": "equal", "protocol": "ip"},
            {"grant": "deny", "protocol-operator": "range", "protocol": "ip", "protocol2": 9})))
        um = self.ok("convert", "--schema", "base", "--to", "um", stdin=base)
        back = self.ok("convert", "--schema", "um", "--to", "base", stdin=um)
        for text, numbers in ((base, [0, 0, 0]), (um, [512, 512, 0]), (back, [0, 0, 0])):
            found = [f["value"] for r in self.records(stdin=text) for f in r["fields"]
                     if f["name"] == "protocol"]
            self.assertEqual(found, numbers)
        self.ok("diff", self.file("a", base), self.file("b", um))
        own = self.file("own", um.replace(b'"ipv4"', b"0"))  # number 0 alone
        lines = self.run_command("diff", self.file("a", base), own)[1].decode().splitlines()
        self.assertEqual([line for line in lines if "->" in line], [
            f"acl 'X' entry {number}: protocol (protocol): 0 (ip) -> 0" for number in (10, 20)])

    def test_generated_entries_there_and_back(self):
        for source, target in (("base", "um"), ("um", "base")):
            original = self.file("original", generated(source, "--document"))
            reported = set()
            there, back = self.dir / "there", self.dir / "back"
            for of, to, names in ((original, there, (source, target)),
                                  (there, back, (target, source))):
                report = self.dir / "report"
                self.ok("convert", "--no-losses", "--schema", names[0], "--to", names[1],
                        "--report", report, "-o", to, of)
                reported |= {loss["sequence"] for loss in json.loads(report.read_text())["losses"]}
            code, out, err = self.run_command("diff", original, back)
            changed = {int(number) for number in re.findall(rb"entry (\d+)", out)}
            self.assertEqual(code, 1, err)  # what one schema cannot say does occur
            self.assertLess(len(reported), 400)
            self.assertLessEqual(changed, reported)

    def test_strict_and_other_outputs(self):
        lossless, lossy = '{"permit":{"log":{}}}', '{"permit":{"police":{"value":1}}}'
        args = ("convert", "--schema", "um", "--to", "base", "--strict")
        self.assertEqual(self.run_command(*args, stdin=lossless)[0], 0)
        code, out, err = self.run_command(*args, "--format", "xml", "--no-losses", stdin=lossy)
        self.assertEqual((code, err), (1, ""))
        self.assertEqual(ElementTree.fromstring(out).tag, "{urn:aceconv:base}entry")

    def test_spellings_of_earlier_versions(self):
        entry = '{"deny":{"log":{}}}'
        bags = self.file("bags", self.ok("encode", stdin=entry))
        for now, before, *args in (("--schema", "--from", "um", "convert", "--to", "base"),
                                   ("--format", "--to-format", "xml", "convert", "--to", "base"),
                                   ("--format", "--to", "xml", "decode"),
                                   ("--from-format", "--input", "cbor", "inspect")):
            value, *call = args
            with self.subTest(before):
                self.assertEqual(self.ok(*call, before, value, bags), self.ok(*call, now, value, bags))
                self.assertNotIn(f"{before} ", self.ok(call[0], "--help").decode().replace("--to {base", ""))

    def test_the_data_tells_what_to_convert_from(self):
        entries = {"base": {"grant": "deny", "log-option": "log"}, "um": {"deny": {"log": {}}}}
        texts = {schema: document(schema, (schema, numbered(entry)))
                 for schema, entry in entries.items()}
        encoded = {schema: self.ok("encode", stdin=text) for schema, text in texts.items()}
        for source, target in (("base", "um"), ("um", "base")):
            wanted = self.ok("convert", "--schema", source, "--to", target, stdin=texts[source])
            for text in (texts[source], encoded[source]):
                self.assertEqual(self.ok("convert", "--to", target, stdin=text), wanted)
                # What is of that schema already is written anew.
                self.assertEqual(self.ok("convert", "--to", target, stdin=wanted), wanted)
            both = self.ok("convert", "--to", target, "--format", "ndjson",
                           stdin=encoded[target] + encoded[source])
            self.assertEqual([json.loads(line)["acl"] for line in both.splitlines()], [target, source])
            code, _, err = self.run_command("convert", "--schema", source, "--to", target,
                                            stdin=encoded[target])
            self.assertEqual(code, 2)
            self.assertIn(f"labelled as of the {target} schema, not the {source}", err)


class Examples(Case):
    def test_tour(self):
        """It says what it said last, but for the time it took."""
        tour, kept = (EXAMPLES / ("tour." + kind) for kind in ("sh", "txt"))
        done = subprocess.run([tour, os.path.dirname(ACECONV)], check=False, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        if os.environ.get("ACECONV_RENEW"):
            kept.write_text(done.stdout)
        self.assertEqual(TIMES.sub("", done.stdout), TIMES.sub("", kept.read_text()),
                         "ACECONV_RENEW=1 keeps what it says now")


class CheckAndDiff(Case):
    def test_generated_entries_come_back(self):
        for schema in ("base", "um"):
            self.ok("check", "--schema", schema, stdin=generated(schema))


if __name__ == "__main__":
    unittest.main()
