// The analyzer on crafted arrivals (lost, duplicated, reordered and delayed frames, streams
// interleaved, frames without a signature), and the capture reader on the writer's files.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "traffic/Analyzer.h"
#include "traffic/ByteSink.h"
#include "traffic/Capture.h"
#include "traffic/CaptureReader.h"
#include "traffic/JsonRecord.h"
#include "traffic/Port.h"
#include "traffic/Signature.h"

namespace {

using namespace vrm::traffic;

// A 64-byte frame whose last 18 bytes are the signature.
std::vector<unsigned char> frame(std::uint16_t block, std::uint16_t stream, std::uint32_t seq, std::uint64_t tx) {
    std::vector<unsigned char> f(64, 0xab);
    Signature s;
    s.block = block;
    s.stream = stream;
    s.sequence = seq;
    s.txTime = tx & ((std::uint64_t{1} << 48) - 1);
    write_signature(s, f.data() + f.size() - kSignatureSize);
    return f;
}

struct Arrival {
    std::uint32_t seq;
    std::uint64_t delay;  // ns after the frame's transmit time, seq * 1000 ns
};

struct Row {
    const char* what;
    std::vector<Arrival> arrivals;
    std::uint64_t lost, duplicates, outOfOrder, maxReorder;
    std::int64_t latencyMin, latencyMax;
};

TEST(Analyzer, CountsLossDuplicatesOrderAndLatencyExactly) {
    const std::vector<Row> rows = {
        {"in order", {{0, 5}, {1, 5}, {2, 5}, {3, 5}}, 0, 0, 0, 0, 5, 5},
        {"two lost", {{0, 5}, {1, 5}, {4, 5}, {5, 5}}, 2, 0, 0, 0, 5, 5},
        {"a duplicate", {{0, 5}, {1, 5}, {1, 9}, {2, 5}}, 0, 1, 0, 0, 5, 9},
        {"swapped: late, not lost", {{0, 5}, {2, 5}, {1, 2000}, {3, 5}}, 0, 0, 1, 1, 5, 2000},
        {"three behind", {{0, 1}, {2, 1}, {3, 1}, {4, 1}, {1, 7000}}, 0, 0, 1, 3, 1, 7000},
        {"lost then a duplicate", {{0, 5}, {3, 5}, {3, 5}, {4, 5}}, 2, 1, 0, 0, 5, 5},
        {"late twice: the second a duplicate", {{0, 5}, {2, 5}, {1, 10}, {1, 20}}, 0, 1, 1, 1, 5, 20},
        {"starts late", {{100, 3}, {101, 3}, {103, 3}}, 1, 0, 0, 0, 3, 3},
        {"sequence wraps", {{0xfffffffeu, 4}, {0xffffffffu, 4}, {0, 4}, {1, 4}}, 0, 0, 0, 0, 4, 4},
        {"ahead of time (clocks apart)", {{0, 0}, {1, 0}}, 0, 0, 0, 0, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Analyzer a;
        for (const Arrival& e : row.arrivals) {
            const std::uint64_t tx = 1000000 + std::uint64_t{e.seq} * 1000;
            const auto f = frame(7, 3, e.seq, tx);
            a.Add(f.data(), f.size(), tx + e.delay);
        }
        const auto r = a.Report();
        ASSERT_EQ(r.size(), 1u);
        EXPECT_EQ(r[0].block, 7u);
        EXPECT_EQ(r[0].stream, 3u);
        EXPECT_EQ(r[0].frames, row.arrivals.size());
        EXPECT_EQ(r[0].lost, row.lost);
        EXPECT_EQ(r[0].duplicates, row.duplicates);
        EXPECT_EQ(r[0].outOfOrder, row.outOfOrder);
        EXPECT_EQ(r[0].maxReorder, row.maxReorder);
        EXPECT_EQ(r[0].latencyMin, row.latencyMin);
        EXPECT_EQ(r[0].latencyMax, row.latencyMax);
    }
}

TEST(Analyzer, StreamsApartUnsignedFramesAndLatencyQuantiles) {
    Analyzer a;
    // Two blocks' streams interleaved; stream (2, 0) loses every 10th frame; 1,000 frames of
    // (1, 5) delayed by 1..1000 µs; frames without a signature and one with a wrong CRC.
    std::uint32_t seq20 = 0;
    for (std::uint32_t k = 0; k < 1000; ++k) {
        const std::uint64_t t = 1000000000ull + k * 10000;
        auto f = frame(1, 5, k, t);
        a.Add(f.data(), f.size(), t + (k + 1) * 1000);
        if (k % 10 != 9) {
            f = frame(2, 0, seq20, t);
            a.Add(f.data(), f.size(), t + 50);
        }
        ++seq20;
    }
    std::vector<unsigned char> plain(80, 0x11);
    a.Add(plain.data(), plain.size(), 5);
    auto bad = frame(1, 5, 3, 0);
    bad[bad.size() - 1] ^= 0xff;
    a.Add(bad.data(), bad.size(), 6);
    EXPECT_EQ(a.Unsigned(), 2u);
    EXPECT_EQ(a.BadSignatures(), 1u);
    const auto r = a.Report();
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].block, 1u);
    EXPECT_EQ(r[0].frames, 1000u);
    EXPECT_EQ(r[0].lost, 0u);
    EXPECT_EQ(r[0].latencyMin, 1000);
    EXPECT_EQ(r[0].latencyMax, 1000000);
    EXPECT_DOUBLE_EQ(r[0].latencyMean, 500500.0);
    // Quantiles within the histogram's 12.5%: p50 near 500 µs, p99 near 990 µs.
    EXPECT_NEAR(static_cast<double>(r[0].latencyP50), 500000, 500000 * 0.125);
    EXPECT_NEAR(static_cast<double>(r[0].latencyP99), 990000, 990000 * 0.125);
    EXPECT_EQ(r[1].block, 2u);
    EXPECT_EQ(r[1].frames, 900u);
    EXPECT_EQ(r[1].lost, 99u);  // the 100th loss is the last frame, after which nothing came
    EXPECT_EQ(r[1].latencyMax, 50);
}

