// The one reader of XML: the pieces of a document as they come, by expat. There are
// no document types, hence no entities but the five of XML, and no other encoding
// than UTF-8.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

struct XML_ParserStruct; // expat's

namespace aceconv {

/// `text` for an element or an attribute in double quotes; what reading XML would
/// change, ends of lines among it, as references.
std::string xml_escaped(std::string_view text);

class XmlParser {
  public:
    XmlParser();
    virtual ~XmlParser();
    XmlParser(const XmlParser &) = delete;
    XmlParser &operator=(const XmlParser &) = delete;

    /// Takes more of the document, with `last` its end, and calls the functions below
    /// for the pieces that are complete. False after pause(): resume() then goes on
    /// with the rest. Throws what they throw and, with its line, DataError for what
    /// is not well-formed; nothing follows that.
    bool parse(std::string_view bytes, bool last);
    bool resume();
    /// Ready for another document, whose first line has this number.
    void restart(std::uint64_t first_line = 1);
    /// Whether the fault that was thrown last is that something follows the document,
    /// which may be another one, at piece_begin().
    [[nodiscard]] bool something_follows() const;
    /// Whether it is that the document ends before its time.
    [[nodiscard]] bool is_cut_off() const;

  protected:
    struct Name {
        std::string_view space; // the namespace; "" for none
        std::string_view local;
    };

    /// `attribute` is the local name of its first one, "" for none.
    virtual void start(const Name &element, std::string_view attribute) = 0;
    virtual void end() = 0;
    /// A part of what stands between two tags, references resolved and lines ended
    /// by "\n".
    virtual void text(std::string_view part) = 0;
    virtual void instruction(std::string_view /*target*/) {}
    /// The namespaces that an element's tag declares, before its start and after its
    /// end; "" is the default prefix and the namespace that stands for none.
    virtual void open_namespace(std::string_view /*prefix*/, std::string_view /*space*/) {}
    virtual void close_namespace(std::string_view /*prefix*/) {}

    /// Behind the current piece the parser stops.
    void pause();

    /// Where the current piece, or the fault, stands: its line, counted from 1, and
    /// in bytes its begin and its end.
    [[nodiscard]] std::uint64_t line() const;
    [[nodiscard]] std::uint64_t piece_begin() const { return begin_; }
    [[nodiscard]] std::uint64_t piece_end() const;

  private:
    struct Handlers; // what expat calls

    bool outcome(int status);

    std::unique_ptr<XML_ParserStruct, void (*)(XML_ParserStruct *)> parser_;
    std::exception_ptr failure_;
    std::uint64_t begin_ = 0;
    std::uint64_t first_line_ = 1;
};

/// Why an attribute cannot stand on an element.
std::string attribute_fault(std::string_view attribute);

} // namespace aceconv
