#include <span>

#include "aceconv/plugin.h"
#include "common/safe_string.h"
#include "common/trace.h"
#include "record/bag_frame.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

/// What becomes of a child of the action container.
enum class Child : std::uint8_t {
    leaf,
    presence_node, // its appearance sets the field; its children are stepped over
    protocol,
    source,
    destination,
    tcp_flags,
    icmp,
    dscp,
    packet_length,
    ttl,
    fragment_offset,
    udf_entries,
    police,
    next_hop_1,
    next_hop_2,
    next_hop_3,
    set,
    unknown, // stepped over
};

struct ActionRow {
    const char *name;
    Child child;
    const Leaf *leaf = nullptr;
};

constexpr ActionRow leaf(const Leaf &leaf) {
    return {leaf.name, Child::leaf, &leaf};
}
constexpr ActionRow presence(const Leaf &leaf) {
    return {leaf.name, Child::presence_node, &leaf};
}

constexpr ActionRow action_rows[] = {
    {"protocol", Child::protocol},
    {"eq", Child::protocol},
    {"range", Child::protocol},
    {"source", Child::source},
    {"destination", Child::destination},
    {"tcp-flags", Child::tcp_flags},
    {"icmp", Child::icmp},
    leaf(igmp_type),
    {"dscp", Child::dscp},
    leaf(precedence),
    {"packet-length", Child::packet_length},
    {"ttl", Child::ttl},
    {"fragment-offset", Child::fragment_offset},
    presence(fragments),
    leaf(fragment_type),
    {"udf-entries", Child::udf_entries},
    {"police", Child::police},
    presence(default_hop),
    {"nexthop1", Child::next_hop_1},
    {"nexthop2", Child::next_hop_2},
    {"nexthop3", Child::next_hop_3},
    presence(capture),
    leaf(counter),
    presence(log),
    presence(log_input),
    {"set", Child::set},
    // Under "deny" only:
    presence(icmp_off),
    presence(icmp_on),
};

constexpr std::span<const ActionRow> deny_rows = action_rows;
constexpr std::span<const ActionRow> permit_rows = deny_rows.first(deny_rows.size() - 2);

constexpr ActionRow unknown_child{nullptr, Child::unknown};

const ActionRow &find_row(std::span<const ActionRow> rows, const char *name) {
    for (const ActionRow &row : rows) {
        if (name_is(name, row.name)) {
            return row;
        }
    }
    return unknown_child;
}

void parse_next_hop(Walk &walk, const NextHop &hop, Record &record) {
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const char *name = ccv_yang_get_node_name(walk.current);
        for (const Leaf *leaf : {&hop.ipv4, &hop.track, &hop.vrf}) {
            if (name_is(name, leaf->name)) {
                walk.status = read_leaf(record, walk.current, *leaf);
                return;
            }
        }
        walk.status = ACE_STATUS_UNKNOWN_LEAF;
    });
}

void parse_set(Walk &walk, Record &record) {
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const char *name = ccv_yang_get_node_name(walk.current);
        for (const Leaf *leaf : {&set_qos_group, &set_ttl}) {
            if (name_is(name, leaf->name)) {
                walk.status = read_leaf(record, walk.current, *leaf);
                return;
            }
        }
    });
}

/// Only the first eight elements have presence bits, and a longer array none.
void set_udf_bits(Record &record) {
    if (record.UDF.count >= 1 && record.UDF.count <= udf_bit_elements) {
        const std::uint64_t elements = (std::uint64_t{1} << record.UDF.count) - 1;
        record.ConfigurationMask2 |= elements | elements << 8 | elements << 16;
    }
}

void parse_udf_entries(Walk &walk, Record &record) {
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        if (name_is(ccv_yang_get_node_name(walk.current), udf_list)) {
            walk.status = ccv_yang_get_ipv4_udf(walk.current, walk.iterator, record.UDF);
            set_udf_bits(record);
        }
    });
}

