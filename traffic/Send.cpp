#include "traffic/Send.h"

#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#ifdef VRM_HAVE_XDP
#include <xdp/xsk.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <vector>

#include "traffic/Histogram.h"

namespace vrm::traffic {

namespace {

constexpr std::size_t kBatch = 64;                // frames made and handed over at once
constexpr std::uint64_t kSpinNs = 50000;          // the last stretch before a frame is waited for busily
constexpr std::uint64_t kProgressNs = 1000000000;  // between progress reports
constexpr std::uint16_t kVlanTag = 0x8100, kQinQTag = 0x88a8;

std::uint64_t now_ns() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<std::uint64_t>(ts.tv_sec) * 1000000000ull + static_cast<std::uint64_t>(ts.tv_nsec);
}

std::string system_text(int error) { return std::strerror(error); }

// A socket closed with its scope.
class Fd {
  public:
    explicit Fd(int fd) : m_fd(fd) {}
    ~Fd() {
        if (m_fd >= 0) ::close(m_fd);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return m_fd; }

  private:
    int m_fd;
};

bool read_number(const std::string& path, std::uint64_t& value) {
    std::ifstream in(path);
    return static_cast<bool>(in >> value);
}

// What the interface is and takes.
struct Interface {
    unsigned index = 0;
    std::uint32_t mtu = 1500;
};

Interface open_interface(const std::string& name, bool force) {
    if (name.empty() || name.size() >= IFNAMSIZ) {
        throw SendError(SendError::Kind::NoInterface, "no interface named '" + name + "'");
    }
    Interface i;
    i.index = if_nametoindex(name.c_str());
    if (i.index == 0) throw SendError(SendError::Kind::NoInterface, "no interface named " + name);
    Fd probe(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (probe.get() < 0) throw SendError(SendError::Kind::System, "socket: " + system_text(errno));
    ifreq req{};
    std::memcpy(req.ifr_name, name.c_str(), name.size());
    if (::ioctl(probe.get(), SIOCGIFFLAGS, &req) != 0) {
        throw SendError(SendError::Kind::NoInterface, name + ": " + system_text(errno));
    }
    const bool up = (req.ifr_flags & IFF_UP) != 0, running = (req.ifr_flags & IFF_RUNNING) != 0;
    if (!force && !up) throw SendError(SendError::Kind::Down, name + " is down (--force sends anyway)");
    if (!force && !running) throw SendError(SendError::Kind::Down, name + " has no carrier (--force sends anyway)");
    if (::ioctl(probe.get(), SIOCGIFMTU, &req) == 0) i.mtu = static_cast<std::uint32_t>(req.ifr_mtu);
    return i;
}

// The longest frame the interface takes: its MTU and the Ethernet header, and a tag more for
// a tagged frame.
bool fits(const unsigned char* frame, std::uint32_t length, std::uint32_t mtu) {
    if (length <= mtu + 14) return true;
    if (length > mtu + 18 || length < 14) return false;
    const std::uint16_t type = static_cast<std::uint16_t>(frame[12] << 8 | frame[13]);
    return type == kVlanTag || type == kQinQTag;
}

// A way of putting batches of frames on the interface. Frames are made in Room() (kBatch
// slots of Stride() bytes), then handed over with Send; Drain waits for the last ones.
class Sender {
  public:
    virtual ~Sender() = default;
    virtual std::string Name() const = 0;
    virtual std::size_t Stride() const = 0;
    virtual unsigned char* Room(SendCounts& counts) = 0;
    // Hands frames k = 0 .. n - 1 over, counting in `counts` the frames the kernel confirmed
    // and its refusals; returns how many were handed over (fewer only when stopped).
    virtual std::size_t Send(unsigned char* const* frames, const std::uint32_t* lengths, std::size_t n,
                             SendCounts& counts, const std::atomic<bool>* stop) = 0;
    virtual void Drain(SendCounts&) {}
};

// A packet socket bound to the interface, sending batches with sendmmsg past the queueing
// discipline. It receives nothing (protocol 0). The kernel copies each frame before sendmmsg
// returns, so one batch of room is enough.
class PacketSender final : public Sender {
  public:
    PacketSender(const std::string& name, const Interface& i, std::size_t maxLength)
        : m_name(name),
          m_fd(::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0)),
          m_stride((std::max<std::size_t>(maxLength, 64) + 63) / 64 * 64),
          m_room(kBatch * m_stride) {
        if (m_fd.get() < 0) {
            const int e = errno;
            if (e == EPERM || e == EACCES) {
                throw SendError(SendError::Kind::Permission,
                                "no permission to send on " + name + ": a packet socket needs CAP_NET_RAW");
            }
            throw SendError(SendError::Kind::System, "packet socket: " + system_text(e));
        }
        sockaddr_ll at{};
        at.sll_family = AF_PACKET;
        at.sll_ifindex = static_cast<int>(i.index);
        if (::bind(m_fd.get(), reinterpret_cast<const sockaddr*>(&at), sizeof at) != 0) {
            throw SendError(SendError::Kind::System, name + ": bind: " + system_text(errno));
        }
        const int one = 1;
        m_bypass = ::setsockopt(m_fd.get(), SOL_PACKET, PACKET_QDISC_BYPASS, &one, sizeof one) == 0;
    }
    std::string Name() const override {
        return m_bypass ? "packet (sendmmsg, qdisc bypass)" : "packet (sendmmsg)";
    }
    std::size_t Stride() const override { return m_stride; }
    unsigned char* Room(SendCounts&) override { return m_room.data(); }
    // Offers again what the kernel does not take, until all is taken or stop is set.
    std::size_t Send(unsigned char* const* frames, const std::uint32_t* lengths, std::size_t n, SendCounts& counts,
                     const std::atomic<bool>* stop) override {
        std::uint64_t& retries = counts.retries;
        const std::size_t before = SendAll(frames, lengths, n, retries, stop);
        counts.frames += before;
        for (std::size_t k = 0; k < before; ++k) counts.bytes += lengths[k];
        return before;
    }

  private:
    std::size_t SendAll(unsigned char* const* frames, const std::uint32_t* lengths, std::size_t n,
                        std::uint64_t& retries, const std::atomic<bool>* stop) {
        for (std::size_t k = 0; k < n; ++k) {
            m_iov[k].iov_base = frames[k];
            m_iov[k].iov_len = lengths[k];
            m_msgs[k] = mmsghdr{};
            m_msgs[k].msg_hdr.msg_iov = &m_iov[k];
            m_msgs[k].msg_hdr.msg_iovlen = 1;
        }
        std::size_t done = 0;
        while (done < n) {
            const int r = ::sendmmsg(m_fd.get(), m_msgs.data() + done, static_cast<unsigned>(n - done), 0);
            if (r > 0) {
                done += static_cast<std::size_t>(r);
                if (done < n) ++retries;
                continue;
            }
            const int e = r == 0 ? EAGAIN : errno;
            if (e == EINTR) continue;
            if (e == ENOBUFS || e == EAGAIN) {
                ++retries;
                if (stop != nullptr && stop->load(std::memory_order_relaxed)) return done;
                sched_yield();
                continue;
            }
            if (e == ENXIO || e == ENODEV || e == ENETDOWN) {
                throw SendError(SendError::Kind::Vanished, m_name + " went away or down while sending: " + system_text(e));
            }
            if (e == EMSGSIZE) {
                throw SendError(SendError::Kind::TooLong,
                                m_name + ": a frame of " + std::to_string(lengths[done]) + " bytes is too long for it");
            }
            if (e == EPERM || e == EACCES) {
                throw SendError(SendError::Kind::Permission, "no permission to send on " + m_name + ": " + system_text(e));
            }
            throw SendError(SendError::Kind::System, m_name + ": sendmmsg: " + system_text(e));
        }
        return done;
    }

    std::string m_name;
    Fd m_fd;
    bool m_bypass = false;
    std::size_t m_stride;
    std::vector<unsigned char> m_room;
    std::array<iovec, kBatch> m_iov{};
    std::array<mmsghdr, kBatch> m_msgs{};
};


#ifdef VRM_HAVE_XDP
// An AF_XDP socket on the interface's queue 0 that only sends: it loads no XDP program. Its
// memory (UMEM) is kRegions regions of kBatch frames; a batch is made straight into a region
// whose frames have all come back on the completion ring. A frame counts as sent when it
// completes, less the frames the interface dropped (the kernel then says EBUSY, and the
// dropped frame is sent again, after those already queued).
class XdpSender final : public Sender {
  public:
    static constexpr std::size_t kRegions = 32;

