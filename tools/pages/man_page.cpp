#include "tools/pages/man_page.h"

#include <algorithm>
#include <cctype>
#include <iterator>

#include "compare/record_fields.h"

namespace aceconv::pages {
namespace {

// Sections of other titles stand behind the options.
constexpr const char *first_sections[] = {"Synopsis", "Description", "Verbs", "Options"};
constexpr const char *last_sections[] = {"Exit status", "Environment", "Files", "Examples",
                                         "See also"};

std::ptrdiff_t rank(const Section &section) {
    const auto *last = std::find(std::begin(last_sections), std::end(last_sections), section.title);
    const auto *first =
        std::find(std::begin(first_sections), std::end(first_sections), section.title);
    return first - std::begin(first_sections) +
           (last == std::end(last_sections) ? 0 : 1 + (last - std::begin(last_sections)));
}

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return std::toupper(c); });
    return text;
}

std::string bold(const std::string &text) {
    return "\\fB" + escaped(text, true) + "\\fR";
}

std::string value_of(const OptionEntry &option) {
    if (option.choices.empty()) {
        return option.value.empty() ? "" : "\\fI" + escaped(option.value, true) + "\\fR";
    }
    std::string text;
    for (const std::string &choice : option.choices) {
        text += (text.empty() ? "" : "|") + bold(choice);
    }
    return text;
}

/// An option as it is given, or an argument.
std::string spelled(const OptionEntry &option) {
    if (option.is_argument()) {
        return "\\fI" + option.name + "\\fR" + (option.several ? " ..." : "");
    }
    const std::string value = value_of(option);
    return bold(option.name) + (value.empty()           ? ""
                                : option.value_left_out ? "[=" + value + "]"
                                                        : " " + value);
}

} // namespace

void add_usage(Page &page, const std::string &called, const VerbEntry &verb) {
    const auto description =
        std::find_if(page.sections.begin(), page.sections.end(),
                     [](const Section &section) { return section.title == "Description"; });
    if (description == page.sections.end()) {
        page.sections.push_back({"Description", escaped(verb.help, true) + ".\n"});
    }
    Section synopsis{"Synopsis", bold(called)};
    Section options{"Options", ""};
    std::string arguments;
    for (const OptionEntry &option : verb.options) {
        if (option.is_argument()) {
            arguments += option.required ? " " + spelled(option) : " [" + spelled(option) + "]";
        } else if (option.required) {
            synopsis.body += " " + spelled(option);
        }
        options.body += ".TP\n" + (option.letter.empty() ? "" : bold(option.letter) + ", ") +
                        spelled(option) + "\n" + escaped(option.help, true) + ".\n";
        if (option.is_argument() && !option.choices.empty()) {
            options.body += "One of " + value_of(option) + ".\n";
        }
    }
    synopsis.body += " [\\fIOPTION\\fR ...]" + arguments + "\\&\n"; // ends no sentence
    page.sections.push_back(synopsis);
    page.sections.push_back(options);
}

void add_verbs(Page &page, const CommandEntry &command) {
    Section verbs{"Verbs", ""};
    for (const VerbEntry &verb : command.verbs) {
        verbs.body += ".TP\n" + bold(verb.name) + "\n" + escaped(verb.help, true) + ": " +
                      bold(command.itself.name + "-" + verb.name) + "(1).\n";
    }
    page.sections.push_back(verbs);
    page.sections.push_back({"Synopsis", "\\fIVERB\\fR ...\n"});
}

void add_see_also(Page &page, const std::vector<std::string> &pages) {
    Section see{"See also", ""};
    for (const std::string &other : pages) {
        if (const auto name = other.substr(0, other.find('(')); name != page.name) {
            see.body +=
                (see.body.empty() ? "\\%" : ",\n\\%") + bold(name) + other.substr(name.size());
        }
    }
    page.sections.push_back({see.title, see.body + "\n"});
}

void add_members(Page &page) {
    Section members{
        "Members",
        "Beside the two masks; \\fBaceconv inspect\\fR shows where each lies. Paths begin "
        "below an entry, those of UM below its action.\n"};
    for (const RecordField &field : record_fields()) {
        std::string bits = field.first_bit < 0 ? "" : ", bit " + bit_name(field.first_bit);
        if (field.last_bit > field.first_bit) {
            bits += " to " + bit_name(field.last_bit);
        }
        const auto leaf = [&field](Schema schema) {
            const std::string path = field.leaf(schema) == nullptr ? "" : field.leaf(schema);
            return path.empty() ? "none" : path == "." ? "the action itself" : bold(path);
        };
        members.body += ".TP\n" + bold(field.name) + bits + "\nbase: " + leaf(Schema::base) +
                        "; UM: " + leaf(Schema::um) + "\n";
    }
    page.sections.push_back(members);
}

std::string man_page(Page page, const Edition &edition) {
    std::stable_sort(page.sections.begin(), page.sections.end(),
                     [](const Section &a, const Section &b) { return rank(a) < rank(b); });
    std::string help = page.help;
    help[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(help[0])));
    std::string text = ".TH " + escaped(upper(page.name), true) + " " +
                       std::to_string(page.chapter) + " " + edition.date + " \"aceconv " +
                       edition.version + "\" \"aceconv\"\n.SH NAME\n" + escaped(page.name, true) +
                       " \\- " + escaped(help, true) + "\n";
    std::string title;
    for (const Section &section : page.sections) {
        if (!section.body.empty() && title != section.title) {
            title = section.title;
            text += ".SH " + escaped(upper(title), true) + "\n";
        }
        text += section.body;
    }
    return text;
}

} // namespace aceconv::pages
