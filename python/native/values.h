// What the C library tells, as Python's objects.
#pragma once

#include <pybind11/pybind11.h>

#include "aceconv/converter.h"

namespace aceconv::python {

namespace py = pybind11;

/// The classes of the package that results are made of.
struct Classes {
    Classes();
    py::object value, loss, field, error, kinds, schemas;
};

/// The classes, looked up once; the interpreter's lock must be held.
const Classes &classes();

py::object value_object(const aceconv_value &value);
/// The changes of a result, each with its entry's list, number and line.
py::list loss_objects(const aceconv_result &result);
py::object loss_object(const aceconv_result &entry, const aceconv_change &change);
py::list field_objects(const aceconv_result &result);
/// The exception for a failed call, as an object.
py::object error_object(const aceconv_error &error);
/// Throws it; MemoryError for want of memory.
[[noreturn]] void raise(const aceconv_error *error);

/// A schema's name, None for ACECONV_SCHEMA_ANY.
py::object schema_object(aceconv_schema schema);
py::object text_or_none(const char *text);

} // namespace aceconv::python
