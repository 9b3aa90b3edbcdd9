// A small scriptable host under the plug-in: it supplies every function of
// include/aceconv/host/, records what it sees in order and fails on request.
//
// One Host a thread at a time; its construction makes it the thread's host.
//
// Trees are text: "permit{protocol=tcp destination{port{eq=WWW}} log{}}", values
// with blanks or none in quotes, a list as "udf[{udf-name=a}{udf-name=b}]".
// Records are text as well, see record_text.h.
//
// `calls` holds one line a platform call ("first1:permit", "get_ipv4:address",
// "encode"); names are asked for freely and left out. `output` holds what is
// emitted: "permit{ ! e:grant=deny } udf[ udf( ) ] s:remark='x'", where "!" is a
// presence mark and the letters are e enum, E enum or number, b bits, u uint32,
// B bool, a ipv4, s string, _ empty; "#9" is a value without a row.
#pragma once

#include <cstdint>
#include <regex.h>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "aceconv/host/bounded_append.h"
#include "aceconv/host/debug.h"
#include "aceconv/plugin.h"
#include "record_text.h"

namespace aceconv::test {

struct Node {
    std::string name;
    std::string value;
    std::vector<Node> children; // of a list: its entries
};

// The children of an entry.
Node parse_tree(std::string_view text);

// The n-th matching call fails, or every one from there on. `call` is the start
// of a line of `calls`, "malloc", "calloc", "strdup", "memset_s", "strncpy_s" or
// "strcmp_s:<left text>"; empty stands for every call but strcmp_s.
struct Failure {
    std::string call;
    int skip = 0;
    uint32_t code = 0xF001;
    bool persistent = false; // later calls fail with code + 1, code + 2, ...
};

enum class Schema { base, um };
enum class Ending { both, null_node, finished }; // how an exhausted level shows
enum class Event { none, low, off, on };         // what stands behind event type 2

class Host {
  public:
    Host();
    ~Host();
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;
    static Host *current();

    // ---- script
    std::vector<Failure> failures;
    int passes = 1;                 // over the entry's children
    bool handle_on_failure = false; // failing creations leave their handle set
    Ending ending = Ending::both;
    std::vector<uint32_t> list_counts; // reported for the first lists, then the true counts
    int32_t index_bias = 0;            // added to every list index
    const char *stored = nullptr;      // record behind the stored encoding
    size_t append_call = 0;            // after this bounded append ...
    size_t append_length = 0;          // ... the text is blown up to this length
    Event event = Event::none;
    const char *filter = nullptr; // function-name filter
    // A node called "x?" matches no name. Each time that its name is compared, its
    // first character turns into that of the next of these.
    std::vector<std::string> names;

    // ---- actions: one call into the plug-in each
    uint32_t encode(Schema schema, std::string_view tree);
    uint32_t encode(Schema schema, Node tree);
    uint32_t decode(Schema schema, std::string_view record);
    uint32_t decode(Schema schema, const Record &record);
    template <typename Emitter>
    uint32_t emit(Emitter emitter, std::string_view record) {
        const Given given = parse_record(record);
        const Inside inside(true);
        if constexpr (std::is_void_v<decltype(emitter(handle(), given.record))>) {
            emitter(handle(), given.record);
            return 0;
        } else {
            return emitter(handle(), given.record);
        }
    }

    // ---- what was seen
    std::vector<std::string> calls;
    std::vector<std::string> output;
    std::vector<std::string> traces;
    std::vector<std::string> faults;           // breaches of the interface
    std::vector<std::string> fired;            // calls that failed on request
    std::vector<std::string> compared;         // what the name of a node "x?" was compared with
    std::string encoded;                       // the record handed to bag_encode_v3
    std::string released;                      // the record released last
    std::set<const void *> tables;             // keyword tables handed over
    int created = 0;                           // iterators and definitions alive
    [[nodiscard]] std::string emitted() const; // `output` joined by blanks
    [[nodiscard]] std::string called(std::string_view without = "\n") const;
    // Blocks that nobody released; known where frees can be seen.
    [[nodiscard]] size_t leaks() const { return live.size() + static_cast<size_t>(created); }

    // ---- for the platform functions
    // Marks whether the plug-in is running on this thread.
    struct Inside {
        explicit Inside(bool now);
        ~Inside();
        Inside(const Inside &) = delete;
        Inside &operator=(const Inside &) = delete;
        bool before;
    };
    static bool inside_plugin();
    static inline bool sees_frees = false; // set where free is wrapped
    uint32_t enter(const std::string &line, bool log = true, bool may_fail = true);
    void *allocate(size_t size); // a block that the plug-in comes to own
    void adopt(void *block);
    void release(void *block);
    [[nodiscard]] ccv_yang_output *handle() { return reinterpret_cast<ccv_yang_output *>(this); }
    void *out_a() { return &calls; }
    void *out_b() { return &output; }
    const uint8_t *buffer() const { return bytes; }
    const Record *decoded = nullptr; // what bag_decode_v3 delivers
    Node root;
    size_t appends = 0;
    const ipv4_acl_debug_event *debug_event() const;
    uint32_t filter_flag = 0;
    regex_t *filter_expression = nullptr;

  private:
    void begin_action();
    uint8_t bytes[16] = {};
    ipv4_acl_debug_event switched[2] = {{7, 0}, {0, 1ULL << 40}};
    regex_t compiled{};
    std::set<void *> live;
    std::set<void *> dead; // kept until the end, so that a second release shows
    Host *outer;
};

// One platform call: logs it, says whether it is to fail.
struct Call {
    explicit Call(const std::string &line, bool may_fail = true);
    Host::Inside outside;
    Host &host;
    uint32_t failure;
};

} // namespace aceconv::test
