// A record as the page draws it: its presence bits, and its members where they lie.
#pragma once

#include <string>
#include <vector>

#include "converter/work.h"
#include "host/bag_library.h"

namespace aceconv::tool {

class RecordDrawing {
  public:
    /// Of no records.
    RecordDrawing() = default;
    explicit RecordDrawing(const std::vector<BagMember> &members);

    /// [name, offset, width] of all members and of the padding between them, as an array.
    [[nodiscard]] std::string layout_array() const;
    /// The table row that shows the record.
    [[nodiscard]] std::string row(const Inspected &record) const;

  private:
    struct Place {
        std::string name; // "" for padding
        std::size_t offset, width;
    };
    void pad_to(std::size_t end);

    std::vector<Place> places_; // in their order; padding ends with its line
};

/// [bytes encoded, mask, second mask, fields], a field being [offset or null, name, value, bits as
/// text, bits as numbers, note].
std::string record_array(const Inspected &record);

} // namespace aceconv::tool
