#include "stream/text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/utf8.h"

namespace aceconv {
namespace {
constexpr std::size_t longest_shown = 200; // bytes of data in one message
constexpr std::array all_schemas = {Schema::base, Schema::um};

/// Control characters, line separators, and what turns the direction of writing: from the first
/// to the last, in UTF-8.
constexpr std::array<std::pair<std::string_view, std::string_view>, 7> driving_characters = {
    {{{"\0", 1}, "\x1F"},
     {"\x7F", "\x7F"},
     {"\xC2\x80", "\xC2\x9F"},
     {"\xD8\x9C", "\xD8\x9C"},
     {"\xE2\x80\x8E", "\xE2\x80\x8F"},
     {"\xE2\x80\xA8", "\xE2\x80\xAE"},
     {"\xE2\x81\xA6", "\xE2\x81\xA9"}}};
} // namespace

std::string escaped(std::string_view text) {
    const auto is_plain = [](char byte) { return byte >= ' ' && byte <= '~'; };
    const auto plain_until = [&](std::size_t from) {
        const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
        return static_cast<std::size_t>(std::find_if_not(begin, text.end(), is_plain) -
                                        text.begin());
    };
    std::size_t i = plain_until(0);
    std::string shown(text.substr(0, i)); // nearly always all of it
    const bool utf8 = i == text.size() || text_fault(text) == nullptr;
    while (i < text.size()) {
        if (const std::size_t end = plain_until(i); end > i) {
            shown += text.substr(i, end - i);
            i = end;
            continue;
        }
        std::size_t driving = !utf8 && static_cast<unsigned char>(text[i]) >= 0x80 ? 1 : 0;
        for (const auto &[first, last] : driving_characters) {
            const std::string_view character = text.substr(i, first.size());
            driving = character >= first && character <= last ? first.size() : driving;
        }
        if (driving == 0) {
            shown += text[i++];
        }
        for (; driving > 0; --driving, ++i) {
            constexpr std::string_view digits = "0123456789abcdef";
            const auto byte = static_cast<unsigned char>(text[i]);
            shown += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return shown;
}

std::string printable(std::string_view text) {
    if (text.size() <= longest_shown) {
        return escaped(text);
    }
    std::size_t end = longest_shown; // not inside a character
    while (end > longest_shown - 4 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return escaped(text.substr(0, end)) + "...";
}

std::string in_quotes(std::string_view text) {
    std::string marked;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\"\\", at + 1), text.size());
        marked += text[at] == '"' || text[at] == '\\' ? "\\" : "";
        marked += text.substr(at, end - at);
        at = end;
    }
    return '"' + escaped(marked) + '"';
}

std::uint64_t count_lines(std::string_view text) {
    std::uint64_t lines = 0;
    for (std::size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1)) {
        ++lines;
    }
    return lines;
}

std::string start_of(std::string_view text) {
    constexpr std::size_t shown = 20; // bytes
    const std::size_t end = text.find_first_of("\r\n");
    if (text.empty() || end == 0) {
        return text.empty() ? "the end" : "the end of the line";
    }
    if (end <= shown) {
        return "'" + printable(text.substr(0, end)) + "'";
    }
    std::size_t length = std::min(shown, text.size());
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
        ++length;
    }
    return "'" + printable(text.substr(0, length)) + (length < text.size() ? "...'" : "'");
}

std::string too_many_lists() {
    return "more than " + std::to_string(max_lists) + " access lists";
}

std::string list_name_fault(std::string_view name) {
    if (name.empty()) {
        return "the name of an access list is empty";
    }
    if (name.size() > max_list_name_bytes) {
        return "the name of an access list, '" + printable(name) + "': longer than " +
               std::to_string(max_list_name_bytes) + " bytes";
    }
    const char *fault = text_fault(name);
    return fault == nullptr ? ""
                            : "the name of an access list, '" + printable(name) + "': " + fault;
}

std::string_view schema_name(Schema schema) {
    return schema == Schema::base ? "base" : "um";
}

std::optional<Schema> schema_of_name(std::string_view name) {
    for (const Schema schema : all_schemas) {
        if (name == schema_name(schema)) {
            return schema;
        }
    }
    return std::nullopt;
}

std::optional<QualifiedName> split_name(std::string_view name) {
    const std::size_t colon = name.find(':');
    if (colon == name.npos) {
        return QualifiedName{name, {}};
    }
    for (const Schema schema : all_schemas) {
        if (name.substr(0, colon) == module_name(schema)) {
            return QualifiedName{name.substr(colon + 1), schema};
        }
    }
    return std::nullopt;
}

std::optional<Schema> schema_of_node(std::string_view name) {
    const auto split = split_name(name);
    if (!split) {
        return std::nullopt;
    }
    if (split->schema) {
        return split->schema;
    }
    if (split->local == "permit" || split->local == "deny") {
        return Schema::um;
    }
    if (split->local == "sequence-number" || split->local == "remark") {
        return std::nullopt;
    }
    return Schema::base;
}

std::optional<Schema> schema_of_namespace(std::string_view ns) {
    for (const Schema schema : all_schemas) {
        if (ns == module_namespace(schema)) {
            return schema;
        }
    }
    return std::nullopt;
}

} // namespace aceconv
