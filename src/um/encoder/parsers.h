// Parsers of the UM encoder: each fills its own fields and presence bits of the
// record from one node of the action container.
//
// A parser that is given an iterator and a node walks with its own status,
// starting at 0, and returns it; one that is given a walk goes on with that.
// Fields and bits set before a failure stay; the driver discards such a record.
#pragma once

#include <cstdint>

#include "common/safe_string.h"
#include "common/walk.h"
#include "um/schema.h"

namespace ace::um {

/// The child of `parent` that `name` names, or null. Rows are tested in order, from
/// the first that starts like the name.
inline const Row *find_child(const Row &parent, const char *name) {
    const Row *const end = parent.children + parent.child_count;
    for (const Row *row = parent.children + parent.starts[Row::start_of(name)]; row != end; ++row) {
        if (name_is(name, row->leaf.name)) {
            return row;
        }
    }
    return nullptr;
}

/// The row of a table that `name` names, or null. Rows are tested in order.
template <typename Table>
const auto *find(const Table &rows, const char *name) {
    for (const auto &row : rows) {
        if (name_is(name, row.name)) {
            return &row;
        }
    }
    return static_cast<decltype(rows.data())>(nullptr);
}

/// A node of one of the forms of `protocol`; nodes of any other name change
/// nothing.
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_protocol_common(ccv_yang_iter *iterator,
                                                              ccv_yang_node *node, Record &record);
/// "source" or "destination".
[[nodiscard]] std::uint32_t parse_side(ccv_yang_iter *iterator, ccv_yang_node *node,
                                       const Row &side, Record &record);
/// The container of an operator group. Other names than the group's are passed
/// over.
[[nodiscard]] std::uint32_t parse_operator_group(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                 const OperatorGroup &group, Record &record);
void parse_operator_group(Walk &walk, const OperatorGroup &group, Record &record);

[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_tcp_flags(ccv_yang_iter *iterator,
                                                        ccv_yang_node *node, Record &record);
/// A signed flag text such as "+syn -ack".
[[nodiscard]] std::uint32_t ccv_yang_set_ipv4_tcpflag(ccv_yang_node *node, Record &record);

[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_icmp(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                   Record &record);

/// A "udf" list. The elements of a second list are added to those of the first;
/// an entry whose index is outside the list is ACE_STATUS_NO_SPACE.
[[nodiscard]] std::uint32_t ccv_yang_get_ipv4_udf(ccv_yang_node *list, ccv_yang_iter *iterator,
                                                  ace_udf_array &udf);

[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_police(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                     Record &record);

} // namespace ace::um
