#include "common/GenericRangeModifier.h"

#include <array>

namespace vrm {
namespace common {

namespace {

constexpr unsigned int kRegisterBits = 33;
constexpr std::uint64_t kRegisterMask = 0x1FFFFFFFFull;

// A linear map on the register: column j is the image of the state with only bit j set.
using StepMatrix = std::array<std::uint64_t, kRegisterBits>;

std::uint64_t Apply(const StepMatrix& m, std::uint64_t v) {
    std::uint64_t r = 0;
    for (unsigned int j = 0; j < kRegisterBits; ++j) r ^= m[j] & (0 - ((v >> j) & 1));
    return r;
}

// M^(2^k) for k = 0..31: enough for any 32-bit step count.
using PowerTable = std::array<StepMatrix, 32>;

PowerTable BuildPowers() {
    PowerTable powers{};
    for (unsigned int j = 0; j < kRegisterBits; ++j) powers[0][j] = RandomRegisterStep(std::uint64_t{1} << j);
    for (unsigned int k = 1; k < powers.size(); ++k) {
        for (unsigned int j = 0; j < kRegisterBits; ++j)
            powers[k][j] = Apply(powers[k - 1], powers[k - 1][j]);
    }
    return powers;
}

}  // namespace

std::uint64_t RandomRegisterAdvance(std::uint64_t state, unsigned int steps) {
    state &= kRegisterMask;
    // Short distances are cheaper to walk.
    if (steps < 64) {
        for (unsigned int i = 0; i < steps; ++i) state = RandomRegisterStep(state);
        return state;
    }
    static const PowerTable powers = BuildPowers();
    for (unsigned int k = 0; steps != 0; ++k, steps >>= 1) {
        if ((steps & 1) != 0) state = Apply(powers[k], state);
    }
    return state;
}

}  // namespace common
}  // namespace vrm
