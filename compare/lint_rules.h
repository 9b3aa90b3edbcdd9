// What no router can mean, a rule a row: what lint warns of. A warning says nothing but
// what holds for certain from the records.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "compare/packet_match.h"

namespace aceconv {

/// An earlier entry of the same list.
struct EarlierEntry {
    std::optional<std::uint32_t> sequence;
    std::uint64_t line = 0; // 0 where there are none
    std::uint64_t ordinal = 0;
    bool permits = false;
};

/// An entry as the rules look at it.
struct LintSubject {
    const ipv4_acl_config_ace &record;
    Schema schema;
    const EarlierEntry *same = nullptr;   // that says the same
    const EarlierEntry *around = nullptr; // that takes all its packets
};

struct LintWarning {
    const struct LintRule *rule;
    std::string leaf; // path below the entry; empty where it is about no single leaf
    std::string text;
    std::optional<EarlierEntry> earlier; // that it is about as well
};
using LintWarnings = std::vector<LintWarning>;

struct LintRule {
    const char *name;
    const char *meaning; // one sentence
    /// Adds its warnings; null for a rule about lists.
    void (*check)(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings);
};

std::span<const LintRule> lint_rules();
/// The rule of this name, or null.
const LintRule *find_lint_rule(std::string_view name);

/// Those that look at a list.
constexpr const char *duplicate_rule = "duplicate";
constexpr const char *shadowed_rule = "shadowed";
constexpr const char *empty_list_rule = "empty-list";

/// Whether it is a note in the list: neither compares packets nor does anything with them.
bool is_remark(const ipv4_acl_config_ace &record);
/// Whether it permits or denies.
bool has_action(const ipv4_acl_config_ace &record);

} // namespace aceconv
