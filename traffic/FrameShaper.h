// A block's frames as the whole block describes them: the frame plan's bytes (template and
// modifiers), then the length from the block's length settings, the payload fill past the
// template, the length fields and checksums, the signature and, on request, the frame check
// sequence. Frame i depends on i alone: any run of frames can be made from any index, by any
// number of threads at once, with the same bytes.
//
// Lengths count the frame without its frame check sequence.
//   AUTO (and an unset mode)  the template's length
//   FIXED                     fixedFrameLength
//   INCR                      minLength, minLength + step, ... up to maxLength, then around;
//                             step = 2^stepExp bytes, n = (maxLength - minLength) / step + 1
//                             lengths: frame i has minLength + (i mod n) * step
//   DECR                      maxLength - (i mod n) * step
//   RANDOM                    minLength + floor(r * (maxLength - minLength + 1) / 2^64),
//                             r = splitmix64(seed * 2^32 XOR i), seed the port's
//                             randomLengthSeed as an unsigned 32-bit number
//   IMIX                      the port's imix distribution (imix.distCfg; without one the
//                             default below): with r = splitmix64(imix.seed * 2^32 XOR i),
//                             entry e is chosen with probability weight(e) / total by
//                             floor((r >> 32) * total / 2^32), and the length is uniform in
//                             [minLength, maxLength] of e by floor((r mod 2^32) * n / 2^32).
//                             With lengthMode L3 the entry's lengths are IP packet lengths:
//                             the frame adds the Ethernet header and tags before the IP header.
//   default IMIX (no port, or no distCfg): 60 bytes weight 7, 590 bytes weight 4, 1514 bytes
//   weight 1 (64, 594 and 1518 bytes with the frame check sequence), L2.
//
// Fill (the bytes past the template in frames longer than it), per frame from its first
// byte past the template:
//   NONE (and unset)  zeros
//   CONSTANT          fillConstant, high byte first, repeated
//   INCR / DECR       a byte counter: byte k of the fill is k mod 256 / 255 - k mod 256
//   PRBS              PRBS-31 from the state (splitmix64(i) >> 33), or 1 when that is 0
//
// A frame whose length differs from the template's has its IPv4 total length, IPv6 payload
// length and UDP length set so that the packet ends with the frame. With insertSigField the
// frame's last 18 bytes are the signature (traffic/Signature.h): the block's blockID, the
// stream (the combination of values of the modifiers marked useStream, numbered in the
// order they first appear), the frame's number within that stream and its transmit time.
// Then the checksums are recomputed (on by default) and, with an FCS output, the frame check
// sequence is appended (inverted with the error setting errorFCS).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/FramePlan.h"
#include "traffic/BlockFile.h"
#include "traffic/Checksums.h"
#include "traffic/FrameSource.h"

namespace vrm::traffic {

class BlockModifiers;

// Frame lengths are at most this many bytes.
constexpr std::size_t kMaxFrameLength = 16384;
// Blocks whose stream modifiers repeat after more frames than this are refused when the
// signature needs their streams.
constexpr std::uint64_t kMaxStreamCycle = std::uint64_t{1} << 20;

struct ShapeOptions {
    // Recompute the IPv4 header, UDP, TCP, ICMPv4 and ICMPv6 checksums of every frame.
    bool checksums = true;
    // Append the 4-byte frame check sequence to every frame.
    bool fcs = false;
    // Added to the times signatures carry (a sender on the system clock gives its start, so
    // that a receiver measures latency); 0: the schedule's own times, from 0.
    std::uint64_t signatureEpoch = 0;
};

class FrameShaper : public FrameSource {
  public:
    // `mods` must be placed (PlaceFields) and `plan` made from them (MakePlan). Throws
    // InputError naming the JSON path of a setting that cannot be honoured: an empty frame
    // template, a length outside
    // the headers' end .. kMaxFrameLength, a modifier writing past the shortest frame, a
    // signature that would cover the headers or a modifier's bytes.
    FrameShaper(const BlockInput& in, vrm::common::FramePlan plan, BlockModifiers& mods,
                const ShapeOptions& options = {});

