#include "tools/streamgen/PcapOut.h"

#include <pcap/pcap.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <thread>

namespace streamgen {

namespace {

constexpr std::size_t kFileHeader = 24;
constexpr std::size_t kRecordHeader = 16;
constexpr std::size_t kStdioBuffer = 1 << 20;

struct PcapHandle {
    pcap_t* p = nullptr;
    ~PcapHandle() {
        if (p) pcap_close(p);
    }
};

struct Part {
    uint64_t first = 0;
    uint64_t count = 0;
    pcap_dumper_t* dumper = nullptr;
    std::unique_ptr<char[]> buffer;
    std::atomic<uint64_t> done{0};
    std::exception_ptr error;
    std::atomic<bool> failed{false};
};

std::runtime_error io_error(const std::string& path, const std::string& what) {
    return std::runtime_error(path + ": " + what);
}

// Opens a dumper on `path` at byte `at` (0: a new file).
pcap_dumper_t* open_dumper(pcap_t* p, const std::string& path, uint64_t at, Part& part) {
    FILE* f = std::fopen(path.c_str(), at == 0 ? "wb" : "r+b");
    if (f == nullptr) throw io_error(path, std::strerror(errno));
    part.buffer.reset(new char[kStdioBuffer]);
    std::setvbuf(f, part.buffer.get(), _IOFBF, kStdioBuffer);
    if (at != 0 && fseeko(f, static_cast<off_t>(at), SEEK_SET) != 0) {
        const int e = errno;
        std::fclose(f);
        throw io_error(path, std::strerror(e));
    }
    pcap_dumper_t* d = pcap_dump_fopen(p, f);
    if (d == nullptr) {
        std::fclose(f);
        throw io_error(path, pcap_geterr(p));
    }
    if (pcap_dump_flush(d) != 0) {
        pcap_dump_close(d);
        throw io_error(path, "cannot write the file header");
    }
    return d;
}

void run_part(Part& part, std::size_t frameLength, const ProducerFactory& make) {
    try {
        std::unique_ptr<FrameProducer> producer = make(part.first);
        pcap_pkthdr header{};
        header.caplen = static_cast<bpf_u_int32>(frameLength);
        header.len = static_cast<bpf_u_int32>(frameLength);
        auto* user = reinterpret_cast<u_char*>(part.dumper);
        const uint64_t end = part.first + part.count;
        for (uint64_t i = part.first; i < end; ++i) {
            const std::vector<uint8_t>& frame = producer->Next();
            header.ts.tv_sec = static_cast<time_t>(i / 1000000);
            header.ts.tv_usec = static_cast<suseconds_t>(i % 1000000);
            pcap_dump(user, &header, frame.data());
            if ((i & 0xfff) == 0xfff) {
                part.done.store(i + 1 - part.first, std::memory_order_relaxed);
            }
        }
        part.done.store(part.count, std::memory_order_relaxed);
    } catch (...) {
        part.error = std::current_exception();
        part.failed.store(true, std::memory_order_relaxed);
    }
}

}  // namespace

PcapSummary write_pcap(const std::string& path, uint64_t count, unsigned threads, std::size_t frameLength,
                       const ProducerFactory& make, const std::function<void(uint64_t done)>& progress) {
    const auto start = std::chrono::steady_clock::now();
    if (threads == 0) threads = 1;
    if (count < threads) threads = count == 0 ? 1 : static_cast<unsigned>(count);
    const int snaplen = frameLength > 65535 ? static_cast<int>(frameLength) : 65535;

    PcapHandle handle;
    handle.p = pcap_open_dead(DLT_EN10MB, snaplen);
    if (handle.p == nullptr) throw std::runtime_error("libpcap: cannot create a dead capture handle");

    const uint64_t recordSize = kRecordHeader + frameLength;
    std::vector<std::unique_ptr<Part>> parts;
    for (unsigned t = 0; t < threads; ++t) {
        auto part = std::make_unique<Part>();
        part->first = count / threads * t + std::min<uint64_t>(t, count % threads);
        part->count = count / threads + (t < count % threads ? 1 : 0);
        parts.push_back(std::move(part));
    }
    auto close_all = [&parts] {
        for (auto& part : parts) {
            if (part->dumper) pcap_dump_close(part->dumper);
            part->dumper = nullptr;
        }
    };
    try {
        // All headers first, in order; the threads' records then overwrite the later ones.
        for (auto& part : parts) {
            const uint64_t at = part->first == 0 ? 0 : kFileHeader + part->first * recordSize - kFileHeader;
            part->dumper = open_dumper(handle.p, path, at, *part);
        }
    } catch (...) {
        close_all();
        throw;
    }

    std::vector<std::thread> workers;
    for (std::size_t t = 1; t < parts.size(); ++t) {
        workers.emplace_back(run_part, std::ref(*parts[t]), frameLength, std::cref(make));
    }
    if (progress) {
        workers.emplace_back(run_part, std::ref(*parts[0]), frameLength, std::cref(make));
    } else {
        run_part(*parts[0], frameLength, make);
    }
    if (progress) {
        // Polls often (short runs end at once) and reports about ten times a second.
        auto last = std::chrono::steady_clock::now();
        for (;;) {
            uint64_t done = 0;
            bool failed = false;
            for (auto& part : parts) {
                done += part->done.load(std::memory_order_relaxed);
                failed = failed || part->failed.load(std::memory_order_relaxed);
            }
            const auto now = std::chrono::steady_clock::now();
            if (done >= count || failed || now - last >= std::chrono::milliseconds(100)) {
                progress(done);
                last = now;
            }
            if (done >= count || failed) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    for (auto& w : workers) w.join();

    std::exception_ptr error;
    for (auto& part : parts) {
        if (part->error && !error) error = part->error;
    }
    bool writeFailed = false;
    for (auto& part : parts) {
        if (part->dumper &&
            (pcap_dump_flush(part->dumper) != 0 || std::ferror(pcap_dump_file(part->dumper)))) {
            writeFailed = true;
        }
    }
    close_all();
    if (error) std::rethrow_exception(error);
    if (writeFailed) throw io_error(path, "write failed");

    PcapSummary summary;
    summary.frames = count;
    summary.bytes = kFileHeader + count * recordSize;
    summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return summary;
}

}  // namespace streamgen
