#include "host/json_scan.h"
#include "stream/node_line.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::size_t max_depth = 16; // brackets; more than in either module

/// An open bracket.
struct Level {
    std::vector<TextNode> *nodes; // where its members go, or the entries of the list
    bool array;
    bool begun; // an array that has had an element
};

} // namespace

std::vector<TextNode> json_nodes(std::string_view text) {
    std::vector<TextNode> nodes;
    std::vector<Level> levels;
    std::size_t count = 0;
    std::uint64_t line = 1;
    std::size_t counted = 0; // the bytes up to which lines have been
    JsonWalk walk(text);
    for (auto step = walk.next(); step != JsonWalk::Step::end; step = walk.next()) {
        const auto at = static_cast<std::size_t>(walk.token().data() - text.data());
        line += count_lines(text.substr(counted, at - counted));
        counted = at;
        if (step == JsonWalk::Step::close && !levels.empty()) {
            levels.pop_back();
        } else if (levels.empty() && step == JsonWalk::Step::open) {
            levels.push_back({&nodes, false, false});
        } else if (levels.empty()) {
            break; // no JSON
        } else if (step == JsonWalk::Step::name) {
            const std::string name = json_string(walk.token()).value_or("");
            levels.back().nodes->push_back({name.substr(name.find(':') + 1), {}, line, {}});
            ++count;
        } else if (levels.back().nodes->empty()) {
            break; // no JSON
        } else if (step == JsonWalk::Step::string) {
            levels.back().nodes->back().value = json_string(walk.token()).value_or("");
        } else if (walk.token() == "[") {
            levels.push_back({levels.back().nodes, true, false});
        } else {
            Level &around = levels.back();
            if (around.begun) { // the entries of a list all have its name
                TextNode next{around.nodes->back().name, {}, line, {}};
                around.nodes->push_back(std::move(next));
            } else if (around.array) {
                around.nodes->back().line = line;
            }
            around.begun = around.array;
            levels.push_back({&around.nodes->back().children, false, false});
        }
        if (levels.empty() || levels.size() > max_depth || count > max_entry_nodes) {
            break;
        }
    }
    return nodes;
}

} // namespace aceconv
