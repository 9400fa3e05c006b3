// Copies of short byte runs. Not part of the runtime's interface; code outside platform/
// must not use it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tm_detail {

// Copies `n` bytes. Names, short texts and small packed arrays, most of what a message
// holds, are a few bytes: those (up to 16) are copied inline, with two overlapping loads
// and stores of the widest size that fits, as a call into the C library per copy costs more
// than the copy.
inline void copy_bytes(unsigned char* d, const unsigned char* s, std::size_t n) {
    if (n > 16) {
        std::memcpy(d, s, n);
    } else if (n >= 8) {
        std::uint64_t a, b;
        std::memcpy(&a, s, 8);
        std::memcpy(&b, s + n - 8, 8);
        std::memcpy(d, &a, 8);
        std::memcpy(d + n - 8, &b, 8);
    } else if (n >= 4) {
        std::uint32_t a, b;
        std::memcpy(&a, s, 4);
        std::memcpy(&b, s + n - 4, 4);
        std::memcpy(d, &a, 4);
        std::memcpy(d + n - 4, &b, 4);
    } else if (n > 0) {
        d[0] = s[0];
        d[n / 2] = s[n / 2];
        d[n - 1] = s[n - 1];
    }
}

// Stores the low `N` bytes of `v` at `p`, least significant first, and loads them back: one
// move each on a little-endian host, where the compiler would otherwise keep the byte loop.
template <int N>
inline void store_le(unsigned char* p, std::uint64_t v) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::memcpy(p, &v, N);
#else
    for (int i = 0; i < N; ++i) p[i] = static_cast<unsigned char>(v >> (8 * i));
#endif
}
template <int N>
inline std::uint64_t load_le(const unsigned char* p) {
    std::uint64_t v = 0;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::memcpy(&v, p, N);
#else
    for (int i = 0; i < N; ++i) v |= static_cast<std::uint64_t>(p[i]) << (8 * i);
#endif
    return v;
}

}  // namespace tm_detail
