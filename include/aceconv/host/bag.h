/* Bag library: registration, encoding and decoding of described records, as a
 * host supplies them.
 *
 * (1) Status: 0 is success; other codes are the host's own and are passed on
 *     unchanged.
 * (2) A record is plain memory laid out as its descriptor says. Strings and
 *     the elements of counted arrays are separate blocks from malloc, owned by
 *     the record and released by bag_free_indirections alone.
 * (3) Descriptors are constant and outlive every call.
 * (4) Registration happens once, before any conversion; the other functions
 *     may then run concurrently.
 */
#ifndef ACECONV_HOST_BAG_H
#define ACECONV_HOST_BAG_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The byte layout of one type of a description: one row a type. */
typedef struct bag_layout {
    uint64_t tag;            /* first row: how many rows follow; others: the type's $number */
    uint64_t size;           /* bytes of one element of the type */
    const uint64_t *offsets; /* byte offsets in description order; a counted array
                                has two, its 32-bit count and its element pointer */
} bag_layout;

/* A bag type, 56 bytes. The words are handed to the platform as they stand. */
typedef struct bag_descriptor {
    uint64_t word_0; /* 1 */
    const char *type_name;
    uint32_t word_16; /* 5 */
    uint32_t word_20; /* 1 */
    const char *library_name;
    const bag_layout *layouts;     /* the record's row, then its sub-records' */
    const char *long_description;  /* "$n={name}type...;" a type, the record first */
    const char *short_description; /* the same without the names */
} bag_descriptor;

typedef struct bag_definition bag_definition; /* a description made ready for use */

/* Registration: start, one bag_register a type, then end, or abort when a
 * bag_register failed. */
uint32_t bag_register_start(void);
uint32_t bag_register(const bag_descriptor *descriptor);
uint32_t bag_register_abort(void);
uint32_t bag_register_end(void);

/* Looks the type up. The caller sets `*definition` to null beforehand and frees
 * any handle that it finds there, also after a failure. */
uint32_t bag_definition_init(const bag_descriptor *descriptor, bag_definition **definition);
void bag_definition_free(bag_definition *definition);

/* Encodes `record`. `out_a` and `out_b` are the two output arguments of the
 * encoder, unchanged: what they point at is between the host and its callers.
 * `mode` is always 1. */
uint32_t bag_encode_v3(void *out_a, void *out_b, const void *record, bag_definition *definition,
                       uint32_t mode);

/* Decodes `length` bytes into `record`, which is not initialised beforehand: on
 * success every member has been set. On failure the record owns nothing.
 * `mode` is always 0. */
uint32_t bag_decode_v3(const uint8_t *encoded, uint32_t length, void *record,
                       bag_definition *definition, uint32_t mode);

/* The same from a descriptor, into a zero-filled record. */
uint32_t bag_decode(const uint8_t *encoded, uint32_t length, void *record,
                    const bag_descriptor *descriptor);

/* Releases every string and array block of `record` and clears its pointers.
 * Null pointers are allowed, also where an array's count is not zero. */
void bag_free_indirections(void *record, const bag_descriptor *descriptor);

#ifdef __cplusplus
}
#endif

#endif
