#include "host/xml_parser.h"

#include <algorithm>
#include <array>
#include <expat.h>
#include <new>
#include <utility>

#include "host/error.h"

namespace aceconv {

namespace {

// Places in the text, which expat since 2.9 tells under new names.
#if XML_MAJOR_VERSION == 2 && XML_MINOR_VERSION < 9
constexpr auto current_index = XML_GetCurrentByteIndex;
constexpr auto current_count = XML_GetCurrentByteCount;
constexpr auto current_line = XML_GetCurrentLineNumber;
#else
constexpr auto current_index = XML_GetCurrentByteIndex64;
constexpr auto current_count = XML_GetCurrentByteCount64;
constexpr auto current_line = XML_GetCurrentLineNumber64;
#endif

constexpr char separator = '\n'; // of a namespace and a local name

std::string_view view(const XML_Char *text) {
    return text == nullptr ? std::string_view{} : text;
}

bool is_utf8_or_ascii(std::string_view encoding) {
    const auto is = [&](std::string_view name) {
        return std::equal(encoding.begin(), encoding.end(), name.begin(), name.end(),
                          [](char a, char b) { return a == b || (a & ~0x20) == b; });
    };
    return is("UTF-8") || is("US-ASCII");
}

constexpr auto references = [] {
    std::array<const char *, 256> table{};
    table['&'] = "&amp;";
    table['<'] = "&lt;";
    table['>'] = "&gt;";
    table['"'] = "&quot;";
    table['\t'] = "&#9;";
    table['\n'] = "&#10;";
    table['\r'] = "&#13;";
    return table;
}();

} // namespace

std::string xml_escaped(std::string_view text) {
    std::string written;
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char *reference = references[static_cast<unsigned char>(text[at])];
        if (reference != nullptr) {
            written.append(text, copied, at - copied).append(reference);
            copied = at + 1;
        }
    }
    return written.append(text, copied);
}

std::string attribute_fault(std::string_view attribute) {
    const bool asks = attribute == "operation" || attribute == "insert";
    return "unknown attribute \"" + std::string(attribute) + "\"" +
           (asks ? "; it asks for a change, while entries are taken as they stand" : "");
}

struct XmlParser::Handlers {
    /// No exception goes through expat; it stops at the first one.
    template <class Call>
    static void guard(void *self, Call call) {
        auto &parser = *static_cast<XmlParser *>(self);
        if (parser.failure_) {
            return; // what expat still had to tell
        }
        parser.begin_ = static_cast<std::uint64_t>(current_index(parser.parser_.get()));
        try {
            call(parser);
        } catch (...) {
            parser.failure_ = std::current_exception();
            XML_StopParser(parser.parser_.get(), XML_FALSE);
        }
    }

    static Name name(const XML_Char *text) {
        const std::string_view whole = text;
        const std::size_t at = whole.rfind(separator);
        return at == std::string_view::npos ? Name{"", whole}
                                            : Name{whole.substr(0, at), whole.substr(at + 1)};
    }

    static void XMLCALL declaration(void *self, const XML_Char * /*version*/,
                                    const XML_Char *encoding, int /*standalone*/) {
        guard(self, [=](XmlParser &parser) {
            if (encoding != nullptr && !is_utf8_or_ascii(encoding)) {
                throw DataError("",
                                "the encoding \"" + std::string(encoding) + "\"; expected UTF-8",
                                parser.line());
            }
        });
    }
    static void XMLCALL doctype(void *self, const XML_Char * /*name*/, const XML_Char * /*system*/,
                                const XML_Char * /*id*/, int /*internal*/) {
        guard(self, [](XmlParser &parser) {
            throw DataError("", "document types are not accepted", parser.line());
        });
    }
    static void XMLCALL open_namespace(void *self, const XML_Char *prefix, const XML_Char *space) {
        guard(self, [=](XmlParser &parser) { parser.open_namespace(view(prefix), view(space)); });
    }
    static void XMLCALL close_namespace(void *self, const XML_Char *prefix) {
        guard(self, [=](XmlParser &parser) { parser.close_namespace(view(prefix)); });
    }
    static void XMLCALL start(void *self, const XML_Char *element, const XML_Char **attributes) {
        guard(self, [=](XmlParser &parser) {
            parser.start(name(element),
                         *attributes == nullptr ? std::string_view{} : name(*attributes).local);
        });
    }
    static void XMLCALL end(void *self, const XML_Char * /*element*/) {
        guard(self, [](XmlParser &parser) { parser.end(); });
    }
    static void XMLCALL text(void *self, const XML_Char *part, int length) {
        guard(self, [=](XmlParser &parser) {
            parser.text({part, static_cast<std::size_t>(length)});
        });
    }
    static void XMLCALL instruction(void *self, const XML_Char *target, const XML_Char * /*data*/) {
        guard(self, [=](XmlParser &parser) { parser.instruction(target); });
    }
    static void XMLCALL other(void *self, const XML_Char * /*text*/, int /*length*/) {
        guard(self, [](XmlParser &) {}); // comments and what else says nothing
    }
};

