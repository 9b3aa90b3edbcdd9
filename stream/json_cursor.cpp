#include "stream/json_cursor.h"

#include <array>
#include <nlohmann/json.hpp>

#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::size_t max_name_bytes = 4096; // bytes of a member's name or a list's

/// What a character can mean for an object's extent.
enum class Mark : std::uint8_t { none, line, quote, escape, open, close };

constexpr std::array<Mark, 256> marks() {
    std::array<Mark, 256> table{};
    table['\n'] = Mark::line;
    table['"'] = Mark::quote;
    table['\\'] = Mark::escape;
    table['{'] = table['['] = Mark::open;
    table['}'] = table[']'] = Mark::close;
    return table;
}
constexpr std::array<Mark, 256> mark_of = marks();

} // namespace

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
    std::size_t end = 1;
    bool plain = true; // ASCII without escapes: stands for itself
    for (bool escaped = false;; ++end) {
        window_.want(end + 1);
        const std::string_view view = window_.view();
        if (end >= view.size() || end > max_name_bytes) {
            throw StreamError("", "a string that does not end, for " + std::string(what));
        }
        const char c = view[end];
        if (!escaped && c == '"') {
            break;
        }
        escaped = !escaped && c == '\\';
        plain = plain && c >= 0x20 && c < 0x7F && !escaped;
    }
    const std::string_view token = window_.view().substr(0, end + 1);
    std::string text(token.substr(1, end - 1));
    if (!plain) {
        const auto value = nlohmann::json::parse(token.begin(), token.end(), nullptr, false);
        if (!value.is_string()) {
            throw StreamError("", "not a JSON string: " + printable(token));
        }
        text = value.get<std::string>();
    }
    window_.take(end + 1);
    return text;
}

bool JsonCursor::object(std::string &text, std::size_t limit, std::string_view what) {
    if (peek() != '{') {
        unexpected(what);
    }
    const std::size_t before = text.size();
    bool fits = true;
    std::size_t depth = 0;
    bool in_string = false;
    bool escaped = false;
    for (;;) {
        const std::string_view view = window_.view();
        std::size_t at = 0;
        bool closed = false;
        while (at < view.size() && !closed) {
            const char c = view[at++];
            if (escaped) {
                escaped = false;
                line_ += c == '\n' ? 1U : 0U;
                continue;
            }
            switch (mark_of[static_cast<unsigned char>(c)]) {
            case Mark::none:
                break;
            case Mark::line:
                ++line_;
                break;
            case Mark::quote:
                in_string = !in_string;
                break;
            case Mark::escape:
                escaped = in_string;
                break;
            case Mark::open:
                depth += in_string ? 0U : 1U;
                break;
            case Mark::close:
                closed = !in_string && --depth == 0;
                break;
            }
        }
        fits = fits && text.size() - before + at <= limit;
        if (fits) {
            text.append(view.substr(0, at));
        }
        window_.take(at);
        if (closed) {
            return fits;
        }
        if (!window_.more()) {
            throw StreamError("", "the input ends inside " + std::string(what));
        }
    }
}

} // namespace aceconv
