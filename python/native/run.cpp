// Many entries: the library works without the interpreter's lock, which is taken for a
// batch of entries, for a loss, for a fault, and ten times a second to look for signals.
#include <chrono>
#include <cstring>
#include <exception>
#include <vector>

#include <cerrno>
#include <poll.h>
#include <unistd.h>

#include "native/converter.h"
#include "native/values.h"

namespace aceconv::python {
namespace {

constexpr std::size_t batch_entries = 1024;
constexpr std::size_t batch_bytes = 1 << 20;
constexpr auto tick_interval = std::chrono::milliseconds(100);
constexpr int wait_ms = 100;

/// A run under way.
class Running {
  public:
    Running(const py::object &on_entries, const py::object &on_losses, const py::object &on_fault,
            const py::object &on_tick)
        : on_entries_(on_entries), on_losses_(on_losses), on_fault_(on_fault), on_tick_(on_tick) {}

    void read_from(const void *bytes, std::size_t size) {
        bytes_ = static_cast<const char *>(bytes);
        left_ = size;
    }
    void read_from(int file) { source_ = file; }
    void write_to(int file) { sink_ = file; }

    void attach(aceconv_stream &stream) {
        stream.context = this;
        stream.read = [](void *self, void *buffer, std::size_t size, int may_wait) {
            return static_cast<Running *>(self)->read(buffer, size, may_wait != 0);
        };
        if (sink_ >= 0) {
            stream.write = [](void *self, const void *bytes, std::size_t size) {
                return static_cast<Running *>(self)->write(static_cast<const char *>(bytes), size);
            };
        }
        stream.entry = [](void *self, const aceconv_result *entry) {
            return static_cast<Running *>(self)->entry(*entry);
        };
        if (!on_losses_.is_none()) {
            stream.loss = [](void *self, const aceconv_result *entry, const aceconv_change *loss) {
                auto &running = *static_cast<Running *>(self);
                return running.guarded([&] { running.on_losses_(loss_object(*entry, *loss)); });
            };
        }
        if (!on_fault_.is_none()) {
            stream.fault = [](void *self, const aceconv_error *fault) {
                auto &running = *static_cast<Running *>(self);
                return running.guarded([&] { running.on_fault_(error_object(*fault)); });
            };
        }
    }

    /// Hands out the last batch; the interpreter's lock must be held. Throws what a callback
    /// has raised.
    void finish() {
        if (raised_) {
            std::rethrow_exception(raised_);
        }
        hand_out();
    }

  private:
    struct Piece {
        std::size_t begin, length;
        std::optional<std::string> list;
        std::uint32_t sequence;
        aceconv_schema schema;
        std::uint64_t line, ordinal;
    };

    /// Calls Python, noting what it raises, which ends the run.
    template <class Call>
    int guarded(Call call) {
        const py::gil_scoped_acquire locked;
        try {
            call();
            return 0;
        } catch (...) {
            raised_ = std::current_exception();
            return 1;
        }
    }

    bool tick() {
        const auto now = std::chrono::steady_clock::now();
        if (now - ticked_ < tick_interval) {
            return true;
        }
        ticked_ = now;
        return guarded([&] {
                   if (PyErr_CheckSignals() != 0) {
                       throw py::error_already_set();
                   }
                   if (!on_tick_.is_none()) {
                       on_tick_(consumed_, entries_);
                   }
               }) == 0;
    }

    std::ptrdiff_t fail() {
        const int code = errno;
        guarded([&] {
            errno = code;
            PyErr_SetFromErrno(PyExc_OSError);
            throw py::error_already_set();
        });
        return -1;
    }

