// Every character, in the forms that the host reads and writes.
#include <gtest/gtest.h>

#include "host/json_scan.h"
#include "host/utf8.h"
#include "host/xml_parser.h"

namespace aceconv {
namespace {

/// As RFC 3629 has it, also of surrogates.
std::string utf8(std::uint32_t c) {
    const auto byte = [](std::uint32_t bits) { return static_cast<char>(bits); };
    if (c < 0x80) {
        return {byte(c)};
    }
    const char last = byte(0x80 | c % 64);
    if (c < 0x800) {
        return {byte(0xC0 | c / 64), last};
    }
    const char third = byte(0x80 | c / 64 % 64);
    if (c < 0x10000) {
        return {byte(0xE0 | c / 4096), third, last};
    }
    return {byte(0xF0 | c / 262144), byte(0x80 | c / 4096 % 64), third, last};
}

std::string escape(std::uint32_t unit) {
    char text[8];
    (void)std::snprintf(text, sizeof text, unit % 2 == 0 ? "\\u%04x" : "\\u%04X", unit);
    return text;
}

TEST(Text, EveryCharacter) {
    for (std::uint32_t c = 0; c <= 0x110000; ++c) {
        if (c > 0x11000 && c % 31 != 0 && (c & 0xFFF8) != 0xFFF8) {
            continue; // what the first planes have shown already
        }
        const bool surrogate = c >= 0xD800 && c <= 0xDFFF;
        const bool is_character = !surrogate && c <= 0x10FFFF;
        // RFC 7950, section 14: yang-char
        const bool allowed = is_character && (c >= 0x20 || c == 9 || c == 10 || c == 13) &&
                             (c < 0xFDD0 || c > 0xFDEF) && (c & 0xFFFE) != 0xFFFE;
        const std::string text = utf8(c);
        // At every place among the eight bytes that are looked at in one go.
        const std::string within = std::string(c % 8, 'A') + text + std::string(c / 8 % 16, ' ');
        const char *fault = text_fault(within);
        ASSERT_EQ(is_utf8(within), is_character) << c;
        ASSERT_STREQ(fault, allowed        ? nullptr
                            : is_character ? "the text holds a character that YANG does not allow"
                                           : "the text is not valid UTF-8")
            << c;
        std::string appended;
        append_utf8(appended, c);
        ASSERT_EQ(appended, text);
        if (c > 0x10FFFF || (c > 0xFF && c % 0x3FF > 1)) { // the rest is slow
            continue;
        }
        const std::uint32_t above = c - 0x10000;
        const std::string escaped =
            c < 0x10000 ? escape(c) : escape(0xD800 + above / 1024) + escape(0xDC00 + above % 1024);
        ASSERT_EQ(json_string('"' + escaped + '"'),
                  is_character ? std::optional(text) : std::nullopt)
            << c;
        if (is_character) {
            ASSERT_EQ(json_string(json_quoted(within)), within) << c;
        }
    }
}

TEST(Text, XmlReferences) {
    EXPECT_EQ(xml_escaped("a&<>\"'\t\n\rb\xC3\xA9"),
              "a&amp;&lt;&gt;&quot;'&#9;&#10;&#13;b\xC3\xA9");
    EXPECT_EQ(xml_escaped(""), "");
}

TEST(Text, JsonFaults) {
    const struct {
        const char *text;
        std::optional<std::size_t> fault;
    } rows[] = {
        {"{}", std::nullopt},
        {R"({"a":[1,true,null,"x"]})", std::nullopt},
        {R"({"a":tru})", 8},
        {R"({"a" 1})", 5},
        {R"({"a":1} x)", 8},
        {R"("\x")", 2},
        {R"(["\ud83d\ude00"])", std::nullopt},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(json_fault(row.text), row.fault) << row.text;
    }
}

} // namespace
} // namespace aceconv
