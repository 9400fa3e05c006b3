#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Thrown.h"
#include "common/Modifier.h"

namespace {

using vrm::common::Modifier;
using Bytes = std::vector<unsigned char>;

// A minimal concrete modifier: its own recycle count, a child stutter count that the chaining
// logic sets, a fixed value, and optional range information for SetFieldParams.
class TestModifier : public Modifier {
  public:
    explicit TestModifier(unsigned int recycle = 1, bool stream = true)
        : m_recycle(recycle), m_stream(stream) {}

    bool Validate(std::ostringstream*) override { return true; }
    void ToRpc(Generator_3_bll::streamBlock_s&) override {}
    bool IsStreamModifier() const override { return m_stream; }
    void SetEnableStream(bool enable) override { m_stream = enable; }
    void SetStutterCount(unsigned int) override {}
    unsigned int GetStutterCount() const override { return 0; }
    void SetTotalCount(unsigned int) override {}
    unsigned int GetTotalCount() const override { return 0; }
    unsigned int GetEffectiveRecycleCount() const override { return (m_childStutter + 1) * m_recycle; }
    unsigned int GetRecycleCount() const override { return m_recycle; }
    unsigned int GetChildStutterCount() const override { return m_childStutter; }
    unsigned int GetRelativeOffset() const override { return m_relativeOffset; }
    std::string GetOffsetReference() const override { return "test"; }
    unsigned char GetDataSizeInBytes() const override { return static_cast<unsigned char>(m_value.size()); }
    void Reset() override {}
    void Next() override {}
    void UpdateChildStutterCount(unsigned int count) override {
        m_childStutter = count;
        ++m_updates;
    }
    void GetValue(Bytes& value) override { value = m_value; }
    void GetValueAt(Bytes& value, unsigned int index) override {
        value = m_value;
        value.back() = static_cast<unsigned char>(value.back() + index);
    }
    bool isRange() const override { return m_range; }

    bool IsAllZero(const Bytes& value) {
        for (unsigned char b : value) {
            if (b != 0) return false;
        }
        return true;
    }

    using Modifier::SetFrameDataSupported;

    unsigned int m_recycle;
    bool m_stream;
    unsigned int m_childStutter = 0;
    unsigned int m_updates = 0;
    unsigned int m_relativeOffset = 0;
    Bytes m_value = {0x0A, 0xBC};
    bool m_range = false;
    bool m_supplyRangeInfo = false;
    RangeFieldInfo m_rangeInfo;
    Bytes m_mask;

