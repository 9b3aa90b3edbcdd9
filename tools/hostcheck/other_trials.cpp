// Trace, bounded append, and calls from several threads.
#include <array>
#include <cstring>
#include <fcntl.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tools/hostcheck/emission.h"

namespace aceconv::hostcheck {
namespace {

struct Append {
    const char *text, *piece;
    std::size_t room;
    const char *result;
};

const Append appends[] = {
    {"", "+", 60, "+"},        {"+syn", " ", 56, "+syn "}, {"+syn ", "-ack", 55, "+syn -ack"},
    {"a", "bcdef", 3, "abcd"}, {"abc", "", 5, "abc"},
};

} // namespace

void trace_and_append(Check &check) {
    // Pointers below 4096 mean that there is no such event type.
    const ipv4_acl_debug_event *event = CALL(check, ipv4_acl_debug_get_dll_event_type)(2);
    const ipv4_acl_debug_event none{};
    if (reinterpret_cast<std::uintptr_t>(event) < 4096) {
        event = &none;
    }
    static_cast<void>(*static_cast<const volatile std::uint64_t *>(&event->enabled));
    const std::uint32_t *const flag = CALL(check, ipv4_acl_get_dll_func_regexec)();
    check.expect(flag != nullptr, "gives null: it is the address of the filter's flag");
    regex_t *const *const filter = CALL(check, ipv4_acl_get_dll_func_regexp)();
    check.expect(filter != nullptr, "gives null: it is the address of the filter's pointer");
    check.expect(*flag == 0 || *filter != nullptr, "shows no expression while the flag is set");

    // Lines of a trial are of no use to whoever runs the check.
    const int quiet = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const int loud = dup(STDERR_FILENO);
    dup2(quiet, STDERR_FILENO);
    CALL(check, buginf)
    (event, 0, 1, "%s: String Value %s is not found in structure %s, rc=%d.",
     "acl_yang_ipv4_enc_police", "unit", "table", -1);
    dup2(loud, STDERR_FILENO);
    close(loud);
    close(quiet);

    for (const Append &append : appends) {
        std::array<char, 80> buffer;
        constexpr std::size_t size = 64;
        buffer.fill('~');
        std::strcpy(buffer.data(), append.text);
        check.at(std::string("\"") + append.piece + "\" to \"" + append.text + "\", room for " +
                 std::to_string(append.room));
        CALL(check, __strncat_to_buf)(size, buffer.data(), append.piece, append.room);
        check.expect(std::memchr(buffer.data(), '\0', size) != nullptr, "does not end the text");
        check.expect(std::strcmp(buffer.data(), append.result) == 0,
                     std::string("gives \"") + buffer.data() + "\"");
        check.expect(buffer[size] == '~', "writes behind the buffer");
    }
}

/// Walks, reads and writes on handles of its own, in each of some threads.
void run_threads(Check &check) {
    constexpr int count = 4, rounds = 100;
    check.at("four threads, each with a tree and an output of its own");
    const auto work = [&check](const Entry &entry) {
        Check own = check.for_thread();
        const Tree tree(own, entry);
        for (int round = 0; round < rounds; ++round) {
            Output output(own, entry.schema);
            const Overwritten texts = emit(own, output.handle(), entry, tree.node());
            own.expect(output.status() == 0, "keeps a failure where none was");
            output.expect(entry);
        }
    };
    std::vector<std::jthread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back(work,
                             std::cref(entries[static_cast<std::size_t>(i) % entries.size()]));
    }
}

} // namespace aceconv::hostcheck
