#include "traffic/CaptureReader.h"

#include <cerrno>
#include <cstring>
#include <system_error>

#include "traffic/JsonRecord.h"
#include "traffic/Rates.h"

namespace vrm::traffic {

namespace {

constexpr std::uint32_t kPcapMicros = 0xa1b2c3d4u, kPcapNanos = 0xa1b23c4du;
constexpr std::uint32_t kSectionHeader = 0x0A0D0D0Au, kByteOrder = 0x1A2B3C4Du;
constexpr std::uint32_t kInterfaceBlock = 1, kSimplePacket = 3, kEnhancedPacket = 6;
constexpr std::uint32_t kPcapFcsPresent = 0x04000000u;
constexpr std::size_t kChunk = std::size_t{1} << 20;

std::uint32_t swap32(std::uint32_t v) {
    return (v >> 24) | ((v >> 8) & 0xff00u) | ((v << 8) & 0xff0000u) | (v << 24);
}

[[noreturn]] void broken(std::uint64_t record, const std::string& what) {
    throw InputError("capture record " + std::to_string(record), what);
}

}  // namespace

CaptureReader::CaptureReader(const std::string& file) : m_buffer(kChunk + kMaxRecord + 64) {
    if (file == "-") {
        m_file = stdin;
    } else {
        m_file = std::fopen(file.c_str(), "rb");
        if (m_file == nullptr) throw std::system_error(errno, std::generic_category(), file);
        m_own = true;
    }
    if (!Ensure(24)) throw InputError("capture", "too short for a capture file");
    std::uint32_t magic = 0;
    std::memcpy(&magic, m_buffer.data(), 4);
    if (magic == kSectionHeader) {
        m_pcapng = true;
        std::uint32_t order = 0;
        std::memcpy(&order, m_buffer.data() + 8, 4);
        if (order != kByteOrder && swap32(order) != kByteOrder) throw InputError("capture", "a pcapng section with no byte-order magic");
        m_swap = order != kByteOrder;
        return;  // the section header is read as a block by Next
    }
    if (magic == kPcapMicros || magic == kPcapNanos) {
        m_nanos = magic == kPcapNanos;
    } else if (swap32(magic) == kPcapMicros || swap32(magic) == kPcapNanos) {
        m_swap = true;
        m_nanos = swap32(magic) == kPcapNanos;
    } else {
        throw InputError("capture", "neither pcap nor pcapng (the file starts with no known magic)");
    }
    m_fcs = (U32(20) & kPcapFcsPresent) != 0;
    m_pos = 24;
}

CaptureReader::~CaptureReader() {
    if (m_own) std::fclose(m_file);
}

bool CaptureReader::Ensure(std::size_t n) {
    if (m_end - m_pos >= n) return true;
    if (m_pos > 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_pos, m_end - m_pos);
        m_end -= m_pos;
        m_pos = 0;
    }
    if (n > m_buffer.size()) return false;
    while (m_end < n) {
        const std::size_t got = std::fread(m_buffer.data() + m_end, 1, m_buffer.size() - m_end, m_file);
        if (got == 0) {
            if (std::ferror(m_file)) throw std::system_error(errno, std::generic_category(), "reading the capture");
            return false;
        }
        m_end += got;
    }
    return true;
}

std::uint32_t CaptureReader::U32(std::size_t at) const {
    std::uint32_t v = 0;
    std::memcpy(&v, m_buffer.data() + at, 4);
    return m_swap ? swap32(v) : v;
}

std::uint16_t CaptureReader::U16(std::size_t at) const {
    std::uint16_t v = 0;
    std::memcpy(&v, m_buffer.data() + at, 2);
    return m_swap ? static_cast<std::uint16_t>(v >> 8 | v << 8) : v;
}

void CaptureReader::ReadInterface(std::size_t body, std::size_t bodyLength) {
    Interface i;
    for (std::size_t at = body + 8; at + 4 <= body + bodyLength;) {
        const std::uint16_t code = U16(at), length = U16(at + 2);
        if (code == 0) break;
        if (at + 4 + length > body + bodyLength) broken(m_records, "an interface option runs past its block");
        if (code == 9 && length >= 1) {
            const unsigned char v = m_buffer[at + 4];
            i.decimal = (v & 0x80) == 0;
            i.exp = v & 0x7f;
        } else if (code == 13 && length >= 1) {
            m_fcs = m_buffer[at + 4] != 0;
        }
        at += 4 + ((length + 3u) & ~3u);
    }
    if ((i.decimal && i.exp > 19) || (!i.decimal && i.exp > 63)) broken(m_records, "an interface's time resolution is out of range");
    m_interfaces.push_back(i);
}

