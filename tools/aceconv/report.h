// What the command says on standard error, and how it looks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "stream/source.h"

namespace aceconv::tool {

/// When to colour: on a terminal that has colours and not under NO_COLOR, or in any case.
enum class Colors { automatic, always, never };

/// For whatever is styled from now on; automatic at first.
void use_colors(Colors when);

/// Colours for one stream.
class Style {
  public:
    explicit Style(int fd);
    [[nodiscard]] std::string red(std::string_view text) const { return paint("31;1", text); }
    /// Of what is gone and what is new, and of the words in it that make the difference.
    [[nodiscard]] std::string removed(std::string_view text) const { return paint("31", text); }
    [[nodiscard]] std::string removed_word(std::string_view text) const {
        return paint("31;7", text);
    }
    [[nodiscard]] std::string added(std::string_view text) const { return paint("32", text); }
    [[nodiscard]] std::string added_word(std::string_view text) const {
        return paint("32;7", text);
    }
    [[nodiscard]] bool on() const { return on_; }
    [[nodiscard]] std::string bold(std::string_view text) const { return paint("1", text); }
    [[nodiscard]] std::string faint(std::string_view text) const { return paint("2", text); }

  private:
    [[nodiscard]] std::string paint(const char *code, std::string_view text) const;
    bool on_;
};

/// Now, as "2026-01-31T23:59:59", in UTC.
std::string utc_now();

/// "<stdin>" for "-".
std::string shown_name(const std::string &path);

/// "acl 'X' entry 20", as far as it is known; "" otherwise.
std::string shown_key(const EntryKey &key);

/// "entry 20" of a list, or of none: what to call the entry in any case.
std::string shown_entry(const EntryKey &key, const Position &position);

/// "FILE:LINE: acl 'X' entry 20: "
std::string shown_place(const std::string &file, const Position &position, const EntryKey &key);

/// A fault of an entry of `file`, as
///   FILE:LINE: acl 'X' entry 20: PATH: what is wrong
/// where entries have no lines, "#3" is the third one; `words`, the entry in words, may be "".
std::string fault_text(const std::string &file, const Entry &entry, const DataError &fault,
                       const std::string &words);
/// Says it.
void say_fault(const std::string &file, const Entry &entry, const DataError &fault,
               const std::string &words);

/// A line as it is shown: what could drive a terminal is escaped, and the middle left out of what
/// is long.
std::string shown_line(std::string_view line);

/// One line on standard error, after "aceconv: ".
void say(std::string_view line);
/// The line as say() would have it, and what has become of several ones; the latter allocates
/// nothing.
std::string to_say(std::string_view line);
void say_lines(const std::string &lines);
/// The same, marked as an error.
void say_error(std::string_view line);
/// A line that stands until the next one of either kind; on a terminal it goes then.
void show_status(std::string_view line);

} // namespace aceconv::tool
