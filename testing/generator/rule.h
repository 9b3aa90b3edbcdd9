// Random access-list rules and their text in both schemas: input for the
// end-to-end benchmarks. The same seed gives the same rules everywhere.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace aceconv::bench {

/// SplitMix64. The standard library's distributions differ between implementations.
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint32_t below(std::uint32_t bound);
    /// From first to last, both included.
    std::uint32_t between(std::uint32_t first, std::uint32_t last) {
        return first + below(last - first + 1);
    }
    bool percent(std::uint32_t chance) { return below(100) < chance; }

  private:
    std::uint64_t state_;
};

/// An operator and its values; operators are numbered as in the ACE record.
struct Match {
    bool present = false;
    std::uint32_t op = 0; // 0: a value alone, which only DSCP can have
    std::uint32_t first = 0;
    std::uint32_t last = 0; // of a range
};

struct Side {
    enum class Kind { any, host, prefix, wildcard, group } kind = Kind::any;
    std::uint32_t address = 0; // first octet in the upper bits
    std::uint32_t length = 0;
    std::string group;
    std::string port_group;
    Match port;
};

struct NextHop {
    std::uint32_t address = 0;
    std::string vrf;
    std::string track;
};

struct Udf {
    std::string name;
    std::uint32_t value;
    std::uint32_t mask;
};

struct Rule {
    std::uint32_t sequence = 0;
    bool remark_only = false;
    bool permit = false;
    bool names = false; // keywords where there are any, else numbers
    Match protocol;     // op 0: the plain leaf
    Side source;
    Side destination;
    bool icmp = false;
    std::uint32_t icmp_type_code = 0;
    std::uint32_t flags_op = 0; // 1 all, 3 any, 0: no operator
    std::uint32_t flags = 0;    // as in the ACE record
    std::uint32_t flags_mask = 0;
    Match packet_length;
    Match ttl;
    Match fragment_offset;
    std::uint32_t fragment_type = 0; // row of the base schema's keyword table plus 1; 0 none
    bool default_next_hop = false;
    std::vector<NextHop> next_hops;
    std::string counter;
    std::uint32_t igmp_type = 0; // 0 none
    Match dscp;
    Match precedence; // op 0
    std::uint32_t log = 0;
    bool capture = false;
    bool icmp_off = false;
    bool icmp_on = false; // UM only, like udf and police
    Match qos_group;      // op 0, like set_ttl
    Match set_ttl;
    bool fragments = false;
    std::string remark;
    bool sequence_text = false; // base only
    std::vector<Udf> udf;
    bool police = false;
    std::uint32_t rate = 0;
    std::uint32_t unit = 0;
    std::uint32_t priority = 0;
};

/// A rule as operators write them: mostly a protocol, two networks, a port, now
/// and then anything else.
Rule random_rule(Random &random, std::uint32_t sequence);

/// The entry as one JSON object on one line (RFC 7951), without a line end.
void append_base(std::string &text, const Rule &rule);
void append_um(std::string &text, const Rule &rule);

} // namespace aceconv::bench
