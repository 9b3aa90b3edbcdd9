// What is made of one entry, for each verb: the one way of the command and of the
// library.
//
// All functions fill in the entry's key as far as it is found, and throw DataError,
// SchemaUnknown for an encoding whose meaning depends on a schema that nothing tells,
// and UsageError. With `losses` they add what their product does not say of the entry.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "compare/losses.h"
#include "compare/record_view.h"
#include "compare/stored_records.h"
#include "converter/encoding_parts.h"
#include "stream/codec.h"

namespace aceconv {

/// A record.
struct Inspected {
    std::size_t bytes; // of the encoding
    std::uint64_t mask, mask2;
    std::vector<FieldValue> fields;
    std::string words;
    std::vector<EncodingPart> parts = {}; // of the encoding, where they were asked for
};

/// What is made of one entry: an encoding or text, and what did not come along.
struct Product {
    std::string bytes;
    std::vector<Change> changes;
    // The entry in words, where there are changes: as it was, and as it comes out, which may
    // be unknown. Both in terms of records.
    std::string words;
    std::string words_after;
    std::optional<Inspected> inspected = {}; // its record, for who keeps it
};

/// What all of them work with.
struct Workshop {
    Codec &codec;
    const RecordView &view;
    bool losses;             // wanted
    bool words_after = true; // and the words of what comes out, which cost a conversion back
};

/// The encoding of a text. `stored` is its earlier encoding, or empty.
void encode_entry(const Workshop &shop, Entry &entry, Encoding stored, Product &product);
/// The same with the earlier encoding of its list and sequence number.
void encode_entry(const Workshop &shop, Entry &entry, const StoredRecords &stored,
                  Product &product);

/// The text of an encoding, in its own schema.
void decode_entry(const Workshop &shop, Entry &entry, Format format, Product &product);

/// The same in words, and those alone; "" for a text, for what cannot be decoded, and for what
/// means another thing in each schema while nothing tells which it is.
void say_entry(const Workshop &shop, Entry &entry, Product &product);
std::string words_of_encoding(const bag_descriptor &descriptor, const Entry &entry);

/// The text in the schema `to` of a text or an encoding, which may be of that one already.
void convert_entry(const Workshop &shop, Entry &entry, Schema to, Format format, Product &product);

/// The record, and what its schema cannot say of it.
Inspected inspect_entry(const Workshop &shop, Entry &entry, Product &product, bool parts = false);

/// The encoding, and what does not come back when it is decoded again.
void check_entry(const Workshop &shop, Entry &entry, Product &product);

/// The encoding of a text or an encoding, to be compared with another one by `differences`.
void encode_to_compare(const Workshop &shop, Entry &entry, Product &product);

} // namespace aceconv
