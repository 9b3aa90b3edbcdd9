#include <cstdlib>

#include "aceconv/keywords.h"
#include "aceconv/plugin.h"
#include "common/safe_string.h"
#include "common/trace.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

/// Only the first `rate_unit_count` rows are looked at.
std::uint32_t look_up_unit(const char *text, std::uint32_t &value) {
    for (std::uint32_t row = 0; row < rate_unit_count; ++row) {
        bool equal = false;
        const std::uint32_t status = compare(text, acl_yang_acl_rate_unit_um[row].name, equal);
        if (status != 0) {
            return status;
        }
        if (equal) {
            value = acl_yang_acl_rate_unit_um[row].value;
            return 0;
        }
    }
    return ACE_STATUS_NO_KEYWORD;
}

/// The line prints the lookup's code; the code returned says "unknown unit".
std::uint32_t read_unit(ccv_yang_node *node, const RateUnit &unit, const TraceLine &unknown,
                        Record &record) {
    set_present(record, unit.bit);
    char *text = nullptr;
    std::uint32_t status = ccv_yang_get_string(node, &text);
    if (status != 0) {
        return status;
    }
    status = look_up_unit(text, member<std::uint32_t>(record, unit.field));
    if (status != 0) {
        trace(unknown, static_cast<const char *>(text), rate_unit_table, status);
        status = ACE_STATUS_UNKNOWN_UNIT;
    }
    std::free(text);
    return status;
}

} // namespace

std::uint32_t acl_yang_ipv4_enc_police(ccv_yang_iter *iterator, ccv_yang_node *node,
                                       Record &record) {
    Walk walk{iterator, node};
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const char *name = ccv_yang_get_node_name(walk.current);
        // A failed read of a rate or of the priority leaves the field and does
        // not stop the walk.
        if (name_is(name, police_value.name)) {
            (void)read_leaf(record, walk.current, police_value);
        } else if (name_is(name, police_unit.name)) {
            walk.status = read_unit(walk.current, police_unit, trace_line::unknown_unit, record);
        } else if (name_is(name, police_peak_rate.name)) {
            (void)read_leaf(record, walk.current, police_peak_rate);
        } else if (name_is(name, police_peak_unit.name)) {
            walk.status =
                read_unit(walk.current, police_peak_unit, trace_line::unknown_peak_unit, record);
        } else if (name_is(name, police_priority.name)) {
            (void)read_leaf(record, walk.current, police_priority);
        }
    });
    return walk.status;
}

} // namespace ace::um
