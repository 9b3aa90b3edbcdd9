"""One entry, and many in batches."""
import json
import os
import pathlib
import pickle
import subprocess
import sys
import threading

import pytest

import aceconv
from aceconv.testing import assert_same

ENTRY = {"sequence-number": 10, "grant": "permit", "protocol": 6,
         "source-network": {"source-address": "192.0.2.0", "source-wild-card-bits": "0.0.0.255"}}
LOSSY = {"sequence-number": 20, "permit": {  # an address, and any beside it
    "source": {"host": "192.0.2.1", "any": {}}, "destination": {"any": {}}}}
BAD = {"sequence-number": 30, "grant": "perhaps"}


def generated(count, *options):
    return subprocess.run([os.environ["ACECONV_GENERATOR"], str(count), *options],
                          capture_output=True, check=True).stdout.splitlines()


def bags_of_command(lines, schema):
    """What the command makes of them, one after the other."""
    return subprocess.run([os.environ["ACECONV"], "encode", "-q", "--no-labels", "--schema", schema],
                          input=b"\n".join(lines), capture_output=True, check=True).stdout


@pytest.fixture
def base():
    return aceconv.Converter("base")


@pytest.mark.parametrize("form", [
    dict, json.dumps, lambda entry: json.dumps(entry, indent=1).encode(),
    lambda entry: memoryview(json.dumps({"aceconv-base:acls": {
        "acl": [{"name": "in", "entry": [entry]}]}}).encode())])
def test_forms_of_an_entry(base, form):
    bag = base.encode(form(ENTRY))
    assert base.decode(bag, sequence=10) == ENTRY
    assert "<sequence-number>10<" in base.decode_text(bag, sequence=10, format="xml")


def test_convert_inspect_diff(base):
    entry, losses = base.convert(ENTRY, to="um")
    assert losses == []
    assert_same(entry, ENTRY)
    assert "<permit" in base.convert_text(ENTRY, to="um", format="xml")[0]
    grant = base.inspect(ENTRY)[0]
    assert (grant.name, grant.offset, grant.value) == ("grant", 16, ("keyword", 1, "permit",
                                                                     "1 (permit)"))
    change, = base.diff(ENTRY, {**ENTRY, "grant": "deny"})
    assert (change.leaf, change.before.text, change.after.number) == ("grant", "permit", 0)
    assert base.check(ENTRY) == []


def test_stored_fields_are_taken_over(base):
    source = json.loads((pathlib.Path(os.environ["ACECONV_SOURCE"]) /
                         "examples/um-only.json").read_text())
    entries = [entry for acl in source["aceconv-um:acls"]["acl"] for entry in acl["entry"]]
    um = aceconv.Converter("um")
    stored = next(bag for bag in map(um.encode, entries) if "udf" in um.decode_text(bag))
    taken, = (field for field in base.inspect(base.encode(ENTRY, stored=stored))
              if field.name == "UDF")
    assert taken.value in [field.value for field in um.inspect(stored)]
    assert "UDF" not in [field.name for field in base.inspect(ENTRY)]


def test_losses_are_never_silent():
    with pytest.raises(aceconv.LossError) as caught:
        aceconv.Converter("um").encode(LOSSY)
    loss, = caught.value.losses
    assert (loss.sequence, loss.leaf, loss.widens) == (20, "permit/source/any", False)
    assert "not kept by the record" in str(caught.value)
    seen = []
    bag = aceconv.Converter("um", on_loss=seen.append).encode(LOSSY)
    assert seen == caught.value.losses and bag == caught.value.product
    assert aceconv.Converter("um", on_loss="ignore").encode(LOSSY) == bag
    assert aceconv.Converter("um").check(LOSSY) == seen
    with pytest.raises(aceconv.LossError):
        list(aceconv.Converter("um").encode_many([LOSSY]))


@pytest.mark.parametrize("call, kind, said", [
    (lambda c: c.encode(BAD), aceconv.DataError, "perhaps"),
    (lambda c: c.encode("{"), aceconv.InputError, "ends inside an entry"),
    (lambda c: c.encode("\ud800"), UnicodeEncodeError, "surrogates"),
    (lambda c: c.encode({"sequence-number": float("nan")}), ValueError, "JSON compliant"),
    (lambda c: c.encode(10), TypeError, "not int"),
    (lambda c: c.encode(ENTRY, schema="um"), aceconv.DataError, "unknown node"),
    (lambda c: c.decode(b"\x83"), aceconv.InputError, ""),
    (lambda c: c.decode(c.encode(ENTRY), to="UM"), aceconv.UsageError, "'base', 'um'"),
    (lambda c: c.decode_text(c.encode(ENTRY), format="cbor"), aceconv.UsageError, "'json', 'xml'"),
    (lambda c: c.encode_many([], jobs=0), aceconv.UsageError, "1 to 256"),
    (lambda c: aceconv.Converter(on_loss="warn"), aceconv.UsageError, "on_loss"),
    (lambda c: aceconv.Converter(plugin="/nowhere.so"), aceconv.UnavailableError, "/nowhere.so"),
])
def test_errors(base, call, kind, said):
    with pytest.raises(kind, match=said):
        call(base)
    assert base.decode(base.encode(ENTRY), sequence=10) == ENTRY  # which stays usable


