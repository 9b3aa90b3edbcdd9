// An entry's XML as libyang is given it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/schema/entry_text.h"
#include "host/schema/schema.h"
#include "host/xml_parser.h"

namespace aceconv {

/// Writes an entry anew, without comments, instructions and prefixes, every element
/// on a line of its own, so that libyang's lines tell the element. Refuses what is
/// not XML or no tree of the module's nodes; values, and what a list entry needs,
/// are left to libyang.
class XmlText final : private XmlParser {
  public:
    XmlText(const SchemaNode &entry, Schema schema) : entry_(entry), schema_(schema) {}

    /// Writes all of the module's tree, since that declares the namespace, to
    /// `document`. `sequence` becomes the entry's key when the text has none. Throws
    /// DataError with path below the entry and line; `found` is set as far as the look
    /// has come.
    void wrap(std::string_view text, const std::string &sequence, std::string &document,
              SequenceText &found);

    /// The line, in the text that was wrapped into it, of the element on the given
    /// line of a document, or of the one around it that is so many levels below the
    /// entry.
    std::uint64_t line_of(std::string_view text, std::uint64_t document_line, std::size_t levels);

  private:
    struct Level {
        const SchemaNode *schema; // null around the entry
        std::uint64_t given = 0;  // children by place
        bool parent = false;      // of any elements
        std::string key = {};     // of a list entry
    };

    void look(std::string_view text);
    void start(const Name &element, std::string_view attribute) override;
    void end() override;
    void text(std::string_view part) override;

    const SchemaNode &child(const Name &element);
    void end_leaf(const SchemaNode &leaf);
    [[noreturn]] void refuse(std::string_view child, const std::string &why) const;

    const SchemaNode &entry_;
    const Schema schema_;
    std::string document_;
    std::size_t content_ = 0; // of the entry, in the document
    SequenceText found_;
    std::vector<Level> levels_;
    std::size_t elements_ = 0;
    std::string text_; // of the current leaf

    std::size_t last_element_ = 0; // whose line is wanted
    std::array<std::uint64_t, max_depth> lines_{};
};

} // namespace aceconv
