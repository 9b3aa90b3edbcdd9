// What every verb is told on the command line, and what it needs to start.
#pragma once

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "stream/codec.h"
#include "stream/sink.h"
#include "stream/source.h"

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace aceconv::tool {

struct CommonOptions {
    std::string plugin;  // empty: found beside the program
    std::string modules; // empty: found beside the program
    Backend backend = Backend::bulk;
    std::string trace; // an expression for function names; empty: off
    unsigned jobs = std::max(std::thread::hardware_concurrency(), 1U);
    bool keep_going = false;
    bool quiet = false;
    bool progress = false;
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

/// Loads the plug-in, finds the YANG modules and switches the trace on. Throws
/// IoError, or UsageError for a bad expression.
CodecSetup start(const CommonOptions &options);
Plugin find_plugin(const CommonOptions &options);
std::filesystem::path find_modules(const CommonOptions &options);

/// The verbs. Each adds itself to the command line and leaves its exit code in `status`.
void add_encode(CLI::App &app, int &status);
void add_decode(CLI::App &app, int &status);
void add_inspect(CLI::App &app, int &status);
void add_convert(CLI::App &app, int &status);
void add_check(CLI::App &app, int &status);
void add_diff(CLI::App &app, int &status);

} // namespace aceconv::tool