def test_errors_say_where_and_travel(base):
    with pytest.raises(aceconv.DataError) as caught:
        base.encode({"aceconv-base:acls": {"acl": [{"name": "in", "entry": [BAD]}]}})
    fault = pickle.loads(pickle.dumps(caught.value))
    assert (fault.list, fault.sequence, fault.line) == ("in", 30, 1)
    assert fault.path.endswith("/entry[sequence-number='30']/grant")
    assert isinstance(fault, ValueError) and str(fault) == str(caught.value)
    lost = pickle.loads(pickle.dumps(_raised(lambda: aceconv.Converter("um").encode(LOSSY))))
    assert lost.losses[0].leaf == "permit/source/any"


def _raised(call):
    with pytest.raises(aceconv.AceconvError) as caught:
        call()
    return caught.value


@pytest.mark.parametrize("jobs", [1, 2])
@pytest.mark.parametrize("schema", ["base", "um"])
def test_batches_are_the_commands(schema, jobs):
    lines = generated(10000, *(["--um"] if schema == "um" else []))
    converter = aceconv.Converter(schema, on_loss="ignore")
    bags = list(converter.encode_many(lines, jobs=jobs))
    assert b"".join(bags) == bags_of_command(lines, schema)
    some = [json.loads(line) for line in lines[:50]]
    assert list(converter.encode_many(some)) == bags[:50]
    # Without a schema each entry tells its own or is refused, whatever stands beside it.
    untold = aceconv.Converter(on_loss="ignore")
    assert _told(untold, lines[:20]) == [_told(untold, [line])[0] for line in lines[:20]]


def _told(converter, lines):
    return list(converter.encode_many(lines, on_fault=lambda fault: None))


def test_a_batch_takes_what_one_call_takes(base):
    """No entry of a batch is another's, lost or doubled, whatever its text looks like."""
    plain, pretty = json.dumps(ENTRY), json.dumps(ENTRY, indent=1)
    two = '{"aceconv-base:acls":{"acl":[{"name":"a","entry":[%s,%s]}]}}' % (
        plain, plain.replace("10", "20"))
    faults = []
    mixed = [ENTRY, pretty, BAD, two, "", " ", plain + plain, '{"aceconv-base:acls":{}}', "]",
             plain.encode(), '{"grant":"per\nmit"}', plain + "\n" + plain]
    bags = list(base.encode_many(mixed, on_fault=faults.append))
    good = base.encode(ENTRY)
    assert [bag == good for bag in bags] == [at in (0, 1, 9) for at in range(len(mixed))]
    assert [fault.ordinal for fault in faults] == [3, 4, 5, 6, 7, 8, 9, 11, 12]
    for fault in faults:
        alone = _raised(lambda: base.encode(mixed[fault.ordinal - 1]))
        assert (type(fault), fault.text) == (type(alone), alone.text)
    early = base.encode_many([ENTRY, BAD])
    assert next(early) == good
    with pytest.raises(aceconv.DataError):
        next(early)


def test_threads_share_a_converter(base):
    lines = generated(300)
    alone = [base.encode(line) for line in lines]
    found = [None] * 4

    def work(at):
        found[at] = ([base.encode(line) for line in lines] if at % 2 else
                     list(base.encode_many(lines)))

    threads = [threading.Thread(target=work, args=(at,)) for at in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(60)
    assert found == [alone] * 4


def test_same(base):
    assert_same(ENTRY, base.encode(ENTRY), schema="base")
    assert_same([ENTRY, ENTRY], [json.dumps(ENTRY)] * 2, schema="base")
    for a, b, said in (
        (ENTRY, {**ENTRY, "grant": "deny"}, "grant: 1 .permit. became 0 .deny."),
        ([ENTRY], [ENTRY, ENTRY], "1 entries against 2"),
        ([ENTRY, ENTRY], [ENTRY, {**ENTRY, "protocol": 17}], "entry 2: protocol"),
        (ENTRY, [ENTRY], "against a sequence"),
    ):
        with pytest.raises(AssertionError, match=said):
            assert_same(a, b, schema="base")


def test_loaded_beside_nothing_else():
    """The extension's library offers nothing to others; it works all the same, and so does a plug-in
    file beside the one that is built in."""
    code = ("import os, sys; sys.setdlopenflags(os.RTLD_NOW | os.RTLD_LOCAL); import aceconv;"
            "print(*{len(aceconv.Converter('base', plugin=plugin).encode({'sequence-number': 1}))"
            "        for plugin in (os.environ['ACECONV_PLUGIN'], None)})")
    done = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True)
    assert int(done.stdout) > 20 and done.stderr == ""
