#include "common/icmp_message.h"

#include "common/safe_string.h"
#include "um/encoder/parsers.h"

namespace ace::um {

// Numbers are composed after the walk, also one that failed, and replace a name
// given beside them; the bit set for the name stays.
std::uint32_t acl_yang_ipv4_enc_icmp(ccv_yang_iter *iterator, ccv_yang_node *node, Record &record) {
    std::uint32_t type = 0;
    std::uint32_t code = 0;
    bool number_seen = false;
    Walk walk{iterator, node};
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const char *name = ccv_yang_get_node_name(walk.current);
        if (name_is(name, icmp_message_name.name)) {
            walk.status = read_icmp_message(record, walk.current, icmp_message_name);
        } else if (name_is(name, icmp_message_type)) {
            walk.status = ccv_yang_get_uint32(walk.current, &type);
            number_seen = true;
        } else if (name_is(name, icmp_message_code)) {
            walk.status = ccv_yang_get_uint32(walk.current, &code);
            number_seen = true;
        }
    });
    if (number_seen) {
        record.icmp_type_code = type << 16 | code;
        set_icmp_present(record, code);
    }
    return walk.status;
}

} // namespace ace::um
