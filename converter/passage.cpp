#include "converter/passage.h"

#include <algorithm>
#include <utility>

#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {

void Tally::add(const Losses &added) {
    losses += added.size();
    entries_with_losses += added.empty() ? 0U : 1U;
    const bool widened =
        std::any_of(added.begin(), added.end(), [](const Change &loss) { return loss.widens; });
    entries_widened += widened ? 1U : 0U;
}

Passage::Passage(Source &source, InputMeter &meter, const CodecSetup &setup, unsigned jobs,
                 Work work, std::function<void()> before_wait, std::size_t inputs, Lists lists,
                 Tally &tally, OnFault on_fault)
    : stream_(source, meter, setup, jobs, std::move(work), std::move(before_wait)), inputs_(inputs),
      lists_(lists), tally_(tally), on_fault_(std::move(on_fault)) {}

EntryStream::Item *Passage::next() {
    while (!over_) {
        EntryStream::Item *item = stream_.next();
        if (item == nullptr) {
            break;
        }
        const std::size_t input = item->entry.position.input;
        if (input == ended_) {
            continue;
        }
        at_ = &item->entry;
        try {
            if (item->fault) {
                std::rethrow_exception(item->fault);
            }
            note_key(item->entry);
            ++tally_.entries;
            return item;
        } catch (const StreamError &fault) {
            fail(item->entry, fault);
            ended_ = input;
            over_ = over_ || input + 1 == inputs_;
        } catch (const DataError &fault) {
            ++tally_.entries;
            fail(item->entry, fault);
        }
    }
    return nullptr;
}

void Passage::note_key(const Entry &entry) {
    if (lists_ == Lists::apart &&
        std::exchange(used_in_, entry.position.input) != entry.position.input) {
        used_ = {};
    }
    const EntryKey &key = entry.key;
    if (key.acl && key.sequence && !used_.insert(*key.acl, *key.sequence)) {
        throw DataError("", "a second entry of this sequence number");
    }
    if (used_.lists() > max_lists) {
        throw StreamError("", too_many_lists());
    }
}

void Passage::fail(const Entry &entry, const DataError &fault) {
    ++tally_.errors;
    over_ = !on_fault_(entry, fault) || over_;
}

} // namespace aceconv
