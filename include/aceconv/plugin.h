/* The plug-in: conversion of IPv4 access-list entries between YANG subtrees and
 * encoded bags of type ipv4_acl_config_ace.
 *
 * (1) The host supplies the functions of aceconv/host/, loads the library and
 *     calls bag_register_all_ipv4_acl_bags once; then it calls a converter for
 *     every entry. There is nothing to shut down.
 * (2) Calls are self-contained and keep no state. They may run concurrently as
 *     far as the host's functions may.
 * (3) Every function that can fail returns a 32-bit status, 0 on success. The
 *     first failure stops the work; codes of the host are passed on unchanged,
 *     the library's own are ACE_STATUS_* below.
 * (4) On every path the iterator, the definition and the record's blocks are
 *     released. An encoder that fails before encoding leaves out_a and out_b
 *     alone.
 * (5) No function throws, and none of the arguments but `stored` may be null.
 */
#ifndef ACECONV_PLUGIN_H
#define ACECONV_PLUGIN_H

#include <stdint.h>

#include "aceconv/ace_record.h"
#include "aceconv/host/bag.h"
#include "aceconv/host/yang_access.h"
#include "aceconv/linkage.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A node name that its container does not allow, or leaves that exclude each other. */
#define ACE_STATUS_UNKNOWN_LEAF UINT32_C(0x46B08400)
/* A heap allocation failed. */
#define ACE_STATUS_NO_MEMORY UINT32_C(0x46B08200)
/* A name or flag bit without a row in the keyword table. */
#define ACE_STATUS_NO_KEYWORD UINT32_C(0x4DCB9200)
/* A rate unit that is not in acl_yang_acl_rate_unit_um. */
#define ACE_STATUS_UNKNOWN_UNIT UINT32_C(0x4F96C600)
/* No room: flag text beyond its buffer, or an entry beyond its list's count. */
#define ACE_STATUS_NO_SPACE UINT32_C(0xCDCB8000)

/* ---- Registration ------------------------------------------------------- */

ACECONV_EXPORT extern const bag_descriptor ipv4_acl_config_ace_bag;
ACECONV_EXPORT const bag_descriptor *ipv4_acl_config_ace_bag_getfn(void) ACECONV_NOEXCEPT;
/* Registers the bag type; aborts the registration when it is refused. */
ACECONV_EXPORT uint32_t bag_register_all_ipv4_acl_bags(void) ACECONV_NOEXCEPT;

/* ---- Converters -----------------------------------------------------------
 *
 * Encoders: `node` is the entry's subtree, `stored` its earlier encoding or
 * null, `out_a` and `out_b` go to bag_encode_v3 as they are. The base encoder
 * keeps the stored encoding's user-defined fields, which its schema cannot say,
 * and nothing else; a stored encoding that cannot be decoded is ignored. The UM
 * encoder does not read `stored`.
 *
 * Decoders: write the subtree of `encoded` to `output`. Nothing is emitted when
 * the bag cannot be decoded. */

ACECONV_EXPORT uint32_t ccv_custom_encoder_ipv4_acl_ace(ccv_yang_node *node, const uint8_t *stored,
                                                        uint32_t stored_len, void *out_a,
                                                        void *out_b) ACECONV_NOEXCEPT;
ACECONV_EXPORT uint32_t ccv_custom_decoder_ipv4_acl_ace(ccv_yang_output *output,
                                                        const uint8_t *encoded,
                                                        uint32_t encoded_len) ACECONV_NOEXCEPT;
ACECONV_EXPORT uint32_t ccv_custom_encoder_ipv4_acl_ace_um(ccv_yang_node *node,
                                                           const uint8_t *stored,
                                                           uint32_t stored_len, void *out_a,
                                                           void *out_b) ACECONV_NOEXCEPT;
ACECONV_EXPORT uint32_t ccv_custom_decoder_ipv4_acl_ace_um(ccv_yang_output *output,
                                                           const uint8_t *encoded,
                                                           uint32_t encoded_len) ACECONV_NOEXCEPT;

/* ---- Emitters of the UM decoder -------------------------------------------
 *
 * Each writes its nodes of `record` at the output's current position and never
 * changes the caller's record, which is passed by value. Those that return a
 * status stop at their first failure and leave open what they had opened. */

/* "protocol", or "eq", or "range" with "start-protocol" and "end-protocol". */
ACECONV_EXPORT void acl_yang_protocol_common(ccv_yang_output *output,
                                             ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
/* All that the entry matches on, and its policing. */
ACECONV_EXPORT uint32_t acl_yang_ace_common(ccv_yang_output *output,
                                            ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
/* "default", or "nexthop1" to "nexthop3". */
ACECONV_EXPORT void acl_yang_nexthops(ccv_yang_output *output,
                                      ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
/* "capture", "counter", "log" or "log-input", "set". */
ACECONV_EXPORT void acl_yang_match_option_common(ccv_yang_output *output,
                                                 ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
/* The content of "source" and of "destination"; the caller opens the container. */
ACECONV_EXPORT void acl_yang_source_addr(ccv_yang_output *output,
                                         ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
ACECONV_EXPORT void acl_yang_dest_addr(ccv_yang_output *output,
                                       ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
/* The content of "icmp", "dscp", "packet-length", "ttl" and "fragment-offset". */
ACECONV_EXPORT void acl_yang_icmp(ccv_yang_output *output,
                                  ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
ACECONV_EXPORT void acl_yang_dscp_fields(ccv_yang_output *output,
                                         ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
ACECONV_EXPORT void acl_yang_packet_length(ccv_yang_output *output,
                                           ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
ACECONV_EXPORT void acl_yang_ttl(ccv_yang_output *output,
                                 ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
ACECONV_EXPORT void acl_yang_fragment_offset(ccv_yang_output *output,
                                             ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
/* The container "tcp-flags". */
ACECONV_EXPORT uint32_t acl_yang_tcp_flags(ccv_yang_output *output,
                                           ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
/* The list "udf"; the caller opens "udf-entries". */
ACECONV_EXPORT uint32_t acl_yang_udf(ccv_yang_output *output,
                                     ipv4_acl_config_ace record) ACECONV_NOEXCEPT;
/* The container "police". */
ACECONV_EXPORT uint32_t acl_yang_police(ccv_yang_output *output,
                                        ipv4_acl_config_ace record) ACECONV_NOEXCEPT;

/* ---- String helpers -------------------------------------------------------
 *
 * Both change `string` in place. */

/* Deletes every occurrence of `character`. */
ACECONV_EXPORT void removeChar(char *string, char character) ACECONV_NOEXCEPT;
/* Deletes every run from a "-" up to the next "+", or to the end, and then one
 * trailing blank: "+syn -ack " becomes "+syn". */
ACECONV_EXPORT void removeNonTcpFlag(char *string) ACECONV_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
