// aceconv convert: to one schema, from the other or the same, through the record,
// with an account of everything that did not come along.
#include <algorithm>

#include "stream/text.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/products.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

/// The first members of the report; each entry's own schema is the one to convert
/// from where no option names one.
std::string about(std::optional<Schema> from, Schema to) {
    const auto member = [](const char *name, Schema schema) {
        return "\"" + std::string(name) + "\":\"" + std::string(schema_name(schema)) + "\"";
    };
    return (from ? member("from", *from) + "," : "") + member("to", to);
}

} // namespace

int run_convert(const ConvertOptions &options) {
    const std::optional<Schema> from = options.input.schema;
    const Schema to = *options.to;
    Run run(options.common, options.input, options.output, options.format);
    const RecordView view(run.descriptor());
    Products products(run, options.format, to, reader_gone(options.losses, options.common));
    LossAccount account(options.losses, about(from, to), run);
    run.each(
        [&view, to, format = text_format(options.format),
         wanted = losses_wanted(options.losses, options.common),
         after = words_after_wanted(options.losses, options.common)](Codec &codec, Entry &entry,
                                                                     Product &product) {
            convert_entry({codec, view, wanted, after}, entry, to, format, product);
        },
        [&](const Entry &entry, const Product &product) {
            products.write(entry, to, product.bytes);
            account.add(entry, product);
        });
    products.finish(account.finish_report());
    return std::max(account.verdict(), run.conclude());
}

} // namespace aceconv::tool
