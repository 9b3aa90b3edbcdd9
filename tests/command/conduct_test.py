"""How the command behaves: exit codes, messages, and what it leaves behind."""
import json
import os
import pathlib
import pty
import re
import signal
import subprocess
import time
import unittest

from harness import ACECONV, EXAMPLES, LONG, Case, document, numbered

GOOD = {"grant": "deny", "remark": "r"}
LOSSY = {"permit": {"police": {"value": 1}}}  # the base schema has no police
DOC = document("base", ("X", numbered(GOOD)))
BASE = '{"aceconv-base:acls":{"acl":['
ENTRY = '{"sequence-number":10,"grant":"deny"}'
XMLNS = 'xmlns="urn:aceconv:base"'

UDF = '"udf-entries":{"udf":[{"udf-name":"a"}]}'
# input, and what must be said behind "aceconv: <stdin>:"
BAD_INPUT = [
    ("[1]", r"1: expected a JSON object, XML or encodings, found '\[1\]'"),
    ("hello, world, it is me\n", r"1: expected a JSON object, XML or encodings, found 'hello, world, it is \.\.\.'"),
    ('{"remark":"r"}\n"x"\n', r"2: expected a JSON object, found '\"x\"'"),
    ('{"remark":"r"}\n{"remark":"r" hello}\n', r"2: not JSON: found 'hello}'"),
    ('{"remark":"r"\n', r"1: the input ends inside an entry"),
    ('{"remark":"r",\n"remark":tru}', r"2: not JSON: found '}'"),
    ('{"%s":1}' % ("x" * 900000), r"1: .*/xxx+\.\.\. \(\d+ bytes\) \.\.\.x+: unknown node"),
    ('{"x:acl":{}}', r'1: unknown member "x:acl"; expected "aceconv-base:acls" or "aceconv-um:acls"; --ignore'),
    ('{"other:acls":{}}', r'1: unknown member "other:acls"; expected "aceconv-base:acls" or'),
    ('{"aceconv-base:acls":{"acl":[],"x":1}}', r"1: expected '}', the end of \"acls\", found ','"),
    ('{"aceconv-base:acls":{"list":[]}}', r'1: /aceconv-base:acls: unknown member "list"'),
    (BASE + '{"name":"X","name":"X"}]}}', r"1: acl 'X': .*\[name='X'\]: \"name\" is given twice"),
    (BASE + '{"name":"X","entry":[],"entry":[]}]}}', r"1: acl 'X': .*: \"entry\" is given twice"),
    (BASE + '{"name":"X"},\n{"name":"X"}]}}',
     r"2: /aceconv-base:acls/acl\[2\]: a second access list of the name 'X'"),
    (BASE + '{"entry":[]}]}}', r'1: .*acl\[1\]: an access list without "name"'),
    (BASE + '{"name":""}]}}', r"1: .*acl\[1\]: the name of an access list is empty"),
    (BASE + '{"name":"a\\u0000b"}]}}', r"1: .*the name of an access list, 'a\\x00b'"),
    (BASE + '{"name":"%s"}]}}' % ("x" * 4097), r"1: .*, 'x+\.\.\.': longer than 4096 bytes"),
    (BASE + '{"name":"%s"}]}}' % ("x" * 30000), r"1: .*expected the access list's name, found a string longer than 4096 bytes"),
    (' {"acl":"B","z":1}{"acl":"C","entry":{"remark":"r"}}', r"1: acl 'B': unknown member \"z\""),
    (BASE + '{"name":5}]}}', r"1: /aceconv-base:acls/acl\[1\]: expected the access list's name, found '5'"),
    (BASE + '{"name":"\\x"}]}}', r'1: .*acl\[1\]: not a JSON string: "\\x"'),
    (BASE + '{"entry":[{"remark":"%s"}],"name":"X"}]}}' % ("x" * (1 << 21)),
     r"1: /aceconv-base:acls/acl\[1\]: an entry longer than 1048576 bytes"),
    (BASE + '{"name":"X"', r"1: acl 'X': .*: expected ',' or '}', found the end of the input"),
    (BASE + '{"name', r"1: .*: a string that does not end, for \"name\" or \"entry\""),
    (BASE + '{5}', r"1: .*: expected \"name\" or \"entry\", found '5'"),
    ('{"aceconv-base:acls":{', r'1: expected the member "acl", found the end'),
    ('{"aceconv-base:acls":5}', r"1: expected an object, found '5'"),
    ('{"aceconv-base:acls":{"acl":5}}', r"1: expected an array, found '5'"),
    ('{"aceconv-base:acls":{"acl":[5]}}', r"1: .*: expected an access list, found '5'"),
    (BASE + '{"name":"X","entry":5}]}}', r"1: acl 'X': .*: expected an array of entries, found '5'"),
    (BASE + '{"name":"X","entry":[5]}]}}', r"1: acl 'X': .*: expected an entry, found '5'"),
    ('{"acl":5}', r"1: expected the access list's name, found '5'"),
    ('{"acl":"X","entry":5}', r"1: .*entry.*, found '5'"),
    ('{"grant":"deny"}\n{"sequence-number":0}', r"2: .*/sequence-number: 0; expected a number 1 to"),
    ('{"grant":"deny"}\n{"remark":"%s"}' % ("x" * 65537),
     r"2: member remark: a string of more than 65536 bytes"),
    ('{"acl":"%s","entry":{}}' % ("x" * 4097), r"1: .*: longer than 4096 bytes"),
    (BASE + '{"name":"X","more":1}]}}', r'1: acl \'X\': .*: unknown member "more"; expected "name"'),
    (BASE + '{"name":"X","entry":[\n%s,\n%s]}]}}' % (ENTRY, ENTRY),
     r"3: acl 'X' entry 10: a second entry of this sequence number"),
    (BASE + '{"name":"X","entry":[{"grant":"deny"}]}]}}', r"1: acl 'X': an entry without \"sequence-number\""),
    (BASE + '{"name":"X","entry":[\n\n{"sequence-number":1', r"3: acl 'X': /aceconv-base:.*: the input ends inside"),
    (BASE + '{"name":"X","entry":[%s]}]}}x' % ENTRY, r"1: expected another document or nothing, found 'x'"),
    (BASE + '{"name":"X","entry":[\n{"sequence-number":10,\n"grant":"drop"}]}]}}',
     r"3: acl 'X' entry 10: /aceconv-base:acls/acl\[name='X'\]/entry\[sequence-number='10'\]/grant: "),
    (document("um", ("X", numbered({"permit": {"icmp-off": {}}}))),
     r"1: acl 'X' entry 10: /aceconv-um:acls/.*icmp-off"),
    ('{"grant":"deny","protocol":65536}', r"1: /aceconv-base:.*protocol: "),
    ('{"grant":"deny",\n"grant":"deny"}', r"2: .*grant"),
    ('{"grant":"deny",\n"protocol":tru}', r"2: .*tru"),
    ('{"acl":"X",\n"entry":\n{"grant":"deny",\n"protocol":-1}}', r"4: acl 'X': .*protocol: "),
    ('{"grant":"deny","remark":"\x01"}', r"1: .*"),
    ('{"acl":"X","entry":{},"acl":"Y"}', r'1: acl \'X\': "acl" is given twice'),
    ('{"acl":"X","entry":{},\n"x":1}', r'2: acl \'X\': unknown member "x"'),
    ('{"acl":"X"}', r"1: acl 'X': \"acl\" without \"entry\""),
    ('{"deny":{"tcp-flags":{"match-all":{"tcp-bits":"+syn,+ack"}}}}', r"1: /aceconv-um:.*tcp-bits: "),
    ("<entry/>", r'1: <entry> in an unknown namespace; expected "urn:aceconv:base"'),
    (f"<acls {XMLNS}><acl><name>X</name><x/></acl></acls>",
     r"1: acl 'X': .*\[name='X'\]: unknown element 'x'"),
    (f"<acls {XMLNS}><acl><entry><sequence-number>1</sequence-number></entry></acl></acls>",
     r'1: /aceconv-base:acls/acl\[1\]: an access list without "name"'),
    (f"<acls {XMLNS}>\n<acl></acls>", r"2: .*not well-formed XML"),
    (f"<acls {XMLNS}\n a='1'/>", r'1: unknown attribute "a"'),
    (f"<acls {XMLNS}><acl><name>X</name><name>X</name></acl></acls>", r"1: .*: \"name\" is given twice"),
    (f"<acls {XMLNS}><acl>", r"1: .*: the input ends inside the document"),
    (f"<acls {XMLNS}><x/></acls>", r"1: /aceconv-base:acls: unknown element 'x'"),
    (f"<acls {XMLNS}><!--{'x' * (1 << 21)}--></acls>",
     r"1: /aceconv-base:acls: a comment or blanks longer than 1048576 bytes"),
    (f"<acls {XMLNS}><acl><name>{'x' * 4097}</name></acl></acls>", r"1: .*: longer than 4096 bytes"),
    (f"<acls {XMLNS}>\n<!--\n-->\ntext</acls>", r"4: .*unexpected text"),
    (f"<acls {XMLNS}>\x01</acls>", r"1: .*: not well-formed XML: unexpected character\n"),
    (f"<acls {XMLNS}>\n<acl>\n<name>X</name><?x\ny?></acl>", r"3: acl 'X': .*instruction 'x'"),
    (f"<acls {XMLNS}>\n<acl>\n\n</acl></acls>", r'2: .*an access list without "name"'),
    (f"<acls {XMLNS}><acl><name>X</name></acl>\n<acl>\n<name\n>X</name></acl></acls>",
     r"3: /aceconv-base:acls/acl\[2\]: a second access list of the name 'X'"),
    (f"<acls {XMLNS}>\n<acl><name>X</name>\r\n<entry>\r\n<grant>deny",
     r"3: acl 'X': the input ends inside an entry"),
    (f"<acls {XMLNS}>\n<acl><name>X</name>\n<entry>\n<grant>deny\n</remark>",
     r"5: acl 'X': not well-formed XML: mismatched tag"),
    *((f'<entry\n {XMLNS}\n xmlns:u="urn:aceconv:um">\r\n{nodes}</entry>', said) for nodes, said in [
        ("<sequence-number>7</sequence-number>\n<grant>\ndrop\n</grant>", r"5: entry 7: .*/grant: "),
        ("<tcp>\n<x>\n</x><x/></tcp>", r"5: .*/tcp/x: unknown node"),
        ("<tcp>\n<u:tcp-bits/></tcp>", r"5: .*/tcp/tcp-bits: unknown namespace"),
        ("<tcp><!--\n--><tcp-bits\n a='1'/></tcp>", r"5: .*/tcp/tcp-bits: unknown attribute \"a\""),
        ("<tcp>\n<!--\n-->\n x\n</tcp>", r"7: .*/tcp: unexpected text \"x\""),
        ("<grant>deny</grant>\n<grant\n>drop</grant>", r"5: .*/grant: the node is given more than"),
        ("<remark>\n&#xfdd0;</remark>", r"4: .*/remark: "),
        ("<sequence-number>x</sequence-number>", r"4: .*/sequence-number: "),
        ("<remark>a\n</remark\n><remark\n/>", r"6: .*/remark: the node is given more"),
        ("<tcp" + "".join(f" a{i}='' " for i in range(6000)) + "/>", r"4: .*/tcp: unknown attribute"),
        ("<tcp/>\n" * 4097, r"5: .*/tcp: the node is given more"),
    ]),
    *((f'<entry xmlns="urn:aceconv:um">\n<deny>\n<udf-entries>\n{udfs}</udf-entries></deny></entry>', said)
      for udfs, said in [
        ("<udf><udf-name>a</udf-name></udf>\n<udf>\n<udf-mask>1</udf-mask></udf><udf><udf-name>b"
         "</udf-name></udf>", r'5: .*/udf: .*missing its key "udf-name"'),
        ("<udf><udf-name>a</udf-name></udf>\n<udf>\n<udf-name>12345678901234567</udf-name></udf>",
         r"6: .*/udf/udf-name: "),
        ("<udf><udf-name>a</udf-name></udf>\n<udf><udf-name>b</udf-name>\n<udf-mask>x</udf-mask></udf>"
         "<udf>\n</udf>", r"6: .*/udf\[udf-name='b'\]/udf-mask: "),
        ("<udf><udf-name>a</udf-name></udf>\n" * 2, r"5: .*/udf\[udf-name='a'\]: a second entry"),
        ("".join(f"<udf><udf-name>{i}</udf-name></udf>\n" for i in range(9)), r"12: .*/udf: more than 8"),
    ]),
    ('<?xml version="1.0" encoding="ISO-8859-1"?><acls/>', r'1: the encoding "ISO-8859-1"; exp'),
    ('{"grant":' + "[" * 300 + "]" * 300 + "}", r"1: .*: more than 256 levels of objects and arrays"),
    ('{"aceconv-base:acls":{"acl":[' + ",\n".join('{"name":"%d"}' % i for i in range(1000002)) + "]}}",
     r"1000001: .*more than 1000000 access lists"),
    *((before + "".join(a_list % i for i in range(1000002)), r"1000001: .*more than 1000000 access lists")
      for before, a_list in ((f"<acls {XMLNS}>", "<acl><name>%d</name></acl>\n"),
                             ("", '{"acl":"%d","entry":{"sequence-number":1}}\n')) if LONG),
    (f"<entry {XMLNS}>\n" + "<tcp>" * 300, r"2: more than 256 levels of elements"),
    ("<acls " + "".join(f" xmlns:p{i}='u'" for i in range(4000)) + "/>",
     r"1: namespace declarations longer than 4096 bytes"),
    ("<acls" + "".join(f" a{i}=''" for i in range(6000)) + "/>", r"1: <acls> in an unknown names"),
    *((f"<acls {XMLNS}>\n<acl a='>{'x' * long}'/>", said) for long, said in (
        (65536 - 11, r'2: .*: unknown attribute "a"'), (65536 - 10, r"2: .*: a tag longer than 65536 bytes"))),
    ('<!DOCTYPE a [<!ENTITY e SYSTEM "file:///etc/passwd">]><acls/>', 
     r"1: document types are not accepted"),
    (f"<entry {XMLNS}><remark>&e;</remark></entry>", r"1: .*"),
    (f"<acls {XMLNS}><acl xmlns='urn:aceconv:um'/></acls>", r"1: .*: <acl> is of the um schema"),
    (f"<entry {XMLNS}><remark>{'x' * (1 << 21)}</remark></entry>", r"1: .*longer than 1048576"),
    ('{"remark":"%s"}' % ("x" * (1 << 21)), r"1: an entry longer than"),
    ('{"permit":{%s},"deny":{%s}}' % ((UDF,) * 2), r"1: .*: a second entry with the same key"),
]
ENCODINGS = [  # what to make of a good encoding, what must be said, and how many are still read
    (lambda e: e[:-1], r": the encoding at byte 0 is cut off or malformed", 0),
    (lambda e: b"\xdf" + e, r": the encoding at byte 0 is cut off or malformed", 0),
    (lambda e: b"\xe0" + e, r"1: expected a JSON object, XML or encodings, found '", 0),
    (lambda e: e + e[:9], r": the encoding at byte %d is cut off", 1),
    (lambda e: e + b"\x1c" + e, r": the encoding at byte %d is cut off or malformed", 1),
    (lambda e: b"\x82\x61X\x0a", r"#1: acl 'X' entry 10: a label without an encoding", 0),
    (lambda e: b"\x82\x61X\x18\x0a" + e + e, r"#1: not a label: expected an array of a list's name or "
     'null, a sequence number or null, and a schema, "base" or "um"\\n', 1),
    (lambda e: b"\x82\x61X\x00" + e + e, r"#1: not a label", 1),
    (lambda e: b"\x83\x61X\x0a\x62UM" + e + e, r"#1: not a label", 1),
    (lambda e: b"\x82\x61\xff\x0a" + e + e, r"#1: .*not valid UTF-8", 1),
    (lambda e: b"\x82\x79\x10\x01" + b"x" * 4097 + b"\x0a" + e + e, r"#1: .*longer than 4096", 1),
    (lambda e: b"\x83\x01\x02\x03" + e, r"#1: byte 1: expected the type's name", 1),
    (lambda e: e[:-1] + b"\x00" + e, r"#1: byte", 1),
    # CBOR that is no encoding is one bad entry, not the end of the input.
    (lambda e: b"\xc6" + e + e, r"#1: byte 0: a tag", 1),
    (lambda e: b"\xd9\xd9\xf7" + e + e, r"#1: byte 0: a tag", 1),
    (lambda e: b"\xa1\x01\x02" + e, r"#1: byte 0: expected an array", 1),
    (lambda e: b"\x9f" + e + b"\xff" + e, r"#1: byte 0: a tag, .* indefinite length", 1),
    (lambda e: b"\x80\x05\xf6" + e * 2, r"#1: .*\n.*#2: .*\n.*#3: byte 0: a tag", 2),
]


