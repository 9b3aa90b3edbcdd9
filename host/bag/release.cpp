#include <cstdlib>
#include <cstring>
#include <exception>

#include "host/bag/definition.h"

namespace aceconv {

void release_blocks(const RecordType &type, std::uint8_t *record) noexcept {
    for (const OwnedBlock &owned : type.blocks) {
        std::uint8_t *block = nullptr;
        std::memcpy(&block, record + owned.address, sizeof block);
        if (block == nullptr) {
            continue;
        }
        if (owned.element != nullptr && !owned.element->blocks.empty()) {
            std::uint32_t count = 0;
            std::memcpy(&count, record + owned.count, sizeof count);
            for (std::size_t i = 0; i < count; ++i) {
                release_blocks(*owned.element, block + i * owned.element->size);
            }
        }
        std::free(block);
        block = nullptr;
        std::memcpy(record + owned.address, &block, sizeof block);
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
