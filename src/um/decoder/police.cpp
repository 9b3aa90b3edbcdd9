#include <cstdlib>
#include <cstring>

#include "aceconv/keywords.h"
#include "aceconv/plugin.h"
#include "common/trace.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

constexpr Bit police_bits[] = {police_value.bit, police_unit.bit, police_peak_rate.bit,
                               police_peak_unit.bit, police_priority.bit};

bool has_police(const Record &record) {
    for (const Bit present : police_bits) {
        if (is_present(record, present)) {
            return true;
        }
    }
    return false;
}

/// The unit's name as a string leaf.
std::uint32_t emit_unit(ccv_yang_output *output, const Record &record, const RateUnit &unit,
                        const TraceLine &missing, const TraceLine &not_copied) {
    if (!is_present(record, unit.bit)) {
        return 0;
    }
    const std::uint32_t value = load(record, unit.field);
    if (value >= rate_unit_count) {
        trace(missing, rate_unit_table, value);
        return ACE_STATUS_UNKNOWN_UNIT;
    }
    char *name = strdup(acl_yang_acl_rate_unit_um[value].name);
    if (name == nullptr) {
        trace(not_copied, value, ACE_STATUS_NO_MEMORY);
        return ACE_STATUS_NO_MEMORY;
    }
    ccv_yang_string(output, unit.name, name);
    std::free(name);
    return 0;
}

} // namespace

} // namespace ace::um

std::uint32_t acl_yang_police(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    using namespace ace;
    if (!um::has_police(record)) {
        return 0;
    }
    ccv_yang_container_begin(output, "police");
    write_leaf(output, record, um::police_value);
    std::uint32_t status = um::emit_unit(output, record, um::police_unit, trace_line::unit_missing,
                                         trace_line::unit_copy);
    if (status != 0) {
        return status;
    }
    write_leaf(output, record, um::police_peak_rate);
    status = um::emit_unit(output, record, um::police_peak_unit, trace_line::peak_unit_missing,
                           trace_line::peak_unit_copy);
    if (status != 0) {
        return status;
    }
    write_leaf(output, record, um::police_priority);
    ccv_yang_container_end(output);
    return 0;
}
