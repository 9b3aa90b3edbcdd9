// One of the two inputs of a comparison, on its way to encodings.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "tools/aceconv/list_names.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/run.h"

namespace aceconv::tool {

/// What says which entry it is: the name under which its list is compared, its sequence number,
/// and without both of them its place among the entries of the same kind.
struct ComparedKey {
    std::optional<std::string> acl;
    std::optional<std::uint32_t> sequence;
    std::uint64_t place;

    auto operator<=>(const ComparedKey &) const = default;
};

class DiffSide {
  public:
    /// Reads one input only. Throws UsageError and IoError.
    DiffSide(Which which, const CommonOptions &common, const InputOptions &options,
             bool losses_wanted, ListNames &names);

    /// The next entry, its encoding as the product and its losses told; null at the end.
    EntryStream::Item *next(LossAccount &account);
    /// Of the entry last read.
    [[nodiscard]] const ComparedKey &key() const { return key_; }

    /// Whether every entry was read, be it a bad one.
    [[nodiscard]] bool whole() const { return whole_; }
    /// Whether it has a bad entry of this key.
    [[nodiscard]] bool has_bad(const ComparedKey &key) const { return bad_.contains(key); }
    /// Whether one of its bad entries may belong to this list, be it any of them or only one
    /// whose number nobody knows.
    [[nodiscard]] bool may_have_bad(const std::optional<std::string> &acl, bool any) const;

    /// The names that --acl gives for it, but none of its lists has. To be asked at its end.
    [[nodiscard]] std::vector<std::string> missing();

    [[nodiscard]] Run &run() { return run_; }
    [[nodiscard]] std::string file() const { return run_.file(); }

  private:
    /// To be called once for each entry.
    ComparedKey key_of(const Entry &entry);

    const Which which_;
    ListNames &names_;
    Run run_;
    ComparedKey key_ = {};
    std::map<std::pair<std::optional<std::string>, std::optional<std::uint32_t>>, std::uint64_t>
        unnamed_;
    std::set<ComparedKey> bad_;
    std::set<std::optional<std::string>> bad_lists_[2]; // of all of them, of those without a number
    bool whole_ = true;
};

} // namespace aceconv::tool
