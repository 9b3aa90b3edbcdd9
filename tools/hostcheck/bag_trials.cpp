// The bag library.
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include "tools/hostcheck/check.h"
#include "tools/hostcheck/record.h"

namespace aceconv::hostcheck {
namespace {

/// What the bag trials share: the type registered, and its members.
struct Type {
    const bag_descriptor *descriptor;
    std::vector<Member> all;

    explicit Type(Check &check) : descriptor(check.host.ipv4_acl_config_ace_bag_getfn()) {
        check.at("");
        check.calling("bag_register");
        check.expect_success(check.host.bag_register_all_ipv4_acl_bags());
        all = members(*descriptor);
    }
};

class Definition {
  public:
    Definition(Check &check, const Type &type) : check_(check) {
        check.expect_success(CALL(check, bag_definition_init)(type.descriptor, &handle_));
        check.expect(handle_ != nullptr, "reports success and sets no definition");
    }
    ~Definition() { CALL(check_, bag_definition_free)(handle_); }
    Definition(const Definition &) = delete;
    Definition &operator=(const Definition &) = delete;
    [[nodiscard]] bag_definition *handle() const { return handle_; }

  private:
    Check &check_;
    bag_definition *handle_ = nullptr;
};

std::vector<std::uint8_t> encode(Check &check, const Type &type, const Record &record) {
    void *out_a = nullptr, *out_b = nullptr;
    check.expect_success(CALL(check, hostcheck_encoding_create)(&out_a, &out_b));
    {
        const Definition definition(check, type);
        check.expect_success(
            CALL(check, bag_encode_v3)(out_a, out_b, &record, definition.handle(), 1));
    }
    std::uint32_t length = 0;
    const std::uint8_t *const bytes = CALL(check, hostcheck_encoding_bytes)(out_a, out_b, &length);
    check.expect(bytes != nullptr && length != 0, "gives no bytes");
    std::vector<std::uint8_t> encoded(bytes, bytes + length);
    CALL(check, hostcheck_encoding_free)(out_a, out_b);
    return encoded;
}

std::uint32_t decode(Check &check, const Type &type, const std::uint8_t *bytes,
                     std::uint32_t length, Record &record) {
    const Definition definition(check, type);
    // Not cleared, as in the decoders.
    std::memset(static_cast<void *>(&record), 0xA5, sizeof record);
    return CALL(check, bag_decode_v3)(bytes, length, &record, definition.handle(), 0);
}

Record decoded(Check &check, const Type &type, const std::vector<std::uint8_t> &bytes) {
    Record record;
    check.expect_success(
        decode(check, type, bytes.data(), static_cast<std::uint32_t>(bytes.size()), record));
    return record;
}

void comes_back(Check &check, const Type &type, Record record) {
    Record before;
    std::memcpy(static_cast<void *>(&before), &record, sizeof record);
    const std::vector<std::uint8_t> bytes = encode(check, type, record);
    check.calling("bag_encode_v3");
    check.expect(std::memcmp(&before, &record, sizeof record) == 0, "changes the record");

    // The encoder releases its record: nothing of it may be needed from here on.
    Record kept = decoded(check, type, bytes);
    check.calling("bag_decode_v3");
    std::string member = difference(type.all, record, kept);
    check.expect(member.empty(),
                 "or bag_encode_v3 does not bring back the member " + member +
                     ": every member comes back, also into memory that was not cleared");
    member = shared_block(type.all, record, kept);
    check.expect(member.empty(), "gives the block that was encoded as " + member +
                                     ": an encoding holds bytes, not addresses");
    Record other = decoded(check, type, bytes);
    check.calling("bag_decode_v3");
    member = shared_block(type.all, kept, other);
    check.expect(member.empty(), "gives two records one block for " + member);

    Record cleared;
    std::memset(static_cast<void *>(&cleared), 0, sizeof cleared);
    check.expect_success(CALL(check, bag_decode)(
        bytes.data(), static_cast<std::uint32_t>(bytes.size()), &cleared, type.descriptor));
    member = difference(type.all, record, cleared);
    check.expect(member.empty(), "does not bring back the member " + member);

    for (Record *at : {&kept, &other, &cleared}) {
        CALL(check, bag_free_indirections)(at, type.descriptor);
    }
    release(type.all, record);
}

} // namespace

void register_type(Check &check) {
    const bag_descriptor *const descriptor = check.host.ipv4_acl_config_ace_bag_getfn();
    bag_definition *definition = nullptr;
    check.at("a registration that is aborted");
    check.expect_success(CALL(check, bag_register_start)());
    check.expect_success(CALL(check, bag_register)(descriptor));
    CALL(check, bag_register_abort)();
    if (CALL(check, bag_definition_init)(descriptor, &definition) == 0) {
        check.expect(definition != nullptr, "reports success and sets no definition");
        check.broken("bag_register_abort", "leaves the type registered");
    }
    if (definition != nullptr) {
        CALL(check, bag_definition_free)(definition);
    }
    const Type type(check);
    const Definition known(check, type);
}

void encode_records(Check &check) {
    const Type type(check);
    check.at("a record without a value");
    Record nothing;
    std::memset(static_cast<void *>(&nothing), 0, sizeof nothing);
    comes_back(check, type, nothing);
    check.at("a record with every member set");
    comes_back(check, type, make_record(type.all, 3, false));
    check.at("a record with empty texts and eight user-defined fields");
    comes_back(check, type, make_record(type.all, 8, true));
}

/// Each prefix ends where memory that cannot be read begins.
void decode_cut_bytes(Check &check) {
    const Type type(check);
    Record record = make_record(type.all, 2, false);
    const std::vector<std::uint8_t> bytes = encode(check, type, record);
    release(type.all, record);
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t room = (bytes.size() + page - 1) / page * page;
    void *const memory =
        mmap(nullptr, room + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED ||
        mprotect(static_cast<char *>(memory) + room, page, PROT_NONE) != 0) {
        _exit(3);
    }
    std::uint8_t *const end = static_cast<std::uint8_t *>(memory) + room;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        check.at("the first " + std::to_string(length) + " of " + std::to_string(bytes.size()) +
                 " bytes of an encoding, and nothing readable behind them");
        std::memcpy(end - length, bytes.data(), length);
        Record cut;
        const std::uint32_t status =
            decode(check, type, end - length, static_cast<std::uint32_t>(length), cut);
        check.calling("bag_decode_v3");
        check.expect(status != 0, "accepts an encoding that is cut off");
    }
}

