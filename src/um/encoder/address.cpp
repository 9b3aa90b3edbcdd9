#include "aceconv/plugin.h"
#include "um/encoder/parsers.h"

namespace ace::um {

std::uint32_t parse_side(ccv_yang_iter *iterator, ccv_yang_node *node, const Row &side,
                         Record &record) {
    Walk walk{iterator, node};
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const Row *row = find_child(side, ccv_yang_get_node_name(walk.current));
        if (row == nullptr) {
            walk.status = ACE_STATUS_UNKNOWN_LEAF;
            trace(*side.failure, walk.status);
        } else if (row->kind == Kind::leaf) {
            walk.status = read_leaf(record, walk.current, row->leaf);
        } else if (row->kind == Kind::operator_group) {
            parse_operator_group(walk, *row->group, record);
        } else { // "any"
            step_over_children(walk);
        }
    });
    return walk.status;
}

} // namespace ace::um
