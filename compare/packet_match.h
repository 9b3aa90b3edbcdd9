// What a record compares packets with, as sets of what a packet may hold.
//
// An entry matches the packets that meet everything it compares; a packet that does not
// have a field at all, such as a port, does not meet what is compared with it. Where the
// record leaves open what is meant, nothing is taken to be compared, and the match says
// so: it is then what the entry matches at most.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "aceconv/ace_record.h"
#include "compare/record_marks.h"

namespace aceconv {

enum class Dimension : std::uint8_t {
    // bits of an address
    source,
    destination,
    // numbers
    protocol,
    source_port,
    destination_port,
    dscp,
    packet_length,
    ttl,
    fragment_offset,
    precedence,
    icmp_message, // type and code in one
    igmp_type,
    // what is the same or not
    source_group,
    destination_group,
    source_port_group,
    destination_port_group,
    tcp_flags,
    fragments,
    fragment_type,
    user_fields,
};

/// From first to last; empty where first is the greater one.
struct Interval {
    std::uint32_t first = 1;
    std::uint32_t last = 0;

    [[nodiscard]] bool empty() const { return first > last; }
    [[nodiscard]] bool contains(Interval other) const {
        return other.empty() || (first <= other.first && other.last <= last);
    }
};

/// Two runs that do not touch.
using Numbers = std::array<Interval, 2>;

/// A field of packets that is compared by an operator.
struct ComparedField {
    Dimension dimension;
    const char *name;                                      // "source port"
    std::uint32_t highest;                                 // that a packet can have
    bool everywhere;                                       // every packet has it
    Interval (*values)(const ipv4_acl_config_ace &record); // as they stand there
    const char *first_member; // of the record, that holds the first of them
    const Comparison *marks;
    Mask group; // of its values, by name
};
std::span<const ComparedField> compared_fields();

/// What a record says of such a field.
struct Compared {
    enum class As : std::uint8_t {
        nothing,   // it is not compared, or with every number that there is
        numbers,   // some
        no_number, // none that a packet can have
        backwards, // a range whose first number is above its last
        unclear,   // an operator, a value or an end of a range is missing or unknown
    };
    As as = As::nothing;
    Numbers numbers = {};
};
Compared compared(const ipv4_acl_config_ace &record, const ComparedField &field, Schema schema);

/// The numbers that the record compares the packet's protocol with.
Compared compared_protocol(const ipv4_acl_config_ace &record, Schema schema);

/// Whether it compares with one that no packet can have.
bool impossible_precedence(const ipv4_acl_config_ace &record);
bool impossible_message(const ipv4_acl_config_ace &record); // of ICMP

/// The address of one side in a record, first octets in the upper bits.
struct SideAddress {
    bool has_address, has_wildcard, has_length;
    bool has_group; // of prefixes, by name
    std::uint32_t address, wildcard, length;
};
SideAddress source_of(const ipv4_acl_config_ace &record);
SideAddress destination_of(const ipv4_acl_config_ace &record);

/// The bits of an address that a prefix length compares; one above 32 all of them.
constexpr std::uint32_t prefix_bits(std::uint32_t length) {
    return length == 0 ? 0 : ~std::uint32_t{0} << (32 - std::min<std::uint32_t>(length, 32));
}

struct AddressBits {
    std::uint32_t value; // zero where no bit is compared
    std::uint32_t mask;  // of the bits that are

    [[nodiscard]] bool contains(AddressBits other) const {
        return (mask & ~other.mask) == 0 && (other.value & mask) == value;
    }
};

/// What packets must have to meet one comparison.
struct Limit {
    Dimension dimension;
    std::variant<AddressBits, Numbers, std::uint32_t> what; // the last: a text's number

    /// Whether it lets through all that `other`, of the same dimension, does.
    [[nodiscard]] bool contains(const Limit &other) const;
};

/// Numbers for texts, the same for the same text.
class TextNumbers {
  public:
    std::uint32_t of(const std::string &text) {
        const auto next = static_cast<std::uint32_t>(numbers_.size());
        return numbers_.try_emplace(text, next).first->second;
    }

  private:
    std::unordered_map<std::string, std::uint32_t> numbers_;
};

struct PacketMatch {
    std::vector<Limit> limits; // by ascending dimension, one each
    bool certain = true;       // it matches this and no less
    bool nothing = false;      // no packet meets it
};

/// Matches can be compared where `texts` is the same.
PacketMatch packet_match(const ipv4_acl_config_ace &record, Schema schema, TextNumbers &texts);

/// Whether `outer` surely matches every packet that `inner` matches.
bool surely_contains(const PacketMatch &outer, const PacketMatch &inner);

} // namespace aceconv
