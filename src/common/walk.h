// Walking one level of an entry with the host's iterator.
#pragma once

#include <cstdint>

#include "aceconv/host/yang_access.h"

namespace ace {

/// A position of the walk and its status. Nested levels share one Walk, so that
/// a failure ends every level around it.
struct Walk {
    ccv_yang_iter *iterator;
    ccv_yang_node *current;
    std::uint32_t status = 0;
};

/// Visits the nodes of the level that `step` opens on the current node, until
/// the level is exhausted or the status is not 0. A failing visit is followed
/// by one more iterator step, here and at every level around it; no later node
/// is looked at. `index` follows the position in a list.
template <typename Visit>
void walk_level(Walk &walk, std::uint32_t step, Visit visit, std::int32_t *index = nullptr) {
    ccv_yang_iter_first(step, walk.iterator, &walk.status, &walk.current, index);
    while (walk.status == 0 && ccv_yang_iter_is_finished(step, walk.iterator, &walk.status) == 0 &&
           walk.current != nullptr) {
        visit();
        ccv_yang_iter_next(walk.iterator, &walk.status, &walk.current, index);
    }
}

/// Enters the current container and passes over its children unseen.
inline void step_over_children(Walk &walk) {
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [] {});
}

/// Walks all passes over an entry's own children; the iterator is created and
/// destroyed here, the latter on every path. Returns the status.
template <typename Visit>
std::uint32_t walk_entry(ccv_yang_node *entry, Visit visit) {
    Walk walk{nullptr, nullptr};
    walk.status = ccv_yang_iter_create(entry, &walk.iterator);
    while (walk.status == 0 && ccv_yang_iter_is_active(walk.iterator) != 0) {
        walk_level(walk, CCV_YANG_STEP_ENTRY, [&] { visit(walk); });
    }
    ccv_yang_iter_destroy(walk.iterator);
    return walk.status;
}

} // namespace ace
