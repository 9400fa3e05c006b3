// IFSETUP_1: stacks of emulated interfaces and the methods that create, read, update,
// attach, detach and delete them on the far side, group membership and the interface
// library's parameters. The interface records themselves are those of ifSetup_1_bll.
#pragma once

#include <cstdint>
#include <vector>

#include "binding/Describe.h"
#include "binding/RecordApi.h"
#include "interfaces/ifSetup_1_bll.h"
#include "platform/Message.h"
#include "platform/tm_enum_map.h"

namespace IFSETUP_1_bll {

// Values 0 to 15 follow the typed lists of a stack; GIF and STF have no list, so TRILL,
// VXLAN and GROUP (18 to 20) name lists 17 to 19.
enum class InterfaceTypeList_t : int32_t {
    IPv6 = 0,
    IPv4 = 1,
    ETHII = 2,
    VLAN = 3,
    MPLS = 4,
    PPP = 5,
    PPPOE = 6,
    GRE = 7,
    HDLC = 8,
    WIMAX = 9,
    L2TPv2 = 10,
    L2TPv3 = 11,
    ITAG = 12,
    AAL5 = 13,
    FC = 14,
    LISP = 15,
    GIF = 16,
    STF = 17,
    TRILL = 18,
    VXLAN = 19,
    GROUP = 20,
};
extern const tm_enum_map em_InterfaceTypeList_t[];

// Bit flags; sent as the caller's uint32 values in optionList, never as names.
enum class ifSetupOptionType_t : int32_t {
    DONTCREATEVIF = 1,
    APPLYGATEWAYMAC = 2,
    SETARPNOEXPIRE = 4,
};
extern const tm_enum_map em_ifSetupOptionType_t[];

enum class ifSetupLibParamType_t : int32_t {
    CREATEDEFAULTROUTE = 0,
};
extern const tm_enum_map em_ifSetupLibParamType_t[];

// One interface of a stack: element `indexInList` of the typed list chosen by `ifType`.
// Neither checked nor resolved here.
struct NetworkInterfaceDescriptor_s {
    InterfaceTypeList_t ifType = InterfaceTypeList_t::IPv6;
    uint32_t indexInList = 0;
};
constexpr auto describe(const NetworkInterfaceDescriptor_s*) {
    using R = NetworkInterfaceDescriptor_s;
    using namespace binding;
    return record<R>(enum_string("ifType", &R::ifType, em_InterfaceTypeList_t),
                     field("indexInList", &R::indexInList));
}
VRM_RECORD_API(NetworkInterfaceDescriptor)

// A stack of interfaces of mixed kinds: typed lists plus the descriptors that order them.
struct NetworkInterfaceStack_s {
    std::vector<NetworkInterfaceDescriptor_s> ifDescriptors;
    std::vector<ifSetup_1_bll::Ipv6If_s> Ipv6InterfaceList;
    std::vector<ifSetup_1_bll::Ipv4If_s> Ipv4InterfaceList;
    std::vector<ifSetup_1_bll::EthIIIf_s> EthIIInterfaceList;
    std::vector<ifSetup_1_bll::VlanIf_s> VlanInterfaceList;
    std::vector<ifSetup_1_bll::MplsIf_s> MplsInterfaceList;
    std::vector<ifSetup_1_bll::PppIf_s> PppInterfaceList;
    std::vector<ifSetup_1_bll::PppoeIf_s> PppoeInterfaceList;
    std::vector<ifSetup_1_bll::GreIf_s> GreInterfaceList;
    std::vector<ifSetup_1_bll::HdlcIf_s> HdlcInterfaceList;
    std::vector<ifSetup_1_bll::WimaxIf_s> WimaxInterfaceList;
    std::vector<ifSetup_1_bll::L2tpv2If_s> L2tpv2InterfaceList;
    std::vector<ifSetup_1_bll::L2tpv3If_s> L2tpv3InterfaceList;
    std::vector<ifSetup_1_bll::ItagIf_s> ItagInterfaceList;
    std::vector<ifSetup_1_bll::Aal5If_s> Aal5InterfaceList;
    std::vector<ifSetup_1_bll::FcIf_s> FcInterfaceList;
    std::vector<ifSetup_1_bll::LispIf_s> LispInterfaceList;
    std::vector<ifSetup_1_bll::TrillIf_s> TrillInterfaceList;
    std::vector<ifSetup_1_bll::VxlanIf_s> VxlanInterfaceList;
    std::vector<ifSetup_1_bll::GroupIf_s> GroupInterfaceList;
};
constexpr auto describe(const NetworkInterfaceStack_s*) {
    using R = NetworkInterfaceStack_s;
    using namespace binding;
    return record<R>(
        field("ifDescriptors", &R::ifDescriptors), field("Ipv6InterfaceList", &R::Ipv6InterfaceList),
        field("Ipv4InterfaceList", &R::Ipv4InterfaceList),
        field("EthIIInterfaceList", &R::EthIIInterfaceList),
        field("VlanInterfaceList", &R::VlanInterfaceList), field("MplsInterfaceList", &R::MplsInterfaceList),
        field("PppInterfaceList", &R::PppInterfaceList), field("PppoeInterfaceList", &R::PppoeInterfaceList),
        field("GreInterfaceList", &R::GreInterfaceList), field("HdlcInterfaceList", &R::HdlcInterfaceList),
        field("WimaxInterfaceList", &R::WimaxInterfaceList),
        field("L2tpv2InterfaceList", &R::L2tpv2InterfaceList),
        field("L2tpv3InterfaceList", &R::L2tpv3InterfaceList),
        field("ItagInterfaceList", &R::ItagInterfaceList), field("Aal5InterfaceList", &R::Aal5InterfaceList),
        field("FcInterfaceList", &R::FcInterfaceList), field("LispInterfaceList", &R::LispInterfaceList),
        field("TrillInterfaceList", &R::TrillInterfaceList),
        field("VxlanInterfaceList", &R::VxlanInterfaceList),
        field("GroupInterfaceList", &R::GroupInterfaceList));
}
VRM_RECORD_API(NetworkInterfaceStack)

// A library parameter: only the member of the selected alternative is on the wire.
struct ifSetupLibParam_t {
    binding::Selector<ifSetupLibParamType_t> type;  // CREATEDEFAULTROUTE by default; changed with select()
    union {
        bool createDefaultRoute;
    };
    VRM_CHOICE_MEMBERS(ifSetupLibParam_t, ifSetupLibParamType_t)
};
constexpr auto describe(const ifSetupLibParam_t*) {
    using R = ifSetupLibParam_t;
    using namespace binding;
    return choice(&R::type, alternative(ifSetupLibParamType_t::CREATEDEFAULTROUTE,
                                        field("createDefaultRoute", &R::createDefaultRoute)));
}
VRM_CHOICE_API(ifSetupLibParam)

struct GroupMember_s {
    uint32_t handle = 0;
    uint32_t role = 0;
    uint32_t portIndex = 0;
};
constexpr auto describe(const GroupMember_s*) {
    using R = GroupMember_s;
    using namespace binding;
    return record<R>(field("handle", &R::handle), field("role", &R::role), field("portIndex", &R::portIndex));
}
VRM_RECORD_API(GroupMember)

struct GroupMemberConfig_s {
    uint32_t handle = 0;
    std::vector<GroupMember_s> GroupMemberList;
};
constexpr auto describe(const GroupMemberConfig_s*) {
    using R = GroupMemberConfig_s;
    using namespace binding;
    return record<R>(field("handle", &R::handle), field("GroupMemberList", &R::GroupMemberList));
}
VRM_RECORD_API(GroupMemberConfig)

// Builders of this module leave the request name unset: the caller, or the generator's
// twin builders, name it. Handle and option lists are always sent as owning copies.
bool create_req_ConfigInterfaces(Message* msg, const std::vector<NetworkInterfaceStack_s>& ifStackList,
                                 bool copy);
bool create_req_ConfigInterfacesWithIlHandle(Message* msg, const std::vector<uint32_t>& ilHandleList,
                                             const std::vector<NetworkInterfaceStack_s>& ifStackList,
                                             const std::vector<uint32_t>& optionList, bool copy);
bool create_req_UpdateInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList,
                                 const std::vector<NetworkInterfaceStack_s>& ifStackList,
                                 const std::vector<uint32_t>& optionList, bool copy);
