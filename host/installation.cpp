#include "host/installation.h"

#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <new>
#include <stdexcept>

namespace aceconv {
namespace {

namespace fs = std::filesystem;

constexpr const char *plugin_name = ACECONV_LIBRARY_FOLDER "/aceconv/libipv4_acl_ace.so";
constexpr const char *modules_name = ACECONV_DATA_FOLDER "/aceconv/yang";
constexpr const char here = 0; // lies in the program or library that this is part of

fs::path own_folder() {
    Dl_info found{};
    link_map *object = nullptr;
    std::error_code fault;
    fs::path file;
    if (dladdr1(&here, &found, reinterpret_cast<void **>(&object), RTLD_DL_LINKMAP) != 0) {
        // A program is nameless there, and its first argument may be any text.
        file = fs::canonical(*object->l_name != '\0' ? object->l_name : "/proc/self/exe", fault);
    }
    if (fault == std::errc::not_enough_memory) {
        throw std::bad_alloc();
    }
    if (file.empty()) {
        throw std::runtime_error("cannot find the folder of the running program");
    }
    return file.parent_path();
}

std::string find_above(const char *name, const char *what) {
    const fs::path folder = own_folder();
    std::error_code none;
    for (fs::path above = folder; above.has_relative_path();) {
        above = above.parent_path();
        if (fs::path found = above / name; fs::exists(found, none)) {
            return found.string();
        }
    }
    throw std::runtime_error(std::string("cannot find ") + what + ": no folder above " +
                             folder.string() + " has " + name);
}

} // namespace

std::string installed_plugin() {
    return find_above(plugin_name, "the plug-in");
}

std::string installed_modules() {
    return find_above(modules_name, "the YANG modules");
}

} // namespace aceconv
