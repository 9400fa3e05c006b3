#include "traffic/PcapOut.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "traffic/Checksums.h"
#include "traffic/OutputFile.h"

namespace vrm::traffic {

namespace {

constexpr std::size_t kFileHeader = 24;
constexpr std::size_t kRecordHeader = 16;
constexpr std::size_t kBlockBytes = std::size_t{1} << 20;

void put32(unsigned char* at, std::uint32_t v) { std::memcpy(at, &v, 4); }
void put16(unsigned char* at, std::uint16_t v) { std::memcpy(at, &v, 2); }

// Blocks are taken in index order by whichever thread is free, so that a thread that gets
// less of the processor (a busy machine) holds up no one; blocks for a pipe or a device are
// written strictly in index order.
struct Shared {
    std::mutex mutex;
    std::condition_variable turnChanged;
    std::uint64_t turn = 0;              // the block to write next, in order
    std::atomic<std::uint64_t> next{0};  // the block to take next
    std::atomic<bool> failed{false};     // set under the mutex
    std::exception_ptr error;
    std::atomic<std::uint64_t> done{0};
};

struct Job {
    std::uint64_t count;
    std::size_t frameLength;
    std::uint64_t blockFrames;
    std::uint64_t blocks;
    unsigned threads;
    const FrameStamp* stamp;
    const FrameChecksums* checksums;
    OutputFile* out;
};

void run_worker(const Job& job, Shared& shared) {
    try {
        const std::size_t record = kRecordHeader + job.frameLength;
        std::vector<unsigned char> buffer(static_cast<std::size_t>(job.blockFrames) * record);
        while (!shared.failed.load()) {
            const std::uint64_t b = shared.next.fetch_add(1);
            if (b >= job.blocks) return;
            const std::uint64_t first = b * job.blockFrames;
            const auto n = static_cast<std::size_t>(std::min(job.blockFrames, job.count - first));
            unsigned char* p = buffer.data();
            (*job.stamp)(first, n, p + kRecordHeader, record);
            for (std::size_t k = 0; k < n; ++k, p += record) {
                const std::uint64_t i = first + k;
                put32(p, static_cast<std::uint32_t>(i / 1000000));
                put32(p + 4, static_cast<std::uint32_t>(i % 1000000));
                put32(p + 8, static_cast<std::uint32_t>(job.frameLength));
                put32(p + 12, static_cast<std::uint32_t>(job.frameLength));
            }
            if (job.checksums != nullptr) job.checksums->Apply(buffer.data() + kRecordHeader, n, record);
            if (job.out->Positional()) {
                // A new file: each block goes straight to its place.
                job.out->WriteAt(kFileHeader + first * record, buffer.data(), n * record);
                shared.done.fetch_add(n, std::memory_order_relaxed);
                continue;
            }
            std::unique_lock<std::mutex> lock(shared.mutex);
            shared.turnChanged.wait(lock, [&] { return shared.turn == b || shared.failed.load(); });
            if (shared.failed.load()) return;
            lock.unlock();
            job.out->Write(buffer.data(), n * record);
            lock.lock();
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

}  // namespace

PcapSummary write_pcap(const std::string& path, std::uint64_t count, std::size_t frameLength,
                       const FrameStamp& stamp, const PcapOptions& options) {
    const auto started = std::chrono::steady_clock::now();
    if (frameLength > kPcapMaxFrame) {
        throw std::invalid_argument("frames of " + std::to_string(frameLength) +
                                    " bytes are longer than the " + std::to_string(kPcapMaxFrame) +
                                    " bytes pcap readers accept");
    }
    const std::size_t record = kRecordHeader + frameLength;
    Job job{};
    job.count = count;
    job.frameLength = frameLength;
    job.blockFrames = std::max<std::uint64_t>(1, kBlockBytes / record);
    job.blocks = (count + job.blockFrames - 1) / job.blockFrames;
    job.threads = static_cast<unsigned>(std::max<std::uint64_t>(
        1, std::min<std::uint64_t>(options.threads == 0 ? 1 : options.threads, job.blocks)));
    job.stamp = &stamp;
    job.checksums = options.checksums != nullptr && options.checksums->Any() ? options.checksums : nullptr;

    OutputFile out(path, options.watcher);
    job.out = &out;
    unsigned char header[kFileHeader] = {};
    put32(header, 0xa1b2c3d4u);
    put16(header + 4, 2);
    put16(header + 6, 4);
    put32(header + 16, static_cast<std::uint32_t>(std::max<std::size_t>(65535, frameLength)));
    put32(header + 20, 1);  // Ethernet
    out.Write(header, sizeof header);

    Shared shared;
    std::vector<std::thread> workers;
    const unsigned inline0 = options.progress ? 0 : 1;  // the caller works too unless it reports
    try {
        for (unsigned t = inline0; t < job.threads; ++t) workers.emplace_back(run_worker, std::cref(job), std::ref(shared));
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
                options.progress(done);
                last = now;
            }
            if (done >= count || failed) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    for (auto& w : workers) w.join();
    if (shared.error) std::rethrow_exception(shared.error);
    out.Commit();

    PcapSummary summary;
    summary.frames = count;
    summary.bytes = kFileHeader + count * record;
    summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return summary;
}

}  // namespace vrm::traffic
