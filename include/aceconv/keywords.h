/* The keyword tables: the names that enumeration and bits leaves of the two
 * YANG schemas may take, and the numbers that the ACE record stores for them.
 *
 * The plug-in hands them to the host's readers and writers. They are not among
 * its exports: a program that wants to show names links the static library
 * aceconv_keywords, which is the same object code.
 *
 * Each table ends with the row {0, NULL}. Tables ending in _um belong to the UM
 * schema, acl_yang_acl_igmp_type, acl_yang_acl_dscp and acl_yang_acl_tcp_bits
 * to both, the others to the base schema.
 */
#ifndef ACECONV_KEYWORDS_H
#define ACECONV_KEYWORDS_H

#include "aceconv/host/yang_access.h"

#ifdef __cplusplus
extern "C" {
#endif

extern const ccv_yang_keyword acl_yang_acl_grant[];
extern const ccv_yang_keyword acl_yang_acl_operator[];
extern const ccv_yang_keyword acl_yang_acl_tcp_bits_match[];
extern const ccv_yang_keyword acl_yang_acl_tcp_bits[]; /* values are bit numbers */
extern const ccv_yang_keyword acl_yang_acl_nexthop_type[];
extern const ccv_yang_keyword acl_yang_acl_log[];
extern const ccv_yang_keyword acl_yang_acl_protocol[];    /* IP protocol numbers */
extern const ccv_yang_keyword acl_yang_acl_protocol_um[]; /* the same, and 512 "ipv4" */
extern const ccv_yang_keyword acl_yang_acl_igmp_type[];
extern const ccv_yang_keyword acl_yang_acl_dscp[];       /* RFC 2474, RFC 2597, RFC 3246 */
extern const ccv_yang_keyword acl_yang_acl_precedence[]; /* RFC 791, section 3.1 */
extern const ccv_yang_keyword acl_yang_acl_precedence_um[];
extern const ccv_yang_keyword acl_yang_acl_fragment_flags[];   /* a set of bits */
extern const ccv_yang_keyword acl_yang_acl_fragment_type_um[]; /* an ordinal */
extern const ccv_yang_keyword acl_yang_acl_priority_um[];
extern const ccv_yang_keyword acl_yang_acl_rate_unit_um[];   /* row n holds value n */
extern const ccv_yang_keyword acl_yang_acl_icmp_type_code[]; /* type << 16 | code, RFC 792 */
extern const ccv_yang_keyword acl_yang_acl_icmp_type_code_um[];
extern const ccv_yang_keyword acl_yang_acl_port[]; /* TCP and UDP port numbers */
extern const ccv_yang_keyword acl_yang_acl_port_um[];

#ifdef __cplusplus
}
#endif

#endif
