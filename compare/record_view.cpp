#include "compare/record_view.h"

#include <algorithm>
#include <arpa/inet.h>
#include <bit>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

template <class Number>
Number load(const void *at) {
    Number number;
    std::memcpy(&number, at, sizeof number);
    return number;
}

std::uint64_t load_number(const std::uint8_t *at, std::size_t width) {
    switch (width) {
    case 1:
        return *at;
    case 2:
        return load<std::uint16_t>(at);
    case 4:
        return load<std::uint32_t>(at);
    default:
        return load<std::uint64_t>(at);
    }
}

std::string address_text(std::uint64_t number) {
    const auto address = static_cast<std::uint32_t>(number);
    char text[INET_ADDRSTRLEN]; // records hold addresses in network order
    return inet_ntop(AF_INET, &address, text, sizeof text);
}

/// The type of a member that the bag description writes so.
FieldType type_of(const std::string &described) {
    if (described.front() == 'a') {
        return FieldType::user_fields;
    }
    switch (described.back()) {
    case 's':
        return FieldType::text;
    case 'N':
        return FieldType::address;
    case 'b':
        return FieldType::boolean;
    default:
        return FieldType::number;
    }
}

/// Whether the member of `width` bytes has one that is not zero.
bool is_set(const std::uint8_t *at, std::size_t width) {
    return width <= sizeof(std::uint64_t) && std::has_single_bit(width)
               ? load_number(at, width) != 0
               : std::any_of(at, at + width, [](std::uint8_t byte) { return byte != 0; });
}

/// Adds the bits of one of the two masks, whose first one is called `first`.
void add_bits(std::uint64_t mask, int first, std::vector<int> &bits) {
    for (; mask != 0; mask &= mask - 1) {
        bits.push_back(first + std::countr_zero(mask));
    }
}

/// Reads the value of the member at `at`; whether it is anything but zero.
bool read_value(const std::uint8_t *at, FieldValue &shown) {
    if (shown.type == FieldType::user_fields) {
        const auto array = load<ace_udf_array>(at);
        if (array.elements != nullptr) {
            shown.user_fields.assign(array.elements, array.elements + array.count);
        }
        return array.count != 0;
    }
    if (shown.type == FieldType::text) {
        if (const auto *text = load<const char *>(at); text != nullptr) {
            shown.text = text;
        } else {
            shown.note = "marked present, but null";
        }
        return shown.text.has_value();
    }
    shown.number = load_number(at, shown.width);
    return shown.number != 0;
}

std::string number_text(const FieldValue &value) {
    if (value.type == FieldType::boolean && value.number <= 1) {
        return value.number == 1 ? "true" : "false";
    }
    return std::to_string(value.number);
}

std::string user_fields_text(const std::vector<ace_udf_element> &elements) {
    std::string text;
    for (const ace_udf_element &element : elements) {
        text += (text.empty() ? "" : ", ") + user_field_name(element) + " " +
                hexadecimal(element.UDFValue) + "/" + hexadecimal(element.UDFMask);
    }
    return text.empty() ? "empty" : text;
}

bool same_user_field(const ace_udf_element &a, const ace_udf_element &b) {
    return std::memcmp(a.UDFName, b.UDFName, sizeof a.UDFName) == 0 && a.UDFValue == b.UDFValue &&
           a.UDFMask == b.UDFMask;
}

} // namespace

RecordView::RecordView(const bag_descriptor &descriptor) {
    for (const BagMember &member : bag_members(descriptor)) {
        if (member.type == "H") {
            continue;
        }
        const RecordField *field = find_field(member.name);
        if (field == nullptr) {
            throw IoError("the plug-in's record has an unknown field " + member.name);
        }
        const Place place{member.offset, member.width};
        members_.push_back({place, type_of(member.type), field, marks_of(*field)});
        for (int bit = field->first_bit; bit >= 0 && bit <= field->last_bit; ++bit) {
            marked_.at(static_cast<std::size_t>(bit)) = place;
        }
    }
    if (members_.size() != record_fields().size()) {
        throw IoError("the plug-in's record lacks fields that are expected");
    }
}

std::vector<FieldValue> RecordView::describe(const ipv4_acl_config_ace &record,
                                             Schema schema) const {
    Marks left{record.ConfigurationMask, record.ConfigurationMask2};
    std::vector<FieldValue> shown;
    shown.reserve(members_.size() / 2); // of most records
    for (const Member &member : members_) {
        const Marks marks{left.first & member.marks.first, left.second & member.marks.second};
        const bool marked = (marks.first | marks.second) != 0;
        const auto *at = reinterpret_cast<const std::uint8_t *>(&record) + member.place.offset;
        if (!marked && !is_set(at, member.place.width)) { // most of them
            continue;
        }
        FieldValue &value = shown.emplace_back();
        value.name = member.field->name;
        value.field = member.field;
        value.offset = member.place.offset;
        value.width = member.place.width;
        value.type = member.type;
        value.schema = schema;
        add_bits(marks.first, 0, value.bits);
        add_bits(marks.second, second_mask, value.bits);
        left.first &= ~marks.first;
        left.second &= ~marks.second;
        const bool nonzero = read_value(at, value);
        if (!marked && !nonzero) {
            shown.pop_back();
        } else if (!marked) {
            value.note = "not marked present";
        }
    }
    std::vector<int> bits;
    add_bits(left.first, 0, bits);
    add_bits(left.second, second_mask, bits);
    for (const int bit : bits) {
        FieldValue &value = shown.emplace_back();
        value.name = "bit " + bit_name(bit);
        value.bits = {bit};
        value.note = is_next_hop_bit(bit)
                         ? "next hop " + std::to_string(bit - 40) + " is configured"
                         : "marks no field";
    }
    return shown;
}

