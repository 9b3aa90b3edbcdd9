// Numbers of the record whose meaning depends on the schema that they were
// written in: kinds of fragments, and the number for every protocol.
#pragma once

#include <string>
#include <vector>

#include "aceconv/ace_record.h"
#include "host/entry.h"

namespace aceconv {

/// The number that stands for every protocol; in the other schema it is a protocol's own.
constexpr std::uint16_t every_protocol(Schema schema) {
    return schema == Schema::base ? 0 : 512;
}

/// A number that does not mean the same in the other schema.
struct Untranslated {
    const char *field;
    std::string reason;
};

struct Translation {
    bool changed = false; // the record is another one now
    std::vector<Untranslated> untranslated;
};

/// Gives the record the numbers that mean in `to` what its own mean in `from`. One
/// without counterpart is removed where it has no meaning at all in `to`, and
/// stays where it means something else.
Translation translate(ipv4_acl_config_ace &record, Schema from, Schema to);

/// Clears bits 42 and 43 where they only repeat what bits 34, 35, 40 and 41
/// say: the base encoder derives them, and no other converter reads them.
void clear_derived_bits(ipv4_acl_config_ace &record);

} // namespace aceconv
