// Stamping a block of 128-byte frames with three chained modifiers: through the per-frame
// path next to a plain copy of the template into the same frames, and through the frame plan
// next to a loop written by hand for exactly this block; and index lookups across the chain.
//
// The figures that count: "x_memcpy" of BM_StampChain (per-frame path time over memcpy
// time) and "speed_vs_hand" of BM_PlanStamp (hand loop time over plan time: 1.0 means the
// plan is as fast as the hand-written loop), each pair measured in the same iteration.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <random>
#include <stdexcept>
#include <vector>

#include "common/FramePlan.h"
#include "common/GenericRangeModifier.h"
#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll_records.h"

namespace {

using Generator_3_bll::rangeModifier_s;
using Generator_3_bll::streamBlock_s;
using vrm::common::StreamBlockModifiers;
using Bytes = std::vector<unsigned char>;

constexpr std::size_t kFrameSize = 128;
constexpr std::size_t kFrames = 1000000;

rangeModifier_s Range(unsigned int modIndex, const Bytes& initial, const Bytes& step, const Bytes& mask,
                      Generator_3_bll::configModMode_t mode, unsigned int recycle) {
    rangeModifier_s r;
    r.modIndex = modIndex;
    r.offsetReference = "bench";
    r.initialValue.data = initial;
    r.stepValue.data = step;
    r.mask.data = mask;
    r.mode = mode;
    r.recycleCount = recycle;
    r.useStream = true;
    return r;
}

// A 4-byte increment (outer) -> a 2-byte random -> a 16-byte increment under a mask at an
// odd bit offset (inner).
streamBlock_s ChainBlock() {
    streamBlock_s block;
    Bytes wideMask(16, 0xFF);
    wideMask[0] = 0x00;
    wideMask[1] = 0x3F;
    wideMask[15] = 0xF0;
    Bytes wideStep(16, 0);
    wideStep[15] = 0x10;
    block.rangeModifiers = {
        Range(1, {10, 0, 0, 1}, {0, 0, 0, 1}, {0xFF, 0xFF, 0xFF, 0xFF},
              Generator_3_bll::configModMode_t::INCREMENT, 1000),
        Range(2, {0x12, 0x34}, {0, 0}, {0xFF, 0xFF}, Generator_3_bll::configModMode_t::RANDOM, 50),
        Range(3, Bytes(16, 0x5A), wideStep, wideMask, Generator_3_bll::configModMode_t::INCREMENT, 7),
    };
    block.modLinks = {{1, {2}}, {2, {3}}};
    return block;
}

struct Setup {
    streamBlock_s block = ChainBlock();
    StreamBlockModifiers mods{block};
    Bytes frameTemplate;

    Setup() {
        if (!mods.Validate(nullptr)) throw std::logic_error("benchmark block does not validate");
        mods.SetFieldParams(1, 26 * 8, 32);
        mods.SetFieldParams(2, 34 * 8, 16);
        mods.SetFieldParams(3, 40 * 8 + 3, 128);
        frameTemplate.resize(kFrameSize);
        for (std::size_t i = 0; i < kFrameSize; ++i) frameTemplate[i] = static_cast<unsigned char>(i * 7);
    }
};

std::vector<Bytes>& Frames() {
    static std::vector<Bytes> frames(kFrames, Bytes(kFrameSize, 0));
    return frames;
}

void CopyTemplate(std::vector<Bytes>& frames, const Bytes& frameTemplate) {
    for (Bytes& frame : frames) std::memcpy(frame.data(), frameTemplate.data(), kFrameSize);
}

void BM_MemcpyTemplate(benchmark::State& state) {
    Setup setup;
    std::vector<Bytes>& frames = Frames();
    for (auto _ : state) {
        CopyTemplate(frames, setup.frameTemplate);
        benchmark::DoNotOptimize(frames.back().data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kFrames));
}
BENCHMARK(BM_MemcpyTemplate)->Unit(benchmark::kMillisecond);

void BM_StampChain(benchmark::State& state) {
    Setup setup;
    std::vector<Bytes>& frames = Frames();
    double stampSeconds = 0;
    double copySeconds = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        setup.mods.Reset();
        for (Bytes& frame : frames) {
            std::memcpy(frame.data(), setup.frameTemplate.data(), kFrameSize);
            setup.mods.ModifyBytes(frame);
            setup.mods.Next();
        }
        benchmark::ClobberMemory();
        const auto t1 = std::chrono::steady_clock::now();
        state.PauseTiming();
        const auto c0 = std::chrono::steady_clock::now();
        CopyTemplate(frames, setup.frameTemplate);
        benchmark::ClobberMemory();
        const auto c1 = std::chrono::steady_clock::now();
        state.ResumeTiming();
        stampSeconds += std::chrono::duration<double>(t1 - t0).count();
        copySeconds += std::chrono::duration<double>(c1 - c0).count();
    }
    const double n = static_cast<double>(state.iterations() * kFrames);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kFrames));
    state.counters["stamp_fps"] = n / stampSeconds;
    state.counters["memcpy_fps"] = n / copySeconds;
    state.counters["x_memcpy"] = stampSeconds / copySeconds;
}
BENCHMARK(BM_StampChain)->Unit(benchmark::kMillisecond);

__extension__ typedef unsigned __int128 Wide;

inline std::uint64_t BigEndian64(std::uint64_t v) { return __builtin_bswap64(v); }

