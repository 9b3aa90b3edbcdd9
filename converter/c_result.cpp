#include <cstring>

#include "converter/c_converter.h"

namespace aceconv {
namespace {

aceconv_value_kind kind_of(TypedValue::Type type) {
    switch (type) {
    case TypedValue::Type::absent:
        break;
    case TypedValue::Type::present:
        return ACECONV_VALUE_PRESENT;
    case TypedValue::Type::number:
        return ACECONV_VALUE_NUMBER;
    case TypedValue::Type::keyword:
        return ACECONV_VALUE_KEYWORD;
    case TypedValue::Type::boolean:
        return ACECONV_VALUE_BOOLEAN;
    case TypedValue::Type::address:
        return ACECONV_VALUE_ADDRESS;
    case TypedValue::Type::text:
        return ACECONV_VALUE_TEXT;
    case TypedValue::Type::user_fields:
        return ACECONV_VALUE_USER_FIELDS;
    }
    return ACECONV_VALUE_ABSENT;
}

aceconv_value shown_value(TypedValue::Type type, std::uint64_t number, const std::string &text,
                          const char *shown) {
    const bool has_text = type == TypedValue::Type::keyword || type == TypedValue::Type::address ||
                          type == TypedValue::Type::text;
    return {kind_of(type), number, has_text ? text.c_str() : nullptr, shown};
}

aceconv_value shown_value(const TypedValue &value, const std::optional<std::string> &shown) {
    return shown_value(value.type, value.number, value.text, shown ? shown->c_str() : nullptr);
}

} // namespace

void ShownResult::set(const Entry &entry, const Product &product, const Inspected *inspected) {
    changes_.clear();
    for (const Change &change : product.changes) {
        changes_.push_back({change.field.c_str(), change.leaf.c_str(),
                            shown_value(change.before_value, change.before),
                            shown_value(change.after_value, change.after), change.reason.c_str(),
                            change.widens ? 1 : 0});
    }
    fields_.clear();
    texts_.clear();
    if (inspected != nullptr) {
        constexpr std::size_t texts_of_field = 3;
        texts_.reserve(texts_of_field * inspected->fields.size()); // they stay where they are
        const auto kept = [this](std::string text) -> const std::string & {
            return texts_.emplace_back(std::move(text));
        };
        for (const FieldValue &field : inspected->fields) {
            const TypedValue value = typed(field);
            const char *leaf = field.field == nullptr ? nullptr : field.field->leaf(entry.schema);
            fields_.push_back({field.name.c_str(), leaf == nullptr ? "" : leaf,
                               kept(bits_text(field.bits)).c_str(),
                               static_cast<std::uint32_t>(field.offset),
                               static_cast<std::uint32_t>(field.width),
                               shown_value(value.type, value.number, kept(value.text),
                                           kept(value_text(field)).c_str()),
                               field.note.c_str()});
        }
    }
    result_ = {reinterpret_cast<const std::uint8_t *>(product.bytes.c_str()),
               product.bytes.size(),
               entry.key.acl ? entry.key.acl->c_str() : nullptr,
               entry.key.sequence.value_or(0),
               !entry.schema_known            ? ACECONV_SCHEMA_ANY
               : entry.schema == Schema::base ? ACECONV_SCHEMA_BASE
                                              : ACECONV_SCHEMA_UM,
               entry.position.line,
               entry.position.ordinal,
               inspected != nullptr ? inspected->words.c_str() : product.words.c_str(),
               product.words_after.c_str(),
               changes_.data(),
               changes_.size(),
               fields_.data(),
               fields_.size()};
}

} // namespace aceconv
