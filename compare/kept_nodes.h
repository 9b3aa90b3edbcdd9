// The nodes of an entry's text that its record does not keep: encoders let later
// nodes replace earlier ones and step over some.
#pragma once

#include <vector>

#include "compare/changes.h"
#include "compare/record_view.h"
#include "stream/codec.h"

namespace aceconv {

/// The nodes of `entry`, which `codec` has just encoded from text, that
/// `encoding`, its encoding, does not keep; nothing for an entry that came as an
/// encoding. `decoded` are the nodes of that encoding in the entry's own schema.
/// Throws DataError.
std::vector<Change> nodes_not_kept(Codec &codec, const RecordView &view, Schema schema,
                                   Encoding encoding, const ccv_yang_node &decoded);

} // namespace aceconv
