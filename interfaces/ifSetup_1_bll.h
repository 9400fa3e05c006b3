// ifSetup_1: records of emulated network interfaces, address records and network blocks.
//
// Wire members of these records are upper camel case. Each interface record carries its
// chain of bases as its first member (NetworkInterface -> EmulatedIf -> NetworkEndpoint).
// Enum-valued members travel as plain integers of the width named in their description,
// never as strings; the enum maps are public data for callers only.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "binding/Describe.h"
#include "binding/RecordApi.h"
#include "platform/tm_enum_map.h"

namespace ifSetup_1_bll {

// --- enums ------------------------------------------------------------------------------

enum class EnumVpnSiteType : int32_t {
    VPN_NONE = 0,
    VPN_RFC2547 = 1,
    VPN_6PE = 2,
    VPN_6VPE = 3,
    VPN_VPLS_BGP = 4,
    VPN_VPLS_LDP = 5,
    VPN_VPLS_LDP_FEC_129 = 6,
    VPN_EVPN = 7,
};
extern const tm_enum_map em_EnumVpnSiteType[];

enum class EnumResolveState : int32_t {
    RESOLVE_DONE = 0,
    RESOLVE_NEEDED = 1,
    RESOLVE_FAILED = 2,
    RESOLVE_IN_PROGRESS = 3,
    RESOLVE_PARTIALLY_DONE = 4,
};
extern const tm_enum_map em_EnumResolveState[];

// Its map lists the states in the order of a learning cycle, not by value.
enum class EnumLearningGatewayState : int32_t {
    RESOLVE_DONE = 0,
    RESOLVE_IN_PROGRESS = 3,
    RETRYING_GATEWAY = 4,
    RESOLVE_NEEDED = 1,
    RESOLVE_FAILED = 2,
    FAILURE = 5,
    SUCCESS = 6,
};
extern const tm_enum_map em_EnumLearningGatewayState[];

// Values are the PPP protocol numbers.
enum class EnumPppProtocolId : int32_t {
    PPP_PROTOCOL_ID_IPV6 = 0x0057,
    PPP_PROTOCOL_ID_IPV4 = 0x0021,
    PPP_PROTOCOL_ID_MPLS = 0x0281,
};
extern const tm_enum_map em_EnumPppProtocolId[];

// Values are the EtherTypes.
enum class EnumHdlcProtocolType : int32_t {
    HDLC_PROTOCOL_TYPE_IPV4 = 0x0800,
    HDLC_PROTOCOL_TYPE_IPV6 = 0x86DD,
    HDLC_PROTOCOL_TYPE_MPLS = 0x8847,
};
extern const tm_enum_map em_EnumHdlcProtocolType[];

enum class EnumVcEncapsulation : int32_t {
    VC_MULTIPLEXED = 1,
    LLC_ENCAPSULATED = 2,
};
extern const tm_enum_map em_EnumVcEncapsulation[];

enum class EnumTosType : int32_t {
    TOS = 0,
    DIFFSERV = 1,
};
extern const tm_enum_map em_EnumTosType[];

enum class EnumEvpnMplsIRBMode : int32_t {
    NONE = 0,
    ASYMMETRIC = 1,
    SYMMETRIC = 2,
};
extern const tm_enum_map em_EnumEvpnMplsIRBMode[];

enum class EnumEvpnVxlanIRBMode : int32_t {
    NONE = 0,
    ASYMMETRIC = 1,
    SYMMETRIC = 2,
};
extern const tm_enum_map em_EnumEvpnVxlanIRBMode[];

enum class EnumVxlanIpAddressModeType : int32_t {
    INTERFACE_IP = 0,
    ROUTER_ID = 1,
};
extern const tm_enum_map em_EnumVxlanIpAddressModeType[];

enum class EnumVniDistributionType : int32_t {
    ROUND_ROBIN = 0,
    LINEAR = 1,
};
extern const tm_enum_map em_EnumVniDistributionType[];

// Starts at 1, unlike the other NONE values.
enum class EnumBindingResolverFlag : int32_t {
    NONE = 1,
    VXLAN_EVPN_TYPE5_VM_PREFIX_MATCH = 2,
};
extern const tm_enum_map em_EnumBindingResolverFlag[];

// Bit flags: a member of this type may hold any combination.
enum class EnumTrafficControlFlag : int32_t {
    NONE = 0,
    IGNORE_VM_MAC_LEARNING_FROM_ARP = 1,
};
extern const tm_enum_map em_EnumTrafficControlFlag[];

enum class EnumAddrModifierTypePerDevice : int32_t {
    CONTINUOUS = 1,
    REPEAT = 2,
};
extern const tm_enum_map em_EnumAddrModifierTypePerDevice[];

// --- bases ------------------------------------------------------------------------------

// Root of every chain of bases; an empty struct on the wire.
struct NetworkEndpoint_s {};
constexpr auto describe(const NetworkEndpoint_s*) { return binding::record<NetworkEndpoint_s>(); }
VRM_RECORD_API(NetworkEndpoint)

struct EmulatedIf_s {
    NetworkEndpoint_s NetworkEndpoint;
    bool IsRange = false;
    bool IsDirectlyConnected = false;
};
constexpr auto describe(const EmulatedIf_s*) {
    using R = EmulatedIf_s;
    using namespace binding;
    return record<R>(field("NetworkEndpoint", &R::NetworkEndpoint), field("IsRange", &R::IsRange),
                     field("IsDirectlyConnected", &R::IsDirectlyConnected));
}
VRM_RECORD_API(EmulatedIf)

struct NetworkInterface_s {
    EmulatedIf_s EmulatedIf;
    uint32_t IfCountPerLowerIf = 0;
    uint32_t IfRecycleCount = 0;
    uint32_t TotalCount = 0;
    uint32_t BllHandle = 0;
    uint32_t AffiliatedInterface = 0;
};
constexpr auto describe(const NetworkInterface_s*) {
    using R = NetworkInterface_s;
    using namespace binding;
    return record<R>(field("EmulatedIf", &R::EmulatedIf), field("IfCountPerLowerIf", &R::IfCountPerLowerIf),
                     field("IfRecycleCount", &R::IfRecycleCount), field("TotalCount", &R::TotalCount),
                     field("BllHandle", &R::BllHandle),
                     field("AffiliatedInterface", &R::AffiliatedInterface));
}
VRM_RECORD_API(NetworkInterface)

struct NetworkBlock_s {
    NetworkEndpoint_s NetworkEndpoint;
    uint32_t NetworkCount = 0;
    uint32_t AddrIncrement = 0;
    uint32_t AddrIncrementPerRouter = 0;
    bool NetworkInterfaceWithIpList = false;
    EnumAddrModifierTypePerDevice AddrModifierTypePerDevice = EnumAddrModifierTypePerDevice::CONTINUOUS;
};
constexpr auto describe(const NetworkBlock_s*) {
    using R = NetworkBlock_s;
    using namespace binding;
    return record<R>(field("NetworkEndpoint", &R::NetworkEndpoint), field("NetworkCount", &R::NetworkCount),
                     field("AddrIncrement", &R::AddrIncrement),
                     field("AddrIncrementPerRouter", &R::AddrIncrementPerRouter),
                     field("NetworkInterfaceWithIpList", &R::NetworkInterfaceWithIpList),
                     enum_int<uint8_t>("AddrModifierTypePerDevice", &R::AddrModifierTypePerDevice));
}
VRM_RECORD_API(NetworkBlock)

// --- addresses: exactly N bytes, network order ----------------------------------------------

struct Ipv4Address_s {
    std::array<uint8_t, 4> address{};
};
constexpr auto describe(const Ipv4Address_s*) {
    using R = Ipv4Address_s;
    return binding::record<R>(binding::field("address", &R::address));
}
VRM_RECORD_API(Ipv4Address)

struct Ipv6Address_s {
    std::array<uint8_t, 16> address{};
};
constexpr auto describe(const Ipv6Address_s*) {
    using R = Ipv6Address_s;
    return binding::record<R>(binding::field("address", &R::address));
}
VRM_RECORD_API(Ipv6Address)

struct MacAddress_s {
    std::array<uint8_t, 6> address{};
};
constexpr auto describe(const MacAddress_s*) {
    using R = MacAddress_s;
    return binding::record<R>(binding::field("address", &R::address));
}
VRM_RECORD_API(MacAddress)

struct WorldWideName_s {
    std::array<uint8_t, 8> address{};
};
constexpr auto describe(const WorldWideName_s*) {
    using R = WorldWideName_s;
    return binding::record<R>(binding::field("address", &R::address));
}
VRM_RECORD_API(WorldWideName)

// --- network blocks ---------------------------------------------------------------------

struct Ipv4NetworkBlock_s {
    NetworkBlock_s NetworkBlock;
    std::vector<Ipv4Address_s> StartIpList;
    uint8_t PrefixLength = 0;
};
constexpr auto describe(const Ipv4NetworkBlock_s*) {
    using R = Ipv4NetworkBlock_s;
    using namespace binding;
    return record<R>(field("NetworkBlock", &R::NetworkBlock), field("StartIpList", &R::StartIpList),
                     field("PrefixLength", &R::PrefixLength));
}
VRM_RECORD_API(Ipv4NetworkBlock)

struct Ipv6NetworkBlock_s {
    NetworkBlock_s NetworkBlock;
    std::vector<Ipv6Address_s> StartIpList;
    uint8_t PrefixLength = 0;
};
constexpr auto describe(const Ipv6NetworkBlock_s*) {
    using R = Ipv6NetworkBlock_s;
    using namespace binding;
    return record<R>(field("NetworkBlock", &R::NetworkBlock), field("StartIpList", &R::StartIpList),
                     field("PrefixLength", &R::PrefixLength));
}
VRM_RECORD_API(Ipv6NetworkBlock)

// PrefixLength is a list here, one per start address.
struct MacBlock_s {
    NetworkBlock_s NetworkBlock;
    std::vector<MacAddress_s> StartMacList;
    uint8_t Offset = 0;
    std::vector<uint8_t> PrefixLength;
};
constexpr auto describe(const MacBlock_s*) {
    using R = MacBlock_s;
    using namespace binding;
    return record<R>(field("NetworkBlock", &R::NetworkBlock), field("StartMacList", &R::StartMacList),
                     field("Offset", &R::Offset), field("PrefixLength", &R::PrefixLength));
}
VRM_RECORD_API(MacBlock)

struct VlanBlock_s {
    NetworkBlock_s NetworkBlock;
    std::vector<uint16_t> StartVlanList;
    uint8_t Priority = 0;
    uint8_t Cfi = 0;
};
constexpr auto describe(const VlanBlock_s*) {
    using R = VlanBlock_s;
    using namespace binding;
    return record<R>(field("NetworkBlock", &R::NetworkBlock), field("StartVlanList", &R::StartVlanList),
                     field("Priority", &R::Priority), field("Cfi", &R::Cfi));
}
VRM_RECORD_API(VlanBlock)

// --- interfaces -------------------------------------------------------------------------

struct Ipv4If_s {
    NetworkInterface_s NetworkInterface;
    Ipv4Address_s Address;
    Ipv4Address_s AddrStep;
    Ipv4Address_s AddrStepMask;
    bool SkipReserved = false;
    std::vector<Ipv4Address_s> AddrList;
    uint32_t AddrRepeatCount = 0;
    uint8_t PrefixLength = 0;
    bool EnableGatewayLearning = false;
    Ipv4Address_s Gateway;
    Ipv4Address_s GatewayStep;
    uint32_t GatewayRepeatCount = 0;
    uint32_t GatewayRecycleCount = 0;
    std::vector<Ipv4Address_s> GatewayList;
    bool ResolveGatewayMac = false;
    MacAddress_s GatewayMac;
    uint8_t Ttl = 0;
    uint8_t Tos = 0;
    Ipv4Address_s Ipv4TunnelGateway;
    EnumVpnSiteType VpnSiteType = EnumVpnSiteType::VPN_NONE;
    uint64_t VpnSiteId = 0;
    uint32_t AddrIncrementPerRouter = 0;
};
constexpr auto describe(const Ipv4If_s*) {
    using R = Ipv4If_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("Address", &R::Address),
        field("AddrStep", &R::AddrStep), field("AddrStepMask", &R::AddrStepMask),
        field("SkipReserved", &R::SkipReserved), field("AddrList", &R::AddrList),
        field("AddrRepeatCount", &R::AddrRepeatCount), field("PrefixLength", &R::PrefixLength),
        field("EnableGatewayLearning", &R::EnableGatewayLearning), field("Gateway", &R::Gateway),
        field("GatewayStep", &R::GatewayStep), field("GatewayRepeatCount", &R::GatewayRepeatCount),
        field("GatewayRecycleCount", &R::GatewayRecycleCount), field("GatewayList", &R::GatewayList),
        field("ResolveGatewayMac", &R::ResolveGatewayMac), field("GatewayMac", &R::GatewayMac),
        field("Ttl", &R::Ttl), field("Tos", &R::Tos), field("Ipv4TunnelGateway", &R::Ipv4TunnelGateway),
        enum_int<uint8_t>("VpnSiteType", &R::VpnSiteType), field("VpnSiteId", &R::VpnSiteId),
        field("AddrIncrementPerRouter", &R::AddrIncrementPerRouter));
}
VRM_RECORD_API(Ipv4If)

