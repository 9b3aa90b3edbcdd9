// The nodes of an entry, to be compared and encoded: those that a reader made of
// a text and those that a decoder emitted are alike.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "aceconv/host/yang_access.h"

namespace aceconv {

/// The nodes below; lists stand around their entries as nodes of their own. Null
/// at the end, and below a leaf.
ccv_yang_node *first_child(const ccv_yang_node &node);
ccv_yang_node *next_sibling(const ccv_yang_node &node);

bool is_leaf(const ccv_yang_node &node);
std::string_view node_name(const ccv_yang_node &node);
/// Below the entry, entries of a list counted from 1: "permit/udf-entries/udf[2]/udf-mask".
std::string node_path(const ccv_yang_node &node);

/// The child of `parent` that has the name of `node`; of the entries of a list the
/// one with the same key. Null when there is none.
ccv_yang_node *twin(const ccv_yang_node &parent, const ccv_yang_node &node);
/// The child of this name, or null.
ccv_yang_node *child_named(const ccv_yang_node &parent, std::string_view name);

/// Whether two leaves hold the same value, each by its own type: a number and the
/// name that stands for it are the same.
bool same_value(const ccv_yang_node &a, const ccv_yang_node &b);
/// What a leaf holds; nothing if it is empty or no leaf.
enum class LeafKind : std::uint8_t { none, text, name, number, boolean, address };
LeafKind leaf_kind(const ccv_yang_node &node);
/// The value as text, as it was written; "" of an empty leaf.
std::string leaf_text(const ccv_yang_node &leaf);
/// The number that the leaf holds or names; nothing when it is neither.
std::optional<std::uint64_t> leaf_number(const ccv_yang_node &leaf);

/// Why an encoder returned `status` for the entry with this root.
std::string explain_nodes(const ccv_yang_node &entry, std::uint32_t status);

/// While it lives, the entry has only `node`, what is around and what is below it.
class OnlyNode {
  public:
    explicit OnlyNode(ccv_yang_node &node);
    ~OnlyNode();
    OnlyNode(const OnlyNode &) = delete;
    OnlyNode &operator=(const OnlyNode &) = delete;

  private:
    struct Links { // of a node, as they were
        ccv_yang_node *node, *child, *last, *next;
        std::uint32_t entries;
    };
    static constexpr std::size_t deepest = 16;
    std::array<Links, deepest> links_;
    std::size_t count_ = 0;
};

} // namespace aceconv
