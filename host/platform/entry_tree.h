// The nodes of one entry as converters walk them, however they were read.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/platform/backend.h"
#include "host/platform/tree_walk.h"

namespace aceconv {

class EntryTree : public WalkedEntry {
  public:
    using Node = ccv_yang_node;

    [[nodiscard]] Node &root() { return nodes_[0]; }
    /// The path below the entry.
    [[nodiscard]] std::string path(const Node &node) const;

  protected:
    /// Forgets all nodes and makes room for `count`, so that they stay in place.
    void restart(std::size_t count);
    /// A child of `parent`, in the module's order among its siblings, or the entry
    /// when it is null.
    Node &add(const SchemaNode &schema, Node *parent, NodeForm form);
    /// The key that two entries of the list share, or nothing.
    const std::string_view *repeated_key(const Node &list);

  private:
    static void link_in_order(Node &node, Node &parent);

    std::unique_ptr<Node[]> nodes_; // the first `count_` are in use
    std::size_t count_ = 0;
    std::size_t capacity_ = 0;
    std::vector<std::string_view> keys_;
};

inline EntryTree::Node &EntryTree::add(const SchemaNode &schema, Node *parent, NodeForm form) {
    Node &node = nodes_[count_++];
    node = {.schema = &schema, .owner = this, .parent = parent, .form = form};
    if (parent == nullptr) {
        return node;
    }
    if (parent->child == nullptr) {
        parent->child = parent->last = &node;
    } else if (parent->last->schema->place <= schema.place) {
        parent->last->next = &node;
        parent->last = &node;
    } else {
        link_in_order(node, *parent);
    }
    return node;
}

} // namespace aceconv
