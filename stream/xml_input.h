// XML documents that follow each other in one input; the mark that ends messages of NETCONF
// (RFC 6242, section 4.3) may stand behind each. Of what has been read, this keeps a piece
// that is not complete, and what its user still needs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/xml_parser.h"
#include "stream/window.h"
#include "stream/xml_pieces.h"

namespace aceconv {

class XmlInput : protected XmlParser {
  public:
    explicit XmlInput(Window window) : window_(std::move(window)) {}

  protected:
    /// Goes on to the next pause(); false at the end of the input. Throws what is thrown on the
    /// way and DataError; nothing follows that.
    bool advance();
    /// Where in the document begins what is needed yet; it is let go beyond max_entry_bytes.
    [[nodiscard]] virtual std::optional<std::uint64_t> needed() const = 0;
    /// What stands there, nothing if it has been let go.
    [[nodiscard]] std::optional<std::string_view> bytes(std::uint64_t begin,
                                                        std::uint64_t end) const;
    /// One has ended, and what follows is another one.
    virtual void begin_document() = 0;

  private:
    bool feed();
    void read_more();
    void start_anew();
    bool step_to_document();

    Window window_;
    bool paused_ = false;  // the parser
    bool again_ = false;   // what has been read already begins another document
    bool between_ = false; // two documents: nothing but the mark of the end of a message, or blanks
    bool marked_ = false;  // which has been read
    std::uint64_t next_line_ = 1; // of the document that follows
    bool last_ = false;           // the input has been read to its end
    bool ended_ = false;
    std::string bytes_;       // of the input that may be needed yet,
    std::uint64_t first_ = 0; // where they stand in the document,
    std::uint64_t fed_ = 0;   // and up to where the parser has them
    XmlPieces pieces_;        // of what it has not
};

/// "longer than 5 bytes".
std::string longer_than(std::size_t bytes);

} // namespace aceconv
