// A tree of the host's, and the walk over it as the plug-in makes it.
#pragma once

#include <functional>

#include "tools/hostcheck/check.h"
#include "tools/hostcheck/entries.h"

namespace aceconv::hostcheck {

/// An entry of the host's; the trial ends when the host does not make it.
class Tree {
  public:
    Tree(Check &check, const Entry &entry);
    ~Tree() { CALL(check_, hostcheck_tree_free)(node_); }
    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;
    [[nodiscard]] ccv_yang_node *node() const { return node_; }

  private:
    Check &check_;
    ccv_yang_node *node_;
};

using Visit = std::function<void(const Row &row, ccv_yang_node *node)>;

/// Walks all of the entry, step by step beside its rows. `visit` sees every node.
void walk(
    Check &check, ccv_yang_node *node, const Entry &entry,
    const Visit &visit = [](const Row &, ccv_yang_node *) {});

} // namespace aceconv::hostcheck
