// The readers.
#include <array>
#include <cstdlib>
#include <cstring>

#include "tools/hostcheck/walk.h"

namespace aceconv::hostcheck {
namespace {

constexpr unsigned char untouched = 0xA5;

/// Room for a value among bytes that are not its.
template <typename Value>
struct Guarded {
    alignas(16) std::array<unsigned char, 48> bytes;
    Guarded() { bytes.fill(untouched); }
    Value *value() { return reinterpret_cast<Value *>(bytes.data() + 16); }
    Value copy() {
        Value result;
        std::memcpy(&result, bytes.data() + 16, sizeof result);
        return result;
    }
    /// Whether all is as it was, or all but the value.
    [[nodiscard]] bool clean(bool with_value) const {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const bool of_value = i >= 16 && i < 16 + sizeof(Value);
            if (bytes[i] != untouched && (with_value || !of_value)) {
                return false;
            }
        }
        return true;
    }
};

/// Calls the reader of the row's kind with `use(reader, Value())`, the reader being a
/// function of the node and of where the value goes.
template <typename Use>
void with_reader(Check &check, const Row &row, Use use) {
    const auto keywords = [&](auto reader) {
        use([&row, reader](ccv_yang_node *node,
                           std::uint32_t *value) { return reader(node, row.table, value); },
            std::uint32_t());
    };
    switch (row.kind) {
    case Kind::u8:
        return use(CALL(check, ccv_yang_get_uint8), std::uint8_t());
    case Kind::u16:
        return use(CALL(check, ccv_yang_get_uint16), std::uint16_t());
    case Kind::u32:
        return use(CALL(check, ccv_yang_get_uint32), std::uint32_t());
    case Kind::boolean:
        return use(CALL(check, ccv_yang_get_bool), std::uint32_t());
    case Kind::address:
        return use(CALL(check, ccv_yang_get_ipv4), std::uint32_t());
    case Kind::keyword:
        return keywords(CALL(check, ccv_yang_get_enum));
    case Kind::keyword_or_number:
    case Kind::named_number:
        return keywords(CALL(check, ccv_yang_get_enum_or_uint32));
    case Kind::bits:
        return keywords(CALL(check, ccv_yang_get_bits));
    default:
        return;
    }
}

void read_number(Check &check, const Row &row, ccv_yang_node *node) {
    with_reader(check, row, [&](auto reader, auto type) {
        using Value = decltype(type);
        Guarded<Value> first, second;
        check.expect_success(reader(node, first.value()));
        check.expect(first.clean(false), "writes more than the " + std::to_string(sizeof(Value)) +
                                             " bytes of its destination");
        const Value value = first.copy();
        check.expect(row.kind == Kind::address || value == static_cast<Value>(number_of(row)),
                     "gives " + std::to_string(value) + " for \"" + row.value + "\", not " +
                         std::to_string(number_of(row)));
        check.expect(reader(node, second.value()) == 0 && second.copy() == value,
                     "gives something else when the leaf is read again");
    });
}

void read_string(Check &check, const Row &row, ccv_yang_node *node) {
    const auto read = [&] {
        char *text = nullptr;
        check.expect_success(CALL(check, ccv_yang_get_string)(node, &text));
        check.expect(text != nullptr, "reports success and gives no text");
        return text;
    };
    char *const first = read();
    check.expect(std::strcmp(first, row.value) == 0, std::string("gives \"") + first + "\"");
    char *const second = read();
    check.expect(first != second, "gives the same block twice: each text is a new one from malloc");
    const std::string again = "gives something else when the leaf is read again";
    check.expect(std::strcmp(second, row.value) == 0, again);
    std::memset(first, '#', std::strlen(first));
    check.expect(std::strcmp(second, row.value) == 0, "gives blocks that overlap");
    // What is not from malloc ends the process here.
    std::free(first);
    std::free(second);
    char *const third = read();
    check.expect(std::strcmp(third, row.value) == 0,
                 again + ": the text was the host's own, not a new block from malloc");
    std::free(third);
}

/// A leaf with a value outside its type, below a container if there is one.
struct Refusal {
    hostcheck_schema schema;
    const char *container;
    Row leaf;
};

const Refusal refusals[] = {
    {HOSTCHECK_BASE, "time-to-live", {0, Kind::u8, "time-to-live-min", "256"}},
    {HOSTCHECK_BASE, "time-to-live", {0, Kind::u8, "time-to-live-min", "-1"}},
    {HOSTCHECK_BASE, nullptr, {0, Kind::u16, "qos-group", "65536"}},
    {HOSTCHECK_BASE, nullptr, {0, Kind::u16, "qos-group", "1x"}},
    {HOSTCHECK_BASE, "source-network", {0, Kind::u32, "source-prefix-length", "4294967296"}},
    {HOSTCHECK_BASE, "source-network", {0, Kind::u32, "source-prefix-length", ""}},
    {HOSTCHECK_BASE, "source-network", {0, Kind::address, "source-address", "192.0.2.256"}},
    {HOSTCHECK_BASE, "source-network", {0, Kind::address, "source-address", "192.0.2"}},
    {HOSTCHECK_BASE, nullptr, {0, Kind::boolean, "capture", "maybe"}},
};
const Refusal keyword_refusals[] = {
    {HOSTCHECK_BASE, nullptr, {0, Kind::keyword, "grant", "perm"}},
    {HOSTCHECK_BASE, nullptr, {0, Kind::keyword, "grant", "permitted"}},
    {HOSTCHECK_BASE, nullptr, {0, Kind::keyword, "grant", "Permit"}},
    {HOSTCHECK_BASE, nullptr, {0, Kind::named_number, "protocol", "tcpp"}},
    {HOSTCHECK_BASE, nullptr, {0, Kind::named_number, "protocol", "4294967296"}},
    {HOSTCHECK_BASE, "tcp", {0, Kind::bits, "tcp-bits", "fin syx"}},
};
const ccv_yang_keyword words[] = {{6, "tcp"}, {0, "fin"}, {1, "permit"}, {4, "syn"}, {0, nullptr}};

void refuse(Check &check, const Refusal &refusal, const ccv_yang_keyword *table) {
    Row leaf = refusal.leaf;
    leaf.table = table;
    leaf.depth = refusal.container != nullptr ? 1 : 0;
    std::vector<Row> rows{sequence_number};
    if (refusal.container != nullptr) {
        rows.push_back({0, Kind::container, refusal.container});
    }
    rows.push_back(leaf);
    check.at("the leaf " + quoted(leaf));
    ccv_yang_node *const node =
        CALL(check, hostcheck_tree_create)(refusal.schema, for_host(rows).data());
    if (node == nullptr) {
        return; // refused on the way in
    }
    const Entry entry{"", refusal.schema, rows};
    walk(check, node, entry, [&](const Row &row, ccv_yang_node *at) {
        with_reader(check, row, [&](auto reader, auto type) {
            Guarded<decltype(type)> destination;
            check.expect(reader(at, destination.value()) != 0,
                         std::string("accepts \"") + row.value + "\"");
            check.expect(destination.clean(true), "fails and changes its destination");
        });
    });
    CALL(check, hostcheck_tree_free)(node);
}

} // namespace

