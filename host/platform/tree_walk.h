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

    void restart(ccv_yang_node &start) {
        owner_ = start.owner;
        start_ = &start;
        started_ = false;
        depth_ = 0;
    }

    [[nodiscard]] aceconv::WalkedEntry &owner() const { return *owner_; }
    [[nodiscard]] bool active() const { return !started_; }

    /// `index` may be null, here and in next.
    [[nodiscard]] aceconv::YangStatus first(std::uint32_t step, ccv_yang_node *&current,
                                            std::int32_t *index) {
        ccv_yang_node *node = step == CCV_YANG_STEP_ENTRY ? start_ : current;
        if (node == nullptr || !fits(step, node->form) || depth_ == aceconv::max_depth) {
            return aceconv::YangStatus::misplaced;
        }
        levels_[depth_++] = {step, 0, node->child};
        started_ = true;
        show(current, index);
        return aceconv::YangStatus::ok;
    }

    [[nodiscard]] bool finished(std::uint32_t step) const {
        return depth_ == 0 || innermost().step != step || innermost().node == nullptr;
    }

    void next(ccv_yang_node *&current, std::int32_t *index) {
        if (depth_ != 0 && innermost().node == nullptr) {
            --depth_;
        }
        if (depth_ == 0) {
            current = nullptr;
            return;
        }
        Level &level = levels_[depth_ - 1];
        level.node = level.node->next;
        ++level.position;
        show(current, index);
    }

  private:
    struct Level {
        std::uint32_t step;
        std::int32_t position;
        ccv_yang_node *node; // null at its end
    };

    [[nodiscard]] const Level &innermost() const { return levels_[depth_ - 1]; }

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
        const Level &level = innermost();
        current = level.node;
        if (index != nullptr && level.node != nullptr && level.step == CCV_YANG_STEP_LIST) {
            *index = level.position;
        }
    }

    aceconv::WalkedEntry *owner_;
    ccv_yang_node *start_;
    bool started_ = false;
    std::size_t depth_ = 0;
    std::array<Level, aceconv::max_depth> levels_; // the first `depth_` are set
};
