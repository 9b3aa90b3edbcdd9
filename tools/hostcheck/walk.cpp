#include "tools/hostcheck/walk.h"

#include <algorithm>
#include <cstring>

namespace aceconv::hostcheck {
namespace {

constexpr int most_passes = 16;

/// The nodes of one level, and how many of them have been shown.
struct Level {
    std::string name; // for words
    std::vector<std::size_t> nodes;
    std::size_t shown = 0;
};

class Walker {
  public:
    Walker(Check &check, const Entry &entry, const Visit &visit)
        : check_(check), rows_(entry.rows), visit_(visit) {}

    void walk(ccv_yang_node *node) {
        check_.expect_success(CALL(check_, ccv_yang_iter_create)(node, &iterator_));
        check_.expect(iterator_ != nullptr, "reports success and sets no iterator");
        levels_.push_back({"the entry", children(rows_, nullptr)});
        while (CALL(check_, ccv_yang_iter_is_active)(iterator_) != 0) {
            check_.expect(++passes_ <= most_passes, "stays non-zero after all passes were walked");
            walk_level(CCV_YANG_STEP_ENTRY);
        }
        check_.expect(passes_ != 0, "is 0 before the first pass over the entry's children");
        CALL(check_, ccv_yang_iter_destroy)(iterator_);
    }

  private:
    [[nodiscard]] Level &level() { return levels_.back(); }

    void enter(std::size_t row, std::uint32_t step) {
        levels_.push_back({quoted(rows_[row]), children(rows_, &row)});
        walk_level(step);
        levels_.pop_back();
    }

    void check_status() { check_.expect_success(status_); }

    void walk_level(std::uint32_t step) {
        std::int32_t position = 0;
        std::int32_t *const index = step == CCV_YANG_STEP_LIST ? &position : nullptr;
        bool entered = false; // the node shown last
        CALL(check_, ccv_yang_iter_first)(step, iterator_, &status_, &current_, index);
        check_status();
        while (CALL(check_, ccv_yang_iter_is_finished)(step, iterator_, &status_) == 0 &&
               current_ != nullptr) {
            check_status();
            const std::size_t row = recognise(step);
            if (index != nullptr && position != static_cast<std::int32_t>(level().shown - 1)) {
                check_.broken(level().shown == 1 ? "ccv_yang_iter_first" : "ccv_yang_iter_next",
                              "keeps index at " + std::to_string(position) + " on entry " +
                                  std::to_string(level().shown - 1) +
                                  " of the list, counted from 0");
            }
            ccv_yang_node *const node = current_;
            visit_(rows_[row], node);
            entered = !is_leaf(rows_[row]);
            if (entered) {
                enter(row, rows_[row].kind == Kind::list         ? CCV_YANG_STEP_LIST
                           : rows_[row].kind == Kind::list_entry ? CCV_YANG_STEP_LIST_ENTRY
                                                                 : CCV_YANG_STEP_CONTAINER);
            }
            CALL(check_, ccv_yang_iter_next)(iterator_, &status_, &current_, index);
            check_status();
        }
        check_status();
        check_end(step, entered);
    }

    /// The row of the current node, which must be the next one of the level.
    std::size_t recognise(std::uint32_t step) {
        const char *const name = CALL(check_, ccv_yang_get_node_name)(current_);
        check_.expect(name != nullptr, "gives null for a name");
        Level &here = level();
        if (here.shown == here.nodes.size() ||
            std::strcmp(rows_[here.nodes[here.shown]].name, name) != 0) {
            explain(step, name);
        }
        return here.nodes[here.shown++];
    }

    /// Says what is wrong with a node of that name in this place.
    [[noreturn]] void explain(std::uint32_t step, const char *name) {
        const Level &here = level();
        const std::string shown = std::string("\"") + name + "\"";
        const char *const colon = std::strrchr(name, ':');
        if (colon != nullptr && here.shown < here.nodes.size() &&
            std::strcmp(rows_[here.nodes[here.shown]].name, colon + 1) == 0) {
            check_.broken("ccv_yang_get_node_name", "gives " + shown + ", a name with a prefix");
        }
        if (step == CCV_YANG_STEP_ENTRY && here.shown == here.nodes.size() && passes_ > 1) {
            check_.broken("ccv_yang_iter_is_active",
                          "is not 0 after the last pass: the entry's children are shown again");
        }
        const std::string where = " in " + here.name;
        const char *const mover = here.shown == 0 ? "ccv_yang_iter_first" : "ccv_yang_iter_next";
        const auto same = std::find_if(here.nodes.begin(), here.nodes.end(), [&](std::size_t row) {
            return std::strcmp(rows_[row].name, name) == 0;
        });
        if (here.shown == here.nodes.size() && step != CCV_YANG_STEP_ENTRY &&
            (same == here.nodes.end() || step == CCV_YANG_STEP_LIST)) {
            check_.broken(mover, "leaves a level too early: behind the last node of " + here.name +
                                     " it shows " + shown + ", where the end comes first");
        }
        if (step == CCV_YANG_STEP_LIST) {
            check_.broken(mover, "shows " + shown + " where the entries of the list " + here.name +
                                     " come: all entries of a list are one node, and "
                                     "CCV_YANG_STEP_LIST walks its entries");
        }
        if (same == here.nodes.end()) {
            check_.broken(mover, "shows " + shown + where + ", which has no such node");
        }
        if (same < here.nodes.begin() + static_cast<std::ptrdiff_t>(here.shown)) {
            check_.broken(mover, "shows " + shown + where +
                                     " a second time: every node is shown once, and all entries "
                                     "of a list as one node");
        }
        check_.broken(mover, "shows " + shown + " where " + quoted(rows_[here.nodes[here.shown]]) +
                                 " comes next: nodes are shown in the order of the data, and none "
                                 "is passed over");
    }

    void check_end(std::uint32_t step, bool entered) {
        const Level &here = level();
        if (here.shown == here.nodes.size() ||
            (step == CCV_YANG_STEP_ENTRY && here.shown != 0 && current_ == nullptr && !entered &&
             CALL(check_, ccv_yang_iter_is_active)(iterator_) != 0)) {
            return;
        }
        const std::string missing =
            ", and " + quoted(rows_[here.nodes[here.shown]]) + " is still to come";
        if (current_ != nullptr) {
            check_.broken("ccv_yang_iter_is_finished",
                          "says that " + here.name + " is at its end" + missing);
        }
        if (entered && here.shown != 0) {
            check_.broken("ccv_yang_iter_next",
                          "does not go on behind a container or list that was entered: " +
                              quoted(rows_[here.nodes[here.shown - 1]]) + missing);
        }
        check_.broken(here.shown == 0 ? "ccv_yang_iter_first" : "ccv_yang_iter_next",
                      "shows the end of " + here.name + missing);
    }

    Check &check_;
    Rows rows_;
    const Visit &visit_;
    ccv_yang_iter *iterator_ = nullptr;
    ccv_yang_node *current_ = nullptr;
    std::uint32_t status_ = 0;
    std::vector<Level> levels_;
    int passes_ = 0;
};

} // namespace

Tree::Tree(Check &check, const Entry &entry)
    : check_(check),
      node_(CALL(check, hostcheck_tree_create)(entry.schema, for_host(entry.rows).data())) {
    check_.at(entry.name);
    check_.expect(node_ != nullptr, "makes no tree of valid rows");
}

void walk(Check &check, ccv_yang_node *node, const Entry &entry, const Visit &visit) {
    Walker(check, entry, visit).walk(node);
}

} // namespace aceconv::hostcheck
