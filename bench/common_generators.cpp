// Value generators: counting generators at widths 4 and 16 next to plain 32-bit arithmetic,
// and the register generator's index lookup next to stepping, measured in the same run.

#include <benchmark/benchmark.h>

#include <cstdint>

#include "common/GenericRangeModifier.h"
#include "common_compare.h"

namespace {

using vrm::common::GenericRandomModifierImpl;
using vrm::common::GenericRangeModifierImpl;

template <unsigned int N>
using Value = typename GenericRangeModifierImpl<N>::value_type;

template <unsigned int N>
Value<N> Fill(std::uint64_t low, unsigned char high) {
    Value<N> v;
    for (unsigned int i = 0; i < N; ++i) v[i] = i < 8 ? static_cast<unsigned char>(low >> (8 * i)) : high;
    return v;
}

// The same counting on a native 32-bit word.
struct PlainCounter {
    std::uint32_t initial = 0x0A0B0C0D, step = 0x01020305, mask = 0xFFFF0FFF;
    std::uint32_t fixed = initial & ~mask, current = initial & mask;
    std::uint32_t Next() {
        current += step;
        return (current & mask) | fixed;
    }
    std::uint32_t At(std::uint32_t k) const { return fixed | (((initial & mask) + step * k) & mask); }
};

template <unsigned int N>
GenericRangeModifierImpl<N> MakeRange() {
    return GenericRangeModifierImpl<N>(Fill<N>(0x0A0B0C0D, 0x11), Fill<N>(0x01020305, 0x03),
                                       Fill<N>(0xFFFF0FFF, 0xFF), 0);
}

template <unsigned int N>
void BM_RangeNext(benchmark::State& state) {
    auto range = MakeRange<N>();
    range.SetReadCursor(0);
    Value<N> out;
    PlainCounter plain;
    vrm_bench::CompareWithBaseline(
        state, 10000,
        [&] {
            range.GetNextValue(out);
            benchmark::DoNotOptimize(out);
        },
        10000,
        [&] {
            std::uint32_t v = plain.Next();
            benchmark::DoNotOptimize(v);
        });
}

template <unsigned int N>
void BM_RangeAt(benchmark::State& state) {
    auto range = MakeRange<N>();
    Value<N> out;
    PlainCounter plain;
    unsigned int index = 12345;
    vrm_bench::CompareWithBaseline(
        state, 10000,
        [&] {
            benchmark::DoNotOptimize(index += 7919);
            range.GetValueAt(index, out);
            benchmark::DoNotOptimize(out);
        },
        10000,
        [&] {
            benchmark::DoNotOptimize(index += 7919);
            std::uint32_t v = plain.At(index);
            benchmark::DoNotOptimize(v);
        });
}

BENCHMARK_TEMPLATE(BM_RangeNext, 4)->UseManualTime();
BENCHMARK_TEMPLATE(BM_RangeNext, 16)->UseManualTime();
BENCHMARK_TEMPLATE(BM_RangeAt, 4)->UseManualTime();
BENCHMARK_TEMPLATE(BM_RangeAt, 16)->UseManualTime();

// Index lookup at 1e9 (jump ahead) against walking the register to 1e6 one step at a time.
void BM_RandomAt1e9VsStepTo1e6(benchmark::State& state) {
    GenericRandomModifierImpl<4> random(Fill<4>(0x12345678, 0), Fill<4>(0xFFFFFFFF, 0), 0);
    GenericRandomModifierImpl<4> stepper(Fill<4>(0x12345678, 0), Fill<4>(0xFFFFFFFF, 0), 0);
    Value<4> out;
    unsigned int index = 1000000000u;
    vrm_bench::CompareWithBaseline(
        state, 100,
        [&] {
            random.GetValueAt(index++, out);
            benchmark::DoNotOptimize(out);
        },
        1,
        [&] {
            stepper.SetReadCursor(0);
            for (int i = 0; i < 1000000; ++i) stepper.GetNextValue(out);
            benchmark::DoNotOptimize(out);
        });
}

BENCHMARK(BM_RandomAt1e9VsStepTo1e6)->UseManualTime();

}  // namespace
