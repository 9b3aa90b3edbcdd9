// The recording host's YANG access: walk, readers, emitters.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "recording_host.h"

namespace {

using aceconv::test::Call;
using aceconv::test::Host;
using aceconv::test::Node;

constexpr uint32_t bad_value = 0xBAD0;

struct Level {
    uint32_t step;
    Node *parent;
    size_t at;

    [[nodiscard]] bool exhausted() const { return at >= parent->children.size(); }
    [[nodiscard]] Node *node() const { return exhausted() ? nullptr : &parent->children[at]; }
};

Node &as_node(ccv_yang_node *node) {
    return *reinterpret_cast<Node *>(node);
}
ccv_yang_node *as_handle(Node *node) {
    return reinterpret_cast<ccv_yang_node *>(node);
}

} // namespace

struct ccv_yang_iter {
    Node *entry;
    std::vector<Level> levels;
};

namespace {

// Shows the node that the walk stands on now.
void stand(Host &host, const ccv_yang_iter &iterator, ccv_yang_node **current, int32_t *index) {
    const Level &level = iterator.levels.back();
    if (!level.exhausted() || host.ending != aceconv::test::Ending::finished) {
        *current = as_handle(level.node());
    }
    if ((level.step == CCV_YANG_STEP_LIST) != (index != nullptr)) {
        host.faults.emplace_back("an index goes with list entries only");
    }
    if (index != nullptr) {
        *index = static_cast<int32_t>(level.at) + host.index_bias;
    }
}

} // namespace

uint32_t ccv_yang_iter_create(ccv_yang_node *node, ccv_yang_iter **iterator) {
    const Call call("create");
    if (*iterator != nullptr || &as_node(node) != &call.host.root) {
        call.host.faults.emplace_back("create: handle or node");
    }
    if (call.failure == 0 || call.host.handle_on_failure) {
        *iterator = new ccv_yang_iter{&as_node(node), {}};
        ++call.host.created;
    }
    return call.failure;
}

int32_t ccv_yang_iter_is_active(ccv_yang_iter *) {
    const Call call("active", false);
    return call.host.passes > 0 ? 0x100 : 0;
}

void ccv_yang_iter_first(uint32_t step, ccv_yang_iter *iterator, uint32_t *status,
                         ccv_yang_node **current, int32_t *index) {
    const std::string name = step == CCV_YANG_STEP_ENTRY ? "" : ":" + as_node(*current).name;
    const Call call("first" + std::to_string(step) + name, *status == 0);
    if (call.failure != 0) {
        *status = call.failure;
        return;
    }
    if (step == CCV_YANG_STEP_ENTRY) {
        --call.host.passes;
        iterator->levels.assign(1, {step, iterator->entry, 0});
    } else {
        if (as_handle(iterator->levels.back().node()) != *current) {
            call.host.faults.emplace_back("first: not the current node");
        }
        iterator->levels.push_back({step, &as_node(*current), 0});
    }
    stand(call.host, *iterator, current, index);
}

int32_t ccv_yang_iter_is_finished(uint32_t step, ccv_yang_iter *iterator, uint32_t *status) {
    const Call call("finished" + std::to_string(step), *status == 0);
    if (call.failure != 0) {
        *status = call.failure;
        return 1;
    }
    if (*status == 0 && iterator->levels.back().step != step) {
        call.host.faults.emplace_back("finished: another level is open");
    }
    return iterator->levels.back().exhausted() &&
                   call.host.ending != aceconv::test::Ending::null_node
               ? 0x100
               : 0;
}

void ccv_yang_iter_next(ccv_yang_iter *iterator, uint32_t *status, ccv_yang_node **current,
                        int32_t *index) {
    const Call call("next", *status == 0);
    if (call.failure != 0) {
        *status = call.failure;
        return;
    }
    if (iterator->levels.size() > 1 && iterator->levels.back().exhausted()) {
        iterator->levels.pop_back();
    }
    ++iterator->levels.back().at;
    if (*status == 0) {
        stand(call.host, *iterator, current, index);
    }
}

void ccv_yang_iter_destroy(ccv_yang_iter *iterator) {
    const Call call(iterator != nullptr ? "destroy" : "destroy:null", false);
    call.host.created -= iterator != nullptr ? 1 : 0;
    delete iterator;
}

