#include "common/leaf.h"

namespace ace {

std::uint32_t load(const Record &record, Field field) {
    switch (field.width) {
    case 1:
        return member<std::uint8_t>(record, field);
    case 2:
        return member<std::uint16_t>(record, field);
    default:
        return member<std::uint32_t>(record, field);
    }
}

void write_value(ccv_yang_output *output, const Record &record, const Leaf &leaf) {
    if (leaf.write == Write::string) {
        ccv_yang_string(output, leaf.name, member<char *>(record, leaf.field));
        return;
    }
    const std::uint32_t value = load(record, leaf.field);
    switch (leaf.write) {
    case Write::enumeration:
        ccv_yang_enum(output, leaf.name, leaf.keywords, value);
        break;
    case Write::enum_or_u32:
        ccv_yang_enum_or_uint32(output, leaf.name, leaf.keywords, value);
        break;
    case Write::bits:
        ccv_yang_bits(output, leaf.name, leaf.keywords, value);
        break;
    case Write::u32:
        ccv_yang_uint32(output, leaf.name, value);
        break;
    case Write::boolean:
        ccv_yang_bool(output, leaf.name, value);
        break;
    case Write::ipv4:
        ccv_yang_ipv4(output, leaf.name, value);
        break;
    default: // Write::empty
        if (value != 0) {
            ccv_yang_empty(output, leaf.name);
        }
        break;
    }
}

} // namespace ace
