// Records as their descriptor describes them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "aceconv/host/bag.h"
#include "aceconv/plugin.h"

namespace aceconv::hostcheck {

struct Member {
    std::string name;
    char type; // as in the description: 'C', 's', 'a', ...
    std::size_t offset;
    std::size_t size; // 0 for strings and arrays
};

/// Those of the record, with those of sub-records in it.
std::vector<Member> members(const bag_descriptor &descriptor);

/// A record that owns its blocks.
using Record = ipv4_acl_config_ace;

/// Every member set, each to another value; with `elements` user-defined fields.
/// `empty_texts` has strings of no characters.
Record make_record(const std::vector<Member> &all, std::uint32_t elements, bool empty_texts);
void release(const std::vector<Member> &all, Record &record);
/// The first member that differs, or nothing.
std::string difference(const std::vector<Member> &all, const Record &left, const Record &right);
/// The first member whose block both have.
std::string shared_block(const std::vector<Member> &all, const Record &left, const Record &right);

} // namespace aceconv::hostcheck
