// Small pieces of text handling that several files share.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/entry.h"

namespace aceconv {

constexpr bool is_json_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// `text` with what is no UTF-8, control characters and those that turn the direction of
/// writing as \xNN, so that data cannot drive a terminal.
std::string escaped(std::string_view text);

/// The same, cut when it is long: data inside a message.
std::string printable(std::string_view text);

/// `text` in double quotes and as `escaped` has it, with a backslash before quotes and
/// backslashes of its own: no two texts look alike.
std::string in_quotes(std::string_view text);

/// What stands at the start of a text, for messages: a few of its first characters in
/// quotes, or that it ends.
std::string start_of(std::string_view text);

/// How many line feeds `text` holds.
std::uint64_t count_lines(std::string_view text);

/// The longest name of an access list, in bytes of UTF-8, in every format; so what is
/// written in one can be read from any other.
constexpr std::size_t max_list_name_bytes = 4096;
/// The most bytes that it takes in JSON, where a byte may be written as an escape.
constexpr std::size_t max_list_name_json = 6 * max_list_name_bytes;

/// The most lists in one document, and in a run that reads its inputs as one.
constexpr std::size_t max_lists = 1'000'000;
std::string too_many_lists();

/// Why `name` cannot be the name of an access list; "" when it can.
std::string list_name_fault(std::string_view name);

/// "base" or "um", and back; nothing for any other text.
std::string_view schema_name(Schema schema);
std::optional<Schema> schema_of_name(std::string_view name);

/// `name` without the prefix "module:", and the schema when it had one that is
/// known; nothing when the prefix is unknown.
struct QualifiedName {
    std::string_view local;
    std::optional<Schema> schema;
};
std::optional<QualifiedName> split_name(std::string_view name);

/// The schema that an entry with this top-level node must belong to, when only
/// one of them has it.
std::optional<Schema> schema_of_node(std::string_view name);

/// "the <base|um> schema" of this module or namespace, or nothing.
std::optional<Schema> schema_of_namespace(std::string_view ns);

} // namespace aceconv