// Unlike Ipv4If, GatewayList comes before GatewayRecycleCount.
struct Ipv6If_s {
    NetworkInterface_s NetworkInterface;
    Ipv6Address_s Address;
    Ipv6Address_s AddrStep;
    Ipv6Address_s AddrStepMask;
    bool SkipReserved = false;
    std::vector<Ipv6Address_s> AddrList;
    uint32_t AddrRepeatCount = 0;
    uint8_t PrefixLength = 0;
    bool EnableGatewayLearning = false;
    Ipv6Address_s Gateway;
    Ipv6Address_s GatewayStep;
    uint32_t GatewayRepeatCount = 0;
    std::vector<Ipv6Address_s> GatewayList;
    uint32_t GatewayRecycleCount = 0;
    bool ResolveGatewayMac = false;
    MacAddress_s GatewayMac;
    uint8_t HopLimit = 0;
    uint8_t TrafficClass = 0;
    uint32_t FlowLabel = 0;
    Ipv6Address_s Ipv6TunnelGateway;
    EnumVpnSiteType VpnSiteType = EnumVpnSiteType::VPN_NONE;
    uint64_t VpnSiteId = 0;
    uint32_t AddrIncrementPerRouter = 0;
};
constexpr auto describe(const Ipv6If_s*) {
    using R = Ipv6If_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("Address", &R::Address),
        field("AddrStep", &R::AddrStep), field("AddrStepMask", &R::AddrStepMask),
        field("SkipReserved", &R::SkipReserved), field("AddrList", &R::AddrList),
        field("AddrRepeatCount", &R::AddrRepeatCount), field("PrefixLength", &R::PrefixLength),
        field("EnableGatewayLearning", &R::EnableGatewayLearning), field("Gateway", &R::Gateway),
        field("GatewayStep", &R::GatewayStep), field("GatewayRepeatCount", &R::GatewayRepeatCount),
        field("GatewayList", &R::GatewayList), field("GatewayRecycleCount", &R::GatewayRecycleCount),
        field("ResolveGatewayMac", &R::ResolveGatewayMac), field("GatewayMac", &R::GatewayMac),
        field("HopLimit", &R::HopLimit), field("TrafficClass", &R::TrafficClass),
        field("FlowLabel", &R::FlowLabel), field("Ipv6TunnelGateway", &R::Ipv6TunnelGateway),
        enum_int<uint8_t>("VpnSiteType", &R::VpnSiteType), field("VpnSiteId", &R::VpnSiteId),
        field("AddrIncrementPerRouter", &R::AddrIncrementPerRouter));
}
VRM_RECORD_API(Ipv6If)

