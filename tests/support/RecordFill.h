// Test support: fills any described record, and the members of any described method, with
// varied values by walking their descriptions.
#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "binding/Describe.h"
#include "binding/Method.h"
#include "binding/RecordCodec.h"

namespace testing_support {

class Filler {
public:
    explicit Filler(uint32_t seed) : m_rng(seed) {}

    template <class T>
    void fill(T& v) {
        fill(v, binding::Natural{});
    }

    template <class T>
    void fill(T& v, binding::Natural) {
        if constexpr (std::is_same_v<T, bool>) {
            v = (m_rng() & 1) != 0;
        } else if constexpr (std::is_same_v<T, double>) {
            v = static_cast<double>(m_rng() % 100000) / 8.0;
        } else if constexpr (std::is_integral_v<T>) {
            v = static_cast<T>(m_rng() * 0x9E3779B97F4A7C15ull);
        } else if constexpr (std::is_same_v<T, std::string>) {
            v = "s" + std::to_string(m_rng() % 1000);
        } else if constexpr (binding::IsByteArray<T>::value) {
            for (auto& b : v) b = static_cast<unsigned char>(m_rng());
        } else if constexpr (binding::IsVector<T>::value) {
            v.clear();
            v.resize(m_rng() % 3);
            fill_elements(v);
        } else if constexpr (binding::is_record<T>) {
            fill_record(v);
        } else {
            static_assert(binding::always_false<T>, "no filler for this type");
        }
    }

    template <class T, std::size_t N>
    void fill(T& v, binding::Bounded<N>) {
        v.clear();
        v.resize(m_rng() % (N < 3 ? N + 1 : 4));
        fill_elements(v);
    }

    template <class T, class W>
    void fill(T& v, binding::EnumInt<W>) {
        W w{};
        fill(w);
        v = static_cast<T>(w);
    }

    template <class T>
    void fill(T& v, binding::EnumString form) {
        if constexpr (std::is_enum_v<T>) {
            v = static_cast<T>(pick(form.map));
        } else {
            v.resize(m_rng() % 3);
            for (auto& e : v) e = static_cast<typename T::value_type>(pick(form.map));
        }
    }

    template <class R>
    void fill_record(R& r) {
        constexpr auto d = binding::description<R>();
        if constexpr (decltype(d)::is_choice) {
            constexpr std::size_t n = std::tuple_size_v<decltype(d.alternatives)>;
            const std::size_t chosen = m_rng() % n;
            std::size_t i = 0;
            std::apply(
                [&](const auto&... a) {
                    ((i++ == chosen ? (r.select(a.value), fill(r.*(a.field.member), a.field.form), 0) : 0),
                     ...);
                },
                d.alternatives);
        } else {
            std::apply([&](const auto&... f) { (fill(r.*(f.member), f.form), ...); }, d.fields);
        }
    }

    uint32_t next() { return static_cast<uint32_t>(m_rng()); }

private:
    // Element by element through a temporary, so that std::vector<bool> works too.
    template <class V>
    void fill_elements(V& v) {
        for (std::size_t i = 0; i < v.size(); ++i) {
            typename V::value_type e{};
            fill(e);
            v[i] = std::move(e);
        }
    }
    int pick(const tm_enum_map* map) {
        int n = 0;
        while (map[n].name) ++n;
        return map[m_rng() % static_cast<uint32_t>(n)].value;
    }
    std::mt19937_64 m_rng;
};

// --- descriptions ------------------------------------------------------------------------

// The method whose members a description uses (a delegated method: its inner one).
template <class Req, class Resp>
constexpr const binding::Method<Req, Resp>& described_method(const binding::Method<Req, Resp>& m) {
    return m;
}
template <class Inner>
constexpr const auto& described_method(const binding::Delegated<Inner>& d) {
    return described_method(*d.inner);
}

// The value types of a members tuple, as a tuple.
template <class Members>
struct MemberValues;
template <class... A>
struct MemberValues<std::tuple<A...>> {
    using type = std::tuple<typename A::type...>;
};
template <class Members>
using member_values_t = typename MemberValues<std::decay_t<Members>>::type;

// Varied values for every member, generated from the member types and wire forms.
template <class Members>
member_values_t<Members> make_values(Filler& filler, const Members& ms) {
    member_values_t<Members> values;
    std::apply(
        [&](auto&... v) {
            std::apply(
                [&](const auto&... m) {
                    [[maybe_unused]] auto fill_one = [&](auto& value, const auto& member) {
                        if constexpr (std::is_same_v<std::decay_t<decltype(member.form)>, binding::Copied>) {
                            filler.fill(value, binding::Natural{});
                        } else {
                            filler.fill(value, member.form);
                        }
                    };
                    (fill_one(v, m), ...);
                },
                ms);
        },
        values);
    return values;
}

}  // namespace testing_support
