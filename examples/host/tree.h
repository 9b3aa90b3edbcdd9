/* The plain tree in which this host keeps YANG data. */
#ifndef EXAMPLE_HOST_TREE_H
#define EXAMPLE_HOST_TREE_H

#include "aceconv/plugin.h"

typedef enum { CONTAINER, LEAF, LIST, LIST_ENTRY } node_form;

/* A node owns what it points at, but its parent. */
struct ccv_yang_node {
    node_form form;
    char *name;
    char *value;  /* of a leaf, as text: "tcp", "80", "fin syn", "192.0.2.1", "" */
    int presence; /* a container that means something even when it is empty */
    ccv_yang_node *parent, *child, *next;
};

/* What the plug-in writes becomes such a tree. */
struct ccv_yang_output {
    ccv_yang_node *root;
    ccv_yang_node *at; /* where the next node goes */
    uint32_t status;   /* the first failure, after which nothing is written */
};

/* The statuses of this host. */
enum {
    HOST_NO_MEMORY = 1,
    HOST_WRONG_VALUE, /* a leaf's text, or what a leaf was to be given */
    HOST_MISPLACED,   /* a step that does not fit where the walk stands */
    HOST_BAD_ENCODING,
    HOST_UNKNOWN_TYPE
};

/* A new last child of `parent`, or a root; null without memory. */
ccv_yang_node *tree_add(ccv_yang_node *parent, node_form form, const char *name, const char *value);
/* Takes a node that has a parent out of its tree. */
void tree_remove(ccv_yang_node *node);
void tree_free(ccv_yang_node *node);

/* Switches the trace of the plug-in on or off. */
void trace_enable(int on);

#endif
