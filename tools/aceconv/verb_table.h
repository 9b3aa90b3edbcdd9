// What the command takes, as data: its verbs and their options. The parser, the manual
// pages and the completions of shells are made of it.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "tools/aceconv/options.h"

namespace aceconv::tool {

/// What the command does. This and the helps of verbs and options are sentences without their
/// full stops.
constexpr const char *command_help =
    "Convert IPv4 access-list entries between YANG data and encoded records";

/// One of these names.
struct Choice {
    std::vector<std::string> names;
    std::function<void(std::size_t)> take; // its place among the names
};

struct Number {
    unsigned *value;
    unsigned least, most;
};

/// What the command itself answers.
enum class Question { help, version };

/// What an option sets; not owned. A switch is a bool.
using Target =
    std::variant<bool *, std::string *, std::vector<std::string> *, Number, Choice, Question>;

struct Rules {
    bool required = false;
    const char *excludes = nullptr; // the option that cannot be given beside it
    const char *left_out = nullptr; // of a value behind '=' that may be left out: what it then is
    bool at_once = false;           // counts already for faults of other options
};

struct Option {
    /// "-o,--output"; a word alone is no option but an argument, and shown as it is. Further
    /// long names are spellings of earlier versions, and not shown.
    std::string names;
    std::string value; // what its value is called; FILE and DIR are what shells complete
    std::string help;
    Target target;
    Rules rules = {};
};

/// A verb whose options set what `run` works with.
struct Call {
    std::vector<Option> options;
    std::function<int()> run;
};

struct Verb {
    const char *name;
    const char *help;
    /// `common` is to be there when the call is run.
    Call (*call)(CommonOptions &common);
};

std::span<const Verb> verb_table();

/// In front of the verb and behind it.
std::vector<Option> general_options(CommonOptions &common);

} // namespace aceconv::tool
