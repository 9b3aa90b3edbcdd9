// aceconv convert: from one schema to the other through the record, with an
// account of everything that did not come along.
#include <algorithm>

#include "compare/changes.h"
#include "compare/leaves.h"
#include "compare/record_view.h"
#include "stream/errors.h"
#include "stream/text.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/run.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

/// Where `differences` tell of a field of the source record, shows it as the
/// source schema names it.
void show_original(std::vector<Difference> &differences, const std::vector<FieldValue> &original) {
    for (Difference &difference : differences) {
        for (const FieldValue &field : original) {
            if (difference.before && field.name == difference.before->name) {
                difference.before = field;
            }
        }
    }
}

/// What is lost is what the finished text no longer says: it is encoded again
/// and compared with the record that it was made from.
void convert(Codec &codec, const RecordView &view, Entry &entry, Schema to, Format format,
             Product &product) {
    const Schema from = entry.schema;
    const Encoding encoded = codec.encode(entry);
    const Bytes encoding(encoded.begin(), encoded.end());
    if (entry.format) {
        product.changes = lost_leaves(codec, entry, encoding);
    }
    DecodedRecord source(codec.descriptor(), encoding);
    const bool typed = has_fragment_type(source.get());
    const bool untranslated = translate_fragment_type(source.get(), from, to);
    const Bytes translated = typed ? source.encode() : encoding;
    codec.decode(translated, to, format, entry.key, product.bytes);

    Entry again{.key = entry.key, .schema = to, .format = format, .text = product.bytes};
    const Encoding encoded_again = codec.encode(again);
    if (!untranslated && std::equal(encoded_again.begin(), encoded_again.end(), translated.begin(),
                                    translated.end())) {
        return;
    }
    DecodedRecord target(codec.descriptor(), encoded_again);
    clear_derived_bits(source.get());
    clear_derived_bits(target.get());
    if (!untranslated && source.encode() == target.encode()) {
        return;
    }
    std::vector<Difference> differences = view.compare(source, target, to);
    const auto original = view.describe(DecodedRecord(codec.descriptor(), encoding).get(), from);
    for (const FieldValue &value : original) {
        if (untranslated && value.name == "FragmentFlags") {
            differences.push_back({value, std::nullopt});
        }
    }
    show_original(differences, original);
    std::vector<Change> changes = field_changes(differences, from);
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const RecordField *field = differences[i].any().field;
        const char *leaf = field == nullptr     ? ""
                           : to == Schema::base ? field->base_leaf
                                                : field->um_leaf;
        if (leaf == nullptr) {
            changes[i].reason = "the " + std::string(schema_name(to)) + " schema has no such leaf";
        }
        product.changes.push_back(std::move(changes[i]));
    }
}

/// The losses as a JSON document, written as they come.
class LossReport {
  public:
    LossReport(const std::string &path, Schema from, Schema to)
        : output_(path, ReaderGone::is_ignored) {
        output_.write("{\"from\":\"" + std::string(schema_name(from)) + "\",\"to\":\"" +
                      std::string(schema_name(to)) + "\",\"losses\":[");
    }
    void add(const Change &loss, const Entry &entry) {
        output_.write(std::exchange(first_, false) ? "\n" : ",\n");
        output_.write(change_json(loss, entry));
    }
    void finish(std::uint64_t entries, std::uint64_t with_losses) {
        output_.write("\n],\"entries\":" + std::to_string(entries) +
                      ",\"entries-with-losses\":" + std::to_string(with_losses) + "}\n");
        output_.commit();
    }

  private:
    Output output_;
    bool first_ = true;
};

} // namespace

int run_convert(const ConvertOptions &options) {
    const Schema from = *options.input.schema;
    const Schema to = *options.to;
    if (from == to) {
        throw UsageError("--from and --to name the same schema");
    }
    Run run(options.common, options.input, options.output, Lists::joined);
    const RecordView view(run.descriptor());
    Output output(options.output,
                  options.losses.strict ? ReaderGone::is_ignored : ReaderGone::ends);
    const auto sink = make_sink(options.format, to, output);
    std::optional<LossReport> report;
    if (!options.losses.report.empty()) {
        run.also_writes(options.losses.report);
        report.emplace(options.losses.report, from, to);
    }
    Tally &tally = run.tally();
    run.each([&view, to, format = text_format(options.format)](
                 Codec &codec, Entry &entry,
                 Product &product) { convert(codec, view, entry, to, format, product); },
             [&](const Entry &entry, const Product &product) {
                 sink->write(entry.key, to, product.bytes);
                 tally.entries_with_losses += product.changes.empty() ? 0U : 1U;
                 tally.losses += product.changes.size();
                 for (const Change &loss : product.changes) {
                     if (!options.losses.unsaid) {
                         say(shown_place(run.file(entry.position), entry.position, entry.key) +
                             "loss: " + change_text(loss));
                     }
                     if (report) {
                         report->add(loss, entry);
                     }
                 }
             });
    run.finish(output, sink.get());
    if (report && !run.stopped()) {
        report->finish(tally.entries, tally.entries_with_losses);
    }
    const bool failed = options.losses.strict && tally.losses != 0;
    return std::max<int>(failed ? exit_verdict : exit_ok, run.conclude());
}

} // namespace aceconv::tool
