// The signed flag texts of the UM schema, against what they mean word by word.
#include <optional>

#include "aceconv/plugin.h"
#include "fuzz/pieces.h"
#include "fuzz/promises.h"

namespace aceconv::fuzz {
namespace {

struct Flags {
    unsigned set, examined;
};

/// The flags that the words name, each once; nothing for a word that is no name.
std::optional<unsigned> named(std::string_view words) {
    constexpr std::string_view names[] = {"fin", "syn", "rst", "psh", "ack", "urg"};
    unsigned flags = 0;
    for (std::size_t at = 0; at < words.size();) {
        const std::size_t end = std::min(words.find(' ', at), words.size());
        const std::string_view word = words.substr(at, end - at);
        at = end + 1;
        unsigned flag = 0;
        for (unsigned i = 0; i < std::size(names); ++i) {
            flag |= word == names[i] ? 1U << i : 0U;
        }
        if (!word.empty() && (flag == 0 || (flags & flag) != 0)) {
            return std::nullopt;
        }
        flags |= flag;
    }
    return flags;
}

/// What a minus takes away goes up to the next plus; signs themselves say nothing else.
std::optional<Flags> meaning(std::string_view text) {
    std::string words, left;
    bool taken_away = false;
    for (const char c : text) {
        taken_away = c == '-' || (taken_away && c != '+');
        if (c != '+' && c != '-') {
            words += c;
            left += taken_away ? std::string() : std::string(1, c);
        }
    }
    const auto examined = named(words);
    const auto set = named(left);
    if (!examined || !set) {
        return std::nullopt;
    }
    return Flags{*set, *examined};
}

} // namespace

void check_flags(Input bytes) {
    std::string text(Pieces(bytes).rest());
    text.resize(text.find('\0') == text.npos ? text.size() : text.find('\0'));
    std::string plain = text;
    removeChar(plain.data(), '+');
    require(std::string_view(plain.c_str()).find('+') == std::string_view::npos,
            "the character is gone", plain);

    std::string json = R"({"permit":{"tcp-flags":{"match-any":{"tcp-bits":")";
    for (const char c : text) {
        json += c == '"' || c == '\\' ? "\\" : "";
        json += c;
    }
    Entry entry{.schema = Schema::um, .format = Format::json, .text = json + "\"}}}}"};
    check_text(entry);
    const auto expected = meaning(text);
    try {
        const DecodedRecord record(codec(Backend::bulk).descriptor(),
                                   codec(Backend::bulk).encode(entry));
        require(expected && record.get().tcpflags == expected->set &&
                    record.get().tcpflags_mask == expected->examined &&
                    record.get().tcpflagsopr == 3,
                "flags are those that the words name", text);
    } catch (const DataError &) {
        for (const char c : text) { // a text of other characters is refused as such
            if (c < ' ' || c > '~') {
                return;
            }
        }
        require(!expected, "words that name flags are taken", text);
    }
}

} // namespace aceconv::fuzz
