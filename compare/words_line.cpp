#include "compare/words_line.h"

#include <array>

#include "compare/record_marks.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::array operators = {"", "eq", "gt", "lt", "neq", "range"}; // by code
constexpr std::uint64_t any_code = 0xFFFF;
constexpr int any_code_bit = 19;
constexpr int most_marked_user_fields = 8;

/// The presence bits that mark so many user-defined fields.
std::vector<int> bits_of_user_fields(std::size_t count) {
    std::vector<int> bits;
    for (int run = second_mask; run < second_mask + 3 * most_marked_user_fields;
         run += most_marked_user_fields) {
        for (std::size_t i = 0; i < count; ++i) {
            bits.push_back(run + static_cast<int>(i));
        }
    }
    return bits;
}

/// Whether presence bits mark the value as they mark any of its kind.
bool is_plain(const FieldValue &value) {
    if (value.field == nullptr) {
        return false;
    }
    switch (value.type) {
    case FieldType::user_fields:
        return !value.user_fields.empty() && value.user_fields.size() <= most_marked_user_fields &&
               value.bits == bits_of_user_fields(value.user_fields.size());
    case FieldType::text:
        return value.text.has_value() && !value.bits.empty();
    default:
        return value.bits.size() == 1;
    }
}

std::string user_field_words(const ace_udf_element &element) {
    std::string_view name(element.UDFName, sizeof element.UDFName);
    name = name.substr(0, name.find_last_not_of('\0') + 1);
    return in_quotes(name) + " " + hexadecimal(element.UDFValue) + "/" +
           hexadecimal(element.UDFMask);
}

std::string user_fields_words(const FieldValue &value, const std::string &separator) {
    std::string text;
    for (const ace_udf_element &element : value.user_fields) {
        text += (text.empty() ? "" : separator) + user_field_words(element);
    }
    return text;
}

std::string value_words(const FieldValue &value) {
    switch (value.type) {
    case FieldType::text:
        return value.text ? in_quotes(*value.text) : "null";
    case FieldType::address:
        return value_text(value);
    default:
        return std::to_string(value.number);
    }
}

std::string name_or_number(const FieldValue &value) {
    return value.keyword().empty() ? std::to_string(value.number) : value.keyword();
}

/// The value by its member, and how it is marked where that is not as usual.
std::string by_member(const FieldValue &value) {
    if (value.field == nullptr) {
        return "[" + value.name + "]";
    }
    const bool one_bit = value.field->first_bit == value.field->last_bit;
    return "[" + value.name + "=" +
           (value.type == FieldType::user_fields ? user_fields_words(value, ", ")
                                                 : value_words(value)) +
           (value.bits.empty() ? " unmarked"
            : one_bit          ? ""
                               : " bits " + bits_text(value.bits)) +
           "]";
}

} // namespace

std::size_t number_of(const RecordField &field) {
    return static_cast<std::size_t>(&field - record_fields().data());
}

WordsLine::WordsLine(const std::vector<FieldValue> &values)
    : values_(values), plain_(record_fields().size()), said_(record_fields().size()) {
    for (const FieldValue &value : values) {
        if (is_plain(value)) {
            plain_[number_of(*value.field)] = &value;
        }
    }
    only_remark_ = values.size() == 1 && is_plain(values[0]) && values[0].name == "remark";
}

void WordsLine::add(std::string_view words) {
    text_ += text_.empty() || words.empty() ? "" : " ";
    text_ += words;
}

void WordsLine::say(const WordRow &row, const std::size_t *fields) {
    switch (row.form) {
    case Form::action:
        if (!say_keyword(fields[0]) && !only_remark_) {
            add("no-action");
        }
        break;
    case Form::keyword:
        say_keyword(fields[0]);
        break;
    case Form::icmp_message:
        say_icmp_message(row.word, fields[0]);
        break;
    case Form::comparison:
        say_comparison(row.word, fields);
        break;
    case Form::side:
        say_side(fields);
        break;
    case Form::flag_match:
        say_flags(row.word, fields);
        break;
    case Form::said_before:
        break;
    default:
        say_value(row, fields[0]);
    }
}

void WordsLine::say_rest() {
    for (const FieldValue &value : values_) {
        if (value.field == nullptr || !said_[number_of(*value.field)]) {
            add(by_member(value));
        }
    }
}

bool WordsLine::say_keyword(std::size_t field) {
    const FieldValue *value = unsaid(field);
    if (value == nullptr || value->keyword().empty()) {
        return false;
    }
    add(value->keyword());
    return said_[field] = true;
}

