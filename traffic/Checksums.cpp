#include "traffic/Checksums.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "traffic/FrameFields.h"

namespace vrm::traffic {

namespace {

// The ones-complement sum of RFC 1071 in the machine's byte order: the sum of 16-bit words
// does not depend on the order of the bytes inside them, so words are added as they lie in
// memory, 32 bits at a time, and the result is stored back the same way.
inline std::uint64_t add_bytes(const std::uint8_t* p, std::size_t n, std::uint64_t acc) {
    // Long runs (payloads) 32 bytes at a time into independent sums.
    if (n >= 64) {
        std::uint64_t a[4] = {0, 0, 0, 0};
        while (n >= 32) {
            for (int k = 0; k < 4; ++k) {
                std::uint64_t w;
                std::memcpy(&w, p + 8 * k, 8);
                a[k] += (w & 0xffffffffu) + (w >> 32);
            }
            p += 32;
            n -= 32;
        }
        acc += a[0] + a[1] + a[2] + a[3];  // each under 2^33 per 8 bytes: no overflow below 2^60 bytes
    }
    while (n >= 8) {
        std::uint64_t w;
        std::memcpy(&w, p, 8);
        acc += (w & 0xffffffffu) + (w >> 32);
        p += 8;
        n -= 8;
    }
    if (n >= 4) {
        std::uint32_t w;
        std::memcpy(&w, p, 4);
        acc += w;
        p += 4;
        n -= 4;
    }
    if (n >= 2) {
        std::uint16_t w;
        std::memcpy(&w, p, 2);
        acc += w;
        p += 2;
        n -= 2;
    }
    if (n == 1) {
        // The last odd byte is the high byte of a word whose low byte is 0.
        std::uint8_t pair[2] = {*p, 0};
        std::uint16_t w;
        std::memcpy(&w, pair, 2);
        acc += w;
    }
    return acc;
}

inline std::uint16_t fold(std::uint64_t acc) {
    acc = (acc & 0xffffffffu) + (acc >> 32);
    acc = (acc & 0xffffffffu) + (acc >> 32);
    acc = (acc & 0xffffu) + (acc >> 16);
    acc = (acc & 0xffffu) + (acc >> 16);
    return static_cast<std::uint16_t>(acc);
}

inline void store(std::uint8_t* at, std::uint16_t checksum) { std::memcpy(at, &checksum, 2); }

inline unsigned be16(const std::uint8_t* p) { return static_cast<unsigned>(p[0]) << 8 | p[1]; }

}  // namespace

FrameChecksums::FrameChecksums(const std::vector<std::uint8_t>& frameTemplate)
    : m_length(frameTemplate.size()) {
    m_template = frameTemplate;
    const FrameLayout l = frame_layout(frameTemplate);
    m_ipv4 = l.ipv4;
    m_ipv6 = l.ipv6;
    m_ipv4Header = l.ipv4 >= 0 && l.l4 >= 0;  // a header of a sound length
    m_headersEnd = std::min<std::size_t>(frameTemplate.size(), l.l4 >= 0 ? static_cast<std::size_t>(l.l4)
                                                               : l.ipv6 >= 0 ? static_cast<std::size_t>(l.ipv6) + 40
                                                                             : l.typeOffset + 2u);
    if (l.l4 < 0) return;
    m_l4Offset = l.l4;
    m_protocol = static_cast<std::uint8_t>(l.ipProtocol);
    const std::size_t left = frameTemplate.size() - static_cast<std::size_t>(l.l4);
    if (l.ipProtocol == 17 && left >= 8) {
        m_l4 = L4::Udp;
    } else if (l.ipProtocol == 6 && left >= 20) {
        m_l4 = L4::Tcp;
    } else if (l.ipProtocol == 1 && l.ipv4 >= 0 && left >= 4) {
        m_l4 = L4::Icmp4;
    } else if (l.ipProtocol == 58 && l.ipv6 >= 0 && left >= 4) {
        m_l4 = L4::Icmp6;
    }
}

std::string FrameChecksums::Names() const {
    std::string s = m_ipv4Header ? "IPv4 header" : "";
    std::size_t length = 0;
    const bool applies = Segment(m_template.data(), m_length, length);  // the template's lengths decide
    const char* l4 = !applies ? nullptr : m_l4 == L4::Udp ? "UDP" : m_l4 == L4::Tcp ? "TCP" : m_l4 == L4::Icmp4 ? "ICMPv4" : m_l4 == L4::Icmp6 ? "ICMPv6" : nullptr;
    if (l4 != nullptr) s += (s.empty() ? "" : ", ") + std::string(l4);
    return s.empty() ? "none" : s;
}

void FrameChecksums::SetChangingBits(const std::vector<std::uint8_t>& changing) {
    m_quick = false;
    m_ipv4Words.clear();
    m_l4Words.clear();
    if (changing.size() != m_length || !Any()) return;
    auto changes = [&](long at, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            if (changing[static_cast<std::size_t>(at) + i] != 0) return true;
        }
        return false;
    };
    // The fields that decide where and what is summed must stay as in the template.
    if (m_ipv4 >= 0 && (changes(m_ipv4, 4) || changes(m_ipv4 + 6, 4))) return;
    if (m_ipv6 >= 0 && changes(m_ipv6 + 4, 3)) return;
    if (m_l4 == L4::Udp && changes(m_l4Offset + 4, 2)) return;

