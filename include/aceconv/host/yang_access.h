/* YANG access: the tree walk, typed readers and emitters that a host supplies.
 *
 * The plug-in leaves every function of this header undefined; whichever host
 * loads it provides them under these names, with C linkage.
 *
 * (1) Handles are opaque. The plug-in passes them back unchanged and never
 *     looks inside.
 * (2) Status: 0 is success; any other 32-bit value is the host's own code. The
 *     plug-in passes the first one back to its caller unchanged.
 * (3) Iterator calls write `*status` only to report a failure. They never
 *     clear it, so that the code of a failed reader survives the step that
 *     follows it.
 * (4) A reader that fails leaves its destination as it was.
 * (5) Names, keyword tables and strings passed to an emitter belong to the
 *     plug-in; a string is valid only during the call.
 * (6) Concurrent calls on different handles must be safe.
 */
#ifndef ACECONV_HOST_YANG_ACCESS_H
#define ACECONV_HOST_YANG_ACCESS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ccv_yang_node ccv_yang_node;     /* one node of a data tree */
typedef struct ccv_yang_iter ccv_yang_iter;     /* a walk over one entry */
typedef struct ccv_yang_output ccv_yang_output; /* where a subtree is written */

/* One row of a keyword table. A table is an array of rows ended by the row
 * {0, NULL}: the null name ends it, never the value. Values and names are
 * unique within a table. For a bits leaf the value is the bit's number. */
typedef struct ccv_yang_keyword {
    uint32_t value;
    const char *name;
} ccv_yang_keyword;

/* What a step of the iterator walks. */
enum {
    CCV_YANG_STEP_ENTRY = 0,     /* the children of the entry itself */
    CCV_YANG_STEP_CONTAINER = 1, /* the children of the current container */
    CCV_YANG_STEP_LIST = 2,      /* the entries of the current list */
    CCV_YANG_STEP_LIST_ENTRY = 3 /* the leaves of the current list entry */
};

/* ---- Iterator -----------------------------------------------------------
 *
 * A walk is a stack of levels. `first` opens a level on the current node and
 * stands on its first node; `next` moves on and, once a level is exhausted,
 * the following `next` goes on behind the container that was entered. An
 * exhausted level shows as `is_finished` non-zero or as a null current node.
 * All instances of a list under one parent are shown once, as one list node,
 * whose entries step kind CCV_YANG_STEP_LIST walks. */

/* Starts a walk over the subtree of `node`. On success `*iterator` is set. The
 * caller destroys any handle that it finds there, also after a failure. */
uint32_t ccv_yang_iter_create(ccv_yang_node *node, ccv_yang_iter **iterator);

/* Non-zero while the iterator has a pass over the entry's children to offer. */
int32_t ccv_yang_iter_is_active(ccv_yang_iter *iterator);

/* Opens a level of kind `step`. Before the call `*current` is the node whose
 * children or entries are walked (null for the entry itself). `index` is null
 * but for CCV_YANG_STEP_LIST, where the host keeps `*index` equal to the
 * position of the current entry, counted from 0, on this and later steps. */
void ccv_yang_iter_first(uint32_t step, ccv_yang_iter *iterator, uint32_t *status,
                         ccv_yang_node **current, int32_t *index);

/* Non-zero when the innermost level, opened with the same `step`, is exhausted. */
int32_t ccv_yang_iter_is_finished(uint32_t step, ccv_yang_iter *iterator, uint32_t *status);

/* Moves to the next node; `index` as for `first`. Called once more at every
 * level after a failure, with a non-zero `*status` that must stay. */
void ccv_yang_iter_next(ccv_yang_iter *iterator, uint32_t *status, ccv_yang_node **current,
                        int32_t *index);

/* Ends the walk and releases the iterator; null is allowed. */
void ccv_yang_iter_destroy(ccv_yang_iter *iterator);

/* ---- Readers --------------------------------------------------------------
 *
 * Each reads the value of the leaf `node`, checks its type and range and
 * returns a status. */

