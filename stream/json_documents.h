// Finds the entries of a JSON document
//
//   {"aceconv-base:acls": {"acl": [{"name": "X", "entry": [{...}, {...}]}]}}
//
// without ever holding more than one of them. Where "entry" stands before its list's
// "name", the list's entries are put aside until the name is known.
#pragma once

#include <set>

#include "stream/json_cursor.h"
#include "stream/source.h"
#include "stream/spool.h"

namespace aceconv {

class JsonDocuments : public Source {
  public:
    /// `wanted`: the only schema that the document may have.
    JsonDocuments(Window window, std::optional<Schema> wanted);

    bool next(Entry &entry) override;
    [[nodiscard]] std::optional<Schema> schema() const override { return schema_; }

  private:
    enum class State { start, list, members, entries, held, after_list, end };

    void begin_document();
    void begin_list();
    State member();
    bool take_entry(Entry &entry);
    bool release(Entry &entry);
    void describe(Entry &entry) const;
    State after_list();
    State end_document();
    [[nodiscard]] std::string member_name(std::string_view what);
    [[nodiscard]] std::string list_path() const;

    Window window_;
    JsonCursor cursor_;
    std::optional<Schema> schema_;
    State state_ = State::start;
    bool first_ = true; // no comma is due
    std::uint64_t ordinal_ = 0;
    std::uint64_t lists_ = 0;
    std::optional<std::string> name_; // of the current list
    bool seen_entries_ = false;
    std::set<std::string, std::less<>> names_;
    Spool held_; // entries of a list whose name is not known yet
};

} // namespace aceconv
