#include "stream/output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "stream/errors.h"
#include "stream/files_in_use.h"
#include "stream/unfinished_files.h"

namespace aceconv {
namespace {

constexpr std::size_t buffer_bytes = 1 << 16;
// Of a file's name in that of the unfinished one, which is longer by a few, and may
// have 255 at most, on some file systems 143.
constexpr std::size_t shown_of_name = 100;

mode_t current_umask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

/// Gives the file to who owns the other one, as far as that is allowed; the mode that
/// it may have then.
mode_t take_ownership(int file, const struct stat &other) {
    const mode_t mode = other.st_mode & 07777U;
    if (fchown(file, other.st_uid, other.st_gid) == 0) {
        return mode;
    }
    const mode_t plain = mode & 0777U;
    return fchown(file, static_cast<uid_t>(-1), other.st_gid) == 0
               ? plain
               : (plain & 0707U) | ((plain & 07U) << 3U);
}

} // namespace

int sync_folder(const std::string &path) {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) {
        return errno == EACCES ? 0 : errno;
    }
    const int error = fsync(folder) == 0 || errno == EINVAL ? 0 : errno;
    close(folder);
    return error;
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
        create_beside(there ? &status : nullptr);
    }
    if (fd_ < 0) {
        fail(errno);
    }
}

Output::~Output() {
    discard();
    if (own_ && fd_ >= 0) {
        close(fd_);
    }
}

void Output::fail(int error) const {
    throw IoError(path_ + ": cannot write: " + std::strerror(error));
}

/// A file beside the target, which takes over what it can of the one to be replaced.
void Output::create_beside(const struct stat *replaced) {
    const std::size_t name_at = target_.rfind('/') + 1; // npos + 1 is 0
    std::size_t shown = std::min(target_.size() - name_at, shown_of_name);
    while (name_at + shown < target_.size() && (target_[name_at + shown] & 0xC0) == 0x80) {
        --shown; // not inside a character
    }
    folder_ = target_.substr(0, name_at);
    temporary_ = folder_ + "." + target_.substr(name_at, shown) + ".XXXXXX";
    fd_ = create_unfinished(temporary_);
    if (fd_ < 0) {
        temporary_.clear();
        return;
    }
    (void)fchmod(fd_,
                 replaced != nullptr ? take_ownership(fd_, *replaced) : 0666U & ~current_umask());
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

bool Output::is_terminal() const {
    return isatty(fd_) == 1;
}

void Output::flush() {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
        const ssize_t written = ::write(fd_, rest.data(), rest.size());
        if (written >= 0) {
            if (show_) {
                show_(rest.substr(0, static_cast<std::size_t>(written)));
            }
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            closed_ = true;
            rest = {};
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
    const bool ended = closed_ && !buffer_.empty() && gone_ == ReaderGone::ends;
    buffer_.clear();
    if (ended) {
        throw PipeClosed();
    }
}

void Output::complete() {
    flush();
    buffer_ = {};
    if (!temporary_.empty() && fd_ >= 0 &&
        (fsync(fd_) != 0 || close(std::exchange(fd_, -1)) != 0)) {
        fail(errno);
    }
}

/// Trades names with what stood there. 0, or why not.
int Output::put_in_place() {
    if (temporary_.empty()) {
        return 0;
    }
    const char *from = temporary_.c_str(), *to = target_.c_str();
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_EXCHANGE) == 0) {
        placed_ = Placed::replacing;
        return 0;
    }
    const bool new_name = errno == ENOENT;
    if (!new_name && errno != EINVAL && errno != ENOSYS) { // some file systems cannot exchange
        return errno;
    }
    if (std::rename(from, to) != 0) {
        return errno;
    }
    forget_unfinished(temporary_);
    temporary_.clear();
    placed_ = new_name ? Placed::as_new : Placed::for_good;
    return 0;
}

/// What stood there before stands there again.
void Output::take_back() {
    const char *mine = temporary_.c_str(), *target = target_.c_str();
    if (placed_ == Placed::as_new) {
        unlink(target);
    } else if (placed_ == Placed::replacing && std::rename(mine, target) != 0) {
        (void)renameat2(AT_FDCWD, mine, AT_FDCWD, target, RENAME_EXCHANGE);
    }
}

void Output::discard() {
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
        forget_unfinished(temporary_);
        temporary_.clear();
    }
}

void Output::commit(const std::vector<Output *> &all) {
    std::vector<Output *> outputs = all;
    std::erase(outputs, nullptr);
    for (Output *output : outputs) {
        output->complete();
    }
    const SignalsHeld held; // all or none
    int error = 0;
    const Output *failing = nullptr, *synced = nullptr;
    for (Output *output : outputs) {
        if (error == 0) {
            failing = output;
            error = output->put_in_place();
        }
    }
    for (const Output *output : outputs) {
        const bool placed = output->placed_ != Placed::not_yet;
        if (error == 0 && placed && (synced == nullptr || synced->folder_ != output->folder_)) {
            failing = synced = output;
            error = sync_folder(output->folder_);
        }
    }
    for (Output *output : outputs) {
        if (error != 0) {
            output->take_back();
        }
        output->discard();
    }
    if (error != 0) {
        failing->fail(error);
    }
}

} // namespace aceconv
