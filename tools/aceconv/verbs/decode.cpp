// aceconv decode: encodings to entries.
#include <CLI/CLI.hpp>

#include "stream/errors.h"
#include "stream/sink.h"
#include "tools/aceconv/options.h"
#include "tools/aceconv/run.h"

namespace aceconv::tool {
namespace {

struct DecodeOptions {
    CommonOptions common;
    InputOptions input;
    std::string output = "-";
    OutputFormat format = OutputFormat::json;
};

int run(const DecodeOptions &options) {
    Run run(options.common, options.input, options.output);
    if (!run.opened()) {
        return run.conclude();
    }
    const Schema schema = options.input.schema.value_or(Schema::base);
    const Format format = text_format(options.format);
    Output output(options.output);
    const auto sink = make_sink(options.format, schema, output);
    run.each(
        [schema, format](Codec &codec, const Entry &entry, Product &product) {
            if (entry.format) {
                throw StreamError("", "an entry's text; expected encodings");
            }
            codec.decode(entry.encoding, schema, format, entry.key, product.bytes);
        },
        [&](const Entry &entry, const Product &product) { sink->write(entry.key, product.bytes); });
    finish(output, *sink, run.stopped());
    return run.conclude();
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
