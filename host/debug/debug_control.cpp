#include "host/debug_control.h"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

#include "aceconv/host/debug.h"

namespace aceconv {
namespace {

constexpr std::uint32_t trace_event_type = 2;

ipv4_acl_debug_event trace_event{};
std::uint32_t filter_set = 0;
regex_t *compiled_filter = nullptr; // owned

void drop_filter() {
    filter_set = 0;
    if (compiled_filter != nullptr) {
        regfree(compiled_filter);
    }
    delete compiled_filter;
    compiled_filter = nullptr;
}

} // namespace

void enable_trace(const std::optional<std::string> &filter) {
    if (filter) {
        auto compiled = std::make_unique<regex_t>();
        const int error = regcomp(compiled.get(), filter->c_str(), REG_EXTENDED | REG_NOSUB);
        if (error != 0) {
            std::array<char, 200> why{};
            regerror(error, compiled.get(), why.data(), why.size());
            throw std::invalid_argument("trace filter \"" + *filter + "\": " + why.data());
        }
        drop_filter();
        compiled_filter = compiled.release();
        filter_set = 1;
    } else {
        drop_filter();
    }
    trace_event.enabled = 1;
}

void disable_trace() {
    trace_event.enabled = 0;
    drop_filter();
}

} // namespace aceconv

using namespace aceconv;

const ipv4_acl_debug_event *ipv4_acl_debug_get_dll_event_type(uint32_t event_type) {
    return event_type == trace_event_type ? &trace_event : nullptr;
}

const uint32_t *ipv4_acl_get_dll_func_regexec(void) {
    return &filter_set;
}

regex_t *const *ipv4_acl_get_dll_func_regexp(void) {
    return &compiled_filter;
}

void buginf(const ipv4_acl_debug_event * /*event*/, uint32_t /*zero*/, uint32_t /*one*/,
            const char *format, ...) {
    std::array<char, 4096> line;
    constexpr std::string_view cut_mark = "...";
    va_list arguments;
    va_start(arguments, format);
    const int printed = std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    if (printed < 0) {
        return;
    }
    auto length = static_cast<std::size_t>(printed);
    if (length >= line.size()) {
        length = line.size() - 1;
        cut_mark.copy(line.data() + length - cut_mark.size(), cut_mark.size());
    }
    // Data may hold line ends and terminal controls; a trace line is one line.
    for (std::size_t i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(line[i]) < ' ' || line[i] == '\x7F') {
            line[i] = '?';
        }
    }
    line[length++] = '\n';
    // One write, so that lines of several threads do not mix.
    while (write(STDERR_FILENO, line.data(), length) < 0 && errno == EINTR) {
    }
}
