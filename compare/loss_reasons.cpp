#include "compare/loss_reasons.h"

#include <algorithm>

#include "stream/text.h"

namespace aceconv {

constexpr const char *unexplained = "it does not come back from what is written";

namespace {

constexpr std::uint64_t equal = 1;
constexpr std::uint64_t range = 5;
constexpr std::uint64_t match_all = 1;
constexpr std::uint64_t match_any = 3;
constexpr std::uint64_t permit = 1;
constexpr std::uint64_t regular_hop = 1;
constexpr std::uint64_t default_hop = 2;
constexpr int specific_code_bit = 18;
constexpr int any_code_bit = 19;

/// What is the matter with the field; the value is that of the record before.
enum class When : std::uint8_t {
    bit_of_next_hop,
    bit_without_member,
    unmarked,
    other_bits,
    no_user_fields,
    no_first_user_field,
    no_leaf,
    no_action,
    unknown_action,
    under_permit,
    any_code,
    both_codes,
    name_with_nul,
    written_as_one,
    marked_but_off,
    no_row,
    unknown_operator,
    not_equal_or_range,
    no_operator,
    not_a_range,
    no_first_value,
    no_address,
    unknown_match,
    nothing_matched,
    no_match_operator,
    no_flags,
    flags_without_mask,
    uncovered_flags,
    no_hop_type,
    unknown_hop_type,
    beside_default,
    no_first_hop,
    always,
};

/// Rows of the same part in the order in which they are asked. `widens` holds for
/// fields that packets are compared with.
struct Row {
    Part part; // whole: of any field
    When when;
    bool widens;
    const char *text; // null: the schema has no such leaf
};

// clang-format off
constexpr Row rows[] = {
    {Part::whole,        When::bit_of_next_hop,    false, "a next hop marked as configured, but without address and VRF"},
    {Part::whole,        When::bit_without_member, false, "the bit marks no field"},
    {Part::whole,        When::unmarked,           false, "no presence bit marks the value"},
    {Part::whole,        When::other_bits,         false, "presence bits"},
    {Part::whole,        When::no_user_fields,     false, "a list without user-defined fields is not written"},
    {Part::whole,        When::no_leaf,            true,  nullptr},
    {Part::whole,        When::no_action,          false, "no grant: the UM action container is missing"},
    {Part::whole,        When::unknown_action,     false, "an action by a number without a name"},
    {Part::whole,        When::no_first_user_field, true, "the bit of the first user-defined field is not set"},
    {Part::whole,        When::under_permit,       false, "the um schema has it under deny only"},
    {Part::whole,        When::any_code,           false, "any code is marked, whatever the number says"},
    {Part::whole,        When::both_codes,         true,  "any code is marked beside this one, and replaces it"},
    {Part::whole,        When::name_with_nul,      true,  "a name ends at its first NUL"},
    {Part::whole,        When::written_as_one,     false, "its presence is its value"},
    {Part::whole,        When::marked_but_off,     false, "it is marked, but not set"},
    {Part::whole,        When::no_row,             false, "a number without a name"},
    {Part::operation,    When::unknown_operator,   false, "an operator by a number without a name"},
    {Part::first,        When::unknown_operator,   true,  "its operator is a number without a name"},
    {Part::second,       When::unknown_operator,   true,  "its operator is a number without a name"},
    {Part::operation,    When::not_equal_or_range, true,  "the um schema compares protocols by equal and range only"},
    {Part::first,        When::not_equal_or_range, true,  "the um schema compares protocols by equal and range only"},
    {Part::first,        When::no_operator,        true,  "a value without its operator"},
    {Part::second,       When::no_operator,        false, "a second value without the operator range"},
    {Part::second,       When::not_a_range,        false, "a second value under another operator than range"},
    {Part::second,       When::no_first_value,     true,  "a range without its first value"},
    {Part::operation,    When::no_first_value,     false, "an operator without its value"},
    {Part::address_mask, When::no_address,         false, "a prefix length or wildcard mask without its address"},
    {Part::flags,        When::no_flags,           false, "a set without flags is not stored"},
    {Part::flag_mask,    When::no_flags,           false, "a mask without flags is not stored"},
    {Part::operation,    When::unknown_match,      false, "a match operator by a number without a name"},
    {Part::flags,        When::unknown_match,      true,  "the match operator is a number without a name"},
    {Part::flag_mask,    When::unknown_match,      true,  "the match operator is a number without a name"},
    {Part::operation,    When::nothing_matched,    false, "a match operator without flags and mask"},
    {Part::flag_mask,    When::no_match_operator,  true,  "a mask without a match operator"},
    {Part::flags,        When::flags_without_mask, true,  "flags without a mask under a match operator"},
    {Part::flags,        When::uncovered_flags,    false, "flags that the mask does not cover"},
    {Part::hop_type,     When::unknown_hop_type,   false, "a next hop type by a number without a name"},
    {Part::first_hop,    When::unknown_hop_type,   false, "the next hop type is a number without a name"},
    {Part::other_hop,    When::unknown_hop_type,   false, "the next hop type is a number without a name"},
    {Part::first_hop,    When::no_hop_type,        false, "a next hop without the next hop type"},
    {Part::other_hop,    When::no_hop_type,        false, "no next hop type, which the um schema derives from the first next hop"},
    {Part::first_hop,    When::beside_default,     false, "a next hop beside default-next-hop"},
    {Part::other_hop,    When::beside_default,     false, "a next hop beside default-next-hop"},
    {Part::hop_type,     When::no_first_hop,       false, "the um schema derives the type from the first next hop, which is missing"},
    {Part::whole,        When::always,             true,  unexplained},
};
// clang-format on

class Case {
  public:
    Case(const Difference &lost, const std::vector<FieldValue> &before, Schema to)
        : before_(lost.before), after_(lost.after), field_(lost.any().field), all_(before),
          to_(to) {}

