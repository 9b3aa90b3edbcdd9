// The form of a string that a YANG "pattern" wants, where it is as simple as most are: for
// any other, libyang is asked, which has to load the modules first.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace aceconv {

/// A sequence of ASCII characters and sets of them, with quantifiers, and groups of these that
/// may be left out: (0[xX])?[0-9a-fA-F]{1,8}
class TextForm {
  public:
    /// Nothing for a pattern that says more than that.
    static std::optional<TextForm> of(std::string_view pattern);

    [[nodiscard]] bool fits(std::string_view text) const;

  private:
    struct Step {
        std::array<std::uint64_t, 2> set; // characters, by their codes
        std::size_t least, most;
    };
    using Steps = std::vector<Step>;

    static bool take_step(std::string_view &pattern, Step &step);
    static bool take_set(std::string_view &pattern, Step &step);
    static bool take_quantifier(std::string_view &pattern, Step &step);
    static bool fits(std::span<const Step> steps, std::string_view text);

    std::vector<Steps> ways_; // with and without each group
};

} // namespace aceconv