struct EthIIIf_s {
    NetworkInterface_s NetworkInterface;
    MacAddress_s SourceMac;
    MacAddress_s SrcMacStep;
    std::vector<MacAddress_s> SrcMacList;
    MacAddress_s SrcMacStepMask;
    uint32_t SrcMacRepeatCount = 0;
    EnumVpnSiteType VpnSiteType = EnumVpnSiteType::VPN_NONE;
    uint64_t VpnSiteId = 0;
};
constexpr auto describe(const EthIIIf_s*) {
    using R = EthIIIf_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface), field("SourceMac", &R::SourceMac),
                     field("SrcMacStep", &R::SrcMacStep), field("SrcMacList", &R::SrcMacList),
                     field("SrcMacStepMask", &R::SrcMacStepMask),
                     field("SrcMacRepeatCount", &R::SrcMacRepeatCount),
                     enum_int<uint8_t>("VpnSiteType", &R::VpnSiteType), field("VpnSiteId", &R::VpnSiteId));
}
VRM_RECORD_API(EthIIIf)

struct VlanIf_s {
    NetworkInterface_s NetworkInterface;
    uint16_t VlanId = 0;
    int16_t IdStep = 0;
    std::vector<uint16_t> IdList;
    uint16_t IdRepeatCount = 0;
    uint8_t Priority = 0;
    uint8_t Cfi = 0;
    uint16_t Tpid = 0;
};
constexpr auto describe(const VlanIf_s*) {
    using R = VlanIf_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface), field("VlanId", &R::VlanId),
                     field("IdStep", &R::IdStep), field("IdList", &R::IdList),
                     field("IdRepeatCount", &R::IdRepeatCount), field("Priority", &R::Priority),
                     field("Cfi", &R::Cfi), field("Tpid", &R::Tpid));
}
VRM_RECORD_API(VlanIf)