    // Sorts the words of [at, at + n) (at even) into the fixed sum and the changing list; the
    // checksum word itself counts as 0. False when a changing word is an odd last byte.
    auto split = [&](std::size_t at, std::size_t n, std::size_t skip, std::uint64_t& fixed,
                     std::vector<std::uint32_t>& words) {
        for (std::size_t o = at; o < at + n; o += 2) {
            if (o == skip) continue;
            const std::size_t width = o + 1 < at + n ? 2 : 1;
            if (changes(static_cast<long>(o), width)) {
                if (width == 1) return false;
                words.push_back(static_cast<std::uint32_t>(o));
            } else {
                fixed = add_bytes(m_template.data() + o, width, fixed);
            }
        }
        return true;
    };
    m_quickIpv4 = false;
    m_quickL4 = false;
    if (m_ipv4Header) {
        const std::size_t ihl = (m_template[static_cast<std::size_t>(m_ipv4)] & 0x0fu) * 4u;
        m_ipv4Checksum = static_cast<std::size_t>(m_ipv4) + 10;
        m_ipv4Fixed = 0;
        if (ihl >= 20 && static_cast<std::size_t>(m_ipv4) + ihl <= m_length &&
            !split(static_cast<std::size_t>(m_ipv4), ihl, m_ipv4Checksum, m_ipv4Fixed, m_ipv4Words))
            return;
        m_quickIpv4 = ihl >= 20 && static_cast<std::size_t>(m_ipv4) + ihl <= m_length;
    }
    // The transport checksum applies when the template's lengths make it apply; no frame
    // changes them.
    std::size_t l4Length = 0;
    if (Segment(m_template.data(), m_length, l4Length)) {
        const std::size_t at = static_cast<std::size_t>(m_l4Offset);
        m_l4Checksum = at + ChecksumOffset();
        m_l4Fixed = PseudoHeader(l4Length);
        if (m_l4 != L4::Icmp4) {
            const bool ok = m_ipv4 >= 0
                                ? split(static_cast<std::size_t>(m_ipv4) + 12, 8, SIZE_MAX, m_l4Fixed, m_l4Words)
                                : split(static_cast<std::size_t>(m_ipv6) + 8, 32, SIZE_MAX, m_l4Fixed, m_l4Words);
            if (!ok) return;
        }
        if (!split(at, l4Length, m_l4Checksum, m_l4Fixed, m_l4Words)) return;
        m_quickL4 = true;
    }
    m_quick = true;
}

void FrameChecksums::Quick(std::uint8_t* f) const {
    if (m_quickIpv4) {
        std::uint64_t acc = m_ipv4Fixed;
        for (const std::uint32_t o : m_ipv4Words) acc = add_bytes(f + o, 2, acc);
        store(f + m_ipv4Checksum, static_cast<std::uint16_t>(~fold(acc)));
    }
    if (m_quickL4) {
        std::uint64_t acc = m_l4Fixed;
        for (const std::uint32_t o : m_l4Words) acc = add_bytes(f + o, 2, acc);
        std::uint16_t sum = static_cast<std::uint16_t>(~fold(acc));
        if (m_l4 == L4::Udp && sum == 0) sum = 0xffff;
        store(f + m_l4Checksum, sum);
    }
}

void FrameChecksums::Apply(std::uint8_t* f) const {
    if (m_quick) {
        Quick(f);
    } else {
        Full(f, m_length);
    }
}

void FrameChecksums::Apply(std::uint8_t* frame, std::size_t length) const {
    if (Any()) Full(frame, length);
}

