#include "tools/aceconv/verb_table.h"

#include <iterator>
#include <memory>
#include <utility>

#include "tools/aceconv/command_line.h"
#include "tools/aceconv/report.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

constexpr unsigned most_jobs = 256;

template <class Value>
using Name = std::pair<const char *, Value>;

constexpr Name<Schema> schemas[] = {{"base", Schema::base}, {"um", Schema::um}};
constexpr Name<Backend> backends[] = {{"bulk", Backend::bulk}, {"validating", Backend::validating}};
constexpr Name<InputFormat> input_formats[] = {
    {"json", InputFormat::json}, {"ndjson", InputFormat::ndjson}, {"xml", InputFormat::xml},
    {"cbor", InputFormat::cbor}, {"hex", InputFormat::hex},       {"base64", InputFormat::base64}};
constexpr Name<OutputFormat> text_formats[] = {
    {"json", OutputFormat::json}, {"xml", OutputFormat::xml}, {"ndjson", OutputFormat::ndjson}};
constexpr Name<OutputFormat> decoded_formats[] = {{"json", OutputFormat::json},
                                                  {"xml", OutputFormat::xml},
                                                  {"ndjson", OutputFormat::ndjson},
                                                  {"text", OutputFormat::text}};
constexpr Name<DiffOptions::By> matchings[] = {{"sequence", DiffOptions::By::sequence},
                                               {"content", DiffOptions::By::content}};
constexpr Name<Colors> colorings[] = {
    {"auto", Colors::automatic}, {"always", Colors::always}, {"never", Colors::never}};

/// Sets `target`, a value or an optional one.
template <class Target, class Value, std::size_t count>
Choice one_of(const Name<Value> (&names)[count], Target &target) {
    Choice choice;
    for (const auto &[name, value] : names) {
        choice.names.emplace_back(name);
    }
    choice.take = [&names, &target](std::size_t at) { target = names[at].second; };
    return choice;
}

using Options = std::vector<Option>;

void append(Options &options, Options more) {
    std::move(more.begin(), more.end(), std::back_inserter(options));
}

Options joined(std::initializer_list<Options> parts) {
    Options options;
    for (const Options &part : parts) {
        append(options, part);
    }
    return options;
}

Choice color_choice() {
    Choice choice;
    for (const auto &[name, when] : colorings) {
        choice.names.emplace_back(name);
    }
    choice.take = [](std::size_t at) { use_colors(colorings[at].second); };
    return choice;
}

Option schema_option(const char *names, std::optional<Schema> &schema) {
    return {names, "SCHEMA", "The entries' schema, when neither the data nor labels tell it",
            one_of(schemas, schema)};
}

Option format_option(const char *names, OutputFormat &format) {
    return {names, "FORMAT", "The format to write; json, a document, by default",
            one_of(text_formats, format)};
}

Option others_option(bool &ignored) {
    return {"--ignore-other-modules", "",
            "Step over nodes of other modules beside the access lists, and count them", &ignored};
}

Option output_option(std::string &path) {
    return {"-o,--output", "FILE", "The file to write; - is standard output, the default", &path};
}

Option folder_option(std::string &path) {
    return {"--output-dir",
            "DIR",
            "Write an output for each input, of the input's name, to this folder",
            &path,
            {.excludes = "--output"}};
}

Options input_options(InputOptions &input, const char *schema_names = "--schema") {
    return {{"INPUT", "FILE",
             "The files to read, one after the other, and folders of them; - is standard input, "
             "the default",
             &input.paths},
            {"--from-format,--input", "FORMAT",
             "The input's format, when it is not to be recognised from the data",
             one_of(input_formats, input.format)},
            others_option(input.ignore_others),
            schema_option(schema_names, input.schema)};
}

Option help_option() {
    return {"-h,--help", "", "Show this help", Question::help};
}

Options loss_options(LossOptions &losses) {
    return {{"--report", "FILE", "Write the losses to this file, as JSON", &losses.report},
            {"--strict", "", "Exit with 1 when anything is lost", &losses.strict},
            {"--no-losses", "", "Say nothing of losses on standard error", &losses.unsaid}};
}

