// What each leaf of the two schemas does to a record, one leaf a row, and the
// entries that the rows add up to.
#pragma once

#include <string>
#include <vector>

namespace aceconv::test {

struct Row {
    const char *tree;
    const char *record;
};

extern const std::vector<Row> base_leaves;
extern const std::vector<Row> um_leaves; // inside "deny"

// All rows of a table as one entry and the record that it encodes to.
struct Entry {
    std::string tree;
    std::string record;
};
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
