#include <cstddef>
#include <cstdint>
#include <iterator>

#include "aceconv/ace_record.h"
#include "aceconv/plugin.h"

namespace {

constexpr char type_name[] = "ipv4_acl_config_ace";
constexpr char library_name[] = "ipv4_acl_bag_desc.dll";

// $14 is the record, $12 the user-defined-field element, $13 the police sub-record.
constexpr char long_description[] =
    "$14={ConfigurationMask}H{ConfigurationMask2}H{grant}C{proto_oper}C{protocol}I"
    "{protocol2}I{saddr}N{smask}N{spfx_len}D{daddr}N{dmask}N{dpfx_len}D{sopr}C{sport1}I"
    "{sport2}I{dopr}C{dport1}I{dport2}I{log}D{capture}b{dscp_op}C{dscp}C{dscp2}C{prec}C"
    "{tos_byte}C{icmp_type_code}D{tcpflagsopr}C{tcpflags}C{tcpflags_mask}C{frags}C"
    "{igmp_type}C{plenopr}C{plen1}I{plen2}I{ttloper}C{ttl1}C{ttl2}C{icmp_off}C"
    "{qos_group}I{nexthop}C{nexthop1}N{nexthop2}N{nexthop3}N{vrf1}s{vrf2}s{vrf3}s"
    "{track1}s{track2}s{track3}s{net_src_obj}s{net_dst_obj}s{port_src_obj}s"
    "{port_dst_obj}s{counter_name}s{remark}s{SequenceStr}s{frag_offset_oper}C"
    "{frag_offset1}I{frag_offset2}I{UDF}a($12){SetTTL}I{FragmentFlags}C{Police}$13"
    "{Priority}C{icmp_on}C;$12={UDFName}17x{UDFValue}D{UDFMask}D;$13={PoliceValue}D"
    "{PoliceUnit}[bag_acl_rate_unit]e{PolicePeakValue}D"
    "{PolicePeakUnit}[bag_acl_rate_unit]e;";

constexpr char short_description[] =
    "$14=HHCCIINNDNNDCIICIIDbCCCCCDCCCCCCIICCCCICNNNsssssssssssssCIIa($12)IC$13.CC;"
    "$12=17xDD;$13=DeDe;";

// Registered offsets: one a member in description order, two for the counted array.
constexpr std::uint64_t record_offsets[] = {
    0,   8,   16,  17,  18,  20,  24,  28,  32,  36,  40,  44,  48,  50,  52,  54,  56,
    58,  60,  64,  68,  69,  70,  71,  72,  76,  80,  81,  82,  83,  84,  85,  86,  88,
    90,  91,  92,  93,  94,  96,  100, 104, 108, 112, 120, 128, 136, 144, 152, 160, 168,
    176, 184, 192, 200, 208, 216, 218, 220, 224, 232, 240, 242, 244, 260, 261};
constexpr std::uint64_t udf_offsets[] = {0, 20, 24};
constexpr std::uint64_t police_offsets[] = {0, 4, 8, 12};

constexpr bag_layout layouts[] = {
    {2, 264, record_offsets}, {12, 28, udf_offsets}, {13, 16, police_offsets}};

// The compiler's layout must be the registered one, member by member.
#define AT(member) offsetof(ipv4_acl_config_ace, member)
constexpr std::uint64_t compiled_offsets[] = {AT(ConfigurationMask),
                                              AT(ConfigurationMask2),
                                              AT(grant),
                                              AT(proto_oper),
                                              AT(protocol),
                                              AT(protocol2),
                                              AT(saddr),
                                              AT(smask),
                                              AT(spfx_len),
                                              AT(daddr),
                                              AT(dmask),
                                              AT(dpfx_len),
                                              AT(sopr),
                                              AT(sport1),
                                              AT(sport2),
                                              AT(dopr),
                                              AT(dport1),
                                              AT(dport2),
                                              AT(log),
                                              AT(capture),
                                              AT(dscp_op),
                                              AT(dscp),
                                              AT(dscp2),
                                              AT(prec),
                                              AT(tos_byte),
                                              AT(icmp_type_code),
                                              AT(tcpflagsopr),
                                              AT(tcpflags),
                                              AT(tcpflags_mask),
                                              AT(frags),
                                              AT(igmp_type),
                                              AT(plenopr),
                                              AT(plen1),
                                              AT(plen2),
                                              AT(ttloper),
                                              AT(ttl1),
                                              AT(ttl2),
                                              AT(icmp_off),
                                              AT(qos_group),
                                              AT(nexthop),
                                              AT(nexthop1),
                                              AT(nexthop2),
                                              AT(nexthop3),
                                              AT(vrf1),
                                              AT(vrf2),
                                              AT(vrf3),
                                              AT(track1),
                                              AT(track2),
                                              AT(track3),
                                              AT(net_src_obj),
                                              AT(net_dst_obj),
                                              AT(port_src_obj),
                                              AT(port_dst_obj),
                                              AT(counter_name),
                                              AT(remark),
                                              AT(SequenceStr),
                                              AT(frag_offset_oper),
                                              AT(frag_offset1),
                                              AT(frag_offset2),
                                              AT(UDF.count),
                                              AT(UDF.elements),
                                              AT(SetTTL),
                                              AT(FragmentFlags),
                                              AT(Police),
                                              AT(Priority),
                                              AT(icmp_on)};
#undef AT

constexpr bool offsets_agree() {
    if (std::size(compiled_offsets) != std::size(record_offsets)) {
        return false;
    }
    for (std::size_t i = 0; i < std::size(compiled_offsets); ++i) {
        if (compiled_offsets[i] != record_offsets[i]) {
            return false;
        }
    }
    return true;
}

static_assert(offsets_agree());
static_assert(sizeof(ipv4_acl_config_ace) == layouts[0].size);
static_assert(sizeof(ace_udf_element) == layouts[1].size);
static_assert(offsetof(ace_udf_element, UDFValue) == udf_offsets[1]);
static_assert(offsetof(ace_udf_element, UDFMask) == udf_offsets[2]);
static_assert(sizeof(ace_police) == layouts[2].size);
static_assert(offsetof(ace_police, PoliceUnit) == police_offsets[1]);
static_assert(offsetof(ace_police, PolicePeakValue) == police_offsets[2]);
static_assert(offsetof(ace_police, PolicePeakUnit) == police_offsets[3]);
static_assert(sizeof(bag_descriptor) == 56);

} // namespace

constinit const bag_descriptor ipv4_acl_config_ace_bag = {
    .word_0 = 1,
    .type_name = type_name,
    .word_16 = 5,
    .word_20 = 1,
    .library_name = library_name,
    .layouts = layouts,
    .long_description = long_description,
    .short_description = short_description,
};

const bag_descriptor *ipv4_acl_config_ace_bag_getfn() noexcept {
    return &ipv4_acl_config_ace_bag;
}

std::uint32_t bag_register_all_ipv4_acl_bags() noexcept {
    std::uint32_t status = bag_register_start();
    if (status != 0) {
        return status;
    }
    status = bag_register(&ipv4_acl_config_ace_bag);
    if (status != 0) {
        (void)bag_register_abort();
        return status;
    }
    return bag_register_end();
}
