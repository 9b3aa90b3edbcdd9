// The fixed sequences of bag-library calls around every conversion.
#pragma once

#include <cstdint>

#include "aceconv/ace_record.h"

namespace ace {

/// Zeroes all 264 bytes, padding included.
void clear_record(ipv4_acl_config_ace &record);

/// Encodes a built record; the record still owns its blocks afterwards.
[[nodiscard]] std::uint32_t encode_record(const ipv4_acl_config_ace &record, void *out_a,
                                          void *out_b);

/// Fills `record`, which need not be initialised. After a failure it owns
/// nothing and must not be released.
[[nodiscard]] std::uint32_t decode_record(const std::uint8_t *encoded, std::uint32_t encoded_len,
                                          ipv4_acl_config_ace &record);

/// Releases the strings and the UDF array.
void release_record(ipv4_acl_config_ace &record);

} // namespace ace
