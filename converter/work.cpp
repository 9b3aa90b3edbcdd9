#include "converter/work.h"

#include "compare/entry_words.h"
#include "compare/schema_dependence.h"
#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

std::string words_of(const bag_descriptor &descriptor, const RecordView &view, const Entry &entry,
                     Encoding encoding) {
    const DecodedRecord record(descriptor, encoding);
    return entry_words(view, record.get(), entry.schema, entry.key.sequence);
}

/// The words of an entry with changes, and of what comes back from the schema `to` that it is
/// written in, if it is. `encoding` is what the codec has just made of it.
void add_words(const Workshop &shop, const Entry &entry, Encoding encoding,
               std::optional<Schema> to, Product &product) {
    if (product.changes.empty()) {
        return;
    }
    product.words = words_of(shop.codec.descriptor(), shop.view, entry, encoding);
    if (!to || !shop.words_after) {
        return;
    }
    try {
        product.words_after = words_of_return(shop.codec, shop.view, entry, encoding, *to);
    } catch (const DataError &) { // it cannot be written
    }
}

void require_encoding(const Entry &entry) {
    if (entry.format) {
        throw StreamError("", "an entry's text; expected encodings");
    }
}

/// Converts the entry, with words where it loses something.
void convert_with_words(const Workshop &shop, Entry &entry, Schema to, Format format,
                        Product &product) {
    convert(shop.codec, shop.view, entry, to, format, product.bytes,
            shop.losses ? &product.changes : nullptr);
    if (!product.changes.empty()) {
        add_words(shop, entry, entry.format ? shop.codec.encoded() : entry.encoding, to, product);
    }
}

/// `earlier` gives the encoding that goes with the entry, once its key is complete.
template <class Earlier>
void encode_text(const Workshop &shop, Entry &entry, Earlier earlier, Product &product) {
    if (!entry.format) {
        throw StreamError("", "an encoding already; expected entries in JSON or XML");
    }
    Encoding encoding = shop.codec.encode(entry);
    if (const Encoding stored = earlier(); !stored.empty()) {
        encoding = shop.codec.encode(entry, stored);
    }
    append(product.bytes, encoding);
    if (shop.losses) {
        product.changes = losses_of_encoding(shop.codec, shop.view, entry, encoding);
        add_words(shop, entry, encoding, std::nullopt, product);
    }
}

/// What the entry's schema cannot say of its record. One that it cannot write at all
/// is shown all the same.
Losses losses_of_record(const Workshop &shop, const Entry &entry, Encoding encoding) {
    try {
        return losses_there_and_back(shop.codec, shop.view, entry, encoding);
    } catch (const DataError &fault) {
        Change loss;
        loss.leaf = "entry";
        loss.before = "present";
        loss.before_value = {TypedValue::Type::present};
        loss.reason = "the " + std::string(schema_name(entry.schema)) +
                      " schema cannot write it: " + fault.what();
        return {loss};
    }
}

} // namespace

void encode_entry(const Workshop &shop, Entry &entry, Encoding stored, Product &product) {
    encode_text(
        shop, entry, [stored] { return stored; }, product);
}

void encode_entry(const Workshop &shop, Entry &entry, const StoredRecords &stored,
                  Product &product) {
    encode_text(
        shop, entry, [&] { return stored.find(entry); }, product);
}

void decode_entry(const Workshop &shop, Entry &entry, Format format, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
    require_encoding(entry);
    convert_with_words(shop, entry, entry.schema, format, product);
}

void say_entry(const Workshop &shop, Entry &entry, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
    require_encoding(entry);
    product.bytes = words_of(shop.codec.descriptor(), shop.view, entry, entry.encoding);
}

std::string words_of_encoding(const bag_descriptor &descriptor, const Entry &entry) {
    try {
        if (entry.format) {
            return "";
        }
        require_schema(descriptor, entry);
        return words_of(descriptor, RecordView(descriptor), entry, entry.encoding);
    } catch (const DataError &) {
        return "";
    } catch (const SchemaUnknown &) {
        return "";
    }
}

void convert_entry(const Workshop &shop, Entry &entry, Schema to, Format format, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
    if (!entry.schema_known) { // the record means the same in both
        entry.schema = to == Schema::base ? Schema::um : Schema::base;
    }
    convert_with_words(shop, entry, to, format, product);
}

Inspected inspect_entry(const Workshop &shop, Entry &entry, Product &product, bool parts) {
    require_schema(shop.codec.descriptor(), entry);
    const Encoding encoding = shop.codec.encode(entry);
    const DecodedRecord record(shop.codec.descriptor(), encoding);
    Inspected inspected{encoding.size(), record.get().ConfigurationMask,
                        record.get().ConfigurationMask2,
                        shop.view.describe(record.get(), entry.schema),
                        entry_words(shop.view, record.get(), entry.schema, entry.key.sequence)};
    if (parts) {
        inspected.parts = encoding_parts(shop.codec.descriptor(), encoding, inspected.fields);
    }
    if (shop.losses) {
        product.changes = losses_of_record(shop, entry, encoding);
        add_words(shop, entry, encoding, entry.schema, product);
    }
    return inspected;
}

void check_entry(const Workshop &shop, Entry &entry, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
    const Encoding encoding = shop.codec.encode(entry);
    append(product.bytes, encoding);
    product.changes = losses_there_and_back(shop.codec, shop.view, entry, encoding);
    add_words(shop, entry, encoding, entry.schema, product);
}

void encode_to_compare(const Workshop &shop, Entry &entry, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
    if (!entry.format) { // bad data even if there is nothing to compare it with
        static_cast<void>(DecodedRecord(shop.codec.descriptor(), entry.encoding));
    }
    const Encoding encoding = shop.codec.encode(entry);
    append(product.bytes, encoding);
    if (shop.losses) { // what the comparison cannot see
        product.changes = losses_of_encoding(shop.codec, shop.view, entry, encoding);
        add_words(shop, entry, encoding, std::nullopt, product);
    }
}

} // namespace aceconv
