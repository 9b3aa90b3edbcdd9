#include <cstdlib>

#include "aceconv/keywords.h"
#include "aceconv/plugin.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

/// Only the first `rate_unit_count` rows are looked at.
std::uint32_t look_up_unit(const char *text, std::uint32_t &value) {
    for (std::uint32_t row = 0; row < rate_unit_count; ++row) {
        int difference = 0;
        const std::uint32_t status = compare(text, acl_yang_acl_rate_unit_um[row].name, difference);
        if (status != 0) {
            return status;
        }
        if (difference == 0) {
            value = acl_yang_acl_rate_unit_um[row].value;
            return 0;
        }
    }
    return ACE_STATUS_NO_KEYWORD;
}

/// The line prints the lookup's code; the code returned says "unknown unit".
std::uint32_t read_rate_unit(ccv_yang_node *node, const Row &row, Record &record) {
    set_present(record, row.leaf.bit);
    char *text = nullptr;
    std::uint32_t status = ccv_yang_get_string(node, &text);
    if (status != 0) {
        return status;
    }
    status = look_up_unit(text, member<std::uint32_t>(record, row.leaf.field));
    if (status != 0) {
        trace(row.unit->unknown, static_cast<const char *>(text), rate_unit_table, status);
        status = ACE_STATUS_UNKNOWN_UNIT;
    }
    std::free(text);
    return status;
}

} // namespace

std::uint32_t acl_yang_ipv4_enc_police(ccv_yang_iter *iterator, ccv_yang_node *node,
                                       Record &record) {
    Walk walk{iterator, node};
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const Row *row = find_child(police, ccv_yang_get_node_name(walk.current));
        if (row == nullptr) {
            return;
        }
        if (row->kind == Kind::rate_unit) {
            walk.status = read_rate_unit(walk.current, *row, record);
        } else {
            // A failed read of a rate or the priority leaves the field and does
            // not stop the walk.
            (void)read_leaf(record, walk.current, row->leaf);
        }
    });
    return walk.status;
}

} // namespace ace::um
