// The base decoder: generated records against the rows of leaves, then values.
#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <random>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

// The names of the containers around a leaf.
std::vector<std::string> path_of(const Leaf &leaf) {
    std::vector<std::string> path;
    std::string_view tree = leaf.tree;
    for (size_t end; (end = tree.find_first_of("{=")) < tree.size() && tree[end] == '{';) {
        path.emplace_back(tree.substr(0, end));
        tree.remove_prefix(end + 1);
    }
    return path;
}

// What is written of a record with all leaves under this mask: containers always.
std::string expected(uint64_t mask) {
    std::string text;
    std::vector<std::string> open;
    const auto enter = [&](const std::vector<std::string> &path) {
        const size_t shared =
            std::mismatch(open.begin(), open.end(), path.begin(), path.end()).first - open.begin();
        for (size_t i = open.size(); i > shared; --i) {
            text += " }";
        }
        for (size_t i = shared; i < path.size(); ++i) {
            text += ' ' + path[i] + '{';
        }
        open = path;
    };
    for (const Leaf &leaf : base_leaves) {
        enter(path_of(leaf));
        const std::string record = entry_of(leaf).record;
        const uint64_t own = parse_record(record).record.ConfigurationMask;
        const int bit = std::countr_zero(own); // others are derived
        const bool any_code = bit == 18 && (mask >> 19 & 1U) != 0;
        if (own != 0 && (any_code || (mask >> bit & 1U) != 0)) {
            text += ' ' + (any_code ? "E:icmp-type-code=unreachable"
                                    : filled(leaf.emission, leaf.value, leaf.name));
        }
    }
    enter({});
    return text.substr(1);
}

TEST(ExhaustiveBaseDecoder, PresenceBitsAloneInPairsAndAtRandom) {
    Given given = parse_record(base_entry().record);
    std::vector<uint64_t> masks = {0, ~uint64_t{0}};
    for (unsigned a = 0; a < 64; ++a) {
        for (unsigned b = a; b < 64; ++b) {
            masks.push_back(uint64_t{1} << a | uint64_t{1} << b);
        }
    }
    std::mt19937_64 random(20240601);
    for (int i = 0; i < 2000; ++i) {
        masks.push_back(random());
    }
    Host host;
    for (const uint64_t mask : masks) {
        given.record.ConfigurationMask = mask;
        given.record.ConfigurationMask2 = random(); // the schema has nothing for it
        ASSERT_EQ(host.decode(Schema::base, given.record), 0U);
        ASSERT_EQ(host.emitted(), expected(mask)) << std::hex << mask;
    }
    EXPECT_EQ(host.leaks(), 0U);
    EXPECT_TRUE(host.faults.empty());
}

struct ValueCase {
    const char *record;
    const char *token;              // the only thing beside the empty containers, or ""
    const char *released = nullptr; // where not the record that was decoded
};

TEST(BaseDecoder, Values) {
    const ValueCase cases[] = {
        {"grant=2 | 0", "e:grant=#2"},
        {"proto_oper=0 | 53", "e:protocol-operator=#0"},
        // any code is folded into the record, and its bit with it
        {"icmp_type_code=0x30000 | 19", "E:icmp-type-code=unreachable",
         "icmp_type_code=0x3FFFF | 18 19"},
        {"icmp_type_code=0x30000 | 18", "E:icmp-type-code=network-unreachable"},
        {"icmp_type_code=0xFF0001 | 18", "E:icmp-type-code=16711681"},
        {"icmp_type_code=0xFF0001 | 18 19", "E:icmp-type-code=16777215",
         "icmp_type_code=0xFFFFFF | 18 19"},
        {"icmp_type_code=0 | 19", "E:icmp-type-code=echo-reply", "icmp_type_code=0xFFFF | 18 19"},
        {"tcpflags=0xC0 | 21", "b:tcp-bits=#6,#7"},
        {"tcpflagsopr=2 | 20", "E:tcp-bits-match-operator=2"},
        {"FragmentFlags=6 | 60", "E:fragment-type=6"},
        {"icmp_off=0 | 30", ""},
        {"icmp_off=255 | 30", "_:icmp-off="},
        {"frags=0 | 23", ""},
        {"frags=2 | 23", "_:fragments="},
        {"capture=0 | 38", "B:capture=0"},
        {"| 42 43 61-63 2:0-63", ""},
        {"UDF=a:1:2 PoliceValue=1 icmp_on=1 | 2:0-29", ""},
        {"| 31", "s:remark=null"},
        {"remark='' | 31", "s:remark=''"},
    };
    for (const ValueCase &test : cases) {
        Host host;
        EXPECT_EQ(host.decode(Schema::base, test.record), 0U) << test.record;
        std::string rest;
        for (const std::string &token : host.output) {
            rest += token.find_first_of("=") != std::string::npos ? token : "";
        }
        EXPECT_EQ(rest, test.token) << test.record;
        EXPECT_EQ(host.released, canonical(test.released ? test.released : test.record));
        EXPECT_EQ(host.leaks(), 0U) << test.record;
    }
}

TEST(BothDecoders, OrderOfCallsAndFailures) {
    struct {
        const char *failing;
        bool handle;
        uint32_t status;
        const char *before;
        const char *after;
    } const cases[] = {
        {"none", false, 0, "init decode undefine", "release"},
        {"init", false, 0xF001, "init", ""},
        {"init", true, 0xF001, "init undefine", ""},
        {"decode", false, 0xF001, "init decode undefine", ""},
    };
    for (const Schema schema : {Schema::base, Schema::um}) {
        for (const auto &test : cases) {
            Host host;
            host.failures = {{test.failing}};
            host.handle_on_failure = test.handle;
            EXPECT_EQ(host.decode(schema, "remark='r' | 31"), test.status) << test.failing;
            const std::string emitted =
                test.status != 0 ? (schema == Schema::um ? " event2" : "") : ' ' + host.emitted();
            EXPECT_EQ(host.called(),
                      test.before + emitted + (test.status == 0 ? " " : "") + test.after);
            EXPECT_EQ(host.output.empty(), test.status != 0);
            EXPECT_EQ(host.leaks(), 0U) << test.failing;
            EXPECT_TRUE(host.faults.empty()) << test.failing;
        }
    }
}

} // namespace
} // namespace aceconv::test
