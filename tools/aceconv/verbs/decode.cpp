// aceconv decode: encodings to entries.
#include <algorithm>

#include "stream/sink.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {

int run_decode(const DecodeOptions &options) {
    Run run(options.common, options.input, options.output, Lists::joined);
    const RecordView view(run.descriptor());
    Output output(options.output, reader_gone(options.losses, options.common));
    const auto sink =
        make_sink(options.format, options.input.schema.value_or(Schema::base), output);
    LossAccount account(options.losses, "\"verb\":\"decode\"", run);
    run.hand_over(output);
    run.each(
        [&view, format = options.format,
         wanted = losses_wanted(options.losses)](Codec &codec, Entry &entry, Product &product) {
            if (format == OutputFormat::text) {
                return say_entry({codec, view, wanted}, entry, product);
            }
            decode_entry({codec, view, wanted}, entry, text_format(format), product);
        },
        [&](const Entry &entry, const Product &product) {
            sink->write(entry.key, entry.schema, product.bytes);
            account.add(entry, product);
        });
    run.finish(output, account.finish_report(), sink.get());
    return std::max(account.verdict(), run.conclude());
}

} // namespace aceconv::tool
