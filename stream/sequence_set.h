// The sequence numbers that a list has used.
#pragma once

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <vector>

namespace aceconv {

/// Ascending numbers at even distances, the usual case, take no memory for each.
class SequenceSet {
  public:
    /// False when `number` was there already.
    bool insert(std::uint32_t number) {
        if (runs_.empty() || number > runs_.back().last) {
            append(number);
            return true;
        }
        return !in_run(number) && strays_.insert(number).second;
    }

  private:
    struct Run {
        std::uint32_t first, step, last;
    };

    void append(std::uint32_t number) {
        if (!runs_.empty()) {
            Run &run = runs_.back();
            if (run.first == run.last) {
                run.step = number - run.first;
            }
            if (number - run.last == run.step) {
                run.last = number;
                return;
            }
        }
        runs_.push_back({number, 1, number});
    }

    [[nodiscard]] bool in_run(std::uint32_t number) const {
        const auto run = std::lower_bound(runs_.begin(), runs_.end(), number,
                                          [](const Run &r, std::uint32_t n) { return r.last < n; });
        return run != runs_.end() && number >= run->first && (number - run->first) % run->step == 0;
    }

    std::vector<Run> runs_; // ascending
    std::unordered_set<std::uint32_t> strays_;
};

} // namespace aceconv
