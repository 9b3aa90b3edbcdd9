// Where output goes: standard output, or a file that appears under its name
// only when it is complete.
#pragma once

#include <string>
#include <string_view>

namespace aceconv {

/// What the end of an output's reader means: the end of the run, or nothing, since
/// the run goes on for its exit code.
enum class ReaderGone { ends, is_ignored };

class Output {
  public:
    /// "-" is standard output. A regular file, or one that is not there yet, is
    /// written beside its place, and takes over the mode and, if it may, the owner of
    /// the one that it replaces; a link to nothing creates what it leads to. A device,
    /// a pipe, and what names a descriptor (/dev/stdout) are written to directly.
    explicit Output(const std::string &path, ReaderGone gone = ReaderGone::ends);
    /// Leaves no trace of a file that was not committed.
    ~Output();
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    /// Throws IoError, and PipeClosed when the reader has gone and that ends the run;
    /// nothing is written from then on.
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
    std::string target_;    // path_ with symbolic links followed
    std::string temporary_; // empty when written directly
    std::string buffer_;
    int fd_ = -1;
    bool own_ = true; // the descriptor is to be closed
    const ReaderGone gone_;
    bool closed_ = false; // there is no reader any more
    bool empty_ = true;   // nothing has been written
};

/// Removes unfinished files when the program is told to stop.
void install_signal_handlers();

} // namespace aceconv
