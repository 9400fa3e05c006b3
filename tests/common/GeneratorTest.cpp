#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <type_traits>

#include "common/GenericRangeModifier.h"

namespace {

using vrm::common::GenericRandomModifierImpl;
using vrm::common::GenericRangeModifierImpl;
using vrm::common::GenericRangeModifierInterface;
using vrm::common::GenericShuffleModifierImpl;
using vrm::common::RandomRegisterAdvance;
using vrm::common::RandomRegisterStep;

template <unsigned int N>
using Value = typename GenericRangeModifierInterface<N>::value_type;

// The low eight bytes from `low`, every byte above them `high`.
template <unsigned int N>
Value<N> Make(std::uint64_t low, unsigned char high = 0) {
    Value<N> v;
    for (unsigned int i = 0; i < N; ++i) v[i] = i < 8 ? static_cast<unsigned char>(low >> (8 * i)) : high;
    return v;
}

template <unsigned int N>
std::uint64_t Low(const Value<N>& v) {
    std::uint64_t w = 0;
    for (unsigned int i = 0; i < N && i < 8; ++i) w |= std::uint64_t{v[i]} << (8 * i);
    return w;
}

// Stepping from any read cursor gives what index lookups give, mid-stutter and far out
// (for a shuffle only without stutter: its cursor takes the modulus before the division).
TEST(Generators, SteppingFromACursorEqualsRandomAccess) {
    GenericRangeModifierImpl<16> range(Make<16>(0x100), Make<16>(3), Make<16>(~0ull, 0xFF), 2);
    GenericShuffleModifierImpl<2> shuffle(Make<2>(0x100), Make<2>(0x10), Make<2>(0x0FF0), 0, 7);
    GenericRandomModifierImpl<8> random(Make<8>(0xCAFEF00D), Make<8>(0xFFFF00FF), 3);
    auto stepVersusIndex = [](auto& g, unsigned int start, const char* name) {
        typename std::decay_t<decltype(g)>::value_type next, at;
        g.SetReadCursor(start);
        for (unsigned int i = start + 1; i < start + 10; ++i) {
            g.GetNextValue(next);
            g.GetValueAt(i, at);
            EXPECT_EQ(next, at) << name << " " << start << " -> " << i;
        }
    };
    for (unsigned int start : {0u, 1u, 2u, 3u, 7u, 1000u, 1000003u, 999999999u, 0xFFFFFFF0u}) {
        stepVersusIndex(range, start, "range");
        stepVersusIndex(shuffle, start, "shuffle");
        stepVersusIndex(random, start, "random");
    }
    Value<8> v;
    random.GetValueAt(4 * 10u + 2, v);
    EXPECT_EQ(Low<8>(v), RandomRegisterAdvance(0xCAFEF00D, 10) & 0xFFFF00FF);
}

TEST(Generators, DegenerateCounts) {
    // The largest stutter: one value for every index.
    GenericRangeModifierImpl<4> g(Make<4>(7), Make<4>(1), Make<4>(~0ull), 0xFFFFFFFFu);
    Value<4> v;
    g.GetValueAt(0xFFFFFFFFu, v);
    EXPECT_EQ(Low<4>(v), 7u);
    g.SetReadCursor(5);
    g.GetNextValue(v);
    EXPECT_EQ(Low<4>(v), 7u);
    // A shuffle over zero values behaves as over one.
    GenericShuffleModifierImpl<4> s(Make<4>(9), Make<4>(1), Make<4>(~0ull), 0, 0);
    s.SetReadCursor(0);
    s.GetNextValue(v);
    EXPECT_EQ(Low<4>(v), 9u);
    s.GetNextValue(v);
    EXPECT_EQ(Low<4>(v), 9u);
    s.GetValueAt(12345, v);
    EXPECT_EQ(Low<4>(v), 9u);
}

TEST(RandomGenerator, JumpEqualsSteppingAndJumpsCompose) {
    std::mt19937 rng(7);
    const std::uint64_t seeds[] = {1, 0xFFFFFFFF, 0x112345678, rng()};
    for (const std::uint64_t seed : seeds) {
        // Every index of a stretch, then sparse indexes up to two million; one state uses bit 32.
        std::uint64_t state = seed;
        unsigned int next = 0;
        for (unsigned int steps = 0; steps <= 2000000; ++steps) {
            if (steps == next) {
                ASSERT_EQ(RandomRegisterAdvance(seed, steps), state) << seed << " after " << steps;
                next = steps < 300 ? steps + 1 : steps + 1 + rng() % 50000;
            }
            state = RandomRegisterStep(state);
        }
    }
    for (int i = 0; i < 500; ++i) {
        const std::uint64_t seed = rng();
        const unsigned int a = rng() >> 1, b = rng() >> 1;
        EXPECT_EQ(RandomRegisterAdvance(seed, a + b), RandomRegisterAdvance(RandomRegisterAdvance(seed, a), b));
    }
}

}  // namespace
