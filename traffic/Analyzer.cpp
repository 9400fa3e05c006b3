#include "traffic/Analyzer.h"

#include <algorithm>

#include "traffic/Signature.h"

namespace vrm::traffic {

namespace {

constexpr std::uint64_t kTimeBits = 48;
constexpr std::uint64_t kTimeSpan = std::uint64_t{1} << kTimeBits;

// The transmit time nearest the receive time whose low 48 bits are `tx48`.
std::uint64_t full_time(std::uint64_t tx48, std::uint64_t rxNs) {
    std::uint64_t t = (rxNs & ~(kTimeSpan - 1)) | tx48;
    if (t > rxNs && t - rxNs > kTimeSpan / 2 && t >= kTimeSpan) t -= kTimeSpan;
    if (t < rxNs && rxNs - t > kTimeSpan / 2) t += kTimeSpan;
    return t;
}

}  // namespace

Analyzer::Stream& Analyzer::Find(std::uint32_t block, std::uint32_t stream) {
    const std::uint32_t key = block << 16 | stream;
    if (key == m_lastKey) return m_streams[m_last];
    auto it = m_index.find(key);
    if (it == m_index.end()) {
        it = m_index.emplace(key, m_streams.size()).first;
        m_streams.emplace_back();
        Stream& s = m_streams.back();
        s.r.block = block;
        s.r.stream = stream;
        s.seen.assign(kReorderWindow / 64, 0);
    }
    m_lastKey = key;
    m_last = it->second;
    return m_streams[m_last];
}

void Analyzer::Mark(Stream& s, std::uint64_t seq, bool on) {
    const std::uint64_t bit = seq % kReorderWindow;
    if (on) {
        s.seen[bit / 64] |= std::uint64_t{1} << (bit % 64);
    } else {
        s.seen[bit / 64] &= ~(std::uint64_t{1} << (bit % 64));
    }
}

bool Analyzer::Seen(const Stream& s, std::uint64_t seq) const {
    const std::uint64_t bit = seq % kReorderWindow;
    return (s.seen[bit / 64] >> (bit % 64) & 1) != 0;
}

void Analyzer::Add(const unsigned char* frame, std::size_t length, std::uint64_t rxNs) {
    ++m_frames;
    Signature sig;
    const std::size_t end = m_fcs && length >= 4 ? length - 4 : length;
    const SignatureCheck check = read_signature(frame, end, sig);
    if (check != SignatureCheck::Good) {
        ++m_unsigned;
        if (check == SignatureCheck::BadCrc) ++m_bad;
        return;
    }
    Stream& s = Find(sig.block, sig.stream);
    StreamReport& r = s.r;
    if (r.frames == 0) r.firstNs = rxNs;
    ++r.frames;
    r.bytes += length;
    r.firstNs = std::min(r.firstNs, rxNs);
    r.lastNs = std::max(r.lastNs, rxNs);

    // The sequence, extended to 64 bits as the one nearest the expected next.
    const auto delta = static_cast<std::int32_t>(sig.sequence - static_cast<std::uint32_t>(s.next));
    const std::int64_t wide = static_cast<std::int64_t>(s.next) + delta;
    if (r.frames == 1) {
        s.next = sig.sequence;  // the stream starts where its first frame is (a capture may start late)
        r.lost = 0;
        Mark(s, s.next, true);
        ++s.next;
    } else if (wide >= static_cast<std::int64_t>(s.next)) {
        const auto seq = static_cast<std::uint64_t>(wide);
        // The skipped ones are lost until they come; their bits cleared for the window.
        const std::uint64_t gap = seq - s.next;
        r.lost += gap;
        if (gap >= kReorderWindow) {
            std::fill(s.seen.begin(), s.seen.end(), 0);
        } else {
            for (std::uint64_t q = s.next; q < seq; ++q) Mark(s, q, false);
        }
        Mark(s, seq, true);
        s.next = seq + 1;
    } else {
        const std::uint64_t seq = wide < 0 ? 0 : static_cast<std::uint64_t>(wide);
        const std::uint64_t behind = s.next - 1 - seq;  // later frames that came before it
        if (behind < kReorderWindow && Seen(s, seq)) {
            ++r.duplicates;
        } else {
            ++r.outOfOrder;
            r.maxReorder = std::max(r.maxReorder, behind);
            if (r.lost > 0) --r.lost;
            if (behind < kReorderWindow) Mark(s, seq, true);
        }
    }

    const std::uint64_t tx = full_time(sig.txTime, rxNs);
    const std::int64_t latency = static_cast<std::int64_t>(rxNs - tx);
    if (r.frames == 1 || latency < r.latencyMin) r.latencyMin = latency;
    if (r.frames == 1 || latency > r.latencyMax) r.latencyMax = latency;
    s.latencySum += static_cast<long double>(latency);
    s.latency.Add(latency > 0 ? static_cast<std::uint64_t>(latency) : 0);
}

std::vector<StreamReport> Analyzer::Report() const {
    std::vector<StreamReport> out;
    out.reserve(m_streams.size());
    for (const Stream& s : m_streams) {
        StreamReport r = s.r;
        const std::uint64_t span = r.lastNs - r.firstNs;
        r.rate = r.frames > 1 && span > 0 ? static_cast<double>(r.frames - 1) * 1e9 / static_cast<double>(span) : 0;
        r.latencyMean = r.frames > 0 ? static_cast<double>(s.latencySum / static_cast<long double>(r.frames)) : 0;
        r.latencyP50 = s.latency.Quantile(0.50);
        r.latencyP99 = s.latency.Quantile(0.99);
        r.latencyP999 = s.latency.Quantile(0.999);
        out.push_back(r);
    }
    std::sort(out.begin(), out.end(), [](const StreamReport& a, const StreamReport& b) {
        return a.block != b.block ? a.block < b.block : a.stream < b.stream;
    });
    return out;
}

}  // namespace vrm::traffic
