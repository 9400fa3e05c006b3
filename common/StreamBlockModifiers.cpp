#include "common/StreamBlockModifiers.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "common/ModifierFactory.h"
#include "interfaces/generator_3_bll_records.h"

namespace vrm {
namespace common {

namespace {

std::string LinkText(unsigned int parent, unsigned int child, const char* what) {
    std::ostringstream text;
    text << "Modifier link from modIndex " << parent << " to modIndex " << child << " " << what;
    return text.str();
}

}  // namespace

StreamBlockModifiers::StreamBlockModifiers(const Generator_3_bll::streamBlock_s& block) {
    m_owned.reserve(block.rangeModifiers.size() + block.tableModifiers.size());
    for (const auto& record : block.rangeModifiers)
        m_owned.push_back(ModifierFactory::CreateModifier(record));
    for (const auto& record : block.tableModifiers)
        m_owned.push_back(ModifierFactory::CreateModifier(record));
    m_children.resize(m_owned.size());

    for (const auto& owned : m_owned) m_byIndex.push_back(owned.get());
    std::stable_sort(m_byIndex.begin(), m_byIndex.end(), [](const Modifier* a, const Modifier* b) {
        return a->GetModIndex() < b->GetModIndex();
    });
    for (std::size_t i = 1; i < m_byIndex.size(); ++i) {
        const unsigned int index = m_byIndex[i]->GetModIndex();
        if (index == m_byIndex[i - 1]->GetModIndex() && (i < 2 || m_byIndex[i - 2]->GetModIndex() != index)) {
            m_linkProblems.push_back("Modifier modIndex " + std::to_string(index) +
                                     " is used by more than one modifier.");
        }
    }

    Link(block);

    bool allStream = true;
    for (const auto& owned : m_owned) allStream = allStream && owned->IsStreamModifier();
    ModifierFactory::CreateRootModifier(allStream, m_root);
    for (Modifier* modifier : m_byIndex) {
        if (modifier->HasParent()) continue;
        if (!m_root->AddChildModifier(*modifier)) {
            m_linkProblems.push_back("Modifier " + modifier->GetOffsetReference() + " (modIndex " +
                                     std::to_string(modifier->GetModIndex()) +
                                     ") cannot be hung under the root: stream and non-stream modifiers are "
                                     "mixed at the top.");
        }
    }
}

StreamBlockModifiers::~StreamBlockModifiers() {
    // Unlink from the top down; each destructor removes its own links.
    m_root.reset();
    while (!m_owned.empty()) m_owned.pop_back();
}

std::size_t StreamBlockModifiers::PositionOf(const Modifier& modifier) const {
    for (std::size_t i = 0; i < m_owned.size(); ++i) {
        if (m_owned[i].get() == &modifier) return i;
    }
    return m_owned.size();
}

bool StreamBlockModifiers::Reaches(const Modifier& from, const Modifier& to) const {
    // Depth-first walk down the links made so far.
    std::vector<const Modifier*> pending{&from};
    std::vector<bool> seen(m_owned.size(), false);
    while (!pending.empty()) {
        const Modifier* current = pending.back();
        pending.pop_back();
        if (current == &to) return true;
        const std::size_t position = PositionOf(*current);
        if (position == m_owned.size() || seen[position]) continue;
        seen[position] = true;
        for (const Modifier* child : m_children[position]) pending.push_back(child);
    }
    return false;
}

void StreamBlockModifiers::Link(const Generator_3_bll::streamBlock_s& block) {
    for (const auto& link : block.modLinks) {
        Modifier* parent = Find(link.modIndex);
        if (parent == nullptr) {
            m_linkProblems.push_back("Modifier link from modIndex " + std::to_string(link.modIndex) +
                                     " refers to an unknown modIndex.");
            continue;
        }
        const std::size_t parentPosition = PositionOf(*parent);
        for (const unsigned int childIndex : link.childModIndex) {
            Modifier* child = Find(childIndex);
            const char* problem = nullptr;
            if (child == nullptr) {
                problem = "refers to an unknown modIndex.";
            } else if (child == parent) {
                problem = "links a modifier to itself.";
            } else if (Reaches(*child, *parent)) {
                problem = "would make a cycle.";
            } else if (std::find(m_children[parentPosition].begin(), m_children[parentPosition].end(),
                                 child) != m_children[parentPosition].end()) {
                problem = "is listed twice.";
            } else if (!parent->AddChildModifier(*child)) {
                problem = "joins stream and non-stream modifiers.";
            }
            if (problem != nullptr) {
                m_linkProblems.push_back(LinkText(link.modIndex, childIndex, problem));
                continue;
            }
            m_children[parentPosition].push_back(child);
        }
    }
}

bool StreamBlockModifiers::Validate(std::ostringstream* errors) {
    bool valid = m_linkProblems.empty();
    if (errors != nullptr) {
        for (const std::string& line : m_linkProblems) *errors << line << '\n';
    }
    for (Modifier* modifier : m_byIndex) {
        if (!modifier->Update(errors)) valid = false;
    }
    // Validation may have changed recycle counts: recompute the repeat counts up the chains.
    for (Modifier* modifier : m_byIndex) modifier->ChildUpdate();
    m_root->ChildUpdate();
    return valid;
}

Modifier& StreamBlockModifiers::At(std::size_t position) const {
    if (position >= m_byIndex.size()) {
        throw std::out_of_range("StreamBlockModifiers::At : position " + std::to_string(position) +
                                " is beyond the " + std::to_string(m_byIndex.size()) + " modifiers\n");
    }
    return *m_byIndex[position];
}

Modifier* StreamBlockModifiers::Find(unsigned int modIndex) const {
    const auto it =
        std::lower_bound(m_byIndex.begin(), m_byIndex.end(), modIndex,
                         [](const Modifier* m, unsigned int index) { return m->GetModIndex() < index; });
    if (it == m_byIndex.end() || (*it)->GetModIndex() != modIndex) return nullptr;
    return *it;
}

void StreamBlockModifiers::SetFieldParams(unsigned int modIndex, unsigned int absoluteBitOffset,
                                          unsigned int bitLength) {
    Modifier* modifier = Find(modIndex);
    if (modifier == nullptr) {
        throw std::invalid_argument("StreamBlockModifiers::SetFieldParams : no modifier with modIndex " +
                                    std::to_string(modIndex) + "\n");
    }
    modifier->SetFieldParams(absoluteBitOffset, bitLength);
}

void StreamBlockModifiers::SetFieldParamsFromFrameStart(unsigned int frameLengthInBytes) {
    if (frameLengthInBytes > 0xFFFFFFFFu / 8) {
        throw std::invalid_argument("StreamBlockModifiers::SetFieldParamsFromFrameStart : frame length " +
                                    std::to_string(frameLengthInBytes) + " bytes is too large\n");
    }
    for (Modifier* modifier : m_byIndex) modifier->SetFieldParams(0, frameLengthInBytes * 8);
}

void StreamBlockModifiers::Reset() {
    for (Modifier* modifier : m_byIndex) modifier->Reset();
}

void StreamBlockModifiers::Next() {
    for (Modifier* modifier : m_byIndex) modifier->Next();
}

void StreamBlockModifiers::ModifyBytes(std::vector<unsigned char>& frame, bool xorMode) {
    for (Modifier* modifier : m_byIndex) modifier->ModifyBytes(frame, xorMode);
}

void StreamBlockModifiers::ModifyBytesAtIndex(std::vector<unsigned char>& frame, unsigned int index) {
    for (Modifier* modifier : m_byIndex) modifier->ModifyBytesAtIndex(frame, index);
}

FramePlan StreamBlockModifiers::MakeFramePlan(const std::vector<unsigned char>& frameTemplate) const {
    return FramePlan(*this, frameTemplate);
}

void StreamBlockModifiers::ToRpc(Generator_3_bll::streamBlock_s& block) const {
    block.rangeModifiers.clear();
    block.tableModifiers.clear();
    for (const auto& owned : m_owned) owned->ToRpc(block);
}

}  // namespace common
}  // namespace vrm
