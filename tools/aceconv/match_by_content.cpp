// Lists are complete only when both inputs have ended, so every entry is kept: its number and
// place here, its encoding once for all entries that have it.
#include <map>
#include <unordered_map>

#include "compare/common_subsequence.h"
#include "compare/meanings.h"
#include "tools/aceconv/comparison.h"

namespace aceconv::tool {
namespace {

struct Kept {
    std::optional<std::uint32_t> sequence;
    std::uint32_t encoding, meaning; // by their numbers
    std::uint64_t line, ordinal;
};

/// A list as an input has it.
struct List {
    std::optional<std::string> name;
    std::vector<Kept> entries;
};

struct ListPair {
    std::optional<std::string> name; // under which they are compared
    List sides[2];
};

std::vector<std::uint32_t> meanings_of(const List &list) {
    std::vector<std::uint32_t> meanings;
    meanings.reserve(list.entries.size());
    for (const Kept &entry : list.entries) {
        meanings.push_back(entry.meaning);
    }
    return meanings;
}

/// What a list has between two entries that are in both.
struct Gap {
    std::size_t a, b; // where it begins
    std::size_t a_end, b_end;
};

class ByContent : public Matcher {
  public:
    explicit ByContent(Comparison &comparison)
        : comparison_(comparison), meanings_(comparison.descriptor()) {}

    void take(Which which, const ComparedKey &key, const ComparedEntry &entry) override {
        const auto [place, added] = places_.try_emplace(key.acl, lists_.size());
        if (added) {
            lists_.push_back({key.acl, {}});
        }
        List &list = lists_[place->second].sides[static_cast<int>(which)];
        list.name = entry.key.acl;
        const Meanings::Numbers numbers =
            meanings_.add(entry.schema, entry.encoding, entry.key.sequence);
        list.entries.push_back({entry.key.sequence, numbers.encoding, numbers.meaning,
                                entry.position.line, entry.position.ordinal});
    }

    void finish() override {
        for (const ListPair &list : lists_) {
            name_ = list.name;
            compare(list.sides[0], list.sides[1]);
        }
    }

  private:
    [[nodiscard]] ComparedEntry entry(const List &list, std::size_t at) const;
    void compare(const List &a, const List &b);
    void find_moved(const List &a, const List &b, const std::vector<Gap> &gaps);
    void tell(const List &a, const List &b, const Gap &gap);
    void only_in(Which which, const List &list, const List &other, std::size_t at);

    Comparison &comparison_;
    Meanings meanings_;
    std::map<std::optional<std::string>, std::size_t> places_; // in lists_
    std::vector<ListPair> lists_;
    // Of the list that is being compared:
    std::optional<std::string> name_;
    std::unordered_map<std::size_t, std::size_t> moved_[2]; // places in one side and the other
};

ComparedEntry ByContent::entry(const List &list, std::size_t at) const {
    const Kept &kept = list.entries[at];
    return {{list.name, kept.sequence},
            {kept.line, kept.ordinal},
            meanings_.schema(kept.encoding),
            meanings_.encoding(kept.encoding)};
}

void ByContent::compare(const List &a, const List &b) {
    std::vector<Matched> matched = common_subsequence(meanings_of(a), meanings_of(b));
    matched.push_back({a.entries.size(), b.entries.size()});
    std::vector<Gap> gaps;
    std::size_t next_a = 0;
    std::size_t next_b = 0;
    for (const Matched &pair : matched) {
        if (pair.a != next_a || pair.b != next_b) {
            gaps.push_back({next_a, next_b, pair.a, pair.b});
        }
        next_a = pair.a + 1;
        next_b = pair.b + 1;
    }
    find_moved(a, b, gaps);
    for (const Gap &gap : gaps) {
        tell(a, b, gap);
    }
}

/// What only `a` has in one gap and only `b` in another is the same entry at another place.
void ByContent::find_moved(const List &a, const List &b, const std::vector<Gap> &gaps) {
    std::unordered_map<std::uint32_t, std::vector<std::size_t>> places; // in a, the first one last
    for (auto gap = gaps.rbegin(); gap != gaps.rend(); ++gap) {
        for (std::size_t at = gap->a_end; at-- > gap->a;) {
            places[a.entries[at].meaning].push_back(at);
        }
    }
    moved_[0].clear();
    moved_[1].clear();
    for (const Gap &gap : gaps) {
        for (std::size_t at = gap.b; at < gap.b_end; ++at) {
            const auto found = places.find(b.entries[at].meaning);
            if (found != places.end() && !found->second.empty()) {
                moved_[0][found->second.back()] = at;
                moved_[1][at] = found->second.back();
                found->second.pop_back();
            }
        }
    }
}

/// Two entries of one gap are told as a pair where they have the same number, or are all that
/// the gap has; pairs do not cross.
void ByContent::tell(const List &a, const List &b, const Gap &gap) {
    const bool one_each = gap.a_end - gap.a == 1 && gap.b_end - gap.b == 1;
    std::unordered_map<std::uint32_t, std::size_t> numbered; // in b
    for (std::size_t at = gap.b; at < gap.b_end; ++at) {
        if (b.entries[at].sequence && !moved_[1].contains(at)) {
            numbered.emplace(*b.entries[at].sequence, at);
        }
    }
    std::size_t next = gap.b;
    const auto twin_of = [&](std::size_t at) -> std::optional<std::size_t> {
        if (moved_[0].contains(at)) {
            return std::nullopt;
        }
        if (one_each) {
            return moved_[1].contains(gap.b) ? std::nullopt : std::optional(gap.b);
        }
        const auto &sequence = a.entries[at].sequence;
        if (!sequence) {
            return std::nullopt;
        }
        const auto found = numbered.find(*sequence);
        return found == numbered.end() || found->second < next ? std::nullopt
                                                               : std::optional(found->second);
    };
    for (std::size_t at = gap.a; at < gap.a_end; ++at) {
        const std::optional<std::size_t> twin = twin_of(at);
        if (!twin) {
            only_in(Which::a, a, b, at);
            continue;
        }
        for (; next < *twin; ++next) {
            only_in(Which::b, b, a, next);
        }
        comparison_.pair(entry(a, at), entry(b, *twin));
        next = *twin + 1;
    }
    for (; next < gap.b_end; ++next) {
        only_in(Which::b, b, a, next);
    }
}

void ByContent::only_in(Which which, const List &list, const List &other, std::size_t at) {
    const DiffSide &side = comparison_.side(which == Which::a ? Which::b : Which::a);
    const auto &moved = moved_[static_cast<int>(which)];
    if (const auto found = moved.find(at); found != moved.end()) {
        const ComparedEntry twin = entry(other, found->second);
        comparison_.only_in(which, entry(list, at), false, &twin);
    } else if (side.whole()) {
        comparison_.only_in(which, entry(list, at), side.may_have_bad(name_, true));
    }
}

} // namespace

std::unique_ptr<Matcher> match_by_content(Comparison &comparison) {
    return std::make_unique<ByContent>(comparison);
}

} // namespace aceconv::tool
