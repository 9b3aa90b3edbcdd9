// aceconv decode: encodings to entries.
#include "tools/aceconv/errors.h"
#include "tools/aceconv/options.h"
#include "tools/aceconv/pipeline.h"
#include "tools/aceconv/sink.h"

namespace aceconv::tool {
namespace {

struct DecodeOptions {
    CommonOptions common;
    InputOptions input;
    std::string output = "-";
    OutputFormat format = OutputFormat::json;
};

int run(const DecodeOptions &options) {
    const auto codec = start(options.common);
    FaultReport report(options.input.path);
    const auto source = open_source(options.input, report);
    if (!source)
        return exit_data;
    const Schema schema = options.input.schema.value_or(Schema::base);
    Output output(options.output);
    const auto sink = make_sink(options.format, schema, output);
    const Outcome outcome = run_entries(
        *source, report, options.common.keep_going,
        [&](const Entry &entry) {
            if (entry.format)
                throw StreamError("", "an entry's text; expected encodings");
            return codec->decode(entry.encoding, schema, text_format(options.format), entry.key);
        },
        [&](const Entry &entry, const std::string &text) { sink->write(entry.key, text); });
    return finish(output, *sink, outcome.stopped)
               ? conclude(options.common, report, outcome.entries)
               : exit_data;
}

} // namespace

void add_decode(CLI::App &app, int &status) {
    auto options = std::make_shared<DecodeOptions>();
    CLI::App *verb = app.add_subcommand("decode", "Decode encodings to entries of access lists");
    add_input(*verb, options->input, "The schema to write; base by default");
    add_output(*verb, options->output);
    add_output_format(*verb, "--to", options->format);
    add_common(*verb, options->common);
    verb->callback([options, &status] { status = run(*options); });
}

} // namespace aceconv::tool