    XdpSender(const std::string& name, std::size_t maxLength) : m_name(name) {
        m_frameSize = maxLength <= 2048 ? 2048 : 4096;
        if (maxLength > 4096) {
            throw SendError(SendError::Kind::TooLong, "AF_XDP sends frames of at most 4096 bytes; these reach " +
                                                          std::to_string(maxLength));
        }
        const std::size_t frames = kRegions * kBatch;
        m_size = frames * m_frameSize;
        void* area = ::mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (area == MAP_FAILED) throw SendError(SendError::Kind::System, "AF_XDP memory: " + system_text(errno));
        m_area = static_cast<unsigned char*>(area);
        xsk_umem_config u{};
        u.fill_size = 64;
        u.comp_size = static_cast<__u32>(frames);
        u.frame_size = static_cast<__u32>(m_frameSize);
        int r = xsk_umem__create(&m_umem, m_area, m_size, &m_fill, &m_comp, &u);
        if (r != 0) Fail(-r, "memory");
        xsk_socket_config c{};
        c.rx_size = 0;
        c.tx_size = static_cast<__u32>(frames);
        c.libxdp_flags = XSK_LIBXDP_FLAGS__INHIBIT_PROG_LOAD;
        c.bind_flags = XDP_USE_NEED_WAKEUP | XDP_ZEROCOPY;
        r = xsk_socket__create(&m_xsk, name.c_str(), 0, m_umem, nullptr, &m_tx, &c);
        if (r != 0) {
            c.bind_flags = XDP_USE_NEED_WAKEUP | XDP_COPY;
            // The queue stays busy for a moment after a socket on it closes (a run just before).
            for (int tries = 0; tries < 20; ++tries) {
                r = xsk_socket__create(&m_xsk, name.c_str(), 0, m_umem, nullptr, &m_tx, &c);
                if (r != -EBUSY) break;
                ::usleep(25000);
            }
        } else {
            m_zeroCopy = true;
        }
        if (r != 0) Fail(-r, "socket");
        m_fd = xsk_socket__fd(m_xsk);
    }
    ~XdpSender() override {
        if (m_xsk != nullptr) xsk_socket__delete(m_xsk);
        if (m_umem != nullptr) xsk_umem__delete(m_umem);
        if (m_area != nullptr) ::munmap(m_area, m_size);
    }
    XdpSender(const XdpSender&) = delete;
    XdpSender& operator=(const XdpSender&) = delete;

