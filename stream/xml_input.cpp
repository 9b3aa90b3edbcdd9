#include "stream/xml_input.h"

#include <utility>

#include "host/entry.h"
#include "stream/errors.h"

namespace aceconv {

std::string longer_than(std::size_t bytes) {
    return "longer than " + std::to_string(bytes) + " bytes";
}

bool XmlInput::advance() {
    while (!ended_) {
        try {
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
    restart(line());
    paused_ = false;
    again_ = true;
    begin_document();
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
    std::string_view pending = std::string_view(bytes_).substr(fed_ - first_);
    const std::size_t whole = pieces_.whole(pending);
    if (whole == 0 && pieces_.long_tag()) {
        throw DataError("", "a tag " + longer_than(max_tag_bytes), line());
    }
    const bool all = last_ && !pieces_.long_tag();
    pending = pending.substr(0, all ? pending.size() : whole);
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
