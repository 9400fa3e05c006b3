#ifndef VRM_COMMON_TABLEMODIFIER_H
#define VRM_COMMON_TABLEMODIFIER_H

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "common/Modifier.h"
#include "interfaces/generator_3_bll_records.h"

namespace vrm {
namespace common {

// A modifier that walks an explicit list of values: each value is held for
// (child stutter + 1) * (repeat count + 1) frames, then the next follows, and the list
// wraps. With a total count set, the walk also restarts at the first value after
// total count * (child stutter + 1) frames.
class TableModifier : public Modifier {
  public:
    // A stream modifier with an empty list; Reset, Next and the value queries throw
    // std::logic_error until a list exists.
    TableModifier();
    // Copies the descriptor; throws std::invalid_argument when its list is empty.
    explicit TableModifier(const Generator_3_bll::tableModifier_s& record);
    ~TableModifier() override;

    void SetModIndex(unsigned int index) override;
    unsigned int GetModIndex() const override;
    bool isRange() const override;
    // Checks, in order: a non-empty list; a first value of at most 16 bytes; equal sizes of
    // all values; and, for a non-stream modifier with a total count, that the total count is
    // a multiple of list size * (repeat count + 1). The first failure writes its line to
    // `errors` (when not null) and returns false.
    bool Validate(std::ostringstream* errors) override;
    // Validates; on success recomputes the frames per value and resets to frame 0.
    bool Update(std::ostringstream* errors) override;
    // Appends the descriptor as it stands to the block's table modifiers.
    void ToRpc(Generator_3_bll::streamBlock_s& block) override;
    bool IsStreamModifier() const override;
    void SetEnableStream(bool enable) override;
    void SetStutterCount(unsigned int count) override;
    unsigned int GetStutterCount() const override;
    void SetTotalCount(unsigned int count) override;
    unsigned int GetTotalCount() const override;
    // list size * frames per value, or (child stutter + 1) * total count when a total count
    // is set (32-bit, wrapping).
    unsigned int GetEffectiveRecycleCount() const override;
    // The number of list values.
    unsigned int GetRecycleCount() const override;
    unsigned int GetChildStutterCount() const override;
    unsigned int GetRelativeOffset() const override;
    std::string GetOffsetReference() const override;
    void SetOffsetReference(const std::string& reference) override;
    unsigned char GetDataSizeInBytes() const override;
    void Reset() override;
    void Next() override;
    void UpdateChildStutterCount(unsigned int count) override;
    void GetValue(std::vector<unsigned char>& value) override;
    // The value of frame `index` within the effective recycle period. Throws
    // std::logic_error when the period or the frames per value are 0, std::out_of_range when
    // the position lies past the list.
    void GetValueAt(std::vector<unsigned char>& value, unsigned int index) override;

    // The descriptor with every list value as the field packer lays it into the frame.
    // Throws what the packer throws, e.g. when the field parameters were never set.
    void GetAdjustedModifier(Generator_3_bll::tableModifier_s& out);

    // The descriptor as it stands.
    const Generator_3_bll::tableModifier_s& GetRecord() const { return m_record; }
    // Frames each list value is held: (child stutter + 1) * (repeat count + 1), 32-bit.
    unsigned int GetHoldCount() const { return m_holdCount; }

  private:
    void RequireList(const char* operation) const;

    Generator_3_bll::tableModifier_s m_record;
    unsigned int m_childStutterCount = 0;
    unsigned int m_holdCount = 0;
    unsigned int m_holdRemaining = 0;
    std::size_t m_current = 0;  // index of the current list value
    std::size_t m_valueSize = 0;
    unsigned int m_totalCount = 0;
    unsigned int m_totalRemaining = 0;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_TABLEMODIFIER_H
