#include "stream/source.h"

#include <cctype>

#include "host/json_scan.h"
#include "stream/digits.h"
#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

/// Reads on until `enough` holds for what lies in the window, within a limit.
template <class Enough>
void read_until(Window &window, Enough enough) {
    while (!enough(window.view()) && window.view().size() < max_entry_bytes && window.more()) {
    }
}

/// The name of the first member of the object that the input starts with; "" when
/// there is none.
std::string first_member(Window &window) {
    JsonScan scan;
    std::size_t at = 0;
    std::size_t begin = 0; // of the name
    std::string name;
    read_until(window, [&](std::string_view text) {
        while ((at = scan.next(text, at)) < text.size()) {
            begin = scan.in_string() ? at : begin;
            ++at;
            if (text[at - 1] == '"' && !scan.in_string()) {
                name = json_string(text.substr(begin, at - begin)).value_or("");
                return true;
            }
            if (scan.depth() == 0) {
                return true;
            }
        }
        return false;
    });
    return name;
}

/// A document's members are of some module; those of an entry may be, but only of one of ours.
bool is_document(Window &window) {
    const std::string name = first_member(window);
    const std::string local = name.substr(name.find(':') + 1); // npos + 1 is 0
    const auto split = split_name(name);
    return local == "acls" || !split || (split->schema && (local == "acl" || local == "entry"));
}

/// Whether the first line is a complete object.
bool starts_with_object_line(Window &window) {
    std::size_t seen = 0;
    std::size_t end = std::string_view::npos;
    read_until(window, [&](std::string_view text) {
        end = text.find('\n', seen);
        seen = text.size();
        return end != text.npos;
    });
    std::string_view line = window.view().substr(0, end);
    while (!line.empty() && is_json_blank(line.back())) {
        line.remove_suffix(1);
    }
    return !line.empty() && line.front() == '{' && line.back() == '}';
}

/// How many blanks the input starts with. Nothing but blanks is refused: lines and encodings
/// may be none, but whoever expects a document has lost it.
std::size_t leading_blanks(Window &window) {
    std::size_t blanks = 0;
    read_until(window, [&](std::string_view text) {
        while (blanks < text.size() && is_json_blank(text[blanks])) {
            ++blanks;
        }
        return blanks < text.size();
    });
    if (blanks == window.view().size()) {
        throw StreamError("", "the input is empty; in the formats ndjson and cbor alone that is no "
                              "entries");
    }
    return blanks;
}

/// It shows by its mark, or by the null in its first character, which is ASCII.
void refuse_utf16(Window &window) {
    window.want(2);
    const std::string_view first = window.view().substr(0, 2);
    const bool marked = first == "\xFE\xFF" || first == "\xFF\xFE";
    const bool wide = first.size() == 2 && (first[0] == '\0') != (first[1] == '\0') &&
                      static_cast<unsigned char>(first[0] | first[1]) < 0x80;
    if (marked || wide) {
        throw StreamError("", "the encoding UTF-16; expected UTF-8");
    }
}

InputFormat recognise(Window &window) {
    const std::size_t blanks = leading_blanks(window);
    const auto first = static_cast<unsigned char>(window.view()[blanks]);
    if (first == '<') {
        return InputFormat::xml;
    }
    if (first == '{') {
        return blanks == 0 && !is_document(window) && starts_with_object_line(window)
                   ? InputFormat::ndjson
                   : InputFormat::json;
    }
    // Encodings and their labels are CBOR arrays, maps or tags.
    if (blanks == 0 && first >= 0x80 && first < 0xE0) {
        return InputFormat::cbor;
    }
    // Digits show in the first line, of which as much is looked at however the input comes.
    constexpr std::size_t looked_at = 256;
    read_until(window, [&](std::string_view view) {
        return view.size() >= blanks + looked_at || view.find('\n', blanks) != view.npos;
    });
    const std::string_view text = window.view().substr(blanks, looked_at);
    if (begins_with_encoding(text, Digits::hexadecimal)) {
        return InputFormat::hex;
    }
    if (begins_with_encoding(text, Digits::base64)) {
        return InputFormat::base64;
    }
    const bool digit = std::isxdigit(first) != 0;
    throw StreamError("",
                      "expected a JSON object, XML or encodings, found " + start_of(text) +
                          (digit ? "; --from-format hex or base64 takes it for encodings" : ""));
}

} // namespace

std::unique_ptr<Source> make_source(Window window, std::optional<InputFormat> format,
                                    std::optional<Schema> schema, OtherModules others) {
    if (format != InputFormat::cbor) {
        window.want(byte_order_mark.size());
        if (window.view().starts_with(byte_order_mark)) {
            window.take(byte_order_mark.size());
        }
        refuse_utf16(window);
    }
    if (!format) {
        format = recognise(window);
    }
    switch (*format) {
    case InputFormat::json:
        leading_blanks(window);
        return is_document(window) ? make_json_source(std::move(window), schema, others)
                                   : make_object_source(std::move(window), false, schema);
    case InputFormat::ndjson:
        return make_object_source(std::move(window), true, schema);
    case InputFormat::xml:
        leading_blanks(window);
        return make_xml_source(std::move(window), schema, others);
    case InputFormat::cbor:
        return make_encoding_source(std::move(window), schema);
    case InputFormat::hex:
    case InputFormat::base64:
        break;
    }
    const Digits digits = *format == InputFormat::hex ? Digits::hexadecimal : Digits::base64;
    auto lines = std::make_shared<DigitLines>();
    return make_encoding_source(bytes_of_digits(std::move(window), digits, lines), schema, lines);
}

std::unique_ptr<Source> open_source(const std::string &path, std::optional<InputFormat> format,
                                    std::optional<Schema> schema, std::shared_ptr<InputMeter> meter,
                                    OtherModules others) {
    return make_source(Window(open_input(path, std::move(meter))), format, schema, others);
}

} // namespace aceconv
