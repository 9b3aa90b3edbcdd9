// Records that mean one thing when the base schema wrote them and another when the
// UM schema did, and the entries that do not tell which it was.
#pragma once

#include <string>

#include "aceconv/ace_record.h"
#include "aceconv/host/bag.h"
#include "stream/source.h"

namespace aceconv {

/// The fields of `record` whose meaning depends on the schema: "UDF, Priority", or "".
std::string schema_dependent_fields(const ipv4_acl_config_ace &record);

/// Throws SchemaUnknown when nothing tells the schema of `entry`, an encoding, and
/// its record has such fields; DataError when it cannot be decoded. Any other record
/// may be read as the base schema's.
void require_schema(const bag_descriptor &descriptor, const Entry &entry);

} // namespace aceconv
