#include "tools/aceconv/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/nearest.h"
#include "stream/errors.h"
#include "stream/output.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/report.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

constexpr const char *description =
    "Converts IPv4 access-list entries between YANG data and encoded records.";
constexpr const char *footer =
    "Formats: json (a document, or entries as objects), ndjson (an entry a line), xml, and cbor,\n"
    "a sequence of encodings. Input is recognised from its first bytes.\n"
    "Exit codes: 0 done; 1 diff or check found a difference, or something was lost under "
    "--strict;\n"
    "2 bad data or usage; 3 input or output failed. The largest counts.\n"
    "aceconv help VERB tells a verb's options.";
constexpr unsigned most_jobs = 256;

/// An option's further long names are spellings of earlier versions, and not shown.
std::string shown_names(const CLI::Option &option) {
    const auto &letters = option.get_snames();
    const auto &words = option.get_lnames();
    return (letters.empty() ? "" : "-" + letters.front() + ",") + "--" + words.front();
}

class HelpText : public CLI::Formatter {
    std::string make_option_name(const CLI::Option *option, bool is_positional) const override {
        return is_positional ? CLI::Formatter::make_option_name(option, true)
                             : shown_names(*option);
    }
};

template <class Value>
using Names = std::vector<std::pair<std::string, Value>>;

const Names<Schema> schemas = {{"base", Schema::base}, {"um", Schema::um}};
const Names<Backend> backends = {{"bulk", Backend::bulk}, {"validating", Backend::validating}};
const Names<InputFormat> input_formats = {{"json", InputFormat::json},
                                          {"ndjson", InputFormat::ndjson},
                                          {"xml", InputFormat::xml},
                                          {"cbor", InputFormat::cbor}};
const Names<OutputFormat> text_formats = {
    {"json", OutputFormat::json}, {"xml", OutputFormat::xml}, {"ndjson", OutputFormat::ndjson}};

/// An option whose value is one of `names`; `target` holds it, or is an optional one.
template <class Target, class Value>
CLI::Option *add_choice(CLI::App &verb, const std::string &name, Target &target,
                        const Names<Value> &names, const std::string &help) {
    CLI::IsMember known(names);
    const std::string shown = known.get_description();
    return verb
        .add_option_function<std::string>(
            name,
            [&target, &names](const std::string &text) {
                for (const auto &[spelling, value] : names) {
                    if (spelling == text) {
                        target = value;
                    }
                }
            },
            help)
        ->check(known.description(""))
        ->type_name(shown);
}

CLI::Option *add_file(CLI::App &verb, const std::string &name, std::string &path,
                      const std::string &help) {
    return verb.add_option(name, path, help)->type_name("FILE");
}

/// In front of the verb and behind it.
void add_general(CLI::App &app, CommonOptions &options) {
    add_file(app, "--plugin", options.plugin, "The plug-in library to load");
    app.add_option("--modules", options.modules, "The folder of the YANG modules")
        ->type_name("DIR");
    app.set_version_flag( // behind those that say what is shown
        "-V,--version", [] { return ""; }, "Show the version, and which plug-in is loaded");
}

void add_common(CLI::App &verb, CommonOptions &options) {
    verb.add_flag("--keep-going", options.keep_going,
                  "Report every bad entry and go on with the rest");
    add_choice(verb, "--backend", options.backend, backends,
               "How JSON is read and written: bulk (fast) or validating (libyang); both accept "
               "the same");
    verb.add_option("-j,--jobs", options.jobs,
                    "How many threads convert; by default as many as there are cores")
        ->check(CLI::Range(1U, most_jobs))
        ->type_name("N");
    CLI::Option *quiet =
        verb.add_flag("-q,--quiet", options.quiet, "Show neither progress nor a summary");
    verb.add_flag("--progress", options.progress,
                  "Show the progress of long runs even where standard error is no terminal")
        ->excludes(quiet);
    verb.add_flag(
            "--trace{.}", options.trace,
            "Show the UM converters' diagnostic trace, with one thread; with =REGEX only that of "
            "functions whose names match")
        ->type_name("REGEX");
    add_general(verb, options);
}

void add_input(CLI::App &verb, InputOptions &options) {
    verb.add_option("INPUT", options.paths,
                    "The files to read, one after the other; - is standard input, the default")
        ->type_name("");
    add_choice(verb, "--from-format,--input", options.format, input_formats,
               "The input's format, when it is not to be recognised from the data");
}

void add_output(CLI::App &verb, std::string &path) {
    add_file(verb, "-o,--output", path, "The file to write; - is standard output, the default");
}

void add_losses(CLI::App &verb, LossOptions &options) {
    add_file(verb, "--report", options.report, "Write the losses to this file, as JSON");
    verb.add_flag("--strict", options.strict, "Exit with 1 when anything is lost");
    verb.add_flag("--no-losses", options.unsaid, "Say nothing of losses on standard error");
}

constexpr const char *format_help = "The format to write; json, a document, by default";

void add_schema(CLI::App &verb, const std::string &names, std::optional<Schema> &schema) {
    add_choice(verb, names, schema, schemas,
               "The entries' schema, when neither the data nor labels tell it");
}

void add_options(CLI::App &verb, EncodeOptions &options) {
    add_input(verb, options.input);
    add_schema(verb, "--schema", options.input.schema);
    add_output(verb, options.output);
    add_file(verb, "--stored", options.stored,
             "Earlier encodings of the entries, whose user-defined fields are kept (base schema)");
    verb.add_flag("--no-labels", options.bare,
                  "Write the encodings alone, without list, sequence number and schema");
    add_losses(verb, options.losses);
}