    std::string Name() const override { return m_zeroCopy ? "xdp (zero-copy)" : "xdp (copy)"; }
    std::size_t Stride() const override { return m_frameSize; }

    unsigned char* Room(SendCounts& counts) override {
        const std::size_t r = m_next;
        m_next = (m_next + 1) % kRegions;
        while (m_outstanding[r] != 0) {
            Kick(counts);
            Reap(counts);
        }
        return m_area + r * kBatch * m_frameSize;
    }

    std::size_t Send(unsigned char* const* frames, const std::uint32_t* lengths, std::size_t n, SendCounts& counts,
                     const std::atomic<bool>* stop) override {
        std::size_t done = 0;
        while (done < n || !m_again.empty()) {
            // Frames the interface dropped go first, then the batch's.
            const bool again = !m_again.empty();
            const std::size_t want = again ? m_again.size() : n - done;
            __u32 at = 0;
            const std::size_t got = xsk_ring_prod__reserve(&m_tx, static_cast<__u32>(want), &at);
            if (got == 0) {
                ++counts.retries;
                Kick(counts);
                Reap(counts);
                if (stop != nullptr && stop->load(std::memory_order_relaxed)) return done;
                continue;
            }
            for (std::size_t k = 0; k < got; ++k) {
                xdp_desc* d = xsk_ring_prod__tx_desc(&m_tx, at + static_cast<__u32>(k));
                if (again) {
                    *d = m_again[k];
                } else {
                    d->addr = static_cast<__u64>(frames[done + k] - m_area);
                    d->len = lengths[done + k];
                    d->options = 0;
                    m_bytes[d->addr / m_frameSize] = lengths[done + k];
                    ++m_outstanding[d->addr / (kBatch * m_frameSize)];  // (a dropped frame's is held)
                }
            }
            xsk_ring_prod__submit(&m_tx, static_cast<__u32>(got));
            if (again) {
                m_again.erase(m_again.begin(), m_again.begin() + static_cast<std::ptrdiff_t>(got));
            } else {
                done += got;
            }
            Kick(counts);
        }
        Reap(counts);
        return done;
    }

