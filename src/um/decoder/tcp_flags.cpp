#include <cstring>

#include "aceconv/host/bounded_append.h"
#include "aceconv/keywords.h"
#include "aceconv/plugin.h"
#include "common/trace.h"
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

/// The container that was opened for the flag text, and the line of its failure.
struct Match {
    std::uint8_t code;
    const char *name;
    const TraceLine &failure;
};

constexpr Match matches[] = {
    {static_cast<std::uint8_t>(tcp_matches[0].value), tcp_matches[0].name,
     trace_line::match_all_failure},
    {static_cast<std::uint8_t>(tcp_matches[1].value), tcp_matches[1].name,
     trace_line::match_any_failure},
};

/// "match-all" or "match-any"; a failure leaves it open.
std::uint32_t emit_match(ccv_yang_output *output, const Record &record, const Match &match) {
    ccv_yang_container_begin(output, match.name);
    ccv_yang_presence(output);
    if (is_present(record, tcp_flags_bit) || is_present(record, tcp_mask_bit)) {
        const std::uint32_t status =
            acl_yang_tcp_bits_um(output, record.tcpflags, record.tcpflags_mask);
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
    for (const Match &match : matches) {
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

std::uint32_t acl_yang_tcp_bits_um(ccv_yang_output *output, std::uint32_t flags,
                                   std::uint32_t mask) {
    FlagText built;
    const std::uint32_t status = build_flag_text(acl_yang_acl_tcp_bits, flags, mask, built);
    if (status == 0) {
        ccv_yang_string(output, tcp_bits, built.text);
    }
    return status;
}

} // namespace ace::um

std::uint32_t acl_yang_tcp_flags(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    using namespace ace;
    const bool has_operator = is_present(record, um::tcp_operator_bit);
    if (!has_operator && !is_present(record, um::tcp_flags_bit)) {
        return 0;
    }
    ccv_yang_container_begin(output, "tcp-flags");
    if (has_operator) {
        const std::uint32_t status = um::emit_operator(output, record);
        if (status != 0) {
            return status;
        }
    } else {
        ccv_yang_bits(output, um::tcp_bits, acl_yang_acl_tcp_bits, record.tcpflags);
    }
    ccv_yang_container_end(output);
    return 0;
}
