// Files, and folders for them, that have not come to their place yet. None of them outlives the
// process, however it ends, unless it is killed.
#pragma once

#include <array>
#include <csignal>
#include <string>

namespace aceconv {

/// To be called before anything else: the signals that end the process, and can be caught, remove
/// unfinished files first. Those that are ignored, or handled already, stay as they are.
void install_signal_handlers();

/// Removes all of them, from a signal handler too.
void remove_unfinished_files() noexcept;

/// Signals to this thread wait: `sent` those that do not come of faults of its own, `all` these
/// too, for a few lines without faults.
class SignalsHeld {
  public:
    enum class Which { sent, all };
    explicit SignalsHeld(Which which = Which::sent);
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld &) = delete;
    SignalsHeld &operator=(const SignalsHeld &) = delete;

  private:
    sigset_t before_;
};

/// While this lives, signals of the thread that made it are handled in here, since its own stack
/// may be at its end. One for the first thread comes with install_signal_handlers.
class SignalStack {
  public:
    SignalStack();
    ~SignalStack();
    SignalStack(const SignalStack &) = delete;
    SignalStack &operator=(const SignalStack &) = delete;

  private:
    stack_t before_{};
    std::array<char, 1 << 16> room_;
};

/// A new file for its owner alone, as mkostemp makes it, that is known to be unfinished; `name`
/// stays where it is until forget_unfinished. -1 and errno on failure.
int create_unfinished(std::string &name);
/// The same for a folder, with the rights that the umask leaves; removed only while nothing else
/// lies in it.
int create_unfinished_folder(const std::string &name);
/// It is in its place or removed.
void forget_unfinished(const std::string &name) noexcept;

} // namespace aceconv
