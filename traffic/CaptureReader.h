// Frames from a capture file, pcap (microsecond or nanosecond times, either byte order) or
// pcapng (Enhanced and Simple Packet Blocks, each interface's time resolution), read in a
// stream: memory is bounded by the largest record, whatever the file's size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace vrm::traffic {

class CaptureReader {
  public:
    // Longest record it takes (a frame of 256 KiB).
    static constexpr std::size_t kMaxRecord = std::size_t{1} << 18;

    // Reads `file` ("-": standard input). Throws std::system_error when it cannot be opened,
    // InputError("capture", ...) when it is not a capture.
    explicit CaptureReader(const std::string& file);
    ~CaptureReader();
    CaptureReader(const CaptureReader&) = delete;
    CaptureReader& operator=(const CaptureReader&) = delete;

    // The next frame: its captured bytes (valid until the next call), their number and its
    // time in nanoseconds since the epoch; false at the end. Throws InputError("capture
    // record N", ...) for a broken record.
    bool Next(const unsigned char*& data, std::size_t& length, std::uint64_t& ns);
    // Whether the frames end with their frame check sequence (the link says so).
    bool Fcs() const { return m_fcs; }
    std::uint64_t Records() const { return m_records; }

  private:
    bool Ensure(std::size_t n);  // n bytes from m_pos, false at the end of the file
    std::uint32_t U32(std::size_t at) const;
    std::uint16_t U16(std::size_t at) const;
    void ReadInterface(std::size_t body, std::size_t bodyLength);
    std::uint64_t Nanos(std::uint64_t ticks, std::size_t interface) const;

    std::FILE* m_file = nullptr;
    bool m_own = false;
    std::vector<unsigned char> m_buffer;
    std::size_t m_pos = 0, m_end = 0;
    bool m_pcapng = false, m_swap = false, m_nanos = false, m_fcs = false;
    std::uint64_t m_records = 0;
    struct Interface {
        bool decimal = true;  // 10^-exp seconds, else 2^-exp
        unsigned exp = 6;
    };
    std::vector<Interface> m_interfaces;
};

}  // namespace vrm::traffic
