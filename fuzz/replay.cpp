// fuzz_replay list                     the targets
// fuzz_replay run TARGET FILE...       the target over files and folders of them
// fuzz_replay words TARGET             its dictionary
// fuzz_replay seeds TARGET FOLDER      its seeds, into files
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "fuzz/target.h"

namespace {

namespace fs = std::filesystem;
using namespace aceconv::fuzz;

int list() {
    for (const Target &target : targets()) {
        std::cout << target.name << '\n';
    }
    return 0;
}

void run_file(const Target &target, const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
    std::cerr << path.string() << std::endl; // which file it was, if the process ends
    target.check({reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size()});
}

int run(const Target &target, std::span<char *> paths) {
    std::size_t count = 0;
    for (const fs::path path : paths) {
        if (!fs::is_directory(path)) {
            run_file(target, path);
            ++count;
            continue;
        }
        for (const auto &file : fs::directory_iterator(path)) {
            run_file(target, file.path());
            ++count;
        }
    }
    std::cout << target.name << ": " << count << " inputs\n";
    return count > 0 ? 0 : 1;
}

int words(const Target &target) {
    for (const std::string &word : target.words()) {
        std::cout << '"';
        for (const char c : word) {
            const auto byte = static_cast<unsigned char>(c);
            if (std::isprint(byte) != 0 && c != '"' && c != '\\') {
                std::cout << c;
            } else {
                char shown[5];
                std::snprintf(shown, sizeof shown, "\\x%02X", byte);
                std::cout << shown;
            }
        }
        std::cout << "\"\n";
    }
    return 0;
}

int seeds(const Target &target, const fs::path &folder) {
    std::size_t number = 0;
    for (const std::string &seed : target.seeds()) {
        std::ofstream file(folder / ("seed" + std::to_string(number++)), std::ios::binary);
        if (!(file << seed << std::flush)) {
            std::cerr << "cannot write into " << folder << '\n';
            return 3;
        }
    }
    return 0;
}

} // namespace

int main(int count, char **arguments) {
    const std::string_view verb = count > 1 ? arguments[1] : "";
    const Target *target = count > 2 ? find_target(arguments[2]) : nullptr;
    if (verb == "list") {
        return list();
    }
    if (verb == "run" && target != nullptr) {
        return run(*target, {arguments + 3, arguments + count});
    }
    if (verb == "words" && target != nullptr) {
        return words(*target);
    }
    if (verb == "seeds" && target != nullptr && count == 4) {
        return seeds(*target, arguments[3]);
    }
    std::cerr
        << "usage: fuzz_replay list | run TARGET FILE... | words TARGET | seeds TARGET FOLDER\n";
    return 2;
}
