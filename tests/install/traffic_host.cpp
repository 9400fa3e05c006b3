// A host on the installed traffic library only: reads a block file, makes its frames as the
// block describes them (checksums recomputed by default) and writes them to a pcap file.
//   traffic_host BLOCK.json OUT.pcap COUNT
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <vector>

#include "traffic/BlockFile.h"
#include "traffic/BlockModifiers.h"
#include "traffic/Capture.h"
#include "traffic/FrameShaper.h"

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s BLOCK.json OUT.pcap COUNT\n", argv[0]);
        return 2;
    }
    try {
        const vrm::traffic::BlockInput in = vrm::traffic::load_block(argv[1]);
        vrm::traffic::BlockModifiers mods(in);
        if (!mods.Valid()) {
            std::fprintf(stderr, "invalid block:\n%s", mods.ValidationText().c_str());
            return 1;
        }
        mods.PlaceFields(in);
        const vrm::traffic::FrameShaper frames(in, mods.MakePlan(in), mods);
        // One frame alone, as a host building frames one by one would.
        std::vector<unsigned char> one(frames.MaxLength());
        const std::size_t length = frames.Frame(0, one.data());
        const auto s = vrm::traffic::write_capture(argv[2], std::strtoull(argv[3], nullptr, 10), frames);
        std::printf("%llu frames (%s, checksums %s, frame 0 of %zu bytes) -> %s\n",
                    static_cast<unsigned long long>(s.frames), frames.LengthText().c_str(),
                    frames.Checksums().Names().c_str(), length, argv[2]);
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