/// Of every verb that converts.
Options common_options(CommonOptions &common) {
    return {
        {"--keep-going", "", "Report every bad entry and go on with the rest", &common.keep_going},
        {"--errors", "FILE", "Write the faults to this file, a JSON object a line", &common.errors},
        {"--junit", "FILE",
         "Write a test report to this file, in the format of JUnit: a test case for each list",
         &common.junit},
        {"--html", "FILE",
         "Write a report for people to this file, a page of HTML that needs nothing else",
         &common.html},
        {"--backend", "BACKEND",
         "How JSON is read and written: bulk (fast) or validating (libyang); both accept the same",
         one_of(backends, common.backend)},
        {"-j,--jobs", "N",
         "How many threads convert, 1 to 256; by default as many as there are cores",
         Number{&common.jobs, 1, most_jobs}},
        {"-q,--quiet", "", "Show neither progress nor a summary", &common.quiet},
        {"--progress",
         "",
         "Show the progress of long runs even where standard error is no terminal",
         &common.progress,
         {.excludes = "--quiet"}},
        {"--trace",
         "REGEX",
         "Show the UM converters' diagnostic trace, with one thread; with =REGEX only that of "
         "functions whose names match",
         &common.trace,
         {.left_out = "."}}};
}

// What the verbs have of their own.

Options options_of(EncodeOptions &encode) {
    return joined(
        {input_options(encode.input),
         {output_option(encode.output.path),
          folder_option(encode.output.folder),
          {"--stored", "FILE",
           "Earlier encodings of the entries, whose user-defined fields are kept (base schema)",
           &encode.stored},
          {"--no-labels", "", "Write the encodings alone, without list, sequence number and schema",
           &encode.bare}},
         loss_options(encode.losses)});
}

Options options_of(DecodeOptions &decode) {
    return joined({input_options(decode.input),
                   {output_option(decode.output.path),
                    folder_option(decode.output.folder),
                    {"--format,--to", "FORMAT",
                     "The format to write; json, a document, by default; text is a line in plain "
                     "words for each entry, for people: nothing reads it back",
                     one_of(decoded_formats, decode.format)}},
                   loss_options(decode.losses)});
}

Options options_of(InspectOptions &inspect) {
    return joined(
        {input_options(inspect.input),
         {output_option(inspect.output),
          {"--hex", "", "Show the bytes of the encoding beside what they say", &inspect.hex},
          {"--json", "", "Write one JSON object for each record, one a line", &inspect.json}},
         loss_options(inspect.losses)});
}

Options options_of(ConvertOptions &convert) {
    return joined({input_options(convert.input, "--schema,--from"),
                   {{"--to",
                     "SCHEMA",
                     "The schema to convert to",
                     one_of(schemas, convert.to),
                     {.required = true}},
                    output_option(convert.output.path),
                    folder_option(convert.output.folder),
                    format_option("--format,--to-format", convert.format)},
                   loss_options(convert.losses)});
}

Options options_of(CheckOptions &check) {
    return joined({input_options(check.input),
                   {{"--json", "", "Write a JSON document instead of lines", &check.json}},
                   loss_options(check.losses)});
}

Options options_of(DiffOptions &diff) {
    return joined(
        {{{"A", "FILE", "The first input", &diff.left.paths.front(), {.required = true}},
          {"B",
           "FILE",
           "The second input; - is standard input",
           &diff.right.paths.front(),
           {.required = true}},
          schema_option("--schema", diff.schema),
          {"--schema-a", "SCHEMA", "The same of A alone", one_of(schemas, diff.left.schema)},
          {"--schema-b", "SCHEMA", "The same of B alone", one_of(schemas, diff.right.schema)},
          others_option(diff.ignore_others),
          {"--by", "WHAT",
           "What makes entries of a list go together: sequence, their number, whatever their "
           "order (the default), or content, what they say, in their order",
           one_of(matchings, diff.by)},
          {"--acl", "OLD=NEW", "Compare the list OLD of A with the list NEW of B; repeatable",
           &diff.renamed},
          {"--json", "", "Write a JSON document instead of lines", &diff.json}},
         loss_options(diff.losses)});
}

