// Frames of varying length made in runs from any index: what a capture writer or a sender
// takes. A block's shaped frames are one source; a port's timeline of several blocks is
// another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vrm::traffic {

class FrameSource {
  public:
    virtual ~FrameSource() = default;
    // The room a frame needs in Stamp's output, in bytes: at least the longest frame it writes
    // (a frame check sequence included when the source appends one).
    virtual std::size_t MaxLength() const = 0;
    // Writes frames first .. first + count - 1: frame first + k at out + k * stride
    // (stride >= MaxLength()), its length in lengths[k], its time in nanoseconds since the
    // epoch in times[k] and, when `tags` is not null, where it comes from (an index into
    // TagNames()) in tags[k]. Bytes of a frame's slot past its length are unspecified. Called
    // from several threads at once with disjoint ranges.
    virtual void Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
                       std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags) const = 0;

    // Stamp, except that frame first + k may go to any slot of `out` (slot s at out + s * stride,
    // each of the count slots used once), slots[k] telling which; lengths, times and tags stay
    // in frame order. For consumers that read frames where they lie (a capture writer, a
    // sender's descriptors), so a source that makes its frames out of order (a port's blocks in
    // turn) need not move them into order. This default stamps them in order.
    virtual void StampSlots(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
                            std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags,
                            std::uint32_t* slots) const {
        Stamp(first, count, out, stride, lengths, times, tags);
        for (std::size_t k = 0; k < count; ++k) slots[k] = static_cast<std::uint32_t>(k);
    }

    // The names of where frames come from (a port's blocks), for captures that can carry them
    // (pcapng); empty when the source has none.
    virtual const std::vector<std::string>& TagNames() const {
        static const std::vector<std::string> none;
        return none;
    }
};

}  // namespace vrm::traffic
