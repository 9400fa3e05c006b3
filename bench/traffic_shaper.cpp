// Shaped frames against their baselines, each pair timed in the same iterations:
//   BM_ShapedVsMemcpy/N: N frames of RANDOM lengths 64..1518, PRBS fill, signature and
//     checksums, in bytes per second, next to a memcpy of the same number of bytes between
//     buffers of the same size; "speed_vs_memcpy" is memcpy time over shaping time (1.0: as
//     fast as copying the bytes).
//   BM_FixedPathVsPlan: the three-modifier chain of 128-byte frames through the shaper (fixed
//     length, no fill, checksums on by default) next to FramePlan::Stamp of the same plan;
//     "speed_vs_plan" is plan time over shaper time.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "common_compare.h"
#include "traffic/BlockFile.h"
#include "traffic/BlockModifiers.h"
#include "traffic/FrameShaper.h"

namespace {

using namespace vrm::traffic;
using Bytes = std::vector<unsigned char>;

struct Shaped {
    BlockInput in;
    std::unique_ptr<BlockModifiers> mods;
    std::unique_ptr<FrameShaper> shaper;

    explicit Shaped(const std::string& json) {
        in = parse_block(json);
        mods = std::make_unique<BlockModifiers>(in);
        if (!mods->Valid()) throw std::logic_error("benchmark block does not validate");
        mods->PlaceFields(in);
        shaper = std::make_unique<FrameShaper>(in, mods->MakePlan(in), *mods);
    }
};

const char* kRandomPrbs = R"({
  "name": "random-prbs", "blockID": 1,
  "baseStream": {"frame": {
    "data": "001094000002 001094000001 0800 45000030000000004011 0000 c0000201 c6336401 0400 1389 001c 0000 000102030405060708090a0b0c0d0e0f10111213",
    "lengthCfg": {"mode": "RANDOM", "minLength": 64, "maxLength": 1518},
    "options": {"fillType": "PRBS", "insertSigField": true}}},
  "rangeModifiers": [
    {"modIndex": 1, "offsetReference": "ipv4.src", "initialValue": "c0000201", "stepValue": "00000001",
     "mask": "ffffffff", "recycleCount": 1000, "mode": "INCREMENT", "useStream": true},
    {"modIndex": 2, "offsetReference": "udp.sport", "initialValue": "0400", "stepValue": "0001",
     "mask": "ffff", "recycleCount": 50, "mode": "RANDOM", "useStream": true}],
  "modLinks": [{"modIndex": 1, "childModIndex": [2]}],
  "host": {"port": {"randomLengthSeed": 5}}
})";

void BM_ShapedVsMemcpy(benchmark::State& state) {
    Shaped s(kRandomPrbs);
    const auto kSlice = static_cast<std::size_t>(state.range(0));
    const std::size_t stride = s.shaper->MaxLength();
    Bytes out(kSlice * stride), from(kSlice * stride, 0x5a), to(kSlice * stride);
    std::vector<std::uint32_t> lengths(kSlice);
    std::uint64_t first = 0, bytes = 0;
    s.shaper->Shape(0, kSlice, out.data(), stride, lengths.data());
    std::size_t sliceBytes = 0;
    for (const auto l : lengths) sliceBytes += l;
    vrm_bench::CompareWithBaseline(
        state, 4,
        [&] {
            s.shaper->Shape(first, kSlice, out.data(), stride, lengths.data());
            first += kSlice;
            for (const auto l : lengths) bytes += l;
            benchmark::DoNotOptimize(out.data());
        },
        4,
        [&] {
            std::memcpy(to.data(), from.data(), sliceBytes);
            benchmark::DoNotOptimize(to.data());
            benchmark::ClobberMemory();
        });
    // The memcpy copies as many bytes as an average slice of shaped frames.
    const double bytesPerCall = static_cast<double>(bytes) / static_cast<double>(first) * kSlice;
    const double shapedPerByte = state.counters["subject_ns"] / bytesPerCall;
    const double copyPerByte = state.counters["baseline_ns"] / static_cast<double>(sliceBytes);
    state.counters["speed_vs_memcpy"] = copyPerByte / shapedPerByte;
    state.counters["shaped_GBps"] = 1.0 / shapedPerByte;
    state.counters["memcpy_GBps"] = 1.0 / copyPerByte;
}
// 256 frames (about 200 KB) stay in the cache; 16384 frames (about 13 MB) do not, as frames
// written out to a file or a device do not.
BENCHMARK(BM_ShapedVsMemcpy)->Arg(256)->Arg(16384)->UseManualTime()->MinTime(2.0);

