#include "um/decoder/emit.h"

namespace ace::um {

namespace {

/// Everything but a leaf. A failure leaves the container open.
std::uint32_t emit_container(ccv_yang_output *output, const Record &record, const Row &row) {
    std::uint32_t status = 0;
    ccv_yang_container_begin(output, row.leaf.name);
    switch (row.kind) {
    case Kind::presence:
        ccv_yang_presence(output);
        break;
    case Kind::next_hop:
    case Kind::first_next_hop:
        ccv_yang_presence(output);
        for (const std::uint8_t leaf : next_hop_emission) {
            write_leaf(output, record, row.rows()[leaf].leaf);
        }
        break;
    case Kind::operator_group:
        emit_operator_group(output, record, *row.group);
        break;
    case Kind::side:
        emit_side(output, record, row.rows());
        break;
    case Kind::icmp:
        emit_icmp(output, record);
        break;
    case Kind::tcp_flags:
        status = emit_tcp_flags(output, record);
        break;
    case Kind::udf_entries:
        status = emit_udf(output, record);
        break;
    default:
        status = emit_rows(output, record, row.rows());
        break;
    }
    if (status == 0) {
        ccv_yang_container_end(output);
    }
    return status;
}

} // namespace

std::uint32_t emit_node(ccv_yang_output *output, const Record &record, const Row &row) {
    if (row.kind == Kind::rate_unit) {
        return emit_rate_unit(output, record, row);
    }
    return applies(record, row) ? emit_container(output, record, row) : 0;
}

std::uint32_t emit_rows(ccv_yang_output *output, const Record &record, Rows rows) {
    for (const Row &row : rows) {
        const std::uint32_t status = emit_row(output, record, row);
        if (status != 0) {
            if (row.failure != nullptr) {
                trace(*row.failure, status);
            }
            return status;
        }
    }
    return 0;
}

} // namespace ace::um
