// What was found, by list and by leaf: counts of all of it, and of each list the first entries.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tools/aceconv/html/html_rows.h"

namespace aceconv::tool {

class HtmlGroups {
  public:
    /// The list's number, "" being entries of none.
    std::size_t list(const std::string &file, const EntryKey &key);
    /// There is an entry of the list.
    void see(std::size_t list) { ++lists_[list].entries; }
    /// `number` is the row's among all.
    void add(const HtmlRow &row, std::size_t list, std::uint64_t number,
             const RecordDrawing &drawing);

    /// [name, file] of all lists.
    [[nodiscard]] std::string lists_array() const;
    /// Rows of the tables by list and by leaf, and the lists' sections; what is too much to be
    /// shown is counted.
    [[nodiscard]] std::string lists_table() const;
    [[nodiscard]] std::string leaves_table() const;
    [[nodiscard]] std::string sections() const;

  private:
    struct Counts {
        std::uint64_t entries = 0; // with findings
        std::uint64_t changes = 0;
        std::uint64_t widening = 0; // entries that match more
    };
    struct List {
        std::string file, name;
        std::uint64_t entries = 0; // good ones
        Counts found;
        std::uint64_t shown = 0; // entries in `markup`
        std::string markup;
    };
    struct Leaf {
        std::string leaf, reason;
        Counts found;
        std::uint64_t first; // row
    };

    static std::string list_row(const std::string &name, const List &list);
    Leaf &leaf(const ShownChange &change, std::uint64_t number);

    std::vector<List> lists_;
    std::map<std::pair<std::string, std::string>, std::size_t> places_; // by file and name
    std::size_t last_ = 0;                                              // the list asked for last
    std::vector<Leaf> leaves_;
    std::map<std::pair<std::string, std::string>, std::size_t> reasons_; // by leaf and reason
    std::size_t markup_ = 0;                                             // of all lists, in bytes
};

} // namespace aceconv::tool
