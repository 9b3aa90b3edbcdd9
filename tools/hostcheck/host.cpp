#include "tools/hostcheck/host.h"

#include <dlfcn.h>

namespace aceconv::hostcheck {
namespace {

/// A path that the loader does not search for.
std::string as_path(const std::string &file) {
    return file.find('/') == std::string::npos ? "./" + file : file;
}

std::string loader_error() {
    const char *const error = dlerror();
    return error != nullptr ? error : "cannot be loaded";
}

template <typename Function>
void resolve(void *library, const char *name, Function &function, std::string &missing) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    if (function == nullptr) {
        missing += std::string(missing.empty() ? "" : ", ") + name;
    }
}

} // namespace

std::string load(const std::string &host, const std::string &plugin, Functions &functions) {
    // The plug-in finds the host's functions among those that are visible to all.
    void *const library = dlopen(as_path(host).c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) {
        return loader_error();
    }
    std::string missing;
#define RESOLVE(name) resolve(library, #name, functions.name, missing);
    ACECONV_HOST_FUNCTIONS(RESOLVE)
#undef RESOLVE
    if (!missing.empty()) {
        return host + ": does not export " + missing;
    }
    // Without a file given, the one that was installed with this program.
    void *const converters =
        dlopen(plugin.empty() ? "libipv4_acl_ace.so" : as_path(plugin).c_str(), RTLD_NOW);
    if (converters == nullptr) {
        return loader_error();
    }
#define RESOLVE(name) resolve(converters, #name, functions.name, missing);
    ACECONV_PLUGIN_SYMBOLS(RESOLVE)
#undef RESOLVE
    return missing.empty() ? "" : "the plug-in does not export " + missing;
}

} // namespace aceconv::hostcheck
