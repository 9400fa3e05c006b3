#include "interfaces/ifSetup_1_bll.h"

#include "binding/RecordCodec.h"

namespace ifSetup_1_bll {

const tm_enum_map em_EnumVpnSiteType[] = {
    {0, "VPN_NONE"},     {1, "VPN_RFC2547"},          {2, "VPN_6PE"},  {3, "VPN_6VPE"}, {4, "VPN_VPLS_BGP"},
    {5, "VPN_VPLS_LDP"}, {6, "VPN_VPLS_LDP_FEC_129"}, {7, "VPN_EVPN"}, {0, nullptr},
};
const tm_enum_map em_EnumResolveState[] = {
    {0, "RESOLVE_DONE"},        {1, "RESOLVE_NEEDED"},         {2, "RESOLVE_FAILED"},
    {3, "RESOLVE_IN_PROGRESS"}, {4, "RESOLVE_PARTIALLY_DONE"}, {0, nullptr},
};
// Deliberately not in value order.
const tm_enum_map em_EnumLearningGatewayState[] = {
    {0, "RESOLVE_DONE"},     {3, "RESOLVE_IN_PROGRESS"},
    {4, "RETRYING_GATEWAY"}, {1, "RESOLVE_NEEDED"},
    {2, "RESOLVE_FAILED"},   {5, "FAILURE"},
    {6, "SUCCESS"},          {0, nullptr},
};
const tm_enum_map em_EnumPppProtocolId[] = {
    {0x0057, "PPP_PROTOCOL_ID_IPV6"},
    {0x0021, "PPP_PROTOCOL_ID_IPV4"},
    {0x0281, "PPP_PROTOCOL_ID_MPLS"},
    {0, nullptr},
};
const tm_enum_map em_EnumHdlcProtocolType[] = {
    {0x0800, "HDLC_PROTOCOL_TYPE_IPV4"},
    {0x86DD, "HDLC_PROTOCOL_TYPE_IPV6"},
    {0x8847, "HDLC_PROTOCOL_TYPE_MPLS"},
    {0, nullptr},
};
const tm_enum_map em_EnumVcEncapsulation[] = {{1, "VC_MULTIPLEXED"}, {2, "LLC_ENCAPSULATED"}, {0, nullptr}};
const tm_enum_map em_EnumTosType[] = {{0, "TOS"}, {1, "DIFFSERV"}, {0, nullptr}};
const tm_enum_map em_EnumEvpnMplsIRBMode[] = {{0, "NONE"}, {1, "ASYMMETRIC"}, {2, "SYMMETRIC"}, {0, nullptr}};
const tm_enum_map em_EnumEvpnVxlanIRBMode[] = {
    {0, "NONE"}, {1, "ASYMMETRIC"}, {2, "SYMMETRIC"}, {0, nullptr}};
const tm_enum_map em_EnumVxlanIpAddressModeType[] = {{0, "INTERFACE_IP"}, {1, "ROUTER_ID"}, {0, nullptr}};
const tm_enum_map em_EnumVniDistributionType[] = {{0, "ROUND_ROBIN"}, {1, "LINEAR"}, {0, nullptr}};
const tm_enum_map em_EnumBindingResolverFlag[] = {
    {1, "NONE"},
    {2, "VXLAN_EVPN_TYPE5_VM_PREFIX_MATCH"},
    {0, nullptr},
};
const tm_enum_map em_EnumTrafficControlFlag[] = {
    {0, "NONE"},
    {1, "IGNORE_VM_MAC_LEARNING_FROM_ARP"},
    {0, nullptr},
};
const tm_enum_map em_EnumAddrModifierTypePerDevice[] = {{1, "CONTINUOUS"}, {2, "REPEAT"}, {0, nullptr}};

VRM_RECORD_IMPL(NetworkEndpoint)
VRM_RECORD_IMPL(EmulatedIf)
VRM_RECORD_IMPL(NetworkInterface)
VRM_RECORD_IMPL(NetworkBlock)
VRM_RECORD_IMPL(Ipv4Address)
VRM_RECORD_IMPL(Ipv6Address)
VRM_RECORD_IMPL(MacAddress)
VRM_RECORD_IMPL(WorldWideName)
VRM_RECORD_IMPL(Ipv4NetworkBlock)
VRM_RECORD_IMPL(Ipv6NetworkBlock)
VRM_RECORD_IMPL(MacBlock)
VRM_RECORD_IMPL(VlanBlock)
VRM_RECORD_IMPL(Ipv4If)
VRM_RECORD_IMPL(Ipv6If)
VRM_RECORD_IMPL(EthIIIf)
VRM_RECORD_IMPL(VlanIf)
VRM_RECORD_IMPL(MplsIf)
VRM_RECORD_IMPL(PppIf)
VRM_RECORD_IMPL(HdlcIf)
VRM_RECORD_IMPL(TrillIf)
VRM_RECORD_IMPL(PppoeIf)
VRM_RECORD_IMPL(GreIf)
VRM_RECORD_IMPL(WimaxIf)
VRM_RECORD_IMPL(L2tpv2If)
VRM_RECORD_IMPL(L2tpv3If)
VRM_RECORD_IMPL(ItagIf)
VRM_RECORD_IMPL(Aal5If)
VRM_RECORD_IMPL(FcIf)
VRM_RECORD_IMPL(LispIf)
VRM_RECORD_IMPL(VxlanIf)
VRM_RECORD_IMPL(GroupIf)

}  // namespace ifSetup_1_bll
