#include <cstdlib>
#include <cstring>

#include "aceconv/keywords.h"
#include "aceconv/plugin.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

/// Which words of a signed text a pass takes: those that must be set, or all.
enum class Pass : std::uint8_t { flags, mask };

/// Adds the bit of `word` to `set`; a word that repeats one is not found again.
std::uint32_t add_word(const char *word, std::uint32_t &set) {
    for (const ccv_yang_keyword *row = acl_yang_acl_tcp_bits; row->name != nullptr; ++row) {
        const std::uint32_t flag = std::uint32_t{1} << (row->value % 32);
        if ((set & flag) != 0) {
            continue;
        }
        int difference = 0;
        const std::uint32_t status = compare(word, row->name, difference);
        if (status != 0) {
            return status;
        }
        if (difference == 0) {
            set |= flag;
            return 0;
        }
    }
    return ACE_STATUS_NO_KEYWORD;
}

/// Splits `words` at blanks, changing it.
std::uint32_t look_up_words(char *words, std::uint32_t &set) {
    char *rest = nullptr;
    for (const char *word = strtok_r(words, " ", &rest); word != nullptr;
         word = strtok_r(nullptr, " ", &rest)) {
        const std::uint32_t status = add_word(word, set);
        if (status != 0) {
            return status;
        }
    }
    return 0;
}

std::uint32_t look_up_pass(const char *text, Pass pass, const TraceLine &failure,
                           std::uint32_t &set) {
    std::uint32_t status = ACE_STATUS_NO_MEMORY;
    if (char *words = strdup(text)) {
        if (pass == Pass::flags) {
            removeNonTcpFlag(words);
            removeChar(words, '+');
        } else {
            removeChar(words, '+');
            removeChar(words, '-');
        }
        status = look_up_words(words, set);
        std::free(words);
    }
    if (status != 0) {
        trace(failure, status);
    }
    return status;
}

/// Stores both flag sets of a signed text. A set of no flags is stored without
/// its bit, a mask of none is not stored at all.
std::uint32_t store_signed_text(const char *text, Record &record) {
    std::uint32_t flags = 0;
    std::uint32_t status = look_up_pass(text, Pass::flags, trace_line::flag_words, flags);
    if (status != 0) {
        return status;
    }
    record.tcpflags = static_cast<std::uint8_t>(flags);
    if (flags != 0) {
        set_present(record, tcp_flags_bit);
    }
    std::uint32_t mask = 0;
    status = look_up_pass(text, Pass::mask, trace_line::mask_words, mask);
    if (status == 0 && mask != 0) {
        record.tcpflags_mask = static_cast<std::uint8_t>(mask);
        set_present(record, tcp_mask_bit);
    }
    return status;
}

/// The children of "match-all" or "match-any".
void parse_match(Walk &walk, const TcpMatch &match, Record &record) {
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        if (name_is(ccv_yang_get_node_name(walk.current), tcp_bits)) {
            record.tcpflagsopr = match.code;
            walk.status = ccv_yang_set_ipv4_tcpflag(walk.current, record);
        }
    });
}

/// "tcp-bits" without an operator: a set of names.
std::uint32_t read_flag_set(ccv_yang_node *node, Record &record) {
    std::uint32_t flags = 0;
    const std::uint32_t status = ccv_yang_get_bits(node, acl_yang_acl_tcp_bits, &flags);
    if (status == 0) {
        record.tcpflags = static_cast<std::uint8_t>(flags);
        if (record.tcpflags != 0) {
            set_present(record, tcp_flags_bit);
        }
    }
    return status;
}

} // namespace

std::uint32_t ccv_yang_set_ipv4_tcpflag(ccv_yang_node *node, Record &record) {
    set_present(record, tcp_operator_bit);
    char *text = nullptr;
    std::uint32_t status = ccv_yang_get_string(node, &text);
    if (status != 0) {
        return status;
    }
    status = store_signed_text(text, record);
    std::free(text);
    return status;
}

std::uint32_t acl_yang_ipv4_enc_tcp_flags(ccv_yang_iter *iterator, ccv_yang_node *node,
                                          Record &record) {
    Walk walk{iterator, node};
    walk_level(walk, CCV_YANG_STEP_CONTAINER, [&] {
        const char *name = ccv_yang_get_node_name(walk.current);
        if (const TcpMatch *match = find(tcp_matches, name)) {
            parse_match(walk, *match, record);
        } else if (name_is(name, tcp_bits)) {
            walk.status = read_flag_set(walk.current, record);
        }
    });
    return walk.status;
}

} // namespace ace::um
