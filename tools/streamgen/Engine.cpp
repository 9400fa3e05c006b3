#include "tools/streamgen/Engine.h"

#include <sstream>
#include <stdexcept>

#include "common/Modifier.h"
#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll_records.h"
#include "tools/streamgen/JsonRecord.h"

namespace streamgen {

using vrm::common::Modifier;
using vrm::common::StreamBlockModifiers;

namespace {

std::string chomp(std::string s) {
    while (!s.empty() && (s.back() == '\n' || s.back() == '\r')) s.pop_back();
    return s;
}

}  // namespace

struct BlockModifiers::Impl {
    std::unique_ptr<StreamBlockModifiers> mods;
};

BlockModifiers::BlockModifiers(const BlockInput& in) : m_impl(std::make_unique<Impl>()) {
    try {
        m_impl->mods = std::make_unique<StreamBlockModifiers>(in.block);
    } catch (const std::invalid_argument& e) {
        throw BuildError(chomp(e.what()));
    }
    StreamBlockModifiers& mods = *m_impl->mods;
    // Total counts before validation, which recomputes the chain's repeat counts.
    for (const auto& [modIndex, h] : in.host) {
        if (!h.totalCount) continue;
        if (Modifier* m = mods.Find(modIndex)) m->SetTotalCount(*h.totalCount);
    }
    std::ostringstream lines;
    m_valid = mods.Validate(&lines);
    m_validation = lines.str();
}

BlockModifiers::~BlockModifiers() = default;

std::size_t BlockModifiers::Size() const { return m_impl->mods->Size(); }
uint32_t BlockModifiers::ModIndex(std::size_t i) const { return m_impl->mods->At(i).GetModIndex(); }
void BlockModifiers::Value(std::size_t i, std::vector<uint8_t>& out) { m_impl->mods->At(i).GetValue(out); }
void BlockModifiers::ValueAt(std::size_t i, std::vector<uint8_t>& out, uint32_t index) {
    m_impl->mods->At(i).GetValueAt(out, index);
}

void BlockModifiers::Next() { m_impl->mods->Next(); }

void BlockModifiers::Seek(uint64_t index) {
    m_impl->mods->Reset();
    for (uint64_t i = 0; i < index; ++i) m_impl->mods->Next();
}

void BlockModifiers::PlaceFields(const BlockInput& in) {
    StreamBlockModifiers& mods = *m_impl->mods;
    // Paths of the records, by modIndex (unique in a valid block), for messages.
    auto record_path = [&in](uint32_t modIndex) {
        for (std::size_t i = 0; i < in.block.rangeModifiers.size(); ++i) {
            if (in.block.rangeModifiers[i].modIndex == modIndex) return element_path("rangeModifiers", i);
        }
        for (std::size_t i = 0; i < in.block.tableModifiers.size(); ++i) {
            if (in.block.tableModifiers[i].modIndex == modIndex) return element_path("tableModifiers", i);
        }
        return std::string("modIndex ") + std::to_string(modIndex);
    };
    for (std::size_t k = 0; k < mods.Size(); ++k) {
        const uint32_t modIndex = mods.At(k).GetModIndex();
        auto h = in.host.find(modIndex);
        FieldPlace place;
        std::string where;
        if (h != in.host.end() && h->second.place) {
            place = *h->second.place;
            where = h->second.path;
        } else {
            // No host field: the whole frame is the field, so the record's offset counts from
            // the frame's first byte.
            place.bitOffset = 0;
            place.bitLength = static_cast<unsigned int>(in.frame.size() * 8u);
            where = record_path(modIndex) + ".offset";
        }
        try {
            mods.SetFieldParams(modIndex, place.bitOffset, place.bitLength);
        } catch (const std::exception& e) {
            throw InputError(where, "the library refuses the field (" + chomp(e.what()) + ")");
        }
    }
}

void BlockModifiers::Modify(std::vector<uint8_t>& frame) { m_impl->mods->ModifyBytes(frame); }

Generator_3_bll::streamBlock_s BlockModifiers::ToRpc(const Generator_3_bll::streamBlock_s& block) {
    Generator_3_bll::streamBlock_s out = block;
    m_impl->mods->ToRpc(out);
    return out;
}

}  // namespace streamgen
