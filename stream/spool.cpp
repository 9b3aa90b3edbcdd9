#include "stream/spool.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "stream/errors.h"

namespace aceconv {
namespace {

constexpr std::size_t bytes_in_memory = 256 * 1024;

enum FaultKind : std::uint64_t { no_fault, of_entry, of_stream };

/// Gone with the last descriptor, also where it had a name for a moment.
int open_unnamed(const std::string &folder) {
    int file = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (file < 0) { // not every file system can do that
        std::string name = folder + "/aceconv.XXXXXX";
        file = mkostemp(name.data(), O_CLOEXEC);
        if (file >= 0) {
            unlink(name.c_str());
        }
    }
    return file;
}

} // namespace

Spool::~Spool() {
    if (file_ >= 0) {
        close(file_);
    }
}

void Spool::fail(const char *what) const {
    throw IoError(folder_ + ": cannot " + what + " a temporary file: " + std::strerror(errno));
}

void Spool::put(std::uint64_t number) {
    bytes_.append(reinterpret_cast<const char *>(&number), sizeof number);
}

void Spool::put(std::string_view text) {
    put(text.size());
    bytes_ += text;
}

void Spool::push(const Entry &entry, const DataError *fault) {
    ++count_;
    put(entry.position.line);
    put(entry.position.ordinal);
    put(entry.key.acl ? 1 : 0);
    put(entry.key.acl.value_or(""));
    put(entry.text);
    put(fault == nullptr                                      ? no_fault
        : dynamic_cast<const StreamError *>(fault) == nullptr ? of_entry
                                                              : of_stream);
    if (fault != nullptr) {
        put(fault->path());
        put(std::string_view(fault->what()));
        put(fault->line());
    }
    if (bytes_.size() >= bytes_in_memory) {
        write_out();
    }
}

void Spool::write_out() {
    if (file_ < 0) {
        const char *folder = std::getenv("TMPDIR");
        folder_ = folder != nullptr && *folder != '\0' ? folder : "/tmp";
        file_ = open_unnamed(folder_);
        if (file_ < 0) {
            fail("create");
        }
    }
    std::string_view rest = bytes_;
    while (!rest.empty()) {
        const ssize_t written = write(file_, rest.data(), rest.size());
        if (written < 0 && errno != EINTR) {
            fail("write");
        }
        rest.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    bytes_.clear();
}

/// To its first entry, for reading.
void Spool::rewind() {
    if (file_ < 0) {
        reading_.emplace(bytes_);
        return;
    }
    write_out();
    off_t at = 0;
    reading_.emplace([this, at](char *buffer, std::size_t size) mutable {
        ssize_t got = 0;
        do {
            got = pread(file_, buffer, size, at);
        } while (got < 0 && errno == EINTR);
        if (got < 0) {
            fail("read");
        }
        at += got;
        return static_cast<std::size_t>(got);
    });
}

std::uint64_t Spool::take_number() {
    std::uint64_t number = 0;
    reading_->want(sizeof number);
    std::memcpy(&number, reading_->view().data(), sizeof number);
    reading_->take(sizeof number);
    return number;
}

std::string Spool::take_text() {
    const std::size_t size = take_number();
    reading_->want(size);
    std::string text(reading_->view().substr(0, size));
    reading_->take(size);
    return text;
}

bool Spool::pop(Entry &entry) {
    if (count_ == 0) {
        return false;
    }
    if (!reading_) {
        rewind();
    }
    entry.position = {};
    entry.position.line = take_number();
    entry.position.ordinal = take_number();
    const bool named = take_number() != 0;
    std::string name = take_text();
    entry.key = {};
    if (named) {
        entry.key.acl = std::move(name);
    }
    entry.text = take_text();
    const std::uint64_t kind = take_number();
    const std::string path = kind == no_fault ? "" : take_text();
    const std::string what = kind == no_fault ? "" : take_text();
    const std::uint64_t line = kind == no_fault ? 0 : take_number();
    if (--count_ == 0) {
        reading_.reset();
        bytes_.clear();
        if (file_ >= 0) {
            close(file_);
            file_ = -1;
        }
    }
    if (kind == of_stream) {
        throw StreamError(path, what, line);
    }
    if (kind == of_entry) {
        throw DataError(path, what, line);
    }
    return true;
}

} // namespace aceconv