void add_options(CLI::App &verb, DecodeOptions &options) {
    add_input(verb, options.input);
    add_schema(verb, "--schema", options.input.schema);
    add_output(verb, options.output);
    add_choice(verb, "--format,--to", options.format, text_formats, format_help);
    add_losses(verb, options.losses);
}

void add_options(CLI::App &verb, InspectOptions &options) {
    add_input(verb, options.input);
    add_schema(verb, "--schema", options.input.schema);
    add_output(verb, options.output);
    verb.add_flag("--json", options.json, "Write one JSON object for each record, one a line");
    add_losses(verb, options.losses);
}

void add_options(CLI::App &verb, ConvertOptions &options) {
    add_input(verb, options.input);
    add_schema(verb, "--schema,--from", options.input.schema);
    add_choice(verb, "--to", options.to, schemas, "The schema to convert to")->required();
    add_output(verb, options.output);
    add_choice(verb, "--format,--to-format", options.format, text_formats, format_help);
    add_losses(verb, options.losses);
}

void add_options(CLI::App &verb, CheckOptions &options) {
    add_input(verb, options.input);
    add_schema(verb, "--schema", options.input.schema);
    add_losses(verb, options.losses);
}

void add_options(CLI::App &verb, DiffOptions &options) {
    verb.add_option("A", options.left.paths.front(), "The first input")->required()->type_name("");
    verb.add_option("B", options.right.paths.front(), "The second input; - is standard input")
        ->required()
        ->type_name("");
    add_schema(verb, "--schema", options.schema);
    add_choice(verb, "--schema-a", options.left.schema, schemas, "The same of A alone");
    add_choice(verb, "--schema-b", options.right.schema, schemas, "The same of B alone");
    add_losses(verb, options.losses);
}

using Arguments = std::vector<std::string>; // last one first

/// What the command line asks for.
struct Calls {
    CommonOptions common; // of whichever verb it is
    EncodeOptions encode;
    DecodeOptions decode;
    InspectOptions inspect;
    ConvertOptions convert;
    CheckOptions check;
    DiffOptions diff;
    std::function<int()> chosen; // what runs it
};

/// The options of a verb that no argument names are left out: they take longer to describe
/// than an entry to convert.
template <class Options>
void add_verb(CLI::App &app, Calls &calls, const Arguments &arguments, const char *name,
              const char *help, Options &options, int (*run)(const Options &)) {
    CLI::App *verb = app.add_subcommand(name, help);
    if (std::find(arguments.begin(), arguments.end(), name) == arguments.end()) {
        return;
    }
    add_options(*verb, options);
    add_common(*verb, calls.common);
    verb->final_callback([&calls, &options, run] {
        options.common = calls.common;
        calls.chosen = [&options, run] { return run(options); };
    });
}

void add_verbs(CLI::App &app, Calls &calls, const Arguments &arguments) {
    const auto add = [&](const char *name, const char *help, auto &options, auto run) {
        add_verb(app, calls, arguments, name, help, options, run);
    };
    add("encode", "Encode entries of access lists", calls.encode, run_encode);
    add("decode", "Decode encodings to entries of access lists", calls.decode, run_decode);
    add("inspect", "Show the records of encodings, or of entries: every field that is present",
        calls.inspect, run_inspect);
    add("convert",
        "Convert entries to one schema, from the other or the same, and list what is lost",
        calls.convert, run_convert);
    add("check", "Encode, decode and encode again; show what does not come back the same",
        calls.check, run_check);
    add("diff",
        "Compare two inputs, of either schema or encodings, entry by entry and field by "
        "field; the order of entries does not matter",
        calls.diff, run_diff);
}

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

/// "help VERB" means "VERB --help".
Arguments arguments_of(int argc, char **argv) {
    Arguments arguments(argv + std::min(argc, 1), argv + argc);
    if (!arguments.empty() && arguments.front() == "help") {
        arguments.erase(arguments.begin());
        arguments.emplace_back("--help");
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

void parse(CLI::App &app, Arguments arguments) {
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError &fault) {
        const auto verbs = app.get_subcommands();
        const CLI::App &verb = verbs.empty() ? app : *verbs.front();
        const bool answered =
            dynamic_cast<const CLI::Success *>(&fault) != nullptr && !verbs.empty();
        const std::vector<std::string> rest = verb.remaining();
        if (!rest.empty() && !answered) {
            throw misplaced(verb, rest.front());
        }
        throw;
    }
}

} // namespace

int run_command_line(int argc, char **argv) {
    CLI::App app(description, "aceconv");
    app.footer(footer);
    app.formatter(std::make_shared<HelpText>());
    app.require_subcommand(0, 1);
    Calls calls;
    Arguments arguments = arguments_of(argc, argv);
    add_general(app, calls.common);
    add_verbs(app, calls, arguments);
    try {
        try {
            parse(app, std::move(arguments));
        } catch (const CLI::CallForVersion &) {
            return show_version(calls.common);
        } catch (const CLI::Success &) {
            Output output("-");
            output.write(app.help());
            output.commit();
            return exit_ok;
        } catch (const CLI::ParseError &fault) {
            throw UsageError(fault.what());
        }
        if (!calls.chosen) {
            throw UsageError("a verb is expected: encode, decode, inspect, convert, check or diff");
        }
        return calls.chosen();
    } catch (const UsageError &fault) {
        const auto verbs = app.get_subcommands();
        say_error(fault.what());
        say("see aceconv " + (verbs.empty() ? "" : verbs.front()->get_name() + " ") + "--help");
        return exit_trouble;
    }
}

} // namespace aceconv::tool
