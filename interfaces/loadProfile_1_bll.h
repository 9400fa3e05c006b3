// LoadProfile_1: named load profiles on the far side and the binding of stream blocks to them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "binding/Describe.h"
#include "binding/RecordApi.h"
#include "platform/Message.h"
#include "platform/tm_enum_map.h"

namespace LoadProfile_1_bll {

enum class rateUnit_t : int32_t {
    PERCENT_LINE_RATE = 0,
    FRAMES_PER_SECOND = 1,
    INTER_FRAME_GAP = 2,
    IFG_IN_MILLI_SECOND = 3,
    IFG_IN_NANO_SECOND = 4,
    BITS_PER_SECOND = 5,
    KILOBITS_PER_SECOND = 6,
    MEGABITS_PER_SECOND = 7,
    L2_RATE = 8,
};
extern const tm_enum_map em_rateUnit_t[];

// Loads are integers on the wire; a fractional load is expressed through the unit.
struct loadProfile_s {
    uint32_t loadProfileId = 0;
    uint64_t load = 0;
    rateUnit_t loadUnit = rateUnit_t::PERCENT_LINE_RATE;
    uint16_t burstSize = 0;
    uint64_t burstLoad = 0;
    rateUnit_t burstLoadUnit = rateUnit_t::PERCENT_LINE_RATE;
    uint32_t startDelay = 0;
    uint8_t priority = 0;
};
constexpr auto describe(const loadProfile_s*) {
    using R = loadProfile_s;
    using namespace binding;
    return record<R>(field("loadProfileId", &R::loadProfileId), field("load", &R::load),
                     enum_string("loadUnit", &R::loadUnit, em_rateUnit_t), field("burstSize", &R::burstSize),
                     field("burstLoad", &R::burstLoad),
                     enum_string("burstLoadUnit", &R::burstLoadUnit, em_rateUnit_t),
                     field("startDelay", &R::startDelay), field("priority", &R::priority));
}
VRM_RECORD_API(loadProfile)

struct streamBlockLoadProfileBinding_s {
    uint32_t streamBlockId = 0;
    uint32_t loadProfileId = 0;
};
constexpr auto describe(const streamBlockLoadProfileBinding_s*) {
    using R = streamBlockLoadProfileBinding_s;
    using namespace binding;
    return record<R>(field("streamBlockId", &R::streamBlockId), field("loadProfileId", &R::loadProfileId));
}
VRM_RECORD_API(streamBlockLoadProfileBinding)

// Builders of this module neither name the request (the caller, or the generator's twin
// builders, do) nor switch on send member strings.
bool create_req_SetLoadProfile(Message* msg, const std::vector<loadProfile_s>& loadProfile, bool copy);
bool create_req_StreamBlockLoadProfileBinding(Message* msg, const std::vector<streamBlockLoadProfileBinding_s>& binding,
                                              bool copy);
bool create_req_RemoveLoadProfile(Message* msg, const std::vector<uint32_t>& loadProfileIds, bool copy);
bool create_req_GetLoadProfile(Message* msg, const std::vector<uint32_t>& loadProfileIds, bool copy);

void parse_resp_SetLoadProfile(const Message* msg);
void parse_resp_StreamBlockLoadProfileBinding(const Message* msg);
void parse_resp_RemoveLoadProfile(const Message* msg);
void parse_resp_GetLoadProfile(const Message* msg, std::vector<loadProfile_s>* loadProfile);

}  // namespace LoadProfile_1_bll