std::string chain_block() {
    std::string frame;
    const char* hex = "0123456789abcdef";
    for (std::size_t i = 0; i < 128; ++i) {
        const auto b = static_cast<unsigned char>(i * 7);
        frame += hex[b >> 4];
        frame += hex[b & 15];
    }
    const std::string wideMask = "003f" + std::string(26, 'f') + "f0";
    const std::string wideStep = std::string(30, '0') + "10";
    std::string wideInitial;
    for (int i = 0; i < 16; ++i) wideInitial += "5a";
    return R"({"name": "chain", "blockID": 1, "baseStream": {"frame": {"data": ")" + frame + R"("}},
      "rangeModifiers": [
        {"modIndex": 1, "offsetReference": "bench", "initialValue": "0a000001", "stepValue": "00000001",
         "mask": "ffffffff", "recycleCount": 1000, "mode": "INCREMENT", "useStream": true},
        {"modIndex": 2, "offsetReference": "bench", "initialValue": "1234", "stepValue": "0000",
         "mask": "ffff", "recycleCount": 50, "mode": "RANDOM", "useStream": true},
        {"modIndex": 3, "offsetReference": "bench", "initialValue": ")" + wideInitial + R"(",
         "stepValue": ")" + wideStep + R"(", "mask": ")" + wideMask + R"(", "recycleCount": 7, "mode": "INCREMENT", "useStream": true}],
      "modLinks": [{"modIndex": 1, "childModIndex": [2]}, {"modIndex": 2, "childModIndex": [3]}],
      "host": {"modifiers": [{"modIndex": 1, "bitOffset": 208, "bitLength": 32},
                             {"modIndex": 2, "bitOffset": 272, "bitLength": 16},
                             {"modIndex": 3, "bitOffset": 323, "bitLength": 128}]}})";
}

void BM_FixedPathVsPlan(benchmark::State& state) {
    Shaped s(chain_block());
    const vrm::common::FramePlan plan = s.mods->MakePlan(s.in);
    constexpr std::size_t kSlice = 1024;
    const std::size_t length = plan.FrameLength();
    Bytes shaped(kSlice * length), planned(kSlice * length);
    std::vector<std::uint32_t> lengths(kSlice);
    s.shaper->Shape(12345, kSlice, shaped.data(), length, lengths.data());
    plan.Stamp(12345, kSlice, planned.data(), length);
    if (shaped != planned) throw std::logic_error("the shaper's fixed path and the plan disagree");
    std::uint64_t a = 0, b = 0;
    vrm_bench::CompareWithBaseline(
        state, 8,
        [&] {
            s.shaper->Shape(a, kSlice, shaped.data(), length, lengths.data());
            a += kSlice;
            benchmark::DoNotOptimize(shaped.data());
        },
        8,
        [&] {
            plan.Stamp(b, kSlice, planned.data(), length);
            b += kSlice;
            benchmark::DoNotOptimize(planned.data());
        });
    state.counters["speed_vs_plan"] = state.counters["baseline_ns"] / state.counters["subject_ns"];
}
BENCHMARK(BM_FixedPathVsPlan)->UseManualTime()->MinTime(2.0);

}  // namespace
