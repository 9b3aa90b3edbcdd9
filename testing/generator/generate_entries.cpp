// Writes random access-list entries, the same for the same seed:
// generate_entries COUNT [--um] [--document] [--seed N]
//
// One entry a line (NDJSON), or with --document one access list as a YANG data
// document. The base schema unless --um is given.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "testing/generator/rule.h"

namespace {

int usage() {
    std::fputs("usage: generate_entries COUNT [--um] [--document] [--seed N]\n", stderr);
    return 2;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        return usage();
    }
    const unsigned long count = std::strtoul(argv[1], nullptr, 10);
    bool um = false;
    bool document = false;
    unsigned long long seed = 1;
    for (int i = 2; i < argc; ++i) {
        const std::string_view option = argv[i];
        if (option == "--um") {
            um = true;
        } else if (option == "--document") {
            document = true;
        } else if (option == "--seed" && i + 1 < argc) {
            seed = std::strtoull(argv[++i], nullptr, 10);
        } else {
            return usage();
        }
    }

    if (document) {
        std::printf("{\"aceconv-%s:acls\":{\"acl\":[{\"name\":\"GENERATED\",\"entry\":[\n",
                    um ? "um" : "base");
    }
    aceconv::bench::Random random(seed);
    std::string line;
    for (unsigned long i = 1; i <= count; ++i) {
        const aceconv::bench::Rule rule =
            aceconv::bench::random_rule(random, static_cast<std::uint32_t>(10 * i));
        line.clear();
        (um ? aceconv::bench::append_um : aceconv::bench::append_base)(line, rule);
        line += document && i < count ? ",\n" : "\n";
        std::fwrite(line.data(), 1, line.size(), stdout);
    }
    if (document) {
        std::puts("]}]}}");
    }
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? 0 : 3;
}
