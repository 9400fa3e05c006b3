// Generator_3: the records and enumerations of the traffic generator module — modifier
// descriptors, stream blocks, generator and stream configuration, and the records of its
// methods and notifications. Each record is described once; the converters, names tables
// and equality come from the shared engine.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "binding/Describe.h"
#include "binding/RecordApi.h"
#include "platform/tm_enum_map.h"

namespace Generator_3_bll {

// --- field modifiers ----------------------------------------------------------------------

enum class configModMode_t : int32_t {
    INCREMENT = 0,
    DECREMENT = 1,
    RANDOM = 2,
    SHUFFLE = 3,
};
extern const tm_enum_map em_configModMode_t[];

// Reference point of a stream-level modifier's offset.
enum class offsetReference_t : int32_t {
    START_OF_FRAME = 0,
    IPV4 = 1,
    IPV6 = 2,
    TCP = 3,
    UDP = 4,
};
extern const tm_enum_map em_offsetReference_t[];

// A modifier value of up to 16 bytes, most significant byte first. A longer value is left
// out of the outgoing struct.
struct modifierData_s {
    std::vector<uint8_t> data;
};
constexpr auto describe(const modifierData_s*) {
    using R = modifierData_s;
    using namespace binding;
    return record<R>(bounded<16>("data", &R::data));
}
VRM_RECORD_API(modifierData)

struct rangeModifier_s {
    uint32_t modIndex = 0;
    uint16_t offset = 0;
    std::string offsetReference;  // free text, not an enum
    modifierData_s initialValue;
    modifierData_s stepValue;
    uint32_t recycleCount = 0;
    uint32_t stutterCount = 0;
    modifierData_s mask;
    configModMode_t mode = configModMode_t::INCREMENT;
    bool useStream = false;
};
constexpr auto describe(const rangeModifier_s*) {
    using R = rangeModifier_s;
    using namespace binding;
    return record<R>(field("modIndex", &R::modIndex), field("offset", &R::offset),
                     field("offsetReference", &R::offsetReference), field("initialValue", &R::initialValue),
                     field("stepValue", &R::stepValue), field("recycleCount", &R::recycleCount),
                     field("stutterCount", &R::stutterCount), field("mask", &R::mask),
                     enum_string("mode", &R::mode, em_configModMode_t), field("useStream", &R::useStream));
}
VRM_RECORD_API(rangeModifier)

struct tableModifier_s {
    uint32_t modIndex = 0;
    uint16_t offset = 0;
    std::string offsetReference;
    std::vector<modifierData_s> data;
    uint32_t stutterCount = 0;
    bool useStream = false;
};
constexpr auto describe(const tableModifier_s*) {
    using R = tableModifier_s;
    using namespace binding;
    return record<R>(field("modIndex", &R::modIndex), field("offset", &R::offset),
                     field("offsetReference", &R::offsetReference), field("data", &R::data),
                     field("stutterCount", &R::stutterCount), field("useStream", &R::useStream));
}
VRM_RECORD_API(tableModifier)

// A parent modifier and its children, by modIndex.
struct modLinkDesc_s {
    uint32_t modIndex = 0;
    std::vector<uint32_t> childModIndex;
};
constexpr auto describe(const modLinkDesc_s*) {
    using R = modLinkDesc_s;
    using namespace binding;
    return record<R>(field("modIndex", &R::modIndex), field("childModIndex", &R::childModIndex));
}
VRM_RECORD_API(modLinkDesc)

// Per-frame field overrides of a block.
struct frameDataModifier_s {
    std::string field;
    std::string value;
};
constexpr auto describe(const frameDataModifier_s*) {
    using R = frameDataModifier_s;
    using namespace binding;
    return record<R>(binding::field("field", &R::field), binding::field("value", &R::value));
}
VRM_RECORD_API(frameDataModifier)

struct frameIndexModifier_s {
    uint32_t index = 0;
    std::vector<frameDataModifier_s> frameMods;
};
constexpr auto describe(const frameIndexModifier_s*) {
    using R = frameIndexModifier_s;
    using namespace binding;
    return record<R>(field("index", &R::index), field("frameMods", &R::frameMods));
}
VRM_RECORD_API(frameIndexModifier)

struct frameDataModArray_s {
    uint32_t blockId = 0;
    std::vector<frameIndexModifier_s> indexMods;
};
constexpr auto describe(const frameDataModArray_s*) {
    using R = frameDataModArray_s;
    using namespace binding;
    return record<R>(field("blockId", &R::blockId), field("indexMods", &R::indexMods));
}
VRM_RECORD_API(frameDataModArray)

}  // namespace Generator_3_bll
