#include "common/FieldPackerImpl.h"

#include <cstdint>
#include <sstream>
#include <stdexcept>

namespace vrm {
namespace common {

namespace {

// Bytes needed for a number of bits.
inline std::uint64_t Ceil8(std::uint64_t bits) { return (bits >> 3) + (bits % 8 != 0 ? 1 : 0); }

// The per-frame work lives in these internal functions so that the compiler can inline it into
// the public operations (member functions of a shared library are called through its
// symbol table otherwise).

// Copies `required` bytes of `in` right-aligned into the `size` window bytes of `out` and
// shifts the window left by `shift` bits. The window is at most one byte longer than the
// copied bytes; that byte starts from zero.
inline void AlignValue(const unsigned char* in, unsigned char* out, unsigned int size, unsigned int required,
                       unsigned int shift) {
    const unsigned int lead = size - required;
    if (lead != 0) out[0] = 0;
    for (unsigned int i = 0; i < required; ++i) out[lead + i] = in[i];
    if (shift != 0) {
        const unsigned int back = 8u - shift;
        for (unsigned int i = 0; i + 1 < size; ++i) {
            out[i] = static_cast<unsigned char>((out[i] << shift) | (out[i + 1] >> back));
        }
        out[size - 1] = static_cast<unsigned char>(out[size - 1] << shift);
    }
}

// Replaces (or, in xor mode, toggles by the value) the bits of `dst` selected by `mask`.
inline void MergeBytes(unsigned char* dst, const unsigned char* mask, const unsigned char* value,
                       unsigned int size, bool xorMode) {
    if (xorMode) {
        for (unsigned int i = 0; i < size; ++i) {
            const unsigned int b = dst[i];
            const unsigned int m = mask[i];
            dst[i] = static_cast<unsigned char>(((b ^ value[i]) & m) | (b & ~m));
        }
    } else {
        for (unsigned int i = 0; i < size; ++i) {
            const unsigned int m = mask[i];
            dst[i] = static_cast<unsigned char>((m & value[i]) | (~m & dst[i]));
        }
    }
}

}  // namespace

// The range checks below are made in 64-bit arithmetic so that no combination of 32-bit
// arguments can wrap around them; for every argument set that does not wrap, the results and
// the numbers in the messages are those of plain 32-bit arithmetic.
FieldPackerImpl::FieldPackerImpl(unsigned int absoluteBitOffset, unsigned int bitLength,
                                 unsigned int relativeOffset, unsigned int dataSize,
                                 unsigned int offsetAdjust, unsigned int maskOffsetAdjust,
                                 bool fixedValueOffset, const std::vector<unsigned char>* mask)
    : m_absoluteBitOffsetOrig(absoluteBitOffset),
      m_bitLengthOrig(bitLength),
      m_fixedValueOffset(fixedValueOffset),
      m_origBitInByte(static_cast<unsigned char>(absoluteBitOffset & 7)),
      m_offsetAdjust(offsetAdjust) {
    if (bitLength == 0) throw std::invalid_argument("Field bit length is zero\n");
    if (dataSize == 0) throw std::invalid_argument("Modifier data is zero\n");

    const std::uint64_t relByte = std::uint64_t{relativeOffset} + offsetAdjust;
    if (relByte * 8 >= bitLength) {
        std::ostringstream msg;
        msg << "Modifier's relative offset (" << relByte
            << ") goes beyond field boundary (field length in bits: " << bitLength << "\n";
        throw std::out_of_range(msg.str());
    }

    const unsigned int origBit = m_origBitInByte;
    const std::uint64_t fieldBits = std::uint64_t{origBit} + bitLength;
    const std::uint64_t fieldBytes = Ceil8(fieldBits);
    if (relByte + dataSize > fieldBytes) {
        std::ostringstream msg;
        msg << "Modifier goes beyond field boundary: \n"
            << "Absolute bit offset: " << absoluteBitOffset << "\n"
            << "relative byte offset: " << relByte << "\n"
            << "offsetAdjust: " << offsetAdjust << "\n"
            << "dataSize: " << dataSize << "\n"
            << "relative bit offset: " << origBit << "\n"
            << "field bit length: " << bitLength << "\n";
        throw std::out_of_range(msg.str());
    }
    if (maskOffsetAdjust > fieldBytes * 8) {
        std::ostringstream msg;
        msg << "Mask offset adjust goes beyond field boundary: \n"
            << "Absolute bit offset: " << absoluteBitOffset << "\n"
            << "maskOffsetAdjust in bits: " << maskOffsetAdjust << "\n"
            << "dataSize: " << dataSize << "\n"
            << "relative bit offset: " << origBit << "\n"
            << " field bit length: " << bitLength << "\n";
        throw std::invalid_argument(msg.str());
    }

    // relByte * 8 < bitLength, so relByte and the offsets below fit in 32 bits.
    m_absoluteOffset = (absoluteBitOffset >> 3) + static_cast<unsigned int>(relByte);
    if (relByte != 0) {
        // The modifier starts on a byte boundary inside the field and runs to the field's end.
        m_bitOffset = m_absoluteOffset * 8;
        m_bitLength = static_cast<unsigned int>(fieldBits - relByte * 8);
    } else {
        m_bitOffset = absoluteBitOffset;
        m_bitLength = bitLength;
    }
    // A value narrower than the field covers only the field's leading bits.
    if (std::uint64_t{dataSize} * 8 < m_bitLength) m_bitLength = dataSize * 8;
    m_requiredValueSize = static_cast<unsigned int>(Ceil8(m_bitLength));

    setMaskOffsetAdjust(maskOffsetAdjust);
    const unsigned int tail = (m_bitOffset + m_bitLength) & 7;
    m_shift = static_cast<unsigned char>(tail == 0 ? 0 : 8 - tail);

    CalcApplyMaskAndValueSize(mask);

    const bool consistent = m_shift != 0 ? m_size - m_requiredValueSize <= 1 : m_size == m_requiredValueSize;
    if (!consistent) {
        std::ostringstream msg;
        msg << "Internal modifier logic error: \n"
            << " absoluteBitOffset: " << absoluteBitOffset << "\n"
            << " bitLength: " << bitLength << "\n"
            << " relativeByteOffset: " << relByte << "\n"
            << " dataSize: " << dataSize << "\n"
            << " m_absoluteOffset " << m_absoluteOffset << "\n"
            << " m_bitOffset: " << m_bitOffset << "\n"
            << " m_bitLength: " << m_bitLength << "\n"
            << " m_requiredValueSize: " << m_requiredValueSize << "\n"
            << " m_offsetAdjust: " << m_offsetAdjust << "\n"
            << " m_size: " << m_size << "\n"
            << " m_shift: " << static_cast<unsigned int>(m_shift) << "\n";
        throw std::logic_error(msg.str());
    }

    m_applyValue.assign(m_size, 0);
    m_scratch.assign(m_size, 0);
}

FieldPackerImpl::~FieldPackerImpl() = default;

unsigned int FieldPackerImpl::GetAbsoluteOffset() const { return m_absoluteOffset - m_offsetAdjust; }

unsigned int FieldPackerImpl::GetAbsoluteBitOffset() const {
    if (m_offsetAdjust == 0) return m_bitOffset;
    return m_bitOffset + m_origBitInByte - 8 * m_offsetAdjust;
}

unsigned int FieldPackerImpl::GetAbsoluteBitOffsetOrig() const { return m_absoluteBitOffsetOrig; }

unsigned int FieldPackerImpl::GetFieldBitLength() const {
    if (m_offsetAdjust == 0) return m_bitLength;
    return m_bitLength + 8 * m_offsetAdjust - m_origBitInByte;
}

unsigned int FieldPackerImpl::GetFieldBitLengthOrig() const { return m_bitLengthOrig; }

// CheckBytes, CreateApplyValue and the internal StuffBytes, with the checks' passing case and
// the byte work inlined.
void FieldPackerImpl::StuffBytes(std::vector<unsigned char>& frame, std::vector<unsigned char>& value,
                                 bool xorMode) {
    const std::size_t frameSize = frame.size();
    if (!(m_absoluteOffset < frameSize && std::uint64_t{m_absoluteOffset} + m_size <= frameSize)) {
        CheckBytes(static_cast<unsigned int>(frameSize));
    }
    const unsigned char* in = ApplyValueSource(value);
    unsigned char* window = m_applyValue.data();
    AlignValue(in, window, m_size, m_requiredValueSize, m_shift);
    MergeBytes(frame.data() + m_absoluteOffset, m_applyMask.data(), window, m_size, xorMode);
}

void FieldPackerImpl::GetBytes(std::vector<unsigned char>& out, std::vector<unsigned char>& value,
                               bool append) {
    CreateApplyValue(value);
    if (!append) {
        out.assign(m_size, 0);
        MergeBytes(out.data(), m_applyMask.data(), m_applyValue.data(), m_size, false);
    } else {
        MergeBytes(m_scratch.data(), m_applyMask.data(), m_applyValue.data(), m_size, false);
        out.insert(out.end(), m_scratch.begin(), m_scratch.end());
    }
}

// ValidateValueSize, then the first value byte that CreateValue packs.
const unsigned char* FieldPackerImpl::ApplyValueSource(const std::vector<unsigned char>& value) const {
    const std::size_t size = value.size();
    if (size < std::uint64_t{m_requiredValueSize} + m_offsetAdjust) {
        ValidateValueSize(static_cast<unsigned int>(size));
    }
    std::size_t start = m_offsetAdjust;
    if (m_offsetAdjust == 0 && !m_fixedValueOffset) start = size - m_requiredValueSize;
    return value.data() + start;
}

void FieldPackerImpl::AlignedValue(const std::vector<unsigned char>& value,
                                   std::vector<unsigned char>& window) const {
    const unsigned char* in = ApplyValueSource(value);
    window.assign(m_size, 0);
    AlignValue(in, window.data(), m_size, m_requiredValueSize, m_shift);
}

std::size_t FieldPackerImpl::PackedValueStart(std::size_t valueSize) const {
    if (m_offsetAdjust == 0 && !m_fixedValueOffset) return valueSize - m_requiredValueSize;
    return m_offsetAdjust;
}

void FieldPackerImpl::ZeroBytes(std::vector<unsigned char>& frame) {
    CheckBytes(static_cast<unsigned int>(frame.size()));
    unsigned char* dst = frame.data() + m_absoluteOffset;
    for (unsigned int i = 0; i < m_size; ++i) dst[i] &= static_cast<unsigned char>(~m_applyMask[i]);
}

void FieldPackerImpl::ZeroBytes(std::vector<unsigned char>& frame, unsigned char windowOffset,
                                unsigned char windowSize) {
    CheckBytes(static_cast<unsigned int>(frame.size()));
    CheckWindowSize(windowOffset, windowSize);
    unsigned char* dst = frame.data() + m_absoluteOffset;
    const unsigned int end = static_cast<unsigned int>(windowOffset) + windowSize;
    for (unsigned int i = windowOffset; i < end; ++i) dst[i] &= static_cast<unsigned char>(~m_applyMask[i]);
}

// Moves a bit index of the value into the window's bit numbering after the left shift.
void FieldPackerImpl::setMaskOffsetAdjust(unsigned int maskOffsetAdjust) {
    const unsigned int tail = (m_bitOffset + m_bitLength) & 7;
    if (tail == 0) {
        m_maskOffsetAdjust = maskOffsetAdjust;
    } else if (maskOffsetAdjust <= 8 - tail) {
        m_maskOffsetAdjust = 0;
    } else {
        m_maskOffsetAdjust = maskOffsetAdjust + tail - 8;
    }
}

void FieldPackerImpl::CalcApplyMaskAndValueSize(const std::vector<unsigned char>* mask) {
    unsigned int startBit = m_bitOffset & 7;
    const std::uint64_t total = std::uint64_t{m_bitLength} + startBit;
    const unsigned int tailBits = static_cast<unsigned int>(total & 7);
    m_size = static_cast<unsigned int>(Ceil8(total));
    if (m_size == 0) {
        std::ostringstream msg;
        msg << "Calculated apply mask size is zero: m_bitOffset: " << m_bitOffset
            << " m_bitLength: " << m_bitLength << "\n";
        throw std::logic_error(msg.str());
    }

    const unsigned int maskByte = m_maskOffsetAdjust >> 3;
    const unsigned int firstMaskByte = maskByte < m_offsetAdjust ? 0 : maskByte - m_offsetAdjust;
    // The whole mask offset is compared here, not its bit-in-byte part.
    if (startBit < m_maskOffsetAdjust) startBit = m_maskOffsetAdjust & 7;
    const unsigned char lead = static_cast<unsigned char>((1u << (8 - startBit)) - 1);

    if (mask != nullptr && !mask->empty() &&
        mask->size() >= std::uint64_t{m_offsetAdjust} + m_requiredValueSize) {
        m_applyMask.assign(m_size, 0);
        CreateValue(*mask, m_applyMask);
        if (firstMaskByte < m_size) m_applyMask[firstMaskByte] &= lead;
    } else {
        m_applyMask.assign(m_size, 0xFF);
        for (unsigned int i = 0; i < firstMaskByte && i < m_size; ++i) m_applyMask[i] = 0;
        if (firstMaskByte < m_size) m_applyMask[firstMaskByte] = lead;
        if (tailBits != 0) {
            // Arithmetic, not a bit clear: equals clearing the low bits only when they are set.
            unsigned char& last = m_applyMask[m_size - 1];
            last = static_cast<unsigned char>(last + 1u - (1u << (8 - tailBits)));
        }
    }
}

void FieldPackerImpl::CreateValue(const std::vector<unsigned char>& src,
                                  std::vector<unsigned char>& dst) const {
    std::size_t start = m_offsetAdjust;
    if (m_offsetAdjust == 0 && !m_fixedValueOffset) start = src.size() - m_requiredValueSize;
    AlignValue(src.data() + start, dst.data(), m_size, m_requiredValueSize, m_shift);
}

void FieldPackerImpl::CreateApplyValue(std::vector<unsigned char>& value) {
    ValidateValueSize(static_cast<unsigned int>(value.size()));
    CreateValue(value, m_applyValue);
}

void FieldPackerImpl::ValidateValueSize(unsigned int size) const {
    const std::uint64_t required = std::uint64_t{m_requiredValueSize} + m_offsetAdjust;
    if (size < required) {
        std::ostringstream msg;
        msg << "Input value size (" << size << ") is less than the required value size (" << required
            << ").\n";
        throw std::logic_error(msg.str());
    }
}

void FieldPackerImpl::CheckBytes(unsigned int size) const {
    if (m_absoluteOffset < size && std::uint64_t{m_absoluteOffset} + m_size <= size) return;
    std::ostringstream msg;
    msg << "Input byte array is not large enough to accomodate modifier: " << size
        << " (array size) . Absolute offset: " << m_absoluteOffset << ". Field size: " << m_size << ".\n";
    throw std::out_of_range(msg.str());
}

// The window offset and size are written into the messages as raw characters.
void FieldPackerImpl::CheckWindowSize(unsigned char offset, unsigned char size) const {
    if (offset > m_size) {
        std::ostringstream msg;
        msg << "Input window offset (" << std::dec << offset << ") is over than the modifier value size ("
            << m_size << ").\n";
        throw std::logic_error(msg.str());
    }
    if (size > m_size) {
        std::ostringstream msg;
        msg << "Input window size (" << std::dec << size << ") is larger than the modifier value size ("
            << m_size << ").\n";
        throw std::logic_error(msg.str());
    }
    if (static_cast<unsigned int>(offset) + size > m_size) {
        std::ostringstream msg;
        msg << "Input window end point (" << std::dec << size << ") is larger than the modifier value size ("
            << m_size << ").\n";
        throw std::logic_error(msg.str());
    }
}

void FieldPackerImpl::StuffBytes(std::vector<unsigned char>& frame, unsigned int byteOffset, bool xorMode) {
    MergeBytes(frame.data() + byteOffset, m_applyMask.data(), m_applyValue.data(), m_size, xorMode);
}

}  // namespace common
}  // namespace vrm
