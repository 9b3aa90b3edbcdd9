#include "tools/aceconv/html/html_page.h"

#include "host/xml_parser.h"
#include "stream/text.h"
#include "tools/aceconv/digest.h"
#include "tools/aceconv/html/html_template.h"

namespace aceconv::tool {
namespace {

/// Of the template's element of this name, as the page's policy names what may be used.
std::string hash_of(const std::string &element) {
    const std::string open = "<" + element + ">";
    const std::size_t begin = html_template.find(open) + open.size();
    Digest digest;
    digest.add(
        html_template.substr(begin, html_template.find("</" + element + ">", begin) - begin));
    return "sha256-" + digest.base64();
}

} // namespace

std::string html_text(std::string_view text) {
    return xml_escaped(escaped(text));
}

std::string script_text(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : escaped(text)) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c == '<' ? std::string("\\u003c") : std::string(1, c);
    }
    return quoted + '"';
}

std::string table_cell(const char *label, const std::string &markup) {
    return "<td data-label=\"" + std::string(label) + "\">" + markup + "</td>";
}

std::string number_cell(const char *label, std::uint64_t number) {
    return "<td class=\"number\" data-label=\"" + std::string(label) + "\">" +
           std::to_string(number) + "</td>";
}

HtmlPage::HtmlPage(const std::string &path)
    : output_(path, ReaderGone::is_ignored), rest_(html_template) {}

void HtmlPage::fill_to(std::string_view mark, const Fill &fill) {
    for (std::size_t at = 0; (at = rest_.find("{{")) != rest_.npos;) {
        const std::size_t end = rest_.find("}}", at);
        const std::string_view name = rest_.substr(at + 2, end - at - 2);
        output_.write(rest_.substr(0, at));
        rest_.remove_prefix(end + 2);
        if (name == mark) {
            return;
        }
        output_.write(name.ends_with("-hash") ? hash_of(std::string(name.substr(0, name.find('-'))))
                                              : fill(name));
    }
    output_.write(rest_);
    rest_ = {};
}

} // namespace aceconv::tool