/// Handles the current node, a child of the action container.
void parse_action_child(Walk &walk, const ActionRow &row, Record &record) {
    ccv_yang_iter *iterator = walk.iterator;
    ccv_yang_node *node = walk.current;
    switch (row.child) {
    case Child::leaf:
        walk.status = read_leaf(record, node, *row.leaf);
        break;
    case Child::presence_node:
        walk.status = read_leaf(record, node, *row.leaf);
        step_over_children(walk);
        break;
    case Child::protocol:
        walk.status = acl_yang_ipv4_enc_protocol_common(iterator, node, record);
        break;
    case Child::source:
        walk.status = acl_yang_ipv4_enc_source_address(iterator, node, record);
        break;
    case Child::destination:
        walk.status = acl_yang_ipv4_enc_dest_address(iterator, node, record);
        break;
    case Child::tcp_flags:
        walk.status = acl_yang_ipv4_enc_tcp_flags(iterator, node, record);
        break;
    case Child::icmp:
        walk.status = acl_yang_ipv4_enc_icmp(iterator, node, record);
        break;
    case Child::dscp:
        walk.status = acl_yang_ipv4_enc_dscp(iterator, node, record);
        break;
    case Child::packet_length:
        walk.status = acl_yang_ipv4_enc_packet_length(iterator, node, record);
        break;
    case Child::ttl:
        walk.status = acl_yang_ipv4_enc_ttl(iterator, node, record);
        break;
    case Child::fragment_offset:
        walk.status = acl_yang_ipv4_enc_fragment_offset(iterator, node, record);
        break;
    case Child::udf_entries:
        parse_udf_entries(walk, record);
        break;
    case Child::police:
        walk.status = acl_yang_ipv4_enc_police(iterator, node, record);
        break;
    case Child::next_hop_1:
        // The first next hop alone says that the hops are regular ones.
        record.nexthop = regular_next_hop;
        set_present(record, next_hop_bit);
        parse_next_hop(walk, next_hops[0], record);
        break;
    case Child::next_hop_2:
        parse_next_hop(walk, next_hops[1], record);
        break;
    case Child::next_hop_3:
        parse_next_hop(walk, next_hops[2], record);
        break;
    case Child::set:
        parse_set(walk, record);
        break;
    case Child::unknown:
        break;
    }
}

void parse_action(Walk &walk, std::uint8_t action, std::span<const ActionRow> rows,
                  Record &record) {
    set_present(record, grant_bit);
    record.grant = action;
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const ActionRow &row = find_row(rows, ccv_yang_get_node_name(walk.current));
        parse_action_child(walk, row, record);
    });
}

/// Handles the current node, a child of the entry.
void parse_entry_child(Walk &walk, Record &record) {
    const char *name = ccv_yang_get_node_name(walk.current);
    if (name_is(name, "deny")) {
        parse_action(walk, deny, deny_rows, record);
    } else if (name_is(name, "permit")) {
        parse_action(walk, permit, permit_rows, record);
    } else if (name_is(name, remark.name)) {
        walk.status = read_leaf(record, walk.current, remark);
    } else if (!name_is(name, "sequence-number")) {
        walk.status = ACE_STATUS_UNKNOWN_LEAF;
        trace(trace_line::invalid_leaf, walk.status);
    }
}

} // namespace

} // namespace ace::um

std::uint32_t ccv_custom_encoder_ipv4_acl_ace_um(ccv_yang_node *node,
                                                 const std::uint8_t * /*stored*/,
                                                 std::uint32_t /*stored_len*/, void *out_a,
                                                 void *out_b) noexcept {
    ace::Record record;
    ace::clear_record(record);
    std::uint32_t status =
        ace::walk_entry(node, [&](ace::Walk &walk) { ace::um::parse_entry_child(walk, record); });
    if (status == 0) {
        status = ace::encode_record(record, out_a, out_b);
        if (status != 0) {
            ace::trace(ace::trace_line::encode_failure, status);
        }
    }
    ace::release_record(record);
    return status;
}
