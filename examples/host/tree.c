#include "tree.h"

#include <stdlib.h>
#include <string.h>

ccv_yang_node *tree_add(ccv_yang_node *parent, node_form form, const char *name,
                        const char *value) {
    ccv_yang_node *node = calloc(1, sizeof *node);
    if (node == NULL) {
        return NULL;
    }
    node->form = form;
    node->parent = parent;
    node->name = strdup(name);
    node->value = form == LEAF ? strdup(value) : NULL;
    if (node->name == NULL || (form == LEAF && node->value == NULL)) {
        tree_free(node);
        return NULL;
    }
    if (parent != NULL) {
        ccv_yang_node **end = &parent->child;
        while (*end != NULL) {
            end = &(*end)->next;
        }
        *end = node;
    }
    return node;
}

void tree_remove(ccv_yang_node *node) {
    ccv_yang_node **link = &node->parent->child;
    while (*link != node) {
        link = &(*link)->next;
    }
    *link = node->next;
    node->next = NULL;
    tree_free(node);
}

void tree_free(ccv_yang_node *node) {
    while (node != NULL) {
        ccv_yang_node *next = node->next;
        tree_free(node->child);
        free(node->name);
        free(node->value);
        free(node);
        node = next;
    }
}
