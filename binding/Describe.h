// Declarative descriptions of interface records.
//
// Every record is a plain struct whose fields are declared in wire order. Beside it, a
// `describe` function found by argument-dependent lookup lists its wire members once:
//
//     struct modLinkDesc_s {
//         uint32_t modIndex = 0;
//         std::vector<uint32_t> childModIndex;
//     };
//     constexpr auto describe(const modLinkDesc_s*) {
//         using R = modLinkDesc_s;
//         return binding::record<R>(binding::field("modIndex", &R::modIndex),
//                                   binding::field("childModIndex", &R::childModIndex));
//     }
//
// The field's C++ type decides its wire kind (see RecordCodec.h); markers cover the rest:
//   enum_string(name, &R::m, map)   enum (or vector of enums) travelling as its name
//   enum_int<W>(name, &R::m)        enum travelling as an integer of type W
//   bounded<N>(name, &R::m)         vector of at most N elements; a longer one ends the
//                                   outgoing struct before this member, silently
// A choice record (a selector and one alternative per enumerator, only the selected one on
// the wire) is described with choice(&R::selector, alternative(value, field...), ...). It
// holds a Selector<E> followed by an anonymous union of the alternatives; see Choice.h.
//
// record<R>() checks at compile time that every field of the aggregate is described.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/tm_enum_map.h"

namespace binding {

// Wire forms a field can take besides the one its type implies.
struct Natural {};
struct EnumString {
    const tm_enum_map* map;
};
template <class W>
struct EnumInt {};
template <std::size_t N>
struct Bounded {};

template <class R, class T, class Form = Natural>
struct Field {
    using record_type = R;
    using value_type = T;
    using form_type = Form;
    const char* name;
    T R::*member;
    Form form;
};

template <class R, class T>
constexpr Field<R, T> field(const char* name, T R::*member) {
    return {name, member, Natural{}};
}
template <class R, class T>
constexpr Field<R, T, EnumString> enum_string(const char* name, T R::*member, const tm_enum_map* map) {
    return {name, member, EnumString{map}};
}
template <class W, class R, class T>
constexpr Field<R, T, EnumInt<W>> enum_int(const char* name, T R::*member) {
    return {name, member, EnumInt<W>{}};
}
template <std::size_t N, class R, class T>
constexpr Field<R, T, Bounded<N>> bounded(const char* name, T R::*member) {
    return {name, member, Bounded<N>{}};
}

// --- type traits shared by everything that walks descriptions -------------------------------

template <class T>
struct IsVector : std::false_type {};
template <class U, class A>
struct IsVector<std::vector<U, A>> : std::true_type {};

template <class T>
struct IsByteArray : std::false_type {};
template <std::size_t N>
struct IsByteArray<std::array<unsigned char, N>> : std::true_type {};

template <class T>
constexpr bool always_false = false;

// --- aggregate member counting ----------------------------------------------------------

namespace detail {

struct AnyField {
    template <class T>
    constexpr operator T() const;  // never defined: only used in unevaluated contexts
};

template <class T, class Seq, class = void>
struct BraceConstructible : std::false_type {};
template <class T, std::size_t... I>
struct BraceConstructible<T, std::index_sequence<I...>,
                          std::void_t<decltype(T{(static_cast<void>(I), AnyField{})...})>> : std::true_type {};

template <class T, std::size_t N = 0, bool More = BraceConstructible<T, std::make_index_sequence<N + 1>>::value>
struct FieldCount : std::integral_constant<std::size_t, N> {};
template <class T, std::size_t N>
struct FieldCount<T, N, true> : FieldCount<T, N + 1> {};

}  // namespace detail

// Number of fields of an aggregate.
template <class T>
constexpr std::size_t field_count = detail::FieldCount<T>::value;

// --- records and choices ------------------------------------------------------------------

template <class R, class... F>
struct Record {
    using record_type = R;
    static constexpr bool is_choice = false;
    std::tuple<F...> fields;
};

template <class R, class... F>
constexpr Record<R, F...> record(F... fields) {
    static_assert(sizeof...(F) == field_count<R>, "every field of the record must be described, in order");
    static_assert((std::is_same_v<typename F::record_type, R> && ...), "fields of another record");
    return {std::tuple<F...>(fields...)};
}

template <class E, class F>
struct Alternative {
    using field_type = F;
    E value;
    F field;
};

template <class E, class R, class T, class Form>
constexpr Alternative<E, Field<R, T, Form>> alternative(E value, Field<R, T, Form> f) {
    return {value, f};
}

// The selector of a choice record: which alternative is alive. It reads as its enumerator
// (comparisons, switch, conversion) but is not assigned directly; the record's select()
// changes it together with the alternative that is alive.
template <class E>
class Selector {
    static_assert(std::is_enum_v<E>, "a selector is an enumeration");

