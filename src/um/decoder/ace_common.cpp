#include "aceconv/plugin.h"
#include "common/icmp_message.h"
#include "common/trace.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

/// A container around what `emit` writes.
template <typename Emit>
void emit_container(ccv_yang_output *output, const char *name, Emit emit) {
    ccv_yang_container_begin(output, name);
    emit();
    ccv_yang_container_end(output);
}

/// The matches between the TCP flags and the user-defined fields.
void emit_matches(ccv_yang_output *output, const Record &record) {
    if (has_icmp_message(record)) {
        emit_container(output, "icmp", [&] { acl_yang_icmp(output, record); });
    }
    write_leaf(output, record, igmp_type);
    if (is_present(record, dscp.first.bit)) {
        emit_container(output, "dscp", [&] { acl_yang_dscp_fields(output, record); });
    }
    write_leaf(output, record, precedence);
    if (is_present(record, packet_length.operator_bit)) {
        emit_container(output, "packet-length", [&] { acl_yang_packet_length(output, record); });
    }
    if (is_present(record, ttl.operator_bit)) {
        emit_container(output, "ttl", [&] { acl_yang_ttl(output, record); });
    }
    if (is_present(record, fragment_offset.operator_bit)) {
        emit_container(output, "fragment-offset",
                       [&] { acl_yang_fragment_offset(output, record); });
    }
    if (is_present(record, fragments.bit) && record.frags != 0) {
        emit_presence(output, fragments.name);
    }
    write_leaf(output, record, fragment_type);
}

/// A failure leaves "udf-entries" open.
std::uint32_t emit_udf_entries(ccv_yang_output *output, const Record &record) {
    ccv_yang_container_begin(output, "udf-entries");
    const std::uint32_t status = acl_yang_udf(output, record);
    if (status == 0) {
        ccv_yang_container_end(output);
    }
    return status;
}

} // namespace

void emit_presence(ccv_yang_output *output, const char *name) {
    ccv_yang_container_begin(output, name);
    ccv_yang_presence(output);
    ccv_yang_container_end(output);
}

} // namespace ace::um

std::uint32_t acl_yang_ace_common(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    using namespace ace;
    um::emit_container(output, "source", [&] { acl_yang_source_addr(output, record); });
    um::emit_container(output, "destination", [&] { acl_yang_dest_addr(output, record); });
    std::uint32_t status = acl_yang_tcp_flags(output, record);
    if (status != 0) {
        trace(trace_line::tcp_flags_failure, status);
        return status;
    }
    um::emit_matches(output, record);
    if (is_present(record, um::udf_bit)) {
        status = um::emit_udf_entries(output, record);
        if (status != 0) {
            trace(trace_line::udf_failure, status);
            return status;
        }
    }
    return acl_yang_police(output, record);
}
