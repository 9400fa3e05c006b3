#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "common/DataTypeConvert.h"

namespace {

using vrm::common::DataConvertToDouble;
using vrm::common::DataConvertToInt64;

TEST(DataTypeConvert, ToInt64RoundsHalfAwayFromZero) {
    struct {
        double value;
        unsigned long scale;
        std::int64_t result;
    } const cases[] = {
        {1.125, 4, 5},    // 4.5 -> 5
        {1.375, 4, 6},    // 5.5 -> 6
        {-1.375, 4, -6},  // -5.5 -> -6
        {1.0, 2, 2},      // exact
        {0.1, 1, 0},      // 0.1 -> 0
        {-0.4, 1, 0},     // -0.4 -> 0
        {2.5, 1, 3},      // half -> 3
        {-2.5, 1, -3},    // half -> -3
        {0.0, 1000, 0},  {123.456, 1000, 123456}, {-9.0e18, 1, -9000000000000000000LL},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(DataConvertToInt64(c.value, c.scale), c.result) << c.value << " / " << c.scale;
    }
}

TEST(DataTypeConvert, ToInt64RejectsUnrepresentableResults) {
    EXPECT_THROW(DataConvertToInt64(1.0, 0), std::invalid_argument);
    EXPECT_THROW(DataConvertToInt64(1.0e19, 1), std::out_of_range);
    EXPECT_THROW(DataConvertToInt64(9223372036854775808.0, 1), std::out_of_range);  // 2^63
    EXPECT_THROW(DataConvertToInt64(-1.0e19, 1), std::out_of_range);
    EXPECT_THROW(DataConvertToInt64(std::nan(""), 1), std::out_of_range);
    EXPECT_THROW(DataConvertToInt64(std::numeric_limits<double>::infinity(), 1), std::out_of_range);
}

TEST(DataTypeConvert, ToDoubleDividesByTheScale) {
    EXPECT_DOUBLE_EQ(DataConvertToDouble(10, 4), 2.5);
    EXPECT_DOUBLE_EQ(DataConvertToDouble(0, 7), 0.0);
    EXPECT_DOUBLE_EQ(DataConvertToDouble(~0ul, 1), 18446744073709551615.0);
    EXPECT_THROW(DataConvertToDouble(1, 0), std::invalid_argument);
}

}  // namespace