Options options_of(LintOptions &lint) {
    return joined(
        {input_options(lint.input),
         {{"--rule", "NAMES", "Look at these rules alone, separated by commas", &lint.only},
          {"--no-rule", "NAMES", "Leave these rules out", &lint.without},
          {"--list-rules", "", "Show the rules and what they mean", &lint.list_rules},
          {"--json", "", "Write the warnings as one JSON object", &lint.json},
          {"--strict", "", "Exit with 1 when there are warnings", &lint.strict}}});
}

/// What runs `run` with options of its own and the common ones.
template <class Own, int (*run)(const Own &)>
Call call(CommonOptions &common) {
    const auto own = std::make_shared<Own>();
    return {joined({options_of(*own), common_options(common), general_options(common)}),
            [own, &common] {
                own->common = common;
                return run(*own);
            }};
}

Options options_of(ExplainOptions &explain) {
    return {{"LEAF",
             "LEAF",
             "The node's name, its path below the entry, or the end of that",
             &explain.leaf,
             {.required = true}},
            {"--schema", "SCHEMA", "Look in this schema alone", one_of(schemas, explain.schema)},
            {"--json", "", "Write a JSON object for each node, one a line", &explain.json}};
}

Options options_of(SchemaOptions &schema) {
    return {{"SCHEMA", "SCHEMA", "The schema; both by default", one_of(schemas, schema.schema)},
            {"--tree", "", "Show containers and leaves by their depth", &schema.tree},
            {"--json", "", "Write a JSON object for each node, one a line", &schema.json}};
}

/// The same of a verb that reads no entries.
template <class Own, int (*run)(const Own &)>
Call call_without_entries(CommonOptions &common) {
    const auto own = std::make_shared<Own>();
    return {joined({options_of(*own), general_options(common)}), [own, &common] {
                own->common = common;
                return run(*own);
            }};
}

Call call_help(CommonOptions &common);

constexpr Verb verbs[] = {
    {"encode", "Encode entries of access lists", call<EncodeOptions, run_encode>},
    {"decode", "Decode encodings to entries of access lists", call<DecodeOptions, run_decode>},
    {"inspect", "Show the records of encodings, or of entries: every field that is present",
     call<InspectOptions, run_inspect>},
    {"convert", "Convert entries to one schema, from the other or the same, and list what is lost",
     call<ConvertOptions, run_convert>},
    {"check", "Encode, decode and encode again; show what does not come back the same",
     call<CheckOptions, run_check>},
    {"diff", "Compare two inputs, of either schema or encodings, entry by entry and field by field",
     call<DiffOptions, run_diff>},
    {"lint", "Warn of what no router can mean, and of entries that never take effect",
     call<LintOptions, run_lint>},
    {"explain", "Show what a leaf takes, where the record keeps it, and what the other schema has",
     call_without_entries<ExplainOptions, run_explain>},
    {"schema", "Show the leaves of entries, and what they take",
     call_without_entries<SchemaOptions, run_schema>},
    {"help", "Show what the command, or a verb of it, does and takes", call_help},
};

Call call_help(CommonOptions & /*common*/) {
    const auto verb = std::make_shared<std::string>();
    Choice choice;
    for (const Verb &row : verbs) {
        choice.names.emplace_back(row.name);
    }
    choice.take = [verb](std::size_t at) { *verb = verbs[at].name; };
    return {{{"VERB", "VERB", "The verb; none is the command", choice}, help_option()},
            [verb] { return show_help(*verb); }};
}

} // namespace

std::span<const Verb> verb_table() {
    return verbs;
}

std::vector<Option> general_options(CommonOptions &common) {
    return {
        {"--plugin", "FILE", "The plug-in library to load", &common.plugin},
        {"--modules", "DIR", "The folder of the YANG modules", &common.modules},
        {"--color",
         "WHEN",
         "Whether to colour what is shown: auto, on a terminal and without NO_COLOR (the default), "
         "always, or never",
         color_choice(),
         {.at_once = true}},
        help_option(),
        {"-V,--version", "", "Show the version, and which plug-in is loaded", Question::version}};
}

} // namespace aceconv::tool
