// Lifetime of choice records.
//
// A choice record holds its selector and then its alternatives in shared storage (an
// anonymous union): exactly the selected alternative is alive, none when the selector names
// no alternative. The record declares its lifetime members with VRM_CHOICE_MEMBERS and
// VRM_CHOICE_API defines them after the description, from the generic functions below:
//
//     struct portRate_t {
//         binding::Selector<rateMode_t> rateMode;  // default: the first alternative
//         union {
//             rate_s fixed;
//             randomRate_s random;
//         };
//         VRM_CHOICE_MEMBERS(portRate_t, rateMode_t)
//     };
//     constexpr auto describe(const portRate_t*) { ... choice(&R::rateMode, ...) ... }
//     VRM_CHOICE_API(portRate)
//
//     portRate_t r;                    // FIXED, r.fixed value-initialised
//     r.select(rateMode_t::RANDOM);    // r.fixed destroyed, r.random value-initialised
//     r.random.minRate.rate = 10;
//
// Copies and moves carry the selector and the one alternative alive; assignment between
// records of different selections destroys the old alternative before the new one starts.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <tuple>
#include <type_traits>
#include <utility>

#include "binding/Describe.h"

namespace binding {

// The one way to change a selector (Selector's assignment is deleted).
struct ChoiceAccess {
    template <class E>
    static void set(Selector<E>& s, E value) noexcept {
        s.m_value = value;
    }
};

// The description of choice record R, and visits of its alternatives by selector value.
template <class R>
struct ChoiceOf {
    static constexpr auto desc = description<R>();
    using Desc = std::remove_const_t<decltype(desc)>;
    static_assert(Desc::is_choice, "not a choice record");
    using selector_type = typename Desc::selector_type;
    static constexpr std::size_t count = std::tuple_size_v<decltype(Desc::alternatives)>;

    // Calls f(alternative) for the alternative selected by `value`; false when none is.
    template <class F>
    static bool visit(selector_type value, F&& f) {
        return visit_each(value, f, std::make_index_sequence<count>{});
    }

  private:
    template <class F, std::size_t... I>
    static bool visit_each(selector_type value, F& f, std::index_sequence<I...>) {
        return (visit_one(std::get<I>(desc.alternatives), value, f) || ...);
    }
    template <class A, class F>
    static bool visit_one(const A& a, selector_type value, F& f) {
        if (a.value != value) return false;
        f(a);
        return true;
    }
};

template <class R>
using selector_of = typename ChoiceOf<R>::selector_type;

namespace choice_detail {

template <class R>
Selector<selector_of<R>>& selector(R& rec) {
    return rec.*(ChoiceOf<R>::desc.selector);
}
template <class R>
selector_of<R> selected(const R& rec) {
    return rec.*(ChoiceOf<R>::desc.selector);
}

// Starts the alternative `a`'s lifetime in storage where no object is alive, from `args`.
template <class R, class A, class... Args>
void start(R& rec, const A& a, Args&&... args) {
    using T = typename decltype(a.field)::value_type;
    ::new (static_cast<void*>(std::addressof(rec.*(a.field.member)))) T(std::forward<Args>(args)...);
}

template <class R, std::size_t... I>
constexpr bool distinct(std::index_sequence<I...>) {
    constexpr auto& alternatives = ChoiceOf<R>::desc.alternatives;
    const selector_of<R> values[] = {std::get<I>(alternatives).value...};
    for (std::size_t i = 0; i < sizeof...(I); ++i)
        for (std::size_t j = i + 1; j < sizeof...(I); ++j)
            if (values[i] == values[j]) return false;
    return true;
}

// Switching alternatives never fails half-way: starting, moving and ending one cannot throw.
template <class T>
constexpr bool switchable =
    std::conjunction_v<std::is_nothrow_default_constructible<T>, std::is_nothrow_move_constructible<T>,
                       std::is_nothrow_move_assignable<T>, std::is_nothrow_destructible<T>>;

template <class R, std::size_t... I>
constexpr bool all_switchable(std::index_sequence<I...>) {
    using Alternatives = decltype(ChoiceOf<R>::Desc::alternatives);
    return (switchable<typename std::tuple_element_t<I, Alternatives>::field_type::value_type> && ...);
}

}  // namespace choice_detail

// Ends the life of the alternative alive, if any (the selector is left as it was).
template <class R>
void choice_destroy(R& rec) noexcept {
    ChoiceOf<R>::visit(choice_detail::selected(rec),
                       [&rec](const auto& a) { std::destroy_at(std::addressof(rec.*(a.field.member))); });
}

// A new record: the first alternative selected and value-initialised.
template <class R>
void choice_init(R& rec) noexcept {
    static_assert(choice_detail::distinct<R>(std::make_index_sequence<ChoiceOf<R>::count>{}),
                  "each enumerator selects at most one alternative");
    static_assert(choice_detail::all_switchable<R>(std::make_index_sequence<ChoiceOf<R>::count>{}),
                  "alternatives start, move and end without throwing");
    const auto& first = std::get<0>(ChoiceOf<R>::desc.alternatives);
    ChoiceAccess::set(choice_detail::selector(rec), first.value);
    choice_detail::start(rec, first);
}

// Selects `value`: the alternative alive ends, the one `value` names (if any) starts
// value-initialised, even when it is the same alternative.
template <class R>
void choice_select(R& rec, selector_of<R> value) noexcept {
    choice_destroy(rec);
    ChoiceAccess::set(choice_detail::selector(rec), value);
    ChoiceOf<R>::visit(value, [&rec](const auto& a) { choice_detail::start(rec, a); });
}

// A new record as a copy of `other` (same selector, copy of its alternative).
template <class R>
void choice_copy(R& rec, const R& other) {
    ChoiceAccess::set(choice_detail::selector(rec), choice_detail::selected(other));
    ChoiceOf<R>::visit(choice_detail::selected(other), [&rec, &other](const auto& a) {
        choice_detail::start(rec, a, other.*(a.field.member));
    });
}

// A new record taking `other`'s alternative; `other` keeps its selector and a moved-from alternative.
template <class R>
void choice_move(R& rec, R& other) noexcept {
    ChoiceAccess::set(choice_detail::selector(rec), choice_detail::selected(other));
    ChoiceOf<R>::visit(choice_detail::selected(other), [&rec, &other](const auto& a) {
        choice_detail::start(rec, a, std::move(other.*(a.field.member)));
    });
}

template <class R>
void choice_move_assign(R& rec, R& other) noexcept {
    if (&rec == &other) return;
    if (choice_detail::selected(rec) == choice_detail::selected(other)) {
        ChoiceOf<R>::visit(choice_detail::selected(other), [&rec, &other](const auto& a) {
            rec.*(a.field.member) = std::move(other.*(a.field.member));
        });
    } else {
        choice_destroy(rec);
        choice_move(rec, other);
    }
}

// Assignment from a copy: with another alternative selected, the copy is made first, so a
// copy that throws leaves the record as it was.
template <class R>
void choice_copy_assign(R& rec, const R& other) {
    if (&rec == &other) return;
    if (choice_detail::selected(rec) == choice_detail::selected(other)) {
        ChoiceOf<R>::visit(choice_detail::selected(other), [&rec, &other](const auto& a) {
            rec.*(a.field.member) = other.*(a.field.member);
        });
    } else {
        R copy(other);
        choice_move_assign(rec, copy);
    }
}

}  // namespace binding
