#include "interfaces/generator_3_bll_records.h"

#include "binding/RecordCodec.h"

namespace Generator_3_bll {

const tm_enum_map em_configModMode_t[] = {
    {0, "INCREMENT"}, {1, "DECREMENT"}, {2, "RANDOM"}, {3, "SHUFFLE"}, {0, nullptr},
};
const tm_enum_map em_offsetReference_t[] = {
    {0, "START_OF_FRAME"}, {1, "IPV4"}, {2, "IPV6"}, {3, "TCP"}, {4, "UDP"}, {0, nullptr},
};

VRM_RECORD_IMPL(modifierData)
VRM_RECORD_IMPL(rangeModifier)
VRM_RECORD_IMPL(tableModifier)
VRM_RECORD_IMPL(modLinkDesc)
VRM_RECORD_IMPL(frameDataModifier)
VRM_RECORD_IMPL(frameIndexModifier)
VRM_RECORD_IMPL(frameDataModArray)

}  // namespace Generator_3_bll
