#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "host/error.h"
#include "host/schema/entry_text.h"
#include "host/utf8.h"

namespace aceconv {

namespace {

constexpr std::string_view blanks = " \t\r\n";

constexpr auto bracket_or_quote = [] {
    std::array<bool, 256> table{};
    for (const char mark : {'"', '{', '}', '[', ']'}) {
        table[static_cast<unsigned char>(mark)] = true;
    }
    return table;
}();

/// Goes once over the brackets and strings of one object. Tokens between them
/// are libyang's matter.
class JsonLook {
  public:
    JsonLook(std::string_view text, Schema schema, std::string &document, SequenceText &found)
        : text_(text), module_(module_name(schema)), document_(document), found_(found) {}

    /// Returns whether the object has members.
    bool copy() {
        at_ = std::min(text_.find_first_not_of(blanks), text_.size());
        if (peek() != '{') {
            throw DataError("", "expected a JSON object");
        }
        do {
            step();
        } while (!levels_.empty());
        if (text_.find_first_not_of(blanks, at_) != std::string_view::npos) {
            throw DataError("", "text behind the entry's JSON object");
        }
        document_.append(text_, copied_);
        return members_ > 0;
    }

  private:
    struct Level {
        bool object;
        std::size_t names; // how many the levels around it hold
        std::string_view name;
    };

    [[nodiscard]] char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    [[nodiscard]] std::string path(std::string_view name) const {
        std::string path;
        for (const Level &level : levels_) {
            if (level.object && !level.name.empty()) {
                path += '/';
                path += level.name;
            }
        }
        return path.append("/").append(name);
    }

    void step() {
        while (at_ < text_.size() && !bracket_or_quote[static_cast<unsigned char>(text_[at_])]) {
            ++at_;
        }
        if (at_ == text_.size()) {
            throw DataError("", "the JSON object does not end");
        }
        const char bracket = text_[at_];
        switch (bracket) {
        case '{':
        case '[':
            levels_.push_back({bracket == '{', names_.size(), name_});
            break;
        case '}':
        case ']':
            close(bracket == '}');
            break;
        default:
            string();
            return;
        }
        ++at_;
    }

    void close(bool object) {
        if (levels_.back().object != object) {
            throw DataError("", "the JSON brackets do not match");
        }
        names_.resize(levels_.back().names);
        levels_.pop_back();
        // Entries of a list all have the list's name.
        name_ = levels_.empty() ? std::string_view{} : levels_.back().name;
    }

    void string() {
        const std::size_t start = ++at_;
        std::size_t end = text_.find('"', at_);
        bool escapes = false;
        for (;;) {
            const std::size_t slash = text_.substr(0, end).find('\\', at_);
            if (slash == std::string_view::npos) {
                break;
            }
            escapes = true;
            at_ = slash;
            escape();
            end = end < at_ ? text_.find('"', at_) : end;
        }
        if (end == std::string_view::npos) {
            throw DataError("", "a JSON string does not end");
        }
        at_ = end;
        const std::string_view content = text_.substr(start, at_ - start);
        do {
            ++at_;
        } while (peek() == ' ' || peek() == '\t' || peek() == '\n' || peek() == '\r');
        if (peek() == ':' && levels_.back().object) {
            member(content, escapes);
        }
    }

    void member(std::string_view name, bool escapes) {
        if (++members_ > max_entry_nodes) {
            throw DataError("", "more than " + std::to_string(max_entry_nodes) + " members");
        }
        if (escapes || name.substr(0, 1) == "@") {
            throw DataError(path(name), "unknown node: " + std::string(escapes ? "an escaped name"
                                                                               : "an annotation"));
        }
        if (name.size() > module_.size() && name[module_.size()] == ':' &&
            name.substr(0, module_.size()) == module_) {
            name.remove_prefix(module_.size() + 1);
        }
        const auto first = names_.begin() + static_cast<std::ptrdiff_t>(levels_.back().names);
        if (std::find(first, names_.end(), name) != names_.end()) {
            throw DataError(path(name), "the node is given more than once");
        }
        names_.push_back(name);
        name_ = name;
        ++at_; // the colon
        if (levels_.size() == 1 && name == "sequence-number") {
            const std::size_t value = std::min(text_.find_first_not_of(blanks, at_), text_.size());
            found_.given = true;
            found_.first = members_ == 1;
            found_.text = text_.substr(value, text_.find_first_of(", \t\r\n}", value) - value);
        }
    }

    std::optional<char32_t> unit(std::size_t at) const {
        if (text_.substr(at, 2) != "\\u" || text_.size() - at < 6) {
            return std::nullopt;
        }
        char32_t value = 0;
        for (const char digit : text_.substr(at + 2, 4)) {
            const auto place = std::string_view("0123456789abcdefABCDEF").find(digit);
            if (place == std::string_view::npos) {
                return std::nullopt;
            }
            value = value * 16 + static_cast<char32_t>(place < 16 ? place : place - 6);
        }
        return value;
    }

    /// Steps over an escape. Surrogate pairs, which libyang does not know, are
    /// written as the character that they stand for.
    void escape() {
        const auto high = unit(at_);
        const auto low = high ? unit(at_ + 6) : std::nullopt;
        if (low && *high >= 0xD800 && *high < 0xDC00 && *low >= 0xDC00 && *low < 0xE000) {
            document_.append(text_, copied_, at_ - copied_);
            append_utf8(document_, 0x10000 + ((*high - 0xD800) << 10U) + (*low - 0xDC00));
            at_ += 12;
            copied_ = at_;
        } else {
            at_ += 2;
        }
    }

    const std::string_view text_;
    const std::string_view module_;
    std::string &document_;
    SequenceText &found_;
    std::size_t at_ = 0;
    std::size_t copied_ = 0;
    std::size_t members_ = 0;
    std::string_view name_; // of the member whose value comes next
    std::vector<Level> levels_;
    std::vector<std::string_view> names_; // of the members of all open objects
};

} // namespace

void wrap_json(std::string_view text, Schema schema, const std::string &sequence,
               std::string &document, SequenceText &found) {
    document = R"({"entry":[)";
    const std::size_t start = document.size();
    const bool members = JsonLook(text, schema, document, found).copy();
    if (!found.given) {
        document.insert(document.find('{', start) + 1,
                        "\"sequence-number\":" + sequence + (members ? "," : ""));
    }
    document += "]}";
}

} // namespace aceconv
