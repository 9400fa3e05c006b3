#include <gtest/gtest.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "traffic/ByteSink.h"
#include "traffic/Capture.h"
#include "traffic/PcapOut.h"

namespace {

using vrm::traffic::ByteSink;
using vrm::traffic::CaptureFormat;
using vrm::traffic::CaptureOptions;
using vrm::traffic::CaptureSummary;
using vrm::traffic::FrameSource;
using vrm::traffic::MemorySink;
using vrm::traffic::write_capture;
using Bytes = std::vector<unsigned char>;

constexpr std::uint64_t kBase = 1700000000123456789ull;  // ns since the epoch
constexpr CaptureFormat kFormats[] = {CaptureFormat::Pcap, CaptureFormat::PcapNano, CaptureFormat::Pcapng};
constexpr unsigned kThreads[] = {1, 2, 3, 7};

const char* name(CaptureFormat f) {
    return f == CaptureFormat::Pcap ? "pcap" : f == CaptureFormat::PcapNano ? "pcap-ns" : "pcapng";
}

// Frames of lengths minLength .. maxLength (maxLength now and then), Ethernet + IPv4 headers
// (the IPv4 packet fills the frame) when long enough, bytes that depend on the index, times
// with sub-microsecond parts. Writes 0xEE into each slot past the frame.
class TestSource : public FrameSource {
  public:
    TestSource(std::size_t minLength, std::size_t maxLength) : m_min(minLength), m_max(maxLength) {}

    std::size_t MaxLength() const override { return m_max; }
    std::uint32_t Length(std::uint64_t i) const {
        if (i % 97 == 5) return static_cast<std::uint32_t>(m_max);
        return static_cast<std::uint32_t>(m_min + (i * 2654435761u + i / 7) % (m_max - m_min + 1));
    }
    virtual std::uint64_t Time(std::uint64_t i) const { return kBase + i * 1001 + (i % 5) * 333; }
    Bytes Frame(std::uint64_t i) const {
        Bytes f(Length(i));
        for (std::size_t j = 0; j < f.size(); ++j) f[j] = static_cast<unsigned char>(i * 31 + j * 7);
        if (f.size() >= 34) {
            const unsigned char eth[14] = {0x02, 0, 0, 0, 0, 2, 0x02, 0, 0, 0, 0, 1, 0x08, 0x00};
            std::memcpy(f.data(), eth, 14);
            const std::size_t total = f.size() - 14;
            const unsigned char ip[20] = {0x45, 0, static_cast<unsigned char>(total >> 8),
                                          static_cast<unsigned char>(total), 0, 0, 0, 0, 64, 253, 0, 0, 10, 0, 0, 1,
                                          10, 0, 0, 2};
            std::memcpy(f.data() + 14, ip, 20);
        }
        return f;
    }

    void Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
               std::uint32_t* lengths, std::uint64_t* times, std::uint32_t*) const override {
        calls.fetch_add(1);
        EXPECT_GE(stride, m_max);
        if (throwAt >= first && throwAt < first + count) {
            throw std::runtime_error("test source: frame " + std::to_string(throwAt));
        }
        for (std::size_t k = 0; k < count; ++k) {
            const Bytes f = Frame(first + k);
            unsigned char* slot = out + k * stride;
            if (!f.empty()) std::memcpy(slot, f.data(), f.size());
            std::memset(slot + f.size(), 0xEE, m_max - f.size());
            lengths[k] = static_cast<std::uint32_t>(f.size());
            times[k] = Time(first + k);
        }
    }

    std::uint64_t throwAt = std::numeric_limits<std::uint64_t>::max();
    mutable std::atomic<std::uint64_t> calls{0};

  private:
    std::size_t m_min;
    std::size_t m_max;
};

// --- a small reader of what the writer writes ------------------------------------------------

struct Record {
    std::uint64_t ns;
    Bytes data;
};

struct Capture {
    bool ng = false;
    std::uint32_t magic = 0;
    std::uint32_t link = 0;  // pcap: the whole link-type field; pcapng: the IDB's link type
    std::uint32_t snaplen = 0;
    int tsresol = -1;  // pcapng options, -1 when absent
    int fcslen = -1;
    std::vector<Record> records;
};

