// The emitters of aceconv/host/yang_access.h, for any backend.
#include <new>

#include "host/platform/backend.h"
#include "host/utf8.h"

using aceconv::SchemaNode;
using aceconv::Value;
using aceconv::ValueKind;
using aceconv::YangStatus;

namespace {

const ccv_yang_keyword *find(const ccv_yang_keyword *table, std::uint32_t value) {
    for (const ccv_yang_keyword *row = table; row->name != nullptr; ++row) {
        if (row->value == value) {
            return row;
        }
    }
    return nullptr;
}

std::string no_row(ccv_yang_output *output, const char *name, std::uint32_t value) {
    const SchemaNode *leaf = output->peek(name);
    return "no name stands for " + std::to_string(value) +
           (leaf == nullptr ? "" : "; expected " + expected(*leaf));
}

/// Runs one emitter call. Exceptions must not reach the plug-in.
template <class Call>
std::uint32_t emit(ccv_yang_output *output, Call call) {
    try {
        return call();
    } catch (const std::bad_alloc &) {
        return output->fail(YangStatus::no_memory, nullptr, {});
    }
}

std::uint32_t emit_leaf(ccv_yang_output *output, const char *name, const Value &value) {
    return emit(output, [&] { return output->leaf(name, value); });
}

} // namespace

std::uint32_t ccv_yang_container_begin(ccv_yang_output *output, const char *name) {
    return emit(output, [&] { return output->container_begin(name); });
}

std::uint32_t ccv_yang_container_end(ccv_yang_output *output) {
    return emit(output, [&] { return output->container_end(); });
}

std::uint32_t ccv_yang_presence(ccv_yang_output *output) {
    return emit(output, [&] { return output->presence(); });
}

std::uint32_t ccv_yang_list_begin(ccv_yang_output *output, const char *name) {
    return emit(output, [&] { return output->list_begin(name); });
}

std::uint32_t ccv_yang_list_entry_begin(ccv_yang_output *output, const char *name,
                                        std::uint32_t keys) {
    return emit(output, [&] { return output->list_entry_begin(name, keys); });
}

std::uint32_t ccv_yang_list_entry_end(ccv_yang_output *output) {
    return emit(output, [&] { return output->list_entry_end(); });
}

std::uint32_t ccv_yang_list_end(ccv_yang_output *output) {
    return emit(output, [&] { return output->list_end(); });
}

std::uint32_t ccv_yang_enum(ccv_yang_output *output, const char *name,
                            const ccv_yang_keyword *table, std::uint32_t value) {
    const ccv_yang_keyword *row = find(table, value);
    if (row == nullptr) {
        return emit(output, [&] {
            return output->fail(YangStatus::no_keyword, name, no_row(output, name, value));
        });
    }
    return emit_leaf(output, name, {.kind = ValueKind::name, .text = row->name});
}

std::uint32_t ccv_yang_enum_or_uint32(ccv_yang_output *output, const char *name,
                                      const ccv_yang_keyword *table, std::uint32_t value) {
    const ccv_yang_keyword *row = find(table, value);
    return emit_leaf(output, name,
                     row != nullptr ? Value{.kind = ValueKind::name, .text = row->name}
                                    : Value{.kind = ValueKind::number, .number = value});
}

std::uint32_t ccv_yang_bits(ccv_yang_output *output, const char *name,
                            const ccv_yang_keyword *table, std::uint32_t bits) {
    return emit(output, [&] {
        std::string names;
        std::uint32_t left = bits;
        for (const ccv_yang_keyword *row = table; row->name != nullptr; ++row) {
            const std::uint32_t bit = row->value > 31 ? 0 : std::uint32_t{1} << row->value;
            if ((left & bit) != 0) {
                left &= ~bit;
                names += names.empty() ? "" : " ";
                names += row->name;
            }
        }
        if (left != 0) {
            return output->fail(YangStatus::no_keyword, name, no_row(output, name, bits));
        }
        return output->leaf(name, {.kind = ValueKind::bits, .text = names});
    });
}

std::uint32_t ccv_yang_uint32(ccv_yang_output *output, const char *name, std::uint32_t value) {
    return emit_leaf(output, name, {.kind = ValueKind::number, .number = value});
}

std::uint32_t ccv_yang_bool(ccv_yang_output *output, const char *name, std::uint32_t value) {
    return emit_leaf(output, name, {.kind = ValueKind::boolean, .number = value != 0 ? 1U : 0U});
}

std::uint32_t ccv_yang_ipv4(ccv_yang_output *output, const char *name, std::uint32_t address) {
    return emit_leaf(output, name, {.kind = ValueKind::ipv4, .number = address});
}

std::uint32_t ccv_yang_string(ccv_yang_output *output, const char *name, const char *text) {
    const char *fault = text == nullptr ? "the entry marks a text that it does not hold"
                                        : aceconv::text_fault(text);
    if (fault != nullptr) {
        return emit(output, [&] { return output->fail(YangStatus::bad_text, name, fault); });
    }
    return emit_leaf(output, name, {.kind = ValueKind::text, .text = text});
}

std::uint32_t ccv_yang_empty(ccv_yang_output *output, const char *name) {
    return emit_leaf(output, name, {.kind = ValueKind::empty});
}
