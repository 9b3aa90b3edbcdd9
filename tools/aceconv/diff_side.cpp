#include "tools/aceconv/diff_side.h"

#include "stream/errors.h"

namespace aceconv::tool {

DiffSide::DiffSide(Which which, const CommonOptions &common, const InputOptions &options,
                   bool losses_wanted, ListNames &names)
    : which_(which), names_(names), run_(common, options, "-", Lists::joined) {
    if (run_.several()) {
        throw UsageError(options.paths.front() + " is a folder; diff compares two files");
    }
    const auto encode = [view = RecordView(run_.descriptor()),
                         losses_wanted](Codec &codec, Entry &entry, Product &product) {
        encode_to_compare({codec, view, losses_wanted}, entry, product);
    };
    run_.begin(encode, (common.jobs + 1) / 2, [this](const Entry &entry, const DataError &fault) {
        const ComparedKey bad = key_of(entry);
        bad_.insert(bad);
        bad_lists_[0].insert(bad.acl);
        if (!bad.sequence) {
            bad_lists_[1].insert(bad.acl);
        }
        whole_ = whole_ && dynamic_cast<const StreamError *>(&fault) == nullptr;
    });
}

EntryStream::Item *DiffSide::next(LossAccount &account) {
    EntryStream::Item *item = run_.next();
    if (item != nullptr) {
        key_ = key_of(item->entry);
        account.add(run_.file(), item->entry, item->product);
    }
    return item;
}

bool DiffSide::may_have_bad(const std::optional<std::string> &acl, bool any) const {
    const auto &lists = bad_lists_[any ? 0 : 1];
    return lists.contains(std::nullopt) || lists.contains(acl);
}

std::vector<std::string> DiffSide::missing() {
    for (const EmptyList &list : run_.empty_lists()) {
        names_.see(which_, list.acl);
    }
    return whole_ ? names_.missing(which_) : std::vector<std::string>();
}

ComparedKey DiffSide::key_of(const Entry &entry) {
    names_.see(which_, entry.key.acl);
    ComparedKey key = {names_.compared(which_, entry.key.acl), entry.key.sequence, 0};
    if (!key.acl || !key.sequence) {
        key.place = ++unnamed_[{key.acl, key.sequence}];
    }
    return key;
}

} // namespace aceconv::tool
