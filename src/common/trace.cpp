#include "common/trace.h"

namespace ace {

namespace {

constexpr std::uint32_t event_type = 2;
constexpr std::uintptr_t lowest_handle = 4096; // below it: no such event type

} // namespace

// The cheap tests come first: the expression runs only for an event type that
// is switched on.
const ipv4_acl_debug_event *trace_event(const char *function) {
    const ipv4_acl_debug_event *event = ipv4_acl_debug_get_dll_event_type(event_type);
    if (reinterpret_cast<std::uintptr_t>(event) < lowest_handle || event->enabled == 0) {
        return nullptr;
    }
    if (*ipv4_acl_get_dll_func_regexec() != 0 &&
        regexec(*ipv4_acl_get_dll_func_regexp(), function, 0, nullptr, 0) != 0) {
        return nullptr;
    }
    return event;
}

} // namespace ace
