// The comparison of two inputs: which of their entries go together, and what differs.
#pragma once

#include <memory>

#include "tools/aceconv/diff_report.h"
#include "tools/aceconv/diff_side.h"

namespace aceconv::tool {

/// An entry of either input.
struct ComparedEntry {
    EntryKey key;
    Position position;
    Schema schema;
    Encoding encoding;
};

/// Tells what differs, in the report and in the findings of the first input's run.
class Comparison {
  public:
    Comparison(DiffSide &a, DiffSide &b, const ListNames &names, DiffReport &report);

    /// Tells how two entries differ, if they do.
    void pair(const ComparedEntry &a, const ComparedEntry &b);
    /// Tells an entry of one side alone. If `may_be_bad`, one of the other's bad entries may be
    /// it; `moved` says the same at another place of the other's list.
    void only_in(Which which, const ComparedEntry &entry, bool may_be_bad,
                 const ComparedEntry *moved = nullptr);

    [[nodiscard]] DiffSide &side(Which which) { return which == Which::a ? a_ : b_; }
    [[nodiscard]] const bag_descriptor &descriptor() const { return descriptor_; }

  private:
    void tell(const FoundDifference &found, const ReportedEntry &entry, Which which,
              const std::string &line);
    [[nodiscard]] ReportedEntry reported(const ComparedEntry &entry) const;

    DiffSide &a_, &b_;
    const ListNames &names_;
    DiffReport &report_;
    const bag_descriptor &descriptor_;
    const RecordView view_;
    const Bytes nothing_; // the encoding of a record without fields
};

/// Finds the entries that go together.
class Matcher {
  public:
    virtual ~Matcher() = default;
    /// The next entry of a side; they come in turn as long as both have one.
    virtual void take(Which which, const ComparedKey &key, const ComparedEntry &entry) = 0;
    /// Both have ended.
    virtual void finish() = 0;
};

/// By list and sequence number, whatever the order.
std::unique_ptr<Matcher> match_by_sequence(Comparison &comparison);

/// Inside a list by what they mean and in their order, whatever their numbers.
std::unique_ptr<Matcher> match_by_content(Comparison &comparison);

} // namespace aceconv::tool
