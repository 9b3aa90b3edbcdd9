// Entries as JSON objects, one a line or one after the other: a bare entry, or
// {"acl": "X", "entry": {...}}.
#include <algorithm>
#include <utility>

#include "host/json_scan.h"
#include "stream/errors.h"
#include "stream/json_cursor.h"
#include "stream/source.h"
#include "stream/spool.h"
#include "stream/text.h"

namespace aceconv {
namespace {

/// Throws for a text that is no JSON at all, or of another module.
void check(Entry &entry) {
    if (const auto fault = json_fault(entry.text)) {
        const std::string_view text = entry.text;
        entry.position.line += count_lines(text.substr(0, *fault));
        throw DataError("", "not JSON: found " + start_of(text.substr(*fault)));
    }
    JsonWalk walk(entry.text);
    (void)walk.next();
    if (walk.next() == JsonWalk::Step::name && walk.content().find(':') != std::string_view::npos) {
        throw DataError("", "unknown member \"" + printable(walk.content()) +
                                "\"; expected \"aceconv-base:acls\", \"aceconv-um:acls\" or a node "
                                "of an entry");
    }
}

/// The schema that the entry's members tell, if one does.
std::optional<Schema> tell_schema(std::string_view object) {
    std::optional<Schema> schema;
    JsonWalk walk(object);
    for (auto step = walk.next(); !schema && step != JsonWalk::Step::end; step = walk.next()) {
        if (step == JsonWalk::Step::name && walk.depth() == 1) {
            schema = schema_of_node(json_string(walk.token()).value_or(""));
        }
    }
    return schema;
}

/// Whether this is an entry by itself, not {"acl": "X", "entry": {...}}.
bool is_bare(std::string_view text) {
    constexpr std::string_view quote = "{\"";
    constexpr std::string_view wrapped = "ae\\"; // how either of the two names may start
    if (text.size() > quote.size() && text.substr(0, quote.size()) == quote &&
        wrapped.find(text[quote.size()]) == std::string_view::npos) {
        return true;
    }
    JsonWalk walk(text);
    if (walk.next() != JsonWalk::Step::open || walk.next() != JsonWalk::Step::name) {
        return true;
    }
    const auto name = json_string(walk.token());
    return name != "acl" && name != "entry";
}

/// Takes the members of {"acl": "X", "entry": {...}} from the cursor; returns the
/// entry's line.
std::uint64_t take_members(JsonCursor &cursor, Entry &entry) {
    cursor.expect('{', "an entry");
    std::string text;
    std::uint64_t line = 0;
    do {
        const std::string member = cursor.string("\"acl\" or \"entry\"");
        cursor.expect(':', "':'");
        if (member == "acl" && !entry.key.acl) {
            entry.key.acl = cursor.string("the access list's name");
            if (const std::string fault = list_name_fault(*entry.key.acl); !fault.empty()) {
                throw DataError("", fault);
            }
        } else if (member == "entry" && line == 0) {
            cursor.peek();
            line = cursor.line();
            cursor.object(text, max_entry_bytes, "an entry");
        } else {
            throw DataError("", member == "acl" || member == "entry"
                                    ? "\"" + member + "\" is given twice"
                                    : "unknown member \"" + printable(member) +
                                          "\"; expected \"acl\" or \"entry\"");
        }
    } while (cursor.accept(','));
    cursor.expect('}', "',' or '}'");
    if (cursor.peek() != -1) {
        cursor.unexpected("the end of the line");
    }
    if (line == 0) {
        throw DataError("", "\"acl\" without \"entry\"");
    }
    entry.text = std::move(text);
    return line;
}

/// Takes {"acl": "X", "entry": {...}} apart; leaves a bare entry alone. Throws
/// DataError. The entry's line becomes that of its text, or of the fault.
void unwrap(Entry &entry) {
    if (is_bare(entry.text)) {
        return;
    }
    Window window(entry.text);
    JsonCursor cursor(window);
    try {
        entry.position.line += take_members(cursor, entry) - 1;
    } catch (const DataError &fault) { // of this one object
        entry.position.line += cursor.line() - 1;
        throw DataError(fault.path(), fault.what());
    }
}

class ObjectSource : public Source {
  public:
    ObjectSource(Window window, bool lines, std::optional<Schema> schema)
        : window_(std::move(window)), cursor_(window_), lines_(lines), schema_(schema) {}

