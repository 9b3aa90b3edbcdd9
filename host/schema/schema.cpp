#include "host/schema/schema.h"

#include <libyang/libyang.h>
#include <libyang/plugins_types.h>

#include <cstring>
#include <limits>
#include <stdexcept>

namespace aceconv {

namespace {

[[noreturn]] void unsupported(const lysc_node *node, const char *what) {
    throw std::logic_error(std::string(node->module->name) + ": node " + node->name + ": " + what);
}

struct Bounds {
    std::uint64_t smallest;
    std::uint64_t largest;
};

Bounds bounds(const lysc_range *range, std::uint64_t largest) {
    if (range == nullptr) {
        return {0, largest};
    }
    return {range->parts[0].min_u64, range->parts[LY_ARRAY_COUNT(range->parts) - 1].max_u64};
}

template <class Item>
void take_names(const Item *items, std::vector<SchemaNode::Name> &names) {
    for (LY_ARRAY_COUNT_TYPE i = 0; i < LY_ARRAY_COUNT(items); ++i) {
        if (std::strpbrk(items[i].name, "\"\\\t\r\n") != nullptr) { // written as they are
            throw std::logic_error(std::string("name ") + items[i].name + ": quoted characters");
        }
        // Bits and enumerations share libyang's item; `position` is its unsigned reading.
        names.push_back({items[i].position, items[i].name});
    }
}

void take_number(const lysc_node *node, const lysc_type *type, SchemaNode &result) {
    std::uint64_t largest = 0;
    switch (type->basetype) {
    case LY_TYPE_UINT8:
        largest = std::numeric_limits<std::uint8_t>::max();
        break;
    case LY_TYPE_UINT16:
        largest = std::numeric_limits<std::uint16_t>::max();
        break;
    case LY_TYPE_UINT32:
        largest = std::numeric_limits<std::uint32_t>::max();
        break;
    default:
        unsupported(node, "type");
    }
    const Bounds limits = bounds(reinterpret_cast<const lysc_type_num *>(type)->range, largest);
    result.smallest = limits.smallest;
    result.largest = limits.largest;
}

void take_string(const lysc_type *type, SchemaNode &result) {
    if (std::strstr(type->plugin->id, "ipv4-address-no-zone") != nullptr) {
        result.type = LeafType::ipv4;
        return;
    }
    const auto *string = reinterpret_cast<const lysc_type_str *>(type);
    const Bounds limits = bounds(string->length, std::numeric_limits<std::uint64_t>::max());
    result.type = LeafType::string;
    result.smallest = limits.smallest;
    result.largest = limits.largest;
    if (LY_ARRAY_COUNT(string->patterns) > 0) {
        result.pattern = string->patterns[0]->expr;
        result.plain_pattern = LY_ARRAY_COUNT(string->patterns) == 1 &&
                               string->patterns[0]->inverted == 0 &&
                               TextForm::of(result.pattern).has_value();
    }
}

void take_union(const lysc_node *node, const lysc_type *type, SchemaNode &result) {
    lysc_type **members = reinterpret_cast<const lysc_type_union *>(type)->types;
    if (LY_ARRAY_COUNT(members) != 2 || members[0]->basetype != LY_TYPE_ENUM) {
        unsupported(node, "union");
    }
    result.type = LeafType::name_or_number;
    take_names(reinterpret_cast<const lysc_type_enum *>(members[0])->enums, result.names);
    take_number(node, members[1], result);
}

void take_type(const lysc_node *node, SchemaNode &result) {
    const lysc_type *type = reinterpret_cast<const lysc_node_leaf *>(node)->type;
    switch (type->basetype) {
    case LY_TYPE_STRING:
        take_string(type, result);
        break;
    case LY_TYPE_ENUM:
        result.type = LeafType::enumeration;
        take_names(reinterpret_cast<const lysc_type_enum *>(type)->enums, result.names);
        break;
    case LY_TYPE_BITS:
        result.type = LeafType::bits;
        take_names(reinterpret_cast<const lysc_type_bits *>(type)->bits, result.names);
        break;
    case LY_TYPE_UNION:
        take_union(node, type, result);
        break;
    case LY_TYPE_BOOL:
        result.type = LeafType::boolean;
        break;
    case LY_TYPE_EMPTY:
        result.type = LeafType::empty;
        break;
    default:
        result.type = LeafType::number;
        take_number(node, type, result);
    }
}

/// Levels above the node.
std::size_t depth(const SchemaNode &node) {
    std::size_t levels = 0;
    for (const SchemaNode *above = node.parent; above != nullptr; above = above->parent) {
        levels += above->kind == NodeKind::list ? 2 : 1;
    }
    return levels;
}

std::string listing(const std::vector<SchemaNode::Name> &names) {
    constexpr std::size_t shown = 12;
    std::string text;
    for (std::size_t i = 0; i < names.size() && i < shown; ++i) {
        text += i == 0 ? "" : ", ";
        text += names[i].text;
    }
    if (names.size() > shown) {
        text += ", ... (" + std::to_string(names.size()) + " names)";
    }
    return text;
}

std::string number_range(const SchemaNode &leaf) {
    return "a number " + std::to_string(leaf.smallest) + " to " + std::to_string(leaf.largest);
}

} // namespace

void name_schema(const char *name, SchemaNode &result) {
    result.name = name;
    result.key = name;
    result.member = '"' + std::string(name) + "\":";
    result.member_bytes = result.member.size();
    const std::size_t blocks = (result.member_bytes + member_block - 1) / member_block;
    result.member.resize(blocks * member_block, ' ');
}

void index_children(SchemaNode &node) {
    for (const SchemaNode &child : node.children) {
        node.starting[SchemaNode::start_of(child.name)] |= std::uint64_t{1} << child.place;
    }
}

void link_schema(const lysc_node *node, SchemaNode &compiled) {
    compiled.compiled = node;
    // libyang leaves the private pointer to its user but hands out constant nodes.
    const_cast<lysc_node *>(node)->priv = &compiled;
    const lysc_node *child = lysc_node_child(node);
    for (SchemaNode &compiled_child : compiled.children) {
        link_schema(child, compiled_child);
        child = child->next;
    }
}

void compile_schema(const lysc_node *node, SchemaNode &result) {
    if (depth(result) >= max_depth) {
        unsupported(node, "nested too deep");
    }
    name_schema(node->name, result);
    switch (node->nodetype) {
    case LYS_LEAF:
        result.kind = NodeKind::leaf;
        take_type(node, result);
        return;
    case LYS_CONTAINER:
        result.kind = NodeKind::container;
        break;
    case LYS_LIST:
        result.kind = NodeKind::list;
        result.most_entries = reinterpret_cast<const lysc_node_list *>(node)->max;
        break;
    default:
        unsupported(node, "kind of node");
    }
    std::size_t count = 0;
    for (const lysc_node *child = lysc_node_child(node); child != nullptr; child = child->next) {
        ++count;
    }
    if (count > max_siblings) {
        unsupported(node, "too many children");
    }
    result.children.resize(count);
    std::uint8_t place = 0;
    for (const lysc_node *child = lysc_node_child(node); child != nullptr; child = child->next) {
        SchemaNode &compiled = result.children[place];
        compiled.place = place++;
        compiled.parent = &result;
        compile_schema(child, compiled);
    }
    index_children(result);
}

std::string expected(const SchemaNode &leaf) {
    switch (leaf.type) {
    case LeafType::none:
        return leaf.kind == NodeKind::list ? "a list" : "a container";
    case LeafType::enumeration:
        return "one of: " + listing(leaf.names);
    case LeafType::number:
        return number_range(leaf);
    case LeafType::name_or_number:
        return number_range(leaf) + " or one of: " + listing(leaf.names);
    case LeafType::bits:
        return "a set of: " + listing(leaf.names);
    case LeafType::boolean:
        return "true or false";
    case LeafType::empty:
        return "[null] in JSON, an empty element in XML";
    case LeafType::ipv4:
        return "an IPv4 address";
    case LeafType::string:
        break;
    }
    std::string text = "a string";
    if (leaf.largest != std::numeric_limits<std::uint64_t>::max()) {
        text += " of " + std::to_string(leaf.smallest) + " to " + std::to_string(leaf.largest) +
                " characters";
    } else if (leaf.smallest != 0) {
        text += " that is not empty";
    }
    return leaf.pattern.empty() ? text : text + " of the form " + leaf.pattern;
}

} // namespace aceconv
