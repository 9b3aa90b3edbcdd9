// What a command takes, as manual pages and completions show it.
#pragma once

#include <string>
#include <vector>

namespace aceconv::pages {

struct OptionEntry {
    std::string letter;               // "-o", or ""
    std::string name;                 // "--output"; of an argument "INPUT"
    std::string value;                // what its value is called; "" of a switch
    std::vector<std::string> choices; // the values that there are, if that is known
    std::string help;
    std::string excludes = {};
    bool required = false;
    bool several = false;        // values
    bool value_left_out = false; // may be, and follows '=' otherwise

    [[nodiscard]] bool is_argument() const { return !name.starts_with('-'); }
};

struct VerbEntry {
    std::string name;
    std::string help; // a sentence without its full stop
    std::vector<OptionEntry> options;
};

struct CommandEntry {
    VerbEntry itself;
    std::vector<VerbEntry> verbs;
};

/// From the tables of the two commands.
CommandEntry aceconv_command();
CommandEntry hostcheck_command();

} // namespace aceconv::pages
