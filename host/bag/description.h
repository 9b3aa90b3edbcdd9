// The text of a descriptor's descriptions, taken apart.
//
//   description = definition { definition }
//   definition  = "$" number "=" member { member } ";"
//   member      = "{" name "}" type          in the long form
//               | type                       in the short form
//   type        = "H" | "C" | "I" | "D" | "N" | "b" | "s"
//               | number "x" | "a($" number ")"
//               | "[" name "]" "e"           in the short form "e" alone
//               | "$" number                 in the short form a "." may follow
//
// The first definition is the record, the others are its sub-records.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace aceconv {

struct DescribedMember {
    std::string_view name;     // empty in the short form
    std::string_view spelling; // the type as it stands, for instance "17x"
    char code;                 // the letter; 'x', 'a' and '$' for the types with a number
    std::uint32_t number;      // of those three, else 0
};

struct DescribedType {
    std::uint32_t number;
    std::vector<DescribedMember> members;
};

enum class DescriptionForm { long_form, short_form };

/// The definitions in order; names and spellings point into `text`. Throws
/// DataError naming the form, the place and what was expected.
std::vector<DescribedType> parse_description(std::string_view text, DescriptionForm form);

} // namespace aceconv
