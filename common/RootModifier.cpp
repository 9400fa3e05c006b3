#include "common/RootModifier.h"

namespace vrm {
namespace common {

RootModifier::RootModifier(bool isStream) : m_isStream(isStream) {}
RootModifier::~RootModifier() = default;

bool RootModifier::Validate(std::ostringstream*) { return true; }
void RootModifier::ToRpc(Generator_3_bll::streamBlock_s&) {}
bool RootModifier::IsStreamModifier() const { return m_isStream; }
void RootModifier::SetEnableStream(bool enable) { m_isStream = enable; }
void RootModifier::SetStutterCount(unsigned int) {}
unsigned int RootModifier::GetStutterCount() const { return 0; }
void RootModifier::SetTotalCount(unsigned int) {}
unsigned int RootModifier::GetTotalCount() const { return 0; }
unsigned int RootModifier::GetEffectiveRecycleCount() const { return m_childStutterCount + 1; }
unsigned int RootModifier::GetChildStutterCount() const { return m_childStutterCount; }
unsigned int RootModifier::GetRelativeOffset() const { return 0; }
std::string RootModifier::GetOffsetReference() const { return std::string(); }
unsigned char RootModifier::GetDataSizeInBytes() const { return 0; }
void RootModifier::Reset() {}
void RootModifier::Next() {}
void RootModifier::UpdateChildStutterCount(unsigned int count) { m_childStutterCount = count; }
void RootModifier::GetValue(std::vector<unsigned char>&) {}
void RootModifier::GetValueAt(std::vector<unsigned char>&, unsigned int) {}

}  // namespace common
}  // namespace vrm
