#include "host/utf8.h"

#include <cstdint>
#include <cstring>

#define SIMDJSON_EXCEPTIONS 0
#include <simdjson.h>

namespace aceconv {

namespace {

constexpr const char *bad_utf8 = "the text is not valid UTF-8";
constexpr const char *bad_character = "the text holds a character that YANG does not allow";

constexpr bool is_control(unsigned char byte) {
    return byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

/// Whether eight bytes are all ASCII and no control characters, not even the
/// allowed ones.
bool is_plain(const char *bytes) {
    constexpr std::uint64_t ones = 0x0101010101010101;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return ((word | (word - ones * 0x20)) & (ones * 0x80)) == 0;
}

/// Whether valid UTF-8 starts with U+FDD0 to U+FDEF or with one of the last two
/// characters of a plane, U+xFFFE and U+xFFFF.
bool is_noncharacter(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (byte(0) < 0xEF) {
        return false;
    }
    const std::size_t low = byte(0) == 0xEF ? 0 : 1; // of the byte with bits 12 to 15
    if (low == 0 && byte(1) == 0xB7) {
        return byte(2) >= 0x90 && byte(2) <= 0xAF;
    }
    return (byte(low) & 0x0FU) == 0x0F && byte(low + 1) == 0xBF && byte(low + 2) >= 0xBE;
}

} // namespace

bool is_utf8(std::string_view text) noexcept {
    return simdjson::validate_utf8(text);
}

const char *text_fault(std::string_view text) {
    bool valid = false; // from the first character beyond ASCII on
    std::size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= 8 && is_plain(text.data() + at)) {
            at += 8;
            continue;
        }
        const std::string_view rest = text.substr(at++);
        const auto byte = static_cast<unsigned char>(rest[0]);
        if (byte >= 0x80 && !valid && !(valid = is_utf8(rest))) {
            return bad_utf8;
        }
        if (is_control(byte) || is_noncharacter(rest)) {
            return bad_character;
        }
    }
    return nullptr;
}

void append_utf8(std::string &text, char32_t character) {
    const auto tail = [&](unsigned shift) {
        text += static_cast<char>(0x80U | ((character >> shift) & 0x3FU));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0U | (character >> 6U));
        tail(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0U | (character >> 12U));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0U | (character >> 18U));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace aceconv