  protected:
    bool GetRangeFieldInfo(RangeFieldInfo& info) const override {
        if (!m_supplyRangeInfo) return false;
        info = m_rangeInfo;
        info.mask = &m_mask;
        return true;
    }
};

TEST(ModifierChain, ChildStutterIsLcmOfChildrenMinusOne) {
    TestModifier parent, four(4), six(6), zero(0);
    EXPECT_TRUE(parent.AddChildModifier(four));
    EXPECT_EQ(parent.GetChildStutterCount(), 3u);
    EXPECT_TRUE(parent.AddChildModifier(six));
    EXPECT_EQ(parent.GetChildStutterCount(), 11u);
    EXPECT_TRUE(four.HasParent());
    EXPECT_FALSE(parent.HasParent());
    // A child that never repeats causes no update.
    const unsigned int updates = parent.m_updates;
    EXPECT_TRUE(parent.AddChildModifier(zero));
    EXPECT_EQ(parent.GetChildStutterCount(), 11u);
    EXPECT_EQ(parent.m_updates, updates);
}

TEST(ModifierChain, RefusedLinks) {
    TestModifier parent, child(2), nonStream(2, false);
    EXPECT_FALSE(parent.AddChildModifier(parent));
    EXPECT_FALSE(parent.AddChildModifier(nonStream));
    EXPECT_FALSE(nonStream.AddChildModifier(parent));
    EXPECT_FALSE(nonStream.HasParent());
    EXPECT_TRUE(parent.AddChildModifier(child));
    EXPECT_FALSE(parent.AddChildModifier(child));
    EXPECT_FALSE(child.AddParentModifier(parent));
    // Still one link: removing it once leaves the parent without children.
    parent.RemoveChildModifier(child);
    EXPECT_FALSE(child.HasParent());
    EXPECT_EQ(parent.GetChildStutterCount(), 0u);
}

TEST(ModifierChain, RemovingLastChildPropagatesUpwards) {
    TestModifier grandparent, parent, child(4);
    grandparent.AddChildModifier(parent);
    parent.AddChildModifier(child);
    EXPECT_EQ(parent.GetChildStutterCount(), 3u);
    EXPECT_EQ(grandparent.GetChildStutterCount(), 3u);
    parent.RemoveChildModifier(child);
    EXPECT_EQ(parent.GetChildStutterCount(), 0u);
    EXPECT_EQ(grandparent.GetChildStutterCount(), 0u);
}

TEST(ModifierChain, DeletingAChildUnlinksItFromAllParents) {
    TestModifier first, second, other(3);
    auto child = std::make_unique<TestModifier>(4);
    first.AddChildModifier(*child);
    second.AddChildModifier(*child);
    first.AddChildModifier(other);
    EXPECT_EQ(first.GetChildStutterCount(), 11u);
    EXPECT_EQ(second.GetChildStutterCount(), 3u);
    child.reset();
    EXPECT_EQ(first.GetChildStutterCount(), 2u);
    EXPECT_EQ(second.GetChildStutterCount(), 0u);
    // The parents no longer reach the deleted child.
    first.ChildUpdate();
    second.ChildUpdate();
    EXPECT_EQ(first.GetChildStutterCount(), 2u);
}

TEST(ModifierChain, RemoveAllChildrenKeepsTheLastComputedStutter) {
    TestModifier parent, four(4), six(6);
    parent.AddChildModifier(four);
    parent.AddChildModifier(six);
    parent.RemoveAllChildModifiers();
    EXPECT_FALSE(four.HasParent());
    EXPECT_FALSE(six.HasParent());
    // Children are unlinked while the list is still intact, so the count is not recomputed.
    EXPECT_EQ(parent.GetChildStutterCount(), 11u);
    parent.ChildUpdate();
    EXPECT_EQ(parent.GetChildStutterCount(), 0u);
}

TEST(ModifierChain, CyclesOfLinksTerminate) {
    TestModifier a(2), b(3);
    EXPECT_TRUE(a.AddParentModifier(a));
    EXPECT_TRUE(a.AddChildModifier(b));
    EXPECT_TRUE(b.AddChildModifier(a));
    EXPECT_TRUE(a.HasParent());
    EXPECT_TRUE(b.HasParent());
}

struct LcmCase {
    std::vector<unsigned int> values;
    unsigned int lcm;
};

TEST(ModifierArithmetic, FindLcm) {
    const LcmCase cases[] = {
        {{}, 0}, {{0}, 0}, {{7}, 7}, {{0xFFFFFFFFu}, 0xFFFFFFFFu}, {{2, 2, 3}, 6}, {{6, 4}, 12}, {{3, 5, 7}, 105},
        {{5, 0}, 0}, {{1, 0xFFFFFFFFu}, 0xFFFFFFFFu}, {{0x80000000u, 0x40000000u}, 0x80000000u},
        {{65536, 65537}, 0},            // 2^32 + 2^16 does not fit 32 bits
        {{65521, 65519, 65497, 3}, 0},  // intermediate products beyond 32 bits
    };
    for (const LcmCase& c : cases) {
        EXPECT_EQ(Modifier::FindLcm(c.values), c.lcm) << ::testing::PrintToString(c.values);
    }
}

TEST(ModifierArithmetic, Gcd) {
    struct {
        unsigned long a, b, gcd;
    } const cases[] = {{12, 18, 6}, {18, 12, 6}, {17, 5, 1}, {7, 0, 7}, {0, 7, 7}, {0, 0, 0}, {1ul << 40, 1ul << 20, 1ul << 20}};
    for (const auto& c : cases) EXPECT_EQ(Modifier::Gcd(c.a, c.b), c.gcd) << c.a << "," << c.b;
}

TEST(ModifierFrame, OperationsNeedFieldParameters) {
    TestModifier m;
    Bytes frame(4, 0);
    EXPECT_EQ(Thrown([&] { m.ModifyBytes(frame, false); }),
              "Attempting to use modifier without setting field parameters\n");
    EXPECT_THROW(m.GetBitLength(), std::logic_error);
}

TEST(ModifierFrame, PacksCurrentAndIndexedValues) {
    TestModifier m;
    m.SetFieldParams(12, 12);  // two-byte value into bits 12..23
    EXPECT_EQ(m.GetAbsoluteOffset(), 1u);
    EXPECT_EQ(m.GetAbsoluteBitOffset(), 12u);
    EXPECT_EQ(m.GetBitLength(), 12u);

    Bytes frame(4, 0xFF);
    m.ModifyBytes(frame, false);
    EXPECT_EQ(frame, (Bytes{0xFF, 0xFA, 0xBC, 0xFF}));
    m.ModifyBytesAtIndex(frame, 1);
    EXPECT_EQ(frame, (Bytes{0xFF, 0xFA, 0xBD, 0xFF}));
    m.ModifyBytes(frame, true);
    EXPECT_EQ(frame, (Bytes{0xFF, 0xF0, 0x01, 0xFF}));
    m.ZeroBytes(frame);
    EXPECT_EQ(frame, (Bytes{0xFF, 0xF0, 0x00, 0xFF}));
    frame.assign(4, 0xFF);
    m.ZeroBytes(frame, 1, 1);
    EXPECT_EQ(frame, (Bytes{0xFF, 0xFF, 0x00, 0xFF}));

    Bytes out;
    m.GetBytes(out, false);
    EXPECT_EQ(out, (Bytes{0x0A, 0xBC}));
    m.GetBytesAtIndex(out, 2, true);
    EXPECT_EQ(out, (Bytes{0x0A, 0xBC, 0x0A, 0xBE}));
}

TEST(ModifierFrame, FailedFieldParamsKeepThePreviousPacker) {
    TestModifier m;
    m.SetFieldParams(12, 12);
    EXPECT_THROW(m.SetFieldParams(0, 0), std::invalid_argument);
    EXPECT_THROW(m.SetFieldParams(0, 8), std::out_of_range);  // two bytes do not fit eight bits
    EXPECT_EQ(m.GetAbsoluteBitOffset(), 12u);
}

TEST(ModifierFrame, WithoutFrameDataOnlyValuesPassThrough) {
    TestModifier m;
    m.SetFrameDataSupported(false);
    m.SetFieldParams(0, 0);  // no packer geometry is checked
    Bytes out = {1};
    m.GetBytes(out, true);
    EXPECT_EQ(out, (Bytes{1, 0x0A, 0xBC}));
    Bytes frame(4, 0);
    EXPECT_EQ(Thrown([&] { m.ModifyBytes(frame, false); }), "Modifier does not support frame data related operations\n");
}

struct RangeParamsCase {
    const char* name;
    bool stream;
    Bytes value;
    unsigned char stepByteIndex;
    unsigned char msbMaskByteIndex;
    Bytes mask;
    unsigned int absoluteBitOffset;
    unsigned int bitLength;
    Bytes packed;  // zero frame after ModifyBytes
    unsigned int fieldBitLength;
};

const Bytes kEight = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};

