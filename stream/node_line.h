// Where in an entry's text a node stands, for messages. Nothing is kept of the
// lines while entries are read; when one is refused, its text is looked through
// once more.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/entry.h"

namespace aceconv {

/// The line of the node at `path`, as readers of entries name it below the entry
/// ("/deny/udf-entries/udf[udf-name='a']/udf-mask"), counted from 1 in `text`. Where
/// several nodes have the path it is the last of them, for that is the one too many.
/// 1 for "" and for a node that is not found.
std::uint64_t line_of_node(std::string_view text, Format format, std::string_view path);

/// A node as it is written in either notation.
struct TextNode {
    std::string name;   // as paths have it
    std::string value;  // of a leaf; in JSON, if it is a string
    std::uint64_t line; // of its first character, counted from 1
    std::vector<TextNode> children;
};

/// The children of an entry, as far as `text` can be read and nodes nest no deeper
/// than in either module.
std::vector<TextNode> xml_nodes(std::string_view text);
std::vector<TextNode> json_nodes(std::string_view text);

} // namespace aceconv
