// Declarative descriptions of remote methods and the shared rules that build their requests
// and parse their responses.
//
// A method is described once, as a constant in its module:
//
//     constexpr auto GetStreamBlockRange = binding::method("GetStreamBlockRange", kRules,
//         binding::members(binding::arg<uint32_t>("startBlockID"), binding::arg<uint32_t>("count")),
//         binding::members(binding::arg<std::vector<streamBlock_s>>("blocks")));
//
// and its public builder and parser are one-line calls of build_request / parse_response.
// Members take the wire forms of record fields (RecordCodec.h); enum_arg() sends an enum as
// its name, copied_arg() always sends a scalar vector as an owning copy.
#pragma once

#include <string>
#include <tuple>
#include <type_traits>

#include "binding/RecordCodec.h"
#include "platform/Message.h"
#include "platform/Tm_exception.h"

namespace binding {

// How a module's builders differ.
struct ModuleRules {
    // Prefix of the request name ("Generator_3."); null: the builder leaves the name unset.
    const char* requestPrefix;
    // Whether the builder starts with set_use_send_member_string(true).
    bool useSendMemberString;
};

// A scalar vector sent as an owning copy whatever the copy flag says.
struct Copied {};

template <class T, class Form = Natural>
struct Arg {
    using type = T;
    const char* name;
    Form form;
};

template <class T>
constexpr Arg<T> arg(const char* name) {
    return {name, Natural{}};
}
template <class T>
constexpr Arg<T, EnumString> enum_arg(const char* name, const tm_enum_map* map) {
    return {name, EnumString{map}};
}
template <class T>
constexpr Arg<T, Copied> copied_arg(const char* name) {
    return {name, Copied{}};
}

template <class... A>
constexpr std::tuple<A...> members(A... a) {
    return std::tuple<A...>(a...);
}

template <class Req, class Resp>
struct Method {
    const char* name;
    const ModuleRules* rules;
    Req request;
    Resp response;
};

template <class Req, class Resp>
constexpr Method<Req, Resp> method(const char* name, const ModuleRules& rules, Req request, Resp response) {
    return {name, &rules, request, response};
}

// A method whose members are those of another module's method of the same name; only the
// request name (and the send-member-string switch) is the delegating module's own.
template <class Inner>
struct Delegated {
    const Inner* inner;
    const ModuleRules* rules;
};

template <class Inner>
constexpr Delegated<Inner> delegated(const Inner& inner, const ModuleRules& rules) {
    return {&inner, &rules};
}

// What a description holds, the same for a method and for one delegated to another module's.
template <class Req, class Resp>
constexpr const char* name_of(const Method<Req, Resp>& d) {
    return d.name;
}
template <class Inner>
constexpr const char* name_of(const Delegated<Inner>& d) {
    return name_of(*d.inner);
}
template <class Req, class Resp>
constexpr const Req& request_of(const Method<Req, Resp>& d) {
    return d.request;
}
template <class Inner>
constexpr const auto& request_of(const Delegated<Inner>& d) {
    return request_of(*d.inner);
}
template <class Req, class Resp>
constexpr const Resp& response_of(const Method<Req, Resp>& d) {
    return d.response;
}
template <class Inner>
constexpr const auto& response_of(const Delegated<Inner>& d) {
    return response_of(*d.inner);
}
// The rules of the module that sends it (the delegating module's, for a delegated method).
template <class Req, class Resp>
constexpr const ModuleRules& rules_of(const Method<Req, Resp>& d) {
    return *d.rules;
}
template <class Inner>
constexpr const ModuleRules& rules_of(const Delegated<Inner>& d) {
    return *d.rules;
}

template <class Sink, class T>
bool write(const Sink& sink, const T& v, Copied, bool, Catalog* catalog) {
    return write(sink, v, Natural{}, true, catalog);
}
template <class T>
void read(const Tm_struct* s, const char* name, int hint, T& out, Copied) {
    read(s, name, hint, out, Natural{});
}

// Adds one member per argument to the send group, in order.
template <class Members, class... V, std::size_t... I>
void write_members(Message* m, [[maybe_unused]] const Members& ms, [[maybe_unused]] bool copy,
                   std::index_sequence<I...>, const V&... values) {
    static_assert(sizeof...(V) == std::tuple_size_v<Members>, "one value per member");
    static_assert((std::is_same_v<typename std::tuple_element_t<I, Members>::type, V> && ...),
                  "value types must match the described members");
    [[maybe_unused]] Catalog* catalog = m->get_send_member_string(TMG_SEND);
    (write(MessageSink{m, std::get<I>(ms).name}, values, std::get<I>(ms).form, copy, catalog), ...);
}

// Reads one output per member from `group`, in order.
template <class Members, class... O, std::size_t... I>
void read_members(const Tm_struct& group, const Members& ms, std::index_sequence<I...>, O&... outs) {
    static_assert(sizeof...(O) == std::tuple_size_v<Members>, "one output per member");
    static_assert((std::is_same_v<typename std::tuple_element_t<I, Members>::type, O> && ...),
                  "output types must match the described members");
    (read(&group, std::get<I>(ms).name, static_cast<int>(I), outs, std::get<I>(ms).form), ...);
}

template <class Members>
constexpr auto indexes_of(const Members&) {
    return std::make_index_sequence<std::tuple_size_v<Members>>{};
}

// Fills `m` with the members of `members` in group 1 under the kind `type`, following the
// module's rules; returns create_send_member_string_meta()'s result.
template <class Members, class... V>
bool build_message(Message* m, const ModuleRules& rules, const char* name, Tm_message_type type,
                   const Members& ms, bool copy, const V&... values) {
    if (rules.useSendMemberString) m->set_use_send_member_string(true);
    m->clear(TMG_SEND);
    m->set_msg_type(type);
    if (rules.requestPrefix) m->set_request_name(std::string(rules.requestPrefix) + name);
    {
        // The values of the send group are made together and dropped together.
        Message::Build_scope scope(*m);
        write_members(m, ms, copy, indexes_of(ms), values...);
    }
    m->clear(TMG_RECV);
    return m->create_send_member_string_meta();
}

template <class Req, class Resp, class... V>
bool build_request(Message* m, const Method<Req, Resp>& d, bool copy, const V&... values) {
    return build_message(m, *d.rules, d.name, TMT_REQUEST, d.request, copy, values...);
}

template <class Inner, class... V>
bool build_request(Message* m, const Delegated<Inner>& d, bool copy, const V&... values) {
    m->set_use_send_member_string(true);
    const bool result = build_request(m, *d.inner, copy, values...);
    m->set_request_name(std::string(d.rules->requestPrefix) + d.inner->name);
    return result;
}

// Throws Tm_type_mismatch_exception(found, wanted) unless `m` is of kind `wanted`.
inline void check_kind(const Message* m, Tm_message_type wanted) {
    if (m->get_msg_type() != wanted) throw Tm_type_mismatch_exception(m->get_msg_type(), wanted);
}

template <class Req, class Resp, class... O>
void parse_response(const Message* m, const Method<Req, Resp>& d, O&... outs) {
    check_kind(m, TMT_RESPONSE);
    read_members(m->get_group(TMG_RECV), d.response, indexes_of(d.response), outs...);
}

template <class Inner, class... O>
void parse_response(const Message* m, const Delegated<Inner>& d, O&... outs) {
    parse_response(m, *d.inner, outs...);
}

// Notifications arrive as requests: their members are read from the received group.
template <class Req, class Resp, class... O>
void parse_request(const Message* m, const Method<Req, Resp>& d, O&... outs) {
    check_kind(m, TMT_REQUEST);
    read_members(m->get_group(TMG_RECV), d.request, indexes_of(d.request), outs...);
}

template <class Inner, class... O>
void parse_request(const Message* m, const Delegated<Inner>& d, O&... outs) {
    parse_request(m, *d.inner, outs...);
}

// The (empty) answer to a notification.
template <class Req, class Resp>
bool build_response(Message* m, const Method<Req, Resp>& d) {
    return build_message(m, *d.rules, d.name, TMT_RESPONSE, d.response, false);
}

template <class Inner>
bool build_response(Message* m, const Delegated<Inner>& d) {
    m->set_use_send_member_string(true);
    return build_response(m, *d.inner);
}

// One entry of a module's catalogue: the description with the public functions that use it,
// so that tests can walk every method.
template <class D, class Create, class Parse>
struct Entry {
    const D* desc;
    Create create;
    Parse parse;
};

template <class D, class Create, class Parse>
constexpr Entry<D, Create, Parse> entry(const D& desc, Create create, Parse parse) {
    return {&desc, create, parse};
}

}  // namespace binding