XmlParser::XmlParser() : parser_(XML_ParserCreateNS("UTF-8", separator), &XML_ParserFree) {
    if (!parser_) {
        throw std::bad_alloc();
    }
    restart();
}

XmlParser::~XmlParser() = default;

void XmlParser::restart(std::uint64_t first_line) {
    XML_Parser parser = parser_.get();
    XML_ParserReset(parser, "UTF-8");
    failure_ = nullptr;
    begin_ = 0;
    first_line_ = first_line;
    XML_SetUserData(parser, this);
    XML_SetXmlDeclHandler(parser, Handlers::declaration);
    XML_SetStartDoctypeDeclHandler(parser, Handlers::doctype);
    XML_SetNamespaceDeclHandler(parser, Handlers::open_namespace, Handlers::close_namespace);
    XML_SetElementHandler(parser, Handlers::start, Handlers::end);
    XML_SetCharacterDataHandler(parser, Handlers::text);
    XML_SetProcessingInstructionHandler(parser, Handlers::instruction);
    XML_SetDefaultHandler(parser, Handlers::other);
}

bool XmlParser::parse(std::string_view bytes, bool last) {
    return outcome(XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()),
                             last ? XML_TRUE : XML_FALSE));
}

bool XmlParser::resume() {
    return outcome(XML_ResumeParser(parser_.get()));
}

bool XmlParser::outcome(int status) {
    if (failure_) {
        std::rethrow_exception(failure_);
    }
    if (status == XML_STATUS_ERROR) {
        const XML_Error error = XML_GetErrorCode(parser_.get());
        if (error == XML_ERROR_NO_MEMORY) {
            throw std::bad_alloc();
        }
        begin_ = static_cast<std::uint64_t>(current_index(parser_.get()));
        throw DataError("",
                        "not well-formed XML: " + std::string(error == XML_ERROR_INVALID_TOKEN
                                                                  ? "unexpected character"
                                                                  : XML_ErrorString(error)),
                        line());
    }
    return status != XML_STATUS_SUSPENDED;
}

void XmlParser::pause() {
    XML_StopParser(parser_.get(), XML_TRUE);
}

std::uint64_t XmlParser::line() const {
    return first_line_ - 1 + current_line(parser_.get());
}

bool XmlParser::something_follows() const {
    return XML_GetErrorCode(parser_.get()) == XML_ERROR_JUNK_AFTER_DOC_ELEMENT;
}

bool XmlParser::is_cut_off() const {
    constexpr std::array open = {XML_ERROR_NO_ELEMENTS, XML_ERROR_UNCLOSED_TOKEN,
                                 XML_ERROR_PARTIAL_CHAR, XML_ERROR_UNCLOSED_CDATA_SECTION};
    return std::find(open.begin(), open.end(), XML_GetErrorCode(parser_.get())) != open.end();
}

std::uint64_t XmlParser::piece_end() const {
    return begin_ + static_cast<std::uint64_t>(current_count(parser_.get()));
}

} // namespace aceconv
