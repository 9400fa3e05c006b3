#include "traffic/Schedule.h"

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>

namespace vrm::traffic {

namespace {

constexpr std::uint64_t kMax = ~std::uint64_t{0};

// Bits needed to write v (0 for 0).
unsigned bit_width(std::uint64_t v) {
    unsigned n = 0;
    while (v != 0) {
        ++n;
        v >>= 1;
    }
    return n;
}


}  // namespace

Schedule::Schedule(std::vector<BlockTiming> blocks, std::uint64_t frames, std::uint64_t end)
    : m_blocks(std::move(blocks)), m_end(end) {
    for (const auto& b : m_blocks) {
        if (b.steady.num == 0 && b.segments.empty()) throw std::invalid_argument("Schedule: a block's interval is 0 ns");
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
    for (const auto& b : m_blocks) m_rankBits = std::max(m_rankBits, bit_width(b.rank));
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
    Sorted sorted{};
    if (m_blocks.size() <= 8 || !Sort(first, count, work, sorted)) {
        FewEntries(first, count, out, work);
        return;
    }
    std::vector<std::uint64_t>& next = work.next;
    const std::uint64_t* v = work.sortedKeys.data();
    const std::uint64_t blockMask = (std::uint64_t{1} << sorted.blockBits) - 1;
    for (std::size_t i = 0; i < sorted.used; ++i) {
        const std::uint64_t key = v[i];
        const auto b = static_cast<std::size_t>(key & blockMask);
        const std::uint64_t j = next[b]++;
        if (i >= sorted.skip) out[i - sorted.skip] = Entry{sorted.from + (key >> sorted.lowBits), static_cast<std::uint32_t>(b), j};
    }
}

bool FrameTimeline::Grouped(std::uint64_t first, std::size_t count, std::uint64_t* times, std::uint32_t* blocks,
                            std::uint32_t* places, Grouping& grouping, Work& work) const {
    std::vector<Entry>& entries = work.entries;
    entries.resize(count);
    Entries(first, count, entries.data(), work);
    std::uint32_t most = 0;
    for (std::size_t k = 0; k < count; ++k) {
        times[k] = entries[k].time;
        blocks[k] = entries[k].block;
        most = std::max(most, entries[k].block);
    }
    std::vector<Run>& runs = grouping.runs;
    runs.clear();
    for (std::size_t k = 0; k < count; ++k) {
        if (k > 0 && entries[k].block == entries[k - 1].block) {
            ++runs.back().count;
        } else {
            runs.push_back({entries[k].block, 1, entries[k].index});
        }
    }
    if (runs.size() * 4 <= count) return true;  // long runs: made where they are
    // Blocks taking turns: one run per block, the blocks in order.
    std::vector<std::uint32_t>& firstOf = grouping.firstOf;
    firstOf.assign(std::size_t{most} + 2, 0);
    for (std::size_t k = 0; k < count; ++k) ++firstOf[entries[k].block + 1];
    for (std::size_t b = 0; b <= most; ++b) firstOf[b + 1] += firstOf[b];
    std::vector<std::uint32_t>& fill = grouping.fill;
    fill.assign(firstOf.begin(), firstOf.end() - 1);
    runs.clear();
    for (std::size_t k = 0; k < count; ++k) {
        const std::uint32_t b = entries[k].block;
        if (fill[b] == firstOf[b]) runs.push_back({b, firstOf[b + 1] - firstOf[b], entries[k].index});
        places[k] = fill[b]++;
    }
    std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.block < b.block; });
    return false;
}

