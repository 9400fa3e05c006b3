#ifndef VRM_COMMON_RANGEMODIFIERIMPL_H
#define VRM_COMMON_RANGEMODIFIERIMPL_H

#include <cstdint>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "common/GenericRangeModifier.h"
#include "common/RangeModifier.h"
#include "common/di_unsigned.h"

namespace vrm {
namespace common {

// What an engine produces frame by frame from Reset(), as plain numbers: the sequence a
// frame plan reproduces without stepping the engine. Wide values are digits, least
// significant first, `width` of them.
struct RangeSequence {
    std::uint32_t mode = 0;  // 0 INCREMENT, 1 DECREMENT, 2 RANDOM, 3 SHUFFLE
    unsigned int width = 0;  // bytes
    unsigned char initial[16] = {};
    unsigned char step[16] = {};  // already negated for DECREMENT
    unsigned char mask[16] = {};
    unsigned char fixedBits[16] = {};
    std::uint32_t stutter = 0;       // each value stands stutter + 1 generator steps
    std::uint32_t shuffleCount = 0;  // SHUFFLE: the permutation's length (at least 1)
    std::uint32_t seed = 0;          // RANDOM: register start
    std::uint32_t randomMask = 0;    // RANDOM: mask of the low 32 bits
    std::uint32_t childStutter = 0;  // generator steps once every childStutter + 1 frames
    std::uint32_t periodLength = 0;  // frames before the sequence restarts (0: 2^32)
    std::uint32_t totalLength = 0;   // frames before a forced restart (0: 2^32)
};

// The per-modifier engine of a range modifier: produces the field's value for each frame.
class RangeModifierImpl {
  public:
    virtual ~RangeModifierImpl();

    // A new engine of the same width serving `owner`.
    virtual std::unique_ptr<RangeModifierImpl> Clone(RangeModifier& owner) const = 0;
    // Back to frame 0.
    virtual void Reset() = 0;
    // One frame further.
    virtual void Next() = 0;
    // The current value, most significant byte first.
    virtual void GetValue(std::vector<unsigned char>& out) = 0;
    // The value of frame `index` (the total count is not taken into account).
    virtual void GetValueAtIndex(std::vector<unsigned char>& out, unsigned int index) = 0;
    // Re-reads the owner's repeat, recycle, child stutter and total counts.
    virtual void SourceUpdate() = 0;
    // True when a value generator exists (the mode is one of the four known ones).
    virtual bool HasGenerator() const = 0;
    // Fills `out` with the sequence this engine produces; false without a value generator.
    virtual bool Describe(RangeSequence& out) const = 0;

  protected:
    RangeModifierImpl() = default;
    RangeModifierImpl(const RangeModifierImpl&) = delete;
    RangeModifierImpl& operator=(const RangeModifierImpl&) = delete;
};

// The engine for a field of N bytes (N = 1..16). It converts the owner's descriptor into a
// value generator and adds the frame bookkeeping: the child repeat factor, the recycle
// period (after which the sequence restarts from the initial value) and the total count
// (after which it restarts too, even mid-period). Nothing here allocates after construction
// except GetValue's first resize of the caller's vector.
template <unsigned int N>
class ConcreteRangeModifierImpl : public RangeModifierImpl {
    static_assert(N >= 1 && N <= 16, "range values are 1 to 16 bytes wide");

  public:
    using value_type = di_unsigned<unsigned int, unsigned char, 8 * N>;

    // A prototype: no owner, no generator. Only Clone is meaningful on it.
    ConcreteRangeModifierImpl() = default;

    // Builds the generator for `owner`'s descriptor and positions it at frame 0. Throws
    // std::out_of_range when the initial value is not N bytes long. A mode outside 0..3
    // gets no generator; Reset, Next and the value queries then throw std::logic_error.
    explicit ConcreteRangeModifierImpl(RangeModifier& owner) : m_owner(&owner) {
        const Generator_3_bll::rangeModifier_s& record = owner.GetRecord();
        if (record.initialValue.data.size() != N) {
            throw std::out_of_range(
                "ConcreteRangeModifierImpl: mismatch between concrete type data size and RangeModifier "
                "size\n");
        }
        value_type initial;
        value_type step;
        value_type mask;
        FromNetwork(record.initialValue.data, initial);
        FromNetwork(record.stepValue.data, step);
        FromNetwork(record.mask.data, mask);
        m_mode = static_cast<std::uint32_t>(record.mode);
        switch (m_mode) {
            case 1:  // DECREMENT: counting by the step's two's complement
                step.negate();
                m_generator.reset(new GenericRangeModifierImpl<N>(initial, step, mask, record.stutterCount));
                break;
            case 0:  // INCREMENT
                m_generator.reset(new GenericRangeModifierImpl<N>(initial, step, mask, record.stutterCount));
                break;
            case 2:  // RANDOM
                m_generator.reset(new GenericRandomModifierImpl<N>(initial, mask, record.stutterCount));
                break;
            case 3:  // SHUFFLE
                m_generator.reset(new GenericShuffleModifierImpl<N>(initial, step, mask, record.stutterCount,
                                                                    record.recycleCount));
                break;
            default:
                break;
        }
        m_recycleCount = record.recycleCount;
        SourceUpdate();
        if (m_generator) Reset();
    }

    std::unique_ptr<RangeModifierImpl> Clone(RangeModifier& owner) const override {
        return std::unique_ptr<RangeModifierImpl>(new ConcreteRangeModifierImpl<N>(owner));
    }

    void Reset() override {
        ResetModifier();
        m_totalLeft = m_totalLength;
    }

