// What becomes of a node: the members of the record that it sets. Found by encoding one.
#pragma once

#include <vector>

#include "compare/record_view.h"
#include "host/schema_items.h"
#include "stream/codec.h"

namespace aceconv {

/// What the node at `place` adds to the record of an entry that has what is around it: members
/// and bits. Nothing where the record keeps nothing of it. The values are those of a sample.
std::vector<FieldValue> fields_set_by(Codec &codec, const RecordView &view, Schema schema,
                                      const std::vector<SchemaItem> &items, std::size_t place);

/// As JSON objects, for programs.
std::string item_json(const SchemaItem &item, Schema schema);
std::string explanation_json(const SchemaItem &item, Schema schema,
                             const std::vector<FieldValue> &fields);

} // namespace aceconv
