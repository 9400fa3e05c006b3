// Method descriptions of IFSETUP_1 (for the module's source, the generator's delegating
// twins and tests).
#pragma once

#include <tuple>
#include <vector>

#include "binding/Method.h"
#include "interfaces/ifSetup_Autogen_bll.h"

namespace IFSETUP_1_bll {

// No request name of its own; send member strings on.
inline constexpr binding::ModuleRules kRules{nullptr, true};

namespace methods {
using binding::arg;
using binding::copied_arg;
using binding::members;
using binding::method;
using Handles = std::vector<uint32_t>;
using Stacks = std::vector<NetworkInterfaceStack_s>;

inline constexpr auto ConfigInterfaces = method(
    "ConfigInterfaces", kRules, members(arg<Stacks>("ifStackList")), members(arg<Handles>("ilHandleList")));
inline constexpr auto ConfigInterfacesWithIlHandle =
    method("ConfigInterfacesWithIlHandle", kRules,
           members(copied_arg<Handles>("ilHandleList"), arg<Stacks>("ifStackList"),
                   copied_arg<Handles>("optionList")),
           members());
inline constexpr auto UpdateInterfaces =
    method("UpdateInterfaces", kRules,
           members(copied_arg<Handles>("ifHandleList"), arg<Stacks>("ifStackList"),
                   copied_arg<Handles>("optionList")),
           members());
inline constexpr auto DeleteInterfaces =
    method("DeleteInterfaces", kRules, members(copied_arg<Handles>("ilHandleList")), members());
inline constexpr auto GetInterfaces =
    method("GetInterfaces", kRules, members(copied_arg<Handles>("ifHandleList")),
           members(arg<Handles>("ifHandleList"), arg<Stacks>("ifStackList")));
inline constexpr auto GetStackedInterfaces =
    method("GetStackedInterfaces", kRules, members(copied_arg<Handles>("ifHandleList")),
           members(arg<Handles>("ifHandleList"), arg<Stacks>("ifStackList")));
inline constexpr auto AttachInterfaces =
    method("AttachInterfaces", kRules, members(copied_arg<Handles>("ifHandleList")), members());
inline constexpr auto DetachInterfaces =
    method("DetachInterfaces", kRules, members(copied_arg<Handles>("ifHandleList")), members());
inline constexpr auto SetGroupMembership =
    method("SetGroupMembership", kRules, members(arg<std::vector<GroupMemberConfig_s>>("groupConfigList")),
           members());
inline constexpr auto SetInterfaceLibParams = method(
    "SetInterfaceLibParams", kRules, members(arg<std::vector<ifSetupLibParam_t>>("paramList")), members());
inline constexpr auto GetInterfaceLibParams = method(
    "GetInterfaceLibParams", kRules,
    members(binding::enum_arg<std::vector<ifSetupLibParamType_t>>("paramTypeList", em_ifSetupLibParamType_t)),
    members(arg<std::vector<ifSetupLibParam_t>>("paramList")));
}  // namespace methods

inline constexpr auto catalogue = std::make_tuple(
    binding::entry(methods::ConfigInterfaces, &create_req_ConfigInterfaces, &parse_resp_ConfigInterfaces),
    binding::entry(methods::ConfigInterfacesWithIlHandle, &create_req_ConfigInterfacesWithIlHandle,
                   &parse_resp_ConfigInterfacesWithIlHandle),
    binding::entry(methods::UpdateInterfaces, &create_req_UpdateInterfaces, &parse_resp_UpdateInterfaces),
    binding::entry(methods::DeleteInterfaces, &create_req_DeleteInterfaces, &parse_resp_DeleteInterfaces),
    binding::entry(methods::GetInterfaces, &create_req_GetInterfaces, &parse_resp_GetInterfaces),
    binding::entry(methods::GetStackedInterfaces, &create_req_GetStackedInterfaces,
                   &parse_resp_GetStackedInterfaces),
    binding::entry(methods::AttachInterfaces, &create_req_AttachInterfaces, &parse_resp_AttachInterfaces),
    binding::entry(methods::DetachInterfaces, &create_req_DetachInterfaces, &parse_resp_DetachInterfaces),
    binding::entry(methods::SetGroupMembership, &create_req_SetGroupMembership,
                   &parse_resp_SetGroupMembership),
    binding::entry(methods::SetInterfaceLibParams, &create_req_SetInterfaceLibParams,
                   &parse_resp_SetInterfaceLibParams),
    binding::entry(methods::GetInterfaceLibParams, &create_req_GetInterfaceLibParams,
                   &parse_resp_GetInterfaceLibParams));

}  // namespace IFSETUP_1_bll
