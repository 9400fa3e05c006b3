// Frames as they arrive on an interface, with the kernel's receive times, handed to an
// analyzer: a packet socket with a TPACKET_V3 receive ring (blocks of frames the kernel fills
// and hands over whole), frames the host itself sends left out.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

#include "traffic/Analyzer.h"

namespace vrm::traffic {

struct ReceiveCounts {
    std::uint64_t frames = 0;  // handed to the analyzer
    std::uint64_t drops = 0;   // frames the ring had no room for (the kernel's count)
    double seconds = 0;
};

struct ReceiveOptions {
    std::string interface;
    std::uint64_t durationNs = ~std::uint64_t{0};
    const std::atomic<bool>* stop = nullptr;
    // Called once the ring is in place (frames from then on are seen).
    std::function<void()> ready;
};

// Receives until the duration ends or stop is set. Throws SendError (traffic/Send.h) for no
// such interface, no permission (CAP_NET_RAW) or another failure of the system.
ReceiveCounts receive_frames(Analyzer& analyzer, const ReceiveOptions& options);

}  // namespace vrm::traffic
