// The UM decoder: stated cases, then generated records against the model.
#include <gtest/gtest.h>
#include <random>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

TEST(UmDecoder, OneRequestThereAndBack) {
    Host host;
    ASSERT_EQ(host.encode(Schema::um, um_typical.tree), 0U);
    EXPECT_EQ(host.encoded, canonical(um_typical.record));
    const std::string record = host.encoded;
    ASSERT_EQ(host.decode(Schema::um, record), 0U);
    EXPECT_EQ(host.emitted(), um_typical_emitted);
}

struct Case {
    const char *record;
    const char *emitted;
    uint32_t status = 0;
};

const char *const any_any = "source{ any{ ! } } destination{ any{ ! } }";

TEST(UmDecoder, ActionOptionsAndRemark) {
    const Case cases[] = {
        {"|", ""},
        {"grant=1 remark='r' | 31", "s:remark='r'"},
        {"remark='r' |", ""},
        {"grant=2 protocol=6 remark='r' | 0 1 31", "s:remark='r'"},
        {"grant=255 | 0 32", ""},
        {"icmp_off=1 | 0 30", "deny{ ! * icmp-off{ ! } }"},
        {"icmp_off=0 icmp_on=0 | 0 30 2:29", "deny{ ! * }"},
        {"icmp_off=1 icmp_on=1 | 0", "deny{ ! * }"},
        {"icmp_off=9 icmp_on=9 remark='r' | 0 30 31 2:29",
         "deny{ ! * icmp-off{ ! } icmp-on{ ! } } s:remark='r'"},
        {"grant=1 icmp_off=1 icmp_on=1 | 0 30 2:29", "permit{ ! * }"},
        {"grant=1 SequenceStr='s' nexthop=1 capture=0 log=3 | 0 13 32 42 43 52 61-63 2:30-63",
         "permit{ ! * }"},
        {"capture=0 | 0 38", "deny{ ! * capture{ ! } }"},
        {"log=1 counter_name='c' | 0 13 51", "deny{ ! * s:counter='c' log{ ! } }"},
        {"log=2 SetTTL=65535 | 0 13 59", "deny{ ! * log-input{ ! } set{ u:ttl=65535 } }"},
        {"log=257 qos_group=1 | 0 13 55", "deny{ ! * set{ u:qos-group=1 } }"},
        {"nexthop=1 nexthop3=3.3.3.3 track3='t' vrf3='no' | 0 32 35 46",
         "deny{ ! * nexthop3{ ! a:ipv4=3.3.3.3 s:track='t' } }"},
        {"nexthop=2 nexthop1=1.1.1.1 | 0 32 33", "deny{ ! * default{ ! } }"},
        {"nexthop=3 nexthop1=1.1.1.1 | 0 32 33", "deny{ ! * }"},
        {"nexthop=1 nexthop1=1.1.1.1 | 0 33", "deny{ ! * }"},
        {"proto_oper=5 | 0 53", "deny{ ! range{ } * }"},
        {"proto_oper=1 protocol=6 | 0 53", "deny{ ! * }"},
        {"proto_oper=2 protocol=6 | 0 1 53 54", "deny{ ! * }"},
        {"proto_oper=1 protocol=512 | 0 1 53", "deny{ ! E:eq=ipv4 * }"},
        {"protocol=0 proto_oper=5 | 0 1 54", "deny{ ! E:protocol=0 * }"},
        {"icmp_type_code=0x30000 | 0 19", "deny{ ! * icmp{ e:message-type-name=Unreachable } }"},
        // a failing part closes the action, drops what follows, keeps the remark
        {"grant=1 tcpflagsopr=1 tcpflags_mask=0x40 nexthop=2 remark='r' | 0 12 20 22 31 32 38",
         "permit{ ! * tcp-flags{ match-all{ ! } s:remark='r'", 0x4DCB9200},
        {"PoliceUnit=5 icmp_off=1 | 0 30 38 2:25", "deny{ ! * police{ }", 0x4F96C600},
    };
    for (const Case &test : cases) {
        std::string expected = test.emitted;
        if (const size_t star = expected.find('*'); star != std::string::npos) {
            expected.replace(star, 1, any_any);
        }
        Host host;
        EXPECT_EQ(host.decode(Schema::um, test.record), test.status) << test.record;
        EXPECT_EQ(host.emitted(), expected) << test.record;
        EXPECT_EQ(host.released, canonical(test.record)); // never changed
        EXPECT_EQ(host.leaks(), 0U) << test.record;
        EXPECT_TRUE(host.faults.empty()) << test.record;
    }
}

