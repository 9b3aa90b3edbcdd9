// Finds the entries of a JSON document
//
//   {"aceconv-base:acls": {"acl": [{"name": "X", "entry": [{...}, {...}]}]}}
//
// without ever holding more than one of them. Where "entry" stands before its list's
// "name", the list's entries are put aside until the name is known.
#pragma once

#include <set>
#include <span>

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

    /// A character that must come next.
    struct Due {
        char mark;
        std::string_view what; // begins with it, for messages
    };

  private:
    /// What is to be taken next. One step takes one token, so that it can be repeated
    /// when the input pauses.
    enum class State {
        module,
        acls,
        lists,
        members,
        member,
        name,
        entries,
        entry,
        held,
        after_list,
        tail,
        end
    };

    bool step(Entry &entry);
    void take_module();
    void take_acls();
    void begin_list();
    void next_member();
    void take_member();
    void take_name();
    void next_entry();
    bool take_entry(Entry &entry);
    bool release(Entry &entry);
    void describe(Entry &entry) const;
    void after_list();
    void end_document();
    [[nodiscard]] std::string member_name(std::string_view what);
    [[nodiscard]] std::string list_path() const;

    Window window_;
    JsonCursor cursor_;
    std::optional<Schema> schema_;
    State state_ = State::module;
    std::span<const Due> due_; // before that
    bool first_ = true;        // no comma is due
    std::uint64_t ordinal_ = 0;
    std::uint64_t lists_ = 0;
    std::optional<std::string> name_; // of the current list
    bool seen_entries_ = false;
    std::set<std::string, std::less<>> names_;
    Spool held_; // entries of a list whose name is not known yet
};

} // namespace aceconv
