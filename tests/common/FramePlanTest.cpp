// The frame plan against the per-frame path, on random blocks: every mode, widths 1..16,
// masks with holes, initial values with bits outside the mask, stutter, recycle and total
// counts, tables, chains with several children and parents, stream and non-stream packing,
// any bit offset and length, frames shorter than a word.

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Thrown.h"
#include "RangeReference.h"
#include "common/FramePlan.h"
#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll_records.h"

namespace {

using Generator_3_bll::configModMode_t;
using Generator_3_bll::modifierData_s;
using Generator_3_bll::modLinkDesc_s;
using Generator_3_bll::rangeModifier_s;
using Generator_3_bll::streamBlock_s;
using Generator_3_bll::tableModifier_s;
using vrm::common::FramePlan;
using vrm::common::StreamBlockModifiers;
using range_reference::Bytes;
using range_reference::MakeRange;
using range_reference::MakeTable;

struct RandomBlock {
    streamBlock_s block;
    std::vector<unsigned int> totals;  // per modifier, in record order (ranges, then tables)
    std::size_t frameLength = 0;
    Bytes frameTemplate;
};

class Maker {
  public:
    explicit Maker(unsigned int seed) : m_rng(seed) {}

    unsigned int Below(unsigned int n) { return static_cast<unsigned int>(m_rng() % n); }

    Bytes RandomBytes(unsigned int n, unsigned int smallChance) {
        Bytes b(n);
        for (auto& x : b) x = static_cast<unsigned char>(m_rng());
        if (Below(smallChance) == 0) {  // a small step: lots of values between carries
            std::fill(b.begin(), b.end(), 0);
            b.back() = static_cast<unsigned char>(1 + Below(3));
        }
        return b;
    }

    Bytes Mask(unsigned int n) {
        Bytes m(n, 0xFF);
        switch (Below(4)) {
            case 0: break;                                   // full
            case 1: m[0] = 0x00; if (n > 1) m[1] = 0x3F; break;  // high bits fixed
            case 2: for (auto& x : m) x = static_cast<unsigned char>(m_rng()); break;  // holes
            default: m.back() = 0xF0; break;                 // low bits fixed
        }
        return m;
    }

    RandomBlock Block() {
        RandomBlock r;
        const bool stream = Below(4) != 0;
        const unsigned int count = 1 + Below(5);
        r.frameLength = Below(5) == 0 ? 1 + Below(7) : 8 + Below(72);
        for (unsigned int i = 0; i < count; ++i) {
            const unsigned int maxWidth = r.frameLength < 16 ? static_cast<unsigned int>(r.frameLength) : 16;
            const unsigned int width = 1 + Below(maxWidth);
            const unsigned int modIndex = 10 + i * 3;
            if (Below(4) == 0) {
                tableModifier_s t;
                t.modIndex = modIndex;
                t.offsetReference = "t" + std::to_string(i);
                const unsigned int n = 1 + Below(5);
                for (unsigned int k = 0; k < n; ++k) t.data.push_back(modifierData_s{RandomBytes(width, 100)});
                t.stutterCount = Below(3);
                t.useStream = stream;
                r.block.tableModifiers.push_back(t);
            } else {
                rangeModifier_s m;
                m.modIndex = modIndex;
                m.offsetReference = "r" + std::to_string(i);
                m.initialValue.data = RandomBytes(width, 1000);
                m.stepValue.data = RandomBytes(width, 2);
                m.mask.data = Mask(width);
                m.mode = static_cast<configModMode_t>(Below(4));
                m.recycleCount = Below(4) == 0 ? 4000 + Below(200) : Below(8);
                m.stutterCount = Below(4) == 0 ? Below(3) : 0;
                m.useStream = stream;
                r.block.rangeModifiers.push_back(m);
            }
        }
        for (unsigned int i = 0; i < count; ++i) r.totals.push_back(Below(3) == 0 ? 1 + Below(40) : 0);
        // Links: each later modifier may get one or two earlier parents.
        std::vector<unsigned int> indexes;
        for (const auto& m : r.block.rangeModifiers) indexes.push_back(m.modIndex);
        for (const auto& t : r.block.tableModifiers) indexes.push_back(t.modIndex);
        std::sort(indexes.begin(), indexes.end());
        for (unsigned int i = 1; i < indexes.size(); ++i) {
            const unsigned int parents = Below(3);
            for (unsigned int p = 0; p < parents; ++p) {
                const unsigned int parent = indexes[Below(i)];
                r.block.modLinks.push_back(modLinkDesc_s{parent, {indexes[i]}});
            }
        }
        r.frameTemplate = RandomBytes(static_cast<unsigned int>(r.frameLength), 1000);
        return r;
    }

