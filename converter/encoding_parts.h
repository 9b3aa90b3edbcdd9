// An encoding for people: its bytes, piece by piece, beside what they say.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "compare/record_view.h"

namespace aceconv {

struct EncodingPart {
    std::size_t offset; // bytes
    unsigned depth;     // of arrays and maps around it
    // Hexadecimal: the member's index; the first byte of the item, or of the member's value; what
    // else belongs to its head; the content of a string. Each may be "", but for the second.
    std::string index, first, head, content;
    std::optional<std::uint64_t> member_index;
    std::string member; // its name; "" of what is no member
    std::string text;   // its value, or what the part is
};

/// `fields` are what the encoding's record holds.
std::vector<EncodingPart> encoding_parts(const bag_descriptor &descriptor, Encoding encoding,
                                         const std::vector<FieldValue> &fields);

} // namespace aceconv