    void Drain(SendCounts& counts) override {
        // The frames handed over but not yet completed, for at most a second.
        const std::uint64_t until = now_ns() + 1000000000ull;
        while ((InFlight() != 0 || !m_again.empty()) && now_ns() < until) {
            if (!m_again.empty()) Send(nullptr, nullptr, 0, counts, nullptr);
            Kick(counts);
            Reap(counts);
        }
    }

  private:
    [[noreturn]] void Fail(int e, const char* what) {
        if (e == EPERM || e == EACCES) {
            throw SendError(SendError::Kind::Permission,
                            "no permission to send on " + m_name + " through AF_XDP: it needs CAP_NET_RAW, and "
                            "CAP_NET_ADMIN and CAP_BPF for some drivers");
        }
        if (e == ENODEV || e == ENXIO) throw SendError(SendError::Kind::NoInterface, "no interface named " + m_name);
        throw SendError(SendError::Kind::System, m_name + ": AF_XDP " + what + ": " + system_text(e));
    }
    std::size_t InFlight() const {
        std::size_t n = 0;
        for (const auto o : m_outstanding) n += o;
        return n;
    }
    // Asks the kernel to send what is queued; a frame the interface dropped is queued again.
    void Kick(SendCounts& counts) {
        if (!xsk_ring_prod__needs_wakeup(&m_tx)) return;
        if (::sendto(m_fd, nullptr, 0, MSG_DONTWAIT, nullptr, 0) >= 0) return;
        const int e = errno;
        if (e == EBUSY) {
            // The descriptor just before the consumer's position was dropped, not sent.
            // Its region is held until it is sent again; its coming completion does not count.
            const xdp_desc d = *xsk_ring_prod__tx_desc(&m_tx, *m_tx.consumer - 1);
            m_again.push_back(d);
            ++m_outstanding[d.addr / (kBatch * m_frameSize)];
            ++m_skip[d.addr / m_frameSize];
            ++counts.retries;
            return;
        }
        if (e == EAGAIN || e == ENOBUFS || e == EINTR) {
            ++counts.retries;
            return;
        }
        if (e == ENETDOWN || e == ENXIO || e == ENODEV) {
            throw SendError(SendError::Kind::Vanished, m_name + " went away or down while sending: " + system_text(e));
        }
        throw SendError(SendError::Kind::System, m_name + ": AF_XDP send: " + system_text(e));
    }
    // Takes the completed frames: each is sent, unless the interface dropped it.
    void Reap(SendCounts& counts) {
        __u32 at = 0;
        const __u32 n = xsk_ring_cons__peek(&m_comp, static_cast<__u32>(kRegions * kBatch), &at);
        for (__u32 k = 0; k < n; ++k) {
            const __u64 addr = *xsk_ring_cons__comp_addr(&m_comp, at + k);
            --m_outstanding[addr / (kBatch * m_frameSize)];
            if (m_skip[addr / m_frameSize] > 0) {
                --m_skip[addr / m_frameSize];  // the frame was dropped (and is queued again)
                continue;
            }
            ++counts.frames;
            counts.bytes += m_bytes[addr / m_frameSize];
        }
        if (n > 0) xsk_ring_cons__release(&m_comp, n);
    }

    std::string m_name;
    std::size_t m_frameSize = 2048, m_size = 0;
    unsigned char* m_area = nullptr;
    xsk_umem* m_umem = nullptr;
    xsk_socket* m_xsk = nullptr;
    xsk_ring_prod m_fill{}, m_tx{};
    xsk_ring_cons m_comp{};
    int m_fd = -1;
    bool m_zeroCopy = false;
    std::size_t m_next = 0;
    std::array<std::size_t, kRegions> m_outstanding{};
    std::array<std::uint32_t, kRegions * kBatch> m_bytes{};
    std::array<std::uint32_t, kRegions * kBatch> m_skip{};
    std::vector<xdp_desc> m_again;
};
#endif

// Waits until `due` (monotonic nanoseconds): a sleep to shortly before it, then a spin.
void wait_until(std::uint64_t due) {
    std::uint64_t now = now_ns();
    if (due > now + kSpinNs) {
        const std::uint64_t wake = due - kSpinNs;
        timespec ts{};
        ts.tv_sec = static_cast<time_t>(wake / 1000000000ull);
        ts.tv_nsec = static_cast<long>(wake % 1000000000ull);
        while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &ts, nullptr) == EINTR) {
        }
    }
    while (now_ns() < due) {
    }
}

