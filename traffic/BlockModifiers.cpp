#include "traffic/BlockModifiers.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "common/FieldPackerImpl.h"
#include "common/Modifier.h"
#include "common/ModifierFactory.h"
#include "common/RangeModifier.h"
#include "common/TableModifier.h"
#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll_records.h"
#include "traffic/JsonRecord.h"

namespace vrm::traffic {

using vrm::common::FieldPackerImpl;
using vrm::common::Modifier;
using vrm::common::ModifierFactory;
using vrm::common::RangeModifier;
using vrm::common::StreamBlockModifiers;
using vrm::common::TableModifier;

namespace {

std::string chomp(std::string s) {
    while (!s.empty() && (s.back() == '\n' || s.back() == '\r')) s.pop_back();
    return s;
}

}  // namespace

namespace {

// JSON path of the first record of `list` with `modIndex`, or empty.
template <class Records>
std::string path_in(const Records& list, const char* name, uint32_t modIndex) {
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].modIndex == modIndex) return element_path(name, i);
    }
    return {};
}

// JSON path of the record of `modIndex` (unique in a valid block), for messages: the range
// record when there is one, else the table record.
std::string record_path(const BlockInput& in, uint32_t modIndex) {
    std::string path = path_in(in.block.rangeModifiers, "rangeModifiers", modIndex);
    if (path.empty()) path = path_in(in.block.tableModifiers, "tableModifiers", modIndex);
    return path.empty() ? "modIndex " + std::to_string(modIndex) : path;
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

__extension__ typedef unsigned __int128 Wide;

std::string wide_text(Wide v) {
    std::string s;
    do {
        s.insert(s.begin(), static_cast<char>('0' + static_cast<int>(v % 10)));
        v /= 10;
    } while (v != 0);
    return s;
}

// "modifier NAME (modIndex N)", or "modifier (modIndex N)" for one without a name.
std::string modifier_name(const Modifier& m) {
    const std::string name = m.GetOffsetReference();
    return "modifier " + (name.empty() ? std::string() : name + " ") + "(modIndex " +
           std::to_string(m.GetModIndex()) + ")";
}

// `text` with a closing parenthesis added for each one it leaves open.
std::string balanced(std::string text) {
    long open = 0;
    for (const char c : text) {
        if (c == '(') ++open;
        if (c == ')' && open > 0) --open;
    }
    text.append(static_cast<std::size_t>(open), ')');
    return text;
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


// The path of the range (or table) record of `modIndex`.
std::string kind_path(const BlockInput& in, uint32_t modIndex, bool range) {
    const std::string path = range ? path_in(in.block.rangeModifiers, "rangeModifiers", modIndex)
                                   : path_in(in.block.tableModifiers, "tableModifiers", modIndex);
    return path.empty() ? record_path(in, modIndex) : path;
}

// Sizes a library line about a record's values leaves unsaid: the widths of a table's
// entries that differ from the first (the path then names the first such entry), and the
// lengths of a range's initial value, step and mask when they differ.
std::string size_detail(const BlockInput& in, uint32_t modIndex, bool range, std::string& path) {
    if (range) {
        for (const auto& r : in.block.rangeModifiers) {
            if (r.modIndex != modIndex) continue;
            const std::size_t i = r.initialValue.data.size(), st = r.stepValue.data.size(), m = r.mask.data.size();
            if (i == st && i == m) return {};
            return " (initialValue has " + std::to_string(i) + " bytes, stepValue " + std::to_string(st) +
                   ", mask " + std::to_string(m) + ")";
        }
        return {};
    }
    for (const auto& t : in.block.tableModifiers) {
        if (t.modIndex != modIndex || t.data.empty()) continue;
        const std::size_t first = t.data[0].data.size();
        for (std::size_t e = 1; e < t.data.size(); ++e) {
            if (t.data[e].data.size() == first) continue;
            path = element_path(path + ".data", e);
            return " (data[" + std::to_string(e) + "] has " + std::to_string(t.data[e].data.size()) +
                   " bytes, data[0] " + std::to_string(first) + ")";
        }
    }
    return {};
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
    m_lines = Annotate(in);
    for (std::size_t k = 0; k < mods.Size(); ++k) {
        const uint32_t modIndex = mods.At(k).GetModIndex();
        m_paths[modIndex] = record_path(in, modIndex);
    }
}

namespace {

std::vector<std::string> split_lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) out.push_back(line);
    }
    return out;
}

