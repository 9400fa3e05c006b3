#include <gtest/gtest.h>

#include <functional>
#include <memory>
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
using Generator_3_bll::streamBlock_s;
using range_reference::Bytes;
using range_reference::Counts;
using range_reference::MakeRange;
using vrm::common::RangeModifier;
using vrm::common::RangeModifierImplFactory;

// --- validation ----------------------------------------------------------------------------

struct ValidateCase {
    const char* label;
    rangeModifier_s record;
    unsigned int total;
    bool valid;
    std::string text;
};

TEST(RangeModifierValidate, EachCheckInOrderWithItsExactLine) {
    const Bytes b4{0, 0, 0, 1};
    const Bytes b3{0, 0, 1};
    const std::string longText =
        "Streamblocks with stream generation disabled need device modifiers to have total device count as "
        "multiple of (recycle count * (repeat count + 1)). Modifier ip.src, Total count 10, Recycle count 4, "
        "Repeat count 0.\n";
    const std::vector<ValidateCase> cases = {
        {"mask shorter, mode also invalid", MakeRange(b4, b4, b3, 7, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src initial, step and mask value do not match.\n"},
        {"step shorter", MakeRange(b4, b3, b4, 0, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src initial, step and mask value do not match.\n"},
        {"all empty", MakeRange({}, {}, {}, 0, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src initial value is empty.\n"},
        {"mode 4", MakeRange(b4, b4, b4, 4, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src mode is invalid.\n"},
        {"negative mode", MakeRange(b4, b4, b4, -1, 1, 0, true, "ip.src"), 0, false,
         "Modifier ip.src mode is invalid.\n"},
        {"mode 3 passes", MakeRange(b4, b4, b4, 3, 1, 0, true, "ip.src"), 0, true, ""},
        {"total not a multiple", MakeRange(b4, b4, b4, 0, 4, 0, false, "ip.src"), 10, false, longText},
        {"total a multiple", MakeRange(b4, b4, b4, 0, 3, 1, false, "ip.src"), 12, true, ""},
        {"stream skips the total test", MakeRange(b4, b4, b4, 0, 4, 0, true, "ip.src"), 10, true, ""},
        {"no total count", MakeRange(b4, b4, b4, 0, 4, 0, false, "ip.src"), 0, true, ""},
        {"recycle 0 skips the total test", MakeRange(b4, b4, b4, 0, 0, 0, false, "ip.src"), 7, true, ""},
        {"product wraps to 0", MakeRange(b4, b4, b4, 0, 0x80000000u, 1, false, "ip.src"), 7, false,
         "Streamblocks with stream generation disabled need device modifiers to have total device count as "
         "multiple of (recycle count * (repeat count + 1)). Modifier ip.src, Total count 7, Recycle count "
         "2147483648, Repeat count 1.\n"},
    };
    for (const auto& c : cases) {
        RangeModifier m(c.record);
        m.SetTotalCount(c.total);
        std::ostringstream errors;
        EXPECT_EQ(m.Validate(&errors), c.valid) << c.label;
        EXPECT_EQ(errors.str(), c.text) << c.label;
        RangeModifier silent(c.record);
        silent.SetTotalCount(c.total);
        EXPECT_EQ(silent.Validate(nullptr), c.valid) << c.label;
    }
}

TEST(RangeModifierValidate, ZeroRecycleCountBecomesOneOnlyWhenValid) {
    RangeModifier valid(MakeRange({1}, {1}, {0xFF}, 0, 0, 0));
    EXPECT_TRUE(valid.Validate(nullptr));
    EXPECT_EQ(valid.GetRecycleCount(), 1u);
    RangeModifier invalid(MakeRange({1}, {1}, {0xFF}, 9, 0, 0));
    EXPECT_FALSE(invalid.Validate(nullptr));
    EXPECT_EQ(invalid.GetRecycleCount(), 0u);
}

// --- counts and byte indexes ---------------------------------------------------------------

TEST(RangeModifier, EffectiveRecycleCount) {
    RangeModifier m(MakeRange({1}, {1}, {0xFF}, 0, 5, 2));
    m.UpdateChildStutterCount(1);
    EXPECT_EQ(m.GetEffectiveRecycleCount(), 30u);
    m.SetTotalCount(100);
    EXPECT_EQ(m.GetEffectiveRecycleCount(), 200u);
}

struct IndexCase {
    Bytes step;
    Bytes mask;
    bool stream;
    unsigned int stepIndex;
    unsigned int msbMaskIndex;
    unsigned int ls;
    unsigned int ms;
};

TEST(RangeModifier, StepAndMaskByteIndexes) {
    const Bytes ones8(8, 0xFF);
    // clang-format off
    const std::vector<IndexCase> cases = {
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
    // clang-format on
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto& c = cases[i];
        const Bytes init(c.step.size(), 0);
        RangeModifier m(MakeRange(init, c.step, c.mask, 0, 1, 0, c.stream));
        EXPECT_EQ(m.GetStepByteIndex(), c.stepIndex) << i;
        EXPECT_EQ(m.GetMsbMaskByteIndex(), c.msbMaskIndex) << i;
        EXPECT_EQ(m.GetLSStepByteIndex(), c.ls) << i;
        EXPECT_EQ(m.GetMSStepByteIndex(), c.ms) << i;
    }
}

// --- sequences -----------------------------------------------------------------------------

// The closed forms are checked on random descriptors in RangeModifierPropertyTest; these
// pin the closed forms themselves.
TEST(RangeModifierSequence, SmallExamples) {
    struct Case {
        rangeModifier_s record;
        Counts counts;
        std::vector<unsigned int> expected;  // one-byte values
    };
    const std::vector<Case> cases = {
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
    for (std::size_t i = 0; i < cases.size(); ++i) {
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

// --- engines and their registry ------------------------------------------------------------

TEST(RangeModifierImplFactory, OneEnginePerWidthOneToSixteen) {
    for (unsigned int n = 0; n <= 18; ++n) {
        RangeModifier m(MakeRange(Bytes(n, 1), Bytes(n, 0), Bytes(n, 0xFF), 0, 1, 0));
        const bool supported = n >= 1 && n <= 16;
        EXPECT_EQ(RangeModifierImplFactory::Instance().Create(m) != nullptr, supported) << n;
        EXPECT_EQ(m.HasGenerator(), supported) << n;
    }
    EXPECT_EQ(&RangeModifierImplFactory::Instance(), &RangeModifierImplFactory::Instance());
}

TEST(RangeModifierImpl, WidthMismatchAndPrototypeErrors) {
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

TEST(RangeModifier, NoGeneratorFailsLoudly) {
    struct Case {
        const char* label;
        std::unique_ptr<RangeModifier> modifier;
        const char* fragment;
    };
    std::vector<Case> cases;
    cases.push_back(
        {"mode 4", std::make_unique<RangeModifier>(MakeRange({1}, {1}, {0xFF}, 4, 1, 0)), "mode 4"});
    cases.push_back({"mode -3", std::make_unique<RangeModifier>(MakeRange({1}, {1}, {0xFF}, -3, 1, 0)),
                     "mode 4294967293"});
    cases.push_back(
        {"width 17",
         std::make_unique<RangeModifier>(MakeRange(Bytes(17, 1), Bytes(17, 1), Bytes(17, 1), 0, 1, 0)),
         "width of 17 bytes"});
    cases.push_back({"default", std::make_unique<RangeModifier>(), "width of 0 bytes"});
    for (auto& c : cases) {
        Bytes value{9};
        EXPECT_FALSE(c.modifier->HasGenerator()) << c.label;
        const std::function<void()> ops[] = {[&] { c.modifier->Reset(); }, [&] { c.modifier->Next(); },
                                             [&] { c.modifier->GetValue(value); },
                                             [&] { c.modifier->GetValueAt(value, 3); }};
        for (const auto& op : ops) {
            const std::string text = Thrown(op);
            EXPECT_NE(text.find(c.fragment), std::string::npos) << c.label << ": " << text;
        }
        EXPECT_EQ(value, Bytes{9}) << c.label;
    }
}

TEST(RangeModifier, ZeroRecycleCountIndexQueryIsAnErrorUntilValidated) {
    RangeModifier m(MakeRange({1}, {1}, {0xFF}, 0, 0, 0));
    Bytes value;
    EXPECT_THROW(m.GetValueAt(value, 5), std::logic_error);
    ASSERT_TRUE(m.Update(nullptr));
    m.GetValueAt(value, 5);
    EXPECT_EQ(value, Bytes{1});
}

TEST(RangeModifier, UpdateRebuildsOnlyOnSuccess) {
    RangeModifier m(MakeRange({5}, {1}, {0xFF}, 0, 10, 0));
    m.Next();
    m.Next();
    Bytes value;
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

// --- narrowing, packing, write-back --------------------------------------------------------

TEST(RangeModifier, MakeVfdCompatibleOnTheThreeStepPatterns) {
    const Bytes init{1, 2, 3, 4, 5, 6, 7, 8};
    const Bytes mask{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    struct Case {
        Bytes step;
        bool result;
        Bytes initial;
        Bytes stepOut;
        Bytes maskOut;
        unsigned int offset;
    };
    const std::vector<Case> cases = {
        {{0, 0, 0, 0, 0, 0, 0, 1}, true, {5, 6, 7, 8}, {0, 0, 0, 1}, {0x55, 0x66, 0x77, 0x88}, 14},
        {{0, 0, 1, 0, 0, 0, 0, 1}, false, init, {0, 0, 1, 0, 0, 0, 0, 1}, mask, 10},
        {{0, 0, 0, 1, 0, 0, 0, 1}, false, init, {0, 0, 0, 1, 0, 0, 0, 1}, mask, 10},  // five bytes apart
        {{0, 1, 0, 0, 0, 0, 0, 0}, true, {1, 2}, {0, 1}, {0x11, 0x22}, 10},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        rangeModifier_s r = MakeRange(init, cases[i].step, mask, 0, 4, 0);
        r.offset = 10;
        RangeModifier m(r);
        m.SetFieldParams(0, 8 * 32);
        EXPECT_EQ(m.MakeVfdCompatible(), cases[i].result) << i;
        EXPECT_EQ(m.GetRecord().initialValue.data, cases[i].initial) << i;
        EXPECT_EQ(m.GetRecord().stepValue.data, cases[i].stepOut) << i;
        EXPECT_EQ(m.GetRecord().mask.data, cases[i].maskOut) << i;
        EXPECT_EQ(m.GetRelativeOffset(), cases[i].offset) << i;
        // The narrowed value still lands on the same frame bytes.
        if (cases[i].result) {
            Bytes frame(32, 0);
            m.Reset();
            m.ModifyBytes(frame, false);
            const std::size_t start = 10 + (i == 0 ? 4 : 0);
            for (std::size_t b = 0; b < cases[i].initial.size(); ++b) {
                EXPECT_EQ(frame[start + b], cases[i].initial[b] & cases[i].maskOut[b]) << i << " byte " << b;
            }
        }
    }
    // Nothing to do for non-stream modifiers and short values.
    RangeModifier nonStream(MakeRange(init, {0, 0, 0, 0, 0, 0, 0, 1}, mask, 0, 1, 0, false));
    EXPECT_TRUE(nonStream.MakeVfdCompatible());
    EXPECT_EQ(nonStream.GetDataSizeInBytes(), 8);
    RangeModifier narrow(MakeRange({1, 2, 3, 4}, {0, 0, 0, 1}, Bytes(4, 0xFF), 0, 1, 0));
    EXPECT_TRUE(narrow.MakeVfdCompatible());
    EXPECT_EQ(narrow.GetDataSizeInBytes(), 4);
}

TEST(RangeModifier, NonStreamWideValuePacksTheFourBytesEndingAtTheStep) {
    RangeModifier m(
        MakeRange({1, 2, 3, 4, 5, 6, 7, 8}, {0, 0, 0, 0, 0, 0, 0, 1}, Bytes(8, 0xFF), 0, 4, 0, false));
    m.SetFieldParams(0, 64);
    Bytes frame(8, 0xEE);
    m.ModifyBytes(frame, false);
    EXPECT_EQ(frame, (Bytes{0xEE, 0xEE, 0xEE, 0xEE, 5, 6, 7, 8}));
}

TEST(RangeModifier, GetAdjustedModifierWithRealNullAndInvalidPackers) {
    const rangeModifier_s r = MakeRange({0xAB, 0xCD}, {0x00, 0x01}, {0x0F, 0xFF}, 3, 9, 2, true, "udp.sport");
    rangeModifier_s out;

    RangeModifier real(r);
    real.SetFieldParams(4, 12);  // low nibble of byte 0 and all of byte 1
    real.GetAdjustedModifier(out);
    EXPECT_EQ(out.initialValue.data, (Bytes{0x0B, 0xCD}));
    EXPECT_EQ(out.stepValue.data, (Bytes{0x00, 0x01}));
    EXPECT_EQ(out.mask.data, (Bytes{0x0F, 0xFF}));
    EXPECT_EQ(out.offsetReference, "udp.sport");
    EXPECT_EQ(out.recycleCount, 9u);
    EXPECT_EQ(out.stutterCount, 2u);
    EXPECT_EQ(out.mode, Generator_3_bll::configModMode_t::SHUFFLE);

    struct NoFrameData : RangeModifier {
        using RangeModifier::RangeModifier;
        using RangeModifier::SetFrameDataSupported;
    };
    NoFrameData null(r);
    null.SetFrameDataSupported(false);
    null.SetFieldParams(0, 8);
    null.GetAdjustedModifier(out);
    EXPECT_EQ(out.initialValue.data, r.initialValue.data);
    EXPECT_EQ(out.mask.data, r.mask.data);

    RangeModifier invalid(r);
    EXPECT_EQ(Thrown([&] { invalid.GetAdjustedModifier(out); }),
              "Attempting to use modifier without setting field parameters\n");
}

TEST(RangeModifier, ToRpcAppendsTheRecordAsItStands) {
    rangeModifier_s r = MakeRange({1}, {1}, {0xFF}, 1, 0, 3);
    r.modIndex = 4;
    RangeModifier m(r);
    ASSERT_TRUE(m.Validate(nullptr));
    m.SetTotalCount(50);
    streamBlock_s block;
    block.rangeModifiers.push_back(rangeModifier_s{});
    m.ToRpc(block);
    ASSERT_EQ(block.rangeModifiers.size(), 2u);
    r.recycleCount = 1;
    EXPECT_EQ(block.rangeModifiers[1], r);
}

}  // namespace
