// A difference between two states of an entry, as it is shown to people.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "stream/source.h"

namespace aceconv {

/// A value for programs.
struct TypedValue {
    enum class Type : std::uint8_t {
        absent,
        present, // without a value of its own
        number,
        keyword, // `text` names the number
        boolean,
        address, // its first byte is the number's highest
        text,
        user_fields,
    };
    Type type = Type::absent;
    std::uint64_t number = 0;
    std::string text = {}; // of keyword, address and text
};

struct Change {
    std::string field;                 // of the record; empty for what no record carries
    std::string leaf;                  // path below the entry; empty where the schema has none
    std::optional<std::string> before; // the value as text; none where it was absent
    std::optional<std::string> after;
    TypedValue before_value = {}; // the same two, typed
    TypedValue after_value = {};
    std::string reason;  // empty only between two entries that are what they should be
    bool widens = false; // the entry matches more than before
};

/// "dport1 (destination-port/first-destination-port): 80 (www) -> 443"
std::string change_text(const Change &change);

} // namespace aceconv
