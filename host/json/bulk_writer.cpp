// The bulk backend's writer: the emitters' calls appended as JSON text.
#include <array>
#include <charconv>
#include <cstring>
#include <stdexcept>

#include "host/schema/ipv4_text.h"
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
        level_ = levels_.data();
        *level_ = {};
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
        close();
        text += text_.text();
    }

  protected:
    bool open(const SchemaNode &container, std::string & /*why*/) override {
        char *at = put_name(container, 1);
        *at++ = '{';
        text_.finish(at);
        *++level_ = {};
        return true;
    }

    // The list itself has no call of its own: the first entry opens the array,
    // and the next node behind the last entry, or the end around it, closes it.
    bool open_entry(const SchemaNode &list, std::string_view key, std::string &why) override {
        char *at = nullptr;
        if (level_->list == &list) {
            at = text_.room(2);
            *at++ = ',';
        } else {
            at = put_name(list, 2);
            *at++ = '[';
            level_->list = &list;
        }
        *at++ = '{';
        text_.finish(at);
        *++level_ = {};
        return put(list.children[0], {.kind = ValueKind::text, .text = key}, why);
    }

    void close() override {
        char *at = text_.room(2);
        *at = ']';
        at += level_->list != nullptr ? 1 : 0;
        *at++ = '}';
        text_.finish(at);
        --level_;
    }

    bool put(const SchemaNode &leaf, const Value &value, std::string &why) override {
        if (!takes_value(leaf, value, why)) {
            return false;
        }
        char *at = put_name(leaf, max_plain + max_escape * value.text.size());
        switch (value.kind) {
        case ValueKind::number:
            at = std::to_chars(at, at + max_plain, value.number).ptr;
            break;
        case ValueKind::boolean:
            at = copy(value.number != 0 ? "true" : "false", at);
            break;
        case ValueKind::empty:
            at = copy("[null]", at);
            break;
        case ValueKind::ipv4:
            *at++ = '"';
            at = write_ipv4(at, static_cast<std::uint32_t>(value.number));
            *at++ = '"';
            break;
        case ValueKind::text:
            at = put_quoted(value.text, at);
            break;
        default: // names hold nothing to escape
            *at++ = '"';
            at = copy(value.text, at);
            *at++ = '"';
        }
        text_.finish(at);
        return true;
    }

  private:
    struct Level {
        bool holds_nodes = false;
        const SchemaNode *list = nullptr; // whose array is open here
    };
    // Bytes of text:
    static constexpr std::size_t max_plain = 24; // of what is no text, and of quotes
    static constexpr std::size_t max_escape = 6; // of a character

    static char *copy(std::string_view text, char *at) { return at + text.copy(at, text.size()); }

    /// Writes the name of the next node here, behind what it stands behind, where room is
    /// for so many bytes more. Returns its end.
    char *put_name(const SchemaNode &node, std::size_t more) {
        char *at = text_.room(2 + node.member.size() + more);
        *at = ']';
        at += level_->list != nullptr ? 1 : 0;
        *at = ',';
        at += level_->holds_nodes ? 1 : 0;
        *level_ = {.holds_nodes = true};
        for (std::size_t block = 0; block < node.member_bytes; block += member_block) {
            std::memcpy(at + block, node.member.data() + block, member_block);
        }
        return at + node.member_bytes;
    }

    /// A JSON string (RFC 8259, section 7) with the escapes that libyang writes.
    static char *put_quoted(std::string_view text, char *at) {
        *at++ = '"';
        for (const char byte : text) {
            *at = byte;
            if (static_cast<unsigned char>(byte) >= 0x20 && byte != '"' && byte != '\\') {
                ++at;
            } else {
                at = put_escaped(byte, at);
            }
        }
        *at++ = '"';
        return at;
    }

    static char *put_escaped(char byte, char *at) {
        *at++ = '\\';
        if (byte == '"' || byte == '\\') {
            *at++ = byte;
            return at;
        }
        constexpr char digits[] = "0123456789ABCDEF";
        const auto code = static_cast<unsigned char>(byte);
        at = copy("u00", at);
        *at++ = digits[code >> 4U];
        *at++ = digits[code & 0xFU];
        return at;
    }

    TextBuffer text_;
    std::array<Level, max_depth> levels_;
    Level *level_ = nullptr; // the innermost
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

  private:
    BulkOutput output_;
};

} // namespace

std::unique_ptr<EntryWriter> make_bulk_writer(Modules &modules, Schema schema) {
    return std::make_unique<BulkWriter>(modules, schema);
}

} // namespace aceconv
