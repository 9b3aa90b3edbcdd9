#include "tools/hostcheck/watch.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace aceconv::hostcheck {
namespace {

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::generic_category(), what);
}

struct Unmap {
    void operator()(Notes *notes) const { munmap(notes, sizeof *notes); }
};

std::unique_ptr<Notes, Unmap> shared_notes() {
    void *const shared =
        mmap(nullptr, sizeof(Notes), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) {
        fail("mmap");
    }
    return std::unique_ptr<Notes, Unmap>(new (shared) Notes{});
}

[[noreturn]] void run(const Trial &trial, const std::string &host, const std::string &plugin,
                      Notes &notes) {
    const rlimit no_core{0, 0};
    setrlimit(RLIMIT_CORE, &no_core);
    Functions functions;
    const std::string why = load(host, plugin, functions);
    if (!why.empty()) {
        notes.broken[why.copy(notes.broken.data(), notes.broken.size() - 1)] = '\0';
        _exit(1);
    }
    Check check(functions, notes);
    trial.run(check);
    notes.done = true;
    _exit(0);
}

/// Waits for the end of the process; false when that took too long.
bool ended(pid_t child, std::chrono::milliseconds limit, int &status) {
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    if (descriptor < 0) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        fail("pidfd_open");
    }
    pollfd end{descriptor, POLLIN, 0};
    const auto start = std::chrono::steady_clock::now();
    int found = -1;
    for (auto left = limit; found < 0 && left.count() >= 0;) {
        found = poll(&end, 1, static_cast<int>(left.count()));
        left = limit - std::chrono::duration_cast<std::chrono::milliseconds>(
                           std::chrono::steady_clock::now() - start);
    }
    close(descriptor);
    if (found <= 0) {
        kill(child, SIGKILL);
    }
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return found > 0;
}

/// "ccv_yang_iter_next" and where, of the call that did not come back.
std::string last_call(const Notes &notes) {
    return notes.function[0] != '\0' ? notes.function.data() : "loading";
}

std::string place(const Notes &notes) {
    return notes.place[0] != '\0' ? std::string(" (") + notes.place.data() + ")" : "";
}

} // namespace

Verdict watch(const Trial &trial, const std::string &host, const std::string &plugin,
              std::chrono::milliseconds limit) {
    const auto notes = shared_notes();
    const pid_t child = fork();
    if (child < 0) {
        fail("fork");
    }
    if (child == 0) {
        run(trial, host, plugin, *notes);
    }
    int status = 0;
    if (!ended(child, limit, status)) {
        return {false, last_call(*notes) + " does not come back" + place(*notes)};
    }
    if (WIFSIGNALED(status)) {
        return {false, last_call(*notes) + " crashes, or what follows it does: " +
                           strsignal(WTERMSIG(status)) + place(*notes)};
    }
    if (notes->broken[0] != '\0') {
        return {false, notes->broken.data()};
    }
    return notes->done ? Verdict{true, ""}
                       : Verdict{false, last_call(*notes) + " ends the process" + place(*notes)};
}

} // namespace aceconv::hostcheck
