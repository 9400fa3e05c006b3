#include "common/ModifierGroup.h"

#include <algorithm>

#include "common/Modifier.h"

namespace vrm {
namespace common {

ModifierGroup::ModifierGroup() = default;
ModifierGroup::~ModifierGroup() = default;

bool ModifierGroup::AddModifier(Modifier& modifier) {
    if (std::find(m_modifiers.begin(), m_modifiers.end(), &modifier) != m_modifiers.end()) return false;
    m_modifiers.push_back(&modifier);
    return true;
}

void ModifierGroup::RemoveModifier(Modifier& modifier) {
    const auto it = std::find(m_modifiers.begin(), m_modifiers.end(), &modifier);
    if (it != m_modifiers.end()) m_modifiers.erase(it);
}

bool ModifierGroup::Validate(std::ostringstream* errors) {
    for (Modifier* modifier : m_modifiers) {
        if (!modifier->Validate(errors)) return false;
    }
    return true;
}

}  // namespace common
}  // namespace vrm
