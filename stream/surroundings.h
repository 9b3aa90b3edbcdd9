// What stands around the entries of an input and is no part of them: wrappers that were
// taken off, and nodes of other modules that were stepped over.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace aceconv {

/// What to do with a node of another module where an access list's module may stand.
enum class OtherModules { refused, stepped_over };

/// What a message ends in where such a node is refused.
constexpr const char *step_over_hint = "; --ignore-other-modules steps over other modules";

/// What the message of a server's error begins with.
constexpr const char *error_reply = "the reply is an error";
/// Whether a node of this name tells a reader of such an error what it is.
[[nodiscard]] bool is_error_text(std::string_view name);

class Surroundings {
  public:
    /// `name` is one of a few.
    void unwrapped(std::string_view name) { note(wrappers_, name); }
    void stepped_over(std::string_view name);
    void add(const Surroundings &other);

    /// For the summary: ", out of rpc-reply, data, 2 nodes of other modules stepped over (a:b,
    /// c:d)"; "" when there was nothing.
    [[nodiscard]] std::string text() const;

  private:
    using Names = std::vector<std::string>;
    static void note(Names &names, std::string_view name);

    Names wrappers_;
    std::uint64_t others_ = 0;
    Names names_of_others_; // the first few of them
    bool more_names_ = false;
};

} // namespace aceconv
