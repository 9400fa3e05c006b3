// Internet checksums of generated frames: the IPv4 header checksum and the UDP, TCP, ICMPv4
// and ICMPv6 checksums, recomputed after the modifiers have written their values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace streamgen {

class FrameChecksums {
  public:
    // Finds the headers in the frame template (Ethernet, any VLAN tags, IPv4 or IPv6, then
    // UDP, TCP, ICMPv4 or ICMPv6 directly after the IP header). Every frame of a block has
    // its template's headers at the same places.
    explicit FrameChecksums(const std::vector<std::uint8_t>& frameTemplate);

    // False when the template carries no header with a checksum.
    bool Any() const { return m_ipv4Header || m_l4 != L4::None; }
    // The checksums recomputed, in words ("IPv4 header, UDP"), or "none".
    std::string Names() const;

    // Recomputes the checksums of one frame of the template's length in place. The lengths
    // are the frame's own (IPv4 total length, IPv6 payload length, UDP length); a transport
    // checksum is left alone when those lengths point beyond the frame or the IPv4 packet is
    // a fragment.
    void Apply(std::uint8_t* frame) const;
    // The same for `count` frames `stride` bytes apart.
    void Apply(std::uint8_t* first, std::size_t count, std::size_t stride) const;

  private:
    enum class L4 { None, Udp, Tcp, Icmp4, Icmp6 };
    std::size_t m_length = 0;
    long m_ipv4 = -1;
    long m_ipv6 = -1;
    long m_l4Offset = -1;
    bool m_ipv4Header = false;
    L4 m_l4 = L4::None;
    std::uint8_t m_protocol = 0;
};

}  // namespace streamgen