  public:
    using value_type = E;

    constexpr Selector() noexcept = default;
    constexpr Selector(const Selector&) noexcept = default;
    // Set through the record's select(), which switches the alternative that is alive.
    Selector& operator=(const Selector&) = delete;
    Selector& operator=(E) = delete;

    constexpr operator E() const noexcept { return m_value; }
    constexpr E value() const noexcept { return m_value; }

    friend constexpr bool operator==(Selector a, Selector b) noexcept { return a.m_value == b.m_value; }
    friend constexpr bool operator!=(Selector a, Selector b) noexcept { return a.m_value != b.m_value; }
    friend constexpr bool operator==(Selector a, E b) noexcept { return a.m_value == b; }
    friend constexpr bool operator!=(Selector a, E b) noexcept { return a.m_value != b; }
    friend constexpr bool operator==(E a, Selector b) noexcept { return a == b.m_value; }
    friend constexpr bool operator!=(E a, Selector b) noexcept { return a != b.m_value; }

  private:
    friend struct ChoiceAccess;
    E m_value{};
};

namespace detail {

template <class T>
constexpr T round_up(T n, T to) {
    return (n + to - 1) / to * to;
}

// The size of a record holding a Selector<E> and then a union of the types T...
template <class E, class... T>
constexpr std::size_t selector_and_union_size() {
    constexpr std::size_t union_align = std::max({alignof(T)...});
    constexpr std::size_t union_size = round_up(std::max({sizeof(T)...}), union_align);
    constexpr std::size_t align = std::max(alignof(Selector<E>), union_align);
    return round_up(round_up(sizeof(Selector<E>), union_align) + union_size, align);
}

}  // namespace detail

template <class R, class E, class... A>
struct Choice {
    using record_type = R;
    using selector_type = E;
    static constexpr bool is_choice = true;
    Selector<E> R::*selector;
    std::tuple<A...> alternatives;
};

template <class R, class E, class... A>
constexpr Choice<R, E, A...> choice(Selector<E> R::*selector, A... alternatives) {
    static_assert(sizeof...(A) > 0, "a choice has alternatives");
    static_assert((std::is_same_v<decltype(A::value), E> && ...),
                  "alternatives are enumerators of the selector");
    static_assert((std::is_same_v<typename A::field_type::record_type, R> && ...),
                  "fields of another record");
    static_assert(sizeof(R) == detail::selector_and_union_size<E, typename A::field_type::value_type...>(),
                  "a choice record is its selector and a union of every described alternative, nothing more");
    return {selector, std::tuple<A...>(alternatives...)};
}

// The description of record type R, found by argument-dependent lookup.
template <class R>
constexpr auto description() {
    return describe(static_cast<const R*>(nullptr));
}

template <class R, class = void>
struct IsRecord : std::false_type {};
template <class R>
struct IsRecord<R, std::void_t<decltype(describe(static_cast<const R*>(nullptr)))>> : std::true_type {};
template <class R>
constexpr bool is_record = IsRecord<R>::value;

// --- names tables ---------------------------------------------------------------------------

template <class R>
struct Names {
    static constexpr auto desc = description<R>();
    template <class Tuple, std::size_t... I>
    static constexpr auto make(const Tuple& t, std::index_sequence<I...>) {
        if constexpr (decltype(desc)::is_choice) {
            return std::array<const char*, sizeof...(I) + 1>{std::get<I>(t).field.name..., nullptr};
        } else {
            return std::array<const char*, sizeof...(I) + 1>{std::get<I>(t).name..., nullptr};
        }
    }
    static constexpr auto& items() {
        if constexpr (decltype(desc)::is_choice) return desc.alternatives;
        else return desc.fields;
    }
    static constexpr std::size_t count = std::tuple_size_v<std::decay_t<decltype(items())>>;
    static constexpr std::array<const char*, count + 1> table = make(items(), std::make_index_sequence<count>{});
};

// The names table of a record as a static, null-terminated array (a choice record: its
// alternatives' names): what <rec>_t_names refers to.
template <class R, class Sequence = std::make_index_sequence<Names<R>::count>>
struct NamesArray;
template <class R, std::size_t... I>
struct NamesArray<R, std::index_sequence<I...>> {
    static constexpr const char* value[sizeof...(I) + 1] = {Names<R>::table[I]..., nullptr};
};

// The null-terminated names table of a record (a choice record: its alternatives' names).
template <class R>
constexpr const char* const* names() {
    return NamesArray<R>::value;
}

}  // namespace binding
