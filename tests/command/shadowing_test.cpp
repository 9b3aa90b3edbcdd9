// Shadowing against a look at every packet of a small world, in which each value that
// entries name has one packet or more beside it.
#include <algorithm>
#include <arpa/inet.h>
#include <functional>
#include <gtest/gtest.h>

#include "compare/shadowing.h"
#include "testing/generator/rule.h"

namespace aceconv {
namespace {

using Record = ipv4_acl_config_ace;
using bench::Random;

constexpr std::uint32_t no_port = 65536;
// As entries name them. Packets have one more, between these.
constexpr std::uint32_t protocols[] = {0, 1, 6, 6, 6, 17, 255};
constexpr std::uint32_t ports[] = {0, 1, 2, 65535};
constexpr std::uint32_t code_points[] = {0, 1, 2, 63, 64};

struct Packet {
    std::uint32_t source, destination; // of which the last three bits vary, and one
    std::uint32_t protocol, port, dscp, flags;
    bool in_group;
};

std::vector<Packet> all_packets() {
    std::vector<Packet> packets;
    for (std::uint32_t rest = 0; rest < 16 * 4 * 2; ++rest) {
        for (const std::uint32_t protocol : {0U, 1U, 5U, 6U, 9U, 17U, 100U, 255U}) {
            for (const std::uint32_t port : {0U, 1U, 2U, 3U, 65535U, no_port}) {
                for (const std::uint32_t dscp : {0U, 1U, 2U, 3U, 63U}) {
                    const std::uint32_t flags = rest >> 4 & 3;
                    if ((protocol == 6 || flags == 0) &&
                        (protocol == 6 || protocol == 17 || port == no_port)) {
                        packets.push_back(
                            {rest & 7, rest >> 3 & 1, protocol, port, dscp, flags, rest >> 6 != 0});
                    }
                }
            }
        }
    }
    return packets;
}
const std::vector<Packet> packets = all_packets();

/// Whether a packet meets a comparison, as far as the record tells.
enum class Meets : std::uint8_t { no, perhaps, yes };
using Matched = std::vector<Meets>; // by packet

Meets sure(bool yes) {
    return yes ? Meets::yes : Meets::no;
}

/// An entry, and what it means, written down as it is made.
struct Made {
    Record record{};
    std::vector<std::function<Meets(const Packet &)>> meets;

