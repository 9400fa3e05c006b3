#include "common/NullFieldPacker.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

namespace vrm {
namespace common {

namespace {

[[noreturn]] void ThrowNoFrameData() {
    throw std::logic_error("Modifier does not support frame data related operations\n");
}

[[noreturn]] void ThrowNoFieldParams() {
    throw std::logic_error("Attempting to use modifier without setting field parameters\n");
}

}  // namespace

// --- NullFieldPacker -----------------------------------------------------------------------

NullFieldPacker::~NullFieldPacker() = default;

unsigned int NullFieldPacker::GetAbsoluteOffset() const { ThrowNoFrameData(); }
unsigned int NullFieldPacker::GetAbsoluteBitOffset() const { ThrowNoFrameData(); }
unsigned int NullFieldPacker::GetAbsoluteBitOffsetOrig() const { ThrowNoFrameData(); }
unsigned int NullFieldPacker::GetFieldBitLength() const { ThrowNoFrameData(); }
unsigned int NullFieldPacker::GetFieldBitLengthOrig() const { ThrowNoFrameData(); }

void NullFieldPacker::StuffBytes(std::vector<unsigned char>&, std::vector<unsigned char>&, bool) {
    ThrowNoFrameData();
}

void NullFieldPacker::GetBytes(std::vector<unsigned char>& out, std::vector<unsigned char>& value,
                               bool append) {
    if (!append) {
        out = value;
    } else if (&out == &value) {
        // Appending a vector to itself: inserting from its own range is not allowed.
        const std::size_t n = out.size();
        out.resize(2 * n);
        std::copy_n(out.begin(), n, out.begin() + static_cast<std::ptrdiff_t>(n));
    } else {
        out.insert(out.end(), value.begin(), value.end());
    }
}

void NullFieldPacker::ZeroBytes(std::vector<unsigned char>&) { ThrowNoFrameData(); }

void NullFieldPacker::ZeroBytes(std::vector<unsigned char>&, unsigned char, unsigned char) {
    ThrowNoFrameData();
}

// --- InvalidFieldPacker --------------------------------------------------------------------

InvalidFieldPacker::~InvalidFieldPacker() = default;

unsigned int InvalidFieldPacker::GetAbsoluteOffset() const { ThrowNoFieldParams(); }
unsigned int InvalidFieldPacker::GetAbsoluteBitOffset() const { ThrowNoFieldParams(); }
unsigned int InvalidFieldPacker::GetAbsoluteBitOffsetOrig() const { ThrowNoFieldParams(); }
unsigned int InvalidFieldPacker::GetFieldBitLength() const { ThrowNoFieldParams(); }
unsigned int InvalidFieldPacker::GetFieldBitLengthOrig() const { ThrowNoFieldParams(); }

void InvalidFieldPacker::StuffBytes(std::vector<unsigned char>&, std::vector<unsigned char>&, bool) {
    ThrowNoFieldParams();
}

void InvalidFieldPacker::GetBytes(std::vector<unsigned char>&, std::vector<unsigned char>&, bool) {
    ThrowNoFieldParams();
}

void InvalidFieldPacker::ZeroBytes(std::vector<unsigned char>&) { ThrowNoFieldParams(); }

void InvalidFieldPacker::ZeroBytes(std::vector<unsigned char>&, unsigned char, unsigned char) {
    ThrowNoFieldParams();
}

}  // namespace common
}  // namespace vrm
