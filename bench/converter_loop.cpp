// Runs one conversion a given number of times, for tools that count
// instructions: converter_loop CASE COUNT, or without arguments a list of the
// cases, one "NAME NODES" a line.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#include "bench/converter_cases.h"

int main(int argc, char **argv) {
    try {
        for (aceconv::bench::ConverterCase &c : aceconv::bench::converter_cases()) {
            if (argc != 3) {
                std::printf("%s %zu\n", c.name.c_str(), c.nodes);
            } else if (std::string_view(argv[1]) == c.name) {
                for (unsigned long i = std::strtoul(argv[2], nullptr, 10); i > 0; --i) {
                    if (c.run() != 0) {
                        std::fprintf(stderr, "converter_loop: %s failed\n", argv[1]);
                        return 1;
                    }
                }
                return 0;
            }
        }
    } catch (const std::exception &e) {
        std::fprintf(stderr, "converter_loop: %s\n", e.what());
        return 1;
    }
    if (argc == 3) {
        std::fprintf(stderr, "converter_loop: no case %s\n", argv[1]);
        return 2;
    }
    return 0;
}