std::uint32_t get32(const Bytes& b, std::size_t at) {
    if (at + 4 > b.size()) throw std::runtime_error("read past the end at " + std::to_string(at));
    std::uint32_t v;
    std::memcpy(&v, &b[at], 4);
    return v;
}
std::uint16_t get16(const Bytes& b, std::size_t at) {
    if (at + 2 > b.size()) throw std::runtime_error("read past the end at " + std::to_string(at));
    std::uint16_t v;
    std::memcpy(&v, &b[at], 2);
    return v;
}
Bytes slice(const Bytes& b, std::size_t at, std::size_t size) {
    const auto from = b.begin() + static_cast<std::ptrdiff_t>(at);
    return Bytes(from, from + static_cast<std::ptrdiff_t>(size));
}
void require(bool ok, const std::string& what) {
    if (!ok) throw std::runtime_error(what);
}

Capture parse(const Bytes& b) {
    Capture c;
    c.magic = get32(b, 0);
    if (c.magic == 0xa1b2c3d4u || c.magic == 0xa1b23c4du) {
        require(get16(b, 4) == 2 && get16(b, 6) == 4, "pcap version");
        require(get32(b, 8) == 0 && get32(b, 12) == 0, "pcap zone and sigfigs");
        c.snaplen = get32(b, 16);
        c.link = get32(b, 20);
        const std::uint64_t scale = c.magic == 0xa1b2c3d4u ? 1000 : 1;
        std::size_t at = 24;
        while (at < b.size()) {
            const std::uint32_t sec = get32(b, at), frac = get32(b, at + 4);
            const std::uint32_t incl = get32(b, at + 8), orig = get32(b, at + 12);
            require(incl == orig, "incl_len != orig_len");
            require(frac < 1000000000 / scale, "fraction out of range");
            require(at + 16 + incl <= b.size(), "record past the end");
            c.records.push_back({sec * 1000000000ull + frac * scale, slice(b, at + 16, incl)});
            at += 16 + incl;
        }
        return c;
    }
    c.ng = true;
    require(c.magic == 0x0A0D0D0Au, "not a capture");
    require(get32(b, 4) == 28 && get32(b, 8) == 0x1A2B3C4Du, "SHB length or byte-order magic");
    require(get16(b, 12) == 1 && get16(b, 14) == 0, "SHB version");
    require(get32(b, 16) == 0xffffffffu && get32(b, 20) == 0xffffffffu, "SHB section length not -1");
    require(get32(b, 24) == 28, "SHB trailing length");
    std::size_t at = 28;
    require(get32(b, at) == 1, "IDB expected");
    const std::uint32_t idbLength = get32(b, at + 4);
    require(idbLength % 4 == 0 && get32(b, at + idbLength - 4) == idbLength, "IDB lengths");
    c.link = get16(b, at + 8);
    require(get16(b, at + 10) == 0, "IDB reserved");
    c.snaplen = get32(b, at + 12);
    std::size_t o = at + 16;
    for (;;) {
        const std::uint16_t code = get16(b, o), length = get16(b, o + 2);
        if (code == 0) {
            require(length == 0 && o + 4 == at + idbLength - 4, "IDB end of options");
            break;
        }
        require(length == 1, "option length");
        require(b[o + 5] == 0 && b[o + 6] == 0 && b[o + 7] == 0, "option padding");
        if (code == 9) c.tsresol = b[o + 4];
        if (code == 13) c.fcslen = b[o + 4];
        o += 8;
    }
    at += idbLength;
    while (at < b.size()) {
        require(get32(b, at) == 6, "EPB expected at " + std::to_string(at));
        const std::uint32_t total = get32(b, at + 4);
        require(total % 4 == 0, "EPB length not a multiple of 4");
        require(get32(b, at + total - 4) == total, "EPB trailing length");
        require(get32(b, at + 8) == 0, "EPB interface");
        const std::uint64_t ns = (std::uint64_t{get32(b, at + 12)} << 32) | get32(b, at + 16);
        const std::uint32_t cap = get32(b, at + 20), orig = get32(b, at + 24);
        require(cap == orig, "EPB captured != original length");
        require(total == 32 + ((cap + 3) & ~3u), "EPB total length: " + std::to_string(total));
        for (std::size_t p = at + 28 + cap; p < at + total - 4; ++p) require(b[p] == 0, "EPB padding not zero");
        c.records.push_back({ns, slice(b, at + 28, cap)});
        at += total;
    }
    return c;
}

