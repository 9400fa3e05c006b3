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

template <class D, class F>
constexpr Parser<D, F> make_parser(const D* desc, F parse, Tm_message_type kind) {
    return {desc, parse, kind};
}

// The parsers of a catalogue (Kind TMT_RESPONSE: entries of methods) or of a notifications
// list (TMT_REQUEST: their entries hold the request parser where a method holds its builder).
template <Tm_message_type Kind, class Entries>
constexpr auto parsers(const Entries& entries) {
    return std::apply(
        [](const auto&... e) {
            if constexpr (Kind == TMT_RESPONSE) {
                return std::make_tuple(make_parser(e.desc, e.parse, Kind)...);
            } else {
                return std::make_tuple(make_parser(e.desc, e.create, Kind)...);
            }
        },
        entries);
}

inline constexpr auto kParsers = std::tuple_cat(
    parsers<TMT_RESPONSE>(Generator_3_bll::catalogue), parsers<TMT_REQUEST>(Generator_3_bll::notifications),
    parsers<TMT_RESPONSE>(IFSETUP_1_bll::catalogue), parsers<TMT_RESPONSE>(Stats_1_bll::catalogue),
    parsers<TMT_REQUEST>(Stats_1_bll::notifications), parsers<TMT_RESPONSE>(LoadProfile_1_bll::catalogue));

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
