#include "interfaces/loadProfile_1_bll.h"

#include "binding/RecordCodec.h"
#include "interfaces/loadProfile_1_bll_methods.h"

namespace LoadProfile_1_bll {

const tm_enum_map em_rateUnit_t[] = {
    {0, "PERCENT_LINE_RATE"},   {1, "FRAMES_PER_SECOND"},   {2, "INTER_FRAME_GAP"},
    {3, "IFG_IN_MILLI_SECOND"}, {4, "IFG_IN_NANO_SECOND"},  {5, "BITS_PER_SECOND"},
    {6, "KILOBITS_PER_SECOND"}, {7, "MEGABITS_PER_SECOND"}, {8, "L2_RATE"},
    {0, nullptr},
};

VRM_RECORD_IMPL(loadProfile)
VRM_RECORD_IMPL(streamBlockLoadProfileBinding)

bool create_req_SetLoadProfile(Message* msg, const std::vector<loadProfile_s>& loadProfile, bool copy) {
    return binding::build_request(msg, methods::SetLoadProfile, copy, loadProfile);
}
bool create_req_StreamBlockLoadProfileBinding(Message* msg, const std::vector<streamBlockLoadProfileBinding_s>& b,
                                              bool copy) {
    return binding::build_request(msg, methods::StreamBlockLoadProfileBinding, copy, b);
}
bool create_req_RemoveLoadProfile(Message* msg, const std::vector<uint32_t>& ids, bool copy) {
    return binding::build_request(msg, methods::RemoveLoadProfile, copy, ids);
}
bool create_req_GetLoadProfile(Message* msg, const std::vector<uint32_t>& ids, bool copy) {
    return binding::build_request(msg, methods::GetLoadProfile, copy, ids);
}

void parse_resp_SetLoadProfile(const Message* msg) { binding::parse_response(msg, methods::SetLoadProfile); }
void parse_resp_StreamBlockLoadProfileBinding(const Message* msg) {
    binding::parse_response(msg, methods::StreamBlockLoadProfileBinding);
}
void parse_resp_RemoveLoadProfile(const Message* msg) { binding::parse_response(msg, methods::RemoveLoadProfile); }
void parse_resp_GetLoadProfile(const Message* msg, std::vector<loadProfile_s>* loadProfile) {
    binding::parse_response(msg, methods::GetLoadProfile, *loadProfile);
}

}  // namespace LoadProfile_1_bll
