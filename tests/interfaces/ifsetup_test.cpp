#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "interfaces/ifSetup_1_bll.h"
#include "interfaces/ifSetup_Autogen_bll.h"
#include "interfaces/ifSetup_Autogen_bll_methods.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "support/Loopback.h"

namespace ifs = ifSetup_1_bll;
namespace ifa = IFSETUP_1_bll;
namespace ts = testing_support;

namespace {

// The far side's response to `desc` carrying `values`, as the client receives it.
template <class Desc, class... V>
Message response_of(const Desc& desc, const V&... values) {
    return ts::received(desc.response, TMT_RESPONSE, values...);
}

// The struct a record converts to, inside the message that holds it.
struct Held {
    Message m;
    const Tm_struct* s;
    template <class R>
    explicit Held(const R& r, bool copy = true) : m(ts::holding(r, copy)), s(m.get_member_struct(TMG_SEND, "record")) {}
};

// --- records --------------------------------------------------------------------------------

TEST(IfSetupRecords, EveryRecordRoundTripsThroughTheWire) {
    ts::check_records<ifs::NetworkEndpoint_s, ifs::EmulatedIf_s, ifs::NetworkInterface_s, ifs::NetworkBlock_s,
                      ifs::Ipv4Address_s, ifs::Ipv6Address_s, ifs::MacAddress_s, ifs::WorldWideName_s,
                      ifs::Ipv4NetworkBlock_s, ifs::Ipv6NetworkBlock_s, ifs::MacBlock_s, ifs::VlanBlock_s,
                      ifs::Ipv4If_s, ifs::Ipv6If_s, ifs::EthIIIf_s, ifs::VlanIf_s, ifs::MplsIf_s, ifs::PppIf_s,
                      ifs::HdlcIf_s, ifs::TrillIf_s, ifs::PppoeIf_s, ifs::GreIf_s, ifs::WimaxIf_s, ifs::L2tpv2If_s,
                      ifs::L2tpv3If_s, ifs::ItagIf_s, ifs::Aal5If_s, ifs::FcIf_s, ifs::LispIf_s, ifs::VxlanIf_s,
                      ifs::GroupIf_s>();
    ts::check_records<ifa::NetworkInterfaceDescriptor_s, ifa::NetworkInterfaceStack_s, ifa::ifSetupLibParam_t,
                      ifa::GroupMember_s, ifa::GroupMemberConfig_s>(1, 4);
}

TEST(IfSetupRecords, Layouts) {
    const std::string head =
        "NetworkInterface:struct Address:struct AddrStep:struct AddrStepMask:struct SkipReserved:bool "
        "AddrList:array AddrRepeatCount:uint32 PrefixLength:uint8 EnableGatewayLearning:bool Gateway:struct "
        "GatewayStep:struct GatewayRepeatCount:uint32 ";
    // Ipv6 has the gateway list before the recycle count.
    EXPECT_EQ(ts::wire_layout(ifs::Ipv4If_s{}),
              head + "GatewayRecycleCount:uint32 GatewayList:array ResolveGatewayMac:bool GatewayMac:struct "
                     "Ttl:uint8 Tos:uint8 Ipv4TunnelGateway:struct VpnSiteType:uint8 VpnSiteId:uint64 "
                     "AddrIncrementPerRouter:uint32");
    EXPECT_EQ(ts::wire_layout(ifs::Ipv6If_s{}),
              head + "GatewayList:array GatewayRecycleCount:uint32 ResolveGatewayMac:bool GatewayMac:struct "
                     "HopLimit:uint8 TrafficClass:uint8 FlowLabel:uint32 Ipv6TunnelGateway:struct "
                     "VpnSiteType:uint8 VpnSiteId:uint64 AddrIncrementPerRouter:uint32");

    // The chain of bases ends in an empty struct.
    const Held trill(ifs::TrillIf_s{});
    EXPECT_EQ(ts::text(ts::layout(*trill.s)), "NetworkInterface:struct");
    const Tm_struct* ni = trill.s->get_member_struct("NetworkInterface");
    EXPECT_EQ(ts::text(ts::layout(*ni)),
              "EmulatedIf:struct IfCountPerLowerIf:uint32 IfRecycleCount:uint32 TotalCount:uint32 "
              "BllHandle:uint32 AffiliatedInterface:uint32");
    const Tm_struct* emulated = ni->get_member_struct("EmulatedIf");
    EXPECT_EQ(ts::text(ts::layout(*emulated)), "NetworkEndpoint:struct IsRange:bool IsDirectlyConnected:bool");
    EXPECT_EQ(emulated->get_member_struct("NetworkEndpoint")->get_member_count(), 0);

    ifs::MacBlock_s b;
    b.PrefixLength = {24, 48};
    const Held mac(b);
    EXPECT_EQ(ts::text(ts::layout(*mac.s)), "NetworkBlock:struct StartMacList:array Offset:uint8 PrefixLength:array");
    EXPECT_EQ(mac.s->get_member_array("PrefixLength")->get_member_value_type(1), TMV_UINT8);
    EXPECT_EQ(ts::text(ts::layout(*mac.s->get_member_struct("NetworkBlock"))),
              "NetworkEndpoint:struct NetworkCount:uint32 AddrIncrement:uint32 AddrIncrementPerRouter:uint32 "
              "NetworkInterfaceWithIpList:bool AddrModifierTypePerDevice:uint8");
}

// Each address record is one uint8 array of exactly its length, which follows the copy
// flag: a view sees later changes to the record, a copy does not.
template <class A>
void check_address(int length) {
    for (bool copy : {true, false}) {
        SCOPED_TRACE(std::to_string(length) + (copy ? " copy" : " view"));
        A a;
        for (std::size_t i = 0; i < a.address.size(); ++i) a.address[i] = static_cast<uint8_t>(i + 1);
        const Held h(a, copy);
        EXPECT_EQ(ts::text(ts::layout(*h.s)), "address:array");
        const Tm_array* bytes = h.s->get_member_array("address");
        ASSERT_EQ(bytes->get_member_count(), length);
        EXPECT_EQ(bytes->get_member_value_type(length - 1), TMV_UINT8);
        EXPECT_EQ(bytes->get_member_uint8(length - 1), length);
        a.address[0] = 0xEE;
        EXPECT_EQ(bytes->get_member_uint8(0), copy ? 1 : 0xEE);
    }
}

TEST(IfSetupRecords, AddressesAndScalarListsFollowTheCopyFlag) {
    check_address<ifs::Ipv4Address_s>(4);
    check_address<ifs::Ipv6Address_s>(16);
    check_address<ifs::MacAddress_s>(6);
    check_address<ifs::WorldWideName_s>(8);
    for (bool copy : {true, false}) {
        ifs::VlanIf_s v;
        v.IdList = {10, 20};
        const Held h(v, copy);
        v.IdList[1] = 30;
        EXPECT_EQ(h.s->get_member_array("IdList")->get_member_uint16(1), copy ? 20 : 30);
    }
}

TEST(IfSetupRecords, EnumMembersTravelAsIntegersEvenOutsideTheirTables) {
    ifs::VxlanIf_s x;
    x.VtepAddrResolveState = static_cast<ifs::EnumResolveState>(200);
    x.BindingResolverFlag = static_cast<ifs::EnumBindingResolverFlag>(0);
    x.TrafficControlFlags = static_cast<ifs::EnumTrafficControlFlag>(3);
    x.EvpnOverlayIRBMode = ifs::EnumEvpnVxlanIRBMode::SYMMETRIC;
    const Held h(x);
    EXPECT_EQ(h.s->get_member_uint8("VtepAddrResolveState"), 200);
    EXPECT_EQ(h.s->get_member_uint32("BindingResolverFlag"), 0u);
    EXPECT_EQ(h.s->get_member_uint32("TrafficControlFlags"), 3u);
    EXPECT_EQ(h.s->get_member_uint8("EvpnOverlayIRBMode"), 2);
    ts::loop_record(x, true);

    ifs::PppIf_s p;
    p.ProtocolId = static_cast<ifs::EnumPppProtocolId>(0xC021);
    const Held hp(p);
    EXPECT_EQ(hp.s->get_member_value_type(1), TMV_UINT16);
    EXPECT_EQ(hp.s->get_member_uint16("ProtocolId"), 0xC021);
    ifs::HdlcIf_s hd;
    hd.ProtocolType = ifs::EnumHdlcProtocolType::HDLC_PROTOCOL_TYPE_MPLS;
    EXPECT_EQ(Held(hd).s->get_member_uint16("ProtocolType"), 0x8847);
}

using Rows = std::vector<std::pair<int, std::string>>;
Rows rows_of(const tm_enum_map* map) {
    Rows out;
    for (; map->name; ++map) out.emplace_back(map->value, map->name);
    EXPECT_EQ(map->value, 0);
    return out;
}

TEST(IfSetupEnums, MapsHoldTheirRowsInTableOrder) {
    // clang-format off
    const std::vector<std::pair<const tm_enum_map*, Rows>> cases = {
        {ifs::em_EnumVpnSiteType, {{0, "VPN_NONE"}, {1, "VPN_RFC2547"}, {2, "VPN_6PE"}, {3, "VPN_6VPE"},
                                   {4, "VPN_VPLS_BGP"}, {5, "VPN_VPLS_LDP"}, {6, "VPN_VPLS_LDP_FEC_129"}, {7, "VPN_EVPN"}}},
        {ifs::em_EnumResolveState, {{0, "RESOLVE_DONE"}, {1, "RESOLVE_NEEDED"}, {2, "RESOLVE_FAILED"},
                                    {3, "RESOLVE_IN_PROGRESS"}, {4, "RESOLVE_PARTIALLY_DONE"}}},
        {ifs::em_EnumLearningGatewayState, {{0, "RESOLVE_DONE"}, {3, "RESOLVE_IN_PROGRESS"}, {4, "RETRYING_GATEWAY"},
                                            {1, "RESOLVE_NEEDED"}, {2, "RESOLVE_FAILED"}, {5, "FAILURE"}, {6, "SUCCESS"}}},
        {ifs::em_EnumPppProtocolId, {{0x57, "PPP_PROTOCOL_ID_IPV6"}, {0x21, "PPP_PROTOCOL_ID_IPV4"}, {0x281, "PPP_PROTOCOL_ID_MPLS"}}},
        {ifs::em_EnumHdlcProtocolType, {{0x0800, "HDLC_PROTOCOL_TYPE_IPV4"}, {0x86DD, "HDLC_PROTOCOL_TYPE_IPV6"},
                                        {0x8847, "HDLC_PROTOCOL_TYPE_MPLS"}}},
        {ifs::em_EnumVcEncapsulation, {{1, "VC_MULTIPLEXED"}, {2, "LLC_ENCAPSULATED"}}},
        {ifs::em_EnumTosType, {{0, "TOS"}, {1, "DIFFSERV"}}},
        {ifs::em_EnumEvpnMplsIRBMode, {{0, "NONE"}, {1, "ASYMMETRIC"}, {2, "SYMMETRIC"}}},
        {ifs::em_EnumEvpnVxlanIRBMode, {{0, "NONE"}, {1, "ASYMMETRIC"}, {2, "SYMMETRIC"}}},
        {ifs::em_EnumVxlanIpAddressModeType, {{0, "INTERFACE_IP"}, {1, "ROUTER_ID"}}},
        {ifs::em_EnumVniDistributionType, {{0, "ROUND_ROBIN"}, {1, "LINEAR"}}},
        {ifs::em_EnumBindingResolverFlag, {{1, "NONE"}, {2, "VXLAN_EVPN_TYPE5_VM_PREFIX_MATCH"}}},
        {ifs::em_EnumTrafficControlFlag, {{0, "NONE"}, {1, "IGNORE_VM_MAC_LEARNING_FROM_ARP"}}},
        {ifs::em_EnumAddrModifierTypePerDevice, {{1, "CONTINUOUS"}, {2, "REPEAT"}}},
        {ifa::em_InterfaceTypeList_t, {{0, "IPv6"}, {1, "IPv4"}, {2, "ETHII"}, {3, "VLAN"}, {4, "MPLS"}, {5, "PPP"},
                                       {6, "PPPOE"}, {7, "GRE"}, {8, "HDLC"}, {9, "WIMAX"}, {10, "L2TPv2"}, {11, "L2TPv3"},
                                       {12, "ITAG"}, {13, "AAL5"}, {14, "FC"}, {15, "LISP"}, {16, "GIF"}, {17, "STF"},
                                       {18, "TRILL"}, {19, "VXLAN"}, {20, "GROUP"}}},
        {ifa::em_ifSetupOptionType_t, {{1, "DONTCREATEVIF"}, {2, "APPLYGATEWAYMAC"}, {4, "SETARPNOEXPIRE"}}},
        {ifa::em_ifSetupLibParamType_t, {{0, "CREATEDEFAULTROUTE"}}},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(rows_of(c.first), c.second) << c.second.front().second;
    EXPECT_EQ(static_cast<int>(ifs::EnumLearningGatewayState::RETRYING_GATEWAY), 4);
    EXPECT_EQ(static_cast<int>(ifs::EnumBindingResolverFlag::NONE), 1);
    EXPECT_EQ(static_cast<int>(ifa::InterfaceTypeList_t::TRILL), 18);
}

// --- stacks and library parameters -----------------------------------------------------------

TEST(IfSetupStack, EmptyStackIsTwentyEmptyArraysAndDescriptorsCarryTypeNames) {
    EXPECT_EQ(ts::wire_layout(ifa::NetworkInterfaceStack_s{}),
              "ifDescriptors:array Ipv6InterfaceList:array Ipv4InterfaceList:array EthIIInterfaceList:array "
              "VlanInterfaceList:array MplsInterfaceList:array PppInterfaceList:array PppoeInterfaceList:array "
              "GreInterfaceList:array HdlcInterfaceList:array WimaxInterfaceList:array L2tpv2InterfaceList:array "
              "L2tpv3InterfaceList:array ItagInterfaceList:array Aal5InterfaceList:array FcInterfaceList:array "
              "LispInterfaceList:array TrillInterfaceList:array VxlanInterfaceList:array GroupInterfaceList:array");
    ifa::NetworkInterfaceStack_s stack;
    stack.ifDescriptors = {{ifa::InterfaceTypeList_t::GIF, 9}, {ifa::InterfaceTypeList_t::VXLAN, 0}};
    const Held h(stack);
    const Tm_array* d = h.s->get_member_array("ifDescriptors");
    ASSERT_EQ(d->get_member_count(), 2);
    EXPECT_EQ(ts::text(ts::layout(*d->get_member_struct(0))), "ifType:string indexInList:uint32");
    EXPECT_EQ(d->get_member_struct(0)->get_member_string("ifType"), "GIF");
    EXPECT_EQ(d->get_member_struct(1)->get_member_string("ifType"), "VXLAN");
    ts::loop_record(stack, false);
}

// The layout of the choice record: the tag first, then the alternatives' shared storage.
static_assert(std::is_standard_layout_v<ifa::ifSetupLibParam_t> &&
              offsetof(ifa::ifSetupLibParam_t, type) == 0 &&
              sizeof(ifa::ifSetupLibParam_t::type) == sizeof(int32_t));
static_assert(offsetof(ifa::ifSetupLibParam_t, createDefaultRoute) == sizeof(int32_t));

TEST(IfSetupLibParam, OnlyTheSelectedAlternativeIsWrittenAndRead) {
    const ifa::ifSetupLibParam_t fresh;
    EXPECT_TRUE(fresh.type == ifa::ifSetupLibParamType_t::CREATEDEFAULTROUTE);
    EXPECT_FALSE(fresh.createDefaultRoute);
    for (int tag : {0, 1, -1}) {
        ifa::ifSetupLibParam_t p;
        p.select(static_cast<ifa::ifSetupLibParamType_t>(tag));
        EXPECT_EQ(ts::wire_layout(p), tag == 0 ? "createDefaultRoute:bool" : "") << tag;
    }
    // A struct without the alternative leaves the record as it was: an unknown tag, or the
    // alternative with its value.
    Tm_struct other;
    other.add_member("somethingElse", false);
    ifa::ifSetupLibParam_t read;
    read.select(static_cast<ifa::ifSetupLibParamType_t>(7));
    ifa::ifSetupLibParam_t_from_struct(&other, &read);
    EXPECT_EQ(static_cast<int>(read.type.value()), 7);
    read.select(ifa::ifSetupLibParamType_t::CREATEDEFAULTROUTE);
    read.createDefaultRoute = true;
    ifa::ifSetupLibParam_t_from_struct(&other, &read);
    EXPECT_TRUE(read.createDefaultRoute);
    Tm_struct present;
    present.add_member("createDefaultRoute", false);
    read.select(static_cast<ifa::ifSetupLibParamType_t>(7));
    ifa::ifSetupLibParam_t_from_struct(&present, &read);
    EXPECT_TRUE(read.type == ifa::ifSetupLibParamType_t::CREATEDEFAULTROUTE);
    EXPECT_FALSE(read.createDefaultRoute);
}

// --- methods --------------------------------------------------------------------------------

TEST(IfSetupMethods, EveryMethodLoopsBackWithoutARequestName) { ts::check_catalogue(ifa::catalogue, "", 11, 3); }

TEST(IfSetupMethods, RequestMembersInOrder) {
    const std::map<std::string, std::string> want = {
        {"ConfigInterfaces", "ifStackList:array"},
        {"ConfigInterfacesWithIlHandle", "ilHandleList:array ifStackList:array optionList:array"},
        {"UpdateInterfaces", "ifHandleList:array ifStackList:array optionList:array"},
        {"DeleteInterfaces", "ilHandleList:array"},
        {"GetInterfaces", "ifHandleList:array"},
        {"GetStackedInterfaces", "ifHandleList:array"},
        {"AttachInterfaces", "ifHandleList:array"},
        {"DetachInterfaces", "ifHandleList:array"},
        {"SetGroupMembership", "groupConfigList:array"},
        {"SetInterfaceLibParams", "paramList:array"},
        {"GetInterfaceLibParams", "paramTypeList:array"},
    };
    std::size_t seen = 0;
    ts::for_each_entry(ifa::catalogue, [&](const auto& e) {
        const std::string name = e.desc->name;
        ASSERT_EQ(want.count(name), 1u) << name;
        ++seen;
        Message m;
        m.set_use_send_member_string(false);
        m.set_msg_type(TMT_RESPONSE);
        m.add_member(TMG_SEND, "stale", 1u);
        EXPECT_TRUE(ts::build_generated(e, &m, false, 5));
        EXPECT_TRUE(m.get_use_send_member_string());
        EXPECT_EQ(m.get_msg_type(), TMT_REQUEST);
        EXPECT_EQ(ts::text(ts::layout(m)), want.at(name)) << name;
    });
    EXPECT_EQ(seen, want.size());
    Message m;
    ifa::create_req_GetInterfaceLibParams(&m, {ifa::ifSetupLibParamType_t::CREATEDEFAULTROUTE}, false);
    EXPECT_EQ(m.get_member_array(TMG_SEND, "paramTypeList")->get_member_string(0), "CREATEDEFAULTROUTE");
}

TEST(IfSetupMethods, HandleAndOptionListsAreAlwaysCopied) {
    for (bool copy : {false, true}) {
        std::vector<uint32_t> handles{1, 2, 3};
        std::vector<uint32_t> options{3};
        std::vector<uint32_t> il{7};
        Message m;
        Message d;
        ifa::create_req_UpdateInterfaces(&m, handles, {}, options, copy);
        ifa::create_req_DeleteInterfaces(&d, il, copy);
        const auto before = tmsg::encode(m);
        const auto beforeD = tmsg::encode(d);
        handles[1] = 0xABCDEF;
        options[0] = 4;
        il[0] = 8;
        EXPECT_EQ(tmsg::encode(m), before) << copy;
        EXPECT_EQ(tmsg::encode(d), beforeD) << copy;
    }
}

TEST(IfSetupMethods, ParsersReplaceEarlierContentsOrRefuseARequest) {
    ts::Filler filler(21);
    std::vector<uint32_t> handles{4, 5};
    std::vector<ifa::NetworkInterfaceStack_s> stacks(2);
    filler.fill(stacks[0]);
    const Message in = response_of(ifa::methods::GetInterfaces, handles, stacks);
    std::vector<uint32_t> gotHandles{9, 9, 9};
    std::vector<ifa::NetworkInterfaceStack_s> gotStacks(3, stacks[0]);
    ifa::parse_resp_GetInterfaces(&in, gotHandles, gotStacks);
    EXPECT_EQ(gotHandles, handles);
    EXPECT_EQ(gotStacks, stacks);
    const Message cfgIn = response_of(ifa::methods::ConfigInterfaces, std::vector<uint32_t>{});
    ifa::parse_resp_ConfigInterfaces(&cfgIn, gotHandles);
    EXPECT_TRUE(gotHandles.empty());

    const Message request = ts::received(ifa::methods::GetInterfaces.response, TMT_REQUEST, handles, stacks);
    std::vector<ifa::ifSetupLibParam_t> params(1);
    params[0].createDefaultRoute = true;
    EXPECT_THROW(ifa::parse_resp_GetInterfaces(&request, gotHandles, gotStacks), Tm_type_mismatch_exception);
    EXPECT_THROW(ifa::parse_resp_GetStackedInterfaces(&request, gotHandles, gotStacks), Tm_type_mismatch_exception);
    EXPECT_THROW(ifa::parse_resp_GetInterfaceLibParams(&request, params), Tm_type_mismatch_exception);
    EXPECT_TRUE(gotHandles.empty());
    EXPECT_EQ(gotStacks, stacks);
    EXPECT_EQ(params.size(), 1u);
    try {
        ifa::parse_resp_DeleteInterfaces(&request);
        ADD_FAILURE() << "no exception";
    } catch (const Tm_type_mismatch_exception& e) {
        EXPECT_TRUE(e.is_message_type());
        EXPECT_EQ(e.found(), TMT_REQUEST);
        EXPECT_EQ(e.wanted(), TMT_RESPONSE);
    }
}

}  // namespace
