#include "stream/digits.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

/// What a digit stands for; -1 for any other character.
int value_of(char c, Digits digits) {
    const auto among = [c](char first, char last) { return c >= first && c <= last; };
    if (digits == Digits::hexadecimal) {
        return among('0', '9')   ? c - '0'
               : among('a', 'f') ? c - 'a' + 10
               : among('A', 'F') ? c - 'A' + 10
                                 : -1;
    }
    return among('A', 'Z')   ? c - 'A'
           : among('a', 'z') ? c - 'a' + 26
           : among('0', '9') ? c - '0' + 52
           : c == '+'        ? 62
           : c == '/'        ? 63
                             : -1;
}

class Decoder {
  public:
    Decoder(Window text, Digits digits, std::shared_ptr<DigitLines> lines)
        : text_(std::move(text)), digits_(digits), lines_(std::move(lines)),
          bits_(digits == Digits::hexadecimal ? 4 : 6),
          group_(digits == Digits::hexadecimal ? 2 : 4) {}

    std::size_t read(char *buffer, std::size_t size) {
        std::size_t count = 0;
        while (count == 0 && !fault_) {
            if (text_.view().empty() && !text_.more()) {
                require_whole_group("the input ends");
                break;
            }
            const std::string_view view = text_.view();
            std::size_t at = 0;
            for (; at < view.size() && size - count >= most_of_group && !fault_; ++at) {
                count += take(view[at], buffer + count);
            }
            text_.take(at);
        }
        if (fault_ && count == 0) {
            throw StreamError("", *fault_, line_);
        }
        return count;
    }

  private:
    static constexpr std::size_t most_of_group = 3; // bytes

    /// Puts the bytes of a group that is complete at `out`; returns how many.
    std::size_t take(char c, char *out) {
        ++column_;
        if (is_json_blank(c)) {
            require_whole_group(c == '\n' ? "the line ends" : "a blank stands");
            if (c == '\n' && !fault_) {
                ++line_;
                column_ = 0;
            }
            return 0;
        }
        if (digits_ == Digits::hexadecimal && taken_ == 1 && value_ == 0 &&
            (c == 'x' || c == 'X')) {
            taken_ = 0;
            return 0;
        }
        const bool pads = digits_ == Digits::base64 && c == '=' && taken_ >= 2;
        const int digit = pads ? 0 : value_of(c, digits_);
        if (digit < 0 || (padding_ > 0 && !pads)) {
            fail("'" + printable({&c, 1}) + "' is no " + name() + " digit");
            return 0;
        }
        padding_ += pads ? 1 : 0;
        value_ = value_ << bits_ | static_cast<std::uint32_t>(digit);
        return ++taken_ < group_ ? 0 : end_group(out);
    }

    std::size_t end_group(char *out) {
        const std::size_t whole = group_ * bits_ / 8;
        const std::size_t count = whole - padding_;
        if ((value_ & ((1U << 8 * padding_) - 1)) != 0) {
            fail("the last digit before the padding stands for more than a byte has left");
            return 0;
        }
        if (std::exchange(noted_line_, line_) != line_) {
            lines_->note(bytes_, line_);
        }
        bytes_ += count;
        for (std::size_t i = 0; i < count; ++i) {
            out[i] = static_cast<char>(value_ >> 8 * (whole - 1 - i));
        }
        value_ = 0;
        taken_ = padding_ = 0;
        return count;
    }

    void require_whole_group(const char *what) {
        if (taken_ != 0) {
            fail(std::string(what) + " inside of " +
                 (digits_ == Digits::hexadecimal ? "a byte, which is two digits"
                                                 : "a group of four digits"));
        }
    }

    void fail(const std::string &what) {
        if (!fault_) {
            fault_ = "column " + std::to_string(column_) + ": " + what;
        }
    }

    [[nodiscard]] std::string name() const {
        return digits_ == Digits::hexadecimal ? "hexadecimal" : "base64";
    }

    Window text_;
    const Digits digits_;
    const std::shared_ptr<DigitLines> lines_;
    const unsigned bits_;     // of a digit
    const std::size_t group_; // digits of the fewest whole bytes
    std::uint32_t value_ = 0; // of the group that has begun
    std::size_t taken_ = 0;   // digits of it
    std::size_t padding_ = 0;
    std::uint64_t line_ = 1;
    std::uint64_t column_ = 0;     // of the character last taken
    std::uint64_t bytes_ = 0;      // so far
    std::uint64_t noted_line_ = 0; // the last one
    std::optional<std::string> fault_;
};

} // namespace

std::uint64_t DigitLines::line_of(std::uint64_t byte) {
    while (begins_.size() > 1 && begins_[1].first <= byte) {
        begins_.pop_front();
    }
    return begins_.empty() ? 1 : begins_.front().second;
}

Window bytes_of_digits(Window text, Digits digits, std::shared_ptr<DigitLines> lines) {
    const auto decoder = std::make_shared<Decoder>(std::move(text), digits, std::move(lines));
    return Window(
        [decoder](char *buffer, std::size_t size) { return decoder->read(buffer, size); });
}

bool begins_with_encoding(std::string_view text, Digits digits) {
    std::string_view line = text.substr(0, text.find('\n'));
    if (digits == Digits::hexadecimal && (line.starts_with("0x") || line.starts_with("0X"))) {
        line.remove_prefix(2);
    }
    // An array of two or three, as a byte and as six bits and some.
    const bool array = digits == Digits::hexadecimal
                           ? line.starts_with("82") || line.starts_with("83")
                           : line.size() > 1 && line[0] == 'g' && value_of(line[1], digits) >= 32;
    return array && std::all_of(line.begin(), line.end(), [digits](char c) {
               return is_json_blank(c) || value_of(c, digits) >= 0 ||
                      c == (digits == Digits::hexadecimal ? 'x' : '=');
           });
}

} // namespace aceconv
