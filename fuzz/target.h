// The fuzz targets: what each is given any bytes for, and what helps a fuzzer to find its way.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace aceconv::fuzz {

using Input = std::span<const std::uint8_t>;
using Texts = std::vector<std::string>;

struct Target {
    const char *name;
    void (*check)(Input); // ends the process where something promised does not hold
    Texts (*words)();     // of its dictionary
    Texts (*seeds)();     // inputs to start from
};

std::span<const Target> targets();
/// Null for a name that is none.
const Target *find_target(std::string_view name);

// The targets' checks.
void check_json(Input bytes);
void check_lines(Input bytes);
void check_xml(Input bytes);
void check_encodings(Input bytes);
void check_digits(Input bytes);
void check_entry(Input bytes);
void check_bag(Input bytes);
void check_record(Input bytes);
void check_flags(Input bytes);
void check_stored(Input bytes);
void check_lists(Input bytes);
void check_library(Input bytes);

} // namespace aceconv::fuzz
