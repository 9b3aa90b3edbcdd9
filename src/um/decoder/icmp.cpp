#include "common/icmp_message.h"

#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

bool has_keyword(const ccv_yang_keyword *table, std::uint32_t value) {
    for (const ccv_yang_keyword *row = table; row->name != nullptr; ++row) {
        if (row->value == value) {
            return true;
        }
    }
    return false;
}

} // namespace

void emit_icmp(ccv_yang_output *output, const Record &record) {
    const Leaf &name = icmp_message_name;
    const std::uint32_t message = icmp_message(record);
    if (!is_present(record, icmp_specific_code | icmp_any_code)) {
        return;
    }
    if (has_keyword(name.keywords, message)) {
        ccv_yang_enum(output, name.name, name.keywords, message);
        return;
    }
    for (const IcmpNumber &number : icmp_numbers) {
        ccv_yang_uint32(output, number.name, message >> number.shift & 0xFFFF);
    }
}

} // namespace ace::um

void acl_yang_icmp(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_icmp(output, record);
}
