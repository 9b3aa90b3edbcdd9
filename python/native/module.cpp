// The extension module under the package `aceconv`, which says what everything means.
#include <pybind11/stl.h>

#include "native/converter.h"

namespace py = pybind11;
using namespace py::literals;
using aceconv::python::Converter;

PYBIND11_MODULE(_native, module) {
    module.attr("version") = aceconv_version();
    py::class_<Converter>(module, "Converter")
        .def(py::init<int, int, const std::optional<std::string> &,
                      const std::optional<std::string> &, bool>(),
             "schema"_a, "backend"_a, "modules"_a, "plugin"_a, "losses"_a)
        .def("encode", &Converter::encode, "entry"_a, "format"_a, "schema"_a, "list"_a,
             "sequence"_a, "stored"_a)
        .def("decode", &Converter::decode, "encoding"_a, "schema"_a, "sequence"_a, "format"_a)
        .def("convert", &Converter::convert, "entry"_a, "from_format"_a, "schema"_a, "to"_a,
             "format"_a)
        .def("inspect", &Converter::inspect, "entry"_a, "format"_a, "schema"_a)
        .def("check", &Converter::check, "entry"_a, "format"_a, "schema"_a)
        .def("diff", &Converter::diff, "before"_a, "before_format"_a, "after"_a, "after_format"_a,
             "schema"_a)
        .def("encode_lines", &Converter::encode_lines, "entries"_a, "schema"_a, "jobs"_a)
        .def("run", &Converter::run, "verb"_a, "from_format"_a, "schema"_a, "to"_a, "format"_a,
             "jobs"_a, "source"_a, "sink"_a, "on_entries"_a, "on_losses"_a, "on_fault"_a,
             "on_tick"_a);
}
