// What was found of an entry, as the page shows it: as a row of its data, and as it stands on the
// page without scripts.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "compare/changes.h"
#include "converter/work.h"
#include "stream/source.h"
#include "tools/aceconv/html/html_record.h"

namespace aceconv::tool {

enum class HtmlKind : std::uint8_t { loss, changed, only_a, only_b, moved, fault, warning, record };

struct HtmlRow {
    HtmlKind kind;
    const EntryKey &key;
    const Position &position;
    const std::string &words;       // "" is unknown
    const std::string &words_after; // the same, or none
    const std::vector<Change> &changes;
    const Inspected *record = nullptr; // to be drawn
    bool may_be_bad = false;           // an entry of one side, which a bad one of the other may be
};

/// What a row shows of a change.
struct ShownChange {
    std::string leaf, before, after, reason;
};
/// "" for a value of a kind that has none.
ShownChange shown_change(HtmlKind kind, const Change &change);

/// The strings that rows share, by their number; the first ones only, so that they take bounded
/// memory. Others stand in the rows.
class SharedStrings {
  public:
    std::string reference(const std::string &text);
    /// All of them, as an array.
    [[nodiscard]] std::string array() const;

  private:
    std::map<std::string, std::size_t> numbers_;
    std::vector<const std::string *> texts_;
};

/// [kind, list, sequence or null, line or "#item", words, words after, changes, may be bad], and
/// the record if there is one. The words after are null or what they share with the others: how
/// many words in front and behind, and those between. A change is [leaf, before, after, reason,
/// widens].
std::string data_row(const HtmlRow &row, std::size_t list, SharedStrings &strings);
/// What the page says of each kind, as an array.
std::string kinds_array();

/// The group of table rows that shows it; `number` counts from 1.
std::string table_rows(const HtmlRow &row, std::uint64_t number, const RecordDrawing &drawing);

} // namespace aceconv::tool
