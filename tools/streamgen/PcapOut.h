// Writing frames to a pcap file (Ethernet link type) through libpcap, from one or more
// threads.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace streamgen {

// Produces consecutive frames of a block from some first index on.
class FrameProducer {
  public:
    virtual ~FrameProducer() = default;
    // The next frame; valid until the next call.
    virtual const std::vector<uint8_t>& Next() = 0;
};

// Makes a producer whose first frame is frame `first`.
using ProducerFactory = std::function<std::unique_ptr<FrameProducer>(uint64_t first)>;

struct PcapSummary {
    uint64_t frames = 0;
    uint64_t bytes = 0;  // size of the file
    double seconds = 0;
};

// Writes frames 0 .. count-1, each `frameLength` bytes, to `path`. Frame i is stamped i
// microseconds after the epoch, so the file depends on nothing but the frames.
//
// With `threads` > 1 the range is cut into that many contiguous parts, one per thread, each
// with its own producer positioned at its first frame. Every record has the same size, so
// each part's place in the file is known in advance: each thread writes its part through
// its own libpcap dumper opened on the same file at that place. A dumper begins with the
// 24-byte file header; for the parts after the first it lands on the last 24 bytes of the
// part before, which that part's thread overwrites later (the headers are written before
// any thread starts). The file is thus byte-identical for any number of threads.
//
// `progress` is called from the calling thread about ten times a second with the frames
// written so far. Throws std::runtime_error on an I/O failure, and what a producer throws.
PcapSummary write_pcap(const std::string& path, uint64_t count, unsigned threads, std::size_t frameLength,
                       const ProducerFactory& make, const std::function<void(uint64_t done)>& progress);

}  // namespace streamgen
