#include "tools/streamgen/Engine.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "common/Modifier.h"
#include "common/ModifierFactory.h"
#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll_records.h"
#include "tools/streamgen/JsonRecord.h"

namespace streamgen {

using vrm::common::Modifier;
using vrm::common::ModifierFactory;
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
        // Name the record the library refuses when one alone is refused.
        auto check = [](const auto& records, const char* name) {
            for (std::size_t i = 0; i < records.size(); ++i) {
                try {
                    ModifierFactory::CreateModifier(records[i]);
                } catch (const std::invalid_argument& r) {
                    throw BuildError(element_path(name, i) + ": " + chomp(r.what()));
                }
            }
        };
        check(in.block.rangeModifiers, "rangeModifiers");
        check(in.block.tableModifiers, "tableModifiers");
        throw BuildError("(modifiers): " + chomp(e.what()));
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

namespace {

// JSON path of the record of `modIndex` (unique in a valid block), for messages.
std::string record_path(const BlockInput& in, uint32_t modIndex) {
    for (std::size_t i = 0; i < in.block.rangeModifiers.size(); ++i) {
        if (in.block.rangeModifiers[i].modIndex == modIndex) return element_path("rangeModifiers", i);
    }
    for (std::size_t i = 0; i < in.block.tableModifiers.size(); ++i) {
        if (in.block.tableModifiers[i].modIndex == modIndex) return element_path("tableModifiers", i);
    }
    return std::string("modIndex ") + std::to_string(modIndex);
}

std::string offset_reference(const BlockInput& in, uint32_t modIndex) {
    for (const auto& r : in.block.rangeModifiers) {
        if (r.modIndex == modIndex) return r.offsetReference;
    }
    for (const auto& t : in.block.tableModifiers) {
        if (t.modIndex == modIndex) return t.offsetReference;
    }
    return {};
}

// Library texts in one line.
std::string one_line(const std::string& text) {
    std::string s = chomp(text);
    for (std::size_t at = s.find('\n'); at != std::string::npos; at = s.find('\n', at)) s.replace(at, 1, "; ");
    return s;
}

std::string byte_range(const std::vector<uint8_t>& bits) {
    std::size_t first = bits.size(), last = 0;
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (bits[i] == 0) continue;
        first = std::min(first, i);
        last = i;
    }
    return first == last ? "byte " + std::to_string(first)
                         : "bytes " + std::to_string(first) + ".." + std::to_string(last);
}

}  // namespace

void BlockModifiers::PlaceFields(const BlockInput& in, std::vector<std::string>* warnings) {
    StreamBlockModifiers& mods = *m_impl->mods;
    for (std::size_t k = 0; k < mods.Size(); ++k) {
        const uint32_t modIndex = mods.At(k).GetModIndex();
        auto h = in.host.find(modIndex);
        FieldPlace place;
        std::string where;
        std::string why;
        const std::string reference = offset_reference(in, modIndex);
        if (h != in.host.end() && h->second.place) {
            place = *h->second.place;
            where = h->second.path;
        } else if (resolve_field(in.frame, reference, place, why)) {
            where = record_path(in, modIndex) + ".offsetReference";
        } else {
            // No field: the whole frame is the field, so the record's offset counts from the
            // frame's first byte.
            place.bitOffset = 0;
            place.bitLength = static_cast<unsigned int>(in.frame.size() * 8u);
            where = record_path(in, modIndex) + ".offset";
            if (warnings != nullptr) {
                warnings->push_back(record_path(in, modIndex) +
                                    ": no field given (host.modifiers) and offsetReference \"" + reference +
                                    "\" is no known field, so the offset counts from the frame's first byte");
            }
        }
        try {
            mods.SetFieldParams(modIndex, place.bitOffset, place.bitLength);
        } catch (const std::exception& e) {
            throw InputError(where, "the library refuses the field (" + one_line(e.what()) + ")");
        }
    }
}

