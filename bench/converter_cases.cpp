#include "bench/converter_cases.h"

#include <bit>
#include <initializer_list>
#include <stdexcept>

namespace aceconv::bench {
namespace {

constexpr std::uint32_t address(std::uint32_t a, std::uint32_t b, std::uint32_t c,
                                std::uint32_t d) {
    return a << 24 | b << 16 | c << 8 | d;
}

constexpr std::uint32_t block = address(203, 0, 113, 0);
constexpr std::uint32_t infrastructure = address(192, 0, 2, 0);
constexpr std::uint32_t wildcard_24 = address(0, 0, 0, 255);

constexpr std::uint32_t equal = 1;
constexpr std::uint32_t range = 5;
constexpr std::uint32_t tcp = 6;
constexpr std::uint32_t udp = 17;
constexpr std::uint32_t syn_ack = 0x12;

Forest &forest() {
    static Forest the_forest; // lives as long as the cases do
    return the_forest;
}

ccv_yang_node *leaf(const char *name, std::uint32_t value = 0) {
    return forest().leaf(name, value);
}
ccv_yang_node *text(const char *name, const char *value) {
    return forest().text(name, value);
}
ccv_yang_node *group(const char *name, std::initializer_list<ccv_yang_node *> children = {}) {
    return forest().group(name, children);
}

ccv_yang_node *smallest_base() {
    return group("entry", {leaf("grant", 1)});
}

ccv_yang_node *typical_base() {
    return group("entry",
                 {leaf("sequence-number", 10), leaf("grant", 1), leaf("protocol", tcp),
                  group("source-network", {leaf("source-address", block),
                                           leaf("source-wild-card-bits", wildcard_24)}),
                  group("destination-network", {leaf("destination-address", infrastructure),
                                                leaf("destination-wild-card-bits", wildcard_24)}),
                  group("destination-port",
                        {leaf("destination-operator", equal), leaf("first-destination-port", 80)}),
                  leaf("log-option", 1), text("remark", "Web farm behind the border")});
}

ccv_yang_node *next_hop_base(const char *name, std::uint32_t next_hop) {
    return group(name, {leaf("next-hop", next_hop), text("vrf-name", "SCRUBBING"),
                        text("track-name", "scrubber-reachable")});
}

ccv_yang_node *largest_base() {
    return group(
        "entry",
        {leaf("sequence-number", 10),
         leaf("grant", 0),
         leaf("protocol-operator", range),
         leaf("protocol", tcp),
         leaf("protocol2", udp),
         group("source-network",
               {leaf("source-address", block), leaf("source-wild-card-bits", wildcard_24),
                leaf("source-prefix-length", 24)}),
         group("destination-network", {leaf("destination-address", infrastructure),
                                       leaf("destination-wild-card-bits", wildcard_24),
                                       leaf("destination-prefix-length", 24)}),
         group("source-port", {leaf("source-operator", range), leaf("first-source-port", 1024),
                               leaf("second-source-port", 65535)}),
         group("destination-port",
               {leaf("destination-operator", range), leaf("first-destination-port", 80),
                leaf("second-destination-port", 443)}),
         group("icmp", {leaf("icmp-type-code", 0x30004)}),
         group("tcp", {leaf("tcp-bits-match-operator", 1), leaf("tcp-bits", syn_ack),
                       leaf("tcp-bits-mask", syn_ack)}),
         group("packet-length", {leaf("packet-length-operator", range),
                                 leaf("packet-length-min", 60), leaf("packet-length-max", 1500)}),
         group("time-to-live", {leaf("time-to-live-operator", range), leaf("time-to-live-min", 1),
                                leaf("time-to-live-max", 255)}),
         group("fragment-offset", {leaf("fragment-offset-operator", range),
                                   leaf("fragment-offset-1", 1), leaf("fragment-offset-2", 8189)}),
         leaf("fragment-type", 2),
         group("next-hop",
               {leaf("next-hop-type", 1), next_hop_base("next-hop-1", infrastructure + 1),
                next_hop_base("next-hop-2", infrastructure + 2),
                next_hop_base("next-hop-3", infrastructure + 3)}),
         text("counter-name", "border-drop"),
         leaf("igmp-message-type", 17),
         group("dscp", {leaf("dscp-operator", range), leaf("dscp-min", 34), leaf("dscp-max", 38)}),
         leaf("precedence", 5),
         leaf("log-option", 2),
         leaf("capture", 1),
         leaf("icmp-off"),
         leaf("qos-group", 5),
         leaf("set-ttl", 64),
         leaf("fragments"),
         text("remark", "Everything that an entry can say"),
         text("source-prefix-group", "CUSTOMER-PREFIXES"),
         text("destination-prefix-group", "ROUTER-ADDRESSES"),
         text("source-port-group", "CLIENT-PORTS"),
         text("destination-port-group", "SERVICE-PORTS"),
         text("sequence-str", "10")});
}

ccv_yang_node *smallest_um() {
    return group("entry", {group("permit")});
}

ccv_yang_node *typical_um() {
    return group("entry",
                 {leaf("sequence-number", 10),
                  group("permit", {leaf("protocol", tcp),
                                   group("source", {leaf("address", block),
                                                    leaf("wildcard-mask", wildcard_24)}),
                                   group("destination", {leaf("address", infrastructure),
                                                         leaf("wildcard-mask", wildcard_24),
                                                         group("port", {leaf("eq", 80)})}),
                                   group("log")}),
                  text("remark", "Web farm behind the border")});
}

ccv_yang_node *range_um(const char *name, std::uint32_t start, std::uint32_t end) {
    return group(name, {group("range", {leaf("start-value", start), leaf("end-value", end)})});
}

ccv_yang_node *side_um(const char *name, std::uint32_t network, const char *net_group,
                       const char *port_group) {
    return group(name, {leaf("address", network), leaf("prefix-length", 24),
                        leaf("wildcard-mask", wildcard_24), text("net-group", net_group),
                        text("port-group", port_group), range_um("port", 1024, 65535)});
}

ccv_yang_node *next_hop_um(const char *name, std::uint32_t next_hop) {
    return group(name, {leaf("ipv4", next_hop), text("vrf", "SCRUBBING"),
                        text("track", "scrubber-reachable")});
}

ccv_yang_node *udf_um(const char *name) {
    return group("udf", {text("udf-name", name), text("udf-value", "47455420"),
                         text("udf-mask", "ffffffff")});
}

// Eight user-defined fields, as many as presence bits are defined for.
ccv_yang_node *largest_um() {
    return group(
        "entry",
        {leaf("sequence-number", 10),
         group("deny",
               {group("range", {leaf("start-protocol", tcp), leaf("end-protocol", udp)}),
                side_um("source", block, "CUSTOMER-PREFIXES", "CLIENT-PORTS"),
                side_um("destination", infrastructure, "ROUTER-ADDRESSES", "SERVICE-PORTS"),
                group("tcp-flags",
                      {group("match-all", {text("tcp-bits", "-fin +syn -rst -psh +ack -urg")})}),
                group("icmp", {leaf("message-type-name", 0x30004)}),
                leaf("igmp-type", 17),
                range_um("dscp", 34, 38),
                leaf("precedence", 5),
                range_um("packet-length", 60, 1500),
                range_um("ttl", 1, 255),
                range_um("fragment-offset", 1, 8189),
                group("fragments"),
                leaf("fragment-type", 2),
                group("udf-entries",
                      {group("udf", {udf_um("payload-0"), udf_um("payload-1"), udf_um("payload-2"),
                                     udf_um("payload-3"), udf_um("payload-4"), udf_um("payload-5"),
                                     udf_um("payload-6"), udf_um("payload-7")})}),
                group("police", {leaf("value", 1000), text("unit", "kbps"), leaf("peak-rate", 2000),
                                 text("peak-unit", "gbps"), leaf("priority", 3)}),
                next_hop_um("nexthop1", infrastructure + 1),
                next_hop_um("nexthop2", infrastructure + 2),
                next_hop_um("nexthop3", infrastructure + 3),
                group("capture"),
                text("counter", "border-drop"),
                group("log-input"),
                group("set", {leaf("qos-group", 5), leaf("ttl", 64)}),
                group("icmp-off"),
                group("icmp-on")}),
         text("remark", "Everything that an entry can say")});
}

std::size_t nodes_below(const ccv_yang_node &parent) {
    std::size_t nodes = 0;
    for (const ccv_yang_node *child = parent.first_child; child != nullptr; child = child->next) {
        nodes += 1 + nodes_below(*child);
    }
    return nodes;
}

// What was measured did take place: an entry's record has this many presence bits.
struct Entry {
    const char *name;
    ccv_yang_node *tree;
    int presence_bits;
};

void require(bool condition, const std::string &name, const char *what) {
    if (!condition) {
        throw std::runtime_error(name + ": " + what);
    }
}

void add_cases(std::vector<ConverterCase> &cases, const std::string &schema,
               decltype(ConverterCase::encode) encoder, decltype(ConverterCase::decode) decoder,
               std::initializer_list<Entry> entries) {
    for (const Entry &entry : entries) {
        ConverterCase encode{.name = "encode-" + schema + "/" + entry.name,
                             .nodes = nodes_below(*entry.tree),
                             .encode = encoder,
                             .entry = entry.tree};
        encode.encoding.keep = true;
        require(encode.run() == 0, encode.name, "the encoder failed");
        encode.encoding.keep = false;
        const ipv4_acl_config_ace &record = encode.encoding.record;
        require(std::popcount(record.ConfigurationMask) +
                        std::popcount(record.ConfigurationMask2) ==
                    entry.presence_bits,
                encode.name, "the record does not hold the whole entry");

        ConverterCase decode = encode;
        decode.name.replace(0, 2, "de");
        decode.encode = nullptr;
        decode.decode = decoder;
        require(decode.run() == 0, decode.name, "the decoder failed");
        cases.push_back(encode);
        cases.push_back(decode);
    }
}

} // namespace

std::uint32_t ConverterCase::run() {
    if (encode != nullptr) {
        return encode(entry, nullptr, 0, &encoding, nullptr);
    }
    ccv_yang_output output;
    return decode(&output, reinterpret_cast<const std::uint8_t *>(&encoding.record),
                  sizeof encoding.record);
}

std::vector<ConverterCase> converter_cases() {
    std::vector<ConverterCase> cases;
    add_cases(cases, "base", ccv_custom_encoder_ipv4_acl_ace, ccv_custom_decoder_ipv4_acl_ace,
              {{"smallest", smallest_base(), 1},
               {"typical", typical_base(), 10},
               {"largest", largest_base(), 60}});
    add_cases(cases, "um", ccv_custom_encoder_ipv4_acl_ace_um, ccv_custom_decoder_ipv4_acl_ace_um,
              {{"smallest", smallest_um(), 1},
               {"typical", typical_um(), 10},
               {"largest", largest_um(), 87}});
    return cases;
}

} // namespace aceconv::bench
