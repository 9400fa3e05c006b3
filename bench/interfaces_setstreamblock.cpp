// SetStreamBlock of 1,000 blocks, each with ten range modifiers and its nested settings:
// the whole road (build the request, encode, decode on the far side, read the blocks back)
// and, on the same bytes, encoding and decoding alone. Figures in blocks per second.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "interfaces/generator_3_bll.h"
#include "interfaces/generator_3_bll_methods.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"

namespace {

using namespace Generator_3_bll;

constexpr int kBlocks = 1000;
constexpr int kRangeModifiers = 10;

modifierData_s value_of(uint32_t v) {
    return modifierData_s{{static_cast<uint8_t>(v >> 24), static_cast<uint8_t>(v >> 16),
                           static_cast<uint8_t>(v >> 8), static_cast<uint8_t>(v)}};
}

streamBlock_s make_block(uint32_t id) {
    streamBlock_s b;
    b.name = "block-" + std::to_string(id);
    b.blockID = id;
    b.baseStream.enabled = true;
    b.baseStream.error.offsetReference = errorOffsetRef_t::START_OF_FIRST_IP;
    b.baseStream.error.offset = 14;
    b.baseStream.error.errorFCS = (id % 2) != 0;
    b.baseStream.frame.lengthCfg.mode = genFrmLenMode_t::FIXED;
    b.baseStream.frame.lengthCfg.fixedFrameLength = 128;
    b.baseStream.frame.options.fillType = genFillType_t::CONSTANT;
    b.baseStream.frame.options.fillConstant = 0x55;
    b.baseStream.frame.data = "00:10:94:00:00:02 00:10:94:00:00:01 08 00 45 00 00 6e";
    blockRateModifier_s rate;
    rate.modType = blockRateModType_t::RANGE;
    rate.rangeMod.stepValue = 1000;
    rate.rangeMod.recycleCount = 10;
    rate.listMod.load = {1000, 2000, 3000};
    rate.listMod.loadUnit = {LoadProfile_1_bll::rateUnit_t::FRAMES_PER_SECOND,
                             LoadProfile_1_bll::rateUnit_t::FRAMES_PER_SECOND,
                             LoadProfile_1_bll::rateUnit_t::BITS_PER_SECOND};
    b.rateModifier.push_back(rate);
    modLinkDesc_s link;
    link.modIndex = 0;
    for (uint32_t m = 0; m < kRangeModifiers; ++m) {
        rangeModifier_s r;
        r.modIndex = m;
        r.offset = static_cast<uint16_t>(26 + 4 * m);
        r.offsetReference = "ipv4.sourceAddr";
        r.initialValue = value_of(0xC0A80000u + id);
        r.stepValue = value_of(1);
        r.recycleCount = 16 + m;
        r.stutterCount = 0;
        r.mask = value_of(0xFFFFFFFFu);
        r.mode = m % 2 ? configModMode_t::DECREMENT : configModMode_t::INCREMENT;
        b.rangeModifiers.push_back(r);
        if (m > 0) link.childModIndex.push_back(m);
    }
    b.modLinks.push_back(link);
    pathDescriptor_s path;
    path.srcNiIndex = 1;
    path.dstNiIndex = 2;
    path.pattern = pathPattern_t::BACKBONE;
    path.encapNi.push_back(encapNi_s{3, 1});
    b.pathDescriptors.push_back(path);
    b.startStreamIndex = id * 16;
    b.schedulerGroup = static_cast<uint8_t>(id % 8);
    b.customPfc.customPfcEnabled = true;
    b.customPfc.customPfcPriority = 3;
    b.uitCfg.tsOffset = 42;
    b.uitCfg.tsType = tsType_t::IEEE_1588;
    return b;
}

const std::vector<streamBlock_s>& blocks() {
    static const std::vector<streamBlock_s> all = [] {
        std::vector<streamBlock_s> v;
        v.reserve(kBlocks);
        for (uint32_t i = 0; i < kBlocks; ++i) v.push_back(make_block(i));
        return v;
    }();
    return all;
}

// The far side: reads the request members by the method's description.
void read_request(const Message& far, std::vector<streamBlock_s>& out, bool& returnIndex) {
    const auto& req = methods::SetStreamBlock.request;
    binding::read_members(far.get_group(TMG_RECV), req, binding::indexes_of(req), out, returnIndex);
}

// Build, encode, decode and read back.
void BM_SetStreamBlockRoundTrip(benchmark::State& state) {
    const bool copy = state.range(0) != 0;
    const auto& in = blocks();
    std::vector<unsigned char> bytes;
    std::vector<streamBlock_s> out;
    bool returnIndex = false;
    for (auto _ : state) {
        Message client;
        create_req_SetStreamBlock(&client, in, true, copy);
        bytes.clear();
        tmsg::encode(client, bytes);
        Message far;
        tmsg::decode(bytes, far);
        read_request(far, out, returnIndex);
        benchmark::DoNotOptimize(out.data());
    }
    if (out != in || !returnIndex) state.SkipWithError("blocks did not read back equal");
    state.SetItemsProcessed(state.iterations() * kBlocks);
    state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(BM_SetStreamBlockRoundTrip)->ArgName("copy")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// Building the request alone.
void BM_SetStreamBlockBuild(benchmark::State& state) {
    const auto& in = blocks();
    for (auto _ : state) {
        Message client;
        benchmark::DoNotOptimize(create_req_SetStreamBlock(&client, in, true, false));
    }
    state.SetItemsProcessed(state.iterations() * kBlocks);
}
BENCHMARK(BM_SetStreamBlockBuild)->Unit(benchmark::kMillisecond);

// Encoding the built request alone.
void BM_SetStreamBlockEncode(benchmark::State& state) {
    Message client;
    create_req_SetStreamBlock(&client, blocks(), true, false);
    std::vector<unsigned char> bytes;
    for (auto _ : state) {
        bytes.clear();
        tmsg::encode(client, bytes);
        benchmark::DoNotOptimize(bytes.data());
    }
    state.SetItemsProcessed(state.iterations() * kBlocks);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
}
BENCHMARK(BM_SetStreamBlockEncode)->Unit(benchmark::kMillisecond);

// Decoding the same bytes alone.
void BM_SetStreamBlockDecode(benchmark::State& state) {
    Message client;
    create_req_SetStreamBlock(&client, blocks(), true, false);
    const std::vector<unsigned char> bytes = tmsg::encode(client);
    for (auto _ : state) {
        Message far;
        tmsg::decode(bytes, far);
        benchmark::DoNotOptimize(far.get_member_count(TMG_RECV));
    }
    state.SetItemsProcessed(state.iterations() * kBlocks);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
}
BENCHMARK(BM_SetStreamBlockDecode)->Unit(benchmark::kMillisecond);

// Reading the blocks out of the decoded request alone.
void BM_SetStreamBlockRead(benchmark::State& state) {
    Message client;
    create_req_SetStreamBlock(&client, blocks(), true, false);
    Message far;
    tmsg::decode(tmsg::encode(client), far);
    std::vector<streamBlock_s> out;
    bool returnIndex = false;
    for (auto _ : state) {
        read_request(far, out, returnIndex);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kBlocks);
}
BENCHMARK(BM_SetStreamBlockRead)->Unit(benchmark::kMillisecond);

}  // namespace
