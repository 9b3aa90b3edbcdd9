// The earlier encodings of entries: the base schema cannot say user-defined fields,
// but its encoder takes them over from there.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "aceconv/host/bag.h"
#include "stream/sequence_numbers.h"
#include "stream/source.h"

namespace aceconv {

/// An encoding goes with the entry of the same list and sequence number. Only where no
/// encoding has either, and no entry, do those in the same place go together.
class StoredRecords {
  public:
    explicit StoredRecords(const bag_descriptor &descriptor) : descriptor_(descriptor) {}

    /// Adds an encoding, of either schema; keeps it only if it has user-defined fields.
    /// Throws DataError when it cannot be decoded, or is the second one for its list
    /// and sequence number.
    void add(const Entry &stored);

    /// The encoding that goes with this entry, or an empty one. Several threads may
    /// ask at once.
    [[nodiscard]] Encoding find(const Entry &entry) const;

    /// Notes that the entry was encoded with what `find` gave; in the entries' order.
    /// Throws DataError where that may be another entry's: the second of one list and
    /// sequence number, or one with them among others without.
    void meet(const Entry &entry);

    struct Left {
        const Entry &stored;
        const char *why;
    };
    /// The encodings that have met no entry, in their order.
    [[nodiscard]] std::vector<Left> left() const;

  private:
    struct Kept {
        Entry stored;
        bool met = false;
    };
    /// List and sequence number, or else the place in the input.
    using Place =
        std::tuple<std::optional<std::string>, std::optional<std::uint32_t>, std::uint64_t>;

    [[nodiscard]] static Place place(const Entry &entry);
    [[nodiscard]] std::optional<std::size_t> look_up(const Entry &entry) const;
    [[nodiscard]] const char *why_left(const EntryKey &key) const;

    const bag_descriptor &descriptor_;
    std::vector<Kept> kept_;
    std::map<Place, std::size_t> places_; // in kept_
    SequenceNumbers numbered_;            // by the encodings of a list, "" of none
    std::set<std::string, std::less<>> unnumbered_;
    bool by_place_ = true; // no encoding has a key
    std::optional<bool> entries_have_keys_;
};

} // namespace aceconv
