#include "stream/unfinished_files.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace aceconv {
namespace {

// Their names: the main output and a report. The handler can take nothing but this.
std::array<std::atomic<const char *>, 2> unfinished{};
static_assert(std::atomic<const char *>::is_always_lock_free);

constexpr std::array raised_by_faults = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT};
constexpr std::array sent = {SIGHUP,  SIGINT,    SIGQUIT,   SIGTERM, SIGALRM, SIGUSR1, SIGUSR2,
                             SIGXCPU, SIGVTALRM, SIGSTKFLT, SIGPROF, SIGIO,   SIGPWR};

void remember(const char *name) {
    for (auto &slot : unfinished) {
        const char *none = nullptr;
        if (slot.compare_exchange_strong(none, name)) {
            return;
        }
    }
    std::abort();
}

/// Its disposition is the default again when it comes here, and ends the process.
extern "C" void stop(int signal) {
    remove_unfinished_files();
    for (const int own : raised_by_faults) {
        if (signal == own) {
            constexpr std::string_view message = "aceconv: ended by a fault of the program\n";
            (void)!write(STDERR_FILENO, message.data(), message.size());
        }
    }
    raise(signal);
}

void catch_signal(int signal) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) {
        return; // as under nohup, and with a sanitizer that reports faults
    }
    action.sa_handler = stop;
    action.sa_flags = SA_ONSTACK | static_cast<int>(SA_RESETHAND);
    sigfillset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

} // namespace

void install_signal_handlers() {
    static std::array<char, 1 << 16> stack; // for when the thread's own is at its end
    stack_t other{};
    other.ss_sp = stack.data();
    other.ss_size = stack.size();
    sigaltstack(&other, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // shows as EPIPE instead
    std::signal(SIGXFSZ, SIG_IGN); // as EFBIG
    for (const int signal : raised_by_faults) {
        catch_signal(signal);
    }
    for (const int signal : sent) {
        catch_signal(signal);
    }
    for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal) {
        catch_signal(signal);
    }
}

void remove_unfinished_files() noexcept {
    for (auto &slot : unfinished) {
        if (const char *name = slot.exchange(nullptr); name != nullptr) {
            unlink(name);
        }
    }
}

SignalsHeld::SignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    for (const int signal : raised_by_faults) {
        sigdelset(&all, signal);
    }
    pthread_sigmask(SIG_BLOCK, &all, &before_);
}

SignalsHeld::~SignalsHeld() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int create_unfinished(std::string &name) {
    const SignalsHeld held; // it is not there without being known
    const int file = mkostemp(name.data(), O_CLOEXEC);
    if (file >= 0) {
        remember(name.c_str());
    }
    return file;
}

void forget_unfinished(const std::string &name) noexcept {
    for (auto &slot : unfinished) {
        const char *mine = name.c_str();
        slot.compare_exchange_strong(mine, nullptr);
    }
}

} // namespace aceconv
