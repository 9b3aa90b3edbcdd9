// Entries that have to wait for what stands behind them in the input, first in,
// first out: a few of them in memory, more in a temporary file without a name, in
// the folder TMPDIR or else /tmp.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "stream/source.h"

namespace aceconv {

class Spool {
  public:
    Spool() = default;
    ~Spool();
    Spool(const Spool &) = delete;
    Spool &operator=(const Spool &) = delete;

    [[nodiscard]] bool empty() const { return count_ == 0; }
    /// Keeps the entry's position, list name and text, and the fault that was found
    /// in it, if any. Once the first has been taken, nothing is added until the last
    /// has. Throws IoError, which names the folder.
    void push(const Entry &entry, const DataError *fault = nullptr);
    /// Takes the first: what was kept of it into `entry`, or throws its fault. False
    /// when there is none.
    bool pop(Entry &entry);

  private:
    void put(std::uint64_t number);
    void put(std::string_view text);
    std::uint64_t take_number();
    std::string take_text();
    void write_out();
    void rewind();
    [[noreturn]] void fail(const char *what) const;

    std::uint64_t count_ = 0;
    std::string bytes_; // of what was added last
    std::string folder_;
    int file_ = -1; // holds what came before it
    std::optional<Window> reading_;
};

} // namespace aceconv
