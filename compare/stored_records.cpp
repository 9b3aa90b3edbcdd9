#include "compare/stored_records.h"

#include <utility>

#include "compare/decoded_record.h"

namespace aceconv {
namespace {

bool has_key(const EntryKey &key) {
    return key.acl || key.sequence;
}

} // namespace

void StoredRecords::add(const Entry &stored) {
    const DecodedRecord record(descriptor_, stored.encoding);
    const EntryKey &key = stored.key;
    if (has_key(key)) {
        by_place_ = false;
        const std::string list = key.acl.value_or(""); // no list has this name
        if (key.sequence ? !numbered_.insert(list, *key.sequence)
                         : !unnumbered_.insert(list).second) {
            throw DataError("", "a second encoding under this label");
        }
    }
    if (record.get().UDF.count != 0) {
        places_.emplace(place(stored), kept_.size());
        kept_.push_back({stored});
    }
}

StoredRecords::Place StoredRecords::place(const Entry &entry) {
    return {entry.key.acl, entry.key.sequence, has_key(entry.key) ? 0 : entry.position.ordinal};
}

std::optional<std::size_t> StoredRecords::look_up(const Entry &entry) const {
    if (!has_key(entry.key) && (!by_place_ || entry.position.input != 0)) {
        return std::nullopt;
    }
    const auto found = places_.find(place(entry));
    return found == places_.end() ? std::nullopt : std::optional(found->second);
}

Encoding StoredRecords::find(const Entry &entry) const {
    const auto found = look_up(entry);
    return found ? Encoding(kept_[*found].stored.encoding) : Encoding();
}

void StoredRecords::meet(const Entry &entry) {
    const bool keyed = has_key(entry.key);
    if (by_place_ && !kept_.empty() && keyed != entries_have_keys_.value_or(keyed)) {
        throw DataError("", "entries with and without a list or a sequence number, which cannot be "
                            "paired with stored encodings that have none");
    }
    entries_have_keys_ = keyed;
    const auto found = look_up(entry);
    if (found && std::exchange(kept_[*found].met, true)) {
        throw DataError("", "a second entry for one stored encoding");
    }
}

std::vector<StoredRecords::Left> StoredRecords::left() const {
    std::vector<Left> left;
    for (const Kept &kept : kept_) {
        if (!kept.met) {
            left.push_back({kept.stored, why_left(kept.stored.key)});
        }
    }
    return left;
}

const char *StoredRecords::why_left(const EntryKey &key) const {
    if (has_key(key)) {
        return "no entry of this list and sequence number was encoded";
    }
    if (!by_place_) {
        return "it has no list and sequence number, while other stored encodings have";
    }
    return entries_have_keys_.value_or(false)
               ? "it has no list and sequence number, while the entries have"
               : "no entry was encoded in its place";
}

} // namespace aceconv
