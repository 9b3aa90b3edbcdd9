// aceconv decode: encodings to entries.
#include <algorithm>

#include "tools/aceconv/losses.h"
#include "tools/aceconv/products.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {

int run_decode(const DecodeOptions &options) {
    Run run(options.common, options.input, options.output, options.format);
    const RecordView view(run.descriptor());
    Products products(run, options.format, options.input.schema.value_or(Schema::base),
                      reader_gone(options.losses, options.common));
    LossAccount account(options.losses, "\"verb\":\"decode\"", run);
    run.each(
        [&view, format = options.format, wanted = losses_wanted(options.losses, options.common),
         after = words_after_wanted(options.losses, options.common)](Codec &codec, Entry &entry,
                                                                     Product &product) {
            if (format == OutputFormat::text) {
                return say_entry({codec, view, wanted, after}, entry, product);
            }
            decode_entry({codec, view, wanted, after}, entry, text_format(format), product);
        },
        [&](const Entry &entry, const Product &product) {
            products.write(entry, entry.schema, product.bytes);
            account.add(entry, product);
        });
    products.finish(account.finish_report());
    return std::max(account.verdict(), run.conclude());
}

} // namespace aceconv::tool
