// Files by what they are, under whichever name.
#pragma once

#include <optional>
#include <string>
#include <sys/stat.h>
#include <unordered_map>

namespace aceconv {

/// Where a path leads.
struct Place {
    std::string target;                 // with symbolic links followed; need not be there
    std::optional<int> descriptor = {}; // one of this process, as /dev/stdout names it
};

/// The links of `path` are followed as far as they go; a link to nothing leads to
/// what it would be.
Place find_place(const std::string &path);

/// The files of one run. None may be written and read, or written twice, under any
/// of its names; devices and pipes may be read and written, and /dev/null is no file.
class FilesInUse {
  public:
    /// "-" is standard input. Throws UsageError, IoError where a descriptor is not open.
    void reads(const std::string &path);
    /// "-" is standard output. Throws UsageError, IoError likewise.
    void writes(const std::string &path);

  private:
    struct Used {
        std::string name; // as it is told
        bool written;
        std::string target;
        std::optional<struct stat> status; // none where there is no file yet
    };

    static bool same(const Used &a, const Used &b);
    static std::string key(const Used &used);
    void add(const std::string &path, int standard, bool written);

    std::unordered_multimap<std::string, Used> used_; // by what only the same file can share
};

} // namespace aceconv
