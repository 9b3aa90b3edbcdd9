#include "compare/common_subsequence.h"

#include <algorithm>
#include <numeric>

namespace aceconv {
namespace {

// By Hunt and Szymanski. Elements of `a` are taken one after the other, each with its places in
// `b` from the last to the first. `ends_[k]` is the first place in `b` where a common subsequence
// of k + 1 elements can end so far, and `last_[k]` its last pair, which leads to those before it.
class Search {
  public:
    Search(std::span<const std::uint32_t> a, std::span<const std::uint32_t> b,
           std::size_t most_pairs)
        : a_(a), b_(b), places_(b.size()), met_(b.size()) {
        std::iota(places_.begin(), places_.end(), 0U);
        std::stable_sort(places_.begin(), places_.end(),
                         [&](std::uint32_t x, std::uint32_t y) { return b[x] < b[y]; });
        std::size_t pairs = 0; // at most 2^32 times 2^32
        for (const std::uint32_t element : a_) {
            pairs += places_of(element).size();
        }
        most_places_ =
            pairs <= most_pairs ? b.size() : std::max<std::size_t>(1, most_pairs / a.size());
    }

    std::vector<Matched> run() {
        for (std::size_t i = 0; i < a_.size(); ++i) {
            const Places places = nearest(places_of(a_[i]));
            for (auto at = places.rbegin(); at != places.rend(); ++at) {
                add(static_cast<std::uint32_t>(i), *at);
            }
        }
        std::vector<Matched> matched(last_.size());
        std::uint32_t pair = last_.empty() ? none : last_.back();
        for (auto at = matched.rbegin(); at != matched.rend(); ++at, pair = pairs_[pair].before) {
            *at = {pairs_[pair].a, pairs_[pair].b};
        }
        return matched;
    }

  private:
    using Places = std::span<const std::uint32_t>;
    static constexpr std::uint32_t none = UINT32_MAX;
    struct Pair {
        std::uint32_t a, b;
        std::uint32_t before; // in pairs_
    };

    [[nodiscard]] Places places_of(std::uint32_t element) const {
        // Not std::ranges::equal_range, which clang 14 cannot compile.
        const auto value = [this](std::uint32_t at) { return b_[at]; };
        return {std::ranges::lower_bound(places_, element, {}, value),
                std::ranges::upper_bound(places_, element, {}, value)};
    }

    /// Of the places of an element in `b`, those to try for its next occurrence in `a`.
    Places nearest(Places places) {
        if (places.size() <= most_places_) {
            return places;
        }
        const auto group = static_cast<std::size_t>(places.data() - places_.data());
        const std::size_t count = met_[group]++; // the occurrences before this one
        const std::size_t begin = count - std::min(count, most_places_ / 2);
        return places.subspan(std::min(begin, places.size() - most_places_), most_places_);
    }

    void add(std::uint32_t a, std::uint32_t b) {
        const auto found = std::lower_bound(ends_.begin(), ends_.end(), b);
        const auto k = static_cast<std::size_t>(found - ends_.begin());
        if (found == ends_.end()) {
            ends_.push_back(b);
            last_.push_back(0);
        } else if (*found == b) {
            return;
        }
        ends_[k] = b;
        last_[k] = static_cast<std::uint32_t>(pairs_.size());
        pairs_.push_back({a, b, k == 0 ? none : last_[k - 1]});
    }

    const std::span<const std::uint32_t> a_, b_;
    std::vector<std::uint32_t> places_; // in b_, by element
    std::vector<std::uint32_t> met_;    // by the first place in places_: occurrences in a_
    std::size_t most_places_;           // to try for each element of a_
    std::vector<std::uint32_t> ends_;
    std::vector<std::uint32_t> last_; // in pairs_
    std::vector<Pair> pairs_;
};

} // namespace

std::vector<Matched> common_subsequence(std::span<const std::uint32_t> a,
                                        std::span<const std::uint32_t> b, std::size_t most_pairs) {
    const std::size_t shorter = std::min(a.size(), b.size());
    std::size_t head = 0;
    while (head < shorter && a[head] == b[head]) {
        ++head;
    }
    std::size_t tail = 0;
    while (tail < shorter - head && a[a.size() - 1 - tail] == b[b.size() - 1 - tail]) {
        ++tail;
    }
    std::vector<Matched> matched;
    for (std::size_t i = 0; i < head; ++i) {
        matched.push_back({i, i});
    }
    const std::size_t left = a.size() - head - tail;
    const std::size_t right = b.size() - head - tail;
    if (left != 0 && right != 0) {
        for (const Matched &pair :
             Search(a.subspan(head, left), b.subspan(head, right), most_pairs).run()) {
            matched.push_back({head + pair.a, head + pair.b});
        }
    }
    for (std::size_t i = 0; i < tail; ++i) {
        matched.push_back({head + left + i, head + right + i});
    }
    return matched;
}

} // namespace aceconv
