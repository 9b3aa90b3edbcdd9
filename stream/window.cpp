#include "stream/window.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "stream/errors.h"

namespace aceconv {

ReadChunk open_input(const std::string &path, std::shared_ptr<InputMeter> meter) {
    const bool standard = path == "-";
    const auto fail = [name = standard ? "<stdin>" : path](int error) {
        return IoError(name + ": cannot read: " + std::strerror(error));
    };
    const int fd = standard ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        throw fail(errno);
    }
    struct Closer {
        int fd;
        ~Closer() {
            if (fd != STDIN_FILENO) {
                close(fd);
            }
        }
    };
    struct stat status {};
    if (fstat(fd, &status) == 0 && S_ISREG(status.st_mode)) {
        meter->size = static_cast<std::uint64_t>(status.st_size);
    }
    return [fail, meter, regular = S_ISREG(status.st_mode),
            file = std::shared_ptr<Closer>(new Closer{fd})](char *buffer, std::size_t size) {
        pollfd there{file->fd, POLLIN, 0};
        if (!meter->may_wait && !regular && poll(&there, 1, 0) == 0) {
            throw InputPauses();
        }
        ssize_t got = 0;
        do {
            got = read(file->fd, buffer, size);
        } while (got < 0 && errno == EINTR);
        if (got < 0) {
            throw fail(errno);
        }
        meter->read += static_cast<std::uint64_t>(got);
        if (meter->show) {
            meter->show({buffer, static_cast<std::size_t>(got)});
        }
        return static_cast<std::size_t>(got);
    };
}

bool Window::more() {
    if (ended_) {
        return false;
    }
    // Moved to the front when that is worth it, so a byte is moved once on average.
    if (begin_ >= end_ - begin_) {
        bytes_.replace(0, end_ - begin_, bytes_, begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    if (bytes_.size() < end_ + chunk_) {
        bytes_.resize(end_ + chunk_);
    }
    const std::size_t got = read_(&bytes_[end_], chunk_);
    end_ += got;
    ended_ = got == 0;
    return !ended_;
}

} // namespace aceconv
