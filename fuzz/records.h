// Records of any content, made of a fuzzer's bytes.
#pragma once

#include "compare/record_view.h"
#include "fuzz/pieces.h"

namespace aceconv::fuzz {

/// Takes steps up to one that ends the record: each marks a bit or fills a member.
Bytes any_record(Pieces &pieces);

} // namespace aceconv::fuzz
