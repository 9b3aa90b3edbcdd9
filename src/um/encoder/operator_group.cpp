#include "common/safe_string.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

void set_operator(Record &record, const OperatorGroup &group, std::uint32_t code) {
    store(record, group.operator_code, code);
    set_present(record, group.operator_bit);
}

void parse_range(Walk &walk, const OperatorGroup &group, Record &record) {
    if (group.range_operator == RangeOperator::on_entry) {
        set_operator(record, group, operator_range);
    }
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        if (group.range_operator == RangeOperator::per_child) {
            set_operator(record, group, operator_range);
        }
        const char *name = ccv_yang_get_node_name(walk.current);
        for (const Leaf *leaf : {&group.first, &group.second}) {
            if (name_is(name, leaf->name)) {
                walk.status = read_leaf(record, walk.current, *leaf);
                return;
            }
        }
    });
}

void parse_child(Walk &walk, const OperatorGroup &group, Record &record) {
    const char *name = ccv_yang_get_node_name(walk.current);
    for (const ccv_yang_keyword &row : operator_names) {
        if (name_is(name, row.name)) {
            set_operator(record, group, row.value);
            walk.status = read_leaf(record, walk.current, group.first);
            return;
        }
    }
    if (name_is(name, "range")) {
        parse_range(walk, group, record);
    } else if (group.plain_value != nullptr && name_is(name, group.plain_value)) {
        walk.status = read_leaf(record, walk.current, group.first);
    }
}

std::uint32_t parse_container(ccv_yang_iter *iterator, ccv_yang_node *node,
                              const OperatorGroup &group, Record &record) {
    Walk walk{iterator, node};
    parse_operator_group(walk, group, record);
    return walk.status;
}

} // namespace

void parse_operator_group(Walk &walk, const OperatorGroup &group, Record &record) {
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] { parse_child(walk, group, record); });
}

std::uint32_t acl_yang_ipv4_enc_dscp(ccv_yang_iter *iterator, ccv_yang_node *node, Record &record) {
    return parse_container(iterator, node, dscp, record);
}

std::uint32_t acl_yang_ipv4_enc_packet_length(ccv_yang_iter *iterator, ccv_yang_node *node,
                                              Record &record) {
    return parse_container(iterator, node, packet_length, record);
}

std::uint32_t acl_yang_ipv4_enc_ttl(ccv_yang_iter *iterator, ccv_yang_node *node, Record &record) {
    return parse_container(iterator, node, ttl, record);
}

std::uint32_t acl_yang_ipv4_enc_fragment_offset(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                Record &record) {
    return parse_container(iterator, node, fragment_offset, record);
}

} // namespace ace::um
