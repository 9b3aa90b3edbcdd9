/* The functions of aceconv/host/bag.h, for the one type of the plug-in. An encoding
 * is the record's memory, the lengths of the blocks that its pointers show, and those
 * blocks. It stays on machines of one kind.
 *
 * out_a is a uint8_t **, which gets a block from malloc, out_b a uint32_t *, which
 * gets its length. */
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include "tree.h"

typedef ipv4_acl_config_ace record_type;

/* Where the record has its pointers: strings, and last the elements. */
#define AT(member) offsetof(record_type, member)
static const size_t pointers[] = {
    AT(vrf1),         AT(vrf2),        AT(vrf3),        AT(track1),       AT(track2),
    AT(track3),       AT(net_src_obj), AT(net_dst_obj), AT(port_src_obj), AT(port_dst_obj),
    AT(counter_name), AT(remark),      AT(SequenceStr), AT(UDF.elements)};
enum { block_count = sizeof pointers / sizeof *pointers, elements = block_count - 1 };
#define BLOCK(record, i) (*(void **)((char *)(record) + pointers[i]))

typedef struct head {
    record_type record;            /* with null for its pointers */
    uint32_t lengths[block_count]; /* with the NUL of a string; 0 for a null pointer */
} head;

static size_t length_of(const record_type *record, size_t i) {
    return i == elements              ? record->UDF.count * sizeof *record->UDF.elements
           : BLOCK(record, i) != NULL ? strlen(BLOCK(record, i)) + 1
                                      : 0;
}

struct bag_definition {
    const bag_descriptor *descriptor;
};
static const bag_descriptor *pending;
static bag_definition registered;

uint32_t bag_register_start(void) {
    pending = NULL;
    return 0;
}
uint32_t bag_register(const bag_descriptor *descriptor) {
    if (strcmp(descriptor->type_name, "ipv4_acl_config_ace") != 0 ||
        descriptor->layouts[0].size != sizeof(record_type)) {
        return HOST_UNKNOWN_TYPE;
    }
    pending = descriptor;
    return 0;
}
uint32_t bag_register_abort(void) {
    return bag_register_start();
}
uint32_t bag_register_end(void) {
    registered.descriptor = pending;
    return 0;
}

uint32_t bag_definition_init(const bag_descriptor *descriptor, bag_definition **definition) {
    *definition = &registered;
    return descriptor == registered.descriptor ? 0 : HOST_UNKNOWN_TYPE;
}
void bag_definition_free(bag_definition *definition) {
    (void)definition; /* there is but one, for all threads */
}

uint32_t bag_encode_v3(void *out_a, void *out_b, const void *record, bag_definition *definition,
                       uint32_t mode) {
    (void)definition, (void)mode;
    head start;
    size_t total = sizeof start;
    memcpy(&start.record, record, sizeof start.record);
    for (size_t i = 0; i < block_count; ++i) {
        const size_t length = length_of(record, i);
        if (length > UINT32_MAX - total || (length != 0 && BLOCK(record, i) == NULL)) {
            return HOST_WRONG_VALUE; /* too long, or counted and not there */
        }
        start.lengths[i] = (uint32_t)length;
        total += length;
        BLOCK(&start.record, i) = NULL;
    }
    uint8_t *encoded = malloc(total);
    if (encoded == NULL) {
        return HOST_NO_MEMORY;
    }
    uint8_t *at = encoded + sizeof start;
    memcpy(encoded, &start, sizeof start);
    for (size_t i = 0; i < block_count; at += start.lengths[i++]) {
        if (start.lengths[i] != 0) {
            memcpy(at, BLOCK(record, i), start.lengths[i]);
        }
    }
    *(uint8_t **)out_a = encoded;
    *(uint32_t *)out_b = (uint32_t)total;
    return 0;
}

/* Gives the record the block of these bytes, if they are one. */
static uint32_t decode_block(record_type *record, size_t i, const uint8_t *bytes, size_t length) {
    if (i == elements ? length_of(record, i) != length
                      : length != 0 && memchr(bytes, '\0', length) != bytes + length - 1) {
        return HOST_BAD_ENCODING;
    }
    if (length != 0) {
        BLOCK(record, i) = malloc(length);
        if (BLOCK(record, i) == NULL) {
            return HOST_NO_MEMORY;
        }
        memcpy(BLOCK(record, i), bytes, length);
    }
    return 0;
}

uint32_t bag_decode(const uint8_t *encoded, uint32_t length, void *record,
                    const bag_descriptor *descriptor) {
    head start;
    if (length < sizeof start) {
        return HOST_BAD_ENCODING;
    }
    memcpy(&start, encoded, sizeof start);
    memcpy(record, &start.record, sizeof start.record);
    for (size_t i = 0; i < block_count; ++i) {
        BLOCK(record, i) = NULL; /* whatever the bytes hold there */
    }
    size_t at = sizeof start;
    uint32_t status = 0;
    for (size_t i = 0; i < block_count && status == 0; at += start.lengths[i++]) {
        status = length - at < start.lengths[i]
                     ? HOST_BAD_ENCODING
                     : decode_block(record, i, encoded + at, start.lengths[i]);
    }
    if (status == 0 && at == length) {
        return 0;
    }
    bag_free_indirections(record, descriptor);
    return status != 0 ? status : HOST_BAD_ENCODING;
}
uint32_t bag_decode_v3(const uint8_t *encoded, uint32_t length, void *record,
                       bag_definition *definition, uint32_t mode) {
    (void)mode;
    return bag_decode(encoded, length, record, definition->descriptor);
}

void bag_free_indirections(void *record, const bag_descriptor *descriptor) {
    (void)descriptor;
    for (size_t i = 0; i < block_count; ++i) {
        free(BLOCK(record, i));
        BLOCK(record, i) = NULL;
    }
}
