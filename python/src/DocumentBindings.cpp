// tessaphon.Document and tessaphon.read: parameter documents with numpy views of their grid.
#include "Bindings.h"
#include "PythonDocument.h"
#include "PythonErrors.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <cstdio>

namespace py = pybind11;

namespace
{

constexpr py::ssize_t kCellBytes = sizeof(std::int16_t);
constexpr py::ssize_t kColumnBytes = kGridRows * kCellBytes;

int rowOf(const std::string& name)
{
    const int row = PythonDocument::rowNamed(name);
    if (row < 0)
        throw py::key_error("no parameter named \"" + name + "\"");
    return row;
}

// The grid as (frames, 48) int16, viewed in place; the array keeps the document alive.
py::array gridView(py::object self)
{
    PythonDocument& d = self.cast<PythonDocument&>();
    return py::array_t<std::int16_t>({py::ssize_t{d.frames()}, py::ssize_t{kParameterCount}},
                                     {kColumnBytes, kCellBytes}, d.gridData(), self);
}

py::array rowView(py::object self, const std::string& name)
{
    PythonDocument& d = self.cast<PythonDocument&>();
    const int row = rowOf(name);
    return py::array_t<std::int16_t>({py::ssize_t{d.frames()}}, {kColumnBytes}, d.gridData() + row, self);
}

void setRow(PythonDocument& d, const std::string& name, const py::object& values)
{
    const int row = rowOf(name);
    auto array = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(values);
    if (!array)
        throw BadArgument(name + " takes numbers");
    std::vector<double> v;
    if (array.ndim() == 0)
        v.assign(static_cast<std::size_t>(d.frames()), *array.data());
    else if (array.ndim() == 1)
        v.assign(array.data(), array.data() + array.size());
    else
        throw BadArgument(name + " takes one value per frame (a 1-D array) or one number");
    d.setRow(row, v);
}

py::array_t<bool> boolArray(const std::vector<bool>& flags, std::vector<py::ssize_t> shape)
{
    py::array_t<bool> out(shape);
    bool* data = out.mutable_data();
    for (std::size_t i = 0; i < flags.size(); ++i)
        data[i] = flags[i];
    return out;
}

std::vector<bool> flagsOf(const py::object& value, std::size_t count, const char* name)
{
    auto array = py::array_t<bool, py::array::c_style | py::array::forcecast>::ensure(value);
    if (!array || static_cast<std::size_t>(array.size()) != count)
        throw BadArgument(std::string(name) + " needs " + std::to_string(count) + " flags");
    return std::vector<bool>(array.data(), array.data() + array.size());
}

std::string describe(const PythonDocument& d)
{
    char text[160];
    std::snprintf(text, sizeof text, "<tessaphon.Document: %d frames of %d ms, %g ms, %d Hz>", d.frames(),
                  d.intervalMS(), d.lengthMS(), d.sampleRate());
    return text;
}

py::object readDocument(const std::string& path)
{
    std::vector<std::string> warnings;
    std::unique_ptr<PythonDocument> document = PythonDocument::read(path, warnings);
    for (const std::string& line : warnings)
        if (PyErr_WarnEx(PyExc_UserWarning, line.c_str(), 1) != 0)
            throw py::error_already_set();
    return py::cast(std::move(document));
}

} // namespace

void bindDocument(py::module_& m)
{
    py::class_<PythonDocument> cls(m, "Document", docDocument);
    cls.def(py::init(&PythonDocument::make), py::arg("length_ms") = 200.0, py::arg("interval_ms") = 10,
            py::arg("sample_rate") = 11025, docNew)
        .def_static("new", &PythonDocument::make, py::arg("length_ms") = 200.0, py::arg("interval_ms") = 10,
                    py::arg("sample_rate") = 11025, docNew)
        .def(
            "write",
            [](PythonDocument& d, const std::filesystem::path& path) {
                py::gil_scoped_release release;
                d.write(path);
            },
            py::arg("path"), docWrite)
        .def("copy", &PythonDocument::copy, "An independent copy of the document (its own grid).")
        .def("__copy__", &PythonDocument::copy)
        .def("__deepcopy__", [](PythonDocument& d, py::object) { return d.copy(); })
        .def_property_readonly("params", &gridView, docParams)
        .def("__getitem__", &rowView, py::arg("name"), docGetItem)
        .def("__setitem__", &setRow, py::arg("name"), py::arg("values"), docSetItem)
        .def_property_readonly(
            "names",
            [](const PythonDocument& d) {
                py::tuple names(kParameterCount);
                for (int row = 0; row < kParameterCount; ++row)
                    names[row] = py::str(d.rowName(row));
                return names;
            },
            "The 48 parameter names in row order, \"f0\" first (the columns of params).")
        .def_property_readonly("frames", &PythonDocument::frames, "Number of frames (rows of params).")
        .def_property_readonly("interval_ms", &PythonDocument::intervalMS,
                               "Frame length (update interval), ms.")
        .def_property_readonly("length_ms", &PythonDocument::lengthMS, "Utterance length, ms.")
        .def_property_readonly("sample_rate", &PythonDocument::sampleRate, docSampleRate)
        .def_property(
            "selected", [](const PythonDocument& d) { return boolArray(d.selected(), {kParameterCount}); },
            [](PythonDocument& d, const py::object& v) {
                d.setSelected(flagsOf(v, kParameterCount, "selected"));
            },
            docSelected)
        .def_property(
            "anchors",
            [](const PythonDocument& d) {
                return boolArray(d.anchors(), {d.frames(), kParameterCount});
            },
            [](PythonDocument& d, const py::object& v) {
                d.setAnchors(flagsOf(v, static_cast<std::size_t>(d.frames()) * kParameterCount, "anchors"));
            },
            docAnchors)
        .def(
            "limits",
            [](const PythonDocument& d, const std::string& name) {
                const ParameterDefinition& p = d.parameter(rowOf(name));
                return py::make_tuple(p.nMinValue, p.nMaxValue, p.nDefaultValue);
            },
            py::arg("name"), "(minimum, maximum, default) of a parameter, in the row's units.")
        .def("clamp", &PythonDocument::clampToLimits,
             "Brings every value within its parameter's limits, as the table clamps a typed value.")
        .def("__repr__", &describe);
    m.def("read", &readDocument, py::arg("path"));
}
