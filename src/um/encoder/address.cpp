#include <initializer_list>

#include "aceconv/plugin.h"
#include "common/safe_string.h"
#include "common/trace.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

/// The leaf of this name, or null.
const Leaf *find_leaf(std::initializer_list<const Leaf *> leaves, const char *name) {
    for (const Leaf *leaf : leaves) {
        if (name_is(name, leaf->name)) {
            return leaf;
        }
    }
    return nullptr;
}

std::uint32_t parse_side(ccv_yang_iter *iterator, ccv_yang_node *node, const AddressSide &side,
                         const TraceLine &unknown_leaf, Record &record) {
    Walk walk{iterator, node};
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const char *name = ccv_yang_get_node_name(walk.current);
        const Leaf *leaf =
            find_leaf({&side.address, &side.wildcard_mask, &side.prefix_length}, name);
        if (leaf == nullptr && name_is(name, "any")) {
            return step_over_children(walk);
        }
        if (leaf == nullptr) {
            leaf = find_leaf({&side.host, &side.net_group}, name);
        }
        if (leaf == nullptr && name_is(name, "port")) {
            return parse_operator_group(walk, side.port, record);
        }
        if (leaf == nullptr) {
            leaf = find_leaf({&side.port_group}, name);
        }
        if (leaf != nullptr) {
            walk.status = read_leaf(record, walk.current, *leaf);
        } else {
            walk.status = ACE_STATUS_UNKNOWN_LEAF;
            trace(unknown_leaf, walk.status);
        }
    });
    return walk.status;
}

} // namespace

std::uint32_t acl_yang_ipv4_enc_source_address(ccv_yang_iter *iterator, ccv_yang_node *node,
                                               Record &record) {
    return parse_side(iterator, node, source, trace_line::source_leaf, record);
}

std::uint32_t acl_yang_ipv4_enc_dest_address(ccv_yang_iter *iterator, ccv_yang_node *node,
                                             Record &record) {
    return parse_side(iterator, node, destination, trace_line::destination_leaf, record);
}

} // namespace ace::um
