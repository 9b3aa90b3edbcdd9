// What each leaf of the two schemas does to a record, one leaf a row, and the
// entries that the rows add up to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "aceconv/host/yang_access.h"

namespace aceconv::test {

// A leaf in a tree, its record, and what is emitted for that. Of a leaf with a
// keyword table the three are patterns, and `name` with `value` is one of its
// values.
struct Leaf {
    const char *tree;
    const char *record;
    const char *emission; // "" for a leaf that is not written
    const ccv_yang_keyword *table = nullptr;
    const char *name = "";
    uint32_t value = 0;
};

// A pattern with @ as the name, $ as the value, ^ as the bit of that number, and %
// as the presence bit of such an ICMP message.
std::string filled(const char *pattern, uint32_t value, const std::string &name);

extern const std::vector<Leaf> base_leaves; // in the order in which they are written

struct Row {
    const char *tree;
    const char *record;
};

extern const std::vector<Row> um_leaves; // inside "deny"

// A tree and the record that it encodes to: of one leaf, or of all rows of a table.
struct Entry {
    std::string tree;
    std::string record;
};
Entry entry_of(const Leaf &leaf);
Entry base_entry();
Entry um_entry(const std::string &action = "deny");

// A UM entry as operators write it, with the record and the subtree decoded
// from it.
extern const Entry um_typical;
extern const char *const um_typical_emitted;

// Every member set to a value of its own, without presence bits: "gt" at the
// destination's port and a range wherever else an operator can be.
extern const char *const full_record;

} // namespace aceconv::test
