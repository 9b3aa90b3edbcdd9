#include "stream/output.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "stream/errors.h"
#include "stream/files_in_use.h"

namespace aceconv {
namespace {

constexpr std::size_t buffer_bytes = 1 << 16;

// The names of unfinished files, for the signal handler: the main output and a report.
std::array<const char *volatile, 2> unfinished{};

void forget(const char *name) {
    for (auto &slot : unfinished) {
        if (slot == name) {
            slot = nullptr;
        }
    }
}

void remember(const char *name) {
    for (auto &slot : unfinished) {
        if (slot == nullptr) {
            slot = name;
            return;
        }
    }
}

extern "C" void stop(int signal) {
    for (auto &slot : unfinished) {
        if (slot != nullptr) {
            unlink(slot);
        }
    }
    std::signal(signal, SIG_DFL);
    raise(signal);
}

mode_t current_umask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

} // namespace

void install_signal_handlers() {
    std::signal(SIGPIPE, SIG_IGN); // shows as EPIPE instead
    std::signal(SIGXFSZ, SIG_IGN); // as EFBIG
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(signal, stop) == SIG_IGN) {
            std::signal(signal, SIG_IGN); // stays ignored, as under nohup
        }
    }
}

Output::Output(const std::string &path, ReaderGone gone)
    : path_(path == "-" ? "<stdout>" : path), gone_(gone) {
    buffer_.reserve(buffer_bytes);
    const Place place = path == "-" ? Place{"", STDOUT_FILENO} : find_place(path);
    target_ = place.target;
    struct stat status {};
    const bool there = !place.descriptor && stat(target_.c_str(), &status) == 0;
    if (place.descriptor) {
        fd_ = *place.descriptor;
        own_ = false;
    } else if (!there && errno != ENOENT) { // nothing that a new file could take the place of
    } else if (there && !S_ISREG(status.st_mode)) {
        fd_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
    } else {
        const std::size_t name_at = target_.rfind('/') + 1; // npos + 1 is 0
        std::string name = target_.substr(0, name_at) + "." + target_.substr(name_at) + ".XXXXXX";
        fd_ = mkostemp(name.data(), O_CLOEXEC);
        if (fd_ >= 0) {
            temporary_ = name;
            remember(temporary_.c_str());
            if (there) {
                static_cast<void>(fchown(fd_, status.st_uid, status.st_gid) == 0 ||
                                  fchown(fd_, static_cast<uid_t>(-1), status.st_gid) == 0);
            }
            (void)fchmod(fd_, there ? status.st_mode & 0777 : 0666 & ~current_umask());
        }
    }
    if (fd_ < 0) {
        throw IoError(path_ + ": cannot write: " + std::strerror(errno));
    }
}

Output::~Output() {
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
        forget(temporary_.c_str());
    }
    if (own_ && fd_ >= 0) {
        close(fd_);
    }
}

void Output::write(std::string_view bytes) {
    if (closed_) {
        return;
    }
    buffer_ += bytes;
    empty_ = empty_ && bytes.empty();
    if (buffer_.size() >= buffer_bytes) {
        flush();
    }
}

void Output::flush() {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
        const ssize_t written = ::write(fd_, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            closed_ = true;
            rest = {};
        } else if (errno != EINTR) {
            throw IoError(path_ + ": cannot write: " + std::strerror(errno));
        }
    }
    const bool ended = closed_ && !buffer_.empty() && gone_ == ReaderGone::ends;
    buffer_.clear();
    if (ended) {
        throw PipeClosed();
    }
}

void Output::commit() {
    flush();
    if (temporary_.empty()) {
        return;
    }
    if (fsync(fd_) != 0 || close(std::exchange(fd_, -1)) != 0 ||
        std::rename(temporary_.c_str(), target_.c_str()) != 0) {
        throw IoError(path_ + ": cannot write: " + std::strerror(errno));
    }
    forget(temporary_.c_str());
    temporary_.clear();
}

} // namespace aceconv