// The thread's timer slack at 1 ns while sending (sleeps end when asked, not up to 50 µs
// later), as it was afterwards.
class TimerSlack {
  public:
    TimerSlack() : m_old(prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0)) { prctl(PR_SET_TIMERSLACK, 1, 0, 0, 0); }
    ~TimerSlack() {
        if (m_old > 0) prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(m_old), 0, 0, 0);
    }
    TimerSlack(const TimerSlack&) = delete;
    TimerSlack& operator=(const TimerSlack&) = delete;

  private:
    long m_old;
};

std::unique_ptr<Sender> open_sender(const SendOptions& options, const Interface& iface, std::size_t maxLength) {
#ifdef VRM_HAVE_XDP
    if (options.tx == SendOptions::Tx::Xdp) return std::make_unique<XdpSender>(options.interface, maxLength);
    if (options.tx == SendOptions::Tx::Auto) {
        try {
            return std::make_unique<XdpSender>(options.interface, maxLength);
        } catch (const SendError& e) {
            if (e.kind() == SendError::Kind::NoInterface) throw;
            // AF_XDP does not open here (no permission, no support): the packet socket.
        }
    }
#else
    if (options.tx == SendOptions::Tx::Xdp) {
        throw SendError(SendError::Kind::System, "AF_XDP: this build has no libxdp (--tx packet sends)");
    }
#endif
    return std::make_unique<PacketSender>(options.interface, iface, maxLength);
}

}  // namespace

InterfaceCounters read_interface_counters(const std::string& interface) {
    const std::string dir = "/sys/class/net/" + interface + "/statistics/";
    InterfaceCounters c;
    if (interface.empty() || interface.find('/') != std::string::npos || !read_number(dir + "tx_packets", c.txPackets)) {
        throw SendError(SendError::Kind::NoInterface, "no interface named " + interface);
    }
    read_number(dir + "tx_bytes", c.txBytes);
    read_number(dir + "tx_dropped", c.txDropped);
    read_number(dir + "rx_packets", c.rxPackets);
    read_number(dir + "rx_bytes", c.rxBytes);
    return c;
}

