// The verbs: what each is told, and what runs it. They return the exit code, and
// throw UsageError, IoError and PipeClosed.
#pragma once

#include "stream/sink.h"
#include "tools/aceconv/options.h"

namespace aceconv::tool {

struct EncodeOptions {
    CommonOptions common;
    InputOptions input;
    OutputOptions output;
    std::string stored; // a file of earlier encodings; empty: none
    bool bare = false;  // no labels
    LossOptions losses;
};
int run_encode(const EncodeOptions &options);

struct DecodeOptions {
    CommonOptions common;
    InputOptions input;
    OutputOptions output;
    OutputFormat format = OutputFormat::json;
    LossOptions losses;
};
int run_decode(const DecodeOptions &options);

struct InspectOptions {
    CommonOptions common;
    InputOptions input;
    std::string output = "-";
    bool hex = false; // also the bytes of the encoding
    bool json = false;
    LossOptions losses;
};
int run_inspect(const InspectOptions &options);

struct ConvertOptions {
    CommonOptions common;
    InputOptions input;
    std::optional<Schema> to;
    OutputOptions output;
    OutputFormat format = OutputFormat::json;
    LossOptions losses;
};
int run_convert(const ConvertOptions &options);

struct CheckOptions {
    CommonOptions common;
    InputOptions input;
    bool json = false;
    LossOptions losses;
};
int run_check(const CheckOptions &options);

struct DiffOptions {
    CommonOptions common;
    std::optional<Schema> schema; // of either input that is told no other
    bool ignore_others = false;   // of both
    InputOptions left = {.schema_option = "--schema-a"};
    InputOptions right = {.schema_option = "--schema-b"};
    enum class By { sequence, content } by = By::sequence; // entries of one list go together
    std::vector<std::string> renamed = {};                 // lists, as OLD=NEW
    bool json = false;
    LossOptions losses; // on the way to the records that are compared
};
int run_diff(const DiffOptions &options);

struct LintOptions {
    CommonOptions common;
    InputOptions input;
    std::string only, without; // names of rules, which commas separate
    bool list_rules = false;   // and nothing else
    bool strict = false;       // any warning makes the exit code exit_verdict
    bool json = false;
};
int run_lint(const LintOptions &options);

struct ExplainOptions {
    CommonOptions common;
    std::string leaf; // its path below the entry, or the end of it
    std::optional<Schema> schema;
    bool json = false;
};
int run_explain(const ExplainOptions &options);

struct SchemaOptions {
    CommonOptions common;
    std::optional<Schema> schema;
    bool tree = false;
    bool json = false;
};
int run_schema(const SchemaOptions &options);

/// The version, and what is loaded from where.
int show_version(const CommonOptions &options);

} // namespace aceconv::tool
