// Which words of a line are others than those of an earlier line.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace aceconv::tool {

/// A part of a line, of words that are all in both lines or all in one alone.
struct LinePart {
    std::string_view text; // without the blanks around it
    bool changed;

    bool operator==(const LinePart &) const = default;
};

/// The parts of both lines, in order. Words stand between blanks; what stands in double quotes
/// is a part of one.
std::pair<std::vector<LinePart>, std::vector<LinePart>> word_changes(std::string_view before,
                                                                     std::string_view after);

} // namespace aceconv::tool
