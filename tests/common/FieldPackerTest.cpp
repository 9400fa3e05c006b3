#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Thrown.h"
#include "common/FieldPacker.h"

namespace {

using vrm::common::FieldPacker;
using Bytes = std::vector<unsigned char>;

struct Geometry {
    unsigned int absoluteBitOffset;
    unsigned int bitLength;
    unsigned int relativeOffset;
    unsigned int dataSize;
    unsigned int offsetAdjust = 0;
    unsigned int maskOffsetAdjust = 0;
    bool fixedValueOffset = false;
    Bytes mask = {};  // empty: no mask value
};

std::unique_ptr<FieldPacker> Make(const Geometry& g) {
    return FieldPacker::CreateImpl(g.absoluteBitOffset, g.bitLength, g.relativeOffset, g.dataSize,
                                   g.offsetAdjust, g.maskOffsetAdjust, g.fixedValueOffset,
                                   g.mask.empty() ? nullptr : &g.mask);
}

struct PackCase {
    const char* name;
    Geometry geometry;
    Bytes value;
    size_t frameSize;
    Bytes cleared;  // an all-ones frame after ZeroBytes: the complement of the owned bits
    Bytes packed;   // a zero frame after packing the value
    Bytes window;   // GetBytes
    unsigned int absoluteOffset;
    unsigned int absoluteBitOffset;
    unsigned int fieldBitLength;
};

// clang-format off
const PackCase kPackCases[] = {
    {"NibbleAlignedTwelveBits", {4, 12, 0, 2}, {0x0A, 0xBC}, 3, {0xF0, 0x00, 0xFF}, {0x0A, 0xBC, 0x00}, {0x0A, 0xBC}, 0, 4, 12},
    {"FourBitsAtOffsetZero", {0, 4, 0, 1}, {0x05}, 2, {0x0F, 0xFF}, {0x50, 0x00}, {0x50}, 0, 0, 4},
    {"SingleBitAtOffsetSeven", {7, 1, 0, 1}, {0x01}, 1, {0xFE}, {0x01}, {0x01}, 0, 7, 1},
    {"ThreeBitsInsideAByte", {2, 3, 0, 1}, {0x05}, 1, {0xC7}, {0x28}, {0x28}, 0, 2, 3},
    {"ByteStraddlingTwoBytes", {3, 8, 0, 1}, {0xAB}, 2, {0xE0, 0x1F}, {0x15, 0x60}, {0x15, 0x60}, 0, 3, 8},
    {"NarrowValueCoversLeadingBits", {0, 32, 0, 2}, {0xAB, 0xCD}, 4, {0x00, 0x00, 0xFF, 0xFF}, {0xAB, 0xCD, 0x00, 0x00}, {0xAB, 0xCD}, 0, 0, 16},
    {"RelativeOffsetInsideField", {8, 32, 2, 2}, {0x12, 0x34}, 5, {0xFF, 0xFF, 0xFF, 0x00, 0x00}, {0x00, 0x00, 0x00, 0x12, 0x34}, {0x12, 0x34}, 3, 24, 16},
    {"LongValueUsedFromItsEnd", {0, 8, 0, 1}, {0x11, 0x22, 0x33}, 1, {0x00}, {0x33}, {0x33}, 0, 0, 8},
    {"FixedValueOffsetUsesFront", {0, 8, 0, 1, 0, 0, true}, {0x11, 0x22, 0x33}, 1, {0x00}, {0x11}, {0x11}, 0, 0, 8},
    {"OffsetAdjustSkipsLeadingBytes", {0, 32, 0, 3, 1}, {0xAA, 0xBB, 0xCC, 0xDD}, 4, {0xFF, 0x00, 0x00, 0x00}, {0x00, 0xBB, 0xCC, 0xDD}, {0xBB, 0xCC, 0xDD}, 0, 0, 32},
    {"MaskValueSelectsBits", {0, 16, 0, 2, 0, 4, false, {0x0F, 0xF0}}, {0xFF, 0xFF}, 2, {0xF0, 0x0F}, {0x0F, 0xF0}, {0x0F, 0xF0}, 0, 0, 16},
    {"MaskValueTrimmedToFirstBit", {4, 12, 0, 2, 0, 4, false, {0xFF, 0xFF}}, {0xFF, 0xFF}, 2, {0xF0, 0x00}, {0x0F, 0xFF}, {0x0F, 0xFF}, 0, 4, 12},
    {"MaskOffsetWithoutMaskValue", {0, 16, 0, 2, 0, 12}, {0xFF, 0xFF}, 2, {0xFF, 0xF0}, {0x00, 0x0F}, {0x00, 0x0F}, 0, 0, 16},
    // The last byte's mask is last + 1 - 2^(8 - tailBits): here 0x3F + 1 - 0x80 = 0xC0, one
    // bit more than the field's single bit in that byte.
    {"ArithmeticTailMask", {0, 9, 0, 1, 1, 9}, {0x00, 0x01}, 2, {0xFF, 0x3F}, {0x00, 0x80}, {0x80}, 0, 0, 9},
};
// clang-format on

class PackTest : public ::testing::TestWithParam<PackCase> {};

TEST_P(PackTest, GeometryMaskAndPacking) {
    const PackCase& c = GetParam();
    auto packer = Make(c.geometry);
    EXPECT_EQ(packer->GetAbsoluteOffset(), c.absoluteOffset);
    EXPECT_EQ(packer->GetAbsoluteBitOffset(), c.absoluteBitOffset);
    EXPECT_EQ(packer->GetFieldBitLength(), c.fieldBitLength);
    EXPECT_EQ(packer->GetAbsoluteBitOffsetOrig(), c.geometry.absoluteBitOffset);
    EXPECT_EQ(packer->GetFieldBitLengthOrig(), c.geometry.bitLength);

    Bytes cleared(c.frameSize, 0xFF);
    packer->ZeroBytes(cleared);
    EXPECT_EQ(cleared, c.cleared);

    Bytes value = c.value;
    Bytes packed(c.frameSize, 0x00);
    packer->StuffBytes(packed, value, false);
    EXPECT_EQ(packed, c.packed);

    Bytes window = {0x99};
    packer->GetBytes(window, value, false);
    EXPECT_EQ(window, c.window);
}

INSTANTIATE_TEST_SUITE_P(FieldPacker, PackTest, ::testing::ValuesIn(kPackCases),
                         [](const auto& info) { return std::string(info.param.name); });

enum class Kind { InvalidArgument, OutOfRange };

struct ConstructionErrorCase {
    const char* name;
    Geometry geometry;
    Kind kind;
    std::string text;
};

const std::string kBeyond = "Modifier's relative offset (";
const std::string kBeyondEnd = ") goes beyond field boundary (field length in bits: 16\n";
// clang-format off
const ConstructionErrorCase kConstructionErrors[] = {
    {"ZeroBitLength", {0, 0, 0, 1}, Kind::InvalidArgument, "Field bit length is zero\n"},
    {"ZeroDataSize", {0, 8, 0, 0}, Kind::InvalidArgument, "Modifier data is zero\n"},
    {"RelativeOffsetAtFieldEnd", {0, 16, 2, 1}, Kind::OutOfRange, kBeyond + "2" + kBeyondEnd},
    {"RelativeOffsetPlusAdjustAtFieldEnd", {0, 16, 1, 1, 1}, Kind::OutOfRange, kBeyond + "2" + kBeyondEnd},
    {"WrappingRelativeOffset", {0, 16, 1, 1, 0xFFFFFFFFu}, Kind::OutOfRange, kBeyond + "4294967296" + kBeyondEnd},
    {"DataOneByteTooWide", {4, 12, 1, 2}, Kind::OutOfRange,
     "Modifier goes beyond field boundary: \nAbsolute bit offset: 4\nrelative byte offset: 1\noffsetAdjust: 0\n"
     "dataSize: 2\nrelative bit offset: 4\nfield bit length: 12\n"},
    {"WrappingDataSize", {0, 16, 1, 0xFFFFFFFFu}, Kind::OutOfRange,
     "Modifier goes beyond field boundary: \nAbsolute bit offset: 0\nrelative byte offset: 1\noffsetAdjust: 0\n"
     "dataSize: 4294967295\nrelative bit offset: 0\nfield bit length: 16\n"},
    {"MaskOffsetBeyondField", {3, 10, 0, 2, 0, 17}, Kind::InvalidArgument,
     "Mask offset adjust goes beyond field boundary: \nAbsolute bit offset: 3\nmaskOffsetAdjust in bits: 17\n"
     "dataSize: 2\nrelative bit offset: 3\n field bit length: 10\n"},
};
// clang-format on

class ConstructionErrorTest : public ::testing::TestWithParam<ConstructionErrorCase> {};

TEST_P(ConstructionErrorTest, ThrowsDocumentedKindAndText) {
    const ConstructionErrorCase& c = GetParam();
    if (c.kind == Kind::InvalidArgument) {
        EXPECT_EQ(Thrown<std::invalid_argument>([&] { Make(c.geometry); }), c.text);
    } else {
        EXPECT_EQ(Thrown<std::out_of_range>([&] { Make(c.geometry); }), c.text);
    }
}

INSTANTIATE_TEST_SUITE_P(FieldPacker, ConstructionErrorTest, ::testing::ValuesIn(kConstructionErrors),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(FieldPacker, AcceptsGeometriesExactlyAtTheLimits) {
    const Geometry limits[] = {
        {4, 12, 1, 1},         // relByte + dataSize equals the field's byte count
        {0, 17, 2, 1},         // relByte * 8 just below the bit length
        {3, 10, 0, 2, 0, 16},  // mask offset equal to the field's bits
        {0, 16, 0, 2, 0, 16, false, {0x00, 0x00}},
    };
    for (const Geometry& g : limits) EXPECT_NO_THROW(Make(g));
}

struct FrameSizeCase {
    size_t frameSize;
    bool accepted;
};

TEST(FieldPacker, FrameMustHoldTheWindow) {
    // Window: frame bytes 3..4.
    auto packer = Make({8, 32, 2, 2});
    const FrameSizeCase cases[] = {{5, true}, {6, true}, {4, false}, {3, false}, {0, false}};
    for (const FrameSizeCase& c : cases) {
        Bytes frame(c.frameSize, 0);
        Bytes value = {0x12, 0x34};
        if (c.accepted) {
            EXPECT_NO_THROW(packer->StuffBytes(frame, value, false)) << c.frameSize;
            continue;
        }
        const std::string text =
            "Input byte array is not large enough to accomodate modifier: " + std::to_string(c.frameSize) +
            " (array size) . Absolute offset: 3. Field size: 2.\n";
        EXPECT_EQ(Thrown<std::out_of_range>([&] { packer->StuffBytes(frame, value, false); }), text);
        EXPECT_EQ(Thrown<std::out_of_range>([&] { packer->ZeroBytes(frame); }), text);
        EXPECT_EQ(Thrown<std::out_of_range>([&] { packer->ZeroBytes(frame, 0, 1); }), text);
    }
}

TEST(FieldPacker, ShortValueRejectedBeforeAnyByteIsWritten) {
    auto packer = Make({0, 32, 0, 3, 1});  // needs 3 bytes after 1 skipped byte
    Bytes frame(4, 0x5A);
    Bytes value = {0xBB, 0xCC, 0xDD};
    EXPECT_EQ(Thrown([&] { packer->StuffBytes(frame, value, false); }),
              "Input value size (3) is less than the required value size (4).\n");
    EXPECT_EQ(frame, Bytes(4, 0x5A));
    Bytes out;
    EXPECT_THROW(packer->GetBytes(out, value, false), std::logic_error);
}

struct WindowCase {
    unsigned char offset;
    unsigned char size;
    Bytes cleared;      // all-ones frame after the partial clear
    std::string error;  // empty: accepted
};

TEST(FieldPacker, PartialZeroBytesChecksTheWindow) {
    auto packer = Make({4, 12, 0, 2});  // window of 2 bytes, mask 0F FF
    // The offset and size appear as raw characters.
    const std::string size = " than the modifier value size (2).\n";
    const WindowCase cases[] = {
        {0, 2, {0xF0, 0x00}, ""}, {1, 1, {0xFF, 0x00}, ""}, {0, 1, {0xF0, 0xFF}, ""}, {2, 0, {0xFF, 0xFF}, ""},
        {3, 0, {}, "Input window offset (\x03) is over" + size},
        {0, 3, {}, "Input window size (\x03) is larger" + size},
        {1, 2, {}, "Input window end point (\x02) is larger" + size},
        {'A', 0, {}, "Input window offset (A) is over" + size},
    };
    for (const WindowCase& c : cases) {
        Bytes frame(2, 0xFF);
        if (c.error.empty()) {
            packer->ZeroBytes(frame, c.offset, c.size);
            EXPECT_EQ(frame, c.cleared) << int(c.offset) << "," << int(c.size);
            continue;
        }
        EXPECT_EQ(Thrown([&] { packer->ZeroBytes(frame, c.offset, c.size); }), c.error);
    }
}

TEST(FieldPacker, ReplaceKeepsUnownedBitsAndXorTwiceRestores) {
    auto packer = Make({3, 8, 0, 1});  // owns 1F E0
    const Bytes original = {0xA5, 0x5A, 0x77};
    Bytes frame = original;
    Bytes value = {0x00};
    packer->StuffBytes(frame, value, false);
    EXPECT_EQ(frame, (Bytes{0xA0, 0x1A, 0x77}));

    frame = original;
    value = {0xC3};
    packer->StuffBytes(frame, value, true);
    EXPECT_EQ(frame, (Bytes{0xA5 ^ 0x18, 0x5A ^ 0x60, 0x77}));
    packer->StuffBytes(frame, value, true);
    EXPECT_EQ(frame, original);
}

TEST(FieldPacker, AppendModeAppendsOneWindowPerCall) {
    auto packer = Make({3, 8, 0, 1});
    Bytes out = {0x01};
    Bytes value = {0xAB};
    packer->GetBytes(out, value, true);
    value = {0xFF};
    packer->GetBytes(out, value, true);
    EXPECT_EQ(out, (Bytes{0x01, 0x15, 0x60, 0x1F, 0xE0}));
}

// Every frame operation throws std::logic_error with `text`.
void ExpectFrameOperationsRefused(FieldPacker& packer, const std::string& text) {
    Bytes value = {1};
    Bytes frame(4, 0);
    const std::function<void()> ops[] = {
        [&] { packer.GetAbsoluteOffset(); },        [&] { packer.GetAbsoluteBitOffset(); },
        [&] { packer.GetAbsoluteBitOffsetOrig(); }, [&] { packer.GetFieldBitLength(); },
        [&] { packer.GetFieldBitLengthOrig(); },    [&] { packer.StuffBytes(frame, value, false); },
        [&] { packer.ZeroBytes(frame); },           [&] { packer.ZeroBytes(frame, 0, 1); },
    };
    for (const auto& op : ops) {
        EXPECT_EQ(Thrown(op), text);
    }
}

TEST(FieldPacker, NullPackerPassesValuesThroughAndRefusesFrames) {
    auto packer = FieldPacker::CreateNull();
    Bytes value = {1, 2};
    Bytes out = {9};
    packer->GetBytes(out, value, false);
    EXPECT_EQ(out, value);
    packer->GetBytes(out, value, true);
    EXPECT_EQ(out, (Bytes{1, 2, 1, 2}));
    packer->GetBytes(out, out, true);
    EXPECT_EQ(out, (Bytes{1, 2, 1, 2, 1, 2, 1, 2}));
    ExpectFrameOperationsRefused(*packer, "Modifier does not support frame data related operations\n");
}

TEST(FieldPacker, InvalidPackerRefusesEverything) {
    const std::string text = "Attempting to use modifier without setting field parameters\n";
    auto packer = FieldPacker::CreateInvalid();
    ExpectFrameOperationsRefused(*packer, text);
    Bytes out;
    Bytes value = {1};
    EXPECT_EQ(Thrown([&] { packer->GetBytes(out, value, false); }), text);
}

}  // namespace
