// The UM encoder's driver: top-level leaves, the action, next hops, options.
#include <gtest/gtest.h>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

constexpr uint32_t unknown_leaf = 0x46B08400;

TEST(UmEncoder, EachLeaf) {
    for (const Row &row : um_leaves) {
        Host host;
        EXPECT_EQ(host.encode(Schema::um, "deny{" + std::string(row.tree) + "}"), 0U) << row.tree;
        EXPECT_EQ(host.encoded, canonical(std::string(row.record) + " 0")) << row.tree;
    }
}

TEST(UmEncoder, AllLeavesInOneRecord) {
    for (const char *action : {"deny", "permit"}) {
        Host host;
        host.stored = "UDF=stored:1:2 | 2:0 2:8 2:16"; // is not read
        const Entry entry = um_entry(action);
        EXPECT_EQ(host.encode(Schema::um, entry.tree), 0U);
        EXPECT_EQ(host.encoded, canonical(entry.record));
        EXPECT_EQ(host.called().find("stored"), std::string::npos);
        EXPECT_EQ(host.leaks(), 0U);
        EXPECT_TRUE(host.faults.empty()) << host.faults.front();
    }
}

TEST(UmEncoder, DriverValues) {
    const Row rows[] = {
        {"", "|"},
        {"sequence-number=1", "|"},
        {"remark=only", "remark='only' | 31"},
        {"remark=a remark=b", "remark='b' | 31"},
        {"deny{}", "| 0"},
        {"permit{}", "grant=1 | 0"},
        {"deny{protocol=tcp} permit{igmp-type=pim}", "grant=1 protocol=6 igmp_type=20 | 0 1 12"},
        {"permit{protocol=tcp} deny{icmp-on{}}", "protocol=6 icmp_on=1 | 0 1 2:29"},
        {"permit{icmp-off{} icmp-on{} log{}}", "grant=1 log=1 | 0 13"},
        {"deny{log{} log-input{}}", "log=2 | 0 13"},
        {"deny{log-input{} log{}}", "log=1 | 0 13"},
        // children of presence nodes and unknown subtrees are stepped over
        {"deny{fragments{protocol=udp} capture{a{b{}}} icmp-off{x=1} log{y=1} default{z=1} "
         "icmp-on{w=1} protocol=tcp}",
         "protocol=6 frags=1 capture=1 icmp_off=1 icmp_on=1 log=1 nexthop=2 "
         "| 0 1 13 23 30 32 38 2:29"},
        {"permit{unknown=1 other{protocol=udp} grant=deny sequence-number=1 counter=c}",
         "grant=1 counter_name='c' | 0 51"},
        {"permit{set{unknown=1 qos-group=1 other{ttl=9} ttl=2}}",
         "grant=1 qos_group=1 SetTTL=2 | 0 55 59"},
        {"permit{udf-entries{other{udf{}} unknown=1}}", "grant=1 | 0"},
        // next hops
        {"deny{nexthop1{}}", "nexthop=1 | 0 32"},
        {"deny{nexthop2{ipv4=2.2.2.2} nexthop3{}}", "nexthop2=2.2.2.2 | 0 34"},
        {"deny{default{} nexthop1{vrf=a}}", "nexthop=1 vrf1='a' | 0 32 39"},
        {"deny{nexthop1{vrf=a} default{}}", "nexthop=2 vrf1='a' | 0 32 39"},
        {"deny{nexthop3{track=a track=b vrf=c vrf=d}}", "vrf3='d' track3='b' | 0 41 46"},
        {"deny{counter=a counter=b}", "counter_name='b' | 0 51"},
        // values are cut to the width of their field
        {"deny{igmp-type=300 precedence=263 fragment-type=#258}",
         "igmp_type=44 tos_byte=7 FragmentFlags=2 | 0 12 17 60"},
        {"deny{precedence=Routine fragment-type=dont-fragment}", "| 0 17 60"},
    };
    for (const Row &row : rows) {
        Host host;
        EXPECT_EQ(host.encode(Schema::um, row.tree), 0U) << row.tree;
        EXPECT_EQ(host.encoded, canonical(row.record)) << row.tree;
        EXPECT_EQ(host.leaks(), 0U) << row.tree;
        EXPECT_TRUE(host.faults.empty()) << row.tree;
    }
}

TEST(UmEncoder, UnknownNamesThatStop) {
    const char *trees[] = {
        "other",
        "Permit{}",
        "protocol=tcp",
        "icmp-off{}",
        "permit{nexthop1{vrf=lost next-hop=1.1.1.1 track=unseen}}",
        "deny{nexthop2{default{}}}",
        "deny{nexthop3{vrf-name=a}}",
        "remark=lost permit{counter=lost} other",
    };
    for (const char *tree : trees) {
        Host host;
        EXPECT_EQ(host.encode(Schema::um, tree), unknown_leaf) << tree;
        EXPECT_TRUE(host.called().ends_with(" next destroy release")) << tree;
        EXPECT_EQ(host.leaks(), 0U) << tree;
        EXPECT_TRUE(host.faults.empty()) << tree;
    }
}

std::string udf_list(int count, std::string &elements) {
    std::string text = "udf[";
    for (int i = 0; i < count; ++i) {
        text += "{udf-name=n" + std::to_string(i) + "}";
        elements += (elements.empty() ? "UDF=n" : ",n") + std::to_string(i) + ":0:0";
    }
    return text + "]";
}

