#include "testing/generator/rule.h"

#include <array>

namespace aceconv::bench {
namespace {

constexpr std::array<std::uint32_t, 16> service_ports = {
    20, 21, 22, 25, 53, 80, 110, 123, 161, 179, 443, 514, 1812, 3784, 8080, 8443};
constexpr std::array<std::uint32_t, 9> other_protocols = {0, 2, 4, 47, 50, 51, 88, 89, 103};
constexpr std::array<std::uint32_t, 12> icmp_messages = {
    0xFFFF,  0x8FFFF, 0x30000, 0x30001, 0x30003, 0x30004,
    0x3000D, 0x3FFFF, 0xB0000, 0xBFFFF, 0xDFFFF, 0x2A0000}; // the last one has no name
constexpr std::array<std::uint32_t, 10> igmp_messages = {17, 18, 19, 20, 21, 22, 23, 30, 31, 34};

struct TcpFlags {
    std::uint32_t op;
    std::uint32_t set;
    std::uint32_t mask;
};
constexpr std::array<TcpFlags, 6> tcp_flags = {
    {{1, 0x02, 0x12},   // a new session
     {3, 0x14, 0x14},   // established
     {1, 0x03, 0x03},   // SYN with FIN
     {1, 0x10, 0x17},   // a bare acknowledgement
     {3, 0x20, 0x30},   // urgent, or unacknowledged
     {0, 0x18, 0x00}}}; // flags named without an operator

constexpr std::array<std::uint32_t, 7> code_points = {0, 10, 26, 34, 46, 48, 5};
constexpr std::array remarks = {"Web farm",
                                "Mail exchanger",
                                "Name servers, answers and transfers",
                                "Customer 4711, ticket pending",
                                "Temporary, remove after the migration",
                                "Monitoring polls from the collectors",
                                "Backup window",
                                "Established sessions"};

template <class Table>
const auto &pick(Random &random, const Table &table) {
    return table[random.below(static_cast<std::uint32_t>(table.size()))];
}

std::string numbered(const char *stem, std::uint32_t number) {
    return stem + std::to_string(number);
}

std::uint32_t documentation_address(Random &random) {
    constexpr std::array<std::uint32_t, 3> blocks = {0xC0000200, 0xC6336400, 0xCB007100};
    const std::uint32_t block = pick(random, blocks);
    return block + random.below(256);
}

/// An operator with values from `low` to `high`; `equal` percent are the operator equal.
Match random_match(Random &random, std::uint32_t low, std::uint32_t high, std::uint32_t equal) {
    Match match{.present = true, .op = 1, .first = random.between(low, high)};
    if (!random.percent(equal)) {
        match.op = random.between(2, 5);
        if (match.op == 5) {
            match.last = random.between(match.first, high);
        }
    }
    return match;
}

Match random_port(Random &random) {
    Match port = random_match(random, 1024, 65535, 75);
    if (port.op != 5 && random.percent(80)) {
        port.first = pick(random, service_ports);
    }
    return port;
}

Side random_side(Random &random, bool ports, std::uint32_t port_chance) {
    using Kind = Side::Kind;
    constexpr std::array<Kind, 12> kinds = {
        Kind::any,    Kind::host,   Kind::host,     Kind::prefix,   Kind::prefix,   Kind::prefix,
        Kind::prefix, Kind::prefix, Kind::wildcard, Kind::wildcard, Kind::wildcard, Kind::group};
    Side side;
    side.kind = pick(random, kinds);
    side.address = documentation_address(random);
    side.length = random.between(24, 30);
    if (side.kind == Side::Kind::prefix || side.kind == Side::Kind::wildcard) {
        side.address &= ~((1U << (32 - side.length)) - 1);
    }
    if (side.kind == Side::Kind::group) {
        side.group = numbered("PREFIXES-", random.below(40));
    }
    if (ports && random.percent(port_chance)) {
        side.port = random_port(random);
    } else if (ports && random.percent(8)) {
        side.port_group = numbered("PORTS-", random.below(40));
    }
    return side;
}

void add_protocol(Random &random, Rule &rule) {
    const std::uint32_t draw = random.below(100);
    rule.protocol.present = true;
    rule.protocol.first = draw < 50   ? 6
                          : draw < 82 ? 17
                          : draw < 92 ? 1
                                      : pick(random, other_protocols);
    if (draw == 99) {
        rule.protocol = {.present = true, .op = 5, .first = 88, .last = random.between(89, 255)};
    } else if (random.percent(4)) {
        rule.protocol.op = 1;
    }
}

void add_protocol_matches(Random &random, Rule &rule) {
    const std::uint32_t protocol = rule.protocol.op == 5 ? 0 : rule.protocol.first;
    if (protocol == 1 && random.percent(90)) {
        rule.icmp = true;
        rule.icmp_type_code = pick(random, icmp_messages);
    }
    if (protocol == 2) {
        rule.igmp_type = pick(random, igmp_messages);
    }
    if (protocol == 6 && random.percent(12)) {
        const TcpFlags &flags = pick(random, tcp_flags);
        rule.flags_op = flags.op;
        rule.flags = flags.set;
        rule.flags_mask = flags.mask;
    }
}

void add_options(Random &random, Rule &rule) {
    if (random.percent(4)) {
        rule.packet_length = random_match(random, 40, 1500, 20);
    }
    if (random.percent(4)) {
        rule.ttl = random_match(random, 1, 255, 50);
    }
    if (random.percent(2)) {
        rule.fragment_offset = random_match(random, 0, 8189, 20);
    }
    if (random.percent(2)) {
        rule.fragment_type = random.between(1, 7);
    }
    if (random.percent(7)) {
        rule.dscp = random_match(random, 0, 63, 60);
        rule.dscp.op = random.percent(25) ? 0 : rule.dscp.op;
        if (rule.dscp.op != 5) {
            rule.dscp.first = pick(random, code_points);
        }
    }
    if (random.percent(3)) {
        rule.precedence = {.present = true, .first = random.below(8)};
    }
    rule.fragments = random.percent(2);
}

void add_actions(Random &random, Rule &rule) {
    if (random.percent(40)) {
        rule.counter = numbered("counter-", random.below(200));
    }
    rule.log = random.percent(30) ? random.between(1, 2) : 0;
    rule.capture = random.percent(1);
    rule.icmp_off = !rule.permit && random.percent(5);
    rule.icmp_on = !rule.permit && !rule.icmp_off && random.percent(5);
    if (random.percent(5)) {
        rule.qos_group = {.present = true, .first = random.below(512)};
    }
    if (random.percent(2)) {
        rule.set_ttl = {.present = true, .first = random.between(1, 255)};
    }
    rule.default_next_hop = random.percent(1);
    if (rule.permit && !rule.default_next_hop && random.percent(5)) {
        for (std::uint32_t i = random.between(1, 3); i > 0; --i) {
            NextHop &hop = rule.next_hops.emplace_back();
            hop.address = documentation_address(random);
            hop.vrf = random.percent(50) ? numbered("VRF-", random.below(20)) : "";
            hop.track = random.percent(40) ? numbered("track-", random.below(20)) : "";
        }
    }
    rule.sequence_text = random.percent(1);
}

void add_um_matches(Random &random, Rule &rule) {
    if (random.percent(3)) {
        for (std::uint32_t i = random.between(1, 4); i > 0; --i) {
            const std::uint32_t value = random.below(0x10000);
            rule.udf.push_back({numbered("field-", i), value, value | random.below(0x10000)});
        }
    }
    if (random.percent(3)) {
        rule.police = true;
        rule.rate = random.between(1, 100000);
        rule.unit = random.below(5);
        rule.priority = random.below(4);
    }
}

} // namespace

std::uint32_t Random::below(std::uint32_t bound) {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    z ^= z >> 31;
    return static_cast<std::uint32_t>((z >> 32) * bound >> 32);
}

Rule random_rule(Random &random, std::uint32_t sequence) {
    Rule rule;
    rule.sequence = sequence;
    rule.remark_only = random.percent(2);
    if (rule.remark_only || random.percent(55)) {
        rule.remark = pick(random, remarks);
    }
    if (rule.remark_only) {
        return rule;
    }
    rule.permit = random.percent(75);
    rule.names = random.percent(50);
    add_protocol(random, rule);
    const bool ports =
        rule.protocol.op != 5 && (rule.protocol.first == 6 || rule.protocol.first == 17);
    rule.source = random_side(random, ports, 30);
    rule.destination = random_side(random, ports, 85);
    add_protocol_matches(random, rule);
    add_options(random, rule);
    add_actions(random, rule);
    add_um_matches(random, rule);
    return rule;
}

} // namespace aceconv::bench
