#include "host/entry_nodes.h"

#include <algorithm>

#include "host/platform/backend.h"

namespace aceconv {

namespace {

using Node = ccv_yang_node;

bool same_name(const Node &a, const Node &b) {
    return a.schema == b.schema || a.schema->key == b.schema->key;
}

std::size_t place_in_list(const Node &entry) {
    std::size_t place = 1;
    for (const Node *at = entry.parent->child; at != &entry; at = at->next) {
        ++place;
    }
    return place;
}

/// Whether both are the entry of a list with one key, or no entries of a list.
bool same_key(const Node &a, const Node &b) {
    if (a.form != NodeForm::list_entry) {
        return true;
    }
    const std::string_view name = a.schema->children.front().key;
    const Node *left = child_named(a, name);
    const Node *right = child_named(b, name);
    return left != nullptr && right != nullptr && same_value(*left, *right);
}

} // namespace

Node *first_child(const Node &node) {
    return node.child;
}

Node *next_sibling(const Node &node) {
    return node.next;
}

bool is_leaf(const Node &node) {
    return node.form == NodeForm::leaf;
}

std::string_view node_name(const Node &node) {
    return node.schema->key;
}

std::string node_path(const Node &node) {
    std::string path;
    for (const Node *at = &node; at->parent != nullptr; at = at->parent) {
        if (at->form == NodeForm::list_entry) { // its list has the name
            path.insert(0, "[" + std::to_string(place_in_list(*at)) + "]");
        } else {
            path.insert(0, at->parent->parent == nullptr ? at->schema->name
                                                         : "/" + std::string(at->schema->name));
        }
    }
    return path;
}

Node *twin(const Node &parent, const Node &node) {
    Node *child = parent.child;
    while (child != nullptr && !(same_name(*child, node) && same_key(*child, node))) {
        child = child->next;
    }
    return child;
}

Node *child_named(const Node &parent, std::string_view name) {
    Node *child = parent.child;
    while (child != nullptr && child->schema->key != name) {
        child = child->next;
    }
    return child;
}

bool same_value(const Node &a, const Node &b) {
    if (a.value.kind == b.value.kind && a.value.text == b.value.text &&
        a.value.number == b.value.number) {
        return true;
    }
    const auto left = leaf_number(a);
    const auto right = leaf_number(b);
    return left || right ? left == right
                         : a.value.kind == b.value.kind && a.value.text == b.value.text;
}

LeafKind leaf_kind(const Node &node) {
    switch (node.value.kind) {
    case ValueKind::none:
    case ValueKind::empty:
        return LeafKind::none;
    case ValueKind::name:
        return LeafKind::name;
    case ValueKind::number:
        return LeafKind::number;
    case ValueKind::boolean:
        return LeafKind::boolean;
    case ValueKind::ipv4:
        return LeafKind::address;
    case ValueKind::text:
    case ValueKind::bits:
        break;
    }
    return LeafKind::text;
}

std::string leaf_text(const Node &leaf) {
    switch (leaf.value.kind) {
    case ValueKind::none:
    case ValueKind::empty:
        return "";
    case ValueKind::number:
        return std::to_string(leaf.value.number);
    case ValueKind::boolean:
        return leaf.value.number != 0 ? "true" : "false";
    default:
        return std::string(leaf.value.text);
    }
}

std::optional<std::uint64_t> leaf_number(const Node &leaf) {
    switch (leaf.value.kind) {
    case ValueKind::number:
    case ValueKind::boolean:
    case ValueKind::ipv4:
        return leaf.value.number;
    case ValueKind::name: {
        const auto &names = leaf.schema->names;
        const auto row = std::find_if(names.begin(), names.end(), [&](const auto &candidate) {
            return candidate.text == leaf.value.text;
        });
        return row == names.end() ? std::nullopt : std::optional<std::uint64_t>(row->value);
    }
    default:
        return std::nullopt;
    }
}

std::string explain_nodes(const Node &entry, std::uint32_t status) {
    return explanation(*entry.owner, status);
}

OnlyNode::OnlyNode(Node &node) {
    static_assert(deepest >= max_depth);
    for (Node *at = &node; at->parent != nullptr; at = at->parent) {
        Node &parent = *at->parent;
        links_.at(count_++) = {at, parent.child, parent.last, at->next, parent.entries};
        at->next = nullptr;
        parent.child = parent.last = at;
        parent.entries = std::min(parent.entries, 1U);
    }
}

OnlyNode::~OnlyNode() {
    while (count_ > 0) {
        const Links &links = links_[--count_];
        Node &parent = *links.node->parent;
        links.node->next = links.next;
        parent.child = links.child;
        parent.last = links.last;
        parent.entries = links.entries;
    }
}

} // namespace aceconv