const Bytes kMask = {0, 0, 0x0F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
// clang-format off
const RangeParamsCase kRangeCases[] = {
    // Stream modifiers keep their width; the mask's first bit (byte 2, four leading zeros) trims it.
    {"StreamKeepsWidth", true, kEight, 5, 2, kMask, 0, 64, {0, 0, 0x03, 0x44, 0x55, 0x66, 0x77, 0x88}, 64},
    // Non-stream: the four bytes ending at the step byte 5, i.e. value bytes 2..5.
    {"NonStreamLimitedToFourBytes", false, kEight, 5, 2, kMask, 0, 64, {0, 0, 0x03, 0x44, 0x55, 0x66, 0, 0}, 48},
    // Step byte within the first four: the leading four bytes.
    {"NonStreamStepInFirstBytes", false, kEight, 2, 0, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}, 0, 64,
     {0x11, 0x22, 0x33, 0x44, 0, 0, 0, 0}, 32},
    // Four bytes or fewer are never narrowed; an empty mask packs every bit.
    {"NonStreamNarrowValue", false, {0xAB, 0xCD}, 1, 0, {}, 4, 16, {0x0A, 0xBC, 0xD0}, 16},
};
// clang-format on

class RangeParamsTest : public ::testing::TestWithParam<RangeParamsCase> {};

