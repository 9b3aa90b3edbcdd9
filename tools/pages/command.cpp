#include "tools/pages/command.h"

#include "tools/aceconv/verb_table.h"
#include "tools/hostcheck/options.h"

namespace aceconv::pages {
namespace {

/// "-o,--output" as {"-o", "--output"}, without what follows.
std::pair<std::string, std::string> letter_and_name(const std::string &names) {
    const auto end = names.find(',');
    const std::string first = names.substr(0, end);
    if (first.starts_with("--") || !first.starts_with('-') || end == std::string::npos) {
        return {"", first};
    }
    return {first, names.substr(end + 1, names.find(',', end + 1) - end - 1)};
}

std::vector<OptionEntry> entries_of(const std::vector<tool::Option> &options) {
    std::vector<OptionEntry> entries;
    for (const tool::Option &option : options) {
        OptionEntry &entry = entries.emplace_back();
        std::tie(entry.letter, entry.name) = letter_and_name(option.names);
        entry.value = option.value;
        entry.help = option.help;
        entry.required = option.rules.required;
        entry.excludes = option.rules.excludes == nullptr ? "" : option.rules.excludes;
        entry.value_left_out = option.rules.left_out != nullptr;
        entry.several = std::holds_alternative<std::vector<std::string> *>(option.target);
        if (const auto *choice = std::get_if<tool::Choice>(&option.target)) {
            entry.choices = choice->names;
        }
    }
    return entries;
}

} // namespace

CommandEntry aceconv_command() {
    tool::CommonOptions common;
    CommandEntry command{{"aceconv", tool::command_help, entries_of(tool::general_options(common))},
                         {}};
    for (const tool::Verb &verb : tool::verb_table()) {
        command.verbs.push_back({verb.name, verb.help, entries_of(verb.call(common).options)});
    }
    return command;
}

CommandEntry hostcheck_command() {
    VerbEntry itself{"aceconv-hostcheck", hostcheck::command_help, {}};
    for (const hostcheck::OptionRow &row : hostcheck::option_rows) {
        OptionEntry &entry = itself.options.emplace_back();
        entry.name = row.name;
        entry.value = row.value;
        entry.help = row.help;
        entry.required = entry.is_argument();
    }
    return {itself, {}};
}

} // namespace aceconv::pages