const char *ccv_yang_get_node_name(ccv_yang_node *node) {
    return as_node(node).name.c_str();
}

namespace {

// "#300" is delivered as it stands, as a host with laxer rules would.
bool number(const std::string &text, uint32_t largest, uint32_t &value) {
    char *end = nullptr;
    const char *start = text.c_str() + (text.starts_with('#') ? 1 : 0);
    const unsigned long parsed = std::strtoul(start, &end, 10);
    value = static_cast<uint32_t>(parsed);
    return end != start && *end == '\0' && parsed <= largest;
}

const ccv_yang_keyword *row_named(const ccv_yang_keyword *table, const std::string &name) {
    while (table->name != nullptr && name != table->name) {
        ++table;
    }
    return table->name != nullptr ? table : nullptr;
}

const ccv_yang_keyword *row_of(const ccv_yang_keyword *table, uint32_t value) {
    while (table->name != nullptr && value != table->value) {
        ++table;
    }
    return table->name != nullptr ? table : nullptr;
}

template <typename Value, typename Parse>
uint32_t read(const char *reader, ccv_yang_node *node, Value *value, Parse parse) {
    const Call call(std::string(reader) + ":" + as_node(node).name);
    uint32_t parsed = 0;
    if (call.failure != 0) {
        return call.failure;
    }
    if (!parse(as_node(node).value, parsed)) {
        return bad_value;
    }
    *value = static_cast<Value>(parsed);
    return 0;
}

template <typename Value>
uint32_t read_number(const char *reader, ccv_yang_node *node, Value *value) {
    return read(reader, node, value, [](const std::string &text, uint32_t &parsed) {
        return number(text, std::numeric_limits<Value>::max(), parsed);
    });
}

uint32_t read_keyword(const char *reader, ccv_yang_node *node, const ccv_yang_keyword *table,
                      uint32_t *value, bool numbers) {
    Host::current()->tables.insert(table);
    return read(reader, node, value, [=](const std::string &text, uint32_t &parsed) {
        const ccv_yang_keyword *row = row_named(table, text);
        parsed = row != nullptr ? row->value : 0;
        return row != nullptr ||
               ((numbers || text.starts_with('#')) && number(text, UINT32_MAX, parsed));
    });
}

} // namespace

uint32_t ccv_yang_get_enum(ccv_yang_node *node, const ccv_yang_keyword *table, uint32_t *value) {
    return read_keyword("get_enum", node, table, value, false);
}

uint32_t ccv_yang_get_enum_or_uint32(ccv_yang_node *node, const ccv_yang_keyword *table,
                                     uint32_t *value) {
    return read_keyword("get_enum_or_uint32", node, table, value, true);
}

uint32_t ccv_yang_get_bits(ccv_yang_node *node, const ccv_yang_keyword *table, uint32_t *bits) {
    Host::current()->tables.insert(table);
    return read("get_bits", node, bits, [table](std::string text, uint32_t &parsed) {
        for (text += ' '; text.size() > 1; text.erase(0, text.find(' ') + 1)) {
            const ccv_yang_keyword *row = row_named(table, text.substr(0, text.find(' ')));
            if (row == nullptr) {
                return text.starts_with('#') &&
                       number(text.substr(0, text.size() - 1), UINT32_MAX, parsed);
            }
            parsed |= 1U << row->value;
        }
        return true;
    });
}

uint32_t ccv_yang_get_uint8(ccv_yang_node *node, uint8_t *value) {
    return read_number("get_uint8", node, value);
}
uint32_t ccv_yang_get_uint16(ccv_yang_node *node, uint16_t *value) {
    return read_number("get_uint16", node, value);
}
uint32_t ccv_yang_get_uint32(ccv_yang_node *node, uint32_t *value) {
    return read_number("get_uint32", node, value);
}

uint32_t ccv_yang_get_bool(ccv_yang_node *node, uint32_t *value) {
    return read("get_bool", node, value, [](const std::string &text, uint32_t &parsed) {
        parsed = text == "true" ? 1 : 0;
        return text == "true" || text == "false";
    });
}

uint32_t ccv_yang_get_ipv4(ccv_yang_node *node, uint32_t *address) {
    return read("get_ipv4", node, address, [](const std::string &text, uint32_t &parsed) {
        bool valid = false;
        parsed = aceconv::test::parse_address(text, valid);
        return valid;
    });
}

