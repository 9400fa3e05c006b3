// Every response parser (parse_resp_*) and notification parser (parse_req_*) of the four
// modules as one indexed table, for the parser fuzz target and its seeds.
#pragma once

#include <cstddef>
#include <tuple>
#include <utility>

#include "interfaces/generator_3_bll_methods.h"
#include "interfaces/ifSetup_Autogen_bll_methods.h"
#include "interfaces/loadProfile_1_bll_methods.h"
#include "interfaces/stats_1_bll_methods.h"
#include "platform/Message.h"

namespace fuzzing {

// One parser: its description, the public function and the message kind it accepts.
template <class D, class F>
struct Parser {
    const D* desc;
    F parse;
    Tm_message_type kind;
};

template <class Catalogue>
constexpr auto response_parsers(const Catalogue& c) {
    return std::apply(
        [](const auto&... e) { return std::make_tuple(Parser<std::remove_pointer_t<decltype(e.desc)>, decltype(e.parse)>{
                                   e.desc, e.parse, TMT_RESPONSE}...); },
        c);
}

// Notification entries hold the request parser where a method holds its builder.
template <class Notifications>
constexpr auto request_parsers(const Notifications& n) {
    return std::apply(
        [](const auto&... e) { return std::make_tuple(Parser<std::remove_pointer_t<decltype(e.desc)>, decltype(e.create)>{
                                   e.desc, e.create, TMT_REQUEST}...); },
        n);
}

inline constexpr auto kParsers = std::tuple_cat(
    response_parsers(Generator_3_bll::catalogue), request_parsers(Generator_3_bll::notifications),
    response_parsers(IFSETUP_1_bll::catalogue), response_parsers(Stats_1_bll::catalogue),
    request_parsers(Stats_1_bll::notifications), response_parsers(LoadProfile_1_bll::catalogue));

inline constexpr std::size_t kParserCount = std::tuple_size_v<decltype(kParsers)>;

// Calls f(parser) for the parser at `index` (< kParserCount).
template <class F, std::size_t... I>
void visit_parser(std::size_t index, F&& f, std::index_sequence<I...>) {
    ((index == I ? (f(std::get<I>(kParsers)), 0) : 0), ...);
}
template <class F>
void visit_parser(std::size_t index, F&& f) {
    visit_parser(index, f, std::make_index_sequence<kParserCount>{});
}

}  // namespace fuzzing
