// Entries wait for their counterpart, so that inputs in one order are compared as they come.
#include <map>

#include "tools/aceconv/comparison.h"

namespace aceconv::tool {
namespace {

struct Waiting {
    EntryKey key;
    Position position;
    Schema schema;
    Bytes encoding;

    [[nodiscard]] ComparedEntry entry() const { return {key, position, schema, encoding}; }
};

class BySequence : public Matcher {
  public:
    explicit BySequence(Comparison &comparison) : comparison_(comparison) {}

    void take(Which which, const ComparedKey &key, const ComparedEntry &entry) override {
        auto &others = waiting_[which == Which::a ? 1 : 0];
        const auto other = others.find(key);
        if (other == others.end()) {
            waiting_[which == Which::a ? 0 : 1][key] = {
                entry.key, entry.position, entry.schema,
                Bytes(entry.encoding.begin(), entry.encoding.end())};
            return;
        }
        if (which == Which::a) {
            comparison_.pair(entry, other->second.entry());
        } else {
            comparison_.pair(other->second.entry(), entry);
        }
        others.erase(other);
    }

    void finish() override {
        for (const Which which : {Which::a, Which::b}) {
            const DiffSide &other = comparison_.side(which == Which::a ? Which::b : Which::a);
            for (const auto &[key, entry] : waiting_[static_cast<int>(which)]) {
                if (other.whole() && !other.has_bad(key)) {
                    comparison_.only_in(which, entry.entry(),
                                        key.sequence && other.may_have_bad(key.acl, false));
                }
            }
        }
    }

  private:
    Comparison &comparison_;
    std::map<ComparedKey, Waiting> waiting_[2];
};

} // namespace

std::unique_ptr<Matcher> match_by_sequence(Comparison &comparison) {
    return std::make_unique<BySequence>(comparison);
}

} // namespace aceconv::tool
