#include "common/RangeModifierImplFactory.h"

#include "common/RangeModifier.h"

namespace vrm {
namespace common {

RangeModifierImplFactory& RangeModifierImplFactory::Instance() {
    static RangeModifierImplFactory instance;
    return instance;
}

RangeModifierImplFactory::RangeModifierImplFactory() {
    CreateProto<1, ConcreteRangeModifierImpl<1>>();
    CreateProto<2, ConcreteRangeModifierImpl<2>>();
    CreateProto<3, ConcreteRangeModifierImpl<3>>();
    CreateProto<4, ConcreteRangeModifierImpl<4>>();
    CreateProto<5, ConcreteRangeModifierImpl<5>>();
    CreateProto<6, ConcreteRangeModifierImpl<6>>();
    CreateProto<7, ConcreteRangeModifierImpl<7>>();
    CreateProto<8, ConcreteRangeModifierImpl<8>>();
    CreateProto<9, ConcreteRangeModifierImpl<9>>();
    CreateProto<10, ConcreteRangeModifierImpl<10>>();
    CreateProto<11, ConcreteRangeModifierImpl<11>>();
    CreateProto<12, ConcreteRangeModifierImpl<12>>();
    CreateProto<13, ConcreteRangeModifierImpl<13>>();
    CreateProto<14, ConcreteRangeModifierImpl<14>>();
    CreateProto<15, ConcreteRangeModifierImpl<15>>();
    CreateProto<16, ConcreteRangeModifierImpl<16>>();
}

RangeModifierImplFactory::~RangeModifierImplFactory() { freeProtoTypes(); }

void RangeModifierImplFactory::freeProtoTypes() { m_protos.clear(); }

std::unique_ptr<RangeModifierImpl> RangeModifierImplFactory::Create(RangeModifier& modifier) const {
    const auto it = m_protos.find(static_cast<unsigned int>(modifier.GetRecord().initialValue.data.size()));
    if (it == m_protos.end()) return nullptr;
    return it->second->Clone(modifier);
}

}  // namespace common
}  // namespace vrm
