#include "common/ModifierFactory.h"

#include "common/RangeModifier.h"
#include "common/TableModifier.h"

namespace vrm {
namespace common {

void ModifierFactory::CreateModifier(ModifierType type, std::unique_ptr<Modifier>& owner) {
    switch (static_cast<int>(type)) {
        case RANGE_MODIFIER:
            owner.reset(new RangeModifier());
            break;
        case TABLE_MODIFIER:
            owner.reset(new TableModifier());
            break;
        default:
            break;
    }
}

std::unique_ptr<Modifier> ModifierFactory::CreateModifier(const Generator_3_bll::rangeModifier_s& record) {
    return std::unique_ptr<Modifier>(new RangeModifier(record));
}

std::unique_ptr<Modifier> ModifierFactory::CreateModifier(const Generator_3_bll::tableModifier_s& record) {
    return std::unique_ptr<Modifier>(new TableModifier(record));
}

void ModifierFactory::CreateModifierGroup(std::unique_ptr<ModifierGroup>& owner) {
    owner.reset(new ModifierGroup());
}

void ModifierFactory::CreateRootModifier(bool isStream, std::unique_ptr<Modifier>& owner) {
    owner.reset(new RootModifier(isStream));
}

}  // namespace common
}  // namespace vrm
