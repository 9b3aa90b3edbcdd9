#include "stream/xml_pieces.h"

#include <algorithm>

#include "host/json_scan.h"

namespace aceconv {
namespace {

/// What is not a tag, by how it begins and ends.
struct Markup {
    std::string_view begin, end;
};

constexpr Markup markups[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

} // namespace

std::size_t XmlPieces::whole(std::string_view pending) {
    std::size_t whole = 0;
    while (whole < pending.size() && !long_tag_) {
        const auto end = piece_end(pending.substr(whole));
        if (!end) {
            break;
        }
        whole += *end;
        seen_ = 0;
    }
    return whole;
}

std::optional<std::size_t> XmlPieces::piece_end(std::string_view text) {
    return text.front() == '<' ? markup_end(text) : text_end(text);
}

/// Behind `mark`, which does not begin before `from`.
std::optional<std::size_t> XmlPieces::behind(std::string_view mark, std::size_t from,
                                             std::string_view text) {
    const std::size_t at = text.find(mark, std::max(seen_, from));
    if (at != text.npos) {
        return at + mark.size();
    }
    seen_ = std::max(from, text.size() + 1 - mark.size()); // it may have begun
    return std::nullopt;
}

/// Text is taken as far as it is there, but for blanks, which may stand outside of all elements.
std::optional<std::size_t> XmlPieces::text_end(std::string_view text) {
    const bool reference = text.front() == '&';
    const std::size_t end = text.find_first_of(reference ? ";<&" : "<&",
                                               std::max(seen_, reference ? std::size_t{1} : 0));
    if (end != text.npos) {
        return end + (text[end] == ';' && reference ? 1 : 0);
    }
    if (!reference && text.find_first_not_of(json_blanks, seen_) != text.npos) {
        return text.size();
    }
    seen_ = text.size();
    return std::nullopt;
}

std::optional<std::size_t> XmlPieces::markup_end(std::string_view text) {
    for (const auto &[begin, end] : markups) {
        if (text.starts_with(begin)) {
            return behind(end, begin.size(), text);
        }
        if (begin.starts_with(text)) { // which of them nobody knows yet
            return std::nullopt;
        }
    }
    return tag_end(text);
}

std::optional<std::size_t> XmlPieces::tag_end(std::string_view text) {
    std::size_t at = std::max(seen_, std::size_t{1});
    for (; at < text.size() && (text[at] != '>' || quote_ != 0); ++at) {
        if (text[at] == '"' || text[at] == '\'') {
            quote_ = quote_ == 0 ? text[at] : quote_ == text[at] ? '\0' : quote_;
        }
    }
    seen_ = at;
    long_tag_ = at > max_tag_bytes;
    return at < text.size() && !long_tag_ ? std::optional(at + 1) : std::nullopt;
}

} // namespace aceconv
