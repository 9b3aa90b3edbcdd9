#include "tools/aceconv/setup.h"

#include <optional>
#include <stdexcept>

#include "host/debug_control.h"
#include "host/installation.h"
#include "stream/errors.h"

namespace aceconv::tool {

Plugin find_plugin(const CommonOptions &options) {
    try {
        return load_plugin(options.plugin.empty() ? installed_plugin() : options.plugin);
    } catch (const std::runtime_error &e) {
        throw IoError(std::string(e.what()) +
                      (options.plugin.empty() ? "; --plugin names another" : ""));
    }
}

std::string find_modules(const CommonOptions &options) {
    try {
        return options.modules.empty() ? installed_modules() : options.modules;
    } catch (const std::runtime_error &e) {
        throw IoError(std::string(e.what()) + "; --modules names another place");
    }
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
