#include "host/plugin_loader.h"

#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "host/bag_library.h"

namespace aceconv {
namespace {

constexpr const char *bag_type = "ipv4_acl_config_ace";

[[noreturn]] void refuse(const std::string &file, const std::string &why) {
    throw std::runtime_error("plug-in " + file + ": " + why);
}

/// The loader's text without the file name that it may start with.
std::string loader_error(const std::string &file) {
    const char *const error = dlerror();
    std::string text = error == nullptr ? "cannot be loaded" : error;
    const std::string prefix = file + ": ";
    if (text.compare(0, prefix.size(), prefix) == 0) {
        text.erase(0, prefix.size());
    }
    return text;
}

struct Close {
    void operator()(void *library) const { dlclose(library); }
};

template <typename Target>
void resolve(void *library, const std::string &file, const char *name, Target &target) {
    void *const symbol = dlsym(library, name);
    if (symbol == nullptr) {
        refuse(file, std::string("does not export ") + name);
    }
    target = reinterpret_cast<Target>(symbol);
}

} // namespace

Plugin load_plugin(const std::string &file) {
    Plugin plugin{};
    plugin.file = std::filesystem::absolute(file); // a name without "/" would be searched for
    std::error_code none;
    const std::filesystem::file_status found = status(std::filesystem::path(plugin.file), none);
    if (exists(found) && !is_regular_file(found)) {
        refuse(file, "not a regular file"); // the loader would wait for what a pipe holds
    }
    std::unique_ptr<void, Close> opened(dlopen(plugin.file.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (opened == nullptr) {
        refuse(file, loader_error(plugin.file));
    }

    decltype(&bag_register_all_ipv4_acl_bags) register_all = nullptr;
    resolve(opened.get(), file, "ipv4_acl_config_ace_bag", plugin.descriptor);
    resolve(opened.get(), file, "bag_register_all_ipv4_acl_bags", register_all);
    resolve(opened.get(), file, "ccv_custom_encoder_ipv4_acl_ace", plugin.encode_base);
    resolve(opened.get(), file, "ccv_custom_decoder_ipv4_acl_ace", plugin.decode_base);
    resolve(opened.get(), file, "ccv_custom_encoder_ipv4_acl_ace_um", plugin.encode_um);
    resolve(opened.get(), file, "ccv_custom_decoder_ipv4_acl_ace_um", plugin.decode_um);

    const char *const type = plugin.descriptor->type_name;
    if (type == nullptr || std::strcmp(type, bag_type) != 0) {
        refuse(file, std::string("its bag type is ") + (type == nullptr ? "nameless" : type) +
                         ", expected " + bag_type);
    }
    if (const std::uint32_t status = register_all(); status != 0) {
        char code[16];
        std::snprintf(code, sizeof code, "0x%08X", status);
        refuse(file,
               std::string("registration failed with ") + code + " (" + bag_last_error() + ")");
    }
    static_cast<void>(opened.release());
    return plugin;
}

} // namespace aceconv
