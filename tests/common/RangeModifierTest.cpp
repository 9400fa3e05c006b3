#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Thrown.h"
#include "RangeReference.h"
#include "common/RangeModifier.h"
#include "common/RangeModifierImpl.h"
#include "common/RangeModifierImplFactory.h"

namespace {

using Generator_3_bll::rangeModifier_s;
using range_reference::Bytes;
using range_reference::Counts;
using range_reference::MakeRange;
using vrm::common::RangeModifier;
using vrm::common::RangeModifierImplFactory;

// Each check in order with its exact line; a recycle count of 0 becomes 1 only when valid.
TEST(RangeModifierValidate, EachCheckInOrderWithItsExactLine) {
    const Bytes b4{0, 0, 0, 1};
    const Bytes b3{0, 0, 1};
    const std::string total = "Streamblocks with stream generation disabled need device modifiers to have total "
                              "device count as multiple of (recycle count * (repeat count + 1)). Modifier ip.src, ";
    const struct {
        const char* label;
        rangeModifier_s record;
        unsigned int total;
        bool valid;
        std::string text;
    } cases[] = {
        {"mask shorter, mode also invalid", MakeRange(b4, b4, b3, 7, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src initial, step and mask value do not match.\n"},
        {"step shorter", MakeRange(b4, b3, b4, 0, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src initial, step and mask value do not match.\n"},
        {"all empty", MakeRange({}, {}, {}, 0, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src initial value is empty.\n"},
        {"mode 4", MakeRange(b4, b4, b4, 4, 0, 0, true, "ip.src"), 0, false, "Modifier ip.src mode is invalid.\n"},
        {"negative mode", MakeRange(b4, b4, b4, -1, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src mode is invalid.\n"},
        {"mode 3 passes", MakeRange(b4, b4, b4, 3, 1, 0, true, "ip.src"), 0, true, ""},
        {"total not a multiple", MakeRange(b4, b4, b4, 0, 4, 0, false, "ip.src"), 10, false,
         total + "Total count 10, Recycle count 4, Repeat count 0.\n"},
        {"total a multiple", MakeRange(b4, b4, b4, 0, 3, 1, false, "ip.src"), 12, true, ""},
        {"stream skips the total test", MakeRange(b4, b4, b4, 0, 4, 0, true, "ip.src"), 10, true, ""},
        {"no total count", MakeRange(b4, b4, b4, 0, 4, 0, false, "ip.src"), 0, true, ""},
        {"recycle 0 skips the total test", MakeRange(b4, b4, b4, 0, 0, 0, false, "ip.src"), 7, true, ""},
        {"product wraps to 0", MakeRange(b4, b4, b4, 0, 0x80000000u, 1, false, "ip.src"), 7, false,
         total + "Total count 7, Recycle count 2147483648, Repeat count 1.\n"},
    };
    for (const auto& c : cases) {
        RangeModifier m(c.record);
        m.SetTotalCount(c.total);
        std::ostringstream errors;
        EXPECT_EQ(m.Validate(&errors), c.valid) << c.label;
        EXPECT_EQ(errors.str(), c.text) << c.label;
        const unsigned int recycle = c.record.recycleCount;
        EXPECT_EQ(m.GetRecycleCount(), c.valid && recycle == 0 ? 1u : recycle) << c.label;
        EXPECT_EQ(m.Validate(nullptr), c.valid) << c.label;
    }
}

TEST(RangeModifier, StepAndMaskByteIndexes) {
    const Bytes ones8(8, 0xFF);
    const struct {
        Bytes step, mask;
        bool stream;
        unsigned int stepIndex, msbMaskIndex, ls, ms;
    } cases[] = {
        {{0, 0, 0, 0, 0, 1, 0, 0}, ones8, true, 5, 0, 5, 5},
        {{0, 0, 0, 0, 1, 0, 0, 0}, ones8, true, 4, 0, 4, 4},
        {{0, 0, 1, 0, 0, 0, 0, 0}, ones8, true, 3, 0, 2, 2},
        {{0, 0, 0, 0, 0, 0, 0, 0}, ones8, true, 7, 0, 0, 0},
        {{0, 0, 0, 0, 0, 1, 0, 0}, ones8, false, 5, 2, 5, 5},
        {{0, 0, 0, 0, 0, 1, 0, 0}, {0, 0, 0, 0, 0, 0, 0x0F, 0}, false, 5, 6, 5, 5},
        {{0, 0, 0, 0, 0, 0, 0, 1}, {0xFF, 0, 0, 0, 0, 0, 0, 0}, false, 7, 8, 7, 7},
        {{0, 0, 0, 0, 0, 0, 0, 1}, {0xFF, 0, 0, 0, 0, 0, 0, 0}, true, 7, 0, 7, 7},
        {{0, 0}, {0xFF, 0xFF}, true, 1, 0, 0, 0},
        {{0, 1}, {0, 0}, false, 1, 2, 1, 1},
        {{1, 0, 0}, {0, 0, 0x10}, false, 2, 2, 0, 0},
        {{0, 0, 0, 1}, {0, 0, 0, 0}, true, 3, 4, 3, 3},
        {{1, 0, 0, 0, 0}, {0, 0, 0, 0, 1}, false, 3, 4, 0, 0},
    };
    for (const auto& c : cases) {
        RangeModifier m(MakeRange(Bytes(c.step.size(), 0), c.step, c.mask, 0, 1, 0, c.stream));
        const std::string label = ::testing::PrintToString(c.step) + " " + ::testing::PrintToString(c.mask);
        EXPECT_EQ(m.GetStepByteIndex(), c.stepIndex) << label;
        EXPECT_EQ(m.GetMsbMaskByteIndex(), c.msbMaskIndex) << label;
        EXPECT_EQ(m.GetLSStepByteIndex(), c.ls) << label;
        EXPECT_EQ(m.GetMSStepByteIndex(), c.ms) << label;
    }
}

// The closed forms are checked on random descriptors in RangeModifierPropertyTest; these
// pin the closed forms themselves.
TEST(RangeModifierSequence, SmallExamples) {
    const struct {
        rangeModifier_s record;
        Counts counts;
        std::vector<unsigned int> expected;  // one-byte values
    } cases[] = {
        {MakeRange({10}, {2}, {0xFF}, 0, 3, 0), {}, {10, 12, 14, 10, 12, 14, 10}},
        {MakeRange({10}, {2}, {0xFF}, 0, 3, 0), {0, 5}, {10, 12, 14, 10, 12, 10, 12, 14}},
        {MakeRange({10}, {2}, {0xFF}, 0, 2, 0), {1, 0}, {10, 10, 12, 12, 10, 10}},
        {MakeRange({10}, {2}, {0xFF}, 1, 3, 1), {}, {10, 10, 8, 8, 6, 6, 10}},
        {MakeRange({0x10}, {1}, {0xFF}, 0, 100, 1), {}, {0x10, 0x10, 0x11, 0x11, 0x12}},
        {MakeRange({0}, {1}, {0xFF}, 3, 5, 0), {}, {0, 3, 2, 1, 4, 0}},
        {MakeRange({0}, {1}, {0xFF}, 3, 6, 0), {}, {0, 4, 2, 3, 1, 5, 0}},
        {MakeRange({7}, {1}, {0xFF}, 3, 1, 0), {}, {7, 7, 7}},
        {MakeRange({0x0F}, {1}, {0xF0}, 0, 100, 0), {}, {0x0F, 0x1F, 0x1F}},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        RangeModifier m(cases[i].record);
        m.SetTotalCount(cases[i].counts.total);
        m.UpdateChildStutterCount(cases[i].counts.childStutter);
        m.Reset();
        Bytes value;
        for (std::size_t f = 0; f < cases[i].expected.size(); ++f) {
            m.GetValue(value);
            ASSERT_EQ(value, Bytes{static_cast<unsigned char>(cases[i].expected[f])}) << i << " frame " << f;
            m.Next();
        }
    }
}

// An engine for each width 1..16 and each of the four modes; without one every operation fails
// with a text that names the width or the mode, and leaves the value alone.
TEST(RangeModifierImplFactory, OneEnginePerWidthOneToSixteenAndItsErrors) {
    auto expectNoGenerator = [](RangeModifier& m, const std::string& fragment) {
        Bytes value{9};
        EXPECT_FALSE(m.HasGenerator()) << fragment;
        const std::function<void()> ops[] = {[&] { m.Reset(); }, [&] { m.Next(); }, [&] { m.GetValue(value); },
                                             [&] { m.GetValueAt(value, 3); }};
        for (const auto& op : ops) {
            const std::string text = Thrown(op);
            EXPECT_NE(text.find(fragment), std::string::npos) << text;
        }
        EXPECT_EQ(value, Bytes{9}) << fragment;
    };
    for (unsigned int n = 0; n <= 18; ++n) {
        RangeModifier m(MakeRange(Bytes(n, 1), Bytes(n, 0), Bytes(n, 0xFF), 0, 1, 0));
        const bool supported = n >= 1 && n <= 16;
        EXPECT_EQ(RangeModifierImplFactory::Instance().Create(m) != nullptr, supported) << n;
        if (supported) {
            EXPECT_TRUE(m.HasGenerator()) << n;
        } else {
            expectNoGenerator(m, "width of " + std::to_string(n) + " bytes");
        }
    }
    RangeModifier mode4(MakeRange({1}, {1}, {0xFF}, 4, 1, 0)), none;
    RangeModifier modeMinus3(MakeRange({1}, {1}, {0xFF}, -3, 1, 0));
    expectNoGenerator(mode4, "mode 4");
    expectNoGenerator(modeMinus3, "mode 4294967293");
    expectNoGenerator(none, "width of 0 bytes");

    RangeModifier m(MakeRange({1, 2}, {0, 1}, {0xFF, 0xFF}, 0, 1, 0));
    EXPECT_EQ(Thrown<std::out_of_range>([&] { vrm::common::ConcreteRangeModifierImpl<4> engine(m); }),
              "ConcreteRangeModifierImpl: mismatch between concrete type data size and RangeModifier size\n");
    vrm::common::ConcreteRangeModifierImpl<2> prototype;
    EXPECT_EQ(Thrown([&] { prototype.SourceUpdate(); }),
              "Attempting to call SourceUpdate on ConcreteRangeModifierImpl prototype\n");
    Bytes value;
    EXPECT_THROW(prototype.GetValue(value), std::logic_error);
    EXPECT_NE(prototype.Clone(m), nullptr);
}

// A recycle count of 0 makes an index query an error until validation raises it; Update
// rebuilds the engine (back at frame 0) only when validation passes.
TEST(RangeModifier, UpdateRebuildsOnlyOnSuccess) {
    RangeModifier zero(MakeRange({1}, {1}, {0xFF}, 0, 0, 0));
    Bytes value;
    EXPECT_THROW(zero.GetValueAt(value, 5), std::logic_error);
    ASSERT_TRUE(zero.Update(nullptr));
    zero.GetValueAt(value, 5);
    EXPECT_EQ(value, Bytes{1});

    RangeModifier m(MakeRange({5}, {1}, {0xFF}, 0, 10, 0));
    m.Next();
    m.Next();
    m.GetValue(value);
    EXPECT_EQ(value, Bytes{7});
    m.SetStutterCount(1);
    ASSERT_TRUE(m.Update(nullptr));
    m.GetValue(value);
    EXPECT_EQ(value, Bytes{5});
    m.Next();
    m.GetValue(value);
    EXPECT_EQ(value, Bytes{5});
    m.SetOffsetReference("x");
    m.SetTotalCount(3);
    m.SetEnableStream(false);
    std::ostringstream errors;
    EXPECT_FALSE(m.Update(&errors));
    EXPECT_NE(errors.str().find("Modifier x, Total count 3"), std::string::npos);
    m.Next();
    m.GetValue(value);
    EXPECT_EQ(value, Bytes{6});
}

// SetFieldParams with the range information: a stream modifier keeps its width, a non-stream
// one wider than four bytes packs the four bytes ending at its step byte, and the mask's first
// significant bit (byte 2, four leading zeros) trims the field.
TEST(RangeModifier, PackingFollowsTheStepAndMaskBytes) {
    const Bytes eight = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    const Bytes mask = {0, 0, 0x0F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const Bytes step5 = {0, 0, 0, 0, 0, 1, 0, 0};
    const struct {
        rangeModifier_s record;
        unsigned int bitOffset, bitLength;
        Bytes packed;  // a zero frame after ModifyBytes
        unsigned int fieldBitLength;
    } cases[] = {
        {MakeRange(eight, step5, mask, 0, 1, 0, true), 0, 64, {0, 0, 0x03, 0x44, 0x55, 0x66, 0x77, 0x88}, 64},
        {MakeRange(eight, step5, mask, 0, 1, 0, false), 0, 64, {0, 0, 0x03, 0x44, 0x55, 0x66, 0, 0}, 48},
        {MakeRange(eight, {0, 0, 1, 0, 0, 0, 0, 0}, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}, 0, 1, 0, false), 0, 64,
         {0x11, 0x22, 0x33, 0x44, 0, 0, 0, 0}, 32},
        {MakeRange(eight, {0, 0, 0, 0, 0, 0, 0, 1}, Bytes(8, 0xFF), 0, 1, 0, false), 0, 64,
         {0, 0, 0, 0, 0x55, 0x66, 0x77, 0x88}, 64},
        {MakeRange({0xAB, 0xCD}, {0, 1}, {0xFF, 0xFF}, 0, 1, 0, false), 4, 16, {0x0A, 0xBC, 0xD0}, 16},
    };
    for (const auto& c : cases) {
        RangeModifier m(c.record);
        m.SetFieldParams(c.bitOffset, c.bitLength);
        Bytes frame(c.packed.size(), 0);
        m.ModifyBytes(frame, false);
        EXPECT_EQ(frame, c.packed);
        EXPECT_EQ(m.GetBitLength(), c.fieldBitLength);
        EXPECT_EQ(m.GetAbsoluteBitOffset(), c.bitOffset);
    }
}

TEST(RangeModifier, MakeVfdCompatibleOnTheThreeStepPatterns) {
    const Bytes init{1, 2, 3, 4, 5, 6, 7, 8};
    const Bytes mask{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    const struct {
        Bytes step;
        bool result;
        Bytes initial, stepOut, maskOut;
        unsigned int offset;
    } cases[] = {
        {{0, 0, 0, 0, 0, 0, 0, 1}, true, {5, 6, 7, 8}, {0, 0, 0, 1}, {0x55, 0x66, 0x77, 0x88}, 14},
        {{0, 0, 1, 0, 0, 0, 0, 1}, false, init, {0, 0, 1, 0, 0, 0, 0, 1}, mask, 10},
        {{0, 0, 0, 1, 0, 0, 0, 1}, false, init, {0, 0, 0, 1, 0, 0, 0, 1}, mask, 10},  // five bytes apart
        {{0, 1, 0, 0, 0, 0, 0, 0}, true, {1, 2}, {0, 1}, {0x11, 0x22}, 10},
    };
    for (const auto& c : cases) {
        rangeModifier_s r = MakeRange(init, c.step, mask, 0, 4, 0);
        r.offset = 10;
        RangeModifier m(r);
        m.SetFieldParams(0, 8 * 32);
        EXPECT_EQ(m.MakeVfdCompatible(), c.result) << c.offset;
        EXPECT_EQ(m.GetRecord().initialValue.data, c.initial);
        EXPECT_EQ(m.GetRecord().stepValue.data, c.stepOut);
        EXPECT_EQ(m.GetRecord().mask.data, c.maskOut);
        EXPECT_EQ(m.GetRelativeOffset(), c.offset);
        // The value lands at its (moved) offset under its mask.
        Bytes frame(32, 0), expected(32, 0);
        for (std::size_t b = 0; b < c.initial.size(); ++b) expected[c.offset + b] = c.initial[b] & c.maskOut[b];
        m.Reset();
        m.ModifyBytes(frame, false);
        EXPECT_EQ(frame, expected) << c.offset;
    }
    // Nothing to do for non-stream modifiers and short values.
    RangeModifier nonStream(MakeRange(init, {0, 0, 0, 0, 0, 0, 0, 1}, mask, 0, 1, 0, false));
    EXPECT_TRUE(nonStream.MakeVfdCompatible());
    EXPECT_EQ(nonStream.GetDataSizeInBytes(), 8);
    RangeModifier narrow(MakeRange({1, 2, 3, 4}, {0, 0, 0, 1}, Bytes(4, 0xFF), 0, 1, 0));
    EXPECT_TRUE(narrow.MakeVfdCompatible());
    EXPECT_EQ(narrow.GetDataSizeInBytes(), 4);
}

TEST(RangeModifier, GetAdjustedModifierGivesTheWindowBytes) {
    rangeModifier_s r = MakeRange({0xAB, 0xCD}, {0x12, 0x01}, {0x0F, 0xFF}, 3, 9, 2, true, "udp.sport");
    r.modIndex = 6;
    RangeModifier m(r);
    m.SetFieldParams(4, 12);  // low nibble of byte 0 and all of byte 1
    rangeModifier_s out;
    m.GetAdjustedModifier(out);
    r.initialValue.data = {0x0B, 0xCD};
    r.stepValue.data = {0x02, 0x01};
    EXPECT_EQ(out, r);
}

}  // namespace
