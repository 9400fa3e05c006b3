// Requests and responses of the four modules by name, built from and parsed into Python
// values through the methods' descriptions (interfaces/<module>_methods.h).
#pragma once

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "python/Convert.h"

namespace vrmpy {

// What Python can do with one method.
struct MethodOps {
    std::vector<std::string> requestMembers;
    std::vector<std::string> responseMembers;
    // Wire bytes of the request (response) built from keyword values; members not given
    // take their type's default.
    std::function<py::bytes(const py::dict&)> request;
    std::function<py::bytes(const py::dict&)> response;
    // The members of a decoded response, as Python values.
    std::function<py::dict(const Message&)> parseResponse;
    // The members of a decoded request of this method as Python values.
    std::function<py::dict(const Message&)> parseRequest;
};

// Methods by name, per module.
using ModuleMethods = std::map<std::string, MethodOps>;

void add_generator_methods(ModuleMethods& out);
void add_ifsetup_methods(ModuleMethods& out);
void add_stats_methods(ModuleMethods& out);
void add_loadprofile_methods(ModuleMethods& out);

// Registers vrm.request, vrm.response, vrm.parse_response, vrm.decode, vrm.modules,
// vrm.methods and vrm.members on `m`.
void bind_messages(py::module_& m);

namespace detail {

using binding::name_of;
using binding::request_of;
using binding::response_of;
using binding::rules_of;

template <class Members>
std::vector<std::string> names_of(const Members& ms) {
    std::vector<std::string> names;
    std::apply([&](const auto&... a) { (names.emplace_back(a.name), ...); }, ms);
    return names;
}

// Refuses keywords that name no member, the way Python refuses unexpected keywords.
void check_keywords(const py::dict& kw, const std::vector<std::string>& names, const std::string& method);

// One value per member, read from the keywords (the member's default when absent).
template <class Members, std::size_t... I>
auto read_members(const Members& ms, const py::dict& kw, std::index_sequence<I...>) {
    std::tuple<typename std::tuple_element_t<I, Members>::type...> values;
    [[maybe_unused]] auto read_one = [&](const auto& a, auto& out) {
        if (kw.contains(a.name)) read_value(to_json(kw[a.name], a.name), a.name, out, a.form);
    };
    (read_one(std::get<I>(ms), std::get<I>(values)), ...);
    return values;
}

template <class Members>
auto read_members(const Members& ms, const py::dict& kw) {
    return read_members(ms, kw, std::make_index_sequence<std::tuple_size_v<Members>>{});
}

template <class Members, class Values, std::size_t... I>
py::dict members_to_py(const Members& ms, const Values& values, std::index_sequence<I...>) {
    py::dict out;
    ((out[std::get<I>(ms).name] = to_py(std::get<I>(values), std::get<I>(ms).form)), ...);
    return out;
}

inline py::bytes wire(const Message& m) {
    const std::vector<unsigned char> bytes = tmsg::encode(m);
    return bytes_of(bytes.data(), bytes.size());
}

// The members of a decoded message as Python values, read by `parse` (a call of one of the
// binding's parsers with one output per member).
template <class Members, class Parse>
py::dict parsed_members(const Members& ms, Parse parse) {
    auto values = read_members(ms, py::dict{});
    std::apply(parse, values);
    return members_to_py(ms, values, std::make_index_sequence<std::tuple_size_v<Members>>{});
}

template <class D>
MethodOps ops_of(const D& d) {
    MethodOps ops;
    const std::string method = name_of(d);
    ops.requestMembers = names_of(request_of(d));
    ops.responseMembers = names_of(response_of(d));
    ops.request = [&d, method, names = ops.requestMembers](const py::dict& kw) {
        check_keywords(kw, names, method);
        const auto values = read_members(request_of(d), kw);
        Message m;
        std::apply([&](const auto&... v) { binding::build_request(&m, d, false, v...); }, values);
        return wire(m);
    };
    ops.response = [&d, method, names = ops.responseMembers](const py::dict& kw) {
        check_keywords(kw, names, method);
        const auto values = read_members(response_of(d), kw);
        Message m;
        std::apply(
            [&](const auto&... v) {
                binding::build_message(&m, rules_of(d), name_of(d), TMT_RESPONSE, response_of(d), false, v...);
            },
            values);
        return wire(m);
    };
    ops.parseResponse = [&d](const Message& m) {
        return parsed_members(response_of(d), [&](auto&... v) { binding::parse_response(&m, d, v...); });
    };
    ops.parseRequest = [&d](const Message& m) {
        return parsed_members(request_of(d), [&](auto&... v) { binding::parse_request(&m, d, v...); });
    };
    return ops;
}

}  // namespace detail

// Adds every entry of a module's catalogue.
template <class Catalogue>
void add_catalogue(const Catalogue& catalogue, ModuleMethods& out) {
    std::apply([&](const auto&... e) { ((out[detail::name_of(*e.desc)] = detail::ops_of(*e.desc)), ...); },
               catalogue);
}

}  // namespace vrmpy
