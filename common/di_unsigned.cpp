#include "common/di_unsigned.h"

namespace vrm {
namespace common {

template <>
di_unsignedtable<unsigned int, unsigned char>::Table di_unsignedtable<unsigned int, unsigned char>::table{};

template <>
bool di_unsignedtable<unsigned int, unsigned char>::Fill() {
    if (table.filled) return false;
    for (unsigned int k = 0; k < 8; ++k) {
        table.masks[k] = static_cast<unsigned char>(1u << k);
        table.masks[8 + k] = static_cast<unsigned char>((1u << k) - 1);
    }
    table.halfDigitBits = 4;
    table.halfDigitMask = 15;
    table.filled = true;
    return true;
}

namespace {

// Fills the table when the library is loaded. No value is built during static
// initialisation of the library, so none sees the table unfilled.
[[maybe_unused]] const bool kTableFilled = di_unsignedtable<unsigned int, unsigned char>::Fill();

}  // namespace

}  // namespace common
}  // namespace vrm
