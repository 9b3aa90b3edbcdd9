#include "tools/aceconv/html/html_groups.h"

#include <algorithm>

#include "tools/aceconv/html/html_page.h"
#include "tools/aceconv/progress.h"

namespace aceconv::tool {
namespace {

// What stands on the page without scripts.
constexpr std::uint64_t entries_shown = 25;       // of a list
constexpr std::size_t markup_shown = 1024 * 1024; // bytes, of all lists
constexpr std::size_t lists_shown = 500;
constexpr std::size_t leaves_kept = 500; // with their reasons

std::string list_name(const std::string &name) {
    return name.empty() ? "entries of no list" : html_text(name);
}

} // namespace

std::size_t HtmlGroups::list(const std::string &file, const EntryKey &key) {
    const std::string_view name = key.acl ? std::string_view(*key.acl) : "";
    if (last_ < lists_.size() && lists_[last_].name == name && lists_[last_].file == file) {
        return last_; // nearly always
    }
    const auto [place, is_new] = places_.emplace(std::pair(file, name), lists_.size());
    if (is_new) {
        lists_.push_back({file, std::string(name), 0, {}, 0, ""});
    }
    return last_ = place->second;
}

HtmlGroups::Leaf &HtmlGroups::leaf(const ShownChange &change, std::uint64_t number) {
    std::pair key(change.leaf, change.reason);
    if (reasons_.size() >= leaves_kept && !reasons_.contains(key)) {
        key = {"others", ""};
    }
    const auto [place, is_new] = reasons_.emplace(key, leaves_.size());
    if (is_new) {
        leaves_.push_back({key.first, key.second, {}, number});
    }
    return leaves_[place->second];
}

void HtmlGroups::add(const HtmlRow &row, std::size_t list, std::uint64_t number,
                     const RecordDrawing &drawing) {
    const bool widens = std::any_of(row.changes.begin(), row.changes.end(),
                                    [](const Change &change) { return change.widens; });
    List &group = lists_[list];
    ++group.found.entries;
    group.found.changes += row.changes.size();
    group.found.widening += widens ? 1U : 0U;
    for (const Change &change : row.changes) {
        ShownChange shown = shown_change(row.kind, change);
        if (row.kind == HtmlKind::fault || row.kind == HtmlKind::warning) {
            shown.reason.clear(); // each has its own
        }
        Leaf &counted = leaf(shown, number);
        ++counted.found.changes;
        counted.found.widening += change.widens ? 1U : 0U;
    }
    if (group.shown < entries_shown && markup_ < markup_shown) {
        const std::string markup = table_rows(row, number, drawing);
        if (markup_ + markup.size() <= markup_shown) {
            ++group.shown;
            markup_ += markup.size();
            group.markup += markup;
        }
    }
}

std::string HtmlGroups::lists_array() const {
    std::string array = "[";
    for (const List &list : lists_) {
        array += (array.size() > 1 ? ",[" : "[") + script_text(list.name) + "," +
                 script_text(list.file) + "]";
    }
    return array + "]";
}

std::string HtmlGroups::list_row(const std::string &name, const List &list) {
    return "<tr><th scope=\"row\">" + name + "</th>" + table_cell("File", html_text(list.file)) +
           number_cell("Good entries", list.entries) +
           number_cell("Entries found", list.found.entries) +
           number_cell("Changes", list.found.changes) +
           number_cell("Match more", list.found.widening) + "</tr>\n";
}

std::string HtmlGroups::lists_table() const {
    std::string rows;
    List others;
    for (std::size_t i = 0; i < lists_.size(); ++i) {
        const List &list = lists_[i];
        if (i >= lists_shown) {
            others.entries += list.entries;
            others.found.entries += list.found.entries;
            others.found.changes += list.found.changes;
            others.found.widening += list.found.widening;
            continue;
        }
        const std::string id = std::to_string(i), name = list_name(list.name);
        rows +=
            list_row(list.shown == 0 ? name : "<a href=\"#l" + id + "\">" + name + "</a>", list);
    }
    if (lists_.size() > lists_shown) {
        rows +=
            list_row(counted(lists_.size() - lists_shown, "further list", "further lists"), others);
    }
    return rows;
}

std::string HtmlGroups::leaves_table() const {
    std::string rows;
    for (const Leaf &leaf : leaves_) {
        rows += "<tr><th scope=\"row\"><a class=\"leaf\" href=\"#e" + std::to_string(leaf.first) +
                "\">" + (leaf.leaf.empty() ? "entry" : html_text(leaf.leaf)) + "</a></th>" +
                table_cell("Reason", html_text(leaf.reason)) +
                number_cell("Changes", leaf.found.changes) +
                number_cell("Match more", leaf.found.widening) + "</tr>\n";
    }
    return rows.empty() ? "<tr><th scope=\"row\">none</th>" + table_cell("Reason", "") +
                              number_cell("Changes", 0) + number_cell("Match more", 0) + "</tr>\n"
                        : rows;
}

std::string HtmlGroups::sections() const {
    std::string text;
    for (std::size_t i = 0; i < lists_.size(); ++i) {
        const List &list = lists_[i];
        if (list.shown == 0) {
            continue;
        }
        const std::string id = "l" + std::to_string(i);
        text += "<section class=\"list\" aria-labelledby=\"" + id + "\">\n<h3 id=\"" + id + "\">" +
                list_name(list.name) + " <small>" + html_text(list.file) +
                "</small></h3>\n<table class=\"found stack\">\n<caption>" +
                counted(list.found.entries, "entry", "entries") +
                (list.shown < list.found.entries ? ", the first " + std::to_string(list.shown) +
                                                       " of them here; the search "
                                                       "shows the others"
                                                 : "") +
                "</caption>\n<thead><tr><th scope=\"col\">Leaf</th><th scope=\"col\">Before</th>"
                "<th scope=\"col\">After</th><th scope=\"col\">Reason</th></tr></thead>\n" +
                list.markup + "</table>\n</section>\n";
    }
    return text;
}

} // namespace aceconv::tool
