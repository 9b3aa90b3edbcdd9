#include "native/converter.h"

#include "native/values.h"

namespace aceconv::python {
namespace {

aceconv_input input_of(const View &view, int format, int schema) {
    aceconv_input input{};
    input.size = sizeof input;
    input.data = view.data();
    input.length = view.size();
    input.format = static_cast<aceconv_format>(format);
    input.schema = static_cast<aceconv_schema>(schema);
    return input;
}

py::str text_product(const aceconv_result &result) {
    return {reinterpret_cast<const char *>(result.bytes), result.length};
}

py::bytes encoding_product(const aceconv_result &result) {
    return {reinterpret_cast<const char *>(result.bytes), result.length};
}

} // namespace

View::View(py::handle object) {
    if (PyUnicode_Check(object.ptr())) {
        Py_ssize_t size = 0;
        data_ = PyUnicode_AsUTF8AndSize(object.ptr(), &size);
        if (data_ == nullptr) {
            throw py::error_already_set();
        }
        size_ = static_cast<std::size_t>(size);
        return;
    }
    if (PyObject_GetBuffer(object.ptr(), &buffer_, PyBUF_SIMPLE) != 0) {
        throw py::error_already_set();
    }
    data_ = buffer_.buf;
    size_ = static_cast<std::size_t>(buffer_.len);
}

View::~View() {
    if (buffer_.obj != nullptr) {
        PyBuffer_Release(&buffer_);
    }
}

Turn::Turn(Converter &converter) : converter_(converter) {
    if (converter.user_ == std::this_thread::get_id()) {
        throw std::runtime_error("a converter cannot be called by what it calls itself");
    }
    if (!converter.mutex_.try_lock()) {
        const py::gil_scoped_release released;
        converter.mutex_.lock();
    }
    converter.user_ = std::this_thread::get_id();
}

Turn::~Turn() {
    converter_.user_ = std::thread::id{};
    converter_.mutex_.unlock();
}

Converter::Converter(int schema, int backend, const std::optional<std::string> &modules,
                     const std::optional<std::string> &plugin, bool losses) {
    aceconv_options options{};
    options.size = sizeof options;
    options.schema = static_cast<aceconv_schema>(schema);
    options.backend = static_cast<aceconv_backend>(backend);
    options.modules = modules ? modules->c_str() : nullptr;
    options.plugin = plugin ? plugin->c_str() : nullptr;
    options.no_losses = losses ? 0 : 1;
    if (aceconv_open(&options, &converter_) == ACECONV_OK) {
        return;
    }
    struct Closed {
        aceconv_converter *converter;
        ~Closed() { aceconv_close(converter); }
    } const closed{converter_};
    raise(converter_ == nullptr ? nullptr : aceconv_last_error(converter_));
}

template <class Call>
const aceconv_result &Converter::result_of(Call call) {
    const aceconv_result *result = nullptr;
    if (call(&result) != ACECONV_OK) {
        raise(aceconv_last_error(converter_));
    }
    return *result;
}

/// Calls the library for one entry; `product` makes what Python gets of the result.
template <class Call, class Product>
py::tuple Converter::made_of(py::handle entry, int format, int schema, Call call, Product product) {
    const Turn turn(*this);
    const View view(entry);
    aceconv_input input = input_of(view, format, schema);
    const aceconv_result &result = result_of([&](auto out) { return call(input, out); });
    const py::object losses =
        result.change_count == 0 ? py::none() : py::object(loss_objects(result));
    return py::make_tuple(product(result), losses);
}

py::tuple Converter::encode(py::handle entry, int format, int schema,
                            const std::optional<std::string> &list, std::uint32_t sequence,
                            const py::object &stored) {
    std::optional<View> earlier;
    if (!stored.is_none()) {
        earlier.emplace(stored);
    }
    return made_of(
        entry, format, schema,
        [&](aceconv_input &input, auto out) {
            input.list = list ? list->c_str() : nullptr;
            input.sequence = sequence;
            input.stored = earlier ? earlier->data() : nullptr;
            input.stored_length = earlier ? earlier->size() : 0;
            return aceconv_encode(converter_, &input, out);
        },
        encoding_product);
}

py::tuple Converter::decode(py::handle encoding, int schema, std::uint32_t sequence, int format) {
    return made_of(
        encoding, ACECONV_FORMAT_CBOR, schema,
        [&](aceconv_input &input, auto out) {
            input.sequence = sequence;
            return aceconv_decode(converter_, &input, static_cast<aceconv_format>(format), out);
        },
        text_product);
}

py::tuple Converter::convert(py::handle entry, int from, int schema, int to, int format) {
    return made_of(
        entry, from, schema,
        [&](aceconv_input &input, auto out) {
            return aceconv_convert(converter_, &input, static_cast<aceconv_schema>(to),
                                   static_cast<aceconv_format>(format), out);
        },
        text_product);
}

py::tuple Converter::inspect(py::handle entry, int format, int schema) {
    return made_of(
        entry, format, schema,
        [&](aceconv_input &input, auto out) { return aceconv_inspect(converter_, &input, out); },
        field_objects);
}

py::tuple Converter::check(py::handle entry, int format, int schema) {
    return made_of(
        entry, format, schema,
        [&](aceconv_input &input, auto out) { return aceconv_check(converter_, &input, out); },
        encoding_product);
}

py::list Converter::diff(py::handle before, int before_format, py::handle after, int after_format,
                         int schema) {
    const Turn turn(*this);
    const View left(before);
    const View right(after);
    const aceconv_input from = input_of(left, before_format, schema);
    const aceconv_input to = input_of(right, after_format, schema);
    return loss_objects(
        result_of([&](auto out) { return aceconv_diff(converter_, &from, &to, out); }));
}

} // namespace aceconv::python
