#include "converter/work.h"

#include "compare/schema_dependence.h"
#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

/// `earlier` gives the encoding that goes with the entry, once its key is complete.
template <class Earlier>
void encode_text(const Workshop &shop, Entry &entry, Earlier earlier, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
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
    if (entry.format) {
        throw StreamError("", "an entry's text; expected encodings");
    }
    convert(shop.codec, shop.view, entry, entry.schema, format, product.bytes,
            shop.losses ? &product.changes : nullptr);
}

void convert_entry(const Workshop &shop, Entry &entry, Schema to, Format format, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
    if (!entry.schema_known) { // the record means the same in both
        entry.schema = to == Schema::base ? Schema::um : Schema::base;
    }
    convert(shop.codec, shop.view, entry, to, format, product.bytes,
            shop.losses ? &product.changes : nullptr);
}

Inspected inspect_entry(const Workshop &shop, Entry &entry, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
    const Encoding encoding = shop.codec.encode(entry);
    const DecodedRecord record(shop.codec.descriptor(), encoding);
    Inspected inspected{encoding.size(), record.get().ConfigurationMask,
                        record.get().ConfigurationMask2,
                        shop.view.describe(record.get(), entry.schema)};
    if (shop.losses) {
        product.changes = losses_of_record(shop, entry, encoding);
    }
    return inspected;
}

void check_entry(const Workshop &shop, Entry &entry, Product &product) {
    require_schema(shop.codec.descriptor(), entry);
    const Encoding encoding = shop.codec.encode(entry);
    append(product.bytes, encoding);
    product.changes = losses_there_and_back(shop.codec, shop.view, entry, encoding);
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
    }
}

} // namespace aceconv
