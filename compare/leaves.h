// The nodes of an entry's text, to see which of them a record did not keep:
// converters let later leaves replace earlier ones and step over some nodes.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "compare/changes.h"
#include "host/entry.h"
#include "stream/codec.h"

namespace aceconv {

/// Every node below the entry by its path, list entries counted from 1; the
/// value of a container or an empty leaf is "".
using Leaves = std::map<std::string, std::string, std::less<>>;

/// `text` must have been accepted by an entry reader.
Leaves leaves_of(std::string_view text, Format format);

/// The nodes of `before` that `after`, what its record decodes to, does not have
/// or has with another value. Two spellings of one value are the same: a name
/// and its number, a set of flags in another order, "host" and "address".
std::vector<Change> lost_leaves(const Leaves &before, const Leaves &after, Schema schema);

/// The leaves of `entry`, which `codec` has just encoded from text, that
/// `encoding`, its encoding, does not give back.
std::vector<Change> lost_leaves(Codec &codec, const Entry &entry, Encoding encoding);

} // namespace aceconv
