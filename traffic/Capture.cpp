#include "traffic/Capture.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "traffic/OutputFile.h"

namespace vrm::traffic {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 20;
constexpr std::uint64_t kNanosPerSecond = 1000000000;
constexpr std::uint16_t kLinkEthernet = 1;
// pcap's link-type field: F bit and the FCS length in 16-bit words in the top four bits.
constexpr std::uint32_t kPcapFcsPresent = 0x04000000u;
constexpr std::uint32_t kPcapFcsWords4 = std::uint32_t{2} << 28;
// pcapng
constexpr std::uint32_t kSectionHeader = 0x0A0D0D0Au;
constexpr std::uint32_t kInterfaceDescription = 1;
constexpr std::uint32_t kEnhancedPacket = 6;
constexpr std::uint16_t kOptComment = 1;
constexpr std::uint16_t kOptTsresol = 9;
constexpr std::uint16_t kOptFcslen = 13;
constexpr std::uint8_t kFcsBits = 32;  // if_fcslen counts bits

void put32(unsigned char* at, std::uint32_t v) { std::memcpy(at, &v, 4); }
void put16(unsigned char* at, std::uint16_t v) { std::memcpy(at, &v, 2); }
void put64(unsigned char* at, std::uint64_t v) { std::memcpy(at, &v, 8); }
std::size_t pad4(std::size_t n) { return (n + 3) & ~std::size_t{3}; }

// Where a frame sits in its record and how long the record is.
struct Layout {
    CaptureFormat format;
    std::size_t maxLength;
    std::size_t head;    // record bytes before the frame
    std::size_t tail;    // after the frame and its padding
    std::size_t stride;  // a slot in the block buffer: the longest record
    // pcapng: each frame's tag as the options of its record (a comment, then the end of
    // options), when the source names its frames' origins.
    std::vector<std::vector<unsigned char>> tagOptions;

