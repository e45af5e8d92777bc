#include "text_column.h"

#include <cmath>

namespace corvex_python {

namespace py = pybind11;

namespace {

bool isMissing(PyObject* value, PyObject* missing) {
  return value == Py_None || value == missing ||
         (PyFloat_Check(value) && std::isnan(PyFloat_AS_DOUBLE(value)));
}

}  // namespace

TextColumn::TextColumn(py::array const& objects, py::handle missing) {
  auto* const values = static_cast<PyObject* const*>(objects.data());
  size_t const count = static_cast<size_t>(objects.size());
  texts_.assign(count, nullptr);
  PyObject* previous = nullptr;  // a column often repeats one object row after row
  for (size_t row = 0; row < count; ++row) {
    PyObject* const value = values[row];
    if (value == previous) {
      texts_[row] = texts_[row - 1];
      continue;
    }
    std::string bytes;
    if (isMissing(value, missing.ptr())) {
      previous = nullptr;
      continue;
    }
    if (!bytesOf(value, &bytes)) {
      firstBadRow_ = static_cast<long long>(row);
      return;
    }
    previous = value;
    if (!bytes.empty()) {
      texts_[row] = pool_.emplace_back(std::move(bytes)).c_str();
    }
  }
}

long long TextColumn::firstNonText(py::array const& objects, py::handle missing) {
  auto* const values = static_cast<PyObject* const*>(objects.data());
  PyObject* previous = nullptr;  // a column often repeats one object row after row
  for (py::ssize_t row = 0; row < objects.size(); ++row) {
    PyObject* const value = values[row];
    if (value != previous && !PyUnicode_Check(value) && !PyBytes_Check(value) &&
        !isMissing(value, missing.ptr())) {
      return static_cast<long long>(row);
    }
    previous = value;
  }
  return -1;
}

py::array_t<bool> TextColumn::hasText(py::array const& objects, py::handle missing) {
  auto* const values = static_cast<PyObject* const*>(objects.data());
  py::array_t<bool> has(objects.size());
  bool* out = has.mutable_data();
  for (py::ssize_t row = 0; row < objects.size(); ++row) {
    PyObject* const value = values[row];
    out[row] = !isMissing(value, missing.ptr()) &&
               !(PyUnicode_Check(value) && PyUnicode_GET_LENGTH(value) == 0) &&
               !(PyBytes_Check(value) && PyBytes_GET_SIZE(value) == 0);
  }
  return has;
}

bool TextColumn::bytesOf(py::handle value, std::string* bytes) {
  if (PyBytes_Check(value.ptr())) {
    *bytes = std::string(PyBytes_AS_STRING(value.ptr()),
                         static_cast<size_t>(PyBytes_GET_SIZE(value.ptr())));
    return true;
  }
  if (!PyUnicode_Check(value.ptr())) {
    return false;
  }
  Py_ssize_t size = 0;
  if (const char* utf8 = PyUnicode_AsUTF8AndSize(value.ptr(), &size)) {
    *bytes = std::string(utf8, static_cast<size_t>(size));
    return true;
  }
  PyErr_Clear();  // lone surrogates: text read from bytes that were not UTF-8
  py::object const encoded = py::reinterpret_steal<py::object>(
      PyUnicode_AsEncodedString(value.ptr(), "utf-8", "surrogateescape"));
  if (!encoded) {
    throw py::error_already_set();
  }
  *bytes = std::string(PyBytes_AS_STRING(encoded.ptr()),
                       static_cast<size_t>(PyBytes_GET_SIZE(encoded.ptr())));
  return true;
}

py::str decodeText(std::string const& bytes) {
  PyObject* const text =
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape");
  if (text == nullptr) {
    throw py::error_already_set();
  }
  return py::reinterpret_steal<py::str>(text);
}

}  // namespace corvex_python
