#include "testing/generator/rule_writer.h"

#include <cstdio>

namespace aceconv::bench {

const char *name_of(Keywords table, std::uint32_t value) {
    for (; table->name != nullptr; ++table) {
        if (table->value == value) {
            return table->name;
        }
    }
    return nullptr;
}

std::uint32_t wildcard(std::uint32_t length) {
    return (1U << (32 - length)) - 1;
}

std::string flag_words(std::uint32_t flags, std::uint32_t mask, bool signs) {
    std::string words;
    for (Keywords row = acl_yang_acl_tcp_bits; row->name != nullptr; ++row) {
        if ((mask >> row->value & 1) != 0) {
            words += words.empty() ? "" : " ";
            words += !signs ? "" : (flags >> row->value & 1) != 0 ? "+" : "-";
            words += row->name;
        }
    }
    return words;
}

void Writer::address(std::string_view name, std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", value >> 24, value >> 16 & 0xFF,
                  value >> 8 & 0xFF, value & 0xFF);
    string(name, text);
}

} // namespace aceconv::bench
