#include <cstdlib>
#include <cstring>

#include "aceconv/keywords.h"
#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

// The unit's name as a string leaf.
std::uint32_t emit_rate_unit(ccv_yang_output *output, const Record &record, const Row &row) {
    const std::uint32_t value = load(record, row.leaf.field);
    if (value >= rate_unit_count) {
        trace(row.unit->missing, rate_unit_table, value);
        return ACE_STATUS_UNKNOWN_UNIT;
    }
    char *name = strdup(acl_yang_acl_rate_unit_um[value].name);
    if (name == nullptr) {
        trace(row.unit->not_copied, value, ACE_STATUS_NO_MEMORY);
        return ACE_STATUS_NO_MEMORY;
    }
    ccv_yang_string(output, row.leaf.name, name);
    std::free(name);
    return 0;
}

} // namespace ace::um

std::uint32_t acl_yang_police(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    return ace::um::emit_row(output, record, ace::um::police);
}