    void Next() override {
        Generator("Next");
        --m_periodLeft;
        const std::uint32_t t = m_totalLeft;
        m_totalLeft = t - 1;
        if (m_periodLeft != 0 && t != 1) {
            if (m_childLeft != 0) {
                --m_childLeft;
            } else {
                m_generator->GetNextValue(m_value);
                m_childLeft = m_childStutter;
            }
        } else {
            ResetModifier();
            if (m_totalLeft == 0) m_totalLeft = m_totalLength;
        }
    }

    void GetValue(std::vector<unsigned char>& out) override {
        Generator("GetValue");
        ReplaceBytes(out, m_value);
    }

    void GetValueAtIndex(std::vector<unsigned char>& out, unsigned int index) override {
        GenericRangeModifierInterface<N>& generator = Generator("GetValueAt");
        if (m_periodLength == 0) {
            std::ostringstream text;
            text << "ConcreteRangeModifierImpl: GetValueAt needs a non-zero recycle period (recycle count "
                 << m_recycleCount << "); validate the modifier first\n";
            throw std::logic_error(text.str());
        }
        const std::uint32_t i = index % m_periodLength;
        const auto k = static_cast<unsigned int>(i / (std::uint64_t{m_childStutter} + 1));
        value_type value;
        generator.GetValueAt(k, value);
        ReplaceBytes(out, value);
    }

    void SourceUpdate() override {
        if (m_owner == nullptr) {
            throw std::logic_error(
                "Attempting to call SourceUpdate on ConcreteRangeModifierImpl prototype\n");
        }
        m_childStutter = m_owner->GetChildStutterCount();
        m_periodLength = (m_childStutter + 1) * (m_owner->GetStutterCount() + 1) * m_owner->GetRecycleCount();
        m_totalLength = m_owner->GetTotalCount() * (m_childStutter + 1);
        if (m_totalLength == 0) m_totalLength = m_periodLength;
        m_totalLeft = m_totalLength;
    }

    bool HasGenerator() const override { return m_generator != nullptr; }

    bool Describe(RangeSequence& out) const override {
        if (!m_generator) return false;
        out = RangeSequence{};
        out.mode = m_mode;
        out.width = N;
        if (m_mode == 2) {
            const auto& random = static_cast<const GenericRandomModifierImpl<N>&>(*m_generator);
            out.stutter = random.Stutter();
            out.seed = random.Seed();
            out.randomMask = random.Mask();
        } else {
            const auto& counting = static_cast<const GenericRangeModifierImpl<N>&>(*m_generator);
            for (unsigned int i = 0; i < N; ++i) {
                out.initial[i] = counting.Initial()[i];
                out.step[i] = counting.Step()[i];
                out.mask[i] = counting.Mask()[i];
                out.fixedBits[i] = counting.FixedBits()[i];
            }
            out.stutter = counting.Stutter();
            if (m_mode == 3) out.shuffleCount = static_cast<const GenericShuffleModifierImpl<N>&>(counting).Count();
        }
        out.childStutter = m_childStutter;
        out.periodLength = m_periodLength;
        out.totalLength = m_totalLength;
        return true;
    }

  private:
    // Record bytes (most significant first) into digits (least significant first).
    static void FromNetwork(const std::vector<std::uint8_t>& bytes, value_type& out) {
        out.clear();
        const std::size_t n = bytes.size() < N ? bytes.size() : N;
        for (std::size_t i = 0; i < n; ++i) out[static_cast<unsigned int>(i)] = bytes[bytes.size() - 1 - i];
    }

    static void ReplaceBytes(std::vector<unsigned char>& out, const value_type& v) {
        out.resize(N);
        v.copynetwork(out.data());
    }

    GenericRangeModifierInterface<N>& Generator(const char* operation) const {
        if (!m_generator) {
            std::ostringstream text;
            text << "ConcreteRangeModifierImpl: " << operation;
            if (m_owner == nullptr) {
                text << " called on a prototype\n";
            } else {
                text << " called without a value generator: mode " << m_mode
                     << " is not INCREMENT, DECREMENT, RANDOM or SHUFFLE\n";
            }
            throw std::logic_error(text.str());
        }
        return *m_generator;
    }

    void ResetModifier() {
        GenericRangeModifierInterface<N>& generator = Generator("Reset");
        m_periodLeft = m_periodLength;
        m_childLeft = m_childStutter;
        generator.GetValueAt(0, m_value);
        generator.SetReadCursor(0);
    }

    RangeModifier* m_owner = nullptr;
    std::unique_ptr<GenericRangeModifierInterface<N>> m_generator;
    value_type m_value;
    std::uint32_t m_childStutter = 0;
    std::uint32_t m_childLeft = 0;
    std::uint32_t m_periodLeft = 0;
    std::uint32_t m_totalLeft = 0;
    std::uint32_t m_periodLength = 0;
    std::uint32_t m_recycleCount = 0;
    std::uint32_t m_totalLength = 0;
    std::uint32_t m_mode = 0;
};

extern template class ConcreteRangeModifierImpl<1>;
extern template class ConcreteRangeModifierImpl<2>;
extern template class ConcreteRangeModifierImpl<3>;
extern template class ConcreteRangeModifierImpl<4>;
extern template class ConcreteRangeModifierImpl<5>;
extern template class ConcreteRangeModifierImpl<6>;
extern template class ConcreteRangeModifierImpl<7>;
extern template class ConcreteRangeModifierImpl<8>;
extern template class ConcreteRangeModifierImpl<9>;
extern template class ConcreteRangeModifierImpl<10>;
extern template class ConcreteRangeModifierImpl<11>;
extern template class ConcreteRangeModifierImpl<12>;
extern template class ConcreteRangeModifierImpl<13>;
extern template class ConcreteRangeModifierImpl<14>;
extern template class ConcreteRangeModifierImpl<15>;
extern template class ConcreteRangeModifierImpl<16>;

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_RANGEMODIFIERIMPL_H
