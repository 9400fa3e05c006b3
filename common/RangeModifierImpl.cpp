#include "common/RangeModifierImpl.h"

namespace vrm {
namespace common {

RangeModifierImpl::~RangeModifierImpl() = default;

// The engines of every width are compiled here, once.
template class ConcreteRangeModifierImpl<1>;
template class ConcreteRangeModifierImpl<2>;
template class ConcreteRangeModifierImpl<3>;
template class ConcreteRangeModifierImpl<4>;
template class ConcreteRangeModifierImpl<5>;
template class ConcreteRangeModifierImpl<6>;
template class ConcreteRangeModifierImpl<7>;
template class ConcreteRangeModifierImpl<8>;
template class ConcreteRangeModifierImpl<9>;
template class ConcreteRangeModifierImpl<10>;
template class ConcreteRangeModifierImpl<11>;
template class ConcreteRangeModifierImpl<12>;
template class ConcreteRangeModifierImpl<13>;
template class ConcreteRangeModifierImpl<14>;
template class ConcreteRangeModifierImpl<15>;
template class ConcreteRangeModifierImpl<16>;

}  // namespace common
}  // namespace vrm