// Checks that `bytes` holds frames 0 .. count-1 of `source` as `format` says.
void expect_frames(const Bytes& bytes, CaptureFormat format, const TestSource& source, std::uint64_t count) {
    Capture c;
    try {
        c = parse(bytes);
    } catch (const std::exception& e) {
        FAIL() << "unreadable capture: " << e.what();
    }
    EXPECT_EQ(c.ng, format == CaptureFormat::Pcapng);
    EXPECT_EQ(c.snaplen, std::max<std::size_t>(65535, source.MaxLength()));
    if (format == CaptureFormat::Pcap) {
        EXPECT_EQ(c.magic, 0xa1b2c3d4u);
    }
    if (format == CaptureFormat::PcapNano) {
        EXPECT_EQ(c.magic, 0xa1b23c4du);
    }
    if (format == CaptureFormat::Pcapng) {
        EXPECT_EQ(c.tsresol, 9);
    }
    ASSERT_EQ(c.records.size(), count);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t t = source.Time(i);
        const std::uint64_t want = format == CaptureFormat::Pcap ? t / 1000 * 1000 : t;
        ASSERT_EQ(c.records[i].ns, want) << "frame " << i;
        ASSERT_EQ(c.records[i].data, source.Frame(i)) << "frame " << i;
    }
}

Bytes capture_bytes(std::uint64_t count, const FrameSource& source, CaptureOptions options) {
    MemorySink sink;
    const CaptureSummary s = write_capture(sink, count, source, options);
    EXPECT_EQ(s.frames, count);
    EXPECT_EQ(s.bytes, sink.Bytes().size());
    return sink.Take();
}

// --- files ---------------------------------------------------------------------------------

class TempDir {
  public:
    TempDir() {
        std::string pattern = testing::TempDir() + "capture_test.XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        path = pattern;
    }
    ~TempDir() { std::filesystem::remove_all(path); }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& e : std::filesystem::directory_iterator(path)) names.push_back(e.path().filename().string());
        return names;
    }
    std::string path;
};

Bytes read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

void write_text(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

// --- tests ---------------------------------------------------------------------------------

TEST(Capture, SameBytesForEveryThreadCountAndFramesReadBack) {
    const TestSource source(34, 1514);  // about 680 frames a block: 6000 are 9 blocks
    for (const CaptureFormat format : kFormats) {
        for (const std::uint64_t count : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{6000}}) {
            SCOPED_TRACE(std::string(name(format)) + ", " + std::to_string(count) + " frames");
            CaptureOptions options;
            options.format = format;
            const Bytes one = capture_bytes(count, source, options);
            expect_frames(one, format, source, count);
            for (const unsigned threads : kThreads) {
                options.threads = threads;
                EXPECT_EQ(capture_bytes(count, source, options), one) << threads << " threads";
            }
        }
    }
}

TEST(Capture, StampsInRunsNotFrames) {
    const TestSource source(34, 1514);
    CaptureOptions options;
    options.threads = 3;
    capture_bytes(6000, source, options);
    EXPECT_GE(source.calls.load(), 2u);
    EXPECT_LE(source.calls.load(), 20u);  // blocks of about a megabyte
}

TEST(Capture, ProgressReachesTheCountFromTheCallingThread) {
    const TestSource source(34, 1514);
    for (const unsigned threads : {1u, 3u}) {
        CaptureOptions options;
        options.threads = threads;
        std::uint64_t last = 0;
        int calls = 0;
        const auto caller = std::this_thread::get_id();
        options.progress = [&](std::uint64_t done) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            EXPECT_GE(done, last);
            last = done;
            ++calls;
        };
        const Bytes withProgress = capture_bytes(6000, source, options);
        EXPECT_EQ(last, 6000u);
        EXPECT_GE(calls, 1);
        options.progress = nullptr;
        EXPECT_EQ(capture_bytes(6000, source, options), withProgress);
    }
}