    // The room each frame needs in Stamp's output: its longest frame (frame check sequence
    // included when appended), and at least the template's length.
    std::size_t MaxLength() const override {
        return std::max(m_template, m_maxLength + (m_options.fcs ? 4 : 0));
    }
    // Shortest and longest frame length (without the frame check sequence).
    std::size_t MinFrameLength() const { return m_minLength; }
    std::size_t MaxFrameLength() const { return m_maxLength; }
    // Frame i's length without the frame check sequence.
    std::size_t LengthOf(std::uint64_t i) const;
    // The mean frame length (without the frame check sequence) over the length sequence, as
    // num / den: exact for FIXED, INCR, DECR and IMIX cycles, the expectation for RANDOM.
    void MeanLength(std::uint64_t& num, std::uint64_t& den) const;
    // Writes frames first .. first + count - 1 at out + k * stride (stride >= MaxLength()),
    // their lengths (frame check sequence included) in lengths[k]. The signature's transmit
    // time is txTimes[k], or, without txTimes, the frame's time alone (i microseconds).
    void Shape(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
               std::uint32_t* lengths, const std::uint64_t* txTimes = nullptr) const;
    // FrameSource: a block alone sends frame i at i microseconds.
    void Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
               std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags) const override;
    // One frame into `out` (MaxLength() bytes); returns its length.
    std::size_t Frame(std::uint64_t i, unsigned char* out) const;

    // The signature's stream and sequence of frame i.
    std::uint32_t StreamOf(std::uint64_t i) const;
    std::uint32_t SequenceOf(std::uint64_t i) const;
    // Whether the frames carry a signature (and so their transmit times).
    bool SignsFrames() const { return m_signature; }
    // Streams of the block (1 when no modifier is marked useStream).
    std::uint32_t StreamCount() const { return m_streamCount; }

    const vrm::common::FramePlan& Plan() const { return m_plan; }
    const FrameChecksums& Checksums() const { return m_sums; }
    // The length settings in words ("INCR 64..1518 step 4"), for summaries.
    const std::string& LengthText() const { return m_lengthText; }
    // Settings the frames cannot show, as "<JSON path>: <text>" lines.
    const std::vector<std::string>& Warnings() const { return m_warnings; }

  private:
    enum class Lengths { Fixed, Incr, Decr, Random, Imix };
    enum class Fill { Zero, Pattern, Prbs };
    struct ImixEntry {
        std::uint64_t weightEnd;  // cumulative weight
        std::uint32_t min;
        std::uint32_t span;  // lengths in the entry
    };
    void ReadLengths(const BlockInput& in);
    void CheckRoom(BlockModifiers& mods);
    void MakeStreams(BlockModifiers& mods);
    void Finish(unsigned char* f, std::uint64_t i, std::size_t length, std::uint64_t txTime) const;

    vrm::common::FramePlan m_plan;
    FrameChecksums m_sums;
    ShapeOptions m_options;
    std::size_t m_template = 0;
    Lengths m_mode = Lengths::Fixed;
    std::size_t m_minLength = 0;
    std::size_t m_maxLength = 0;
    std::uint64_t m_step = 1;
    std::uint64_t m_lengthCount = 1;
    std::uint64_t m_seedKey = 0;
    std::vector<ImixEntry> m_imix;
    std::uint64_t m_imixTotal = 0;
    std::uint32_t m_imixExtra = 0;  // L3 lengths: the bytes before the IP header
    Fill m_fill = Fill::Zero;
    std::vector<unsigned char> m_pattern;  // kMaxFrameLength bytes of a CONSTANT/INCR/DECR fill
    bool m_signature = false;
    bool m_badSignatureCrc = false;
    bool m_badFcs = false;
    bool m_plain = true;  // every frame is the plan's frame: template length, no signature
    std::uint32_t m_blockId = 0;
    std::uint32_t m_streamCount = 1;
    std::uint64_t m_streamCycle = 1;
    std::vector<std::uint32_t> m_streamOf;  // per frame of the stream cycle
    std::vector<std::uint32_t> m_before;    // frames of the same stream earlier in the cycle
    std::vector<std::uint32_t> m_perCycle;  // frames of each stream in a cycle
    std::string m_lengthText;
    std::vector<std::string> m_warnings;
};

}  // namespace vrm::traffic
