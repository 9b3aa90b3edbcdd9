// What shows at a glance, for nearly every entry, that nothing is lost. Both answers
// are sure when they are yes; after a no the full search decides. The source says why
// a yes is one.
#pragma once

#include "aceconv/ace_record.h"
#include "compare/record_view.h"
#include "host/entry_nodes.h"

namespace aceconv {

/// Whether `record` keeps every node of `entry`, the UM text that was encoded to it.
bool surely_kept(const ccv_yang_node &entry, const ipv4_acl_config_ace &record);

/// Whether text in `schema`, which has been made of `record`, says all of it.
bool surely_said(const RecordView &view, const ipv4_acl_config_ace &record, Schema schema);

} // namespace aceconv
