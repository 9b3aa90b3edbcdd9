#include "stream/xml_input.h"

#include <algorithm>
#include <utility>

#include "host/entry.h"
#include "host/json_scan.h"
#include "stream/errors.h"

namespace aceconv {
namespace {

// They tell the parser the encoding, by themselves: what it gets with them it would look at for
// signs of another one, token by token.
constexpr std::size_t first_bytes = 2;

/// And has no null.
bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) - 1U < 0x7F; });
}

} // namespace

std::string longer_than(std::size_t bytes) {
    return "longer than " + std::to_string(bytes) + " bytes";
}

bool XmlInput::advance() {
    while (!ended_) {
        try {
            if (between_ && !step_to_document()) {
                ended_ = true;
                break;
            }
            paused_ = !(paused_ ? resume() : feed());
            if (paused_) {
                return true;
            }
            ended_ = last_ && fed_ == first_ + bytes_.size();
        } catch (const DataError &) {
            ended_ = !something_follows();
            if (ended_) {
                throw;
            }
            start_anew();
        }
    }
    return false;
}

void XmlInput::start_anew() {
    bytes_.erase(0, piece_begin() - first_);
    first_ = fed_ = 0;
    pieces_ = {};
    next_line_ = line();
    paused_ = marked_ = false;
    between_ = true;
    begin_document();
}

/// Behind the mark of the end of a message and blanks, if there is such a mark; false at the end
/// of the input. Nothing is lost where the input pauses.
bool XmlInput::step_to_document() {
    constexpr std::string_view mark = "]]>]]>";
    const auto more = [this] {
        window_.want(1);
        last_ = window_.view().empty();
        bytes_ += window_.view();
        window_.take(window_.view().size());
        return !last_;
    };
    while (!marked_ && bytes_.size() < mark.size() && mark.starts_with(bytes_) && more()) {
    }
    if (!marked_ && bytes_.starts_with(mark)) {
        marked_ = true;
        bytes_.erase(0, mark.size());
    }
    while (marked_) {
        const std::size_t blanks = std::min(bytes_.find_first_not_of(json_blanks), bytes_.size());
        next_line_ += static_cast<std::uint64_t>(
            std::count(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(blanks), '\n'));
        bytes_.erase(0, blanks);
        if (!bytes_.empty()) {
            break;
        }
        if (!more()) {
            return false;
        }
    }
    restart(next_line_);
    again_ = true;
    between_ = false;
    return true;
}

void XmlInput::read_more() {
    const std::uint64_t read = first_ + bytes_.size();
    const auto wanted = needed();
    if (read - piece_begin() > max_entry_bytes) {
        throw DataError(
            "", (wanted ? "an entry " : "a comment or blanks ") + longer_than(max_entry_bytes),
            line());
    }
    const std::uint64_t kept =
        wanted && read - *wanted <= max_entry_bytes ? *wanted : piece_begin();
    bytes_.erase(0, kept - first_);
    first_ = kept;
    window_.want(1);
    const std::string_view view = window_.view();
    last_ = view.empty();
    bytes_ += view;
    window_.take(view.size()); // which leaves it where it is
}

/// Gives the parser whole pieces alone, but for what the input ends with.
bool XmlInput::feed() {
    if (!std::exchange(again_, false)) {
        read_more();
    }
    while (fed_ == 0 && bytes_.size() < first_bytes && !last_) {
        read_more();
    }
    std::string_view pending = std::string_view(bytes_).substr(fed_ - first_);
    if (fed_ == 0 && !is_ascii(pending.substr(0, first_bytes))) {
        throw DataError("", "not well-formed XML: unexpected character", line());
    }
    const std::size_t whole = pieces_.whole(pending);
    if (whole == 0 && pieces_.long_tag()) {
        throw DataError("", "a tag " + longer_than(max_tag_bytes), line());
    }
    const bool all = last_ && !pieces_.long_tag();
    pending = pending.substr(0, all ? pending.size() : whole);
    if (fed_ == 0 && pending.size() > first_bytes) {
        parse(pending.substr(0, first_bytes), false);
        pending.remove_prefix(first_bytes);
        fed_ = first_bytes;
    }
    fed_ += pending.size();
    return parse(pending, all);
}

std::optional<std::string_view> XmlInput::bytes(std::uint64_t begin, std::uint64_t end) const {
    if (begin < first_) {
        return std::nullopt;
    }
    return std::string_view(bytes_).substr(begin - first_, end - begin);
}

} // namespace aceconv
