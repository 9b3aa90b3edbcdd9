#include "stream/label.h"

#include <array>
#include <utility>

#include "host/bag_library.h"
#include "host/cbor_head.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::uint8_t array_of_two = 0x82;
constexpr std::uint8_t array_of_three = 0x83;
constexpr std::uint8_t null_item = 0xF6;

/// The elements of a label, one after the other.
class Elements {
  public:
    explicit Elements(std::span<const std::uint8_t> bytes)
        : at_(bytes.data()), end_(at_ + bytes.size()) {}

    [[nodiscard]] std::optional<std::uint64_t> number(CborKind kind) {
        CborHead head{};
        if (!read_cbor_head(at_, end_, head) || head.kind != kind) {
            return std::nullopt;
        }
        at_ += head.size;
        return head.value;
    }
    [[nodiscard]] std::optional<std::string_view> text() {
        const auto length = number(CborKind::text);
        if (!length || *length > static_cast<std::size_t>(end_ - at_)) {
            return std::nullopt;
        }
        const auto *const content = reinterpret_cast<const char *>(at_);
        at_ += *length;
        return std::string_view(content, *length);
    }
    [[nodiscard]] bool null() {
        const bool is_null = at_ != end_ && *at_ == null_item;
        at_ += is_null ? 1 : 0;
        return is_null;
    }
    [[nodiscard]] bool at_end() const { return at_ == end_; }

  private:
    const std::uint8_t *at_;
    const std::uint8_t *const end_;
};

/// The label that `bytes` are in the form that append_label writes, if they are one.
std::optional<Label> read_label(std::span<const std::uint8_t> bytes) {
    Elements elements(bytes);
    const auto count = elements.number(CborKind::array);
    if (count != 2U && count != 3U) {
        return std::nullopt;
    }
    Label label;
    if (!elements.null()) {
        const auto name = elements.text();
        if (!name) {
            return std::nullopt;
        }
        label.key.acl.emplace(*name);
    }
    if (!elements.null()) {
        const std::uint64_t sequence = elements.number(CborKind::number).value_or(0);
        if (sequence == 0 || sequence > UINT32_MAX) {
            return std::nullopt;
        }
        label.key.sequence = static_cast<std::uint32_t>(sequence);
    }
    if (count == 3U) {
        label.schema = schema_of_name(elements.text().value_or(""));
        if (!label.schema) {
            return std::nullopt;
        }
    }
    if (!elements.at_end()) {
        return std::nullopt;
    }
    return label;
}

} // namespace

void append_label(std::string &out, const EntryKey &key, std::optional<Schema> schema) {
    const auto append_head = [&](CborKind kind, std::uint64_t value) {
        std::array<std::uint8_t, max_cbor_head> head;
        const std::uint8_t *const end = put_cbor_head(head.data(), kind, value);
        out.append(reinterpret_cast<const char *>(head.data()),
                   static_cast<std::size_t>(end - head.data()));
    };
    const auto append_text = [&](std::string_view text) {
        append_head(CborKind::text, text.size());
        out += text;
    };
    append_head(CborKind::array, schema ? 3 : 2);
    if (key.acl) {
        append_text(*key.acl);
    } else {
        out += static_cast<char>(null_item);
    }
    if (key.sequence) {
        append_head(CborKind::number, *key.sequence);
    } else {
        out += static_cast<char>(null_item);
    }
    if (schema) {
        append_text(schema_name(*schema));
    }
}

bool is_label(std::span<const std::uint8_t> item) {
    if (item.empty() || item.front() != array_of_three) {
        return !item.empty() && item.front() == array_of_two;
    }
    item = item.subspan(1);
    for (int element = 1; element < 3; ++element) {
        item = item.subspan(cbor_item_length(item).value());
    }
    return item.front() >> 5U == static_cast<unsigned>(CborKind::text);
}

Label parse_label(const std::span<const std::uint8_t> item) {
    std::optional<Label> label = read_label(item);
    if (!label) {
        throw DataError("", "not a label: expected an array of a list's name or null, a sequence "
                            "number or null, and a schema, \"base\" or \"um\"");
    }
    if (const std::string fault = label->key.acl ? list_name_fault(*label->key.acl) : "";
        !fault.empty()) {
        throw DataError("", fault);
    }
    return *std::move(label);
}

} // namespace aceconv
