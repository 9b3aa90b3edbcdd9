#include "record/bag_frame.h"

#include <cstring>

#include "aceconv/host/bag.h"
#include "aceconv/plugin.h"

namespace ace {

namespace {

/// Runs `use` with the type's definition and frees the definition, also one
/// that a failing bag_definition_init left behind.
template <typename Use>
std::uint32_t with_definition(Use use) {
    bag_definition *definition = nullptr;
    std::uint32_t status = bag_definition_init(&ipv4_acl_config_ace_bag, &definition);
    if (status == 0) {
        status = use(definition);
    }
    if (definition != nullptr) {
        bag_definition_free(definition);
    }
    return status;
}

} // namespace

void clear_record(ipv4_acl_config_ace &record) {
    std::memset(&record, 0, sizeof record);
}

std::uint32_t encode_record(const ipv4_acl_config_ace &record, void *out_a, void *out_b) {
    return with_definition([&](bag_definition *definition) {
        return bag_encode_v3(out_a, out_b, &record, definition, 1);
    });
}

std::uint32_t decode_record(const std::uint8_t *encoded, std::uint32_t encoded_len,
                            ipv4_acl_config_ace &record) {
    return with_definition([&](bag_definition *definition) {
        return bag_decode_v3(encoded, encoded_len, &record, definition, 0);
    });
}

void release_record(ipv4_acl_config_ace &record) {
    bag_free_indirections(&record, &ipv4_acl_config_ace_bag);
}

} // namespace ace