    // Places every modifier on a random field of the frame that holds it.
    void Place(StreamBlockModifiers& mods, std::size_t frameLength) {
        for (std::size_t i = 0; i < mods.Size(); ++i) {
            auto& m = mods.At(i);
            const unsigned int width = m.GetDataSizeInBytes();
            for (int attempt = 0;; ++attempt) {
                const unsigned int frameBits = static_cast<unsigned int>(frameLength * 8);
                const unsigned int bitLength = 1 + Below(std::min(frameBits, width * 8 + 12));
                const unsigned int bitOffset = Below(frameBits - bitLength + 1);
                try {
                    m.SetFieldParams(bitOffset, bitLength);
                    std::vector<unsigned char> probe(frameLength, 0);
                    m.ZeroBytes(probe);
                    break;
                } catch (const std::exception&) {
                    if (attempt > 200) throw;
                }
            }
        }
    }

  private:
    std::mt19937_64 m_rng;
};

// Frames first .. first + count - 1 by Reset, Next and ModifyBytes.
std::vector<Bytes> PerFrame(StreamBlockModifiers& mods, const Bytes& frameTemplate, std::uint64_t first,
                            std::size_t count) {
    mods.Reset();
    for (std::uint64_t i = 0; i < first; ++i) mods.Next();
    std::vector<Bytes> frames;
    for (std::size_t k = 0; k < count; ++k) {
        Bytes frame = frameTemplate;
        mods.ModifyBytes(frame);
        frames.push_back(frame);
        mods.Next();
    }
    return frames;
}

TEST(FramePlan, StampsExactlyThePerFrameBytesOnRandomBlocks) {
    int compared = 0;
    for (unsigned int seed = 1; seed <= 600; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Maker maker(seed);
        RandomBlock r = maker.Block();
        StreamBlockModifiers mods(r.block);
        for (std::size_t i = 0; i < r.totals.size(); ++i) mods.At(i).SetTotalCount(r.totals[i]);
        if (!mods.Validate(nullptr)) continue;
        maker.Place(mods, r.frameLength);
        const FramePlan plan = mods.MakeFramePlan(r.frameTemplate);
        ASSERT_EQ(plan.FrameLength(), r.frameLength);

        const std::size_t horizon = 300;
        const std::vector<Bytes> expected = PerFrame(mods, r.frameTemplate, 0, horizon);
        // Stamp slices at varied starts and strides; bytes between frames stay untouched.
        const std::uint64_t starts[] = {0, 1, maker.Below(150), maker.Below(250)};
        for (const std::uint64_t first : starts) {
            const std::size_t count = horizon - static_cast<std::size_t>(first);
            const std::size_t stride = r.frameLength + maker.Below(3) * 5;
            Bytes out(count * stride, 0xA5);
            plan.Stamp(first, count, out.data(), stride);
            for (std::size_t k = 0; k < count; ++k) {
                const Bytes got(out.begin() + static_cast<long>(k * stride),
                                out.begin() + static_cast<long>(k * stride + r.frameLength));
                ASSERT_EQ(got, expected[first + k]) << "frame " << first + k << " stamped from " << first;
                for (std::size_t g = r.frameLength; g < stride; ++g) ASSERT_EQ(out[k * stride + g], 0xA5);
            }
        }
        // The cycle: frames repeat after CycleLength, also far out.
        const std::uint64_t cycle = plan.CycleLength();
        if (cycle != 0 && cycle < (std::uint64_t{1} << 50)) {
            const std::uint64_t far = cycle * 1000003 + 7;
            Bytes a(r.frameLength * 4), b(r.frameLength * 4);
            plan.Stamp(7, 4, a.data(), r.frameLength);
            plan.Stamp(far, 4, b.data(), r.frameLength);
            ASSERT_EQ(a, b) << "cycle " << cycle;
        }
        // Beyond 2^32 frames a start lands where stamping through would: the sequences restart at
        // the period boundaries the per-frame path's 32-bit counters reach.
        const std::uint64_t beyond = (std::uint64_t{1} << 32) + maker.Below(1000);
        Bytes through(r.frameLength * 64), direct(r.frameLength * 16);
        plan.Stamp(beyond - 48, 64, through.data(), r.frameLength);
        plan.Stamp(beyond, 16, direct.data(), r.frameLength);
        ASSERT_TRUE(
            std::equal(direct.begin(), direct.end(), through.begin() + static_cast<long>(48 * r.frameLength)));
        ++compared;
    }
    EXPECT_GT(compared, 300);
}

// Starting anywhere, also inside a run that a total count cuts short, and in a table whose
// total count spans several walks through its list without a short cycle.
TEST(FramePlan, EveryStartOfRunsCutByTotalCounts) {
    streamBlock_s block;
    block.rangeModifiers = {MakeRange({0x10}, {1}, {0xFF}, 0, 5, 2), MakeRange({0x10}, {1}, {0xFF}, 0, 5, 4)};
    block.rangeModifiers[0].modIndex = 1;
    block.rangeModifiers[1].modIndex = 3;  // a total count shorter than one run
    block.tableModifiers = {MakeTable({{0xA0}, {0xB0}, {0xC0}}, 1), MakeTable({{1}, {2}, {3}}, 0)};
    block.tableModifiers[0].modIndex = 2;
    block.tableModifiers[1].modIndex = 4;
    StreamBlockModifiers mods(block);
    mods.At(0).SetTotalCount(4);
    mods.At(1).SetTotalCount(5);
    mods.At(2).SetTotalCount(3);
    mods.At(3).SetTotalCount(10000);
    ASSERT_TRUE(mods.Validate(nullptr));
    mods.SetFieldParams(1, 0, 8);
    mods.SetFieldParams(2, 8, 8);
    mods.SetFieldParams(3, 16, 8);
    mods.SetFieldParams(4, 24, 8);
    const Bytes frameTemplate(4, 0);
    const FramePlan plan = mods.MakeFramePlan(frameTemplate);
    const std::vector<Bytes> expected = PerFrame(mods, frameTemplate, 0, 60);
    for (std::uint64_t first = 0; first < 40; ++first) {
        Bytes out(4 * 20);
        plan.Stamp(first, 20, out.data(), 4);
        for (std::size_t k = 0; k < 20; ++k)
            ASSERT_EQ(Bytes(out.begin() + 4 * k, out.begin() + 4 * k + 4), expected[first + k]) << first << "+" << k;
    }
}

TEST(FramePlan, RefusesWhatThePerFramePathRefuses) {
    streamBlock_s block;
    block.rangeModifiers = {MakeRange({1, 2}, {0, 1}, {0xFF, 0xFF}, 0, 4, 0)};
    block.rangeModifiers[0].modIndex = 1;
    StreamBlockModifiers mods(block);
    ASSERT_TRUE(mods.Validate(nullptr));
    const Bytes frame(16, 0);
    EXPECT_EQ(Thrown<std::exception>([&] { (void)mods.MakeFramePlan(frame); }),
              "Attempting to use modifier without setting field parameters\n");
    mods.SetFieldParams(1, 14 * 8, 16);  // the window lies beyond a frame of 15 bytes
    EXPECT_EQ(Thrown<std::exception>([&] { (void)mods.MakeFramePlan(Bytes(15, 0)); }),
              "Input byte array is not large enough to accomodate modifier: 15 (array size) . Absolute offset: 14. "
              "Field size: 2.\n");
    mods.SetFieldParams(1, 0, 16);
    const FramePlan plan = mods.MakeFramePlan(frame);
    Bytes out(64);
    EXPECT_THROW(plan.Stamp(0, 2, out.data(), 15), std::invalid_argument);
    EXPECT_NO_THROW(plan.Stamp(0, 1, out.data(), 0));
}

}  // namespace
