// A decoded record that releases what it owns.
#pragma once

#include "aceconv/ace_record.h"
#include "host/bag_library.h"
#include "host/entry.h"
#include "stream/source.h"

namespace aceconv {

class DecodedRecord {
  public:
    /// Throws DataError when the encoding is not one of `descriptor`.
    DecodedRecord(const bag_descriptor &descriptor, Encoding encoding);
    ~DecodedRecord();
    DecodedRecord(const DecodedRecord &) = delete;
    DecodedRecord &operator=(const DecodedRecord &) = delete;

    [[nodiscard]] const ipv4_acl_config_ace &get() const { return record_; }
    [[nodiscard]] ipv4_acl_config_ace &get() { return record_; }
    [[nodiscard]] Bytes encode() const;

  private:
    const bag_descriptor &descriptor_;
    ipv4_acl_config_ace record_{};
};

/// Whether the record has FragmentFlags, the one field whose numbers depend on the schema.
[[nodiscard]] bool has_fragment_type(const ipv4_acl_config_ace &record);

/// Renumbers FragmentFlags from one schema's numbering to the other's. A value
/// without counterpart is removed, and true returned.
[[nodiscard]] bool translate_fragment_type(ipv4_acl_config_ace &record, Schema from, Schema to);

/// Clears bits 42 and 43 where they only repeat what bits 34, 35, 40 and 41
/// say: the base encoder derives them, and no other converter reads them.
void clear_derived_bits(ipv4_acl_config_ace &record);

} // namespace aceconv