    bool next(Entry &entry) override {
        entry.format = Format::json;
        if (!schema_ && !looked_ahead_) {
            look_ahead(entry);
        }
        if (!schema_ && silent_) {
            entry.position = {};
            throw SchemaUnknown("nothing in the entries tells their schema");
        }
        entry.schema = schema_.value_or(Schema::base);
        return held_.empty() ? take(entry) : held_.pop(entry);
    }

    [[nodiscard]] std::optional<Schema> schema() const override { return schema_; }

  private:
    /// Puts aside as many entries as it takes until one tells the schema. Where none
    /// does, but one of them is bad, throws the fault.
    void look_ahead(Entry &entry) {
        while (!schema_) {
            try {
                if (!take(entry)) {
                    break;
                }
                schema_ = tell_schema(entry.text);
                if (!schema_) {
                    check(entry);
                    silent_ = true;
                }
                held_.push(entry);
            } catch (const DataError &fault) {
                held_.push(entry, &fault);
                if (!first_fault_) {
                    first_fault_ = {fault, entry.key, entry.position};
                }
            }
        }
        looked_ahead_ = true;
        if (!schema_ && silent_ && first_fault_) {
            entry.key = first_fault_->key;
            entry.position = first_fault_->position;
            throw DataError(first_fault_->fault);
        }
    }

    /// Reads one entry; false at the end.
    bool take(Entry &entry) {
        if (!inside_) {
            if (ended_ || cursor_.peek() < 0) { // empty lines are passed over
                return false;
            }
            inside_ = true;
            position_ = {cursor_.line(), ++ordinal_};
        }
        entry.position = position_;
        entry.key = {};
        bool fits = false;
        try {
            fits = lines_ ? take_line(entry.text)
                          : cursor_.object(entry.text, max_line_bytes, "an entry");
        } catch (const StreamError &) {
            inside_ = false;
            ended_ = true;
            throw;
        }
        inside_ = false;
        if (!fits) {
            throw DataError("",
                            "an entry longer than " + std::to_string(max_line_bytes) + " bytes");
        }
        if (entry.text.front() != '{') {
            throw DataError("", "expected a JSON object, found " + start_of(entry.text));
        }
        unwrap(entry);
        return true;
    }

    /// The rest of the line; false for one that is too long, which is passed over.
    bool take_line(std::string &text) {
        for (bool more = true; more;) {
            const std::string_view view = window_.view();
            const std::size_t length = std::min(view.find('\n'), view.size());
            fits_ = fits_ && line_.size() + length <= max_line_bytes;
            if (fits_) {
                line_.append(view.substr(0, length));
            }
            more = length == view.size();
            window_.take(length);
            more = more && window_.more();
        }
        text.swap(line_);
        line_.clear();
        return std::exchange(fits_, true);
    }

    static constexpr std::size_t max_line_bytes =
        max_entry_bytes + max_list_name_json + 64; // with a list's name around it

    Window window_;
    JsonCursor cursor_;
    bool lines_;
    std::optional<Schema> schema_;
    std::uint64_t ordinal_ = 0;
    bool ended_ = false;
    // The entry that is being taken, and of a line what has been.
    bool inside_ = false;
    Position position_;
    std::string line_;
    bool fits_ = true;
    bool looked_ahead_ = false;
    bool silent_ = false; // an entry fits both schemas
    struct Fault {
        DataError fault;
        EntryKey key;
        Position position;
    };
    std::optional<Fault> first_fault_;
    Spool held_; // entries read before the schema was known
};

} // namespace

std::unique_ptr<Source> make_object_source(Window window, bool lines,
                                           std::optional<Schema> schema) {
    return std::make_unique<ObjectSource>(std::move(window), lines, schema);
}

} // namespace aceconv