struct MplsIf_s {
    NetworkInterface_s NetworkInterface;
    uint32_t Label = 0;
    EnumResolveState LabelResolveState = EnumResolveState::RESOLVE_DONE;
    int32_t LabelStep = 0;
    std::vector<uint32_t> LabelList;
    uint16_t LabelRepeatCount = 0;
    uint8_t ExperimentalBits = 0;
    uint8_t TTL = 0;
    uint8_t StackBit = 0;
    MacAddress_s DstMac;
    std::vector<MacAddress_s> DstMacList;
    EnumEvpnMplsIRBMode EvpnMplsIRBMode = EnumEvpnMplsIRBMode::NONE;
    uint32_t BindCount = 0;
    bool PassThrough = false;
    bool IsEntropyIf = false;
};
constexpr auto describe(const MplsIf_s*) {
    using R = MplsIf_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("Label", &R::Label),
        enum_int<uint8_t>("LabelResolveState", &R::LabelResolveState), field("LabelStep", &R::LabelStep),
        field("LabelList", &R::LabelList), field("LabelRepeatCount", &R::LabelRepeatCount),
        field("ExperimentalBits", &R::ExperimentalBits), field("TTL", &R::TTL),
        field("StackBit", &R::StackBit), field("DstMac", &R::DstMac), field("DstMacList", &R::DstMacList),
        enum_int<uint8_t>("EvpnMplsIRBMode", &R::EvpnMplsIRBMode), field("BindCount", &R::BindCount),
        field("PassThrough", &R::PassThrough), field("IsEntropyIf", &R::IsEntropyIf));
}
VRM_RECORD_API(MplsIf)

struct PppIf_s {
    NetworkInterface_s NetworkInterface;
    EnumPppProtocolId ProtocolId = EnumPppProtocolId::PPP_PROTOCOL_ID_IPV6;
};
constexpr auto describe(const PppIf_s*) {
    using R = PppIf_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface),
                     enum_int<uint16_t>("ProtocolId", &R::ProtocolId));
}
VRM_RECORD_API(PppIf)

struct HdlcIf_s {
    NetworkInterface_s NetworkInterface;
    EnumHdlcProtocolType ProtocolType = EnumHdlcProtocolType::HDLC_PROTOCOL_TYPE_IPV4;
};
constexpr auto describe(const HdlcIf_s*) {
    using R = HdlcIf_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface),
                     enum_int<uint16_t>("ProtocolType", &R::ProtocolType));
}
VRM_RECORD_API(HdlcIf)

struct TrillIf_s {
    NetworkInterface_s NetworkInterface;
};
constexpr auto describe(const TrillIf_s*) {
    using R = TrillIf_s;
    return binding::record<R>(binding::field("NetworkInterface", &R::NetworkInterface));
}
VRM_RECORD_API(TrillIf)

struct PppoeIf_s {
    NetworkInterface_s NetworkInterface;
    uint16_t SessionId = 0;
    int16_t SessionIdStep = 0;
    std::vector<uint16_t> SessionIdList;
    uint16_t SessionIdRepeatCount = 0;
    MacAddress_s PeerMacAddr;
    std::vector<MacAddress_s> PeerMacAddrList;
};
constexpr auto describe(const PppoeIf_s*) {
    using R = PppoeIf_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface), field("SessionId", &R::SessionId),
                     field("SessionIdStep", &R::SessionIdStep), field("SessionIdList", &R::SessionIdList),
                     field("SessionIdRepeatCount", &R::SessionIdRepeatCount),
                     field("PeerMacAddr", &R::PeerMacAddr), field("PeerMacAddrList", &R::PeerMacAddrList));
}
VRM_RECORD_API(PppoeIf)