class Messages(Case):
    def test_bad_input(self):
        for text, said in BAD_INPUT:
            with self.subTest(text[:80]):
                schema = ("--schema", "base") if text.startswith('{"acl"') else ()
                code, _, err = self.run_command("encode", "--no-losses", *schema, stdin=text)
                self.assertEqual(code, 2, err)
                self.assertRegex(err, r"\Aaceconv: <stdin>:" + said)
                self.assertEqual((err.count("\n"), len(err) < 2000), (1, True), err)

    def test_bad_encodings(self):
        good = self.ok("encode", "--no-labels", stdin='{"grant":"deny"}')
        for change, said, read in ENCODINGS:
            with self.subTest(said):
                data = change(good)
                self.assertTrue(self.run_command("decode", stdin=data)[2].startswith("aceconv: <st"))
                code, out, err = self.run_command("inspect", "--keep-going", "--json", stdin=data)
                self.assertEqual((code, out.count(b"\n")), (2, read))
                self.assertRegex(err, "aceconv: <stdin>:.*" +
                                 (said % len(good) if "%d" in said else said))

    def test_usage_and_io(self):
        doc, missing = self.file("doc", DOC), str(self.dir / "missing")
        os.symlink("loop", loop := str(self.dir / "loop"))
        (modules := self.dir / "modules").mkdir()
        os.mkfifo(fifo := modules / "aceconv-um.yang")
        self.file("modules/aceconv-base.yang", (EXAMPLES.parent / "yang/aceconv-base.yang").read_text())
        remark, bags = self.file("remark", '{"remark":"r"}'), self.file("bags", self.ok("encode", doc))
        um = self.file("um", document("um", ("X", numbered({}))))
        unlabelled = self.file("unlabelled", self.ok("encode", "--no-labels", stdin='{"deny":{"icmp-on":{}}}'))
        for code, args, said in [
                (2, (), "a verb is expected: encode, "),
                (2, ("help", "encod"), "VERB: encod not in {encode,"), (2, ("help", "encod"), "did you mean encode?"),
                (2, ("encdoe", "-o", "x"), "unknown verb encdoe; did you mean encode?\n"),
                (2, ("encode", "--schema", "x", doc), "--schema"),
                (2, ("encode", "--no-such-option=1", doc), "unknown option --no-such-option\n"),
                (2, ("convert", "--form", "um", "--to", "um"), "unknown option --form; did you mean --format?"),
                (2, ("diff", doc, doc, doc), "one argument too many: " + doc),
                (2, ("--schema", "base", "encode", doc), "--schema has its place behind encode\n"),
                (2, ("--quite", "encode", doc), "unknown option --quite\n"), (2, ("x", "encode"), "unknown verb x"),
                (2, ("convert", "--schema", "um", "--from", "base"), "--schema is given more than once\n"),
                (2, ("help", "--plugin", doc, "encode"), "unknown option --plugin\n"),
                (2, ("check", "-q", "--progress", doc), "--quiet excludes --progress"),
                (2, ("encode", "--backend", "b"), "{bulk,validating}\naceconv: see aceconv encode --help\n"),
                (2, ("encode", remark), "--schema base or --schema um"),
                (2, ("encode", "--trace=[", doc), "--trace"),
                (2, ("convert", doc), "--to"), (2, ("diff", doc), "B"),
                (2, ("diff", "-", "-"), "standard input"), (2, ("check", "-", doc, "-"), "standard input"),
                (2, ("encode", "--stored", "-"), "standard input"),
                (2, ("encode", "--stored", doc, um, "-o", missing), None),
                (3, ("encode", missing), missing + ": cannot read: No such file"),
                (2, ("encode", str(self.dir)), "no file in it ends in one of"),
                (3, ("encode", doc, "-o", missing + "/x"), "cannot write: No such file"),
                (3, ("encode", doc, "-o", loop), "cannot write: Too many levels of symbolic links"),
                (3, ("encode", doc, "--modules", modules), "aceconv-um.yang: not a regular file"),
                (3, ("encode", doc, "--plugin", fifo), "aceconv-um.yang: not a regular file"),
                (3, ("encode", doc, "-o", "/dev/fd/9"), "/dev/fd/9: cannot write: Bad file descriptor"),
                (3, ("encode", doc, "-o", "/dev/full"), "/dev/full: cannot write: No space left"),
                (3, ("encode", doc, "--plugin", missing), missing),
                (3, ("encode", doc, "--plugin", doc), doc),
                (3, ("encode", doc, "--modules", missing), "cannot load the YANG modules"),
                (3, ("schema", "--modules", missing), "cannot load the YANG modules"),
                (3, ("--version", "--plugin", missing), missing),
                (3, ("--plugin", missing, "encode", doc), missing),
                (3, ("--modules", missing, "encode", doc), "cannot load the YANG modules"),
                (2, ("encode", doc, "-j", "0"), "--jobs"), (2, ("encode", doc, "-j", "257"), "--jobs"),
                (2, ("decode", doc), "an entry's text; expected encodings"),
                (2, ("encode", bags), "an encoding already; expected entries in JSON or XML"),
                (2, ("encode", unlabelled), "an encoding already; expected entries in JSON or XML"),
                (2, ("encode", um, "--stored", bags), "no effect on entries of the UM schema"),
                (3, ("--plugin", missing, "--version"), "cannot open shared object file: No such file"),
                (2, ("encode", "--schema", "um", doc), "of the base schema; expected the um")]:
            with self.subTest(args):
                got, out, err = self.run_command(*args)
                if said is None:  # the stored file is looked at first, and is no encoding
                    self.assertEqual(got, 2, err)
                    continue
                self.assertEqual((got, out), (code, b""), err)
                self.assertIn(said, err)
                self.assertTrue(err.startswith("aceconv: "), err)
        with open("/dev/full", "wb") as full:
            for args in (("inspect", doc), ("--help",), ("help", "diff"), ("--version",)):
                done = subprocess.run([ACECONV, *args], stdout=full, stderr=subprocess.PIPE, check=False)
                self.assertEqual(done.returncode, 3)
                self.assertIn(b"<stdout>: cannot write: No space left on device", done.stderr)

    def test_help_and_version(self):
        general, convert = self.ok("--help"), self.ok("convert", "--help")
        self.assertIn(b"Exit codes: 0 done;", general)
        self.assertIn(b"--backend {bulk,validating} ", convert)
        for args, shown in ((("help",), general), (("-h",), general), (("help", "convert"), convert),
                            (("--plugin", "none", "help", "convert"), convert),
                            (("convert", "-h"), convert), (("convert", "--to", "um", "-h"), convert)):
            self.assertEqual(self.ok(*args), shown)
        version = self.ok("--version").decode()
        for args in (("-V",), ("convert", "--version"), ("--plugin", "none", "inspect", "-V",
                     "--plugin", re.search("plug-in (.*)", version)[1])):
            self.assertEqual(self.ok(*args).decode(), version)
        self.assertRegex(version, r"(?m)^aceconv \d+\.\d+\.\d+\nplug-in /.*/libipv4_acl_ace\.so$")
        self.assertRegex(version, r"(?m)^record  ipv4_acl_config_ace [0-9a-f]{16}\nmodules /.*/yang$")
        # What there is to say behind each verb and option, which takes some words.
        losses, common = ["--report", "--strict", "--no-losses"], [
            "--ignore-other-modules", "--keep-going", "--errors", "--junit", "--html",
            "--backend", "-j,--jobs", "-q,--quiet", "--progress", "--trace[=REGEX]"]
        for verb, own in (("", ["encode", "decode", "inspect", "convert", "check", "diff", "lint", "explain",
                                "schema", "help"]),
                          ("encode", ["INPUT", "--from-format", "--schema", "-o,--output", "--output-dir",
                                      "--stored", "--no-labels", *losses, *common]),
                          ("decode", ["INPUT", "--from-format", "--schema", "-o,--output", "--output-dir",
                                      "--format", *losses, *common]),
                          ("inspect", ["INPUT", "--from-format", "--schema", "-o,--output",
                                       "--hex", "--json", *losses, *common]),
                          ("convert", ["INPUT", "--from-format", "--schema", "--to",
                                       "-o,--output", "--output-dir", "--format", *losses, *common]),
                          ("check", ["INPUT", "--from-format", "--schema", "--json", *losses, *common]),
                          ("explain", ["LEAF", "--schema", "--json"]),
                          ("schema", ["SCHEMA", "--tree", "--json"]),
                          ("lint", ["INPUT", "--from-format", "--schema", "--rule", "--no-rule",
                                    "--list-rules", "--json", "--strict", *common]),
                          ("diff", ["A", "B", "--schema", "--schema-a", "--schema-b", "--by", "--acl", "--json",
                                    *losses, *common])):
            shown = self.ok(*verb.split(), "--help").decode()
            told = re.findall(r"(?m)^  (\S+).*(?:  |\} )\S+ \S+ \S+", re.sub(r"\n {20,}", "  ", shown))
            general = ["-h,--help", "--plugin", "--modules", "--color", "-V,--version"]
            self.assertEqual(sorted(told), sorted(general + own), shown)
            self.assertRegex(shown, r"\A\S+ \S+ .*\nUsage: aceconv ")
            self.assertRegex(shown, r"\nFormats: json .*,\n.*first bytes\.\nExit codes: 0 done; 1 .* "
                             r"under --strict;\n2 .*\naceconv help VERB tells ")

    def test_data_cannot_drive_the_terminal(self):
        for text, shown in ((document("base", ("\x1b[31mX", [])), "'\\x1b[31mX'"),
                            (document("base", ("X\n", numbered({"grant": "\x9b2J"}))), "'X\\x0a'")):
            _, _, err = self.run_command("encode", stdin=text)
            self.assertEqual([c for c in err[:-1] if not c.isprintable()], [])
            self.assertIn(shown, err)
        lossy = '{"permit":{},"deny":{}}\n'
        for name, shown in (("\x1b[31m\u202e\x85", "\\x1b[31m\\xe2\\x80\\xae\\xc2\\x85"),
                            ("a\u061c\u200f\u202e\u2067\u2028\x85\xe9", "a\\xd8\\x9c\\xe2\\x80\\x8f\\xe2\\x80\\xae"
                             "\\xe2\\x81\\xa7\\xe2\\x80\\xa8\\xc2\\x85\xe9")):
            path = self.file(name, lossy)
            for args in (("inspect", path, self.file("lossy", lossy)), ("check", path, self.dir / "lossy"),
                         ("diff", self.file("none", document("base")), path), ("encode", path, "-o", path)):
                for color in ((), ("--color", "always")):
                    _, out, err = self.run_command(*args, *color)
                    said = re.sub(r"\x1b\[(0|1|2|31|32|31;1|31;7|32;7)m", "", out.decode() + err)
                    self.assertEqual([c for c in said if not c.isprintable() and c != "\n"], [])
                    self.assertIn(shown, said)


