// What descriptors and encodings contain, for those who show records.

#include <utility>

#include "host/bag/cbor_item.h"
#include "host/bag/definition.h"
#include "host/bag_library.h"
#include "host/error.h"

namespace aceconv {
namespace {

void list_members(const RecordType &type, const std::string &prefix, std::size_t base,
                  std::vector<BagMember> &list) {
    for (std::size_t i = 0; i < type.members.size(); ++i) {
        const Member &member = type.members[i];
        std::string name = prefix + type.names[i];
        const std::size_t offset = base + member.offset;
        if (member.kind == MemberKind::record) {
            list_members(*member.type, name + ".", offset, list);
        } else {
            list.push_back({std::move(name), type.spellings[i], offset, member.width});
        }
    }
}

using What = BagPart::What;

/// Goes through an encoding that has been decoded before.
class Parts {
  public:
    explicit Parts(std::span<const std::uint8_t> encoding) : encoding_(encoding) {}

    std::vector<BagPart> take(const RecordType &record) {
        add(What::array, 0);
        add(What::type_name, 1);
        add(What::fingerprint, 1);
        add_members(record, What::members, "", 1);
        return std::move(parts_);
    }

  private:
    Item next() {
        Item item{};
        if (read_item(encoding_.subspan(at_), item) != ItemStatus::ok ||
            item.size > encoding_.size() - at_) {
            throw DataError("", "byte " + std::to_string(at_) + ": not a CBOR item");
        }
        at_ += item.size;
        return item;
    }

    BagPart &add(What what, unsigned depth) {
        const std::size_t offset = at_;
        const Item item = next();
        return parts_.emplace_back(
            BagPart{what, depth, offset, item.size, 0, "", 0, item.kind, item.value});
    }

    /// The pairs of a map whose head has been read.
    void add_pairs(std::uint64_t count, const RecordType &type, const std::string &prefix,
                   unsigned depth) {
        for (; count > 0; --count) {
            const std::size_t offset = at_;
            const Item key = next();
            if (key.value >= type.members.size()) {
                throw DataError("", "byte " + std::to_string(offset) + ": no member's index");
            }
            const Member &member = type.members[key.value];
            const std::string name = prefix + type.names[key.value];
            BagPart &part = add(What::member, depth);
            part.offset = offset;
            part.size += key.size;
            part.index = key.value;
            part.index_size = key.size;
            part.member = name;
            const std::uint64_t held = part.value;
            if (member.kind == MemberKind::record) {
                add_pairs(held, *member.type, name + ".", depth + 1);
            } else if (member.kind == MemberKind::array) {
                for (std::uint64_t i = 0; i < held; ++i) {
                    add_members(*member.type, What::element, "", depth + 1);
                }
            }
        }
    }

    void add_members(const RecordType &type, What what, const std::string &prefix, unsigned depth) {
        const std::uint64_t count = add(what, depth).value;
        add_pairs(count, type, prefix, depth + 1);
    }

    const std::span<const std::uint8_t> encoding_;
    std::size_t at_ = 0;
    std::vector<BagPart> parts_;
};

} // namespace

std::vector<BagMember> bag_members(const bag_descriptor &descriptor) {
    const auto definition = compile_descriptor(descriptor);
    std::vector<BagMember> list;
    list_members(definition->types.front(), "", 0, list);
    return list;
}

std::vector<BagPart> bag_parts(const bag_descriptor &descriptor,
                               std::span<const std::uint8_t> encoding) {
    const bag_definition *definition = find_definition(&descriptor);
    if (definition == nullptr) {
        throw DataError("", "the type is not registered");
    }
    return Parts(encoding).take(definition->types.front());
}

std::string bag_fingerprint(const bag_descriptor &descriptor) {
    return fingerprint_text(compile_descriptor(descriptor)->fingerprint);
}

} // namespace aceconv
