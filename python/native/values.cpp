#include "native/values.h"

#include <new>

namespace aceconv::python {
namespace {

py::object number_or_none(std::uint64_t number) {
    return number == 0 ? py::none() : py::object(py::int_(number));
}

/// Text of the library, which is UTF-8 but where it shows what somebody else's is.
py::str text_object(const char *text) {
    PyObject *made = PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(strlen(text)), "replace");
    if (made == nullptr) {
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::str>(made);
}

} // namespace

Classes::Classes() {
    const py::module_ types = py::module_::import("aceconv._types");
    value = types.attr("Value");
    loss = types.attr("Loss");
    field = types.attr("Field");
    error = types.attr("make_error");
    kinds = types.attr("VALUE_KINDS");
    schemas = types.attr("SCHEMAS");
}

const Classes &classes() {
    // Never destroyed: the interpreter ends before the library does.
    static const Classes *const found = new Classes;
    return *found;
}

py::object text_or_none(const char *text) {
    return text == nullptr ? py::none() : py::object(text_object(text));
}

py::object schema_object(aceconv_schema schema) {
    return classes().schemas[py::int_(static_cast<int>(schema))];
}

py::object value_object(const aceconv_value &value) {
    const bool numeric = value.kind == ACECONV_VALUE_NUMBER ||
                         value.kind == ACECONV_VALUE_KEYWORD ||
                         value.kind == ACECONV_VALUE_BOOLEAN || value.kind == ACECONV_VALUE_ADDRESS;
    return classes().value(classes().kinds[py::int_(static_cast<int>(value.kind))],
                           numeric ? py::object(py::int_(value.number)) : py::none(),
                           text_or_none(value.text), text_or_none(value.shown));
}

py::object loss_object(const aceconv_result &entry, const aceconv_change &change) {
    return classes().loss(
        text_or_none(entry.list), number_or_none(entry.sequence), number_or_none(entry.line),
        text_object(change.field), text_object(change.leaf), value_object(change.before),
        value_object(change.after), text_object(change.reason), py::bool_(change.widens != 0));
}

py::list loss_objects(const aceconv_result &result) {
    py::list losses;
    for (std::size_t i = 0; i < result.change_count; ++i) {
        losses.append(loss_object(result, result.changes[i]));
    }
    return losses;
}

py::list field_objects(const aceconv_result &result) {
    py::list fields;
    for (std::size_t i = 0; i < result.field_count; ++i) {
        const aceconv_field &field = result.fields[i];
        fields.append(classes().field(text_object(field.name), text_object(field.leaf),
                                      text_object(field.bits), field.offset, field.width,
                                      value_object(field.value), text_object(field.note)));
    }
    return fields;
}

py::object error_object(const aceconv_error &error) {
    return classes().error(static_cast<int>(error.code), text_object(error.text),
                           text_object(error.path), text_or_none(error.list),
                           number_or_none(error.sequence), number_or_none(error.line),
                           number_or_none(error.ordinal));
}

void raise(const aceconv_error *error) {
    if (error == nullptr || error->code == ACECONV_NO_MEMORY) {
        throw std::bad_alloc(); // MemoryError
    }
    const py::object exception = error_object(*error);
    PyErr_SetObject(reinterpret_cast<PyObject *>(Py_TYPE(exception.ptr())), exception.ptr());
    throw py::error_already_set();
}

} // namespace aceconv::python
