#include "host/schema/yang_text.h"

#include <cstdint>
#include <cstring>

namespace aceconv {

namespace {

constexpr const char *bad_utf8 = "the text is not valid UTF-8";
constexpr const char *bad_character = "the text holds a character that YANG does not allow";

/// The bytes of the character that starts with `lead`, 0 for none.
constexpr std::size_t width(unsigned char lead) {
    return lead < 0x80   ? 1
           : lead < 0xC2 ? 0
           : lead < 0xE0 ? 2
           : lead < 0xF0 ? 3
           : lead < 0xF5 ? 4
                         : 0;
}

/// The character of `bytes`, which holds its bytes and no more; a value beyond
/// Unicode when they are malformed.
char32_t decode(std::string_view bytes) {
    constexpr char32_t malformed = 0x110000;
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    char32_t character = static_cast<unsigned char>(bytes[0]) & (0xFFU >> (bytes.size() + 1));
    for (const char byte : bytes.substr(1)) {
        const auto value = static_cast<unsigned char>(byte);
        if ((value & 0xC0U) != 0x80U) {
            return malformed;
        }
        character = (character << 6U) | (value & 0x3FU);
    }
    return character < smallest[bytes.size()] ? malformed : character;
}

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

constexpr bool is_noncharacter(char32_t character) {
    return (character & 0xFFFEU) == 0xFFFEU || (character >= 0xFDD0 && character <= 0xFDEF);
}

} // namespace

const char *text_fault(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= 8 && is_plain(text.data() + at)) {
            at += 8;
            continue;
        }
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte < 0x80) {
            if (is_control(byte)) {
                return bad_character;
            }
            ++at;
            continue;
        }
        const std::size_t bytes = width(byte);
        if (bytes == 0 || bytes > text.size() - at) {
            return bad_utf8;
        }
        const char32_t character = decode(text.substr(at, bytes));
        if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
            return bad_utf8;
        }
        if (is_noncharacter(character)) {
            return bad_character;
        }
        at += bytes;
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
