// The forms in which the members of a record are said in words, see entry_words.h.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "compare/record_view.h"

namespace aceconv {

/// How a member is said. What a form has no words for is left to the brackets.
enum class Form : std::uint8_t {
    action,  // its name, or that there is none
    keyword, // its name alone
    name,    // its name, or the number where it has none
    number,
    text, // in quotes
    address,
    on,        // the word alone, for 1
    on_or_off, // the same, and "no-" in front of it for 0
    icmp_message,
    user_fields,
    comparison,  // an operator with the members of the next two rows
    side,        // an address with the members of the next three rows
    flag_match,  // a match operator with the members of the next two rows
    said_before, // with a row above, or not in words
};

struct WordRow {
    const char *member;
    const char *word;
    Form form;
};

/// The place of `field` in record_fields().
std::size_t number_of(const RecordField &field);

class WordsLine {
  public:
    /// `values` is what the record holds, and stays where it is.
    explicit WordsLine(const std::vector<FieldValue> &values);

    /// A word or several; none for "".
    void add(std::string_view words);
    /// The row's member, which is field number `fields[0]`; behind it those of the next rows.
    void say(const WordRow &row, const std::size_t *fields);
    /// What has not been said, each by its member.
    void say_rest();

    [[nodiscard]] std::string &text() { return text_; }

  private:
    bool say_keyword(std::size_t field);
    void say_value(const WordRow &row, std::size_t field);
    void say_icmp_message(const char *word, std::size_t field);
    void say_comparison(const char *word, const std::size_t *fields);
    void say_side(const std::size_t *fields);
    void say_flags(const char *word, const std::size_t *fields);
    [[nodiscard]] const FieldValue *unsaid(std::size_t field) const {
        return said_[field] ? nullptr : plain_[field];
    }

    const std::vector<FieldValue> &values_;
    // By field: those that presence bits mark as usual, and which of them are said.
    std::vector<const FieldValue *> plain_;
    std::vector<bool> said_;
    bool only_remark_;
    std::string text_;
};

} // namespace aceconv
