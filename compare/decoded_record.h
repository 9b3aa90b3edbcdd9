// A decoded record to look at.
#pragma once

#include <array>
#include <cstddef>
#include <memory_resource>

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
    ~DecodedRecord() = default;
    DecodedRecord(const DecodedRecord &) = delete;
    DecodedRecord &operator=(const DecodedRecord &) = delete;

    [[nodiscard]] const ipv4_acl_config_ace &get() const { return record_; }
    [[nodiscard]] ipv4_acl_config_ace &get() { return record_; }
    [[nodiscard]] Bytes encode() const { return encode_record(descriptor_, record_); }

  private:
    const bag_descriptor &descriptor_;
    ipv4_acl_config_ace record_;
    std::array<std::byte, 1024> bytes_; // of most records' texts and lists
    std::pmr::monotonic_buffer_resource room_{bytes_.data(), bytes_.size()};
};

} // namespace aceconv
