// What both directions of the UM schema share: leaves, operator groups, address
// sides and next hops, each stated once.
#pragma once

#include <array>
#include <cstdint>

#include "aceconv/keywords.h"
#include "common/icmp_message.h"
#include "common/leaf_rows.h"

namespace ace::um {

namespace row {

using namespace ace::row;

constexpr Leaf port(const char *name, Field field, Bit present) {
    return keyword_or_number(name, acl_yang_acl_port_um, field, present);
}

constexpr Leaf dscp_value(const char *name, Field field, Bit present) {
    return keyword_or_number(name, acl_yang_acl_dscp, field, present);
}

constexpr Leaf protocol_value(const char *name, Field field, Bit present) {
    return keyword_or_number(name, acl_yang_acl_protocol_um, field, present);
}

inline constexpr const char *start = "start-value";
inline constexpr const char *end = "end-value";

} // namespace row

#define FIELD ACE_FIELD
// clang-format off

// ---- Operators ------------------------------------------------------------

inline constexpr std::uint8_t operator_eq = 1;
inline constexpr std::uint8_t operator_range = 5;

/// Operators with one value, and their codes.
inline constexpr std::array<ccv_yang_keyword, 4> operator_names = {
    {{1, "eq"}, {2, "gt"}, {3, "lt"}, {4, "neq"}}};

/// When a "range" sets its operator: on entry, or at each child that it has, so
/// that an empty range sets nothing.
enum class RangeOperator : std::uint8_t { on_entry, per_child };

/// An operator with one value, or a "range" of two.
struct OperatorGroup {
    Field operator_code;
    Bit operator_bit;
    Leaf first;  // "start-value", and the value of "eq", "gt", "lt" and "neq"
    Leaf second; // "end-value"
    RangeOperator range_operator = RangeOperator::on_entry;
    const char *plain_value = nullptr; // a leaf that holds the first value without an operator
};

inline constexpr OperatorGroup source_port = {
    FIELD(sopr), bit(4),
    row::port(row::start, FIELD(sport1), bit(5)),
    row::port(row::end,   FIELD(sport2), bit(6)),
    RangeOperator::on_entry,
};

inline constexpr OperatorGroup destination_port = {
    FIELD(dopr), bit(9),
    row::port(row::start, FIELD(dport1), bit(10)),
    row::port(row::end,   FIELD(dport2), bit(11)),
    RangeOperator::per_child,
};

inline constexpr OperatorGroup dscp = {
    FIELD(dscp_op), bit(14),
    row::dscp_value(row::start, FIELD(dscp),  bit(15)),
    row::dscp_value(row::end,   FIELD(dscp2), bit(16)),
    RangeOperator::on_entry,
    "dscp-value",
};

inline constexpr OperatorGroup packet_length = {
    FIELD(plenopr), bit(24),
    row::number(row::start, FIELD(plen1), bit(25)),
    row::number(row::end,   FIELD(plen2), bit(26)),
};

inline constexpr OperatorGroup ttl = {
    FIELD(ttloper), bit(27),
    row::number(row::start, FIELD(ttl1), bit(28)),
    row::number(row::end,   FIELD(ttl2), bit(29)),
};

inline constexpr OperatorGroup fragment_offset = {
    FIELD(frag_offset_oper), bit(56),
    row::number(row::start, FIELD(frag_offset1), bit(57)),
    row::number(row::end,   FIELD(frag_offset2), bit(58)),
};

// ---- Addresses and ports ----------------------------------------------------

/// One side of the match.
struct AddressSide {
    Leaf address;
    Leaf wildcard_mask;
    Leaf prefix_length;
    Leaf host; // the address again, for one without mask and length
    Leaf net_group;
    Leaf port_group;
    const OperatorGroup &port;
};

inline constexpr AddressSide source = {
    row::address("address",       FIELD(saddr),        bit(2)),
    row::address("wildcard-mask", FIELD(smask),        bit(3)),
    row::number ("prefix-length", FIELD(spfx_len),     bit(36)),
    row::address("host",          FIELD(saddr),        bit(2)),
    row::text   ("net-group",     FIELD(net_src_obj),  bit(47)),
    row::text   ("port-group",    FIELD(port_src_obj), bit(49)),
    source_port,
};

inline constexpr AddressSide destination = {
    row::address("address",       FIELD(daddr),        bit(7)),
    row::address("wildcard-mask", FIELD(dmask),        bit(8)),
    row::number ("prefix-length", FIELD(dpfx_len),     bit(37)),
    row::address("host",          FIELD(daddr),        bit(7)),
    row::text   ("net-group",     FIELD(net_dst_obj),  bit(48)),
    row::text   ("port-group",    FIELD(port_dst_obj), bit(50)),
    destination_port,
};

// ---- Next hops --------------------------------------------------------------

inline constexpr std::uint8_t regular_next_hop = 1;
inline constexpr std::uint8_t default_next_hop = 2;
inline constexpr Bit next_hop_bit = bit(32);

struct NextHop {
    const char *name;
    Leaf ipv4;
    Leaf track;
    Leaf vrf;
};

inline constexpr std::array<NextHop, 3> next_hops = {{
    {"nexthop1", row::address("ipv4",  FIELD(nexthop1), bit(33)),
                 row::text   ("track", FIELD(track1),   bit(44)),
                 row::text   ("vrf",   FIELD(vrf1),     bit(39))},
    {"nexthop2", row::address("ipv4",  FIELD(nexthop2), bit(34)),
                 row::text   ("track", FIELD(track2),   bit(45)),
                 row::text   ("vrf",   FIELD(vrf2),     bit(40))},
    {"nexthop3", row::address("ipv4",  FIELD(nexthop3), bit(35)),
                 row::text   ("track", FIELD(track3),   bit(46)),
                 row::text   ("vrf",   FIELD(vrf3),     bit(41))},
}};

// ---- Leaves of the entry and of its action container ------------------------

/// Action codes, which the schema spells as container names.
inline constexpr std::uint8_t deny = 0;
inline constexpr std::uint8_t permit = 1;
inline constexpr Bit grant_bit = bit(0);

inline constexpr Leaf remark = row::text("remark", FIELD(remark), bit(31));
inline constexpr Leaf igmp_type =
    row::keyword_or_number("igmp-type", acl_yang_acl_igmp_type, FIELD(igmp_type), bit(12));
inline constexpr Leaf precedence =
    row::keyword_or_number("precedence", acl_yang_acl_precedence_um, FIELD(tos_byte), bit(17));
inline constexpr Leaf fragment_type =
    row::keyword("fragment-type", acl_yang_acl_fragment_type_um, FIELD(FragmentFlags), bit(60));
inline constexpr Leaf counter = row::text("counter", FIELD(counter_name), bit(51));
inline constexpr Leaf set_qos_group = row::number("qos-group", FIELD(qos_group), bit(55));
inline constexpr Leaf set_ttl = row::number("ttl", FIELD(SetTTL), bit(59));

// Presence nodes: their appearance is their value.
inline constexpr Leaf fragments   = row::presence("fragments", FIELD(frags),    bit(23));
inline constexpr Leaf default_hop = row::presence("default",   FIELD(nexthop),  next_hop_bit, default_next_hop);
inline constexpr Leaf capture     = row::presence("capture",   FIELD(capture),  bit(38));
inline constexpr Leaf log         = row::presence("log",       FIELD(log),      bit(13), 1);
inline constexpr Leaf log_input   = row::presence("log-input", FIELD(log),      bit(13), 2);
inline constexpr Leaf icmp_off    = row::presence("icmp-off",  FIELD(icmp_off), bit(30));
inline constexpr Leaf icmp_on     = row::presence("icmp-on",   FIELD(icmp_on),  bit2(29));

// ---- Protocol: which leaf is written follows from the operator --------------

inline constexpr Bit protocol_operator_bit = bit(53);

inline constexpr Leaf protocol       = row::protocol_value("protocol",       FIELD(protocol),  bit(1));
inline constexpr Leaf protocol_eq    = row::protocol_value("eq",             FIELD(protocol),  bit(1));
inline constexpr Leaf protocol_start = row::protocol_value("start-protocol", FIELD(protocol),  bit(1));
inline constexpr Leaf protocol_end   = row::protocol_value("end-protocol",   FIELD(protocol2), bit(54));

// ---- ICMP: a message name, or type and code as numbers ----------------------

inline constexpr Leaf icmp_message_name =
    {"message-type-name", Read::enum_or_u32, Write::enumeration, acl_yang_acl_icmp_type_code_um,
     FIELD(icmp_type_code), icmp_specific_code};
inline constexpr const char *icmp_message_type = "message-type";
inline constexpr const char *icmp_message_code = "message-code";

// ---- TCP flags --------------------------------------------------------------

inline constexpr Bit tcp_operator_bit = bit(20);
inline constexpr Bit tcp_flags_bit = bit(21);
inline constexpr Bit tcp_mask_bit = bit(22);
inline constexpr const char *tcp_bits = "tcp-bits";

/// Containers of a signed flag text, and their operator codes.
inline constexpr std::array<ccv_yang_keyword, 2> tcp_matches = {
    {{1, "match-all"}, {3, "match-any"}}};

// ---- User-defined fields ----------------------------------------------------

/// Element i of the first eight has the bits i, 8+i and 16+i of ConfigurationMask2.
inline constexpr Bit udf_bit = bit2(0);
inline constexpr std::uint32_t udf_bit_elements = 8;
inline constexpr const char *udf_list = "udf";
inline constexpr const char *udf_name = "udf-name";
inline constexpr const char *udf_value = "udf-value";
inline constexpr const char *udf_mask = "udf-mask";

// ---- Police -----------------------------------------------------------------

inline constexpr Leaf police_value = row::number("value", FIELD(Police.PoliceValue), bit2(24));
inline constexpr Leaf police_peak_rate = row::number("peak-rate", FIELD(Police.PolicePeakValue), bit2(26));
inline constexpr Leaf police_priority =
    row::keyword("priority", acl_yang_acl_priority_um, FIELD(Priority), bit2(28));

/// A leaf whose text is looked up by its place in the table of rate units.
struct RateUnit {
    const char *name;
    Field field;
    Bit bit;
};

inline constexpr RateUnit police_unit      = {"unit",      FIELD(Police.PoliceUnit),     bit2(25)};
inline constexpr RateUnit police_peak_unit = {"peak-unit", FIELD(Police.PolicePeakUnit), bit2(27)};

inline constexpr std::uint32_t rate_unit_count = 5;
inline constexpr const char *rate_unit_table = "acl_yang_acl_rate_unit_um";

// clang-format on
#undef FIELD

} // namespace ace::um
