#include "um/schema.h"

#include "aceconv/keywords.h"
#include "common/icmp_message.h"
#include "um/schema_guards.h"
#include "um/schema_rows.h"

namespace ace::um {

using namespace row;

#define FIELD ACE_FIELD
// clang-format off

// ---- Operator groups --------------------------------------------------------

namespace {

constexpr ccv_yang_keyword operators[] = {
    {1, "eq"}, {2, "gt"}, {3, "lt"}, {4, "neq"}, {range_form, range_name}};
constexpr ccv_yang_keyword dscp_forms[] = {
    {1, "eq"}, {2, "gt"}, {3, "lt"}, {4, "neq"}, {range_form, range_name},
    {plain_form, "dscp-value"}};
constexpr ccv_yang_keyword protocol_forms[] = {
    {plain_form, "protocol"}, {1, "eq"}, {range_form, range_name}};

constexpr const char *start = "start-value";
constexpr const char *end = "end-value";

constexpr OperatorGroup source_port = {
    operators, FIELD(sopr), bit(4),
    port_number(start, FIELD(sport1), bit(5)),
    port_number(end,   FIELD(sport2), bit(6)),
};

constexpr OperatorGroup destination_port = {
    operators, FIELD(dopr), bit(9),
    port_number(start, FIELD(dport1), bit(10)),
    port_number(end,   FIELD(dport2), bit(11)),
    RangeOperator::per_child,
};

} // namespace

constexpr OperatorGroup protocol = {
    protocol_forms, FIELD(proto_oper), bit(53),
    protocol_number("start-protocol", FIELD(protocol),  bit(1)),
    protocol_number("end-protocol",   FIELD(protocol2), bit(54)),
    RangeOperator::on_entry, true, &trace_line::protocol_range,
};

constexpr OperatorGroup dscp = {
    dscp_forms, FIELD(dscp_op), bit(14),
    code_point(start, FIELD(dscp),  bit(15)),
    code_point(end,   FIELD(dscp2), bit(16)),
};

constexpr OperatorGroup packet_length = {
    operators, FIELD(plenopr), bit(24),
    number(start, FIELD(plen1), bit(25)),
    number(end,   FIELD(plen2), bit(26)),
};

constexpr OperatorGroup ttl = {
    operators, FIELD(ttloper), bit(27),
    number(start, FIELD(ttl1), bit(28)),
    number(end,   FIELD(ttl2), bit(29)),
};

constexpr OperatorGroup fragment_offset = {
    operators, FIELD(frag_offset_oper), bit(56),
    number(start, FIELD(frag_offset1), bit(57)),
    number(end,   FIELD(frag_offset2), bit(58)),
};

// ---- Matches ----------------------------------------------------------------

namespace {

constexpr Row source_rows[] = {
    address("address",       FIELD(saddr),        bit(2)),
    address("wildcard-mask", FIELD(smask),        bit(3)),
    number ("prefix-length", FIELD(spfx_len),     bit(36)),
    node   (Kind::presence, "any"),
    address("host",          FIELD(saddr),        bit(2)),
    text   ("net-group",     FIELD(net_src_obj),  bit(47)),
    group  ("port",          source_port,         source_port.code_bit),
    text   ("port-group",    FIELD(port_src_obj), bit(49)),
};

constexpr Row destination_rows[] = {
    address("address",       FIELD(daddr),        bit(7)),
    address("wildcard-mask", FIELD(dmask),        bit(8)),
    number ("prefix-length", FIELD(dpfx_len),     bit(37)),
    node   (Kind::presence, "any"),
    address("host",          FIELD(daddr),        bit(7)),
    text   ("net-group",     FIELD(net_dst_obj),  bit(48)),
    group  ("port",          destination_port,    destination_port.code_bit),
    text   ("port-group",    FIELD(port_dst_obj), bit(50)),
};

} // namespace

constexpr Rows source = source_rows;
constexpr Rows destination = destination_rows;

constexpr Row tcp_flags = reported(
    node(Kind::tcp_flags, "tcp-flags", tcp_operator_bit | tcp_flags_bit),
    trace_line::tcp_flags_failure);
constexpr std::array<TcpMatch, 2> tcp_matches = {{
    {"match-all", 1, trace_line::match_all_failure},
    {"match-any", 3, trace_line::match_any_failure},
}};

constexpr Leaf icmp_message_name =
    {"message-type-name", Read::enum_or_u32, Write::enumeration, acl_yang_acl_icmp_type_code_um,
     FIELD(icmp_type_code), icmp_specific_code};
constexpr std::array<IcmpNumber, 2> icmp_numbers = {{{"message-type", 16}, {"message-code", 0}}};

constexpr std::array<UdfLeaf, 3> udf_leaves = {{
    {"udf-name"},
    {"udf-value", &ace_udf_element::UDFValue, &trace_line::udf_value_failure},
    {"udf-mask",  &ace_udf_element::UDFMask,  &trace_line::udf_mask_failure},
}};

namespace {

constexpr UnitLines unit_lines = {
    trace_line::unknown_unit, trace_line::unit_missing, trace_line::unit_copy};
constexpr UnitLines peak_unit_lines = {
    trace_line::unknown_peak_unit, trace_line::peak_unit_missing, trace_line::peak_unit_copy};

constexpr Row police_leaves[] = {
    number   ("value",     FIELD(Police.PoliceValue),     bit2(24)),
    rate_unit("unit",      FIELD(Police.PoliceUnit),      bit2(25), unit_lines),
    number   ("peak-rate", FIELD(Police.PolicePeakValue), bit2(26)),
    rate_unit("peak-unit", FIELD(Police.PolicePeakUnit),  bit2(27), peak_unit_lines),
    keyword  ("priority",  acl_yang_acl_priority_um, FIELD(Priority), bit2(28)),
};

} // namespace

constexpr Row police = container("police", police_leaves, Kind::police);

// ---- Options ----------------------------------------------------------------

namespace {

constexpr Row next_hop_1[] = {
    address("ipv4",  FIELD(nexthop1), bit(33)),
    text   ("track", FIELD(track1),   bit(44)),
    text   ("vrf",   FIELD(vrf1),     bit(39)),
};

constexpr Row next_hop_2[] = {
    address("ipv4",  FIELD(nexthop2), bit(34)),
    text   ("track", FIELD(track2),   bit(45)),
    text   ("vrf",   FIELD(vrf2),     bit(40)),
};

constexpr Row next_hop_3[] = {
    address("ipv4",  FIELD(nexthop3), bit(35)),
    text   ("track", FIELD(track3),   bit(46)),
    text   ("vrf",   FIELD(vrf3),     bit(41)),
};

constexpr Row set[] = {
    number("qos-group", FIELD(qos_group), bit(55)),
    number("ttl",       FIELD(SetTTL),    bit(59)),
};

// ---- The action and the entry -----------------------------------------------

constexpr Row action_rows[] = {
    form(protocol, 0),
    form(protocol, 1),
    form(protocol, 2),
    reported(node(Kind::side, "source",      {}, source),      trace_line::source_leaf),
    reported(node(Kind::side, "destination", {}, destination), trace_line::destination_leaf),
    tcp_flags,
    node(Kind::icmp, "icmp", icmp_specific_code | icmp_any_code),
    keyword_or_number("igmp-type", acl_yang_acl_igmp_type, FIELD(igmp_type), bit(12)),
    group("dscp", dscp, dscp.first.bit),
    keyword_or_number("precedence", acl_yang_acl_precedence_um, FIELD(tos_byte), bit(17)),
    group("packet-length", packet_length, packet_length.code_bit),
    group("ttl", ttl, ttl.code_bit),
    group("fragment-offset", fragment_offset, fragment_offset.code_bit),
    presence("fragments", FIELD(frags), bit(23), When::non_zero),
    keyword("fragment-type", acl_yang_acl_fragment_type_um, FIELD(FragmentFlags), bit(60)),
    reported(node(Kind::udf_entries, "udf-entries", bit2(0)), trace_line::udf_failure),
    police,
    presence("default", FIELD(nexthop), next_hop_bit, When::equal, 2),
    next_hop(Kind::first_next_hop, "nexthop1", next_hop_1),
    next_hop(Kind::next_hop,       "nexthop2", next_hop_2),
    next_hop(Kind::next_hop,       "nexthop3", next_hop_3),
    presence("capture", FIELD(capture), bit(38), When::always),
    text("counter", FIELD(counter_name), bit(51)),
    presence("log", FIELD(log), bit(13), When::equal, 1),
    presence("log-input", FIELD(log), bit(13), When::equal, 2),
    container("set", set),
    presence("icmp-off", FIELD(icmp_off), bit(30), When::non_zero),
    presence("icmp-on", FIELD(icmp_on), bit2(29), When::non_zero),
};

/// The children from one name to another; none when one of them is missing.
constexpr Rows children(const char *first, const char *last) {
    const Rows rows = action_rows;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = i; j < rows.size(); ++j) {
            if (guard::same_text(rows[i].leaf.name, first) &&
                guard::same_text(rows[j].leaf.name, last)) {
                return rows.subspan(i, j + 1 - i);
            }
        }
    }
    return {};
}

