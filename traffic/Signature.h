// The signature a shaped frame carries at the end of its payload, so that a receiver can tell
// streams, order and delay without knowing the block that sent it. 18 bytes, big-endian:
//
//   offset  size  field
//        0     2  magic 0x5E 0xC7
//        2     2  block: the block record's blockID (its low 16 bits)
//        4     2  stream: the stream within the block (0 when no modifier defines streams)
//        6     4  sequence: the frame's number within its stream, from 0 (wraps at 2^32)
//       10     6  transmit time: nanoseconds of the frame's scheduled time, modulo 2^48
//       16     2  CRC-16/CCITT-FALSE of bytes 0..15
#pragma once

#include <cstddef>
#include <cstdint>

namespace vrm::traffic {

constexpr std::size_t kSignatureSize = 18;
constexpr unsigned char kSignatureMagic[2] = {0x5E, 0xC7};
// Blocks and streams a signature can name.
constexpr std::uint32_t kSignatureBlocks = 65536;
constexpr std::uint32_t kSignatureStreams = 65536;

struct Signature {
    std::uint16_t block = 0;
    std::uint16_t stream = 0;
    std::uint32_t sequence = 0;
    std::uint64_t txTime = 0;  // only the low 48 bits travel
};

// Writes `s` at `out` (kSignatureSize bytes); with `badCrc` the CRC is inverted.
void write_signature(const Signature& s, unsigned char* out, bool badCrc = false);

// How a frame's last bytes read as a signature.
enum class SignatureCheck { Absent, BadCrc, Good };

// Reads the signature that ends at byte `end` of `frame` (the end of its payload).
SignatureCheck read_signature(const unsigned char* frame, std::size_t end, Signature& s);

}  // namespace vrm::traffic
