// Status codes of this host's YANG access functions.
#pragma once

#include <cstdint>
#include <string>

namespace aceconv {

enum class YangStatus : std::uint32_t {
    ok = 0,
    wrong_type = 0x7A600001, // the node does not hold what the caller reads, writes or walks
    out_of_range,            // a number beyond what the reader or the leaf takes
    no_keyword,              // a name, value or bit without a row in the keyword table
    no_memory,
    bad_text,     // a null string, or text that YANG does not allow
    unknown_node, // no such node at the output's position
    repeated,     // a node or a list key for the second time
    misplaced,    // begin and end calls that do not match, or an entry without its key
    refused,      // the module's type does not allow the value
};

constexpr std::uint32_t code(YangStatus status) {
    return static_cast<std::uint32_t>(status);
}

/// One sentence without a full stop, for YangStatus and the plug-in's ACE_STATUS_*;
/// null for other codes.
const char *known_status(std::uint32_t status);

/// The same, and other codes by their number.
std::string status_text(std::uint32_t status);

} // namespace aceconv
