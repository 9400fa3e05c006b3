#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Thrown.h"
#include "RangeReference.h"
#include "common/TableModifier.h"

namespace {

using Generator_3_bll::tableModifier_s;
using range_reference::Bytes;
using range_reference::MakeTable;
using vrm::common::TableModifier;

const Bytes A{0xA0, 0x01};
const Bytes B{0xB0, 0x02};
const Bytes C{0xC0, 0x03};

// Stepped values, and without a total count the indexed values too, also periods later.
TEST(TableModifier, SequencesWithRepeatChildRepeatAndTotalCount) {
    const struct {
        unsigned int stutter, childStutter, total;
        std::vector<Bytes> expected;
        unsigned int effectiveRecycle;
    } cases[] = {
        {1, 0, 0, {A, A, B, B, C, C, A, A, B}, 6},
        {0, 0, 0, {A, B, C, A, B, C, A}, 3},
        {1, 0, 4, {A, A, B, B, A, A, B, B, A}, 4},
        {0, 1, 0, {A, A, B, B, C, C, A}, 6},
        {1, 1, 0, {A, A, A, A, B, B, B, B, C, C, C, C, A}, 12},
        {3, 2, 0, {A, A, A, A, A, A, A, A, A, A, A, A, B}, 36},
        {0, 0, 2, {A, B, A, B, A}, 2},
        {0, 1, 2, {A, A, B, B, A, A, B, B}, 4},
    };
    for (const auto& c : cases) {
        TableModifier m(MakeTable({A, B, C}, c.stutter));
        m.SetTotalCount(c.total);
        m.UpdateChildStutterCount(c.childStutter);
        m.Reset();
        EXPECT_EQ(m.GetEffectiveRecycleCount(), c.effectiveRecycle) << c.effectiveRecycle;
        Bytes value;
        for (unsigned int f = 0; f < c.expected.size(); ++f) {
            m.GetValue(value);
            EXPECT_EQ(value, c.expected[f]) << c.effectiveRecycle << " frame " << f;
            m.Next();
            if (c.total != 0) continue;
            m.GetValueAt(value, f + 1000 * c.effectiveRecycle);
            EXPECT_EQ(value, c.expected[f]) << c.effectiveRecycle << " index " << f;
        }
    }
}

TEST(TableModifier, EmptyListsAndIndexQueriesOutsideTheList) {
    EXPECT_EQ(Thrown<std::invalid_argument>([] { TableModifier m(MakeTable({}, 0)); }),
              "TableModifier::TableModifier : data array is empty\n");
    TableModifier d;
    Bytes value;
    EXPECT_THROW(d.Reset(), std::logic_error);
    EXPECT_THROW(d.Next(), std::logic_error);
    EXPECT_THROW(d.GetValue(value), std::logic_error);
    EXPECT_THROW(d.GetValueAt(value, 0), std::logic_error);
    // A period longer than the list walks off its end; frames per value can wrap to 0.
    TableModifier m(MakeTable({A, B, C}, 0));
    m.SetTotalCount(5);
    m.GetValueAt(value, 2);
    EXPECT_EQ(value, C);
    EXPECT_THROW(m.GetValueAt(value, 3), std::out_of_range);
    m.SetTotalCount(0);
    m.SetStutterCount(0xFFFFFFFFu);
    m.UpdateChildStutterCount(0);
    EXPECT_THROW(m.GetValueAt(value, 3), std::logic_error);
}

TEST(TableModifier, ValidationLinesInOrder) {
    const Bytes big(17, 1);
    const struct {
        const char* label;
        tableModifier_s record;
        unsigned int total;
        bool valid;
        std::string text;
    } cases[] = {
        {"empty list", MakeTable({}, 0, true, "x"), 0, false, "Modifier x list is empty.\n"},
        {"first value too long, later differ", MakeTable({big, A}, 0, true, "x"), 0, false,
         "Modifier x data size 17 is greater than 16.\n"},
        {"later value too long", MakeTable({A, big}, 0, true, "x"), 0, false,
         "Modifier x data size is not consistent.\n"},
        {"sizes differ", MakeTable({A, B, {1}}, 0, true, "x"), 0, false, "Modifier x data size is not consistent.\n"},
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
        auto m = c.record.data.empty() ? std::make_unique<TableModifier>()
                                       : std::make_unique<TableModifier>(c.record);
        m->SetOffsetReference("x");
        m->SetTotalCount(c.total);
        std::ostringstream errors;
        EXPECT_EQ(m->Validate(&errors), c.valid) << c.label;
        EXPECT_EQ(errors.str(), c.text) << c.label;
        EXPECT_EQ(m->Validate(nullptr), c.valid) << c.label;
    }
}

TEST(TableModifier, UpdateAppliesChildRepeatAndResets) {
    TableModifier m(MakeTable({A, B}, 0));
    m.Next();
    m.UpdateChildStutterCount(1);
    ASSERT_TRUE(m.Update(nullptr));
    Bytes value;
    for (const Bytes& expected : {A, A, B}) {
        m.GetValue(value);
        EXPECT_EQ(value, expected);
        m.Next();
    }
}

TEST(TableModifier, GetAdjustedModifierGivesTheWindowBytes) {
    tableModifier_s r = MakeTable({{0xAB, 0xCD}, {0x12, 0x34}}, 2, false, "ip.tos");
    r.modIndex = 8;
    TableModifier m(r);
    m.SetFieldParams(4, 12);
    tableModifier_s out;
    out.data.resize(5);
    m.GetAdjustedModifier(out);
    r.data = {{{0x0B, 0xCD}}, {{0x02, 0x34}}};
    EXPECT_EQ(out, r);
}

}  // namespace