    Layout(CaptureFormat f, std::size_t max, const std::vector<std::string>& tags) : format(f), maxLength(max) {
        const bool ng = f == CaptureFormat::Pcapng;
        head = ng ? 28 : 16;
        tail = ng ? 4 : 0;
        std::size_t longest = 0;
        if (ng) {
            for (const auto& name : tags) {
                const std::size_t n = std::min<std::size_t>(name.size(), 0xfff0);
                std::vector<unsigned char> o(4 + pad4(n) + 4, 0);
                put16(o.data(), kOptComment);
                put16(o.data() + 2, static_cast<std::uint16_t>(n));
                std::memcpy(o.data() + 4, name.data(), n);
                longest = std::max(longest, o.size());
                tagOptions.push_back(std::move(o));
            }
        }
        stride = Record(max) + longest;
    }
    std::size_t Record(std::size_t length) const {
        return format == CaptureFormat::Pcapng ? head + pad4(length) + tail : head + length;
    }
};

std::vector<unsigned char> file_header(const Layout& layout, bool fcs) {
    const auto snaplen = static_cast<std::uint32_t>(std::max<std::size_t>(65535, layout.maxLength));
    std::vector<unsigned char> h;
    if (layout.format != CaptureFormat::Pcapng) {
        h.assign(24, 0);
        put32(h.data(), layout.format == CaptureFormat::PcapNano ? 0xa1b23c4du : 0xa1b2c3d4u);
        put16(&h[4], 2);
        put16(&h[6], 4);
        put32(&h[16], snaplen);
        put32(&h[20], kLinkEthernet | (fcs ? kPcapFcsPresent | kPcapFcsWords4 : 0));
        return h;
    }
    const std::size_t shb = 28;
    const std::size_t idb = 20 + 8 + (fcs ? 8 : 0) + 4;
    h.assign(shb + idb, 0);
    unsigned char* p = h.data();
    put32(p, kSectionHeader);
    put32(p + 4, shb);
    put32(p + 8, 0x1A2B3C4Du);
    put16(p + 12, 1);
    put16(p + 14, 0);
    put64(p + 16, ~std::uint64_t{0});  // section length not given
    put32(p + 24, shb);
    p += shb;
    put32(p, kInterfaceDescription);
    put32(p + 4, static_cast<std::uint32_t>(idb));
    put16(p + 8, kLinkEthernet);
    put32(p + 12, snaplen);
    unsigned char* o = p + 16;
    put16(o, kOptTsresol);
    put16(o + 2, 1);
    o[4] = 9;  // 10^-9 s
    o += 8;
    if (fcs) {
        put16(o, kOptFcslen);
        put16(o + 2, 1);
        o[4] = kFcsBits;
        o += 8;
    }
    o += 4;  // opt_endofopt: zeros
    put32(o, static_cast<std::uint32_t>(idb));
    return h;
}

// Copies n bytes between buffers that do not overlap: frames up to 128 bytes in a few
// overlapping moves of fixed size, which the compiler makes straight-line.
inline void copy_apart(unsigned char* to, const unsigned char* from, std::size_t n) {
    if (n >= 16 && n <= 32) {
        std::memcpy(to, from, 16);
        std::memcpy(to + n - 16, from + n - 16, 16);
    } else if (n > 32 && n <= 64) {
        std::memcpy(to, from, 32);
        std::memcpy(to + n - 32, from + n - 32, 32);
    } else if (n > 64 && n <= 128) {
        std::memcpy(to, from, 32);
        std::memcpy(to + 32, from + 32, 32);
        std::memcpy(to + n - 64, from + n - 64, 32);
        std::memcpy(to + n - 32, from + n - 32, 32);
    } else {
        std::memcpy(to, from, n);
    }
}

// Turns a block stamped at `stride` (frame k in slot slots[k], at slots[k] * stride + head of
// `stamped`) into consecutive records at `records`. The two may be the same buffer when each
// frame is in its own slot (slots[k] = k): a record is never longer than a slot, so each frame
// moves only towards the start. Returns the bytes of the records.
std::size_t lay_out(const Layout& layout, const unsigned char* stamped, const std::uint32_t* slots,
                    unsigned char* buffer, std::uint64_t first, std::size_t n, const std::uint32_t* lengths,
                    const std::uint64_t* times, const std::uint32_t* tags) {
    std::size_t at = 0;
    for (std::size_t k = 0; k < n; ++k) {
        const std::size_t length = lengths[k];
        if (length > layout.maxLength) {
            throw std::logic_error("frame source: frame " + std::to_string(first + k) + " is " +
                                   std::to_string(length) + " bytes, longer than its longest, " +
                                   std::to_string(layout.maxLength));
        }
        unsigned char* r = buffer + at;
        const unsigned char* from = stamped + std::size_t{slots[k]} * layout.stride + layout.head;
        if (stamped != buffer) {
            copy_apart(r + layout.head, from, length);
        } else if (from != r + layout.head) {
            std::memmove(r + layout.head, from, length);
        }
        const std::uint64_t t = times[k];
        const std::vector<unsigned char>* options = nullptr;
        if (!layout.tagOptions.empty()) {
            if (tags[k] >= layout.tagOptions.size()) {
                throw std::logic_error("frame source: frame " + std::to_string(first + k) + " has tag " +
                                       std::to_string(tags[k]) + " beyond its names");
            }
            options = &layout.tagOptions[tags[k]];
        }
        const std::size_t record = layout.Record(length) + (options != nullptr ? options->size() : 0);
        if (layout.format == CaptureFormat::Pcapng) {
            put32(r, kEnhancedPacket);
            put32(r + 4, static_cast<std::uint32_t>(record));
            put32(r + 8, 0);  // interface
            put32(r + 12, static_cast<std::uint32_t>(t >> 32));
            put32(r + 16, static_cast<std::uint32_t>(t));
            put32(r + 20, static_cast<std::uint32_t>(length));
            put32(r + 24, static_cast<std::uint32_t>(length));
            std::memset(r + layout.head + length, 0, pad4(length) - length);
            if (options != nullptr) std::memcpy(r + layout.head + pad4(length), options->data(), options->size());
            put32(r + record - 4, static_cast<std::uint32_t>(record));
        } else {
            const std::uint64_t seconds = t / kNanosPerSecond;
            if (seconds > 0xffffffffu) {
                throw std::out_of_range("frame " + std::to_string(first + k) + ": time " + std::to_string(t) +
                                        " ns is beyond the 32-bit seconds of a pcap record");
            }
            const std::uint64_t nanos = t % kNanosPerSecond;
            put32(r, static_cast<std::uint32_t>(seconds));
            put32(r + 4, static_cast<std::uint32_t>(layout.format == CaptureFormat::PcapNano ? nanos : nanos / 1000));
            put32(r + 8, static_cast<std::uint32_t>(length));
            put32(r + 12, static_cast<std::uint32_t>(length));
        }
        at += record;
    }
    return at;
}

// Blocks are taken in index order by whichever thread is free and written strictly in index
// order; a thread holds one block until it has written it.
struct Shared {
    std::mutex mutex;
    std::condition_variable turnChanged;
    std::uint64_t turn = 0;              // the block to write next
    std::atomic<std::uint64_t> next{0};  // the block to take next
    std::atomic<bool> failed{false};     // set under the mutex
    std::exception_ptr error;
    std::atomic<std::uint64_t> done{0};
    std::uint64_t bytes = 0;  // written by the thread whose turn it is
};

struct Job {
    std::uint64_t count;
    std::uint64_t blockFrames;
    std::uint64_t blocks;
    const Layout* layout;
    const FrameSource* source;
    ByteSink* sink;
};

void run_worker(const Job& job, Shared& shared) {
    try {
        const Layout& layout = *job.layout;
        const auto slots = static_cast<std::size_t>(job.blockFrames);
        std::vector<unsigned char> buffer(slots * layout.stride);
        std::vector<unsigned char> records;  // when the source leaves its frames out of order
        std::vector<std::uint32_t> lengths(slots);
        std::vector<std::uint64_t> times(slots);
        std::vector<std::uint32_t> tags(layout.tagOptions.empty() ? 0 : slots);
        std::vector<std::uint32_t> where(slots);
        while (!shared.failed.load()) {
            const std::uint64_t b = shared.next.fetch_add(1);
            if (b >= job.blocks) return;
            const std::uint64_t first = b * job.blockFrames;
            const auto n = static_cast<std::size_t>(std::min(job.blockFrames, job.count - first));
            job.source->StampSlots(first, n, buffer.data() + layout.head, layout.stride, lengths.data(), times.data(),
                                   tags.empty() ? nullptr : tags.data(), where.data());
            bool inOrder = true;
            for (std::size_t k = 0; k < n; ++k) {
                if (where[k] >= n) throw std::logic_error("frame source: a frame's slot is beyond the run");
                inOrder = inOrder && where[k] == k;
            }
            unsigned char* out = buffer.data();
            if (!inOrder) {
                records.resize(buffer.size());
                out = records.data();
            }
            const std::size_t size =
                lay_out(layout, buffer.data(), where.data(), out, first, n, lengths.data(), times.data(), tags.data());

            std::unique_lock<std::mutex> lock(shared.mutex);
            shared.turnChanged.wait(lock, [&] { return shared.turn == b || shared.failed.load(); });
            if (shared.failed.load()) return;
            lock.unlock();
            job.sink->Write(out, size);
            lock.lock();
            shared.bytes += size;
            shared.turn = b + 1;
            shared.done.fetch_add(n, std::memory_order_relaxed);
            shared.turnChanged.notify_all();
        }
    } catch (...) {
        std::lock_guard<std::mutex> lock(shared.mutex);
        if (!shared.error) shared.error = std::current_exception();
        shared.failed.store(true);
        shared.turnChanged.notify_all();
    }
}

std::size_t checked_max_length(const FrameSource& source) {
    const std::size_t max = source.MaxLength();
    if (max > kPcapMaxFrame) {
        throw std::invalid_argument("frames of " + std::to_string(max) + " bytes are longer than the " +
                                    std::to_string(kPcapMaxFrame) + " bytes pcap readers accept");
    }
    return max;
}

CaptureSummary write_checked(ByteSink& sink, std::uint64_t count, const FrameSource& source, std::size_t maxLength,
                             const CaptureOptions& options) {
    const auto started = std::chrono::steady_clock::now();
    const Layout layout(options.format, maxLength, source.TagNames());
    Job job{};
    job.count = count;
    job.blockFrames = std::max<std::uint64_t>(1, kBlockBytes / layout.stride);
    job.blocks = (count + job.blockFrames - 1) / job.blockFrames;
    const auto threads = static_cast<unsigned>(std::max<std::uint64_t>(
        1, std::min<std::uint64_t>(options.threads == 0 ? 1 : options.threads, job.blocks)));
    job.layout = &layout;
    job.source = &source;
    job.sink = &sink;

    const std::vector<unsigned char> header = file_header(layout, options.fcs);
    sink.Write(header.data(), header.size());

    Shared shared;
    std::vector<std::thread> workers;
    const unsigned inline0 = options.progress ? 0 : 1;  // the caller works too unless it reports
    try {
        for (unsigned t = inline0; t < threads; ++t) workers.emplace_back(run_worker, std::cref(job), std::ref(shared));
    } catch (...) {
        {
            std::lock_guard<std::mutex> lock(shared.mutex);
            shared.failed.store(true);
        }
        shared.turnChanged.notify_all();
        for (auto& w : workers) w.join();
        throw;
    }
    if (inline0 == 1) {
        run_worker(job, shared);
    } else {
        auto last = std::chrono::steady_clock::now();
        for (;;) {
            const std::uint64_t done = shared.done.load(std::memory_order_relaxed);
            const bool failed = shared.failed.load();
            const auto now = std::chrono::steady_clock::now();
            if (done >= count || failed || now - last >= std::chrono::milliseconds(100)) {
                try {
                    options.progress(done);
                } catch (...) {
                    std::lock_guard<std::mutex> lock(shared.mutex);
                    if (!shared.error) shared.error = std::current_exception();
                    shared.failed.store(true);
                    shared.turnChanged.notify_all();
                }
                last = now;
            }
            if (done >= count || shared.failed.load()) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    for (auto& w : workers) w.join();
    if (shared.error) std::rethrow_exception(shared.error);

    CaptureSummary summary;
    summary.frames = count;
    summary.bytes = header.size() + shared.bytes;
    summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return summary;
}

}  // namespace

CaptureSummary write_capture(ByteSink& sink, std::uint64_t count, const FrameSource& source,
                             const CaptureOptions& options) {
    return write_checked(sink, count, source, checked_max_length(source), options);
}

CaptureSummary write_capture(const std::string& path, std::uint64_t count, const FrameSource& source,
                             const CaptureOptions& options) {
    const auto started = std::chrono::steady_clock::now();
    const std::size_t maxLength = checked_max_length(source);
    OutputFile out(path, options.watcher);
    CaptureSummary summary = write_checked(out, count, source, maxLength, options);
    out.Commit();
    summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return summary;
}

bool parse_capture_format(const std::string& name, CaptureFormat& format) {
    if (name == "pcap") {
        format = CaptureFormat::Pcap;
    } else if (name == "pcap-ns") {
        format = CaptureFormat::PcapNano;
    } else if (name == "pcapng") {
        format = CaptureFormat::Pcapng;
    } else {
        return false;
    }
    return true;
}

}  // namespace vrm::traffic
