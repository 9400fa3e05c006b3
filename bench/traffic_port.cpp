// A port's timeline against its baselines, each pair timed in the same iterations:
//   BM_ThousandBlocksVsOne: 1,000 blocks at different rates written to /dev/null as a pcap,
//     next to one block alone writing as many frames; "speed_vs_one" is the one block's time
//     over the port's (1.0: as many frames per second).
//   BM_SeekVsFirstFrame: the port's frames from the one at 10^12 ns (about 15 million
//     frames per second for 18 hours in), next to the same run from frame 0; "seek_ratio" is
//     the far run's time over the near one's, and "far_us" its microseconds.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common_compare.h"
#include "traffic/Capture.h"
#include "traffic/Port.h"

namespace {

using namespace vrm::traffic;

std::string port_json(int blocks) {
    std::string s = R"({"common": {"mode": "CONTINUOUS"}, "blocks": [)";
    for (int b = 0; b < blocks; ++b) {
        s += std::string(b ? "," : "") + R"({"name": "b)" + std::to_string(b) + R"(", "blockID": )" +
             std::to_string(b + 1) + R"(, "baseStream": {"enabled": true, "frame": {"data": "001094000002 001094000001 0800 45000032000000004011 0000 c0000201 c6336401 0400 1389 001e 0000 000102030405060708090a0b0c0d0e0f10111213"}},
             "rangeModifiers": [{"modIndex": 1, "offsetReference": "ipv4.src", "initialValue": "c0000201",
             "stepValue": "00000001", "mask": "ffffffff", "recycleCount": 100, "mode": "INCREMENT"}]})";
    }
    s += R"(], "loadProfiles": [)";
    // Rates from 10,000 to 19,990 frames per second (thousandths in the records): about 15
    // million frames per second in all, 1,000 blocks.
    for (int b = 0; b < blocks; ++b) {
        const long fps = blocks == 1 ? 14000000 : 10000 + 10 * b;
        s += std::string(b ? "," : "") + R"({"loadProfileId": )" + std::to_string(b + 1) + R"(, "load": )" +
             std::to_string(fps * 1000) + R"(, "loadUnit": "FRAMES_PER_SECOND"})";
    }
    s += R"(], "bindings": [)";
    for (int b = 0; b < blocks; ++b) {
        s += std::string(b ? "," : "") + R"({"streamBlockId": )" + std::to_string(b + 1) + R"(, "loadProfileId": )" +
             std::to_string(b + 1) + "}";
    }
    s += R"(], "host": {"lineRate": 100000000000}})";
    return s;
}

void BM_ThousandBlocksVsOne(benchmark::State& state) {
    constexpr std::uint64_t kFrames = 200000;
    const Port many(parse_port(port_json(1000)), ShapeOptions{}, kFrames);
    const Port one(parse_port(port_json(1)), ShapeOptions{}, kFrames);
    CaptureOptions o;
    o.format = CaptureFormat::PcapNano;
    vrm_bench::CompareWithBaseline(
        state, 1, [&] { write_capture("/dev/null", kFrames, many, o); }, 1,
        [&] { write_capture("/dev/null", kFrames, one, o); });
    state.counters["speed_vs_one"] = state.counters["baseline_ns"] / state.counters["subject_ns"];
    state.counters["port_Mfps"] = kFrames / state.counters["subject_ns"] * 1e3;
}
BENCHMARK(BM_ThousandBlocksVsOne)->UseManualTime()->MinTime(3.0);

void BM_SeekVsFirstFrame(benchmark::State& state) {
    const Port port(parse_port(port_json(1000)), ShapeOptions{});
    const Schedule& s = *port.Rates();
    std::uint64_t far = 0;
    for (std::size_t b = 0; b < s.Blocks(); ++b) far += s.CountBefore(b, 1000000000000ull);
    std::vector<Schedule::Entry> out(64);
    vrm_bench::CompareWithBaseline(
        state, 20, [&] { s.Entries(far, out.size(), out.data()); benchmark::DoNotOptimize(out.data()); }, 20,
        [&] { s.Entries(0, out.size(), out.data()); benchmark::DoNotOptimize(out.data()); });
    state.counters["seek_ratio"] = state.counters["subject_ns"] / state.counters["baseline_ns"];
    state.counters["far_us"] = state.counters["subject_ns"] / 1e3;
}
BENCHMARK(BM_SeekVsFirstFrame)->UseManualTime()->MinTime(2.0);

}  // namespace