class KeepGoing(Case):
    LINES = ('{"grant":"deny"}\n{"grant":\n{"grant":"drop"}\n'
             '{"acl":"X","entry":{"sequence-number":5}}\n'
             '{"acl":"X","entry":{"sequence-number":5}}\n{"grant":"permit"}\n')

    def test_every_bad_entry_is_reported_and_the_rest_converted(self):
        target = self.dir / "out"
        code, _, err = self.run_command("encode", "--keep-going", "-o", target, stdin=self.LINES)
        self.assertEqual(code, 2)
        lines = err.splitlines()
        self.assertEqual([line.split(":")[2] for line in lines], ["2", "3", "5"])
        self.assertRegex(self.summary, "^aceconv: 6 entries, 3 errors; ")
        self.assertEqual(len(self.records(target)), 3)
        self.run_command("encode", "--keep-going", "-q", stdin=self.LINES)
        self.assertEqual(self.summary, "")

    def test_in_every_verb(self):
        source = document("base", ("X", numbered(GOOD, {"grant": "drop"}, GOOD)))
        path, good = self.file("bad", source), self.file("good", document("base", (
            "X", [{"sequence-number": n, **GOOD} for n in (10, 30)])))
        for args in (("inspect", "--json", path), ("check", path), ("diff", path, good),
                     ("convert", "--schema", "base", "--to", "um", path)):
            code, out, err = self.run_command(*args, "--keep-going")
            self.assertEqual((code, len([l for l in err.splitlines() if "entry 20" in l])), (2, 1))
            self.assertNotIn(b"only in", out)
        # What one bad entry leaves open does not reach the next one.
        xml = f"""<acls {XMLNS}><acl><name>X</name>
            <entry><sequence-number>1</sequence-number><tcp><x><y/></x></tcp></entry>
            <entry><sequence-number>2</sequence-number><tcp><tcp-bits>syn</tcp-bits></tcp></entry>
            <entry><sequence-number>3</sequence-number><tcp><x/></tcp></entry></acl></acls>"""
        code, out, err = self.run_command("inspect", "--keep-going", "-j1", "--json", stdin=xml)
        self.assertEqual((code, out.count(b"tcpflags"), err.count("/tcp/x: unknown node")), (2, 1, 2))
        lines = self.file("lines", self.LINES)  # all of the wrong kind
        self.assertEqual(self.run_command("decode", "--keep-going", lines, good)[2].count("\n"), 2)
        # A fault of the frame ends the input, but not what came before it.
        cut = self.ok("encode", good)[:-1]
        code, out, _ = self.run_command("decode", "--keep-going", stdin=cut)
        self.assertEqual(code, 2)
        self.assertEqual(len(json.loads(out)["aceconv-base:acls"]["acl"][0]["entry"]), 1)

    def test_bad_encodings_in_diff(self):
        label, raw = b"\x83\x61X%c\x64base", self.ok("encode", "--no-labels", stdin='{"grant":"deny"}')
        other = self.ok("encode", "--no-labels", stdin='{"grant":"permit"}')
        ten, twenty, more = (label % number + raw for number in (10, 20, 21))
        bad = label % 20 + b"\xc6" + raw
        said = ":#2: acl 'X' entry 20: byte 0: a tag"
        for a, b, faults, told in (
                (ten + bad + more, ten + twenty + more, ["a" + said], "6 entries, 1 error"),
                (ten + bad, ten + bad + more, ["a" + said, "b" + said], "5 entries, 2 errors"),
                (ten, ten + bad, ["b" + said], "3 entries, 1 error"),
                (ten + twenty[:-1], ten + twenty, ["a:#2: acl 'X' entry 20: the encoding at"],
                 "3 entries, 1 error"),
                (b"\xc6" + raw + other, raw + other, ["a:#1: byte 0: a tag"], "4 entries, 1 error")):
            with self.subTest(faults=faults):
                paths = self.file("a", a), self.file("b", b)
                code, out, err = self.run_command("diff", "--keep-going", *paths)
                only = b"acl 'X' entry 21: + only in " + paths[1].encode() + b": 21 deny any any\n" \
                    b"acl 'X' entry 21: grant (grant): absent -> 0 (deny)\n"
                self.assertEqual((code, out), (2, only if more in b and more not in a else b""))
                self.assertEqual(len(err.splitlines()), len(faults))
                for line, fault in zip(sorted(err.splitlines()), faults):
                    self.assertIn(f"{self.dir}/{fault}", line)
                self.assertIn(f"aceconv: {told}; ", self.summary)
                code, out, err = self.run_command("diff", *paths)
                self.assertEqual((code, out, err.count("\n")), (2, b"", 1))
                self.assertIn("aceconv: stopped: ", self.summary)
        unknown, known = '{"sequence-number":"x"}\n', '{"sequence-number":10,"grant":"deny"}\n'
        paths = self.file("a", unknown), self.file("b", known)
        code, out, _ = self.run_command("diff", "--keep-going", "--schema-a", "base", *paths)
        self.assertEqual((code, out.decode()),
                         (2, f"entry 10: + only in {paths[1]}, or a bad entry of {paths[0]}: 10 deny any any\n"
                             "entry 10: grant (grant): absent -> 0 (deny)\n"))

    def test_stops_at_the_first_without(self):
        code, out, err = self.run_command("encode", stdin=self.LINES)
        self.assertEqual((code, err.count("\n")), (2, 1))
        self.assertRegex(self.summary, "^aceconv: stopped: 2 entries, 1 error; ")
        self.assertEqual(len(self.records(stdin=out)), 1)  # what is out already is whole
        source = document("base", ("X", numbered(GOOD, {"grant": "drop"})))
        code, out, _ = self.run_command("convert", "--schema", "base", "--to", "um", stdin=source)
        self.assertEqual((code, len(json.loads(out)["aceconv-um:acls"]["acl"][0]["entry"])), (2, 1))

    def test_what_a_document_has_no_place_for(self):
        named, bare = '{"acl":"%s","entry":{"sequence-number":%d}}\n', '{"sequence-number":1}\n'
        unnumbered = '{"acl":"X","entry":{}}\n'
        for text, form, said in [
                (named % ("X", 1) + named % ("Y", 1) + named % ("X", 2), "json", "together"),
                (named % ("X", 1) + bare, "json", "with and without"),
                (bare + named % ("X", 1), "xml", "with and without"),
                (bare * 2, "xml", "second entry"), (unnumbered, "json", "without a sequence number")]:
            encoded = self.ok("encode", "--schema", "base", stdin=text)
            code, _, err = self.run_command("decode", "--format", form, stdin=encoded)
            self.assertEqual(code, 2)
            self.assertRegex(err, f"{said}.*; write ndjson instead")
            lines = self.ok("decode", "--format", "ndjson", stdin=encoded)
            self.assertEqual(self.ok("encode", "--schema", "base", stdin=lines), encoded)