struct GreIf_s {
    NetworkInterface_s NetworkInterface;
    bool ChecksumEnabled = false;
    bool InFlowKeyFieldEnabled = false;
    uint32_t RxFlowKeyField = 0;
    bool OutFlowKeyFieldEnabled = false;
    uint32_t TxFlowKeyField = 0;
    bool SeqNumEnabled = false;
    Ipv4Address_s RemoteTunnelEndPointV4;
    Ipv6Address_s RemoteTunnelEndPointV6;
    Ipv4Address_s RemoteTunnelEndPointV4Step;
    Ipv6Address_s RemoteTunnelEndPointV6Step;
    bool EnableKeepAlive = false;
    uint16_t KeepAlivePeriod = 0;
    uint8_t KeepAliveRetryCount = 0;
};
constexpr auto describe(const GreIf_s*) {
    using R = GreIf_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("ChecksumEnabled", &R::ChecksumEnabled),
        field("InFlowKeyFieldEnabled", &R::InFlowKeyFieldEnabled),
        field("RxFlowKeyField", &R::RxFlowKeyField),
        field("OutFlowKeyFieldEnabled", &R::OutFlowKeyFieldEnabled),
        field("TxFlowKeyField", &R::TxFlowKeyField), field("SeqNumEnabled", &R::SeqNumEnabled),
        field("RemoteTunnelEndPointV4", &R::RemoteTunnelEndPointV4),
        field("RemoteTunnelEndPointV6", &R::RemoteTunnelEndPointV6),
        field("RemoteTunnelEndPointV4Step", &R::RemoteTunnelEndPointV4Step),
        field("RemoteTunnelEndPointV6Step", &R::RemoteTunnelEndPointV6Step),
        field("EnableKeepAlive", &R::EnableKeepAlive), field("KeepAlivePeriod", &R::KeepAlivePeriod),
        field("KeepAliveRetryCount", &R::KeepAliveRetryCount));
}
VRM_RECORD_API(GreIf)

struct WimaxIf_s {
    NetworkInterface_s NetworkInterface;
    MacAddress_s SsMac;
    MacAddress_s SsMacStep;
    std::vector<MacAddress_s> SsMacList;
    MacAddress_s SsMacStepMask;
    uint32_t SsMacRepeatCount = 0;
    MacAddress_s TransceiverMac;
    uint16_t SecondMgmtCid = 0;
};
constexpr auto describe(const WimaxIf_s*) {
    using R = WimaxIf_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface), field("SsMac", &R::SsMac),
                     field("SsMacStep", &R::SsMacStep), field("SsMacList", &R::SsMacList),
                     field("SsMacStepMask", &R::SsMacStepMask),
                     field("SsMacRepeatCount", &R::SsMacRepeatCount),
                     field("TransceiverMac", &R::TransceiverMac), field("SecondMgmtCid", &R::SecondMgmtCid));
}
VRM_RECORD_API(WimaxIf)

// Session ids are 16-bit here, 32-bit in L2tpv3If.
struct L2tpv2If_s {
    NetworkInterface_s NetworkInterface;
    bool UseIpv4 = false;
    Ipv4Address_s RemoteIpv4Addr;
    Ipv4Address_s RemoteIpv4AddrStep;
    Ipv4Address_s RemoteIpv4AddrStepMask;
    uint32_t RemoteIpv4AddrRepeatCount = 0;
    std::vector<Ipv4Address_s> RemoteIpv4AddrList;
    Ipv6Address_s RemoteIpv6Addr;
    Ipv6Address_s RemoteIpv6AddrStep;
    Ipv6Address_s RemoteIpv6AddrStepMask;
    uint32_t RemoteIpv6AddrRepeatCount = 0;
    std::vector<Ipv6Address_s> RemoteIpv6AddrList;
    uint16_t LocalTunnelId = 0;
    int16_t LocalTunnelIdStep = 0;
    uint32_t LocalTunnelIdRepeatCount = 0;
    std::vector<uint16_t> LocalTunnelIdList;
    uint16_t LocalSessionId = 0;
    int16_t LocalSessionIdStep = 0;
    uint32_t LocalSessionIdRepeatCount = 0;
    std::vector<uint16_t> LocalSessionIdList;
    std::vector<uint16_t> RemoteTunnelIdList;
    std::vector<uint16_t> RemoteSessionIdList;
    bool UdpChecksumEnabled = false;
    uint16_t UdpSrcPort = 0;
    int16_t UdpSrcPortStep = 0;
    uint32_t UdpSrcPortRepeatCount = 0;
    std::vector<uint16_t> UdpSrcPortList;
    std::vector<uint16_t> UdpDstPortList;
    bool UseSeq = false;
    bool UseLength = false;
    bool UseOffset = false;
    bool UsePriority = false;
};
constexpr auto describe(const L2tpv2If_s*) {
    using R = L2tpv2If_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("UseIpv4", &R::UseIpv4),
        field("RemoteIpv4Addr", &R::RemoteIpv4Addr), field("RemoteIpv4AddrStep", &R::RemoteIpv4AddrStep),
        field("RemoteIpv4AddrStepMask", &R::RemoteIpv4AddrStepMask),
        field("RemoteIpv4AddrRepeatCount", &R::RemoteIpv4AddrRepeatCount),
        field("RemoteIpv4AddrList", &R::RemoteIpv4AddrList), field("RemoteIpv6Addr", &R::RemoteIpv6Addr),
        field("RemoteIpv6AddrStep", &R::RemoteIpv6AddrStep),
        field("RemoteIpv6AddrStepMask", &R::RemoteIpv6AddrStepMask),
        field("RemoteIpv6AddrRepeatCount", &R::RemoteIpv6AddrRepeatCount),
        field("RemoteIpv6AddrList", &R::RemoteIpv6AddrList), field("LocalTunnelId", &R::LocalTunnelId),
        field("LocalTunnelIdStep", &R::LocalTunnelIdStep),
        field("LocalTunnelIdRepeatCount", &R::LocalTunnelIdRepeatCount),
        field("LocalTunnelIdList", &R::LocalTunnelIdList), field("LocalSessionId", &R::LocalSessionId),
        field("LocalSessionIdStep", &R::LocalSessionIdStep),
        field("LocalSessionIdRepeatCount", &R::LocalSessionIdRepeatCount),
        field("LocalSessionIdList", &R::LocalSessionIdList),
        field("RemoteTunnelIdList", &R::RemoteTunnelIdList),
        field("RemoteSessionIdList", &R::RemoteSessionIdList),
        field("UdpChecksumEnabled", &R::UdpChecksumEnabled), field("UdpSrcPort", &R::UdpSrcPort),
        field("UdpSrcPortStep", &R::UdpSrcPortStep),
        field("UdpSrcPortRepeatCount", &R::UdpSrcPortRepeatCount),
        field("UdpSrcPortList", &R::UdpSrcPortList), field("UdpDstPortList", &R::UdpDstPortList),
        field("UseSeq", &R::UseSeq), field("UseLength", &R::UseLength), field("UseOffset", &R::UseOffset),
        field("UsePriority", &R::UsePriority));
}
VRM_RECORD_API(L2tpv2If)

