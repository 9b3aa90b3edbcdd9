#include "converter/linked_plugin.h"

#include <dlfcn.h>
#include <mutex>
#include <new>
#include <stdexcept>

#include "host/bag_library.h"
#include "stream/errors.h"

namespace aceconv {
namespace {

std::mutex registration; // one at a time

Plugin linked_plugin() {
    static bool registered = false; // guarded by the mutex
    if (const std::uint32_t status = registered ? 0 : bag_register_all_ipv4_acl_bags();
        status != 0) {
        throw_bag_failure(status);
    }
    registered = true;
    return {"",
            &ipv4_acl_config_ace_bag,
            ccv_custom_encoder_ipv4_acl_ace,
            ccv_custom_decoder_ipv4_acl_ace,
            ccv_custom_encoder_ipv4_acl_ace_um,
            ccv_custom_decoder_ipv4_acl_ace_um};
}

/// A plug-in file finds the platform's functions among those of the whole process, where
/// ours are not if we were loaded for one user alone, as an interpreter loads an extension
/// module. So we have the loader show them, but only for those who name a file: programs
/// may have functions of these names.
void show_platform() {
    Dl_info own{};
    if (dladdr(reinterpret_cast<void *>(&ccv_yang_iter_create), &own) != 0) {
        // The handle stays open: what the plug-in calls must not go.
        static_cast<void>(dlopen(own.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_GLOBAL));
    }
    if (dlsym(RTLD_DEFAULT, "ccv_yang_iter_create") !=
        reinterpret_cast<void *>(&ccv_yang_iter_create)) {
        throw IoError("this process has platform functions of its own, which a plug-in file would "
                      "call; only the plug-in that is built in can be used");
    }
}

} // namespace

Plugin open_plugin(const std::string &file) {
    const std::lock_guard lock(registration);
    if (file.empty()) {
        return linked_plugin();
    }
    show_platform();
    try {
        return load_plugin(file);
    } catch (const std::runtime_error &e) {
        throw IoError(e.what());
    }
}

} // namespace aceconv
