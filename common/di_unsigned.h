#ifndef VRM_COMMON_DI_UNSIGNED_H
#define VRM_COMMON_DI_UNSIGNED_H

// Fixed-width unsigned integers of byte digits, least significant digit first, for the range
// value generators: fields of 8 to 128 bits and their products up to 256 bits.
//
// The digit-array helpers below define the arithmetic digit by digit; addition and
// multiplication process the digits in 64-bit and 32-bit words, which yields the same digits
// and carries.

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace vrm {
namespace common {

// Shared mask table, filled once at library start-up:
//   [0..7]   single-bit masks 1, 2, 4, ..., 128
//   [8..15]  low-bit masks (1 << k) - 1 for k = 0..7
//   halfDigitBits, halfDigitMask: bit count (4) and mask (15) of a half digit.
template <typename L, typename D>
struct di_unsignedtable {
    struct Table {
        D masks[16];
        L halfDigitBits;
        D halfDigitMask;
        bool filled;
        D operator[](L index) const { return masks[index]; }
    };
    static Table table;
    // Fills the table; a second call changes nothing and returns false.
    static bool Fill();
};

template <>
di_unsignedtable<unsigned int, unsigned char>::Table di_unsignedtable<unsigned int, unsigned char>::table;
template <>
bool di_unsignedtable<unsigned int, unsigned char>::Fill();

// --- digit-array helpers (least significant digit first) -----------------------------------

template <typename D, typename L>
inline void di_assignbite(D* dst, const D* src, L n) {
    for (L i = 0; i < n; ++i) dst[i] = src[i];
}

// Copies n digits, then zero-extends to m digits.
template <typename D, typename L>
inline void di_assignbite(D* dst, const D* src, L n, L m) {
    di_assignbite(dst, src, n);
    for (L i = n; i < m; ++i) dst[i] = 0;
}

template <typename D, typename L>
inline void di_andbite(D* dst, const D* src, L n) {
    for (L i = 0; i < n; ++i) dst[i] = static_cast<D>(dst[i] & src[i]);
}

template <typename D, typename L>
inline void di_orbite(D* dst, const D* src, L n) {
    for (L i = 0; i < n; ++i) dst[i] = static_cast<D>(dst[i] | src[i]);
}

// One digit of a + b + *carry; *carry becomes 1 when the digit sum overflowed (also when only
// adding the carry made it wrap to 0), else 0.
template <typename D>
inline D di_addunit(D* carry, D a, D b) {
    const D sum = static_cast<D>(a + b);
    const D c1 = sum < a ? 1 : 0;
    const D result = static_cast<D>(sum + *carry);
    const D c2 = result < sum ? 1 : 0;
    *carry = static_cast<D>(c1 | c2);
    return result;
}

namespace detail {

inline std::uint64_t di_load64(const unsigned char* p) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::uint64_t w;
    std::memcpy(&w, p, sizeof w);
    return w;
#else
    std::uint64_t w = 0;
    for (unsigned int i = 0; i < 8; ++i) w |= std::uint64_t{p[i]} << (8 * i);
    return w;
#endif
}

inline void di_store64(unsigned char* p, std::uint64_t w) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::memcpy(p, &w, sizeof w);
#else
    for (unsigned int i = 0; i < 8; ++i) p[i] = static_cast<unsigned char>(w >> (8 * i));
#endif
}

// dst[0..n) += src[0..n) with carry in and out, eight digits at a time where possible.
template <typename D, typename L>
inline D di_addrun(D* dst, const D* src, L n, D carry) {
    L i = 0;
    if constexpr (std::is_same<D, unsigned char>::value) {
        std::uint64_t c = carry;
        for (; i + 8 <= n; i += 8) {
            const std::uint64_t a = di_load64(reinterpret_cast<const unsigned char*>(dst + i));
            const std::uint64_t b = di_load64(reinterpret_cast<const unsigned char*>(src + i));
            const std::uint64_t s = a + b;
            const std::uint64_t r = s + c;
            c = (s < a ? 1u : 0u) | (r < s ? 1u : 0u);
            di_store64(reinterpret_cast<unsigned char*>(dst + i), r);
        }
        carry = static_cast<D>(c);
    }
    for (; i < n; ++i) dst[i] = di_addunit(&carry, dst[i], src[i]);
    return carry;
}

// dst[0..K) += src[0..K) for a whole-byte width known at compile time: 64-bit words plus one
// zero-padded partial word. Returns the carry out of the top digit, as di_addsub does with no
// head mask.
template <unsigned int K>
inline unsigned char di_addfixed(unsigned char* dst, const unsigned char* src) {
    std::uint64_t carry = 0;
    unsigned int i = 0;
    for (; i + 8 <= K; i += 8) {
        const std::uint64_t a = di_load64(dst + i);
        const std::uint64_t b = di_load64(src + i);
        const std::uint64_t s = a + b;
        const std::uint64_t r = s + carry;
        carry = (s < a ? 1u : 0u) | (r < s ? 1u : 0u);
        di_store64(dst + i, r);
    }
    constexpr unsigned int tail = K % 8;
    if constexpr (tail != 0) {
        unsigned char a[8] = {};
        unsigned char b[8] = {};
        for (unsigned int j = 0; j < tail; ++j) {
            a[j] = dst[i + j];
            b[j] = src[i + j];
        }
        // Both operands are below 2^(8 * tail), so the sum cannot wrap 64 bits.
        const std::uint64_t r = di_load64(a) + di_load64(b) + carry;
        for (unsigned int j = 0; j < tail; ++j) dst[i + j] = static_cast<unsigned char>(r >> (8 * j));
        carry = (r >> (8 * tail)) & 1;
    }
    return static_cast<unsigned char>(carry);
}

template <typename D>
inline bool di_headoverflow(D top, D headMask, D carry) {
    if (headMask == 0) return carry != 0;
    return (top & static_cast<D>(headMask + 1)) != 0;
}

}  // namespace detail

