#ifndef VRM_COMMON_RANGEMODIFIERIMPLFACTORY_H
#define VRM_COMMON_RANGEMODIFIERIMPLFACTORY_H

#include <map>
#include <memory>

#include "common/RangeModifierImpl.h"

namespace vrm {
namespace common {

class RangeModifier;

// Process-wide registry of range engine prototypes, one per value width in bytes (1..16).
// Built on first use (thread-safe) and destroyed at process exit; read-only afterwards.
class RangeModifierImplFactory {
  public:
    static RangeModifierImplFactory& Instance();

    RangeModifierImplFactory(const RangeModifierImplFactory&) = delete;
    RangeModifierImplFactory& operator=(const RangeModifierImplFactory&) = delete;

    // A new engine for the width of `modifier`'s initial value, or an empty pointer when no
    // prototype has that width (0 or above 16 bytes).
    std::unique_ptr<RangeModifierImpl> Create(RangeModifier& modifier) const;

    // Registers a prototype of type T under key N; an existing key keeps its prototype.
    template <unsigned int N, class T>
    void CreateProto() {
        m_protos.emplace(N, std::unique_ptr<RangeModifierImpl>(new T()));
    }

    // Destroys every prototype.
    void freeProtoTypes();

  private:
    RangeModifierImplFactory();
    ~RangeModifierImplFactory();

    std::map<unsigned int, std::unique_ptr<RangeModifierImpl>> m_protos;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_RANGEMODIFIERIMPLFACTORY_H
