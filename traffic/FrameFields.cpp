#include "traffic/FrameFields.h"

#include <algorithm>
#include <cstdio>

namespace vrm::traffic {

namespace {

unsigned int be16(const std::vector<uint8_t>& f, std::size_t at) {
    return static_cast<unsigned int>(f[at]) << 8 | f[at + 1];
}

std::string hex16(unsigned int v) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "0x%04x", v & 0xffffu);
    return buf;
}

}  // namespace

FrameLayout frame_layout(const std::vector<uint8_t>& f) {
    FrameLayout l;
    if (f.size() < 14) {
        l.note =
            "the frame template is shorter than an Ethernet header (" + std::to_string(f.size()) + " bytes)";
        return l;
    }
    std::size_t at = 12;
    unsigned int type = be16(f, at);
    while (type == 0x8100 || type == 0x88a8 || type == 0x9100) {
        if (f.size() < at + 6) {
            l.note = "the frame template ends inside a VLAN tag";
            l.typeOffset = static_cast<unsigned int>(at);
            l.etherType = type;
            return l;
        }
        l.vlanTags.push_back(static_cast<unsigned int>(at + 2));
        at += 4;
        type = be16(f, at);
    }
    l.typeOffset = static_cast<unsigned int>(at);
    l.etherType = type;
    const std::size_t ip = at + 2;
    if (type == 0x0800) {
        if (f.size() < ip + 20) {
            l.note = "the frame template ends inside the IPv4 header";
            return l;
        }
        l.ipv4 = static_cast<long>(ip);
        l.ipProtocol = f[ip + 9];
        const std::size_t ihl = (f[ip] & 0x0fu) * 4u;
        if (ihl < 20 || f.size() < ip + ihl) {
            l.note = "the IPv4 header length of the frame template is bad";
            return l;
        }
        l.l4 = static_cast<long>(ip + ihl);
    } else if (type == 0x86dd) {
        if (f.size() < ip + 40) {
            l.note = "the frame template ends inside the IPv6 header";
            return l;
        }
        l.ipv6 = static_cast<long>(ip);
        l.ipProtocol = f[ip + 6];
        l.l4 = static_cast<long>(ip + 40);
    } else {
        l.note = "the frame template's ethertype is " + hex16(type) + ", neither IPv4 nor IPv6";
    }
    return l;
}

namespace {

FieldPlace bytes(long byteOffset, unsigned int bitLength, unsigned int bitShift = 0) {
    return FieldPlace{static_cast<unsigned int>(byteOffset) * 8u + bitShift, bitLength};
}

}  // namespace

const std::vector<std::string>& field_names() {
    static const std::vector<std::string> names{"eth.dst",   "eth.src",   "eth.type", "vlan.id",  "vlan.pcp",
                                                "ipv4.tos",  "ipv4.id",   "ipv4.ttl", "ipv4.src", "ipv4.dst",
                                                "ipv6.tc",   "ipv6.flow", "ipv6.src", "ipv6.dst", "udp.sport",
                                                "udp.dport", "tcp.sport", "tcp.dport"};
    return names;
}

std::vector<std::string> frame_length_warnings(const std::vector<uint8_t>& f) {
    std::vector<std::string> out;
    const FrameLayout l = frame_layout(f);
    const std::string where = "baseStream.frame.data: ";
    constexpr std::size_t kMinimum = 60;
    std::size_t payload = 0;  // the IP payload the header declares
    bool havePayload = false;
    if (l.ipv4 >= 0 && l.l4 >= 0) {
        const std::size_t at = static_cast<std::size_t>(l.ipv4);
        const std::size_t total = be16(f, at + 2), ihl = (f[at] & 0x0fu) * 4u, held = f.size() - at;
        if (total > held || (total < held && f.size() > kMinimum)) {
            out.push_back(where + "the IPv4 total length is " + std::to_string(total) + " but the frame holds " +
                          std::to_string(held) + " bytes from the IPv4 header on");
        }
        if (total >= ihl) {
            payload = std::min(total, held) - ihl;
            havePayload = true;
        }
    } else if (l.ipv6 >= 0) {
        const std::size_t at = static_cast<std::size_t>(l.ipv6);
        const std::size_t declared = be16(f, at + 4), held = f.size() - at - 40;
        if (declared > held || (declared < held && f.size() > kMinimum)) {
            out.push_back(where + "the IPv6 payload length is " + std::to_string(declared) + " but the frame holds " +
                          std::to_string(held) + " bytes after the IPv6 header");
        }
        payload = std::min(declared, held);
        havePayload = true;
    }
    if (havePayload && l.ipProtocol == 17 && l.l4 >= 0 && f.size() >= static_cast<std::size_t>(l.l4) + 8) {
        const std::size_t udp = be16(f, static_cast<std::size_t>(l.l4) + 4);
        if (udp != payload) {
            out.push_back(where + "the UDP length is " + std::to_string(udp) + " but the IP payload holds " +
                          std::to_string(payload) + " bytes, so the UDP checksum is left as it is");
        }
    }
    return out;
}

