// The conversions that are measured: both schemas, both directions, the
// smallest, a typical and the largest entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "aceconv/plugin.h"
#include "bench/minimal_host.h"

namespace aceconv::bench {

struct ConverterCase {
    std::string name;  // "encode-base/typical"
    std::size_t nodes; // of the entry's tree, containers included
    decltype(&ccv_custom_encoder_ipv4_acl_ace) encode = nullptr;
    decltype(&ccv_custom_decoder_ipv4_acl_ace) decode = nullptr; // where encode is null
    ccv_yang_node *entry;                                        // what encode reads
    Encoding encoding{};                                         // what decode reads

    /// One conversion; returns the converter's status.
    [[nodiscard]] std::uint32_t run();
};

/// All cases, each run once. Throws std::runtime_error when a converter fails or
/// an encoder does not take up its whole entry.
std::vector<ConverterCase> converter_cases();

} // namespace aceconv::bench
