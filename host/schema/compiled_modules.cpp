#include "host/schema/compiled_modules.h"

namespace aceconv {

namespace {

void restore(const CompiledNode *nodes, const CompiledNode &node, SchemaNode &result) {
    name_schema(node.name, result);
    result.kind = node.kind;
    result.type = node.type;
    result.smallest = node.smallest;
    result.largest = node.largest;
    result.most_entries = node.most_entries;
    result.pattern = node.pattern;
    result.plain_pattern = node.plain_pattern;
    result.names.assign(node.names, node.names + node.name_count);
    result.children.resize(node.child_count);
    for (std::uint8_t place = 0; place < node.child_count; ++place) {
        SchemaNode &child = result.children[place];
        child.place = place;
        child.parent = &result;
        restore(nodes, nodes[node.first_child + place], child);
    }
    index_children(result);
}

} // namespace

void restore_schema(const CompiledModule &module, SchemaNode &entry) {
    restore(module.nodes, module.nodes[0], entry);
}

} // namespace aceconv
