#include "compare/record_fields.h"

#include <array>

namespace aceconv {
namespace {

using Keywords = const ccv_yang_keyword *;

constexpr RecordField plain(const char *name, int bit, const char *base, const char *um) {
    return {name, bit, bit, nullptr, nullptr, false, base, um};
}
constexpr RecordField named(const char *name, int bit, Keywords base_words, Keywords um_words,
                            const char *base, const char *um) {
    return {name, bit, bit, base_words, um_words, false, base, um};
}
constexpr RecordField oper(const char *name, int bit, const char *base, const char *um) {
    return named(name, bit, acl_yang_acl_operator, acl_yang_acl_operator, base, um);
}
constexpr RecordField port(const char *name, int bit, const char *base, const char *um) {
    return named(name, bit, acl_yang_acl_port, acl_yang_acl_port_um, base, um);
}
constexpr RecordField flags(const char *name, int bit, const char *base) {
    return {name, bit, bit, acl_yang_acl_tcp_bits, acl_yang_acl_tcp_bits, true, base, "tcp-flags"};
}
constexpr RecordField police(const char *name, int bit, Keywords words, const char *um) {
    return named(name, second_mask + bit, words, words, nullptr, um);
}

constexpr std::array fields_by_member = {
    named("grant", 0, acl_yang_acl_grant, acl_yang_acl_grant, "grant", "."),
    oper("proto_oper", 53, "protocol-operator", "eq|range"),
    named("protocol", 1, acl_yang_acl_protocol, acl_yang_acl_protocol_um, "protocol",
          "protocol|eq|range/start-protocol"),
    named("protocol2", 54, acl_yang_acl_protocol, acl_yang_acl_protocol_um, "protocol2",
          "range/end-protocol"),
    plain("saddr", 2, "source-network/source-address", "source/address|host"),
    plain("smask", 3, "source-network/source-wild-card-bits", "source/wildcard-mask"),
    plain("spfx_len", 36, "source-network/source-prefix-length", "source/prefix-length"),
    plain("daddr", 7, "destination-network/destination-address", "destination/address|host"),
    plain("dmask", 8, "destination-network/destination-wild-card-bits",
          "destination/wildcard-mask"),
    plain("dpfx_len", 37, "destination-network/destination-prefix-length",
          "destination/prefix-length"),
    oper("sopr", 4, "source-port/source-operator", "source/port"),
    port("sport1", 5, "source-port/first-source-port", "source/port"),
    port("sport2", 6, "source-port/second-source-port", "source/port/range/end-value"),
    oper("dopr", 9, "destination-port/destination-operator", "destination/port"),
    port("dport1", 10, "destination-port/first-destination-port", "destination/port"),
    port("dport2", 11, "destination-port/second-destination-port",
         "destination/port/range/end-value"),
    named("log", 13, acl_yang_acl_log, acl_yang_acl_log, "log-option", "log|log-input"),
    plain("capture", 38, "capture", "capture"),
    oper("dscp_op", 14, "dscp/dscp-operator", "dscp"),
    named("dscp", 15, acl_yang_acl_dscp, acl_yang_acl_dscp, "dscp/dscp-min", "dscp"),
    named("dscp2", 16, acl_yang_acl_dscp, acl_yang_acl_dscp, "dscp/dscp-max",
          "dscp/range/end-value"),
    plain("prec", -1, nullptr, nullptr),
    named("tos_byte", 17, acl_yang_acl_precedence, acl_yang_acl_precedence_um, "precedence",
          "precedence"),
    RecordField{"icmp_type_code", 18, 19, acl_yang_acl_icmp_type_code,
                acl_yang_acl_icmp_type_code_um, false, "icmp/icmp-type-code", "icmp"},
    named("tcpflagsopr", 20, acl_yang_acl_tcp_bits_match, acl_yang_acl_tcp_bits_match,
          "tcp/tcp-bits-match-operator", "tcp-flags"),
    flags("tcpflags", 21, "tcp/tcp-bits"),
    flags("tcpflags_mask", 22, "tcp/tcp-bits-mask"),
    plain("frags", 23, "fragments", "fragments"),
    named("igmp_type", 12, acl_yang_acl_igmp_type, acl_yang_acl_igmp_type, "igmp-message-type",
          "igmp-type"),
    oper("plenopr", 24, "packet-length/packet-length-operator", "packet-length"),
    plain("plen1", 25, "packet-length/packet-length-min", "packet-length"),
    plain("plen2", 26, "packet-length/packet-length-max", "packet-length/range/end-value"),
    oper("ttloper", 27, "time-to-live/time-to-live-operator", "ttl"),
    plain("ttl1", 28, "time-to-live/time-to-live-min", "ttl"),
    plain("ttl2", 29, "time-to-live/time-to-live-max", "ttl/range/end-value"),
    plain("icmp_off", 30, "icmp-off", "icmp-off"),
    plain("qos_group", 55, "qos-group", "set/qos-group"),
    named("nexthop", 32, acl_yang_acl_nexthop_type, acl_yang_acl_nexthop_type,
          "next-hop/next-hop-type", "default|nexthop1"),
    plain("nexthop1", 33, "next-hop/next-hop-1/next-hop", "nexthop1/ipv4"),
    plain("nexthop2", 34, "next-hop/next-hop-2/next-hop", "nexthop2/ipv4"),
    plain("nexthop3", 35, "next-hop/next-hop-3/next-hop", "nexthop3/ipv4"),
    plain("vrf1", 39, "next-hop/next-hop-1/vrf-name", "nexthop1/vrf"),
    plain("vrf2", 40, "next-hop/next-hop-2/vrf-name", "nexthop2/vrf"),
    plain("vrf3", 41, "next-hop/next-hop-3/vrf-name", "nexthop3/vrf"),
    plain("track1", 44, "next-hop/next-hop-1/track-name", "nexthop1/track"),
    plain("track2", 45, "next-hop/next-hop-2/track-name", "nexthop2/track"),
    plain("track3", 46, "next-hop/next-hop-3/track-name", "nexthop3/track"),
    plain("net_src_obj", 47, "source-prefix-group", "source/net-group"),
    plain("net_dst_obj", 48, "destination-prefix-group", "destination/net-group"),
    plain("port_src_obj", 49, "source-port-group", "source/port-group"),
    plain("port_dst_obj", 50, "destination-port-group", "destination/port-group"),
    plain("counter_name", 51, "counter-name", "counter"),
    plain("remark", 31, "remark", "../remark"),
    plain("SequenceStr", 52, "sequence-str", nullptr),
    oper("frag_offset_oper", 56, "fragment-offset/fragment-offset-operator", "fragment-offset"),
    plain("frag_offset1", 57, "fragment-offset/fragment-offset-1", "fragment-offset"),
    plain("frag_offset2", 58, "fragment-offset/fragment-offset-2",
          "fragment-offset/range/end-value"),
    RecordField{"UDF", second_mask, second_mask + 23, nullptr, nullptr, false, nullptr,
                "udf-entries/udf"},
    plain("SetTTL", 59, "set-ttl", "set/ttl"),
    named("FragmentFlags", 60, acl_yang_acl_fragment_flags, acl_yang_acl_fragment_type_um,
          "fragment-type", "fragment-type"),
    police("Police.PoliceValue", 24, nullptr, "police/value"),
    police("Police.PoliceUnit", 25, acl_yang_acl_rate_unit_um, "police/unit"),
    police("Police.PolicePeakValue", 26, nullptr, "police/peak-rate"),
    police("Police.PolicePeakUnit", 27, acl_yang_acl_rate_unit_um, "police/peak-unit"),
    police("Priority", 28, acl_yang_acl_priority_um, "police/priority"),
    plain("icmp_on", second_mask + 29, nullptr, "icmp-on"),
};

} // namespace

std::span<const RecordField> record_fields() {
    return fields_by_member;
}

const RecordField *find_field(std::string_view name) {
    for (const RecordField &field : fields_by_member) {
        if (name == field.name) {
            return &field;
        }
    }
    return nullptr;
}

std::string keyword_name(const RecordField &field, Schema schema, std::uint64_t value) {
    const Keywords table = schema == Schema::base ? field.base_keywords : field.um_keywords;
    std::string names;
    for (Keywords row = table; row != nullptr && row->name != nullptr; ++row) {
        if (field.flags ? (value >> row->value & 1) != 0 : value == row->value) {
            names += (names.empty() ? "" : " ") + std::string(row->name);
        }
    }
    return names;
}

std::string bit_name(int bit) {
    return bit < second_mask ? std::to_string(bit) : "2:" + std::to_string(bit - second_mask);
}

} // namespace aceconv
