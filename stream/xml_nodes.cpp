#include <expat.h>
#include <memory>
#include <new>

#include "stream/node_line.h"

namespace aceconv {
namespace {

constexpr std::size_t max_depth = 16; // more than in either module

class Collector {
  public:
    explicit Collector(XML_Parser parser) : parser_(parser) {
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, &Collector::start, &Collector::end);
        XML_SetCharacterDataHandler(parser, &Collector::characters);
    }

    std::vector<TextNode> nodes;

  private:
    static void XMLCALL start(void *self, const XML_Char *name, const XML_Char ** /*attributes*/) {
        static_cast<Collector *>(self)->start(name);
    }
    static void XMLCALL end(void *self, const XML_Char * /*name*/) {
        static_cast<Collector *>(self)->end();
    }
    static void XMLCALL characters(void *self, const XML_Char *text, int length) {
        auto &open = static_cast<Collector *>(self)->open_;
        if (!open.empty()) {
            open.back()->value.append(text, static_cast<std::size_t>(length));
        }
    }

    void start(std::string_view name) {
        // Nothing is looked for in the first element, the entry, or deeper than any node.
        if (depth_++ == 0 || depth_ > max_depth) {
            return;
        }
        if (++count_ > max_entry_nodes) {
            XML_StopParser(parser_, XML_FALSE);
            return;
        }
        auto &siblings = open_.empty() ? nodes : open_.back()->children;
        name = name.substr(name.find(':') + 1); // npos + 1 is 0
        siblings.push_back({std::string(name), {}, XML_GetCurrentLineNumber(parser_), {}});
        open_.push_back(&siblings.back());
    }

    void end() {
        if (--depth_ < max_depth && !open_.empty()) {
            open_.pop_back();
        }
    }

    XML_Parser parser_;
    std::size_t depth_ = 0;
    std::size_t count_ = 0;
    std::vector<TextNode *> open_; // no sibling comes while they are
};

} // namespace

std::vector<TextNode> xml_nodes(std::string_view text) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate("UTF-8"), &XML_ParserFree);
    if (!parser) {
        throw std::bad_alloc();
    }
    Collector collector(parser.get());
    (void)XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
    return std::move(collector.nodes);
}

} // namespace aceconv