// The chain block's frames written by a loop that knows the block: frame f has the 16-byte
// counter at step f mod 7, the random register at step (f / 7) mod 50 and the 4-byte counter
// at step (f / 350) mod 1000; each value is recomputed only when it changes.
void HandStamp(std::uint64_t first, std::size_t count, unsigned char* out, const Bytes& frameTemplate) {
    // 16-byte field: bits 323 .. 450, window bytes 40 .. 56, value shifted left by 5 bits.
    const Wide initial = ~Wide{0} / 0xFF * 0x5A;
    const Wide step = 0x10;
    const Wide mask = (((Wide{0x003FFFFFFFFFFFFFull} << 64) | 0xFFFFFFFFFFFFFFFFull) >> 4) << 4;
    const Wide fixed = initial & ~mask;
    const Wide windowMask = mask << 5;  // window bytes 41 .. 56 (byte 40 gets mask bits 123.., all 0)
    const std::uint64_t maskHigh = BigEndian64(static_cast<std::uint64_t>(windowMask >> 64));
    const std::uint64_t maskLow = BigEndian64(static_cast<std::uint64_t>(windowMask));
    std::uint64_t a3 = first % 7, a2 = (first / 7) % 50, a1 = (first / 350) % 1000;
    Wide counter = initial + step * a3;
    std::uint64_t reg = vrm::common::RandomRegisterAdvance(0x1234, static_cast<unsigned int>(a2));
    std::uint32_t outer = static_cast<std::uint32_t>(0x0A000001u + a1);
    for (std::size_t k = 0; k < count; ++k) {
        unsigned char* f = out + k * kFrameSize;
        std::memcpy(f, frameTemplate.data(), kFrameSize);
        const std::uint32_t o = __builtin_bswap32(outer);
        std::memcpy(f + 26, &o, 4);
        const std::uint16_t r = __builtin_bswap16(static_cast<std::uint16_t>(reg));
        std::memcpy(f + 34, &r, 2);
        const Wide w = ((counter & mask) | fixed) << 5;
        std::uint64_t hi, lo;
        std::memcpy(&hi, f + 41, 8);
        std::memcpy(&lo, f + 49, 8);
        hi = (hi & ~maskHigh) | (BigEndian64(static_cast<std::uint64_t>(w >> 64)) & maskHigh);
        lo = (lo & ~maskLow) | (BigEndian64(static_cast<std::uint64_t>(w)) & maskLow);
        std::memcpy(f + 41, &hi, 8);
        std::memcpy(f + 49, &lo, 8);
        if (++a3 == 7) {
            a3 = 0;
            counter = initial;
            if (++a2 == 50) {
                a2 = 0;
                reg = 0x1234;
                outer = (++a1 == 1000) ? (a1 = 0, 0x0A000001u) : outer + 1;
            } else {
                reg = vrm::common::RandomRegisterStep(reg);
            }
        } else {
            counter += step;
        }
    }
}

// Frames stamped in slices of kSlice into one buffer that stays in the cache, as a writer
// would before each write; the same for the hand loop, alternating within each iteration.
void BM_PlanStamp(benchmark::State& state) {
    constexpr std::size_t kSlice = 1024;
    Setup setup;
    const vrm::common::FramePlan plan = setup.mods.MakeFramePlan(setup.frameTemplate);
    Bytes planOut(kSlice * kFrameSize), handOut(kSlice * kFrameSize);
    // The hand loop must write the same bytes.
    for (const std::uint64_t first : {std::uint64_t{0}, std::uint64_t{349999}, std::uint64_t{123457}}) {
        plan.Stamp(first, kSlice, planOut.data(), kFrameSize);
        HandStamp(first, kSlice, handOut.data(), setup.frameTemplate);
        if (planOut != handOut) throw std::logic_error("the hand loop and the plan disagree");
    }
    double planSeconds = 0;
    double handSeconds = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        for (std::uint64_t first = 0; first < kFrames; first += kSlice) {
            plan.Stamp(first, kSlice, planOut.data(), kFrameSize);
            benchmark::ClobberMemory();
        }
        const auto t1 = std::chrono::steady_clock::now();
        state.PauseTiming();
        const auto h0 = std::chrono::steady_clock::now();
        for (std::uint64_t first = 0; first < kFrames; first += kSlice) {
            HandStamp(first, kSlice, handOut.data(), setup.frameTemplate);
            benchmark::ClobberMemory();
        }
        const auto h1 = std::chrono::steady_clock::now();
        state.ResumeTiming();
        planSeconds += std::chrono::duration<double>(t1 - t0).count();
        handSeconds += std::chrono::duration<double>(h1 - h0).count();
    }
    const double n = static_cast<double>(state.iterations() * kFrames);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kFrames));
    state.counters["plan_fps"] = n / planSeconds;
    state.counters["hand_fps"] = n / handSeconds;
    state.counters["speed_vs_hand"] = handSeconds / planSeconds;
}
BENCHMARK(BM_PlanStamp)->Unit(benchmark::kMillisecond);

void BM_GetValueAtRandomIndex(benchmark::State& state) {
    Setup setup;
    const unsigned int cycle = setup.mods.Root().GetEffectiveRecycleCount();
    std::mt19937 rng(7);
    std::vector<unsigned int> indexes(4096);
    for (auto& i : indexes) i = static_cast<unsigned int>(rng() % (2ull * cycle));
    Bytes frame = setup.frameTemplate;
    std::size_t next = 0;
    for (auto _ : state) {
        setup.mods.ModifyBytesAtIndex(frame, indexes[next]);
        next = (next + 1) & (indexes.size() - 1);
        benchmark::DoNotOptimize(frame.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
    state.counters["chain_cycle"] = cycle;
}
BENCHMARK(BM_GetValueAtRandomIndex);

}  // namespace
