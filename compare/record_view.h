// A record as an engineer reads it, and two records side by side.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "compare/decoded_record.h"
#include "compare/record_fields.h"
#include "host/bag_library.h"

namespace aceconv {

struct FieldValue {
    std::string name;         // of the member; "bit 42" for a bit that marks no member
    const RecordField *field; // null for such a bit
    std::vector<int> bits;    // presence bits that are set
    std::size_t offset = 0;   // bytes
    std::size_t width = 0;    // bytes; 0 for such a bit
    nlohmann::ordered_json value;
    std::string keyword; // the value's name, or ""
    std::string note;    // what is unusual about it, or ""
};

/// "80 (www)"; text in quotes.
std::string value_text(const FieldValue &value);
/// Presence bits as "5" or "2:0-2,8-10,16-18"; "-" for none.
std::string bits_text(const std::vector<int> &bits);

/// A field that two records do not share; the side that lacks it is empty.
struct Difference {
    std::optional<FieldValue> before;
    std::optional<FieldValue> after;

    [[nodiscard]] const FieldValue &any() const { return before ? *before : *after; }
};

class RecordView {
  public:
    /// Throws IoError when the descriptor has members that no one here knows.
    explicit RecordView(const bag_descriptor &descriptor);

    /// Every field that is marked present or is not zero, and every presence bit
    /// without a member, in the record's order.
    [[nodiscard]] std::vector<FieldValue> describe(const ipv4_acl_config_ace &record,
                                                   Schema schema) const;

    /// Field by field: what is marked, and with which value. Costs little where
    /// there is no difference.
    [[nodiscard]] std::vector<Difference> compare(const DecodedRecord &before,
                                                  const DecodedRecord &after, Schema schema) const;

  private:
    std::vector<BagMember> members_;
    std::vector<const RecordField *> fields_; // of the members
};

} // namespace aceconv
