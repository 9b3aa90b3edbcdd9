#include <gtest/gtest.h>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

constexpr uint32_t unknown_leaf = 0x46B08400;

TEST(BaseEncoder, EachLeaf) {
    for (const Leaf &leaf : base_leaves) {
        Host host;
        const auto &[tree, record] = entry_of(leaf);
        EXPECT_EQ(host.encode(Schema::base, tree), 0U) << tree;
        EXPECT_EQ(host.encoded, canonical(record)) << tree;
    }
}

TEST(BaseEncoder, AllLeavesInOneRecord) {
    Host host;
    EXPECT_EQ(host.encode(Schema::base, base_entry().tree), 0U);
    EXPECT_EQ(host.encoded, canonical(base_entry().record));
    EXPECT_EQ(host.leaks(), 0U);
    EXPECT_TRUE(host.faults.empty()) << host.faults.front();
}

TEST(BaseEncoder, SpecialValues) {
    const Row rows[] = {
        {"", "|"},
        {"sequence-number=5 sequence-number=6", "|"},
        {"grant=deny", "grant=0 | 0"},
        {"precedence=routine", "tos_byte=0 | 17"},
        {"icmp{icmp-type-code=echo-reply}", "icmp_type_code=0xFFFF | 19"},
        {"icmp{icmp-type-code=network-unreachable}", "icmp_type_code=0x30000 | 18"},
        {"icmp{icmp-type-code=#4294967295}", "icmp_type_code=0xFFFFFFFF | 19"},
        {"capture=false", "capture=0 | 38"},
        {"icmp-off{} fragments{}", "icmp_off=1 frags=1 | 30 23"},
        // values are cut to the width of their field
        {"protocol=65542 protocol2=65536", "protocol=6 protocol2=0 | 1 54"},
        {"source-port{first-source-port=70000}", "sport1=4464 | 5"},
        {"grant=#257 igmp-message-type=300 precedence=256 fragment-type=259",
         "grant=1 igmp_type=44 tos_byte=0 FragmentFlags=3 | 0 12 17 60"},
        {"log-option=#65537", "log=65537 | 13"},
        {"tcp{tcp-bits='ack fin' tcp-bits-mask='urg syn rst'}",
         "tcpflags=0x11 tcpflags_mask=0x26 | 21 22"},
        {"tcp{tcp-bits=#257 tcp-bits-match-operator=258}", "tcpflags=1 tcpflagsopr=2 | 21 20"},
        {"dscp{dscp-operator=#261 dscp-min=256}", "dscp_op=5 dscp=0 | 14 15"},
        {"next-hop{}", "|"},
        {"next-hop{next-hop-type=default-next-hop next-hop-2{vrf-name=a}}",
         "nexthop=2 vrf2='a' | 32 40 42"},
        {"next-hop{next-hop-2{track-name=a} next-hop-3{track-name=b}}",
         "track2='a' track3='b' | 45 46"},
        {"next-hop{next-hop-1{next-hop=1.1.1.1 vrf-name=a track-name=b}}",
         "nexthop1=1.1.1.1 vrf1='a' track1='b' | 33 39 44"},
        {"next-hop{next-hop-2{next-hop=0.0.0.0} next-hop-3{next-hop=2.2.2.2 vrf-name=c}}",
         "nexthop3=2.2.2.2 vrf3='c' | 34 35 41 42 43"},
        // a leaf given twice keeps the later value
        {"grant=permit grant=deny protocol=6 protocol=17", "grant=0 protocol=17 | 0 1"},
        {"remark=a remark=b counter-name=c counter-name=d sequence-str=e sequence-str=f",
         "remark='b' counter_name='d' SequenceStr='f' | 31 51 52"},
        {"next-hop{next-hop-3{vrf-name=a vrf-name=b}} remark=''", "vrf3='b' remark='' | 31 41 43"},
    };
    for (const Row &row : rows) {
        Host host;
        EXPECT_EQ(host.encode(Schema::base, row.tree), 0U) << row.tree;
        EXPECT_EQ(host.encoded, canonical(row.record)) << row.tree;
        EXPECT_EQ(host.leaks(), 0U) << row.tree;
        EXPECT_TRUE(host.faults.empty()) << row.tree;
    }
}

