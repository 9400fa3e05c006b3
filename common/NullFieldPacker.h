#ifndef VRM_COMMON_NULLFIELDPACKER_H
#define VRM_COMMON_NULLFIELDPACKER_H

#include <vector>

#include "common/FieldPacker.h"

namespace vrm {
namespace common {

// Packer of a modifier that does not touch frame data. GetBytes passes the value through;
// every other operation throws std::logic_error.
class NullFieldPacker : public FieldPacker {
  public:
    NullFieldPacker() = default;
    ~NullFieldPacker() override;

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
};

// State of a modifier whose field parameters were never set: every operation throws
// std::logic_error.
class InvalidFieldPacker : public FieldPacker {
  public:
    InvalidFieldPacker() = default;
    ~InvalidFieldPacker() override;

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
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_NULLFIELDPACKER_H
