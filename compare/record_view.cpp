#include "compare/record_view.h"

#include <algorithm>
#include <arpa/inet.h>
#include <bitset>
#include <cstdio>
#include <cstring>

#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

using Json = nlohmann::ordered_json;

std::string hex(std::uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", number);
    return text;
}

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

std::string address_text(const std::uint8_t *at) {
    char text[INET_ADDRSTRLEN]; // records hold addresses in network order
    return inet_ntop(AF_INET, at, text, sizeof text);
}

Json udf_value(const ace_udf_array &array) {
    Json elements = Json::array();
    for (std::uint32_t i = 0; array.elements != nullptr && i < array.count; ++i) {
        const ace_udf_element &element = array.elements[i];
        elements.push_back({{"name", printable({element.UDFName, strnlen(element.UDFName, 17)})},
                            {"value", hex(element.UDFValue)},
                            {"mask", hex(element.UDFMask)}});
    }
    return elements;
}

/// The value of a member, and whether it is anything but zero.
bool read_value(const ipv4_acl_config_ace &record, const BagMember &member, Schema schema,
                FieldValue &shown) {
    const auto *at = reinterpret_cast<const std::uint8_t *>(&record) + member.offset;
    const char type = member.type.back();
    if (member.type.front() == 'a') {
        const auto array = load<ace_udf_array>(at);
        shown.value = udf_value(array);
        return array.count != 0;
    }
    if (type == 's') {
        const auto *text = load<const char *>(at);
        shown.value = text == nullptr ? Json() : Json(text);
        if (text == nullptr) {
            shown.note = "marked present, but null";
        }
        return text != nullptr;
    }
    const std::uint64_t number = load_number(at, member.width);
    if (type == 'N') {
        shown.value = address_text(at);
    } else if (type == 'b' && number <= 1) {
        shown.value = number == 1;
    } else {
        shown.value = number;
    }
    shown.keyword = keyword_name(*shown.field, schema, number);
    return number != 0;
}

} // namespace

RecordView::RecordView(const bag_descriptor &descriptor) : members_(bag_members(descriptor)) {
    members_.erase(std::remove_if(members_.begin(), members_.end(),
                                  [](const BagMember &member) { return member.type == "H"; }),
                   members_.end());
    for (const BagMember &member : members_) {
        fields_.push_back(find_field(member.name));
        if (fields_.back() == nullptr) {
            throw IoError("the plug-in's record has an unknown field " + member.name);
        }
    }
    if (members_.size() != record_fields().size()) {
        throw IoError("the plug-in's record lacks fields that are expected");
    }
}

std::vector<FieldValue> RecordView::describe(const ipv4_acl_config_ace &record,
                                             Schema schema) const {
    std::bitset<mask_bits> bits(record.ConfigurationMask2);
    bits = bits << second_mask | std::bitset<mask_bits>(record.ConfigurationMask);
    std::vector<FieldValue> shown;
    for (std::size_t i = 0; i < members_.size(); ++i) {
        const BagMember &member = members_[i];
        FieldValue value;
        value.name = member.name;
        value.field = fields_[i];
        value.offset = member.offset;
        value.width = member.width;
        for (int bit = value.field->first_bit; bit >= 0 && bit <= value.field->last_bit; ++bit) {
            if (bits.test(static_cast<std::size_t>(bit))) {
                value.bits.push_back(bit);
                bits.reset(static_cast<std::size_t>(bit));
            }
        }
        const bool nonzero = read_value(record, member, schema, value);
        if (value.bits.empty() && !nonzero) {
            continue;
        }
        if (value.bits.empty()) {
            value.note = "not marked present";
        }
        shown.push_back(std::move(value));
    }
    for (std::size_t bit = 0; bit < bits.size(); ++bit) {
        if (bits.test(bit)) {
            FieldValue value{};
            value.name = "bit " + bit_name(static_cast<int>(bit));
            value.bits = {static_cast<int>(bit)};
            value.note = bit == 42 || bit == 43
                             ? "next hop " + std::to_string(bit - 40) + " is configured"
                             : "marks no field";
            shown.push_back(std::move(value));
        }
    }
    return shown;
}

std::vector<Difference> RecordView::compare(const DecodedRecord &before, const DecodedRecord &after,
                                            Schema schema) const {
    if (before.encode() == after.encode()) { // there is one encoding for each content
        return {};
    }
    std::vector<FieldValue> left = describe(before.get(), schema);
    std::vector<FieldValue> right = describe(after.get(), schema);
    std::vector<Difference> differences;
    for (FieldValue &value : left) {
        const auto twin = std::find_if(right.begin(), right.end(), [&](const FieldValue &other) {
            return other.name == value.name;
        });
        if (twin == right.end()) {
            differences.push_back({std::move(value), std::nullopt});
            continue;
        }
        if (twin->bits != value.bits || twin->value != value.value) {
            differences.push_back({std::move(value), std::move(*twin)});
        }
        right.erase(twin);
    }
    for (FieldValue &value : right) {
        differences.push_back({std::nullopt, std::move(value)});
    }
    return differences;
}

std::string value_text(const FieldValue &value) {
    if (value.width == 0) {
        return "set";
    }
    std::string text;
    if (value.value.is_array()) {
        for (const auto &element : value.value) {
            text += (text.empty() ? "" : ", ") + element["name"].get<std::string>() + " " +
                    element["value"].get<std::string>() + "/" + element["mask"].get<std::string>();
        }
        return text.empty() ? "empty" : text;
    }
    // Addresses are text too, but need no quotes.
    const bool address = value.width == 4 && value.value.is_string();
    if (value.value.is_string()) {
        text = address ? value.value.get<std::string>()
                       : "\"" + printable(value.value.get<std::string>()) + "\"";
    } else {
        text = value.value.dump();
    }
    return value.keyword.empty() ? text : text + " (" + value.keyword + ")";
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
