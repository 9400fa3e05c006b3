#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

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

template <unsigned int N>
Value<N> Make(std::uint64_t low) {
    Value<N> v;
    for (unsigned int i = 0; i < N && i < 8; ++i) v[i] = static_cast<unsigned char>(low >> (8 * i));
    return v;
}

template <unsigned int N>
Value<N> Ones() {
    Value<N> v;
    for (unsigned int i = 0; i < N; ++i) v[i] = 0xFF;
    return v;
}

template <unsigned int N>
std::uint64_t Low(const Value<N>& v) {
    std::uint64_t w = 0;
    for (unsigned int i = 0; i < N && i < 8; ++i) w |= std::uint64_t{v[i]} << (8 * i);
    return w;
}

// Frame values as the range engine produces them: the value of index 0, then SetReadCursor(0)
// and one GetNextValue per further frame.
template <unsigned int N>
std::vector<std::uint64_t> Frames(GenericRangeModifierInterface<N>& g, size_t count) {
    std::vector<std::uint64_t> out;
    Value<N> v;
    g.GetValueAt(0, v);
    g.SetReadCursor(0);
    out.push_back(Low<N>(v));
    while (out.size() < count) {
        g.GetNextValue(v);
        out.push_back(Low<N>(v));
    }
    return out;
}

struct CountingCase {
    const char* name;
    std::uint64_t initial, step, mask;
    unsigned int stutter;
    bool decrement;
    std::vector<std::uint64_t> frames;
};

TEST(RangeGenerator, CountingSequences) {
    const CountingCase cases[] = {
        {"IncrementWithStutter", 0x10, 1, 0xFF, 1, false, {0x10, 0x10, 0x11, 0x11, 0x12}},
        {"StepUnderMask", 0x1200, 0x100, 0xFF00, 0, false, {0x1200, 0x1300, 0x1400}},
        {"FixedBitsKept", 0xA5, 0x10, 0xF0, 0, false, {0xA5, 0xB5, 0xC5, 0xD5}},
        {"WrapsAtWidth", 0xFFFFFFFE, 1, 0xFFFFFFFF, 0, false, {0xFFFFFFFE, 0xFFFFFFFF, 0, 1}},
        {"Decrement", 0x0102, 1, 0xFFFF, 0, true, {0x0102, 0x0101, 0x0100, 0x00FF, 0x00FE}},
        {"DecrementWithStutter", 3, 2, 0xFF, 2, true, {3, 3, 3, 1, 1, 1, 0xFF}},
    };
    for (const CountingCase& c : cases) {
        Value<4> step = Make<4>(c.step);
        if (c.decrement) step.negate();
        GenericRangeModifierImpl<4> g(Make<4>(c.initial), step, Make<4>(c.mask), c.stutter);
        const auto frames = Frames<4>(g, c.frames.size());
        EXPECT_EQ(frames, c.frames) << c.name;
        for (unsigned int i = 0; i < c.frames.size(); ++i) {
            Value<4> v;
            g.GetValueAt(i, v);
            EXPECT_EQ(Low<4>(v), c.frames[i]) << c.name << " index " << i;
        }
    }
}

TEST(RangeGenerator, CarryRunsThroughFixedLowNibble) {
    GenericRangeModifierImpl<1> g(Make<1>(0x0F), Make<1>(0x01), Make<1>(0xF0), 0);
    g.SetReadCursor(0);
    Value<1> v;
    g.GetNextValue(v);
    EXPECT_EQ(v[0], 0x1F);
    for (int i = 0; i < 15; ++i) {
        g.GetNextValue(v);
        EXPECT_EQ(v[0], 0x1F) << i;
    }
    g.GetNextValue(v);
    EXPECT_EQ(v[0], 0x2F);
    // Index lookups add to the masked initial value only.
    g.GetValueAt(1, v);
    EXPECT_EQ(v[0], 0x0F);
    g.GetValueAt(16, v);
    EXPECT_EQ(v[0], 0x1F);
}

