// The walk over an entry's nodes, behind the iterator of aceconv/host/yang_access.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "host/platform/backend.h"

struct ccv_yang_iter {
  public:
    /// Over the children of `start`.
    explicit ccv_yang_iter(ccv_yang_node &start) : owner_(start.owner), start_(&start) {}

    ccv_yang_iter(const ccv_yang_iter &) = delete;
    ccv_yang_iter &operator=(const ccv_yang_iter &) = delete;

    void restart(ccv_yang_node &start) {
        owner_ = start.owner;
        start_ = &start;
        started_ = false;
        innermost_ = levels_.data();
    }

    [[nodiscard]] aceconv::WalkedEntry &owner() const { return *owner_; }
    [[nodiscard]] bool active() const { return !started_; }

    /// `index` may be null, here and in next.
    [[nodiscard]] aceconv::YangStatus first(std::uint32_t step, ccv_yang_node *&current,
                                            std::int32_t *index) {
        ccv_yang_node *node = step == CCV_YANG_STEP_ENTRY ? start_ : current;
        if (node == nullptr || !fits(step, node->form) || innermost_ == &levels_.back()) {
            return aceconv::YangStatus::misplaced;
        }
        *++innermost_ = {node->child, step, 0};
        started_ = true;
        show(current, index);
        return aceconv::YangStatus::ok;
    }

    [[nodiscard]] bool finished(std::uint32_t step) const {
        return innermost_->node == nullptr || innermost_->step != step;
    }

    void next(ccv_yang_node *&current, std::int32_t *index) {
        if (innermost_->node == nullptr && innermost_ != levels_.data()) {
            --innermost_;
        }
        if (innermost_ == levels_.data()) {
            current = nullptr;
            return;
        }
        innermost_->node = innermost_->node->next;
        ++innermost_->position;
        show(current, index);
    }

  private:
    struct Level {
        ccv_yang_node *node; // null at its end
        std::uint32_t step;
        std::int32_t position;
    };

    static bool fits(std::uint32_t step, NodeForm form) {
        switch (step) {
        case CCV_YANG_STEP_ENTRY:
            return true;
        case CCV_YANG_STEP_CONTAINER: // a leaf is walked as an empty container
            return form != NodeForm::list && form != NodeForm::list_entry;
        case CCV_YANG_STEP_LIST:
            return form == NodeForm::list;
        case CCV_YANG_STEP_LIST_ENTRY:
            return form == NodeForm::list_entry;
        default:
            return false;
        }
    }

    void show(ccv_yang_node *&current, std::int32_t *index) const {
        current = innermost_->node;
        if (index != nullptr && current != nullptr && innermost_->step == CCV_YANG_STEP_LIST) {
            *index = innermost_->position;
        }
    }

    aceconv::WalkedEntry *owner_;
    ccv_yang_node *start_;
    bool started_ = false;
    // The first stands around all others, without a node; then up to the innermost.
    std::array<Level, aceconv::max_depth + 1> levels_{};
    Level *innermost_ = levels_.data();
};
