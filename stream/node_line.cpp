#include "stream/node_line.h"

#include "host/data_path.h"

namespace aceconv {
namespace {

bool take(std::string_view &path, std::string_view start) {
    const bool found = path.substr(0, start.size()) == start;
    path.remove_prefix(found ? start.size() : 0);
    return found;
}

/// The line of the last node that `path` leads to, 0 for none.
std::uint64_t find(const std::vector<TextNode> &nodes, std::string_view path) {
    std::uint64_t line = 0;
    for (const TextNode &node : nodes) {
        std::string_view rest = path;
        if (!take(rest, "/") || !take(rest, node.name)) {
            continue;
        }
        for (const TextNode &key : node.children) {
            if (take(rest, key_predicate(key.name, key.value))) {
                break;
            }
        }
        const std::uint64_t found = rest.empty() ? node.line : find(node.children, rest);
        line = found != 0 ? found : line;
    }
    return line;
}

} // namespace

std::uint64_t line_of_node(std::string_view text, Format format, std::string_view path) {
    if (path.empty()) {
        return 1;
    }
    const std::uint64_t line =
        find(format == Format::xml ? xml_nodes(text) : json_nodes(text), path);
    return line != 0 ? line : 1;
}

} // namespace aceconv
