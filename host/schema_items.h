// The nodes of an entry as a module has them, for those who want to know what may be written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/entry.h"

namespace aceconv {

struct SchemaItem {
    struct Name {
        std::string text;
        std::uint32_t number; // of a set of bits, the bit's
    };

    std::string path; // below the entry
    std::string name;
    std::string type; // "container", "list", or the leaf's: "number", "name", "name or number", ...
    std::string takes;                        // what the leaf takes, in words
    std::optional<std::uint64_t> least, most; // of a number
    std::vector<Name> names;
    std::optional<std::size_t> parent; // its place among the items
    std::size_t depth = 0;
};

/// Parents before their children, in the module's order, without the entry itself.
std::vector<SchemaItem> schema_items(Modules &modules, Schema schema);

} // namespace aceconv