// Numbers that follow "modIndex " in a library line, in order.
std::vector<uint32_t> mod_indexes_in(const std::string& line) {
    std::vector<uint32_t> out;
    const std::string key = "modIndex ";
    for (std::size_t at = line.find(key); at != std::string::npos; at = line.find(key, at + 1)) {
        std::size_t i = at + key.size();
        uint64_t v = 0;
        bool any = false;
        while (i < line.size() && line[i] >= '0' && line[i] <= '9' && v <= 0xffffffffu) {
            v = v * 10 + static_cast<uint64_t>(line[i++] - '0');
            any = true;
        }
        if (any && v <= 0xffffffffu) out.push_back(static_cast<uint32_t>(v));
    }
    return out;
}

}  // namespace

// Each line of the library's validation with the JSON path of the record it concerns, and
// the sizes it is about where it names none. The library's own text is kept whole.
std::vector<std::string> BlockModifiers::Annotate(const BlockInput& in) const {
    const std::vector<std::string> all = split_lines(m_validation);
    // The lines of each modifier alone: the same checks on a second set built alike.
    StreamBlockModifiers again(in.block);
    for (const auto& [modIndex, h] : in.host) {
        if (!h.totalCount) continue;
        if (Modifier* m = again.Find(modIndex)) m->SetTotalCount(*h.totalCount);
    }
    std::vector<std::pair<std::size_t, std::string>> own;  // position, line
    for (std::size_t k = 0; k < again.Size(); ++k) {
        std::ostringstream lines;
        again.At(k).Update(&lines);
        for (auto& line : split_lines(lines.str())) own.emplace_back(k, std::move(line));
    }
    const std::size_t linkLines = all.size() >= own.size() ? all.size() - own.size() : 0;
    std::vector<std::string> out;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::string& line = all[i];
        std::string path;
        std::string detail;
        if (i >= linkLines && own[i - linkLines].second == line) {
            const Modifier& m = again.At(own[i - linkLines].first);
            path = kind_path(in, m.GetModIndex(), m.isRange());
            detail = size_detail(in, m.GetModIndex(), m.isRange(), path);
        } else {
            const std::vector<uint32_t> numbers = mod_indexes_in(line);
            if (line.rfind("Modifier link from modIndex", 0) == 0 && !numbers.empty()) {
                for (std::size_t l = 0; l < in.block.modLinks.size() && path.empty(); ++l) {
                    const auto& link = in.block.modLinks[l];
                    if (link.modIndex != numbers[0]) continue;
                    if (numbers.size() < 2) {
                        path = element_path("modLinks", l);
                        continue;
                    }
                    for (std::size_t c = 0; c < link.childModIndex.size() && path.empty(); ++c) {
                        if (link.childModIndex[c] == numbers[1]) {
                            path = element_path(element_path("modLinks", l) + ".childModIndex", c);
                        }
                    }
                }
            } else if (numbers.size() == 1 && line.find("used by more than one modifier") != std::string::npos) {
                // The second record that takes the number.
                int seen = 0;
                for (std::size_t r = 0; r < in.block.rangeModifiers.size() && path.empty(); ++r) {
                    if (in.block.rangeModifiers[r].modIndex == numbers[0] && ++seen == 2)
                        path = element_path("rangeModifiers", r);
                }
                for (std::size_t t = 0; t < in.block.tableModifiers.size() && path.empty(); ++t) {
                    if (in.block.tableModifiers[t].modIndex == numbers[0] && ++seen == 2)
                        path = element_path("tableModifiers", t);
                }
            } else if (numbers.size() == 1) {
                path = record_path(in, numbers[0]);
            }
        }
        out.push_back((path.empty() ? std::string() : path + ": ") + line + detail);
    }
    return out;
}

BlockModifiers::~BlockModifiers() = default;

