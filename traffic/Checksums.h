// Internet checksums of generated frames: the IPv4 header checksum and the UDP, TCP, ICMPv4
// and ICMPv6 checksums, recomputed after the modifiers have written their values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vrm::traffic {

class FrameChecksums {
  public:
    // Finds the headers in the frame template (Ethernet, any VLAN tags, IPv4 or IPv6, then
    // UDP, TCP, ICMPv4 or ICMPv6 directly after the IP header). Every frame of a block has
    // its template's headers at the same places.
    explicit FrameChecksums(const std::vector<std::uint8_t>& frameTemplate);

    // Declares the bits that differ between frames (one mask byte per frame byte, as
    // BlockModifiers::WrittenBits gives them). When no length, protocol or fragment field is
    // among them, the checksums are then computed from the template's unchanging words and
    // each frame's changing words only; the result is the same.
    void SetChangingBits(const std::vector<std::uint8_t>& changing);

    // False when the template carries no header with a checksum.
    bool Any() const { return m_ipv4Header || m_l4 != L4::None; }
    // The checksums recomputed, in words ("IPv4 header, UDP"), or "none": a transport
    // checksum only when the template's lengths let it apply.
    std::string Names() const;

    // Recomputes the checksums of one frame of the template's length in place. The lengths
    // are the frame's own (IPv4 total length, IPv6 payload length, UDP length); a transport
    // checksum is left alone when those lengths point beyond the frame or the IPv4 packet is
    // a fragment.
    void Apply(std::uint8_t* frame) const;
    // The same for `count` frames `stride` bytes apart.
    void Apply(std::uint8_t* first, std::size_t count, std::size_t stride) const;
    // Recomputes the checksums of a frame of `length` bytes (the template's headers at their
    // places, any payload) from all its bytes.
    void Apply(std::uint8_t* frame, std::size_t length) const;

    // Sets the length fields (IPv4 total length, IPv6 payload length, UDP length) of a frame
    // of `length` bytes so that its packet ends where the frame ends. Fields whose header the
    // frame cuts are left alone.
    void SetLengths(std::uint8_t* frame, std::size_t length) const;
    // Where the template's headers end: after the transport header (UDP, ICMP: 8 bytes; TCP:
    // its data offset), else after the IP header, else after the Ethernet header and tags.
    std::size_t HeadersEnd() const;

  private:
    enum class L4 { None, Udp, Tcp, Icmp4, Icmp6 };
    void Full(std::uint8_t* frame, std::size_t frameLength) const;
    // The transport segment's length in `frame` when its checksum applies (sound lengths,
    // not a fragment).
    bool Segment(const std::uint8_t* frame, std::size_t frameLength, std::size_t& length) const;
    // The pseudo-header's protocol and length words (none for ICMPv4).
    std::uint64_t PseudoHeader(std::size_t length) const;
    std::size_t ChecksumOffset() const;
    void Quick(std::uint8_t* frame) const;

    // The quick path: template sums of the unchanging words and the offsets of the changing
    // words, for the IPv4 header and for the transport checksum (pseudo-header included).
    bool m_quick = false;
    bool m_quickIpv4 = false;
    bool m_quickL4 = false;
    std::uint64_t m_ipv4Fixed = 0;
    std::uint64_t m_l4Fixed = 0;
    std::vector<std::uint32_t> m_ipv4Words;
    std::vector<std::uint32_t> m_l4Words;
    std::size_t m_ipv4Checksum = 0;
    std::size_t m_l4Checksum = 0;
    std::vector<std::uint8_t> m_template;
    std::size_t m_length = 0;
    std::size_t m_headersEnd = 0;  // without a transport header
    long m_ipv4 = -1;
    long m_ipv6 = -1;
    long m_l4Offset = -1;
    bool m_ipv4Header = false;
    L4 m_l4 = L4::None;
    std::uint8_t m_protocol = 0;
};

}  // namespace vrm::traffic
