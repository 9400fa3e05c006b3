// Stamping a block of 128-byte frames with three chained modifiers, next to a plain copy of
// the template into the same frames; and index lookups across the chain.
//
// The figure that counts is "x_memcpy" of BM_StampChain: the time to stamp the frames with
// the modifiers divided by the time to memcpy the template into the same frames, both
// measured in the same iteration.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <random>
#include <stdexcept>
#include <vector>

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
