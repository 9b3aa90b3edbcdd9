// What every verb is told on the command line, and what it needs to start.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "tools/aceconv/codec.h"
#include "tools/aceconv/report.h"
#include "tools/aceconv/sink.h"
#include "tools/aceconv/source.h"

namespace aceconv::tool {

struct CommonOptions {
    std::string plugin;  // empty: found beside the program
    std::string modules; // empty: found beside the program
    Backend backend = Backend::bulk;
    std::string trace; // an expression for function names; empty: off
    bool keep_going = false;
    bool quiet = false;
};

struct InputOptions {
    std::string path = "-";
    std::optional<InputFormat> format;
    std::optional<Schema> schema;
};

/// The options of every verb.
void add_common(CLI::App &verb, CommonOptions &options);
/// --plugin and --modules.
void add_places(CLI::App &app, CommonOptions &options);
/// The input file, --from-format and, with a description, --schema.
void add_input(CLI::App &verb, InputOptions &options, const char *schema_help);
CLI::Option *add_schema(CLI::App &verb, const char *name, std::optional<Schema> &schema,
                        const char *help);

void add_output(CLI::App &verb, std::string &path);
/// A text format to write; `name` is the option's.
void add_output_format(CLI::App &verb, const char *name, OutputFormat &format);

/// Loads the plug-in and the YANG modules and switches the trace on. Throws
/// IoError, or UsageError for a bad expression.
std::unique_ptr<Codec> start(const CommonOptions &options);
Plugin find_plugin(const CommonOptions &options);
std::filesystem::path find_modules(const CommonOptions &options);

/// Opens the input; a fault in its first bytes is reported like any other, and
/// nothing returned.
std::unique_ptr<Source> open_source(const InputOptions &options, FaultReport &report);

/// The exit code of a finished run; says how many entries were bad.
int conclude(const CommonOptions &options, const FaultReport &report, std::uint64_t entries);

/// The verbs. Each adds itself to the command line and leaves its exit code in `status`.
void add_encode(CLI::App &app, int &status);
void add_decode(CLI::App &app, int &status);
void add_inspect(CLI::App &app, int &status);
void add_convert(CLI::App &app, int &status);
void add_check(CLI::App &app, int &status);
void add_diff(CLI::App &app, int &status);

} // namespace aceconv::tool
