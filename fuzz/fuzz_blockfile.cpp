// libFuzzer target: the traffic layer's JSON block reader, from bytes to a validated block
// whose modifiers are placed and make two frames, and then its shaped frames (lengths, fill,
// signature, checksums, FCS) from two starts. The reader refuses with InputError, the library
// with BuildError, the placement, the plan and the shaper with InputError; nothing else.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "traffic/BlockFile.h"
#include "traffic/BlockModifiers.h"
#include "traffic/FrameShaper.h"
#include "traffic/JsonRecord.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace vrm::traffic;
    BlockInput in;
    try {
        in = parse_block(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const InputError&) {
        return 0;
    }
    std::unique_ptr<BlockModifiers> mods;
    try {
        mods = std::make_unique<BlockModifiers>(in);
    } catch (const BuildError&) {
        return 0;
    }
    if (!mods->Valid()) return 0;
    try {
        mods->PlaceFields(in);
    } catch (const InputError&) {
        return 0;
    }
    std::vector<uint8_t> frame = in.frame;
    mods->Modify(frame);
    mods->Next();
    frame = in.frame;
    mods->Modify(frame);
    (void)mods->ToRpc(in.block);

    std::unique_ptr<FrameShaper> shaper;
    try {
        ShapeOptions options;
        options.fcs = size % 2 == 1;
        shaper = std::make_unique<FrameShaper>(in, mods->MakePlan(in), *mods, options);
    } catch (const InputError&) {
        return 0;
    }
    const std::size_t stride = shaper->MaxLength();
    std::vector<unsigned char> out(4 * stride);
    std::uint32_t lengths[4];
    for (const std::uint64_t first : {std::uint64_t{0}, std::uint64_t{size} * 0x9E3779B9u}) {
        shaper->Shape(first, 4, out.data(), stride, lengths);
        for (const std::uint32_t l : lengths) {
            if (l > stride) __builtin_trap();
        }
    }
    return 0;
}
