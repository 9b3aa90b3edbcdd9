#include "tools/aceconv/html/html_record.h"

#include <algorithm>

#include "aceconv/ace_record.h"
#include "converter/inspection.h"
#include "tools/aceconv/html/html_page.h"

namespace aceconv::tool {
namespace {

constexpr std::size_t line_bytes = 8; // of the drawing
// Of the bits' drawing, in units of its own.
constexpr int bit_width = 10;
constexpr int mask_height = 14;

std::string number(std::size_t value) {
    return std::to_string(value);
}

/// Both masks, their first bits on the left.
std::string bits_drawing(const Inspected &record) {
    std::string marks, told;
    for (const FieldValue &field : record.fields) {
        for (const int bit : field.bits) {
            const std::string name = bit_name(bit);
            told += (told.empty() ? " " : ", ") + name;
            marks += "<rect x=\"" + std::to_string(bit % second_mask * bit_width) + "\" y=\"" +
                     std::to_string(bit / second_mask * mask_height) +
                     "\" width=\"9\" height=\"10\"><title>bit " + name + ": " +
                     html_text(field.name) + "</title></rect>";
        }
    }
    return "<svg class=\"bits\" viewBox=\"0 0 639 24\" role=\"img\" aria-label=\"presence bits" +
           (told.empty() ? " none" : told) +
           "\"><rect class=\"all\" width=\"639\" height=\"10\"></rect><rect class=\"all\" y=\"14\" "
           "width=\"639\" height=\"10\"></rect>" +
           marks + "</svg>";
}

std::string name_and_value(const FieldValue &field) {
    return "<b>" + html_text(field.name) + "</b> " + html_text(value_text(field));
}

/// What is told of a member where its cell is pointed at.
std::string details(const FieldValue &field) {
    return "<span class=\"tip\">" + name_and_value(field) + "<br>offset " + number(field.offset) +
           ", width " + number(field.width) + ", bits " + bits_text(field.bits) +
           (field.note.empty() ? "" : "<br>" + html_text(field.note)) + "</span>";
}

} // namespace

RecordDrawing::RecordDrawing(const std::vector<BagMember> &members) {
    for (const BagMember &member : members) {
        pad_to(member.offset);
        places_.push_back({member.name, member.offset, member.width});
    }
    pad_to(sizeof(ipv4_acl_config_ace));
}

void RecordDrawing::pad_to(std::size_t end) {
    std::size_t at = places_.empty() ? 0 : places_.back().offset + places_.back().width;
    while (at < end) {
        const std::size_t next = std::min(end, (at / line_bytes + 1) * line_bytes);
        places_.push_back({"", at, next - at});
        at = next;
    }
}

std::string RecordDrawing::layout_array() const {
    std::string array = "[";
    for (const auto &[name, offset, width] : places_) {
        array += (array.size() > 1 ? ",[" : "[") + script_text(name) + "," + number(offset) + "," +
                 number(width) + "]";
    }
    return array + "]";
}

/// A member of more than a line has lines of its own.
std::string RecordDrawing::row(const Inspected &record) const {
    std::string lines;
    std::size_t line = 0; // where the next one begins
    for (const auto &[name, offset, width] : places_) {
        for (; line <= offset; line += line_bytes) {
            lines += std::string(line == 0 ? "" : "</tr>\n") + "<tr><th scope=\"row\">" +
                     number(line) + "</th>";
        }
        const auto field = std::find_if(record.fields.begin(), record.fields.end(),
                                        [at = offset](const FieldValue &there) {
                                            return there.width != 0 && there.offset == at;
                                        });
        const bool is_set = field != record.fields.end();
        const bool is_mask = offset < sizeof(record.mask) + sizeof(record.mask2);
        const char *kind = name.empty() ? "padding" : is_set || is_mask ? "set" : "unset";
        lines += "<td class=\"" + std::string(kind) + "\" colspan=\"" +
                 number(std::min(width, line_bytes)) + "\" rowspan=\"" +
                 number(std::max<std::size_t>(width / line_bytes, 1)) + "\"" +
                 (is_set ? " tabindex=\"0\">" : ">") + "<span>" + html_text(name) + "</span>";
        if (is_mask) {
            lines += "<span class=\"value\">" +
                     mask_text(offset == 0 ? record.mask : record.mask2) + "</span>";
        }
        if (is_set) {
            lines += "<span class=\"value\">" + html_text(value_text(*field)) + "</span>" +
                     details(*field);
        }
        lines += "</td>";
    }
    std::string others;
    for (const FieldValue &field : record.fields) {
        if (field.width == 0) {
            others += "<p>" + name_and_value(field) + " " + html_text(field.note) + "</p>";
        }
    }
    return "<tr><td colspan=\"4\">" + bits_drawing(record) + "<table class=\"record\"><caption>" +
           number(record.bytes) +
           " bytes encoded; the record's 264 bytes, 8 a line</caption><tbody>" + lines +
           "</tr>\n</tbody></table>" + others + "</td></tr>\n";
}

std::string record_array(const Inspected &record) {
    std::string fields;
    for (const FieldValue &field : record.fields) {
        std::string bits;
        for (const int bit : field.bits) {
            bits += (bits.empty() ? "" : ",") + std::to_string(bit);
        }
        fields +=
            (fields.empty() ? "[" : ",[") + (field.width == 0 ? "null" : number(field.offset)) +
            "," + script_text(field.name) + "," + script_text(value_text(field)) + "," +
            script_text(bits_text(field.bits)) + ",[" + bits + "]," + script_text(field.note) + "]";
    }
    return "[" + number(record.bytes) + "," + script_text(mask_text(record.mask)) + "," +
           script_text(mask_text(record.mask2)) + ",[" + fields + "]]";
}

} // namespace aceconv::tool
