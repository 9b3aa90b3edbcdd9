#include "aceconv/plugin.h"
#include "common/safe_string.h"
#include "common/trace.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

void set_operator(Record &record, std::uint8_t code) {
    record.proto_oper = code;
    set_present(record, protocol_operator_bit);
}

std::uint32_t parse_range(ccv_yang_iter *iterator, ccv_yang_node *node, Record &record) {
    Walk walk{iterator, node};
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const char *name = ccv_yang_get_node_name(walk.current);
        for (const Leaf *leaf : {&protocol_start, &protocol_end}) {
            if (name_is(name, leaf->name)) {
                walk.status = read_leaf(record, walk.current, *leaf);
                return;
            }
        }
        trace(trace_line::protocol_range);
        walk.status = ACE_STATUS_UNKNOWN_LEAF;
    });
    return walk.status;
}

} // namespace

std::uint32_t acl_yang_ipv4_enc_protocol_common(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                Record &record) {
    const char *name = ccv_yang_get_node_name(node);
    if (name_is(name, protocol.name)) {
        return read_leaf(record, node, protocol);
    }
    if (name_is(name, protocol_eq.name)) {
        set_operator(record, operator_eq);
        return read_leaf(record, node, protocol_eq);
    }
    if (name_is(name, "range")) {
        set_operator(record, operator_range);
        return parse_range(iterator, node, record);
    }
    return 0;
}

} // namespace ace::um