void WordsLine::say_value(const WordRow &row, std::size_t field) {
    const FieldValue *value = unsaid(field);
    const bool has_off = row.form == Form::on_or_off;
    const bool is_switch = row.form == Form::on || has_off;
    if (value == nullptr || (is_switch && value->number != 1 && (value->number != 0 || !has_off))) {
        return;
    }
    const std::string word = row.word;
    if (is_switch) {
        add((value->number == 0 ? "no-" : "") + word);
    } else {
        add(word);
        add(row.form == Form::user_fields ? user_fields_words(*value, " " + word + " ")
            : row.form == Form::name      ? name_or_number(*value)
                                          : value_words(*value));
    }
    said_[field] = true;
}

void WordsLine::say_icmp_message(const char *word, std::size_t field) {
    const FieldValue *value = unsaid(field);
    if (value == nullptr ||
        ((value->number & any_code) == any_code) != (value->bits.front() == any_code_bit)) {
        return;
    }
    const std::uint64_t code = value->number & any_code;
    add(word);
    add(!value->keyword().empty() ? value->keyword()
                                  : "type " + std::to_string(value->number >> 16) +
                                        (code == any_code ? "" : " code " + std::to_string(code)));
    said_[field] = true;
}

/// An operator, what it compares with, and the end of a range. A name where a number
/// stands for one thing, the number where its order counts.
void WordsLine::say_comparison(const char *word, const std::size_t *fields) {
    const FieldValue *operation = unsaid(fields[0]);
    const FieldValue *first = unsaid(fields[1]);
    const FieldValue *last = unsaid(fields[2]);
    if (operation == nullptr || first == nullptr || operation->number == 0 ||
        operation->number >= operators.size()) {
        return;
    }
    const bool is_range = operation->number == range_code;
    if (is_range && last == nullptr) {
        return;
    }
    const Group group = first->field->group;
    const bool by_name = (group == Group::protocol || group == Group::dscp) &&
                         (operation->number == equal_code || operation->number == not_equal_code);
    add(word);
    add(operators[operation->number]);
    add(by_name ? name_or_number(*first) : std::to_string(first->number));
    add(is_range ? std::to_string(last->number) : "");
    said_[fields[0]] = said_[fields[1]] = true;
    said_[fields[2]] = is_range;
}

/// An address with its prefix length and its wildcard mask. Without one any, unless the
/// group says which.
void WordsLine::say_side(const std::size_t *fields) {
    const FieldValue *address = unsaid(fields[0]);
    const FieldValue *length = unsaid(fields[1]);
    const FieldValue *mask = unsaid(fields[2]);
    if (address == nullptr) {
        add(only_remark_ || unsaid(fields[3]) != nullptr ? "" : "any");
        return;
    }
    add(value_words(*address));
    said_[fields[0]] = true;
    if (length != nullptr) {
        text_ += "/" + value_words(*length);
        said_[fields[1]] = true;
    }
    if (mask != nullptr) {
        add("wildcard " + value_words(*mask));
        said_[fields[2]] = true;
    }
}

/// Flags with the signs of those that have to be set and clear, or flags alone.
void WordsLine::say_flags(const char *word, const std::size_t *fields) {
    const FieldValue *operation = unsaid(fields[0]);
    const FieldValue *flags = unsaid(fields[1]);
    const FieldValue *mask = unsaid(fields[2]);
    if (flags == nullptr ||
        (operation != nullptr && (mask == nullptr || operation->keyword().empty()))) {
        return;
    }
    const std::uint64_t looked_at = (mask == nullptr ? flags : mask)->number;
    std::uint64_t unnamed = looked_at;
    std::string names;
    for (const ccv_yang_keyword *row = acl_yang_acl_tcp_bits; row->name != nullptr; ++row) {
        const std::uint64_t flag = std::uint64_t{1} << row->value;
        unnamed &= ~flag;
        if ((looked_at & flag) != 0) {
            const char *sign = (flags->number & flag) != 0 ? " +" : " -";
            names += (mask == nullptr ? " " : sign) + std::string(row->name);
        }
    }
    if (looked_at == 0 || unnamed != 0 || (flags->number & ~looked_at) != 0) {
        return;
    }
    add(word);
    add(operation == nullptr ? "" : operation->keyword());
    text_ += names;
    said_[fields[0]] = operation != nullptr;
    said_[fields[1]] = true;
    said_[fields[2]] = mask != nullptr;
}

} // namespace aceconv
