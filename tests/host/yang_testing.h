// What the tests of the YANG access share.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/entry.h"
#include "host/error.h"
#include "host/platform/backend.h"

namespace aceconv::testing {

inline Modules &modules() {
    static Modules loaded(ACECONV_YANG_DIRECTORY);
    return loaded;
}

/// A walk that is destroyed with its scope.
struct Walk {
    explicit Walk(ccv_yang_node *node) { EXPECT_EQ(ccv_yang_iter_create(node, &iterator), 0U); }
    ~Walk() { ccv_yang_iter_destroy(iterator); }
    Walk(const Walk &) = delete;
    Walk &operator=(const Walk &) = delete;

    ccv_yang_node *first(std::uint32_t step, std::int32_t *at = nullptr) {
        ccv_yang_iter_first(step, iterator, &status, &current, at);
        return current;
    }
    ccv_yang_node *next(std::int32_t *at = nullptr) {
        ccv_yang_iter_next(iterator, &status, &current, at);
        return current;
    }
    bool finished(std::uint32_t step) {
        return ccv_yang_iter_is_finished(step, iterator, &status) != 0;
    }

    ccv_yang_iter *iterator = nullptr;
    ccv_yang_node *current = nullptr;
    std::uint32_t status = 0;
};

/// The node at `path`, names with slashes between; the first entry of lists.
inline ccv_yang_node *find(ccv_yang_node *entry, std::string path) {
    Walk walk(entry);
    path += '/';
    std::uint32_t step = CCV_YANG_STEP_ENTRY;
    for (std::size_t end; (end = path.find('/')) != std::string::npos; path.erase(0, end + 1)) {
        walk.first(step);
        while (walk.current != nullptr &&
               path.substr(0, end) != ccv_yang_get_node_name(walk.current)) {
            walk.next();
        }
        if (walk.current == nullptr) {
            ADD_FAILURE() << "no node " << path;
            return nullptr;
        }
        step = walk.current->form == NodeForm::list         ? CCV_YANG_STEP_LIST
               : walk.current->form == NodeForm::list_entry ? CCV_YANG_STEP_LIST_ENTRY
                                                            : CCV_YANG_STEP_CONTAINER;
    }
    return walk.current;
}

/// "path: message" of the DataError that `call` throws.
template <class Call>
std::string error_of(Call call) {
    try {
        call();
    } catch (const DataError &error) {
        return error.path() + ": " + error.what();
    }
    return "nothing was thrown";
}

} // namespace aceconv::testing
