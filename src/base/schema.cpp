#include "base/schema.h"

#include <algorithm>

#include "aceconv/keywords.h"
#include "common/icmp_message.h"
#include "common/leaf_guards.h"
#include "common/leaf_rows.h"

namespace ace::base {

using namespace row;

namespace {

constexpr Leaf only_name(const char *name) {
    Leaf leaf{};
    leaf.name = name;
    return leaf;
}

/// A container of `rows`, with the bits of all that it holds.
constexpr Row container(const char *name, std::span<const Row> rows,
                        RowKind kind = RowKind::container) {
    Leaf leaf = only_name(name);
    for (const Row &row : rows) {
        leaf.bit = leaf.bit | row.leaf.bit;
    }
    return Row{kind, leaf, rows};
}

constexpr Row ignored(const char *name) {
    return Row{RowKind::ignored, only_name(name)};
}

#define FIELD ACE_FIELD
// clang-format off

constexpr Row source_network[] = {
    address("source-address",        FIELD(saddr),    bit(2)),
    address("source-wild-card-bits", FIELD(smask),    bit(3)),
    number ("source-prefix-length",  FIELD(spfx_len), bit(36)),
};

constexpr Row destination_network[] = {
    address("destination-address",        FIELD(daddr),    bit(7)),
    address("destination-wild-card-bits", FIELD(dmask),    bit(8)),
    number ("destination-prefix-length",  FIELD(dpfx_len), bit(37)),
};

constexpr Row source_port[] = {
    keyword     ("source-operator",    acl_yang_acl_operator, FIELD(sopr),   bit(4)),
    named_number("first-source-port",  acl_yang_acl_port,     FIELD(sport1), bit(5)),
    named_number("second-source-port", acl_yang_acl_port,     FIELD(sport2), bit(6)),
};

constexpr Row destination_port[] = {
    keyword     ("destination-operator",    acl_yang_acl_operator, FIELD(dopr),   bit(9)),
    named_number("first-destination-port",  acl_yang_acl_port,     FIELD(dport1), bit(10)),
    named_number("second-destination-port", acl_yang_acl_port,     FIELD(dport2), bit(11)),
};

constexpr Row icmp[] = {
    {RowKind::icmp_message, keyword_or_number("icmp-type-code", acl_yang_acl_icmp_type_code,
                                              FIELD(icmp_type_code),
                                              icmp_specific_code | icmp_any_code)},
};

constexpr Row tcp[] = {
    keyword_or_number("tcp-bits-match-operator", acl_yang_acl_tcp_bits_match,
                                                  FIELD(tcpflagsopr),   bit(20)),
    flags("tcp-bits",      acl_yang_acl_tcp_bits, FIELD(tcpflags),      bit(21)),
    flags("tcp-bits-mask", acl_yang_acl_tcp_bits, FIELD(tcpflags_mask), bit(22)),
};

constexpr Row packet_length[] = {
    keyword("packet-length-operator", acl_yang_acl_operator, FIELD(plenopr), bit(24)),
    number ("packet-length-min",                             FIELD(plen1),   bit(25)),
    number ("packet-length-max",                             FIELD(plen2),   bit(26)),
};

constexpr Row time_to_live[] = {
    keyword("time-to-live-operator", acl_yang_acl_operator, FIELD(ttloper), bit(27)),
    number ("time-to-live-min",                             FIELD(ttl1),    bit(28)),
    number ("time-to-live-max",                             FIELD(ttl2),    bit(29)),
};

constexpr Row fragment_offset[] = {
    keyword("fragment-offset-operator", acl_yang_acl_operator, FIELD(frag_offset_oper), bit(56)),
    number ("fragment-offset-1",                               FIELD(frag_offset1),     bit(57)),
    number ("fragment-offset-2",                               FIELD(frag_offset2),     bit(58)),
};

constexpr Row next_hop_1[] = {
    address("next-hop",   FIELD(nexthop1), bit(33)),
    text   ("vrf-name",   FIELD(vrf1),     bit(39)),
    text   ("track-name", FIELD(track1),   bit(44)),
};

constexpr Row next_hop_2[] = {
    address("next-hop",   FIELD(nexthop2), bit(34)),
    text   ("vrf-name",   FIELD(vrf2),     bit(40)),
    text   ("track-name", FIELD(track2),   bit(45)),
};

constexpr Row next_hop_3[] = {
    address("next-hop",   FIELD(nexthop3), bit(35)),
    text   ("vrf-name",   FIELD(vrf3),     bit(41)),
    text   ("track-name", FIELD(track3),   bit(46)),
};

constexpr Row next_hop[] = {
    keyword("next-hop-type", acl_yang_acl_nexthop_type, FIELD(nexthop), bit(32)),
    container("next-hop-1", next_hop_1),
    container("next-hop-2", next_hop_2),
    container("next-hop-3", next_hop_3),
};

constexpr Row dscp[] = {
    keyword     ("dscp-operator", acl_yang_acl_operator, FIELD(dscp_op), bit(14)),
    named_number("dscp-min",      acl_yang_acl_dscp,     FIELD(dscp),    bit(15)),
    named_number("dscp-max",      acl_yang_acl_dscp,     FIELD(dscp2),   bit(16)),
};

constexpr Row entry[] = {
    ignored          ("sequence-number"),
    keyword          ("grant",             acl_yang_acl_grant,    FIELD(grant),      bit(0)),
    keyword          ("protocol-operator", acl_yang_acl_operator, FIELD(proto_oper), bit(53)),
    named_number     ("protocol",          acl_yang_acl_protocol, FIELD(protocol),   bit(1)),
    named_number     ("protocol2",         acl_yang_acl_protocol, FIELD(protocol2),  bit(54)),
    container        ("source-network",      source_network),
    container        ("destination-network", destination_network),
    container        ("source-port",         source_port),
    container        ("destination-port",    destination_port),
    container        ("icmp",                icmp),
    container        ("tcp",                 tcp),
    container        ("packet-length",       packet_length),
    container        ("time-to-live",        time_to_live),
    container        ("fragment-offset",     fragment_offset),
    keyword_or_number("fragment-type", acl_yang_acl_fragment_flags, FIELD(FragmentFlags), bit(60)),
    container        ("next-hop", next_hop, RowKind::next_hop_container),
    text             ("counter-name",                              FIELD(counter_name), bit(51)),
    keyword_or_number("igmp-message-type", acl_yang_acl_igmp_type, FIELD(igmp_type),    bit(12)),
    container        ("dscp", dscp),
    keyword_or_number("precedence", acl_yang_acl_precedence, FIELD(tos_byte),     bit(17)),
    keyword          ("log-option", acl_yang_acl_log,        FIELD(log),          bit(13)),
    boolean          ("capture",                             FIELD(capture),      bit(38)),
    empty            ("icmp-off",                            FIELD(icmp_off),     bit(30)),
    number           ("qos-group",                           FIELD(qos_group),    bit(55)),
    number           ("set-ttl",                             FIELD(SetTTL),       bit(59)),
    empty            ("fragments",                           FIELD(frags),        bit(23)),
    text             ("remark",                              FIELD(remark),       bit(31)),
    text             ("source-prefix-group",                 FIELD(net_src_obj),  bit(47)),
    text             ("destination-prefix-group",            FIELD(net_dst_obj),  bit(48)),
    text             ("source-port-group",                   FIELD(port_src_obj), bit(49)),
    text             ("destination-port-group",              FIELD(port_dst_obj), bit(50)),
    text             ("sequence-str",                        FIELD(SequenceStr),  bit(52)),
};

// clang-format on
#undef FIELD

// Names are unique in their level; a bit, always of the first mask, stands for one
// leaf of the whole schema; of containers, only "next-hop" holds others.
constexpr bool guarded(std::span<const Row> rows, std::uint64_t &used) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row &row = rows[i];
        for (std::size_t j = 0; j < i; ++j) {
            if (guard::same_text(row.leaf.name, rows[j].leaf.name)) {
                return false;
            }
        }
        const bool holds_rows =
            row.kind == RowKind::container || row.kind == RowKind::next_hop_container;
        const bool holds_containers = std::ranges::any_of(
            row.rows(), [](const Row &inner) { return inner.child_count != 0; });
        if (holds_rows != (row.child_count != 0) ||
            holds_containers != (row.kind == RowKind::next_hop_container) ||
            row.leaf.bit.second != 0 || !guarded(row.rows(), used)) {
            return false;
        }
        if (row.kind == RowKind::leaf || row.kind == RowKind::icmp_message) {
            if (!guard::well_formed(row.leaf) || (used & row.leaf.bit.first) != 0) {
                return false;
            }
            used |= row.leaf.bit.first;
        }
    }
    return true;
}

static_assert([] {
    std::uint64_t used = 0;
    // All defined bits but the two derived next-hop bits.
    constexpr std::uint64_t expected = 0x1FFFFFFFFFFFFFFF & ~(std::uint64_t{3} << 42);
    return guarded(entry, used) && used == expected;
}());

} // namespace

constinit const std::span<const Row> entry_rows = entry;

} // namespace ace::base
