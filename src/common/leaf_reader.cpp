#include <cstdlib>

#include "common/leaf.h"

namespace ace {

namespace {

// What needs a frame stands apart: the other readers are left to with a jump.

[[gnu::noinline]] std::uint32_t read_string(ccv_yang_node *node, char *&text) {
    char *read = nullptr;
    const std::uint32_t status = ccv_yang_get_string(node, &read);
    if (status == 0) {
        std::free(text);
        text = read;
    }
    return status;
}

std::uint32_t read_keywords(ccv_yang_node *node, const Leaf &leaf, std::uint32_t &value) {
    switch (leaf.read) {
    case Read::enumeration:
        return ccv_yang_get_enum(node, leaf.keywords, &value);
    case Read::enum_or_u32:
        return ccv_yang_get_enum_or_uint32(node, leaf.keywords, &value);
    default:
        return ccv_yang_get_bits(node, leaf.keywords, &value);
    }
}

[[gnu::noinline]] std::uint32_t read_narrowed(Record &record, ccv_yang_node *node,
                                              const Leaf &leaf) {
    std::uint32_t value = 0;
    const std::uint32_t status = read_keywords(node, leaf, value);
    if (status == 0) {
        store(record, leaf.field, value);
    }
    return status;
}

} // namespace

std::uint32_t read_value(Record &record, ccv_yang_node *node, const Leaf &leaf) {
    switch (leaf.read) {
    case Read::u8:
        return ccv_yang_get_uint8(node, &member<std::uint8_t>(record, leaf.field));
    case Read::u16:
        return ccv_yang_get_uint16(node, &member<std::uint16_t>(record, leaf.field));
    case Read::u32:
        return ccv_yang_get_uint32(node, &member<std::uint32_t>(record, leaf.field));
    case Read::boolean:
        return ccv_yang_get_bool(node, &member<std::uint32_t>(record, leaf.field));
    case Read::ipv4:
        return ccv_yang_get_ipv4(node, &member<std::uint32_t>(record, leaf.field));
    case Read::string:
        return read_string(node, member<char *>(record, leaf.field));
    case Read::constant:
        store(record, leaf.field, leaf.constant);
        return 0;
    default: // keywords
        return leaf.field.width == sizeof(std::uint32_t)
                   ? read_keywords(node, leaf, member<std::uint32_t>(record, leaf.field))
                   : read_narrowed(record, node, leaf);
    }
}

} // namespace ace
