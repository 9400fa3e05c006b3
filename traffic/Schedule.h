// A port's transmit timeline: several blocks, each sending frames at its own interval, in
// bursts or steadily, from its own start, merged by time. Frame n of the port is found without
// walking from frame 0 (a search over time in O(blocks * 64)), so any run of the timeline can
// be made alone and threads split it exactly.
//
// Block b's frame j (burst size S, burst period P = S * steady interval, interval inside a
// burst Ib; S = 1 without bursts): with k = j / S and i = j mod S,
//   time = start + floor(k * P) + floor(i * Ib)   nanoseconds (exact integer arithmetic).
// Frames at the same nanosecond go in rank order (lower first).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "traffic/Rates.h"

namespace vrm::traffic {

struct BlockTiming {
    std::uint64_t start = 0;  // nanoseconds of the first frame
    Fraction steady;          // mean time between frames
    std::uint32_t burst = 1;  // frames per burst
    Fraction inBurst;         // time between frames of a burst (burst > 1)
    std::uint32_t rank = 0;   // order at equal times, lower first
    // A rate that changes: segment s of kSegmentFrames frames has whole nanoseconds
    // segments[s] between its frames, the segments repeating in turn (steady is then their
    // mean, for the first guess of searches; bursts are not used).
    std::vector<std::uint64_t> segments;
};

constexpr std::uint64_t kSegmentFrames = 1024;

// What a port sends when: frame n of the port is a block's frame at a time.
class FrameTimeline {
  public:
    struct Entry {
        std::uint64_t time;    // nanoseconds from the port's start
        std::uint32_t block;   // position in the blocks given
        std::uint64_t index;   // frame index within the block
    };
    static constexpr std::uint64_t kNoLimit = ~std::uint64_t{0};
    // Room that Entries reuses from call to call; one per thread.
    struct Work {
        std::vector<std::uint64_t> next;
        std::vector<std::size_t> tied;
        std::vector<std::uint64_t> keys, sortedKeys;
        std::vector<std::uint32_t> start;
        std::vector<Entry> entries;
    };
    // A block's consecutive frames, made together.
    struct Run {
        std::uint32_t block;
        std::uint32_t count;
        std::uint64_t index;  // the block's frame index of the first
    };
    // The frames that Entries gives, laid out to be made run by run: runs of one block's
    // consecutive frames into `runs`, and for frame k of the port its time, block and place
    // (places[k]: its position when the runs' frames are laid end to end). Returns true when
    // the places are the frames' own order (places[k] = k; `places` is then not written).
    struct Grouping {
        std::vector<Run> runs;
        std::vector<std::uint32_t> firstOf, fill;
    };
    virtual bool Grouped(std::uint64_t first, std::size_t count, std::uint64_t* times, std::uint32_t* blocks,
                         std::uint32_t* places, Grouping& grouping, Work& work) const;
    virtual ~FrameTimeline() = default;
    // The port's frames (kNoLimit when it sends for ever).
    virtual std::uint64_t Frames() const = 0;
    // Entries first .. first + count - 1 (count at most Frames() - first) into `out`.
    virtual void Entries(std::uint64_t first, std::size_t count, Entry* out, Work& work) const = 0;
    void Entries(std::uint64_t first, std::size_t count, Entry* out) const {
        Work work;
        Entries(first, count, out, work);
    }
};

class Schedule : public FrameTimeline {
  public:
    // Frames stop at `frames` in all, or at the first frame at or after `end` nanoseconds,
    // whichever comes first. A burst must fit in its period (checked by the caller).
    Schedule(std::vector<BlockTiming> blocks, std::uint64_t frames = kNoLimit, std::uint64_t end = kNoLimit);

    std::uint64_t Frames() const override { return m_frames; }
    std::uint64_t TimeOf(std::size_t block, std::uint64_t j) const;
    // Frames of `block` before `t` nanoseconds.
    std::uint64_t CountBefore(std::size_t block, std::uint64_t t) const;
    using FrameTimeline::Entries;
    void Entries(std::uint64_t first, std::size_t count, Entry* out, Work& work) const override;
    bool Grouped(std::uint64_t first, std::size_t count, std::uint64_t* times, std::uint32_t* blocks,
                 std::uint32_t* places, Grouping& grouping, Work& work) const override;
    std::size_t Blocks() const { return m_blocks.size(); }

  private:
    std::uint64_t CountAll(std::uint64_t t) const;
    // The latest time with at most `first` frames before it.
    std::uint64_t StartOf(std::uint64_t first) const;
    void FewEntries(std::uint64_t first, std::size_t count, Entry* out, Work& work) const;
    // Many blocks: every block's frames in a window of time, as words sorted by time into
    // work.sortedKeys; false when they do not fit in words (the heap's way then).
    struct Sorted {
        std::uint64_t from;  // the window's start: times are from + (word >> lowBits)
        std::uint64_t skip;  // words before frame `first`
        std::size_t used;    // words up to frame first + count
        unsigned lowBits, blockBits;
    };
    bool Sort(std::uint64_t first, std::size_t count, Work& work, Sorted& sorted) const;
    // The frames of [from, end) as sortable words into `keys` (grown when short), block b's
    // from its frame next[b], each counted in buckets[word >> shift]; returns how many.
    std::size_t Window(std::uint64_t from, std::uint64_t end, unsigned lowBits, unsigned shift,
                       const std::vector<std::uint64_t>& next, std::vector<std::uint64_t>& keys,
                       std::uint32_t* buckets) const;
    std::vector<BlockTiming> m_blocks;
    std::vector<Fraction> m_period;  // burst period of each block
    std::vector<std::vector<std::uint64_t>> m_segmentStart;  // of blocks with segments: their starts in a cycle, and its length
    unsigned m_rankBits = 0;  // bits of the largest rank
    long double m_rate = 1;  // frames per nanosecond, all blocks: the search's first guess
    std::uint64_t m_end;
    std::uint64_t m_frames;
};

}  // namespace vrm::traffic
