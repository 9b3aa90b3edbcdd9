// Pieces of the text of a rule that both schemas share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "aceconv/keywords.h"

namespace aceconv::bench {

using Keywords = const ccv_yang_keyword *;

/// The name of the row that holds `value`, or null.
const char *name_of(Keywords table, std::uint32_t value);

/// The names of the flags of `mask`, with a sign that says whether each is in
/// `flags` if `signs`.
std::string flag_words(std::uint32_t flags, std::uint32_t mask, bool signs);

/// The wildcard bits of a prefix of 1 to 32 bits.
std::uint32_t wildcard(std::uint32_t length);

/// Appends the members of JSON objects. Values need no escapes.
class Writer {
  public:
    Writer(std::string &text, bool names) : text_(text), names_(names) {}

    void open(std::string_view name) {
        member(name);
        text_ += '{';
    }
    void close() { text_ += '}'; }
    void raw(std::string_view name, std::string_view value) {
        member(name);
        text_ += value;
    }
    void number(std::string_view name, std::uint32_t value) { raw(name, std::to_string(value)); }
    void string(std::string_view name, std::string_view value) {
        member(name);
        text_ += '"';
        text_ += value;
        text_ += '"';
    }
    void string_if(std::string_view name, std::string_view value) {
        if (!value.empty()) {
            string(name, value);
        }
    }
    void address(std::string_view name, std::uint32_t value);
    void keyword(std::string_view name, Keywords table, std::uint32_t value) {
        string(name, name_of(table, value));
    }
    /// By name if the rule uses names and there is one; a null table has none.
    void keyword_or_number(std::string_view name, Keywords table, std::uint32_t value) {
        const char *keyword = names_ && table != nullptr ? name_of(table, value) : nullptr;
        if (keyword != nullptr) {
            string(name, keyword);
        } else {
            number(name, value);
        }
    }

  private:
    void member(std::string_view name) {
        if (text_.back() != '{') {
            text_ += ',';
        }
        text_ += '"';
        text_ += name;
        text_ += "\":";
    }

    std::string &text_;
    bool names_;
};

} // namespace aceconv::bench
