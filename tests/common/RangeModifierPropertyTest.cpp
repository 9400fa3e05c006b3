#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "RangeReference.h"
#include "common/RangeModifier.h"

namespace {

using range_reference::Bytes;
using vrm::common::RangeModifier;

Bytes RandomBytes(std::mt19937& rng, std::size_t n) {
    Bytes b(n);
    for (auto& c : b) c = static_cast<unsigned char>(rng());
    return b;
}

// A random mask: all ones, a random byte pattern, or a contiguous run of low bits.
Bytes RandomMask(std::mt19937& rng, std::size_t n) {
    const unsigned int kind = rng() % 3;
    if (kind == 0) return Bytes(n, 0xFF);
    if (kind == 1) return RandomBytes(rng, n);
    const unsigned int bits = 1 + rng() % (8 * n);
    Bytes m(n, 0);
    for (unsigned int i = 0; i < bits; ++i) m[n - 1 - i / 8] |= static_cast<unsigned char>(1u << (i % 8));
    return m;
}

struct Descriptor {
    Generator_3_bll::rangeModifier_s record;
    unsigned int childStutter, total, absoluteBitOffset, bitLength;
    std::size_t frameSize;
};

Descriptor RandomDescriptor(std::mt19937& rng) {
    Descriptor d;
    const std::size_t n = 1 + rng() % 16;
    const int mode = static_cast<int>(rng() % 4);
    Bytes step = RandomBytes(rng, n);
    if (rng() % 2 == 0) {  // a small step in the low bytes, as counters usually have
        step.assign(n, 0);
        step[n - 1] = static_cast<unsigned char>(1 + rng() % 5);
    }
    d.record = range_reference::MakeRange(RandomBytes(rng, n), step, RandomMask(rng, n), mode, 1 + rng() % 12,
                                          rng() % 3, rng() % 4 != 0);
    d.record.offset = static_cast<std::uint16_t>(rng() % 3);
    d.childStutter = rng() % 3;
    // A total count, for non-stream modifiers a multiple of the period as validation wants.
    d.total = rng() % 3 != 0 ? 0 : (1 + rng() % 4) * (d.record.useStream ? 1 + rng() % 5 : d.record.recycleCount * (d.record.stutterCount + 1));
    const unsigned int byteOffset = rng() % 5;
    const unsigned int bitInByte = rng() % 8;
    d.absoluteBitOffset = 8 * byteOffset + bitInByte;
    // A field long enough for the value at its relative offset, sometimes with spare bits.
    d.bitLength = 8 * static_cast<unsigned int>(d.record.offset + n) - bitInByte + rng() % 8;
    d.frameSize = byteOffset + d.record.offset + n + 2 + rng() % 4;
    return d;
}

std::string Describe(const Descriptor& d) {
    const auto& r = d.record;
    return "mode " + std::to_string(static_cast<int>(r.mode)) + " width " +
           std::to_string(r.initialValue.data.size()) + " stream " + std::to_string(r.useStream) +
           " recycle " + std::to_string(r.recycleCount) + " stutter " + std::to_string(r.stutterCount) +
           " child " + std::to_string(d.childStutter) + " total " + std::to_string(d.total) + " bit offset " +
           std::to_string(d.absoluteBitOffset) + " bit length " + std::to_string(d.bitLength) + " mask " +
           testing::PrintToString(r.mask.data);
}

TEST(RangeModifierProperty, RandomDescriptors) {
    std::mt19937 rng(20240611);
    for (int round = 0; round < 600; ++round) {
        const Descriptor d = RandomDescriptor(rng);
        const std::string label = Describe(d);
        RangeModifier m(d.record);
        m.SetTotalCount(d.total);
        ASSERT_TRUE(m.Validate(nullptr)) << label;
        m.UpdateChildStutterCount(d.childStutter);
        const range_reference::Counts counts{d.childStutter, d.total};
        ASSERT_NO_THROW(m.SetFieldParams(d.absoluteBitOffset, d.bitLength)) << label;

        // The bits the packer owns: those that ZeroBytes clears in an all-ones frame.
        Bytes owned(d.frameSize, 0xFF);
        m.ZeroBytes(owned);
        for (auto& b : owned) b = static_cast<unsigned char>(~b);

        const unsigned int period = m.GetEffectiveRecycleCount();
        ASSERT_GT(period, 0u) << label;
        m.Reset();
        std::vector<Bytes> values;
        Bytes value;
        const unsigned int frames = 2 * period + 3;
        for (unsigned int f = 0; f < frames; ++f) {
            m.GetValue(value);
            values.push_back(value);
            ASSERT_EQ(value, range_reference::SequentialFrame(d.record, counts, f))
                << label << " " << f;

            const Bytes before = RandomBytes(rng, d.frameSize);
            Bytes frame = before;
            m.ModifyBytes(frame, f % 2 == 0);
            for (std::size_t i = 0; i < frame.size(); ++i) {
                ASSERT_EQ((frame[i] ^ before[i]) & ~owned[i], 0) << label << " frame " << f << " byte " << i;
            }
            if (f % 2 == 0) {  // toggling twice restores the frame
                m.ModifyBytes(frame, true);
                ASSERT_EQ(frame, before) << label << " frame " << f;
            }
            m.Next();
        }
        for (unsigned int f = 0; f + period < frames; ++f) {
            ASSERT_EQ(values[f], values[f + period]) << label << " frame " << f;
        }
        // Indexed values count from initial AND mask: they differ from the stepped ones where a
        // carry crosses a masked-out bit or a total count cuts the sequence short.
        for (unsigned int f = 0; f < frames; ++f) {
            m.GetValueAt(value, f);
            ASSERT_EQ(value, range_reference::IndexedFrame(d.record, counts, f)) << label << " index " << f;
        }
    }
}

}  // namespace
