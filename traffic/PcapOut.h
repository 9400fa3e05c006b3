// Writing frames of one length to a pcap capture (microseconds, Ethernet link type, the
// machine's byte order) from one or more threads: the older interface, kept for its callers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "traffic/Capture.h"  // kPcapMaxFrame

namespace vrm::traffic {

class FrameChecksums;

// Writes frames first .. first + count - 1, frame first + k at out + k * stride (every byte
// of each frame; the bytes between frames are left alone). Called from several threads at
// once with disjoint ranges.
using FrameStamp = std::function<void(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride)>;

struct PcapSummary {
    std::uint64_t frames = 0;
    std::uint64_t bytes = 0;  // size of the capture
    double seconds = 0;
};

class TempWatcher;

struct PcapOptions {
    unsigned threads = 1;
    // Recomputed in every frame after stamping; null leaves the bytes as stamped.
    const FrameChecksums* checksums = nullptr;
    // Called from the calling thread about ten times a second with the frames written.
    std::function<void(std::uint64_t done)> progress;
    // Told the temporary file's name (see OutputFile).
    TempWatcher* watcher = nullptr;
};

// Writes frames 0 .. count-1, each `frameLength` bytes (at most kPcapMaxFrame), to `path`
// ("-": standard output) through an OutputFile: the capture appears only when complete.
// Frame i is stamped i microseconds after the epoch, so the file depends on nothing but the
// frames. A thin wrapper over write_capture (CaptureFormat::Pcap) with a source of fixed-length
// frames; the capture is byte-identical for any number of threads.
//
// Throws std::invalid_argument for a frame length beyond kPcapMaxFrame, std::runtime_error
// "<path>: <reason>" on an I/O failure, and what `stamp` throws.
PcapSummary write_pcap(const std::string& path, std::uint64_t count, std::size_t frameLength,
                       const FrameStamp& stamp, const PcapOptions& options = {});

}  // namespace vrm::traffic