TEST(BaseEncoder, UnknownNamesAtEveryLevel) {
    const char *trees[] = {
        "unknown",
        "Grant=permit",
        "grant2=permit",
        "gran=permit",
        "permit{}",
        "source-network{source-address=1.1.1.1 sequence-number=1}",
        "source-network{destination-address=1.1.1.1}",
        "source-port{first-destination-port=1}",
        "tcp{tcp-bits=syn other=1 tcp-bits-mask=syn}",
        "icmp{icmp-off{}}",
        "dscp{grant=permit}",
        "fragment-offset{fragments}",
        "next-hop{next-hop=1.1.1.1}",
        "next-hop{vrf-name=a}",
        "next-hop{next-hop-4{}}",
        "next-hop{next-hop-1{next-hop-type=regular-next-hop}}",
        "next-hop{next-hop-3{vrf=a}}",
        "remark=lost next-hop{next-hop-2{vrf-name=lost other=1}} remark=unseen",
    };
    for (const char *tree : trees) {
        Host host;
        EXPECT_EQ(host.encode(Schema::base, tree), unknown_leaf) << tree;
        EXPECT_EQ(host.called().find("init"), std::string::npos) << tree;
        EXPECT_TRUE(host.called().ends_with(" destroy release")) << tree << ": " << host.called();
        EXPECT_EQ(host.leaks(), 0U) << tree;
        EXPECT_TRUE(host.faults.empty()) << tree;
        EXPECT_EQ(host.called().find("event"), std::string::npos) << tree;
    }
}

TEST(BaseEncoder, OrderOfCalls) {
    Host host;
    host.stored = "|";
    ASSERT_EQ(host.encode(Schema::base, "grant=permit icmp-off dscp{dscp-min=1} sequence-number=1 "
                                        "next-hop{next-hop-1{vrf-name=a}} remark=b"),
              0U);
    EXPECT_EQ(host.called(),
              "stored release create active first0 finished0 get_enum:grant next finished0 next "
              "finished0 first1:dscp finished1 get_enum_or_uint32:dscp-min next finished1 next "
              "finished0 next finished0 first1:next-hop finished1 first1:next-hop-1 finished1 "
              "get_string:vrf-name next finished1 next finished1 next finished0 get_string:remark "
              "next finished0 active destroy init encode undefine release");
    EXPECT_TRUE(host.faults.empty());
}

struct FailureCase {
    const char *tree;
    Failure failure;
    bool handle;
    const char *calls; // without "finished"
};

// After a failure every enclosing level takes its own step, and no later node is
// looked at.
TEST(BaseEncoder, WhatFollowsAFailure) {
    const std::string nested =
        "next-hop{next-hop-1{vrf-name=a track-name=b} next-hop-2{} } remark=c";
    const FailureCase cases[] = {
        {"grant=permit", {"create"}, false, "create destroy:null release"},
        {"grant=permit", {"create"}, true, "create destroy release"},
        {"grant=permit", {"first0"}, false, "create active first0 destroy release"},
        {"grant=permit", {"finished0"}, false, "create active first0 destroy release"},
        {"grant=permit remark=a",
         {"get_enum"},
         false,
         "create active first0 get_enum:grant next destroy release"},
        {"grant=permit remark=a",
         {"next"},
         false,
         "create active first0 get_enum:grant next destroy release"},
        {nested.c_str(),
         {"get_string:vrf-name"},
         false,
         "create active first0 first1:next-hop first1:next-hop-1 get_string:vrf-name next next "
         "next destroy release"},
        {nested.c_str(),
         {"first1:next-hop-1"},
         false,
         "create active first0 first1:next-hop first1:next-hop-1 next next destroy release"},
        {nested.c_str(),
         {"finished1", 1},
         false,
         "create active first0 first1:next-hop first1:next-hop-1 next next destroy release"},
        {"grant=permit",
         {"init"},
         false,
         "create active first0 get_enum:grant next active destroy init release"},
        {"grant=permit",
         {"init"},
         true,
         "create active first0 get_enum:grant next active destroy init undefine release"},
        {"grant=permit",
         {"encode"},
         false,
         "create active first0 get_enum:grant next active destroy init encode undefine release"},
    };
    for (const FailureCase &test : cases) {
        Host host;
        host.failures = {test.failure};
        host.handle_on_failure = test.handle;
        EXPECT_EQ(host.encode(Schema::base, test.tree), 0xF001U) << test.calls;
        EXPECT_EQ(host.called("finished"), test.calls);
        EXPECT_EQ(host.leaks(), 0U) << test.calls;
        EXPECT_TRUE(host.faults.empty()) << test.calls;
    }
}

struct StoredCase {
    const char *stored;
    const char *tree;
    const char *record;
};

