// Parsers of the UM encoder: each fills its own fields and presence bits of the
// record from one node of the action container.
//
// A parser walks with its own status, starting at 0, and returns it. Fields and
// bits set before a failure stay; the driver discards such a record.
#pragma once

#include <cstdint>

#include "common/walk.h"
#include "um/schema.h"

namespace ace::um {

/// "protocol", "eq" or "range" directly in the action container; nodes of any
/// other name change nothing.
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_protocol_common(ccv_yang_iter *iterator,
                                                              ccv_yang_node *node, Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_source_address(ccv_yang_iter *iterator,
                                                             ccv_yang_node *node, Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_dest_address(ccv_yang_iter *iterator,
                                                           ccv_yang_node *node, Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_icmp(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                   Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_dscp(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                   Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_packet_length(ccv_yang_iter *iterator,
                                                            ccv_yang_node *node, Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_ttl(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                  Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_fragment_offset(ccv_yang_iter *iterator,
                                                              ccv_yang_node *node, Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_tcp_flags(ccv_yang_iter *iterator,
                                                        ccv_yang_node *node, Record &record);
[[nodiscard]] std::uint32_t acl_yang_ipv4_enc_police(ccv_yang_iter *iterator, ccv_yang_node *node,
                                                     Record &record);

/// A signed flag text such as "+syn -ack".
[[nodiscard]] std::uint32_t ccv_yang_set_ipv4_tcpflag(ccv_yang_node *node, Record &record);

/// A "udf" list. The elements of a second list are added to those of the first;
/// an entry whose index is outside the list is ACE_STATUS_NO_SPACE.
[[nodiscard]] std::uint32_t ccv_yang_get_ipv4_udf(ccv_yang_node *list, ccv_yang_iter *iterator,
                                                  ace_udf_array &udf);

/// Walks the children of an operator group's container. Other names than the
/// group's are passed over.
void parse_operator_group(Walk &walk, const OperatorGroup &group, Record &record);

} // namespace ace::um
