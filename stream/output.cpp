#include "stream/output.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "stream/errors.h"

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

Output::Output(const std::string &path) : path_(path) {
    buffer_.reserve(buffer_bytes);
    if (path == "-") {
        path_ = "<stdout>";
        fd_ = STDOUT_FILENO;
        return;
    }
    struct stat status {};
    const bool there = stat(path.c_str(), &status) == 0;
    if (there && !S_ISREG(status.st_mode)) {
        fd_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    } else {
        std::error_code none;
        target_ = there ? std::filesystem::canonical(path, none).string() : path;
        const std::filesystem::path target(target_);
        std::string name =
            (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();
        fd_ = mkostemp(name.data(), O_CLOEXEC);
        if (fd_ >= 0) {
            temporary_ = name;
            remember(temporary_.c_str());
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
    if (fd_ >= 0 && fd_ != STDOUT_FILENO) {
        close(fd_);
    }
}

void Output::write(std::string_view bytes) {
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
            throw PipeClosed();
        } else if (errno != EINTR) {
            throw IoError(path_ + ": cannot write: " + std::strerror(errno));
        }
    }
    buffer_.clear();
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
