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

// Value number j of the generator (j-th distinct step), as the sequential path yields it:
// the accumulator starts at the full initial value.
inline Bytes SequentialStep(const Generator_3_bll::rangeModifier_s& r, std::uint64_t j) {
    const std::size_t n = r.initialValue.data.size();
    const U128 wm = WidthMask(n);
    const U128 init = FromBytes(r.initialValue.data);
    const U128 step = FromBytes(r.stepValue.data);
    const U128 mask = FromBytes(r.mask.data);
    const U128 fixed = init & ~mask & wm;
    switch (static_cast<int>(r.mode)) {
        case 0:
            return ToBytes((((init + U128{j} * step) & mask) | fixed) & wm, n);
        case 1:
            return ToBytes((((init - U128{j} * step) & mask) | fixed) & wm, n);
        case 3: {
            const unsigned int t = Translate(static_cast<unsigned int>(j % r.recycleCount), r.recycleCount);
            return ToBytes((((init + U128{t} * step) & mask) | fixed) & wm, n);
        }
        default: {
            const std::size_t low = n < 4 ? n : 4;
            const std::uint64_t lowMask = low == 4 ? 0xFFFFFFFFull : (1ull << (8 * low)) - 1;
            std::uint64_t s = static_cast<std::uint64_t>(init & lowMask);
            for (std::uint64_t i = 0; i < j; ++i) s = RegisterStep(s);
            return ToBytes((s & 0xFFFFFFFFull) & static_cast<std::uint64_t>(mask & lowMask), n);
        }
    }
}

inline std::uint32_t PeriodLength(const Generator_3_bll::rangeModifier_s& r, const Counts& c) {
    return (c.childStutter + 1) * (r.stutterCount + 1) * r.recycleCount;
}

// The value of frame f when the modifier is stepped with Next from Reset.
inline Bytes SequentialFrame(const Generator_3_bll::rangeModifier_s& r, const Counts& c, std::uint64_t f) {
    const std::uint64_t period = PeriodLength(r, c);
    std::uint64_t totalLength = std::uint64_t{c.total} * (c.childStutter + 1);
    if (totalLength == 0) totalLength = period;
    const std::uint64_t p = (f % totalLength) % period;
    const std::uint64_t k = p / (c.childStutter + 1);
    return SequentialStep(r, k / (r.stutterCount + 1));
}

// The value GetValueAt(f) gives: counting restarts from initial AND mask.
inline Bytes IndexedFrame(const Generator_3_bll::rangeModifier_s& r, const Counts& c, std::uint64_t f) {
    const std::uint64_t i = f % PeriodLength(r, c);
    const std::uint64_t k = i / (c.childStutter + 1);
    std::uint64_t j = k / (r.stutterCount + 1);
    const int mode = static_cast<int>(r.mode);
    if (mode == 2) return SequentialStep(r, j);
    if (mode == 3) j = Translate(static_cast<unsigned int>(j % r.recycleCount), r.recycleCount);
    const std::size_t n = r.initialValue.data.size();
    const U128 wm = WidthMask(n);
    const U128 init = FromBytes(r.initialValue.data);
    const U128 step = FromBytes(r.stepValue.data);
    const U128 mask = FromBytes(r.mask.data);
    const U128 fixed = init & ~mask & wm;
    const U128 delta = mode == 1 ? U128{0} - U128{j} * step : U128{j} * step;
    return ToBytes(((((init & mask) + delta) & mask) | fixed) & wm, n);
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