TEST_P(RangeParamsTest, SetFieldParamsUsesTheRangeInformation) {
    const RangeParamsCase& c = GetParam();
    TestModifier m(1, c.stream);
    m.m_range = true;
    m.m_supplyRangeInfo = true;
    m.m_value = c.value;
    m.m_rangeInfo.stepByteIndex = c.stepByteIndex;
    m.m_rangeInfo.msbMaskByteIndex = c.msbMaskByteIndex;
    m.m_mask = c.mask;
    m.SetFieldParams(c.absoluteBitOffset, c.bitLength);
    Bytes frame(c.packed.size(), 0);
    m.ModifyBytes(frame, false);
    EXPECT_EQ(frame, c.packed);
    EXPECT_EQ(m.GetBitLength(), c.fieldBitLength);
    EXPECT_EQ(m.GetAbsoluteBitOffset(), c.absoluteBitOffset);
}

INSTANTIATE_TEST_SUITE_P(Modifier, RangeParamsTest, ::testing::ValuesIn(kRangeCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ModifierArithmetic, MaskOffsetAdjust) {
    struct {
        Bytes mask;
        bool null;
        unsigned int byteIndex;
        unsigned int adjust;
    } const cases[] = {
        {{0x00, 0x0F}, false, 1, 12}, {{0x00, 0xFF}, false, 1, 8}, {{0x00, 0x00}, false, 1, 8},
        {{0x01}, false, 0, 7},        {{0x80}, false, 0, 0},       {{0x7F}, false, 0, 1},
        {{0x0F, 0x0F}, false, 2, 16}, {{}, true, 3, 24},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Modifier::MaskOffsetAdjust(c.null ? nullptr : &c.mask, c.byteIndex), c.adjust)
            << ::testing::PrintToString(c.mask) << " @" << c.byteIndex;
    }
}

TEST(ModifierParallel, OwnershipAndRefusals) {
    TestModifier owner;
    auto first = std::make_unique<TestModifier>();
    TestModifier* raw = first.get();
    EXPECT_TRUE(owner.AddParallelModifier(std::move(first), true));
    EXPECT_EQ(first, nullptr);
    EXPECT_TRUE(raw->GetParallelFlag());

    std::unique_ptr<Modifier> none;
    EXPECT_FALSE(owner.AddParallelModifier(std::move(none), true));

    std::unique_ptr<Modifier> nonStream = std::make_unique<TestModifier>(1, false);
    EXPECT_FALSE(owner.AddParallelModifier(std::move(nonStream), true));
    EXPECT_NE(nonStream, nullptr);  // refused: the caller still owns it

    std::unique_ptr<Modifier> again(raw);
    EXPECT_FALSE(owner.AddParallelModifier(std::move(again), false));
    EXPECT_EQ(again.release(), raw);
    EXPECT_TRUE(raw->GetParallelFlag());

    EXPECT_TRUE(owner.AddParallelModifier(std::make_unique<TestModifier>(), false));

    std::vector<Modifier*> released = {nullptr};
    owner.ReleaseParallelModifiers(released);
    ASSERT_EQ(released.size(), 2u);
    EXPECT_EQ(released[0], raw);
    EXPECT_FALSE(released[1]->GetParallelFlag());
    for (Modifier* m : released) delete m;
    owner.ReleaseParallelModifiers(released);
    EXPECT_TRUE(released.empty());
}

TEST(ModifierNotReady, PredicateOnCurrentValue) {
    TestModifier m;
    EXPECT_FALSE(m.CurrentValueIndicatesIfNotReady(0));
    TestModifier checker;
    m.BindNotReadyCheck(&checker, static_cast<Modifier::NotReadyCheck>(&TestModifier::IsAllZero));
    EXPECT_FALSE(m.CurrentValueIndicatesIfNotReady(5));
    m.m_value = {0, 0};
    EXPECT_TRUE(m.CurrentValueIndicatesIfNotReady(5));
    m.BindNotReadyCheck(nullptr, nullptr);
    EXPECT_FALSE(m.CurrentValueIndicatesIfNotReady(5));
}

}  // namespace
