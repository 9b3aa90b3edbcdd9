// A decoded record that releases what it owns.
#pragma once

#include "aceconv/ace_record.h"
#include "host/bag_library.h"
#include "stream/source.h"

namespace aceconv {

/// The encoding of a record. Throws DataError.
Bytes encode_record(const bag_descriptor &descriptor, const ipv4_acl_config_ace &record);

class DecodedRecord {
  public:
    /// Throws DataError when the encoding is not one of `descriptor`.
    DecodedRecord(const bag_descriptor &descriptor, Encoding encoding);
    ~DecodedRecord();
    DecodedRecord(const DecodedRecord &) = delete;
    DecodedRecord &operator=(const DecodedRecord &) = delete;

    [[nodiscard]] const ipv4_acl_config_ace &get() const { return record_; }
    [[nodiscard]] ipv4_acl_config_ace &get() { return record_; }
    [[nodiscard]] Bytes encode() const { return encode_record(descriptor_, record_); }

  private:
    const bag_descriptor &descriptor_;
    ipv4_acl_config_ace record_{};
};

} // namespace aceconv
