// Labels of encodings: converters carry neither list names nor sequence
// numbers, so in a sequence of encodings (RFC 8742) an array of two, the list's
// name or null and the sequence number or null, may stand before each of them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "host/entry.h"

namespace aceconv {

/// Appends the label of `key`; nothing when there is nothing to say.
void append_label(std::string &out, const EntryKey &key);

/// Whether the item can only be a label: encodings are no arrays of two.
[[nodiscard]] bool is_label(std::span<const std::uint8_t> item);

/// The key that a complete label holds. Throws DataError when it is not one, or
/// not in the form that append_label writes.
EntryKey parse_label(std::span<const std::uint8_t> item);

} // namespace aceconv
