// Frames on a wire: a frame source's frames sent on a network interface at their times (or as
// fast as the interface takes them), with counts the kernel confirms.
//
// Frames are made in batches straight into the sender's own buffers (StampSlots) and handed to
// the kernel a batch at a time: through an AF_XDP socket (its UMEM frames, no XDP program
// loaded), or sendmmsg on a packet socket that bypasses the queueing discipline. A frame
// counts as sent once the kernel confirms it (an AF_XDP completion of a frame the interface did
// not drop; sendmmsg's count); what it refuses or drops is offered again (a retry), so count
// frames leave exactly.
//
// Pacing: frame k is due at start + times[k] (the source's schedule, or k / rate). The sender
// sleeps until shortly before a frame is due, then spins; frames already due go together, at
// most maxBurst at once. When it is behind by maxBurst frames' worth of time or more (the
// process was held up), it moves the schedule on to the present (a stall) and goes on from
// there: the rate resumes instead of bursting to catch up.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

#include "traffic/FrameSource.h"

namespace vrm::traffic {

// Why sending could not start or go on.
class SendError : public std::runtime_error {
  public:
    enum class Kind {
        NoInterface,  // no interface of that name
        Down,         // the interface is down or has no carrier
        Permission,   // the process lacks a capability (named in the text)
        TooLong,      // a frame is longer than the interface takes
        Vanished,     // the interface went away or down while sending
        System,       // any other failure of the system
    };
    SendError(Kind kind, const std::string& text) : std::runtime_error(text), m_kind(kind) {}
    Kind kind() const { return m_kind; }

  private:
    Kind m_kind;
};

// An interface's own counters (from /sys/class/net/IF/statistics).
struct InterfaceCounters {
    std::uint64_t txPackets = 0, txBytes = 0, txDropped = 0;
    std::uint64_t rxPackets = 0, rxBytes = 0;
};
// Throws SendError(NoInterface) when there is no such interface.
InterfaceCounters read_interface_counters(const std::string& interface);

struct SendCounts {
    std::uint64_t frames = 0;   // confirmed by the kernel
    std::uint64_t bytes = 0;    // of those frames (without the frame check sequence)
    std::uint64_t retries = 0;  // calls the kernel refused or took in part (ENOBUFS, EAGAIN)
    std::uint64_t stalls = 0;   // times the schedule was moved on after falling behind
    double seconds = 0;         // since the first frame was due
    // Frames per second between the first frame handed over and the last (0 below 2 frames).
    double meanRate = 0;
    std::uint64_t longestBurst = 0;  // frames handed over at once because they were all due, at most
    // Lateness of frames behind their times, nanoseconds (paced sending only).
    std::uint64_t lateP50 = 0, lateP99 = 0, lateMax = 0;
    InterfaceCounters before, after;  // the interface's counters at the start and now
    std::string sender;               // how the frames were sent ("xdp (copy)", "packet (sendmmsg, qdisc bypass)")
};

struct SendOptions {
    std::string interface;
    std::uint64_t count = ~std::uint64_t{0};       // at most this many frames
    std::uint64_t durationNs = ~std::uint64_t{0};  // stop before a frame due this late
    // When the source's time 0 is, on the system clock (CLOCK_REALTIME, ns): the time its
    // signatures were made with (ShapeOptions::signatureEpoch). 0: 100 µs after the call.
    std::uint64_t startRealtimeNs = 0;
    // Frames per second instead of the source's times; 0 keeps the source's times.
    double rate = 0;
    // Send as fast as the interface takes the frames (no times at all).
    bool topSpeed = false;
    // How frames go: Auto takes AF_XDP where it opens, else the packet socket.
    enum class Tx { Auto, Xdp, Packet };
    Tx tx = Tx::Auto;
    std::uint32_t maxBurst = 256;  // frames at once when behind, at most
    bool force = false;            // send on an interface that is down or has no carrier
    // Called about once a second with the counts so far, and with the last counts before a
    // SendError is thrown.
    std::function<void(const SendCounts&)> progress;
    // Stops the sending at the next batch when set (the tool sets it on SIGINT).
    const std::atomic<bool>* stop = nullptr;
};

// Sends the source's frames 0 .. count - 1; returns the final counts. Throws SendError before
// the first frame when it cannot send at all; after that, a failure first reaches progress with
// the counts so far.
SendCounts send_frames(const FrameSource& source, const SendOptions& options);

}  // namespace vrm::traffic
