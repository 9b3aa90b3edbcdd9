#include "converter/encoding_parts.h"

#include "stream/text.h"

namespace aceconv {
namespace {

std::string hex_of(Encoding bytes) {
    constexpr const char *digits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

std::string counted(std::uint64_t count, const std::string &what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string text_of(const BagPart &part, Encoding content, const std::vector<FieldValue> &fields) {
    switch (part.what) {
    case BagPart::What::array:
        return "array of " + std::to_string(part.value);
    case BagPart::What::fingerprint:
        return "fingerprint";
    case BagPart::What::members:
        return counted(part.value, "member");
    case BagPart::What::element:
        return "element of " + counted(part.value, "member");
    default:
        break;
    }
    if (part.kind == CborKind::array || part.kind == CborKind::map) {
        return counted(part.value, part.kind == CborKind::array ? "element" : "member");
    }
    if (const FieldValue *field = find_value(fields, part.member); field != nullptr) {
        return value_text(*field);
    }
    return part.kind == CborKind::number
               ? hexadecimal(part.value)
               : in_quotes({reinterpret_cast<const char *>(content.data()), content.size()});
}

} // namespace

std::vector<EncodingPart> encoding_parts(const bag_descriptor &descriptor, Encoding encoding,
                                         const std::vector<FieldValue> &fields) {
    std::vector<EncodingPart> shown;
    for (const BagPart &part : bag_parts(descriptor, encoding)) {
        const Encoding bytes = encoding.subspan(part.offset, part.size);
        const Encoding item = bytes.subspan(part.index_size);
        const bool is_string = part.kind == CborKind::bytes || part.kind == CborKind::text;
        const std::size_t length = is_string ? part.value : 0;
        const Encoding content = item.last(length);
        EncodingPart &row = shown.emplace_back();
        row.offset = part.offset;
        row.depth = part.depth;
        row.index = hex_of(bytes.first(part.index_size));
        row.first = hex_of(item.first(1));
        row.head = hex_of(item.subspan(1, item.size() - 1 - length));
        row.content = hex_of(content);
        row.member = part.member;
        if (part.what == BagPart::What::member) {
            row.member_index = part.index;
        }
        row.text = text_of(part, content, fields);
    }
    return shown;
}

} // namespace aceconv
