// The way of every entry: from its source through one conversion to its sink.
#pragma once

#include <map>

#include "tools/aceconv/errors.h"
#include "tools/aceconv/report.h"
#include "tools/aceconv/sequence_set.h"
#include "tools/aceconv/source.h"

namespace aceconv::tool {

/// Refuses a sequence number that its list has had before.
class KeyRegistry {
  public:
    void add(const EntryKey &key) {
        if (key.acl && key.sequence && !used_[*key.acl].insert(*key.sequence))
            throw DataError("", "a second entry of this sequence number");
    }

  private:
    std::map<std::string, SequenceSet, std::less<>> used_;
};

/// How a run over an input ended.
struct Outcome {
    std::uint64_t entries = 0; // seen, bad ones included
    bool stopped = false;      // at the first bad entry, since it was not to keep going
};

/// Takes the entries of `source` in order: `work(entry)` converts one, depends on
/// nothing but it, and gives a result to `emit(entry, result)`. Faults go to
/// `report`; with `keep_going` the run goes on behind them.
template <class Work, class Emit>
Outcome run_entries(Source &source, FaultReport &report, bool keep_going, Work work, Emit emit) {
    Outcome outcome;
    KeyRegistry keys;
    for (;;) {
        Entry entry;
        try {
            if (!source.next(entry))
                return outcome;
            ++outcome.entries;
            auto result = work(entry);
            keys.add(entry.key);
            emit(entry, std::move(result));
        } catch (const StreamError &fault) {
            report.add(entry.position, entry.key, fault);
            outcome.stopped = !keep_going;
            return outcome;
        } catch (const DataError &fault) {
            report.add(entry.position, entry.key, fault);
            if (!keep_going) {
                outcome.stopped = true;
                return outcome;
            }
        }
    }
}

} // namespace aceconv::tool
