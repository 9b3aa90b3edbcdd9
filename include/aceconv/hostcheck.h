/* What a host exports beside the functions of aceconv/host/ to be checked by
 * aceconv-hostcheck: how to hand it a tree, and how to see what it was given.
 * No converter calls these functions; a host may leave them out of what it ships.
 *
 * (1) Trees are rows in the order of the data, a node in front of its children.
 * (2) Rows and their text belong to whoever hands them over and are valid only
 *     during the call.
 * (3) Values are text in YANG's canonical form: "80", "www", "fin syn", "true",
 *     "192.0.2.1", "" for the type empty.
 * (4) All instances of a list are rows below one row of form HOSTCHECK_LIST.
 */
#ifndef ACECONV_HOSTCHECK_H
#define ACECONV_HOSTCHECK_H

#include <stdint.h>

#include "aceconv/host/yang_access.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum hostcheck_form {
    HOSTCHECK_CONTAINER,
    HOSTCHECK_LIST,
    HOSTCHECK_LIST_ENTRY,
    /* Leaves. A host that shows rows may give any of these for any leaf. */
    HOSTCHECK_NAME,
    HOSTCHECK_NUMBER,
    HOSTCHECK_BITS,
    HOSTCHECK_BOOLEAN,
    HOSTCHECK_ADDRESS,
    HOSTCHECK_STRING,
    HOSTCHECK_EMPTY
} hostcheck_form;

typedef struct hostcheck_row {
    uint32_t depth; /* 0 for the children of the entry */
    hostcheck_form form;
    const char *name;  /* without prefix; null ends an array of rows */
    const char *value; /* of a leaf, else null */
} hostcheck_row;

typedef enum hostcheck_schema { HOSTCHECK_BASE, HOSTCHECK_UM } hostcheck_schema;

/* An entry of these rows, the first of them its sequence number, to be handed to
 * ccv_yang_iter_create and the encoders. Null when the host refuses the rows: some hold values
 * outside their type, and a host that checks types on the way in need not let its readers see them.
 */
ccv_yang_node *hostcheck_tree_create(hostcheck_schema schema, const hostcheck_row *rows);
void hostcheck_tree_free(ccv_yang_node *entry);

/* An empty output, to be handed to the emitters and the decoders. */
ccv_yang_output *hostcheck_output_create(hostcheck_schema schema);
/* The first failure of an emitter, which the host has kept; 0 without one. */
uint32_t hostcheck_output_status(ccv_yang_output *output);
/* Calls `show` for every node that has been written, in order. Containers that
 * are empty and were not marked by ccv_yang_presence may be left out. */
void hostcheck_output_show(ccv_yang_output *output,
                           void (*show)(void *context, const hostcheck_row *row), void *context);
void hostcheck_output_free(ccv_yang_output *output);

/* What an encoder's caller hands over as out_a and out_b; 0 on success. */
uint32_t hostcheck_encoding_create(void **out_a, void **out_b);
/* The encoding that bag_encode_v3 left there; valid until it is freed. */
const uint8_t *hostcheck_encoding_bytes(void *out_a, void *out_b, uint32_t *length);
void hostcheck_encoding_free(void *out_a, void *out_b);

#ifdef __cplusplus
}
#endif

#endif
