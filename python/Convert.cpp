#include "python/Convert.h"

#include <cstdint>

namespace vrmpy {

namespace {

// Deeper than any record; stops self-containing lists before the C++ stack does.
constexpr int kMaxDepth = 64;

Json convert(py::handle value, const std::string& path, int depth) {
    if (depth > kMaxDepth) throw vrm::traffic::InputError(path, "nested deeper than " + std::to_string(kMaxDepth));
    PyObject* o = value.ptr();
    if (o == Py_None) return Json(nullptr);
    if (PyBool_Check(o)) return Json(o == Py_True);
    if (PyLong_Check(o)) {
        int overflow = 0;
        const long long v = PyLong_AsLongLongAndOverflow(o, &overflow);
        if (overflow == 0) {
            if (v == -1 && PyErr_Occurred()) throw py::error_already_set();
            return Json(static_cast<std::int64_t>(v));
        }
        if (overflow > 0) {
            const unsigned long long u = PyLong_AsUnsignedLongLong(o);
            if (!PyErr_Occurred()) return Json(static_cast<std::uint64_t>(u));
            PyErr_Clear();
        }
        throw vrm::traffic::InputError(path, "integer out of range (more than 64 bits)");
    }
    if (PyFloat_Check(o)) return Json(PyFloat_AS_DOUBLE(o));
    if (PyUnicode_Check(o)) {
        py::bytes utf8 = py::reinterpret_steal<py::bytes>(PyUnicode_AsEncodedString(o, "utf-8", "surrogateescape"));
        if (!utf8) throw py::error_already_set();
        return Json(static_cast<std::string>(utf8));
    }
    if (PyBytes_Check(o) || PyByteArray_Check(o) || PyMemoryView_Check(o)) {
        py::buffer_info info = py::reinterpret_borrow<py::buffer>(value).request();
        if (info.ndim > 1 || (info.ndim == 1 && info.strides[0] != 1) || info.itemsize != 1)
            throw vrm::traffic::InputError(path, "expected contiguous bytes");
        return Json(vrm::traffic::to_hex(static_cast<const std::uint8_t*>(info.ptr), static_cast<std::size_t>(info.size)));
    }
    if (PyDict_Check(o)) {
        Json out = Json::object();
        for (auto item : py::reinterpret_borrow<py::dict>(value)) {
            if (!PyUnicode_Check(item.first.ptr()))
                throw vrm::traffic::InputError(path, "keys must be strings, got " + std::string(py::str(py::type::handle_of(item.first).attr("__name__"))));
            const std::string key = item.first.cast<std::string>();
            out[key] = convert(item.second, vrm::traffic::member_path(path, key), depth + 1);
        }
        return out;
    }
    if (PyList_Check(o) || PyTuple_Check(o)) {
        Json out = Json::array();
        std::size_t i = 0;
        for (auto item : py::reinterpret_borrow<py::sequence>(value)) {
            out.push_back(convert(item, vrm::traffic::element_path(path, i), depth + 1));
            ++i;
        }
        return out;
    }
    throw py::type_error((path.empty() ? std::string() : path + ": ") + "cannot convert a " +
                         std::string(py::str(py::type::handle_of(value).attr("__name__"))));
}

}  // namespace

Json to_json(py::handle value, const std::string& path) { return convert(value, path, 0); }

py::str text(const std::string& s) {
    PyObject* o = PyUnicode_DecodeUTF8(s.data(), static_cast<Py_ssize_t>(s.size()), "surrogateescape");
    if (!o) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(o);
}

py::bytes bytes_of(const unsigned char* data, std::size_t size) {
    return py::bytes(reinterpret_cast<const char*>(data), size);
}

py::str enum_name(const tm_enum_map* map, int value) {
    for (const tm_enum_map* row = map; row->name != nullptr; ++row) {
        if (row->value == value) return py::str(row->name);
    }
    return py::str(std::to_string(value));
}

}  // namespace vrmpy
