// What the command reports to programs, as JSON objects on one line each.
// docs/reports.md says what they mean, docs/schemas/ what they hold.
#pragma once

#include <string>
#include <vector>

#include "compare/changes.h"
#include "compare/lint_rules.h"
#include "converter/work.h"
#include "stream/source.h"

namespace aceconv {

/// An entry of a file, which need not be named: "" then.
struct EntryPlace {
    const std::string &file;
    const EntryKey &key;
    const Position &position;
};

/// A loss of an entry.
std::string loss_row(const EntryPlace &place, const Product &product, const Change &loss);

/// An entry and all that is lost of it.
std::string losses_row(const EntryPlace &place, const Product &product);

/// One of two entries that are compared.
struct ReportedEntry {
    EntryKey key;
    Position position;
    std::string words = {};
};
/// What differs between two inputs.
struct FoundDifference {
    const ReportedEntry *a, *b;           // null: this side has no such entry
    const std::vector<Change> &changes;   // all that the entry says if it is on one side
    bool may_be_bad = false;              // one of the other side's bad entries may be it
    const ReportedEntry *moved = nullptr; // says the same at another place of the other's list
};
std::string difference_row(const FoundDifference &found);

/// A fault; `words` may be "".
std::string fault_row(const EntryPlace &place, const DataError &fault, const std::string &words);

/// A warning about an entry, or, if `words` is "", a list.
std::string warning_row(const EntryPlace &place, const LintWarning &warning,
                        const std::string &words);

/// How many entries of a list came behind the last one that shadowing was looked for.
std::string uncompared_row(const std::string &file, const std::string &acl, std::uint64_t entries);

/// A member of an object, such as "a":"text" and "a":1.
std::string json_member(const std::string &name, const std::string &text);
std::string json_member(const std::string &name, std::uint64_t number);

} // namespace aceconv