class Output(Case):
    def left(self):
        return sorted(os.listdir(self.dir))

    def test_nothing_half_written_is_left(self):
        bad = self.file("bad", document("base", ("X", numbered(*[GOOD] * 3000, {"grant": "x"}))))
        old = self.file("old", "old content")
        for target in (old, str(self.dir / "new")):
            for args in (("encode", bad), ("inspect", bad),
                         ("convert", "--schema", "base", "--to", "um", "--report", target + "2", bad)):
                self.assertEqual(self.run_command(*args, "-o", target)[0], 2)
        self.assertEqual(self.left(), ["bad", "old"])
        with open(old, encoding="utf-8") as file:
            self.assertEqual(file.read(), "old content")

    def test_replaces_in_place_and_keeps_links_modes_and_owners(self):
        doc, old = self.file("doc", DOC), self.file("old", "")
        owner, group = (-1, -1) if os.geteuid() else (4711, 4712)
        os.chown(old, owner, group)
        os.chmod(old, 0o2640)
        was = os.stat(old)
        os.link(old, self.dir / "hard")
        os.symlink("old", self.dir / "link")
        os.symlink("link", self.dir / "links")
        os.symlink(self.dir / "new", self.dir / "dangling")
        for link in ("links", "dangling", long := "\u00e4" * 127 + "x"):
            self.ok("convert", "--schema", "base", "--to", "um", doc, "-o", self.dir / link)
            self.assertEqual(os.path.islink(self.dir / link), link != long)
        now = os.stat(old)
        self.assertEqual((now.st_mode, now.st_uid, now.st_gid), (was.st_mode, was.st_uid, was.st_gid))
        self.assertEqual([len(self.records(self.dir / name)) for name in ("old", "new", long)], [1] * 3)
        self.assertEqual((self.dir / "hard").read_bytes(), b"")
        self.assertEqual(self.left(), ["dangling", "doc", "hard", "link", "links", "new", "old", long])

    @unittest.skipIf(os.geteuid(), "only root can give files away")
    def test_a_group_that_may_not_be_kept_lends_no_rights(self):
        doc, old = self.file("doc", DOC), self.file("old", "")
        os.chown(old, 4711, 4712)
        os.chmod(old, 0o664)
        # Without the right to give files away, but not as somebody whom the folders of the build may keep out.
        subprocess.run(["setpriv", "--bounding-set=-chown", ACECONV, "encode", "-q", doc, "-o", old], check=True)
        self.assertEqual((os.stat(old).st_mode & 0o777, os.stat(old).st_gid), (0o644, 0))

    def test_closed_standard_descriptors(self):
        """Nothing else gets their numbers: no message goes into a file, no file is standard input."""
        doc = self.file("doc", document("um", ("X", numbered(LOSSY, {"permit": {"x": 1}}))))
        convert = ("convert", "--to", "base", "--keep-going", doc)
        good, bags = self.file("good", DOC), self.file("bags", self.ok("encode", stdin=DOC))
        whole = None
        for closed in ("", "<&-", ">&-", "2>&-", "<&- >&-", ">&- 2>&-", "<&- 2>&-", "<&- >&- 2>&-"):
            for args, code, said in (
                    ((*convert, "-o", "out", "--report", "report"), 2, ""),
                    *(((*verb.split(), "-"), 3, "<(stdin>: cannot read|stdout>: cannot write): Bad file") for verb in (
                        "encode -o none", "decode -o none", "convert --to um -o none", "inspect", "check", "lint",
                        "diff good", "encode good -o none --stored")),
                    *((verb.split(), 3, "<stdout>: cannot write: Bad file descriptor") for verb in (
                        "encode good", "decode bags", "inspect good", "check good", "lint good", "explain remark",
                        "schema", "help", "--version", "convert good --to um --html none --junit none2")),
                    ((*convert, "--report", "none"), 3, "<stdout>: cannot write: Bad file descriptor"),
                    (("diff", doc, doc, "--report", "none"), 3, "<stdout>: cannot write: Bad file")):
                if said and ("<&-" if "stdin" in said else " >&-") not in " " + closed:
                    continue
                done = subprocess.run(["sh", "-c", 'exec "$0" "$@" ' + closed, ACECONV, *args],
                                      cwd=self.dir, capture_output=True, check=False)
                self.assertEqual((done.returncode, done.stdout), (code, b""), (closed, args))
                self.assertRegex(done.stderr.decode(), said if said and "2>&-" not in closed else r"\A")
            made = [(self.dir / name).read_bytes() for name in ("out", "report")]
            whole = whole or made
            self.assertEqual(made, whole, closed)
            self.assertEqual(self.left(), ["bags", "doc", "good", "out", "report"])

    def test_a_file_has_one_part_in_a_run(self):
        doc, stored = self.file("doc", DOC), self.file("stored", self.ok("encode", stdin=DOC))
        os.symlink("doc", self.dir / "link")
        os.link(doc, self.dir / "hard")
        os.symlink("new", self.dir / "dangling")
        doc_only, report = ("convert", "--schema", "base", "--to", "um", "doc"), "--report"
        for args in ((*doc_only, "-o", "doc"), (*doc_only, "-o", "link"), (*doc_only, "-o", "./hard"),
                     (*doc_only, report, "link"), (*doc_only, "-o", "new", report, "new"),
                     (*doc_only, "-o", "new", report, "dangling"), (*doc_only, report, "/dev/fd/1"),
                     (*doc_only, report, "-"), (*doc_only, "link", "-o", "../%s/doc" % self.dir.name),
                     ("encode", "doc", "--stored", "stored", "-o", "stored"),
                     ("diff", "doc", "stored", report, "hard"), ("diff", "stored", "doc", report, "hard"),
                     ("inspect", "stored", "doc", "-o", "hard")):
            code, out, err = self.run_command(*args, cwd=self.dir)
            self.assertEqual((code, out), (2, b""), args)
            self.assertRegex(err, r"\Aaceconv: \S+ (is|and \S+ are one file that is) to be "
                             r"(written twice|read and written at once)\naceconv: see ")
        with open(doc, "r+b") as file:
            for verb in (("check",), ("diff", doc)):  # standard input and output of one file
                done = subprocess.run([ACECONV, *verb, "-"], stdin=file, stdout=file, check=False,
                                      stderr=subprocess.PIPE)
                self.assertEqual((done.returncode, b"<stdout>" in done.stderr), (2, True))
        self.assertEqual(self.left(), ["dangling", "doc", "hard", "link", "stored"])
        self.ok(*doc_only, "-o", "/dev/null", report, "/dev/null", cwd=self.dir)
        self.assertEqual(pathlib.Path(doc).read_text(), DOC)

    def test_standard_output_by_another_name(self):
        """What the shell and its other commands have written stays."""
        doc = self.file("doc", DOC)
        for name in ("/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "/proc/thread-self/fd/1"):
            for redirection in (">> log", "> log"):
                self.file("log", "")
                script = 'cd "$0" && { echo before; "$@"; echo behind; } ' + redirection
                done = subprocess.run(["sh", "-c", script, self.dir, ACECONV, "decode", "-q", "-o", name],
                                      input=self.ok("encode", doc), check=False)
                text = (self.dir / "log").read_text()
                self.assertEqual((done.returncode, text[:7], text[-7:]), (0, "before\n", "behind\n"))
                self.assertEqual(len(self.records(stdin=text[7:-7])), 1)

    def test_told_to_stop(self):
        umask = os.umask(0)
        os.umask(umask)
        for sign in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGQUIT, signal.SIGXCPU,
                     signal.SIGALRM, signal.SIGUSR1, signal.SIGABRT, signal.SIGSEGV, signal.SIGBUS,
                     signal.SIGRTMAX):
            for ignored in (False, True):  # as under nohup
                args = ("encode", "-q", "--report", self.dir / "report", "-", "-o", self.dir / "out")
                with subprocess.Popen([ACECONV, *args], stdin=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                      preexec_fn=lambda: signal.signal(
                                          sign, (signal.SIG_DFL, signal.SIG_IGN)[ignored])) as process:
                    process.stdin.write(b'{"grant":"deny"}\n{"grant":"deny"}\n')
                    process.stdin.flush()
                    for _ in range(200):
                        if len(self.left()) == 2:
                            break
                        time.sleep(0.05)
                    self.assertEqual([name[:5] for name in self.left()], [".out.", ".repo"])
                    process.send_signal(sign)
                    process.stdin.close()
                    self.assertEqual(process.wait(20), 0 if ignored else -sign)
                self.assertEqual(self.left(), ["out", "report"] if ignored else [])
            for name in self.left():
                self.assertEqual(os.stat(self.dir / name).st_mode & 0o777, 0o666 & ~umask)
                os.unlink(self.dir / name)

    def test_a_folder_that_goes_away(self):
        os.mkdir(folder := self.dir / "folder")
        with subprocess.Popen([ACECONV, "encode", "-", "-o", folder / "out"], stdin=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            process.stdin.write(b'{"grant":"deny"}\n{"grant":"deny"}\n')
            process.stdin.flush()
            for _ in range(200):
                if os.listdir(folder):
                    break
                time.sleep(0.05)
            folder.rename(self.dir / "moved")
            said = process.communicate()[1]
        self.assertEqual((process.returncode, b"out: cannot write: No such file" in said), (3, True), said)

    def test_a_closed_pipe_ends_it_quietly(self):
        doc = self.file("doc", document("base", ("X", numbered(*[GOOD] * 4000))))
        for args in (("inspect", doc), ("convert", "--schema", "base", "--to", "um", doc)):
            with subprocess.Popen([ACECONV, *args], stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE) as process:
                process.stdout.read(10)
                process.stdout.close()
                self.assertEqual((process.stderr.read(), process.wait(60)), (b"", 0))

    def test_a_closed_pipe_hides_no_verdict(self):
        many = self.file("many", document("um", ("X", numbered(*[LOSSY] * 4000))))
        base = self.file("base", document("base", ("X", numbered(*[GOOD] * 4000))))
        bad = self.file("bad", '{"grant":"drop"}\n{"grant":"deny"}\n')
        for code, args in ((1, ("diff", many, base)), (0, ("diff", base, base)), (0, ("check", many)),
                           (1, ("check", self.file("lossy", '{"permit":{},"deny":{}}'))),
                           (1, ("convert", "--strict", "--schema", "um", "--to", "base", many)),
                           (0, ("convert", "--schema", "um", "--to", "base", many)),
                           (2, ("inspect", "--keep-going", "--schema", "base", bad))):
            with self.subTest(args):
                with subprocess.Popen([ACECONV, *args], stdout=subprocess.PIPE,
                                      stderr=subprocess.DEVNULL) as process:
                    process.stdout.close()
                    self.assertEqual(process.wait(60), code)
        with subprocess.Popen([ACECONV, "convert", "-q", "--no-losses", "--schema", "um", "--to", "base",
                               many, "--report", self.dir / "losses"], stdout=subprocess.PIPE) as process:
            process.stdout.close()
            self.assertEqual(process.wait(60), 0)
        self.assertEqual(len(json.loads((self.dir / "losses").read_text())["losses"]), 4000)
        report = self.dir / "report"  # a reader of the report goes, and the output is whole
        os.mkfifo(report)
        out = self.dir / "out"
        for to in (report, "-"):
            with subprocess.Popen([ACECONV, "convert", "-q", "--no-losses", "--schema", "um", "--to", "base",
                                   many, "-o", out, "--report", to], stdout=subprocess.PIPE) as process:
                with open(report, "rb") if to == report else process.stdout as reader:
                    reader.read(10)
                self.assertEqual(process.wait(60), 0)
            self.assertEqual(len(self.records(out)), 4000)
            out.unlink()


class Terminal(Case):
    def on_terminal(self, *args, env=None):
        main, side = pty.openpty()
        try:
            with subprocess.Popen([ACECONV, *args], stdin=subprocess.DEVNULL, stdout=side,
                                  stderr=side, env={**os.environ, "TERM": "xterm", **(env or {})}
                                  ) as process:
                code = process.wait(60)
            return code, os.read(main, 65536).decode()
        finally:
            os.close(main)
            os.close(side)

    def test_when_to_colour(self):
        doc = self.file("doc", DOC)
        other = self.file("other", DOC.replace("deny", "permit"))
        empty = self.file("empty", document("base", ("X", [])))
        lossy = self.file("lossy", document("um", ("X", numbered({"permit": {"log": {}, "log-input": {}}}))))
        unreadable = str(self.dir / "none")
        for args, code in ((("inspect", doc), 0), (("inspect", unreadable), 3), (("diff", doc, other), 1),
                           (("diff", doc, empty), 1), (("check", lossy), 1), (("lint", empty), 0),
                           (("explain", unreadable), 2), (("encode", "--backend", "none"), 2)):
            got, shown = self.on_terminal(*args)
            self.assertEqual(got, code, args)
            self.assertIn("\x1b[", shown)
            verb, *rest = args
            for env, when in (({"NO_COLOR": "1"}, "auto"), ({"TERM": "dumb"}, "auto"), ({}, "never")):
                self.assertNotIn("\x1b[", self.on_terminal(verb, "--color", when, *rest, env=env)[1])
            for env in ({"NO_COLOR": ""}, {}):
                self.assertIn("\x1b[", self.on_terminal(*args, env=env)[1])
            for when, colored in (("auto", False), ("never", False), ("always", True)):
                for call in ((verb, "--color", when, *rest), ("--color=" + when, *args)):
                    _, out, err = self.run_command(*call, env={**os.environ, "NO_COLOR": "1", "TERM": "dumb"})
                    self.assertEqual("\x1b[" in out.decode() + err, colored, call)
        self.ok("diff", "--color", "always", "--json", doc, doc)
        out = self.run_command("diff", "--color", "always", "--json", doc, other)[1]
        self.assertNotIn(b"\x1b", out)
        self.ok("inspect", "-q", "--color", "always", "-o", self.dir / "shown", doc)
        self.assertIn("\x1b[1m", (self.dir / "shown").read_text())

    def test_colours(self):
        doc = self.file("doc", DOC)
        shown = self.on_terminal("inspect", str(self.dir / "none"))[1]
        self.assertIn("\x1b[31;1maceconv:\x1b[0m ", shown)
        shown = self.on_terminal("inspect", doc)[1]
        self.assertTrue(shown.startswith("\x1b[2m  presence bits "), shown)
        self.assertIn("\r\n\x1b[0m\x1b[1macl 'X' entry 10\x1b[0m: 10 deny ", shown)
        other = self.file("other", document("base", ("X", [{"sequence-number": 20, **GOOD}])))
        shown = self.on_terminal("diff", doc, other)[1]
        for sign in ("10\x1b[0m: \x1b[31m- only in ", "20\x1b[0m: \x1b[32m+ only in "):
            self.assertIn(sign, shown)
        for words in (
                ({"remark": 'a" b'}, {"remark": "a c"}, "-\x1b[0m \x1b[31m10 remark\x1b[0m "
                 "\x1b[31;7m\"a\\\" b\"\x1b[0m\n"),
                ({"grant": "deny"}, {"grant": "deny", "log-option": "log"}, "-\x1b[0m \x1b[31m10 deny any any\x1b[0m\n"),
                ({"grant": "deny"}, {"grant": "deny", "log-option": "log"},
                 "+\x1b[0m \x1b[32m10 deny any any\x1b[0m \x1b[32;7mlog\x1b[0m\n"),
                ({"grant": "deny", "protocol": "tcp"}, {"grant": "permit", "protocol": "udp"},
                 "+\x1b[0m \x1b[32m10\x1b[0m \x1b[32;7mpermit udp\x1b[0m \x1b[32many any\x1b[0m\n")):
            a, b, line = words
            sides = [self.file(str(n), document("base", ("X", numbered(side)))) for n, side in enumerate((a, b))]
            self.assertIn(line, self.run_command("diff", "--color", "always", *sides)[1].decode())
        for args in ((), ("-o", "/dev/stdout"), ("-o", "/dev/fd/1")):
            code, shown = self.on_terminal("encode", doc, *args)  # encodings are binary
            self.assertEqual((code, "encodings are not for a terminal; redirect" in shown), (2, True))

    def test_trace(self):
        bad = '{"deny":{"tcp-flags":{"match-all":{"tcp-bits":"+syn +syn"}}}}'
        line = "ccv_yang_set_ipv4_tcpflag: acl_yang_get_uint32_tcpflags_um returned failure"
        for args, traced in (((), False), (("--trace",), True), (("--trace=set_ipv4",), True),
                             (("--trace=^acl_yang",), False)):
            code, _, err = self.run_command("encode", *args, stdin=bad)
            self.assertEqual((code, line in err), (2, traced), args)


if __name__ == "__main__":
    unittest.main()
