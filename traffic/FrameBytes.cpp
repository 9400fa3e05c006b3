#include "traffic/FrameBytes.h"

#include <array>

namespace vrm::traffic {

namespace {

constexpr std::uint64_t kMask28 = (std::uint64_t{1} << 28) - 1;
constexpr std::uint64_t kMask56 = (std::uint64_t{1} << 56) - 1;
constexpr std::uint64_t kMask62 = (std::uint64_t{1} << 62) - 1;

// With the latest 31 bits of the sequence in the low bits of w (the newest lowest), the next
// 28: s[k] = s[k-31] ^ s[k-28].
inline std::uint64_t next28(std::uint64_t w) { return ((w >> 3) ^ w) & kMask28; }
// The square of the polynomial gives s[k] = s[k-62] ^ s[k-56]: with the latest 62 bits in w,
// the next 56 at once.
inline std::uint64_t next56(std::uint64_t w) { return ((w >> 6) ^ w) & kMask56; }

inline void put56(unsigned char* out, std::uint64_t c, std::size_t n) {
    for (std::size_t b = 0; b < n; ++b) out[b] = static_cast<unsigned char>(c >> (48 - 8 * b));
}

std::array<std::array<std::uint32_t, 256>, 8> make_crc32_tables() {
    std::array<std::array<std::uint32_t, 256>, 8> t{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int k = 0; k < 8; ++k) c = (c & 1u) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        t[0][i] = c;
    }
    for (std::uint32_t i = 0; i < 256; ++i) {
        for (std::size_t s = 1; s < 8; ++s) t[s][i] = (t[s - 1][i] >> 8) ^ t[0][t[s - 1][i] & 0xffu];
    }
    return t;
}

const std::array<std::array<std::uint32_t, 256>, 8>& crc32_tables() {
    static const auto tables = make_crc32_tables();
    return tables;
}

}  // namespace

void prbs31_fill(std::uint32_t state, unsigned char* out, std::size_t n) {
    std::uint64_t a = state & 0x7fffffffu;
    if (a == 0) a = 1;
    // s[0..58], then s[59..86] and s[87..114]; the chunks of 56 bits c0 = s[0..55] and
    // c1 = s[56..111] start the 56-bit recurrence.
    const std::uint64_t s59 = a << 28 | next28(a);
    const std::uint64_t t2 = next28(s59);
    const std::uint64_t t3 = next28(((s59 << 28) | t2) & kMask62);
    std::uint64_t prev = s59 >> 3;                                  // c0
    std::uint64_t cur = ((s59 & 7u) << 53) | (t2 << 25) | (t3 >> 3);  // c1
    while (n >= 7) {
        put56(out, prev, 7);
        out += 7;
        n -= 7;
        const std::uint64_t next = next56(((prev << 56) | cur) & kMask62);
        prev = cur;
        cur = next;
    }
    put56(out, prev, n);
}

std::uint32_t crc32_ethernet(const unsigned char* p, std::size_t n) {
    const auto& t = crc32_tables();
    std::uint32_t c = 0xffffffffu;
    while (n >= 8) {
        const std::uint32_t lo = c ^ (static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
                                      static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24);
        c = t[7][lo & 0xffu] ^ t[6][(lo >> 8) & 0xffu] ^ t[5][(lo >> 16) & 0xffu] ^ t[4][lo >> 24] ^ t[3][p[4]] ^
            t[2][p[5]] ^ t[1][p[6]] ^ t[0][p[7]];
        p += 8;
        n -= 8;
    }
    while (n-- > 0) c = t[0][(c ^ *p++) & 0xffu] ^ (c >> 8);
    return ~c;
}

std::uint16_t crc16_ccitt(const unsigned char* p, std::size_t n) {
    std::uint32_t c = 0xffff;
    for (std::size_t i = 0; i < n; ++i) {
        c ^= static_cast<std::uint32_t>(p[i]) << 8;
        for (int k = 0; k < 8; ++k) c = (c & 0x8000u) != 0 ? (c << 1) ^ 0x1021u : c << 1;
    }
    return static_cast<std::uint16_t>(c);
}

}  // namespace vrm::traffic