struct L2tpv3If_s {
    NetworkInterface_s NetworkInterface;
    bool UseIpv4 = false;
    bool UseUdp = false;
    Ipv4Address_s RemoteIpv4Addr;
    Ipv4Address_s RemoteIpv4AddrStep;
    Ipv4Address_s RemoteIpv4AddrStepMask;
    uint32_t RemoteIpv4AddrRepeatCount = 0;
    std::vector<Ipv4Address_s> RemoteIpv4AddrList;
    Ipv6Address_s RemoteIpv6Addr;
    Ipv6Address_s RemoteIpv6AddrStep;
    Ipv6Address_s RemoteIpv6AddrStepMask;
    uint32_t RemoteIpv6AddrRepeatCount = 0;
    std::vector<Ipv6Address_s> RemoteIpv6AddrList;
    uint32_t LocalSessionId = 0;
    int32_t LocalSessionIdStep = 0;
    uint32_t LocalSessionIdRepeatCount = 0;
    std::vector<uint32_t> LocalSessionIdList;
    std::vector<uint32_t> RemoteSessionIdList;
    bool UdpChecksumEnabled = false;
    uint16_t UdpSrcPort = 0;
    int16_t UdpSrcPortStep = 0;
    uint32_t UdpSrcPortRepeatCount = 0;
    std::vector<uint16_t> UdpSrcPortList;
    std::vector<uint16_t> UdpDstPortList;
};
constexpr auto describe(const L2tpv3If_s*) {
    using R = L2tpv3If_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("UseIpv4", &R::UseIpv4),
        field("UseUdp", &R::UseUdp), field("RemoteIpv4Addr", &R::RemoteIpv4Addr),
        field("RemoteIpv4AddrStep", &R::RemoteIpv4AddrStep),
        field("RemoteIpv4AddrStepMask", &R::RemoteIpv4AddrStepMask),
        field("RemoteIpv4AddrRepeatCount", &R::RemoteIpv4AddrRepeatCount),
        field("RemoteIpv4AddrList", &R::RemoteIpv4AddrList), field("RemoteIpv6Addr", &R::RemoteIpv6Addr),
        field("RemoteIpv6AddrStep", &R::RemoteIpv6AddrStep),
        field("RemoteIpv6AddrStepMask", &R::RemoteIpv6AddrStepMask),
        field("RemoteIpv6AddrRepeatCount", &R::RemoteIpv6AddrRepeatCount),
        field("RemoteIpv6AddrList", &R::RemoteIpv6AddrList), field("LocalSessionId", &R::LocalSessionId),
        field("LocalSessionIdStep", &R::LocalSessionIdStep),
        field("LocalSessionIdRepeatCount", &R::LocalSessionIdRepeatCount),
        field("LocalSessionIdList", &R::LocalSessionIdList),
        field("RemoteSessionIdList", &R::RemoteSessionIdList),
        field("UdpChecksumEnabled", &R::UdpChecksumEnabled), field("UdpSrcPort", &R::UdpSrcPort),
        field("UdpSrcPortStep", &R::UdpSrcPortStep),
        field("UdpSrcPortRepeatCount", &R::UdpSrcPortRepeatCount),
        field("UdpSrcPortList", &R::UdpSrcPortList), field("UdpDstPortList", &R::UdpDstPortList));
}
VRM_RECORD_API(L2tpv3If)

struct ItagIf_s {
    NetworkInterface_s NetworkInterface;
    uint32_t Isid = 0;
    int32_t IsidStep = 0;
    std::vector<uint32_t> IsidList;
    uint32_t IsidRepeatCount = 0;
    uint32_t IsidCount = 0;
    bool PbbEnabledVRF = false;
    uint32_t PbbBackboneSrcMacCount = 0;
    uint32_t PbbBackboneDstMacCount = 0;
    MacAddress_s PbbBackboneDstMacStep;
    uint8_t PbbBackboneDstMacPrefixLength = 0;
    uint8_t Priority = 0;
    bool DropEligible = false;
    bool UseCustomerAddresses = false;
    uint8_t ReservedBits1 = 0;
    uint8_t ReservedBits2 = 0;
    MacAddress_s BackboneDstMac;
    MacAddress_s PbbBackboneSrcMac;
    MacAddress_s PbbBackboneDstMac;
};
constexpr auto describe(const ItagIf_s*) {
    using R = ItagIf_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("Isid", &R::Isid),
        field("IsidStep", &R::IsidStep), field("IsidList", &R::IsidList),
        field("IsidRepeatCount", &R::IsidRepeatCount), field("IsidCount", &R::IsidCount),
        field("PbbEnabledVRF", &R::PbbEnabledVRF),
        field("PbbBackboneSrcMacCount", &R::PbbBackboneSrcMacCount),
        field("PbbBackboneDstMacCount", &R::PbbBackboneDstMacCount),
        field("PbbBackboneDstMacStep", &R::PbbBackboneDstMacStep),
        field("PbbBackboneDstMacPrefixLength", &R::PbbBackboneDstMacPrefixLength),
        field("Priority", &R::Priority), field("DropEligible", &R::DropEligible),
        field("UseCustomerAddresses", &R::UseCustomerAddresses), field("ReservedBits1", &R::ReservedBits1),
        field("ReservedBits2", &R::ReservedBits2), field("BackboneDstMac", &R::BackboneDstMac),
        field("PbbBackboneSrcMac", &R::PbbBackboneSrcMac), field("PbbBackboneDstMac", &R::PbbBackboneDstMac));
}
VRM_RECORD_API(ItagIf)

