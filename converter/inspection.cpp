#include "converter/inspection.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "stream/text.h"

namespace aceconv {
namespace {

using Json = nlohmann::ordered_json;

Json json_value(const FieldValue &field) {
    if (field.type == FieldType::user_fields) {
        Json elements = Json::array();
        for (const ace_udf_element &element : field.user_fields) {
            elements.push_back({{"name", user_field_name(element)},
                                {"value", hexadecimal(element.UDFValue)},
                                {"mask", hexadecimal(element.UDFMask)}});
        }
        return elements;
    }
    if (field.type == FieldType::address) {
        return value_text(field);
    }
    if (field.type == FieldType::text) {
        return field.text ? Json(*field.text) : Json();
    }
    return field.type == FieldType::boolean && field.number <= 1 ? Json(field.number == 1)
                                                                 : Json(field.number);
}

} // namespace

std::string inspection_json(const std::string &file, const Entry &entry,
                            const Inspected &inspected) {
    Json fields = Json::array();
    for (const FieldValue &field : inspected.fields) {
        Json row = {{"name", field.name}};
        Json &bits = row["bits"] = Json::array();
        for (const int bit : field.bits) {
            bits.push_back(bit_name(bit));
        }
        if (field.width != 0) {
            row["offset"] = field.offset;
            row["width"] = field.width;
            row["value"] = json_value(field);
        }
        if (const std::string keyword = field.keyword(); !keyword.empty()) {
            row["keyword"] = keyword;
        }
        if (!field.note.empty()) {
            row["note"] = field.note;
        }
        fields.push_back(std::move(row));
    }
    Json shown = Json::object();
    if (!file.empty()) {
        shown["file"] = file;
    }
    shown["acl"] = entry.key.acl ? Json(*entry.key.acl) : Json();
    shown["sequence"] = entry.key.sequence ? Json(*entry.key.sequence) : Json();
    shown["schema"] = entry.schema_known ? Json(schema_name(entry.schema)) : Json();
    shown["words"] = inspected.words;
    shown["bytes"] = inspected.bytes;
    shown["ConfigurationMask"] = mask_text(inspected.mask);
    shown["ConfigurationMask2"] = mask_text(inspected.mask2);
    shown["fields"] = std::move(fields);
    return shown.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string mask_text(std::uint64_t mask) {
    char text[20];
    std::snprintf(text, sizeof text, "0x%016lx", mask);
    return text;
}

} // namespace aceconv
