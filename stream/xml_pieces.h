// Where the tags, comments and texts of an XML document end. The parser would look again at
// one that has not come as a whole with every byte that comes, or, in later versions, not before
// twice as many are there: then whoever waits for an answer would wait in vain.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace aceconv {

constexpr std::size_t max_tag_bytes = std::size_t{1} << 16;

class XmlPieces {
  public:
    /// How many bytes `pending` has up to the end of its last piece that is there as a whole and
    /// behind which another may begin; those of earlier results are gone from it. Each byte is
    /// looked at once.
    std::size_t whole(std::string_view pending);
    /// Whether the piece behind those is a tag longer than max_tag_bytes.
    [[nodiscard]] bool long_tag() const { return long_tag_; }

  private:
    std::optional<std::size_t> piece_end(std::string_view text);
    std::optional<std::size_t> behind(std::string_view mark, std::size_t from,
                                      std::string_view text);
    std::optional<std::size_t> text_end(std::string_view text);
    std::optional<std::size_t> markup_end(std::string_view text);
    std::optional<std::size_t> tag_end(std::string_view text);

    std::size_t seen_ = 0; // of the piece that is not there as a whole
    char quote_ = 0;       // around what comes next in its tag
    bool long_tag_ = false;
};

} // namespace aceconv