// Written when all bits of the first list are set, one of the second if it names
// any, and none of the third.
struct Step {
    const char *text;
    const char *all;
    const char *one_of = "";
    const char *none_of = "";
};

const Step steps[] = {
    {"deny{ !", "0"},
    {"range{", "0 53"},
    {"E:start-protocol=tcp", "0 1 53"},
    {"E:end-protocol=400", "0 53 54"},
    {"}", "0 53"},
    {"E:protocol=tcp", "0 1", "", "53"},
    {"source{", "0"},
    {"a:address=10.1.1.1", "0 2", "3 36"},
    {"a:host=10.1.1.1", "0 2", "", "3 36"},
    {"u:prefix-length=24", "0 2 36"},
    {"a:wildcard-mask=0.0.0.1", "0 2 3"},
    {"s:net-group='ns'", "0 47"},
    {"any{ ! }", "0", "", "2 47"},
    {"s:port-group='ps'", "0 49"},
    {"port{", "0 4"},
    {"range{ E:start-value=WWW", "0 4 5"},
    {"E:end-value=65535", "0 4 5 6"},
    {"}", "0 4 5"},
    {"}", "0 4"},
    {"} destination{", "0"},
    {"a:address=10.2.2.2", "0 7", "8 37"},
    {"a:host=10.2.2.2", "0 7", "", "8 37"},
    {"u:prefix-length=4000000000", "0 7 37"},
    {"a:wildcard-mask=0.0.0.2", "0 7 8"},
    {"s:net-group='nd'", "0 48"},
    {"any{ ! }", "0", "", "7 48"},
    {"s:port-group='pd'", "0 50"},
    {"port{", "0 9"},
    {"E:gt=HTTPS", "0 9 10"},
    {"}", "0 9"},
    {"}", "0"},
    {"tcp-flags{", "0", "20 21"},
    {"match-any{ !", "0 20"},
    {"s:tcp-bits='-fin -urg'", "0 20", "21 22"},
    {"}", "0 20"},
    {"b:tcp-bits=syn,ack", "0 21", "", "20"},
    {"}", "0", "20 21"},
    {"icmp{ e:message-type-name=HostUnreachable }", "0 18", "", "19"},
    {"icmp{ e:message-type-name=Unreachable }", "0 19"},
    {"E:igmp-type=v3-report", "0 12"},
    {"dscp{", "0 15"},
    {"E:dscp-value=af11", "0 15", "", "14"},
    {"range{ E:start-value=af11", "0 14 15"},
    {"E:end-value=200", "0 14 15 16"},
    {"}", "0 14 15"},
    {"}", "0 15"},
    {"E:precedence=Critical", "0 17"},
    {"packet-length{", "0 24"},
    {"range{ u:start-value=40000", "0 24 25"},
    {"u:end-value=40001", "0 24 25 26"},
    {"}", "0 24 25"},
    {"}", "0 24"},
    {"ttl{", "0 27"},
    {"range{ u:start-value=200", "0 27 28"},
    {"u:end-value=201", "0 27 28 29"},
    {"}", "0 27 28"},
    {"}", "0 27"},
    {"fragment-offset{", "0 56"},
    {"range{ u:start-value=60001", "0 56 57"},
    {"u:end-value=60002", "0 56 57 58"},
    {"}", "0 56 57"},
    {"}", "0 56"},
    {"fragments{ ! }", "0 23"},
    {"e:fragment-type=dont-fragment is-fragment", "0 60"},
    {"udf-entries{ udf[ udf( s:udf-name='u' s:udf-value='1' s:udf-mask='ffffffff' ) udf( "
     "s:udf-name='abcdefghijklmnop' s:udf-value='0' s:udf-mask='ff' ) ] }",
     "0 2:0"},
    {"police{", "0", "2:24-28"},
    {"u:value=1", "0 2:24"},
    {"s:unit='kbps'", "0 2:25"},
    {"u:peak-rate=3", "0 2:26"},
    {"s:peak-unit='gbps'", "0 2:27"},
    {"e:priority=high", "0 2:28"},
    {"}", "0", "2:24-28"},
    {"nexthop1{ !", "0 32", "33 39 44"},
    {"a:ipv4=1.1.1.1", "0 32 33"},
    {"s:vrf='v1'", "0 32 39"},
    {"s:track='t1'", "0 32 44"},
    {"}", "0 32", "33 39 44"},
    {"nexthop2{ !", "0 32", "34 40 45"},
    {"a:ipv4=2.2.2.2", "0 32 34"},
    {"s:vrf='v2'", "0 32 40"},
    {"s:track='t2'", "0 32 45"},
    {"}", "0 32", "34 40 45"},
    {"nexthop3{ !", "0 32", "35 41 46"},
    {"a:ipv4=3.3.3.3", "0 32 35"},
    {"s:vrf='v3'", "0 32 41"},
    {"s:track='t3'", "0 32 46"},
    {"}", "0 32", "35 41 46"},
    {"capture{ ! }", "0 38"},
    {"s:counter='cn'", "0 51"},
    {"log-input{ ! }", "0 13"},
    {"set{", "0", "55 59"},
    {"u:qos-group=50000", "0 55"},
    {"u:ttl=60003", "0 59"},
    {"}", "0", "55 59"},
    {"icmp-off{ ! }", "0 30"},
    {"icmp-on{ ! }", "0 2:29"},
    {"}", "0"},
    {"s:remark='re'", "31"},
};

