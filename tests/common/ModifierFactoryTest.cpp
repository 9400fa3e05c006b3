#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "RangeReference.h"
#include "common/ModifierFactory.h"
#include "common/ModifierGroup.h"
#include "common/ModifierManager.h"
#include "common/RangeModifier.h"
#include "common/TableModifier.h"

namespace {

using namespace vrm::common;
using range_reference::MakeRange;

TEST(ModifierFactory, CreateModifierByType) {
    const struct {
        int type;
        bool range, table, untouched;
    } cases[] = {{0, true, false, false}, {1, false, true, false}, {2, false, false, true}, {-1, false, false, true},
                 {1000, false, false, true}};
    for (const auto& c : cases) {
        std::unique_ptr<Modifier> owner;
        ModifierFactory::CreateRootModifier(false, owner);
        Modifier* before = owner.get();
        ModifierFactory::CreateModifier(static_cast<ModifierType>(c.type), owner);
        EXPECT_EQ(owner.get() == before, c.untouched) << c.type;
        EXPECT_EQ(dynamic_cast<RangeModifier*>(owner.get()) != nullptr, c.range) << c.type;
        EXPECT_EQ(dynamic_cast<TableModifier*>(owner.get()) != nullptr, c.table) << c.type;
        EXPECT_EQ(owner->IsStreamModifier(), !c.untouched) << c.type;
    }
}

TEST(ModifierGroup, ListingRemovalAndValidation) {
    std::unique_ptr<ModifierGroup> group;
    ModifierFactory::CreateModifierGroup(group);
    ASSERT_NE(group, nullptr);
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
    EXPECT_EQ(errors.str(), "Modifier bad1 mode is invalid.\n");  // stops at the first failure
    group->RemoveModifier(*bad1);
    ASSERT_EQ(group->GetModifiers().size(), 2u);
    EXPECT_EQ(group->GetModifiers()[1], bad2.get());
    group->RemoveModifier(*bad2);
    EXPECT_TRUE(group->Validate(nullptr));
}

TEST(ModifierManager, ListingAndRemoval) {
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
