// libFuzzer over the target that --target=NAME names; its own options begin with one dash.
#include <cstdio>
#include <cstdlib>

#include "fuzz/target.h"

namespace {
const aceconv::fuzz::Target *target = nullptr;
}

extern "C" int LLVMFuzzerInitialize(int *count, char ***arguments) {
    constexpr std::string_view option = "--target=";
    for (int i = 1; i < *count; ++i) {
        const std::string_view argument = (*arguments)[i];
        if (argument.substr(0, option.size()) == option) {
            target = aceconv::fuzz::find_target(argument.substr(option.size()));
        }
    }
    if (target == nullptr) {
        std::fputs("expected --target=NAME; fuzz_replay list shows the names\n", stderr);
        std::exit(2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    target->check({data, size});
    return 0;
}
