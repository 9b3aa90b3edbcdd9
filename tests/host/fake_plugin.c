/* A plug-in without conversions, for the loader's tests. One of GOOD,
 * INCOMPLETE, FOREIGN and REFUSED is defined. */
#include "aceconv/plugin.h"

static const uint64_t offsets[] = {0};
static const bag_layout layouts[] = {{0, 8, offsets}};

const bag_descriptor ipv4_acl_config_ace_bag = {
    1,
#ifdef FOREIGN
    "ipv6_acl_config_ace",
#else
    "ipv4_acl_config_ace",
#endif
    5,
    1,
    "fake.dll",
    layouts,
    "$1={mask}H;",
#ifdef REFUSED
    "$1=D;",
#else
    "$1=H;",
#endif
};

uint32_t bag_register_all_ipv4_acl_bags(void) {
    uint32_t status = bag_register_start();
    if (status != 0)
        return status;
    status = bag_register(&ipv4_acl_config_ace_bag);
    if (status != 0) {
        (void)bag_register_abort();
        return status;
    }
    return bag_register_end();
}

#define ENCODER(name, result)                                                                      \
    uint32_t name(ccv_yang_node *node, const uint8_t *stored, uint32_t stored_len, void *out_a,    \
                  void *out_b) {                                                                   \
        (void)node, (void)stored, (void)stored_len, (void)out_a, (void)out_b;                      \
        return result;                                                                             \
    }
#define DECODER(name, result)                                                                      \
    uint32_t name(ccv_yang_output *output, const uint8_t *encoded, uint32_t encoded_len) {         \
        (void)output, (void)encoded, (void)encoded_len;                                            \
        return result;                                                                             \
    }

ENCODER(ccv_custom_encoder_ipv4_acl_ace, 11)
DECODER(ccv_custom_decoder_ipv4_acl_ace, 12)
ENCODER(ccv_custom_encoder_ipv4_acl_ace_um, 13)
#ifndef INCOMPLETE
DECODER(ccv_custom_decoder_ipv4_acl_ace_um, 14)
#endif
