"""A property test: what an entry says survives its encoding, whatever it says."""
import aceconv
from aceconv.testing import assert_same
from hypothesis import given, settings
from hypothesis import strategies as st

converter = aceconv.Converter("base")
network = st.fixed_dictionaries({"source-address": st.ip_addresses(v=4).map(str)}, optional={
    "source-wild-card-bits": st.ip_addresses(v=4).map(str)})
entries = st.fixed_dictionaries({
    "sequence-number": st.integers(1, 2**32 - 1), "grant": st.sampled_from(["permit", "deny"])},
    optional={"protocol": st.integers(0, 255), "source-network": network})


@settings(max_examples=200)
@given(entries)
def test_there_and_back(entry):
    back = converter.decode(converter.encode(entry), sequence=entry["sequence-number"])
    assert_same(entry, back, schema="base")
