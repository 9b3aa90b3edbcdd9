#include "converter/inspection.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "stream/text.h"

namespace aceconv {
namespace {

/// What is no UTF-8 in it is replaced.
std::string quoted(const std::string &text) {
    using Json = nlohmann::json;
    return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// An object or an array, put together as text: a tree of the library's takes memory to be
/// released, and ends the process if there is none.
class JsonText {
  public:
    JsonText(char open, char close) : text_(1, open), close_(close) {}
    void add(const std::string &element) {
        text_ += text_.size() > 1 ? "," : "";
        text_ += element;
    }
    void add(const char *name, const std::string &value) { add(quoted(name) + ":" + value); }
    [[nodiscard]] std::string done() const { return text_ + close_; }

  private:
    std::string text_;
    const char close_;
};

std::string json_value(const FieldValue &field) {
    if (field.type == FieldType::user_fields) {
        JsonText elements('[', ']');
        for (const ace_udf_element &element : field.user_fields) {
            JsonText object('{', '}');
            object.add("name", quoted(user_field_name(element)));
            object.add("value", quoted(hexadecimal(element.UDFValue)));
            object.add("mask", quoted(hexadecimal(element.UDFMask)));
            elements.add(object.done());
        }
        return elements.done();
    }
    if (field.type == FieldType::address) {
        return quoted(value_text(field));
    }
    if (field.type == FieldType::text) {
        return field.text ? quoted(*field.text) : "null";
    }
    return field.type == FieldType::boolean && field.number <= 1
               ? (field.number == 1 ? "true" : "false")
               : std::to_string(field.number);
}

std::string json_field(const FieldValue &field) {
    JsonText bits('[', ']');
    for (const int bit : field.bits) {
        bits.add(quoted(bit_name(bit)));
    }
    JsonText row('{', '}');
    row.add("name", quoted(field.name));
    row.add("bits", bits.done());
    if (field.width != 0) {
        row.add("offset", std::to_string(field.offset));
        row.add("width", std::to_string(field.width));
        row.add("value", json_value(field));
    }
    if (const std::string keyword = field.keyword(); !keyword.empty()) {
        row.add("keyword", quoted(keyword));
    }
    if (!field.note.empty()) {
        row.add("note", quoted(field.note));
    }
    return row.done();
}

std::string json_part(const EncodingPart &part) {
    JsonText row('{', '}');
    row.add("offset", std::to_string(part.offset));
    row.add("depth", std::to_string(part.depth));
    row.add("hex", quoted(part.index + part.first + part.head + part.content));
    if (part.member_index) {
        row.add("index", std::to_string(*part.member_index));
        row.add("member", quoted(part.member));
    }
    row.add("text", quoted(part.text));
    return row.done();
}

} // namespace

std::string inspection_json(const std::string &file, const Entry &entry,
                            const Inspected &inspected) {
    JsonText fields('[', ']');
    for (const FieldValue &field : inspected.fields) {
        fields.add(json_field(field));
    }
    JsonText shown('{', '}');
    if (!file.empty()) {
        shown.add("file", quoted(file));
    }
    const EntryKey &key = entry.key;
    shown.add("acl", key.acl ? quoted(*key.acl) : "null");
    shown.add("sequence", key.sequence ? std::to_string(*key.sequence) : "null");
    shown.add("schema",
              entry.schema_known ? quoted(std::string(schema_name(entry.schema))) : "null");
    shown.add("words", quoted(inspected.words));
    shown.add("bytes", std::to_string(inspected.bytes));
    shown.add("ConfigurationMask", quoted(mask_text(inspected.mask)));
    shown.add("ConfigurationMask2", quoted(mask_text(inspected.mask2)));
    shown.add("fields", fields.done());
    if (!inspected.parts.empty()) {
        JsonText parts('[', ']');
        for (const EncodingPart &part : inspected.parts) {
            parts.add(json_part(part));
        }
        shown.add("encoding", parts.done());
    }
    return shown.done();
}

std::string mask_text(std::uint64_t mask) {
    char text[20];
    std::snprintf(text, sizeof text, "0x%016lx", mask);
    return text;
}

} // namespace aceconv
