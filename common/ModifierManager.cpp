#include "common/ModifierManager.h"

#include <algorithm>

#include "common/ModifierGroup.h"

namespace vrm {
namespace common {

ModifierManager::ModifierManager() = default;
ModifierManager::~ModifierManager() = default;

bool ModifierManager::AddModifierGroup(ModifierGroup& group) {
    if (std::find(m_groups.begin(), m_groups.end(), &group) != m_groups.end()) return false;
    m_groups.push_back(&group);
    return true;
}

void ModifierManager::RemoveModifierGroup(ModifierGroup& group) {
    m_groups.erase(std::remove(m_groups.begin(), m_groups.end(), &group), m_groups.end());
}

}  // namespace common
}  // namespace vrm
