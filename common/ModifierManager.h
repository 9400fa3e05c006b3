#ifndef VRM_COMMON_MODIFIERMANAGER_H
#define VRM_COMMON_MODIFIERMANAGER_H

#include <vector>

namespace vrm {
namespace common {

class ModifierGroup;

// A plain list of modifier groups; it owns none of them.
class ModifierManager {
  public:
    ModifierManager();
    virtual ~ModifierManager();

    // Appends the group; false when it is already listed.
    bool AddModifierGroup(ModifierGroup& group);
    // Removes every occurrence, keeping the order of the others.
    void RemoveModifierGroup(ModifierGroup& group);

    const std::vector<ModifierGroup*>& GetModifierGroups() const { return m_groups; }

  private:
    std::vector<ModifierGroup*> m_groups;  // not owned
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_MODIFIERMANAGER_H
