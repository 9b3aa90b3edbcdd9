// The bulk backend's writer: the emitters' calls appended as JSON text.
#include <charconv>
#include <stdexcept>

#include "host/schema/leaf_value.h"
#include "host/schema/modules.h"
#include "host/schema/text_buffer.h"

namespace aceconv {

namespace {

/// Text that is complete up to the current position: an object is open for each
/// open container or list entry, and an array around the latter.
class BulkOutput final : public ccv_yang_output {
  public:
    BulkOutput(Modules::Context &context, Schema schema)
        : ccv_yang_output(schema, context.entry(schema)) {}

    void start(const EntryKey &where) {
        restart(where);
        text_.clear();
        text_ += '{';
        levels_.assign(1, {});
        started_ = true;
        if (where.sequence) {
            (void)leaf("sequence-number", {.kind = ValueKind::number, .number = *where.sequence});
        }
    }

    void finish(std::string &text) {
        if (!started_) {
            throw std::logic_error("finish without begin");
        }
        check_complete();
        text += text_.text();
        text += '}';
    }

  protected:
    bool open(const SchemaNode &container, std::string & /*why*/) override {
        name(container);
        text_ += '{';
        levels_.emplace_back();
        return true;
    }

    // The list itself has no call of its own: the first entry opens the array,
    // and the next node behind the last entry, or the end around it, closes it.
    bool open_entry(const SchemaNode &list, std::string_view key, std::string &why) override {
        if (levels_.back().list == &list) {
            text_ += ',';
        } else {
            name(list);
            text_ += '[';
            levels_.back().list = &list;
        }
        text_ += '{';
        levels_.emplace_back();
        return put(list.children[0], {.kind = ValueKind::text, .text = key}, why);
    }

    void close() override {
        end_list();
        text_ += '}';
        levels_.pop_back();
    }

    bool put(const SchemaNode &leaf, const Value &value, std::string &why) override {
        if (!takes_value(leaf, value, why)) {
            return false;
        }
        name(leaf);
        switch (value.kind) {
        case ValueKind::number:
            number(value.number);
            break;
        case ValueKind::boolean:
            text_ += std::string_view(value.number != 0 ? "true" : "false");
            break;
        case ValueKind::empty:
            text_ += std::string_view("[null]");
            break;
        case ValueKind::text:
            quoted(value.text);
            break;
        default: // names and addresses hold nothing to escape
            text_ += '"';
            text_ += value.text;
            text_ += '"';
        }
        return true;
    }

  private:
    struct Level {
        bool holds_nodes = false;
        const SchemaNode *list = nullptr; // whose array is open here
    };

    void end_list() {
        if (levels_.back().list != nullptr) {
            text_ += ']';
            levels_.back().list = nullptr;
        }
    }

    /// The name of the next node here.
    void name(const SchemaNode &node) {
        end_list();
        if (levels_.back().holds_nodes) {
            text_ += ',';
        }
        levels_.back().holds_nodes = true;
        text_ += node.member;
    }

    void number(std::uint64_t value) {
        constexpr std::size_t most = 20; // digits
        char *digits = text_.room(most);
        text_.grow(
            static_cast<std::size_t>(std::to_chars(digits, digits + most, value).ptr - digits));
    }

    /// A JSON string (RFC 8259, section 7) with the escapes that libyang writes.
    void quoted(std::string_view value) {
        text_ += '"';
        std::size_t plain = 0;
        for (std::size_t at = 0; at < value.size(); ++at) {
            const char byte = value[at];
            if (static_cast<unsigned char>(byte) >= 0x20 && byte != '"' && byte != '\\') {
                continue;
            }
            text_ += value.substr(plain, at - plain);
            plain = at + 1;
            escape(byte);
        }
        text_ += value.substr(plain);
        text_ += '"';
    }

    void escape(char byte) {
        if (byte == '"' || byte == '\\') {
            text_ += '\\';
            text_ += byte;
            return;
        }
        constexpr char digits[] = "0123456789ABCDEF";
        const auto code = static_cast<unsigned char>(byte);
        text_ += std::string_view("\\u00");
        text_ += digits[code >> 4U];
        text_ += digits[code & 0xFU];
    }

    TextBuffer text_;
    std::vector<Level> levels_;
    bool started_ = false;
};

class BulkWriter final : public EntryWriter {
  public:
    BulkWriter(Modules &modules, Schema schema) : output_(modules.context(), schema) {}

    ccv_yang_output *begin(const EntryKey &where) override {
        output_.start(where);
        return &output_;
    }

    void finish(std::string &text) override { output_.finish(text); }
    void keep_nodes() override { output_.keep_nodes(); }
    ccv_yang_node &nodes() override { return output_.nodes(); }

  private:
    BulkOutput output_;
};

} // namespace

std::unique_ptr<EntryWriter> make_bulk_writer(Modules &modules, Schema schema) {
    return std::make_unique<BulkWriter>(modules, schema);
}

} // namespace aceconv
