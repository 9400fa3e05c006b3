#include "traffic/Receive.h"

#include <arpa/inet.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "traffic/Send.h"

namespace vrm::traffic {

namespace {

constexpr unsigned kBlockSize = 1u << 22;  // 4 MiB a block
constexpr unsigned kBlocks = 16;
constexpr unsigned kFrameSize = 2048;
constexpr unsigned kBlockTimeoutMs = 10;  // a block not full is handed over after this long

std::uint64_t now_ns() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<std::uint64_t>(ts.tv_sec) * 1000000000ull + static_cast<std::uint64_t>(ts.tv_nsec);
}

[[noreturn]] void fail(const std::string& interface, const char* what) {
    const int e = errno;
    if (e == EPERM || e == EACCES) {
        throw SendError(SendError::Kind::Permission,
                        "no permission to receive on " + interface + ": a packet socket needs CAP_NET_RAW");
    }
    if (e == ENODEV || e == ENXIO) throw SendError(SendError::Kind::NoInterface, "no interface named " + interface);
    throw SendError(SendError::Kind::System, interface + ": " + what + ": " + std::strerror(e));
}

// The ring, unmapped and closed with its scope.
struct Ring {
    int fd = -1;
    unsigned char* map = nullptr;
    std::size_t size = 0;
    ~Ring() {
        if (map != nullptr) ::munmap(map, size);
        if (fd >= 0) ::close(fd);
    }
};

}  // namespace

ReceiveCounts receive_frames(Analyzer& analyzer, const ReceiveOptions& options) {
    const unsigned index = options.interface.size() < IFNAMSIZ ? if_nametoindex(options.interface.c_str()) : 0;
    if (index == 0) throw SendError(SendError::Kind::NoInterface, "no interface named " + options.interface);
    Ring ring;
    ring.fd = ::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons(ETH_P_ALL));
    if (ring.fd < 0) fail(options.interface, "packet socket");
    const int version = TPACKET_V3;
    if (::setsockopt(ring.fd, SOL_PACKET, PACKET_VERSION, &version, sizeof version) != 0) fail(options.interface, "TPACKET_V3");
    tpacket_req3 req{};
    req.tp_block_size = kBlockSize;
    req.tp_block_nr = kBlocks;
    req.tp_frame_size = kFrameSize;
    req.tp_frame_nr = kBlockSize / kFrameSize * kBlocks;
    req.tp_retire_blk_tov = kBlockTimeoutMs;
    if (::setsockopt(ring.fd, SOL_PACKET, PACKET_RX_RING, &req, sizeof req) != 0) fail(options.interface, "receive ring");
    ring.size = std::size_t{kBlockSize} * kBlocks;
    void* map = ::mmap(nullptr, ring.size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_LOCKED, ring.fd, 0);
    if (map == MAP_FAILED) map = ::mmap(nullptr, ring.size, PROT_READ | PROT_WRITE, MAP_SHARED, ring.fd, 0);
    if (map == MAP_FAILED) fail(options.interface, "mapping the ring");
    ring.map = static_cast<unsigned char*>(map);
    sockaddr_ll at{};
    at.sll_family = AF_PACKET;
    at.sll_protocol = htons(ETH_P_ALL);
    at.sll_ifindex = static_cast<int>(index);
    if (::bind(ring.fd, reinterpret_cast<const sockaddr*>(&at), sizeof at) != 0) fail(options.interface, "bind");
    if (options.ready) options.ready();

    ReceiveCounts counts;
    const std::uint64_t start = now_ns();
    const std::uint64_t end = options.durationNs == ~std::uint64_t{0} ? ~std::uint64_t{0} : start + options.durationNs;
    std::uint64_t until = end;
    bool draining = false;
    unsigned block = 0;
    for (;;) {
        auto* desc = reinterpret_cast<tpacket_block_desc*>(ring.map + std::size_t{block} * kBlockSize);
        if ((__atomic_load_n(&desc->hdr.bh1.block_status, __ATOMIC_ACQUIRE) & TP_STATUS_USER) == 0) {
            const std::uint64_t now = now_ns();
            if (now >= until || (options.stop != nullptr && options.stop->load())) {
                if (draining) break;
                // The frames already in a block the kernel has not handed over yet.
                draining = true;
                until = now + 3 * kBlockTimeoutMs * 1000000ull;
                continue;
            }
            pollfd p{ring.fd, POLLIN | POLLERR, 0};
            const std::uint64_t left = (until - now) / 1000000 + 1;
            ::poll(&p, 1, static_cast<int>(left < 100 ? left : 100));
            continue;
        }
        const std::uint32_t n = desc->hdr.bh1.num_pkts;
        auto* h = reinterpret_cast<tpacket3_hdr*>(reinterpret_cast<unsigned char*>(desc) + desc->hdr.bh1.offset_to_first_pkt);
        for (std::uint32_t k = 0; k < n; ++k) {
            const auto* sll = reinterpret_cast<const sockaddr_ll*>(reinterpret_cast<const unsigned char*>(h) +
                                                                    TPACKET_ALIGN(sizeof(tpacket3_hdr)));
            if (sll->sll_pkttype != PACKET_OUTGOING) {
                const std::uint64_t ns = std::uint64_t{h->tp_sec} * 1000000000ull + h->tp_nsec;
                analyzer.Add(reinterpret_cast<const unsigned char*>(h) + h->tp_mac, h->tp_snaplen, ns);
                ++counts.frames;
            }
            h = reinterpret_cast<tpacket3_hdr*>(reinterpret_cast<unsigned char*>(h) + h->tp_next_offset);
        }
        __atomic_store_n(&desc->hdr.bh1.block_status, TP_STATUS_KERNEL, __ATOMIC_RELEASE);
        block = (block + 1) % kBlocks;
    }
    tpacket_stats_v3 stats{};
    socklen_t len = sizeof stats;
    if (::getsockopt(ring.fd, SOL_PACKET, PACKET_STATISTICS, &stats, &len) == 0) counts.drops = stats.tp_drops;
    counts.seconds = static_cast<double>(now_ns() - start) / 1e9;
    return counts;
}

}  // namespace vrm::traffic
