#ifndef VRM_COMMON_ROOTMODIFIER_H
#define VRM_COMMON_ROOTMODIFIER_H

#include <sstream>
#include <string>
#include <vector>

#include "common/Modifier.h"

namespace vrm {
namespace common {

// The top of a carry chain. It has no value of its own; made the parent of a stream block's
// top modifiers, its effective recycle count becomes the length of the whole cycle below it
// (the least common multiple of theirs).
class RootModifier : public Modifier {
  public:
    explicit RootModifier(bool isStream);
    ~RootModifier() override;

    // Always valid; writes nothing.
    bool Validate(std::ostringstream* errors) override;
    // Writes nothing.
    void ToRpc(Generator_3_bll::streamBlock_s& block) override;
    bool IsStreamModifier() const override;
    void SetEnableStream(bool enable) override;
    void SetStutterCount(unsigned int count) override;
    unsigned int GetStutterCount() const override;
    void SetTotalCount(unsigned int count) override;
    unsigned int GetTotalCount() const override;
    // Child stutter count + 1 (1 without children).
    unsigned int GetEffectiveRecycleCount() const override;
    unsigned int GetChildStutterCount() const override;
    unsigned int GetRelativeOffset() const override;
    std::string GetOffsetReference() const override;
    unsigned char GetDataSizeInBytes() const override;
    // Reset, Next and the value queries do nothing (the value vector is left untouched).
    void Reset() override;
    void Next() override;
    void UpdateChildStutterCount(unsigned int count) override;
    void GetValue(std::vector<unsigned char>& value) override;
    void GetValueAt(std::vector<unsigned char>& value, unsigned int index) override;

  private:
    unsigned int m_childStutterCount = 0;
    bool m_isStream;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_ROOTMODIFIER_H