void FrameChecksums::SetLengths(std::uint8_t* f, std::size_t length) const {
    auto put16 = [](std::uint8_t* at, std::size_t v) {
        at[0] = static_cast<std::uint8_t>(v >> 8);
        at[1] = static_cast<std::uint8_t>(v);
    };
    if (m_ipv4 >= 0 && length >= static_cast<std::size_t>(m_ipv4) + 20) put16(f + m_ipv4 + 2, length - static_cast<std::size_t>(m_ipv4));
    if (m_ipv6 >= 0 && length >= static_cast<std::size_t>(m_ipv6) + 40) put16(f + m_ipv6 + 4, length - static_cast<std::size_t>(m_ipv6) - 40);
    if (m_l4 == L4::Udp && length >= static_cast<std::size_t>(m_l4Offset) + 8) put16(f + m_l4Offset + 4, length - static_cast<std::size_t>(m_l4Offset));
}

std::size_t FrameChecksums::HeadersEnd() const {
    if (m_l4Offset >= 0) {
        const auto at = static_cast<std::size_t>(m_l4Offset);
        switch (m_l4) {
            case L4::Udp:
            case L4::Icmp4:
            case L4::Icmp6:
                return at + 8;
            case L4::Tcp:
                return at + std::max<std::size_t>(20, (m_template[at + 12] >> 4) * 4u);
            case L4::None:
                return at;
        }
    }
    return m_headersEnd;
}

std::size_t FrameChecksums::ChecksumOffset() const {
    return m_l4 == L4::Udp ? 6 : m_l4 == L4::Tcp ? 16 : 2;
}

bool FrameChecksums::Segment(const std::uint8_t* f, std::size_t frameLength, std::size_t& length) const {
    if (m_l4 == L4::None) return false;
    if (m_ipv4 >= 0) {
        const std::uint8_t* ip = f + m_ipv4;
        const std::size_t ihl = (ip[0] & 0x0fu) * 4u, total = be16(ip + 2);
        const bool fragment = (be16(ip + 6) & 0x3fffu) != 0;  // more fragments, or an offset
        if (fragment || ihl != static_cast<std::size_t>(m_l4Offset - m_ipv4) || total < ihl ||
            static_cast<std::size_t>(m_ipv4) + total > frameLength)
            return false;
        length = total - ihl;
    } else {
        length = be16(f + m_ipv6 + 4);
        if (static_cast<std::size_t>(m_l4Offset) + length > frameLength) return false;
    }
    if (m_l4 == L4::Udp) {
        const std::size_t udpLength = be16(f + m_l4Offset + 4);
        if (udpLength < 8 || udpLength > length) return false;
        length = udpLength;
    }
    return length >= (m_l4 == L4::Tcp ? 20u : m_l4 == L4::Udp ? 8u : 4u);
}

std::uint64_t FrameChecksums::PseudoHeader(std::size_t length) const {
    if (m_l4 == L4::Icmp4) return 0;
    // Protocol and segment length; the addresses are summed from the frame.
    const std::uint8_t words[8] = {0, 0, static_cast<std::uint8_t>(length >> 24), static_cast<std::uint8_t>(length >> 16),
                                   0, m_protocol, static_cast<std::uint8_t>(length >> 8),
                                   static_cast<std::uint8_t>(length)};
    return add_bytes(words, 8, 0);
}

void FrameChecksums::Full(std::uint8_t* f, std::size_t frameLength) const {
    if (m_ipv4Header) {
        std::uint8_t* ip = f + m_ipv4;
        const std::size_t ihl = (ip[0] & 0x0fu) * 4u;
        if (ihl < 20 || static_cast<std::size_t>(m_ipv4) + ihl > frameLength) return;
        ip[10] = 0;
        ip[11] = 0;
        store(ip + 10, static_cast<std::uint16_t>(~fold(add_bytes(ip, ihl, 0))));
    }
    std::size_t length = 0;
    if (!Segment(f, frameLength, length)) return;
    std::uint8_t* seg = f + m_l4Offset;
    const std::size_t at = ChecksumOffset();
    seg[at] = 0;
    seg[at + 1] = 0;
    std::uint64_t acc = PseudoHeader(length);
    if (m_l4 != L4::Icmp4) acc = m_ipv4 >= 0 ? add_bytes(f + m_ipv4 + 12, 8, acc) : add_bytes(f + m_ipv6 + 8, 32, acc);
    std::uint16_t sum = static_cast<std::uint16_t>(~fold(add_bytes(seg, length, acc)));
    // A UDP checksum of 0 means "none"; a computed 0 is sent as all ones.
    if (m_l4 == L4::Udp && sum == 0) sum = 0xffff;
    store(seg + at, sum);
}

void FrameChecksums::Apply(std::uint8_t* first, std::size_t count, std::size_t stride) const {
    if (!Any()) return;
    if (m_quick) {
        for (std::size_t k = 0; k < count; ++k) Quick(first + k * stride);
    } else {
        for (std::size_t k = 0; k < count; ++k) Full(first + k * stride, m_length);
    }
}

}  // namespace vrm::traffic
