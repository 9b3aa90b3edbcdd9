// The registered types. Registration is serialised; looking a type up reads a
// list that only grows, without a lock.

#include <atomic>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "host/bag/definition.h"
#include "host/bag/failure.h"
#include "host/error.h"

namespace aceconv {
namespace {

struct Registered {
    const bag_descriptor *descriptor;
    std::unique_ptr<bag_definition> definition;
    Registered *next;
};

std::atomic<Registered *> registered{nullptr}; // entries live as long as the process

struct Pending {
    std::mutex mutex;
    bool open = false;
    Registered *first = nullptr;

    void discard() noexcept {
        while (first != nullptr) {
            delete std::exchange(first, first->next);
        }
        open = false;
    }
};

Pending pending;

Registered *find_in(Registered *entry, const bag_descriptor *descriptor) noexcept {
    while (entry != nullptr && entry->descriptor != descriptor) {
        entry = entry->next;
    }
    return entry;
}

bool start() {
    const std::lock_guard lock(pending.mutex);
    if (pending.open) {
        return fail(BagStatus::not_registered, "a registration is already open");
    }
    pending.open = true;
    return true;
}

bool add(const bag_descriptor *descriptor) {
    const std::lock_guard lock(pending.mutex);
    if (!pending.open) {
        return fail(BagStatus::not_registered, "no registration is open");
    }
    if (descriptor == nullptr) {
        return fail(BagStatus::bad_description, "no descriptor");
    }
    try {
        auto definition = compile_descriptor(*descriptor);
        const Registered *known = find_in(pending.first, descriptor);
        if (known == nullptr) {
            known = find_in(registered.load(std::memory_order_acquire), descriptor);
        }
        if (known == nullptr) {
            pending.first = new Registered{descriptor, std::move(definition), pending.first};
        } else if (known->definition->fingerprint != definition->fingerprint) {
            return fail(BagStatus::bad_description,
                        "type %s: its descriptor has changed since it was registered",
                        descriptor->type_name);
        }
        return true;
    } catch (const DataError &error) {
        return fail(BagStatus::bad_description, "type %s: %s",
                    descriptor->type_name == nullptr ? "without a name" : descriptor->type_name,
                    error.what());
    } catch (const std::bad_alloc &) {
        return fail(BagStatus::no_memory, "no memory for a registration");
    }
}

bool abandon() {
    const std::lock_guard lock(pending.mutex);
    if (!pending.open) {
        return fail(BagStatus::not_registered, "no registration is open");
    }
    pending.discard();
    return true;
}

bool end() {
    const std::lock_guard lock(pending.mutex);
    if (!pending.open) {
        return fail(BagStatus::not_registered, "no registration is open");
    }
    while (pending.first != nullptr) {
        Registered *const entry = std::exchange(pending.first, pending.first->next);
        entry->next = registered.load(std::memory_order_relaxed);
        registered.store(entry, std::memory_order_release);
    }
    pending.open = false;
    return true;
}

bool look_up(const bag_descriptor *descriptor, bag_definition **definition) {
    *definition = find_definition(descriptor);
    if (*definition == nullptr) {
        return fail(BagStatus::not_registered, "the type is not registered");
    }
    return true;
}

} // namespace

bag_definition *find_definition(const bag_descriptor *descriptor) noexcept {
    const Registered *const entry = find_in(registered.load(std::memory_order_acquire), descriptor);
    return entry == nullptr ? nullptr : entry->definition.get();
}

} // namespace aceconv

using namespace aceconv;

uint32_t bag_register_start(void) {
    return finished(start());
}
uint32_t bag_register(const bag_descriptor *descriptor) {
    return finished(add(descriptor));
}
// Follows a failed bag_register, whose text stays.
uint32_t bag_register_abort(void) {
    return abandon() ? 0 : finished(false);
}
uint32_t bag_register_end(void) {
    return finished(end());
}

uint32_t bag_definition_init(const bag_descriptor *descriptor, bag_definition **definition) {
    return finished(look_up(descriptor, definition));
}

// Definitions belong to the registry; a handle owns nothing.
void bag_definition_free(bag_definition * /*definition*/) {}
