#include "tools/aceconv/setup.h"

#include <optional>
#include <stdexcept>

#include "host/debug_control.h"
#include "stream/errors.h"

namespace aceconv::tool {
namespace {

/// The folder above the one that the program is in.
std::filesystem::path prefix() {
    std::error_code none;
    return std::filesystem::read_symlink("/proc/self/exe", none).parent_path().parent_path();
}

} // namespace

Plugin find_plugin(const CommonOptions &options) {
    try {
        return load_plugin(options.plugin.empty() ? prefix() / "lib" / "libipv4_acl_ace.so"
                                                  : std::filesystem::path(options.plugin));
    } catch (const std::runtime_error &e) {
        throw IoError(e.what());
    }
}

std::filesystem::path find_modules(const CommonOptions &options) {
    if (!options.modules.empty()) {
        return options.modules;
    }
    const std::filesystem::path installed = prefix() / "share" / "aceconv" / "yang";
    std::error_code none;
    return std::filesystem::is_directory(installed, none)
               ? installed
               : std::filesystem::path(ACECONV_SOURCE_MODULES);
}

CodecSetup start(const CommonOptions &options) {
    if (!options.trace.empty()) {
        try {
            enable_trace(options.trace == "." ? std::nullopt : std::optional(options.trace));
        } catch (const std::invalid_argument &e) {
            throw UsageError("--trace: " + std::string(e.what()));
        }
    }
    return {find_plugin(options), find_modules(options), options.backend};
}

} // namespace aceconv::tool
