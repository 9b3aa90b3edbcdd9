#include <algorithm>
#include <deque>
#include <optional>
#include <vector>

#include "host/error.h"
#include "host/json_scan.h"
#include "host/schema/entry_text.h"
#include "host/utf8.h"

namespace aceconv {

namespace {

/// Goes once over the brackets and strings of one object. Tokens between them
/// are libyang's matter.
class JsonLook {
  public:
    JsonLook(std::string_view text, Schema schema, std::string &document, SequenceText &found)
        : text_(text), walk_(text), module_(module_name(schema)), document_(document),
          found_(found) {}

    /// Returns whether the object has members.
    bool copy() {
        const std::size_t begin = std::min(text_.find_first_not_of(json_blanks), text_.size());
        if (text_.substr(begin, 1) != "{") {
            refuse("", "expected a JSON object");
        }
        do {
            step();
        } while (!levels_.empty());
        if (text_.find_first_not_of(json_blanks, walk_.at()) != std::string_view::npos) {
            refuse("", "text behind the entry's JSON object");
        }
        document_.append(text_, copied_);
        return members_ > 0;
    }

  private:
    /// With the line that the walk has come to.
    [[noreturn]] void refuse(const std::string &path, const std::string &why) const {
        const std::string_view before = text_.substr(0, walk_.at());
        throw DataError(
            path, why,
            1 + static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n')));
    }

    struct Level {
        bool object;
        std::size_t names; // how many the levels around it hold
        std::string_view name;
    };

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
        switch (walk_.next()) {
        case JsonWalk::Step::end:
            refuse("", walk_.in_string() ? "a JSON string does not end"
                                         : "the JSON object does not end");
        case JsonWalk::Step::open:
            if (levels_.size() == max_levels) {
                refuse("",
                       "more than " + std::to_string(max_levels) + " levels of objects and arrays");
            }
            levels_.push_back({walk_.token() == "{", names_.size(), name_});
            break;
        case JsonWalk::Step::close:
            close(walk_.token() == "}");
            break;
        case JsonWalk::Step::name:
            if (levels_.back().object) {
                member();
                break;
            }
            [[fallthrough]];
        case JsonWalk::Step::string:
            if (walk_.escapes()) {
                replace_surrogates();
            }
        }
    }

    void close(bool object) {
        if (levels_.back().object != object) {
            refuse("", "the JSON brackets do not match");
        }
        // Which not every libyang refuses.
        const std::size_t last =
            text_.substr(0, place_of(walk_.token())).find_last_not_of(json_blanks);
        if (text_[last] == ',') {
            refuse("", "a comma before " + std::string(walk_.token()));
        }
        names_.resize(levels_.back().names);
        levels_.pop_back();
        // Entries of a list all have the list's name.
        name_ = levels_.empty() ? std::string_view{} : levels_.back().name;
    }

    [[nodiscard]] std::size_t place_of(std::string_view content) const {
        return static_cast<std::size_t>(content.data() - text_.data());
    }

    /// The name that the walk is at. libyang is given it without escapes.
    std::string_view plain_name() {
        const std::string_view content = walk_.content();
        if (!walk_.escapes()) {
            return content;
        }
        const auto name = json_string(walk_.token());
        // No node's name needs an escape.
        if (!name || name->find_first_of("\"\\") != name->npos || has_control(*name)) {
            refuse(path(content), "unknown node");
        }
        const std::size_t begin = place_of(content);
        document_.append(text_, copied_, begin - copied_).append(*name);
        copied_ = begin + content.size();
        return plain_names_.emplace_back(*name);
    }

    static bool has_control(std::string_view text) {
        return std::any_of(text.begin(), text.end(),
                           [](char c) { return static_cast<unsigned char>(c) < 0x20; });
    }

    void member() {
        if (++members_ > max_entry_nodes) {
            refuse("", "more than " + std::to_string(max_entry_nodes) + " members");
        }
        std::string_view name = plain_name();
        if (name.substr(0, 1) == "@") {
            refuse(path(name), "unknown node: an annotation");
        }
        if (name.size() > module_.size() && name[module_.size()] == ':' &&
            name.substr(0, module_.size()) == module_) {
            name.remove_prefix(module_.size() + 1);
        }
        const auto first = names_.begin() + static_cast<std::ptrdiff_t>(levels_.back().names);
        if (std::find(first, names_.end(), name) != names_.end()) {
            refuse(path(name), "the node is given more than once");
        }
        names_.push_back(name);
        name_ = name;
        if (levels_.size() == 1 && name == "sequence-number") {
            const std::size_t value =
                std::min(text_.find_first_not_of(json_blanks, walk_.at()), text_.size());
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

    /// Surrogate pairs, which libyang does not know, are written as the characters
    /// that they stand for.
    void replace_surrogates() {
        const std::size_t begin = place_of(walk_.content());
        const std::size_t end = begin + walk_.content().size();
        for (std::size_t at = text_.find('\\', begin); at < end; at = text_.find('\\', at)) {
            const auto high = unit(at);
            const auto low = high ? unit(at + 6) : std::nullopt;
            if (low && *high >= 0xD800 && *high < 0xDC00 && *low >= 0xDC00 && *low < 0xE000) {
                document_.append(text_, copied_, at - copied_);
                append_utf8(document_, 0x10000 + ((*high - 0xD800) << 10U) + (*low - 0xDC00));
                at += 12;
                copied_ = at;
            } else {
                at += 2;
            }
        }
    }

    const std::string_view text_;
    JsonWalk walk_;
    const std::string_view module_;
    std::string &document_;
    SequenceText &found_;
    std::size_t copied_ = 0; // of the text, to the document
    std::size_t members_ = 0;
    std::string_view name_; // of the member whose value comes next
    std::vector<Level> levels_;
    std::vector<std::string_view> names_; // of the members of all open objects
    std::deque<std::string> plain_names_; // of those written with escapes
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
