#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <set>
#include <span>
#include <string_view>

#include "host/bag/byte_sink.h"
#include "host/bag/definition.h"
#include "host/bag/description.h"
#include "host/bag_library.h"
#include "host/error.h"
#include "host/utf8.h"

namespace aceconv {
namespace {

[[noreturn]] void refuse(const std::string &why) {
    throw DataError("", why);
}

std::size_t align_up(std::size_t value, std::size_t alignment) {
    return (value + alignment - 1) / alignment * alignment;
}

/// What both descriptions say, with the long one's names.
std::vector<DescribedType> parse_both(const bag_descriptor &descriptor) {
    auto types = parse_description(descriptor.long_description, DescriptionForm::long_form);
    const auto brief = parse_description(descriptor.short_description, DescriptionForm::short_form);
    const auto same_member = [](const DescribedMember &a, const DescribedMember &b) {
        return a.code == b.code && a.number == b.number;
    };
    const bool agree =
        std::equal(types.begin(), types.end(), brief.begin(), brief.end(),
                   [&](const DescribedType &a, const DescribedType &b) {
                       return a.number == b.number &&
                              std::equal(a.members.begin(), a.members.end(), b.members.begin(),
                                         b.members.end(), same_member);
                   });
    if (!agree) {
        refuse("long and short description differ");
    }
    if (types.size() > max_types) {
        refuse("more than " + std::to_string(max_types) + " types");
    }
    for (auto type = types.begin(); type != types.end(); ++type) {
        const std::string name = "type $" + std::to_string(type->number);
        if (std::any_of(types.begin(), type,
                        [&](const DescribedType &other) { return other.number == type->number; })) {
            refuse(name + " is defined twice");
        }
        if (type->members.size() > max_members) {
            refuse(name + " has more than " + std::to_string(max_members) + " members");
        }
        std::set<std::string_view> names;
        for (const DescribedMember &member : type->members) {
            if (!names.insert(member.name).second) {
                refuse(name + " has two members \"" + std::string(member.name) + "\"");
            }
        }
    }
    return types;
}

/// The layout rows in the order of the types.
std::vector<const bag_layout *> match_rows(const bag_descriptor &descriptor,
                                           const std::vector<DescribedType> &types) {
    if (descriptor.layouts[0].tag != types.size() - 1) {
        refuse("the layout announces " + std::to_string(descriptor.layouts[0].tag) +
               " sub-records, the description has " + std::to_string(types.size() - 1));
    }
    const std::span<const bag_layout> rest(descriptor.layouts + 1, types.size() - 1);
    std::vector<const bag_layout *> rows{descriptor.layouts};
    for (auto type = types.begin() + 1; type != types.end(); ++type) {
        const auto row = std::find_if(rest.begin(), rest.end(), [&](const bag_layout &candidate) {
            return candidate.tag == type->number;
        });
        if (row == rest.end()) {
            refuse("type $" + std::to_string(type->number) + " has no layout row");
        }
        rows.push_back(&*row);
    }
    if (std::any_of(rows.begin(), rows.end(),
                    [](const bag_layout *row) { return row->offsets == nullptr; })) {
        refuse("a layout row has no offsets");
    }
    return rows;
}

struct Shape {
    MemberKind kind;
    std::size_t width;
    std::size_t alignment;
};

Shape shape_of(const DescribedMember &member, const RecordType *inner) {
    switch (member.code) {
    case 'C':
        return {MemberKind::u8, 1, 1};
    case 'I':
        return {MemberKind::u16, 2, 2};
    case 'H':
        return {MemberKind::u64, 8, 8};
    case 'N':
        return {MemberKind::address, 4, 4};
    case 's':
        return {MemberKind::string, sizeof(char *), alignof(char *)};
    case 'x':
        return {MemberKind::bytes, member.number, 1};
    case 'a':
        return {MemberKind::array, elements_pointer + sizeof(void *), alignof(void *)};
    case '$':
        return {MemberKind::record, inner->size, inner->alignment};
    default: // D, b, e
        return {MemberKind::u32, 4, 4};
    }
}

/// Neither padding nor an array's pointer decides anything.
std::vector<std::uint16_t> deciding_members(const RecordType &type) {
    std::vector<std::uint16_t> deciding(align_up(type.size, word_bytes), no_member);
    for (std::size_t i = 0; i < type.members.size(); ++i) {
        const Member &member = type.members[i];
        const std::size_t width =
            member.kind == MemberKind::array ? sizeof(std::uint32_t) : member.width;
        for (std::size_t at = 0; at < width; ++at) {
            if (member.kind != MemberKind::record || member.type->deciding[at] != no_member) {
                deciding[member.offset + at] = static_cast<std::uint16_t>(i);
            }
        }
    }
    return deciding;
}

void add_blocks(const Member &member, std::vector<OwnedBlock> &blocks) {
    const std::size_t start = member.offset;
    if (member.kind == MemberKind::string) {
        blocks.push_back({start, 0, nullptr});
    } else if (member.kind == MemberKind::array) {
        blocks.push_back({start + elements_pointer, start, member.type});
    } else if (member.kind == MemberKind::record) {
        for (const OwnedBlock &inner : member.type->blocks) {
            blocks.push_back({start + inner.address, start + inner.count, inner.element});
        }
    }
}

/// Lays `described` out with natural alignment, which leaves one place for each
/// member, and compares that with the row.
RecordType compile_type(const DescribedType &described, const bag_layout &row,
                        const std::vector<const RecordType *> &inner_types) {
    RecordType type;
    const std::uint64_t *offset = row.offsets;
    std::size_t end = 0;
    const auto check = [&](const DescribedMember &member, std::size_t expected) {
        if (*offset != expected) {
            refuse("type $" + std::to_string(described.number) + ", member " +
                   std::string(member.name) + ": offset " + std::to_string(*offset) +
                   ", expected " + std::to_string(expected));
        }
        ++offset;
    };
    for (std::size_t i = 0; i < described.members.size(); ++i) {
        const DescribedMember &source = described.members[i];
        const RecordType *const inner = inner_types[i];
        const Shape shape = shape_of(source, inner);
        const std::size_t start = align_up(end, shape.alignment);
        check(source, start);
        if (shape.kind == MemberKind::array) {
            check(source, start + elements_pointer);
        }
        end = start + shape.width;
        if (end > max_type_bytes) {
            refuse("type $" + std::to_string(described.number) + " is too large");
        }
        type.alignment = std::max(type.alignment, shape.alignment);
        const std::uint64_t largest =
            shape.kind < MemberKind::string ? UINT64_MAX >> (64 - 8 * shape.width) : 0;
        type.members.push_back({shape.kind, static_cast<std::uint32_t>(start),
                                static_cast<std::uint32_t>(shape.width), inner, largest});
        add_blocks(type.members.back(), type.blocks);
        type.names.emplace_back(source.name);
        type.spellings.emplace_back(source.spelling);
    }
    type.size = align_up(end, type.alignment);
    if (type.size != row.size) {
        refuse("type $" + std::to_string(described.number) + ": size " + std::to_string(row.size) +
               ", expected " + std::to_string(type.size));
    }
    type.deciding = deciding_members(type);
    return type;
}

/// FNV-1a, 64 bits.
class Digest {
  public:
    void add(std::string_view text) {
        for (const char c : text) {
            step(static_cast<std::uint8_t>(c));
        }
        step(0);
    }
    void add(std::uint64_t number) {
        for (int shift = 0; shift < 64; shift += 8) {
            step(static_cast<std::uint8_t>(number >> shift));
        }
    }
    [[nodiscard]] std::uint64_t value() const { return value_; }

