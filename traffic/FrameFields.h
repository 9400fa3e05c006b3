// Named header fields of a frame template, found by parsing the template: Ethernet II,
// any number of VLAN tags (0x8100, 0x88a8, 0x9100), then IPv4 or IPv6, then UDP or TCP.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vrm::traffic {

struct FieldPlace {
    unsigned int bitOffset = 0;  // from the most significant bit of byte 0
    unsigned int bitLength = 0;
};

// Where the headers of a frame template start (byte offsets; -1 when absent).
struct FrameLayout {
    std::vector<unsigned int> vlanTags;  // offset of each tag's TCI
    unsigned int typeOffset = 12;        // the ethertype after the tags
    unsigned int etherType = 0;
    long ipv4 = -1;
    long ipv6 = -1;
    int ipProtocol = -1;
    long l4 = -1;
    std::string note;  // why parsing stopped early
};

// Parses the headers of `frame` as far as they go.
FrameLayout frame_layout(const std::vector<uint8_t>& frame);

// Length fields of `frame` that disagree with it: an IPv4 total length or IPv6 payload
// length that points past the frame, or short of it in a frame longer than the 60-byte
// minimum (shorter frames are padded), and a UDP length other than the IP payload's. One
// "baseStream.frame.data: ..." line each.
std::vector<std::string> frame_length_warnings(const std::vector<uint8_t>& frame);

// The names resolve_field() knows, in the order the help text lists them.
const std::vector<std::string>& field_names();

// True when `name` is one of field_names() or vlan[N].id / vlan[N].pcp, whether or not a
// given template has the field.
bool known_field_name(const std::string& name);

// Finds `name` (eth.dst, eth.src, eth.type, vlan.id, vlan.pcp, ipv4.tos, ipv4.id, ipv4.ttl,
// ipv4.src, ipv4.dst, ipv6.tc, ipv6.flow, ipv6.src, ipv6.dst, udp.sport, udp.dport,
// tcp.sport, tcp.dport) in `frame`. `vlan.id` and `vlan.pcp` are the outer tag's;
// `vlan[N].id` and `vlan[N].pcp` name tag N, counted from 0 at the outer tag. eth.type is the
// type after the VLAN tags. On failure returns false and sets `why` to a one-line reason.
bool resolve_field(const std::vector<uint8_t>& frame, const std::string& name, FieldPlace& place,
                   std::string& why);

}  // namespace vrm::traffic
