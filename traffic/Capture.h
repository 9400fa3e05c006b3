// Writing the frames of a FrameSource to a capture (pcap with microsecond or nanosecond times,
// or pcapng) from one or more threads, into a file or any ByteSink.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "traffic/ByteSink.h"
#include "traffic/FrameSource.h"

namespace vrm::traffic {

// The longest frame common pcap readers accept in a record.
constexpr std::size_t kPcapMaxFrame = 262144;

enum class CaptureFormat {
    Pcap,      // magic a1b2c3d4: microseconds (times are truncated to them)
    PcapNano,  // magic a1b23c4d: nanoseconds
    Pcapng,    // one section, one interface (if_tsresol 9: nanoseconds), enhanced packet blocks
               // with 64-bit nanosecond times, each padded to 32 bits
};

class TempWatcher;

struct CaptureOptions {
    CaptureFormat format = CaptureFormat::Pcap;
    // The frames end with a 4-byte frame check sequence the source wrote; the capture says so:
    // pcap in the link-type field (F bit and an FCS length of two 16-bit words: 0x24000001),
    // pcapng with if_fcslen = 32 in the interface description (the pcapng document counts
    // it in bits; Wireshark 4.0 takes 4 and 32 alike, newer releases read bits only).
    // Wireshark 4.0 (tshark) honours both marks: the last four bytes show as the FCS
    // (eth.fcs). Without a mark it guesses; `-o eth.fcs:TRUE` forces it (4.0 calls the older
    // eth.assume_fcs obsolete).
    bool fcs = false;
    unsigned threads = 1;
    // Called from the calling thread about ten times a second with the frames written (the
    // caller then only reports and the others stamp).
    std::function<void(std::uint64_t done)> progress;
    // Told the temporary file's name (see OutputFile); for the path overload only.
    TempWatcher* watcher = nullptr;
};

// The format named "pcap", "pcap-ns" or "pcapng"; false for any other name.
bool parse_capture_format(const std::string& name, CaptureFormat& format);

struct CaptureSummary {
    std::uint64_t frames = 0;
    std::uint64_t bytes = 0;  // size of the capture
    double seconds = 0;
};

// Writes frames 0 .. count-1 of `source` to `sink` in the machine's byte order, link type
// Ethernet, snap length max(65535, source.MaxLength()).
//
// The range is cut into blocks of about a megabyte; each thread takes the next block not yet
// taken, stamps it (one FrameSource::Stamp call per block) and lays its frames out as records
// in place; the blocks go to the sink in index order, so the capture is byte-identical for
// any number of threads, and at most one block per thread is held at a time.
//
// Throws std::invalid_argument when source.MaxLength() exceeds kPcapMaxFrame (before
// anything is written), std::logic_error when the source gives a frame longer than its
// MaxLength(), std::out_of_range for a pcap time beyond 32-bit seconds (2106), and what the
// source or the sink throws; after a throw the sink holds a partial capture.
CaptureSummary write_capture(ByteSink& sink, std::uint64_t count, const FrameSource& source,
                             const CaptureOptions& options = {});

// The same into `path` ("-": standard output) through an OutputFile: the capture appears only
// when complete, and an existing target is untouched on any failure. I/O failures throw
// std::system_error (the errno; what() "<path>: <reason>").
CaptureSummary write_capture(const std::string& path, std::uint64_t count, const FrameSource& source,
                             const CaptureOptions& options = {});

}  // namespace vrm::traffic