  private:
    void step(std::uint8_t byte) { value_ = (value_ ^ byte) * 0x100000001B3; }
    std::uint64_t value_ = 0xCBF29CE484222325;
};

std::uint64_t fingerprint_of(const bag_descriptor &descriptor,
                             const std::vector<DescribedType> &types,
                             const std::vector<const bag_layout *> &rows) {
    Digest digest;
    digest.add(format_version);
    digest.add(descriptor.type_name);
    digest.add(descriptor.long_description);
    digest.add(descriptor.short_description);
    for (std::size_t i = 0; i < types.size(); ++i) {
        digest.add(rows[i]->tag);
        digest.add(rows[i]->size);
        const std::uint64_t *offset = rows[i]->offsets;
        for (const DescribedMember &member : types[i].members) {
            for (int n = member.code == 'a' ? 2 : 1; n > 0; --n) {
                digest.add(*offset++);
            }
        }
    }
    return digest.value();
}

std::vector<std::uint8_t> head_of(const bag_definition &definition) {
    std::array<std::uint8_t, 8> digest{};
    for (std::size_t i = 0; i < digest.size(); ++i) {
        digest[i] = static_cast<std::uint8_t>(definition.fingerprint >> (56 - 8 * i));
    }
    const std::string &name = definition.type_name;
    ByteSink output;
    if (!output.array(3) ||
        !output.text({reinterpret_cast<const std::uint8_t *>(name.data()), name.size()}) ||
        !output.bytes(digest)) {
        throw std::bad_alloc();
    }
    return {output.content().begin(), output.content().end()};
}

} // namespace

std::unique_ptr<bag_definition> compile_descriptor(const bag_descriptor &descriptor) {
    if (descriptor.type_name == nullptr || descriptor.type_name[0] == '\0' ||
        descriptor.layouts == nullptr || descriptor.long_description == nullptr ||
        descriptor.short_description == nullptr) {
        refuse("the descriptor lacks its type name, layout or a description");
    }
    if (!is_utf8(descriptor.type_name)) {
        refuse("the type's name is not UTF-8");
    }
    const auto types = parse_both(descriptor);
    const auto rows = match_rows(descriptor, types);

    auto definition = std::make_unique<bag_definition>();
    definition->types.resize(types.size());
    // From the last type to the first: a type refers to later ones only.
    for (std::size_t i = types.size(); i-- > 0;) {
        std::vector<const RecordType *> inner_types;
        for (const DescribedMember &member : types[i].members) {
            inner_types.push_back(nullptr);
            if (member.code != '$' && member.code != 'a') {
                continue;
            }
            for (std::size_t inner = i + 1; inner < types.size(); ++inner) {
                if (types[inner].number == member.number) {
                    inner_types.back() = &definition->types[inner];
                }
            }
            if (inner_types.back() == nullptr) {
                refuse("member " + std::string(member.name) + ": type $" +
                       std::to_string(member.number) + " is not defined after its use");
            }
        }
        definition->types[i] = compile_type(types[i], *rows[i], inner_types);
    }
    definition->type_name = descriptor.type_name;
    definition->fingerprint = fingerprint_of(descriptor, types, rows);
    definition->head = head_of(*definition);
    return definition;
}

std::string fingerprint_text(std::uint64_t fingerprint) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llx",
                  static_cast<unsigned long long>(fingerprint));
    return text.data();
}

} // namespace aceconv