struct Aal5If_s {
    NetworkInterface_s NetworkInterface;
    uint8_t Gfc = 0;
    uint16_t Vpi = 0;
    int16_t VpiStep = 0;
    uint16_t VpiStepMask = 0;
    std::vector<uint16_t> VpiList;
    uint32_t VpiRepeatCount = 0;
    uint16_t Vci = 0;
    int16_t VciStep = 0;
    uint16_t VciStepMask = 0;
    std::vector<uint16_t> VciList;
    uint32_t VciRepeatCount = 0;
    uint32_t VciRecycleCount = 0;
    uint8_t PtiCell = 0;
    uint8_t PtiCongestion = 0;
    uint8_t Clp = 0;
    uint8_t Uu = 0;
    uint8_t Cpi = 0;
    EnumVcEncapsulation VcEncapsulation = EnumVcEncapsulation::VC_MULTIPLEXED;
};
constexpr auto describe(const Aal5If_s*) {
    using R = Aal5If_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface), field("Gfc", &R::Gfc),
                     field("Vpi", &R::Vpi), field("VpiStep", &R::VpiStep),
                     field("VpiStepMask", &R::VpiStepMask), field("VpiList", &R::VpiList),
                     field("VpiRepeatCount", &R::VpiRepeatCount), field("Vci", &R::Vci),
                     field("VciStep", &R::VciStep), field("VciStepMask", &R::VciStepMask),
                     field("VciList", &R::VciList), field("VciRepeatCount", &R::VciRepeatCount),
                     field("VciRecycleCount", &R::VciRecycleCount), field("PtiCell", &R::PtiCell),
                     field("PtiCongestion", &R::PtiCongestion), field("Clp", &R::Clp), field("Uu", &R::Uu),
                     field("Cpi", &R::Cpi), enum_int<uint8_t>("VcEncapsulation", &R::VcEncapsulation));
}
VRM_RECORD_API(Aal5If)

struct FcIf_s {
    NetworkInterface_s NetworkInterface;
    WorldWideName_s WorldWideName;
    WorldWideName_s WorldWideNameStep;
    std::vector<WorldWideName_s> WorldWideNameList;
    uint32_t WorldWideNameRepeatCount = 0;
    WorldWideName_s WorldWideNameStepMask;
    uint32_t FcId = 0;
    uint32_t PeerFcId = 0;
    MacAddress_s PeerMac;
    MacAddress_s GrantedMac;
    std::vector<uint32_t> FcIdList;
    std::vector<uint32_t> PeerFcIdList;
    std::vector<MacAddress_s> GrantedMacList;
    bool UseGrantedVlanId = false;
    uint16_t GrantedVlanId = 0;
    bool UseDstMacFromSink = false;
};
constexpr auto describe(const FcIf_s*) {
    using R = FcIf_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("WorldWideName", &R::WorldWideName),
        field("WorldWideNameStep", &R::WorldWideNameStep), field("WorldWideNameList", &R::WorldWideNameList),
        field("WorldWideNameRepeatCount", &R::WorldWideNameRepeatCount),
        field("WorldWideNameStepMask", &R::WorldWideNameStepMask), field("FcId", &R::FcId),
        field("PeerFcId", &R::PeerFcId), field("PeerMac", &R::PeerMac), field("GrantedMac", &R::GrantedMac),
        field("FcIdList", &R::FcIdList), field("PeerFcIdList", &R::PeerFcIdList),
        field("GrantedMacList", &R::GrantedMacList), field("UseGrantedVlanId", &R::UseGrantedVlanId),
        field("GrantedVlanId", &R::GrantedVlanId), field("UseDstMacFromSink", &R::UseDstMacFromSink));
}
VRM_RECORD_API(FcIf)

struct LispIf_s {
    NetworkInterface_s NetworkInterface;
    std::vector<Ipv4Address_s> EtrIpv4AddrList;
    std::vector<Ipv6Address_s> EtrIpv6AddrList;
    EnumResolveState EtrAddrResolveState = EnumResolveState::RESOLVE_DONE;
};
constexpr auto describe(const LispIf_s*) {
    using R = LispIf_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface),
                     field("EtrIpv4AddrList", &R::EtrIpv4AddrList),
                     field("EtrIpv6AddrList", &R::EtrIpv6AddrList),
                     enum_int<uint8_t>("EtrAddrResolveState", &R::EtrAddrResolveState));
}
VRM_RECORD_API(LispIf)

