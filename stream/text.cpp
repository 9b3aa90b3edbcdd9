#include "stream/text.h"

#include <algorithm>
#include <array>

#include "host/utf8.h"

namespace aceconv {
namespace {
constexpr std::size_t longest_shown = 200; // bytes of data in one message
constexpr std::array all_schemas = {Schema::base, Schema::um};
} // namespace

std::string escaped(std::string_view text) {
    const bool utf8 = text_fault(text) == nullptr;
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        // The control characters U+0080 to U+009F are C2 80 to C2 9F.
        const auto lead = static_cast<unsigned char>(i > 0 ? text[i - 1] : 0);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        const bool control = byte < 0x20 || byte == 0x7F || (byte >= 0x80 && !utf8) ||
                             (byte == 0xC2 && next < 0xA0) ||
                             (lead == 0xC2 && byte >= 0x80 && byte < 0xA0);
        if (!control) {
            shown += static_cast<char>(byte);
            continue;
        }
        constexpr std::string_view digits = "0123456789abcdef";
        shown += "\\x";
        shown += digits[byte >> 4];
        shown += digits[byte & 15];
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
