// A port driven by a traffic sequence table: its enabled entries in order, each sending
// burstCount bursts of burstSize frames of one block, with loops back to an earlier entry.
//
// In entry run r (starting at S_r nanoseconds) frame m = k * burstSize + i (burst k, frame i
// of the burst) leaves at
//     S_r + floor((k (burstSize - 1) + i) * frameGap) + floor(k * burstGap)
// and the next run starts at the last frame's time + floor(entryGap). The gaps are the times
// from one frame's start to the next frame's start, from the entry's values and units by the
// load table (Rates.h); a value of 0 means back to back at the line rate. An entry with
// loopCount n > 0 goes back to entry returnToIndex n times before going on (its count starts
// again when it goes on, so loops nest). An entry with enableContinuousTransmission sends its
// block at frameGap for ever, and the table goes no further. A table without such an entry
// runs once, or again and again (each round starting where the last one's entryGap ends) when
// the port repeats it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "traffic/Rates.h"
#include "traffic/Schedule.h"

namespace vrm::traffic {

struct SequenceStep {
    std::uint32_t block = 0;       // position among the port's blocks
    std::uint32_t burstSize = 1;   // at least 1
    std::uint32_t burstCount = 1;  // at least 1
    Fraction frameGap, burstGap, entryGap;
    std::uint32_t returnTo = 0;    // step to go back to
    std::uint32_t loopCount = 0;
    bool continuous = false;
};

// Entry runs that loops may make, at most.
constexpr std::size_t kMaxSequenceRuns = std::size_t{1} << 20;

class SequenceSchedule : public FrameTimeline {
  public:
    // Throws std::length_error when the loops make more than kMaxSequenceRuns runs.
    SequenceSchedule(const std::vector<SequenceStep>& steps, std::size_t blocks, bool repeat,
                     std::uint64_t frames = kNoLimit, std::uint64_t end = kNoLimit);

    std::uint64_t Frames() const override { return m_frames; }
    using FrameTimeline::Entries;
    void Entries(std::uint64_t first, std::size_t count, Entry* out, Work& work) const override;
    std::uint64_t TimeOf(std::uint64_t n) const;

  private:
    struct Run {
        std::uint32_t step;
        std::uint64_t start;       // nanoseconds, within the round
        std::uint64_t firstFrame;  // of the round
        std::uint64_t frames;      // kNoLimit for a continuous entry
        std::uint64_t blockFirst;  // the block's frame index of the run's first frame, within the round
    };
    Entry At(std::size_t run, std::uint64_t m, std::uint64_t round) const;
    std::size_t RunOf(std::uint64_t n) const;  // within a round

    std::vector<SequenceStep> m_steps;
    std::vector<Run> m_runs;
    bool m_repeat = false;
    std::uint64_t m_roundFrames = 0;  // kNoLimit when a run is continuous
    std::uint64_t m_roundTime = 0;
    std::vector<std::uint64_t> m_blockPerRound;
    std::uint64_t m_frames = 0;
};

}  // namespace vrm::traffic
