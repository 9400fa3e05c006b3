#ifndef VRM_COMMON_GENERICRANGEMODIFIER_H
#define VRM_COMMON_GENERICRANGEMODIFIER_H

// Value generators of a range modifier for a field of N bytes (N = 1..16): counting by a step
// under a mask, the same counting visited in a fixed interleaved order, and a 33-bit
// linear-feedback shift register. Values are di_unsigned numbers of 8 * N bits (least
// significant digit first); nothing here allocates.

#include <cstdint>

#include "common/di_unsigned.h"

namespace vrm {
namespace common {

// One step of the random generator's register:
// s' = ((s >> 1) ^ (s & 1 ? 0x8806A731 : 0)) & 0x1FFFFFFFF.
inline std::uint64_t RandomRegisterStep(std::uint64_t state) {
    return ((state >> 1) ^ ((state & 1) != 0 ? 0x8806A731ull : 0ull)) & 0x1FFFFFFFFull;
}

// The register advanced `steps` times from `state` (a 33-bit value), in O(log steps): the step
// is linear over GF(2), so the register is multiplied by precomputed powers of its 33x33 step
// matrix. Identical to applying RandomRegisterStep `steps` times.
std::uint64_t RandomRegisterAdvance(std::uint64_t state, unsigned int steps);

template <unsigned int N>
class GenericRangeModifierInterface {
    static_assert(N >= 1 && N <= 16, "range values are 1 to 16 bytes wide");

  public:
    using value_type = di_unsigned<unsigned int, unsigned char, 8 * N>;

    virtual ~GenericRangeModifierInterface() = default;

    // Positions the generator so that the following GetNextValue calls continue after the
    // value of frame `index`.
    virtual bool SetReadCursor(unsigned int index) = 0;
    virtual bool GetNextValue(value_type& out) = 0;
    // The value of frame `index`.
    virtual bool GetValueAt(unsigned int index, value_type& out) = 0;

    // Writes v into the lowest min(N, 4) digits of `out` and zeroes the digits above.
    static void packUint32_t(unsigned int v, value_type& out) {
        constexpr unsigned int low = N < 4 ? N : 4;
        for (unsigned int i = 0; i < low; ++i) out[i] = static_cast<unsigned char>(v >> (8 * i));
        for (unsigned int i = low; i < N; ++i) out[i] = 0;
    }

  protected:
    GenericRangeModifierInterface() = default;
    GenericRangeModifierInterface(const GenericRangeModifierInterface&) = default;
    GenericRangeModifierInterface& operator=(const GenericRangeModifierInterface&) = default;

    // Frames per value. Kept in 64 bits so that a repeat count of 0xFFFFFFFF means 2^32
    // frames per value rather than a division by zero.
    static std::uint64_t Repeat(unsigned int stutter) { return std::uint64_t{stutter} + 1; }
};

// Counting by a step under a mask (INCREMENT; DECREMENT is built with the negated step). Bits
// outside the mask keep the initial value's bits. Each value is produced stutter + 1 times.
template <unsigned int N>
class GenericRangeModifierImpl : public GenericRangeModifierInterface<N> {
  public:
    using value_type = typename GenericRangeModifierInterface<N>::value_type;

    GenericRangeModifierImpl(const value_type& initial, const value_type& step, const value_type& mask,
                             unsigned int stutter)
        : m_initial(initial), m_mask(mask), m_step(step), m_stutter(stutter), m_stutterLeft(stutter) {
        value_type inverted(mask);
        inverted.invert();
        inverted.clearhead();
        m_fixedBits = initial & inverted;
        m_current = initial & mask;
    }

    // The accumulator adds the step over all bits, so a carry may run through masked-out
    // positions; the accumulator set here holds the fixed bits too.
    bool GetNextValue(value_type& out) override {
        if (m_stutterLeft == 0) {
            m_current += m_step;
            m_stutterLeft = m_stutter;
        } else {
            --m_stutterLeft;
        }
        out.assignandor(m_current, m_mask, m_fixedBits);
        return true;
    }

    // fixedBits | (((initial & mask) + step * k) & mask) with k = index / (stutter + 1).
    bool GetValueAt(unsigned int index, value_type& out) override {
        const unsigned int k = static_cast<unsigned int>(index / this->Repeat(m_stutter));
        value_type sum = m_initial & m_mask;
        sum += Times(m_step, k);
        out.assignandor(sum, m_mask, m_fixedBits);
        return true;
    }

    bool SetReadCursor(unsigned int index) override {
        value_type value;
        this->GetValueAt(index, value);
        m_current = value;
        m_stutterLeft = static_cast<unsigned int>(m_stutter - index % this->Repeat(m_stutter));
        return true;
    }

    const value_type& Initial() const { return m_initial; }
    const value_type& Step() const { return m_step; }
    const value_type& Mask() const { return m_mask; }
    const value_type& FixedBits() const { return m_fixedBits; }
    unsigned int Stutter() const { return m_stutter; }

  protected:
    // step * k modulo 2^(8N).
    static value_type Times(const value_type& step, unsigned int k) {
        di_unsigned<unsigned int, unsigned char, 32> factor;
        for (unsigned int i = 0; i < 4; ++i) factor[i] = static_cast<unsigned char>(k >> (8 * i));
        value_type product;
        product.assignlow(step * factor);
        return product;
    }