SendCounts send_frames(const FrameSource& source, const SendOptions& options) {
    const Interface iface = open_interface(options.interface, options.force);
    std::unique_ptr<Sender> made = open_sender(options, iface, source.MaxLength());
    Sender& sender = *made;
    SendCounts counts;
    counts.sender = sender.Name();
    counts.before = read_interface_counters(options.interface);
    counts.after = counts.before;

    const std::size_t stride = sender.Stride();
    std::array<std::uint32_t, kBatch> lengths{}, slots{};
    std::array<std::uint64_t, kBatch> times{}, due{};
    std::array<unsigned char*, kBatch> frames{};
    const bool paced = !options.topSpeed;
    const double interval = options.rate > 0 ? 1e9 / options.rate : 0;
    const std::uint32_t maxBurst = std::max<std::uint32_t>(1, options.maxBurst);
    Histogram lateness;
    TimerSlack slack;

    // The first frame 100 µs from now, or at the given time of the system clock.
    std::uint64_t start = now_ns() + 100000;
    if (options.startRealtimeNs != 0) {
        timespec real{};
        clock_gettime(CLOCK_REALTIME, &real);
        const std::uint64_t realNow =
            static_cast<std::uint64_t>(real.tv_sec) * 1000000000ull + static_cast<std::uint64_t>(real.tv_nsec);
        const std::uint64_t monoNow = now_ns();
        if (options.startRealtimeNs > realNow) start = std::max(start, monoNow + (options.startRealtimeNs - realNow));
    }
    std::uint64_t shift = 0;                         // how far stalls moved the schedule on
    double meanInterval = 0;                          // the schedule's mean interval of late
    std::uint64_t nextReport = start + kProgressNs;
    // Times of the first and the last hand-over, and the frames handed over before the last.
    std::uint64_t firstSent = 0, lastSent = 0, beforeLast = 0, handedOver = 0;
    auto finish = [&] {
        counts.seconds = static_cast<double>(now_ns() - std::min(now_ns(), start)) / 1e9;
        if (lastSent > firstSent) {
            counts.meanRate = static_cast<double>(beforeLast) * 1e9 / static_cast<double>(lastSent - firstSent);
        }
        counts.lateP50 = lateness.Quantile(0.50);
        counts.lateP99 = lateness.Quantile(0.99);
        counts.lateMax = lateness.Max();
        try {
            counts.after = read_interface_counters(options.interface);
        } catch (const SendError&) {
            // gone: the counts before stay the last known
        }
    };
    auto stopped = [&] { return options.stop != nullptr && options.stop->load(std::memory_order_relaxed); };
    try {
        std::uint64_t first = 0;
        bool ended = false;
        while (!ended && first < options.count && !stopped()) {
            const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(kBatch, options.count - first));
            unsigned char* room = sender.Room(counts);
            source.StampSlots(first, n, room, stride, lengths.data(), times.data(), nullptr, slots.data());
            for (std::size_t k = 0; k < n; ++k) {
                frames[k] = room + std::size_t{slots[k]} * stride;
                if (!fits(frames[k], lengths[k], iface.mtu)) {
                    throw SendError(SendError::Kind::TooLong,
                                    "frame " + std::to_string(first + k) + " is " + std::to_string(lengths[k]) +
                                        " bytes, more than " + options.interface + " takes (MTU " +
                                        std::to_string(iface.mtu) + " and a 14-byte header)");
                }
                const std::uint64_t at =
                    options.rate > 0 ? static_cast<std::uint64_t>(static_cast<long double>(first + k) * interval)
                                     : times[k];
                due[k] = at;  // from the start, before stalls
            }
            // The schedule's mean interval here, to tell how many frames a lateness is worth.
            if (n > 1 && due[n - 1] > due[0]) meanInterval = static_cast<double>(due[n - 1] - due[0]) / static_cast<double>(n - 1);
            std::size_t k = 0;
            while (k < n) {
                std::size_t m = n;
                if (paced) {
                    if (options.durationNs != ~std::uint64_t{0} && due[k] >= options.durationNs) {
                        ended = true;
                        break;
                    }
                    const std::uint64_t when = start + shift + due[k];
                    std::uint64_t now = now_ns();
                    if (when > now) {
                        wait_until(when);
                        now = now_ns();
                    } else if (meanInterval > 0 && static_cast<double>(now - when) >= meanInterval * maxBurst) {
                        // Behind by more frames than a burst may hold: the schedule moves on to
                        // now instead of catching up.
                        shift += now - when;
                        ++counts.stalls;
                        continue;
                    }
                    lateness.Add(now - std::min(now, when));
                    // With it, the frames already due, a burst at most.
                    m = k + 1;
                    while (m < n && start + shift + due[m] <= now && m - k < maxBurst &&
                           (options.durationNs == ~std::uint64_t{0} || due[m] < options.durationNs)) {
                        lateness.Add(now - (start + shift + due[m]));
                        ++m;
                    }
                    counts.longestBurst = std::max<std::uint64_t>(counts.longestBurst, m - k);
                } else if (options.durationNs != ~std::uint64_t{0} && now_ns() - std::min(now_ns(), start) >= options.durationNs) {
                    ended = true;
                    break;
                }
                const std::uint64_t handed = now_ns();
                if (firstSent == 0) firstSent = handed;
                const std::size_t took = sender.Send(frames.data() + k, lengths.data() + k, m - k, counts, options.stop);
                lastSent = handed;
                beforeLast = handedOver;
                handedOver += took;
                if (took < m - k) {
                    ended = true;  // stopped
                    break;
                }
                k = m;
            }
            first += n;
            const std::uint64_t now = now_ns();
            if (options.progress && now >= nextReport) {
                nextReport = now + kProgressNs;
                finish();
                options.progress(counts);
            }
        }
        sender.Drain(counts);
    } catch (const SendError&) {
        finish();
        if (options.progress) options.progress(counts);
        throw;
    }
    finish();
    return counts;
}

}  // namespace vrm::traffic
