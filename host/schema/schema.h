// The compiled form of one module's entry: names, types and order of its nodes,
// as both backends need them.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/entry.h"
#include "host/schema/name_table.h"
#include "host/schema/text_form.h"

struct lysc_node; // libyang's

namespace aceconv {

enum class NodeKind : std::uint8_t { container, list, leaf };

enum class LeafType : std::uint8_t {
    none, // not a leaf
    string,
    enumeration,
    number,
    name_or_number,
    bits,
    boolean,
    empty,
    ipv4,
};

struct SchemaNode {
    struct Name {
        std::uint32_t value;   // of an enumeration's name; position of a bit
        std::string_view text; // a NUL follows
    };

    const char *name = "";
    std::string_view key = {};    // the name, for comparing
    std::string member;           // "name": as JSON has it, and blanks up to whole blocks
    std::size_t member_bytes = 0; // without the blanks
    NodeKind kind = NodeKind::container;
    LeafType type = LeafType::none;
    std::uint8_t place = 0;         // among its siblings, from 0; below max_siblings
    std::uint64_t smallest = 0;     // of number and name_or_number,
    std::uint64_t largest = 0;      // and of a string's length in characters
    std::uint32_t most_entries = 0; // of a list
    std::string pattern;            // of a string; empty when there is none
    bool plain_pattern = false;     // there is no other, and TextForm knows it
    std::vector<Name> names;        // of enumeration, name_or_number and bits
    const SchemaNode *parent = nullptr;
    const lysc_node *compiled = nullptr;         // null until libyang is needed
    Modules::Context *modules = nullptr;         // of an entry
    std::vector<SchemaNode> children;            // in the module's order; a list's key is the first
    std::array<std::uint64_t, 32> starting = {}; // places of children by how their names start

    /// Of `starting`, for a name that is not empty.
    static std::size_t start_of(const char *text) {
        return (static_cast<unsigned char>(text[0]) + 5U * static_cast<unsigned char>(text[1])) %
               32;
    }
    /// The child of this name, which may be anything. Looks at place `hint` first, 0 or the
    /// place behind a child, and on from there.
    [[nodiscard]] const SchemaNode *named(const char *text, std::size_t hint) const {
        if (*text == '\0') {
            return nullptr;
        }
        const auto turned = std::rotr(starting[start_of(text)], static_cast<int>(hint));
        for (std::uint64_t left = turned; left != 0; left &= left - 1) {
            const auto steps = static_cast<std::size_t>(std::countr_zero(left));
            const SchemaNode &child = children[(hint + steps) % 64];
            if (std::strcmp(child.name, text) == 0) {
                return &child;
            }
        }
        return nullptr;
    }

    /// The child whose name `is_wanted`; `hint` is where the search starts, 0 or the
    /// place behind a child.
    template <class IsWanted>
    [[nodiscard]] const SchemaNode *find_if(IsWanted is_wanted, std::size_t hint) const {
        const SchemaNode *begin = children.data();
        const SchemaNode *end = begin + children.size();
        const SchemaNode *start = begin + hint; // at the end at most
        for (const SchemaNode *child = start; child != end; ++child) {
            if (is_wanted(child->key)) {
                return child;
            }
        }
        for (const SchemaNode *child = begin; child != start; ++child) {
            if (is_wanted(child->key)) {
                return child;
            }
        }
        return nullptr;
    }
    [[nodiscard]] const SchemaNode *find(std::string_view wanted, std::size_t hint = 0) const {
        return find_if([&](std::string_view candidate) { return candidate == wanted; }, hint);
    }

    /// The child of that name, or null, and the place among `names`, or NameTable::none;
    /// eight bytes from the start of `wanted` must be readable. A node and what it knows
    /// belong to one thread.
    [[nodiscard]] const SchemaNode *child(std::string_view wanted) const {
        if (!child_table.made()) {
            child_table.make(children.size(), [&](std::size_t i) { return children[i].key; });
        }
        const std::size_t found = child_table.find(wanted);
        return found == NameTable::none ? nullptr : &children[found];
    }
    [[nodiscard]] std::size_t name_place(std::string_view wanted) const {
        if (!name_table.made()) {
            name_table.make(names.size(), [&](std::size_t i) { return names[i].text; });
        }
        return name_table.find(wanted);
    }

    // Made when they are first needed, since one entry needs few of them.
    mutable NameTable child_table;
    mutable NameTable name_table;
    mutable std::optional<TextForm> form; // of a plain pattern
    // By the place among `names`: the rows of the keyword table that converters read the
    // leaf with, as far as they have been looked for.
    mutable const ccv_yang_keyword *keywords = nullptr;
    mutable std::vector<const ccv_yang_keyword *> keyword_rows;
};

/// `member` consists of blocks of so many bytes, which are copied whole.
constexpr std::size_t member_block = 32;
/// Siblings fit a 64-bit set.
constexpr std::size_t max_siblings = 64;
/// How deep nodes nest, a list and its entry counting as two; far beyond what
/// either module needs.
constexpr std::size_t max_depth = 16;

/// Compiles `node` and what is below it. Throws std::logic_error for a construct
/// that the host does not know.
void compile_schema(const lysc_node *node, SchemaNode &result);

/// Joins `node` and what is below it with its compiled form, which must stay where
/// it is: libyang's private pointers point at it.
void link_schema(const lysc_node *node, SchemaNode &compiled);

/// The fields that a node's name makes up.
void name_schema(const char *name, SchemaNode &result);

/// What its children are found by, once they have their names.
void index_children(SchemaNode &node);

/// What the leaf takes, for messages: "one of: deny, permit", "a number 0 to 255".
std::string expected(const SchemaNode &leaf);

} // namespace aceconv
