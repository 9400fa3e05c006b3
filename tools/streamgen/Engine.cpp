#include "tools/streamgen/Engine.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>

#include "common/Modifier.h"
#include "common/ModifierFactory.h"
#include "interfaces/generator_3_bll_records.h"
#include "tools/streamgen/JsonRecord.h"

namespace streamgen {

using vrm::common::Modifier;
using vrm::common::ModifierFactory;

namespace {

std::string chomp(std::string s) {
    while (!s.empty() && (s.back() == '\n' || s.back() == '\r')) s.pop_back();
    return s;
}

}  // namespace

struct BlockModifiers::Impl {
    // Owned modifiers in record order: the range modifiers, then the table modifiers.
    std::vector<std::unique_ptr<Modifier>> owned;
    std::vector<std::string> recordPath;  // JSON path of each one's record
    std::vector<Modifier*> ordered;       // by modIndex
};

BlockModifiers::BlockModifiers(const BlockInput& in) : m_impl(std::make_unique<Impl>()) {
    const auto& block = in.block;
    std::map<uint32_t, Modifier*> byIndex;
    auto add = [&](std::unique_ptr<Modifier> m, uint32_t modIndex, const std::string& path) {
        if (byIndex.count(modIndex) != 0) {
            throw InputError(path + ".modIndex", "modIndex " + std::to_string(modIndex) + " is used twice");
        }
        byIndex[modIndex] = m.get();
        m_impl->recordPath.push_back(path);
        m_impl->owned.push_back(std::move(m));
    };
    try {
        for (std::size_t i = 0; i < block.rangeModifiers.size(); ++i) {
            add(ModifierFactory::CreateModifier(block.rangeModifiers[i]), block.rangeModifiers[i].modIndex,
                element_path("rangeModifiers", i));
        }
        for (std::size_t i = 0; i < block.tableModifiers.size(); ++i) {
            add(ModifierFactory::CreateModifier(block.tableModifiers[i]), block.tableModifiers[i].modIndex,
                element_path("tableModifiers", i));
        }
    } catch (const std::invalid_argument& e) {
        throw BuildError(chomp(e.what()));
    }

    // Total counts before the links: a link reads its children's effective recycle counts.
    for (const auto& [modIndex, h] : in.host) {
        if (h.totalCount) byIndex.at(modIndex)->SetTotalCount(*h.totalCount);
    }

    for (std::size_t l = 0; l < block.modLinks.size(); ++l) {
        const auto& link = block.modLinks[l];
        const std::string path = element_path("modLinks", l);
        auto parent = byIndex.find(link.modIndex);
        if (parent == byIndex.end()) {
            throw InputError(path + ".modIndex", "no modifier has modIndex " + std::to_string(link.modIndex));
        }
        for (std::size_t c = 0; c < link.childModIndex.size(); ++c) {
            const std::string cp = element_path(path + ".childModIndex", c);
            auto child = byIndex.find(link.childModIndex[c]);
            if (child == byIndex.end()) {
                throw InputError(cp, "no modifier has modIndex " + std::to_string(link.childModIndex[c]));
            }
            if (!parent->second->AddChildModifier(*child->second)) {
                throw InputError(cp, "the library refuses to link modIndex " + std::to_string(link.childModIndex[c]) +
                                         " under modIndex " + std::to_string(link.modIndex));
            }
        }
    }

    // Every modifier is validated, so that all the lines show; then the valid ones are
    // brought up to date (fresh generators from the final counts).
    std::ostringstream lines;
    bool valid = true;
    for (auto& m : m_impl->owned) valid = m->Validate(&lines) && valid;
    if (valid) {
        for (auto& m : m_impl->owned) valid = m->Update(&lines) && valid;
    }
    m_valid = valid;
    m_validation = lines.str();

    for (const auto& [modIndex, m] : byIndex) {
        (void)modIndex;
        m_impl->ordered.push_back(m);
    }
}

BlockModifiers::~BlockModifiers() = default;

std::size_t BlockModifiers::Size() const { return m_impl->ordered.size(); }
uint32_t BlockModifiers::ModIndex(std::size_t i) const { return m_impl->ordered[i]->GetModIndex(); }
void BlockModifiers::Value(std::size_t i, std::vector<uint8_t>& out) { m_impl->ordered[i]->GetValue(out); }
void BlockModifiers::ValueAt(std::size_t i, std::vector<uint8_t>& out, uint32_t index) {
    m_impl->ordered[i]->GetValueAt(out, index);
}

void BlockModifiers::Next() {
    for (Modifier* m : m_impl->ordered) m->Next();
}

void BlockModifiers::Seek(uint64_t index) {
    for (Modifier* m : m_impl->ordered) m->Reset();
    for (uint64_t i = 0; i < index; ++i) Next();
}

void BlockModifiers::PlaceFields(const BlockInput& in) {
    for (std::size_t k = 0; k < m_impl->owned.size(); ++k) {
        Modifier& m = *m_impl->owned[k];
        auto h = in.host.find(m.GetModIndex());
        FieldPlace place;
        std::string where;
        if (h != in.host.end() && h->second.place) {
            place = *h->second.place;
            where = h->second.path;
        } else {
            // No host place: the whole frame is the field, so the record's offset counts from
            // the frame's first byte.
            place.bitOffset = 0;
            place.bitLength = static_cast<unsigned int>(in.frame.size() * 8u);
            where = m_impl->recordPath[k] + ".offset";
        }
        try {
            m.SetFieldParams(place.bitOffset, place.bitLength);
        } catch (const std::exception& e) {
            throw InputError(where, "the library refuses the field (" + chomp(e.what()) + ")");
        }
    }
}

void BlockModifiers::Modify(std::vector<uint8_t>& frame) {
    for (Modifier* m : m_impl->ordered) m->ModifyBytes(frame, false);
}

Generator_3_bll::streamBlock_s BlockModifiers::ToRpc(const Generator_3_bll::streamBlock_s& block) {
    Generator_3_bll::streamBlock_s out = block;
    out.rangeModifiers.clear();
    out.tableModifiers.clear();
    for (auto& m : m_impl->owned) m->ToRpc(out);
    return out;
}

}  // namespace streamgen
