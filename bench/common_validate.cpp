// Building, linking and validating a block of n chained modifiers (1 -> 2 -> ... -> n), for
// n = 1,000 and 20,000, timed in the same iteration.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <chrono>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll_records.h"

namespace {

using Generator_3_bll::modLinkDesc_s;
using Generator_3_bll::rangeModifier_s;
using Generator_3_bll::streamBlock_s;

// n modifiers linked in a chain, each parent listed before its child; every fourth link goes
// from the same parent to a second child as well, so parents have one or two children.
streamBlock_s Chain(unsigned int n) {
    streamBlock_s block;
    for (unsigned int i = 1; i <= n; ++i) {
        rangeModifier_s r;
        r.modIndex = i;
        r.offsetReference = "m" + std::to_string(i);
        r.initialValue.data = {0, 0, 0, static_cast<std::uint8_t>(i)};
        r.stepValue.data = {0, 0, 0, 1};
        r.mask.data = {0xFF, 0xFF, 0xFF, 0xFF};
        r.recycleCount = i % 3 == 0 ? 0 : 1 + i % 2;  // 0 is raised to 1 by validation
        r.useStream = true;
        block.rangeModifiers.push_back(r);
    }
    for (unsigned int i = 1; i < n; ++i) {
        modLinkDesc_s link{i, {i + 1}};
        if (i % 4 == 0 && i + 2 <= n) link.childModIndex.push_back(i + 2);
        block.modLinks.push_back(link);
    }
    return block;
}

// Builds, links and validates the block; the set is destroyed after the clock stops.
double BuildAndValidateSeconds(const streamBlock_s& block) {
    const auto t0 = std::chrono::steady_clock::now();
    vrm::common::StreamBlockModifiers mods(block);
    std::ostringstream errors;
    if (!mods.Validate(&errors)) throw std::logic_error("chain does not validate: " + errors.str());
    benchmark::DoNotOptimize(mods.Root().GetEffectiveRecycleCount());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

// Both sizes in each iteration; "x_1000" is the time for 20,000 over the time for 1,000
// (20 for linear work, 400 for quadratic; the larger set also outgrows the caches).
void BM_BuildAndValidate(benchmark::State& state) {
    const streamBlock_s small = Chain(1000);
    const streamBlock_s large = Chain(20000);
    double smallSeconds = 0;
    double largeSeconds = 0;
    for (auto _ : state) {
        smallSeconds += BuildAndValidateSeconds(small);
        largeSeconds += BuildAndValidateSeconds(large);
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["ms_1000"] = 1000 * smallSeconds / n;
    state.counters["ms_20000"] = 1000 * largeSeconds / n;
    state.counters["x_1000"] = largeSeconds / smallSeconds;
}
BENCHMARK(BM_BuildAndValidate)->Unit(benchmark::kMillisecond);

}  // namespace
