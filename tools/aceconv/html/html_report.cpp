#include "tools/aceconv/html/html_report.h"

#include <algorithm>
#include <sstream>

#include "aceconv/version.h"
#include "host/bag_library.h"
#include "stream/text.h"
#include "tools/aceconv/progress.h"
#include "tools/aceconv/report.h"

namespace aceconv::tool {
namespace {

/// What the page says of a verb: its title, what it found, and the outcome of an entry, of
/// several, and of none.
struct VerbWords {
    std::string_view verb;
    const char *title, *findings, *one, *more, *none;
};
constexpr VerbWords verbs[] = {
    {"encode", "Encoding report", "Losses", "entry loses something", "entries lose something",
     "Nothing is lost"},
    {"decode", "Decoding report", "Losses", "entry loses something", "entries lose something",
     "Nothing is lost"},
    {"inspect", "Inspection report", "Records", "record holds what its schema cannot say",
     "records hold what their schema cannot say", "The schemas can say all of the records"},
    {"convert", "Conversion report", "Losses", "entry loses something", "entries lose something",
     "Nothing is lost"},
    {"check", "Check report", "What does not come back", "entry does not come back the same",
     "entries do not come back the same", "All entries come back the same"},
    {"diff", "Comparison report", "Differences", "entry differs or is on one side alone",
     "entries differ or are on one side alone", "Both inputs mean the same"},
    {"lint", "Lint report", "Warnings", "entry or list has warnings",
     "entries or lists have warnings", "There is nothing to warn of"},
};

const VerbWords &words_of(const std::string &verb) {
    return *std::find_if(std::begin(verbs), std::end(verbs),
                         [&verb](const VerbWords &words) { return words.verb == verb; });
}

std::string fact(const char *name, const std::string &markup) {
    return "<div><dt>" + std::string(name) + "</dt><dd>" + markup + "</dd></div>\n";
}

/// A call, of which no word is broken that fits a line.
std::string call_markup(const std::string &call) {
    std::string markup;
    std::istringstream words(call);
    for (std::string word; std::getline(words, word, ' ');) {
        markup += (markup.empty() ? "<span>" : " <span>") + html_text(word) + "</span>";
    }
    return "<code>" + markup + "</code>";
}

std::string figure(const char *name, std::uint64_t number) {
    return fact(name, std::to_string(number));
}

std::string file_row(const char *part, const FileDigest &file, const char *otherwise) {
    return "<tr><th scope=\"row\">" + std::string(part) + "</th>" +
           table_cell("Name", html_text(file.name)) +
           (file.whole ? number_cell("Bytes", file.digest.size()) +
                             table_cell("SHA-256", "<code>" + file.digest.text() + "</code>")
                       : table_cell("Bytes", "") + table_cell("SHA-256", otherwise)) +
           "</tr>\n";
}

} // namespace

HtmlReport::HtmlReport(const CommonOptions &options)
    : verb_(options.verb), command_(options.command), page_(options.html) {
    page_.fill_to("rows", [this](std::string_view name) {
        return name == "title" ? words_of(verb_).title : words_of(verb_).findings;
    });
}

void HtmlReport::add(const std::string &file, const HtmlRow &row) {
    const std::size_t list = groups_.list(file, row.key);
    ++counts_[static_cast<std::size_t>(row.kind)];
    page_.write((rows_ == 0 ? "\n" : ",\n") + data_row(row, list, strings_));
    groups_.add(row, list, ++rows_, drawing_);
}

void HtmlReport::watch(Output &output, const std::string &name) {
    products_.push_back({&output, {name, {}, false}});
    output.show(
        [digest = &products_.back().file.digest](std::string_view bytes) { digest->add(bytes); });
}

Output *HtmlReport::finish(const RunEnd &end, const std::vector<Output *> &written) {
    for (Product &product : products_) {
        product.file.whole =
            std::find(written.begin(), written.end(), product.output) != written.end();
    }
    page_.fill_to("", [&](std::string_view name) { return part(name, end); });
    return &page_.output();
}

std::string HtmlReport::part(std::string_view name, const RunEnd &end) const {
    const VerbWords &words = words_of(verb_);
    if (name == "shared") {
        return "{\"strings\":" + strings_.array() + ",\n\"lists\":" + groups_.lists_array() +
               ",\n\"kinds\":" + kinds_array() + ",\n\"layout\":" + drawing_.layout_array() + "}";
    }
    if (name == "title") {
        return words.title;
    }
    if (name == "verdict") {
        return verdict(end);
    }
    if (name == "figures") {
        return figures(end);
    }
    if (name == "facts") {
        return facts(end);
    }
    if (name == "files") {
        return files(end);
    }
    if (name == "lists") {
        return groups_.lists_table();
    }
    if (name == "leaves") {
        return groups_.leaves_table();
    }
    if (name == "findings") {
        return words.findings;
    }
    if (name == "count") {
        return counted(rows_, "entry", "entries");
    }
    return groups_.sections();
}

std::string HtmlReport::verdict(const RunEnd &end) const {
    const VerbWords &words = words_of(verb_);
    const std::uint64_t differences = count(HtmlKind::changed) + count(HtmlKind::only_a) +
                                      count(HtmlKind::only_b) + count(HtmlKind::moved);
    const std::uint64_t found = verb_ == "diff"   ? differences
                                : verb_ == "lint" ? count(HtmlKind::warning)
                                                  : end.tally.entries_with_losses;
    std::string text = found == 0 ? std::string(words.none) : counted(found, words.one, words.more);
    if (end.tally.entries_widened != 0) {
        text += "; " + counted(end.tally.entries_widened, "matches", "match") +
                " more packets than before";
    }
    if (end.tally.errors != 0) {
        text += "; " + counted(end.tally.errors, "entry is bad", "entries are bad");
    }
    const bool clean = found + end.tally.errors == 0 && !end.stopped;
    return "<p class=\"verdict " + std::string(clean ? "clean" : "found") + "\">" +
           (end.stopped ? "Stopped at a fault: the rest of the input was not looked at. " : "") +
           text + ".</p>\n";
}

std::string HtmlReport::figures(const RunEnd &end) const {
    const std::string text =
        figure("Entries", end.tally.entries) + figure("Bad entries", end.tally.errors);
    if (verb_ == "lint") {
        return text + figure("With warnings", count(HtmlKind::warning));
    }
    const std::string losses = figure("Losses", end.tally.losses);
    if (verb_ == "diff") {
        return text + figure("Changed", count(HtmlKind::changed)) +
               figure("Only in A", count(HtmlKind::only_a)) +
               figure("Only in B", count(HtmlKind::only_b)) +
               figure("Moved", count(HtmlKind::moved)) + losses;
    }
    return text + losses + figure("Entries with losses", end.tally.entries_with_losses) +
           figure("Match more", end.tally.entries_widened);
}

std::string HtmlReport::facts(const RunEnd &end) const {
    return fact("Command", call_markup(command_)) + fact("aceconv", ACECONV_VERSION) +
           fact("Record", html_text(end.plugin.descriptor->type_name) + " <code>" +
                              html_text(bag_fingerprint(*end.plugin.descriptor)) + "</code>") +
           fact("Finished", "<time>" + utc_now() + "Z</time>");
}

std::string HtmlReport::files(const RunEnd &end) const {
    std::string rows;
    const char *sides[] = {"Input A", "Input B"};
    for (std::size_t i = 0; i < end.inputs.size(); ++i) {
        rows += file_row(verb_ == "diff" && i < 2 ? sides[i] : "Input", end.inputs[i],
                         "not read to its end");
    }
    for (const Product &product : products_) {
        rows += file_row("Output", product.file, "not written");
    }
    return rows + file_row("Plug-in", digest_of(end.plugin.file), "");
}

} // namespace aceconv::tool