TEST(RangeGenerator, ReadCursorResumesMidStutter) {
    GenericRangeModifierImpl<16> g(Make<16>(0x100), Make<16>(3), Ones<16>(), 2);
    for (unsigned int start : {0u, 1u, 2u, 3u, 7u, 1000u}) {
        g.SetReadCursor(start);
        for (unsigned int i = start + 1; i < start + 10; ++i) {
            Value<16> next, at;
            g.GetNextValue(next);
            g.GetValueAt(i, at);
            EXPECT_EQ(next, at) << start << " -> " << i;
        }
    }
}

TEST(RangeGenerator, LargestStutterMeansOneValueForEveryIndex) {
    GenericRangeModifierImpl<4> g(Make<4>(7), Make<4>(1), Ones<4>(), 0xFFFFFFFFu);
    Value<4> v;
    g.GetValueAt(0xFFFFFFFFu, v);
    EXPECT_EQ(Low<4>(v), 7u);
    g.SetReadCursor(5);
    g.GetNextValue(v);
    EXPECT_EQ(Low<4>(v), 7u);
}

struct ShuffleCase {
    unsigned int count;
    std::vector<unsigned int> order;
};

TEST(ShuffleGenerator, InterleavedOrder) {
    const ShuffleCase cases[] = {
        {1, {0}},
        {2, {0, 1}},
        {3, {0, 1, 2}},
        {4, {0, 2, 1, 3}},
        {5, {0, 3, 2, 1, 4}},
        {6, {0, 4, 2, 3, 1, 5}},
        {7, {0, 5, 2, 3, 4, 1, 6}},
        {8, {0, 6, 2, 4, 3, 5, 1, 7}},
    };
    for (const ShuffleCase& c : cases) {
        GenericShuffleModifierImpl<2> g(Make<2>(0x100), Make<2>(0x10), Ones<2>(), 0, c.count);
        std::vector<unsigned int> order;
        for (unsigned int i = 0; i < c.count; ++i) {
            unsigned int t = 0;
            g.TranslateIndex(i, t);
            order.push_back(t);
        }
        EXPECT_EQ(order, c.order) << "count " << c.count;

        // Two periods of frames follow the order, and index lookups agree.
        std::vector<std::uint64_t> expected;
        for (int period = 0; period < 2; ++period) {
            for (unsigned int t : c.order) expected.push_back(0x100 + 0x10 * t);
        }
        EXPECT_EQ(Frames<2>(g, expected.size()), expected) << "count " << c.count;
        for (unsigned int i = 0; i < expected.size(); ++i) {
            Value<2> v;
            g.GetValueAt(i, v);
            EXPECT_EQ(Low<2>(v), expected[i]) << "count " << c.count << " index " << i;
        }
    }
}

TEST(ShuffleGenerator, StutterRepeatsEachValue) {
    GenericShuffleModifierImpl<4> g(Make<4>(0), Make<4>(1), Ones<4>(), 1, 5);
    const std::vector<std::uint64_t> expected = {0, 0, 3, 3, 2, 2, 1, 1, 4, 4, 0, 0};
    EXPECT_EQ(Frames<4>(g, expected.size()), expected);
    for (unsigned int i = 0; i < expected.size(); ++i) {
        Value<4> v;
        g.GetValueAt(i, v);
        EXPECT_EQ(Low<4>(v), expected[i]) << i;
    }
}

TEST(ShuffleGenerator, ZeroCountBehavesAsOne) {
    GenericShuffleModifierImpl<4> g(Make<4>(9), Make<4>(1), Ones<4>(), 0, 0);
    EXPECT_EQ(Frames<4>(g, 3), (std::vector<std::uint64_t>{9, 9, 9}));
    Value<4> v;
    g.GetValueAt(12345, v);
    EXPECT_EQ(Low<4>(v), 9u);
}

TEST(RandomGenerator, RegisterStep) {
    struct {
        std::uint64_t state, next;
    } const cases[] = {
        {1, 0x8806A731}, {2, 1}, {3, 0x8806A730}, {0, 0}, {0x1FFFFFFFF, 0x8806A731 ^ 0xFFFFFFFF},
    };
    for (const auto& c : cases) EXPECT_EQ(RandomRegisterStep(c.state), c.next) << c.state;
}

