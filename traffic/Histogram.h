// Counts of nanosecond durations in buckets of 1/8 of a power of two (quantiles within 12.5%),
// in a fixed array of 3 KiB: up to 2^48 ns (78 hours), the rest in the last bucket.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace vrm::traffic {

class Histogram {
  public:
    void Add(std::uint64_t ns) {
        m_max = std::max(m_max, ns);
        ++m_counts[Bucket(ns)];
        ++m_total;
    }
    std::uint64_t Count() const { return m_total; }
    std::uint64_t Max() const { return m_max; }
    // The upper end of the bucket holding the q-th quantile (0 <= q <= 1), at most Max().
    std::uint64_t Quantile(double q) const {
        if (m_total == 0) return 0;
        const auto rank = static_cast<std::uint64_t>(q * static_cast<double>(m_total - 1)) + 1;
        std::uint64_t seen = 0;
        for (std::size_t b = 0; b < m_counts.size(); ++b) {
            seen += m_counts[b];
            if (seen >= rank) return std::min(Upper(b), m_max);
        }
        return m_max;
    }

  private:
    static constexpr unsigned kSub = 8;  // buckets a power of two
    static constexpr std::size_t kBuckets = 48 * kSub;
    static std::size_t Bucket(std::uint64_t ns) {
        if (ns < kSub) return static_cast<std::size_t>(ns);
        unsigned top = 63;
        while ((ns >> top) == 0) --top;
        const std::size_t b = (top - 2) * kSub + ((ns >> (top - 3)) & (kSub - 1));
        return std::min(b, kBuckets - 1);
    }
    static std::uint64_t Upper(std::size_t b) {
        if (b < kSub) return b;
        const unsigned top = static_cast<unsigned>(b / kSub) + 2;
        const std::uint64_t low = (std::uint64_t{1} << top) + ((b % kSub) << (top - 3));
        return low + (std::uint64_t{1} << (top - 3)) - 1;
    }
    std::array<std::uint64_t, kBuckets> m_counts{};
    std::uint64_t m_total = 0;
    std::uint64_t m_max = 0;
};

}  // namespace vrm::traffic
