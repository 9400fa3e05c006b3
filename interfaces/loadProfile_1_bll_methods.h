// Method descriptions of LoadProfile_1 (for the module's source, its delegating twins and
// tests).
#pragma once

#include <tuple>

#include "binding/Method.h"
#include "interfaces/loadProfile_1_bll.h"

namespace LoadProfile_1_bll {

inline constexpr binding::ModuleRules kRules{nullptr, false};

namespace methods {
using binding::arg;
using binding::members;
using binding::method;
inline constexpr auto SetLoadProfile =
    method("SetLoadProfile", kRules, members(arg<std::vector<loadProfile_s>>("loadProfile")), members());
inline constexpr auto StreamBlockLoadProfileBinding =
    method("StreamBlockLoadProfileBinding", kRules,
           members(arg<std::vector<streamBlockLoadProfileBinding_s>>("binding")), members());
inline constexpr auto RemoveLoadProfile =
    method("RemoveLoadProfile", kRules, members(arg<std::vector<uint32_t>>("loadProfileIds")), members());
inline constexpr auto GetLoadProfile =
    method("GetLoadProfile", kRules, members(arg<std::vector<uint32_t>>("loadProfileIds")),
           members(arg<std::vector<loadProfile_s>>("loadProfile")));
}  // namespace methods

// Every method with its builder and response parser.
inline constexpr auto catalogue = std::make_tuple(
    binding::entry(methods::SetLoadProfile, &create_req_SetLoadProfile, &parse_resp_SetLoadProfile),
    binding::entry(methods::StreamBlockLoadProfileBinding, &create_req_StreamBlockLoadProfileBinding,
                   &parse_resp_StreamBlockLoadProfileBinding),
    binding::entry(methods::RemoveLoadProfile, &create_req_RemoveLoadProfile, &parse_resp_RemoveLoadProfile),
    binding::entry(methods::GetLoadProfile, &create_req_GetLoadProfile, &parse_resp_GetLoadProfile));

}  // namespace LoadProfile_1_bll
