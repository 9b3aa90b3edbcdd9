// The two YANG modules as they were when the host was built: their text and the
// compiled form of their entries. Parsing them with libyang takes longer than
// everything else that converting one entry does.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/schema/schema.h"

namespace aceconv {

/// One node of an entry in a table, parents before their children.
struct CompiledNode {
    const char *name;
    NodeKind kind;
    LeafType type;
    std::uint64_t smallest;
    std::uint64_t largest;
    std::uint32_t most_entries;
    const char *pattern;
    bool plain_pattern;
    const SchemaNode::Name *names;
    std::uint16_t name_count;
    std::uint16_t first_child; // place in the table
    std::uint16_t child_count;
};

struct CompiledModule {
    std::string_view text; // followed by a NUL
    const CompiledNode *nodes;
};

const CompiledModule &compiled_module(Schema schema);

/// Fills in `entry` as compile_schema does.
void restore_schema(const CompiledModule &module, SchemaNode &entry);

} // namespace aceconv