vrm::common::FramePlan BlockModifiers::MakePlan(const BlockInput& in) {
    StreamBlockModifiers& mods = *m_impl->mods;
    try {
        return mods.MakeFramePlan(in.frame);
    } catch (const std::exception& e) {
        // Find the modifier the first frame fails on, to name it.
        for (std::size_t k = 0; k < mods.Size(); ++k) {
            std::vector<uint8_t> frame = in.frame;
            try {
                mods.At(k).ModifyBytesAtIndex(frame, 0);
            } catch (const std::exception& m) {
                throw InputError(record_path(in, mods.At(k).GetModIndex()),
                                 "the value does not fit the frame (" + one_line(m.what()) + ")");
            }
        }
        throw InputError("baseStream.frame.data", "the library refuses the frames (" + one_line(e.what()) + ")");
    }
}

// The bits each modifier writes: those its value sets in a frame of zeros and clears in a
// frame of ones (the packer's mask is the same for every value).
std::vector<std::vector<uint8_t>> BlockModifiers::BitsOfEach(const BlockInput& in) {
    StreamBlockModifiers& mods = *m_impl->mods;
    std::vector<std::vector<uint8_t>> owned(mods.Size());
    for (std::size_t k = 0; k < mods.Size(); ++k) {
        std::vector<uint8_t> zeros(in.frame.size(), 0), ones(in.frame.size(), 0xff);
        mods.At(k).ModifyBytesAtIndex(zeros, 0);
        mods.At(k).ModifyBytesAtIndex(ones, 0);
        owned[k].resize(in.frame.size());
        for (std::size_t i = 0; i < in.frame.size(); ++i) owned[k][i] = static_cast<uint8_t>(zeros[i] | ~ones[i]);
    }
    return owned;
}

std::vector<uint8_t> BlockModifiers::WrittenBits(const BlockInput& in) {
    std::vector<uint8_t> all(in.frame.size(), 0);
    for (const auto& bits : BitsOfEach(in)) {
        for (std::size_t i = 0; i < all.size(); ++i) all[i] |= bits[i];
    }
    return all;
}

std::vector<std::string> BlockModifiers::Warnings(const BlockInput& in) {
    StreamBlockModifiers& mods = *m_impl->mods;
    std::vector<std::string> out;
    const std::vector<std::vector<uint8_t>> owned = BitsOfEach(in);
    for (std::size_t a = 0; a < owned.size(); ++a) {
        for (std::size_t b = a + 1; b < owned.size(); ++b) {
            std::vector<uint8_t> both(in.frame.size());
            bool any = false;
            for (std::size_t i = 0; i < both.size(); ++i) {
                both[i] = owned[a][i] & owned[b][i];
                any = any || both[i] != 0;
            }
            if (!any) continue;
            out.push_back(record_path(in, mods.At(a).GetModIndex()) + ": writes the same bits as " +
                          record_path(in, mods.At(b).GetModIndex()) + " (frame " + byte_range(both) +
                          "); the modifier with the higher modIndex wins");
        }
    }
    // Stepping against values by index over the first frames: they differ only where an
    // addition carries through bits outside the mask.
    constexpr uint64_t kWork = 1u << 20;
    const uint64_t frames = mods.Size() == 0 ? 0 : std::min<uint64_t>(65536, kWork / mods.Size());
    std::vector<bool> reported(mods.Size(), false);
    std::vector<uint8_t> stepped, indexed;
    mods.Reset();
    for (uint64_t i = 0; i < frames; ++i) {
        for (std::size_t k = 0; k < mods.Size(); ++k) {
            if (reported[k]) continue;
            mods.At(k).GetValue(stepped);
            mods.At(k).GetValueAt(indexed, static_cast<unsigned int>(i));
            if (stepped == indexed) continue;
            reported[k] = true;
            out.push_back(record_path(in, mods.At(k).GetModIndex()) +
                          ": stepping carries into bits outside the mask (see initialValue and mask): frame " +
                          std::to_string(i) + " gets " + to_hex(stepped) + ", where values --at shows " +
                          to_hex(indexed));
        }
        mods.Next();
    }
    mods.Reset();
    return out;
}

void BlockModifiers::Modify(std::vector<uint8_t>& frame) { m_impl->mods->ModifyBytes(frame); }

Generator_3_bll::streamBlock_s BlockModifiers::ToRpc(const Generator_3_bll::streamBlock_s& block) {
    Generator_3_bll::streamBlock_s out = block;
    m_impl->mods->ToRpc(out);
    return out;
}

}  // namespace streamgen