TEST(Capture, MicrosecondsTruncateNanosecondsKeep) {
    const TestSource source(34, 100);
    CaptureOptions options;
    options.format = CaptureFormat::Pcap;
    const Capture us = parse(capture_bytes(10, source, options));
    options.format = CaptureFormat::PcapNano;
    const Capture ns = parse(capture_bytes(10, source, options));
    ASSERT_EQ(us.records.size(), 10u);
    ASSERT_EQ(ns.records.size(), 10u);
    for (std::uint64_t i = 0; i < 10; ++i) {
        EXPECT_EQ(ns.records[i].ns, source.Time(i));
        EXPECT_EQ(us.records[i].ns, source.Time(i) / 1000 * 1000);
    }
    // The raw fields of the first record: 1700000000 s and 123456 us or 123456789 ns.
    const Bytes raw = capture_bytes(1, source, options);
    EXPECT_EQ(get32(raw, 24), 1700000000u);
    EXPECT_EQ(get32(raw, 28), 123456789u);
    options.format = CaptureFormat::Pcap;
    EXPECT_EQ(get32(capture_bytes(1, source, options), 28), 123456u);
}

TEST(Capture, PcapngBlocksAndPadding) {
    const TestSource source(0, 7);  // every padding from 0 to 3 bytes, empty frames too
    CaptureOptions options;
    options.format = CaptureFormat::Pcapng;
    const Bytes b = capture_bytes(40, source, options);
    expect_frames(b, CaptureFormat::Pcapng, source, 40);
    // SHB 28 bytes, IDB 32 (if_tsresol, end of options), then EPBs of 32 + padded length.
    EXPECT_EQ(get32(b, 28), 1u);
    EXPECT_EQ(get32(b, 32), 32u);
    EXPECT_EQ(get16(b, 36), 1u);  // Ethernet
    EXPECT_EQ(get32(b, 40), 65535u);
    EXPECT_EQ(get16(b, 44), 9u);  // if_tsresol
    EXPECT_EQ(get16(b, 46), 1u);
    EXPECT_EQ(b[48], 9u);
    std::size_t size = 60;
    for (std::uint64_t i = 0; i < 40; ++i) size += 32 + (source.Length(i) + 3) / 4 * 4;
    EXPECT_EQ(b.size(), size);
    const Capture c = parse(b);
    EXPECT_EQ(c.fcslen, -1);
}

TEST(Capture, FcsIsMarked) {
    const TestSource source(34, 200);
    for (const CaptureFormat format : kFormats) {
        SCOPED_TRACE(name(format));
        CaptureOptions options;
        options.format = format;
        const Capture plain = parse(capture_bytes(3, source, options));
        options.fcs = true;
        const Bytes marked = capture_bytes(3, source, options);
        const Capture fcs = parse(marked);
        if (format == CaptureFormat::Pcapng) {
            EXPECT_EQ(plain.link, 1u);
            EXPECT_EQ(plain.fcslen, -1);
            EXPECT_EQ(fcs.link, 1u);
            EXPECT_EQ(fcs.fcslen, 32);  // bits
            EXPECT_EQ(get32(marked, 32), 40u);
        } else {
            EXPECT_EQ(plain.link, 1u);
            EXPECT_EQ(fcs.link, 0x24000001u);  // FCS length 2 x 16 bits, F bit, Ethernet
        }
        EXPECT_EQ(fcs.records.size(), 3u);
    }
}

TEST(Capture, MemorySinkMatchesFileAndStandardOutput) {
    TempDir dir;
    const TestSource source(34, 1514);
    for (const CaptureFormat format : kFormats) {
        SCOPED_TRACE(name(format));
        CaptureOptions options;
        options.format = format;
        options.threads = 3;
        const Bytes memory = capture_bytes(2000, source, options);
        const std::string path = dir.path + "/c." + name(format);
        const CaptureSummary s = write_capture(path, 2000, source, options);
        EXPECT_EQ(read_file(path), memory);
        EXPECT_EQ(s.bytes, memory.size());
        EXPECT_EQ(s.frames, 2000u);

        // "-": standard output, here redirected into a file.
        const std::string out = dir.path + "/stdout." + name(format);
        std::fflush(stdout);
        const int saved = ::dup(1);
        const int fd = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ASSERT_GE(fd, 0);
        ::dup2(fd, 1);
        ::close(fd);
        write_capture("-", 2000, source, options);
        ::dup2(saved, 1);
        ::close(saved);
        EXPECT_EQ(read_file(out), memory);
    }
}

