// The diagnostic trace: how the UM converters report failures as text. It never
// fails and never changes a status.
#pragma once

#include <cstdint>

#include "aceconv/host/debug.h"

namespace ace {

struct TraceLine {
    const char *function; // first conversion of the format, and the name that is filtered
    const char *format;
};

/// Every line that the plug-in can write. Status codes and numbers are printed
/// as signed 32-bit values.
namespace trace_line {

inline constexpr const char *um_encoder = "ccv_custom_encoder_ipv4_acl_ace_um";
inline constexpr TraceLine invalid_leaf{um_encoder, "%s: Invalid leaf name, rc=%d."};
inline constexpr TraceLine encode_failure{um_encoder,
                                          "%s: acl_ccv_custom_bag_encode_v3_um failure, rc - %d."};

inline constexpr TraceLine protocol_range{
    "acl_yang_ipv4_enc_protocol_common",
    "%s: range container can only have either start-protocol or end-protocol."};
inline constexpr TraceLine source_leaf{"acl_yang_ipv4_enc_source_address",
                                       "%s: Invalid leaf name inside source container, rc = %d."};
inline constexpr TraceLine destination_leaf{
    "acl_yang_ipv4_enc_dest_address",
    "%s: Invalid leaf name inside destination container, rc = %d."};

inline constexpr const char *set_tcpflag = "ccv_yang_set_ipv4_tcpflag";
inline constexpr TraceLine flag_words{
    set_tcpflag, "%s: acl_yang_get_uint32_tcpflags_um returned failure, rc = %d."};
inline constexpr TraceLine mask_words{
    set_tcpflag, "%s: acl_yang_get_uint32_tcpflags_mask_um returned failure, rc = %d."};

inline constexpr TraceLine udf_memory{"ccv_yang_get_ipv4_udf", "%s: Failed to allocate memory."};

inline constexpr const char *police_encoder = "acl_yang_ipv4_enc_police";
inline constexpr TraceLine unknown_unit{
    police_encoder, "%s: String Value %s is not found in structure %s for leaf unit, rc=%d."};
inline constexpr TraceLine unknown_peak_unit{
    police_encoder, "%s: String Value %s is not found in structure %s for leaf peak-unit, rc=%d."};

inline constexpr TraceLine decode_failure{"ccv_custom_decoder_ipv4_acl_ace_um",
                                          "%s: acl_ccv_custom_bag_decode_v3_um failure, rc - %d."};

inline constexpr const char *ace_common = "acl_yang_ace_common";
inline constexpr TraceLine tcp_flags_failure{ace_common,
                                             "%s: acl_yang_tcp_flags failure, rc - %d."};
inline constexpr TraceLine udf_failure{ace_common, "%s: acl_yang_udf failure, rc - %d."};

inline constexpr const char *tcp_flags = "acl_yang_tcp_flags";
inline constexpr TraceLine match_all_failure{
    tcp_flags, "%s: acl_yang_tcp_bits_um failure for match-all , rc = %d."};
inline constexpr TraceLine match_any_failure{
    tcp_flags, "%s: acl_yang_tcp_bits_um failure for match-any , rc = %d."};

inline constexpr const char *udf = "acl_yang_udf";
inline constexpr TraceLine udf_value_failure{udf, "%s: memset_s failure for udf-value, rc - %d."};
inline constexpr TraceLine udf_mask_failure{udf, "%s: memset_s failure for udf-mask, rc - %d."};

inline constexpr const char *police = "acl_yang_police";
inline constexpr TraceLine unit_copy{
    police, "%s: acl_yang_enum_to_string failure for police unit value %d, rc = %d."};
inline constexpr TraceLine peak_unit_copy{
    police, "%s: acl_yang_enum_to_string failure for police peak_unit value %d, rc = %d."};
inline constexpr TraceLine unit_missing{
    police, "%s: String value not found in structure %s for police unit value - %d."};
inline constexpr TraceLine peak_unit_missing{
    police, "%s: String value not found in structure %s for police peak_unit value - %d."};

} // namespace trace_line

/// The event to print under, or null when `function` is not to be traced now.
[[nodiscard]] const ipv4_acl_debug_event *trace_event(const char *function);

inline std::int32_t trace_argument(std::uint32_t number) {
    return static_cast<std::int32_t>(number);
}
inline const char *trace_argument(const char *text) {
    return text;
}

template <typename... Arguments>
void trace(const TraceLine &line, Arguments... arguments) {
    if (const ipv4_acl_debug_event *event = trace_event(line.function)) {
        buginf(event, 0, 1, line.format, line.function, trace_argument(arguments)...);
    }
}

} // namespace ace
