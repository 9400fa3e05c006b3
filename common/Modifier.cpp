#include "common/Modifier.h"

#include <algorithm>
#include <cstdint>

namespace vrm {
namespace common {

namespace {

void EraseAll(std::vector<Modifier*>& list, const Modifier* item) {
    list.erase(std::remove(list.begin(), list.end(), item), list.end());
}

bool Contains(const std::vector<Modifier*>& list, const Modifier* item) {
    return std::find(list.begin(), list.end(), item) != list.end();
}

unsigned int LeadingZeroBits(unsigned char byte) {
    unsigned int n = 0;
    for (unsigned int bit = 0x80; bit != 0 && (byte & bit) == 0; bit >>= 1) ++n;
    return n;
}

}  // namespace

Modifier::Modifier() : m_fieldPacker(FieldPacker::CreateInvalid()) {}

Modifier::~Modifier() {
    // Unlinking runs ChildUpdate on the remaining modifiers (and on this one, whose derived
    // parts are gone by now, so only the base's counts are seen).
    while (!m_parents.empty()) m_parents.front()->RemoveChildModifier(*this);
    RemoveAllChildModifiers();
    m_parallelModifiers.clear();
    m_fieldPacker.reset();
}

void Modifier::SetModIndex(unsigned int) {}
unsigned int Modifier::GetModIndex() const { return 0; }
bool Modifier::isRange() const { return false; }
bool Modifier::Update(std::ostringstream*) { return false; }
unsigned int Modifier::GetEffectiveRecycleCount() const { return 0; }
unsigned int Modifier::GetRecycleCount() const { return 0; }
unsigned int Modifier::GetChildStutterCount() const { return 0; }
void Modifier::SetOffsetReference(const std::string&) {}
unsigned int Modifier::GetBitLength() const { return m_fieldPacker->GetFieldBitLength(); }

void Modifier::ZeroBytes(std::vector<unsigned char>& frame, unsigned char windowOffset,
                         unsigned char windowSize) {
    m_fieldPacker->ZeroBytes(frame, windowOffset, windowSize);
}

void Modifier::UpdateChildStutterCount(unsigned int) {}

bool Modifier::GetRangeFieldInfo(RangeFieldInfo&) const { return false; }

// --- frame operations ----------------------------------------------------------------------

void Modifier::ModifyBytes(std::vector<unsigned char>& frame, bool xorMode) {
    GetValue(m_value);
    m_fieldPacker->StuffBytes(frame, m_value, xorMode);
}

void Modifier::ModifyBytesAtIndex(std::vector<unsigned char>& frame, unsigned int index) {
    GetValueAt(m_value, index);
    m_fieldPacker->StuffBytes(frame, m_value, false);
}

void Modifier::GetBytes(std::vector<unsigned char>& out, bool append) {
    GetValue(m_value);
    m_fieldPacker->GetBytes(out, m_value, append);
}

void Modifier::GetBytesAtIndex(std::vector<unsigned char>& out, unsigned int index, bool append) {
    GetValueAt(m_value, index);
    m_fieldPacker->GetBytes(out, m_value, append);
}

void Modifier::ZeroBytes(std::vector<unsigned char>& frame) { m_fieldPacker->ZeroBytes(frame); }
unsigned int Modifier::GetAbsoluteOffset() const { return m_fieldPacker->GetAbsoluteOffset(); }
unsigned int Modifier::GetAbsoluteBitOffset() const { return m_fieldPacker->GetAbsoluteBitOffset(); }
FieldPacker* Modifier::GetFieldPacker() const { return m_fieldPacker.get(); }
bool Modifier::HasParent() const { return !m_parents.empty(); }
void Modifier::SetEnabled(bool enabled) { m_enabled = enabled; }

// --- field parameters ----------------------------------------------------------------------

unsigned int Modifier::MaskOffsetAdjust(const std::vector<unsigned char>* mask, unsigned int byteIndex) {
    unsigned int adjust = 8 * byteIndex;
    if (mask != nullptr && byteIndex < mask->size()) {
        const unsigned char byte = (*mask)[byteIndex];
        if (byte != 0x00 && byte != 0xFF) adjust += LeadingZeroBits(byte);
    }
    return adjust;
}

void Modifier::SetFieldParams(unsigned int absoluteBitOffset, unsigned int bitLength) {
    if (!m_frameDataSupported) {
        m_fieldPacker = FieldPacker::CreateNull();
        return;
    }
    unsigned int dataSize = GetDataSizeInBytes();
    unsigned int offsetAdjust = 0;
    bool fixedValueOffset = false;
    unsigned int maskOffsetAdjust = 0;
    const std::vector<unsigned char>* mask = nullptr;

    RangeFieldInfo range;
    if (isRange() && GetRangeFieldInfo(range)) {
        if (!IsStreamModifier() && dataSize > 4) {
            // Without stream generation the packed width is limited to the four bytes that
            // end at the step's byte.
            dataSize = 4;
            fixedValueOffset = true;
            offsetAdjust = range.stepByteIndex > 3 ? range.stepByteIndex - 3u : 0u;
        }
        maskOffsetAdjust = MaskOffsetAdjust(range.mask, range.msbMaskByteIndex);
        mask = range.mask;
    }
    m_fieldPacker = FieldPacker::CreateImpl(absoluteBitOffset, bitLength, GetRelativeOffset(), dataSize,
                                            offsetAdjust, maskOffsetAdjust, fixedValueOffset, mask);
}

// --- chaining ------------------------------------------------------------------------------

bool Modifier::AddParentModifier(Modifier& parent) {
    if (Contains(m_parents, &parent)) return false;
    m_parents.push_back(&parent);
    parent.ChildUpdate();
    return true;
}

bool Modifier::AddChildModifier(Modifier& child) {
    if (&child == this || child.IsStreamModifier() != IsStreamModifier() || Contains(m_children, &child)) {
        return false;
    }
    m_children.push_back(&child);
    const bool added = child.AddParentModifier(*this);
    if (!added) EraseAll(m_children, &child);
    return added;
}

void Modifier::RemoveParentModifier(Modifier& parent) {
    EraseAll(m_parents, &parent);
    parent.ChildUpdate();
}

void Modifier::RemoveChildModifier(Modifier& child) {
    EraseAll(m_children, &child);
    child.RemoveParentModifier(*this);
}

void Modifier::RemoveAllChildModifiers() {
    // Every child is unlinked while the list is still intact; only then is it cleared, so the
    // child stutter count is left as the last update computed it.
    for (std::size_t i = 0; i < m_children.size(); ++i) m_children[i]->RemoveParentModifier(*this);
    m_children.clear();
}

void Modifier::UpdateParents() {
    // Index loop: an update may run code that changes the list.
    for (std::size_t i = 0; i < m_parents.size(); ++i) m_parents[i]->ChildUpdate();
}

void Modifier::ChildUpdate() {
    if (m_inChildUpdate) return;  // a cycle of links led back here
    m_inChildUpdate = true;
    struct Guard {
        bool& flag;
        ~Guard() { flag = false; }
    } guard{m_inChildUpdate};
    if (RefreshChildStutterCount()) UpdateParents();
}

bool Modifier::RefreshChildStutterCount() {
    if (m_children.empty()) {
        UpdateChildStutterCount(0);
        return true;
    }
    unsigned int lcm;
    if (m_children.size() == 1) {
        lcm = m_children.front()->GetEffectiveRecycleCount();
    } else if (m_children.size() <= 8) {
        // FindLcm on a few values, without allocating.
        unsigned int counts[8];
        std::size_t n = 0;
        for (const Modifier* child : m_children) counts[n++] = child->GetEffectiveRecycleCount();
        std::sort(counts, counts + n);
        n = static_cast<std::size_t>(std::unique(counts, counts + n) - counts);
        lcm = LcmOfDistinctAscending(counts, n);
    } else {
        std::vector<unsigned int> counts;
        counts.reserve(m_children.size());
        for (const Modifier* child : m_children) counts.push_back(child->GetEffectiveRecycleCount());
        lcm = FindLcm(counts);
    }
    if (lcm != 0 && lcm != GetChildStutterCount() + 1) {
        UpdateChildStutterCount(lcm - 1);
        return true;
    }
    return false;
}

bool Modifier::LinkChildWithoutUpdate(Modifier& child) {
    if (&child == this || child.IsStreamModifier() != IsStreamModifier()) return false;
    m_children.push_back(&child);
    child.m_parents.push_back(this);
    return true;
}

void Modifier::UnlinkWithoutUpdate() {
    m_children.clear();
    m_parents.clear();
}

// --- parallel modifiers --------------------------------------------------------------------

bool Modifier::AddParallelModifier(std::unique_ptr<Modifier>&& modifier, bool flag) {
    if (!modifier || modifier.get() == this || modifier->IsStreamModifier() != IsStreamModifier())
        return false;
    for (const auto& owned : m_parallelModifiers) {
        if (owned.get() == modifier.get()) return false;
    }
    modifier->m_parallelFlag = flag;
    m_parallelModifiers.push_back(std::move(modifier));
    return true;
}

void Modifier::ReleaseParallelModifiers(std::vector<Modifier*>& out) {
    out.clear();
    out.reserve(m_parallelModifiers.size());
    for (auto& owned : m_parallelModifiers) out.push_back(owned.release());
    m_parallelModifiers.clear();
}

// --- arithmetic ----------------------------------------------------------------------------

unsigned long Modifier::Gcd(unsigned long a, unsigned long b) {
    std::uint64_t x = a;
    std::uint64_t y = b;
    if (x < y) std::swap(x, y);
    while (y != 0) {
        const std::uint64_t r = x % y;
        x = y;
        y = r;
    }
    return static_cast<unsigned long>(x);
}

unsigned int Modifier::FindLcm(const std::vector<unsigned int>& values) {
    if (values.empty()) return 0;
    if (values.size() == 1) return values.front();
    std::vector<unsigned int> distinct(values);
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    return LcmOfDistinctAscending(distinct.data(), distinct.size());
}

unsigned int Modifier::LcmOfDistinctAscending(const unsigned int* values, std::size_t n) {
    if (values[0] == 0) return 0;
    std::uint64_t running = values[0];
    for (std::size_t i = 1; i < n; ++i) {
        const std::uint64_t e = values[i];
        running = e * running / Gcd(running, e);
    }
    // Checked once, at the end: intermediate products wrap in 64 bits.
    if (running > 0xFFFFFFFFull) return 0;
    return static_cast<unsigned int>(running);
}

// --- not-ready predicate -------------------------------------------------------------------

void Modifier::BindNotReadyCheck(Modifier* target, NotReadyCheck check) {
    if (target == nullptr || check == nullptr) {
        m_notReadyTarget = nullptr;
        m_notReadyCheck = nullptr;
        return;
    }
    m_notReadyTarget = target;
    m_notReadyCheck = check;
}

bool Modifier::CurrentValueIndicatesIfNotReady(int) {
    if (m_notReadyTarget == nullptr || m_notReadyCheck == nullptr) return false;
    std::vector<unsigned char> value;
    GetValue(value);
    return (m_notReadyTarget->*m_notReadyCheck)(value);
}

}  // namespace common
}  // namespace vrm
