// aceconv encode: entries to encodings.
#include <map>
#include <unistd.h>

#include "compare/decoded_record.h"
#include "stream/errors.h"
#include "stream/sink.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/run.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

/// The entries' earlier encodings: by list name and sequence number where they
/// have labels, else by position.
class StoredEncodings {
  public:
    StoredEncodings(const std::string &path, const bag_descriptor &descriptor) {
        const auto source = open_source(path, InputFormat::cbor, std::nullopt);
        Entry entry;
        while (source->next(entry)) {
            // The encoder would pass over one that cannot be read, and lose what it holds.
            static_cast<void>(DecodedRecord(descriptor, entry.encoding));
            const bool labelled = entry.key.acl || entry.key.sequence;
            auto &place = labelled ? by_key_[{entry.key.acl, entry.key.sequence}]
                                   : by_position_[entry.position.ordinal];
            place = std::move(entry.encoding);
        }
    }

    /// The one of this entry, or null. Its sequence number may not be known yet.
    [[nodiscard]] const Bytes *find(const EntryKey &key, std::uint64_t ordinal) const {
        const auto named = by_key_.find({key.acl, key.sequence});
        if (named != by_key_.end()) {
            return &named->second;
        }
        const auto placed = by_position_.find(ordinal);
        return placed != by_position_.end() ? &placed->second : nullptr;
    }

  private:
    std::map<std::pair<std::optional<std::string>, std::optional<std::uint32_t>>, Bytes> by_key_;
    std::map<std::uint64_t, Bytes> by_position_;
};

} // namespace

int run_encode(const EncodeOptions &options) {
    Run run(options.common, options.input, options.output, Lists::joined);
    if (options.output == "-" && isatty(STDOUT_FILENO) == 1) {
        throw UsageError("encodings are not for a terminal; redirect the output or give -o FILE");
    }
    std::optional<StoredEncodings> stored;
    if (!options.stored.empty()) {
        run.also_reads(options.stored);
        try {
            stored.emplace(options.stored, run.descriptor());
        } catch (const DataError &e) {
            FaultReport(options.stored).add({}, {}, e);
            return exit_trouble;
        }
    }
    Output output(options.output);
    const auto sink = make_sink(options.bare ? OutputFormat::bare_cbor : OutputFormat::cbor,
                                Schema::base, output);
    run.each(
        [&stored](Codec &codec, Entry &entry, Product &product) {
            if (!entry.format) {
                throw StreamError("", "an encoding already; expected entries in JSON or XML");
            }
            if (stored && entry.schema == Schema::um) {
                throw UsageError("--stored has no effect on entries of the UM schema");
            }
            Encoding encoding = codec.encode(entry);
            if (const Bytes *earlier =
                    stored ? stored->find(entry.key, entry.position.ordinal) : nullptr) {
                encoding = codec.encode(entry, *earlier);
            }
            append(product.bytes, encoding);
        },
        [&](const Entry &entry, const Product &product) {
            sink->write(entry.key, entry.schema, product.bytes);
        });
    run.finish(output, sink.get());
    return run.conclude();
}

} // namespace aceconv::tool
