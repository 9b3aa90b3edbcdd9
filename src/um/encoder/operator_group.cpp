#include "aceconv/plugin.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

void set_operator(Record &record, const OperatorGroup &group, std::uint32_t code) {
    store(record, group.code, code);
    set_present(record, group.code_bit);
}

void parse_range(Walk &walk, const OperatorGroup &group, Record &record) {
    if (group.range_operator == RangeOperator::on_entry) {
        set_operator(record, group, range_form);
    }
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        if (group.range_operator == RangeOperator::per_child) {
            set_operator(record, group, range_form);
        }
        const char *name = ccv_yang_get_node_name(walk.current);
        for (const Leaf *leaf : {&group.first, &group.second}) {
            if (name_is(name, leaf->name)) {
                walk.status = read_leaf(record, walk.current, *leaf);
                return;
            }
        }
        if (group.unknown_value != nullptr) {
            trace(*group.unknown_value);
            walk.status = ACE_STATUS_UNKNOWN_LEAF;
        }
    });
}

/// Handles the current node, which may be one of the group's forms.
void parse_form(Walk &walk, const OperatorGroup &group, Record &record) {
    const ccv_yang_keyword *form = find(group.forms, ccv_yang_get_node_name(walk.current));
    if (form == nullptr) {
        return;
    }
    if (form->value == range_form) {
        parse_range(walk, group, record);
        return;
    }
    if (form->value != plain_form) {
        set_operator(record, group, form->value);
    }
    walk.status = read_leaf(record, walk.current, group.first);
}

} // namespace

void parse_operator_group(Walk &walk, const OperatorGroup &group, Record &record) {
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] { parse_form(walk, group, record); });
}

std::uint32_t parse_operator_group(ccv_yang_iter *iterator, ccv_yang_node *node,
                                   const OperatorGroup &group, Record &record) {
    Walk walk{iterator, node};
    parse_operator_group(walk, group, record);
    return walk.status;
}

std::uint32_t acl_yang_ipv4_enc_protocol_common(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                Record &record) {
    Walk walk{iterator, node};
    parse_form(walk, protocol, record);
    return walk.status;
}

} // namespace ace::um