TEST(Capture, MemorySinkLimit) {
    const TestSource source(34, 1514);
    MemorySink sink(10000);
    EXPECT_THROW(write_capture(sink, 100, source), std::runtime_error);
    EXPECT_LE(sink.Bytes().size(), 10000u);
    MemorySink roomy(1 << 20);
    write_capture(roomy, 100, source);
    EXPECT_LE(roomy.Bytes().capacity(), 2 * roomy.Bytes().size());
}

TEST(Capture, ThrowingSourceCommitsNothing) {
    TempDir dir;
    TestSource source(34, 1514);
    source.throwAt = 3000;
    for (const unsigned threads : kThreads) {
        for (const bool progress : {false, true}) {
            SCOPED_TRACE(std::to_string(threads) + " threads" + (progress ? ", progress" : ""));
            CaptureOptions options;
            options.threads = threads;
            options.format = CaptureFormat::Pcapng;
            if (progress) options.progress = [](std::uint64_t) {};
            const std::string fresh = dir.path + "/fresh.pcapng";
            const std::string old = dir.path + "/old.pcapng";
            write_text(old, "old bytes");
            try {
                write_capture(fresh, 6000, source, options);
                ADD_FAILURE() << "no exception";
            } catch (const std::runtime_error& e) {
                EXPECT_STREQ(e.what(), "test source: frame 3000");
            }
            EXPECT_THROW(write_capture(old, 6000, source, options), std::runtime_error);
            EXPECT_EQ(dir.Names(), std::vector<std::string>{"old.pcapng"});
            const Bytes kept = read_file(old);
            EXPECT_EQ(std::string(kept.begin(), kept.end()), "old bytes");
        }
    }
}

TEST(Capture, UnwritablePathNamesIt) {
    TempDir dir;
    const TestSource source(34, 100);
    const std::string path = dir.path + "/missing/c.pcap";
    try {
        write_capture(path, 10, source);
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()).rfind(path + ": ", 0), 0u) << e.what();
    }
    try {
        write_capture(dir.path, 10, source);  // a directory
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()).rfind(dir.path + ": ", 0), 0u) << e.what();
    }
}

TEST(Capture, RefusesWhatPcapCannotHold) {
    TempDir dir;
    const TestSource huge(34, vrm::traffic::kPcapMaxFrame + 1);
    MemorySink sink;
    EXPECT_THROW(write_capture(sink, 1, huge), std::invalid_argument);
    EXPECT_TRUE(sink.Bytes().empty());
    EXPECT_THROW(write_capture(dir.path + "/h.pcap", 1, huge), std::invalid_argument);
    EXPECT_TRUE(dir.Names().empty());

    const TestSource largest(vrm::traffic::kPcapMaxFrame - 3, vrm::traffic::kPcapMaxFrame);
    CaptureOptions options;
    options.threads = 2;
    const Bytes b = capture_bytes(5, largest, options);
    expect_frames(b, CaptureFormat::Pcap, largest, 5);

    // Times beyond 32-bit seconds: not in pcap, fine in pcapng.
    struct Late : TestSource {
        Late() : TestSource(34, 60) {}
        std::uint64_t Time(std::uint64_t i) const override { return (std::uint64_t{1} << 32) * 1000000000ull + i; }
    } late;
    EXPECT_THROW(capture_bytes(2, late, options), std::out_of_range);
    options.format = CaptureFormat::Pcapng;
    expect_frames(capture_bytes(2, late, options), CaptureFormat::Pcapng, late, 2);
}

TEST(Capture, FrameLongerThanTheSourceSaysIsAnError) {
    struct Liar : FrameSource {
        std::size_t MaxLength() const override { return 64; }
        void Stamp(std::uint64_t, std::size_t count, unsigned char* out, std::size_t stride, std::uint32_t* lengths,
                   std::uint64_t* times, std::uint32_t*) const override {
            for (std::size_t k = 0; k < count; ++k) {
                std::memset(out + k * stride, 0, 64);
                lengths[k] = 65;
                times[k] = 0;
            }
        }
    } liar;
    MemorySink sink;
    EXPECT_THROW(write_capture(sink, 3, liar), std::logic_error);
}

