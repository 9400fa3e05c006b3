#include "traffic/Sequence.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace vrm::traffic {

namespace {

constexpr std::uint64_t kMax = ~std::uint64_t{0};


}  // namespace

SequenceSchedule::SequenceSchedule(const std::vector<SequenceStep>& steps, std::size_t blocks, bool repeat,
                                   std::uint64_t frames, std::uint64_t end)
    : m_steps(steps), m_repeat(repeat), m_blockPerRound(blocks, 0) {
    // The runs of one round: the table walked with its loops.
    std::vector<std::uint32_t> counters(steps.size(), 0);
    std::uint64_t time = 0, count = 0;
    bool continuous = false;
    for (std::size_t pc = 0; pc < steps.size();) {
        if (m_runs.size() >= kMaxSequenceRuns) {
            throw std::length_error("the sequence table's loops make more than " + std::to_string(kMaxSequenceRuns) +
                                    " entry runs");
        }
        const SequenceStep& s = steps[pc];
        Run r{static_cast<std::uint32_t>(pc), time, count, 0, m_blockPerRound[s.block]};
        if (s.continuous) {
            r.frames = kMax;
            m_runs.push_back(r);
            continuous = true;
            break;
        }
        r.frames = std::uint64_t{s.burstSize} * s.burstCount;
        m_runs.push_back(r);
        count = sat_add(count, r.frames);
        m_blockPerRound[s.block] = sat_add(m_blockPerRound[s.block], r.frames);
        const std::uint64_t last = At(m_runs.size() - 1, r.frames - 1, 0).time;
        time = sat_add(last, times(1, s.entryGap));
        if (s.loopCount > 0 && counters[pc] < s.loopCount) {
            ++counters[pc];
            pc = s.returnTo;
        } else {
            counters[pc] = 0;
            ++pc;
        }
    }
    m_roundFrames = continuous ? kMax : count;
    m_roundTime = time;
    if (continuous || !repeat) {
        m_repeat = false;
        m_frames = std::min(frames, m_roundFrames);
    } else {
        m_frames = m_roundFrames == 0 ? 0 : frames;
    }
    if (end != kNoLimit && m_frames != 0) {
        // The frames before `end`: the first frame at or after it, by a search.
        std::uint64_t lo = 0, hi = m_frames == kMax ? kMax - 1 : m_frames;  // answer in [lo, hi]
        while (lo < hi) {
            const std::uint64_t mid = lo + (hi - lo) / 2;
            if (TimeOf(mid) >= end) {
                hi = mid;
            } else {
                lo = mid + 1;
            }
        }
        m_frames = std::min(m_frames, lo);
    }
}

std::size_t SequenceSchedule::RunOf(std::uint64_t n) const {
    const auto it = std::upper_bound(m_runs.begin(), m_runs.end(), n,
                                     [](std::uint64_t v, const Run& r) { return v < r.firstFrame; });
    return static_cast<std::size_t>(it - m_runs.begin()) - 1;
}

FrameTimeline::Entry SequenceSchedule::At(std::size_t run, std::uint64_t m, std::uint64_t round) const {
    const Run& r = m_runs[run];
    const SequenceStep& s = m_steps[r.step];
    std::uint64_t t = 0;
    if (s.continuous) {
        t = sat_add(r.start, times(m, s.frameGap));
    } else {
        const std::uint64_t k = m / s.burstSize, i = m % s.burstSize;
        t = sat_add(sat_add(r.start, times(k * (s.burstSize - 1) + i, s.frameGap)), times(k, s.burstGap));
    }
    const std::uint64_t roundStart = sat_mul(round, m_roundTime);
    const std::uint64_t index = sat_add(sat_mul(round, m_blockPerRound[s.block]), sat_add(r.blockFirst, m));
    return Entry{sat_add(roundStart, t), s.block, index};
}

std::uint64_t SequenceSchedule::TimeOf(std::uint64_t n) const {
    const std::uint64_t round = m_repeat ? n / m_roundFrames : 0;
    const std::uint64_t within = m_repeat ? n % m_roundFrames : n;
    const std::size_t run = RunOf(within);
    return At(run, within - m_runs[run].firstFrame, round).time;
}

void SequenceSchedule::Entries(std::uint64_t first, std::size_t count, Entry* out, Work&) const {
    if (count == 0) return;
    if (first > m_frames || count > m_frames - first) throw std::out_of_range("frames beyond the schedule's end");
    std::uint64_t round = m_repeat ? first / m_roundFrames : 0;
    std::uint64_t within = m_repeat ? first % m_roundFrames : first;
    std::size_t run = RunOf(within);
    for (std::size_t k = 0; k < count; ++k) {
        out[k] = At(run, within - m_runs[run].firstFrame, round);
        ++within;
        if (m_repeat && within == m_roundFrames) {
            ++round;
            within = 0;
            run = 0;
        } else if (run + 1 < m_runs.size() && within == m_runs[run + 1].firstFrame) {
            ++run;
        }
    }
}

}  // namespace vrm::traffic
