#include "tools/aceconv/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "host/nearest.h"
#include "stream/errors.h"
#include "stream/output.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/report.h"
#include "tools/aceconv/verb_table.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

constexpr const char *footer =
    "Formats: json (a document, or entries as objects), ndjson (an entry a line), xml, and cbor,\n"
    "a sequence of encodings. Input is recognised from its first bytes.\n"
    "Exit codes: 0 done; 1 diff or check found a difference, or something was lost or warned of "
    "under --strict;\n"
    "2 bad data or usage; 3 input or output failed. The largest counts.\n"
    "aceconv help VERB tells a verb's options; man aceconv-VERB shows examples.";

/// Shows an option by the first of its long names, and what its value may be.
class HelpText : public CLI::Formatter {
    std::string make_option_name(const CLI::Option *option, bool is_positional) const override {
        if (is_positional) {
            return CLI::Formatter::make_option_name(option, true);
        }
        const auto &letters = option->get_snames();
        return (letters.empty() ? "" : "-" + letters.front() + ",") + "--" +
               option->get_lnames().front();
    }
    std::string make_option_opts(const CLI::Option *option) const override {
        const std::string value = option->get_type_name();
        return option->get_positional() ? ""
                                        : (value.starts_with('[') ? "" : " ") + value +
                                              (option->get_required() ? " (required)" : "");
    }
};

/// An option on its way to the parser.
struct Adding {
    CLI::App &app;
    const Option &option;

    CLI::Option *operator()(bool *value) const {
        return app.add_flag(option.names, *value, option.help);
    }
    CLI::Option *operator()(std::string *value) const {
        if (option.rules.left_out != nullptr) {
            return app
                .add_flag(option.names + "{" + option.rules.left_out + "}", *value, option.help)
                ->type_name("[=" + option.value + "]");
        }
        return add(*value);
    }
    /// Of arguments all that are left; an option is repeated for each.
    CLI::Option *operator()(std::vector<std::string> *values) const {
        return add(*values)->allow_extra_args(!option.names.starts_with('-'));
    }
    CLI::Option *operator()(const Number &number) const {
        return add(*number.value)->check(CLI::Range(number.least, number.most).description(""));
    }
    CLI::Option *operator()(const Choice &choice) const {
        std::string shown;
        for (const std::string &name : choice.names) {
            shown += (shown.empty() ? "{" : ",") + name;
        }
        shown += "}";
        const auto take = [choice, shown, called = option.names](const std::string &text) {
            const auto at = std::find(choice.names.begin(), choice.names.end(), text);
            if (at == choice.names.end()) {
                throw CLI::ValidationError(called.substr(0, called.find(',')),
                                           text + " not in " + shown +
                                               did_you_mean(text, choice.names));
            }
            choice.take(at - choice.names.begin());
        };
        return app.add_option_function<std::string>(option.names, take, option.help)
            ->type_name(shown);
    }
    CLI::Option *operator()(Question question) const {
        return question == Question::help ? app.set_help_flag(option.names, option.help)
                                          : app.set_version_flag(
                                                option.names, [] { return ""; }, option.help);
    }

  private:
    template <class Value>
    CLI::Option *add(Value &value) const {
        return app.add_option(option.names, value, option.help)->type_name(option.value);
    }
};

void add_options(CLI::App &app, const std::vector<Option> &options) {
    for (const Option &option : options) {
        CLI::Option *added =
            std::visit(Adding{app, option}, option.target)->required(option.rules.required);
        if (option.rules.at_once) {
            added->trigger_on_parse();
        }
        if (option.rules.excludes != nullptr) {
            added->excludes(app.get_option(option.rules.excludes));
        }
    }
}

using Arguments = std::vector<std::string>; // last one first

/// The call as a shell would take it.
std::string shown_call(const Arguments &arguments) {
    constexpr const char *plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                  "_-+=:,./@%";
    std::string call = "aceconv";
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
        std::string quoted;
        for (const char c : *argument) {
            quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
        }
        const bool is_plain =
            !argument->empty() && argument->find_first_not_of(plain) == argument->npos;
        call += " " + (is_plain ? *argument : "'" + quoted + "'");
    }
    return call;
}

