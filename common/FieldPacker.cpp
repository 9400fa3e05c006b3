#include "common/FieldPacker.h"

#include "common/FieldPackerImpl.h"
#include "common/NullFieldPacker.h"

namespace vrm {
namespace common {

FieldPacker::~FieldPacker() = default;

std::unique_ptr<FieldPacker> FieldPacker::CreateImpl(unsigned int absoluteBitOffset, unsigned int bitLength,
                                                     unsigned int relativeOffset, unsigned int dataSize,
                                                     unsigned int offsetAdjust, unsigned int maskOffsetAdjust,
                                                     bool fixedValueOffset,
                                                     const std::vector<unsigned char>* mask) {
    return std::make_unique<FieldPackerImpl>(absoluteBitOffset, bitLength, relativeOffset, dataSize,
                                             offsetAdjust, maskOffsetAdjust, fixedValueOffset, mask);
}

std::unique_ptr<FieldPacker> FieldPacker::CreateNull() { return std::make_unique<NullFieldPacker>(); }

std::unique_ptr<FieldPacker> FieldPacker::CreateInvalid() { return std::make_unique<InvalidFieldPacker>(); }

}  // namespace common
}  // namespace vrm
