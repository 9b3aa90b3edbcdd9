#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

#include "host/error.h"
#include "host/libyang/libyang_tree.h"
#include "host/platform/backend.h"
#include "host/schema/ipv4_text.h"
#include "host/schema/leaf_value.h"
#include "host/schema/modules.h"

namespace aceconv {

namespace {

/// Builds a libyang tree of one entry.
class LibyangOutput final : public ccv_yang_output {
  public:
    LibyangOutput(Modules::Context &context, Schema schema)
        : ccv_yang_output(schema, context.entry(schema)), context_(context),
          lists_(new_list(context, schema)), acl_(lyd_child(lists_.get())) {}

    void start(const EntryKey &where) {
        drop();
        restart(where);
        if (where.sequence && *where.sequence == 0) {
            const SchemaNode &number = *peek("sequence-number");
            fail(YangStatus::out_of_range, number.name, "0; expected " + expected(number));
            return;
        }
        // libyang's list entry needs a key; finish takes it out where there is none.
        const std::string key = std::to_string(where.sequence.value_or(1));
        if (lyd_new_list(acl_, nullptr, "entry", 0, &current_, key.c_str()) != LY_SUCCESS) {
            throw std::bad_alloc();
        }
        entry_ = current_;
    }

    /// The complete entry.
    [[nodiscard]] const lyd_node &complete() const {
        check_complete();
        if (entry_ == nullptr) {
            throw std::logic_error("finish without begin");
        }
        return *entry_;
    }

    void drop() {
        lyd_free_tree(entry_);
        entry_ = nullptr;
        current_ = nullptr;
    }

  protected:
    bool open(const SchemaNode &container, std::string &why) override {
        lyd_node *created = nullptr;
        const LY_ERR result = lyd_new_inner(current_, nullptr, container.name, 0, &created);
        return entered(result, created, why);
    }

    bool open_entry(const SchemaNode &list, std::string_view key, std::string &why) override {
        lyd_node *created = nullptr;
        const LY_ERR result =
            lyd_new_list(current_, nullptr, list.name, 0, &created, std::string(key).c_str());
        if (result != LY_SUCCESS) {
            return refused(list.children[0], key, why);
        }
        return entered(result, created, why);
    }

    void close() override { current_ = lyd_parent(current_); }

    bool put(const SchemaNode &leaf, const Value &value, std::string &why) override {
        text_.assign(value.text);
        if (value.kind == ValueKind::number) {
            text_ = std::to_string(value.number);
        } else if (value.kind == ValueKind::boolean) {
            text_ = value.number != 0 ? "true" : "false";
        } else if (value.kind == ValueKind::ipv4) {
            text_ = Ipv4Text(static_cast<std::uint32_t>(value.number)).text();
        }
        return lyd_new_term(current_, nullptr, leaf.name, text_.c_str(), 0, nullptr) ==
                   LY_SUCCESS ||
               refused(leaf, text_, why);
    }

  private:
    bool entered(LY_ERR result, lyd_node *created, std::string &why) {
        if (result != LY_SUCCESS) {
            why = take_error(context_.libyang()).message;
            return false;
        }
        current_ = created;
        return true;
    }

    bool refused(const SchemaNode &leaf, std::string_view text, std::string &why) const {
        (void)take_error(context_.libyang());
        why = not_taken(leaf, text);
        return false;
    }

    Modules::Context &context_;
    TreeOwner lists_;
    lyd_node *const acl_;
    lyd_node *entry_ = nullptr;
    lyd_node *current_ = nullptr; // where the next node goes
    std::string text_;
};

class LibyangWriter final : public EntryWriter {
  public:
    LibyangWriter(Modules &modules, Schema schema, Format format)
        : format_(format), output_(modules.context(), schema) {
        if (ly_out_new_memory(&printed_, 0, &out_) != LY_SUCCESS) {
            throw std::bad_alloc();
        }
    }
    LibyangWriter(const LibyangWriter &) = delete;
    LibyangWriter &operator=(const LibyangWriter &) = delete;
    ~LibyangWriter() override { ly_out_free(out_, nullptr, 1); }

    ccv_yang_output *begin(const EntryKey &where) override {
        has_sequence_ = where.sequence.has_value();
        output_.start(where);
        return &output_;
    }

    void finish(std::string &text) override {
        const lyd_node &entry = output_.complete();
        (void)ly_out_reset(out_);
        if (lyd_print_tree(out_, &entry, format_ == Format::json ? LYD_JSON : LYD_XML,
                           LYD_PRINT_SHRINK) != LY_SUCCESS) {
            throw std::bad_alloc();
        }
        append(printed_, text);
        output_.drop();
    }

  private:
    /// Appends the printed entry without what libyang prints around it: JSON has
    /// {"module:entry":[...]}, and the stand-in key comes out of both notations.
    void append(std::string_view printed, std::string &text) const {
        std::string_view key = "<sequence-number>1</sequence-number>";
        if (format_ == Format::json) {
            const std::size_t start = printed.find('[') + 1;
            printed = printed.substr(start, printed.rfind(']') - start);
            key = printed == "{\"sequence-number\":1}" ? "\"sequence-number\":1"
                                                       : "\"sequence-number\":1,";
        }
        if (has_sequence_) {
            append_whole(printed, text);
        } else {
            const std::size_t at = printed.find(key);
            text += printed.substr(0, at);
            append_whole(printed.substr(at + key.size()), text);
        }
    }

    void append_whole(std::string_view printed, std::string &text) const {
        format_ == Format::json ? append_json(printed, text) : append_xml(printed, text);
    }

    /// Whichever libyang prints it, text is the same: libyang 3 has escapes of its own.
    static void append_json(std::string_view printed, std::string &text) {
        for (std::size_t at; (at = printed.find('\\')) != std::string::npos;) {
            std::string_view escape = printed.substr(at, printed.substr(at + 1, 1) == "u" ? 6 : 2);
            text += printed.substr(0, at);
            printed.remove_prefix(at + escape.size());
            for (const auto &[other, ours] : other_escapes) {
                escape = escape == other ? ours : escape;
            }
            text += escape;
        }
        text += printed;
    }

    /// libyang leaves carriage returns in XML as they are, and whoever reads it takes
    /// them for line feeds.
    static void append_xml(std::string_view printed, std::string &text) {
        for (std::size_t at; (at = printed.find('\r')) != std::string::npos;) {
            text.append(printed.substr(0, at)).append("&#13;");
            printed.remove_prefix(at + 1);
        }
        text += printed;
    }

    static constexpr std::pair<std::string_view, std::string_view> other_escapes[] = {
        {"\\r", "\\u000D"}, {"\\t", "\\u0009"}, {"\\u007F", "\x7F"}};

    const Format format_;
    LibyangOutput output_;
    char *printed_ = nullptr;
    ly_out *out_ = nullptr;
    bool has_sequence_ = false;
};

} // namespace

std::unique_ptr<EntryWriter> make_validating_writer(Modules &modules, Schema schema,
                                                    Format format) {
    return std::make_unique<LibyangWriter>(modules, schema, format);
}

} // namespace aceconv
