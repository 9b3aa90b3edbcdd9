// aceconv inspect: records as an engineer reads them.
#include <algorithm>
#include <cstdio>
#include <unistd.h>

#include "converter/inspection.h"
#include "stream/text.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/run.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

/// A line, with as much of a string's content as there is room for, and further ones below.
std::string part_text(const EncodingPart &part, const Style &style) {
    constexpr std::size_t room = 38;
    std::string line = "  " + std::string(std::size_t{2} * part.depth, ' ');
    for (const std::string *group : {&part.index, &part.first, &part.head}) {
        line += group->empty() ? "" : *group + " ";
    }
    const std::size_t indent = line.size();
    const std::size_t most = indent + 8 < room ? (room - indent) / 2 * 2 : 8; // digits
    char offset[24];
    std::snprintf(offset, sizeof offset, "  %6zu", part.offset);
    line += part.content.substr(0, most);
    line.resize(std::max<std::size_t>(line.size(), room + 2), ' ');
    std::string member;
    if (!part.member.empty()) {
        member = part.member + " ";
        member.resize(std::max<std::size_t>(member.size(), 20), ' ');
    }
    std::string text = style.faint(offset + line) + member + part.text + "\n";
    for (std::size_t at = most; at < part.content.size(); at += most) {
        text += style.faint(std::string(8 + indent, ' ') + part.content.substr(at, most)) + "\n";
    }
    return text;
}

std::string as_text(const std::string &name, const Inspected &inspected, const Style &style) {
    std::string text =
        style.bold(name) + ": " + inspected.words + "\n" +
        style.faint("  " + std::to_string(inspected.bytes) + " bytes encoded, masks " +
                    mask_text(inspected.mask) + " " + mask_text(inspected.mask2)) +
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
    for (const EncodingPart &part : inspected.parts) {
        text += part_text(part, style);
    }
    return text;
}

} // namespace

int run_inspect(const InspectOptions &options) {
    Run run(options.common, options.input, options.output, Lists::apart);
    const RecordView view(run.descriptor());
    Output output(options.output, reader_gone(options.losses, options.common));
    const Style style(options.output == "-" ? STDOUT_FILENO : -1);
    bool headed = options.json;
    LossAccount account(options.losses, "\"verb\":\"inspect\"", run);
    run.hand_over(output);
    run.findings().watch(output, options.output);
    run.findings().draw_records(bag_members(run.descriptor()));
    run.each(
        [&, wanted = losses_wanted(options.losses, options.common)](Codec &codec, Entry &entry,
                                                                    Product &product) {
            Inspected inspected = inspect_entry({codec, view, wanted}, entry, product, options.hex);
            product.bytes = options.json
                                ? inspection_json(run.several() ? run.file(entry.position) : "",
                                                  entry, inspected) +
                                      "\n"
                                : as_text(run.shown(entry), inspected, style);
            if (!options.common.html.empty()) {
                product.inspected = std::move(inspected);
            }
        },
        [&](const Entry &entry, const Product &product) {
            if (!std::exchange(headed, true)) {
                output.write(
                    style.faint("  presence bits      offset  field                  value\n"));
            }
            output.write(product.bytes);
            account.add(entry, product);
            if (product.changes.empty()) {
                run.findings().add_record(run.file(entry.position), entry, product);
            }
        });
    run.finish(output, account.finish_report());
    return std::max(account.verdict(), run.conclude());
}

} // namespace aceconv::tool
