// The one reader of JSON's outline: where strings, objects and arrays begin and
// end. What stands between them, and whether it is valid, is the entry reader's
// matter.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/byte_block.h"

namespace aceconv {

constexpr std::string_view json_blanks = " \t\n\r";

/// Finds the marks of a text that may come in pieces: brackets outside strings,
/// and the quotes around strings.
class JsonScan {
  public:
    /// The place of the next mark at or behind `at`, which counts from then on, or
    /// the size of `text`; the scan goes on in what follows the text then.
    std::size_t next(std::string_view text, std::size_t at) {
        if (escaped_ && at < text.size()) {
            escaped_ = false;
            ++at;
        }
        for (;;) {
            const std::uint8_t state = in_string_ ? inside : outside;
            while (at < text.size() && (marks[static_cast<unsigned char>(text[at])] & state) == 0) {
                ++at;
            }
            if (at >= text.size()) {
                return text.size();
            }
            if (text[at] != '\\') {
                note(text[at]);
                return at;
            }
            escapes_ = true;
            escaped_ = at + 1 == text.size();
            at += 2;
        }
    }

    /// The place behind the bracket that closes the outermost open one, or the size of `text`.
    std::size_t close(std::string_view text, std::size_t at) {
        while (text.size() - at >= ByteBlock::size && depth_ > 0 && !escaped_) {
            const ByteBlock block(text.data() + at);
            if (block.where('\\') != 0) {
                at = close_by_marks(text.substr(0, at + ByteBlock::size), at);
            } else {
                at += close_in(block);
            }
        }
        return depth_ > 0 ? close_by_marks(text, at) : at;
    }

    /// How many brackets are open; closing ones without an open one do not count.
    [[nodiscard]] std::size_t depth() const { return depth_; }
    [[nodiscard]] bool in_string() const { return in_string_; }
    /// Whether the string last begun holds escapes.
    [[nodiscard]] bool escapes() const { return escapes_; }

  private:
    static constexpr std::uint8_t outside = 1; // a mark outside strings
    static constexpr std::uint8_t inside = 2;  // one inside them, or an escape
    static constexpr auto marks = [] {
        std::array<std::uint8_t, 256> table{};
        for (const char bracket : {'{', '}', '[', ']'}) {
            table[static_cast<unsigned char>(bracket)] = outside;
        }
        table['"'] = outside | inside;
        table['\\'] = inside;
        return table;
    }();

    std::size_t close_by_marks(std::string_view text, std::size_t at) {
        while (at < text.size() && depth_ > 0) {
            at = std::min(next(text, at) + 1, text.size());
        }
        return at;
    }

    /// The same of a block without escapes, which it counts as read if it does not end in it.
    std::size_t close_in(const ByteBlock &block) {
        const std::uint64_t strings =
            ByteBlock::between(block.where('"')) ^ (in_string_ ? ~std::uint64_t{0} : 0);
        const std::uint64_t opening = block.where_either('[', '{') & ~strings;
        const std::uint64_t closing = block.where_either(']', '}') & ~strings;
        for (std::uint64_t rest = opening | closing; rest != 0; rest &= rest - 1) {
            depth_ += (opening & rest & -rest) != 0 ? std::size_t{1} : ~std::size_t{0};
            if (depth_ == 0) {
                in_string_ = false;
                return static_cast<std::size_t>(std::countr_zero(rest)) + 1;
            }
        }
        in_string_ = strings >> (ByteBlock::size - 1) != 0;
        return ByteBlock::size;
    }

    void note(char mark) {
        if (mark == '"') {
            in_string_ = !in_string_;
            escapes_ = escapes_ && !in_string_;
        } else if (mark == '{' || mark == '[') {
            ++depth_;
        } else if (depth_ > 0) {
            --depth_;
        }
    }

    std::size_t depth_ = 0;
    bool in_string_ = false;
    bool escaped_ = false; // the next character is
    bool escapes_ = false;
};

/// Steps through the brackets and strings of a text that is there as a whole.
class JsonWalk {
  public:
    enum class Step : std::uint8_t { open, close, name, string, end };

    explicit JsonWalk(std::string_view text) : text_(text) {}

    /// A name is a string with a colon behind it. The end is also where a string
    /// begins that does not end.
    Step next();

    /// The bracket, or the string with its quotes.
    [[nodiscard]] std::string_view token() const { return token_; }
    /// The string without them, as it is written.
    [[nodiscard]] std::string_view content() const { return token_.substr(1, token_.size() - 2); }
    [[nodiscard]] bool escapes() const { return scan_.escapes(); }
    [[nodiscard]] bool in_string() const { return scan_.in_string(); }
    [[nodiscard]] std::size_t depth() const { return scan_.depth(); }
    /// Where what follows the token begins, or the value of the name.
    [[nodiscard]] std::size_t at() const { return at_; }

  private:
    const std::string_view text_;
    JsonScan scan_;
    std::size_t at_ = 0;
    std::string_view token_;
};

inline JsonWalk::Step JsonWalk::next() {
    const std::size_t begin = scan_.next(text_, at_);
    at_ = begin;
    if (begin == text_.size()) {
        return Step::end;
    }
    std::size_t last = begin;
    if (text_[begin] == '"') {
        last = scan_.next(text_, begin + 1);
        if (last == text_.size()) {
            at_ = last;
            return Step::end;
        }
    }
    at_ = last + 1;
    token_ = text_.substr(begin, at_ - begin);
    if (token_.front() != '"') {
        return token_.front() == '{' || token_.front() == '[' ? Step::open : Step::close;
    }
    const std::size_t behind = text_.find_first_not_of(json_blanks, at_);
    if (behind == std::string_view::npos || text_[behind] != ':') {
        return Step::string;
    }
    at_ = behind + 1;
    return Step::name;
}

/// What a string stands for, given with its quotes; nothing when it is not valid.
std::optional<std::string> json_string(std::string_view quoted);

/// UTF-8 as a JSON string with its quotes.
std::string json_quoted(std::string_view text);

/// The place of the first byte that keeps `text` from being a JSON value; none when
/// it is one.
std::optional<std::size_t> json_fault(std::string_view text);

} // namespace aceconv
