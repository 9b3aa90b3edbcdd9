#include "tools/aceconv/html/html_rows.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "tools/aceconv/html/html_page.h"

namespace aceconv::tool {
namespace {

constexpr std::size_t most_strings = 20000;
constexpr std::size_t longest_shared = 200; // bytes
constexpr const char *absent = "absent";

/// By HtmlKind: what marks its rows, what its two lines of words are called, and whether its
/// changes have values.
struct KindWords {
    const char *tag, *before, *after;
    bool values;
};
constexpr KindWords kinds[] = {{"", "before", "after", true}, {"", "A", "B", true},
                               {"only in A", "A", "", true},  {"only in B", "B", "", true},
                               {"moved", "A", "B", true},     {"fault", "entry", "", false},
                               {"", "entry", "", false},      {"", "record", "written", true}};
constexpr const char *may_be_bad_tag = "or a bad entry there";
constexpr const char *widens_tag = "matches more";

const KindWords &words_of(HtmlKind kind) {
    return kinds[static_cast<std::size_t>(kind)];
}

std::string tag(const char *text) {
    return *text == '\0' ? "" : " <b class=\"tag\">" + std::string(text) + "</b>";
}

using Pieces = std::vector<std::string_view>;

/// What spaces separate.
Pieces pieces_of(std::string_view line) {
    Pieces pieces;
    for (std::size_t at = 0; at <= line.size();) {
        const std::size_t end = std::min(line.find(' ', at), line.size());
        pieces.push_back(line.substr(at, end - at));
        at = end + 1;
    }
    return pieces;
}

/// The line, with the words that the other one lacks marked.
std::string marked(const std::string &line, const std::string &other, const std::string &element) {
    const Pieces others = pieces_of(other);
    const std::set<std::string_view> there(others.begin(), others.end());
    std::string text;
    bool marking = false;
    const char *between = "";
    for (const std::string_view piece : pieces_of(line)) {
        const bool gone = !other.empty() && !there.contains(piece);
        text += marking && !gone ? "</" + element + ">" : "";
        text += between;
        text += gone && !marking ? "<" + element + ">" : "";
        text += html_text(piece);
        marking = gone;
        between = " ";
    }
    return text + (marking ? "</" + element + ">" : "");
}

/// The second line by how many words it shares with the begin and the end of the first, and
/// those between, as [2,1,"between"]; null for an empty one.
std::string difference_array(const std::string &before, const std::string &after) {
    if (after.empty()) {
        return "null";
    }
    const Pieces old = pieces_of(before), now = pieces_of(after);
    const std::size_t most = std::min(old.size(), now.size());
    std::size_t first = 0, last = 0;
    while (first < most && old[first] == now[first]) {
        ++first;
    }
    while (last < most - first && old[old.size() - 1 - last] == now[now.size() - 1 - last]) {
        ++last;
    }
    std::string text = "[" + std::to_string(first) + "," + std::to_string(last);
    if (first + last < now.size()) {
        const char *const begin = now[first].data();
        const std::string_view end = now[now.size() - 1 - last];
        text +=
            "," + script_text({begin, static_cast<std::size_t>(end.data() + end.size() - begin)});
    }
    return text + "]";
}

std::string words_line(const char *label, const std::string &text) {
    return "<p><span class=\"side\">" + std::string(label) + "</span> <code>" + text +
           "</code></p>";
}

std::string value_cell(const char *label, const std::string &text) {
    return table_cell(label,
                      text == absent ? "<span class=\"none\">absent</span>" : html_text(text));
}

std::string where(const Position &position) {
    return position.line != 0      ? std::to_string(position.line)
           : position.ordinal != 0 ? "#" + std::to_string(position.ordinal)
                                   : "";
}

} // namespace

ShownChange shown_change(HtmlKind kind, const Change &change) {
    const bool values = words_of(kind).values;
    const auto shown = [values](const std::optional<std::string> &value) {
        return values ? value.value_or(absent) : "";
    };
    return {change.leaf.empty() ? change.field : change.leaf, shown(change.before),
            shown(change.after), change.reason};
}

std::string SharedStrings::reference(const std::string &text) {
    const auto found = numbers_.find(text);
    if (found != numbers_.end()) {
        return std::to_string(found->second);
    }
    if (texts_.size() == most_strings || text.size() > longest_shared) {
        return script_text(text);
    }
    texts_.push_back(&numbers_.emplace(text, texts_.size()).first->first);
    return std::to_string(texts_.size() - 1);
}

std::string SharedStrings::array() const {
    std::string array = "[";
    for (const std::string *text : texts_) {
        array += (array.size() > 1 ? "," : "") + script_text(*text);
    }
    return array + "]";
}

std::string data_row(const HtmlRow &row, std::size_t list, SharedStrings &strings) {
    std::string text = "[" + std::to_string(static_cast<int>(row.kind)) + "," +
                       std::to_string(list) + "," +
                       (row.key.sequence ? std::to_string(*row.key.sequence) : "null") + "," +
                       script_text(where(row.position)) + "," + script_text(row.words) + "," +
                       difference_array(row.words, row.words_after) + ",[";
    const char *between = "";
    for (const Change &change : row.changes) {
        const ShownChange shown = shown_change(row.kind, change);
        text += between;
        text += "[" + strings.reference(shown.leaf) + "," + strings.reference(shown.before) + "," +
                strings.reference(shown.after) + "," + strings.reference(shown.reason) + "," +
                (change.widens ? "1" : "0") + "]";
        between = ",";
    }
    return text + (row.may_be_bad ? "],1" : "],0") +
           (row.record != nullptr ? "," + record_array(*row.record) + "]" : "]");
}

std::string kinds_array() {
    std::string array;
    for (const KindWords &kind : kinds) {
        array += (array.empty() ? "[" : ",") + ("[" + script_text(kind.tag)) + "," +
                 script_text(kind.before) + "," + script_text(kind.after) + "]";
    }
    return array + "]";
}

std::string table_rows(const HtmlRow &row, std::uint64_t number, const RecordDrawing &drawing) {
    const KindWords &kind = words_of(row.kind);
    const std::string id = "e" + std::to_string(number), place = where(row.position);
    const std::string name =
        row.key.sequence ? "entry " + std::to_string(*row.key.sequence) : "entry without a number";
    std::string text = "<tbody id=\"" + id +
                       "\">\n<tr class=\"entry\"><th scope=\"rowgroup\" "
                       "colspan=\"4\"><a href=\"#" +
                       id + "\">" + name + "</a>";
    if (!place.empty()) {
        text += " <span class=\"place\">" + std::string(place[0] == '#' ? "item " : "line ") +
                place.substr(place[0] == '#' ? 1 : 0) + "</span>";
    }
    const bool widens = std::any_of(row.changes.begin(), row.changes.end(),
                                    [](const Change &change) { return change.widens; });
    text += tag(kind.tag) + (row.may_be_bad ? tag(may_be_bad_tag) : "") +
            (widens ? tag(widens_tag) : "");
    if (!row.words.empty()) {
        text += words_line(kind.before, marked(row.words, row.words_after, "del"));
    }
    if (!row.words_after.empty()) {
        text += words_line(kind.after, marked(row.words_after, row.words, "ins"));
    }
    text += "</th></tr>\n";
    for (const Change &change : row.changes) {
        const ShownChange shown = shown_change(row.kind, change);
        text += "<tr><th scope=\"row\">" + html_text(shown.leaf) + "</th>" +
                value_cell("before", shown.before) + value_cell("after", shown.after) +
                value_cell("reason", shown.reason) + "</tr>\n";
    }
    if (row.record != nullptr) {
        text += drawing.row(*row.record);
    }
    return text + "</tbody>\n";
}

} // namespace aceconv::tool