struct VxlanIf_s {
    NetworkInterface_s NetworkInterface;
    uint32_t Vni = 0;
    int32_t VniStep = 0;
    int32_t VniCount = 0;
    std::vector<uint32_t> VniList;
    uint16_t VniRepeatCount = 0;
    bool AutoSelectUdpSrcPort = false;
    uint16_t UdpSrcPort = 0;
    uint16_t UdpDstPort = 0;
    bool UdpChecksumEnabled = false;
    bool VtepLearningEnabled = false;
    bool EvpnLearningEnabled = false;
    bool OvsdbLearningEnabled = false;
    Ipv4Address_s MulticastGroupAddr;
    std::vector<Ipv4Address_s> MulticastGroupAddrList;
    Ipv4Address_s MulticastGroupAddrStep;
    int32_t MulticastGroupAddrCount = 0;
    std::vector<Ipv4Address_s> ResolvedIpList;
    std::vector<MacAddress_s> ResolvedMacList;
    MacAddress_s ResolvedVmMac;
    MacAddress_s ResolvedVmMacStep;
    int32_t ResolvedVmMacCount = 0;
    EnumResolveState VtepAddrResolveState = EnumResolveState::RESOLVE_DONE;
    uint32_t PeerUnicastVtepIpAddr = 0;
    bool IsLearningUnicast = false;
    Ipv4Address_s RouterId;
    Ipv4Address_s InterfaceIp;
    EnumVxlanIpAddressModeType VxlanIpAddressMode = EnumVxlanIpAddressModeType::INTERFACE_IP;
    bool EnableVmArpSendingForEvpnLearning = false;
    bool UseTargetIpForVmArp = false;
    uint32_t VmDeviceCount = 0;
    EnumVniDistributionType VniDistributionType = EnumVniDistributionType::ROUND_ROBIN;
    MacAddress_s VtepRouterMac;
    EnumEvpnVxlanIRBMode EvpnOverlayIRBMode = EnumEvpnVxlanIRBMode::NONE;
    EnumBindingResolverFlag BindingResolverFlag = EnumBindingResolverFlag::NONE;
    std::vector<Ipv4Address_s> FloodVtepList;
    EnumTrafficControlFlag TrafficControlFlags = EnumTrafficControlFlag::NONE;
};
constexpr auto describe(const VxlanIf_s*) {
    using R = VxlanIf_s;
    using namespace binding;
    return record<R>(
        field("NetworkInterface", &R::NetworkInterface), field("Vni", &R::Vni), field("VniStep", &R::VniStep),
        field("VniCount", &R::VniCount), field("VniList", &R::VniList),
        field("VniRepeatCount", &R::VniRepeatCount), field("AutoSelectUdpSrcPort", &R::AutoSelectUdpSrcPort),
        field("UdpSrcPort", &R::UdpSrcPort), field("UdpDstPort", &R::UdpDstPort),
        field("UdpChecksumEnabled", &R::UdpChecksumEnabled),
        field("VtepLearningEnabled", &R::VtepLearningEnabled),
        field("EvpnLearningEnabled", &R::EvpnLearningEnabled),
        field("OvsdbLearningEnabled", &R::OvsdbLearningEnabled),
        field("MulticastGroupAddr", &R::MulticastGroupAddr),
        field("MulticastGroupAddrList", &R::MulticastGroupAddrList),
        field("MulticastGroupAddrStep", &R::MulticastGroupAddrStep),
        field("MulticastGroupAddrCount", &R::MulticastGroupAddrCount),
        field("ResolvedIpList", &R::ResolvedIpList), field("ResolvedMacList", &R::ResolvedMacList),
        field("ResolvedVmMac", &R::ResolvedVmMac), field("ResolvedVmMacStep", &R::ResolvedVmMacStep),
        field("ResolvedVmMacCount", &R::ResolvedVmMacCount),
        enum_int<uint8_t>("VtepAddrResolveState", &R::VtepAddrResolveState),
        field("PeerUnicastVtepIpAddr", &R::PeerUnicastVtepIpAddr),
        field("IsLearningUnicast", &R::IsLearningUnicast), field("RouterId", &R::RouterId),
        field("InterfaceIp", &R::InterfaceIp),
        enum_int<uint8_t>("VxlanIpAddressMode", &R::VxlanIpAddressMode),
        field("EnableVmArpSendingForEvpnLearning", &R::EnableVmArpSendingForEvpnLearning),
        field("UseTargetIpForVmArp", &R::UseTargetIpForVmArp), field("VmDeviceCount", &R::VmDeviceCount),
        enum_int<uint8_t>("VniDistributionType", &R::VniDistributionType),
        field("VtepRouterMac", &R::VtepRouterMac),
        enum_int<uint8_t>("EvpnOverlayIRBMode", &R::EvpnOverlayIRBMode),
        enum_int<uint32_t>("BindingResolverFlag", &R::BindingResolverFlag),
        field("FloodVtepList", &R::FloodVtepList),
        enum_int<uint32_t>("TrafficControlFlags", &R::TrafficControlFlags));
}
VRM_RECORD_API(VxlanIf)

struct GroupIf_s {
    NetworkInterface_s NetworkInterface;
    uint32_t GroupId = 0;
    std::vector<uint32_t> GroupIdList;
};
constexpr auto describe(const GroupIf_s*) {
    using R = GroupIf_s;
    using namespace binding;
    return record<R>(field("NetworkInterface", &R::NetworkInterface), field("GroupId", &R::GroupId),
                     field("GroupIdList", &R::GroupIdList));
}
VRM_RECORD_API(GroupIf)

}  // namespace ifSetup_1_bll
