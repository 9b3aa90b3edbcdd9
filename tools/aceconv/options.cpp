#include "tools/aceconv/options.h"

#include <CLI/CLI.hpp>
#include <map>
#include <stdexcept>

#include "host/debug_control.h"
#include "stream/errors.h"

namespace aceconv::tool {
namespace {

const std::map<std::string, InputFormat> input_format_names = {{"json", InputFormat::json},
                                                               {"ndjson", InputFormat::ndjson},
                                                               {"xml", InputFormat::xml},
                                                               {"cbor", InputFormat::cbor}};
const std::map<std::string, OutputFormat> output_format_names = {
    {"json", OutputFormat::json}, {"xml", OutputFormat::xml}, {"ndjson", OutputFormat::ndjson}};
const std::map<std::string, Backend> backend_names = {{"bulk", Backend::bulk},
                                                      {"validating", Backend::validating}};
const std::map<std::string, Schema> schema_names = {{"base", Schema::base}, {"um", Schema::um}};

constexpr unsigned most_jobs = 256;
constexpr const char *any_function = "."; // matches every name

/// The folder above the one that the program is in.
std::filesystem::path prefix() {
    std::error_code none;
    return std::filesystem::read_symlink("/proc/self/exe", none).parent_path().parent_path();
}

} // namespace

void add_places(CLI::App &app, CommonOptions &options) {
    app.add_option("--plugin", options.plugin, "The plug-in library to load")->type_name("FILE");
    app.add_option("--modules", options.modules, "The folder of the YANG modules")
        ->type_name("DIR");
}

void add_common(CLI::App &verb, CommonOptions &options) {
    verb.add_flag("--keep-going", options.keep_going,
                  "Report every bad entry and go on with the rest");
    verb.add_option("--backend", options.backend,
                    "How JSON is read and written: bulk (fast) or validating (libyang); both "
                    "accept the same")
        ->transform(CLI::CheckedTransformer(backend_names, CLI::ignore_case))
        ->type_name("NAME");
    verb.add_option("-j,--jobs", options.jobs,
                    "How many threads convert; by default as many as there are cores")
        ->check(CLI::Range(1U, most_jobs))
        ->type_name("N");
    auto *quiet = verb.add_flag("-q,--quiet", options.quiet,
                                "Say nothing but errors: no losses, progress and summary");
    verb.add_flag("--progress", options.progress,
                  "Show the progress of long runs even where standard error is no terminal")
        ->excludes(quiet);
    verb.add_flag(
            "--trace{.}", options.trace,
            "Show the UM converters' diagnostic trace, with one thread; with =REGEX only that of "
            "functions whose names match")
        ->type_name("REGEX");
    add_places(verb, options);
}

CLI::Option *add_schema(CLI::App &verb, const char *name, std::optional<Schema> &schema,
                        const char *help) {
    return verb
        .add_option_function<std::string>(
            name, [&schema](const std::string &text) { schema = schema_names.at(text); }, help)
        ->check(CLI::IsMember({"base", "um"}))
        ->type_name("SCHEMA");
}

void add_input(CLI::App &verb, InputOptions &options, const char *schema_help) {
    verb.add_option("INPUT", options.path, "The file to read; - is standard input, the default");
    verb.add_option_function<std::string>(
            "--from-format,--input",
            [&options](const std::string &text) { options.format = input_format_names.at(text); },
            "The input's format, when it is not to be recognised from the data")
        ->check(CLI::IsMember({"json", "ndjson", "xml", "cbor"}))
        ->type_name("FORMAT");
    if (schema_help != nullptr) {
        add_schema(verb, "--schema", options.schema, schema_help);
    }
}

void add_output(CLI::App &verb, std::string &path) {
    verb.add_option("-o,--output", path, "The file to write; - is standard output, the default")
        ->type_name("FILE");
}

void add_output_format(CLI::App &verb, const char *name, OutputFormat &format) {
    verb.add_option_function<std::string>(
            name, [&format](const std::string &text) { format = output_format_names.at(text); },
            "The format to write; json, a document, by default")
        ->check(CLI::IsMember({"json", "xml", "ndjson"}))
        ->type_name("FORMAT");
}

Plugin find_plugin(const CommonOptions &options) {
    try {
        return load_plugin(options.plugin.empty() ? prefix() / "lib" / "libipv4_acl_ace.so"
                                                  : std::filesystem::path(options.plugin));
    } catch (const std::runtime_error &e) {
        throw IoError(e.what());
    }
}

std::filesystem::path find_modules(const CommonOptions &options) {
    if (!options.modules.empty()) {
        return options.modules;
    }
    const std::filesystem::path installed = prefix() / "share" / "aceconv" / "yang";
    std::error_code none;
    return std::filesystem::is_directory(installed, none)
               ? installed
               : std::filesystem::path(ACECONV_SOURCE_MODULES);
}

CodecSetup start(const CommonOptions &options) {
    if (!options.trace.empty()) {
        try {
            enable_trace(options.trace == any_function ? std::nullopt
                                                       : std::optional(options.trace));
        } catch (const std::invalid_argument &e) {
            throw UsageError("--trace: " + std::string(e.what()));
        }
    }
    return {find_plugin(options), find_modules(options), options.backend};
}

} // namespace aceconv::tool