/// The command line's parser, and what was asked of it.
struct CommandLine {
    CLI::App app{command_help, "aceconv"};
    CommonOptions common; // of whichever verb it is
    Call chosen;

    /// The options of a verb that no argument names are left out: they take longer to describe
    /// than an entry to convert.
    explicit CommandLine(const Arguments &arguments) {
        app.footer(footer);
        common.command = shown_call(arguments);
        const auto help_text = std::make_shared<HelpText>();
        help_text->label("SUBCOMMAND", "VERB");
        app.formatter(help_text);
        app.require_subcommand(0, 1);
        add_options(app, general_options(common));
        for (const Verb &row : verb_table()) {
            CLI::App *verb = app.add_subcommand(row.name, row.help)->group("Verbs");
            if (std::find(arguments.begin(), arguments.end(), row.name) != arguments.end()) {
                Call call = row.call(common);
                add_options(*verb, call.options);
                verb->final_callback([this, name = row.name, call = std::move(call)] {
                    common.verb = name;
                    chosen = call;
                });
            }
        }
    }
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;
};

/// The fault of an argument that `app`, which may be a verb, has no place for.
UsageError misplaced(const CLI::App &app, const std::string &argument) {
    std::vector<std::string> names;
    if (argument.front() == '-') {
        for (const CLI::Option *option : app.get_options()) {
            if (!option->get_lnames().empty()) {
                names.push_back("--" + option->get_lnames().front());
            }
        }
        const std::string name = argument.substr(0, argument.find('='));
        return UsageError("unknown option " + name + did_you_mean(name, names));
    }
    if (app.get_parent() != nullptr) {
        return UsageError("one argument too many: " + argument);
    }
    for (const CLI::App *verb : app.get_subcommands(nullptr)) {
        names.push_back(verb->get_name());
    }
    return UsageError("unknown verb " + argument + did_you_mean(argument, names));
}

void parse(CLI::App &app, Arguments arguments) {
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError &fault) {
        const auto verbs = app.get_subcommands();
        const CLI::App &verb = verbs.empty() ? app : *verbs.front();
        const bool answered =
            dynamic_cast<const CLI::Success *>(&fault) != nullptr && !verbs.empty();
        if (answered) {
            throw;
        }
        if (const auto rest = verb.remaining(); !rest.empty()) {
            throw misplaced(verb, rest.front());
        }
        if (const auto rest = app.remaining(); !rest.empty()) { // in front of the verb
            const std::string first = rest.front();
            const std::string name = first.substr(0, first.find('='));
            throw name.starts_with('-') && verb.get_option_no_throw(name) != nullptr
                ? UsageError(name + " has its place behind " + verb.get_name())
                : misplaced(app, first);
        }
        for (const CLI::Option *option : verb.get_options()) {
            if (option->get_items_expected_max() == 1 && option->count() > 1) {
                throw UsageError(option->get_name() + " is given more than once");
            }
        }
        throw;
    }
}

int show(const std::string &text) {
    Output output("-");
    output.write(text);
    output.commit();
    return exit_ok;
}

} // namespace

int show_help(const std::string &verb) {
    const CommandLine line({verb});
    return show(verb.empty() ? line.app.help() : line.app.get_subcommand(verb)->help("aceconv"));
}

int run_command_line(int argc, char **argv) {
    Arguments arguments(argv + std::min(argc, 1), argv + argc);
    std::reverse(arguments.begin(), arguments.end());
    CommandLine line(arguments);
    try {
        try {
            parse(line.app, std::move(arguments));
        } catch (const CLI::CallForVersion &) {
            return show_version(line.common);
        } catch (const CLI::Success &) {
            return show(line.app.help());
        } catch (const CLI::ParseError &fault) {
            throw UsageError(fault.what());
        }
        if (!line.chosen.run) {
            std::string verbs;
            for (const Verb &row : verb_table()) {
                verbs += std::string(verbs.empty() ? "" : ", ") + row.name;
            }
            throw UsageError("a verb is expected: " + verbs);
        }
        return line.chosen.run();
    } catch (const UsageError &fault) {
        const auto verbs = line.app.get_subcommands();
        say_error(fault.what());
        say("see aceconv " + (verbs.empty() ? "" : verbs.front()->get_name() + " ") + "--help");
        return exit_trouble;
    }
}

} // namespace aceconv::tool
