#include "host/schema_items.h"

#include "host/schema/modules.h"

namespace aceconv {
namespace {

const char *type_name(const SchemaNode &node) {
    switch (node.type) {
    case LeafType::none:
        return node.kind == NodeKind::list ? "list" : "container";
    case LeafType::string:
        return "string";
    case LeafType::enumeration:
        return "name";
    case LeafType::number:
        return "number";
    case LeafType::name_or_number:
        return "name or number";
    case LeafType::bits:
        return "set of names";
    case LeafType::boolean:
        return "boolean";
    case LeafType::empty:
        return "empty";
    case LeafType::ipv4:
        return "IPv4 address";
    }
    return "";
}

void add_children(const SchemaNode &node, std::optional<std::size_t> parent,
                  std::vector<SchemaItem> &items) {
    for (const SchemaNode &child : node.children) {
        SchemaItem item;
        item.name = child.name;
        item.path = (parent ? items[*parent].path + "/" : "") + item.name;
        item.type = type_name(child);
        item.takes = child.kind == NodeKind::leaf ? expected(child) : "";
        if (child.type == LeafType::number || child.type == LeafType::name_or_number) {
            item.least = child.smallest;
            item.most = child.largest;
        }
        for (const SchemaNode::Name &name : child.names) {
            item.names.push_back({std::string(name.text), name.value});
        }
        item.parent = parent;
        item.depth = parent ? items[*parent].depth + 1 : 0;
        items.push_back(std::move(item));
        add_children(child, items.size() - 1, items);
    }
}

} // namespace

std::vector<SchemaItem> schema_items(Modules &modules, Schema schema) {
    std::vector<SchemaItem> items;
    add_children(modules.context().entry(schema), std::nullopt, items);
    return items;
}

} // namespace aceconv
