// Per-frame operations must not allocate: the heap is metered while they run.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "RangeReference.h"
#include "common/FramePlan.h"
#include "common/RangeModifier.h"
#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll_records.h"
#include "support/AllocationMeter.h"

namespace {

using Bytes = std::vector<unsigned char>;

// Bytes taken from the heap while `f` runs, by any thread.
template <class F>
std::size_t AllocationsOf(F&& f) {
    return alloc_meter::peak_of(f);
}

// Frame operations of a modifier, its packer and its counting, shuffle or random generator,
// on an aligned and an unaligned field; index queries far into a long period.
TEST(NoAllocation, ModifierFrameOperations) {
    for (int mode : {0, 2, 3}) {
        for (unsigned int offset : {96u, 99u}) {
            vrm::common::RangeModifier m(
                range_reference::MakeRange(Bytes(16, 1), Bytes(16, 3), Bytes(16, 0xFF), mode, 100000000, 1));
            m.SetFieldParams(offset, 128);
            Bytes frame(128, 0), out;
            out.reserve(64);
            m.ModifyBytes(frame, false);  // the value buffer gets its size
            EXPECT_EQ(AllocationsOf([&] {
                          for (unsigned int i = 0; i < 100; ++i) {
                              m.Next();
                              m.ModifyBytes(frame, i % 2 == 0);
                              m.ModifyBytesAtIndex(frame, i * 977777);
                              m.GetBytes(out, false);
                              m.ZeroBytes(frame);
                              m.ZeroBytes(frame, 0, 1);
                          }
                      }),
                      0u)
                << mode << " " << offset;
        }
    }
}

// Stamping through a frame plan, from several threads on one plan at once: no allocation,
// and every thread's frames equal those stamped alone.
TEST(NoAllocation, FramePlanStampFromThreads) {
    Generator_3_bll::streamBlock_s block;
    // A long period: values computed, not looked up.
    auto counter = range_reference::MakeRange({0, 0, 0, 9}, {0, 0, 0, 3}, {0x0F, 0xFF, 0xFF, 0xFF}, 0, 100000, 0);
    counter.modIndex = 1;
    Generator_3_bll::rangeModifier_s random = counter;
    random.modIndex = 2;
    random.mode = Generator_3_bll::configModMode_t::RANDOM;
    random.recycleCount = 7;
    block.rangeModifiers = {counter, random};
    block.modLinks = {{2, {1}}};
    vrm::common::StreamBlockModifiers mods(block);
    ASSERT_TRUE(mods.Validate(nullptr));
    mods.SetFieldParams(1, 3, 32);
    mods.SetFieldParams(2, 100, 32);
    const vrm::common::FramePlan plan = mods.MakeFramePlan(Bytes(24, 0x55));

    constexpr std::size_t kFrames = 5000;
    Bytes alone(kFrames * 24), together(kFrames * 24);
    plan.Stamp(1u << 30, kFrames, alone.data(), 24);
    std::size_t allocations = 1;
    std::thread other([&] { plan.Stamp((1u << 30) + kFrames / 2, kFrames / 2, together.data() + kFrames / 2 * 24, 24); });
    allocations = AllocationsOf([&] { plan.Stamp(1u << 30, kFrames / 2, together.data(), 24); });
    other.join();
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(alone, together);
}

}  // namespace
