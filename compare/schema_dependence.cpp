#include "compare/schema_dependence.h"

#include "compare/decoded_record.h"
#include "stream/errors.h"

namespace aceconv {
namespace {

constexpr std::uint64_t bit(int n) {
    return std::uint64_t{1} << n;
}

/// Marked by any of these bits, a field has its meaning from the schema.
struct Marked {
    const char *field;
    std::uint64_t mask, mask2;
};
constexpr Marked marked_fields[] = {
    {"FragmentFlags", bit(60), 0}, // a number for each kind of fragment, and bits in base
    // The base schema cannot say what these hold, but keeps it.
    {"UDF", 0, bit(24) - 1},
    {"Police", 0, bit(24) | bit(25) | bit(26) | bit(27)},
    {"Priority", 0, bit(28)},
    {"icmp_on", 0, bit(29)},
};

constexpr std::uint64_t protocol_bit = bit(1);
constexpr std::uint64_t protocol2_bit = bit(54);

/// Every protocol in one schema, the number of a single one in the other.
constexpr bool may_be_every_protocol(std::uint16_t protocol) {
    return protocol == 0 || protocol == 512;
}

} // namespace

std::string schema_dependent_fields(const ipv4_acl_config_ace &record) {
    std::string names;
    const auto add = [&names](const char *name) {
        names += (names.empty() ? "" : ", ") + std::string(name);
    };
    const std::uint64_t mask = record.ConfigurationMask;
    if ((mask & protocol_bit) != 0 && may_be_every_protocol(record.protocol)) {
        add("protocol");
    }
    if ((mask & protocol2_bit) != 0 && may_be_every_protocol(record.protocol2)) {
        add("protocol2");
    }
    for (const Marked &row : marked_fields) {
        if ((mask & row.mask) != 0 || (record.ConfigurationMask2 & row.mask2) != 0) {
            add(row.field);
        }
    }
    return names;
}

void require_schema(const bag_descriptor &descriptor, const Entry &entry) {
    if (entry.format || entry.schema_known) {
        return;
    }
    const DecodedRecord record(descriptor, entry.encoding);
    if (const std::string names = schema_dependent_fields(record.get()); !names.empty()) {
        throw SchemaUnknown("the meaning of " + names +
                            " depends on the schema, which no label tells");
    }
}

} // namespace aceconv
