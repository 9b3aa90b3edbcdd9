// What a decoder emits as nodes, such as a reader makes of the text written.
#pragma once

#include <array>
#include <cstddef>
#include <memory_resource>
#include <string>
#include <string_view>

#include "host/platform/entry_tree.h"

namespace aceconv {

/// Takes what a backend has accepted, in the same order of calls. False with a
/// reason for what a reader would refuse.
class EmittedTree final : public EntryTree {
  public:
    void start(const SchemaNode &entry);
    [[nodiscard]] bool open(const SchemaNode &container, std::string &why);
    [[nodiscard]] bool open_entry(const SchemaNode &list, std::string_view key, std::string &why);
    void close();
    [[nodiscard]] bool put(const SchemaNode &leaf, const Value &value, std::string &why);

  private:
    Node *add(const SchemaNode &schema, NodeForm form, std::string &why);
    bool enter(const SchemaNode &schema, NodeForm form, std::string &why);
    std::string_view keep(std::string_view text);

    Node *at_ = nullptr; // what is open
    std::size_t count_ = 0;
    std::array<std::byte, 2048> room_; // for the texts of most entries
    std::pmr::monotonic_buffer_resource texts_{room_.data(), room_.size()};
};

} // namespace aceconv
