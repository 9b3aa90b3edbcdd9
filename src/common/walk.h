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
/// is looked at. `index` follows the position in a list. Inlined, since the visits
/// of a level share what it keeps in registers.
template <typename Visit>
[[gnu::always_inline]] inline void walk_level(Walk &walk, std::uint32_t step, Visit visit,
                                              std::int32_t *index = nullptr) {
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

/// Has `walk_children` walk an entry's own children, a level of CCV_YANG_STEP_ENTRY,
/// in as many passes as there are; the iterator is created and destroyed here, the
/// latter on every path. Returns the status.
template <typename WalkChildren>
std::uint32_t walk_entry(ccv_yang_node *entry, WalkChildren walk_children) {
    Walk walk{nullptr, nullptr};
    walk.status = ccv_yang_iter_create(entry, &walk.iterator);
    while (walk.status == 0 && ccv_yang_iter_is_active(walk.iterator) != 0) {
        walk_children(walk);
    }
    ccv_yang_iter_destroy(walk.iterator);
    return walk.status;
}

} // namespace ace