bool create_req_DeleteInterfaces(Message* msg, const std::vector<uint32_t>& ilHandleList, bool copy);
bool create_req_GetInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy);
bool create_req_GetStackedInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy);
bool create_req_AttachInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy);
bool create_req_DetachInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy);
bool create_req_SetGroupMembership(Message* msg, const std::vector<GroupMemberConfig_s>& groupConfigList,
                                   bool copy);
bool create_req_SetInterfaceLibParams(Message* msg, const std::vector<ifSetupLibParam_t>& paramList,
                                      bool copy);
bool create_req_GetInterfaceLibParams(Message* msg, const std::vector<ifSetupLibParamType_t>& paramTypeList,
                                      bool copy);

void parse_resp_ConfigInterfaces(const Message* msg, std::vector<uint32_t>& ilHandleList);
void parse_resp_ConfigInterfacesWithIlHandle(const Message* msg);
void parse_resp_UpdateInterfaces(const Message* msg);
void parse_resp_DeleteInterfaces(const Message* msg);
void parse_resp_GetInterfaces(const Message* msg, std::vector<uint32_t>& ifHandleList,
                              std::vector<NetworkInterfaceStack_s>& ifStackList);
void parse_resp_GetStackedInterfaces(const Message* msg, std::vector<uint32_t>& ifHandleList,
                                     std::vector<NetworkInterfaceStack_s>& ifStackList);
void parse_resp_AttachInterfaces(const Message* msg);
void parse_resp_DetachInterfaces(const Message* msg);
void parse_resp_SetGroupMembership(const Message* msg);
void parse_resp_SetInterfaceLibParams(const Message* msg);
void parse_resp_GetInterfaceLibParams(const Message* msg, std::vector<ifSetupLibParam_t>& paramList);

}  // namespace IFSETUP_1_bll
