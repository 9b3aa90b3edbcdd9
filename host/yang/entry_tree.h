// The nodes of one entry as converters walk them, however they were read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/yang/backend.h"
#include "host/yang/tree_walk.h"

namespace aceconv {

class EntryTree : public Entry {
  public:
    using Node = ccv_yang_node;

    [[nodiscard]] Node &root() { return nodes_.front(); }
    /// The path below the entry.
    [[nodiscard]] static std::string path(const Node &node);

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

    std::vector<Node> nodes_;
    std::vector<std::string_view> keys_;
};

inline EntryTree::Node &EntryTree::add(const SchemaNode &schema, Node *parent, NodeForm form) {
    Node &node = nodes_.emplace_back();
    node.schema = &schema;
    node.owner = this;
    node.parent = parent;
    node.form = form;
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
