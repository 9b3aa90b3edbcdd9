#include "compare/decoded_record.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "aceconv/keywords.h"
#include "stream/errors.h"

namespace aceconv {
namespace {

constexpr std::uint64_t bit(int n) {
    return std::uint64_t{1} << n;
}
constexpr std::uint64_t fragment_type_bit = bit(60);

const ccv_yang_keyword *fragment_types(Schema schema) {
    return schema == Schema::base ? acl_yang_acl_fragment_flags : acl_yang_acl_fragment_type_um;
}

} // namespace

DecodedRecord::DecodedRecord(const bag_descriptor &descriptor, Encoding encoding)
    : descriptor_(descriptor) {
    if (bag_decode(encoding.data(), static_cast<std::uint32_t>(encoding.size()), &record_,
                   &descriptor_) != 0) {
        throw DataError("", bag_last_error());
    }
}

DecodedRecord::~DecodedRecord() {
    bag_free_indirections(&record_, &descriptor_);
}

Bytes DecodedRecord::encode() const {
    bag_definition *definition = nullptr;
    std::uint8_t *encoded = nullptr;
    std::uint32_t length = 0;
    std::uint32_t status = bag_definition_init(&descriptor_, &definition);
    if (status == 0) {
        status = bag_encode_v3(&encoded, &length, &record_, definition, 1);
    }
    bag_definition_free(definition);
    if (status != 0) {
        throw DataError("", bag_last_error());
    }
    const std::unique_ptr<std::uint8_t, void (*)(void *)> owner(encoded, std::free);
    return {encoded, encoded + length};
}

bool has_fragment_type(const ipv4_acl_config_ace &record) {
    return (record.ConfigurationMask & fragment_type_bit) != 0;
}

bool translate_fragment_type(ipv4_acl_config_ace &record, Schema from, Schema to) {
    if (from == to || !has_fragment_type(record)) {
        return false;
    }
    const char *name = nullptr;
    for (auto row = fragment_types(from); row->name != nullptr; ++row) {
        if (row->value == record.FragmentFlags) {
            name = row->name;
        }
    }
    for (auto row = fragment_types(to); name != nullptr && row->name != nullptr; ++row) {
        if (std::strcmp(row->name, name) == 0) {
            record.FragmentFlags = static_cast<std::uint8_t>(row->value);
            return false;
        }
    }
    record.FragmentFlags = 0;
    record.ConfigurationMask &= ~fragment_type_bit;
    return true;
}

void clear_derived_bits(ipv4_acl_config_ace &record) {
    if ((record.ConfigurationMask & (bit(34) | bit(40))) != 0) {
        record.ConfigurationMask &= ~bit(42);
    }
    if ((record.ConfigurationMask & (bit(35) | bit(41))) != 0) {
        record.ConfigurationMask &= ~bit(43);
    }
}

} // namespace aceconv