bool Schedule::Grouped(std::uint64_t first, std::size_t count, std::uint64_t* times, std::uint32_t* blocks,
                       std::uint32_t* places, Grouping& grouping, Work& work) const {
    if (count == 0) {
        grouping.runs.clear();
        return true;
    }
    if (first > m_frames || count > m_frames - first) throw std::out_of_range("frames beyond the schedule's end");
    Sorted sorted{};
    if (m_blocks.size() <= 8 || !Sort(first, count, work, sorted)) {
        return FrameTimeline::Grouped(first, count, times, blocks, places, grouping, work);
    }
    // Frames before `first` only move their blocks on; then each block's frames are counted,
    // its run placed after the blocks before it, and each frame given its place.
    std::vector<std::uint64_t>& next = work.next;
    const std::uint64_t* v = work.sortedKeys.data();
    const std::uint64_t blockMask = (std::uint64_t{1} << sorted.blockBits) - 1;
    const std::size_t skip = static_cast<std::size_t>(sorted.skip);
    for (std::size_t i = 0; i < skip; ++i) ++next[static_cast<std::size_t>(v[i] & blockMask)];
    std::vector<std::uint32_t>& firstOf = grouping.firstOf;
    firstOf.assign(m_blocks.size() + 1, 0);
    for (std::size_t i = skip; i < sorted.used; ++i) ++firstOf[(v[i] & blockMask) + 1];
    std::vector<Run>& runs = grouping.runs;
    runs.clear();
    for (std::size_t b = 0; b < m_blocks.size(); ++b) {
        const std::uint32_t n = firstOf[b + 1];
        if (n != 0) runs.push_back({static_cast<std::uint32_t>(b), n, next[b]});
        firstOf[b + 1] = firstOf[b] + n;
    }
    const std::uint64_t from = sorted.from;
    const unsigned lowBits = sorted.lowBits;
    std::uint32_t* fill = firstOf.data();
    for (std::size_t i = skip; i < sorted.used; ++i) {
        const std::uint64_t key = v[i];
        const auto b = static_cast<std::uint32_t>(key & blockMask);
        const std::size_t k = i - skip;
        times[k] = from + (key >> lowBits);
        blocks[k] = b;
        places[k] = fill[b]++;
    }
    return false;
}

std::uint64_t Schedule::StartOf(std::uint64_t first) const {
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
    return lo;
}

void Schedule::FewEntries(std::uint64_t first, std::size_t count, Entry* out, Work& work) const {
    const std::uint64_t t = StartOf(first);
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
    {
        // A heap whose top, once taken, is replaced by the same block's next frame and sifted
        // down.
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
    }
}

std::size_t Schedule::Window(std::uint64_t from, std::uint64_t end, unsigned lowBits, unsigned shift,
                             const std::vector<std::uint64_t>& next, std::vector<std::uint64_t>& keys,
                             std::uint32_t* buckets) const {
    const std::uint64_t span = end - from;
    const unsigned blockBits = lowBits - m_rankBits;
    std::uint64_t* k = keys.data();
    std::size_t size = 0, room = keys.size();
    auto put = [&](std::uint64_t key) {
        if (size == room) {
            keys.resize(2 * room + 64);
            k = keys.data();
            room = keys.size();
        }
        k[size++] = key;
        ++buckets[key >> shift];
    };
    for (std::size_t b = 0; b < m_blocks.size(); ++b) {
        const BlockTiming& bt = m_blocks[b];
        const std::uint64_t low = (std::uint64_t{bt.rank} << blockBits) | b;  // below 2^lowBits
        std::uint64_t j = next[b];
        if (bt.burst > 1 || !bt.segments.empty() || bt.steady.den > kMax) {
            for (std::uint64_t t = TimeOf(b, j); t < end; t = TimeOf(b, ++j)) put(((t - from) << lowBits) | low);
            continue;
        }
        // Steady frames step by the interval's whole part, and one nanosecond more whenever
        // the remainder, j * rest mod den, comes round: the same floor as TimeOf, with one
        // division per block instead of one per frame.
        const auto den = static_cast<std::uint64_t>(bt.steady.den);
        const std::uint64_t whole = bt.steady.whole, rest = bt.steady.rest, wrap = den - rest;
        const u128 kr = u128{j} * rest;
        std::uint64_t q = 0, r = 0;
        if ((kr >> 64) == 0) {
            q = static_cast<std::uint64_t>(kr) / den;
            r = static_cast<std::uint64_t>(kr) % den;
        } else {
            q = static_cast<std::uint64_t>(kr / den);
            r = static_cast<std::uint64_t>(kr % den);
        }
        const u128 at = u128{bt.start} + u128{j} * whole + q;
        if (at >= end) continue;
        std::uint64_t time = static_cast<std::uint64_t>(at) - from;
        if (whole >= span) {  // one frame at most; and time + whole below 2^64 beyond here
            put((time << lowBits) | low);
            continue;
        }
        while (time < span) {
            put((time << lowBits) | low);
            // Without a branch (which the remainder would mispredict): r + rest - den, taken
            // modulo 2^64, is the remainder's next value when it comes round.
            const std::uint64_t round = std::uint64_t{0} - static_cast<std::uint64_t>(r >= wrap);
            r = r + rest - (den & round);
            time += whole + (round & 1);
        }
    }
    return size;
}

