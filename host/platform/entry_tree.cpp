#include "host/platform/entry_tree.h"

#include <algorithm>

#include "host/data_path.h"

namespace aceconv {

void EntryTree::restart(std::size_t count) {
    looked_at = nullptr;
    count_ = 0;
    if (count > capacity_) {
        capacity_ = 0; // until there are as many
        nodes_ = std::make_unique<Node[]>(count);
        capacity_ = count;
    }
}

void EntryTree::link_in_order(Node &node, Node &parent) {
    Node **link = &parent.child;
    while ((*link)->schema->place < node.schema->place) {
        link = &(*link)->next;
    }
    node.next = *link;
    *link = &node;
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

std::string EntryTree::path(const Node &node) const {
    std::string text;
    for (const Node *at = &node; at->parent != nullptr; at = at->parent) {
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

} // namespace aceconv
