// Test support: an independent model of the values a range modifier produces, computed with
// the compiler's 128-bit integers from the closed forms of the four modes; record builders.
#pragma once

#include <cstdint>
#include <vector>

#include "interfaces/generator_3_bll_records.h"

namespace range_reference {

__extension__ typedef unsigned __int128 U128;
using Bytes = std::vector<unsigned char>;

inline U128 WidthMask(std::size_t n) { return n >= 16 ? ~U128{0} : (U128{1} << (8 * n)) - 1; }

inline U128 FromBytes(const Bytes& b) {
    U128 v = 0;
    for (unsigned char c : b) v = (v << 8) | c;
    return v;
}

inline Bytes ToBytes(U128 v, std::size_t n) {
    Bytes out(n);
    for (std::size_t i = n; i-- > 0;) {
        out[i] = static_cast<unsigned char>(v & 0xFF);
        v >>= 8;
    }
    return out;
}

inline std::uint64_t RegisterStep(std::uint64_t s) {
    return ((s >> 1) ^ ((s & 1) ? 0x8806A731ull : 0ull)) & 0x1FFFFFFFFull;
}

inline unsigned int Translate(unsigned int i, unsigned int count) {
    const unsigned int last = count - 1;
    const bool odd = (i & 1) != 0;
    if (count % 2 == 1 || i < count / 2) return odd ? last - i : i;
    return odd ? i : last - i;
}

struct Counts {
    unsigned int childStutter = 0;
    unsigned int total = 0;
};

// Value number j of the generator (the j-th distinct step). Stepping with Next from Reset starts
// the accumulator at the full initial value; GetValueAt restarts from initial AND mask.
inline Bytes StepValue(const Generator_3_bll::rangeModifier_s& r, std::uint64_t j, bool indexed) {
    const std::size_t n = r.initialValue.data.size();
    const U128 init = FromBytes(r.initialValue.data);
    const U128 step = FromBytes(r.stepValue.data);
    const U128 mask = FromBytes(r.mask.data);
    const int mode = static_cast<int>(r.mode);
    if (mode == 2) {
        const std::size_t low = n < 4 ? n : 4;
        const std::uint64_t lowMask = low == 4 ? 0xFFFFFFFFull : (1ull << (8 * low)) - 1;
        std::uint64_t s = static_cast<std::uint64_t>(init & lowMask);
        for (std::uint64_t i = 0; i < j; ++i) s = RegisterStep(s);
        return ToBytes((s & 0xFFFFFFFFull) & static_cast<std::uint64_t>(mask & lowMask), n);
    }
    if (mode == 3) j = Translate(static_cast<unsigned int>(j % r.recycleCount), r.recycleCount);
    const U128 base = indexed ? init & mask : init;
    const U128 delta = mode == 1 ? U128{0} - U128{j} * step : U128{j} * step;
    return ToBytes((((base + delta) & mask) | (init & ~mask)) & WidthMask(n), n);
}

// The frames before the sequence repeats, and the number of the step frame f shows.
inline std::uint64_t PeriodLength(const Generator_3_bll::rangeModifier_s& r, const Counts& c) {
    return std::uint32_t{(c.childStutter + 1) * (r.stutterCount + 1) * r.recycleCount};
}
inline std::uint64_t StepOf(const Generator_3_bll::rangeModifier_s& r, const Counts& c, std::uint64_t p) {
    return p / (c.childStutter + 1) / (r.stutterCount + 1);
}

// The value of frame f when the modifier is stepped with Next from Reset.
inline Bytes SequentialFrame(const Generator_3_bll::rangeModifier_s& r, const Counts& c, std::uint64_t f) {
    std::uint64_t totalLength = std::uint64_t{c.total} * (c.childStutter + 1);
    if (totalLength == 0) totalLength = PeriodLength(r, c);
    return StepValue(r, StepOf(r, c, (f % totalLength) % PeriodLength(r, c)), false);
}

// The value GetValueAt(f) gives.
inline Bytes IndexedFrame(const Generator_3_bll::rangeModifier_s& r, const Counts& c, std::uint64_t f) {
    return StepValue(r, StepOf(r, c, f % PeriodLength(r, c)), true);
}

inline Generator_3_bll::rangeModifier_s MakeRange(const Bytes& initial, const Bytes& step, const Bytes& mask,
                                                  int mode, unsigned int recycle, unsigned int stutter,
                                                  bool stream = true, const char* name = "f") {
    Generator_3_bll::rangeModifier_s r;
    r.offsetReference = name;
    r.initialValue.data = initial;
    r.stepValue.data = step;
    r.mask.data = mask;
    r.mode = static_cast<Generator_3_bll::configModMode_t>(mode);
    r.recycleCount = recycle;
    r.stutterCount = stutter;
    r.useStream = stream;
    return r;
}

inline Generator_3_bll::tableModifier_s MakeTable(const std::vector<Bytes>& values, unsigned int stutter,
                                                  bool stream = true, const char* name = "t") {
    Generator_3_bll::tableModifier_s t;
    t.offsetReference = name;
    for (const Bytes& v : values) t.data.push_back(Generator_3_bll::modifierData_s{v});
    t.stutterCount = stutter;
    t.useStream = stream;
    return t;
}

}  // namespace range_reference
