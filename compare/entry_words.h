// An entry as one line of plain text: "10 permit tcp 192.0.2.0/24 any eq 22 log".
// To be read by people; nothing reads it back.
//
// Entries of both schemas are said in the same words, the names of the base schema,
// so those that mean the same have the same line. Ports and what is compared for its order
// are numbers. Whatever does not stand in the usual way (a value without its operator, a
// number that no presence bit marks, a bit that marks nothing) is said all the same,
// behind the rest and by its member: "[sport2=99] [ttl1=3 unmarked] [bit 61]". So the lines of two
// records of one schema differ wherever the records do; bits 42 and 43 count only where the
// next hop that they stand for is not marked otherwise.
#pragma once

#include <optional>
#include <string>

#include "compare/record_view.h"
#include "host/entry.h"

namespace aceconv {

/// The line, without an end of line; `sequence` leads it where there is one.
std::string entry_words(const RecordView &view, const ipv4_acl_config_ace &record, Schema schema,
                        std::optional<std::uint32_t> sequence);

} // namespace aceconv
