#ifndef VRM_BENCH_COMMON_COMPARE_H
#define VRM_BENCH_COMMON_COMPARE_H

// Interleaved timing of an operation and its baseline within one benchmark, so that both see
// the same machine state. Batches are timed in process CPU time, which leaves out the time the
// process waits for a core on a busy machine. Reports per-operation nanoseconds of each and
// their ratio (subject / baseline); the benchmark's own time is the subject's batch time.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <ctime>

namespace vrm_bench {

template <class Subject, class Baseline>
void CompareWithBaseline(benchmark::State& state, int subjectBatch, Subject&& subject, int baselineBatch,
                         Baseline&& baseline) {
    constexpr double kNsPerTick = 1e9 / CLOCKS_PER_SEC;
    double subjectNs = 0;
    double baselineNs = 0;
    std::int64_t rounds = 0;
    for (auto _ : state) {
        const std::clock_t t0 = std::clock();
        for (int i = 0; i < subjectBatch; ++i) subject();
        const std::clock_t t1 = std::clock();
        for (int i = 0; i < baselineBatch; ++i) baseline();
        const std::clock_t t2 = std::clock();
        const double s = static_cast<double>(t1 - t0) * kNsPerTick;
        subjectNs += s;
        baselineNs += static_cast<double>(t2 - t1) * kNsPerTick;
        ++rounds;
        state.SetIterationTime(s * 1e-9);
    }
    if (rounds == 0) return;
    const double perSubject = subjectNs / (static_cast<double>(rounds) * subjectBatch);
    const double perBaseline = baselineNs / (static_cast<double>(rounds) * baselineBatch);
    state.counters["subject_ns"] = perSubject;
    state.counters["baseline_ns"] = perBaseline;
    state.counters["ratio"] = perSubject / perBaseline;
}

}  // namespace vrm_bench

#endif  // VRM_BENCH_COMMON_COMPARE_H
