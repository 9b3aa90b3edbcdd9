#include "tools/hostcheck/entries.h"

#include <cstdlib>
#include <cstring>
#include <sstream>

#include "aceconv/keywords.h"

namespace aceconv::hostcheck {
namespace {

using enum Kind;

// clang-format off
const Row base_all[] = {
    sequence_number,
    {0, keyword, "grant", "permit", acl_yang_acl_grant},
    {0, keyword, "protocol-operator", "range", acl_yang_acl_operator},
    {0, named_number, "protocol", "tcp", acl_yang_acl_protocol},
    {0, named_number, "protocol2", "253", acl_yang_acl_protocol},
    {0, container, "source-network"},
    {1, address, "source-address", "192.0.2.77"},
    {1, address, "source-wild-card-bits", "0.0.0.255"},
    {1, u32, "source-prefix-length", "24"},
    {0, container, "destination-network"},
    {1, address, "destination-address", "203.0.113.1"},
    {0, container, "source-port"},
    {1, keyword, "source-operator", "range", acl_yang_acl_operator},
    {1, named_number, "first-source-port", "www", acl_yang_acl_port},
    {1, named_number, "second-source-port", "65535", acl_yang_acl_port},
    {0, container, "icmp"},
    {1, keyword_or_number, "icmp-type-code", "echo", acl_yang_acl_icmp_type_code},
    {0, container, "tcp"},
    {1, keyword_or_number, "tcp-bits-match-operator", "match-any", acl_yang_acl_tcp_bits_match},
    {1, bits, "tcp-bits", "fin ack", acl_yang_acl_tcp_bits},
    {1, bits, "tcp-bits-mask", "fin syn rst psh ack urg", acl_yang_acl_tcp_bits},
    {0, container, "packet-length"},
    {1, keyword, "packet-length-operator", "less-than", acl_yang_acl_operator},
    {1, u16, "packet-length-min", "1501"},
    {0, container, "time-to-live"},
    {1, keyword, "time-to-live-operator", "range", acl_yang_acl_operator},
    {1, u8, "time-to-live-min", "0"},
    {1, u8, "time-to-live-max", "255"},
    {0, container, "fragment-offset"},
    {1, keyword, "fragment-offset-operator", "equal", acl_yang_acl_operator},
    {1, u16, "fragment-offset-1", "65535"},
    {0, keyword_or_number, "fragment-type", "dont-fragment is-fragment", acl_yang_acl_fragment_flags},
    {0, container, "next-hop"},
    {1, keyword, "next-hop-type", "regular-next-hop", acl_yang_acl_nexthop_type},
    {1, container, "next-hop-1"},
    {2, address, "next-hop", "198.51.100.1"},
    {2, string, "vrf-name", "blue"},
    {2, string, "track-name", "uplink"},
    {1, container, "next-hop-2"},
    {2, address, "next-hop", "198.51.100.2"},
    {0, string, "counter-name", "c"},
    {0, keyword_or_number, "igmp-message-type", "200", acl_yang_acl_igmp_type},
    {0, container, "dscp"},
    {1, keyword, "dscp-operator", "range", acl_yang_acl_operator},
    {1, named_number, "dscp-min", "af11", acl_yang_acl_dscp},
    {1, named_number, "dscp-max", "63", acl_yang_acl_dscp},
    {0, keyword_or_number, "precedence", "routine", acl_yang_acl_precedence},
    {0, keyword, "log-option", "log-input", acl_yang_acl_log},
    {0, boolean, "capture", "true"},
    {0, empty, "icmp-off", ""},
    {0, u16, "qos-group", "65535"},
    {0, u16, "set-ttl", "0"},
    {0, empty, "fragments", ""},
    {0, string, "remark", "Gr\xC3\xBC\xC3\x9F" "e, \"quotes\" & <tags>"},
    {0, string, "source-prefix-group", "inside"},
    {0, string, "sequence-str", ""},
};

const Row base_end_in_containers[] = {
    sequence_number,
    {0, keyword, "grant", "deny", acl_yang_acl_grant},
    {0, named_number, "protocol", "ip", acl_yang_acl_protocol},
    {0, container, "source-network"},
    {1, u32, "source-prefix-length", "4294967295"},
    {0, container, "icmp"},
    {1, keyword_or_number, "icmp-type-code", "524293", acl_yang_acl_icmp_type_code},
    {0, container, "next-hop"},
    {1, container, "next-hop-1"},
    {2, string, "vrf-name", "red"},
    {0, boolean, "capture", "false"},
};

const Row um_all[] = {
    sequence_number,
    {0, presence, "permit"},
    {1, container, "range"},
    {2, keyword_or_number, "start-protocol", "tcp", acl_yang_acl_protocol_um},
    {2, keyword_or_number, "end-protocol", "253", acl_yang_acl_protocol_um},
    {1, container, "source"},
    {2, address, "address", "192.0.2.77"},
    {2, address, "wildcard-mask", "0.0.0.255"},
    {2, container, "port"},
    {3, container, "range"},
    {4, keyword_or_number, "start-value", "1023", acl_yang_acl_port_um},
    {4, keyword_or_number, "end-value", "65535", acl_yang_acl_port_um},
    {1, container, "destination"},
    {2, address, "address", "203.0.113.0"},
    {2, u32, "prefix-length", "24"},
    {2, string, "port-group", "web"},
    {1, container, "tcp-flags"},
    {2, presence, "match-all"},
    {3, string, "tcp-bits", "+syn -ack"},
    {1, container, "icmp"},
    {2, keyword_or_number, "message-type-name", "Echo", acl_yang_acl_icmp_type_code_um},
    {1, keyword_or_number, "igmp-type", "v2-report", acl_yang_acl_igmp_type},
    {1, container, "dscp"},
    {2, container, "range"},
    {3, keyword_or_number, "start-value", "af11", acl_yang_acl_dscp},
    {3, keyword_or_number, "end-value", "63", acl_yang_acl_dscp},
    {1, keyword_or_number, "precedence", "Critical", acl_yang_acl_precedence_um},
    {1, container, "packet-length"},
    {2, u16, "gt", "1500"},
    {1, container, "ttl"},
    {2, container, "range"},
    {3, u8, "start-value", "1"},
    {3, u8, "end-value", "255"},
    {1, container, "fragment-offset"},
    {2, u16, "neq", "8"},
    {1, presence, "fragments"},
    {1, keyword, "fragment-type", "dont-fragment is-fragment", acl_yang_acl_fragment_type_um},
    {1, presence, "udf-entries"},
    {2, list, "udf"},
    {3, list_entry, "udf"},
    {4, string, "udf-name", "zulu"},
    {4, string, "udf-value", "1f"},
    {4, string, "udf-mask", "ffffffff"},
    {3, list_entry, "udf"},
    {4, string, "udf-name", "alpha"},
    {4, string, "udf-value", "0"},
    {4, string, "udf-mask", "1"},
    {3, list_entry, "udf"},
    {4, string, "udf-name", "mike"},
    {4, string, "udf-value", "2"},
    {4, string, "udf-mask", "3"},
    {1, container, "police"},
    {2, u32, "value", "4294967295"},
    {2, string, "unit", "kbps"},
    {2, u32, "peak-rate", "1"},
    {2, string, "peak-unit", "pps"},
    {2, keyword, "priority", "medium", acl_yang_acl_priority_um},
    {1, presence, "nexthop1"},
    {2, address, "ipv4", "198.51.100.1"},
    {2, string, "vrf", "blue"},
    {2, string, "track", "uplink"},
    {1, presence, "nexthop2"},
    {2, address, "ipv4", "198.51.100.2"},
    {1, presence, "capture"},
    {1, string, "counter", "c"},
    {1, presence, "log"},
    {1, container, "set"},
    {2, u16, "qos-group", "65535"},
    {2, u16, "ttl", "255"},
    {0, string, "remark", "Gr\xC3\xBC\xC3\x9F" "e"},
};

const Row um_empty_containers[] = {
    sequence_number,
    {0, presence, "deny"},
    {1, keyword_or_number, "protocol", "ipv4", acl_yang_acl_protocol_um},
    {1, container, "source"},
    {2, presence, "any"},
    {1, container, "destination"},
    {2, address, "host", "255.255.255.255"},
    {2, presence, "port"},
    {3, keyword_or_number, "eq", "WWW", acl_yang_acl_port_um},
    {1, container, "tcp-flags"},
    {2, bits, "tcp-bits", "syn urg", acl_yang_acl_tcp_bits},
    {1, presence, "default"},
    {1, presence, "log-input"},
    {1, presence, "icmp-on"},
};
// clang-format on

const Entry all[] = {
    {"the base entry with all kinds of leaves", HOSTCHECK_BASE, base_all},
    {"the base entry that ends in containers", HOSTCHECK_BASE, base_end_in_containers},
    {"the um entry with all kinds of leaves", HOSTCHECK_UM, um_all},
    {"the um entry with empty containers", HOSTCHECK_UM, um_empty_containers},
};

const ccv_yang_keyword *find(const Row &row, const std::string &name) {
    for (const ccv_yang_keyword *at = row.table; at != nullptr && at->name != nullptr; ++at) {
        if (name == at->name) {
            return at;
        }
    }
    return nullptr;
}

} // namespace

const std::span<const Entry> entries = all;

std::uint32_t number_of(const Row &row) {
    if (row.kind == boolean) {
        return std::strcmp(row.value, "true") == 0 ? 1 : 0;
    }
    if (row.kind == bits) {
        std::uint32_t set = 0;
        std::istringstream names(row.value);
        for (std::string name; names >> name;) {
            set |= std::uint32_t{1} << find(row, name)->value;
        }
        return set;
    }
    const ccv_yang_keyword *const found = find(row, row.value);
    return found != nullptr ? found->value
                            : static_cast<std::uint32_t>(std::strtoul(row.value, nullptr, 10));
}

std::string written(const Row &row) {
    return row.kind == named_number ? std::to_string(number_of(row)) : row.value;
}

std::string quoted(const Row &row) {
    std::string text = std::string("\"") + row.name + "\"";
    return row.value == nullptr ? text : text + " \"" + row.value + "\"";
}

std::vector<hostcheck_row> for_host(Rows rows) {
    const auto form = [](const Row &row) {
        switch (row.kind) {
        case container:
        case presence:
            return HOSTCHECK_CONTAINER;
        case list:
            return HOSTCHECK_LIST;
        case list_entry:
            return HOSTCHECK_LIST_ENTRY;
        case keyword:
        case keyword_or_number:
        case named_number:
            return find(row, row.value) != nullptr ? HOSTCHECK_NAME : HOSTCHECK_NUMBER;
        case bits:
            return HOSTCHECK_BITS;
        case boolean:
            return HOSTCHECK_BOOLEAN;
        case address:
            return HOSTCHECK_ADDRESS;
        case string:
            return HOSTCHECK_STRING;
        case empty:
            return HOSTCHECK_EMPTY;
        default:
            return HOSTCHECK_NUMBER;
        }
    };
    std::vector<hostcheck_row> result;
    for (const Row &row : rows) {
        result.push_back({row.depth, form(row), row.name, row.value});
    }
    result.push_back({});
    return result;
}

std::vector<std::size_t> children(Rows rows, const std::size_t *parent) {
    const std::uint32_t depth = parent != nullptr ? rows[*parent].depth + 1 : 0;
    std::vector<std::size_t> found;
    for (std::size_t i = parent != nullptr ? *parent + 1 : 0;
         i < rows.size() && rows[i].depth >= depth; ++i) {
        if (rows[i].depth == depth) {
            found.push_back(i);
        }
    }
    return found;
}

} // namespace aceconv::hostcheck
