#ifndef VRM_COMMON_RANGEMODIFIER_H
#define VRM_COMMON_RANGEMODIFIER_H

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "common/Modifier.h"
#include "interfaces/generator_3_bll_records.h"

namespace vrm {
namespace common {

class RangeModifierImpl;
struct RangeSequence;

// A modifier that makes a frame field count through a range: from an initial value by a step
// under a mask, in one of four modes (INCREMENT, DECREMENT, RANDOM, SHUFFLE), with a recycle
// count (values before the sequence starts over) and a repeat count (frames that keep each
// value). The values are produced by a width-specific engine made by
// RangeModifierImplFactory; this class holds the descriptor, validates it, narrows it for
// the four-byte hardware counter path and writes it back into a stream block.
//
// Values in the descriptor are byte strings, most significant byte first; initial value,
// step and mask have one common length, the field width (1 to 16 bytes).
class RangeModifier : public Modifier {
  public:
    // An INCREMENT stream modifier with empty values, zero counts and no engine.
    RangeModifier();
    // Copies the descriptor and builds the engine for its width at once (none for widths 0
    // and above 16); the descriptor is not validated here.
    explicit RangeModifier(const Generator_3_bll::rangeModifier_s& record);
    ~RangeModifier() override;

    void SetModIndex(unsigned int index) override;
    unsigned int GetModIndex() const override;
    bool isRange() const override;
    // Checks, in order: equal lengths of initial value, step and mask; a non-empty value; a
    // mode below 4; and, for a non-stream modifier with a total count and a recycle count,
    // that the total count is a multiple of recycle count * (repeat count + 1). The first
    // failure writes its line to `errors` (when not null) and returns false. On success a
    // recycle count of 0 is raised to 1.
    bool Validate(std::ostringstream* errors) override;
    // Validates; on success replaces the engine by a fresh one built from the current
    // descriptor and counts (positioned at frame 0). On failure the old engine stays.
    bool Update(std::ostringstream* errors) override;
    // Appends the descriptor as it stands to the block's range modifiers.
    void ToRpc(Generator_3_bll::streamBlock_s& block) override;
    bool IsStreamModifier() const override;
    void SetEnableStream(bool enable) override;
    void SetStutterCount(unsigned int count) override;
    unsigned int GetStutterCount() const override;
    void SetTotalCount(unsigned int count) override;
    unsigned int GetTotalCount() const override;
    // Frames after which the field's sequence repeats (32-bit, wrapping):
    // (child stutter + 1) * (repeat + 1) * recycle count, or (child stutter + 1) * total
    // count when a total count is set.
    unsigned int GetEffectiveRecycleCount() const override;
    unsigned int GetRecycleCount() const override;
    unsigned int GetChildStutterCount() const override;
    unsigned int GetRelativeOffset() const override;
    std::string GetOffsetReference() const override;
    void SetOffsetReference(const std::string& reference) override;
    unsigned char GetDataSizeInBytes() const override;
    // Reset, Next and the value queries throw std::logic_error when the modifier has no
    // engine (width 0 or above 16) or the engine has no generator (mode outside 0..3).
    void Reset() override;
    void Next() override;
    void UpdateChildStutterCount(unsigned int count) override;
    void GetValue(std::vector<unsigned char>& value) override;
    void GetValueAt(std::vector<unsigned char>& value, unsigned int index) override;

    // The descriptor with the initial value, step and mask as the field packer lays them
    // into the frame (the packer's window bytes). Throws what the packer throws, e.g. when
    // the field parameters were never set.
    void GetAdjustedModifier(Generator_3_bll::rangeModifier_s& out);

    // Narrows a stream modifier wider than four bytes to the at most four bytes that hold
    // the non-zero part of its step, moving the offset so that the value still lands on the
    // same frame bytes, then rebuilds the engine and the field packer (from the packer's
    // original field parameters, so these must have been set). Returns true without change
    // for non-stream modifiers and values shorter than five bytes; false without change when
    // the step's non-zero bytes span more than four bytes or the initial value or mask is
    // shorter than the step; false when the narrowed descriptor fails validation (the
    // narrowed descriptor then stays).
    bool MakeVfdCompatible();

    // Index (from the most significant byte) of the last byte of the four-byte span a
    // hardware counter would step.
    unsigned char GetStepByteIndex() const;
    // Index of the first non-zero mask byte within the span searched for this modifier, or
    // one past the span's end.
    unsigned char GetMsbMaskByteIndex() const;
    // Index of the lowest-order / highest-order non-zero step byte; 0 when there is none.
    unsigned char GetLSStepByteIndex() const;
    unsigned char GetMSStepByteIndex() const;

    static unsigned char GetStepByteIndex(const Generator_3_bll::rangeModifier_s& record);
    static unsigned char GetMsbMaskByteIndex(const Generator_3_bll::rangeModifier_s& record);

    // The descriptor as it stands.
    const Generator_3_bll::rangeModifier_s& GetRecord() const { return m_rangeModifier; }
    // True when an engine with a value generator is in place.
    bool HasGenerator() const;
    // The sequence the engine produces from Reset(); false without a value generator.
    bool DescribeSequence(RangeSequence& out) const;

  protected:
    bool GetRangeFieldInfo(RangeFieldInfo& info) const override;

  private:
    RangeModifierImpl& Engine(const char* operation) const;

    Generator_3_bll::rangeModifier_s m_rangeModifier;
    unsigned int m_childStutterCount = 0;
    unsigned int m_totalCount = 0;
    std::unique_ptr<RangeModifierImpl> m_impl;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_RANGEMODIFIER_H
