// aceconv inspect: records as an engineer reads them.
#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "stream/text.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/run.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

using Json = nlohmann::ordered_json;

std::string hex(std::uint64_t mask) {
    char text[20];
    std::snprintf(text, sizeof text, "0x%016lx", mask);
    return text;
}

std::string as_text(const std::string &name, const Inspected &inspected, const Style &style) {
    std::string text =
        style.bold(name) +
        style.faint(": " + std::to_string(inspected.bytes) + " bytes encoded, masks " +
                    hex(inspected.mask) + " " + hex(inspected.mask2)) +
        "\n";
    for (const FieldValue &field : inspected.fields) {
        char place[64];
        if (field.width == 0) {
            std::snprintf(place, sizeof place, "  %-20s %4s  ", bits_text(field.bits).c_str(), "");
        } else {
            std::snprintf(place, sizeof place, "  %-20s %4zu  ", bits_text(field.bits).c_str(),
                          field.offset);
        }
        char member[32];
        std::snprintf(member, sizeof member, "%-22s ", field.name.c_str());
        text += style.faint(place) + member + value_text(field);
        text += field.note.empty() ? "\n" : style.red("  ! " + field.note) + "\n";
    }
    return text;
}

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

/// `file` is empty where there is but one input.
std::string as_json(const std::string &file, const Entry &entry, const Inspected &inspected) {
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
    shown["bytes"] = inspected.bytes;
    shown["ConfigurationMask"] = hex(inspected.mask);
    shown["ConfigurationMask2"] = hex(inspected.mask2);
    shown["fields"] = std::move(fields);
    return shown.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace

int run_inspect(const InspectOptions &options) {
    Run run(options.common, options.input, options.output, Lists::apart);
    const RecordView view(run.descriptor());
    Output output(options.output, reader_gone(options.losses));
    const Style style(options.output == "-" ? STDOUT_FILENO : -1);
    bool headed = options.json;
    LossAccount account(options.losses, "\"verb\":\"inspect\"", run);
    run.hand_over(output);
    run.each(
        [&, wanted = losses_wanted(options.losses)](Codec &codec, Entry &entry, Product &product) {
            const Inspected inspected = inspect_entry({codec, view, wanted}, entry, product);
            product.bytes = options.json ? as_json(run.several() ? run.file(entry.position) : "",
                                                   entry, inspected)
                                         : as_text(run.shown(entry), inspected, style);
        },
        [&](const Entry &entry, const Product &product) {
            if (!std::exchange(headed, true)) {
                output.write(
                    style.faint("  presence bits      offset  field                  value\n"));
            }
            output.write(product.bytes);
            account.add(entry, product.changes);
        });
    run.finish(output, account.finish_report());
    return std::max(account.verdict(), run.conclude());
}

} // namespace aceconv::tool