constexpr Part part(const char *first, const char *last) {
    return {children(first, last), bits_of(children(first, last))};
}

constexpr Row entry_rows[] = {
    action("deny",   0, action_rows),
    action("permit", 1, children("protocol", "set")),
    text  ("remark", FIELD(remark), bit(31)),
    node  (Kind::ignored, "sequence-number"),
};

// clang-format on
#undef FIELD

} // namespace

constexpr ActionParts action_parts = {
    children("source", "destination"),
    part("tcp-flags", "police"),
    part("default", "nexthop3"),
    part("capture", "set"),
    children("protocol", "nexthop3").size(),
};

constexpr Row entry = node(Kind::container, "", {}, entry_rows);

static_assert([] {
    guard::Tables tables;
    // All defined bits but those that code sets (any ICMP code, the TCP flags and
    // the user-defined fields), and those of the base schema alone (the derived
    // next-hop bits and the sequence text).
    constexpr std::uint64_t elsewhere =
        std::uint64_t{0xF} << 19 | std::uint64_t{3} << 42 | std::uint64_t{1} << 52;
    return tables.hold(entry_rows) && tables.holds(icmp_message_name) &&
           tables.used.first == (0x1FFFFFFFFFFFFFFF & ~elsewhere) &&
           tables.used.second == std::uint64_t{0x3F} << 24;
}());

// Both sides have the same nodes, with bits of the first mask alone, and the parts of
// an action are all there.
static_assert(std::size(source_rows) == std::size(destination_rows) &&
              (bits_of(source) | bits_of(destination)).second == 0);
static_assert([] {
    for (std::size_t i = 0; i < source.size(); ++i) {
        if (!guard::same_text(source[i].leaf.name, destination[i].leaf.name)) {
            return false;
        }
    }
    return action_parts.before_options == protocol.forms.size() + action_parts.sides.size() +
                                              action_parts.matches.rows.size() +
                                              action_parts.next_hops.rows.size() &&
           !action_parts.options.rows.empty();
}());

} // namespace ace::um
