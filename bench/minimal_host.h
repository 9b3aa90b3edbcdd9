// A host of the conversion plug-in with as little in it as its interface
// allows, so that a measurement shows the plug-in's own cost: trees are built
// beforehand and hold numbers instead of texts, an encoding is a copy of the
// record, output is counted and thrown away. One thread at a time.
#pragma once

#include <cstdint>
#include <deque>
#include <initializer_list>

#include "aceconv/ace_record.h"
#include "aceconv/host/yang_access.h"

struct ccv_yang_node {
    const char *name;
    std::uint32_t value = 0;     // what the numeric and keyword readers deliver
    const char *text = nullptr;  // what ccv_yang_get_string copies
    std::uint32_t text_size = 0; // with the NUL
    std::uint32_t children = 0;
    ccv_yang_node *first_child = nullptr;
    ccv_yang_node *next = nullptr;
};

struct ccv_yang_output {
    std::uint64_t calls = 0; // emitter calls
    std::uint64_t sum = 0;   // of the values, so that they are read
};

namespace aceconv::bench {

/// Nodes of prebuilt trees; their addresses stay.
class Forest {
  public:
    ccv_yang_node *leaf(const char *name, std::uint32_t value = 0);
    ccv_yang_node *text(const char *name, const char *text);
    /// A container, a list or a list entry.
    ccv_yang_node *group(const char *name, std::initializer_list<ccv_yang_node *> children);

  private:
    std::deque<ccv_yang_node> nodes_;
};

/// What out_a of the encoders points at. The encoding that decoders take is the
/// record in it; it can be decoded only when `keep` was set before encoding,
/// since the record's blocks are otherwise gone when the encoder returns.
struct Encoding {
    ipv4_acl_config_ace record;
    bool keep = false; // copy the blocks to memory that is never released
};

} // namespace aceconv::bench
