#include "bench/minimal_host.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "aceconv/host/bag.h"
#include "aceconv/host/bounded_append.h"
#include "aceconv/host/debug.h"

struct ccv_yang_iter {
    ccv_yang_node *entry;
    bool walked;
    std::size_t depth;
    std::array<ccv_yang_node *, 8> level; // where each level stands
};

struct bag_definition {};

namespace aceconv::bench {
namespace {

ccv_yang_iter the_iterator;
bag_definition the_definition;

// Blocks of kept encodings. Records that are decoded from them borrow these
// blocks, and bag_free_indirections tells them apart by their address.
alignas(std::max_align_t) std::array<char, 16384> arena;
std::size_t arena_used = 0;

bool in_arena(const void *block) {
    const char *p = static_cast<const char *>(block);
    return p >= arena.data() && p < arena.data() + arena.size();
}

void *arena_copy(const void *block, std::size_t size) {
    const std::size_t rounded = (size + 7) / 8 * 8;
    if (arena.size() - arena_used < rounded) {
        std::abort();
    }
    void *copy = arena.data() + arena_used;
    arena_used += rounded;
    return std::memcpy(copy, block, size);
}

constexpr std::array string_members = {
    &ipv4_acl_config_ace::vrf1,         &ipv4_acl_config_ace::vrf2,
    &ipv4_acl_config_ace::vrf3,         &ipv4_acl_config_ace::track1,
    &ipv4_acl_config_ace::track2,       &ipv4_acl_config_ace::track3,
    &ipv4_acl_config_ace::net_src_obj,  &ipv4_acl_config_ace::net_dst_obj,
    &ipv4_acl_config_ace::port_src_obj, &ipv4_acl_config_ace::port_dst_obj,
    &ipv4_acl_config_ace::counter_name, &ipv4_acl_config_ace::remark,
    &ipv4_acl_config_ace::SequenceStr};

void keep_blocks(ipv4_acl_config_ace &record) {
    for (const auto member : string_members) {
        if (char *&text = record.*member; text != nullptr) {
            text = static_cast<char *>(arena_copy(text, std::strlen(text) + 1));
        }
    }
    if (record.UDF.elements != nullptr) {
        record.UDF.elements = static_cast<ace_udf_element *>(
            arena_copy(record.UDF.elements, record.UDF.count * sizeof(ace_udf_element)));
    }
}

template <class T>
void release(T *&block) {
    if (block != nullptr && !in_arena(block)) {
        std::free(block);
    }
    block = nullptr;
}

std::uint32_t count(ccv_yang_output *output, std::uint32_t value) {
    ++output->calls;
    output->sum += value;
    return 0;
}

} // namespace

ccv_yang_node *Forest::leaf(const char *name, std::uint32_t value) {
    return &nodes_.emplace_back(ccv_yang_node{.name = name, .value = value});
}

ccv_yang_node *Forest::text(const char *name, const char *text) {
    return &nodes_.emplace_back(ccv_yang_node{
        .name = name,
        .text = text,
        .text_size = static_cast<std::uint32_t>(std::strlen(text) + 1),
    });
}

ccv_yang_node *Forest::group(const char *name, std::initializer_list<ccv_yang_node *> children) {
    ccv_yang_node *parent = leaf(name);
    ccv_yang_node **link = &parent->first_child;
    for (ccv_yang_node *child : children) {
        *link = child;
        link = &child->next;
    }
    parent->children = static_cast<std::uint32_t>(children.size());
    return parent;
}

} // namespace aceconv::bench

using namespace aceconv::bench;

