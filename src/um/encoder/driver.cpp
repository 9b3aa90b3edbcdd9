#include "aceconv/plugin.h"
#include "record/bag_frame.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

/// Leaves of a container. Other names are passed over, or stop the walk.
enum class OtherNames : std::uint8_t { pass_over, stop };

void parse_leaves(Walk &walk, const Row &container, OtherNames others, Record &record) {
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const Row *row = find_child(container, ccv_yang_get_node_name(walk.current));
        if (row != nullptr) {
            walk.status = read_leaf(record, walk.current, row->leaf);
        } else if (others == OtherNames::stop) {
            walk.status = ACE_STATUS_UNKNOWN_LEAF;
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
void parse_action_child(Walk &walk, const Row &row, Record &record) {
    ccv_yang_iter *iterator = walk.iterator;
    ccv_yang_node *node = walk.current;
    switch (row.kind) {
    case Kind::presence:
        walk.status = read_leaf(record, node, row.leaf);
        step_over_children(walk);
        break;
    case Kind::container:
        parse_leaves(walk, row, OtherNames::pass_over, record);
        break;
    case Kind::form:
        walk.status = acl_yang_ipv4_enc_protocol_common(iterator, node, record);
        break;
    case Kind::operator_group:
        walk.status = parse_operator_group(iterator, node, *row.group, record);
        break;
    case Kind::side:
        walk.status = parse_side(iterator, node, row, record);
        break;
    case Kind::tcp_flags:
        walk.status = acl_yang_ipv4_enc_tcp_flags(iterator, node, record);
        break;
    case Kind::icmp:
        walk.status = acl_yang_ipv4_enc_icmp(iterator, node, record);
        break;
    case Kind::udf_entries:
        parse_udf_entries(walk, record);
        break;
    case Kind::police:
        walk.status = acl_yang_ipv4_enc_police(iterator, node, record);
        break;
    case Kind::first_next_hop:
        record.nexthop = regular_next_hop;
        set_present(record, next_hop_bit);
        [[fallthrough]];
    case Kind::next_hop:
        parse_leaves(walk, row, OtherNames::stop, record);
        break;
    default: // a leaf
        walk.status = read_leaf(record, node, row.leaf);
        break;
    }
}

/// "deny" or "permit". Children of other names are passed over.
void parse_action(Walk &walk, const Row &action, Record &record) {
    set_present(record, action.leaf.bit);
    record.grant = action.leaf.constant;
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        if (const Row *row = find_child(action, ccv_yang_get_node_name(walk.current))) {
            parse_action_child(walk, *row, record);
        }
    });
}

/// One pass over the children of the entry.
void parse_entry(Walk &walk, Record &record) {
    walk_level(walk, CCV_YANG_STEP_ENTRY, [&] {
        const Row *row = find_child(entry, ccv_yang_get_node_name(walk.current));
        if (row == nullptr) {
            walk.status = ACE_STATUS_UNKNOWN_LEAF;
            trace(trace_line::invalid_leaf, walk.status);
        } else if (row->kind == Kind::action) {
            parse_action(walk, *row, record);
        } else if (row->kind == Kind::leaf) {
            walk.status = read_leaf(record, walk.current, row->leaf);
        }
    });
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
        ace::walk_entry(node, [&](ace::Walk &walk) { ace::um::parse_entry(walk, record); });
    if (status == 0) {
        status = ace::encode_record(record, out_a, out_b);
        if (status != 0) {
            ace::trace(ace::trace_line::encode_failure, status);
        }
    }
    ace::release_record(record);
    return status;
}
