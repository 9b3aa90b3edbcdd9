// Lists as lint goes through them, entry by entry.
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "compare/lint_rules.h"
#include "compare/shadowing.h"
#include "host/bag_library.h"
#include "stream/source.h"

namespace aceconv {

/// A list of which lint has not seen all.
struct PartlyLinted {
    std::size_t input;
    std::string acl;
    std::uint64_t unseen; // entries, the last ones
};

class Linter {
  public:
    /// `rules` are those that are to be looked at; `descriptor` outlives the linter.
    Linter(const bag_descriptor &descriptor, std::vector<const LintRule *> rules,
           std::uint64_t steps = Shadowing::max_steps)
        : descriptor_(descriptor), rules_(std::move(rules)), steps_(steps) {}

    /// The warnings of the next entry, by itself and beside earlier ones of its list, a
    /// list of its input. Throws DataError for an encoding that cannot be decoded.
    LintWarnings look_at(const Entry &entry, Encoding encoding);

    [[nodiscard]] bool looks_at(const char *rule) const;

    /// Lists that were longer than what shadowing looks at.
    [[nodiscard]] std::vector<PartlyLinted> partly() const;
    /// How many entries stood in no list, and were compared with no other.
    [[nodiscard]] std::uint64_t without_list() const { return without_list_; }

  private:
    struct List {
        explicit List(std::uint64_t steps) : shadowing(steps) {}
        Shadowing shadowing;
        std::vector<EarlierEntry> entries;                       // that have an action
        std::unordered_map<std::string, std::uint32_t> contents; // entries by what they say
    };

    /// And where it begins: documents of one input may have lists of one name.
    using ListName = std::pair<std::string, std::uint64_t>;

    List &list_of(const Entry &entry);
    void compare(List &list, const Entry &entry, const ipv4_acl_config_ace &record,
                 LintSubject &subject);

    const bag_descriptor &descriptor_;
    const std::vector<const LintRule *> rules_;
    const std::uint64_t steps_;
    std::size_t input_ = 0;
    std::map<ListName, List> lists_;   // of this input
    std::vector<PartlyLinted> partly_; // of what came before
    std::uint64_t without_list_ = 0;
    TextNumbers texts_;
};

} // namespace aceconv
