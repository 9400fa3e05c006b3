#include "traffic/Schedule.h"

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>

namespace vrm::traffic {

namespace {

constexpr std::uint64_t kMax = ~std::uint64_t{0};


}  // namespace

Schedule::Schedule(std::vector<BlockTiming> blocks, std::uint64_t frames, std::uint64_t end)
    : m_blocks(std::move(blocks)), m_end(end) {
    for (const auto& b : m_blocks) {
        Fraction p = b.steady;
        p.num *= b.burst;  // steady * burst < 2^64 * 2^32 ns: fits
        m_period.push_back(with_parts(p));
        std::vector<std::uint64_t> starts;
        if (!b.segments.empty()) {
            starts.push_back(0);
            for (const std::uint64_t i : b.segments) starts.push_back(sat_add(starts.back(), sat_mul(i, kSegmentFrames)));
        }
        m_segmentStart.push_back(std::move(starts));
    }
    m_frames = m_end == kNoLimit ? frames : std::min(frames, CountAll(m_end));
    m_rate = 0;
    for (const auto& b : m_blocks) {
        m_rate += static_cast<long double>(b.steady.den) / static_cast<long double>(b.steady.num);
    }
    if (m_rate <= 0) m_rate = 1;
    if (m_blocks.empty()) m_frames = 0;
}

std::uint64_t Schedule::TimeOf(std::size_t block, std::uint64_t j) const {
    const BlockTiming& b = m_blocks[block];
    if (!b.segments.empty()) {
        const auto& starts = m_segmentStart[block];
        const std::uint64_t n = b.segments.size(), cycleFrames = n * kSegmentFrames;
        const std::uint64_t c = j / cycleFrames, s = (j / kSegmentFrames) % n, o = j % kSegmentFrames;
        return sat_add(sat_add(b.start, sat_mul(c, starts[n])), sat_add(starts[s], o * b.segments[s]));
    }
    if (b.burst <= 1) return sat_add(b.start, times(j, b.steady));
    return sat_add(sat_add(b.start, times(j / b.burst, m_period[block])), times(j % b.burst, b.inBurst));
}

std::uint64_t Schedule::CountBefore(std::size_t block, std::uint64_t t) const {
    const BlockTiming& b = m_blocks[block];
    if (t <= b.start) return 0;
    const std::uint64_t u = t - b.start;
    if (!b.segments.empty()) {
        const auto& starts = m_segmentStart[block];
        const std::uint64_t n = b.segments.size(), cycle = starts[n];
        const std::uint64_t c = u / cycle, r = u % cycle;
        const auto s = static_cast<std::size_t>(std::upper_bound(starts.begin(), starts.end(), r) - starts.begin()) - 1;
        const std::uint64_t into = r - starts[s], i = b.segments[s];
        const std::uint64_t o = std::min<std::uint64_t>(kSegmentFrames, into / i + (into % i != 0 ? 1 : 0));
        return sat_add(sat_mul(c, n * kSegmentFrames), s * kSegmentFrames + o);
    }
    if (b.burst <= 1) return count_below(u, b.steady);
    const std::uint64_t bursts = count_below(u, m_period[block]);  // bursts started before t
    const std::uint64_t last = bursts - 1;
    const std::uint64_t inLast = std::min<std::uint64_t>(b.burst, count_below(u - times(last, m_period[block]), b.inBurst));
    const u128 total = u128{last} * b.burst + inLast;
    return total > kMax ? kMax : static_cast<std::uint64_t>(total);
}

std::uint64_t Schedule::CountAll(std::uint64_t t) const {
    std::uint64_t n = 0;
    for (std::size_t b = 0; b < m_blocks.size(); ++b) n = sat_add(n, CountBefore(b, t));
    return n;
}

void Schedule::Entries(std::uint64_t first, std::size_t count, Entry* out, Work& work) const {
    if (count == 0) return;
    if (first > m_frames || count > m_frames - first) throw std::out_of_range("frames beyond the schedule's end");
    // The latest time t with fewer than first + 1 frames before it: frame `first` is at t.
    // The blocks' mean rates give a first guess; the search brackets it and narrows down.
    std::uint64_t lo = 0, hi = kMax;  // CountAll(lo) <= first < CountAll(hi + 1)
    const long double guess = static_cast<long double>(first) / m_rate;
    if (guess < 1.8e19L) {
        const auto g = static_cast<std::uint64_t>(guess);
        for (std::uint64_t d = 4096; d < (std::uint64_t{1} << 62); d *= 16) {
            const std::uint64_t a = g > d ? g - d : 0, b = g < kMax - d ? g + d : kMax;
            if (CountAll(a) <= first && (b == kMax || CountAll(b + 1) > first)) {
                lo = a;
                hi = b;
                break;
            }
        }
    }
    while (lo < hi) {
        const std::uint64_t mid = lo + (hi - lo) / 2 + 1;
        if (CountAll(mid) <= first) {
            lo = mid;
        } else {
            hi = mid - 1;
        }
    }
    const std::uint64_t t = lo;
    // Blocks with a frame at t, in rank order; the first `skip` of them come before `first`.
    std::uint64_t skip = first - CountAll(t);
    std::vector<std::size_t>& tied = work.tied;
    tied.clear();
    std::vector<std::uint64_t>& next = work.next;
    next.resize(m_blocks.size());
    for (std::size_t b = 0; b < m_blocks.size(); ++b) {
        next[b] = CountBefore(b, t);
        if (next[b] != kMax && TimeOf(b, next[b]) == t) tied.push_back(b);
    }
    std::sort(tied.begin(), tied.end(), [&](std::size_t a, std::size_t b) {
        return m_blocks[a].rank != m_blocks[b].rank ? m_blocks[a].rank < m_blocks[b].rank : a < b;
    });
    for (std::size_t k = 0; k < skip && k < tied.size(); ++k) ++next[tied[k]];

    struct Next {
        std::uint64_t time;
        std::uint32_t rank;
        std::uint32_t block;
        std::uint64_t index;
        bool operator>(const Next& o) const {
            if (time != o.time) return time > o.time;
            if (rank != o.rank) return rank > o.rank;
            return block > o.block;
        }
    };
    if (m_blocks.size() <= 8) {
        // Few blocks: a heap whose top, once taken, is replaced by the same block's next frame
        // and sifted down.
        std::vector<Next> heap;
        for (std::size_t b = 0; b < m_blocks.size(); ++b) {
            heap.push_back({TimeOf(b, next[b]), m_blocks[b].rank, static_cast<std::uint32_t>(b), next[b]});
        }
        std::make_heap(heap.begin(), heap.end(), std::greater<Next>());
        std::pop_heap(heap.begin(), heap.end(), std::greater<Next>());  // the earliest now at the back
        const std::size_t size = heap.size();
        Next* h = heap.data();
        std::swap(h[0], h[size - 1]);  // and back at the top
        for (std::size_t k = 0; k < count; ++k) {
            Next& top = h[0];
            out[k] = Entry{top.time, top.block, top.index};
            ++top.index;
            top.time = TimeOf(top.block, top.index);
            std::size_t at = 0;
            const Next moving = top;
            for (;;) {
                std::size_t child = 2 * at + 1;
                if (child >= size) break;
                if (child + 1 < size && h[child] > h[child + 1]) ++child;
                if (!(moving > h[child])) break;
                h[at] = h[child];
                at = child;
            }
            h[at] = moving;
        }
        return;
    }
    // Many blocks: every block's frames in a window of time that holds at least `count` of
    // them, sorted by time into buckets, then the first `count` in order.
    std::uint64_t width = static_cast<std::uint64_t>(std::min<long double>(
        1.8e19L, static_cast<long double>(count) / m_rate * 1.05L + 64));
    std::vector<std::uint64_t>& last = work.last;
    last.resize(m_blocks.size());
    std::uint64_t end = t;
    for (;;) {
        end = t < kMax - width ? t + width : kMax;
        std::uint64_t have = 0;
        for (std::size_t b = 0; b < m_blocks.size(); ++b) {
            last[b] = std::max(next[b], CountBefore(b, end));
            have = sat_add(have, last[b] - next[b]);
        }
        if (have >= count || end == kMax) break;
        width = width > kMax / 2 ? kMax : width * 2;
    }
    std::vector<Entry>& window = work.window;
    window.clear();
    for (std::size_t b = 0; b < m_blocks.size(); ++b) {
        for (std::uint64_t j = next[b]; j < last[b]; ++j) window.push_back({TimeOf(b, j), static_cast<std::uint32_t>(b), j});
    }
    // Buckets of equal spans of time, about one frame each; a bucket's few frames are put in
    // order by insertion: by time, then rank, then block.
    auto later = [&](const Entry& a, const Entry& b) {
        if (a.time != b.time) return a.time > b.time;
        const std::uint32_t ra = m_blocks[a.block].rank, rb = m_blocks[b.block].rank;
        return ra != rb ? ra > rb : a.block > b.block;
    };
    const std::size_t buckets = window.size();
    // Monotone in time (a conversion and a product by a positive number), as sorting needs.
    const double scale = static_cast<double>(buckets) / (static_cast<double>(end - t) + 1);
    auto bucket_of = [&](std::uint64_t time) {
        const auto x = static_cast<std::size_t>(static_cast<double>(time - t) * scale);
        return x < buckets ? x : buckets - 1;
    };
    std::vector<std::uint32_t>& start = work.start;
    start.assign(buckets + 1, 0);
    for (const Entry& n : window) ++start[bucket_of(n.time) + 1];
    for (std::size_t k = 0; k < buckets; ++k) start[k + 1] += start[k];
    std::vector<Entry>& sorted = work.sorted;
    sorted.resize(window.size());
    std::vector<std::uint32_t>& fill = work.fill;
    fill.assign(start.begin(), start.end() - 1);
    for (const Entry& n : window) sorted[fill[bucket_of(n.time)]++] = n;
    std::size_t done = 0;
    for (std::size_t k = 0; k < buckets && done < count; ++k) {
        for (std::size_t i = start[k] + 1; i < start[k + 1]; ++i) {
            const Entry moving = sorted[i];
            std::size_t at = i;
            while (at > start[k] && later(sorted[at - 1], moving)) {
                sorted[at] = sorted[at - 1];
                --at;
            }
            sorted[at] = moving;
        }
        for (std::size_t i = start[k]; i < start[k + 1] && done < count; ++i) out[done++] = sorted[i];
    }
}

}  // namespace vrm::traffic
