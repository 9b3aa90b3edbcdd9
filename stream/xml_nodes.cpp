#include "host/xml_parser.h"
#include "stream/node_line.h"

namespace aceconv {
namespace {

constexpr std::size_t max_depth = 16; // more than in either module

class Collector : public XmlParser {
  public:
    std::vector<TextNode> nodes;

  private:
    void start(const Name &element, std::string_view /*attribute*/) override {
        // Nothing is looked for in the first element, the entry, or deeper than any node.
        if (depth_++ == 0 || depth_ > max_depth) {
            return;
        }
        if (++count_ > max_entry_nodes) {
            pause(); // for good
        }
        auto &siblings = open_.empty() ? nodes : open_.back()->children;
        siblings.push_back({std::string(element.local), {}, line(), {}});
        open_.push_back(&siblings.back());
    }

    void end() override {
        if (--depth_ < max_depth && !open_.empty()) {
            open_.pop_back();
        }
    }

    void text(std::string_view part) override {
        if (!open_.empty()) {
            open_.back()->value += part;
        }
    }

    std::size_t depth_ = 0;
    std::size_t count_ = 0;
    std::vector<TextNode *> open_; // no sibling comes while they are
};

} // namespace

std::vector<TextNode> xml_nodes(std::string_view text) {
    Collector collector;
    try {
        collector.parse(text, true);
    } catch (const DataError &) { // what there is up to there will do
    }
    return std::move(collector.nodes);
}

} // namespace aceconv