    void mark(int bit) { record.ConfigurationMask |= std::uint64_t{1} << bit; }
};

/// The operator's number as the record has it; 0, 6: unknown.
bool holds(std::uint32_t op, std::uint32_t value, std::uint32_t first, std::uint32_t last) {
    switch (op) {
    case 1:
        return value == first;
    case 2:
        return value > first;
    case 3:
        return value < first;
    case 4:
        return value != first;
    default:
        return first <= value && value <= last;
    }
}

using Read = std::uint32_t Packet::*;

/// Bits of operator, first and last value; some of them may be left out.
void add_comparison(Made &made, Random &random, std::array<int, 3> bits, std::uint32_t op,
                    std::uint32_t first, std::uint32_t last, Read read, bool alone_is_equal,
                    std::uint32_t every = no_port) {
    bool marked[3];
    for (int i = 0; i < 3; ++i) {
        marked[i] = random.percent(i == 2 && op != 5 ? 5 : 95);
        if (marked[i]) {
            made.mark(bits[static_cast<std::size_t>(i)]);
        }
    }
    if (!marked[0] && !marked[1] && !marked[2]) {
        return;
    }
    op = marked[0] ? op : 1;
    const bool clear = (marked[0] || alone_is_equal) && marked[1] && op >= 1 && op <= 5 &&
                       (op != 5 || (marked[2] && first <= last));
    made.meets.emplace_back([=](const Packet &packet) {
        return !clear ? Meets::perhaps
               : op == 1 && first == every
                   ? Meets::yes
                   : sure(packet.*read != no_port && holds(op, packet.*read, first, last));
    });
}

void add_address(Made &made, Random &random) {
    const bool wildcard = random.percent(50), length = random.percent(50);
    const bool address = random.percent(97), grouped = random.percent(15);
    const std::uint32_t value = random.below(8), wild = random.below(8);
    const std::uint32_t bits = random.between(28, 33);
    made.record.saddr = htonl(value);
    made.record.smask = htonl(wild);
    made.record.spfx_len = bits;
    made.record.net_src_obj = grouped ? const_cast<char *>("G") : nullptr;
    const std::pair<bool, int> marks[] = {{address, 2}, {wildcard, 3}, {length, 36}, {grouped, 47}};
    for (const auto &[marked, bit] : marks) {
        if (marked) {
            made.mark(bit);
        }
    }
    const std::uint32_t by_length = bits > 32 ? 0 : ~std::uint32_t{0} << (32 - bits);
    const std::uint32_t mask = length ? by_length : wildcard ? ~wild : ~std::uint32_t{0};
    const bool clear = !(length && bits > 32) && !(length && wildcard && by_length != ~wild) &&
                       (address || (!length && !wildcard)) && !(address && grouped);
    made.meets.emplace_back([=](const Packet &packet) {
        return !clear    ? Meets::perhaps
               : grouped ? sure(packet.in_group)
               : address ? sure(((packet.source ^ value) & mask) == 0)
                         : Meets::yes;
    });
}

void add_flags(Made &made, Random &random) {
    made.record.tcpflagsopr = random.percent(50) ? 1 : 3;
    made.record.tcpflags = static_cast<std::uint8_t>(random.below(4));
    made.record.tcpflags_mask = static_cast<std::uint8_t>(random.between(1, 3));
    for (const int bit : {20, 21, 22}) {
        made.mark(bit);
    }
    made.meets.emplace_back([record = made.record](const Packet &packet) {
        const std::uint32_t wrong = (packet.flags ^ record.tcpflags) & record.tcpflags_mask;
        return sure(packet.protocol == 6 &&
                    (record.tcpflagsopr == 1 ? wrong == 0 : wrong != record.tcpflags_mask));
    });
}

Made make_entry(Random &random) {
    Made made;
    Record &record = made.record;
    made.mark(0);
    const auto any = [&random](const auto &table) {
        return table[random.below(static_cast<std::uint32_t>(std::size(table)))];
    };
    if (random.percent(70)) {
        add_address(made, random);
    }
    if (random.percent(20)) {
        const std::uint32_t to = random.below(2);
        record.daddr = htonl(to);
        made.mark(7);
        made.meets.emplace_back(
            [to](const Packet &packet) { return sure(packet.destination == to); });
    }
    if (random.percent(60)) {
        record.proto_oper = static_cast<std::uint8_t>(random.percent(80) ? 1 : random.below(7));
        record.protocol = static_cast<std::uint16_t>(any(protocols));
        record.protocol2 = static_cast<std::uint16_t>(any(protocols));
        add_comparison(made, random, {53, 1, 54}, record.proto_oper, record.protocol,
                       record.protocol2, &Packet::protocol, true, 0);
    }
    if (random.percent(50)) {
        record.dopr = static_cast<std::uint8_t>(random.below(7));
        record.dport1 = static_cast<std::uint16_t>(any(ports));
        record.dport2 = static_cast<std::uint16_t>(any(ports));
        add_comparison(made, random, {9, 10, 11}, record.dopr, record.dport1, record.dport2,
                       &Packet::port, false);
    }
    if (random.percent(20)) {
        record.dscp_op = static_cast<std::uint8_t>(random.below(7));
        record.dscp = static_cast<std::uint8_t>(any(code_points));
        record.dscp2 = static_cast<std::uint8_t>(any(code_points));
        add_comparison(made, random, {14, 15, 16}, record.dscp_op, record.dscp, record.dscp2,
                       &Packet::dscp, true);
    }
    if (random.percent(10)) {
        add_flags(made, random);
    }
    return made;
}

Matched matched(const Made &made) {
    Matched all;
    for (const Packet &packet : packets) {
        Meets worst = Meets::yes;
        for (const auto &meets : made.meets) {
            worst = std::min(worst, meets(packet));
        }
        all.push_back(worst);
    }
    return all;
}

/// Whether one surely matches all that the other one matches perhaps.
bool contains(const Matched &outer, const Matched &inner) {
    return std::equal(inner.begin(), inner.end(), outer.begin(), [](Meets inside, Meets around) {
        return inside == Meets::no || around == Meets::yes;
    });
}

TEST(Shadowing, EveryClaimHoldsAndNineInTenAreMade) {
    Random random(1);
    int there = 0, found = 0;
    for (int list = 0; list < 60; ++list) {
        Shadowing shadowing;
        TextNumbers texts;
        std::vector<Matched> before;
        std::vector<PacketMatch> matches;
        for (std::uint32_t number = 0; number < 12; ++number) {
            const Made made = make_entry(random);
            const Matched mine = matched(made);
            const auto around = [&mine](const Matched &earlier) { return contains(earlier, mine); };
            const PacketMatch match = packet_match(made.record, Schema::base, texts);
            const auto claim = shadowing.add(match, number, number);
            const auto one_by_one =
                std::find_if(matches.begin(), matches.end(), [&match](const PacketMatch &earlier) {
                    return !match.nothing && surely_contains(earlier, match);
                });
            EXPECT_EQ(claim.value_or(number), one_by_one - matches.begin());
            matches.push_back(match);
            const auto first = std::find_if(before.begin(), before.end(), around);
            if (std::count(mine.begin(), mine.end(), Meets::no) !=
                static_cast<std::ptrdiff_t>(mine.size())) {
                there += first != before.end() ? 1 : 0;
            }
            if (claim) {
                ++found;
                ASSERT_LT(*claim, number);
                EXPECT_TRUE(around(before[*claim])) << "list " << list << ": " << number;
            }
            before.push_back(mine);
        }
    }
    EXPECT_GT(there, 100);
    EXPECT_GT(found, there * 9 / 10) << "of " << there;
}

/// Entries of one host each in a list of `steps`: which earlier one contains the last.
struct Hosts {
    std::vector<std::pair<std::uint32_t, std::optional<std::uint32_t>>> hosts; // and sequence
    std::uint64_t steps;
    std::optional<std::uint32_t> found;
    std::uint64_t unseen;
};

TEST(Shadowing, OrderAndSteps) {
    const Hosts table[] = {
        {{{1, 10}, {1, 20}}, 99, 0, 0},          {{{1, 20}, {1, 10}}, 99, {}, 0},
        {{{1, {}}, {1, {}}}, 99, 0, 0},          {{{1, 10}, {1, {}}}, 99, {}, 0},
        {{{2, 10}, {1, 20}, {1, 30}}, 99, 1, 0}, {{{2, 10}, {1, 20}, {1, 30}}, 2, {}, 1},
    };
    for (const Hosts &row : table) {
        Shadowing shadowing(row.steps);
        TextNumbers texts;
        std::optional<std::uint32_t> found;
        std::uint32_t number = 0;
        for (const auto &[host, sequence] : row.hosts) {
            Made made;
            made.record.saddr = htonl(host);
            made.mark(2);
            found =
                shadowing.add(packet_match(made.record, Schema::base, texts), sequence, number++);
        }
        EXPECT_EQ(found, row.found) << &row - table;
        EXPECT_EQ(shadowing.unseen(), row.unseen) << &row - table;
    }
}

} // namespace
} // namespace aceconv