struct Mask {
    uint64_t first;
    uint64_t second;
    [[nodiscard]] bool any(const Mask &of) const {
        return (first & of.first) != 0 || (second & of.second) != 0;
    }
    [[nodiscard]] bool all(const Mask &of) const {
        return (first & of.first) == of.first && (second & of.second) == of.second;
    }
};

Mask mask_of(const std::string &bits) {
    const Record record = parse_record("| " + bits).record;
    return {record.ConfigurationMask, record.ConfigurationMask2};
}

std::string expected(const Mask &mask, bool permit) {
    struct Condition {
        Mask all, one_of, none_of;
    };
    static const auto conditions = [] {
        std::vector<Condition> result;
        for (const Step &step : steps) {
            result.push_back({mask_of(step.all), mask_of(step.one_of), mask_of(step.none_of)});
        }
        return result;
    }();
    std::string text;
    for (size_t i = 0; i < conditions.size(); ++i) {
        const auto &[all, one_of, none_of] = conditions[i];
        const std::string token = steps[i].text;
        if (mask.all(all) && (*steps[i].one_of == '\0' || mask.any(one_of)) && !mask.any(none_of) &&
            !(permit && token.starts_with("icmp-o"))) {
            text += (text.empty() ? "" : " ") + (permit && i == 0 ? "permit{ !" : token);
        }
    }
    return text;
}

TEST(ExhaustiveUmDecoder, PresenceBitsAloneInPairsAndAtRandom) {
    std::vector<Mask> masks = {{~uint64_t{0}, ~uint64_t{0}}};
    for (unsigned a = 0; a < 128; ++a) {
        for (unsigned b = a; b < 128; ++b) {
            Mask mask{0, 0};
            (a < 64 ? mask.first : mask.second) |= uint64_t{1} << a % 64;
            (b < 64 ? mask.first : mask.second) |= uint64_t{1} << b % 64;
            masks.push_back(mask); // without the action hardly anything is written
            masks.push_back({mask.first | 1, mask.second});
        }
    }
    std::mt19937_64 random(20240602);
    for (int i = 0; i < 10000; ++i) {
        masks.push_back({random() | 1, random() & random()});
    }
    Given given = parse_record(full_record);
    Host host;
    for (const Mask &mask : masks) {
        for (const bool permit : {false, true}) {
            given.record.grant = permit ? 1 : 0;
            given.record.ConfigurationMask = mask.first;
            given.record.ConfigurationMask2 = mask.second;
            ASSERT_EQ(host.decode(Schema::um, given.record), 0U);
            ASSERT_EQ(host.emitted(), expected(mask, permit))
                << std::hex << mask.first << " " << mask.second;
        }
    }
    EXPECT_EQ(host.leaks(), 0U);
    EXPECT_TRUE(host.faults.empty());
}

