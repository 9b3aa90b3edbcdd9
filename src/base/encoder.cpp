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
    if (is_present(record, bit(34) | bit(40))) {
        set_present(record, bit(42));
    }
    if (is_present(record, bit(35) | bit(41))) {
        set_present(record, bit(43));
    }
}

/// The rows of one level. Hosts show nodes in the schema's order as a rule, so
/// the search goes on behind the row found before.
class Level {
  public:
    explicit Level(std::span<const Row> rows)
        : begin_(rows.data()), end_(begin_ + rows.size()), next_(begin_) {}

    const Row *find(const char *name) {
        const Row *row = find(next_, end_, name);
        if (row == nullptr) {
            row = find(begin_, next_, name);
        }
        if (row != nullptr) {
            next_ = row + 1;
        }
        return row;
    }

  private:
    const Row *begin_, *end_, *next_;

    // Most names differ in their first character, which costs no call.
    static const Row *find(const Row *row, const Row *end, const char *name) {
        for (const char first = name[0]; row != end; ++row) {
            if (row->leaf.name[0] == first && std::strcmp(name, row->leaf.name) == 0) {
                return row;
            }
        }
        return nullptr;
    }
};

/// Handles the nodes of the level that `step` opens on the current node.
void encode_level(Walk &walk, std::uint32_t step, std::span<const Row> rows, Record &record) {
    Level level(rows);
    walk_level(walk, step, [&] {
        const Row *row = level.find(ccv_yang_get_node_name(walk.current));
        if (row == nullptr) {
            walk.status = ACE_STATUS_UNKNOWN_LEAF;
            return;
        }
        switch (row->kind) {
        case RowKind::leaf:
            record.ConfigurationMask |= row->leaf.bit.first; // the only one of the schema
            walk.status = read_value(record, walk.current, row->leaf);
            break;
        case RowKind::icmp_message:
            walk.status = read_icmp_message(record, walk.current, row->leaf);
            break;
        case RowKind::container:
        case RowKind::next_hop_container:
            encode_level(walk, CCV_YANG_STEP_CONTAINER, row->rows(), record);
            if (row->kind == RowKind::next_hop_container && walk.status == 0) {
                derive_next_hop_bits(record);
            }
            break;
        case RowKind::ignored:
            break;
        }
    });
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
        ace::base::encode_level(walk, CCV_YANG_STEP_ENTRY, ace::base::entry_rows, record);
    });
    if (status == 0) {
        status = ace::encode_record(record, out_a, out_b);
    }
    ace::release_record(record);
    return status;
}