    std::ptrdiff_t read(void *buffer, std::size_t size, bool may_wait) {
        if (!tick()) {
            return -1;
        }
        if (source_ < 0) {
            const std::size_t part = std::min(size, left_);
            std::memcpy(buffer, bytes_, part);
            bytes_ += part;
            left_ -= part;
            consumed_ += part;
            return static_cast<std::ptrdiff_t>(part);
        }
        pollfd waited{source_, POLLIN, 0};
        // A signal need not interrupt the wait of this thread, so that it ends now and then.
        for (int found = 0; (found = poll(&waited, 1, may_wait ? wait_ms : 0)) <= 0;) {
            if (found < 0 && errno != EINTR) {
                return fail();
            }
            if (!tick()) {
                return -1;
            }
            if (!may_wait) {
                return ACECONV_READ_LATER;
            }
        }
        const ssize_t got = ::read(source_, buffer, size);
        if (got < 0) {
            return fail();
        }
        consumed_ += static_cast<std::uint64_t>(got);
        return got;
    }

    int write(const char *bytes, std::size_t size) {
        while (size != 0) {
            const ssize_t written = ::write(sink_, bytes, size);
            if (written < 0 && errno == EINTR) {
                if (!tick()) {
                    return 1;
                }
                continue;
            }
            if (written < 0) {
                fail();
                return 1;
            }
            bytes += written;
            size -= static_cast<std::size_t>(written);
        }
        return 0;
    }

    int entry(const aceconv_result &result) {
        ++entries_;
        if (on_entries_.is_none()) {
            return 0;
        }
        try {
            pieces_.push_back(
                {gathered_.size(), result.length,
                 result.list == nullptr ? std::nullopt : std::optional<std::string>(result.list),
                 result.sequence, result.schema, result.line, result.ordinal});
            gathered_.append(reinterpret_cast<const char *>(result.bytes), result.length);
        } catch (...) {
            raised_ = std::current_exception();
            return 1;
        }
        if (pieces_.size() < batch_entries && gathered_.size() < batch_bytes) {
            return 0;
        }
        return guarded([&] { hand_out(); });
    }

    void hand_out() {
        if (pieces_.empty()) {
            return;
        }
        py::list batch(pieces_.size());
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            const Piece &piece = pieces_[i];
            batch[i] = py::make_tuple(py::bytes(gathered_.data() + piece.begin, piece.length),
                                      text_or_none(piece.list ? piece.list->c_str() : nullptr),
                                      piece.sequence, schema_object(piece.schema), piece.line,
                                      piece.ordinal);
        }
        pieces_.clear();
        gathered_.clear();
        on_entries_(batch);
    }

    const py::object &on_entries_, &on_losses_, &on_fault_, &on_tick_;
    const char *bytes_ = nullptr;
    std::size_t left_ = 0;
    int source_ = -1;
    int sink_ = -1;
    std::uint64_t consumed_ = 0;
    std::uint64_t entries_ = 0;
    std::string gathered_;
    std::vector<Piece> pieces_;
    std::chrono::steady_clock::time_point ticked_ = std::chrono::steady_clock::now();
    std::exception_ptr raised_;
};

} // namespace

py::tuple Converter::run(int verb, int from, int schema, int to, int format, unsigned jobs,
                         py::handle source, int sink, const py::object &on_entries,
                         const py::object &on_losses, const py::object &on_fault,
                         const py::object &on_tick) {
    const Turn turn(*this);
    Running running(on_entries, on_losses, on_fault, on_tick);
    std::optional<View> view;
    if (PyLong_Check(source.ptr())) {
        running.read_from(source.cast<int>());
    } else {
        view.emplace(source);
        running.read_from(view->data(), view->size());
    }
    running.write_to(sink);
    aceconv_stream stream{};
    stream.size = sizeof stream;
    stream.verb = static_cast<aceconv_verb>(verb);
    stream.from = static_cast<aceconv_format>(from);
    stream.schema = static_cast<aceconv_schema>(schema);
    stream.to = static_cast<aceconv_schema>(to);
    stream.format = static_cast<aceconv_format>(format);
    stream.jobs = jobs;
    running.attach(stream);
    aceconv_tally tally{};
    aceconv_code code = ACECONV_OK;
    {
        const py::gil_scoped_release released;
        code = aceconv_run(converter_, &stream, &tally);
    }
    running.finish();
    if (code != ACECONV_OK) {
        raise(aceconv_last_error(converter_));
    }
    return py::make_tuple(tally.entries, tally.faults, tally.losses, tally.entries_with_losses,
                          tally.entries_widened);
}

} // namespace aceconv::python
