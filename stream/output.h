// Where output goes: standard output, or a file that appears under its name
// only when it is complete.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace aceconv {

/// What the end of an output's reader means: the end of the run, or nothing, since
/// the run goes on for its exit code.
enum class ReaderGone { ends, is_ignored };

/// Takes output in pieces.
class Taker {
  public:
    virtual ~Taker() = default;
    virtual void write(std::string_view bytes) = 0;
};

/// Brings the names in a folder to the disk, where its file system can do that and whoever runs
/// this may read it. 0, or why not.
int sync_folder(const std::string &path);

class Output final : public Taker {
  public:
    /// "-" is standard output. A regular file, or one that is not there yet, is
    /// written beside its place, and takes over mode, owner and group of the one that
    /// it replaces; where it may not have the group, the group has what all others
    /// have. A link to nothing creates what it leads to; hard links stay with what
    /// stood there before. A device, a pipe, and what names a descriptor (/dev/stdout)
    /// are written to directly.
    explicit Output(const std::string &path, ReaderGone gone = ReaderGone::ends);
    /// Leaves no trace of a file that was not committed.
    ~Output() override;
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    /// Throws IoError, and PipeClosed when the reader has gone and that ends the run;
    /// nothing is written from then on.
    void write(std::string_view bytes) override;
    /// Has everything shown to `show` as it is handed over.
    void show(std::function<void(std::string_view)> show) { show_ = std::move(show); }
    /// Hands over everything that has been written, now.
    void flush();
    /// Nothing more is to be written: a file is brought to the disk and closed, beside its place.
    void complete();
    /// Puts files in their places, none before they are all complete on the disk, and
    /// the first one first; null stands for none. Where one cannot be put there, what stood in the
    /// places of the others is back when IoError is thrown, but on file systems that cannot
    /// exchange two names. Nothing is allocated once the first one has its place. Only destruction
    /// may follow.
    static void commit(const std::vector<Output *> &all);
    void commit() { commit({this}); }

    /// Written where readers can see it already, so what is there should be whole.
    [[nodiscard]] bool visible() const { return temporary_.empty(); }

    [[nodiscard]] bool empty() const { return empty_; }

    /// People read along.
    [[nodiscard]] bool is_terminal() const;

  private:
    [[noreturn]] void fail(int error) const;
    void create_beside(const struct stat *replaced);
    int put_in_place();
    void take_back();
    void discard();

    std::string path_;
    std::string target_;    // path_ with symbolic links followed
    std::string folder_;    // of a file that is put in its place
    std::string temporary_; // empty when written directly; keeps what is replaced until all is done
    std::string buffer_;
    std::function<void(std::string_view)> show_;
    int fd_ = -1;
    bool own_ = true; // the descriptor is to be closed
    enum class Placed { not_yet, as_new, replacing, for_good } placed_ = Placed::not_yet;
    const ReaderGone gone_;
    bool closed_ = false; // there is no reader any more
    bool empty_ = true;   // nothing has been written
};

} // namespace aceconv
