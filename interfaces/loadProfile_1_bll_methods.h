// Method descriptions of LoadProfile_1 (for the module's source, its delegating twins and
// tests).
#pragma once

#include "binding/Method.h"
#include "interfaces/loadProfile_1_bll.h"

namespace LoadProfile_1_bll {

inline constexpr binding::ModuleRules kRules{nullptr, false};

namespace methods {
using binding::arg;
using binding::members;
using binding::method;
inline constexpr auto SetLoadProfile = method("SetLoadProfile", kRules,
                                              members(arg<std::vector<loadProfile_s>>("loadProfile")), members());
inline constexpr auto StreamBlockLoadProfileBinding =
    method("StreamBlockLoadProfileBinding", kRules,
           members(arg<std::vector<streamBlockLoadProfileBinding_s>>("binding")), members());
inline constexpr auto RemoveLoadProfile =
    method("RemoveLoadProfile", kRules, members(arg<std::vector<uint32_t>>("loadProfileIds")), members());
inline constexpr auto GetLoadProfile = method("GetLoadProfile", kRules,
                                              members(arg<std::vector<uint32_t>>("loadProfileIds")),
                                              members(arg<std::vector<loadProfile_s>>("loadProfile")));
}  // namespace methods

}  // namespace LoadProfile_1_bll