// dst += src with carry. When dst is not wider than src, the top digit of dst receives src's
// digit ANDed with headMask (255 when headMask is 0). When dst is wider, the carry runs up
// through dst's higher digits. Returns the carry out of the top digit when headMask is 0,
// otherwise whether the sum overflowed the head (bit headMask + 1 of the top digit).
template <typename D, typename L>
inline bool di_addsub(D* dst, const D* src, L dstLen, L srcLen, D headMask) {
    if (dstLen == 0) return false;
    if (dstLen <= srcLen) {
        D carry = detail::di_addrun(dst, src, static_cast<L>(dstLen - 1), D{0});
        const D top = static_cast<D>(src[dstLen - 1] & (headMask != 0 ? headMask : static_cast<D>(~D{0})));
        dst[dstLen - 1] = di_addunit(&carry, dst[dstLen - 1], top);
        return detail::di_headoverflow(dst[dstLen - 1], headMask, carry);
    }
    D carry = detail::di_addrun(dst, src, srcLen, D{0});
    for (L i = srcLen; i < dstLen && carry != 0; ++i) {
        dst[i] = static_cast<D>(dst[i] + 1);
        carry = dst[i] == 0 ? 1 : 0;
    }
    return detail::di_headoverflow(dst[dstLen - 1], headMask, carry);
}

namespace detail {

// Little-endian 32-bit limbs from N digits; the limbs are zero-initialised by the caller.
template <unsigned int N>
inline void di_loadlimbs(std::uint32_t* limbs, const unsigned char* digits) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::memcpy(limbs, digits, N);
#else
    for (unsigned int i = 0; i < N; ++i) limbs[i / 4] |= std::uint32_t{digits[i]} << (8 * (i % 4));
#endif
}

// Full product of an AL-digit and a BL-digit number, written into outLen digits (the digits
// of the true product beyond outLen are zero for every caller). Schoolbook multiplication on
// 32-bit limbs.
template <unsigned int AL, unsigned int BL>
inline void di_mulbytes(unsigned char* out, unsigned int outLen, const unsigned char* a,
                        const unsigned char* b) {
    constexpr unsigned int LA = (AL + 3) / 4;
    constexpr unsigned int LB = (BL + 3) / 4;
    std::uint32_t x[LA] = {};
    std::uint32_t y[LB] = {};
    std::uint32_t r[LA + LB] = {};
    di_loadlimbs<AL>(x, a);
    di_loadlimbs<BL>(y, b);
    for (unsigned int i = 0; i < LA; ++i) {
        if (x[i] == 0) continue;
        std::uint64_t carry = 0;
        for (unsigned int j = 0; j < LB; ++j) {
            const std::uint64_t t = std::uint64_t{x[i]} * y[j] + r[i + j] + carry;
            r[i + j] = static_cast<std::uint32_t>(t);
            carry = t >> 32;
        }
        r[i + LB] = static_cast<std::uint32_t>(carry);
    }
    constexpr unsigned int produced = 4 * (LA + LB);
    const unsigned int n = outLen < produced ? outLen : produced;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::memcpy(out, r, n);
#else
    for (unsigned int i = 0; i < n; ++i) out[i] = static_cast<unsigned char>(r[i / 4] >> (8 * (i % 4)));
#endif
    for (unsigned int i = n; i < outLen; ++i) out[i] = 0;
}

}  // namespace detail

// Fixed-width unsigned integer of BITS bits: a flag byte (receives carry results), a head
// mask for the most significant digit (0 for whole-byte widths, meaning no masking) and
// ceil(BITS / 8) digits, least significant first.
template <typename L, typename D, unsigned int BITS>
class di_unsigned {
    static_assert(std::is_same<L, unsigned int>::value && std::is_same<D, unsigned char>::value,
                  "di_unsigned is defined for unsigned int lengths and unsigned char digits");
    static_assert(BITS > 0, "di_unsigned needs at least one bit");

  public:
    static constexpr L kBits = BITS;
    static constexpr L kDigits = (BITS + 7) / 8;

