// What aceconv-hostcheck takes, for its help and its manual page.
#pragma once

namespace aceconv::hostcheck {

struct OptionRow {
    const char *name;
    const char *value; // what its value is called; "" of a switch
    const char *help;
};

constexpr const char *command_help = "Say which promises to the plug-in a host breaks";

constexpr OptionRow option_rows[] = {
    {"HOST.so", "FILE",
     "The host: a library with the functions of aceconv/host/ and aceconv/hostcheck.h"},
    {"--plugin", "FILE", "The plug-in, if not the one that was installed with this program"},
    {"--limit", "SECONDS", "How long a trial may take, 10 by default"},
    {"--first", "", "End with the first broken promise"},
    {"--help", "", "Show this help"},
    {"--version", "", "Show the version"},
};

} // namespace aceconv::hostcheck
