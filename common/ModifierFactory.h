#ifndef VRM_COMMON_MODIFIERFACTORY_H
#define VRM_COMMON_MODIFIERFACTORY_H

#include <memory>

#include "common/Modifier.h"
#include "common/ModifierGroup.h"
#include "common/RootModifier.h"
#include "interfaces/generator_3_bll_records.h"

namespace vrm {
namespace common {

enum ModifierType { RANGE_MODIFIER = 0, TABLE_MODIFIER = 1 };

// Creates modifiers, groups and roots. The functions that take an owner replace (and so
// destroy) whatever it held before.
class ModifierFactory {
  public:
    // A default range modifier for RANGE_MODIFIER, a default table modifier for
    // TABLE_MODIFIER; any other value leaves `owner` untouched.
    static void CreateModifier(ModifierType type, std::unique_ptr<Modifier>& owner);
    // A range modifier built from the descriptor.
    static std::unique_ptr<Modifier> CreateModifier(const Generator_3_bll::rangeModifier_s& record);
    // A table modifier built from the descriptor; throws std::invalid_argument for an empty
    // list.
    static std::unique_ptr<Modifier> CreateModifier(const Generator_3_bll::tableModifier_s& record);
    static void CreateModifierGroup(std::unique_ptr<ModifierGroup>& owner);
    // A root with child stutter count 0.
    static void CreateRootModifier(bool isStream, std::unique_ptr<Modifier>& owner);
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_MODIFIERFACTORY_H
