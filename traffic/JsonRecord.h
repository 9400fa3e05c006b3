// Reads described records from JSON, walking their descriptions so that the wire member
// names stay in one place (the records' describe functions).
//
// JSON forms by field type:
//   bool                              true / false
//   integers                          a JSON integer within the type's range
//   double                            a JSON number
//   std::string                       a string (hex text for the fields HexTextField names)
//   modifierData_s                    hex bytes, at most 16 ("0a000001", "0x0a000001",
//                                     "0a:00:00:01" and "0a 00 00 01" are the same value)
//   std::vector<unsigned char>        hex bytes, or an array of integers 0..255
//   std::array<unsigned char, N>      hex bytes, exactly N
//   a described record                an object; omitted members keep the record's defaults
//   a choice record                   an object with exactly one member, the alternative
//   std::vector<T>                    an array of T
//   enum_string fields                the enumerator's name (a vector: an array of names)
//   enum_int fields                   an integer within the wire type's range
//   bounded<N> fields                 as the vector, with at most N elements
// Anything else is refused with an InputError naming the JSON path, for example
// `rangeModifiers[1].stepValue: expected hex bytes`. write_json gives a record in the same
// forms (bytes as lower-case hex), so what it writes reads back to the same record.
#pragma once

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "binding/Choice.h"
#include "binding/Describe.h"
#include "interfaces/generator_3_bll_records.h"
#include "platform/tm_enum_map.h"

namespace vrm::traffic {

// Members keep their order, so the first error reported is the first in the file.
using Json = nlohmann::ordered_json;

// Bad input: where in the document (a JSON path, or a command-line option) and what.
class InputError : public std::runtime_error {
  public:
    InputError(std::string where, const std::string& what)
        : std::runtime_error(what), m_where(where.empty() ? std::string("(top level)") : std::move(where)) {}
    const std::string& where() const { return m_where; }
    // "<where>: <what>"
    std::string line() const { return m_where + ": " + what(); }

