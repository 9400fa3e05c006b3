// libFuzzer target: every response and notification parser of the four modules. The first
// byte selects the parser (modulo their number), the rest is decoded as a wire message and
// handed to it. A parser may refuse with the platform's exceptions (Tm_exception and its
// kinds) and nothing else; a message of the wrong kind is refused with
// Tm_type_mismatch_exception before any output is touched.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <tuple>
#include <type_traits>
#include <utility>

#include "binding/RecordCodec.h"
#include "fuzz/Parsers.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"

namespace {

template <class F>
struct Signature;
template <class R, class... P>
struct Signature<R (*)(const Message*, P...)> {
    // One value per output parameter, whether the parser takes it by reference or pointer.
    using Outputs = std::tuple<std::remove_cv_t<std::remove_pointer_t<std::remove_reference_t<P>>>...>;

    template <std::size_t... I>
    static void call(R (*parse)(const Message*, P...), const Message* m, [[maybe_unused]] Outputs& outs,
                     std::index_sequence<I...>) {
        parse(m, pass<P>(std::get<I>(outs))...);
    }
    template <class Q, class T>
    static decltype(auto) pass(T& out) {
        if constexpr (std::is_pointer_v<Q>) {
            return &out;
        } else {
            return (out);
        }
    }
};

// Outputs that are not what a parser starts from: a refusal that touched them shows.
template <class T>
void mark(T& v) {
    if constexpr (binding::IsVector<T>::value) v.resize(1);
}

template <class Parser>
void run(const Parser& p, const Message& m) {
    using S = Signature<decltype(p.parse)>;
    typename S::Outputs outs;
    std::apply([](auto&... o) { (mark(o), ...); }, outs);
    const typename S::Outputs before = outs;
    const bool wrongKind = m.get_msg_type() != p.kind;
    try {
        S::call(p.parse, &m, outs, std::make_index_sequence<std::tuple_size_v<typename S::Outputs>>{});
    } catch (const Tm_type_mismatch_exception&) {
        if (wrongKind && !(outs == before)) std::abort();
        return;
    } catch (const Tm_exception&) {
        if (wrongKind) std::abort();
        return;
    }
    if (wrongKind) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    Message m;
    try {
        tmsg::decode(data + 1, size - 1, m);
    } catch (const Tm_exception&) {
        return 0;
    }
    fuzzing::visit_parser(data[0] % fuzzing::kParserCount, [&](const auto& p) { run(p, m); });
    return 0;
}