    di_unsigned() : m_flag(0), m_headMask(di_unsignedtable<L, D>::table[8 + BITS % 8]), m_digits{} {}

    static constexpr L size() { return kDigits; }
    D* digits() { return m_digits; }
    const D* digits() const { return m_digits; }
    D& operator[](L i) { return m_digits[i]; }
    const D& operator[](L i) const { return m_digits[i]; }
    D flag() const { return m_flag; }
    D headmask() const { return m_headMask; }

    void clear() {
        for (L i = 0; i < kDigits; ++i) m_digits[i] = 0;
    }

    void clearhead() {
        if (m_headMask != 0) m_digits[kDigits - 1] = static_cast<D>(m_digits[kDigits - 1] & m_headMask);
    }

    // Every digit inverted (callers clearhead() afterwards when the width is not whole bytes).
    void invert() {
        for (L i = 0; i < kDigits; ++i) m_digits[i] = static_cast<D>(~m_digits[i]);
    }

    // Two's complement: invert every digit, clearhead(), add the one-bit constant 1.
    void negate() {
        invert();
        clearhead();
        di_unsigned<L, D, 1> one;
        one[0] = 1;
        *this += one;
    }

    bool iszero() const {
        for (L i = 0; i < kDigits; ++i) {
            if (m_digits[i] != 0) return false;
        }
        return true;
    }

    di_unsigned operator&(const di_unsigned& rhs) const {
        di_unsigned result(*this);
        di_andbite(result.m_digits, rhs.m_digits, kDigits);
        return result;
    }

    // *this = (value & mask) | bits in one pass, taking flag and head mask from `value`.
    void assignandor(const di_unsigned& value, const di_unsigned& mask, const di_unsigned& bits) {
        m_flag = value.m_flag;
        m_headMask = value.m_headMask;
        for (L i = 0; i < kDigits; ++i) {
            m_digits[i] = static_cast<D>((value.m_digits[i] & mask.m_digits[i]) | bits.m_digits[i]);
        }
    }

    di_unsigned& operator|=(const di_unsigned& rhs) {
        di_orbite(m_digits, rhs.m_digits, kDigits);
        return *this;
    }

    // Addition modulo 2^BITS; the flag receives di_addsub's result.
    template <unsigned int M>
    di_unsigned& operator+=(const di_unsigned<L, D, M>& rhs) {
        if constexpr (M == BITS && BITS % 8 == 0) {
            // Same digits and carry as di_addsub, whose head mask is 0 for whole-byte widths.
            m_flag = detail::di_addfixed<kDigits>(m_digits, rhs.digits());
        } else {
            m_flag =
                di_addsub(m_digits, rhs.digits(), kDigits, di_unsigned<L, D, M>::kDigits, m_headMask) ? 1 : 0;
            clearhead();
        }
        return *this;
    }

    // Full product, never truncated.
    template <unsigned int M>
    di_unsigned<L, D, BITS + M> operator*(const di_unsigned<L, D, M>& rhs) const {
        di_unsigned<L, D, BITS + M> result;
        detail::di_mulbytes<kDigits, di_unsigned<L, D, M>::kDigits>(result.digits(), result.size(), m_digits,
                                                                    rhs.digits());
        result.clearhead();
        return result;
    }

    // Shift left by n bits (n below 8), dropping bits beyond the top digit; for a two-digit
    // value the low digit is shifted by n and the high digit receives the low digit's top n
    // bits.
    void leftshiftbit(L n) {
        for (L i = kDigits; i-- > 1;) {
            m_digits[i] = static_cast<D>((m_digits[i] << n) | (m_digits[i - 1] >> (8 - n)));
        }
        m_digits[0] = static_cast<D>(m_digits[0] << n);
        clearhead();
    }

    // The low digits of a value of any width (truncation or zero extension).
    template <unsigned int M>
    void assignlow(const di_unsigned<L, D, M>& src) {
        constexpr L n = di_unsigned<L, D, M>::kDigits < kDigits ? di_unsigned<L, D, M>::kDigits : kDigits;
        di_assignbite(m_digits, src.digits(), n, kDigits);
        clearhead();
    }

    // From / to bytes in network order (most significant first). A longer input keeps its
    // last kDigits bytes; a shorter one is zero-extended.
    void assignnetwork(const unsigned char* bytes, L n) {
        clear();
        for (L i = 0; i < n && i < kDigits; ++i) m_digits[i] = bytes[n - 1 - i];
        clearhead();
    }
    // Writes exactly kDigits bytes.
    void copynetwork(unsigned char* out) const {
        for (L i = 0; i < kDigits; ++i) out[i] = m_digits[kDigits - 1 - i];
    }

    friend bool operator==(const di_unsigned& a, const di_unsigned& b) {
        return std::memcmp(a.m_digits, b.m_digits, kDigits) == 0;
    }
    friend bool operator!=(const di_unsigned& a, const di_unsigned& b) { return !(a == b); }

  private:
    D m_flag;
    D m_headMask;
    D m_digits[kDigits];
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_DI_UNSIGNED_H
