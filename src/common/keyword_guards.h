// Compile-time guards over keyword tables.
#pragma once

#include <cstddef>
#include <cstdint>

#include "aceconv/host/yang_access.h"

namespace ace::guard {

constexpr bool same_text(const char *a, const char *b) {
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

/// Rows without the end row; a table that does not end with {0, null} counts 0.
template <std::size_t N>
constexpr std::size_t row_count(const ccv_yang_keyword (&table)[N]) {
    return table[N - 1].name == nullptr && table[N - 1].value == 0 ? N - 1 : 0;
}

template <std::size_t N>
constexpr bool unique_rows(const ccv_yang_keyword (&table)[N]) {
    for (std::size_t i = 0; i + 1 < N; ++i) {
        if (table[i].name == nullptr) {
            return false;
        }
        for (std::size_t j = 0; j < i; ++j) {
            if (table[i].value == table[j].value || same_text(table[i].name, table[j].name)) {
                return false;
            }
        }
    }
    return true;
}

template <std::size_t N>
constexpr bool same_values(const ccv_yang_keyword (&a)[N], const ccv_yang_keyword (&b)[N]) {
    for (std::size_t i = 0; i < N; ++i) {
        if (a[i].value != b[i].value) {
            return false;
        }
    }
    return true;
}

} // namespace ace::guard
