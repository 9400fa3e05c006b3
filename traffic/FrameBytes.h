// Byte sequences that shaped frames carry: the PRBS-31 payload fill, the Ethernet frame check
// sequence (CRC-32) and the CRC-16 that closes a signature. Plain functions of their inputs,
// so a receiver can check what a sender wrote.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vrm::traffic {

// Writes n bytes of the PRBS-31 sequence (x^31 + x^28 + 1: bit s[k] = s[k-31] XOR s[k-28])
// whose first 31 bits are `state` (bit 30 first; a state of 0 is taken as 1), bits packed
// most significant first.
void prbs31_fill(std::uint32_t state, unsigned char* out, std::size_t n);

// The CRC-32 of Ethernet (reflected polynomial 0xEDB88320, initial and final XOR all ones).
// The frame check sequence is this value stored least significant byte first.
std::uint32_t crc32_ethernet(const unsigned char* data, std::size_t n);

// CRC-16/CCITT-FALSE (polynomial 0x1021, initial 0xFFFF, no reflection, no final XOR).
std::uint16_t crc16_ccitt(const unsigned char* data, std::size_t n);

// The SplitMix64 finalizer of x + 0x9E3779B97F4A7C15: the generator behind random lengths,
// IMIX choices and fill seeds, taken by frame index so that any frame stands alone.
constexpr std::uint64_t splitmix64(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15ull;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
    return x ^ (x >> 31);
}

// floor(r * n / 2^64): a uniform choice among n from 64 random bits.
inline std::uint64_t scale_random(std::uint64_t r, std::uint64_t n) {
    __extension__ using Wide = unsigned __int128;
    return static_cast<std::uint64_t>((static_cast<Wide>(r) * n) >> 64);
}

}  // namespace vrm::traffic
