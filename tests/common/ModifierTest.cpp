#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "support/Thrown.h"
#include "RangeReference.h"
#include "common/ModifierFactory.h"
#include "common/ModifierGroup.h"
#include "common/ModifierManager.h"
#include "common/RangeModifier.h"
#include "common/RootModifier.h"
#include "common/TableModifier.h"

namespace {

using range_reference::Bytes;
using range_reference::MakeRange;
using vrm::common::Modifier;
using vrm::common::ModifierFactory;
using vrm::common::ModifierGroup;
using vrm::common::ModifierManager;
using vrm::common::ModifierType;
using vrm::common::RangeModifier;
using vrm::common::TableModifier;

// A table of `count` two-byte values 0A BC, 0A BD, ...: a modifier that recycles after `count` frames.
Generator_3_bll::tableModifier_s Values(unsigned int count, bool stream = true) {
    std::vector<Bytes> values;
    for (unsigned int i = 0; i < count; ++i) values.push_back({0x0A, static_cast<unsigned char>(0xBC + i)});
    return range_reference::MakeTable(values, 0, stream);
}

TEST(ModifierChain, ChildStutterFollowsTheLinks) {
    TableModifier grandparent(Values(1)), parent(Values(1)), four(Values(4)), six(Values(6));
    TableModifier nonStream(Values(2, false)), zero;  // an empty list never repeats
    EXPECT_TRUE(grandparent.AddChildModifier(parent));
    EXPECT_TRUE(parent.AddChildModifier(four));
    EXPECT_EQ(parent.GetChildStutterCount(), 3u);
    EXPECT_EQ(grandparent.GetChildStutterCount(), 3u);
    EXPECT_TRUE(parent.AddChildModifier(six));
    EXPECT_TRUE(parent.AddChildModifier(zero));  // never repeats: leaves the count alone
    EXPECT_EQ(parent.GetChildStutterCount(), 11u);
    EXPECT_EQ(grandparent.GetChildStutterCount(), 11u);
    EXPECT_TRUE(four.HasParent());
    EXPECT_FALSE(grandparent.HasParent());
    // Refused: itself, the other stream kind either way, a link made again from either end.
    EXPECT_FALSE(parent.AddChildModifier(parent));
    EXPECT_FALSE(parent.AddChildModifier(nonStream));
    EXPECT_FALSE(nonStream.AddChildModifier(four));
    EXPECT_FALSE(nonStream.HasParent());
    EXPECT_FALSE(parent.AddChildModifier(six));
    EXPECT_FALSE(six.AddParentModifier(parent));
    parent.RemoveChildModifier(zero);  // the refusals kept both links: still lcm(4, 6)
    EXPECT_EQ(parent.GetChildStutterCount(), 11u);
    // Removal recomputes up the chain; one removal ends a link.
    parent.RemoveChildModifier(six);
    EXPECT_FALSE(six.HasParent());
    EXPECT_EQ(grandparent.GetChildStutterCount(), 3u);
    parent.RemoveChildModifier(four);
    EXPECT_EQ(parent.GetChildStutterCount(), 0u);
    EXPECT_EQ(grandparent.GetChildStutterCount(), 0u);
    // More children than the fixed buffer holds, the last repeating each of its 9 values three
    // times: lcm(1 .. 8, 27).
    std::vector<std::unique_ptr<TableModifier>> children;
    for (unsigned int r = 1; r <= 9; ++r) {
        auto record = Values(r);
        record.stutterCount = r == 9 ? 2 : 0;
        children.push_back(std::make_unique<TableModifier>(record));
        parent.AddChildModifier(*children.back());
    }
    EXPECT_EQ(parent.GetChildStutterCount(), 7559u);
}

TEST(ModifierChain, DeletionRemoveAllAndCycles) {
    TableModifier first(Values(1)), second(Values(1)), three(Values(3));
    auto four = std::make_unique<TableModifier>(Values(4));
    first.AddChildModifier(*four);
    second.AddChildModifier(*four);
    first.AddChildModifier(three);
    EXPECT_EQ(first.GetChildStutterCount(), 11u);
    four.reset();  // unlinks itself from both parents
    EXPECT_EQ(first.GetChildStutterCount(), 2u);
    EXPECT_EQ(second.GetChildStutterCount(), 0u);
    // Children are unlinked while the list is intact: the count waits for the next update.
    first.RemoveAllChildModifiers();
    EXPECT_FALSE(three.HasParent());
    EXPECT_EQ(first.GetChildStutterCount(), 2u);
    first.ChildUpdate();
    EXPECT_EQ(first.GetChildStutterCount(), 0u);
    // A cycle of links ends.
    TableModifier a(Values(2)), b(Values(3));
    EXPECT_TRUE(a.AddParentModifier(a));
    EXPECT_TRUE(a.AddChildModifier(b));
    EXPECT_TRUE(b.AddChildModifier(a));
}

TEST(ModifierArithmetic, FindLcmGcdAndMaskOffsetAdjust) {
    const struct {
        std::vector<unsigned int> values;
        unsigned int lcm;
    } lcms[] = {
        {{}, 0}, {{0}, 0}, {{7}, 7}, {{0xFFFFFFFFu}, 0xFFFFFFFFu}, {{2, 2, 3}, 6}, {{6, 4}, 12}, {{3, 5, 7}, 105},
        {{5, 0}, 0}, {{1, 0xFFFFFFFFu}, 0xFFFFFFFFu}, {{0x80000000u, 0x40000000u}, 0x80000000u},
        {{65536, 65537}, 0},            // 2^32 + 2^16 does not fit 32 bits
        {{65521, 65519, 65497, 3}, 0},  // intermediate products beyond 32 bits
    };
    for (const auto& c : lcms) EXPECT_EQ(Modifier::FindLcm(c.values), c.lcm) << testing::PrintToString(c.values);

    const struct {
        unsigned long a, b, gcd;
    } gcds[] = {{12, 18, 6}, {18, 12, 6}, {17, 5, 1},  {7, 0, 7},
                {0, 7, 7},   {0, 0, 0},   {1ul << 40, 1ul << 20, 1ul << 20}};
    for (const auto& c : gcds) EXPECT_EQ(Modifier::Gcd(c.a, c.b), c.gcd) << c.a << "," << c.b;

    const struct {
        Bytes mask;
        bool null;
        unsigned int byteIndex, adjust;
    } adjusts[] = {
        {{0x00, 0x0F}, false, 1, 12}, {{0x00, 0xFF}, false, 1, 8}, {{0x00, 0x00}, false, 1, 8},
        {{0x01}, false, 0, 7},        {{0x80}, false, 0, 0},       {{0x7F}, false, 0, 1},
        {{0x0F, 0x0F}, false, 2, 16}, {{}, true, 3, 24},
    };
    for (const auto& c : adjusts) {
        EXPECT_EQ(Modifier::MaskOffsetAdjust(c.null ? nullptr : &c.mask, c.byteIndex), c.adjust)
            << ::testing::PrintToString(c.mask) << " @" << c.byteIndex;
    }
}

TEST(ModifierFrame, PacksCurrentAndIndexedValues) {
    struct NoFrameData : TableModifier {
        using TableModifier::SetFrameDataSupported;
        using TableModifier::TableModifier;
    } m(Values(3));
    Bytes frame(4, 0xFF);
    EXPECT_EQ(Thrown([&] { m.ModifyBytes(frame, false); }),
              "Attempting to use modifier without setting field parameters\n");
    m.SetFieldParams(12, 12);  // two-byte value into bits 12..23
    EXPECT_THROW(m.SetFieldParams(0, 8), std::out_of_range);  // two bytes do not fit: the packer stays
    EXPECT_EQ(m.GetAbsoluteOffset(), 1u);

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

    // Without frame data the values pass through and no geometry is checked.
    m.SetFrameDataSupported(false);
    m.SetFieldParams(0, 0);
    m.GetBytes(out, true);
    EXPECT_EQ(out, (Bytes{0x0A, 0xBC, 0x0A, 0xBE, 0x0A, 0xBC}));
    EXPECT_EQ(Thrown([&] { m.ModifyBytes(frame, false); }), "Modifier does not support frame data related operations\n");
}

TEST(ModifierParallel, OwnershipAndRefusals) {
    TableModifier owner(Values(1));
    auto first = std::make_unique<TableModifier>(Values(1));
    TableModifier* raw = first.get();
    EXPECT_TRUE(owner.AddParallelModifier(std::move(first), true));
    EXPECT_EQ(first, nullptr);
    EXPECT_TRUE(raw->GetParallelFlag());

    EXPECT_FALSE(owner.AddParallelModifier(nullptr, true));
    std::unique_ptr<Modifier> nonStream = std::make_unique<TableModifier>(Values(1, false));
    EXPECT_FALSE(owner.AddParallelModifier(std::move(nonStream), true));
    EXPECT_NE(nonStream, nullptr);  // refused: the caller still owns it
    std::unique_ptr<Modifier> again(raw);
    EXPECT_FALSE(owner.AddParallelModifier(std::move(again), false));
    EXPECT_EQ(again.release(), raw);
    EXPECT_TRUE(raw->GetParallelFlag());

    EXPECT_TRUE(owner.AddParallelModifier(std::make_unique<TableModifier>(Values(1)), false));
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
    struct Checker : vrm::common::RootModifier {
        Checker() : RootModifier(true) {}
        bool IsAllZero(const Bytes& value) { return value == Bytes(value.size(), 0); }
    } checker;
    TableModifier m(range_reference::MakeTable({{0x0A, 0xBC}, {0, 0}}, 0));
    EXPECT_FALSE(m.CurrentValueIndicatesIfNotReady(0));
    m.BindNotReadyCheck(&checker, static_cast<Modifier::NotReadyCheck>(&Checker::IsAllZero));
    EXPECT_FALSE(m.CurrentValueIndicatesIfNotReady(5));
    m.Next();
    EXPECT_TRUE(m.CurrentValueIndicatesIfNotReady(5));
    m.BindNotReadyCheck(nullptr, nullptr);
    EXPECT_FALSE(m.CurrentValueIndicatesIfNotReady(5));
}

// Types 0 and 1 replace the owner's modifier by a default range or table modifier (stream
// modifiers both); any other type leaves it alone.
TEST(ModifierFactory, CreateModifierByType) {
    for (int type : {0, 1, 2, -1, 1000}) {
        std::unique_ptr<Modifier> owner;
        ModifierFactory::CreateRootModifier(false, owner);
        Modifier* before = owner.get();
        ModifierFactory::CreateModifier(static_cast<ModifierType>(type), owner);
        const bool range = dynamic_cast<RangeModifier*>(owner.get()) != nullptr;
        const bool table = dynamic_cast<TableModifier*>(owner.get()) != nullptr;
        EXPECT_EQ(range, type == 0) << type;
        EXPECT_EQ(table, type == 1) << type;
        EXPECT_EQ(owner.get() == before, !range && !table) << type;
        EXPECT_EQ(owner->IsStreamModifier(), range || table) << type;
    }
}

// A group validates its modifiers up to the first failure; a manager lists groups. Both refuse
// an entry listed already.
TEST(ModifierGroup, ListingRemovalAndValidation) {
    std::unique_ptr<ModifierGroup> group;
    ModifierFactory::CreateModifierGroup(group);
    EXPECT_TRUE(group->Validate(nullptr));
    auto good = ModifierFactory::CreateModifier(MakeRange({1}, {1}, {0xFF}, 0, 1, 0, true, "good"));
    auto bad1 = ModifierFactory::CreateModifier(MakeRange({1}, {1}, {0xFF}, 5, 1, 0, true, "bad1"));
    auto bad2 = ModifierFactory::CreateModifier(MakeRange({1}, {1}, {0xFF}, 6, 1, 0, true, "bad2"));
    EXPECT_TRUE(group->AddModifier(*good));
    EXPECT_FALSE(group->AddModifier(*good));
    EXPECT_TRUE(group->AddModifier(*bad1));
    EXPECT_TRUE(group->AddModifier(*bad2));
    std::ostringstream errors;
    EXPECT_FALSE(group->Validate(&errors));
    EXPECT_EQ(errors.str(), "Modifier bad1 mode is invalid.\n");
    group->RemoveModifier(*bad1);
    EXPECT_EQ(group->GetModifiers(), (std::vector<Modifier*>{good.get(), bad2.get()}));
    group->RemoveModifier(*bad2);
    EXPECT_TRUE(group->Validate(nullptr));

    ModifierManager manager;
    ModifierGroup g1, g2, g3;
    EXPECT_TRUE(manager.AddModifierGroup(g1));
    EXPECT_FALSE(manager.AddModifierGroup(g1));
    EXPECT_TRUE(manager.AddModifierGroup(g2));
    EXPECT_TRUE(manager.AddModifierGroup(g3));
    manager.RemoveModifierGroup(g2);
    manager.RemoveModifierGroup(g2);
    EXPECT_EQ(manager.GetModifierGroups(), (std::vector<ModifierGroup*>{&g1, &g3}));
}

}  // namespace