extern "C" {

// ---- Iterator ----

uint32_t ccv_yang_iter_create(ccv_yang_node *node, ccv_yang_iter **iterator) {
    the_iterator.entry = node;
    the_iterator.walked = false;
    the_iterator.depth = 0;
    *iterator = &the_iterator;
    return 0;
}

int32_t ccv_yang_iter_is_active(ccv_yang_iter *iterator) {
    return iterator->walked ? 0 : 1;
}

void ccv_yang_iter_first(uint32_t step, ccv_yang_iter *iterator, uint32_t *,
                         ccv_yang_node **current, int32_t *index) {
    const ccv_yang_node *parent = *current;
    if (step == CCV_YANG_STEP_ENTRY) {
        parent = iterator->entry;
        iterator->walked = true;
    } else {
        ++iterator->depth;
    }
    *current = iterator->level[iterator->depth] = parent->first_child;
    if (index != nullptr) {
        *index = 0;
    }
}

int32_t ccv_yang_iter_is_finished(uint32_t, ccv_yang_iter *iterator, uint32_t *) {
    return iterator->level[iterator->depth] == nullptr ? 1 : 0;
}

void ccv_yang_iter_next(ccv_yang_iter *iterator, uint32_t *, ccv_yang_node **current,
                        int32_t *index) {
    if (iterator->level[iterator->depth] == nullptr) {
        --iterator->depth;
    }
    ccv_yang_node *&at = iterator->level[iterator->depth];
    *current = at = at->next;
    if (index != nullptr) {
        ++*index;
    }
}

void ccv_yang_iter_destroy(ccv_yang_iter *) {}

// ---- Readers ----

const char *ccv_yang_get_node_name(ccv_yang_node *node) {
    return node->name;
}

uint32_t ccv_yang_get_enum(ccv_yang_node *node, const ccv_yang_keyword *, uint32_t *value) {
    *value = node->value;
    return 0;
}
uint32_t ccv_yang_get_enum_or_uint32(ccv_yang_node *node, const ccv_yang_keyword *,
                                     uint32_t *value) {
    *value = node->value;
    return 0;
}
uint32_t ccv_yang_get_bits(ccv_yang_node *node, const ccv_yang_keyword *, uint32_t *bits) {
    *bits = node->value;
    return 0;
}
uint32_t ccv_yang_get_uint8(ccv_yang_node *node, uint8_t *value) {
    *value = static_cast<uint8_t>(node->value);
    return 0;
}
uint32_t ccv_yang_get_uint16(ccv_yang_node *node, uint16_t *value) {
    *value = static_cast<uint16_t>(node->value);
    return 0;
}
uint32_t ccv_yang_get_uint32(ccv_yang_node *node, uint32_t *value) {
    *value = node->value;
    return 0;
}
uint32_t ccv_yang_get_bool(ccv_yang_node *node, uint32_t *value) {
    *value = node->value;
    return 0;
}
uint32_t ccv_yang_get_ipv4(ccv_yang_node *node, uint32_t *address) {
    *address = node->value;
    return 0;
}
uint32_t ccv_yang_get_string(ccv_yang_node *node, char **text) {
    char *copy = static_cast<char *>(std::malloc(node->text_size));
    if (copy == nullptr) {
        return 1;
    }
    *text = static_cast<char *>(std::memcpy(copy, node->text, node->text_size));
    return 0;
}
uint32_t ccv_yang_get_list_entry_count(ccv_yang_node *node, uint32_t *entries) {
    *entries = node->children;
    return 0;
}

// ---- Emitters ----

uint32_t ccv_yang_container_begin(ccv_yang_output *output, const char *) {
    return count(output, 0);
}
uint32_t ccv_yang_container_end(ccv_yang_output *output) {
    return count(output, 0);
}
uint32_t ccv_yang_presence(ccv_yang_output *output) {
    return count(output, 0);
}
uint32_t ccv_yang_list_begin(ccv_yang_output *output, const char *) {
    return count(output, 0);
}
uint32_t ccv_yang_list_entry_begin(ccv_yang_output *output, const char *, uint32_t) {
    return count(output, 0);
}
uint32_t ccv_yang_list_entry_end(ccv_yang_output *output) {
    return count(output, 0);
}
uint32_t ccv_yang_list_end(ccv_yang_output *output) {
    return count(output, 0);
}
uint32_t ccv_yang_enum(ccv_yang_output *output, const char *, const ccv_yang_keyword *,
                       uint32_t value) {
    return count(output, value);
}
uint32_t ccv_yang_enum_or_uint32(ccv_yang_output *output, const char *, const ccv_yang_keyword *,
                                 uint32_t value) {
    return count(output, value);
}
uint32_t ccv_yang_bits(ccv_yang_output *output, const char *, const ccv_yang_keyword *,
                       uint32_t bits) {
    return count(output, bits);
}
uint32_t ccv_yang_uint32(ccv_yang_output *output, const char *, uint32_t value) {
    return count(output, value);
}
uint32_t ccv_yang_bool(ccv_yang_output *output, const char *, uint32_t value) {
    return count(output, value);
}
uint32_t ccv_yang_ipv4(ccv_yang_output *output, const char *, uint32_t address) {
    return count(output, address);
}
uint32_t ccv_yang_string(ccv_yang_output *output, const char *, const char *text) {
    return count(output, static_cast<unsigned char>(text[0]));
}
uint32_t ccv_yang_empty(ccv_yang_output *output, const char *) {
    return count(output, 0);
}

// ---- Bags ----

uint32_t bag_register_start(void) {
    return 0;
}
uint32_t bag_register(const bag_descriptor *) {
    return 0;
}
uint32_t bag_register_abort(void) {
    return 0;
}
uint32_t bag_register_end(void) {
    return 0;
}

uint32_t bag_definition_init(const bag_descriptor *, bag_definition **definition) {
    *definition = &the_definition;
    return 0;
}
void bag_definition_free(bag_definition *) {}

uint32_t bag_encode_v3(void *out_a, void *, const void *record, bag_definition *, uint32_t) {
    Encoding *encoding = static_cast<Encoding *>(out_a);
    std::memcpy(&encoding->record, record, sizeof encoding->record);
    if (encoding->keep) {
        keep_blocks(encoding->record);
    }
    return 0;
}
uint32_t bag_decode_v3(const uint8_t *encoded, uint32_t length, void *record, bag_definition *,
                       uint32_t) {
    std::memcpy(record, encoded, length);
    return 0;
}
uint32_t bag_decode(const uint8_t *encoded, uint32_t length, void *record, const bag_descriptor *) {
    std::memcpy(record, encoded, length);
    return 0;
}
void bag_free_indirections(void *record, const bag_descriptor *) {
    ipv4_acl_config_ace &ace = *static_cast<ipv4_acl_config_ace *>(record);
    for (const auto member : string_members) {
        release(ace.*member);
    }
    release(ace.UDF.elements);
}

// ---- Debug: switched off ----

const ipv4_acl_debug_event *ipv4_acl_debug_get_dll_event_type(uint32_t) {
    return nullptr;
}
const uint32_t *ipv4_acl_get_dll_func_regexec(void) {
    static constexpr uint32_t no_filter = 0;
    return &no_filter;
}
regex_t *const *ipv4_acl_get_dll_func_regexp(void) {
    static regex_t *const none = nullptr;
    return &none;
}
void buginf(const ipv4_acl_debug_event *, uint32_t, uint32_t, const char *, ...) {}

// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
void __strncat_to_buf(size_t, char *text, const char *piece, size_t room) {
    text += std::strlen(text);
    const size_t length = strnlen(piece, room);
    std::memcpy(text, piece, length);
    text[length] = '\0';
}

} // extern "C"