std::uint64_t CaptureReader::Nanos(std::uint64_t ticks, std::size_t interface) const {
    const Interface& i = m_interfaces[interface];
    if (!i.decimal) return static_cast<std::uint64_t>((u128{ticks} * 1000000000u) >> i.exp);
    std::uint64_t scale = 1;
    if (i.exp <= 9) {
        for (unsigned k = i.exp; k < 9; ++k) scale *= 10;
        return ticks * scale;
    }
    for (unsigned k = 9; k < i.exp; ++k) scale *= 10;
    return ticks / scale;
}

bool CaptureReader::Next(const unsigned char*& data, std::size_t& length, std::uint64_t& ns) {
    if (!m_pcapng) {
        if (!Ensure(16)) {
            if (m_end != m_pos) broken(m_records, "the file ends inside a record's header");
            return false;
        }
        const std::uint32_t sec = U32(m_pos), frac = U32(m_pos + 4), captured = U32(m_pos + 8);
        if (captured > kMaxRecord) broken(m_records, "a frame of " + std::to_string(captured) + " bytes");
        if (!Ensure(16 + captured)) broken(m_records, "the file ends inside a frame");
        data = m_buffer.data() + m_pos + 16;
        length = captured;
        ns = std::uint64_t{sec} * 1000000000u + (m_nanos ? frac : std::uint64_t{frac} * 1000u);
        m_pos += 16 + captured;
        ++m_records;
        return true;
    }
    for (;;) {
        if (!Ensure(12)) {
            if (m_end != m_pos) broken(m_records, "the file ends inside a block's header");
            return false;
        }
        std::uint32_t type = 0;
        std::memcpy(&type, m_buffer.data() + m_pos, 4);
        if (type == kSectionHeader) {  // a new section: its byte order, no interfaces yet
            std::uint32_t order = 0;
            std::memcpy(&order, m_buffer.data() + m_pos + 8, 4);
            if (order != kByteOrder && swap32(order) != kByteOrder) broken(m_records, "a section with no byte-order magic");
            m_swap = order != kByteOrder;
            m_interfaces.clear();
        } else {
            type = U32(m_pos);
        }
        const std::uint32_t total = U32(m_pos + 4);
        if (total < 12 || total % 4 != 0 || total > kMaxRecord + 64) {
            broken(m_records, "a block of " + std::to_string(total) + " bytes");
        }
        if (!Ensure(total)) broken(m_records, "the file ends inside a block");
        const std::size_t body = m_pos + 8, bodyLength = total - 12;
        m_pos += total;
        if (type == kInterfaceBlock) {
            if (bodyLength < 8) broken(m_records, "an interface block too short");
            ReadInterface(body, bodyLength);
            continue;
        }
        if (type == kEnhancedPacket) {
            if (bodyLength < 20) broken(m_records, "a packet block too short");
            const std::uint32_t interface = U32(body), captured = U32(body + 12);
            if (interface >= m_interfaces.size()) broken(m_records, "a packet of interface " + std::to_string(interface) + ", not described");
            if (captured > bodyLength - 20) broken(m_records, "a packet longer than its block");
            const std::uint64_t ticks = std::uint64_t{U32(body + 4)} << 32 | U32(body + 8);
            data = m_buffer.data() + body + 20;
            length = captured;
            ns = Nanos(ticks, interface);
            ++m_records;
            return true;
        }
        if (type == kSimplePacket) {
            if (bodyLength < 4 || m_interfaces.empty()) broken(m_records, "a simple packet block without an interface");
            const std::uint32_t original = U32(body);
            data = m_buffer.data() + body + 4;
            length = std::min<std::size_t>(original, bodyLength - 4);
            ns = 0;
            ++m_records;
            return true;
        }
        // Other blocks (statistics, name resolution, ...) carry no frames.
    }
}

}  // namespace vrm::traffic
