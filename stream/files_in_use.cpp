#include "stream/files_in_use.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "stream/errors.h"

namespace aceconv {
namespace {

namespace fs = std::filesystem;

constexpr int most_links = 40; // one behind the other, as the kernel has it
const dev_t null_device = makedev(1, 3);

std::optional<int> number(const std::string &text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value)
                                                                    : std::nullopt;
}

/// Whether it was open at start; all that are opened since are to be closed by exec.
bool inherited(int descriptor) {
    const int flags = fcntl(descriptor, F_GETFD);
    return flags >= 0 && (flags & FD_CLOEXEC) == 0;
}

} // namespace

Place find_place(const std::string &path) {
    const std::string own = "/proc/" + std::to_string(getpid()) + "/"; // of its threads too
    fs::path at = path;
    for (int links = 0; links < most_links; ++links) {
        std::error_code fault;
        const fs::path folder =
            fs::canonical(at.has_parent_path() ? at.parent_path() : fs::path("."), fault);
        if (fault) {
            break; // as whoever opens it will find
        }
        const fs::path here = folder / at.filename();
        if (folder.filename() == "fd" && folder.native().starts_with(own)) {
            return {here.string(), number(at.filename().string())};
        }
        const fs::path link = fs::read_symlink(here, fault);
        if (fault) {
            return {here.string()};
        }
        at = folder / link;
    }
    return {at.string()};
}

bool FilesInUse::same(const Used &a, const Used &b) {
    if (!a.status || !b.status) {
        return !a.status && !b.status && a.target == b.target;
    }
    if (S_ISCHR(a.status->st_mode) && S_ISCHR(b.status->st_mode)) {
        return a.written && b.written && a.status->st_rdev == b.status->st_rdev &&
               a.status->st_rdev != null_device;
    }
    return ((a.written && b.written) || S_ISREG(a.status->st_mode)) &&
           a.status->st_dev == b.status->st_dev && a.status->st_ino == b.status->st_ino;
}

std::string FilesInUse::key(const Used &used) {
    if (!used.status) {
        return used.target;
    }
    const bool device = S_ISCHR(used.status->st_mode);
    return device ? std::to_string(used.status->st_rdev)
                  : std::to_string(used.status->st_dev) + ":" + std::to_string(used.status->st_ino);
}

void FilesInUse::add(const std::string &path, int standard, bool written) {
    const Place place = path == "-" ? Place{"", standard} : find_place(path);
    Used used{path, written, place.target, std::nullopt};
    if (path == "-") {
        used.name = written ? "<stdout>" : "<stdin>";
    }
    if (place.descriptor && !inherited(*place.descriptor)) {
        throw IoError(used.name + (written ? ": cannot write: " : ": cannot read: ") +
                      std::strerror(EBADF));
    }
    struct stat status {};
    if ((place.descriptor ? fstat(*place.descriptor, &status)
                          : stat(place.target.c_str(), &status)) == 0) {
        used.status = status;
    }
    const std::string of_same = key(used);
    const auto [begin, end] = used_.equal_range(of_same);
    for (auto at = begin; at != end; ++at) {
        const Used &other = at->second;
        if ((written || other.written) && same(used, other)) {
            const bool twice = written && other.written;
            throw UsageError((used.name == other.name
                                  ? used.name + " is"
                                  : other.name + " and " + used.name + " are one file that is") +
                             (twice ? " to be written twice" : " to be read and written at once"));
        }
    }
    used_.emplace(of_same, std::move(used));
}

void FilesInUse::reads(const std::string &path) {
    add(path, STDIN_FILENO, false);
}

void FilesInUse::writes(const std::string &path) {
    add(path, STDOUT_FILENO, true);
}

} // namespace aceconv
