#include "stream/window.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "stream/errors.h"

namespace aceconv {

ReadChunk open_input(const std::string &path, std::shared_ptr<InputMeter> meter) {
    const auto fail = [path](int error) {
        return IoError(path + ": cannot read: " + std::strerror(error));
    };
    const bool standard = path == "-";
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
    return [fail, meter, file = std::shared_ptr<Closer>(new Closer{fd})](char *buffer,
                                                                         std::size_t size) {
        ssize_t got = 0;
        do {
            got = read(file->fd, buffer, size);
        } while (got < 0 && errno == EINTR);
        if (got < 0) {
            throw fail(errno);
        }
        meter->read += static_cast<std::uint64_t>(got);
        return static_cast<std::size_t>(got);
    };
}

bool Window::more() {
    if (ended_) {
        return false;
    }
    bytes_.erase(0, begin_);
    begin_ = 0;
    const std::size_t filled = bytes_.size();
    bytes_.resize(filled + chunk_);
    const std::size_t got = read_(&bytes_[filled], chunk_);
    bytes_.resize(filled + got);
    ended_ = got == 0;
    return !ended_;
}

} // namespace aceconv
