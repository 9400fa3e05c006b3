#include "tools/streamgen/Catalogue.h"

#include <string>
#include <tuple>
#include <utility>
#include <vector>
#include <type_traits>

#include "interfaces/generator_3_bll_methods.h"
#include "traffic/JsonRecord.h"

namespace streamgen {

namespace {

using binding::name_of;
using binding::request_of;

// One line per member and its kind, nested records' members indented below it: the same
// walk over the record descriptions as the JSON reader's, so every member the block file
// takes is listed.
template <class F>
struct FormInfo {
    static constexpr bool enumInt = false;
    static constexpr bool bounded = false;
    using wire = int;
    static constexpr std::size_t bound = 0;
};
template <class W>
struct FormInfo<binding::EnumInt<W>> : FormInfo<void> {
    static constexpr bool enumInt = true;
    using wire = W;
};
template <std::size_t N>
struct FormInfo<binding::Bounded<N>> : FormInfo<void> {
    static constexpr bool bounded = true;
    static constexpr std::size_t bound = N;
};

template <class F>
F member_form(F f) {
    return f;
}
binding::Natural member_form(binding::Copied) { return {}; }

template <class T>
std::string type_name();

std::string indent(int depth) { return std::string(static_cast<std::size_t>(depth) * 2, ' '); }

template <class R>
void describe_record(int depth, std::ostream& out);

template <class T, class Form>
void describe_member(const char* name, Form form, int depth, std::ostream& out) {
    std::string kind;
    using vrm::traffic::detail::IsVector;
    if constexpr (std::is_same_v<Form, binding::EnumString>) {
        kind = (IsVector<T>::value ? "array of enum (" : "enum (") + vrm::traffic::enum_names(form.map) + ")";
    } else if constexpr (FormInfo<Form>::enumInt) {
        kind = vrm::traffic::detail::int_name<typename FormInfo<Form>::wire>();
    } else {
        if constexpr (FormInfo<Form>::bounded) kind = "at most " + std::to_string(FormInfo<Form>::bound) + " ";
        kind += type_name<T>();
    }
    out << indent(depth) << name << ": " << kind << '\n';
    if constexpr (std::is_same_v<T, Generator_3_bll::modifierData_s>) {
        // hex text in a block file
    } else if constexpr (binding::is_record<T>) {
        describe_record<T>(depth + 1, out);
    } else if constexpr (IsVector<T>::value) {
        if constexpr (binding::is_record<typename T::value_type>) describe_record<typename T::value_type>(depth + 1, out);
    }
}

template <class T>
std::string type_name() {
    using vrm::traffic::detail::IsByteArray;
    using vrm::traffic::detail::IsVector;
    if constexpr (std::is_same_v<T, bool>) {
        return "bool";
    } else if constexpr (std::is_integral_v<T>) {
        return vrm::traffic::detail::int_name<T>();
    } else if constexpr (std::is_floating_point_v<T>) {
        return "double";
    } else if constexpr (std::is_same_v<T, std::string>) {
        return "string";
    } else if constexpr (std::is_same_v<T, Generator_3_bll::modifierData_s>) {
        return "hex bytes (1 to 16)";
    } else if constexpr (std::is_same_v<T, std::vector<unsigned char>>) {
        return "bytes";
    } else if constexpr (IsByteArray<T>::value) {
        return std::to_string(std::tuple_size_v<T>) + " hex bytes";
    } else if constexpr (binding::is_record<T>) {
        constexpr auto d = binding::description<T>();
        return decltype(d)::is_choice ? "one of" : "struct";
    } else if constexpr (IsVector<T>::value) {
        return "array of " + type_name<typename T::value_type>();
    } else if constexpr (std::is_enum_v<T>) {
        return "enum";
    } else {
        return "value";
    }
}

template <class R>
void describe_record(int depth, std::ostream& out) {
    constexpr auto d = binding::description<R>();
    if constexpr (decltype(d)::is_choice) {
        std::apply([&](const auto&... a) {
            (describe_member<std::decay_t<decltype(std::declval<R&>().*(a.field.member))>>(a.field.name, a.field.form,
                                                                                          depth, out),
             ...);
        }, d.alternatives);
    } else {
        std::apply([&](const auto&... f) {
            (describe_member<std::decay_t<decltype(std::declval<R&>().*(f.member))>>(f.name, f.form, depth, out), ...);
        }, d.fields);
    }
}

template <class Members>
void describe_members(const Members& members, std::ostream& out) {
    std::apply([&](const auto&... a) {
        (describe_member<typename std::decay_t<decltype(a)>::type>(a.name, member_form(a.form), 1, out), ...);
    }, members);
}

}  // namespace

std::vector<std::string> method_names() {
    std::vector<std::string> names;
    std::apply([&](const auto&... e) { (names.emplace_back(name_of(*e.desc)), ...); },
               Generator_3_bll::catalogue);
    return names;
}

bool describe_method(const std::string& method, std::ostream& out) {
    bool found = false;
    std::apply(
        [&](const auto&... e) {
            (void)((!found && method == name_of(*e.desc) && ([&] {
                  out << "Generator_3." << name_of(*e.desc) << " (request)\n";
                  describe_members(request_of(*e.desc), out);
                  found = true;
              }(), true)) ||
             ...);
        },
        Generator_3_bll::catalogue);
    return found;
}

bool request_document(const Message& decoded, vrm::traffic::Json& out) {
    if (decoded.get_msg_type() != TMT_REQUEST) return false;
    bool found = false;
    std::apply(
        [&](const auto&... e) {
            (void)((!found && decoded.get_request_name() == std::string("Generator_3.") + name_of(*e.desc) && ([&] {
                  const auto& members = request_of(*e.desc);
                  auto values = std::apply([](const auto&... a) { return std::tuple<typename std::decay_t<decltype(a)>::type...>{}; },
                                           members);
                  std::apply([&](auto&... v) { binding::parse_request(&decoded, *e.desc, v...); }, values);
                  vrm::traffic::Json m = vrm::traffic::Json::object();
                  std::apply([&](const auto&... a) {
                      std::apply([&](const auto&... v) { ((m[a.name] = vrm::traffic::write_form(v, member_form(a.form))), ...); },
                                 values);
                  }, members);
                  out = vrm::traffic::Json::object();
                  out["kind"] = "request";
                  out["name"] = decoded.get_request_name();
                  out["members"] = std::move(m);
                  found = true;
              }(), true)) ||
             ...);
        },
        Generator_3_bll::catalogue);
    return found;
}

}  // namespace streamgen
