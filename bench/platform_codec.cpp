// Encode and decode throughput of a message of about 1 MB with nested structs and arrays,
// next to a memcpy of the same number of bytes measured in the same run.
//
// Each codec benchmark reports bytes_per_second and a "vs_memcpy" counter: its own rate
// divided by the memcpy rate of the encoded size, both measured in thread CPU time in the
// same run (so that a loaded machine skews neither side).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "binding/Tm_backed_array.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"

namespace {

constexpr int kRecords = 240;
constexpr int kPayloadBytes = 4096;
constexpr int kCounters = 64;

// The caller's data that view arrays refer to; lives as long as the process.
struct Source {
    std::vector<std::vector<unsigned char>> payloads;
    std::vector<std::vector<unsigned int>> counters;
};

Source& source() {
    static Source s = [] {
        Source src;
        for (int r = 0; r < kRecords; ++r) {
            std::vector<unsigned char> p(kPayloadBytes);
            for (int i = 0; i < kPayloadBytes; ++i)
                p[static_cast<size_t>(i)] = static_cast<unsigned char>(r * 31 + i);
            src.payloads.push_back(std::move(p));
            std::vector<unsigned int> c(kCounters);
            for (int i = 0; i < kCounters; ++i)
                c[static_cast<size_t>(i)] = static_cast<unsigned int>(r * 1000003u + i);
            src.counters.push_back(std::move(c));
        }
        return src;
    }();
    return s;
}

// A request whose "records" array holds kRecords structs, each with scalars, a string,
// a nested struct, a byte payload as a view array, counters as a copy array and a plain
// array of small structs.
const Message& big_message() {
    static const Message m = [] {
        static const char* const kNames[] = {"index", "id",      "rate",     "enabled", "label",
                                             "mask",  "payload", "counters", "steps",   nullptr};
        Message msg;
        msg.set_request_name("Bench.Load");
        Tm_catalog<std::string>* catalog = msg.get_send_member_string(Message::TMG_SEND);
        auto* records = new Tm_array;
        records->reserve(kRecords);
        for (int r = 0; r < kRecords; ++r) {
            auto* rec = new Tm_prenamed_struct;
            rec->clear(kNames);
            rec->add_member(0, static_cast<unsigned int>(r), catalog);
            rec->add_member(1, static_cast<long>(r) * 0x100000001L, catalog);
            rec->add_member(2, r * 0.25, catalog);
            rec->add_member(3, r % 2 == 0, catalog);
            rec->add_member(4, "record label number " + std::to_string(r), catalog);
            auto* mask = new Tm_struct;
            mask->add_member("offset", static_cast<unsigned short>(r));
            mask->add_member("width", static_cast<unsigned char>(8));
            rec->add_member_and_own(5, mask, catalog);
            rec->add_member_and_own(6, make_scalar_array(source().payloads[static_cast<size_t>(r)], false),
                                    catalog);
            rec->add_member_and_own(7, make_scalar_array(source().counters[static_cast<size_t>(r)], true),
                                    catalog);
            auto* steps = new Tm_array;
            steps->reserve(8);
            for (int i = 0; i < 8; ++i) {
                auto* step = new Tm_struct;
                step->add_member("at", i);
                step->add_member("name", std::string("step"));
                steps->add_member_and_own(step);
            }
            rec->add_member_and_own(8, steps, catalog);
            records->add_member_and_own(rec);
        }
        msg.add_member_and_own(Message::TMG_SEND, "records", records);
        msg.create_send_member_string_meta();
        return msg;
    }();
    return m;
}

const std::vector<unsigned char>& encoded() {
    static const std::vector<unsigned char> bytes = tmsg::encode(big_message());
    return bytes;
}

double cpu_seconds() {
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

// Bytes per CPU second of memcpy over the encoded size, measured once per run.
double memcpy_rate() {
    static const double rate = [] {
        const std::vector<unsigned char>& src = encoded();
        std::vector<unsigned char> dst(src.size());
        constexpr int kCopies = 2000;
        const double t0 = cpu_seconds();
        for (int i = 0; i < kCopies; ++i) {
            std::memcpy(dst.data(), src.data(), src.size());
            benchmark::ClobberMemory();
        }
        return static_cast<double>(src.size()) * kCopies / (cpu_seconds() - t0);
    }();
    return rate;
}

template <class Body>
void run_codec(benchmark::State& state, Body&& body) {
    const double baseline = memcpy_rate();
    const auto size = static_cast<int64_t>(encoded().size());
    const double t0 = cpu_seconds();
    for (auto _ : state) body();
    const double seconds = cpu_seconds() - t0;
    state.SetBytesProcessed(state.iterations() * size);
    state.counters["vs_memcpy"] = static_cast<double>(state.iterations() * size) / seconds / baseline;
    state.counters["message_bytes"] = static_cast<double>(size);
}

void BM_Memcpy(benchmark::State& state) {
    const std::vector<unsigned char>& src = encoded();
    std::vector<unsigned char> dst(src.size());
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), src.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(src.size()));
}

void BM_Encode(benchmark::State& state) {
    const Message& m = big_message();
    std::vector<unsigned char> out;
    run_codec(state, [&] {
        out.clear();
        tmsg::encode(m, out);
        benchmark::DoNotOptimize(out.data());
    });
}

void BM_Decode(benchmark::State& state) {
    const std::vector<unsigned char>& bytes = encoded();
    Message m;
    run_codec(state, [&] {
        tmsg::decode(bytes, m);
        benchmark::DoNotOptimize(&m);
    });
}

BENCHMARK(BM_Memcpy);
BENCHMARK(BM_Encode);
BENCHMARK(BM_Decode);

}  // namespace
