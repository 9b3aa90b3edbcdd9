#include <charconv>

#include "aceconv/plugin.h"
#include "common/safe_string.h"
#include "common/trace.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

struct Hexadecimal {
    char text[9]; // eight digits and the terminating NUL
};

/// The number as a string leaf of lower-case digits, without prefix.
std::uint32_t emit_hexadecimal(ccv_yang_output *output, const char *name, std::uint32_t number,
                               const TraceLine &failure) {
    Hexadecimal digits;
    const std::uint32_t status = clear(digits.text, sizeof digits.text);
    if (status != 0) {
        trace(failure, status);
        return status;
    }
    // Eight digits at most; the cleared text ends behind them.
    std::to_chars(digits.text, digits.text + sizeof digits.text - 1, number, 16);
    ccv_yang_string(output, name, digits.text);
    return 0;
}

/// A failure leaves the entry open.
std::uint32_t emit_element(ccv_yang_output *output, const ace_udf_element &element) {
    ccv_yang_list_entry_begin(output, udf_list, 1);
    ccv_yang_string(output, udf_name, element.UDFName);
    std::uint32_t status =
        emit_hexadecimal(output, udf_value, element.UDFValue, trace_line::udf_value_failure);
    if (status == 0) {
        status = emit_hexadecimal(output, udf_mask, element.UDFMask, trace_line::udf_mask_failure);
    }
    if (status == 0) {
        ccv_yang_list_entry_end(output);
    }
    return status;
}

} // namespace

} // namespace ace::um

std::uint32_t acl_yang_udf(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ccv_yang_list_begin(output, ace::um::udf_list);
    for (std::uint32_t i = 0; i < record.UDF.count; ++i) {
        const std::uint32_t status = ace::um::emit_element(output, record.UDF.elements[i]);
        if (status != 0) {
            return status;
        }
    }
    ccv_yang_list_end(output);
    return 0;
}
