#include "stream/json_cursor.h"

#include <algorithm>

#include "host/json_scan.h"
#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {

int JsonCursor::peek() {
    for (;;) {
        const std::string_view view = window_.view();
        std::size_t blanks = 0;
        while (blanks < view.size() && is_json_blank(view[blanks])) {
            line_ += view[blanks] == '\n' ? 1U : 0U;
            ++blanks;
        }
        window_.take(blanks);
        if (blanks < view.size()) {
            return static_cast<unsigned char>(view[blanks]);
        }
        if (!window_.more()) {
            return -1;
        }
    }
}

bool JsonCursor::accept(char wanted) {
    if (peek() != static_cast<unsigned char>(wanted)) {
        return false;
    }
    window_.take(1);
    return true;
}

void JsonCursor::expect(char wanted, std::string_view what) {
    if (!accept(wanted)) {
        unexpected(what);
    }
}

void JsonCursor::unexpected(std::string_view what) {
    const int found = peek();
    throw StreamError("", "expected " + std::string(what) + ", found " +
                              (found < 0 ? "the end of the input"
                                         : "'" + printable({window_.view().data(), 1}) + "'"));
}

std::string JsonCursor::string(std::string_view what) {
    if (peek() != '"') {
        unexpected(what);
    }
    JsonScan scan;
    std::size_t end = scan.next(window_.view(), 0) + 1; // behind the quote
    while ((end = scan.next(window_.view(), end)) == window_.view().size() &&
           end <= max_list_name_json + 1 && window_.more()) {
    }
    if (end > max_list_name_json + 1) { // the names of members are shorter still
        throw StreamError("", "expected " + std::string(what) + ", found a string longer than " +
                                  std::to_string(max_list_name_bytes) + " bytes");
    }
    if (end == window_.view().size()) {
        throw StreamError("", "a string that does not end, for " + std::string(what));
    }
    const std::string_view token = window_.view().substr(0, end + 1);
    auto text = json_string(token);
    if (!text) {
        throw StreamError("", "not a JSON string: " + printable(token));
    }
    window_.take(token.size());
    return *std::move(text);
}

bool JsonCursor::object(std::string &text, std::size_t limit, std::string_view what) {
    if (!inside_) {
        if (peek() != '{') {
            unexpected(what);
        }
        inside_ = true;
        scan_ = {};
        fits_ = true;
        text_.clear();
        object_line_ = line_;
    }
    do {
        if (window_.view().empty() && !window_.more()) {
            throw StreamError("", "the input ends inside " + std::string(what));
        }
        const std::string_view view = window_.view();
        // The opening bracket is the first mark.
        const std::size_t begun = scan_.depth() > 0 ? 0 : scan_.next(view, 0) + 1;
        const std::size_t at = scan_.close(view, begun);
        fits_ = fits_ && text_.size() + at <= limit;
        if (fits_) {
            text_.append(view.substr(0, at));
        }
        line_ += count_lines(view.substr(0, at));
        window_.take(at);
    } while (scan_.depth() > 0);
    inside_ = false;
    text.swap(text_);
    return fits_;
}

void JsonCursor::skip(std::string_view what) {
    constexpr std::string_view behind_word = ",]} \t\r\n";
    constexpr std::string_view brackets_and_quote = "{[\"";
    if (!inside_) {
        const int first = peek();
        if (first < 0 || behind_word.find(static_cast<char>(first)) != behind_word.npos) {
            unexpected(what);
        }
        inside_ = true;
        scan_ = {};
        word_ = brackets_and_quote.find(static_cast<char>(first)) == brackets_and_quote.npos;
    }
    for (bool more = true; more;) {
        if (window_.view().empty() && !window_.more()) {
            throw StreamError("", "the input ends inside " + std::string(what));
        }
        const std::string_view view = window_.view();
        std::size_t end = 0;
        if (word_) {
            end = std::min(view.find_first_of(behind_word), view.size());
            more = end == view.size();
        } else {
            do { // the first mark is the value's first character
                end = std::min(scan_.next(view, end) + 1, view.size());
                more = scan_.depth() > 0 || scan_.in_string();
            } while (more && end < view.size());
        }
        line_ += count_lines(view.substr(0, end));
        window_.take(end);
    }
    inside_ = false;
}

} // namespace aceconv
