#include "compare/record_fields.h"

#include <array>

namespace aceconv {
namespace {

using Keywords = const ccv_yang_keyword *;

/// What an entry does with a packet.
constexpr RecordField effect(const char *name, int bit, const char *base, const char *um,
                             Keywords words = nullptr) {
    return {name, bit, bit, words, words, false, base, um, false};
}

/// What an entry compares a packet with.
constexpr RecordField match(const char *name, int bit, const char *base, const char *um,
                            Keywords base_words = nullptr, Keywords um_words = nullptr) {
    return {name, bit, bit, base_words, um_words, false, base, um, true};
}

constexpr RecordField in(Group group, Part part, RecordField field) {
    field.group = group;
    field.part = part;
    return field;
}

constexpr RecordField oper(Group group, const char *name, int bit, const char *base, const char *um,
                           Keywords words = acl_yang_acl_operator) {
    return in(group, Part::operation, match(name, bit, base, um, words, words));
}

constexpr RecordField first(Group group, const char *name, int bit, const char *base,
                            const char *um, Keywords base_words = nullptr,
                            Keywords um_words = nullptr) {
    return in(group, Part::first, match(name, bit, base, um, base_words, um_words));
}

constexpr RecordField last(Group group, const char *name, int bit, const char *base, const char *um,
                           Keywords base_words = nullptr, Keywords um_words = nullptr) {
    return in(group, Part::second, match(name, bit, base, um, base_words, um_words));
}

constexpr RecordField address(Group group, const char *name, int bit, const char *base,
                              const char *um) {
    return in(group, Part::address, match(name, bit, base, um));
}

constexpr RecordField mask(Group group, const char *name, int bit, const char *base,
                           const char *um) {
    return in(group, Part::address_mask, match(name, bit, base, um));
}

constexpr RecordField flags(Part part, const char *name, int bit, const char *base) {
    RecordField field =
        match(name, bit, base, "tcp-flags", acl_yang_acl_tcp_bits, acl_yang_acl_tcp_bits);
    field.flags = true;
    return in(Group::tcp, part, field);
}

constexpr RecordField hop(Part part, const char *name, int bit, const char *base, const char *um,
                          Keywords words = nullptr) {
    return in(Group::next_hop, part, effect(name, bit, base, um, words));
}

/// `field` with a run of presence bits.
constexpr RecordField marked(RecordField field, int first_bit, int last_bit) {
    field.first_bit = first_bit;
    field.last_bit = last_bit;
    return field;
}

constexpr RecordField police(const char *name, int bit, const char *um, Keywords words = nullptr) {
    return effect(name, second_mask + bit, nullptr, um, words);
}

constexpr Keywords port = acl_yang_acl_port;
constexpr Keywords port_um = acl_yang_acl_port_um;
constexpr Keywords protocol = acl_yang_acl_protocol;
constexpr Keywords protocol_um = acl_yang_acl_protocol_um;
constexpr Keywords code_point = acl_yang_acl_dscp;

// clang-format off
constexpr std::array fields_by_member = {
    in(Group::action, Part::whole, effect("grant", 0, "grant", ".", acl_yang_acl_grant)),
    oper   (Group::protocol, "proto_oper", 53, "protocol-operator", "eq|range"),
    first  (Group::protocol, "protocol",    1, "protocol", "protocol|eq|range/start-protocol", protocol, protocol_um),
    last   (Group::protocol, "protocol2",  54, "protocol2", "range/end-protocol", protocol, protocol_um),
    address(Group::source_address, "saddr",    2,  "source-network/source-address", "source/address|host"),
    mask   (Group::source_address, "smask",    3,  "source-network/source-wild-card-bits", "source/wildcard-mask"),
    mask   (Group::source_address, "spfx_len", 36, "source-network/source-prefix-length", "source/prefix-length"),
    address(Group::destination_address, "daddr",    7,  "destination-network/destination-address", "destination/address|host"),
    mask   (Group::destination_address, "dmask",    8,  "destination-network/destination-wild-card-bits", "destination/wildcard-mask"),
    mask   (Group::destination_address, "dpfx_len", 37, "destination-network/destination-prefix-length", "destination/prefix-length"),
    oper   (Group::source_port, "sopr",   4, "source-port/source-operator", "source/port"),
    first  (Group::source_port, "sport1", 5, "source-port/first-source-port", "source/port", port, port_um),
    last   (Group::source_port, "sport2", 6, "source-port/second-source-port", "source/port/range/end-value", port, port_um),
    oper   (Group::destination_port, "dopr",    9, "destination-port/destination-operator", "destination/port"),
    first  (Group::destination_port, "dport1", 10, "destination-port/first-destination-port", "destination/port", port, port_um),
    last   (Group::destination_port, "dport2", 11, "destination-port/second-destination-port", "destination/port/range/end-value", port, port_um),
    effect ("log",     13, "log-option", "log|log-input", acl_yang_acl_log),
    effect ("capture", 38, "capture", "capture"),
    oper   (Group::dscp, "dscp_op", 14, "dscp/dscp-operator", "dscp"),
    first  (Group::dscp, "dscp",    15, "dscp/dscp-min", "dscp", code_point, code_point),
    last   (Group::dscp, "dscp2",   16, "dscp/dscp-max", "dscp/range/end-value", code_point, code_point),
    effect ("prec",          -1, nullptr, nullptr),
    match  ("tos_byte",      17, "precedence", "precedence", acl_yang_acl_precedence, acl_yang_acl_precedence_um),
    marked(match("icmp_type_code", 18, "icmp/icmp-type-code", "icmp", acl_yang_acl_icmp_type_code, acl_yang_acl_icmp_type_code_um), 18, 19),
    oper   (Group::tcp, "tcpflagsopr", 20, "tcp/tcp-bits-match-operator", "tcp-flags", acl_yang_acl_tcp_bits_match),
    flags  (Part::flags,     "tcpflags",      21, "tcp/tcp-bits"),
    flags  (Part::flag_mask, "tcpflags_mask", 22, "tcp/tcp-bits-mask"),
    match  ("frags",     23, "fragments", "fragments"),
    match  ("igmp_type", 12, "igmp-message-type", "igmp-type", acl_yang_acl_igmp_type, acl_yang_acl_igmp_type),
    oper   (Group::packet_length, "plenopr", 24, "packet-length/packet-length-operator", "packet-length"),
    first  (Group::packet_length, "plen1",   25, "packet-length/packet-length-min", "packet-length"),
    last   (Group::packet_length, "plen2",   26, "packet-length/packet-length-max", "packet-length/range/end-value"),
    oper   (Group::ttl, "ttloper", 27, "time-to-live/time-to-live-operator", "ttl"),
    first  (Group::ttl, "ttl1",    28, "time-to-live/time-to-live-min", "ttl"),
    last   (Group::ttl, "ttl2",    29, "time-to-live/time-to-live-max", "ttl/range/end-value"),
    effect ("icmp_off",  30, "icmp-off", "icmp-off"),
    effect ("qos_group", 55, "qos-group", "set/qos-group"),
    hop    (Part::hop_type,  "nexthop",  32, "next-hop/next-hop-type", "default|nexthop1", acl_yang_acl_nexthop_type),
    hop    (Part::first_hop, "nexthop1", 33, "next-hop/next-hop-1/next-hop", "nexthop1/ipv4"),
    hop    (Part::other_hop, "nexthop2", 34, "next-hop/next-hop-2/next-hop", "nexthop2/ipv4"),
    hop    (Part::other_hop, "nexthop3", 35, "next-hop/next-hop-3/next-hop", "nexthop3/ipv4"),
    hop    (Part::first_hop, "vrf1",     39, "next-hop/next-hop-1/vrf-name", "nexthop1/vrf"),
    hop    (Part::other_hop, "vrf2",     40, "next-hop/next-hop-2/vrf-name", "nexthop2/vrf"),
    hop    (Part::other_hop, "vrf3",     41, "next-hop/next-hop-3/vrf-name", "nexthop3/vrf"),
    hop    (Part::first_hop, "track1",   44, "next-hop/next-hop-1/track-name", "nexthop1/track"),
    hop    (Part::other_hop, "track2",   45, "next-hop/next-hop-2/track-name", "nexthop2/track"),
    hop    (Part::other_hop, "track3",   46, "next-hop/next-hop-3/track-name", "nexthop3/track"),
    match  ("net_src_obj",  47, "source-prefix-group", "source/net-group"),
    match  ("net_dst_obj",  48, "destination-prefix-group", "destination/net-group"),
    match  ("port_src_obj", 49, "source-port-group", "source/port-group"),
    match  ("port_dst_obj", 50, "destination-port-group", "destination/port-group"),
    effect ("counter_name", 51, "counter-name", "counter"),
    effect ("remark",       31, "remark", "../remark"),
    effect ("SequenceStr",  52, "sequence-str", nullptr),
    oper   (Group::fragment_offset, "frag_offset_oper", 56, "fragment-offset/fragment-offset-operator", "fragment-offset"),
    first  (Group::fragment_offset, "frag_offset1",     57, "fragment-offset/fragment-offset-1", "fragment-offset"),
    last   (Group::fragment_offset, "frag_offset2",     58, "fragment-offset/fragment-offset-2", "fragment-offset/range/end-value"),
    marked(match("UDF", second_mask, nullptr, "udf-entries/udf"), second_mask, second_mask + 23),
    effect ("SetTTL", 59, "set-ttl", "set/ttl"),
    match  ("FragmentFlags", 60, "fragment-type", "fragment-type", acl_yang_acl_fragment_flags, acl_yang_acl_fragment_type_um),
    police ("Police.PoliceValue",     24, "police/value"),
    police ("Police.PoliceUnit",      25, "police/unit", acl_yang_acl_rate_unit_um),
    police ("Police.PolicePeakValue", 26, "police/peak-rate"),
    police ("Police.PolicePeakUnit",  27, "police/peak-unit", acl_yang_acl_rate_unit_um),
    police ("Priority",               28, "police/priority", acl_yang_acl_priority_um),
    police ("icmp_on",                29, "icmp-on"),
};
// clang-format on

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
    std::string names;
    for (Keywords row = field.keywords(schema); row != nullptr && row->name != nullptr; ++row) {
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