// One operator with its values: what stands before and behind what it writes,
// the two values as written, and the bits of operator, first and second value.
struct Group {
    void (*emit)(ccv_yang_output *, Record);
    uint8_t Record::*code;
    const char *before, *after, *first, *second;
    unsigned code_bit, first_bit, second_bit;
    bool code_bit_wanted; // or tested by the caller
};

const Group groups[] = {
    {acl_yang_source_addr, &Record::sopr, "any{ ! } port{", " }", "E:@=WWW", "E:@=5", 4, 5, 6,
     true},
    {acl_yang_dest_addr, &Record::dopr, "any{ ! } port{", " }", "E:@=WWW", "E:@=5", 9, 10, 11,
     true},
    {acl_yang_dscp_fields, &Record::dscp_op, "", "", "E:@=af11", "E:@=5", 14, 15, 16, true},
    {acl_yang_packet_length, &Record::plenopr, "", "", "u:@=80", "u:@=5", 24, 25, 26, false},
    {acl_yang_ttl, &Record::ttloper, "", "", "u:@=80", "u:@=5", 27, 28, 29, false},
    {acl_yang_fragment_offset, &Record::frag_offset_oper, "", "", "u:@=80", "u:@=5", 56, 57, 58,
     false},
};

std::string leaf(std::string pattern, const char *name) {
    return ' ' + pattern.replace(pattern.find('@'), 1, name);
}

std::string operation(const Group &group, unsigned code, bool second) {
    static const char *const names[] = {"", "eq", "gt", "lt", "neq"};
    if (code == 5) {
        return " range{" + leaf(group.first, "start-value") +
               (second ? leaf(group.second, "end-value") : "") + " }";
    }
    return code >= 1 && code <= 4 ? leaf(group.first, names[code]) : "";
}

TEST(ExhaustiveUmDecoder, EveryOperatorCodeOfEveryGroup) {
    for (const Group &group : groups) {
        for (unsigned variant = 0; variant < 256 * 8; ++variant) {
            const bool code_set = (variant & 1) != 0;
            const bool first_set = (variant & 2) != 0;
            const bool second_set = (variant & 4) != 0;
            Given given = parse_record("sport1=80 sport2=5 dport1=80 dport2=5 dscp=10 dscp2=5 "
                                       "plen1=80 plen2=5 ttl1=80 ttl2=5 frag_offset1=80 "
                                       "frag_offset2=5 |");
            given.record.*group.code = static_cast<uint8_t>(variant / 8);
            given.record.ConfigurationMask = uint64_t{code_set} << group.code_bit |
                                             uint64_t{first_set} << group.first_bit |
                                             uint64_t{second_set} << group.second_bit;
            std::string text = first_set && (code_set || !group.code_bit_wanted)
                                   ? operation(group, variant / 8, second_set)
                                   : "";
            if (group.code == &Record::dscp_op && first_set && !code_set) {
                text = " E:dscp-value=af11";
            } else if (*group.before != '\0') {
                text =
                    code_set ? ' ' + std::string(group.before) + text + group.after : " any{ ! }";
            }
            Host host;
            host.emit(group.emit, record_text(given.record));
            ASSERT_EQ(host.emitted().empty() ? "" : ' ' + host.emitted(), text)
                << group.code_bit << ": " << record_text(given.record);
        }
    }
}

TEST(ExhaustiveUmDecoder, EveryProtocolOperatorCode) {
    for (unsigned code = 0; code < 256; ++code) {
        Host host;
        host.emit(acl_yang_protocol_common,
                  "proto_oper=" + std::to_string(code) + " protocol=6 protocol2=17 | 1 53 54");
        EXPECT_EQ(host.emitted(), code == 1   ? "E:eq=tcp"
                                  : code == 5 ? "range{ E:start-protocol=tcp E:end-protocol=udp }"
                                              : "");
    }
}

} // namespace
} // namespace aceconv::test
