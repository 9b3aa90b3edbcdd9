/* The functions of aceconv/hostcheck.h: what aceconv-hostcheck needs besides. */
#include "aceconv/hostcheck.h"

#include <stdlib.h>

#include "tree.h"

static node_form form_of(hostcheck_form form) {
    return form == HOSTCHECK_CONTAINER    ? CONTAINER
           : form == HOSTCHECK_LIST       ? LIST
           : form == HOSTCHECK_LIST_ENTRY ? LIST_ENTRY
                                          : LEAF;
}

ccv_yang_node *hostcheck_tree_create(hostcheck_schema schema, const hostcheck_row *rows) {
    (void)schema; /* this host knows no schema */
    ccv_yang_node *entry = tree_add(NULL, CONTAINER, "entry", NULL), *parent = entry;
    uint32_t depth = 0; /* of a child of `parent` */
    for (; parent != NULL && rows->name != NULL; ++rows, ++depth) {
        for (; depth > rows->depth; --depth) {
            parent = parent->parent;
        }
        parent = tree_add(parent, form_of(rows->form), rows->name, rows->value);
    }
    if (parent == NULL) {
        tree_free(entry);
        return NULL;
    }
    return entry;
}
void hostcheck_tree_free(ccv_yang_node *entry) {
    tree_free(entry);
}

ccv_yang_output *hostcheck_output_create(hostcheck_schema schema) {
    (void)schema;
    ccv_yang_output *output = calloc(1, sizeof *output);
    ccv_yang_node *root = tree_add(NULL, CONTAINER, "entry", NULL);
    if (output == NULL || root == NULL) {
        free(output);
        tree_free(root);
        return NULL;
    }
    output->root = output->at = root;
    return output;
}
uint32_t hostcheck_output_status(ccv_yang_output *output) {
    return output->status;
}
static void show_level(const ccv_yang_node *node, uint32_t depth,
                       void (*show)(void *, const hostcheck_row *), void *context) {
    static const hostcheck_form forms[] = {[CONTAINER] = HOSTCHECK_CONTAINER,
                                           [LEAF] = HOSTCHECK_STRING,
                                           [LIST] = HOSTCHECK_LIST,
                                           [LIST_ENTRY] = HOSTCHECK_LIST_ENTRY};
    for (; node != NULL; node = node->next) {
        const hostcheck_row row = {depth, forms[node->form], node->name, node->value};
        show(context, &row);
        show_level(node->child, depth + 1, show, context);
    }
}
void hostcheck_output_show(ccv_yang_output *output, void (*show)(void *, const hostcheck_row *),
                           void *context) {
    show_level(output->root->child, 0, show, context);
}
void hostcheck_output_free(ccv_yang_output *output) {
    tree_free(output->root);
    free(output);
}

uint32_t hostcheck_encoding_create(void **out_a, void **out_b) {
    *out_a = calloc(1, sizeof(uint8_t *));
    *out_b = calloc(1, sizeof(uint32_t));
    return *out_a != NULL && *out_b != NULL ? 0 : HOST_NO_MEMORY;
}
const uint8_t *hostcheck_encoding_bytes(void *out_a, void *out_b, uint32_t *length) {
    *length = *(uint32_t *)out_b;
    return *(uint8_t **)out_a;
}
void hostcheck_encoding_free(void *out_a, void *out_b) {
    if (out_a != NULL) {
        free(*(uint8_t **)out_a);
    }
    free(out_a);
    free(out_b);
}
