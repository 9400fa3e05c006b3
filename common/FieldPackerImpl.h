#ifndef VRM_COMMON_FIELDPACKERIMPL_H
#define VRM_COMMON_FIELDPACKERIMPL_H

#include <cstddef>
#include <vector>

#include "common/FieldPacker.h"

namespace vrm {
namespace common {

// The real field packer. All geometry (window, per-byte mask, shift) is computed once by the
// constructor; packing afterwards is a loop of masked byte merges over the window and
// allocates nothing.
class FieldPackerImpl : public FieldPacker {
  public:
    // absoluteBitOffset, bitLength: the protocol field in the frame.
    // relativeOffset: byte offset of the modifier inside that field.
    // dataSize: the modifier's value width in bytes.
    // offsetAdjust: leading value bytes that are not packed (the packed part starts that many
    //   bytes into the value and that many bytes further into the field).
    // maskOffsetAdjust: bit index, from the value's most significant bit, of the first set
    //   bit of the modifier's mask.
    // fixedValueOffset: take the value bytes from the value's start even when offsetAdjust
    //   is zero (otherwise a longer value is used from its end).
    // mask: the modifier's mask value, or null.
    // Throws std::invalid_argument, std::out_of_range or std::logic_error for a geometry that
    // does not fit.
    FieldPackerImpl(unsigned int absoluteBitOffset, unsigned int bitLength, unsigned int relativeOffset,
                    unsigned int dataSize, unsigned int offsetAdjust, unsigned int maskOffsetAdjust,
                    bool fixedValueOffset, const std::vector<unsigned char>* mask);
    ~FieldPackerImpl() override;

    unsigned int GetAbsoluteOffset() const override;
    unsigned int GetAbsoluteBitOffset() const override;
    unsigned int GetAbsoluteBitOffsetOrig() const override;
    unsigned int GetFieldBitLength() const override;
    unsigned int GetFieldBitLengthOrig() const override;
    void StuffBytes(std::vector<unsigned char>& frame, std::vector<unsigned char>& value,
                    bool xorMode) override;
    void GetBytes(std::vector<unsigned char>& out, std::vector<unsigned char>& value, bool append) override;
    void ZeroBytes(std::vector<unsigned char>& frame) override;
    void ZeroBytes(std::vector<unsigned char>& frame, unsigned char windowOffset,
                   unsigned char windowSize) override;

    // The packer's geometry, for hosts that pack many frames without the per-frame calls:
    // the window's first frame byte, its per-byte mask (its size is the window size), and
    // AlignedValue, the window bytes StuffBytes merges under that mask for `value` (throws
    // as StuffBytes does for a value that is too short).
    unsigned int WindowOffset() const { return m_absoluteOffset; }
    const std::vector<unsigned char>& ApplyMask() const { return m_applyMask; }
    void AlignedValue(const std::vector<unsigned char>& value, std::vector<unsigned char>& window) const;
    // Which bytes of a value of `valueSize` bytes are packed (the first of them, and how
    // many), and the left shift applied to them in the window.
    std::size_t PackedValueStart(std::size_t valueSize) const;
    unsigned int PackedValueSize() const { return m_requiredValueSize; }
    unsigned int Shift() const { return m_shift; }

  private:
    void setMaskOffsetAdjust(unsigned int maskOffsetAdjust);
    void CalcApplyMaskAndValueSize(const std::vector<unsigned char>* mask);
    void CreateValue(const std::vector<unsigned char>& src, std::vector<unsigned char>& dst) const;
    void CreateApplyValue(std::vector<unsigned char>& value);
    const unsigned char* ApplyValueSource(const std::vector<unsigned char>& value) const;
    void ValidateValueSize(unsigned int size) const;
    void CheckBytes(unsigned int size) const;
    void CheckWindowSize(unsigned char offset, unsigned char size) const;
    void StuffBytes(std::vector<unsigned char>& frame, unsigned int byteOffset, bool xorMode);

    unsigned int m_absoluteOffset = 0;         // first frame byte of the window
    unsigned int m_bitOffset = 0;              // absolute bit offset of the first written bit
    unsigned int m_absoluteBitOffsetOrig = 0;  // bit offset given at construction
    unsigned int m_bitLength = 0;              // number of bits written
    unsigned int m_bitLengthOrig = 0;          // field bit length given at construction
    unsigned char m_shift = 0;                 // left shift putting the value's LSB on the field's last bit
    bool m_fixedValueOffset = false;
    unsigned char m_origBitInByte = 0;        // given bit offset modulo 8
    unsigned int m_size = 0;                  // window size in bytes
    unsigned int m_requiredValueSize = 0;     // value bytes that are packed
    unsigned int m_offsetAdjust = 0;          // byte offset into value and field where packing starts
    unsigned int m_maskOffsetAdjust = 0;      // window bit index of the mask's first significant bit
    std::vector<unsigned char> m_applyMask;   // 1 bits: frame bits owned by the packer
    std::vector<unsigned char> m_applyValue;  // current value aligned to the window
    std::vector<unsigned char> m_scratch;     // window buffer of append-mode GetBytes
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_FIELDPACKERIMPL_H
