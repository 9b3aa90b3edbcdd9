#include "stream/source.h"

#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

/// The name of the first member of the object that `text` starts with.
std::string_view first_member(std::string_view text) {
    const std::size_t open = text.find('{');
    const std::size_t quote = open == text.npos ? open : text.find('"', open);
    const std::size_t end = quote == text.npos ? quote : text.find('"', quote + 1);
    return end == text.npos ? std::string_view() : text.substr(quote + 1, end - quote - 1);
}

bool is_document(std::string_view text) {
    const std::string_view name = first_member(text);
    return name.substr(name.find(':') == name.npos ? 0 : name.find(':') + 1) == "acls";
}

/// Reads on until `enough` holds for what lies in the window, within a limit.
template <class Enough>
void read_until(Window &window, Enough enough) {
    while (!enough(window.view()) && window.view().size() < max_entry_bytes && window.more()) {
    }
}

bool has_first_member(std::string_view text) {
    return !first_member(text).empty();
}

/// Whether the first line is a complete object.
bool starts_with_object_line(Window &window) {
    read_until(window, [](std::string_view text) { return text.find('\n') != text.npos; });
    std::string_view line = window.view().substr(0, window.view().find('\n'));
    while (!line.empty() && is_json_blank(line.back())) {
        line.remove_suffix(1);
    }
    return !line.empty() && line.front() == '{' && line.back() == '}';
}

InputFormat recognise(Window &window) {
    std::size_t blanks = 0;
    read_until(window, [&](std::string_view text) {
        while (blanks < text.size() && is_json_blank(text[blanks])) {
            ++blanks;
        }
        return blanks < text.size();
    });
    if (blanks == window.view().size()) {
        return InputFormat::ndjson; // no entries
    }
    const auto first = static_cast<unsigned char>(window.view()[blanks]);
    if (first == '<') {
        return InputFormat::xml;
    }
    if (first == '{') {
        read_until(window, has_first_member);
        return blanks == 0 && !is_document(window.view()) && starts_with_object_line(window)
                   ? InputFormat::ndjson
                   : InputFormat::json;
    }
    // Encodings and their labels are CBOR arrays, maps or tags.
    if (blanks == 0 && first >= 0x80 && first < 0xE0) {
        return InputFormat::cbor;
    }
    throw StreamError("", "expected JSON, XML or encodings, found '" +
                              printable(window.view().substr(blanks, 1)) + "'");
}

} // namespace

std::unique_ptr<Source> make_source(Window window, std::optional<InputFormat> format,
                                    std::optional<Schema> schema) {
    window.want(byte_order_mark.size());
    if (format != InputFormat::cbor && window.view().substr(0, 3) == byte_order_mark) {
        window.take(byte_order_mark.size());
    }
    if (!format) {
        format = recognise(window);
    }
    switch (*format) {
    case InputFormat::json:
        read_until(window, has_first_member);
        return is_document(window.view()) ? make_json_source(std::move(window), schema)
                                          : make_object_source(std::move(window), false, schema);
    case InputFormat::ndjson:
        return make_object_source(std::move(window), true, schema);
    case InputFormat::xml:
        return make_xml_source(std::move(window), schema);
    case InputFormat::cbor:
        break;
    }
    return make_encoding_source(std::move(window), schema.value_or(Schema::base));
}

std::unique_ptr<Source> open_source(const std::string &path, std::optional<InputFormat> format,
                                    std::optional<Schema> schema,
                                    std::shared_ptr<InputMeter> meter) {
    return make_source(Window(open_input(path, std::move(meter))), format, schema);
}

} // namespace aceconv
