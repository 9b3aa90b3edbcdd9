// aceconv encode: entries to encodings.
#include <algorithm>
#include <utility>

#include "stream/errors.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/products.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

/// Reads the file of stored encodings; false when it ended at a fault. Bad ones are
/// told, and errors of the run if it keeps going.
bool read_stored(const EncodeOptions &options, Run &run, StoredRecords &stored) {
    const auto source = open_source(options.stored, InputFormat::cbor, std::nullopt);
    for (;;) {
        Entry entry;
        try {
            if (!source->next(entry)) {
                return true;
            }
            stored.add(entry);
        } catch (const DataError &fault) {
            run.say_fault_of(shown_name(options.stored), entry, fault);
            if (!options.common.keep_going) {
                return false;
            }
            ++run.tally().errors;
        }
    }
}

} // namespace

int run_encode(const EncodeOptions &options) {
    const OutputFormat format = options.bare ? OutputFormat::bare_cbor : OutputFormat::cbor;
    Run run(options.common, options.input, options.output, format);
    const auto &inputs = options.input.paths;
    if (options.stored == "-" && std::find(inputs.begin(), inputs.end(), "-") != inputs.end()) {
        throw UsageError("only one of INPUT and --stored can be standard input");
    }
    StoredRecords stored(run.descriptor());
    const bool any_stored = !options.stored.empty();
    if (any_stored) {
        run.also_reads(options.stored);
        if (!read_stored(options, run, stored)) {
            run.abandon();
            return exit_trouble;
        }
    }
    const RecordView view(run.descriptor());
    Products products(run, format, Schema::base, reader_gone(options.losses, options.common));
    if (products.to_terminal()) {
        throw UsageError("encodings are not for a terminal; redirect the output or give -o FILE");
    }
    LossAccount account(options.losses, "\"verb\":\"encode\"", run);
    run.each(
        [&view, &stored = std::as_const(stored), any_stored,
         wanted = losses_wanted(options.losses, options.common)](Codec &codec, Entry &entry,
                                                                 Product &product) {
            if (any_stored && entry.format && entry.schema == Schema::um) {
                throw UsageError("--stored has no effect on entries of the UM schema");
            }
            encode_entry({codec, view, wanted}, entry, stored, product);
        },
        [&](const Entry &entry, const Product &product) {
            stored.meet(entry);
            products.write(entry, entry.schema, product.bytes);
            account.add(entry, product);
        });
    if (!run.stopped()) {
        for (const StoredRecords::Left &left : stored.left()) {
            Product product;
            product.changes =
                losses_of_stored(view, run.descriptor(), left.stored.encoding, left.why);
            account.add(shown_name(options.stored), left.stored, product);
        }
    }
    products.finish(account.finish_report());
    return std::max(account.verdict(), run.conclude());
}

} // namespace aceconv::tool
