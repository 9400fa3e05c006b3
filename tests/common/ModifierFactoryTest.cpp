#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "common/ModifierFactory.h"
#include "common/ModifierGroup.h"
#include "common/ModifierManager.h"
#include "common/RangeModifier.h"
#include "common/RootModifier.h"
#include "common/TableModifier.h"

namespace {

using namespace vrm::common;
using Bytes = std::vector<unsigned char>;

Generator_3_bll::rangeModifier_s Range(unsigned int recycle, bool stream = true, int mode = 0) {
    Generator_3_bll::rangeModifier_s r;
    r.offsetReference = "r" + std::to_string(recycle);
    r.initialValue.data = {1};
    r.stepValue.data = {1};
    r.mask.data = {0xFF};
    r.recycleCount = recycle;
    r.mode = static_cast<Generator_3_bll::configModMode_t>(mode);
    r.useStream = stream;
    return r;
}

TEST(ModifierFactory, CreateModifierByType) {
    struct Case {
        int type;
        bool range;
        bool table;
        bool untouched;
    };
    const std::vector<Case> cases = {
        {0, true, false, false}, {1, false, true, false}, {2, false, false, true}, {-1, false, false, true},
        {1000, false, false, true}};
    for (const auto& c : cases) {
        std::unique_ptr<Modifier> owner;
        ModifierFactory::CreateRootModifier(false, owner);
        Modifier* before = owner.get();
        ModifierFactory::CreateModifier(static_cast<ModifierType>(c.type), owner);
        EXPECT_EQ(owner.get() == before, c.untouched) << c.type;
        EXPECT_EQ(dynamic_cast<RangeModifier*>(owner.get()) != nullptr, c.range) << c.type;
        EXPECT_EQ(dynamic_cast<TableModifier*>(owner.get()) != nullptr, c.table) << c.type;
        if (!c.untouched) {
            EXPECT_TRUE(owner->IsStreamModifier()) << c.type;
        }
    }
}

TEST(ModifierFactory, CreateFromRecords) {
    auto range = ModifierFactory::CreateModifier(Range(3));
    ASSERT_NE(dynamic_cast<RangeModifier*>(range.get()), nullptr);
    EXPECT_EQ(range->GetRecycleCount(), 3u);
    Generator_3_bll::tableModifier_s t;
    t.data.resize(2, Generator_3_bll::modifierData_s{{7}});
    auto table = ModifierFactory::CreateModifier(t);
    ASSERT_NE(dynamic_cast<TableModifier*>(table.get()), nullptr);
    EXPECT_EQ(table->GetRecycleCount(), 2u);
    t.data.clear();
    EXPECT_THROW(ModifierFactory::CreateModifier(t), std::invalid_argument);
}

TEST(RootModifier, ChildrenSetTheWholeCycle) {
    std::unique_ptr<Modifier> root;
    ModifierFactory::CreateRootModifier(true, root);
    EXPECT_EQ(root->GetEffectiveRecycleCount(), 1u);
    EXPECT_TRUE(root->Validate(nullptr));
    auto a = ModifierFactory::CreateModifier(Range(4));
    auto b = ModifierFactory::CreateModifier(Range(6));
    auto nonStream = ModifierFactory::CreateModifier(Range(5, false));
    EXPECT_TRUE(root->AddChildModifier(*a));
    EXPECT_TRUE(root->AddChildModifier(*b));
    EXPECT_FALSE(root->AddChildModifier(*nonStream));
    EXPECT_EQ(root->GetChildStutterCount(), 11u);
    EXPECT_EQ(root->GetEffectiveRecycleCount(), 12u);
    // A chain below a: a's children make a repeat, and the root sees it.
    auto c = ModifierFactory::CreateModifier(Range(3));
    EXPECT_TRUE(a->AddChildModifier(*c));
    EXPECT_EQ(a->GetEffectiveRecycleCount(), 12u);
    EXPECT_EQ(root->GetEffectiveRecycleCount(), 12u);
    c.reset();
    EXPECT_EQ(a->GetEffectiveRecycleCount(), 4u);
    Bytes value{1, 2};
    root->GetValueAt(value, 9);
    EXPECT_EQ(value, (Bytes{1, 2}));
}

TEST(ModifierGroup, ListingRemovalAndValidation) {
    std::unique_ptr<ModifierGroup> group;
    ModifierFactory::CreateModifierGroup(group);
    ASSERT_NE(group, nullptr);
    EXPECT_TRUE(group->Validate(nullptr));
    auto good = ModifierFactory::CreateModifier(Range(1));
    auto bad1 = ModifierFactory::CreateModifier(Range(1, true, 5));
    auto bad2 = ModifierFactory::CreateModifier(Range(2, true, 6));
    EXPECT_TRUE(group->AddModifier(*good));
    EXPECT_FALSE(group->AddModifier(*good));
    EXPECT_TRUE(group->AddModifier(*bad1));
    EXPECT_TRUE(group->AddModifier(*bad2));
    std::ostringstream errors;
    EXPECT_FALSE(group->Validate(&errors));
    EXPECT_EQ(errors.str(), "Modifier r1 mode is invalid.\n");  // stops at the first failure
    group->RemoveModifier(*bad1);
    ASSERT_EQ(group->GetModifiers().size(), 2u);
    EXPECT_EQ(group->GetModifiers()[1], bad2.get());
    group->RemoveModifier(*bad2);
    EXPECT_TRUE(group->Validate(nullptr));
}

TEST(ModifierManager, ListingAndRemoval) {
    ModifierManager manager;
    ModifierGroup g1;
    ModifierGroup g2;
    ModifierGroup g3;
    EXPECT_TRUE(manager.AddModifierGroup(g1));
    EXPECT_FALSE(manager.AddModifierGroup(g1));
    EXPECT_TRUE(manager.AddModifierGroup(g2));
    EXPECT_TRUE(manager.AddModifierGroup(g3));
    manager.RemoveModifierGroup(g2);
    ASSERT_EQ(manager.GetModifierGroups().size(), 2u);
    EXPECT_EQ(manager.GetModifierGroups()[0], &g1);
    EXPECT_EQ(manager.GetModifierGroups()[1], &g3);
    manager.RemoveModifierGroup(g2);
    EXPECT_EQ(manager.GetModifierGroups().size(), 2u);
}

}  // namespace
