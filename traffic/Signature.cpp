#include "traffic/Signature.h"

#include <cstring>

#include "traffic/FrameBytes.h"

namespace vrm::traffic {

namespace {

void put_be(unsigned char* p, std::uint64_t v, std::size_t n) {
    for (std::size_t b = 0; b < n; ++b) p[b] = static_cast<unsigned char>(v >> (8 * (n - 1 - b)));
}

std::uint64_t get_be(const unsigned char* p, std::size_t n) {
    std::uint64_t v = 0;
    for (std::size_t b = 0; b < n; ++b) v = v << 8 | p[b];
    return v;
}

}  // namespace

void write_signature(const Signature& s, unsigned char* out, bool badCrc) {
    std::memcpy(out, kSignatureMagic, 2);
    put_be(out + 2, s.block, 2);
    put_be(out + 4, s.stream, 2);
    put_be(out + 6, s.sequence, 4);
    put_be(out + 10, s.txTime, 6);
    std::uint16_t crc = crc16_ccitt(out, 16);
    if (badCrc) crc = static_cast<std::uint16_t>(~crc);
    put_be(out + 16, crc, 2);
}

SignatureCheck read_signature(const unsigned char* frame, std::size_t end, Signature& s) {
    if (end < kSignatureSize) return SignatureCheck::Absent;
    const unsigned char* p = frame + end - kSignatureSize;
    if (std::memcmp(p, kSignatureMagic, 2) != 0) return SignatureCheck::Absent;
    s.block = static_cast<std::uint16_t>(get_be(p + 2, 2));
    s.stream = static_cast<std::uint16_t>(get_be(p + 4, 2));
    s.sequence = static_cast<std::uint32_t>(get_be(p + 6, 4));
    s.txTime = get_be(p + 10, 6);
    return get_be(p + 16, 2) == crc16_ccitt(p, 16) ? SignatureCheck::Good : SignatureCheck::BadCrc;
}

}  // namespace vrm::traffic