bool Schedule::Sort(std::uint64_t first, std::size_t count, Work& work, Sorted& result) const {
    const std::size_t blocks = m_blocks.size();
    // Each frame of the window below as one sortable word: its time after the window's start,
    // its block's rank and the block (so no two are equal, and their order is time, rank,
    // block). Its index need not be kept: a block's frames come out in their own order.
    const unsigned blockBits = bit_width(blocks - 1);
    const unsigned lowBits = m_rankBits + blockBits;
    if (lowBits > 40) return false;  // too many blocks for one word
    const std::uint64_t widest = std::uint64_t{1} << (64 - lowBits);

    // A time `from` with at most `first` frames before it, near frame `first`: from the mean
    // rate, less the frames the blocks' own rounding can put ahead of it (about one each).
    // When starts or bursts put the guess far off, the exact search. next[b]: block b's frames
    // before `from`.
    std::vector<std::uint64_t>& next = work.next;
    next.resize(blocks);
    auto count_each = [&](std::uint64_t t) {
        std::uint64_t n = 0;
        for (std::size_t b = 0; b < blocks; ++b) {
            next[b] = CountBefore(b, t);
            n = sat_add(n, next[b]);
        }
        return n;
    };
    std::uint64_t from = 0, before = 0;
    const long double guess = static_cast<long double>(first) / m_rate;
    const std::uint64_t near = count + 4 * static_cast<std::uint64_t>(blocks) + 256;
    bool found = false;
    if (first == 0) {
        before = count_each(0);
        found = true;
    } else if (guess < 1.8e19L) {
        for (long double back = static_cast<long double>(blocks + 64) / m_rate; back < 1.8e19L; back *= 8) {
            from = guess > back ? static_cast<std::uint64_t>(guess - back) : 0;
            before = count_each(from);
            if (before <= first) {
                found = first - before <= near;
                break;
            }
        }
    }
    if (!found) {
        from = StartOf(first);
        before = count_each(from);
    }
    const std::uint64_t skip = first - before;
    const std::uint64_t need = skip + count;

    // Every block's frames in a window of time [from, end) that holds at least `need` of them.
    std::vector<std::uint64_t>& keys = work.keys;
    if (keys.size() < need + need / 8 + blocks) keys.resize(need + need / 8 + blocks);
    std::uint64_t width = static_cast<std::uint64_t>(
        std::min<long double>(1.8e19L, static_cast<long double>(need) / m_rate * 1.05L + 64));
    std::uint64_t end = from;
    std::size_t total = 0;
    // Buckets of equal spans of time, a power of two nanoseconds wide, about one frame each,
    // counted while the window is made; its words laid out bucket after bucket; then an
    // insertion sort, which only ever moves a word within its bucket (the words of earlier
    // buckets are smaller) and seldom at all.
    std::vector<std::uint32_t>& start = work.start;
    unsigned shift = 0;
    std::size_t buckets = 0;
    for (;;) {
        end = from < kMax - width ? from + width : kMax;
        const std::uint64_t span = end - from;
        if (span == 0 || span >= widest) return false;  // too wide a window for one word
        const unsigned spanBits = bit_width(span), needBits = bit_width(need);
        shift = lowBits + (spanBits > needBits ? spanBits - needBits : 0);
        buckets = static_cast<std::size_t>((((span - 1) << lowBits) >> shift) + 1);
        start.assign(buckets + 1, 0);
        total = Window(from, end, lowBits, shift, next, keys, start.data() + 1);
        if (total >= need) break;
        if (end == kMax) return false;
        width = width > kMax / 2 ? kMax : width * 2;
    }
    for (std::size_t k = 0; k < buckets; ++k) start[k + 1] += start[k];
    std::vector<std::uint64_t>& sorted = work.sortedKeys;
    sorted.resize(total);
    for (std::size_t k = 0; k < total; ++k) sorted[start[keys[k] >> shift]++] = keys[k];
    // Only the words up to frame first + count need their order, and those of their bucket.
    const auto used = static_cast<std::size_t>(need);
    std::uint64_t* v = sorted.data();
    std::size_t limit = used;
    while (limit < total && (v[limit] >> shift) == (v[used - 1] >> shift)) ++limit;
    for (std::size_t i = 1; i < limit; ++i) {
        const std::uint64_t moving = v[i];
        std::size_t at = i;
        while (at > 0 && v[at - 1] > moving) {
            v[at] = v[at - 1];
            --at;
        }
        v[at] = moving;
    }
    result.from = from;
    result.skip = skip;
    result.used = used;
    result.lowBits = lowBits;
    result.blockBits = blockBits;
    return true;
}

}  // namespace vrm::traffic
