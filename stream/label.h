// Labels of encodings: converters carry neither list names nor sequence numbers,
// and a record does not say which schema wrote it. So in a sequence of encodings
// (RFC 8742) a label may stand before each of them, an array of the list's name or
// null, the sequence number or null, and the schema's name, "base" or "um". Labels
// without the schema are read too.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "host/entry.h"

namespace aceconv {

struct Label {
    EntryKey key;
    std::optional<Schema> schema;
};

/// Appends the label of an encoding.
void append_label(std::string &out, const EntryKey &key, std::optional<Schema> schema);

/// Whether the complete item can only be a label: encodings are arrays of three
/// that end in a map.
[[nodiscard]] bool is_label(std::span<const std::uint8_t> item);

/// What a complete label says. Throws DataError when it is not one, or not in the
/// form that append_label writes.
Label parse_label(std::span<const std::uint8_t> item);

} // namespace aceconv