    value_type m_initial;
    value_type m_mask;
    value_type m_step;
    unsigned int m_stutter;
    unsigned int m_stutterLeft;
    value_type m_current;
    value_type m_fixedBits;
};

// The counting generator visiting the step multiples 0 .. count - 1 in a fixed interleaved
// order (see TranslateIndex).
template <unsigned int N>
class GenericShuffleModifierImpl : public GenericRangeModifierImpl<N> {
    using Base = GenericRangeModifierImpl<N>;

  public:
    using value_type = typename Base::value_type;

    // A count of 0 behaves as 1 (the recycle count validation would have set), so that no
    // position computation divides by zero.
    GenericShuffleModifierImpl(const value_type& initial, const value_type& step, const value_type& mask,
                               unsigned int stutter, unsigned int count)
        : Base(initial, step, mask, stutter), m_count(count == 0 ? 1 : count), m_last(m_count - 1) {}

    // The permutation of 0 .. count - 1: for an odd count, odd i map to last - i; for an even
    // count, odd i below count / 2 and even i from count / 2 on map to last - i; all other i
    // map to themselves. Count 5 gives 0 3 2 1 4, count 6 gives 0 4 2 3 1 5.
    void TranslateIndex(unsigned int i, unsigned int& out) const {
        const bool odd = (i & 1) != 0;
        bool mirrored;
        if ((m_count & 1) != 0 || i < m_count / 2) {
            mirrored = odd;
        } else {
            mirrored = !odd;
        }
        out = mirrored ? m_last - i : i;
    }

    bool GetNextValue(value_type& out) override {
        if (this->m_stutterLeft == 0) {
            ++m_position;
            if (m_position > m_last) m_position = 0;
            unsigned int t = 0;
            TranslateIndex(m_position, t);
            this->m_current = this->m_initial;
            this->m_current += Base::Times(this->m_step, t);
            this->m_stutterLeft = this->m_stutter;
        } else {
            --this->m_stutterLeft;
        }
        out.assignandor(this->m_current, this->m_mask, this->m_fixedBits);
        return true;
    }

    bool GetValueAt(unsigned int index, value_type& out) override {
        const std::uint64_t repeat = this->Repeat(this->m_stutter);
        const unsigned int k = static_cast<unsigned int>((index / repeat) % m_count);
        unsigned int t = 0;
        TranslateIndex(k, t);
        return Base::GetValueAt(static_cast<unsigned int>(repeat * t), out);
    }

    // The position takes the modulus before the division, unlike GetValueAt.
    bool SetReadCursor(unsigned int index) override {
        m_position = static_cast<unsigned int>((index % m_count) / this->Repeat(this->m_stutter));
        return Base::SetReadCursor(index);
    }

    unsigned int Count() const { return m_count; }

  private:
    unsigned int m_count;
    unsigned int m_last;
    unsigned int m_position = 0;
};

// Values from the 33-bit register, masked to the field's lowest 32 bits (bits above are
// always 0). The step value is not used. Index lookups are O(log index).
template <unsigned int N>
class GenericRandomModifierImpl : public GenericRangeModifierInterface<N> {
  public:
    using value_type = typename GenericRangeModifierInterface<N>::value_type;

    // The register starts at the lowest min(N, 4) bytes of `initial`; values are masked by the
    // lowest min(N, 4) bytes of `mask`.
    GenericRandomModifierImpl(const value_type& initial, const value_type& mask, unsigned int stutter)
        : m_mask(LowWord(mask)),
          m_seed(LowWord(initial)),
          m_state(m_seed),
          m_stutter(stutter),
          m_stutterLeft(stutter) {}

    bool GetNextValue(value_type& out) override {
        if (m_stutterLeft == 0) {
            m_state = RandomRegisterStep(m_state);
            m_stutterLeft = m_stutter;
        } else {
            --m_stutterLeft;
        }
        this->packUint32_t(static_cast<unsigned int>(m_state) & m_mask, out);
        return true;
    }

    bool GetValueAt(unsigned int index, value_type& out) override {
        const auto steps = static_cast<unsigned int>(index / this->Repeat(m_stutter));
        const std::uint64_t state = RandomRegisterAdvance(m_seed, steps);
        this->packUint32_t(static_cast<unsigned int>(state) & m_mask, out);
        return true;
    }

    bool SetReadCursor(unsigned int index) override {
        const std::uint64_t repeat = this->Repeat(m_stutter);
        m_stutterLeft = static_cast<unsigned int>(m_stutter - index % repeat);
        m_state = RandomRegisterAdvance(m_seed, static_cast<unsigned int>(index / repeat));
        return true;
    }

    unsigned int Seed() const { return m_seed; }
    unsigned int Mask() const { return m_mask; }
    unsigned int Stutter() const { return m_stutter; }

  private:
    static unsigned int LowWord(const value_type& v) {
        constexpr unsigned int low = N < 4 ? N : 4;
        unsigned int w = 0;
        for (unsigned int i = 0; i < low; ++i) w |= static_cast<unsigned int>(v[i]) << (8 * i);
        return w;
    }

    unsigned int m_mask;
    unsigned int m_seed;
    std::uint64_t m_state;
    unsigned int m_stutter;
    unsigned int m_stutterLeft;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_GENERICRANGEMODIFIER_H
