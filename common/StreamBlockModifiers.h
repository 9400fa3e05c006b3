#ifndef VRM_COMMON_STREAMBLOCKMODIFIERS_H
#define VRM_COMMON_STREAMBLOCKMODIFIERS_H

#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common/FramePlan.h"
#include "common/Modifier.h"

namespace vrm {
namespace common {

// All the modifiers of one stream block, built, linked and driven together.
//
// Typical use:
//
//     StreamBlockModifiers mods(block);          // build and link; never throws for bad links
//     std::ostringstream errors;
//     if (!mods.Validate(&errors)) { report errors.str(); }
//     mods.SetFieldParams(modIndex, absoluteBitOffset, bitLength);   // per modifier, or
//     mods.SetFieldParamsFromFrameStart(frameLength);                // all, offsets from byte 0
//     mods.Reset();
//     for (each frame) { copy the template into frame; mods.ModifyBytes(frame); mods.Next(); }
//     mods.ToRpc(block);                         // descriptors back into the block
//
// Building: one modifier per entry of the block's rangeModifiers and tableModifiers (the
// descriptors' own constructors may throw, e.g. std::invalid_argument for a table with an
// empty list). The links of modLinks (parent modIndex -> child modIndex list) are made in
// record order. A link that cannot be made is not an exception: it is remembered and
// reported by Validate, one line each:
//   - "Modifier link from modIndex P refers to an unknown modIndex."   (unknown parent)
//   - "Modifier link from modIndex P to modIndex C refers to an unknown modIndex."
//   - "Modifier link from modIndex P to modIndex C links a modifier to itself."
//   - "Modifier link from modIndex P to modIndex C would make a cycle."
//   - "Modifier link from modIndex P to modIndex C is listed twice."
//   - "Modifier link from modIndex P to modIndex C joins stream and non-stream modifiers."
// Two modifiers sharing one modIndex are reported as "Modifier modIndex N is used by more
// than one modifier."; links then use the first of them in modIndex order.
// A modifier may have several parents: the engine keeps a list of parents and each parent
// repeats its values for the whole cycle of its children, so this is accepted.
//
// The root: every modifier without a parent is hung under one root modifier. The root is a
// stream root when every modifier of the block is a stream modifier (or there is none) and a
// non-stream root otherwise; a top modifier whose stream flag differs from the root's cannot
// be linked under it and is reported as "Modifier <name> (modIndex N) cannot be hung under
// the root: stream and non-stream modifiers are mixed at the top."
class StreamBlockModifiers {
  public:
    explicit StreamBlockModifiers(const Generator_3_bll::streamBlock_s& block);
    ~StreamBlockModifiers();

    StreamBlockModifiers(const StreamBlockModifiers&) = delete;
    StreamBlockModifiers& operator=(const StreamBlockModifiers&) = delete;

    // Writes one line per link problem found while building, then runs each modifier's
    // Update (its validation; on success a range modifier's value engine is rebuilt from the
    // validated descriptor, e.g. after a recycle count of 0 was raised to 1, and a table
    // modifier is reset) in modIndex order, all of them, each writing its own failure line.
    // Finally the chain's repeat counts are recomputed. Returns true when nothing failed.
    // Never throws; with a null stream it reports through its result only.
    bool Validate(std::ostringstream* errors);

    // Number of modifiers (the root not counted).
    std::size_t Size() const { return m_byIndex.size(); }
    // The modifier at `position` in ascending modIndex order (ties in record order, range
    // modifiers before table modifiers). Throws std::out_of_range past the end.
    Modifier& At(std::size_t position) const;
    // The modifier with this modIndex, or null.
    Modifier* Find(unsigned int modIndex) const;
    // The root above the top modifiers; its effective recycle count is the length of the
    // block's whole modifier cycle.
    Modifier& Root() const { return *m_root; }

    // Places the modifier with this modIndex on a field of the frame. Throws
    // std::invalid_argument for an unknown modIndex, and what the field packer throws.
    void SetFieldParams(unsigned int modIndex, unsigned int absoluteBitOffset, unsigned int bitLength);
    // Places every modifier with its offset counted from the frame's first byte: the field
    // is the whole frame of `frameLengthInBytes` bytes. Throws what the field packer throws
    // (e.g. std::out_of_range for a modifier beyond the frame).
    void SetFieldParamsFromFrameStart(unsigned int frameLengthInBytes);

    // Every modifier back to frame 0.
    void Reset();
    // Every modifier one frame further.
    void Next();
    // Packs every modifier's current value into `frame` (replacing its bits, or toggling
    // them when `xorMode` is true), in modIndex order.
    void ModifyBytes(std::vector<unsigned char>& frame, bool xorMode = false);
    // Packs every modifier's value of frame `index` into `frame`.
    void ModifyBytesAtIndex(std::vector<unsigned char>& frame, unsigned int index);

    // The block's frames compiled for bulk generation from `frameTemplate` (see FramePlan):
    // call it after Validate and once every modifier is placed. Throws what the per-frame
    // path would throw on the first frame (e.g. std::out_of_range for a window beyond the
    // template, std::logic_error for a modifier that was never placed).
    FramePlan MakeFramePlan(const std::vector<unsigned char>& frameTemplate) const;

    // Replaces the block's rangeModifiers and tableModifiers by the modifiers' descriptors
    // as they now stand, in the order they were read; other members are left alone.
    void ToRpc(Generator_3_bll::streamBlock_s& block) const;

  private:
    void Link(const Generator_3_bll::streamBlock_s& block);
    void RecomputeRepeatCounts();
    // Position in m_owned (the root: m_owned.size()), or -1 for a modifier not owned here.
    std::size_t PositionOf(const Modifier* m) const;
    // Strongly connected components of n nodes and the given links: one id per node.
    static std::vector<std::size_t> Components(std::size_t n, std::vector<std::pair<std::size_t, std::size_t>> links);
    bool Reaches(std::size_t from, std::size_t to, const std::vector<std::size_t>& component,
                 std::vector<std::size_t>& stamp, std::size_t walk) const;

    std::vector<std::unique_ptr<Modifier>> m_owned;  // record order: range, then table
    std::vector<Modifier*> m_byIndex;                // ascending modIndex
    std::vector<unsigned int> m_indexes;             // their modIndex values
    std::unique_ptr<Modifier> m_root;
    std::vector<std::string> m_linkProblems;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_STREAMBLOCKMODIFIERS_H
