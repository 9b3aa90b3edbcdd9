// One entry's text in either backend, and with an earlier encoding beside it.
#include "compare/stored_records.h"
#include "fuzz/pieces.h"
#include "fuzz/promises.h"

namespace aceconv::fuzz {
namespace {

constexpr Schema schemas[] = {Schema::base, Schema::um};

/// The fields of an encoding without the user-defined ones, which are counted.
std::string other_fields(Encoding encoding, std::size_t &user_fields) {
    DecodedRecord record(codec(Backend::bulk).descriptor(), encoding);
    user_fields = record.get().UDF.count;
    record.get().UDF = {};
    record.get().ConfigurationMask2 &= ~std::uint64_t{0xFFFFFF}; // the bits of its elements
    return std::string(text_of(record.encode()));
}

/// An earlier encoding adds its user-defined fields to the entry and changes nothing else; one
/// that is none changes nothing.
void check_stored_encoding(Entry entry, Encoding stored) {
    try {
        const std::string plain(text_of(codec(Backend::bulk).encode(entry)));
        const std::string merged(text_of(codec(Backend::bulk).encode(entry, stored)));
        Entry other = entry;
        require_same(text_of(codec(Backend::validating).encode(other, stored)), merged,
                     "both backends agree on what is taken over");
        std::size_t fields = 0, none = 0, earlier = 0;
        require_same(other_fields({bytes_of(plain), plain.size()}, none),
                     other_fields({bytes_of(merged), merged.size()}, fields),
                     "an earlier encoding gives user-defined fields alone");
        try {
            other_fields(stored, earlier);
        } catch (const DataError &) {
        }
        require(none == 0 && fields == earlier, "all user-defined fields are taken over");
    } catch (const DataError &) { // of the entry
    }
}

} // namespace

void check_entry(Input bytes) {
    Pieces pieces(bytes);
    const unsigned bits = pieces.number();
    const Schema schema = schemas[bits & 1U];
    const auto format = (bits & 2U) != 0 ? Format::xml : Format::json;
    const std::string text(pieces.rest());
    if (format == Format::json && (bits & 4U) != 0) {
        codec(Backend::bulk).look_ahead(schema, std::vector<std::string_view>{text, text});
    }
    check_text({.key = {"LIST", {}}, .schema = schema, .format = format, .text = text});
    codec(Backend::bulk).look_ahead(schema, {});
}

void check_stored(Input bytes) {
    Pieces pieces(bytes);
    const Entry entry{.format = Format::json, .text = std::string(pieces.text())};
    StoredRecords stored(codec(Backend::bulk).descriptor());
    while (!pieces.empty()) {
        constexpr const char *lists[] = {nullptr, "A", "B"};
        Entry earlier;
        const unsigned place = pieces.number();
        if (const char *list = lists[place % 3]) {
            earlier.key.acl = list;
        }
        if (place % 4 != 0) {
            earlier.key.sequence = place % 8;
        }
        earlier.position.ordinal = place % 16;
        const std::string_view encoding = pieces.text();
        earlier.encoding.assign(encoding.begin(), encoding.end());
        check_stored_encoding(entry, earlier.encoding);
        try {
            stored.add(earlier);
            const Encoding kept = stored.find(earlier);
            require(kept.empty() || text_of(kept) == encoding || !earlier.key.acl,
                    "an encoding is found by its key");
            stored.meet(earlier);
        } catch (const DataError &fault) {
            told(earlier, fault, "");
        }
    }
    for (const auto &left : stored.left()) {
        require(*left.why != '\0', "what is left over has a reason");
    }
}

} // namespace aceconv::fuzz
