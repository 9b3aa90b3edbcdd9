#include <charconv>

#include "aceconv/plugin.h"
#include "common/safe_string.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

struct Hexadecimal {
    char text[9]; // eight digits and the terminating NUL
};

/// The number as a string leaf of lower-case digits, without prefix.
std::uint32_t emit_hexadecimal(ccv_yang_output *output, const UdfLeaf &leaf, std::uint32_t number) {
    Hexadecimal digits;
    const std::uint32_t status = clear(digits.text, sizeof digits.text);
    if (status != 0) {
        trace(*leaf.failure, status);
        return status;
    }
    // Eight digits at most; the cleared text ends behind them.
    std::to_chars(digits.text, digits.text + sizeof digits.text - 1, number, 16);
    ccv_yang_string(output, leaf.name, digits.text);
    return 0;
}

/// A failure leaves the entry open.
std::uint32_t emit_element(ccv_yang_output *output, const ace_udf_element &element) {
    ccv_yang_list_entry_begin(output, udf_list, 1);
    for (const UdfLeaf &leaf : udf_leaves) {
        if (leaf.number == nullptr) {
            ccv_yang_string(output, leaf.name, element.UDFName);
            continue;
        }
        const std::uint32_t status = emit_hexadecimal(output, leaf, element.*leaf.number);
        if (status != 0) {
            return status;
        }
    }
    ccv_yang_list_entry_end(output);
    return 0;
}

} // namespace

std::uint32_t emit_udf(ccv_yang_output *output, const Record &record) {
    ccv_yang_list_begin(output, udf_list);
    for (std::uint32_t i = 0; i < record.UDF.count; ++i) {
        const std::uint32_t status = emit_element(output, record.UDF.elements[i]);
        if (status != 0) {
            return status;
        }
    }
    ccv_yang_list_end(output);
    return 0;
}

} // namespace ace::um

std::uint32_t acl_yang_udf(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    return ace::um::emit_udf(output, record);
}
