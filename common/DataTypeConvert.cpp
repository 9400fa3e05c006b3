#include "common/DataTypeConvert.h"

#include <cmath>
#include <stdexcept>

namespace vrm {
namespace common {

std::int64_t DataConvertToInt64(const double& value, unsigned long scale) {
    if (scale == 0) throw std::invalid_argument("Data conversion scale is zero\n");
    const double s = value >= 0 ? 1.0 : -1.0;
    const double factor = static_cast<double>(static_cast<std::uint64_t>(scale));
    const double result = std::trunc(factor * (value + s / (2 * factor)));
    // 2^63 is exactly representable; anything at or beyond it (or NaN) does not convert.
    constexpr double kLimit = 9223372036854775808.0;
    if (!(result >= -kLimit && result < kLimit)) {
        throw std::out_of_range("Data conversion result does not fit a signed 64-bit integer\n");
    }
    return static_cast<std::int64_t>(result);
}

double DataConvertToDouble(const unsigned long& value, unsigned long scale) {
    if (scale == 0) throw std::invalid_argument("Data conversion scale is zero\n");
    return static_cast<double>(static_cast<std::uint64_t>(value)) /
           static_cast<double>(static_cast<std::uint64_t>(scale));
}

}  // namespace common
}  // namespace vrm
