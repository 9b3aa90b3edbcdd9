#include "tools/aceconv/progress.h"

#include <cmath>
#include <cstdio>

#include "tools/aceconv/report.h"

namespace aceconv::tool {
namespace {

constexpr std::chrono::milliseconds pause_between{200}; // between two states of the line

std::string entries_and_rate(std::uint64_t entries, double seconds, const char *between) {
    char rate[64];
    std::snprintf(rate, sizeof rate, "%s%.0f entries a second", between,
                  seconds > 0 ? static_cast<double>(entries) / seconds : 0);
    return rate;
}

} // namespace

std::string counted(std::uint64_t count, const char *one, const char *more) {
    return std::to_string(count) + " " + (count == 1 ? one : more);
}

std::string account(const Tally &tally) {
    std::string text = counted(tally.entries, "entry", "entries") + ", " +
                       counted(tally.errors, "error", "errors");
    if (tally.losses != 0) {
        text += ", " + counted(tally.losses, "loss", "losses") + " in " +
                counted(tally.entries_with_losses, "entry", "entries");
    }
    return text;
}

std::string summary(const Tally &tally, const Surroundings &around, double seconds) {
    std::string text;
    if (tally.entries_widened != 0) {
        text = counted(tally.entries_widened, "entry matches", "entries match") +
               " more than before; ";
    }
    text += account(tally);
    text += around.text();
    char time[32];
    std::snprintf(time, sizeof time, "; %.2f s", seconds);
    return text + time + entries_and_rate(tally.entries, seconds, ", ");
}

double Progress::seconds() const {
    return std::chrono::duration<double>(Clock::now() - start_).count();
}

void Progress::show(std::uint64_t entries) {
    const auto now = Clock::now();
    if (now < next_) {
        return;
    }
    next_ = now + pause_between;
    std::string line =
        counted(entries, "entry", "entries") + entries_and_rate(entries, seconds(), ", ");
    if (meter_ && meter_->size && meter_->read > 0 && meter_->read <= *meter_->size) {
        const double done = static_cast<double>(meter_->read) / static_cast<double>(*meter_->size);
        char rest[64];
        std::snprintf(rest, sizeof rest, ", %.0f %%, %.0f s left", 100 * done,
                      std::ceil(seconds() * (1 - done) / done));
        line += rest;
    }
    show_status(line);
}

} // namespace aceconv::tool
