#include "common/icmp_message.h"

#include "um/encoder/parsers.h"

namespace ace::um {

// Numbers are composed after the walk, also one that failed, and replace a name
// given beside them; the bit set for the name stays.
std::uint32_t acl_yang_ipv4_enc_icmp(ccv_yang_iter *iterator, ccv_yang_node *node, Record &record) {
    std::array<std::uint32_t, icmp_numbers.size()> numbers{};
    bool number_seen = false;
    Walk walk{iterator, node};
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const char *name = ccv_yang_get_node_name(walk.current);
        if (name_is(name, icmp_message_name.name)) {
            walk.status = read_icmp_message(record, walk.current, icmp_message_name);
        } else if (const IcmpNumber *number = find(icmp_numbers, name)) {
            const auto place = static_cast<std::size_t>(number - icmp_numbers.data());
            walk.status = ccv_yang_get_uint32(walk.current, &numbers[place]);
            number_seen = true;
        }
    });
    if (number_seen) {
        record.icmp_type_code = 0;
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            record.icmp_type_code |= numbers[i] << icmp_numbers[i].shift;
        }
        set_icmp_present(record, record.icmp_type_code);
    }
    return walk.status;
}

} // namespace ace::um
