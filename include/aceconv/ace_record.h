/* The ACE record: the decoded form of one bag of type ipv4_acl_config_ace, the
 * configuration of one IPv4 access-list entry.
 *
 * A binary format: order, widths, offsets and the total of 264 bytes are what
 * the bag descriptor registers. Natural alignment; padding is zero in every
 * record that a converter builds.
 *
 * A member carries a value only when its presence bit is set. Bits 0 to 63
 * below are those of ConfigurationMask, "2:n" is bit n of ConfigurationMask2;
 * bit n is the bit of value 2^n.
 *
 * Operator members hold 1 equal, 2 greater-than, 3 less-than, 4 not-equal or
 * 5 range. With 1 to 4 the compared value is the first value member, with 5
 * the first and second value members are the range's start and end.
 *
 * Strings and UDF elements are heap blocks owned by the record and released by
 * bag_free_indirections alone.
 */
#ifndef ACECONV_ACE_RECORD_H
#define ACECONV_ACE_RECORD_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One user-defined field match, 28 bytes. */
typedef struct ace_udf_element {
    char UDFName[17]; /* NUL-terminated, at most 16 characters, zero-filled */
    uint32_t UDFValue;
    uint32_t UDFMask;
} ace_udf_element;

typedef struct ace_udf_array {
    uint32_t count;
    ace_udf_element *elements;
} ace_udf_array;

/* Rate units: 0 pps, 1 bps, 2 kbps, 3 mbps, 4 gbps. */
typedef struct ace_police {
    uint32_t PoliceValue;     /* 2:24, committed rate */
    uint32_t PoliceUnit;      /* 2:25 */
    uint32_t PolicePeakValue; /* 2:26, peak rate */
    uint32_t PolicePeakUnit;  /* 2:27 */
} ace_police;

typedef struct ipv4_acl_config_ace {
    uint64_t ConfigurationMask;
    uint64_t ConfigurationMask2;
    uint8_t grant;            /* 0: action, 0 deny, 1 permit */
    uint8_t proto_oper;       /* 53 */
    uint16_t protocol;        /* 1: IP protocol number, 512 is "any IPv4" in the UM schema */
    uint16_t protocol2;       /* 54 */
    uint32_t saddr;           /* 2: in the byte order of ccv_yang_get_ipv4 */
    uint32_t smask;           /* 3: wildcard bits */
    uint32_t spfx_len;        /* 36 */
    uint32_t daddr;           /* 7 */
    uint32_t dmask;           /* 8 */
    uint32_t dpfx_len;        /* 37 */
    uint8_t sopr;             /* 4 */
    uint16_t sport1;          /* 5 */
    uint16_t sport2;          /* 6 */
    uint8_t dopr;             /* 9 */
    uint16_t dport1;          /* 10 */
    uint16_t dport2;          /* 11 */
    uint32_t log;             /* 13: 1 log, 2 log-input */
    uint32_t capture;         /* 38: 0 false, else true */
    uint8_t dscp_op;          /* 14 */
    uint8_t dscp;             /* 15 */
    uint8_t dscp2;            /* 16 */
    uint8_t prec;             /* never used; precedence is tos_byte */
    uint8_t tos_byte;         /* 17: IP precedence, 0 to 7 */
    uint32_t icmp_type_code;  /* type << 16 | code; 19 with code 0xFFFF (any), else 18 */
    uint8_t tcpflagsopr;      /* 20: 1 match-all, 3 match-any */
    uint8_t tcpflags;         /* 21: fin 1, syn 2, rst 4, psh 8, ack 16, urg 32 (RFC 9293, 3.1) */
    uint8_t tcpflags_mask;    /* 22: flags examined, the same bits */
    uint8_t frags;            /* 23: 1 matches fragments */
    uint8_t igmp_type;        /* 12 */
    uint8_t plenopr;          /* 24 */
    uint16_t plen1;           /* 25 */
    uint16_t plen2;           /* 26 */
    uint8_t ttloper;          /* 27 */
    uint8_t ttl1;             /* 28 */
    uint8_t ttl2;             /* 29 */
    uint8_t icmp_off;         /* 30: 1 when given */
    uint16_t qos_group;       /* 55 */
    uint8_t nexthop;          /* 32: 1 regular-next-hop, 2 default-next-hop */
    uint32_t nexthop1;        /* 33 */
    uint32_t nexthop2;        /* 34; 42 with 34 or 40, base encoder only */
    uint32_t nexthop3;        /* 35; 43 with 35 or 41, base encoder only */
    char *vrf1;               /* 39 */
    char *vrf2;               /* 40 */
    char *vrf3;               /* 41 */
    char *track1;             /* 44 */
    char *track2;             /* 45 */
    char *track3;             /* 46 */
    char *net_src_obj;        /* 47: source prefix group */
    char *net_dst_obj;        /* 48 */
    char *port_src_obj;       /* 49: source port group */
    char *port_dst_obj;       /* 50 */
    char *counter_name;       /* 51 */
    char *remark;             /* 31 */
    char *SequenceStr;        /* 52 */
    uint8_t frag_offset_oper; /* 56 */
    uint16_t frag_offset1;    /* 57 */
    uint16_t frag_offset2;    /* 58 */
    ace_udf_array UDF;        /* element i of at most 8: 2:i, 2:(8+i) and 2:(16+i) */
    uint16_t SetTTL;          /* 59 */
    uint8_t FragmentFlags;    /* 60: numbered differently by the two schemas */
    ace_police Police;
    uint8_t Priority; /* 2:28: 0 critical, 1 high, 2 low, 3 medium */
    uint8_t icmp_on;  /* 2:29: 1 when given */
} ipv4_acl_config_ace;

#ifdef __cplusplus
}
#endif

#endif
