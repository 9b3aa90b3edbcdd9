#include "compare/losses.h"

#include <algorithm>

#include "compare/entry_words.h"
#include "compare/kept_nodes.h"
#include "compare/loss_reasons.h"
#include "compare/quick_proof.h"
#include "compare/translation.h"

namespace aceconv {
namespace {

bool same(Encoding a, Encoding b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

/// What a record says, in the schema that it was written in.
struct Said {
    Encoding encoding;
    Schema schema;
};

/// A difference of the field `any` in the words of the schemas that its sides were
/// written in.
Change change_of(const FieldValue &any, const FieldValue *before, const FieldValue *after,
                 Schema schema) {
    const auto text = [](const FieldValue *value) {
        return value == nullptr ? std::nullopt : std::optional(value_text(*value));
    };
    const char *leaf = any.field == nullptr ? nullptr : any.field->leaf(schema);
    Change change;
    change.field = any.name;
    change.leaf = leaf == nullptr ? "" : leaf;
    change.before = text(before);
    change.after = text(after);
    change.before_value = before == nullptr ? TypedValue() : typed(*before);
    change.after_value = after == nullptr ? TypedValue() : typed(*after);
    return change;
}

/// Whether each difference is to be reasoned as a loss.
enum class Words : std::uint8_t { losses, differences };

std::vector<Change> compare_records(const RecordView &view, const bag_descriptor &descriptor,
                                    Said before, Said after, Words words) {
    DecodedRecord left(descriptor, before.encoding);
    DecodedRecord right(descriptor, after.encoding);
    const Translation translation = translate(left.get(), before.schema, after.schema);
    clear_derived_bits(left.get());
    clear_derived_bits(right.get());
    std::vector<Change> changes;
    if (translation.untranslated.empty() && left.encode() == right.encode()) {
        return changes; // there is one encoding for each content
    }
    const auto original =
        view.describe(DecodedRecord(descriptor, before.encoding).get(), before.schema);
    const auto left_values = view.describe(left.get(), after.schema);
    const auto right_values = view.describe(right.get(), after.schema);
    for (const Difference &difference : compare(left_values, right_values)) {
        const FieldValue *before_value =
            difference.before == nullptr ? nullptr : find_value(original, difference.any().name);
        Change change = change_of(difference.any(), before_value, difference.after, before.schema);
        const LossReason reason = loss_reason(difference, left_values, after.schema);
        const bool only_bits = difference.before != nullptr && difference.after != nullptr &&
                               same_value(*difference.before, *difference.after);
        if (words == Words::losses || only_bits) {
            change.reason = reason.text;
            change.widens = reason.widens;
        }
        changes.push_back(std::move(change));
    }
    for (const Untranslated &number : translation.untranslated) {
        const auto told = std::find_if(changes.begin(), changes.end(), [&](const Change &change) {
            return change.field == number.field;
        });
        if (told != changes.end()) {
            continue;
        }
        const FieldValue *own = find_value(original, number.field);
        Change change = change_of(*own, own, find_value(right_values, number.field), before.schema);
        change.reason = number.reason;
        change.widens = words == Words::losses;
        changes.push_back(std::move(change));
    }
    return changes;
}

/// The nodes of an entry that `encoding`, of this record, does not keep. Each leaf of
/// the base schema has a field of its own, as wide as its type, so its records keep
/// every node.
Losses losses_of_text(Codec &codec, const RecordView &view, const Entry &entry, Encoding encoding,
                      const ipv4_acl_config_ace &record) {
    if (codec.nodes() == nullptr || entry.schema == Schema::base ||
        surely_kept(*codec.nodes(), record)) {
        return {};
    }
    const ccv_yang_node &decoded = codec.decode_nodes(encoding, entry.schema, entry.key);
    return nodes_not_kept(codec, view, entry.schema, encoding, decoded);
}

} // namespace

void convert(Codec &codec, const RecordView &view, Entry &entry, Schema to, Format format,
             std::string &text, Losses *losses) {
    const Encoding encoding = codec.encode(entry);
    if (losses == nullptr && entry.schema == to) {
        codec.decode(encoding, to, format, entry.key, text);
        return;
    }
    DecodedRecord record(codec.descriptor(), encoding);
    if (losses != nullptr) {
        *losses = losses_of_text(codec, view, entry, encoding, record.get());
    }
    const Translation translation = translate(record.get(), entry.schema, to);
    const Bytes translated = translation.changed ? record.encode() : Bytes();
    const Encoding written = translation.changed ? Encoding(translated) : encoding;
    codec.decode(written, to, format, entry.key, text);
    if (losses == nullptr ||
        (translation.untranslated.empty() && surely_said(view, record.get(), to))) {
        return;
    }
    const Encoding again = codec.encode_nodes(codec.decode_nodes(written, to, entry.key), to);
    if (!translation.untranslated.empty() || !same(again, written)) {
        for (Change &loss : compare_records(view, codec.descriptor(), {encoding, entry.schema},
                                            {again, to}, Words::losses)) {
            losses->push_back(std::move(loss));
        }
    }
}

Losses losses_there_and_back(Codec &codec, const RecordView &view, const Entry &entry,
                             Encoding encoding) {
    const Schema schema = entry.schema;
    ccv_yang_node &nodes = codec.decode_nodes(encoding, schema, entry.key);
    Losses losses = nodes_not_kept(codec, view, schema, encoding, nodes);
    const Encoding again = codec.encode_nodes(nodes, schema);
    if (!same(again, encoding)) {
        for (Change &loss : compare_records(view, codec.descriptor(), {encoding, schema},
                                            {again, schema}, Words::losses)) {
            losses.push_back(std::move(loss));
        }
    }
    return losses;
}

std::string words_of_return(Codec &codec, const RecordView &view, const Entry &entry,
                            Encoding encoding, Schema to) {
    DecodedRecord record(codec.descriptor(), encoding);
    translate(record.get(), entry.schema, to);
    const Bytes written = record.encode();
    const Encoding again = codec.encode_nodes(codec.decode_nodes(written, to, entry.key), to);
    return entry_words(view, DecodedRecord(codec.descriptor(), again).get(), to,
                       entry.key.sequence);
}

Losses losses_of_encoding(Codec &codec, const RecordView &view, const Entry &entry,
                          Encoding encoding) {
    if (codec.nodes() == nullptr || entry.schema == Schema::base) {
        return {};
    }
    return losses_of_text(codec, view, entry, encoding,
                          DecodedRecord(codec.descriptor(), encoding).get());
}

Losses losses_of_stored(const RecordView &view, const bag_descriptor &descriptor, Encoding stored,
                        const std::string &why) {
    const auto values = view.describe(DecodedRecord(descriptor, stored).get(), Schema::um);
    const FieldValue *fields = find_value(values, "UDF");
    if (fields == nullptr || fields->user_fields.empty()) {
        return {};
    }
    Change loss = change_of(*fields, fields, nullptr, Schema::um);
    loss.reason = why;
    loss.widens = true;
    return {loss};
}

std::vector<Change> differences(const RecordView &view, const bag_descriptor &descriptor,
                                Encoding before, Schema before_schema, Encoding after,
                                Schema after_schema) {
    return compare_records(view, descriptor, {before, before_schema}, {after, after_schema},
                           Words::differences);
}

} // namespace aceconv