bool RecordView::marks_all(const ipv4_acl_config_ace &record) const {
    ipv4_acl_config_ace unmarked = record;
    auto *const bytes = reinterpret_cast<std::uint8_t *>(&unmarked);
    const auto clear = [&](std::uint64_t mask, int first) {
        for (; mask != 0; mask &= mask - 1) {
            const Place &place = marked_[static_cast<std::size_t>(first + std::countr_zero(mask))];
            std::memset(bytes + place.offset, 0, place.width);
        }
    };
    clear(record.ConfigurationMask, 0);
    clear(record.ConfigurationMask2, second_mask);
    unmarked.ConfigurationMask = unmarked.ConfigurationMask2 = 0;
    static constexpr ipv4_acl_config_ace empty{};
    return std::memcmp(&unmarked, &empty, sizeof empty) == 0;
}

bool same_value(const FieldValue &a, const FieldValue &b) {
    return a.number == b.number && a.text == b.text &&
           std::equal(a.user_fields.begin(), a.user_fields.end(), b.user_fields.begin(),
                      b.user_fields.end(), same_user_field);
}

const FieldValue *find_value(const std::vector<FieldValue> &values, std::string_view name) {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const FieldValue &value) { return value.name == name; });
    return found == values.end() ? nullptr : &*found;
}

std::vector<Difference> compare(const std::vector<FieldValue> &before,
                                const std::vector<FieldValue> &after) {
    std::vector<Difference> differences;
    for (const FieldValue &value : before) {
        const FieldValue *twin = find_value(after, value.name);
        if (twin == nullptr || twin->bits != value.bits || !same_value(*twin, value)) {
            differences.push_back({&value, twin});
        }
    }
    for (const FieldValue &value : after) {
        if (find_value(before, value.name) == nullptr) {
            differences.push_back({nullptr, &value});
        }
    }
    return differences;
}

std::string hexadecimal(std::uint64_t number) {
    char text[20];
    std::snprintf(text, sizeof text, "0x%" PRIx64, number);
    return text;
}

std::string user_field_name(const ace_udf_element &element) {
    std::string_view name(element.UDFName, sizeof element.UDFName);
    name = name.substr(0, name.find_last_not_of('\0') + 1);
    std::string text;
    for (const char byte : name) {
        char shown[8] = {byte};
        if (byte == '\\') {
            shown[1] = byte;
        } else if (byte < ' ' || byte > '~') {
            std::snprintf(shown, sizeof shown, "\\x%02x", static_cast<unsigned char>(byte));
        }
        text += shown;
    }
    return text;
}

std::string value_text(const FieldValue &value) {
    std::string text;
    switch (value.type) {
    case FieldType::bit:
        return "set";
    case FieldType::user_fields:
        return user_fields_text(value.user_fields);
    case FieldType::text:
        return value.text ? "\"" + printable(*value.text) + "\"" : "null";
    case FieldType::address:
        return address_text(value.number);
    default:
        text = number_text(value);
    }
    const std::string keyword = value.keyword();
    return keyword.empty() ? text : text + " (" + keyword + ")";
}

std::string FieldValue::keyword() const {
    const bool may_have_one = type == FieldType::number || type == FieldType::boolean;
    return may_have_one ? keyword_name(*field, schema, number) : "";
}

TypedValue typed(const FieldValue &value) {
    using Type = TypedValue::Type;
    switch (value.type) {
    case FieldType::bit:
        return {Type::present};
    case FieldType::user_fields:
        return {Type::user_fields};
    case FieldType::text:
        return value.text ? TypedValue{Type::text, 0, *value.text} : TypedValue{Type::present};
    case FieldType::address:
        return {Type::address, ntohl(static_cast<std::uint32_t>(value.number)), value_text(value)};
    case FieldType::boolean:
        return {value.number <= 1 ? Type::boolean : Type::number, value.number};
    case FieldType::number:
        break;
    }
    const std::string keyword = value.keyword();
    return {keyword.empty() ? Type::number : Type::keyword, value.number, keyword};
}

std::string bits_text(const std::vector<int> &bits) {
    std::string text;
    for (std::size_t i = 0; i < bits.size();) {
        std::size_t last = i;
        while (last + 1 < bits.size() && bits[last + 1] == bits[last] + 1) {
            ++last;
        }
        const std::string name = bit_name(bits[i]);
        text += text.empty() ? name : "," + name.substr(name.find(':') + 1);
        if (last > i) {
            const std::string end = bit_name(bits[last]);
            text += "-" + end.substr(end.find(':') + 1);
        }
        i = last + 1;
    }
    return text.empty() ? "-" : text;
}

} // namespace aceconv