  private:
    std::string m_where;
};

inline std::string member_path(const std::string& path, const std::string& key) {
    return path.empty() ? key : path + "." + key;
}
inline std::string element_path(const std::string& path, std::size_t index) {
    return path + "[" + std::to_string(index) + "]";
}

// Hex bytes; an optional 0x prefix, blanks and colons between digits are allowed.
std::vector<uint8_t> parse_hex_text(const std::string& text, const std::string& path);
std::vector<uint8_t> read_hex(const Json& j, const std::string& path);
// Lower-case hex of `bytes`, no separators.
std::string to_hex(const uint8_t* bytes, std::size_t size);
inline std::string to_hex(const std::vector<uint8_t>& bytes) { return to_hex(bytes.data(), bytes.size()); }
// The JSON type of `j` in words ("a string", "an array", ...), for messages.
std::string json_kind(const Json& j);
// "expected one of A, B, C" for the rows of an enumeration map.
std::string enum_names(const tm_enum_map* map);

// String fields whose text is hex bytes (read with read_hex and kept as lower-case hex).
template <class R>
struct HexTextField {
    static bool is(const char*) { return false; }
};
template <>
struct HexTextField<Generator_3_bll::frameCfg_s> {
    static bool is(const char* name) { return std::string(name) == "data"; }
};

namespace detail {

using binding::always_false;
using binding::IsByteArray;
using binding::IsVector;

template <class T>
const char* int_name() {
    if constexpr (std::is_same_v<T, signed char>) return "int8";
    if constexpr (std::is_same_v<T, unsigned char>) return "uint8";
    if constexpr (std::is_same_v<T, short>) return "int16";
    if constexpr (std::is_same_v<T, unsigned short>) return "uint16";
    if constexpr (std::is_same_v<T, int>) return "int32";
    if constexpr (std::is_same_v<T, unsigned int>) return "uint32";
    if constexpr (std::is_same_v<T, long> || std::is_same_v<T, long long>) return "int64";
    if constexpr (std::is_same_v<T, unsigned long> || std::is_same_v<T, unsigned long long>) return "uint64";
    return "integer";
}

}  // namespace detail

template <class T>
T read_integer(const Json& j, const std::string& path) {
    static_assert(std::is_integral_v<T> && !std::is_same_v<T, bool>, "integers only");
    const std::string range = std::string("out of range for ") + detail::int_name<T>() + " (" +
                              std::to_string(std::numeric_limits<T>::min()) + ".." +
                              std::to_string(std::numeric_limits<T>::max()) + ")";
    if (j.is_number_unsigned()) {
        const auto v = j.get<std::uint64_t>();
        if (v > static_cast<std::uint64_t>(std::numeric_limits<T>::max())) throw InputError(path, range);
        return static_cast<T>(v);
    }
    if (j.is_number_integer()) {
        const auto v = j.get<std::int64_t>();
        if constexpr (std::is_unsigned_v<T>) {
            if (v < 0) throw InputError(path, range);
            if (static_cast<std::uint64_t>(v) > static_cast<std::uint64_t>(std::numeric_limits<T>::max()))
                throw InputError(path, range);
        } else {
            if (v < static_cast<std::int64_t>(std::numeric_limits<T>::min()) ||
                v > static_cast<std::int64_t>(std::numeric_limits<T>::max()))
                throw InputError(path, range);
        }
        return static_cast<T>(v);
    }
    if (j.is_number_float()) {
        // Integers beyond 64 bits arrive as floating point.
        const double d = j.get<double>();
        if (d >= 9.2e18 || d <= -9.2e18) throw InputError(path, range);
        if (d == static_cast<double>(static_cast<long long>(d)))
            throw InputError(path, "expected an integer without a decimal point or exponent");
        throw InputError(path, "expected an integer, got a fraction");
    }
    throw InputError(path, "expected an integer, got " + json_kind(j));
}

int read_enum_name(const Json& j, const std::string& path, const tm_enum_map* map);

template <class T>
void read_json(const Json& j, const std::string& path, T& out);

template <class T, class Form>
void read_form(const Json& j, const std::string& path, T& out, Form form);

template <class T>
void read_form(const Json& j, const std::string& path, T& out, binding::Natural) {
    read_json(j, path, out);
}

template <class T, std::size_t N>
void read_form(const Json& j, const std::string& path, T& out, binding::Bounded<N>) {
    read_json(j, path, out);
    if (out.size() > N) {
        throw InputError(
            path, "expected at most " + std::to_string(N) + " elements, got " + std::to_string(out.size()));
    }
}

template <class T, class W>
void read_form(const Json& j, const std::string& path, T& out, binding::EnumInt<W>) {
    out = static_cast<T>(read_integer<W>(j, path));
}

template <class T>
void read_form(const Json& j, const std::string& path, T& out, binding::EnumString form) {
    if constexpr (std::is_enum_v<T>) {
        out = static_cast<T>(read_enum_name(j, path, form.map));
    } else {
        static_assert(detail::IsVector<T>::value, "enum_string needs an enum or a vector of enums");
        using E = typename T::value_type;
        if (!j.is_array()) throw InputError(path, "expected an array, got " + json_kind(j));
        out.clear();
        for (std::size_t i = 0; i < j.size(); ++i) {
            out.push_back(static_cast<E>(read_enum_name(j[i], element_path(path, i), form.map)));
        }
    }
}

template <class R>
std::string field_names() {
    constexpr auto d = binding::description<R>();
    std::string names;
    auto add = [&names](const char* n) { names += (names.empty() ? "" : ", ") + std::string(n); };
    if constexpr (decltype(d)::is_choice) {
        std::apply([&](const auto&... a) { (add(a.field.name), ...); }, d.alternatives);
    } else {
        std::apply([&](const auto&... f) { (add(f.name), ...); }, d.fields);
    }
    return names;
}

// Reads choice record `rec` from object `j`, which has exactly one member: the alternative,
// selected (so starting from its defaults) before it is read.
template <class R>
void read_choice(const Json& j, const std::string& path, R& rec) {
    if (j.size() != 1) throw InputError(path, "expected exactly one of: " + field_names<R>());
    const auto item = j.items().begin();
    const std::string& key = item.key();
    const std::string sub = member_path(path, key);
    bool found = false;
    auto try_alternative = [&](const auto& a) {
        if (found || key != a.field.name) return;
        found = true;
        rec.select(a.value);
        read_form(item.value(), sub, rec.*(a.field.member), a.field.form);
    };
    std::apply([&](const auto&... a) { (try_alternative(a), ...); }, binding::ChoiceOf<R>::desc.alternatives);
    if (!found) throw InputError(sub, "unknown key (expected one of: " + field_names<R>() + ")");
}

// Reads the members of object `j` into record `rec`; keys listed in `skip` are left to the
// caller.
template <class R>
void read_record(const Json& j, const std::string& path, R& rec, const std::vector<std::string>& skip = {}) {
    if (!j.is_object()) throw InputError(path, "expected an object, got " + json_kind(j));
    constexpr auto d = binding::description<R>();
    if constexpr (decltype(d)::is_choice) {
        read_choice(j, path, rec);
    } else {
        for (const auto& item : j.items()) {
            const std::string& key = item.key();
            bool skipped = false;
            for (const auto& s : skip) skipped = skipped || s == key;
            if (skipped) continue;
            bool found = false;
            const std::string sub = member_path(path, key);
            auto try_field = [&](const auto& f) {
                if (found || key != f.name) return;
                found = true;
                using T = std::decay_t<decltype(rec.*(f.member))>;
                if constexpr (std::is_same_v<T, std::string>) {
                    if (HexTextField<R>::is(f.name)) {
                        rec.*(f.member) = to_hex(read_hex(item.value(), sub));
                        return;
                    }
                }
                read_form(item.value(), sub, rec.*(f.member), f.form);
            };
            std::apply([&](const auto&... f) { (try_field(f), ...); }, d.fields);
            if (!found) throw InputError(sub, "unknown key (expected one of: " + field_names<R>() + ")");
        }
    }
}

// --- records to JSON, in the forms read_json takes -----------------------------------------

template <class T>
Json write_json(const T& v);

template <class T, class Form>
Json write_form(const T& v, Form) {
    return write_json(v);
}

template <class T>
Json write_form(const T& v, binding::EnumString form) {
    auto name = [&form](int value) {
        for (const tm_enum_map* row = form.map; row->name != nullptr; ++row) {
            if (row->value == value) return Json(row->name);
        }
        return Json(value);  // a value without a name travels as its number
    };
    if constexpr (std::is_enum_v<T>) {
        return name(static_cast<int>(v));
    } else {
        Json out = Json::array();
        for (const auto& e : v) out.push_back(name(static_cast<int>(e)));
        return out;
    }
}

template <class T, class W>
Json write_form(const T& v, binding::EnumInt<W>) {
    return Json(static_cast<W>(v));
}

template <class R>
Json write_record(const R& rec) {
    constexpr auto d = binding::description<R>();
    Json out = Json::object();
    if constexpr (decltype(d)::is_choice) {
        binding::ChoiceOf<R>::visit(rec.*(d.selector), [&](const auto& a) {
            out[a.field.name] = write_form(rec.*(a.field.member), a.field.form);
        });
    } else {
        std::apply([&](const auto&... f) { ((out[f.name] = write_form(rec.*(f.member), f.form)), ...); }, d.fields);
    }
    return out;
}

template <class T>
Json write_json(const T& v) {
    if constexpr (std::is_same_v<T, bool> || std::is_integral_v<T> || std::is_floating_point_v<T> ||
                  std::is_same_v<T, std::string>) {
        return Json(v);
    } else if constexpr (std::is_same_v<T, Generator_3_bll::modifierData_s>) {
        return Json(to_hex(v.data));
    } else if constexpr (std::is_same_v<T, std::vector<unsigned char>>) {
        return Json(to_hex(v));
    } else if constexpr (detail::IsByteArray<T>::value) {
        return Json(to_hex(v.data(), v.size()));
    } else if constexpr (binding::is_record<T>) {
        return write_record(v);
    } else if constexpr (detail::IsVector<T>::value) {
        Json out = Json::array();
        for (const auto& e : v) out.push_back(write_json(static_cast<const typename T::value_type&>(e)));
        return out;
    } else {
        static_assert(detail::always_false<T>, "no JSON form for this field type");
    }
}

template <class T>
void read_json(const Json& j, const std::string& path, T& out) {
    if constexpr (std::is_same_v<T, bool>) {
        if (!j.is_boolean()) throw InputError(path, "expected true or false, got " + json_kind(j));
        out = j.get<bool>();
    } else if constexpr (std::is_integral_v<T>) {
        out = read_integer<T>(j, path);
    } else if constexpr (std::is_floating_point_v<T>) {
        if (!j.is_number()) throw InputError(path, "expected a number, got " + json_kind(j));
        out = j.get<T>();
    } else if constexpr (std::is_same_v<T, std::string>) {
        if (!j.is_string()) throw InputError(path, "expected a string, got " + json_kind(j));
        out = j.get<std::string>();
    } else if constexpr (std::is_same_v<T, Generator_3_bll::modifierData_s>) {
        out.data = read_hex(j, path);
        if (out.data.size() > 16) {
            throw InputError(path, "expected at most 16 bytes, got " + std::to_string(out.data.size()));
        }
    } else if constexpr (std::is_same_v<T, std::vector<unsigned char>>) {
        if (j.is_array()) {
            out.clear();
            for (std::size_t i = 0; i < j.size(); ++i)
                out.push_back(read_integer<unsigned char>(j[i], element_path(path, i)));
        } else {
            out = read_hex(j, path);
        }
    } else if constexpr (detail::IsByteArray<T>::value) {
        const std::vector<uint8_t> bytes = read_hex(j, path);
        if (bytes.size() != out.size()) {
            throw InputError(path, "expected exactly " + std::to_string(out.size()) + " hex bytes, got " +
                                       std::to_string(bytes.size()));
        }
        for (std::size_t i = 0; i < out.size(); ++i) out[i] = bytes[i];
    } else if constexpr (binding::is_record<T>) {
        read_record(j, path, out);
    } else if constexpr (detail::IsVector<T>::value) {
        if (!j.is_array()) throw InputError(path, "expected an array, got " + json_kind(j));
        out.clear();
        out.reserve(j.size());
        for (std::size_t i = 0; i < j.size(); ++i) {
            typename T::value_type e{};
            read_json(j[i], element_path(path, i), e);
            out.push_back(std::move(e));
        }
    } else {
        static_assert(detail::always_false<T>, "no JSON form for this field type");
    }
}

}  // namespace vrm::traffic
