#include "common/leaf.h"

namespace ace {

void write_value(ccv_yang_output *output, const Record &record, const Leaf &leaf,
                 const char *name) {
    if (leaf.write == Write::string) {
        ccv_yang_string(output, name, member<char *>(record, leaf.field));
        return;
    }
    const std::uint32_t value = load(record, leaf.field);
    switch (leaf.write) {
    case Write::enumeration:
        ccv_yang_enum(output, name, leaf.keywords, value);
        break;
    case Write::enum_or_u32:
        ccv_yang_enum_or_uint32(output, name, leaf.keywords, value);
        break;
    case Write::bits:
        ccv_yang_bits(output, name, leaf.keywords, value);
        break;
    case Write::u32:
        ccv_yang_uint32(output, name, value);
        break;
    case Write::boolean:
        ccv_yang_bool(output, name, value);
        break;
    case Write::ipv4:
        ccv_yang_ipv4(output, name, value);
        break;
    default: // Write::empty
        if (value != 0) {
            ccv_yang_empty(output, name);
        }
        break;
    }
}

} // namespace ace