TEST(BaseEncoder, KeepsUserDefinedFieldsOfTheStoredEntry) {
    const StoredCase cases[] = {
        {"UDF=a:1:2,b:3:4,c:5:6 | 2:0-2 2:8-10 2:16-18", "grant=permit",
         "grant=1 UDF=a:1:2,b:3:4,c:5:6 | 0 2:0-2 2:8-10 2:16-18"},
        {"UDF=a:1:2 PoliceValue=9 Priority=1 icmp_on=1 remark='x' vrf1='v' grant=1 "
         "| 0 31 39 2:0 2:8 2:16 2:24-29 2:40",
         "", "UDF=a:1:2 | 2:0 2:8 2:16"},
        {"remark='x' | 31 2:0 2:8 2:16", "grant=deny", "| 0"}, // no elements, no bits
        {"UDF=a:1:2 |", "", "UDF=a:1:2 |"},                    // elements without bits
        {"UDF=a:1:2 | 2:0-63", "", "UDF=a:1:2 | 2:0-23"},
        {"|", "remark=y", "remark='y' | 31"},
    };
    for (const StoredCase &test : cases) {
        Host host;
        host.stored = test.stored;
        EXPECT_EQ(host.encode(Schema::base, test.tree), 0U) << test.stored;
        EXPECT_EQ(host.encoded, canonical(test.record)) << test.stored;
        EXPECT_EQ(host.leaks(), 0U) << test.stored;
        EXPECT_TRUE(host.faults.empty()) << test.stored;
    }
}

TEST(BaseEncoder, StoredEntryThatCannotBeDecodedIsIgnored) {
    Host host;
    host.stored = "UDF=a:1:2 | 2:0 2:8 2:16";
    host.failures = {{"stored"}};
    EXPECT_EQ(host.encode(Schema::base, "grant=permit"), 0U);
    EXPECT_EQ(host.encoded, "grant=1 | 0");
    EXPECT_EQ(host.called("finished"),
              "stored create active first0 get_enum:grant next active destroy init encode undefine "
              "release");
    host.failures = {{"get_enum"}};
    EXPECT_EQ(host.encode(Schema::base, "grant=permit"), 0xF001U); // elements released once
    EXPECT_EQ(host.leaks(), 0U);
    EXPECT_TRUE(host.faults.empty());
}

TEST(BothEncoders, EveryPassOfTheIteratorFillsTheSameRecord) {
    for (const Schema schema : {Schema::base, Schema::um}) {
        for (const int passes : {0, 1, 3}) {
            Host host;
            host.passes = passes;
            EXPECT_EQ(host.encode(schema, "remark=r"), 0U);
            EXPECT_EQ(host.encoded, passes == 0 ? "|" : "remark='r' | 31");
            EXPECT_EQ(host.leaks(), 0U);
            EXPECT_TRUE(host.faults.empty());
        }
    }
}

// A level may end with a null node, with is_finished, or both.
TEST(BothEncoders, EveryWayALevelEnds) {
    for (const Ending ending : {Ending::both, Ending::null_node, Ending::finished}) {
        Host host;
        host.ending = ending;
        EXPECT_EQ(host.encode(Schema::base, base_entry().tree), 0U);
        EXPECT_EQ(host.encoded, canonical(base_entry().record));
        EXPECT_EQ(host.encode(Schema::um, um_entry().tree), 0U);
        EXPECT_EQ(host.encoded, canonical(um_entry().record));
        EXPECT_EQ(host.leaks(), 0U);
        EXPECT_TRUE(host.faults.empty());
    }
}

// The first reading of a string stays the record's until it is released.
TEST(BothEncoders, SecondReadingOfAStringFails) {
    const std::pair<Schema, const char *> trees[] = {
        {Schema::base, "remark=a remark=b"},
        {Schema::base, "next-hop{next-hop-1{vrf-name=a vrf-name=b}}"},
        {Schema::um, "remark=a remark=b"},
        {Schema::um, "deny{counter=a counter=b}"},
        {Schema::um, "deny{nexthop2{track=a track=b}}"},
        {Schema::um, "deny{source{net-group=a net-group=b}}"},
        {Schema::um, "deny{destination{port-group=a port-group=b}}"},
    };
    for (const auto &[schema, tree] : trees) {
        Host host;
        host.failures = {{"get_string", 1}};
        EXPECT_EQ(host.encode(schema, tree), 0xF001U) << tree;
        EXPECT_EQ(host.leaks(), 0U) << tree;
        EXPECT_TRUE(host.faults.empty()) << tree;
    }
}

} // namespace
} // namespace aceconv::test
