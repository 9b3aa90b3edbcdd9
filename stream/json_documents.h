// Finds the entries of JSON documents that follow each other,
//
//   {"aceconv-base:acls": {"acl": [{"name": "X", "entry": [{...}, {...}]}]}}
//
// as they are or inside {"ietf-restconf:data": ...}, and of what RESTCONF makes of a part of
// one, {"aceconv-base:acl": [...]} and {"aceconv-base:entry": [...]}, which names no list;
// without ever holding more than one entry. Where "entry" stands before its list's
// "name", the list's entries are put aside until the name is known.
#pragma once

#include <set>
#include <span>

#include "stream/json_cursor.h"
#include "stream/source.h"
#include "stream/spool.h"
#include "stream/text.h"

namespace aceconv {

class JsonDocuments : public Source {
  public:
    /// `wanted`: the only schema that the document may have.
    JsonDocuments(Window window, std::optional<Schema> wanted, OtherModules others);

    bool next(Entry &entry) override;
    [[nodiscard]] std::optional<Schema> schema() const override { return schema_; }
    [[nodiscard]] Surroundings surroundings() const override { return surroundings_; }

    /// A character that must come next.
    struct Due {
        char mark;
        std::string_view what; // begins with it, for messages
    };

  private:
    /// What is to be taken next. One step takes one token, so that it can be repeated
    /// when the input pauses.
    enum class State {
        document, // before a member of it, or of its data
        module,
        other,
        errors,
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
    void begin_document();
    void next_module();
    void take_module();
    void begin_container(std::string_view name, const QualifiedName &split);
    void refuse_module(std::string_view name) const;
    void refuse_errors();
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
    void end_acls();
    [[nodiscard]] std::string member_name(std::string_view what);
    [[nodiscard]] std::string list_path() const;

    Window window_;
    JsonCursor cursor_;
    const std::optional<Schema> wanted_;
    const OtherModules others_;
    Surroundings surroundings_;
    std::optional<Schema> schema_;
    State state_ = State::document;
    bool in_data_ = false;     // of RESTCONF
    bool in_acls_ = false;     // not in a part of them
    std::span<const Due> due_; // before that
    bool first_ = true;        // no comma is due
    std::uint64_t ordinal_ = 0;
    std::uint64_t lists_ = 0;         // 0 outside of them
    std::optional<std::string> name_; // of the current list
    std::uint64_t name_line_ = 0;
    std::uint64_t before_list_ = 0; // entries
    bool seen_entries_ = false;
    std::set<std::string, std::less<>> names_;
    Spool held_; // entries of a list whose name is not known yet
};

} // namespace aceconv
