#ifndef VRM_COMMON_FRAMEPLAN_H
#define VRM_COMMON_FRAMEPLAN_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vrm {
namespace common {

class StreamBlockModifiers;

// The frames of a stream block compiled for bulk generation: a frame template and, for every
// modifier of the block, its window in the frame and the sequence of its values as plain
// numbers. Made by StreamBlockModifiers::MakeFramePlan once the block is validated and every
// modifier placed; afterwards it is independent of the modifiers (they may change or go away).
//
// Frame i of the plan holds exactly the bytes the per-frame path gives for frame i: Reset(),
// i calls of Next(), then the template with ModifyBytes applied. Stamping starts anywhere
// without walking from frame 0 (the position in each modifier's sequence is computed, a
// random register jumps ahead in O(log i)), computes each value once for the run of frames
// that share it, and writes the template and each window with word-sized copies.
//
// A plan is an immutable value: Stamp is const, allocates nothing, makes no virtual call and
// may run on one plan from several threads at once.
class FramePlan {
  public:
    // An empty plan: frames of length 0.
    FramePlan();
    ~FramePlan();
    FramePlan(const FramePlan& other);
    FramePlan(FramePlan&& other) noexcept;
    FramePlan& operator=(const FramePlan& other);
    FramePlan& operator=(FramePlan&& other) noexcept;

    // Writes frames first .. first + count - 1: frame first + k fills
    // out[k * stride, k * stride + FrameLength()); bytes between frames are not touched.
    // Throws std::invalid_argument when count > 1 and stride < FrameLength().
    void Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride) const;

    std::size_t FrameLength() const { return m_length; }
    // Frames after which the block's frames repeat (a period of every modifier's sequence;
    // not always the shortest one). 0 when that period does not fit in 64 bits.
    std::uint64_t CycleLength() const { return m_cycle; }
    // Frames after which the values of modifier i (modIndex order) repeat. Throws
    // std::out_of_range for a modifier the plan does not have.
    std::uint64_t ModifierCycle(std::size_t i) const;

    // Internal: one modifier's compiled sequence and window (defined in the source file).
    struct Track;

  private:
    friend class StreamBlockModifiers;
    // Used by StreamBlockModifiers::MakeFramePlan.
    FramePlan(const StreamBlockModifiers& modifiers, const std::vector<unsigned char>& frameTemplate);

    void StampGroup(std::size_t firstTrack, std::size_t trackCount, bool copyTemplate, std::uint64_t first,
                    std::size_t count, unsigned char* out, std::size_t stride) const;

    std::vector<unsigned char> m_template;  // padded to at least 8 bytes
    std::size_t m_length = 0;               // frame length
    std::vector<Track> m_tracks;            // modIndex order, as the per-frame path packs
    std::vector<std::uint64_t> m_tableWords;  // the window words of every table value
    std::uint64_t m_cycle = 1;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_FRAMEPLAN_H
