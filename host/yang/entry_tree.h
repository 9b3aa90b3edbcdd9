// The nodes of one entry as converters walk them, however they were read.
//
// Children stand in the module's order; the instances of a list stand behind one
// list node.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/yang/backend.h"

namespace aceconv {

class EntryTree : public Entry {
  public:
    [[nodiscard]] ccv_yang_node &root() { return nodes_.front(); }
    /// The path below the entry.
    [[nodiscard]] std::string path(const ccv_yang_node &node) const;
    ccv_yang_iter *walk(ccv_yang_node &node) noexcept override;

    struct Node : ccv_yang_node {
        Node *parent = nullptr;
        Node *child = nullptr; // the first
        Node *last = nullptr;  // child
        Node *next = nullptr;
    };

  protected:
    /// Forgets all nodes and makes room for `count`, so that they stay in place.
    void restart(std::size_t count);
    /// A child of `parent`, in the module's order among its siblings, or the entry
    /// when it is null.
    Node &add(const SchemaNode &schema, Node *parent, NodeForm form);
    /// The key that two entries of the list share, or nothing.
    const std::string_view *repeated_key(const Node &list);

  private:
    std::vector<Node> nodes_;
    std::vector<std::string_view> keys_;
};

} // namespace aceconv
