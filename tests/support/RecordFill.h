// Test support: fills any described record with varied values by walking its description,
// and round-trips records and method members through messages and the wire codec.
#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "binding/Describe.h"
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
                    ((i++ == chosen ? (r.*(d.selector) = a.value, fill(r.*(a.field.member), a.field.form), 0) : 0),
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

}  // namespace testing_support
