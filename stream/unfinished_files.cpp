#include "stream/unfinished_files.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace aceconv {
namespace {

/// Room for names; the handler can take nothing but this. Rooms stay as long as the process.
struct Room {
    std::array<std::atomic<const char *>, 64> names{};
    std::atomic<Room *> next = nullptr;
};
Room first_room; // enough for the output and the report of most runs
static_assert(std::atomic<const char *>::is_always_lock_free);

/// A place without a name, new ones made where there is none.
std::atomic<const char *> &free_place() {
    static Room *last = &first_room;
    for (auto &place : last->names) {
        if (place == nullptr) {
            return place;
        }
    }
    Room *const room = std::make_unique<Room>().release();
    last->next = room;
    last = room;
    return room->names.front();
}

constexpr std::array raised_by_faults = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT};
constexpr std::array sent = {SIGHUP,  SIGINT,    SIGQUIT,   SIGTERM, SIGALRM, SIGUSR1, SIGUSR2,
                             SIGXCPU, SIGVTALRM, SIGSTKFLT, SIGPROF, SIGIO,   SIGPWR};

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
    static const SignalStack stack;
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
    const auto remove_by = [](int (*remove)(const char *)) {
        bool any = false;
        for (Room *room = &first_room; room != nullptr; room = room->next) {
            for (auto &place : room->names) {
                if (const char *name = place; name != nullptr && remove(name) == 0) {
                    place = nullptr;
                    any = true;
                }
            }
        }
        return any;
    };
    remove_by(unlink);
    while (remove_by(rmdir)) { // as often as one folder lies in another
    }
}

SignalsHeld::SignalsHeld(Which which) {
    sigset_t held;
    sigfillset(&held);
    if (which == Which::sent) {
        for (const int signal : raised_by_faults) {
            sigdelset(&held, signal);
        }
    }
    pthread_sigmask(SIG_BLOCK, &held, &before_);
}

SignalsHeld::~SignalsHeld() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

SignalStack::SignalStack() {
    stack_t here{};
    here.ss_sp = room_.data();
    here.ss_size = room_.size();
    sigaltstack(&here, &before_);
}

SignalStack::~SignalStack() {
    sigaltstack(&before_, nullptr);
}

int create_unfinished(std::string &name) {
    const SignalsHeld held(SignalsHeld::Which::all); // it is not there without being known
    std::atomic<const char *> &place = free_place();
    const int file = mkostemp(name.data(), O_CLOEXEC);
    if (file >= 0) {
        place = name.c_str();
    }
    return file;
}

int create_unfinished_folder(const std::string &name) {
    const SignalsHeld held(SignalsHeld::Which::all);
    std::atomic<const char *> &place = free_place();
    const int result = mkdir(name.c_str(), 0777);
    if (result == 0) {
        place = name.c_str();
    }
    return result;
}

void forget_unfinished(const std::string &name) noexcept {
    for (Room *room = &first_room; room != nullptr; room = room->next) {
        for (auto &place : room->names) {
            const char *mine = name.c_str();
            if (place.compare_exchange_strong(mine, nullptr)) {
                return;
            }
        }
    }
}

} // namespace aceconv
