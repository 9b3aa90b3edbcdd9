#include <cstdlib>
#include <cstring>
#include <exception>

#include "host/bag/definition.h"

namespace aceconv {

void release_blocks(const RecordType &type, std::uint8_t *record) noexcept {
    for (const Member &member : type.owners) {
        std::uint8_t *const field = record + member.offset;
        if (member.kind == Kind::record) {
            release_blocks(*member.type, field);
            continue;
        }
        std::uint8_t *const slot = member.kind == Kind::array ? field + elements_pointer : field;
        std::uint8_t *block = nullptr;
        std::memcpy(&block, slot, sizeof block);
        if (block == nullptr)
            continue;
        if (member.kind == Kind::array && !member.type->owners.empty()) {
            std::uint32_t count = 0;
            std::memcpy(&count, field, sizeof count);
            for (std::size_t i = 0; i < count; ++i)
                release_blocks(*member.type, block + i * member.type->size);
        }
        std::free(block);
        block = nullptr;
        std::memcpy(slot, &block, sizeof block);
    }
}

} // namespace aceconv

using namespace aceconv;

void bag_free_indirections(void *record, const bag_descriptor *descriptor) {
    auto *const bytes = static_cast<std::uint8_t *>(record);
    if (const bag_definition *definition = find_definition(descriptor)) {
        release_blocks(definition->types.front(), bytes);
        return;
    }
    // A record can be filled before its type is found to be missing.
    try {
        release_blocks(compile_descriptor(*descriptor)->types.front(), bytes);
    } catch (const std::exception &) {
        return; // a record that nobody described cannot be walked
    }
}