std::size_t BlockModifiers::Size() const { return m_impl->mods->Size(); }
uint32_t BlockModifiers::ModIndex(std::size_t i) const { return m_impl->mods->At(i).GetModIndex(); }
bool BlockModifiers::IsStream(std::size_t i) const { return m_impl->mods->At(i).IsStreamModifier(); }
const std::string& BlockModifiers::Path(std::size_t i) const { return m_paths.at(ModIndex(i)); }
void BlockModifiers::Value(std::size_t i, std::vector<uint8_t>& out) { m_impl->mods->At(i).GetValue(out); }
void BlockModifiers::ValueAt(std::size_t i, std::vector<uint8_t>& out, uint32_t index) {
    Modifier& m = m_impl->mods->At(i);
    try {
        m.GetValueAt(out, index);
    } catch (const std::logic_error&) {
        throw IndexRefusal(m);
    }
}

void BlockModifiers::ModifyAt(std::vector<uint8_t>& frame, uint32_t index) {
    StreamBlockModifiers& mods = *m_impl->mods;
    for (std::size_t i = 0; i < mods.Size(); ++i) {
        try {
            mods.At(i).ModifyBytesAtIndex(frame, index);
        } catch (const std::logic_error&) {
            throw IndexRefusal(mods.At(i));
        }
    }
}

InputError BlockModifiers::IndexRefusal(const Modifier& m) const {
    return InputError(m_paths.at(m.GetModIndex()),
                      "the library has no values by index for this modifier: its cycle is a multiple of 2^32 "
                      "frames, which its 32-bit frame counts hold as 0 (stepping from frame 0 computes it)");
}

void BlockModifiers::Next() { m_impl->mods->Next(); }

void BlockModifiers::Seek(uint64_t index) {
    m_impl->mods->Reset();
    for (uint64_t i = 0; i < index; ++i) m_impl->mods->Next();
}


void BlockModifiers::PlaceFields(const BlockInput& in, std::vector<std::string>* warnings) {
    StreamBlockModifiers& mods = *m_impl->mods;
    for (std::size_t k = 0; k < mods.Size(); ++k) {
        const Modifier& m = mods.At(k);
        const uint32_t modIndex = m.GetModIndex();
        const std::string path = record_path(in, modIndex);
        auto h = in.host.find(modIndex);
        FieldPlace place;
        std::string where;
        std::string fieldName;
        std::string why;
        const std::string reference = offset_reference(in, modIndex);
        const bool wholeFrame = !(h != in.host.end() && h->second.place) && !resolve_field(in.frame, reference, place, why);
        if (h != in.host.end() && h->second.place) {
            place = *h->second.place;
            where = h->second.path;
            fieldName = h->second.fieldName.empty() ? "bits " + std::to_string(place.bitOffset) + ".." +
                                                          std::to_string(place.bitOffset + place.bitLength - 1)
                                                    : h->second.fieldName;
        } else if (!wholeFrame) {
            where = path + ".offsetReference";
            fieldName = reference;
        } else if (known_field_name(reference)) {
            // A field the tool knows that this template lacks: refused as a host field is.
            throw InputError(path + ".offsetReference", "field " + reference + " does not resolve: " + why);
        } else {
            // No field: the whole frame is the field, so the record's offset counts from the
            // frame's first byte.
            place.bitOffset = 0;
            place.bitLength = static_cast<unsigned int>(in.frame.size() * 8u);
            where = path + ".offset";
            if (warnings != nullptr) {
                warnings->push_back(path + ": no field given (host.modifiers) and offsetReference \"" + reference +
                                    "\" is no known field, so the offset counts from the frame's first byte");
            }
        }
        try {
            mods.SetFieldParams(modIndex, place.bitOffset, place.bitLength);
        } catch (const std::exception& e) {
            const uint64_t offset = m.GetRelativeOffset();
            const uint64_t width = m.GetDataSizeInBytes();
            const uint64_t fieldBytes = (place.bitLength + 7u) / 8u;
            if (wholeFrame && offset + width > fieldBytes) {
                throw InputError(path, modifier_name(m) + ": its " +
                                           std::to_string(width) + "-byte value at offset " + std::to_string(offset) +
                                           " ends at byte " + std::to_string(offset + width) + ", past the end of the " +
                                           std::to_string(in.frame.size()) + "-byte frame");
            }
            if (offset + width > fieldBytes) {
                throw InputError(path + ".offset", "offset " + std::to_string(offset) + " puts the " +
                                                       std::to_string(width) + "-byte value beyond its field " +
                                                       fieldName + ", which has " +
                                                       std::to_string(place.bitLength) + " bits");
            }
            throw InputError(where, "the library refuses the field: " + balanced(one_line(e.what())));
        }
    }
}

