// libFuzzer target: streamgen's JSON block reader, from bytes to a validated block whose
// modifiers are placed and make two frames. The reader refuses with InputError, the library
// with BuildError (through the tool) and the placement with InputError; nothing else.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "traffic/BlockFile.h"
#include "traffic/BlockModifiers.h"
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
    return 0;
}
