#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Thrown.h"
#include "common/TableModifier.h"

namespace {

using Generator_3_bll::modifierData_s;
using Generator_3_bll::streamBlock_s;
using Generator_3_bll::tableModifier_s;
using vrm::common::TableModifier;
using Bytes = std::vector<unsigned char>;

tableModifier_s MakeTable(const std::vector<Bytes>& values, unsigned int stutter, bool stream = true,
                          const char* name = "eth.vlan") {
    tableModifier_s t;
    t.offsetReference = name;
    for (const Bytes& v : values) t.data.push_back(modifierData_s{v});
    t.stutterCount = stutter;
    t.useStream = stream;
    return t;
}

const Bytes A{0xA0, 0x01};
const Bytes B{0xB0, 0x02};
const Bytes C{0xC0, 0x03};

struct SequenceCase {
    unsigned int stutter;
    unsigned int childStutter;
    unsigned int total;
    std::vector<Bytes> expected;
    unsigned int effectiveRecycle;
};

TEST(TableModifier, SequencesWithRepeatChildRepeatAndTotalCount) {
    const std::vector<SequenceCase> cases = {
        {1, 0, 0, {A, A, B, B, C, C, A, A, B}, 6},
        {0, 0, 0, {A, B, C, A, B, C, A}, 3},
        {1, 0, 4, {A, A, B, B, A, A, B, B, A}, 4},
        {0, 1, 0, {A, A, B, B, C, C, A}, 6},
        {1, 1, 0, {A, A, A, A, B, B, B, B, C, C, C, C, A}, 12},
        {0, 0, 2, {A, B, A, B, A}, 2},
        {0, 1, 2, {A, A, B, B, A, A}, 4},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto& c = cases[i];
        TableModifier m(MakeTable({A, B, C}, c.stutter));
        m.SetTotalCount(c.total);
        m.UpdateChildStutterCount(c.childStutter);
        m.Reset();
        EXPECT_EQ(m.GetEffectiveRecycleCount(), c.effectiveRecycle) << i;
        EXPECT_EQ(m.GetRecycleCount(), 3u) << i;
        Bytes value;
        for (std::size_t f = 0; f < c.expected.size(); ++f) {
            m.GetValue(value);
            EXPECT_EQ(value, c.expected[f]) << i << " frame " << f;
            m.Next();
        }
    }
}

TEST(TableModifier, IndexedValuesEqualSequentialWithoutTotalCount) {
    for (unsigned int stutter : {0u, 1u, 3u}) {
        for (unsigned int child : {0u, 2u}) {
            TableModifier m(MakeTable({A, B, C, {0xD0, 0x04}}, stutter));
            m.UpdateChildStutterCount(child);
            m.Reset();
            Bytes sequential;
            Bytes indexed;
            for (unsigned int f = 0; f < 100; ++f) {
                m.GetValue(sequential);
                m.GetValueAt(indexed, f);
                ASSERT_EQ(sequential, indexed) << stutter << " " << child << " frame " << f;
                m.Next();
            }
        }
    }
}

TEST(TableModifier, ConstructionFromEmptyListAndDefaults) {
    EXPECT_EQ(Thrown<std::invalid_argument>([] { TableModifier m(MakeTable({}, 0)); }),
              "TableModifier::TableModifier : data array is empty\n");
    TableModifier d;
    Bytes value;
    EXPECT_THROW(d.Reset(), std::logic_error);
    EXPECT_THROW(d.Next(), std::logic_error);
    EXPECT_THROW(d.GetValue(value), std::logic_error);
    EXPECT_THROW(d.GetValueAt(value, 0), std::logic_error);
}

struct ValidateCase {
    const char* label;
    tableModifier_s record;
    unsigned int total;
    bool valid;
    std::string text;
};

TEST(TableModifier, ValidationLinesInOrder) {
    const Bytes big(17, 1);
    tableModifier_s empty = MakeTable({A}, 0, true, "x");
    empty.data.clear();
    const std::vector<ValidateCase> cases = {
        {"empty list", empty, 0, false, "Modifier x list is empty.\n"},
        {"first value too long, later differ", MakeTable({big, A}, 0, true, "x"), 0, false,
         "Modifier x data size 17 is greater than 16.\n"},
        {"later value too long", MakeTable({A, big}, 0, true, "x"), 0, false,
         "Modifier x data size is not consistent.\n"},
        {"sizes differ", MakeTable({A, B, {1}}, 0, true, "x"), 0, false,
         "Modifier x data size is not consistent.\n"},
        {"16 bytes accepted", MakeTable({Bytes(16, 2)}, 0, true, "x"), 0, true, ""},
        {"non-stream multiple", MakeTable({A, B, C}, 1, false, "x"), 12, true, ""},
        {"non-stream not a multiple", MakeTable({A, B, C}, 1, false, "x"), 10, false,
         "Streamblocks with stream generation disabled need device modifiers to have total device count as "
         "multiple of (list size * (repeat count + 1)). Modifier x, Total count 10, List size 3, Repeat count 1.\n"},
        {"stream ignores total", MakeTable({A, B, C}, 1, true, "x"), 10, true, ""},
        {"non-stream without total", MakeTable({A, B, C}, 1, false, "x"), 0, true, ""},
        {"size check before total", MakeTable({A, {1}}, 0, false, "x"), 7, false,
         "Modifier x data size is not consistent.\n"},
    };
    for (const auto& c : cases) {
        // An empty list cannot be constructed; a default modifier stands for it.
        std::ostringstream errors;
        bool result;
        if (c.record.data.empty()) {
            TableModifier m;
            m.SetOffsetReference("x");
            result = m.Validate(&errors);
            EXPECT_FALSE(m.Validate(nullptr));
        } else {
            TableModifier m(c.record);
            m.SetTotalCount(c.total);
            result = m.Validate(&errors);
            EXPECT_EQ(m.Validate(nullptr), c.valid) << c.label;
        }
        EXPECT_EQ(result, c.valid) << c.label;
        EXPECT_EQ(errors.str(), c.text) << c.label;
    }
}

TEST(TableModifier, UpdateAppliesChildRepeatAndResets) {
    TableModifier m(MakeTable({A, B}, 0));
    m.Next();
    Bytes value;
    m.GetValue(value);
    EXPECT_EQ(value, B);
    m.UpdateChildStutterCount(1);
    ASSERT_TRUE(m.Update(nullptr));
    m.GetValue(value);
    EXPECT_EQ(value, A);
    m.Next();
    m.Next();
    m.GetValue(value);
    EXPECT_EQ(value, B);
}

TEST(TableModifier, GetAdjustedModifierWithRealNullAndInvalidPackers) {
    tableModifier_s r = MakeTable({{0xAB, 0xCD}, {0x12, 0x34}}, 2, false, "ip.tos");
    r.modIndex = 8;
    r.offset = 0;
    tableModifier_s out;
    out.data.resize(5);

    TableModifier real(r);
    real.SetFieldParams(4, 12);
    real.GetAdjustedModifier(out);
    ASSERT_EQ(out.data.size(), 2u);
    EXPECT_EQ(out.data[0].data, (Bytes{0x0B, 0xCD}));
    EXPECT_EQ(out.data[1].data, (Bytes{0x02, 0x34}));
    EXPECT_EQ(out.modIndex, 8u);
    EXPECT_EQ(out.stutterCount, 2u);
    EXPECT_FALSE(out.useStream);
    EXPECT_EQ(out.offsetReference, "ip.tos");

    struct NoFrameData : TableModifier {
        using TableModifier::SetFrameDataSupported;
        using TableModifier::TableModifier;
    };
    NoFrameData null(r);
    null.SetFrameDataSupported(false);
    null.SetFieldParams(4, 12);
    null.GetAdjustedModifier(out);
    EXPECT_EQ(out.data, r.data);

    TableModifier invalid(r);
    EXPECT_EQ(Thrown([&] { invalid.GetAdjustedModifier(out); }),
              "Attempting to use modifier without setting field parameters\n");
}

TEST(TableModifier, PackingAndWriteBack) {
    tableModifier_s r = MakeTable({A, B}, 0);
    r.offset = 2;
    TableModifier m(r);
    m.SetFieldParams(8, 48);  // bytes 1..6; the modifier starts 2 bytes in
    Bytes frame(8, 0x55);
    m.ModifyBytes(frame, false);
    EXPECT_EQ(frame, (Bytes{0x55, 0x55, 0x55, 0xA0, 0x01, 0x55, 0x55, 0x55}));
    m.ModifyBytesAtIndex(frame, 1);
    EXPECT_EQ(frame, (Bytes{0x55, 0x55, 0x55, 0xB0, 0x02, 0x55, 0x55, 0x55}));
    streamBlock_s block;
    m.ToRpc(block);
    ASSERT_EQ(block.tableModifiers.size(), 1u);
    EXPECT_EQ(block.tableModifiers[0], r);
}

TEST(TableModifier, IndexQueryPastTheListIsOutOfRange) {
    TableModifier m(MakeTable({A, B, C}, 0));
    m.SetTotalCount(5);  // period 5 over a list of 3: positions 3 and 4 do not exist
    Bytes value;
    m.GetValueAt(value, 2);
    EXPECT_EQ(value, C);
    EXPECT_THROW(m.GetValueAt(value, 3), std::out_of_range);
    m.SetTotalCount(0);
    m.SetStutterCount(0xFFFFFFFFu);
    m.UpdateChildStutterCount(0);  // frames per value wrap to 0
    EXPECT_THROW(m.GetValueAt(value, 3), std::logic_error);
}

}  // namespace
