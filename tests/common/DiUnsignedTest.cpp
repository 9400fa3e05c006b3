#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

#include "common/di_unsigned.h"

namespace {

using vrm::common::di_addsub;
using vrm::common::di_unsigned;
template <unsigned int BITS>
using U = di_unsigned<unsigned int, unsigned char, BITS>;
using Digits = std::vector<unsigned char>;

// --- plain digit-by-digit references -------------------------------------------------------

// dst += src over dst's digits; src is zero-extended or truncated. Returns the carry out.
bool RefAdd(Digits& dst, const Digits& src) {
    unsigned int carry = 0;
    for (size_t i = 0; i < dst.size(); ++i) {
        const unsigned int sum = dst[i] + (i < src.size() ? src[i] : 0u) + carry;
        dst[i] = static_cast<unsigned char>(sum);
        carry = sum >> 8;
    }
    return carry != 0;
}

// Full product from the products of 4-bit halves, added digit by digit.
Digits RefMul(const Digits& a, const Digits& b) {
    Digits r(a.size() + b.size(), 0);
    for (size_t i = 0; i < a.size(); ++i) {
        for (size_t j = 0; j < b.size(); ++j) {
            const unsigned int al = a[i] & 15u, ah = a[i] >> 4, bl = b[j] & 15u, bh = b[j] >> 4;
            unsigned int p = al * bl + ((al * bh + ah * bl) << 4) + ((ah * bh) << 8);
            for (size_t k = i + j; p != 0 && k < r.size(); ++k) {
                p += r[k];
                r[k] = static_cast<unsigned char>(p);
                p >>= 8;
            }
        }
    }
    return r;
}

template <unsigned int BITS>
U<BITS> Random(std::mt19937_64& rng) {
    U<BITS> v;
    // Bias towards 0x00 and 0xFF digits so that long carry runs occur.
    for (unsigned int i = 0; i < U<BITS>::kDigits; ++i) {
        const auto r = rng();
        v[i] = (r & 3) == 0 ? 0xFF : (r & 3) == 1 ? 0x00 : static_cast<unsigned char>(r >> 8);
    }
    return v;
}

template <unsigned int BITS>
Digits ToDigits(const U<BITS>& v) {
    return Digits(v.digits(), v.digits() + U<BITS>::kDigits);
}

constexpr int kRounds = 3000;

template <unsigned int BITS, unsigned int SRC>
void CheckAdd(std::mt19937_64& rng) {
    for (int round = 0; round < kRounds; ++round) {
        U<BITS> a = Random<BITS>(rng);
        U<SRC> b = Random<SRC>(rng);
        // Every other addend is the complement of the other operand's digits, plus a small
        // low digit, so that the sum is all ones or carries through every digit.
        if (round % 2 == 1) {
            for (unsigned int i = 0; i < U<SRC>::kDigits; ++i) {
                b[i] = static_cast<unsigned char>(i < U<BITS>::kDigits ? ~a[i] : b[i]);
            }
            b[0] = static_cast<unsigned char>(b[0] + round % 3);
        }
        Digits expected = ToDigits(a);
        const bool carry = RefAdd(expected, ToDigits(b));
        a += b;
        ASSERT_EQ(ToDigits(a), expected) << BITS << "+" << SRC;
        ASSERT_EQ(a.flag(), carry ? 1 : 0) << BITS << "+" << SRC;
    }
}

template <unsigned int A, unsigned int B>
void CheckMul(std::mt19937_64& rng) {
    for (int round = 0; round < kRounds; ++round) {
        const U<A> a = Random<A>(rng);
        const U<B> b = Random<B>(rng);
        const U<A + B> p = a * b;
        ASSERT_EQ(ToDigits(p), RefMul(ToDigits(a), ToDigits(b))) << A << "x" << B;
    }
}

template <unsigned int... N>
void CheckAllWidths(std::mt19937_64& rng, std::integer_sequence<unsigned int, N...>) {
    // Value widths 8..128 with equal, one-digit and four-digit operands; product widths
    // 144..256.
    (CheckAdd<8 * (N + 1), 8 * (N + 1)>(rng), ...);
    (CheckAdd<8 * (N + 1), 8>(rng), ...);
    (CheckAdd<8 * (N + 1), 32>(rng), ...);
    (CheckAdd<16 * (N + 1), 16 * (N + 1)>(rng), ...);
    (CheckMul<8 * (N + 1), 8 * (N + 1)>(rng), ...);
    (CheckMul<8 * (N + 1), 32>(rng), ...);
}

TEST(DiUnsigned, WordArithmeticMatchesDigitReference) {
    std::mt19937_64 rng(20240611);
    CheckAllWidths(rng, std::make_integer_sequence<unsigned int, 16>{});
    CheckMul<64, 128>(rng);
    CheckMul<24, 40>(rng);
}

// Widths that are not whole bytes: the head mask keeps the top digit's valid bits, and a sum
// overflows when it reaches the first bit above them.
TEST(DiUnsigned, HeadMaskFollowsTheWidth) {
    const Digits masks = {U<1>().headmask(), U<2>().headmask(), U<3>().headmask(), U<4>().headmask(),
                          U<5>().headmask(), U<6>().headmask(), U<7>().headmask(), U<8>().headmask(),
                          U<12>().headmask(), U<32>().headmask()};
    EXPECT_EQ(masks, (Digits{0x01, 0x03, 0x07, 0x0F, 0x1F, 0x3F, 0x7F, 0, 0x0F, 0}));
    U<12> partial;
    partial[1] = 0xFF;
    partial.clearhead();
    EXPECT_EQ(partial[1], 0x0F);

    unsigned char dst[2] = {0xFF, 0x0F};
    const unsigned char src[3] = {0x01, 0x00, 0x77};
    EXPECT_TRUE(di_addsub(dst, src, 2u, 3u, static_cast<unsigned char>(0x0F)));
    EXPECT_EQ(dst[0], 0x00);
    EXPECT_EQ(dst[1], 0x10);
}

TEST(DiUnsigned, ShiftOrAndNetworkOrder) {
    const struct {
        Digits value;
        unsigned int n;
        Digits shifted;
    } cases[] = {{{0xFF, 0x80}, 1, {0xFE, 0x01}}, {{0x81, 0x00}, 7, {0x80, 0x40}},
                 {{0x12, 0x34}, 0, {0x12, 0x34}}, {{0xF0, 0x0F}, 4, {0x00, 0xFF}}};
    for (const auto& c : cases) {
        U<16> v;
        v[0] = c.value[0];
        v[1] = c.value[1];
        v.leftshiftbit(c.n);
        EXPECT_EQ(ToDigits(v), c.shifted) << c.n;
    }
    U<16> a, b;
    a[0] = 0xF0;
    a[1] = 0x0F;
    b[0] = 0x3C;
    b[1] = 0x3C;
    a |= b;
    EXPECT_EQ(ToDigits(a), (Digits{0xFC, 0x3F}));

    const unsigned char network[] = {0x0A, 0x0B, 0x0C, 0x0D};
    U<32> v;
    v.assignnetwork(network, 4);
    EXPECT_EQ(ToDigits(v), (Digits{0x0D, 0x0C, 0x0B, 0x0A}));
    unsigned char out[4] = {};
    v.copynetwork(out);
    EXPECT_EQ(Digits(out, out + 4), Digits(network, network + 4));
}

}  // namespace
