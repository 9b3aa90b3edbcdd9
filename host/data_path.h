// Data paths of entries (RFC 7951 names, list keys in brackets), for messages.
#pragma once

#include <string>
#include <string_view>

#include "host/entry.h"

namespace aceconv {

/// "/aceconv-base:acls/acl[name='A']/entry[sequence-number='10']", with the keys
/// that are known.
std::string entry_path(Schema schema, const EntryKey &key);

/// "[name='value']"; in double quotes when the value holds a single one.
std::string key_predicate(std::string_view name, std::string_view value);

} // namespace aceconv
