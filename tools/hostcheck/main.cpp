// aceconv-hostcheck: says which promises of aceconv/host/ a host breaks.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "aceconv/version.h"

#include "tools/hostcheck/options.h"
#include "tools/hostcheck/watch.h"

namespace {

using namespace aceconv::hostcheck;

enum : int { all_kept = 0, some_broken = 1, usage = 2, input_output = 3 };

constexpr Trial trials[] = {
    {"the walk over an entry", walk_entries},
    {"a second walk", walk_again},
    {"two walks at once", walk_two_at_once},
    {"a failure on its way out of a walk", keep_the_status},
    {"reading leaves", read_leaves},
    {"refusing values", refuse_values},
    {"writing an entry", emit_entries},
    {"failures of writing", emit_failures},
    {"registration", register_type},
    {"encoding and decoding a record", encode_records},
    {"encodings cut off", decode_cut_bytes},
    {"releasing a record", release_records},
    {"trace and append", trace_and_append},
    {"memory", hold_no_memory},
    {"threads", run_threads},
    {"conversions", convert_entries},
    {"conversions that fail", convert_with_failures},
};

/// The text for --help.
std::string help() {
    std::string arguments, options;
    for (const OptionRow &row : option_rows) {
        std::string spelled = row.name;
        if (!spelled.starts_with('-')) {
            arguments += " " + spelled;
        } else if (*row.value != '\0') {
            spelled += std::string(" ") + row.value;
        }
        spelled.resize(std::max<std::size_t>(spelled.size() + 1, 18), ' ');
        options += "  " + spelled + row.help + "\n";
    }
    return "usage: aceconv-hostcheck [OPTION...]" + arguments + "\n\n" + command_help + R"(.
Every trial has a process of its own, so that one that crashes or hangs does not hide
the others.

)" + options +
           R"(
Exit codes: 0 every promise was kept, 1 one was broken, 2 usage, 3 no process can be made,
or the output cannot be written.
)";
}

struct Options {
    std::string host, plugin;
    std::chrono::seconds limit{10};
    bool first = false;
};

/// False when the words mean nothing.
bool parse(int count, char **words, Options &options) {
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        if (word == "--plugin" && i + 1 < count) {
            options.plugin = words[++i];
        } else if (word == "--limit" && i + 1 < count) {
            int seconds = 0;
            char rest = '\0';
            if (std::sscanf(words[++i], "%d%c", &seconds, &rest) != 1 || seconds <= 0 ||
                seconds > 3600) {
                return false;
            }
            options.limit = std::chrono::seconds(seconds);
        } else if (word == "--first") {
            options.first = true;
        } else if (word.starts_with('-') || !options.host.empty()) {
            return false;
        } else {
            options.host = word;
        }
    }
    return !options.host.empty();
}

/// Does nothing but being there: host and plug-in can be loaded.
void nothing(Check & /*check*/) {}

int run(const Options &options) {
    const auto tried = [&](const Trial &trial) {
        const Verdict verdict = watch(trial, options.host, options.plugin, options.limit);
        if (!verdict.kept) {
            std::printf("%s: %s\n", trial.name, verdict.words.c_str());
            std::fflush(stdout);
        }
        return verdict.kept;
    };
    if (!tried({"loading", nothing})) {
        return some_broken;
    }
    int done = 0, broken = 0;
    for (const Trial &trial : trials) {
        if (options.first && broken != 0) {
            break;
        }
        ++done;
        broken += tried(trial) ? 0 : 1;
    }
    std::printf("%s: %d trials, %d of them found a broken promise\n", options.host.c_str(), done,
                broken);
    return broken == 0 ? all_kept : some_broken;
}

int check_host(int argc, char **argv) {
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        std::fputs(help().c_str(), stdout);
        return all_kept;
    }
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        std::puts("aceconv-hostcheck " ACECONV_VERSION);
        return all_kept;
    }
    Options options;
    if (!parse(argc, argv, options)) {
        std::fputs(help().c_str(), stderr);
        return usage;
    }
    try {
        return run(options);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "aceconv-hostcheck: %s\n", error.what());
        return input_output;
    }
}

} // namespace

int main(int argc, char **argv) {
    const int code = check_host(argc, argv);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("aceconv-hostcheck: cannot write to standard output\n", stderr);
        return input_output;
    }
    return code;
}
