// Records for programs: what `inspect --json` writes, and the library hands out.
#pragma once

#include <string>

#include "converter/work.h"

namespace aceconv {

/// A JSON object on one line; `file` is empty where it need not be named.
std::string inspection_json(const std::string &file, const Entry &entry,
                            const Inspected &inspected);

/// "0x0000000000000001"
std::string mask_text(std::uint64_t mask);

} // namespace aceconv
