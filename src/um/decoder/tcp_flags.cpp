#include <cstring>

#include "aceconv/host/bounded_append.h"
#include "aceconv/keywords.h"
#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

constexpr std::size_t sign_room = 2; // a blank or a sign is appended only with this much room

/// Appends `piece` when at least `needed` characters are free.
bool append(FlagText &built, const char *piece, std::size_t needed) {
    const std::size_t room = sizeof built.text - 1 - std::strlen(built.text);
    if (room < needed) {
        return false;
    }
    __strncat_to_buf(sizeof built.text, built.text, piece, room);
    return true;
}

/// The text of a signed flag set, or nothing on a failure.
std::uint32_t emit_flag_text(ccv_yang_output *output, const Record &record) {
    FlagText built;
    const std::uint32_t status =
        build_flag_text(acl_yang_acl_tcp_bits, record.tcpflags, record.tcpflags_mask, built);
    if (status == 0) {
        ccv_yang_string(output, tcp_bits, built.text);
    }
    return status;
}

/// "match-all" or "match-any"; a failure leaves it open.
std::uint32_t emit_match(ccv_yang_output *output, const Record &record, const TcpMatch &match) {
    ccv_yang_container_begin(output, match.name);
    ccv_yang_presence(output);
    if (is_present(record, tcp_flags_bit | tcp_mask_bit)) {
        const std::uint32_t status = emit_flag_text(output, record);
        if (status != 0) {
            trace(match.failure, status);
            return status;
        }
    }
    ccv_yang_container_end(output);
    return 0;
}

/// The content of "tcp-flags" under a match operator; nothing for other codes.
std::uint32_t emit_operator(ccv_yang_output *output, const Record &record) {
    for (const TcpMatch &match : tcp_matches) {
        if (match.code == record.tcpflagsopr) {
            return emit_match(output, record, match);
        }
    }
    return 0;
}

} // namespace

std::uint32_t build_flag_text(const ccv_yang_keyword *table, std::uint32_t flags,
                              std::uint32_t mask, FlagText &built) {
    built.text[0] = '\0';
    std::uint32_t written = 0;
    for (const ccv_yang_keyword *row = table; row->name != nullptr; ++row) {
        if (row->value > 31) {
            return ACE_STATUS_NO_KEYWORD;
        }
        const std::uint32_t flag = std::uint32_t{1} << row->value;
        if ((mask & flag) == 0) {
            continue;
        }
        if ((written != 0 && !append(built, " ", sign_room)) ||
            !append(built, (flags & flag) != 0 ? "+" : "-", sign_room) ||
            !append(built, row->name, std::strlen(row->name))) {
            return ACE_STATUS_NO_SPACE;
        }
        written |= flag;
    }
    return written == mask ? 0 : ACE_STATUS_NO_KEYWORD;
}

std::uint32_t emit_tcp_flags(ccv_yang_output *output, const Record &record) {
    if (is_present(record, tcp_operator_bit)) {
        return emit_operator(output, record);
    }
    ccv_yang_bits(output, tcp_bits, acl_yang_acl_tcp_bits, record.tcpflags);
    return 0;
}

} // namespace ace::um

std::uint32_t acl_yang_tcp_flags(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    return ace::um::emit_row(output, record, ace::um::tcp_flags);
}