    [[nodiscard]] bool holds(const Row &row) const {
        if (field_ == nullptr) {
            return row.when == When::bit_without_member ||
                   (row.when == When::bit_of_next_hop && is_next_hop_bit(lost().bits.front()));
        }
        return (row.part == Part::whole || row.part == field_->part) && holds(row.when);
    }

  private:
    /// The marked field of the same group and this part, or null.
    [[nodiscard]] const FieldValue *beside(Part part) const {
        const auto found = std::find_if(all_.begin(), all_.end(), [&](const FieldValue &value) {
            return value.field != nullptr && value.field->group == field_->group &&
                   value.field->part == part && !value.bits.empty();
        });
        return found == all_.end() ? nullptr : &*found;
    }
    [[nodiscard]] std::uint64_t number_beside(Part part) const {
        const FieldValue *value = beside(part);
        return value == nullptr ? 0 : value->number;
    }
    [[nodiscard]] bool is(const char *name) const { return std::string_view(name) == field_->name; }
    /// Only the bits differ, or the value differs.
    [[nodiscard]] bool same() const {
        return before_ != nullptr && after_ != nullptr && same_value(*before_, *after_);
    }
    [[nodiscard]] bool changed() const {
        return before_ != nullptr && after_ != nullptr && !same_value(*before_, *after_);
    }
    [[nodiscard]] bool absent() const { return before_ != nullptr && after_ == nullptr; }
    [[nodiscard]] bool marked_by(int bit) const {
        return std::find(before_->bits.begin(), before_->bits.end(), bit) != before_->bits.end();
    }
    [[nodiscard]] const FieldValue *action() const { return find_value(all_, "grant"); }

    [[nodiscard]] bool holds(When when) const {
        return before_ != nullptr ? holds_before(when) : when == When::always;
    }
    [[nodiscard]] bool holds_before(When when) const;
    [[nodiscard]] bool holds_in_um(When when) const;

    [[nodiscard]] const FieldValue &lost() const { return before_ != nullptr ? *before_ : *after_; }

