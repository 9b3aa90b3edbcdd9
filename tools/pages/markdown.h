// Texts in Markdown as sections of a manual page, in man(7).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace aceconv::pages {

struct Section {
    std::string title; // as in the text
    std::string body;
};

/// The sections of a text: its headings of the second level. What stands before the first of
/// them is a section without a title; the heading of the first level is left out. Tables have
/// two columns. Throws std::runtime_error for what has no place in a page.
std::vector<Section> sections_of(const std::string &markdown);

/// `text` with the characters that mean something in man(7) as they are; `literal` keeps
/// those apart that only look like one another.
std::string escaped(std::string_view text, bool literal = false);

} // namespace aceconv::pages
