#ifndef VRM_COMMON_FIELDPACKER_H
#define VRM_COMMON_FIELDPACKER_H

#include <memory>
#include <vector>

namespace vrm {
namespace common {

// Places a modifier's value into the bytes of a frame.
//
// A frame is a byte vector; a field is a run of bits addressed by an absolute bit offset
// (bit 0 is the most significant bit of byte 0) and a bit length. A value is a byte vector,
// most significant byte first, and is right-aligned onto its field. Implementations
// precompute the geometry once so that packing is a masked byte merge.
class FieldPacker {
  public:
    virtual ~FieldPacker();

    virtual unsigned int GetAbsoluteOffset() const = 0;
    virtual unsigned int GetAbsoluteBitOffset() const = 0;
    virtual unsigned int GetAbsoluteBitOffsetOrig() const = 0;
    virtual unsigned int GetFieldBitLength() const = 0;
    virtual unsigned int GetFieldBitLengthOrig() const = 0;

    // Merges `value` into `frame` under the packer's mask: replaces the owned bits, or
    // toggles them by the value when `xorMode` is true. Bits outside the mask never change.
    virtual void StuffBytes(std::vector<unsigned char>& frame, std::vector<unsigned char>& value,
                            bool xorMode) = 0;
    // Writes the window bytes holding the value bits in place (zero elsewhere) into `out`,
    // replacing its contents or appending to them.
    virtual void GetBytes(std::vector<unsigned char>& out, std::vector<unsigned char>& value,
                          bool append) = 0;
    // Clears the owned bits of the whole window, or of a part of it.
    virtual void ZeroBytes(std::vector<unsigned char>& frame) = 0;
    virtual void ZeroBytes(std::vector<unsigned char>& frame, unsigned char windowOffset,
                           unsigned char windowSize) = 0;

    // The real packer; see FieldPackerImpl for the meaning of the arguments.
    static std::unique_ptr<FieldPacker> CreateImpl(unsigned int absoluteBitOffset, unsigned int bitLength,
                                                   unsigned int relativeOffset, unsigned int dataSize,
                                                   unsigned int offsetAdjust, unsigned int maskOffsetAdjust,
                                                   bool fixedValueOffset,
                                                   const std::vector<unsigned char>* mask);
    // Packer of a modifier that does not touch frame data.
    static std::unique_ptr<FieldPacker> CreateNull();
    // Packer of a modifier whose field parameters were never set.
    static std::unique_ptr<FieldPacker> CreateInvalid();

  protected:
    FieldPacker() = default;
    FieldPacker(const FieldPacker&) = default;
    FieldPacker& operator=(const FieldPacker&) = default;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_FIELDPACKER_H
