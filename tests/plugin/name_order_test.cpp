// The order in which the UM encoder tests the names of each level. A comparison
// starts only where the first characters agree, so the tested name turns into
// each listed one in turn: one that the parser has passed already is not
// compared any more, and neither is any behind it.
#include <gtest/gtest.h>
#include <sstream>

#include "recording_host.h"
#include "um/encoder/parsers.h"

namespace aceconv::test {
namespace {

struct Level {
    const char *tree; // with a node "?" in the level
    const char *names;
};

#define PERMIT                                                                                     \
    "protocol eq range source destination tcp-flags icmp igmp-type dscp precedence packet-length " \
    "ttl fragment-offset fragments fragment-type udf-entries police default nexthop1 nexthop2 "    \
    "nexthop3 capture counter log log-input set"
#define SIDE "address wildcard-mask prefix-length any host net-group port port-group"

const Level levels[] = {
    {"?", "deny permit remark sequence-number"},
    {"permit{?}", PERMIT},
    {"deny{?}", PERMIT " icmp-off icmp-on"},
    {"deny{range{?}}", "start-protocol end-protocol"},
    {"deny{source{?}}", SIDE},
    {"deny{destination{?}}", SIDE},
    {"deny{source{port{?}}}", "eq gt lt neq range"},
    {"deny{destination{port{?}}}", "eq gt lt neq range"},
    {"deny{source{port{range{?}}}}", "start-value end-value"},
    {"deny{destination{port{range{?}}}}", "start-value end-value"},
    {"deny{tcp-flags{?}}", "match-all match-any tcp-bits"},
    {"deny{tcp-flags{match-all{?}}}", "tcp-bits"},
    {"deny{tcp-flags{match-any{?}}}", "tcp-bits"},
    {"deny{icmp{?}}", "message-type-name message-type message-code"},
    {"deny{dscp{?}}", "eq gt lt neq range dscp-value"},
    {"deny{dscp{range{?}}}", "start-value end-value"},
    {"deny{packet-length{?}}", "eq gt lt neq range"},
    {"deny{ttl{?}}", "eq gt lt neq range"},
    {"deny{fragment-offset{?}}", "eq gt lt neq range"},
    {"deny{udf-entries{?}}", "udf"},
    {"deny{udf-entries{udf[{?}]}}", "udf-name udf-value udf-mask"},
    {"deny{police{?}}", "value unit peak-rate peak-unit priority"},
    {"deny{nexthop1{?}}", "ipv4 track vrf"},
    {"deny{nexthop2{?}}", "ipv4 track vrf"},
    {"deny{nexthop3{?}}", "ipv4 track vrf"},
    {"deny{set{?}}", "qos-group ttl"},
};

std::vector<std::string> words(const char *text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

TEST(NameOrder, EachLevel) {
    for (const Level &level : levels) {
        Host host;
        host.names = words(level.names);
        std::string tree = level.tree;
        (void)host.encode(Schema::um, tree.insert(tree.find('?'), 1, level.names[0]));
        EXPECT_EQ(host.compared, host.names) << level.tree;
    }
}

// The driver has tested these three already.
TEST(NameOrder, ProtocolParser) {
    Host host;
    host.names = words("protocol eq range");
    Node node{"p?", "", {}};
    Record record{};
    const Host::Inside inside(true);
    EXPECT_EQ(ace::um::acl_yang_ipv4_enc_protocol_common(
                  nullptr, reinterpret_cast<ccv_yang_node *>(&node), record),
              0U);
    EXPECT_EQ(host.compared, host.names);
}

} // namespace
} // namespace aceconv::test
