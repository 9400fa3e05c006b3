#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "RangeReference.h"
#include "common/FramePlan.h"
#include "common/ModifierFactory.h"
#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll_records.h"

namespace {

using Generator_3_bll::modLinkDesc_s;
using Generator_3_bll::rangeModifier_s;
using Generator_3_bll::streamBlock_s;
using Generator_3_bll::tableModifier_s;
using range_reference::Bytes;
using range_reference::MakeRange;
using range_reference::MakeTable;
using vrm::common::Modifier;
using vrm::common::ModifierFactory;
using vrm::common::StreamBlockModifiers;

rangeModifier_s Range(unsigned int modIndex, std::uint16_t offset, unsigned int recycle, bool stream = true) {
    rangeModifier_s r =
        MakeRange({0x10}, {0x01}, {0xFF}, 0, recycle, 0, stream, ("m" + std::to_string(modIndex)).c_str());
    r.modIndex = modIndex;
    r.offset = offset;
    return r;
}

tableModifier_s Table(unsigned int modIndex, std::uint16_t offset, const std::vector<Bytes>& values) {
    tableModifier_s t = MakeTable(values, 0, true, ("t" + std::to_string(modIndex)).c_str());
    t.modIndex = modIndex;
    t.offset = offset;
    return t;
}

// Three chained modifiers, table 5 (outer) -> range 2 (middle) -> range 9 (inner), and a lone
// table 7, recorded out of modIndex order.
TEST(StreamBlockModifiers, WholeBlockInFramesOutAndBackIntoTheBlock) {
    streamBlock_s in;
    in.name = "chain";
    in.rangeModifiers = {Range(9, 2, 3), Range(2, 1, 0)};  // recycle 0: normalised to 1 by validation
    in.rangeModifiers[1].stutterCount = 1;
    in.tableModifiers = {Table(7, 4, {{0x01}}), Table(5, 3, {{0xAA}, {0xBB}})};
    in.modLinks = {modLinkDesc_s{5, {2}}, modLinkDesc_s{2, {9}}};
    StreamBlockModifiers mods(in);
    ASSERT_EQ(mods.Size(), 4u);
    EXPECT_EQ(mods.At(0).GetModIndex(), 2u);
    EXPECT_EQ(mods.At(1).GetModIndex(), 5u);
    EXPECT_EQ(mods.At(3).GetModIndex(), 9u);
    EXPECT_EQ(mods.Find(6), nullptr);
    EXPECT_THROW(mods.At(4), std::out_of_range);

    std::ostringstream errors;
    ASSERT_TRUE(mods.Validate(&errors)) << errors.str();
    EXPECT_EQ(errors.str(), "");
    // inner: 3 frames; middle: 1 value * 2 repeats * 3 = 6; outer: 2 values * 6 = 12.
    EXPECT_EQ(mods.Find(9)->GetEffectiveRecycleCount(), 3u);
    EXPECT_EQ(mods.Find(2)->GetEffectiveRecycleCount(), 6u);
    EXPECT_EQ(mods.Find(5)->GetEffectiveRecycleCount(), 12u);
    EXPECT_EQ(mods.Root().GetEffectiveRecycleCount(), 12u);
    EXPECT_TRUE(mods.Root().IsStreamModifier());

    mods.SetFieldParamsFromFrameStart(5);
    mods.Reset();
    for (unsigned int f = 0; f < 14; ++f) {
        const unsigned char outer = (f % 12) < 6 ? 0xAA : 0xBB;
        const unsigned char inner = static_cast<unsigned char>(0x10 + f % 3);
        Bytes frame(5, 0xEE), indexed(5, 0xEE);
        mods.ModifyBytes(frame);
        mods.ModifyBytesAtIndex(indexed, f);
        EXPECT_EQ(frame, (Bytes{0xEE, 0x10, inner, outer, 0x01})) << f;
        EXPECT_EQ(indexed, frame) << f;
        mods.Next();
    }

    streamBlock_s out = in;
    out.rangeModifiers.push_back(rangeModifier_s{});
    mods.ToRpc(out);
    streamBlock_s expected = in;
    expected.rangeModifiers[1].recycleCount = 1;
    EXPECT_EQ(out, expected);
}

TEST(StreamBlockModifiers, ModifierFailuresAreAllReported) {
    streamBlock_s block;
    block.rangeModifiers = {MakeRange({1}, {1}, {1, 1}, 0, 1, 0, true, "a"),
                            MakeRange({1}, {1}, {1}, 7, 1, 0, true, "b")};
    block.rangeModifiers[1].modIndex = 1;
    block.tableModifiers = {Table(2, 0, {{1}, {1, 2}})};
    StreamBlockModifiers mods(block);
    std::ostringstream errors;
    EXPECT_FALSE(mods.Validate(&errors));
    EXPECT_EQ(errors.str(),
              "Modifier a initial, step and mask value do not match.\n"
              "Modifier b mode is invalid.\n"
              "Modifier t2 data size is not consistent.\n");
    EXPECT_THROW(mods.Reset(), std::logic_error);
    EXPECT_THROW(mods.SetFieldParams(3, 0, 8), std::invalid_argument);
}

TEST(StreamBlockModifiers, EmptyBlock) {
    StreamBlockModifiers mods{streamBlock_s{}};
    EXPECT_TRUE(mods.Validate(nullptr));
    EXPECT_EQ(mods.Size(), 0u);
    EXPECT_EQ(mods.Root().GetEffectiveRecycleCount(), 1u);
    Bytes frame{1, 2};
    mods.Reset();
    mods.ModifyBytes(frame);
    mods.Next();
    EXPECT_EQ(frame, (Bytes{1, 2}));
    Bytes frames(7, 0);
    mods.MakeFramePlan(frame).Stamp(5, 3, frames.data(), 2);
    EXPECT_EQ(frames, (Bytes{1, 2, 1, 2, 1, 2, 0}));
}

// Linking a whole block at once gives what linking one modifier at a time through the
// Modifier interface gives: the same link problems, in the same order, and the same repeat
// counts after validation. The reference links in record order, checks cycles by walking the
// links made so far, and validates each modifier, then updates the chains in modIndex order.
TEST(StreamBlockModifiers, BulkLinkingEqualsLinkingOneByOne) {
    std::mt19937 rng(11);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        streamBlock_s block;
        const unsigned int n = 1 + rng() % 9;
        for (unsigned int i = 0; i < n; ++i) {
            rangeModifier_s r = Range(1 + rng() % 12, 0, rng() % 4, rng() % 6 != 0);
            r.stutterCount = rng() % 2;
            block.rangeModifiers.push_back(r);
        }
        const unsigned int links = rng() % 12;
        for (unsigned int i = 0; i < links; ++i) {
            modLinkDesc_s link{1 + static_cast<unsigned int>(rng() % 13), {}};
            for (unsigned int c = rng() % 3; c > 0; --c) link.childModIndex.push_back(1 + rng() % 13);
            block.modLinks.push_back(link);
        }

        StreamBlockModifiers mods(block);
        std::ostringstream bulk;
        const bool valid = mods.Validate(&bulk);

        // The reference.
        std::vector<std::unique_ptr<Modifier>> owned;
        for (const auto& r : block.rangeModifiers) owned.push_back(ModifierFactory::CreateModifier(r));
        std::vector<Modifier*> byIndex;
        for (auto& m : owned) byIndex.push_back(m.get());
        std::stable_sort(byIndex.begin(), byIndex.end(),
                         [](auto* a, auto* b) { return a->GetModIndex() < b->GetModIndex(); });
        auto find = [&](unsigned int index) -> Modifier* {
            for (auto* m : byIndex) if (m->GetModIndex() == index) return m;
            return nullptr;
        };
        std::map<Modifier*, std::vector<Modifier*>> made;
        std::function<bool(Modifier*, Modifier*)> reaches = [&](auto* from, auto* to) {
            if (from == to) return true;
            for (auto* c : made[from]) {
                if (reaches(c, to)) return true;
            }
            return false;
        };
        std::ostringstream expected;
        for (std::size_t i = 1; i < byIndex.size(); ++i) {
            const unsigned int index = byIndex[i]->GetModIndex();
            if (index == byIndex[i - 1]->GetModIndex() && (i < 2 || byIndex[i - 2]->GetModIndex() != index)) {
                expected << "Modifier modIndex " << index << " is used by more than one modifier.\n";
            }
        }
        for (const auto& link : block.modLinks) {
            auto* parent = find(link.modIndex);
            if (parent == nullptr) {
                expected << "Modifier link from modIndex " << link.modIndex << " refers to an unknown modIndex.\n";
                continue;
            }
            for (unsigned int c : link.childModIndex) {
                auto* child = find(c);
                const char* problem = nullptr;
                if (child == nullptr) problem = "refers to an unknown modIndex.";
                else if (child == parent) problem = "links a modifier to itself.";
                else if (reaches(child, parent)) problem = "would make a cycle.";
                else if (std::count(made[parent].begin(), made[parent].end(), child) != 0) problem = "is listed twice.";
                else if (!parent->AddChildModifier(*child)) problem = "joins stream and non-stream modifiers.";
                else made[parent].push_back(child);
                if (problem != nullptr) {
                    expected << "Modifier link from modIndex " << link.modIndex << " to modIndex " << c << " "
                             << problem << "\n";
                }
            }
        }
        bool allStream = true;
        for (auto& m : owned) allStream = allStream && m->IsStreamModifier();
        std::unique_ptr<Modifier> root;
        ModifierFactory::CreateRootModifier(allStream, root);
        for (auto* m : byIndex) {
            if (!m->HasParent() && !root->AddChildModifier(*m)) {
                expected << "Modifier " << m->GetOffsetReference() << " (modIndex " << m->GetModIndex()
                         << ") cannot be hung under the root: stream and non-stream modifiers are mixed at the top.\n";
            }
        }
        for (auto* m : byIndex) m->Update(&expected);
        for (auto* m : byIndex) m->ChildUpdate();
        root->ChildUpdate();

        EXPECT_EQ(bulk.str(), expected.str());
        EXPECT_EQ(valid, expected.str().empty());
        EXPECT_EQ(mods.Root().GetEffectiveRecycleCount(), root->GetEffectiveRecycleCount());
        for (std::size_t i = 0; i < byIndex.size(); ++i) {
            EXPECT_EQ(mods.At(i).GetChildStutterCount(), byIndex[i]->GetChildStutterCount()) << "position " << i;
        }
        root.reset();
        owned.clear();
    }
}

}  // namespace
