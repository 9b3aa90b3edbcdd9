#include <charconv>
#include <limits>

#include "host/data_path.h"
#include "host/error.h"
#include "host/libyang/complaint.h"
#include "host/libyang/libyang_tree.h"
#include "host/libyang/xml_text.h"
#include "host/schema/entry_text.h"
#include "host/schema/modules.h"
#include "host/utf8.h"

namespace aceconv {

namespace {

std::optional<std::uint32_t> number(std::string_view text) {
    std::uint32_t value = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc{} && result.ptr == end && value != 0 ? std::optional(value)
                                                                       : std::nullopt;
}

class LibyangReader final : public EntryReader {
  public:
    LibyangReader(Modules &modules, Schema schema, Format format)
        : context_(modules.context()), schema_(schema), format_(format),
          lists_(new_list(context_, schema)), list_(lyd_child(lists_.get())) {
        if (format == Format::xml) {
            xml_.emplace(context_.entry(schema), schema);
        }
    }

    ccv_yang_node *read(std::string_view text, const EntryKey &where) override {
        tree_.clear();
        where_ = where;
        sequence_ = where.sequence;
        given_ = {};
        try {
            parse(text);
        } catch (const DataError &error) {
            if (!sequence_) {
                sequence_ = number(given_.text);
            }
            throw DataError(entry_path(schema_, {where_.acl, sequence_}) + error.path(),
                            error.what(), error.line());
        }
        return &tree_.root();
    }

    [[nodiscard]] std::optional<std::uint32_t> sequence() const override { return sequence_; }

    [[nodiscard]] DataError explain(std::uint32_t status) const override {
        std::string path = entry_path(schema_, {where_.acl, sequence_});
        // Other codes do not come from the walk but from what follows it.
        if (tree_.looked_at != nullptr && known_status(status) != nullptr) {
            path += tree_.path(*tree_.looked_at);
        }
        return {path, explanation(tree_, status)};
    }

  private:
    void parse(std::string_view text) {
        if (text.size() > max_entry_bytes) {
            throw DataError("", "more than " + std::to_string(max_entry_bytes) + " bytes");
        }
        // Any key does where neither the text nor the caller has one.
        const std::string key = std::to_string(where_.sequence.value_or(1));
        if (xml_) {
            xml_->wrap(text, key, document_, given_);
        } else if (const char *fault = text_fault(text); fault != nullptr) {
            throw DataError("", fault);
        } else {
            wrap_json(text, schema_, key, document_, given_);
        }

        // Faster where every key comes first; otherwise, and for the last word on
        // errors, libyang puts the nodes in order.
        TreeOwner entry = given_.first ? parse_document(LYD_PARSE_ORDERED) : nullptr;
        if (entry == nullptr && (entry = parse_document(0)) == nullptr) {
            refuse(text);
        }
        const lyd_node *key_leaf = lyd_child(entry.get());
        tree_.assign(std::move(entry), given_.given);
        if (given_.given) {
            check_sequence(reinterpret_cast<const lyd_node_term *>(key_leaf)->value.uint32);
        }
    }

    [[noreturn]] void refuse(std::string_view text) {
        const LibyangError error = take_error(context_.libyang());
        const DataError fault = complaint(error, context_.entry(schema_));
        const bool told = xml_ && error.line != 0;
        throw DataError(fault.path(), fault.what(),
                        told ? xml_->line_of(text, error.line, levels_of(fault.path()))
                             : fault.line());
    }

    /// The document's entry, null when libyang refuses it.
    TreeOwner parse_document(std::uint32_t order) {
        const std::uint32_t options = LYD_PARSE_ONLY | LYD_PARSE_STRICT | order;
        lyd_node *entry = nullptr;
        if (format_ == Format::xml) {
            lyd_node *acls = nullptr;
            if (lyd_parse_data_mem(context_.libyang(), document_.c_str(), LYD_XML, options, 0,
                                   &acls) == LY_SUCCESS) {
                entry = list_entry(lyd_child(acls));
                (void)lyd_unlink_tree(entry);
            }
            lyd_free_all(acls);
            return TreeOwner(entry);
        }
        ly_in *in = nullptr;
        if (ly_in_new_memory(document_.c_str(), &in) != LY_SUCCESS) {
            throw std::bad_alloc();
        }
        const LY_ERR result =
            lyd_parse_data(context_.libyang(), list_, in, LYD_JSON, options, 0, nullptr);
        ly_in_free(in, 0);
        TreeOwner parsed(list_entry(list_));
        return result == LY_SUCCESS ? std::move(parsed) : nullptr;
    }

    /// What follows the list's name.
    static lyd_node *list_entry(lyd_node *list) { return lyd_child(list)->next; }

    void check_sequence(std::uint32_t given) {
        if (where_.sequence && given != *where_.sequence) {
            throw DataError("/sequence-number", std::to_string(given) + "; expected " +
                                                    std::to_string(*where_.sequence));
        }
        sequence_ = given;
    }

    Modules::Context &context_;
    const Schema schema_;
    const Format format_;
    EntryKey where_;
    std::optional<std::uint32_t> sequence_;
    std::string document_;
    SequenceText given_;
    TreeOwner lists_; // what JSON entries are parsed into
    lyd_node *const list_;
    std::optional<XmlText> xml_;
    LibyangTree tree_;
};

} // namespace

std::unique_ptr<EntryReader> make_validating_reader(Modules &modules, Schema schema,
                                                    Format format) {
    return std::make_unique<LibyangReader>(modules, schema, format);
}

} // namespace aceconv
