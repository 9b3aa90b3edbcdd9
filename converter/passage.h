// Entries on their way from a source to whoever takes their products, with an account
// of them: faults are told, the entries of a list have each number once.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "converter/entry_stream.h"
#include "stream/sequence_numbers.h"

namespace aceconv {

/// Whether the entries of several inputs are to stand in one output, where a list has each
/// sequence number once, or have nothing to do with each other.
enum class Lists { joined, apart };

/// How much has been done.
struct Tally {
    std::uint64_t entries = 0; // bad ones included
    std::uint64_t errors = 0;
    std::uint64_t losses = 0;
    std::uint64_t entries_with_losses = 0;
    std::uint64_t entries_widened = 0; // match more than before

    /// Those of one entry.
    void add(const Losses &added);
};

class Passage {
  public:
    /// Is told of each fault; whether the passage goes on behind it.
    using OnFault = std::function<bool(const Entry &, const DataError &)>;

    /// `inputs` is how many the source has. The rest is EntryStream's.
    Passage(Source &source, InputMeter &meter, const CodecSetup &setup, unsigned jobs, Work work,
            std::function<void()> before_wait, std::size_t inputs, Lists lists, Tally &tally,
            OnFault on_fault);

    /// The next good entry, valid until the next call. Null at the end, or behind a fault that
    /// ended it. Throws what EntryStream::next throws and what reading, or the work on an
    /// entry, threw beside DataError; `at` is that entry.
    EntryStream::Item *next();
    /// The fault counts as the entry's own.
    void fail(const Entry &entry, const DataError &fault);
    /// No more entries are taken.
    void stop() { over_ = true; }
    /// The one last looked at; null before the first.
    [[nodiscard]] const Entry *at() const { return at_; }

  private:
    /// Throws when the list has had this sequence number before.
    void note_key(const Entry &entry);

    EntryStream stream_;
    const std::size_t inputs_;
    const Lists lists_;
    Tally &tally_;
    const OnFault on_fault_;
    const Entry *at_ = nullptr;
    SequenceNumbers used_;
    std::size_t used_in_ = 0;          // the input that they stand in
    std::optional<std::size_t> ended_; // the input of which no more entries are taken
    bool over_ = false;                // no more entries are taken
};

} // namespace aceconv