TEST(CaptureReader, ReadsBackWhatTheWriterWroteInEveryFormat) {
    // A port of two blocks with signatures: each format read back gives the frames and their
    // scheduled times (microseconds for pcap), and the analyzer finds no loss and no latency.
    const std::string port = R"({"blocks": [
        {"name": "a", "blockID": 1, "baseStream": {"enabled": true, "frame": {"data":
          "0010940000020010940000010800 4500002e0000000040110000c0000201c6336401 04001389001a0000000102030405060708090a0b0c0d0e0f1011",
          "options": {"insertSigField": true}}}},
        {"name": "b", "blockID": 2, "baseStream": {"enabled": true, "frame": {"data":
          "0010940000020010940000010800 4500002e0000000040110000c0000201c6336401 04001389001a0000000102030405060708090a0b0c0d0e0f1011",
          "options": {"insertSigField": true}}}}],
        "common": {"rate": {"fixed": {"rateUnit": "FRAMES_PER_SECOND", "rate": 333333}}}})";
    const Port p(parse_port(port), ShapeOptions{}, 3000);
    for (const CaptureFormat format : {CaptureFormat::Pcap, CaptureFormat::PcapNano, CaptureFormat::Pcapng}) {
        SCOPED_TRACE(static_cast<int>(format));
        const std::string path = testing::TempDir() + "reader.cap";
        CaptureOptions o;
        o.format = format;
        write_capture(path, p.Frames(), p, o);
        CaptureReader reader(path);
        Analyzer a(reader.Fcs());
        const unsigned char* data = nullptr;
        std::size_t length = 0;
        std::uint64_t ns = 0;
        std::vector<unsigned char> one(p.MaxLength());
        for (std::uint64_t k = 0; k < p.Frames(); ++k) {
            ASSERT_TRUE(reader.Next(data, length, ns));
            std::uint32_t len = 0;
            std::uint64_t t = 0;
            p.Stamp(k, 1, one.data(), one.size(), &len, &t, nullptr);
            ASSERT_EQ(length, len);
            EXPECT_EQ(ns, format == CaptureFormat::Pcap ? t / 1000 * 1000 : t);
            ASSERT_TRUE(std::equal(data, data + length, one.begin()));
            a.Add(data, length, t);
        }
        EXPECT_FALSE(reader.Next(data, length, ns));
        const auto r = a.Report();
        ASSERT_EQ(r.size(), 2u);
        for (const auto& s : r) {
            EXPECT_EQ(s.frames, 1500u);
            EXPECT_EQ(s.lost + s.duplicates + s.outOfOrder, 0u);
            EXPECT_EQ(s.latencyMax, 0);
        }
        std::remove(path.c_str());
    }
}

TEST(CaptureReader, RefusesWhatIsNotACapture) {
    const std::string path = testing::TempDir() + "notacap";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"hello, world, this is no capture", "neither pcap nor pcapng"},
        {"short", "too short"},
        // a pcap header, then a record that claims a frame of 16 MiB
        {std::string("\xd4\xc3\xb2\xa1\x02\x00\x04\x00", 8) + std::string(12, '\0') + std::string("\x01\x00\x00\x00", 4) +
             std::string(8, '\0') + std::string("\x00\x00\x00\x01", 4) + std::string(4, '\0'),
         "a frame of 16777216 bytes"},
    };
    for (const auto& [bytes, text] : rows) {
        SCOPED_TRACE(text);
        std::FILE* f = std::fopen(path.c_str(), "wb");
        ASSERT_NE(f, nullptr);
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::fclose(f);
        try {
            CaptureReader reader(path);
            const unsigned char* data = nullptr;
            std::size_t length = 0;
            std::uint64_t ns = 0;
            while (reader.Next(data, length, ns)) {
            }
            ADD_FAILURE() << "no error";
        } catch (const InputError& e) {
            EXPECT_NE(e.line().find(text), std::string::npos) << e.line();
        }
    }
    std::remove(path.c_str());
}

}  // namespace
