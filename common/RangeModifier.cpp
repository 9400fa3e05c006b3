#include "common/RangeModifier.h"

#include <cstdint>
#include <ostream>
#include <stdexcept>

#include "common/RangeModifierImpl.h"
#include "common/RangeModifierImplFactory.h"

namespace vrm {
namespace common {

namespace {

using Generator_3_bll::rangeModifier_s;

// Index of the first non-zero byte of `bytes`, or -1 when there is none.
int FirstNonZero(const std::vector<std::uint8_t>& bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != 0) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace

RangeModifier::RangeModifier() {
    m_rangeModifier.mode = Generator_3_bll::configModMode_t::INCREMENT;
    m_rangeModifier.useStream = true;
}

RangeModifier::RangeModifier(const rangeModifier_s& record) : m_rangeModifier(record) {
    m_impl = RangeModifierImplFactory::Instance().Create(*this);
}

RangeModifier::~RangeModifier() { m_impl.reset(); }

void RangeModifier::SetModIndex(unsigned int index) { m_rangeModifier.modIndex = index; }
unsigned int RangeModifier::GetModIndex() const { return m_rangeModifier.modIndex; }
bool RangeModifier::isRange() const { return true; }

bool RangeModifier::Validate(std::ostringstream* errors) {
    const rangeModifier_s& r = m_rangeModifier;
    const std::size_t size = r.initialValue.data.size();
    auto fail = [&](const char* text) {
        if (errors != nullptr) *errors << "Modifier " << r.offsetReference << text << std::endl;
        return false;
    };
    if (r.stepValue.data.size() != size || r.mask.data.size() != size) {
        return fail(" initial, step and mask value do not match.");
    }
    if (size == 0) return fail(" initial value is empty.");
    if (static_cast<std::uint32_t>(r.mode) >= 4) return fail(" mode is invalid.");
    if (!r.useStream && m_totalCount != 0 && r.recycleCount != 0) {
        // 32-bit arithmetic; a product that wraps to 0 cannot divide and is reported as not
        // dividing the total count.
        const std::uint32_t period = r.recycleCount * (r.stutterCount + 1);
        if (period == 0 || m_totalCount % period != 0) {
            if (errors != nullptr) {
                *errors << "Streamblocks with stream generation disabled need device modifiers to have total "
                           "device count as multiple of (recycle count * (repeat count + 1)). Modifier "
                        << r.offsetReference << ", Total count " << m_totalCount << ", Recycle count "
                        << r.recycleCount << ", Repeat count " << r.stutterCount << "." << std::endl;
            }
            return false;
        }
    }
    if (m_rangeModifier.recycleCount == 0) m_rangeModifier.recycleCount = 1;
    return true;
}

bool RangeModifier::Update(std::ostringstream* errors) {
    if (!Validate(errors)) return false;
    m_impl = RangeModifierImplFactory::Instance().Create(*this);
    return true;
}

void RangeModifier::ToRpc(Generator_3_bll::streamBlock_s& block) {
    block.rangeModifiers.push_back(m_rangeModifier);
}

bool RangeModifier::IsStreamModifier() const { return m_rangeModifier.useStream; }
void RangeModifier::SetEnableStream(bool enable) { m_rangeModifier.useStream = enable; }
void RangeModifier::SetStutterCount(unsigned int count) { m_rangeModifier.stutterCount = count; }
unsigned int RangeModifier::GetStutterCount() const { return m_rangeModifier.stutterCount; }
void RangeModifier::SetTotalCount(unsigned int count) { m_totalCount = count; }
unsigned int RangeModifier::GetTotalCount() const { return m_totalCount; }

unsigned int RangeModifier::GetEffectiveRecycleCount() const {
    if (m_totalCount == 0) {
        return (m_childStutterCount + 1) * (m_rangeModifier.stutterCount + 1) * m_rangeModifier.recycleCount;
    }
    return (m_childStutterCount + 1) * m_totalCount;
}

unsigned int RangeModifier::GetRecycleCount() const { return m_rangeModifier.recycleCount; }
unsigned int RangeModifier::GetChildStutterCount() const { return m_childStutterCount; }
unsigned int RangeModifier::GetRelativeOffset() const { return m_rangeModifier.offset; }
std::string RangeModifier::GetOffsetReference() const { return m_rangeModifier.offsetReference; }
void RangeModifier::SetOffsetReference(const std::string& reference) {
    m_rangeModifier.offsetReference = reference;
}

unsigned char RangeModifier::GetDataSizeInBytes() const {
    return static_cast<unsigned char>(m_rangeModifier.initialValue.data.size());
}

RangeModifierImpl& RangeModifier::Engine(const char* operation) const {
    if (!m_impl) {
        std::ostringstream text;
        text << "RangeModifier::" << operation << " : modifier " << m_rangeModifier.offsetReference
             << " has no value engine for a width of " << m_rangeModifier.initialValue.data.size()
             << " bytes (1 to 16 are supported)\n";
        throw std::logic_error(text.str());
    }
    return *m_impl;
}

bool RangeModifier::HasGenerator() const { return m_impl != nullptr && m_impl->HasGenerator(); }

bool RangeModifier::DescribeSequence(RangeSequence& out) const {
    return m_impl != nullptr && m_impl->Describe(out);
}

void RangeModifier::Reset() { Engine("Reset").Reset(); }
void RangeModifier::Next() { Engine("Next").Next(); }

void RangeModifier::UpdateChildStutterCount(unsigned int count) {
    m_childStutterCount = count;
    if (m_impl) m_impl->SourceUpdate();
}

void RangeModifier::GetValue(std::vector<unsigned char>& value) { Engine("GetValue").GetValue(value); }

void RangeModifier::GetValueAt(std::vector<unsigned char>& value, unsigned int index) {
    Engine("GetValueAt").GetValueAtIndex(value, index);
}

void RangeModifier::GetAdjustedModifier(rangeModifier_s& out) {
    out.modIndex = m_rangeModifier.modIndex;
    out.offset = m_rangeModifier.offset;
    out.offsetReference = m_rangeModifier.offsetReference;
    out.recycleCount = m_rangeModifier.recycleCount;
    out.stutterCount = m_rangeModifier.stutterCount;
    out.mode = m_rangeModifier.mode;
    out.useStream = m_rangeModifier.useStream;
    FieldPacker& packer = *GetFieldPacker();
    packer.GetBytes(out.initialValue.data, m_rangeModifier.initialValue.data, false);
    packer.GetBytes(out.stepValue.data, m_rangeModifier.stepValue.data, false);
    packer.GetBytes(out.mask.data, m_rangeModifier.mask.data, false);
}

unsigned char RangeModifier::GetStepByteIndex(const rangeModifier_s& record) {
    const auto n = static_cast<unsigned char>(record.initialValue.data.size());
    const int s = FirstNonZero(record.stepValue.data);
    if (s < 0) return static_cast<unsigned char>(n - 1);
    if (s > 3) return static_cast<unsigned char>(s);
    return n < 5 ? static_cast<unsigned char>(n - 1) : static_cast<unsigned char>(3);
}

unsigned char RangeModifier::GetMsbMaskByteIndex(const rangeModifier_s& record) {
    const auto n = static_cast<unsigned char>(record.initialValue.data.size());
    unsigned char first = 0;
    unsigned char last = 0;  // inclusive
    if (record.useStream) {
        last = static_cast<unsigned char>(n - 1);
    } else {
        const unsigned char t = GetStepByteIndex(record);
        first = n < 5 ? static_cast<unsigned char>(0) : static_cast<unsigned char>(t - 3);
        last = t;
    }
    const std::vector<std::uint8_t>& mask = record.mask.data;
    // A value of width 0 makes the span end at 255: the loop runs on ints so that it ends.
    for (unsigned int i = first; i <= last; ++i) {
        if (i < mask.size() && mask[i] != 0) return static_cast<unsigned char>(i);
    }
    return static_cast<unsigned char>(last + 1);
}

unsigned char RangeModifier::GetStepByteIndex() const { return GetStepByteIndex(m_rangeModifier); }
unsigned char RangeModifier::GetMsbMaskByteIndex() const { return GetMsbMaskByteIndex(m_rangeModifier); }

unsigned char RangeModifier::GetLSStepByteIndex() const {
    const std::vector<std::uint8_t>& step = m_rangeModifier.stepValue.data;
    for (std::size_t i = step.size(); i-- > 0;) {
        if (step[i] != 0) return static_cast<unsigned char>(i);
    }
    return 0;
}

unsigned char RangeModifier::GetMSStepByteIndex() const {
    const int s = FirstNonZero(m_rangeModifier.stepValue.data);
    return s < 0 ? static_cast<unsigned char>(0) : static_cast<unsigned char>(s);
}

bool RangeModifier::MakeVfdCompatible() {
    if (!m_rangeModifier.useStream) return true;
    if (m_rangeModifier.stepValue.data.size() < 5) return true;
    const unsigned int ls = GetLSStepByteIndex();
    const unsigned int ms = GetMSStepByteIndex();
    if (ls - ms + 1 > 4) return false;
    // The narrowed value takes bytes start..ls of all three values; a shorter initial value
    // or mask (an invalid descriptor) cannot be narrowed.
    if (m_rangeModifier.initialValue.data.size() <= ls || m_rangeModifier.mask.data.size() <= ls)
        return false;

    const rangeModifier_s copy = m_rangeModifier;
    m_rangeModifier.initialValue.data.clear();
    m_rangeModifier.stepValue.data.clear();
    m_rangeModifier.mask.data.clear();
    const unsigned int start = ls < 4 ? 0 : ls - 3;
    for (unsigned int i = start; i <= ls; ++i) {
        m_rangeModifier.initialValue.data.push_back(copy.initialValue.data[i]);
        m_rangeModifier.stepValue.data.push_back(copy.stepValue.data[i]);
        m_rangeModifier.mask.data.push_back(copy.mask.data[i]);
    }
    m_rangeModifier.offset = static_cast<std::uint16_t>(copy.offset + start);
    if (!Update(nullptr)) return false;
    const FieldPacker& packer = *GetFieldPacker();
    SetFieldParams(packer.GetAbsoluteBitOffsetOrig(), packer.GetFieldBitLengthOrig());
    return true;
}

bool RangeModifier::GetRangeFieldInfo(RangeFieldInfo& info) const {
    info.stepByteIndex = GetStepByteIndex();
    info.msbMaskByteIndex = GetMsbMaskByteIndex();
    info.mask = &m_rangeModifier.mask.data;
    return true;
}

}  // namespace common
}  // namespace vrm
