#include "converter/explanation.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "stream/text.h"

namespace aceconv {
namespace {

using Json = nlohmann::ordered_json;

/// Values of which the leaf takes one at least.
std::vector<Json> samples(const SchemaItem &item) {
    if (!item.names.empty()) {
        return {item.names.front().text};
    }
    if (item.least) {
        return {std::max<std::uint64_t>(*item.least, 1)};
    }
    // Empty leaves, presence containers, switches, addresses; names, hexadecimals, and flags.
    return {Json::array({nullptr}), Json::object(), true, "192.0.2.1", "+syn", "syn", "1"};
}

/// An entry that has `value` at this place.
Json entry_with(const std::vector<SchemaItem> &items, std::optional<std::size_t> place,
                Json value) {
    for (; place; place = items[*place].parent) {
        const SchemaItem &item = items[*place];
        if (item.type == "list") {
            const std::string &key = items[*place + 1].name;
            if (!value.contains(key)) {
                value[key] = "x";
            }
            value = Json::array({value});
        }
        value = {{item.name, value}};
    }
    return value;
}

std::vector<FieldValue> fields_of(Codec &codec, const RecordView &view, Schema schema,
                                  const Json &text) {
    Entry entry;
    entry.schema = schema;
    entry.format = Format::json;
    entry.text = text.dump();
    const DecodedRecord record(codec.descriptor(), codec.encode(entry));
    return view.describe(record.get(), schema);
}

Json item_object(const SchemaItem &item, Schema schema) {
    Json row = {{"schema", schema_name(schema)}, {"path", item.path}, {"type", item.type}};
    if (item.least) {
        row["least"] = *item.least;
        row["most"] = *item.most;
    }
    if (!item.names.empty()) {
        Json &names = row["names"] = Json::array();
        for (const SchemaItem::Name &name : item.names) {
            names.push_back({{"name", name.text}, {"number", name.number}});
        }
    }
    return row;
}

} // namespace

std::vector<FieldValue> fields_set_by(Codec &codec, const RecordView &view, Schema schema,
                                      const std::vector<SchemaItem> &items, std::size_t place) {
    const SchemaItem &item = items[place];
    std::vector<FieldValue> around;
    if (item.parent) {
        around = fields_of(codec, view, schema, entry_with(items, item.parent, Json::object()));
    }
    for (const Json &sample : samples(item)) {
        try {
            std::vector<FieldValue> fields = fields_of(
                codec, view, schema, entry_with(items, item.parent, {{item.name, sample}}));
            std::erase_if(fields, [&](const FieldValue &field) {
                const FieldValue *same = find_value(around, field.name);
                return field.field == nullptr ||
                       (same != nullptr && same->bits == field.bits && same_value(*same, field));
            });
            return fields;
        } catch (const DataError &) { // of another type
        }
    }
    return {};
}

std::string item_json(const SchemaItem &item, Schema schema) {
    return item_object(item, schema).dump();
}

std::string explanation_json(const SchemaItem &item, Schema schema,
                             const std::vector<FieldValue> &fields) {
    const Schema other = schema == Schema::base ? Schema::um : Schema::base;
    Json row = item_object(item, schema);
    Json &record = row["record"] = Json::array();
    for (const FieldValue &field : fields) {
        const char *leaf = field.field->leaf(other);
        Json bits = Json::array();
        for (int bit = field.field->first_bit; bit <= field.field->last_bit; ++bit) {
            bits.push_back(bit_name(bit));
        }
        record.push_back({{"field", field.name},
                          {"bits", bits},
                          {"offset", field.offset},
                          {"width", field.width},
                          {"other-leaf", leaf == nullptr ? Json() : Json(leaf)}});
    }
    return row.dump();
}

} // namespace aceconv
