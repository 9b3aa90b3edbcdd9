// aceconv decode: encodings to entries.
#include "stream/errors.h"
#include "stream/sink.h"
#include "tools/aceconv/run.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {

int run_decode(const DecodeOptions &options) {
    Run run(options.common, options.input, options.output, Lists::joined);
    const Format format = text_format(options.format);
    Output output(options.output);
    const auto sink =
        make_sink(options.format, options.input.schema.value_or(Schema::base), output);
    run.each(
        [format](Codec &codec, const Entry &entry, Product &product) {
            if (entry.format) {
                throw StreamError("", "an entry's text; expected encodings");
            }
            codec.decode(entry.encoding, entry.schema, format, entry.key, product.bytes);
        },
        [&](const Entry &entry, const Product &product) {
            sink->write(entry.key, entry.schema, product.bytes);
        });
    run.finish(output, sink.get());
    return run.conclude();
}

} // namespace aceconv::tool
