// Where output goes: standard output, or a file that appears under its name
// only when it is complete.
#pragma once

#include <string>
#include <string_view>

namespace aceconv {

class Output {
  public:
    /// "-" is standard output. A regular file, or one that is not there yet, is
    /// written beside its place; a device or a pipe is written to directly.
    explicit Output(const std::string &path);
    /// Leaves no trace of a file that was not committed.
    ~Output();
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    /// Throws IoError, and PipeClosed when the reader has gone.
    void write(std::string_view bytes);
    /// Hands over everything that has been written, now.
    void flush();
    /// Flushes and puts the file in its place; only destruction may follow.
    void commit();

    /// Written where readers can see it already, so what is there should be whole.
    [[nodiscard]] bool visible() const { return temporary_.empty(); }

    [[nodiscard]] bool empty() const { return empty_; }

  private:
    std::string path_;
    std::string target_;    // path_ with symbolic links resolved
    std::string temporary_; // empty when written directly
    std::string buffer_;
    int fd_ = -1;
    bool empty_ = true; // nothing has been written
};

/// Removes unfinished files when the program is told to stop.
void install_signal_handlers();

} // namespace aceconv
