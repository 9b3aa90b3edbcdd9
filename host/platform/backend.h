// What stands behind the handles of aceconv/host/yang_access.h.
//
// A backend reads or writes one notation of an entry; it fills a tree of nodes and
// implements the output. Everything that does not depend on the notation stands
// once, in yang_access.cpp and yang_output.cpp: the walk, types, ranges and
// keywords, statuses, the order of calls, what is reported.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "aceconv/host/yang_access.h"
#include "host/entry.h"
#include "host/platform/yang_status.h"
#include "host/schema/schema.h"

namespace aceconv {

class EmittedTree;

enum class ValueKind : std::uint8_t { none, text, name, number, bits, boolean, empty, ipv4 };

/// The value of a leaf. `text` holds text, one name, names of bits separated by
/// blanks or, where a leaf is read, a dotted quad; `number` a number, a boolean, 0 or
/// 1, or the IPv4 address in network byte order.
struct Value {
    ValueKind kind = ValueKind::none;
    std::string_view text = {};
    std::uint64_t number = 0;
};

/// What a reader wanted and did not find; the first of the three that is set.
struct Wanted {
    const ccv_yang_keyword *table = nullptr;
    const char *what = nullptr;
    std::uint64_t largest = 0;
};

/// One entry while converters read it; notes what they look at, for messages.
struct WalkedEntry {
    const ccv_yang_node *looked_at = nullptr;
    Wanted wanted;                             // of the reader that failed at looked_at
    std::unique_ptr<ccv_yang_iter> spare_walk; // used again, and null meanwhile
};

/// Why a converter returned `status`: what it found at the node last looked at
/// and what it expected.
std::string explanation(const WalkedEntry &entry, std::uint32_t status);

} // namespace aceconv

enum class NodeForm : std::uint8_t { entry, container, list, list_entry, leaf };

/// Children stand in the module's order; the instances of a list stand behind one
/// list node.
struct ccv_yang_node {
    const aceconv::SchemaNode *schema = nullptr;
    aceconv::WalkedEntry *owner = nullptr;
    ccv_yang_node *parent = nullptr;
    ccv_yang_node *child = nullptr; // the first
    ccv_yang_node *last = nullptr;  // child
    ccv_yang_node *next = nullptr;
    NodeForm form = NodeForm::container;
    std::uint16_t name = 0;    // the value's place among the leaf's names, from 1; 0: not known
    std::uint32_t entries = 0; // of a list
    aceconv::Value value = {}; // of a leaf
};

/// The output of one entry. The first failure is kept with its path, and the
/// calls that follow it do nothing but return its status.
struct ccv_yang_output {
  public:
    virtual ~ccv_yang_output();
    ccv_yang_output(const ccv_yang_output &) = delete;
    ccv_yang_output &operator=(const ccv_yang_output &) = delete;

    std::uint32_t container_begin(const char *name);
    std::uint32_t container_end();
    std::uint32_t presence();
    std::uint32_t list_begin(const char *name);
    std::uint32_t list_entry_begin(const char *name, std::uint32_t keys);
    std::uint32_t list_entry_end();
    std::uint32_t list_end();
    std::uint32_t leaf(const char *name, const aceconv::Value &value);
    /// Keeps a failure at `name`, or at the current position when it is null.
    std::uint32_t fail(aceconv::YangStatus status, const char *name, std::string_view why);
    /// The leaf `name` at the current position, for messages; null if unknown.
    [[nodiscard]] const aceconv::SchemaNode *peek(const char *name) const;

    /// Keeps what the backend is told to write as nodes too, from the next entry on.
    void keep_nodes();
    /// Those of the last entry, as a reader would make them of what was written.
    [[nodiscard]] ccv_yang_node &nodes();

  protected:
    /// Empty containers that no presence call has marked are left out in the base
    /// schema, where they say nothing.
    ccv_yang_output(aceconv::Schema schema, const aceconv::SchemaNode &entry);

    /// Ready for another entry.
    void restart(const aceconv::EntryKey &where);
    /// Throws DataError when a call failed or something is still open.
    void check_complete() const;

    // The backend's part. Nodes come in the order of the calls and close in
    // strict nesting. False with a reason when the module does not allow it.
    [[nodiscard]] virtual bool open(const aceconv::SchemaNode &container, std::string &why) = 0;
    [[nodiscard]] virtual bool open_entry(const aceconv::SchemaNode &list, std::string_view key,
                                          std::string &why) = 0;
    virtual void close() = 0;
    [[nodiscard]] virtual bool put(const aceconv::SchemaNode &leaf, const aceconv::Value &value,
                                   std::string &why) = 0;

  private:
    struct Level {
        const aceconv::SchemaNode *schema = nullptr;
        NodeForm form = NodeForm::entry;
        bool opened = false;              // the backend knows it and what is around it
        std::uint8_t hint = 0;            // where the next child is looked for
        std::uint64_t given = 0;          // children by place
        const std::string *key = nullptr; // of a list entry, one of keys_
    };

    [[nodiscard]] std::string position(const char *name) const;
    const aceconv::SchemaNode *child(const char *name, aceconv::NodeKind kind);
    // What only failures reach stands apart, and texts are put together there.
    void refuse_child(const char *name, aceconv::NodeKind kind);
    void refuse_keyless(const aceconv::SchemaNode &list);
    std::uint32_t refuse_value(const aceconv::SchemaNode &leaf, const aceconv::Value &value);
    bool open_pending(Level *last);
    std::uint32_t end(NodeForm form);
    [[gnu::noinline]] std::uint32_t entry_key(const aceconv::SchemaNode &leaf,
                                              std::string_view key);

    const aceconv::Schema schema_;
    const aceconv::SchemaNode &entry_;
    const bool drop_empty_;

    std::array<Level, aceconv::max_depth> levels_;      // up to the innermost
    Level *innermost_ = levels_.data();                 // of them
    std::vector<std::unordered_set<std::string>> keys_; // of the open lists
    std::unique_ptr<aceconv::EmittedTree> nodes_;       // null when they are not kept
    aceconv::EntryKey where_;
    aceconv::YangStatus failure_ = aceconv::YangStatus::ok;
    std::string failure_path_;
    std::string failure_why_;
};
