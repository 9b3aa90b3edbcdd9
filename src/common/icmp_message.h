// The ICMP message of a record: the type in the upper 16 bits of icmp_type_code,
// the code in the lower. Its presence bit says whether the code is a wildcard.
#pragma once

#include "common/leaf.h"

namespace ace {

inline constexpr Bits icmp_specific_code = bit(18);
inline constexpr Bits icmp_any_code = bit(19);
inline constexpr std::uint32_t any_code = 0xFFFF;

/// Marks a message of this code as present.
inline void set_icmp_present(Record &record, std::uint32_t code) {
    set_present(record, (code & any_code) == any_code ? icmp_any_code : icmp_specific_code);
}

/// Reads a message; which bit to set is known only after the read.
[[nodiscard]] inline std::uint32_t read_icmp_message(Record &record, ccv_yang_node *node,
                                                     const Leaf &leaf) {
    const std::uint32_t status = read_value(record, node, leaf);
    if (status == 0) {
        set_icmp_present(record, record.icmp_type_code);
    }
    return status;
}

/// The message, of the code 0xFFFF where any code is marked, whatever code the
/// record holds.
inline std::uint32_t icmp_message(const Record &record) {
    return is_present(record, icmp_any_code) ? record.icmp_type_code | any_code
                                             : record.icmp_type_code;
}

} // namespace ace
