// The base decoder against its order of emission, written out step by step.
#include <gtest/gtest.h>
#include <random>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

struct Step {
    int bit; // -1 for a step that is always taken
    const char *token;
};

const Step steps[] = {
    {0, "e:grant=deny"},
    {53, "e:protocol-operator=range"},
    {1, "u:protocol=6"},
    {54, "u:protocol2=400"},
    {-1, "source-network{"},
    {2, "a:source-address=10.1.1.1"},
    {3, "a:source-wild-card-bits=0.0.0.1"},
    {36, "u:source-prefix-length=24"},
    {-1, "} destination-network{"},
    {7, "a:destination-address=10.2.2.2"},
    {8, "a:destination-wild-card-bits=0.0.0.2"},
    {37, "u:destination-prefix-length=4000000000"},
    {-1, "} source-port{"},
    {4, "e:source-operator=range"},
    {5, "u:first-source-port=80"},
    {6, "u:second-source-port=65535"},
    {-1, "} destination-port{"},
    {9, "e:destination-operator=greater-than"},
    {10, "u:first-destination-port=443"},
    {11, "u:second-destination-port=444"},
    {-1, "} icmp{"},
    {18, "E:icmp-type-code=host-unreachable"}, // bit 19 makes it "unreachable"
    {-1, "} tcp{"},
    {20, "E:tcp-bits-match-operator=match-any"},
    {21, "b:tcp-bits=syn,ack"},
    {22, "b:tcp-bits-mask=fin,urg"},
    {-1, "} packet-length{"},
    {24, "e:packet-length-operator=range"},
    {25, "u:packet-length-min=40000"},
    {26, "u:packet-length-max=40001"},
    {-1, "} time-to-live{"},
    {27, "e:time-to-live-operator=range"},
    {28, "u:time-to-live-min=200"},
    {29, "u:time-to-live-max=201"},
    {-1, "} fragment-offset{"},
    {56, "e:fragment-offset-operator=range"},
    {57, "u:fragment-offset-1=60001"},
    {58, "u:fragment-offset-2=60002"},
    {-1, "}"},
    {60, "E:fragment-type=first-fragment"},
    {-1, "next-hop{"},
    {32, "e:next-hop-type=regular-next-hop"},
    {-1, "next-hop-1{"},
    {33, "a:next-hop=1.1.1.1"},
    {39, "s:vrf-name='v1'"},
    {44, "s:track-name='t1'"},
    {-1, "} next-hop-2{"},
    {34, "a:next-hop=2.2.2.2"},
    {40, "s:vrf-name='v2'"},
    {45, "s:track-name='t2'"},
    {-1, "} next-hop-3{"},
    {35, "a:next-hop=3.3.3.3"},
    {41, "s:vrf-name='v3'"},
    {46, "s:track-name='t3'"},
    {-1, "} }"},
    {51, "s:counter-name='cn'"},
    {12, "E:igmp-message-type=v3-report"},
    {-1, "dscp{"},
    {14, "e:dscp-operator=range"},
    {15, "u:dscp-min=10"},
    {16, "u:dscp-max=200"},
    {-1, "}"},
    {17, "E:precedence=critical"},
    {13, "e:log-option=log-input"},
    {38, "B:capture=7"},
    {30, "_:icmp-off="},
    {55, "u:qos-group=50000"},
    {59, "u:set-ttl=60003"},
    {23, "_:fragments="},
    {31, "s:remark='re'"},
    {47, "s:source-prefix-group='ns'"},
    {48, "s:destination-prefix-group='nd'"},
    {49, "s:source-port-group='ps'"},
    {50, "s:destination-port-group='pd'"},
    {52, "s:sequence-str='ss'"},
};

std::string expected(uint64_t mask) {
    std::string text;
    for (const Step &step : steps) {
        std::string token = step.token;
        bool taken = step.bit < 0 || (mask >> step.bit & 1U) != 0;
        if (step.bit == 18 && (mask >> 19 & 1U) != 0) {
            taken = true;
            token = "E:icmp-type-code=unreachable";
        }
        if (taken) {
            text += (text.empty() ? "" : " ") + token;
        }
    }
    return text;
}

TEST(ExhaustiveBaseDecoder, PresenceBitsAloneInPairsAndAtRandom) {
    Given given = parse_record(full_record);
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

TEST(BaseDecoder, EveryLeafOfAnEntry) {
    Host host;
    EXPECT_EQ(host.decode(Schema::base, base_entry().record), 0U);
    size_t leaves = 0;
    for (const std::string &token : host.output) {
        leaves += token.find(':') != std::string::npos ? 1U : 0U;
    }
    EXPECT_EQ(leaves, base_leaves.size() - 1); // no sequence number
}

} // namespace
} // namespace aceconv::test
