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

} // namespace ace::um

void acl_yang_icmp(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::fold_any_code(record); // the caller's record stays as it is
    const ace::Leaf &name = ace::um::icmp_message_name;
    if (!ace::is_present(record, name.bit)) {
        return;
    }
    const std::uint32_t message = record.icmp_type_code;
    if (ace::um::has_keyword(name.keywords, message)) {
        ccv_yang_enum(output, name.name, name.keywords, message);
    } else {
        ccv_yang_uint32(output, ace::um::icmp_message_type, message >> 16);
        ccv_yang_uint32(output, ace::um::icmp_message_code, message & ace::any_code);
    }
}
