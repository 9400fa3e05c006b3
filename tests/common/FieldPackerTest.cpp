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
    unsigned int absoluteBitOffset, bitLength, relativeOffset, dataSize, offsetAdjust = 0, maskOffsetAdjust = 0;
    bool fixedValueOffset = false;
    Bytes mask = {};  // empty: no mask value
};

std::unique_ptr<FieldPacker> Make(const Geometry& g) {
    return FieldPacker::CreateImpl(g.absoluteBitOffset, g.bitLength, g.relativeOffset, g.dataSize,
                                   g.offsetAdjust, g.maskOffsetAdjust, g.fixedValueOffset,
                                   g.mask.empty() ? nullptr : &g.mask);
}

// clang-format off
const struct {
    const char* name;
    Geometry geometry;
    Bytes value;
    size_t frameSize;
    Bytes cleared;  // an all-ones frame after ZeroBytes: the complement of the owned bits
    Bytes packed;   // a zero frame after packing the value
    Bytes window;   // GetBytes
    unsigned int absoluteOffset, absoluteBitOffset, fieldBitLength;
} kPackCases[] = {
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

TEST(FieldPacker, GeometryMaskAndPacking) {
    for (const auto& c : kPackCases) {
        SCOPED_TRACE(c.name);
        auto packer = Make(c.geometry);
        EXPECT_EQ(packer->GetAbsoluteOffset(), c.absoluteOffset);
        EXPECT_EQ(packer->GetAbsoluteBitOffset(), c.absoluteBitOffset);
        EXPECT_EQ(packer->GetFieldBitLength(), c.fieldBitLength);

        Bytes cleared(c.frameSize, 0xFF);
        packer->ZeroBytes(cleared);
        EXPECT_EQ(cleared, c.cleared);
        Bytes value = c.value;
        Bytes packed(c.frameSize, 0x00);
        packer->StuffBytes(packed, value, false);
        EXPECT_EQ(packed, c.packed);
        // Into an all-ones frame: replacing keeps the bits not owned, toggling flips the packed ones.
        Bytes ones(c.frameSize, 0xFF), toggled(c.frameSize, 0xFF);
        packer->StuffBytes(ones, value, false);
        packer->StuffBytes(toggled, value, true);
        for (std::size_t i = 0; i < c.frameSize; ++i) {
            EXPECT_EQ(ones[i], c.cleared[i] | c.packed[i]) << i;
            EXPECT_EQ(toggled[i], 0xFF ^ c.packed[i]) << i;
        }
        Bytes window = {0x99};
        packer->GetBytes(window, value, false);
        EXPECT_EQ(window, c.window);
        // Appended windows: this value's, then a zero value's (no bit of the first stays set).
        Bytes appended = {0x99}, zero(c.value.size(), 0), expected = {0x99};
        packer->GetBytes(appended, value, true);
        packer->GetBytes(appended, zero, true);
        expected.insert(expected.end(), c.window.begin(), c.window.end());
        expected.resize(1 + 2 * c.window.size(), 0);
        EXPECT_EQ(appended, expected);
    }
}

// Each refusal with its kind and text, and the geometries exactly at the limits.
TEST(FieldPacker, ConstructionLimitsKindsAndTexts) {
    const std::string beyond = "Modifier's relative offset (";
    const std::string beyondEnd = ") goes beyond field boundary (field length in bits: 16\n";
    const struct {
        Geometry geometry;
        bool outOfRange;  // else std::invalid_argument
        std::string text;  // empty: accepted
    } cases[] = {
        {{0, 0, 0, 1}, false, "Field bit length is zero\n"},
        {{0, 8, 0, 0}, false, "Modifier data is zero\n"},
        {{0, 16, 2, 1}, true, beyond + "2" + beyondEnd},
        {{0, 16, 1, 1, 1}, true, beyond + "2" + beyondEnd},
        {{0, 16, 1, 1, 0xFFFFFFFFu}, true, beyond + "4294967296" + beyondEnd},
        {{4, 12, 1, 2}, true,
         "Modifier goes beyond field boundary: \nAbsolute bit offset: 4\nrelative byte offset: 1\noffsetAdjust: 0\n"
         "dataSize: 2\nrelative bit offset: 4\nfield bit length: 12\n"},
        {{0, 16, 1, 0xFFFFFFFFu}, true,
         "Modifier goes beyond field boundary: \nAbsolute bit offset: 0\nrelative byte offset: 1\noffsetAdjust: 0\n"
         "dataSize: 4294967295\nrelative bit offset: 0\nfield bit length: 16\n"},
        {{3, 10, 0, 2, 0, 17}, false,
         "Mask offset adjust goes beyond field boundary: \nAbsolute bit offset: 3\nmaskOffsetAdjust in bits: 17\n"
         "dataSize: 2\nrelative bit offset: 3\n field bit length: 10\n"},
        {{4, 12, 1, 1}, false, ""},         // relByte + dataSize equals the field's byte count
        {{0, 17, 2, 1}, false, ""},         // relByte * 8 just below the bit length
        {{3, 10, 0, 2, 0, 16}, false, ""},  // mask offset equal to the field's bits
        {{0, 16, 0, 2, 0, 16, false, {0x00, 0x00}}, false, ""},
    };
    for (const auto& c : cases) {
        if (c.text.empty()) {
            EXPECT_NO_THROW(Make(c.geometry));
        } else if (c.outOfRange) {
            EXPECT_EQ(Thrown<std::out_of_range>([&] { Make(c.geometry); }), c.text);
        } else {
            EXPECT_EQ(Thrown<std::invalid_argument>([&] { Make(c.geometry); }), c.text);
        }
    }
}

// The frame must hold the window and the value the bytes packed; nothing is written otherwise.
TEST(FieldPacker, FrameAndValueMustHoldTheWindow) {
    auto packer = Make({8, 32, 2, 2});  // window: frame bytes 3..4
    for (const size_t frameSize : {6, 5, 4, 3, 0}) {
        Bytes frame(frameSize, 0);
        Bytes value = {0x12, 0x34};
        if (frameSize >= 5) {
            EXPECT_NO_THROW(packer->StuffBytes(frame, value, false)) << frameSize;
            continue;
        }
        const std::string text = "Input byte array is not large enough to accomodate modifier: " +
                                 std::to_string(frameSize) + " (array size) . Absolute offset: 3. Field size: 2.\n";
        EXPECT_EQ(Thrown<std::out_of_range>([&] { packer->StuffBytes(frame, value, false); }), text);
        EXPECT_EQ(Thrown<std::out_of_range>([&] { packer->ZeroBytes(frame); }), text);
        EXPECT_EQ(Thrown<std::out_of_range>([&] { packer->ZeroBytes(frame, 0, 1); }), text);
    }
    packer = Make({0, 32, 0, 3, 1});  // needs 3 bytes after 1 skipped byte
    Bytes frame(4, 0x5A);
    Bytes value = {0xBB, 0xCC, 0xDD};
    EXPECT_EQ(Thrown([&] { packer->StuffBytes(frame, value, false); }),
              "Input value size (3) is less than the required value size (4).\n");
    EXPECT_EQ(frame, Bytes(4, 0x5A));
    Bytes out;
    EXPECT_THROW(packer->GetBytes(out, value, false), std::logic_error);
}

TEST(FieldPacker, PartialZeroBytesChecksTheWindow) {
    auto packer = Make({4, 12, 0, 2});  // window of 2 bytes, mask 0F FF
    // The offset and size appear as raw characters.
    const std::string size = " than the modifier value size (2).\n";
    const struct {
        unsigned char offset, size;
        Bytes cleared;      // all-ones frame after the partial clear
        std::string error;  // empty: accepted
    } cases[] = {
        {0, 2, {0xF0, 0x00}, ""}, {1, 1, {0xFF, 0x00}, ""}, {0, 1, {0xF0, 0xFF}, ""}, {2, 0, {0xFF, 0xFF}, ""},
        {3, 0, {}, "Input window offset (\x03) is over" + size},
        {0, 3, {}, "Input window size (\x03) is larger" + size},
        {1, 2, {}, "Input window end point (\x02) is larger" + size},
        {'A', 0, {}, "Input window offset (A) is over" + size},
    };
    for (const auto& c : cases) {
        Bytes frame(2, 0xFF);
        if (c.error.empty()) {
            packer->ZeroBytes(frame, c.offset, c.size);
            EXPECT_EQ(frame, c.cleared) << int(c.offset) << "," << int(c.size);
            continue;
        }
        EXPECT_EQ(Thrown([&] { packer->ZeroBytes(frame, c.offset, c.size); }), c.error);
    }
}

// The null packer passes values through; both it and the packer of a modifier never placed
// refuse every frame operation with their texts.
TEST(FieldPacker, NullAndInvalidPackersRefuseFrames) {
    auto expectRefused = [](FieldPacker& packer, const std::string& text) {
        Bytes value = {1}, frame(4, 0);
        const std::function<void()> ops[] = {
            [&] { packer.GetAbsoluteOffset(); },        [&] { packer.GetAbsoluteBitOffset(); },
            [&] { packer.GetAbsoluteBitOffsetOrig(); }, [&] { packer.GetFieldBitLength(); },
            [&] { packer.GetFieldBitLengthOrig(); },    [&] { packer.StuffBytes(frame, value, false); },
            [&] { packer.ZeroBytes(frame); },           [&] { packer.ZeroBytes(frame, 0, 1); },
        };
        for (const auto& op : ops) EXPECT_EQ(Thrown(op), text);
    };
    auto null = FieldPacker::CreateNull();
    Bytes value = {1, 2}, out = {9};
    null->GetBytes(out, value, false);
    EXPECT_EQ(out, value);
    null->GetBytes(out, value, true);
    EXPECT_EQ(out, (Bytes{1, 2, 1, 2}));
    null->GetBytes(out, out, true);
    EXPECT_EQ(out, (Bytes{1, 2, 1, 2, 1, 2, 1, 2}));
    expectRefused(*null, "Modifier does not support frame data related operations\n");

    const std::string text = "Attempting to use modifier without setting field parameters\n";
    auto invalid = FieldPacker::CreateInvalid();
    expectRefused(*invalid, text);
    EXPECT_EQ(Thrown([&] { invalid->GetBytes(out, value, false); }), text);
}

}  // namespace
