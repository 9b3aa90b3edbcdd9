#include "recording_host.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace aceconv::test {

namespace {

thread_local Host *current_host = nullptr;
thread_local bool in_plugin = false;

class TreeParser {
  public:
    explicit TreeParser(std::string_view input) : text(input) {}

    std::vector<Node> nodes() {
        std::vector<Node> result;
        for (skip_blanks(); !text.empty() && text.front() != '}' && text.front() != ']';
             skip_blanks()) {
            result.push_back(node());
        }
        return result;
    }
    [[nodiscard]] bool done() const { return text.empty(); }

  private:
    void skip_blanks() { text.remove_prefix(std::min(text.size(), text.find_first_not_of(' '))); }

    char take() {
        const char c = text.empty() ? '\0' : text.front();
        text.remove_prefix(text.empty() ? 0 : 1);
        return c;
    }

    std::string until(const char *stops) {
        const size_t length = std::min(text.size(), text.find_first_of(stops));
        std::string part(text.substr(0, length));
        text.remove_prefix(length);
        return part;
    }

    void expect(char c) {
        if (take() != c) {
            throw std::invalid_argument("tree text: missing " + std::string(1, c));
        }
    }

    Node node() {
        Node result{until(" ={[}]"), "", {}};
        const char next = text.empty() ? '\0' : text.front();
        if (next == '=') {
            take();
            const bool quoted = !text.empty() && text.front() == '\'';
            if (quoted) {
                take();
            }
            result.value = until(quoted ? "'" : " {}[]");
            if (quoted) {
                expect('\'');
            }
        } else if (next == '{' || next == '[') {
            take();
            result.children = next == '{' ? nodes() : entries(result.name);
            expect(next == '{' ? '}' : ']');
        }
        return result;
    }

    std::vector<Node> entries(const std::string &name) {
        std::vector<Node> result;
        for (skip_blanks(); !text.empty() && text.front() == '{'; skip_blanks()) {
            take();
            result.push_back({name, "", nodes()});
            expect('}');
        }
        return result;
    }

    std::string_view text;
};

std::string join(const std::vector<std::string> &lines, std::string_view without) {
    std::string text;
    for (const std::string &line : lines) {
        if (!line.starts_with(without)) {
            text += (text.empty() ? "" : " ") + line;
        }
    }
    return text;
}

} // namespace

Node parse_tree(std::string_view text) {
    TreeParser parser(text);
    Node entry{"entry", "", parser.nodes()};
    if (!parser.done()) {
        throw std::invalid_argument("tree text: one bracket too many");
    }
    return entry;
}

Host::Inside::Inside(bool now) : before(std::exchange(in_plugin, now)) {}
Host::Inside::~Inside() {
    in_plugin = before;
}

bool Host::inside_plugin() {
    return in_plugin;
}
Host *Host::current() {
    return current_host;
}

Host::Host() : outer(std::exchange(current_host, this)) {}

Host::~Host() {
    current_host = outer;
    for (void *block : live) {
        std::free(block);
    }
    for (void *block : dead) {
        std::free(block);
    }
    if (filter_expression != nullptr) {
        regfree(&compiled);
    }
}

uint32_t Host::enter(const std::string &line, bool log, bool may_fail) {
    if (log) {
        calls.push_back(line);
    }
    if (!may_fail) {
        return 0;
    }
    for (Failure &failure : failures) {
        const bool matches =
            failure.call.empty() ? !line.starts_with("strcmp_s") : line.starts_with(failure.call);
        if (!matches || failure.skip < 0 || failure.skip-- > 0) {
            continue;
        }
        failure.skip = failure.persistent ? 0 : -1;
        fired.push_back(line);
        return failure.code++;
    }
    return 0;
}

void *Host::allocate(size_t size) {
    void *block = std::malloc(size);
    adopt(block);
    return block;
}

void Host::adopt(void *block) {
    if (sees_frees && block != nullptr) {
        live.insert(block);
    }
}

void Host::release(void *block) {
    if (!sees_frees) {
        std::free(block);
    } else if (block != nullptr) {
        if (live.erase(block) == 0) {
            faults.emplace_back("released a block that is not owned");
        }
        dead.insert(block);
    }
}

const ipv4_acl_debug_event *Host::debug_event() const {
    switch (event) {
    case Event::none:
        return nullptr;
    case Event::low:
        return reinterpret_cast<const ipv4_acl_debug_event *>(uintptr_t{4095});
    case Event::off:
        return &switched[0];
    case Event::on:
        break;
    }
    return &switched[1];
}

void Host::begin_action() {
    calls.clear();
    output.clear();
    traces.clear();
    fired.clear();
    encoded.clear();
    released.clear();
    appends = 0;
    if (filter != nullptr && filter_expression == nullptr) {
        if (regcomp(&compiled, filter, REG_EXTENDED) != 0) {
            throw std::invalid_argument("filter");
        }
        filter_expression = &compiled;
        filter_flag = 0x10000;
    }
}

uint32_t Host::encode(Schema schema, std::string_view tree) {
    return encode(schema, parse_tree(tree));
}

uint32_t Host::encode(Schema schema, Node tree) {
    begin_action();
    root = std::move(tree);
    const auto convert = schema == Schema::base ? ccv_custom_encoder_ipv4_acl_ace
                                                : ccv_custom_encoder_ipv4_acl_ace_um;
    const bool old = stored != nullptr;
    const int all_passes = passes;
    const Inside inside(true);
    const uint32_t status = convert(reinterpret_cast<ccv_yang_node *>(&root), old ? bytes : nullptr,
                                    old ? 9 : 0, out_a(), out_b());
    passes = all_passes;
    return status;
}

uint32_t Host::decode(Schema schema, std::string_view record) {
    const Given given = parse_record(record);
    return decode(schema, given.record);
}

uint32_t Host::decode(Schema schema, const Record &record) {
    begin_action();
    decoded = &record;
    const auto convert = schema == Schema::base ? ccv_custom_decoder_ipv4_acl_ace
                                                : ccv_custom_decoder_ipv4_acl_ace_um;
    const Inside inside(true);
    return convert(handle(), bytes, 7);
}

std::string Host::emitted() const {
    return join(output, "\n");
}
std::string Host::called(std::string_view without) const {
    return join(calls, without);
}

Call::Call(const std::string &line, bool may_fail)
    : outside(false), host(*Host::current()), failure(host.enter(line, true, may_fail)) {}

} // namespace aceconv::test
