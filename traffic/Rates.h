// Loads to times: the records carry loads as integers in a rate unit; this is the one table
// that says what an integer means in each unit, and the time between frames it gives, as an
// exact fraction of nanoseconds.
//
//   unit                  the integer v is            nanoseconds between frames
//   PERCENT_LINE_RATE     millionths of a percent     8 (L + overhead) 10^17 / (line v)
//                         (100% = 100,000,000)
//   FRAMES_PER_SECOND     thousandths of a frame/s    10^12 / v
//   INTER_FRAME_GAP       bytes of gap                8 (L + overhead - minimumGap + v) 10^9 / line
//   IFG_IN_MILLI_SECOND   microseconds of gap         8 (L + overhead - minimumGap) 10^9 / line + 1000 v
//   IFG_IN_NANO_SECOND    nanoseconds of gap          8 (L + overhead - minimumGap) 10^9 / line + v
//   BITS_PER_SECOND       bits/s on the wire          8 (L + overhead) 10^9 / v
//   KILOBITS_PER_SECOND   kbit/s on the wire          8 (L + overhead) 10^6 / v
//   MEGABITS_PER_SECOND   Mbit/s on the wire          8 (L + overhead) 10^3 / v
//   L2_RATE               bits/s of frames            8 (L + 4) 10^9 / v
//                         (frame and FCS only)
//
// L is the block's mean frame length without the frame check sequence, line the line rate in
// bits per second, overhead the bytes each frame takes on the wire besides itself (preamble
// and start delimiter 8, FCS 4, minimum gap 12: 24) and minimumGap the gap's share of it.
#pragma once

#include <cstdint>
#include <string>

#include "interfaces/loadProfile_1_bll.h"

namespace vrm::traffic {

__extension__ typedef unsigned __int128 u128;

struct LineSettings {
    std::uint64_t lineRate = 10000000000ull;  // bits per second
    std::uint32_t overhead = 24;              // bytes per frame on the wire besides the frame
    std::uint32_t minimumGap = 12;            // the minimum gap's share of the overhead
};

// Nanoseconds as the exact fraction num / den (reduced; den below 2^64), with its whole part
// and remainder kept for the per-frame arithmetic (set by with_parts).
struct Fraction {
    u128 num = 0;
    u128 den = 1;
    std::uint64_t whole = 0;  // num / den
    std::uint64_t rest = 0;   // num mod den
};

// f with its whole part and remainder set.
Fraction with_parts(Fraction f);

// The time between frames of mean length meanNum / meanDen bytes at `value` in `unit`.
// Throws InputError(path) for a value of 0 where it means no traffic, an interval under one
// nanosecond, and a fraction that does not fit (denominator of 2^64 or more).
Fraction frame_interval(LoadProfile_1_bll::rateUnit_t unit, std::uint64_t value, std::uint64_t meanNum,
                        std::uint64_t meanDen, const LineSettings& line, const std::string& path);

// Sums and products of nanoseconds and counts that stop at 2^64 - 1 (for ever).
inline std::uint64_t sat_add(std::uint64_t a, std::uint64_t b) { return a > ~b ? ~std::uint64_t{0} : a + b; }
inline std::uint64_t sat_mul(std::uint64_t a, std::uint64_t b) {
    return b != 0 && a > ~std::uint64_t{0} / b ? ~std::uint64_t{0} : a * b;
}

// floor(k * f): k frames' worth of f. Saturates at 2^64 - 1.
std::uint64_t times(std::uint64_t k, const Fraction& f);
// The number of k >= 0 with floor(k * f) < u (f >= 1 ns). Saturates at 2^64 - 1.
std::uint64_t count_below(std::uint64_t u, const Fraction& f);
// f * m, reduced; throws InputError(path) when it does not fit.
Fraction scaled(const Fraction& f, std::uint64_t m, const std::string& path);

}  // namespace vrm::traffic
