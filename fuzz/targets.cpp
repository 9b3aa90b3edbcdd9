// The registry: a row for each way in.
#include "fuzz/target.h"

#include "fuzz/material.h"

namespace aceconv::fuzz {
namespace {

constexpr Target all_targets[] = {
    {"json", check_json, json_words, json_seeds},
    {"lines", check_lines, json_words, line_seeds},
    {"xml", check_xml, xml_words, xml_seeds},
    {"encodings", check_encodings, encoding_words, encoding_seeds},
    {"digits", check_digits, no_words, digit_seeds},
    {"entry", check_entry, json_words, entry_seeds},
    {"bag", check_bag, encoding_words, bag_seeds},
    {"record", check_record, no_words, record_seeds},
    {"flags", check_flags, flag_words, flag_seeds},
    {"stored", check_stored, json_words, stored_seeds},
    {"lists", check_lists, no_words, record_seeds},
    {"library", check_library, json_words, library_seeds},
};

} // namespace

std::span<const Target> targets() {
    return all_targets;
}

const Target *find_target(std::string_view name) {
    for (const Target &target : all_targets) {
        if (name == target.name) {
            return &target;
        }
    }
    return nullptr;
}

} // namespace aceconv::fuzz
