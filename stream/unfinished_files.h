// Files that have not come to their place yet. None of them outlives the process,
// however it ends, unless it is killed.
#pragma once

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

/// A new file for its owner alone, as mkostemp makes it, that is known to be unfinished; `name`
/// stays where it is until forget_unfinished. -1 and errno on failure.
int create_unfinished(std::string &name);
/// It is in its place or removed.
void forget_unfinished(const std::string &name) noexcept;

} // namespace aceconv