// The older interface: fixed-length frames at i microseconds, the same bytes as before.
TEST(Capture, WritePcapKeepsItsBytes) {
    TempDir dir;
    constexpr std::size_t kLength = 61;
    constexpr std::uint64_t kCount = 30000;  // two blocks
    const vrm::traffic::FrameStamp stamp = [](std::uint64_t first, std::size_t n, unsigned char* out,
                                              std::size_t stride) {
        for (std::size_t k = 0; k < n; ++k) {
            for (std::size_t j = 0; j < kLength; ++j) out[k * stride + j] = static_cast<unsigned char>(first + k + j);
        }
    };
    Bytes want(24);
    const std::uint32_t h32[] = {0xa1b2c3d4u};
    std::memcpy(&want[0], h32, 4);
    const std::uint16_t version[] = {2, 4};
    std::memcpy(&want[4], version, 4);
    const std::uint32_t tail[] = {65535, 1};
    std::memcpy(&want[16], tail, 8);
    for (std::uint64_t i = 0; i < kCount; ++i) {
        const std::uint32_t r[] = {static_cast<std::uint32_t>(i / 1000000), static_cast<std::uint32_t>(i % 1000000),
                                   kLength, kLength};
        const auto* p = reinterpret_cast<const unsigned char*>(r);
        want.insert(want.end(), p, p + 16);
        for (std::size_t j = 0; j < kLength; ++j) want.push_back(static_cast<unsigned char>(i + j));
    }
    for (const unsigned threads : kThreads) {
        vrm::traffic::PcapOptions options;
        options.threads = threads;
        const std::string path = dir.path + "/w" + std::to_string(threads) + ".pcap";
        const vrm::traffic::PcapSummary s = vrm::traffic::write_pcap(path, kCount, kLength, stamp, options);
        EXPECT_EQ(s.frames, kCount);
        EXPECT_EQ(s.bytes, want.size());
        EXPECT_TRUE(read_file(path) == want) << threads << " threads";
    }
}

// --- what Wireshark makes of it --------------------------------------------------------------

struct Shark {
    std::uint32_t length;
    std::string epoch;
    std::string fcs;
};

std::vector<Shark> tshark(const std::string& path) {
    const std::string command = "tshark -r '" + path +
                                "' -T fields -e frame.len -e frame.time_epoch -e eth.fcs 2>/dev/null";
    std::vector<Shark> rows;
    FILE* p = ::popen(command.c_str(), "r");
    if (p == nullptr) return rows;
    char line[512];
    while (std::fgets(line, sizeof line, p) != nullptr) {
        std::istringstream in(line);
        Shark s{};
        std::string len;
        std::getline(in, len, '\t');
        std::getline(in, s.epoch, '\t');
        std::getline(in, s.fcs);
        s.length = static_cast<std::uint32_t>(std::stoul(len));
        rows.push_back(s);
    }
    ::pclose(p);
    return rows;
}

std::string epoch_text(std::uint64_t ns) {
    char text[32];
    std::snprintf(text, sizeof text, "%llu.%09llu", static_cast<unsigned long long>(ns / 1000000000),
                  static_cast<unsigned long long>(ns % 1000000000));
    return text;
}

TEST(Capture, TsharkReadsLengthsTimesAndFcs) {
    if (std::system("command -v tshark >/dev/null 2>&1") != 0) GTEST_SKIP() << "tshark is not installed";
    TempDir dir;
    const TestSource source(34, 1514);  // IPv4 fills each frame: an FCS only where marked
    constexpr std::uint64_t kCount = 300;
    for (const CaptureFormat format : kFormats) {
        for (const bool fcs : {false, true}) {
            SCOPED_TRACE(std::string(name(format)) + (fcs ? ", fcs" : ""));
            CaptureOptions options;
            options.format = format;
            options.fcs = fcs;
            options.threads = 2;
            const std::string path = dir.path + "/t" + (fcs ? "-fcs." : ".") + name(format);
            write_capture(path, kCount, source, options);
            const std::vector<Shark> rows = tshark(path);
            ASSERT_EQ(rows.size(), kCount);
            for (std::uint64_t i = 0; i < kCount; ++i) {
                EXPECT_EQ(rows[i].length, source.Length(i)) << "frame " << i;
                if (format != CaptureFormat::Pcap) {
                    EXPECT_EQ(rows[i].epoch, epoch_text(source.Time(i))) << "frame " << i;
                }
                // Wireshark 4.0 honours the pcap link-type FCS bits and pcapng's if_fcslen.
                EXPECT_EQ(rows[i].fcs.empty(), !fcs) << "frame " << i << ": eth.fcs '" << rows[i].fcs << "'";
            }
        }
    }
}

}  // namespace
