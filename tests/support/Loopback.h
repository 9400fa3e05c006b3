// Test support: a loopback far side for the methods and notifications of a module.
//
// A method goes the whole way a real call goes: the module's public builder fills a client
// message, the wire codec carries it to a fresh far-side message, the far side reads every
// request member back (by the method's description) and answers with a response built by
// the shared engine, the codec carries the answer back and the module's public parser reads
// it. Every member read on either side must equal what was sent. Catalogue entries are
// binding::entry(desc, &create_req_X, &parse_resp_X); notification entries are
// binding::entry(desc, &parse_req_N, &create_resp_N). Records go through their public
// converters and the wire (loop_record, check_records). Failures are reported through
// GoogleTest assertions, with a trace naming the method.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "binding/Method.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "support/RecordFill.h"

namespace testing_support {

// --- layout ------------------------------------------------------------------------------

using Layout = std::vector<std::pair<std::string, TMV>>;

// (name, kind) of every member of a struct, in order.
inline Layout layout(const Tm_struct& s) {
    Layout out;
    for (int i = 0; i < s.get_member_count(); ++i)
        out.emplace_back(s.get_member_name(i), s.get_member_value_type(i));
    return out;
}
// (name, kind) of every member of a message group (by default the send group), in order.
inline Layout layout(const Message& m, Tm_message_group group = TMG_SEND) {
    return layout(m.get_group(group));
}

// The names of a members tuple, in order.
template <class Members>
std::vector<std::string> member_names(const Members& ms) {
    return std::apply([](const auto&... m) { return std::vector<std::string>{m.name...}; }, ms);
}

// --- calling public functions ------------------------------------------------------------

namespace detail {

template <class F>
struct Params;
template <class Ret, class... P>
struct Params<Ret (*)(const Message*, P...)> {
    using type = std::tuple<P...>;
};

// An output for a parameter of type P: a pointer parameter gets the address.
template <class P, class T>
decltype(auto) pass(T& out) {
    if constexpr (std::is_pointer_v<P>) {
        return &out;
    } else {
        return (out);
    }
}

template <class Parse, class Outs, std::size_t... I>
void call_parse(Parse parse, const Message* m, [[maybe_unused]] Outs& outs, std::index_sequence<I...>) {
    using P = typename Params<Parse>::type;
    static_assert(std::tuple_size_v<P> == sizeof...(I), "the parser takes one output per member");
    parse(m, pass<std::tuple_element_t<I, P>>(std::get<I>(outs))...);
}

template <class Create, class Args>
bool call_create(Create create, Message* m, bool copy, const Args& args) {
    if constexpr (std::tuple_size_v<Args> == 0) {
        (void)copy;
        return create(m);
    } else {
        return std::apply([&](const auto&... a) { return create(m, a..., copy); }, args);
    }
}

template <class Member, class T>
void expect_member_equal(const char* side, const Member& m, const T& got, const T& want) {
    EXPECT_TRUE(got == want) << side << " member '" << m.name << "'";
}

template <class Members, class Got, class Want, std::size_t... I>
void expect_members_equal([[maybe_unused]] const char* side, [[maybe_unused]] const Members& ms,
                          [[maybe_unused]] const Got& got, [[maybe_unused]] const Want& want,
                          std::index_sequence<I...>) {
    (expect_member_equal(side, std::get<I>(ms), std::get<I>(got), std::get<I>(want)), ...);
}

template <class Members, class Values, std::size_t... I>
void read_all(const Tm_struct& group, const Members& ms, [[maybe_unused]] Values& values,
              std::index_sequence<I...> idx) {
    binding::read_members(group, ms, idx, std::get<I>(values)...);
}

template <class Members, class Values, std::size_t... I>
bool build_all(Message* m, const binding::ModuleRules& rules, const char* name, Tm_message_type type,
               const Members& ms, bool copy, [[maybe_unused]] const Values& values,
               std::index_sequence<I...>) {
    return binding::build_message(m, rules, name, type, ms, copy, std::get<I>(values)...);
}

// Carries `from`'s send group over the wire into `to`'s receive group.
inline void carry(const Message& from, Message& to) { tmsg::decode(tmsg::encode(from), to); }

}  // namespace detail

// --- hand-made far-side messages ----------------------------------------------------------

// The bytes of a far-side message of kind `type` holding `values` as the members `ms`
// (for instance a method's response members), built by the shared engine.
template <class Members, class... V>
std::vector<unsigned char> far_bytes(const Members& ms, Tm_message_type type, const V&... values) {
    static const binding::ModuleRules rules{nullptr, true};
    Message far;
    binding::build_message(&far, rules, "", type, ms, true, values...);
    return tmsg::encode(far);
}

// A fresh message that received `bytes`.
inline Message received(const std::vector<unsigned char>& bytes) {
    Message m;
    tmsg::decode(bytes, m);
    return m;
}

// far_bytes, received.
template <class Members, class... V>
Message received(const Members& ms, Tm_message_type type, const V&... values) {
    return received(far_bytes(ms, type, values...));
}

// Replaces every occurrence of the text `from` in encoded bytes by `to` (same length, so
// the encoding stays well formed); returns how many were replaced.
inline int replace_text(std::vector<unsigned char>& bytes, const std::string& from, const std::string& to) {
    if (from.size() != to.size() || from.empty()) return 0;
    int found = 0;
    for (auto it = bytes.begin();
         (it = std::search(it, bytes.end(), from.begin(), from.end())) != bytes.end();) {
        it = std::copy(to.begin(), to.end(), it);
        ++found;
    }
    return found;
}

// --- one method --------------------------------------------------------------------------

// Builds the request with the public builder, checks it on the far side, answers with
// `results` and parses the answer with the public parser. `args` and `results` are tuples
// of the request and response member types, in member order.
template <class D, class Create, class Parse, class Args, class Results>
void loop_method(const binding::Entry<D, Create, Parse>& e, const std::string& expectedName, bool copy,
                 const Args& args, const Results& results) {
    const auto& desc = described_method(*e.desc);
    SCOPED_TRACE(std::string("method ") + desc.name + (copy ? " (copy)" : " (view)"));
    static_assert(std::is_same_v<Args, member_values_t<decltype(desc.request)>>, "arguments in member order");
    static_assert(std::is_same_v<Results, member_values_t<decltype(desc.response)>>,
                  "results in member order");
    const auto reqIdx = binding::indexes_of(desc.request);
    const auto respIdx = binding::indexes_of(desc.response);

    Message client;
    const bool built = detail::call_create(e.create, &client, copy, args);
    EXPECT_EQ(built, client.get_use_send_member_string());
    EXPECT_EQ(client.get_msg_type(), TMT_REQUEST);
    EXPECT_EQ(client.get_request_name(), expectedName);
    EXPECT_EQ(client.get_member_count(TMG_RECV), 0);

    Message far;
    detail::carry(client, far);
    EXPECT_EQ(far.get_msg_type(), TMT_REQUEST);
    EXPECT_EQ(far.get_request_name(), expectedName);
    std::vector<std::string> names;
    for (const auto& m : layout(far, TMG_RECV)) names.push_back(m.first);
    EXPECT_EQ(names, member_names(desc.request)) << "request members in declared order";
    Args received;
    detail::read_all(far.get_group(TMG_RECV), desc.request, received, reqIdx);
    detail::expect_members_equal("request", desc.request, received, args, reqIdx);

    detail::build_all(&far, *desc.rules, desc.name, TMT_RESPONSE, desc.response, copy, results, respIdx);
    detail::carry(far, client);
    EXPECT_EQ(client.get_msg_type(), TMT_RESPONSE);
    Results parsed;
    detail::call_parse(e.parse, &client, parsed, respIdx);
    detail::expect_members_equal("response", desc.response, parsed, results, respIdx);
}

// The same with arguments and results generated from `seed`.
template <class D, class Create, class Parse>
void loop_method(const binding::Entry<D, Create, Parse>& e, const std::string& expectedName, bool copy,
                 uint32_t seed) {
    const auto& desc = described_method(*e.desc);
    Filler filler(seed);
    const auto args = make_values(filler, desc.request);
    const auto results = make_values(filler, desc.response);
    loop_method(e, expectedName, copy, args, results);
}

// --- one notification ----------------------------------------------------------------------

// The far side sends `values` as the notification's request; the public parser (the entry's
// `create` slot holds parse_req_N) must read them back, and the public answer (the `parse`
// slot holds create_resp_N) must be an empty response.
template <class D, class ParseReq, class CreateResp, class Values>
void loop_notification(const binding::Entry<D, ParseReq, CreateResp>& e, bool copy, const Values& values) {
    const auto& desc = described_method(*e.desc);
    SCOPED_TRACE(std::string("notification ") + desc.name + (copy ? " (copy)" : " (view)"));
    const auto idx = binding::indexes_of(desc.request);

    Message far;
    detail::build_all(&far, *desc.rules, desc.name, TMT_REQUEST, desc.request, copy, values, idx);
    Message client;
    detail::carry(far, client);
    Values parsed;
    detail::call_parse(e.create, &client, parsed, idx);
    detail::expect_members_equal("notification", desc.request, parsed, values, idx);

    e.parse(&client);
    EXPECT_EQ(client.get_msg_type(), TMT_RESPONSE);
    EXPECT_EQ(client.get_member_count(TMG_SEND), 0);
    detail::carry(client, far);
    EXPECT_EQ(far.get_msg_type(), TMT_RESPONSE);
    EXPECT_EQ(far.get_member_count(TMG_RECV), 0);
}

template <class D, class ParseReq, class CreateResp>
void loop_notification(const binding::Entry<D, ParseReq, CreateResp>& e, bool copy, uint32_t seed) {
    Filler filler(seed);
    loop_notification(e, copy, make_values(filler, described_method(*e.desc).request));
}

// --- records ---------------------------------------------------------------------------

// A record converted by its public converter into the send group of a fresh message, as
// the member "record".
template <class R>
Message holding(const R& rec, bool copy) {
    using S = std::conditional_t<decltype(binding::description<R>())::is_choice, Tm_struct, Tm_prenamed_struct>;
    Message m;
    auto* s = new S();
    EXPECT_EQ(binding_to_struct(s, &rec, copy, m.get_send_member_string(TMG_SEND)), s);
    m.add_member_and_own(TMG_SEND, "record", s);
    m.create_send_member_string_meta();
    return m;
}

// The record after the wire: holding, encode, decode on a fresh message, from_struct.
template <class R>
R through_wire(const R& rec, bool copy) {
    Message receiver;
    detail::carry(holding(rec, copy), receiver);
    R back{};
    binding_from_struct(receiver.get_member_struct(TMG_RECV, "record"), &back);
    return back;
}

// "name:kind name:kind ..." of a layout.
inline std::string text(const Layout& layout) {
    std::string s;
    for (const auto& m : layout) s += (s.empty() ? "" : " ") + m.first + ":" + tmv_name(m.second);
    return s;
}

// The text of a record's layout as the far side decodes it.
template <class R>
std::string wire_layout(const R& rec) {
    Message receiver;
    detail::carry(holding(rec, true), receiver);
    return text(layout(*receiver.get_member_struct(TMG_RECV, "record")));
}

template <class R>
void loop_record(const R& original, bool copy) {
    EXPECT_TRUE(through_wire(original, copy) == original) << (copy ? "copy" : "view");
}

// `rounds` generated records of each type R, copy flag true and false.
template <class... R>
void check_records(uint32_t seed = 1, int rounds = 8) {
    for (int r = 0; r < rounds; ++r) {
        Filler filler(seed + static_cast<uint32_t>(r));
        auto one = [&](auto original) {
            filler.fill(original);
            for (bool copy : {true, false}) loop_record(original, copy);
        };
        (one(R{}), ...);
    }
}

// Runs the public builder of `e` on `m` with generated arguments; returns its result.
template <class D, class Create, class Parse>
bool build_generated(const binding::Entry<D, Create, Parse>& e, Message* m, bool copy, uint32_t seed) {
    Filler filler(seed);
    return detail::call_create(e.create, m, copy, make_values(filler, described_method(*e.desc).request));
}

// --- whole catalogues ----------------------------------------------------------------------

template <class Tuple, class F>
void for_each_entry(const Tuple& t, F&& f) {
    std::apply([&](const auto&... e) { (f(e), ...); }, t);
}

// Every method of a catalogue, `rounds` times with different generated values, copy flag
// true and false. The expected request name is prefix + method name ("" for no prefix).
template <class Catalogue>
void check_catalogue(const Catalogue& catalogue, const std::string& prefix, uint32_t seed = 1,
                     int rounds = 4) {
    for_each_entry(catalogue, [&](const auto& e) {
        const std::string name = prefix.empty() ? std::string() : prefix + described_method(*e.desc).name;
        for (int r = 0; r < rounds; ++r) {
            for (bool copy : {true, false}) loop_method(e, name, copy, seed + static_cast<uint32_t>(r));
        }
    });
}

// Every notification of a module, likewise.
template <class Notifications>
void check_notifications(const Notifications& notifications, uint32_t seed = 1, int rounds = 4) {
    for_each_entry(notifications, [&](const auto& e) {
        for (int r = 0; r < rounds; ++r) {
            for (bool copy : {true, false}) loop_notification(e, copy, seed + static_cast<uint32_t>(r));
        }
    });
}

}  // namespace testing_support