TEST(UmEncoder, PresenceBitsOfUserDefinedFields) {
    for (int count = 0; count <= 10; ++count) {
        std::string elements;
        const std::string tree = "deny{udf-entries{" + udf_list(count, elements) + "}}";
        std::string bits = " | 0";
        for (int i = 0; i < count && count <= 8; ++i) {
            bits += " 2:" + std::to_string(i) + " 2:" + std::to_string(8 + i) +
                    " 2:" + std::to_string(16 + i);
        }
        Host host;
        EXPECT_EQ(host.encode(Schema::um, tree), 0U) << count;
        EXPECT_EQ(host.encoded, canonical(elements + bits)) << count;
        EXPECT_EQ(host.leaks(), 0U) << count;
    }
}

TEST(UmEncoder, OrderOfCalls) {
    Host host;
    ASSERT_EQ(host.encode(Schema::um,
                          "permit{protocol=tcp source{port{range{start-value=1}} any{}} u{v=1} "
                          "capture{x=1} udf-entries{udf[{udf-name=a}{}] y=1} set{z=1} igmp-type=1} "
                          "remark=b"),
              0U);
    EXPECT_EQ(
        host.called("finished"),
        "create active first0 first1:permit get_enum_or_uint32:protocol next first1:source "
        "first1:port first1:range get_enum_or_uint32:start-value next next next first1:any next "
        "next next first1:capture next next first1:udf-entries count:udf first2:udf first3:udf "
        "get_string:udf-name next next first3:udf next next next next first1:set next next "
        "get_enum_or_uint32:igmp-type next next get_string:remark next active destroy init encode "
        "undefine release");
    EXPECT_TRUE(host.faults.empty()) << host.faults.front();
}

struct FailureCase {
    const char *tree;
    Failure failure;
    const char *calls; // without "finished", from the first look at the tree on
    bool handle = false;
};

// After a failure every enclosing level takes its own step, and no later node is
// looked at.
TEST(UmEncoder, WhatFollowsAFailure) {
    const FailureCase cases[] = {
        {"remark=a", {"create"}, "create destroy:null release"},
        {"remark=a", {"create"}, "create destroy release", true},
        {"remark=a", {"first0"}, "create active first0 destroy release"},
        {"remark=a remark=b",
         {"get_string"},
         "create active first0 get_string:remark next destroy release"},
        {"permit{source{port{range{start-value=1 end-value=2} eq=3} address=1.1.1.1} log{}} r",
         {"get_enum_or_uint32"},
         "create active first0 first1:permit first1:source first1:port first1:range "
         "get_enum_or_uint32:start-value next next next next next destroy release"},
        {"permit{range{start-protocol=1 end-protocol=2} log{}}",
         {"get_enum_or_uint32"},
         "create active first0 first1:permit first1:range get_enum_or_uint32:start-protocol next "
         "next next destroy release"},
        {"permit{dscp{eq=1 eq=2} log{}}",
         {"get_enum_or_uint32"},
         "create active first0 first1:permit first1:dscp get_enum_or_uint32:eq next next next "
         "destroy release"},
        {"permit{nexthop1{vrf=a ipv4=1.1.1.1}}",
         {"next"},
         "create active first0 first1:permit first1:nexthop1 get_string:vrf next next next destroy "
         "release"},
        {"permit{capture{x=1 y=2} log{}}",
         {"next"},
         "create active first0 first1:permit first1:capture next next next destroy release"},
        {"permit{capture{} log{}}",
         {"first1:capture"},
         "create active first0 first1:permit first1:capture next next destroy release"},
        {"permit{tcp-flags{match-all{tcp-bits=+syn tcp-bits=+ack} tcp-bits=syn}}",
         {"get_string"},
         "create active first0 first1:permit first1:tcp-flags first1:match-all get_string:tcp-bits "
         "next next next next destroy release"},
        {"permit{icmp{message-type=1 message-code=1}}",
         {"get_uint32"},
         "create active first0 first1:permit first1:icmp get_uint32:message-type next next next "
         "destroy release"},
        {"permit{udf-entries{udf[{udf-name=a udf-value=1}{udf-name=b}]} log{}}",
         {"get_string"},
         "create active first0 first1:permit first1:udf-entries count:udf first2:udf first3:udf "
         "get_string:udf-name next next next next next destroy release"},
        {"permit{udf-entries{udf[{udf-name=a}]}}",
         {"count"},
         "create active first0 first1:permit first1:udf-entries count:udf first2:udf next next "
         "next destroy release"},
        {"permit{police{unit=kbps value=1}}",
         {"get_string"},
         "create active first0 first1:permit first1:police get_string:unit next next next destroy "
         "release"},
        {"permit{}",
         {"init"},
         "create active first0 first1:permit next active destroy init event2 release"},
        {"permit{}",
         {"init"},
         "create active first0 first1:permit next active destroy init undefine event2 release",
         true},
    };
    for (const FailureCase &test : cases) {
        Host host;
        host.failures = {test.failure};
        host.handle_on_failure = test.handle;
        EXPECT_EQ(host.encode(Schema::um, test.tree), 0xF001U) << test.tree;
        EXPECT_EQ(host.called("finished"), test.calls) << test.tree;
        EXPECT_EQ(host.leaks(), 0U) << test.tree;
        EXPECT_TRUE(host.faults.empty()) << test.tree << host.faults.front();
    }
}

} // namespace
} // namespace aceconv::test
