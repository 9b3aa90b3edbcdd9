/* Converts an entry of each schema to an encoding, and that to both schemas. Trees are
 * made and shown with the functions that the host has for aceconv-hostcheck. */
#include <stdio.h>

#include "aceconv/hostcheck.h"
#include "tree.h"

static const hostcheck_row base_entry[] = {
    {0, HOSTCHECK_NUMBER, "sequence-number", "10"},
    {0, HOSTCHECK_NAME, "grant", "permit"},
    {0, HOSTCHECK_NAME, "protocol", "tcp"},
    {0, HOSTCHECK_CONTAINER, "destination-network", NULL},
    {1, HOSTCHECK_ADDRESS, "destination-address", "192.0.2.1"},
    {1, HOSTCHECK_NUMBER, "destination-prefix-length", "24"},
    {0, HOSTCHECK_CONTAINER, "destination-port", NULL},
    {1, HOSTCHECK_NAME, "destination-operator", "equal"},
    {1, HOSTCHECK_NAME, "first-destination-port", "www"},
    {0, HOSTCHECK_CONTAINER, "tcp", NULL},
    {1, HOSTCHECK_NAME, "tcp-bits-match-operator", "match-all"},
    {1, HOSTCHECK_BITS, "tcp-bits", "syn"},
    {1, HOSTCHECK_BITS, "tcp-bits-mask", "syn ack"},
    {0, HOSTCHECK_STRING, "remark", "web servers"},
    {0, HOSTCHECK_EMPTY, NULL, NULL},
};

static const hostcheck_row um_entry[] = {
    {0, HOSTCHECK_NUMBER, "sequence-number", "20"}, {0, HOSTCHECK_CONTAINER, "deny", NULL},
    {1, HOSTCHECK_NAME, "protocol", "udp"},         {1, HOSTCHECK_CONTAINER, "source", NULL},
    {2, HOSTCHECK_ADDRESS, "host", "198.51.100.7"}, {1, HOSTCHECK_CONTAINER, "destination", NULL},
    {2, HOSTCHECK_CONTAINER, "port", NULL},         {3, HOSTCHECK_CONTAINER, "range", NULL},
    {4, HOSTCHECK_NUMBER, "start-value", "33434"},  {4, HOSTCHECK_NUMBER, "end-value", "33534"},
    {1, HOSTCHECK_CONTAINER, "udf-entries", NULL},  {2, HOSTCHECK_LIST, "udf", NULL},
    {3, HOSTCHECK_LIST_ENTRY, "udf", NULL},         {4, HOSTCHECK_STRING, "udf-name", "first"},
    {4, HOSTCHECK_STRING, "udf-value", "0x10"},     {4, HOSTCHECK_STRING, "udf-mask", "ff"},
    {3, HOSTCHECK_LIST_ENTRY, "udf", NULL},         {4, HOSTCHECK_STRING, "udf-name", "second"},
    {4, HOSTCHECK_STRING, "udf-value", "beef"},     {4, HOSTCHECK_STRING, "udf-mask", "ffff"},
    {1, HOSTCHECK_CONTAINER, "log", NULL},          {0, HOSTCHECK_EMPTY, NULL, NULL},
};

typedef uint32_t encoder(ccv_yang_node *, const uint8_t *, uint32_t, void *, void *);
typedef uint32_t decoder(ccv_yang_output *, const uint8_t *, uint32_t);

static int failed(const char *what, uint32_t status) {
    if (status != 0) {
        fprintf(stderr, "%s: status %#x\n", what, status);
    }
    return status != 0;
}

static void print(void *context, const hostcheck_row *row) {
    (void)context;
    printf("%*s%s", 4 + 4 * (int)row->depth, "", row->name);
    printf(row->value != NULL ? " %s\n" : "\n", row->value);
}

static int decode(hostcheck_schema schema, decoder *decode_entry, const uint8_t *encoded,
                  uint32_t length) {
    ccv_yang_output *output = hostcheck_output_create(schema);
    if (failed("output", output == NULL ? HOST_NO_MEMORY : 0)) {
        return 1;
    }
    /* The plug-in's status, and what the emitters kept. */
    const int wrong = failed("decoding", decode_entry(output, encoded, length)) ||
                      failed("writing", hostcheck_output_status(output));
    if (!wrong) {
        printf("  as %s:\n", schema == HOSTCHECK_BASE ? "base" : "um");
        hostcheck_output_show(output, print, NULL);
    }
    hostcheck_output_free(output);
    return wrong;
}

static int convert(hostcheck_schema schema, const hostcheck_row *rows, encoder *encode_entry) {
    ccv_yang_node *entry = hostcheck_tree_create(schema, rows);
    void *out_a = NULL, *out_b = NULL;
    int wrong = failed("tree", entry == NULL ? HOST_NO_MEMORY : 0) ||
                failed("encoding", hostcheck_encoding_create(&out_a, &out_b)) ||
                failed("encoding", encode_entry(entry, NULL, 0, out_a, out_b));
    if (!wrong) {
        uint32_t length = 0;
        const uint8_t *encoded = hostcheck_encoding_bytes(out_a, out_b, &length);
        printf("%s entry, %u bytes\n", schema == HOSTCHECK_BASE ? "base" : "um", length);
        wrong = decode(HOSTCHECK_BASE, ccv_custom_decoder_ipv4_acl_ace, encoded, length) ||
                decode(HOSTCHECK_UM, ccv_custom_decoder_ipv4_acl_ace_um, encoded, length);
    }
    hostcheck_encoding_free(out_a, out_b);
    hostcheck_tree_free(entry);
    return wrong;
}

int main(int argc, char **argv) {
    (void)argv;
    trace_enable(argc > 1);
    return failed("registration", bag_register_all_ipv4_acl_bags()) ||
           convert(HOSTCHECK_BASE, base_entry, ccv_custom_encoder_ipv4_acl_ace) ||
           convert(HOSTCHECK_UM, um_entry, ccv_custom_encoder_ipv4_acl_ace_um);
}