void release_records(Check &check) {
    const Type type(check);
    check.at("a decoded record");
    Record record = make_record(type.all, 2, false);
    Record copy = decoded(check, type, encode(check, type, record));
    release(type.all, record);
    CALL(check, bag_free_indirections)(&copy, type.descriptor);
    bool cleared = copy.UDF.elements == nullptr;
    for (const char *text : {copy.vrf1, copy.vrf2, copy.vrf3, copy.track1, copy.track2, copy.track3,
                             copy.net_src_obj, copy.net_dst_obj, copy.port_src_obj,
                             copy.port_dst_obj, copy.counter_name, copy.remark, copy.SequenceStr}) {
        cleared = cleared && text == nullptr;
    }
    check.expect(cleared, "does not clear the pointers of what it releases");
    check.at("a record with a count and null pointers");
    copy.UDF.count = 3;
    CALL(check, bag_free_indirections)(&copy, type.descriptor);
    check.at("blocks from malloc, as an encoder's record has them");
    Record own = make_record(type.all, 2, false);
    CALL(check, bag_free_indirections)(&own, type.descriptor);
}

/// Each of these, done over and over, leaves as much memory in use as it found.
void hold_no_memory(Check &check) {
    const Type type(check);
    Record record = make_record(type.all, 2, false);
    const std::vector<std::uint8_t> bytes = encode(check, type, record);
    const auto in_use = [] {
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    const auto steady = [&](const char *function, const char *what, auto &&work) {
        constexpr int rounds = 200;
        check.at(what);
        for (int i = 0; i < 10; ++i) {
            work();
        }
        const std::size_t before = in_use();
        for (int i = 0; i < rounds; ++i) {
            work();
        }
        const std::size_t after = in_use();
        if (after > before + rounds) {
            check.broken(function,
                         "leaves memory in use: " + std::to_string((after - before) / rounds) +
                             " bytes each time");
        }
    };
    steady("bag_definition_free", "a definition made and freed",
           [&] { const Definition definition(check, type); });
    steady("bag_free_indirections", "a record decoded and released", [&] {
        Record copy = decoded(check, type, bytes);
        CALL(check, bag_free_indirections)(&copy, type.descriptor);
    });
    steady("bag_decode_v3", "an encoding that is cut off: after a failure a record owns nothing",
           [&] {
               for (std::size_t cut = 1; cut < bytes.size(); cut += 7) {
                   Record copy;
                   decode(check, type, bytes.data(), static_cast<std::uint32_t>(bytes.size() - cut),
                          copy);
               }
           });
    const hostcheck_row rows[] = {
        {0, HOSTCHECK_NUMBER, "sequence-number", "10"}, {0, HOSTCHECK_NAME, "grant", "permit"}, {}};
    ccv_yang_node *const tree = CALL(check, hostcheck_tree_create)(HOSTCHECK_BASE, rows);
    check.expect(tree != nullptr, "makes no tree of valid rows");
    steady("ccv_yang_iter_destroy", "a walk begun and given up", [&] {
        ccv_yang_iter *iterator = nullptr;
        ccv_yang_node *current = nullptr;
        std::uint32_t status = CALL(check, ccv_yang_iter_create)(tree, &iterator);
        check.expect_success(status);
        CALL(check, ccv_yang_iter_first)
        (CCV_YANG_STEP_ENTRY, iterator, &status, &current, nullptr);
        CALL(check, ccv_yang_iter_destroy)(iterator);
    });
    CALL(check, hostcheck_tree_free)(tree);
    release(type.all, record);
}

} // namespace aceconv::hostcheck
