#include "interfaces/ifSetup_Autogen_bll.h"

#include "binding/RecordCodec.h"
#include "interfaces/ifSetup_Autogen_bll_methods.h"

namespace IFSETUP_1_bll {

const tm_enum_map em_InterfaceTypeList_t[] = {
    {0, "IPv6"},   {1, "IPv4"},   {2, "ETHII"},  {3, "VLAN"},  {4, "MPLS"},    {5, "PPP"},
    {6, "PPPOE"},  {7, "GRE"},    {8, "HDLC"},   {9, "WIMAX"}, {10, "L2TPv2"}, {11, "L2TPv3"},
    {12, "ITAG"},  {13, "AAL5"},  {14, "FC"},    {15, "LISP"}, {16, "GIF"},    {17, "STF"},
    {18, "TRILL"}, {19, "VXLAN"}, {20, "GROUP"}, {0, nullptr},
};
const tm_enum_map em_ifSetupOptionType_t[] = {
    {1, "DONTCREATEVIF"},
    {2, "APPLYGATEWAYMAC"},
    {4, "SETARPNOEXPIRE"},
    {0, nullptr},
};
const tm_enum_map em_ifSetupLibParamType_t[] = {{0, "CREATEDEFAULTROUTE"}, {0, nullptr}};

VRM_RECORD_IMPL(NetworkInterfaceDescriptor)
VRM_RECORD_IMPL(NetworkInterfaceStack)
VRM_CHOICE_IMPL(ifSetupLibParam)
VRM_RECORD_IMPL(GroupMember)
VRM_RECORD_IMPL(GroupMemberConfig)

using Handles = std::vector<uint32_t>;
using Stacks = std::vector<NetworkInterfaceStack_s>;

bool create_req_ConfigInterfaces(Message* msg, const Stacks& ifStackList, bool copy) {
    return binding::build_request(msg, methods::ConfigInterfaces, copy, ifStackList);
}
bool create_req_ConfigInterfacesWithIlHandle(Message* msg, const Handles& ilHandleList,
                                             const Stacks& ifStackList, const Handles& optionList,
                                             bool copy) {
    return binding::build_request(msg, methods::ConfigInterfacesWithIlHandle, copy, ilHandleList, ifStackList,
                                  optionList);
}
bool create_req_UpdateInterfaces(Message* msg, const Handles& ifHandleList, const Stacks& ifStackList,
                                 const Handles& optionList, bool copy) {
    return binding::build_request(msg, methods::UpdateInterfaces, copy, ifHandleList, ifStackList,
                                  optionList);
}
bool create_req_DeleteInterfaces(Message* msg, const Handles& ilHandleList, bool copy) {
    return binding::build_request(msg, methods::DeleteInterfaces, copy, ilHandleList);
}
bool create_req_GetInterfaces(Message* msg, const Handles& ifHandleList, bool copy) {
    return binding::build_request(msg, methods::GetInterfaces, copy, ifHandleList);
}
bool create_req_GetStackedInterfaces(Message* msg, const Handles& ifHandleList, bool copy) {
    return binding::build_request(msg, methods::GetStackedInterfaces, copy, ifHandleList);
}
bool create_req_AttachInterfaces(Message* msg, const Handles& ifHandleList, bool copy) {
    return binding::build_request(msg, methods::AttachInterfaces, copy, ifHandleList);
}
bool create_req_DetachInterfaces(Message* msg, const Handles& ifHandleList, bool copy) {
    return binding::build_request(msg, methods::DetachInterfaces, copy, ifHandleList);
}
bool create_req_SetGroupMembership(Message* msg, const std::vector<GroupMemberConfig_s>& groupConfigList,
                                   bool copy) {
    return binding::build_request(msg, methods::SetGroupMembership, copy, groupConfigList);
}
bool create_req_SetInterfaceLibParams(Message* msg, const std::vector<ifSetupLibParam_t>& paramList,
                                      bool copy) {
    return binding::build_request(msg, methods::SetInterfaceLibParams, copy, paramList);
}
bool create_req_GetInterfaceLibParams(Message* msg, const std::vector<ifSetupLibParamType_t>& paramTypeList,
                                      bool copy) {
    return binding::build_request(msg, methods::GetInterfaceLibParams, copy, paramTypeList);
}

void parse_resp_ConfigInterfaces(const Message* msg, Handles& ilHandleList) {
    binding::parse_response(msg, methods::ConfigInterfaces, ilHandleList);
}
void parse_resp_ConfigInterfacesWithIlHandle(const Message* msg) {
    binding::parse_response(msg, methods::ConfigInterfacesWithIlHandle);
}
void parse_resp_UpdateInterfaces(const Message* msg) {
    binding::parse_response(msg, methods::UpdateInterfaces);
}
void parse_resp_DeleteInterfaces(const Message* msg) {
    binding::parse_response(msg, methods::DeleteInterfaces);
}
void parse_resp_GetInterfaces(const Message* msg, Handles& ifHandleList, Stacks& ifStackList) {
    binding::parse_response(msg, methods::GetInterfaces, ifHandleList, ifStackList);
}
void parse_resp_GetStackedInterfaces(const Message* msg, Handles& ifHandleList, Stacks& ifStackList) {
    binding::parse_response(msg, methods::GetStackedInterfaces, ifHandleList, ifStackList);
}
void parse_resp_AttachInterfaces(const Message* msg) {
    binding::parse_response(msg, methods::AttachInterfaces);
}
void parse_resp_DetachInterfaces(const Message* msg) {
    binding::parse_response(msg, methods::DetachInterfaces);
}
void parse_resp_SetGroupMembership(const Message* msg) {
    binding::parse_response(msg, methods::SetGroupMembership);
}
void parse_resp_SetInterfaceLibParams(const Message* msg) {
    binding::parse_response(msg, methods::SetInterfaceLibParams);
}
void parse_resp_GetInterfaceLibParams(const Message* msg, std::vector<ifSetupLibParam_t>& paramList) {
    binding::parse_response(msg, methods::GetInterfaceLibParams, paramList);
}

}  // namespace IFSETUP_1_bll
