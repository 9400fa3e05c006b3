#include "traffic/PcapOut.h"

#include "traffic/Checksums.h"

namespace vrm::traffic {

namespace {

// Frames of one length, frame i at i microseconds, checksums recomputed after stamping.
class FixedLengthSource final : public FrameSource {
  public:
    FixedLengthSource(std::size_t length, const FrameStamp& stamp, const FrameChecksums* checksums)
        : m_length(length), m_stamp(stamp), m_checksums(checksums) {}

    std::size_t MaxLength() const override { return m_length; }

    void Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
               std::uint32_t* lengths, std::uint64_t* times, std::uint32_t*) const override {
        m_stamp(first, count, out, stride);
        if (m_checksums != nullptr) m_checksums->Apply(out, count, stride);
        for (std::size_t k = 0; k < count; ++k) {
            lengths[k] = static_cast<std::uint32_t>(m_length);
            times[k] = (first + k) * 1000;
        }
    }

  private:
    std::size_t m_length;
    const FrameStamp& m_stamp;
    const FrameChecksums* m_checksums;
};

}  // namespace

PcapSummary write_pcap(const std::string& path, std::uint64_t count, std::size_t frameLength,
                       const FrameStamp& stamp, const PcapOptions& options) {
    const FrameChecksums* checksums =
        options.checksums != nullptr && options.checksums->Any() ? options.checksums : nullptr;
    const FixedLengthSource source(frameLength, stamp, checksums);
    CaptureOptions capture;
    capture.threads = options.threads;
    capture.progress = options.progress;
    capture.watcher = options.watcher;
    const CaptureSummary s = write_capture(path, count, source, capture);
    PcapSummary summary;
    summary.frames = s.frames;
    summary.bytes = s.bytes;
    summary.seconds = s.seconds;
    return summary;
}

}  // namespace vrm::traffic