vrm::common::FramePlan BlockModifiers::MakePlan(const BlockInput& in) {
    StreamBlockModifiers& mods = *m_impl->mods;
    try {
        return mods.MakeFramePlan(in.frame);
    } catch (const std::exception& e) {
        // Name the modifier whose window leaves the frame.
        for (std::size_t k = 0; k < mods.Size(); ++k) {
            const Modifier& m = mods.At(k);
            const auto* packer = dynamic_cast<const FieldPackerImpl*>(m.GetFieldPacker());
            if (packer == nullptr) continue;
            const std::size_t end = packer->WindowOffset() + packer->ApplyMask().size();
            if (end <= in.frame.size()) continue;
            throw InputError(record_path(in, m.GetModIndex()),
                             modifier_name(m) + " writes frame bytes " + std::to_string(packer->WindowOffset()) + ".." +
                                 std::to_string(end - 1) + ", past the end of the " + std::to_string(in.frame.size()) +
                                 "-byte frame");
        }
        throw InputError("baseStream.frame.data", "the library refuses the frames: " + balanced(one_line(e.what())));
    }
}

// The bits each modifier writes: its packer's mask over its window (the same for every value).
std::vector<std::vector<uint8_t>> BlockModifiers::BitsOfEach(const BlockInput& in) {
    StreamBlockModifiers& mods = *m_impl->mods;
    std::vector<std::vector<uint8_t>> owned(mods.Size(), std::vector<uint8_t>(in.frame.size(), 0));
    for (std::size_t k = 0; k < mods.Size(); ++k) {
        const auto* packer = dynamic_cast<const FieldPackerImpl*>(mods.At(k).GetFieldPacker());
        if (packer == nullptr) continue;
        const std::vector<unsigned char>& mask = packer->ApplyMask();
        for (std::size_t i = 0; i < mask.size(); ++i) {
            const std::size_t at = packer->WindowOffset() + i;
            if (at < owned[k].size()) owned[k][at] = mask[i];
        }
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
    // Stepping against values by index over the first frames: the frames differ only where
    // an addition carries through bits outside the mask into bits the modifier writes.
    constexpr uint64_t kWork = 1u << 20;
    const uint64_t frames = mods.Size() == 0 ? 0 : std::min<uint64_t>(65536, kWork / mods.Size());
    std::vector<bool> reported(mods.Size(), false);
    std::vector<uint8_t> stepped, indexed;
    mods.Reset();
    for (uint64_t i = 0; i < frames; ++i) {
        for (std::size_t k = 0; k < mods.Size(); ++k) {
            if (reported[k]) continue;
            Modifier& m = mods.At(k);
            try {
                m.GetValue(stepped);
                m.GetValueAt(indexed, static_cast<unsigned int>(i));
            } catch (const std::exception&) {
                reported[k] = true;  // no values by index (a cycle the engine counts as 0 frames)
                continue;
            }
            if (stepped == indexed) continue;
            // The values differ; the frames do when the difference reaches written bits.
            stepped = in.frame;
            indexed = in.frame;
            m.ModifyBytes(stepped, false);
            m.ModifyBytesAtIndex(indexed, static_cast<unsigned int>(i));
            const Window w = WindowOf(k);
            if (std::equal(stepped.begin() + w.offset, stepped.begin() + w.offset + w.size, indexed.begin() + w.offset))
                continue;
            reported[k] = true;
            out.push_back(record_path(in, m.GetModIndex()) +
                          ": stepping carries into bits outside the mask (see initialValue and mask): frame " +
                          std::to_string(i) + " gets " + to_hex(stepped.data() + w.offset, w.size) +
                          ", where values --at shows " + to_hex(indexed.data() + w.offset, w.size));
        }
        mods.Next();
    }
    mods.Reset();
    for (std::size_t k = 0; k < mods.Size(); ++k) {
        const Modifier& m = mods.At(k);
        const std::string path = record_path(in, m.GetModIndex());
        if (m.isRange()) {
            const auto& r = static_cast<const RangeModifier&>(m).GetRecord();
            // Cycles beyond the engine's 32-bit frame counts wrap.
            const Wide full = Wide{m.GetChildStutterCount() + uint64_t{1}} * (r.stutterCount + uint64_t{1}) * r.recycleCount;
            if (full > 0xffffffffu) {
                const uint64_t wrapped = static_cast<uint64_t>(full % (Wide{1} << 32));
                const std::string children =
                    m.GetChildStutterCount() == 0
                        ? std::string()
                        : " x the " + std::to_string(m.GetChildStutterCount() + uint64_t{1}) +
                              " frames of its children's cycle";
                out.push_back(path + ": its cycle of " + wide_text(full) + " frames ((stutterCount + 1) x recycleCount" +
                              children + ") does not fit the engine's 32-bit frame counts, so it restarts after " +
                              std::to_string(wrapped == 0 ? uint64_t{1} << 32 : wrapped) + " frames");
            }
            if (r.mode == Generator_3_bll::configModMode_t::RANDOM) {
                uint32_t seed = 0, mask = 0;
                const auto& iv = r.initialValue.data;
                const auto& mv = r.mask.data;
                for (std::size_t i = iv.size() > 4 ? iv.size() - 4 : 0; i < iv.size(); ++i) seed = seed << 8 | iv[i];
                for (std::size_t i = mv.size() > 4 ? mv.size() - 4 : 0; i < mv.size(); ++i) mask = mask << 8 | mv[i];
                if (seed == 0) {
                    out.push_back(path + ": RANDOM with a seed (initialValue) of 0: the register stays 0, so every "
                                         "value is 0");
                } else if ((seed & ~mask) != 0) {
                    out.push_back(path + ": the RANDOM seed (initialValue) has bits outside the mask; the register "
                                         "starts from them but the frames never show them");
                }
            }
        } else {
            const auto& t = static_cast<const TableModifier&>(m).GetRecord();
            const Window w = WindowOf(k);
            unsigned bits = 0;
            for (std::size_t i = 0; i < w.size; ++i) bits += static_cast<unsigned>(__builtin_popcount(w.mask[i]));
            for (std::size_t e = 0; e < t.data.size(); ++e) {
                const auto& v = t.data[e].data;
                std::size_t significant = 0;  // bits from the highest set bit down
                for (std::size_t i = 0; i < v.size() && significant == 0; ++i) {
                    if (v[i] != 0) significant = (v.size() - i - 1) * 8 + static_cast<std::size_t>(32 - __builtin_clz(v[i]));
                }
                if (significant <= bits) continue;
                out.push_back(element_path(path + ".data", e) + ": " + to_hex(v) + " has more significant bits than the " +
                              std::to_string(bits) + " bits its field takes; the frames get its low " +
                              std::to_string(bits) + " bits");
                break;
            }
        }
    }
    for (const auto& w : frame_length_warnings(in.frame)) out.push_back(w);
    return out;
}

BlockModifiers::Window BlockModifiers::WindowOf(std::size_t i) const {
    Window w;
    const auto* packer = dynamic_cast<const FieldPackerImpl*>(m_impl->mods->At(i).GetFieldPacker());
    if (packer == nullptr) return w;
    w.offset = packer->WindowOffset();
    w.size = packer->ApplyMask().size();
    w.mask = packer->ApplyMask().data();
    return w;
}

void BlockModifiers::Modify(std::vector<uint8_t>& frame) { m_impl->mods->ModifyBytes(frame); }

Generator_3_bll::streamBlock_s BlockModifiers::ToRpc(const Generator_3_bll::streamBlock_s& block) {
    Generator_3_bll::streamBlock_s out = block;
    m_impl->mods->ToRpc(out);
    return out;
}

}  // namespace vrm::traffic
