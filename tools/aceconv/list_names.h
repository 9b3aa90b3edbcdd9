// Which lists of two inputs are compared with each other: those of one name, and those that
// were renamed between them.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace aceconv::tool {

/// One of the two inputs of a comparison.
enum class Which { a, b };

class ListNames {
  public:
    using Name = std::optional<std::string>; // none of entries of no list

    /// Each is OLD=NEW, where a backslash stands before a further '=' or backslash. Throws
    /// UsageError.
    explicit ListNames(const std::vector<std::string> &renamed);

    /// The name under which a list is compared; those of one such name go together. A list whose
    /// name was given to another one has no counterpart.
    [[nodiscard]] Name compared(Which which, const Name &name) const;
    /// The list's name in A, where it has a counterpart there.
    [[nodiscard]] Name in_a(Which which, const Name &name) const;

    /// Notes that there is such a list.
    void see(Which which, const Name &name);
    /// The names that were given for an input and that none of its lists has.
    [[nodiscard]] std::vector<std::string> missing(Which which) const;

  private:
    std::map<std::string, std::string> new_names_; // by the name in A
    std::map<std::string, std::string> old_names_; // by the name in B
    std::set<std::string> missing_[2];             // of either input
};

} // namespace aceconv::tool
