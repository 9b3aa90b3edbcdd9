#include "host/yang/entry_tree.h"

#include <algorithm>
#include <array>
#include <new>

#include "host/yang/data_path.h"

namespace aceconv {

namespace {

using Node = EntryTree::Node;

constexpr std::size_t max_depth = 16; // far beyond what either module nests

class TreeWalk final : public ccv_yang_iter {
  public:
    explicit TreeWalk(Node &start) : start_(start) {}

    [[nodiscard]] bool active() const override { return !started_; }

    [[nodiscard]] YangStatus first(std::uint32_t step, ccv_yang_node *&current,
                                   std::int32_t *index) override {
        const Node *node = step == CCV_YANG_STEP_ENTRY ? &start_ : static_cast<Node *>(current);
        if (node == nullptr || !fits(step, node->form) || depth_ == max_depth) {
            return YangStatus::misplaced;
        }
        levels_[depth_++] = {step, 0, node->child};
        started_ = true;
        show(current, index);
        return YangStatus::ok;
    }

    [[nodiscard]] bool finished(std::uint32_t step) const override {
        return depth_ == 0 || innermost().step != step || innermost().node == nullptr;
    }

    void next(ccv_yang_node *&current, std::int32_t *index) override {
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
        Node *node; // null at its end
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

    Node &start_;
    bool started_ = false;
    std::size_t depth_ = 0;
    std::array<Level, max_depth> levels_;
};

} // namespace

void EntryTree::restart(std::size_t count) {
    looked_at = nullptr;
    nodes_.clear();
    nodes_.reserve(count);
}

Node &EntryTree::add(const SchemaNode &schema, Node *parent, NodeForm form) {
    Node &node = nodes_.emplace_back();
    node.schema = &schema;
    node.owner = this;
    node.form = form;
    node.parent = parent;
    if (parent == nullptr) {
        return node;
    }
    if (parent->child == nullptr || parent->last->schema->place <= schema.place) {
        (parent->child == nullptr ? parent->child : parent->last->next) = &node;
        parent->last = &node;
        return node;
    }
    Node **link = &parent->child;
    while ((*link)->schema->place < schema.place) {
        link = &(*link)->next;
    }
    node.next = *link;
    *link = &node;
    return node;
}

const std::string_view *EntryTree::repeated_key(const Node &list) {
    keys_.clear();
    for (const Node *entry = list.child; entry != nullptr; entry = entry->next) {
        keys_.push_back(entry->child->value.text);
    }
    std::sort(keys_.begin(), keys_.end());
    const auto twice = std::adjacent_find(keys_.begin(), keys_.end());
    return twice == keys_.end() ? nullptr : &*twice;
}

std::string EntryTree::path(const ccv_yang_node &node) const {
    std::string text;
    const auto &from = static_cast<const Node &>(node);
    for (const Node *at = &from; at->parent != nullptr; at = at->parent) {
        // An entry and its list are one step of a path.
        std::string step;
        if (at->form == NodeForm::list_entry) {
            step = at->child == nullptr
                       ? ""
                       : key_predicate(at->child->schema->name, at->child->value.text);
        } else {
            step = std::string("/") + at->schema->name;
        }
        text.insert(0, step);
    }
    return text;
}

ccv_yang_iter *EntryTree::walk(ccv_yang_node &node) noexcept {
    return new (std::nothrow) TreeWalk(static_cast<Node &>(node));
}

} // namespace aceconv