void read_leaves(Check &check) {
    for (const Entry &entry : entries) {
        const Tree tree(check, entry);
        std::vector<std::pair<const char *, const char *>> names; // given, and the right ones
        std::uint32_t entries_left = 0;
        walk(check, tree.node(), entry, [&](const Row &row, ccv_yang_node *node) {
            check.at("the node " + quoted(row) + " of " + entry.name);
            names.emplace_back(CALL(check, ccv_yang_get_node_name)(node), row.name);
            if (row.kind == Kind::string) {
                read_string(check, row, node);
            } else if (row.kind == Kind::list) {
                check.expect_success(
                    CALL(check, ccv_yang_get_list_entry_count)(node, &entries_left));
                const std::size_t place = static_cast<std::size_t>(&row - entry.rows.data());
                const std::size_t count = children(entry.rows, &place).size();
                check.expect(entries_left == count, "gives " + std::to_string(entries_left) +
                                                        " for a list of " + std::to_string(count) +
                                                        " entries");
            } else {
                read_number(check, row, node);
            }
        });
        check.at(entry.name);
        for (const auto &[given, right] : names) {
            if (std::strcmp(given, right) != 0) {
                check.broken(
                    "ccv_yang_get_node_name",
                    std::string("gives a name that does not last as long as the tree: \"") + right +
                        "\" has become \"" + given + "\"");
            }
        }
    }
}

void refuse_values(Check &check) {
    for (const Refusal &refusal : refusals) {
        refuse(check, refusal, nullptr);
    }
    for (const Refusal &refusal : keyword_refusals) {
        refuse(check, refusal, words);
    }
}

} // namespace aceconv::hostcheck
