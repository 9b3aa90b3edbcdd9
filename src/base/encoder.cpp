#include <cstring>

#include "aceconv/plugin.h"
#include "base/schema.h"
#include "common/icmp_message.h"
#include "common/walk.h"
#include "record/bag_frame.h"

namespace ace::base {

namespace {

constexpr std::uint64_t udf_bits = 0xFFFFFF; // of ConfigurationMask2

/// Moves the user-defined fields of an earlier encoding, for which the schema
/// has no leaves, into the new record. One that cannot be decoded is ignored.
void carry_over_udf(Record &record, const std::uint8_t *stored, std::uint32_t stored_len) {
    Record earlier;
    clear_record(earlier);
    if (bag_decode(stored, stored_len, &earlier, &ipv4_acl_config_ace_bag) != 0) {
        return;
    }
    if (earlier.UDF.count != 0) {
        record.UDF = earlier.UDF;
        record.ConfigurationMask2 |= earlier.ConfigurationMask2 & udf_bits;
        earlier.UDF = {};
    }
    release_record(earlier);
}

/// The second and third next hop count as configured with an address or a VRF;
/// a track name alone does not count.
void derive_next_hop_bits(Record &record) {
    if (is_present(record, bit(34)) || is_present(record, bit(40))) {
        set_present(record, bit(42));
    }
    if (is_present(record, bit(35)) || is_present(record, bit(41))) {
        set_present(record, bit(43));
    }
}

// Most names differ in their first character, which costs no call.
const Row *find_row(std::span<const Row> rows, const char *name) {
    for (const Row &row : rows) {
        if (row.leaf.name[0] == name[0] && std::strcmp(name, row.leaf.name) == 0) {
            return &row;
        }
    }
    return nullptr;
}

/// Handles the current node, one of `rows`.
void encode_node(Walk &walk, std::span<const Row> rows, Record &record) {
    const Row *row = find_row(rows, ccv_yang_get_node_name(walk.current));
    if (row == nullptr) {
        walk.status = ACE_STATUS_UNKNOWN_LEAF;
        return;
    }
    switch (row->kind) {
    case Kind::leaf:
        walk.status = read_leaf(record, walk.current, row->leaf);
        break;
    case Kind::icmp_message:
        walk.status = read_icmp_message(record, walk.current, row->leaf);
        break;
    case Kind::container:
    case Kind::next_hop_container:
        walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] { encode_node(walk, row->rows(), record); });
        if (row->kind == Kind::next_hop_container && walk.status == 0) {
            derive_next_hop_bits(record);
        }
        break;
    case Kind::ignored:
        break;
    }
}

} // namespace

} // namespace ace::base

std::uint32_t ccv_custom_encoder_ipv4_acl_ace(ccv_yang_node *node, const std::uint8_t *stored,
                                              std::uint32_t stored_len, void *out_a,
                                              void *out_b) noexcept {
    ace::Record record;
    ace::clear_record(record);
    if (stored != nullptr) {
        ace::base::carry_over_udf(record, stored, stored_len);
    }
    std::uint32_t status = ace::walk_entry(node, [&](ace::Walk &walk) {
        ace::base::encode_node(walk, ace::base::entry_rows, record);
    });
    if (status == 0) {
        status = ace::encode_record(record, out_a, out_b);
    }
    ace::release_record(record);
    return status;
}
