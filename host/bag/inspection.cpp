// What descriptors contain, for those who show records.

#include <utility>

#include "host/bag/definition.h"
#include "host/bag_library.h"

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

} // namespace

std::vector<BagMember> bag_members(const bag_descriptor &descriptor) {
    const auto definition = compile_descriptor(descriptor);
    std::vector<BagMember> list;
    list_members(definition->types.front(), "", 0, list);
    return list;
}

std::string bag_fingerprint(const bag_descriptor &descriptor) {
    return fingerprint_text(compile_descriptor(descriptor)->fingerprint);
}

} // namespace aceconv
