// aceconv encode: entries to encodings.
#include <algorithm>
#include <unistd.h>
#include <utility>

#include "compare/changes.h"
#include "compare/record_view.h"
#include "compare/stored_records.h"
#include "stream/errors.h"
#include "stream/sink.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/run.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

/// Reads the file of stored encodings; false when it has a fault, which is told.
bool read_stored(const std::string &path, StoredRecords &stored) {
    Entry entry;
    try {
        const auto source = open_source(path, InputFormat::cbor, std::nullopt);
        while (source->next(entry)) {
            stored.add(entry);
        }
        return true;
    } catch (const DataError &fault) {
        FaultReport(path).add(entry.position, entry.key, fault);
        return false;
    }
}

/// The losses of stored encodings that have met no entry.
void say_left(const StoredRecords &stored, const EncodeOptions &options, Run &run) {
    const RecordView view(run.descriptor());
    for (const StoredRecords::Left &left : stored.left()) {
        const DecodedRecord record(run.descriptor(), left.stored.encoding);
        Change loss;
        loss.field = "UDF";
        loss.reason = left.why;
        for (const FieldValue &value : view.describe(record.get(), left.stored.schema)) {
            if (value.name == loss.field) {
                loss.before = value_text(value);
            }
        }
        ++run.tally().losses;
        ++run.tally().entries_with_losses;
        if (!options.losses.unsaid) {
            say(shown_place(shown_name(options.stored), left.stored.position, left.stored.key) +
                "loss: " + change_text(loss));
        }
    }
}

} // namespace

int run_encode(const EncodeOptions &options) {
    Run run(options.common, options.input, options.output, Lists::joined);
    if (options.output == "-" && isatty(STDOUT_FILENO) == 1) {
        throw UsageError("encodings are not for a terminal; redirect the output or give -o FILE");
    }
    const auto &inputs = options.input.paths;
    if (options.stored == "-" && std::find(inputs.begin(), inputs.end(), "-") != inputs.end()) {
        throw UsageError("only one of INPUT and --stored can be standard input");
    }
    StoredRecords stored(run.descriptor());
    const bool any_stored = !options.stored.empty();
    if (any_stored) {
        run.also_reads(options.stored);
        if (!read_stored(options.stored, stored)) {
            return exit_trouble;
        }
    }
    Output output(options.output,
                  options.losses.strict ? ReaderGone::is_ignored : ReaderGone::ends);
    const auto sink = make_sink(options.bare ? OutputFormat::bare_cbor : OutputFormat::cbor,
                                Schema::base, output);
    run.each(
        [&stored = std::as_const(stored), any_stored](Codec &codec, Entry &entry,
                                                      Product &product) {
            if (!entry.format) {
                throw StreamError("", "an encoding already; expected entries in JSON or XML");
            }
            if (any_stored && entry.schema == Schema::um) {
                throw UsageError("--stored has no effect on entries of the UM schema");
            }
            Encoding encoding = codec.encode(entry); // completes the entry's key
            if (const Encoding earlier = stored.find(entry); !earlier.empty()) {
                encoding = codec.encode(entry, earlier);
            }
            append(product.bytes, encoding);
        },
        [&](const Entry &entry, const Product &product) {
            stored.meet(entry);
            sink->write(entry.key, entry.schema, product.bytes);
        });
    run.finish(output, sink.get());
    if (!run.stopped()) {
        say_left(stored, options, run);
    }
    const bool lost = options.losses.strict && run.tally().losses != 0;
    return std::max<int>(run.conclude(), lost ? exit_verdict : exit_ok);
}

} // namespace aceconv::tool