/* The node's name without prefix; never null, valid as long as the tree. */
const char *ccv_yang_get_node_name(ccv_yang_node *node);

/* The value of the table's row whose name the leaf holds. */
uint32_t ccv_yang_get_enum(ccv_yang_node *node, const ccv_yang_keyword *table, uint32_t *value);
/* As above; the leaf may also hold a plain unsigned number. */
uint32_t ccv_yang_get_enum_or_uint32(ccv_yang_node *node, const ccv_yang_keyword *table,
                                     uint32_t *value);
/* A set of bit names; bit n of `*bits` stands for the row of value n. */
uint32_t ccv_yang_get_bits(ccv_yang_node *node, const ccv_yang_keyword *table, uint32_t *bits);

uint32_t ccv_yang_get_uint8(ccv_yang_node *node, uint8_t *value);
uint32_t ccv_yang_get_uint16(ccv_yang_node *node, uint16_t *value);
uint32_t ccv_yang_get_uint32(ccv_yang_node *node, uint32_t *value);
/* 0 false, 1 true. */
uint32_t ccv_yang_get_bool(ccv_yang_node *node, uint32_t *value);
/* 32 bits in the byte order that ccv_yang_ipv4 takes; the plug-in copies them. */
uint32_t ccv_yang_get_ipv4(ccv_yang_node *node, uint32_t *address);
/* A new NUL-terminated string from malloc; the caller owns it and releases it
 * with free, or stores it in a record that bag_free_indirections releases. */
uint32_t ccv_yang_get_string(ccv_yang_node *node, char **text);
/* How many entries the list that `node` stands for has. */
uint32_t ccv_yang_get_list_entry_count(ccv_yang_node *node, uint32_t *count);

/* ---- Emitters -------------------------------------------------------------
 *
 * Each writes at the output's current position, in the order of the calls. The
 * plug-in does not examine the results: a host keeps the first failure in the
 * output and reports it to whoever asked for the conversion. */

uint32_t ccv_yang_container_begin(ccv_yang_output *output, const char *name);
uint32_t ccv_yang_container_end(ccv_yang_output *output);
/* Marks the container just begun as a presence container. */
uint32_t ccv_yang_presence(ccv_yang_output *output);

uint32_t ccv_yang_list_begin(ccv_yang_output *output, const char *name);
/* The plug-in always passes 1 key; the key is the first leaf of the entry. */
uint32_t ccv_yang_list_entry_begin(ccv_yang_output *output, const char *name, uint32_t keys);
uint32_t ccv_yang_list_entry_end(ccv_yang_output *output);
uint32_t ccv_yang_list_end(ccv_yang_output *output);

/* The name of the row that holds `value`; a value without a row is a failure. */
uint32_t ccv_yang_enum(ccv_yang_output *output, const char *name, const ccv_yang_keyword *table,
                       uint32_t value);
/* The row's name when a row holds `value`, else the number. */
uint32_t ccv_yang_enum_or_uint32(ccv_yang_output *output, const char *name,
                                 const ccv_yang_keyword *table, uint32_t value);
/* The names of the rows whose bits are set; a bit without a row is a failure. */
uint32_t ccv_yang_bits(ccv_yang_output *output, const char *name, const ccv_yang_keyword *table,
                       uint32_t bits);
uint32_t ccv_yang_uint32(ccv_yang_output *output, const char *name, uint32_t value);
uint32_t ccv_yang_bool(ccv_yang_output *output, const char *name, uint32_t value);
uint32_t ccv_yang_ipv4(ccv_yang_output *output, const char *name, uint32_t address);
/* `text` may be null where a record marks a string present without one; that
 * is a failure, like text that YANG does not allow (RFC 7950, section 14). */
uint32_t ccv_yang_string(ccv_yang_output *output, const char *name, const char *text);
uint32_t ccv_yang_empty(ccv_yang_output *output, const char *name);

#ifdef __cplusplus
}
#endif

#endif
