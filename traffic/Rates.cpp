#include "traffic/Rates.h"

#include "traffic/JsonRecord.h"

namespace vrm::traffic {

namespace {

using LoadProfile_1_bll::rateUnit_t;

constexpr u128 kTwo64 = u128{1} << 64;
constexpr std::uint64_t kMax = ~std::uint64_t{0};

u128 gcd(u128 a, u128 b) {
    while (b != 0) {
        const u128 t = a % b;
        a = b;
        b = t;
    }
    return a;
}

// num / den reduced, checked to fit and to be at least one nanosecond.
Fraction make(u128 num, u128 den, const std::string& path) {
    const u128 g = gcd(num, den);
    Fraction f{num / g, den / g};
    if (f.den >= kTwo64 || f.num / f.den >= kTwo64) {
        throw InputError(path, "the time between frames is not representable in nanoseconds (a fraction too fine)");
    }
    if (f.num < f.den) throw InputError(path, "more than one frame per nanosecond");
    return with_parts(f);
}

// Products of factors below 2^64 that stay below 2^128; InputError otherwise.
u128 mul(u128 a, u128 b, const std::string& path) {
    if (a != 0 && b > (~u128{0}) / a) throw InputError(path, "the rate is beyond what can be computed exactly");
    return a * b;
}

}  // namespace

Fraction with_parts(Fraction f) {
    f.whole = static_cast<std::uint64_t>(f.num / f.den);
    f.rest = static_cast<std::uint64_t>(f.num % f.den);
    return f;
}

Fraction frame_interval(rateUnit_t unit, std::uint64_t v, std::uint64_t meanNum, std::uint64_t meanDen,
                        const LineSettings& line, const std::string& path) {
    // Wire bytes per frame, and wire bytes without the minimum gap, times meanDen.
    const u128 wire = u128{meanNum} + u128{line.overhead} * meanDen;
    const u128 noGap = wire - u128{line.minimumGap} * meanDen;
    const u128 l2 = u128{meanNum} + u128{4} * meanDen;
    auto needs = [&](bool ok) {
        if (!ok) throw InputError(path, "a rate of 0 sends nothing");
    };
    switch (unit) {
        case rateUnit_t::PERCENT_LINE_RATE:
            needs(v != 0);
            if (v > 100000000) throw InputError(path, std::to_string(v) + " millionths of a percent is beyond the line rate");
            return make(mul(mul(wire, 8, path), 100000000000000000ull, path), mul(mul(meanDen, line.lineRate, path), v, path), path);
        case rateUnit_t::FRAMES_PER_SECOND:
            needs(v != 0);
            return make(1000000000000ull, v, path);
        case rateUnit_t::INTER_FRAME_GAP:
            return make(mul(mul(noGap + u128{v} * meanDen, 8, path), 1000000000, path), mul(meanDen, line.lineRate, path), path);
        case rateUnit_t::IFG_IN_MILLI_SECOND:
        case rateUnit_t::IFG_IN_NANO_SECOND: {
            const u128 den = mul(meanDen, line.lineRate, path);
            const u128 gap = unit == rateUnit_t::IFG_IN_MILLI_SECOND ? mul(v, 1000, path) : u128{v};
            return make(mul(mul(noGap, 8, path), 1000000000, path) + mul(gap, den, path), den, path);
        }
        case rateUnit_t::BITS_PER_SECOND:
        case rateUnit_t::KILOBITS_PER_SECOND:
        case rateUnit_t::MEGABITS_PER_SECOND: {
            needs(v != 0);
            const std::uint64_t scale = unit == rateUnit_t::BITS_PER_SECOND       ? 1000000000
                                        : unit == rateUnit_t::KILOBITS_PER_SECOND ? 1000000
                                                                                  : 1000;
            return make(mul(mul(wire, 8, path), scale, path), mul(meanDen, v, path), path);
        }
        case rateUnit_t::L2_RATE:
            needs(v != 0);
            return make(mul(mul(l2, 8, path), 1000000000, path), mul(meanDen, v, path), path);
    }
    throw InputError(path, "unknown rate unit");
}

std::uint64_t times(std::uint64_t k, const Fraction& f) {
    if (f.den == 1) {
        const u128 t = u128{k} * f.num;
        return t > kMax ? kMax : static_cast<std::uint64_t>(t);
    }
    const u128 whole = u128{k} * f.whole;
    const u128 kr = u128{k} * f.rest;  // rest < den < 2^64
    const auto den = static_cast<std::uint64_t>(f.den);
    const u128 part = (kr >> 64) == 0 ? u128{static_cast<std::uint64_t>(kr) / den} : kr / den;
    const u128 t = whole + part;
    return t > kMax ? kMax : static_cast<std::uint64_t>(t);
}

std::uint64_t count_below(std::uint64_t u, const Fraction& f) {
    // floor(k num / den) < u  <=>  k num < u den  <=>  k < ceil(u den / num).
    const u128 x = u128{u} * f.den;
    if (f.num <= kMax && x <= kMax) {  // 64-bit division where it is enough
        const auto n = static_cast<std::uint64_t>(f.num), y = static_cast<std::uint64_t>(x);
        return y / n + (y % n != 0 ? 1 : 0);
    }
    const u128 c = x / f.num + (x % f.num != 0 ? 1 : 0);
    return c > kMax ? kMax : static_cast<std::uint64_t>(c);
}

Fraction scaled(const Fraction& f, std::uint64_t m, const std::string& path) {
    return make(mul(f.num, m, path), f.den, path);
}

}  // namespace vrm::traffic