TEST(RandomGenerator, FirstValueFromSeedOne) {
    GenericRandomModifierImpl<4> g(Make<4>(1), Ones<4>(), 0);
    EXPECT_EQ(Frames<4>(g, 3), (std::vector<std::uint64_t>{1, 0x8806A731, RandomRegisterStep(0x8806A731)}));
}

TEST(RandomGenerator, NeverSetsBitsAboveLowest32) {
    Value<16> initial = Ones<16>();
    GenericRandomModifierImpl<16> g(initial, Ones<16>(), 0);
    Value<16> v;
    for (unsigned int i = 0; i < 200; ++i) {
        g.GetNextValue(v);
        for (unsigned int d = 4; d < 16; ++d) ASSERT_EQ(v[d], 0) << i;
        g.GetValueAt(i * 7919u, v);
        for (unsigned int d = 4; d < 16; ++d) ASSERT_EQ(v[d], 0) << i;
    }
    // Narrow fields keep only their own bytes.
    GenericRandomModifierImpl<2> narrow(Make<2>(0xFFFF), Make<2>(0x0FF0), 0);
    for (unsigned int i = 0; i < 50; ++i) {
        Value<2> n;
        narrow.GetValueAt(i, n);
        EXPECT_EQ(Low<2>(n) & ~std::uint64_t{0x0FF0}, 0u);
    }
}

TEST(RandomGenerator, JumpEqualsStepping) {
    std::mt19937 rng(7);
    const unsigned int seeds[] = {1, 0xFFFFFFFF, 0x12345678, static_cast<unsigned int>(rng())};
    for (unsigned int seed : seeds) {
        // Every index of a stretch, then sparse indexes up to two million.
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
}

TEST(RandomGenerator, JumpsCompose) {
    std::mt19937 rng(11);
    for (int i = 0; i < 500; ++i) {
        const std::uint64_t seed = rng();
        const unsigned int a = rng() >> 1, b = rng() >> 1;
        EXPECT_EQ(RandomRegisterAdvance(seed, a + b),
                  RandomRegisterAdvance(RandomRegisterAdvance(seed, a), b));
    }
}

TEST(RandomGenerator, PeriodOfTheRegister) {
    // The register returns to any non-zero 32-bit state after 2^32 - 1 steps and not after
    // any proper divisor of it.
    const unsigned int period = 0xFFFFFFFFu;
    for (std::uint64_t seed : {1ull, 0x8806A731ull, 0xDEADBEEFull}) {
        EXPECT_EQ(RandomRegisterAdvance(seed, period), seed);
        for (unsigned int factor : {3u, 5u, 17u, 257u, 65537u}) {
            EXPECT_NE(RandomRegisterAdvance(seed, period / factor), seed) << factor;
        }
    }
    // A state with the register's top bit set leaves it after one step.
    EXPECT_EQ(RandomRegisterAdvance(0x100000000ull, period),
              RandomRegisterAdvance(0x80000000ull, period - 1));
}

TEST(RandomGenerator, IndexLookupsAndCursorAgree) {
    GenericRandomModifierImpl<8> g(Make<8>(0xCAFEF00D), Make<8>(0xFFFF00FF), 3);
    for (unsigned int index : {0u, 1u, 4u, 1000003u, 999999999u, 0xFFFFFFF0u}) {
        g.SetReadCursor(index);
        for (unsigned int i = index + 1; i < index + 9; ++i) {
            Value<8> next, at;
            g.GetNextValue(next);
            g.GetValueAt(i, at);
            EXPECT_EQ(next, at) << index << " -> " << i;
            EXPECT_EQ(Low<8>(at) & ~std::uint64_t{0xFFFF00FF}, 0u);
        }
    }
    Value<8> v;
    g.GetValueAt(4 * 10u + 2, v);
    EXPECT_EQ(Low<8>(v), RandomRegisterAdvance(0xCAFEF00D, 10) & 0xFFFF00FF);
}

}  // namespace
