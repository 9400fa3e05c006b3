#include "traffic/FrameBytes.h"

#include <array>
#include <cstring>

namespace vrm::traffic {

namespace {

constexpr std::uint64_t kMask28 = (std::uint64_t{1} << 28) - 1;
constexpr std::uint64_t kMask56 = (std::uint64_t{1} << 56) - 1;
constexpr std::uint64_t kMask62 = (std::uint64_t{1} << 62) - 1;
// Bytes made from the degree-31 recurrence before the unit-wide ones take over.
constexpr std::size_t kHead = 62;

// With the latest 31 bits of the sequence in the low bits of w (the newest lowest), the next
// 28: s[k] = s[k-31] ^ s[k-28].
inline std::uint64_t next28(std::uint64_t w) { return ((w >> 3) ^ w) & kMask28; }
// The square of the polynomial gives s[k] = s[k-62] ^ s[k-56]: with the latest 62 bits in w,
// the next 56 at once.
inline std::uint64_t next56(std::uint64_t w) { return ((w >> 6) ^ w) & kMask56; }

inline void put56(unsigned char* out, std::uint64_t c, std::size_t n) {
    for (std::size_t b = 0; b < n; ++b) out[b] = static_cast<unsigned char>(c >> (48 - 8 * b));
}

// Fills out[done, min(end, n)) with units of U bytes: unit m = unit m-31 ^ unit m-28 (bytes
// at the end that make no whole unit byte by byte, with the same distances). Returns where
// it stopped.
template <class U>
std::size_t units(unsigned char* out, std::size_t done, std::size_t n, std::size_t end) {
    constexpr std::size_t far = 31 * sizeof(U), near = 28 * sizeof(U);
    const std::size_t stop = end < n ? end : n;
    // Both sources lie at least 16 bytes back, so 16 bytes of units go at once.
    for (; done + 16 <= stop; done += 16) {
        std::uint64_t x[2], y[2];
        std::memcpy(x, out + done - far, 16);
        std::memcpy(y, out + done - near, 16);
        x[0] ^= y[0];
        x[1] ^= y[1];
        std::memcpy(out + done, x, 16);
    }
    for (; done + sizeof(U) <= stop; done += sizeof(U)) {
        U x, y;
        std::memcpy(&x, out + done - far, sizeof(U));
        std::memcpy(&y, out + done - near, sizeof(U));
        x = static_cast<U>(x ^ y);
        std::memcpy(out + done, &x, sizeof(U));
    }
    if (stop == n) {
        for (; done < n; ++done) out[done] = static_cast<unsigned char>(out[done - far] ^ out[done - near]);
    }
    return done;
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
    // The first 62 bytes 56 bits at a time (8-byte stores overlapping by one byte).
    const std::size_t head = n < kHead ? n : kHead;
    std::size_t done = 0;
    while (done + 8 <= head) {
        const std::uint64_t be = __builtin_bswap64(prev << 8);
        std::memcpy(out + done, &be, 8);
        done += 7;
        const std::uint64_t next = next56(((prev << 56) | cur) & kMask62);
        prev = cur;
        cur = next;
    }
    while (done < head) {
        const std::size_t k = head - done < 7 ? head - done : 7;
        put56(out + done, prev, k);
        done += k;
        const std::uint64_t next = next56(((prev << 56) | cur) & kMask62);
        prev = cur;
        cur = next;
    }
    // The polynomial to the power 8u (u = 2, 4, 8 bytes): s[k] = s[k - 248u] ^ s[k - 224u],
    // so each u-byte unit of the output is the XOR of the units 31 and 28 places back. Each
    // unit width takes over once 31 units of it exist.
    done = units<std::uint16_t>(out, done, n, 124);
    done = units<std::uint32_t>(out, done, n, 248);
    units<std::uint64_t>(out, done, n, n);
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
    // Slicing by four: t[k][i] is the register after byte i and k zero bytes.
    static const auto t = [] {
        std::array<std::array<std::uint16_t, 256>, 4> tables{};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t c = i << 8;
            for (int k = 0; k < 8; ++k) c = (c & 0x8000u) != 0 ? (c << 1) ^ 0x1021u : c << 1;
            tables[0][i] = static_cast<std::uint16_t>(c);
        }
        for (std::size_t k = 1; k < 4; ++k) {
            for (std::uint32_t i = 0; i < 256; ++i) {
                const std::uint16_t c = tables[k - 1][i];
                tables[k][i] = static_cast<std::uint16_t>(((c & 0xffu) << 8) ^ tables[0][c >> 8]);
            }
        }
        return tables;
    }();
    std::uint16_t c = 0xffff;
    for (; n >= 4; p += 4, n -= 4) {
        const unsigned x = c ^ (static_cast<unsigned>(p[0]) << 8 | p[1]);
        c = static_cast<std::uint16_t>(t[3][x >> 8] ^ t[2][x & 0xffu] ^ t[1][p[2]] ^ t[0][p[3]]);
    }
    for (; n > 0; ++p, --n) c = static_cast<std::uint16_t>((c << 8) ^ t[0][((c >> 8) ^ *p) & 0xffu]);
    return c;
}

}  // namespace vrm::traffic
