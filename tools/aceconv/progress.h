// How far a run has come: a line on standard error while it lasts, and a summary
// at its end.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "converter/passage.h"
#include "stream/surroundings.h"
#include "stream/window.h"

namespace aceconv::tool {

/// "1 entry" or "2 entries".
std::string counted(std::uint64_t count, const char *one, const char *more);

/// "2500 entries, 1 error, 3 losses in 2 entries"
std::string account(const Tally &tally);

/// "2 entries match more than before; 2500 entries, 1 error, 3 losses in 2 entries;
/// 0.12 s, 20833 entries a second"
std::string summary(const Tally &tally, const Surroundings &around, double seconds);

class Progress {
  public:
    /// The line is `shown` from the second second on; without `meter` no time left.
    Progress(bool shown, std::shared_ptr<const InputMeter> meter)
        : shown_(shown), meter_(std::move(meter)) {}

    /// To be called for each entry, with how many there have been.
    void update(std::uint64_t entries) {
        if (shown_ && entries % update_stride == 0) {
            show(entries);
        }
    }
    [[nodiscard]] double seconds() const;

  private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::uint64_t update_stride = 64;

    void show(std::uint64_t entries);

    const bool shown_;
    const std::shared_ptr<const InputMeter> meter_;
    const Clock::time_point start_ = Clock::now();
    Clock::time_point next_ = start_ + std::chrono::seconds(1);
};

} // namespace aceconv::tool
