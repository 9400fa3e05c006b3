#ifndef VRM_COMMON_MODIFIERGROUP_H
#define VRM_COMMON_MODIFIERGROUP_H

#include <sstream>
#include <vector>

namespace vrm {
namespace common {

class Modifier;

// A plain list of modifiers; it owns none of them, so they must outlive their listing.
class ModifierGroup {
  public:
    ModifierGroup();
    virtual ~ModifierGroup();

    // Appends the modifier; false when it is already listed.
    bool AddModifier(Modifier& modifier);
    // Removes the first occurrence only, keeping the order of the others.
    void RemoveModifier(Modifier& modifier);
    // Validates each modifier in order and stops at the first failure (false); true when
    // all pass or the group is empty.
    bool Validate(std::ostringstream* errors);

    const std::vector<Modifier*>& GetModifiers() const { return m_modifiers; }

  private:
    std::vector<Modifier*> m_modifiers;  // not owned
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_MODIFIERGROUP_H
