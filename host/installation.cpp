#include "host/installation.h"

#include <dlfcn.h>
#include <filesystem>
#include <stdexcept>

namespace aceconv {
namespace {

namespace fs = std::filesystem;

constexpr const char *plugin_name = "libipv4_acl_ace.so";
constexpr const char *modules_name = ACECONV_DATA_FOLDER "/aceconv/yang";
constexpr const char here = 0; // lies in this library, wherever that is

fs::path library_folder() {
    Dl_info library{};
    std::error_code fault;
    fs::path file;
    if (dladdr(&here, &library) != 0 && library.dli_fname != nullptr) {
        file = fs::canonical(library.dli_fname, fault);
    }
    if (file.empty()) {
        throw std::runtime_error("cannot find the folder of libaceconv_host.so");
    }
    return file.parent_path();
}

} // namespace

std::string installed_plugin() {
    const fs::path folder = library_folder();
    const fs::path beside = folder / plugin_name;
    const fs::path below = folder / "aceconv" / plugin_name;
    std::error_code none;
    for (const fs::path &file : {beside, below}) {
        if (fs::exists(file, none)) {
            return file.string();
        }
    }
    throw std::runtime_error("the plug-in is neither " + beside.string() + " nor " +
                             below.string());
}

std::string installed_modules() {
    const fs::path folder = library_folder();
    std::error_code none;
    for (fs::path above = folder; above.has_relative_path();) {
        above = above.parent_path();
        if (fs::path found = above / modules_name; fs::is_directory(found, none)) {
            return found.string();
        }
    }
    throw std::runtime_error("cannot find the YANG modules: no folder above " + folder.string() +
                             " has " + modules_name);
}

} // namespace aceconv
