// aceconv convert: from one schema to the other through the record, with an
// account of everything that did not come along.
#include <algorithm>

#include "stream/errors.h"
#include "stream/text.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {

int run_convert(const ConvertOptions &options) {
    const Schema from = *options.input.schema;
    const Schema to = *options.to;
    if (from == to) {
        throw UsageError("--from and --to name the same schema");
    }
    Run run(options.common, options.input, options.output, Lists::joined);
    const RecordView view(run.descriptor());
    Output output(options.output, reader_gone(options.losses));
    const auto sink = make_sink(options.format, to, output);
    LossAccount account(options.losses,
                        "\"from\":\"" + std::string(schema_name(from)) + "\",\"to\":\"" +
                            std::string(schema_name(to)) + "\"",
                        run);
    run.each(
        [&view, to, format = text_format(options.format),
         wanted = losses_wanted(options.losses)](Codec &codec, Entry &entry, Product &product) {
            convert(codec, view, entry, to, format, product.bytes,
                    wanted ? &product.changes : nullptr);
        },
        [&](const Entry &entry, const Product &product) {
            sink->write(entry.key, to, product.bytes);
            account.add(entry, product.changes);
        });
    run.finish(output, sink.get());
    return std::max(account.finish(), run.conclude());
}

} // namespace aceconv::tool
