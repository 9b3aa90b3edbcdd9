#include "tools/aceconv/report.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <unistd.h>
#include <utility>

#include "stream/text.h"

namespace aceconv::tool {
namespace {

constexpr const char *erase_line = "\r\033[K";
bool status_stands = false; // on the terminal
Colors colors = Colors::automatic;
// The most of a message that is shown: its begin says where, its end what was expected.
constexpr std::size_t longest_begin = 1200;
constexpr std::size_t longest_end = 400;

std::string shortened(std::string line) {
    const auto continues = [&line](std::size_t at) { return (line[at] & 0xC0) == 0x80; };
    if (line.size() > longest_begin + longest_end) {
        std::size_t begin = longest_begin; // neither inside a character
        std::size_t end = line.size() - longest_end;
        while (continues(begin)) {
            --begin;
        }
        while (continues(end)) {
            --end;
        }
        line.replace(begin, end - begin, "... (" + std::to_string(end - begin) + " bytes) ...");
    }
    return line;
}

std::string composed(const std::string &prefix, std::string_view line) {
    return prefix + shown_line(line) + '\n';
}

} // namespace

void use_colors(Colors when) {
    colors = when;
}

Style::Style(int fd) {
    const char *no_color = std::getenv("NO_COLOR"); // see no-color.org
    const char *terminal = std::getenv("TERM");
    const bool has_colors = isatty(fd) == 1 && (no_color == nullptr || *no_color == '\0') &&
                            terminal != nullptr && std::string_view(terminal) != "dumb";
    on_ = colors == Colors::always || (colors == Colors::automatic && has_colors);
}

std::string Style::paint(const char *code, std::string_view text) const {
    return on_ ? "\033[" + std::string(code) + "m" + std::string(text) + "\033[0m"
               : std::string(text);
}

std::string shown_line(std::string_view line) {
    return shortened(escaped(line));
}

std::string utc_now() {
    const std::time_t time = std::time(nullptr);
    std::tm parts{};
    char text[32];
    gmtime_r(&time, &parts);
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    return text;
}

std::string shown_name(const std::string &path) {
    return path == "-" ? "<stdin>" : path;
}

std::string shown_key(const EntryKey &key) {
    std::string text;
    if (key.acl) {
        text = "acl '" + printable(*key.acl) + "'";
    }
    if (key.sequence) {
        text += (text.empty() ? "entry " : " entry ") + std::to_string(*key.sequence);
    }
    return text;
}

std::string shown_entry(const EntryKey &key, const Position &position) {
    const std::string text = shown_key(key);
    return key.sequence
               ? text
               : text + (text.empty() ? "entry #" : " entry #") + std::to_string(position.ordinal);
}

std::string shown_place(const std::string &file, const Position &position, const EntryKey &key) {
    std::string text = file + ":";
    if (position.line != 0) {
        text += std::to_string(position.line) + ":";
    } else if (position.ordinal != 0) {
        text += "#" + std::to_string(position.ordinal) + ":";
    }
    const std::string who = shown_key(key);
    return text + " " + (who.empty() ? "" : who + ": ");
}

std::string fault_text(const std::string &file, const Entry &entry, const DataError &fault,
                       const std::string &words) {
    return shown_place(file, entry.position, entry.key) +
           (fault.path().empty() ? "" : fault.path() + ": ") + fault.what() +
           (words.empty() ? "" : "; the entry: " + words);
}

void say_fault(const std::string &file, const Entry &entry, const DataError &fault,
               const std::string &words) {
    say_error(fault_text(file, entry, fault, words));
}

void say(std::string_view line) {
    say_lines(to_say(line));
}

std::string to_say(std::string_view line) {
    return composed("aceconv: ", line);
}

void say_lines(const std::string &lines) {
    if (std::exchange(status_stands, false)) {
        std::fputs(erase_line, stderr);
    }
    std::fwrite(lines.data(), 1, lines.size(), stderr); // unbuffered, so one call a line
}

void show_status(std::string_view line) {
    const bool terminal = isatty(STDERR_FILENO) == 1;
    const std::string text =
        (terminal ? erase_line : "") + ("aceconv: " + escaped(line)) + (terminal ? "" : "\n");
    std::fwrite(text.data(), 1, text.size(), stderr);
    status_stands = terminal;
}

void say_error(std::string_view line) {
    say_lines(composed(Style(STDERR_FILENO).red("aceconv:") + " ", line));
}

} // namespace aceconv::tool
