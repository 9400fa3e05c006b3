// The receiving side's verdict: frames as they arrive, with their receive times, judged by
// their signatures (traffic/Signature.h) without knowing the blocks that sent them.
//
// Per stream (block and stream of the signature): frames and bytes, first and last receive
// time, the rate between them, frames lost (sequence numbers skipped and not seen later),
// duplicates, frames out of order (and the largest distance a frame came behind a later one),
// and the latency (receive time less the signature's transmit time): min, mean, max and
// quantiles from a histogram. Memory is bounded by the number of streams: each keeps a window
// of the last kReorderWindow sequence numbers (a frame later than that counts as out of order
// but can no longer be told from a duplicate) and a fixed histogram.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "traffic/Histogram.h"

namespace vrm::traffic {

struct StreamReport {
    std::uint32_t block = 0, stream = 0;
    std::uint64_t frames = 0, bytes = 0;
    std::uint64_t firstNs = 0, lastNs = 0;  // receive times
    double rate = 0;                        // frames per second from the first to the last
    std::uint64_t lost = 0, duplicates = 0, outOfOrder = 0, maxReorder = 0;
    std::int64_t latencyMin = 0, latencyMax = 0;  // nanoseconds (negative: clocks apart)
    double latencyMean = 0;
    std::uint64_t latencyP50 = 0, latencyP99 = 0, latencyP999 = 0;  // of latencies at or above 0
};

// Each figure of a report as (name, value), in one order: the names the tool's JSON and the
// Python module's dicts give them.
template <class F>
void for_each_figure(const StreamReport& r, F&& f) {
    f("block", r.block);
    f("stream", r.stream);
    f("frames", r.frames);
    f("bytes", r.bytes);
    f("first_ns", r.firstNs);
    f("last_ns", r.lastNs);
    f("rate", r.rate);
    f("lost", r.lost);
    f("duplicates", r.duplicates);
    f("out_of_order", r.outOfOrder);
    f("max_reorder", r.maxReorder);
    f("latency_min_ns", r.latencyMin);
    f("latency_mean_ns", r.latencyMean);
    f("latency_p50_ns", r.latencyP50);
    f("latency_p99_ns", r.latencyP99);
    f("latency_p999_ns", r.latencyP999);
    f("latency_max_ns", r.latencyMax);
}

class Analyzer {
  public:
    static constexpr std::uint32_t kReorderWindow = 4096;
    // With `fcs`, frames end with their 4-byte frame check sequence.
    explicit Analyzer(bool fcs = false) : m_fcs(fcs) {}

    // One frame and the time it arrived (nanoseconds; the signature's clock).
    void Add(const unsigned char* frame, std::size_t length, std::uint64_t rxNs);

    // The streams in order of block, then stream.
    std::vector<StreamReport> Report() const;
    std::uint64_t Frames() const { return m_frames; }
    std::uint64_t Unsigned() const { return m_unsigned; }  // frames without a signature
    std::uint64_t BadSignatures() const { return m_bad; }  // the magic, with a wrong CRC

  private:
    struct Stream {
        StreamReport r;
        std::uint64_t next = 0;  // the sequence after the highest seen (extended to 64 bits)
        std::vector<std::uint64_t> seen;  // bits of sequences next - kReorderWindow .. next - 1
        long double latencySum = 0;
        Histogram latency;
    };
    Stream& Find(std::uint32_t block, std::uint32_t stream);
    void Mark(Stream& s, std::uint64_t seq, bool on);
    bool Seen(const Stream& s, std::uint64_t seq) const;

    bool m_fcs;
    std::unordered_map<std::uint32_t, std::size_t> m_index;
    std::vector<Stream> m_streams;
    std::uint32_t m_lastKey = ~std::uint32_t{0};
    std::size_t m_last = 0;
    std::uint64_t m_frames = 0, m_unsigned = 0, m_bad = 0;
};

}  // namespace vrm::traffic
