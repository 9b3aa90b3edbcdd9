// A converter of the C library that any number of Python's threads may call.
#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <pybind11/pybind11.h>

#include "aceconv/converter.h"

namespace aceconv::python {

namespace py = pybind11;

/// Bytes of a str (as UTF-8), of bytes, or of anything with a buffer, while this stands.
class View {
  public:
    explicit View(py::handle object);
    ~View();
    View(const View &) = delete;
    View &operator=(const View &) = delete;
    [[nodiscard]] const void *data() const { return data_; }
    [[nodiscard]] std::size_t size() const { return size_; }

  private:
    const void *data_ = nullptr;
    std::size_t size_ = 0;
    Py_buffer buffer_{};
};

class Converter {
  public:
    Converter(int schema, int backend, const std::optional<std::string> &modules,
              const std::optional<std::string> &plugin, bool losses);
    ~Converter() { aceconv_close(converter_); }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    /// Each returns (product, losses); text products are str, encodings bytes.
    py::tuple encode(py::handle entry, int format, int schema,
                     const std::optional<std::string> &list, std::uint32_t sequence,
                     const py::object &stored);
    py::tuple decode(py::handle encoding, int schema, std::uint32_t sequence, int format);
    py::tuple convert(py::handle entry, int from, int schema, int to, int format);
    py::tuple inspect(py::handle entry, int format, int schema); // (fields, losses)
    py::tuple check(py::handle entry, int format, int schema);   // (encoding, losses)
    py::list diff(py::handle before, int before_format, py::handle after, int after_format,
                  int schema);

    /// Encodes the texts of `entries` that stand on one line each. Returns a list with the bag
    /// of each, or None where it is for `encode` to say what the entry lacks or loses,
    /// and whether there is no such one.
    py::tuple encode_lines(const py::list &entries, int schema, unsigned jobs);

    /// Entries of `source`, bytes or the number of a file open for reading, through a verb. The
    /// output goes to the open file `sink` unless that is -1. What `on_entries` takes is
    /// a list of (product, list, sequence, schema, line, ordinal), a batch at a time; on_losses
    /// a list of losses; on_fault an exception, on_tick the bytes read so far and the
    /// entries. Any of them may be None; what they raise ends the run. Returns (entries, faults,
    /// losses, entries with losses, entries that match more).
    py::tuple run(int verb, int from, int schema, int to, int format, unsigned jobs,
                  py::handle source, int sink, const py::object &on_entries,
                  const py::object &on_losses, const py::object &on_fault,
                  const py::object &on_tick);

  private:
    friend class Turn;
    template <class Call>
    const aceconv_result &result_of(Call call);
    template <class Call, class Product>
    py::tuple made_of(py::handle entry, int format, int schema, Call call, Product product);

    aceconv_converter *converter_ = nullptr;
    std::mutex mutex_;
    std::atomic<std::thread::id> user_{};
};

/// The right to call the converter. Whoever waits for it lets go of the interpreter's
/// lock meanwhile. Throws RuntimeError in a callback of the run that has it.
class Turn {
  public:
    explicit Turn(Converter &converter);
    ~Turn();
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

  private:
    Converter &converter_;
};

} // namespace aceconv::python
