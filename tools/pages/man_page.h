// Manual pages: what the tables say, joined with sections written by hand.
#pragma once

#include <string>
#include <vector>

#include "tools/pages/command.h"
#include "tools/pages/markdown.h"

namespace aceconv::pages {

/// What stands in the first and the last line of every page.
struct Edition {
    std::string version;
    std::string date;
};

struct Page {
    std::string name; // "aceconv-encode"
    int chapter = 1;
    std::string help;              // a sentence without its full stop
    std::vector<Section> sections; // in any order; those of one title become one
};

/// Adds synopsis and options of a command or verb; `called` is how it is called.
void add_usage(Page &page, const std::string &called, const VerbEntry &verb);
/// Adds the list of the verbs, and how they are called together.
void add_verbs(Page &page, const CommandEntry &command);
void add_see_also(Page &page, const std::vector<std::string> &pages);

/// Adds the members of the record: the bits that mark them and their leaves in both schemas.
void add_members(Page &page);

/// The page in man(7), its sections in the customary order.
std::string man_page(Page page, const Edition &edition);

} // namespace aceconv::pages
