// The recording host's bag library, debug controls and bounded append.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "recording_host.h"

struct bag_definition {
    const bag_descriptor *descriptor;
};

namespace {

using aceconv::test::Call;
using aceconv::test::Host;
using aceconv::test::Record;

void check(Host &host, bool holds, const char *what) {
    if (!holds) {
        host.faults.emplace_back(what);
    }
}

template <typename Visit>
void each_string(Record &record, Visit visit) {
    for (const aceconv::test::Member &row : aceconv::test::members()) {
        if (row.kind == 's') {
            visit(*reinterpret_cast<char **>(reinterpret_cast<char *>(&record) + row.offset));
        }
    }
}

// A copy of `from` whose blocks the record owns.
void deliver(Host &host, const Record &from, Record &to) {
    to = from;
    each_string(to, [&host](char *&text) {
        if (text != nullptr) {
            const size_t size = std::strlen(text) + 1;
            text = static_cast<char *>(std::memcpy(host.allocate(size), text, size));
        }
    });
    if (to.UDF.elements != nullptr) {
        const size_t size = to.UDF.count * sizeof(ace_udf_element);
        to.UDF.elements = static_cast<ace_udf_element *>(
            std::memcpy(host.allocate(size), from.UDF.elements, size));
    }
}

} // namespace

uint32_t bag_register_start(void) {
    return Call("start").failure;
}
uint32_t bag_register_abort(void) {
    return Call("abort").failure;
}
uint32_t bag_register_end(void) {
    return Call("end").failure;
}

uint32_t bag_register(const bag_descriptor *descriptor) {
    const Call call("register");
    check(call.host, descriptor == ipv4_acl_config_ace_bag_getfn(), "register: another descriptor");
    return call.failure;
}

uint32_t bag_definition_init(const bag_descriptor *descriptor, bag_definition **definition) {
    const Call call("init");
    check(call.host, descriptor == ipv4_acl_config_ace_bag_getfn(), "init: another descriptor");
    check(call.host, *definition == nullptr, "init: handle not cleared");
    if (call.failure == 0 || call.host.handle_on_failure) {
        *definition = new bag_definition{descriptor};
        ++call.host.created;
    }
    return call.failure;
}

void bag_definition_free(bag_definition *definition) {
    const Call call("undefine", false);
    check(call.host, definition != nullptr, "undefine: null");
    --call.host.created;
    delete definition;
}

uint32_t bag_encode_v3(void *out_a, void *out_b, const void *record, bag_definition *definition,
                       uint32_t mode) {
    const Call call("encode");
    check(call.host,
          out_a == call.host.out_a() && out_b == call.host.out_b() && mode == 1 &&
              definition->descriptor == ipv4_acl_config_ace_bag_getfn(),
          "encode: arguments");
    call.host.encoded = aceconv::test::record_text(*static_cast<const Record *>(record));
    return call.failure;
}

uint32_t bag_decode_v3(const uint8_t *encoded, uint32_t length, void *record,
                       bag_definition *definition, uint32_t mode) {
    const Call call("decode");
    check(call.host,
          encoded == call.host.buffer() && length == 7 && mode == 0 &&
              definition->descriptor == ipv4_acl_config_ace_bag_getfn(),
          "decode: arguments");
    if (call.failure != 0) {
        std::memset(record, 0xA5, sizeof(Record)); // nothing of it may be used
    } else {
        deliver(call.host, *call.host.decoded, *static_cast<Record *>(record));
    }
    return call.failure;
}

uint32_t bag_decode(const uint8_t *encoded, uint32_t length, void *record,
                    const bag_descriptor *descriptor) {
    const Call call("stored");
    const char *bytes = static_cast<const char *>(record);
    check(call.host,
          encoded == call.host.buffer() && length == 9 &&
              descriptor == ipv4_acl_config_ace_bag_getfn(),
          "stored: arguments");
    check(call.host, std::all_of(bytes, bytes + sizeof(Record), [](char c) { return c == 0; }),
          "stored: record not zero-filled");
    if (call.failure != 0) {
        std::memset(record, 0xA5, sizeof(Record));
    } else {
        const aceconv::test::Given given = aceconv::test::parse_record(call.host.stored);
        deliver(call.host, given.record, *static_cast<Record *>(record));
    }
    return call.failure;
}

void bag_free_indirections(void *record, const bag_descriptor *descriptor) {
    const Call call("release", false);
    check(call.host, descriptor == ipv4_acl_config_ace_bag_getfn(), "release: another descriptor");
    Record &owner = *static_cast<Record *>(record);
    call.host.released = aceconv::test::record_text(owner);
    each_string(owner, [&call](char *&text) {
        call.host.release(text);
        text = nullptr;
    });
    call.host.release(owner.UDF.elements);
    owner.UDF.elements = nullptr;
}

const ipv4_acl_debug_event *ipv4_acl_debug_get_dll_event_type(uint32_t event_type) {
    const Call call("event" + std::to_string(event_type), false);
    return call.host.debug_event();
}

const uint32_t *ipv4_acl_get_dll_func_regexec(void) {
    return &Call("flag", false).host.filter_flag;
}

regex_t *const *ipv4_acl_get_dll_func_regexp(void) {
    return &Call("expression", false).host.filter_expression;
}

void buginf(const ipv4_acl_debug_event *event, uint32_t zero, uint32_t one, const char *format,
            ...) {
    const Call call("trace", false);
    check(call.host, event == call.host.debug_event() && zero == 0 && one == 1, "trace: arguments");
    char line[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    call.host.traces.emplace_back(line);
}

void __strncat_to_buf(size_t size, char *text, const char *piece, size_t room) {
    const Host::Inside outside(false);
    Host &host = *Host::current();
    check(host, size == 2080 && room == 2079 - std::strlen(text) && std::strlen(piece) <= room,
          "append: arguments");
    std::strncat(text, piece, room);
    if (++host.appends == host.append_call) {
        std::memset(text + std::strlen(text), '.', host.append_length - std::strlen(text));
        text[host.append_length] = '\0';
    }
}
