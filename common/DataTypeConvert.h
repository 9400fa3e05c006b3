#ifndef VRM_COMMON_DATATYPECONVERT_H
#define VRM_COMMON_DATATYPECONVERT_H

#include <cstdint>

namespace vrm {
namespace common {

// Fixed-point conversion at a resolution of 1/scale, rounding half away from zero:
// trunc(scale * (value + s / (2 * scale))) with s = +1 for value >= 0, else -1.
// Throws std::invalid_argument for a zero scale and std::out_of_range when the value is not a
// number or the result does not fit a signed 64-bit integer.
std::int64_t DataConvertToInt64(const double& value, unsigned long scale);

// value / scale. Throws std::invalid_argument for a zero scale.
double DataConvertToDouble(const unsigned long& value, unsigned long scale);

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_DATATYPECONVERT_H
