// The iterator.
#include <cstdlib>

#include "tools/hostcheck/walk.h"

namespace aceconv::hostcheck {
namespace {

/// One walk, stepped by hand.
struct Steps {
    Check &check;
    ccv_yang_iter *iterator = nullptr;
    ccv_yang_node *current = nullptr;
    std::uint32_t status = 0;

    Steps(Check &trial, ccv_yang_node *node) : check(trial) {
        check.expect_success(CALL(check, ccv_yang_iter_create)(node, &iterator));
    }
    void first(std::uint32_t step, std::int32_t *index = nullptr) {
        CALL(check, ccv_yang_iter_first)(step, iterator, &status, &current, index);
    }
    void next(std::int32_t *index = nullptr) {
        CALL(check, ccv_yang_iter_next)(iterator, &status, &current, index);
    }
    /// Whether there is a node, and one of that name.
    bool stands_on(const char *name) {
        return current != nullptr &&
               std::string(CALL(check, ccv_yang_get_node_name)(current)) == name;
    }
    void go_to(const char *name) {
        while (current != nullptr && !stands_on(name)) {
            next();
        }
        check.expect(current != nullptr, std::string("never shows \"") + name + "\"");
    }
    void destroy() { CALL(check, ccv_yang_iter_destroy)(iterator); }
};

} // namespace

void walk_entries(Check &check) {
    for (const Entry &entry : entries) {
        const Tree tree(check, entry);
        walk(check, tree.node(), entry);
    }
    check.at("a null iterator");
    CALL(check, ccv_yang_iter_destroy)(nullptr);
}

/// A walk changes nothing, also one that ends half-way inside a container.
void walk_again(Check &check) {
    for (const Entry &entry : entries) {
        const Tree tree(check, entry);
        walk(check, tree.node(), entry);
        check.at(entry.name + std::string(", after another walk"));
        Steps half(check, tree.node());
        half.first(CCV_YANG_STEP_ENTRY);
        half.destroy();
        check.at(entry.name + std::string(", after a walk that was given up"));
        walk(check, tree.node(), entry);
    }
}

void walk_two_at_once(Check &check) {
    const Tree tree(check, entries[0]), other(check, entries[1]);
    check.at("a walk over each of two entries, step by step");
    Steps one(check, tree.node()), two(check, other.node());
    one.first(CCV_YANG_STEP_ENTRY);
    two.first(CCV_YANG_STEP_ENTRY);
    const auto shown = [&](Steps &steps, const Entry &entry, std::size_t place) {
        const std::vector<std::size_t> nodes = children(entry.rows, nullptr);
        if (place < nodes.size() && !steps.stands_on(entry.rows[nodes[place]].name)) {
            check.broken("ccv_yang_iter_next",
                         "moves one walk with another: walks are independent");
        }
    };
    for (std::size_t place = 0; place < 4; ++place) {
        shown(one, entries[0], place);
        shown(two, entries[1], place);
        one.next();
        two.next();
    }
    one.destroy();
    two.destroy();
}

/// A failure of a reader is on its way: it has to come through the steps that follow.
void keep_the_status(Check &check) {
    constexpr std::uint32_t failure = 0xBEEF;
    const Entry &entry = entries[2];
    const Tree tree(check, entry);
    check.at("a reader's failure among the leaves of a list entry");
    Steps steps(check, tree.node());
    std::int32_t index = 0;
    steps.first(CCV_YANG_STEP_ENTRY);
    steps.go_to("permit");
    steps.first(CCV_YANG_STEP_CONTAINER);
    steps.go_to("udf-entries");
    steps.first(CCV_YANG_STEP_CONTAINER);
    steps.first(CCV_YANG_STEP_LIST, &index);
    steps.first(CCV_YANG_STEP_LIST_ENTRY);
    steps.status = failure;
    const auto kept = [&] {
        check.expect(steps.status == failure,
                     "clears or changes the status: a failure stays until the caller has it");
    };
    steps.next();
    kept();
    steps.next(&index);
    kept();
    for (int level = 0; level < 3; ++level) {
        steps.next();
        kept();
    }
    steps.destroy();

    check.at("a list whose entries could not be counted");
    Steps list(check, tree.node());
    list.first(CCV_YANG_STEP_ENTRY);
    list.go_to("permit");
    list.first(CCV_YANG_STEP_CONTAINER);
    list.go_to("udf-entries");
    list.first(CCV_YANG_STEP_CONTAINER);
    list.status = failure;
    list.first(CCV_YANG_STEP_LIST, &index);
    check.expect(list.status == failure,
                 "clears or changes the status: a failure stays until the caller has it");
    list.destroy();
}

} // namespace aceconv::hostcheck
