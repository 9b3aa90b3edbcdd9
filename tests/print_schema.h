// Schemas by their names, in messages and in the names of tests.
#pragma once

#include <ostream>

#include "host/entry.h"

namespace aceconv {

inline void PrintTo(Schema schema, std::ostream *out) {
    *out << (schema == Schema::um ? "um" : "base");
}

} // namespace aceconv
