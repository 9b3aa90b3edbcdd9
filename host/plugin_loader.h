// Loading the conversion plug-in.
#pragma once

#include <cstdint>
#include <string>

#include "aceconv/plugin.h"

namespace aceconv {

using Encoder = decltype(&ccv_custom_encoder_ipv4_acl_ace);
using Decoder = decltype(&ccv_custom_decoder_ipv4_acl_ace);

/// The loaded plug-in; stays loaded for the life of the process.
struct Plugin {
    std::string file;
    const bag_descriptor *descriptor;
    Encoder encode_base;
    Decoder decode_base;
    Encoder encode_um;
    Decoder decode_um;
};

/// Opens the library, resolves its converters and registers its bag type.
/// Throws std::runtime_error naming the file and the cause.
Plugin load_plugin(const std::string &file);

} // namespace aceconv
