// A record as an engineer reads it, and two records side by side.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "compare/changes.h"
#include "compare/decoded_record.h"
#include "compare/record_fields.h"
#include "compare/record_marks.h"
#include "host/bag_library.h"

namespace aceconv {

enum class FieldType : std::uint8_t {
    bit, // one that marks no member
    number,
    boolean, // a number above 1 counts as one
    address,
    text,
    user_fields,
};

struct FieldValue {
    std::string name;                   // of the member; "bit 42" for a bit that marks no member
    const RecordField *field = nullptr; // null for such a bit
    std::vector<int> bits;              // presence bits that are set
    std::size_t offset = 0;             // bytes
    std::size_t width = 0;              // bytes; 0 for such a bit
    FieldType type = FieldType::bit;
    Schema schema = Schema::base;    // whose names the value has
    std::uint64_t number = 0;        // an address as it lies in the record
    std::optional<std::string> text; // none where the record has null
    std::vector<ace_udf_element> user_fields;
    std::string note; // what is unusual about it, or ""

    /// The number's name, or "".
    [[nodiscard]] std::string keyword() const;
};

/// Whether both hold the same, whatever marks them and whatever it is called.
bool same_value(const FieldValue &a, const FieldValue &b);

/// "80 (www)"; text in quotes, an address as a dotted quad.
std::string value_text(const FieldValue &value);
TypedValue typed(const FieldValue &value);
/// The name of a user-defined field; two that differ are shown differently.
std::string user_field_name(const ace_udf_element &element);
/// "0x1f"
std::string hexadecimal(std::uint64_t number);
/// Presence bits as "5" or "2:0-2,8-10,16-18"; "-" for none.
std::string bits_text(const std::vector<int> &bits);

/// The value of this name, or null.
const FieldValue *find_value(const std::vector<FieldValue> &values, std::string_view name);

/// A field that two records do not share; the side that lacks it is null.
struct Difference {
    const FieldValue *before;
    const FieldValue *after;

    [[nodiscard]] const FieldValue &any() const { return before != nullptr ? *before : *after; }
};

/// Field by field: what is marked, and with which value.
std::vector<Difference> compare(const std::vector<FieldValue> &before,
                                const std::vector<FieldValue> &after);

class RecordView {
  public:
    /// Throws IoError when the descriptor has members that no one here knows.
    explicit RecordView(const bag_descriptor &descriptor);

    /// Every field that is marked present or is not zero, and every presence bit
    /// without a member, in the record's order.
    [[nodiscard]] std::vector<FieldValue> describe(const ipv4_acl_config_ace &record,
                                                   Schema schema) const;

    /// Whether presence bits mark every member that is not zero.
    [[nodiscard]] bool marks_all(const ipv4_acl_config_ace &record) const;

  private:
    struct Place {
        std::size_t offset = 0;
        std::size_t width = 0;
    };
    struct Member {
        Place place;
        FieldType type;
        const RecordField *field;
        Marks marks;
    };
    std::vector<Member> members_;
    std::array<Place, mask_bits> marked_; // by bit; empty for a bit without a member
};

} // namespace aceconv
