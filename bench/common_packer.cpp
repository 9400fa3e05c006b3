// Packing a 4-byte value into 128-byte frames through the field packer, next to a hand-written
// masked merge of the same bytes measured in the same run.

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "common/FieldPacker.h"
#include "common_compare.h"

namespace {

using vrm::common::FieldPacker;

constexpr unsigned int kFrameSize = 128;

void NextValue(std::vector<unsigned char>& value, unsigned int& counter) {
    ++counter;
    value[0] = static_cast<unsigned char>(counter >> 24);
    value[1] = static_cast<unsigned char>(counter >> 16);
    value[2] = static_cast<unsigned char>(counter >> 8);
    value[3] = static_cast<unsigned char>(counter);
}

// Bytes 60..63, whole bytes.
void HandPackAligned(unsigned char* frame, const unsigned char* v) {
    static const unsigned char mask[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    unsigned char* p = frame + 60;
    for (int i = 0; i < 4; ++i) p[i] = static_cast<unsigned char>((mask[i] & v[i]) | (~mask[i] & p[i]));
}

// Bits 483..514: bytes 60..64, value shifted left by 5 within the window.
void HandPackOdd(unsigned char* frame, const unsigned char* v) {
    static const unsigned char mask[5] = {0x1F, 0xFF, 0xFF, 0xFF, 0xE0};
    const unsigned char w[5] = {
        static_cast<unsigned char>(v[0] >> 3),
        static_cast<unsigned char>((v[0] << 5) | (v[1] >> 3)),
        static_cast<unsigned char>((v[1] << 5) | (v[2] >> 3)),
        static_cast<unsigned char>((v[2] << 5) | (v[3] >> 3)),
        static_cast<unsigned char>(v[3] << 5),
    };
    unsigned char* p = frame + 60;
    for (int i = 0; i < 5; ++i) p[i] = static_cast<unsigned char>((mask[i] & w[i]) | (~mask[i] & p[i]));
}

void RunPack(benchmark::State& state, unsigned int bitOffset,
             void (*hand)(unsigned char*, const unsigned char*)) {
    std::unique_ptr<FieldPacker> packer = FieldPacker::CreateImpl(bitOffset, 32, 0, 4, 0, 0, false, nullptr);
    std::vector<unsigned char> frame(kFrameSize, 0xA5);
    std::vector<unsigned char> handFrame(kFrameSize, 0xA5);
    std::vector<unsigned char> value(4, 0);
    unsigned int counter = 0;
    vrm_bench::CompareWithBaseline(
        state, 10000,
        [&] {
            NextValue(value, counter);
            packer->StuffBytes(frame, value, false);
            benchmark::DoNotOptimize(frame.data());
            benchmark::ClobberMemory();
        },
        10000,
        [&] {
            NextValue(value, counter);
            hand(handFrame.data(), value.data());
            benchmark::DoNotOptimize(handFrame.data());
            benchmark::ClobberMemory();
        });
}

void BM_PackFourBytesAligned(benchmark::State& state) { RunPack(state, 480, HandPackAligned); }
void BM_PackFourBytesOddOffset(benchmark::State& state) { RunPack(state, 483, HandPackOdd); }

BENCHMARK(BM_PackFourBytesAligned)->UseManualTime();
BENCHMARK(BM_PackFourBytesOddOffset)->UseManualTime();

}  // namespace
