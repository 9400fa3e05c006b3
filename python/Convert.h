// Python values to and from the library's records, walking the records' descriptions.
//
// Python to C++ goes through the JSON reader streamgen uses (JsonRecord.h), so a dict takes
// exactly the forms a block file takes and a refusal names the same path: bytes-like values
// become hex text, everything else maps to its JSON counterpart.
// C++ to Python: records become dicts keyed by wire member names (a choice record: a dict
// with its one alternative), vectors lists, byte values (modifier data, byte vectors and
// arrays) bytes, enums sent as names their names, strings str (bytes that are not UTF-8 kept
// through surrogateescape).
#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <tuple>
#include <type_traits>

#include "binding/Choice.h"
#include "binding/Describe.h"
#include "binding/Method.h"
#include "traffic/JsonRecord.h"

namespace vrmpy {

namespace py = pybind11;
using vrm::traffic::Json;

// `value` as JSON in the block format; `path` names it in errors. Throws
// vrm::traffic::InputError for values nested too deeply or integers beyond 64 bits, and
// py::type_error for objects with no JSON form.
Json to_json(py::handle value, const std::string& path);

// Text as a Python str, lossless for bytes that are not UTF-8.
py::str text(const std::string& s);
// Bytes as Python bytes.
py::bytes bytes_of(const unsigned char* data, std::size_t size);
// The name of `value` in `map`, or its decimal text.
py::str enum_name(const tm_enum_map* map, int value);

// Reads `j` into `out` in the wire form `form` (a record field's or a method member's).
template <class T, class Form>
void read_value(const Json& j, const std::string& path, T& out, Form form) {
    if constexpr (std::is_same_v<Form, binding::Copied>) {
        vrm::traffic::read_form(j, path, out, binding::Natural{});
    } else {
        vrm::traffic::read_form(j, path, out, form);
    }
}

template <class T>
py::object to_py(const T& v);

// Natural, bounded and copied members: the type decides.
template <class T, class Form>
py::object to_py(const T& v, Form) {
    return to_py(v);
}

template <class T>
py::object to_py(const T& v, binding::EnumString form) {
    if constexpr (std::is_enum_v<T>) {
        return enum_name(form.map, static_cast<int>(v));
    } else {
        py::list out;
        for (const auto& e : v) out.append(enum_name(form.map, static_cast<int>(e)));
        return std::move(out);
    }
}

template <class T, class W>
py::object to_py(const T& v, binding::EnumInt<W>) {
    return py::int_(static_cast<W>(v));
}

template <class R>
py::dict record_to_py(const R& rec) {
    constexpr auto d = binding::description<R>();
    py::dict out;
    if constexpr (decltype(d)::is_choice) {
        // Only the alternative alive is read.
        binding::ChoiceOf<R>::visit(rec.*(d.selector), [&](const auto& a) {
            out[a.field.name] = to_py(rec.*(a.field.member), a.field.form);
        });
    } else {
        std::apply([&](const auto&... f) { ((out[f.name] = to_py(rec.*(f.member), f.form)), ...); }, d.fields);
    }
    return out;
}

template <class T>
py::object to_py(const T& v) {
    if constexpr (std::is_same_v<T, bool>) {
        return py::bool_(v);
    } else if constexpr (std::is_integral_v<T>) {
        return py::int_(v);
    } else if constexpr (std::is_floating_point_v<T>) {
        return py::float_(v);
    } else if constexpr (std::is_same_v<T, std::string>) {
        return text(v);
    } else if constexpr (std::is_same_v<T, Generator_3_bll::modifierData_s>) {
        return bytes_of(v.data.data(), v.data.size());
    } else if constexpr (std::is_same_v<T, std::vector<unsigned char>> || binding::IsByteArray<T>::value) {
        return bytes_of(v.data(), v.size());
    } else if constexpr (binding::is_record<T>) {
        return record_to_py(v);
    } else if constexpr (binding::IsVector<T>::value) {
        py::list out;
        for (const auto& e : v) out.append(to_py(static_cast<const typename T::value_type&>(e)));
        return std::move(out);
    } else {
        static_assert(binding::always_false<T>, "no Python form for this field type");
    }
}

// A record read from a Python dict (or anything with a JSON form) through the JSON reader.
template <class R>
R record_from_py(py::handle value, const std::string& path) {
    R rec{};
    vrm::traffic::read_json(to_json(value, path), path, rec);
    return rec;
}

}  // namespace vrmpy