uint32_t ccv_yang_get_string(ccv_yang_node *node, char **text) {
    const Call call("get_string:" + as_node(node).name);
    if (call.failure == 0) {
        const std::string &value = as_node(node).value;
        *text = static_cast<char *>(call.host.allocate(value.size() + 1));
        std::memcpy(*text, value.c_str(), value.size() + 1);
    }
    return call.failure;
}

uint32_t ccv_yang_get_list_entry_count(ccv_yang_node *node, uint32_t *count) {
    const Call call("count:" + as_node(node).name);
    if (call.failure == 0) {
        std::vector<uint32_t> &scripted = call.host.list_counts;
        *count = static_cast<uint32_t>(as_node(node).children.size());
        if (!scripted.empty()) {
            *count = scripted.front();
            scripted.erase(scripted.begin());
        }
    }
    return call.failure;
}

namespace {

uint32_t write(ccv_yang_output *output, const std::string &token) {
    const Call call(token);
    call.host.output.push_back(token);
    if (output != call.host.handle()) {
        call.host.faults.emplace_back("another emitter handle");
    }
    return call.failure;
}

uint32_t write_leaf(ccv_yang_output *output, char kind, const char *name,
                    const std::string &value) {
    return write(output, std::string(1, kind) + ":" + name + "=" + value);
}

} // namespace

uint32_t ccv_yang_container_begin(ccv_yang_output *output, const char *name) {
    return write(output, std::string(name) + "{");
}
uint32_t ccv_yang_container_end(ccv_yang_output *output) {
    return write(output, "}");
}
uint32_t ccv_yang_presence(ccv_yang_output *output) {
    return write(output, "!");
}

uint32_t ccv_yang_list_begin(ccv_yang_output *output, const char *name) {
    return write(output, std::string(name) + "[");
}
uint32_t ccv_yang_list_entry_begin(ccv_yang_output *output, const char *name, uint32_t keys) {
    return write(output, std::string(name) + (keys == 1 ? "(" : "(keys "));
}
uint32_t ccv_yang_list_entry_end(ccv_yang_output *output) {
    return write(output, ")");
}
uint32_t ccv_yang_list_end(ccv_yang_output *output) {
    return write(output, "]");
}

uint32_t ccv_yang_enum(ccv_yang_output *output, const char *name, const ccv_yang_keyword *table,
                       uint32_t value) {
    Host::current()->tables.insert(table);
    const ccv_yang_keyword *row = row_of(table, value);
    return write_leaf(output, 'e', name, row != nullptr ? row->name : "#" + std::to_string(value));
}

uint32_t ccv_yang_enum_or_uint32(ccv_yang_output *output, const char *name,
                                 const ccv_yang_keyword *table, uint32_t value) {
    Host::current()->tables.insert(table);
    const ccv_yang_keyword *row = row_of(table, value);
    return write_leaf(output, 'E', name, row != nullptr ? row->name : std::to_string(value));
}

uint32_t ccv_yang_bits(ccv_yang_output *output, const char *name, const ccv_yang_keyword *table,
                       uint32_t bits) {
    Host::current()->tables.insert(table);
    std::string names;
    for (uint32_t bit = 0; bit < 32; ++bit) {
        if ((bits >> bit & 1U) != 0) {
            const ccv_yang_keyword *row = row_of(table, bit);
            names += (names.empty() ? "" : ",") +
                     (row != nullptr ? row->name : "#" + std::to_string(bit));
        }
    }
    return write_leaf(output, 'b', name, names);
}

uint32_t ccv_yang_uint32(ccv_yang_output *output, const char *name, uint32_t value) {
    return write_leaf(output, 'u', name, std::to_string(value));
}
uint32_t ccv_yang_bool(ccv_yang_output *output, const char *name, uint32_t value) {
    return write_leaf(output, 'B', name, std::to_string(value));
}
uint32_t ccv_yang_ipv4(ccv_yang_output *output, const char *name, uint32_t address) {
    return write_leaf(output, 'a', name, aceconv::test::address_text(address));
}
uint32_t ccv_yang_string(ccv_yang_output *output, const char *name, const char *text) {
    return write_leaf(output, 's', name, text != nullptr ? "'" + std::string(text) + "'" : "null");
}
uint32_t ccv_yang_empty(ccv_yang_output *output, const char *name) {
    return write_leaf(output, '_', name, "");
}
