/* Converts an entry of each schema to an encoding, and that to both schemas. */
#include <stdio.h>
#include <stdlib.h>

#include "tree.h"

/* One node of a tree written down: how deep it lies, then what it is. */
typedef struct tree_row {
    unsigned depth;
    node_form form;
    const char *name;
    const char *value;
} tree_row;

static const tree_row base_entry[] = {
    {0, LEAF, "sequence-number", "10"},
    {0, LEAF, "grant", "permit"},
    {0, LEAF, "protocol", "tcp"},
    {0, CONTAINER, "destination-network", NULL},
    {1, LEAF, "destination-address", "192.0.2.1"},
    {1, LEAF, "destination-prefix-length", "24"},
    {0, CONTAINER, "destination-port", NULL},
    {1, LEAF, "destination-operator", "equal"},
    {1, LEAF, "first-destination-port", "www"},
    {0, CONTAINER, "tcp", NULL},
    {1, LEAF, "tcp-bits-match-operator", "match-all"},
    {1, LEAF, "tcp-bits", "syn"},
    {1, LEAF, "tcp-bits-mask", "syn ack"},
    {0, LEAF, "remark", "web servers"},
    {0, LEAF, NULL, NULL},
};

static const tree_row um_entry[] = {
    {0, LEAF, "sequence-number", "20"},  {0, CONTAINER, "deny", NULL},
    {1, LEAF, "protocol", "udp"},        {1, CONTAINER, "source", NULL},
    {2, LEAF, "host", "198.51.100.7"},   {1, CONTAINER, "destination", NULL},
    {2, CONTAINER, "port", NULL},        {3, CONTAINER, "range", NULL},
    {4, LEAF, "start-value", "33434"},   {4, LEAF, "end-value", "33534"},
    {1, CONTAINER, "udf-entries", NULL}, {2, LIST, "udf", NULL},
    {3, LIST_ENTRY, "udf", NULL},        {4, LEAF, "udf-name", "first"},
    {4, LEAF, "udf-value", "0x10"},      {4, LEAF, "udf-mask", "ff"},
    {3, LIST_ENTRY, "udf", NULL},        {4, LEAF, "udf-name", "second"},
    {4, LEAF, "udf-value", "beef"},      {4, LEAF, "udf-mask", "ffff"},
    {1, CONTAINER, "log", NULL},         {0, LEAF, NULL, NULL},
};

/* An entry of these rows, the last of which has no name; null without memory. */
static ccv_yang_node *build(const tree_row *rows) {
    ccv_yang_node *entry = tree_add(NULL, CONTAINER, "entry", NULL), *parent = entry;
    unsigned depth = 0; /* of a child of `parent` */
    for (; parent != NULL && rows->name != NULL; ++rows, ++depth) {
        for (; depth > rows->depth; --depth) {
            parent = parent->parent;
        }
        parent = tree_add(parent, rows->form, rows->name, rows->value);
    }
    if (parent == NULL) {
        tree_free(entry);
        return NULL;
    }
    return entry;
}

static void print(const ccv_yang_node *node, int depth) {
    for (; node != NULL; node = node->next) {
        printf("%*s%s", 4 * depth, "", node->name);
        printf(node->value != NULL ? " %s\n" : "\n", node->value);
        print(node->child, depth + 1);
    }
}

typedef uint32_t encoder(ccv_yang_node *, const uint8_t *, uint32_t, void *, void *);
typedef uint32_t decoder(ccv_yang_output *, const uint8_t *, uint32_t);

static int failed(const char *what, uint32_t status) {
    if (status != 0) {
        fprintf(stderr, "%s: status %#x\n", what, status);
    }
    return status != 0;
}

static int decode(const char *schema, decoder *decode_entry, const uint8_t *encoded,
                  uint32_t length) {
    ccv_yang_output output = {tree_add(NULL, CONTAINER, "entry", NULL), NULL, 0};
    output.at = output.root;
    int wrong = failed("tree", output.root == NULL ? HOST_NO_MEMORY : 0);
    if (!wrong) {
        /* The plug-in's status, and what the emitters kept. */
        wrong = failed("decoding", decode_entry(&output, encoded, length)) ||
                failed("writing", output.status);
    }
    if (!wrong) {
        printf("  as %s:\n", schema);
        print(output.root->child, 1);
    }
    tree_free(output.root);
    return wrong;
}

static int convert(const char *schema, const tree_row *rows, encoder *encode_entry) {
    ccv_yang_node *entry = build(rows);
    uint8_t *encoded = NULL;
    uint32_t length = 0;
    int wrong = failed("tree", entry == NULL ? HOST_NO_MEMORY : 0) ||
                failed("encoding", encode_entry(entry, NULL, 0, &encoded, &length));
    if (!wrong) {
        printf("%s entry, %u bytes\n", schema, length);
        wrong = decode("base", ccv_custom_decoder_ipv4_acl_ace, encoded, length) ||
                decode("um", ccv_custom_decoder_ipv4_acl_ace_um, encoded, length);
    }
    free(encoded);
    tree_free(entry);
    return wrong;
}

int main(int argc, char **argv) {
    (void)argv;
    trace_enable(argc > 1);
    return failed("registration", bag_register_all_ipv4_acl_bags()) ||
           convert("base", base_entry, ccv_custom_encoder_ipv4_acl_ace) ||
           convert("um", um_entry, ccv_custom_encoder_ipv4_acl_ace_um);
}