bool known_field_name(const std::string& name) {
    for (const auto& n : field_names()) {
        if (n == name) return true;
    }
    if (name.compare(0, 5, "vlan[") != 0) return false;
    const std::size_t close = name.find(']');
    if (close == std::string::npos || close == 5 || close > 8) return false;
    for (std::size_t i = 5; i < close; ++i) {
        if (name[i] < '0' || name[i] > '9') return false;
    }
    const std::string rest = name.substr(close + 1);
    return rest == ".id" || rest == ".pcp";
}

bool resolve_field(const std::vector<uint8_t>& frame, const std::string& name, FieldPlace& place,
                   std::string& why) {
    const FrameLayout l = frame_layout(frame);
    auto fail = [&](const std::string& reason) {
        why = reason.empty() ? "not found in the frame template" : reason;
        return false;
    };
    auto need = [&](std::size_t end) { return frame.size() >= end; };

    if (name == "eth.dst" || name == "eth.src") {
        if (!need(14)) return fail(l.note);
        place = bytes(name == "eth.dst" ? 0 : 6, 48);
        return true;
    }
    if (name == "eth.type") {
        if (!need(l.typeOffset + 2)) return fail(l.note);
        place = bytes(l.typeOffset, 16);
        return true;
    }

    // vlan.id, vlan.pcp, vlan[N].id, vlan[N].pcp
    if (name.compare(0, 4, "vlan") == 0) {
        std::size_t tag = 0;
        std::string rest = name.substr(4);
        if (!rest.empty() && rest[0] == '[') {
            const std::size_t close = rest.find(']');
            if (close == std::string::npos || close == 1 || close > 4) return fail("unknown field name");
            tag = 0;
            for (std::size_t i = 1; i < close; ++i) {
                if (rest[i] < '0' || rest[i] > '9') return fail("unknown field name");
                tag = tag * 10 + static_cast<std::size_t>(rest[i] - '0');
            }
            rest = rest.substr(close + 1);
        }
        if (rest != ".id" && rest != ".pcp") return fail("unknown field name");
        if (tag >= l.vlanTags.size()) {
            return fail(l.vlanTags.empty()
                            ? "the frame template has no VLAN tag"
                            : "the frame template has " + std::to_string(l.vlanTags.size()) + " VLAN tag(s)");
        }
        const unsigned int tci = l.vlanTags[tag];
        place = rest == ".id" ? bytes(tci, 12, 4) : bytes(tci, 3, 0);
        return true;
    }

    if (name.compare(0, 5, "ipv4.") == 0) {
        if (l.ipv4 < 0) return fail(l.note.empty() ? "the frame template has no IPv4 header" : l.note);
        const std::string f = name.substr(5);
        if (f == "tos")
            place = bytes(l.ipv4 + 1, 8);
        else if (f == "id")
            place = bytes(l.ipv4 + 4, 16);
        else if (f == "ttl")
            place = bytes(l.ipv4 + 8, 8);
        else if (f == "src")
            place = bytes(l.ipv4 + 12, 32);
        else if (f == "dst")
            place = bytes(l.ipv4 + 16, 32);
        else
            return fail("unknown field name");
        return true;
    }
    if (name.compare(0, 5, "ipv6.") == 0) {
        if (l.ipv6 < 0) return fail(l.note.empty() ? "the frame template has no IPv6 header" : l.note);
        const std::string f = name.substr(5);
        if (f == "tc")
            place = bytes(l.ipv6, 8, 4);
        else if (f == "flow")
            place = bytes(l.ipv6 + 1, 20, 4);
        else if (f == "src")
            place = bytes(l.ipv6 + 8, 128);
        else if (f == "dst")
            place = bytes(l.ipv6 + 24, 128);
        else
            return fail("unknown field name");
        return true;
    }
    if (name.compare(0, 4, "udp.") == 0 || name.compare(0, 4, "tcp.") == 0) {
        const bool udp = name[0] == 'u';
        const std::string f = name.substr(4);
        if (f != "sport" && f != "dport") return fail("unknown field name");
        if (l.l4 < 0) return fail(l.note.empty() ? "the frame template has no IP header" : l.note);
        const int want = udp ? 17 : 6;
        if (l.ipProtocol != want) {
            return fail(std::string("the frame template's IP protocol is ") + std::to_string(l.ipProtocol) +
                        ", not " + (udp ? "UDP (17)" : "TCP (6)"));
        }
        if (!need(static_cast<std::size_t>(l.l4) + (udp ? 8 : 20))) {
            return fail(std::string("the frame template ends inside the ") + (udp ? "UDP" : "TCP") +
                        " header");
        }
        place = bytes(l.l4 + (f == "sport" ? 0 : 2), 16);
        return true;
    }
    return fail("unknown field name");
}

}  // namespace vrm::traffic