    const FieldValue *before_;
    const FieldValue *after_;
    const RecordField *field_;
    const std::vector<FieldValue> &all_; // of the record before
    Schema to_;
};

bool Case::holds_before(When when) const {
    switch (when) {
    case When::unmarked:
        return before_->bits.empty();
    case When::other_bits:
        return same();
    case When::no_user_fields:
        return before_->type == FieldType::user_fields && before_->user_fields.empty();
    case When::no_leaf:
        return field_->leaf(to_) == nullptr;
    case When::any_code:
        return changed() && marked_by(any_code_bit) && !marked_by(specific_code_bit);
    case When::both_codes:
        return changed() && marked_by(any_code_bit) && marked_by(specific_code_bit);
    case When::name_with_nul:
        return changed() && before_->type == FieldType::user_fields;
    case When::written_as_one:
        return changed() && after_->number == 1 && field_->keywords(to_) == nullptr;
    case When::marked_but_off:
        return absent() && before_->number == 0 && (is("frags") || is("icmp_off") || is("icmp_on"));
    case When::always:
        return true;
    default:
        return to_ == Schema::um && holds_in_um(when);
    }
}

bool Case::holds_in_um(When when) const {
    const bool has_operator = beside(Part::operation) != nullptr;
    const std::uint64_t operation = number_beside(Part::operation);
    const std::uint64_t hop_type = number_beside(Part::hop_type);
    const bool tcp = field_->group == Group::tcp;
    switch (when) {
    case When::no_action:
        return action() == nullptr || action()->bits.empty();
    case When::unknown_action:
        return action()->number > permit;
    case When::no_first_user_field:
        return absent() && before_->type == FieldType::user_fields && !marked_by(second_mask);
    case When::under_permit:
        return absent() && action()->number == permit && (is("icmp_off") || is("icmp_on"));
    case When::no_row:
        return absent() && is("log");
    case When::unknown_operator:
        return !tcp && has_operator && (operation < equal || operation > range);
    case When::not_equal_or_range:
        return field_->group == Group::protocol && has_operator && operation != equal &&
               operation != range;
    case When::no_operator:
        return !has_operator;
    case When::not_a_range:
        return operation != range;
    case When::no_first_value:
        return !tcp && beside(Part::first) == nullptr;
    case When::no_address:
        return beside(Part::address) == nullptr;
    case When::unknown_match:
        return tcp && has_operator && operation != match_all && operation != match_any;
    case When::nothing_matched:
        return tcp && beside(Part::flags) == nullptr && beside(Part::flag_mask) == nullptr;
    case When::no_flags:
        return before_->number == 0;
    case When::no_match_operator:
        return !has_operator;
    case When::flags_without_mask:
        return has_operator && beside(Part::flag_mask) == nullptr;
    case When::uncovered_flags:
        return has_operator && beside(Part::flag_mask) != nullptr;
    case When::unknown_hop_type:
        return beside(Part::hop_type) != nullptr && hop_type != regular_hop &&
               hop_type != default_hop;
    case When::no_hop_type:
        return beside(Part::hop_type) == nullptr;
    case When::beside_default:
        return hop_type == default_hop;
    case When::no_first_hop:
        return beside(Part::first_hop) == nullptr;
    default:
        return false;
    }
}

} // namespace

LossReason loss_reason(const Difference &lost, const std::vector<FieldValue> &before, Schema to) {
    const Case found(lost, before, to);
    const Row *row = std::find_if(std::begin(rows), std::end(rows),
                                  [&](const Row &candidate) { return found.holds(candidate); });
    LossReason reason{"", row->widens && lost.any().field != nullptr && lost.any().field->matches};
    if (row->when == When::no_leaf) {
        reason.text = "the " + std::string(schema_name(to)) + " schema has no such leaf";
    } else if (row->when == When::other_bits) {
        reason.text =
            "presence bits " + bits_text(lost.before->bits) + " -> " + bits_text(lost.after->bits);
    } else {
        reason.text = row->text;
    }
    return reason;
}

} // namespace aceconv
