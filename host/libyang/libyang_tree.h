// A parsed entry as nodes that converters can walk.
#pragma once

#include <libyang/libyang.h>

#include <memory>

#include "host/platform/entry_tree.h"
#include "host/schema/modules.h"

namespace aceconv {

/// Takes a node off the tree that it is in and frees it with what is below.
struct TreeDeleter {
    void operator()(lyd_node *node) const { lyd_free_tree(node); }
};
using TreeOwner = std::unique_ptr<lyd_node, TreeDeleter>;

/// The module's container "acls" with one access list, which stands in for the
/// entry's own.
TreeOwner new_list(Modules::Context &context, Schema schema);

/// The data nodes of one entry, each with its place in the walk: the instances
/// of a list stand behind one list node. Children come in the module's order.
class LibyangTree final : public EntryTree {
  public:
    /// Takes the entry over, in which only lists have several nodes of one name. Throws
    /// DataError, with the path below the entry, for what libyang does not refuse when
    /// it only parses: repeated keys, too many entries, characters outside YANG's. The sequence
    /// number is left out of the walk unless `show_sequence` is set.
    void assign(TreeOwner entry, bool show_sequence);
    void clear();

  private:
    void add_children(Node &parent, const lyd_node *first);
    void add_leaf(Node &parent, const lyd_node &data);
    void add_list(Node &parent, const lyd_node &first);
    void check_keys(const Node &list);

    TreeOwner entry_;
};

} // namespace aceconv
