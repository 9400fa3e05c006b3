#include <gtest/gtest.h>

#include <map>
#include <string>
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
using testing_support::Layout;

namespace {

// A record converted on its own, with a message's send catalog.
template <class R>
struct Converted {
    Message message;
    Tm_prenamed_struct s;
    explicit Converted(const R& r, bool copy = true) {
        binding_to_struct(&s, &r, copy, message.get_send_member_string(TMG_SEND));
    }
};

// The far side's response to `desc` carrying `values`, as the client receives it.
template <class Desc, class... V>
Message response_of(const Desc& desc, const V&... values) {
    Message far;
    binding::build_message(&far, *desc.rules, desc.name, TMT_RESPONSE, desc.response, false, values...);
    Message client;
    tmsg::decode(tmsg::encode(far), client);
    return client;
}

// A request as the far side receives it: of the wrong kind for a response parser.
Message received_request() {
    Message m;
    ifa::create_req_DeleteInterfaces(&m, {1, 2}, true);
    Message in;
    tmsg::decode(tmsg::encode(m), in);
    return in;
}

ifs::Ipv4Address_s v4(uint8_t a, uint8_t b, uint8_t c, uint8_t d) { return ifs::Ipv4Address_s{{a, b, c, d}}; }

// --- records --------------------------------------------------------------------------------

TEST(IfSetupRecords, EveryRecordRoundTripsThroughTheWire) {
    testing_support::check_records<
        ifs::NetworkEndpoint_s, ifs::EmulatedIf_s, ifs::NetworkInterface_s, ifs::NetworkBlock_s,
        ifs::Ipv4Address_s, ifs::Ipv6Address_s, ifs::MacAddress_s, ifs::WorldWideName_s,
        ifs::Ipv4NetworkBlock_s, ifs::Ipv6NetworkBlock_s, ifs::MacBlock_s, ifs::VlanBlock_s, ifs::Ipv4If_s,
        ifs::Ipv6If_s, ifs::EthIIIf_s, ifs::VlanIf_s, ifs::MplsIf_s, ifs::PppIf_s, ifs::HdlcIf_s,
        ifs::TrillIf_s, ifs::PppoeIf_s, ifs::GreIf_s, ifs::WimaxIf_s, ifs::L2tpv2If_s, ifs::L2tpv3If_s,
        ifs::ItagIf_s, ifs::Aal5If_s, ifs::FcIf_s, ifs::LispIf_s, ifs::VxlanIf_s, ifs::GroupIf_s>();
    testing_support::check_records<ifa::NetworkInterfaceDescriptor_s, ifa::NetworkInterfaceStack_s,
                                   ifa::ifSetupLibParam_t, ifa::GroupMember_s, ifa::GroupMemberConfig_s>(1,
                                                                                                         4);
}

TEST(IfSetupRecords, Ipv4IfLayout) {
    Converted<ifs::Ipv4If_s> c(ifs::Ipv4If_s{});
    const Layout want{{"NetworkInterface", TMV_STRUCT},
                      {"Address", TMV_STRUCT},
                      {"AddrStep", TMV_STRUCT},
                      {"AddrStepMask", TMV_STRUCT},
                      {"SkipReserved", TMV_BOOL},
                      {"AddrList", TMV_ARRAY},
                      {"AddrRepeatCount", TMV_UINT32},
                      {"PrefixLength", TMV_UINT8},
                      {"EnableGatewayLearning", TMV_BOOL},
                      {"Gateway", TMV_STRUCT},
                      {"GatewayStep", TMV_STRUCT},
                      {"GatewayRepeatCount", TMV_UINT32},
                      {"GatewayRecycleCount", TMV_UINT32},
                      {"GatewayList", TMV_ARRAY},
                      {"ResolveGatewayMac", TMV_BOOL},
                      {"GatewayMac", TMV_STRUCT},
                      {"Ttl", TMV_UINT8},
                      {"Tos", TMV_UINT8},
                      {"Ipv4TunnelGateway", TMV_STRUCT},
                      {"VpnSiteType", TMV_UINT8},
                      {"VpnSiteId", TMV_UINT64},
                      {"AddrIncrementPerRouter", TMV_UINT32}};
    EXPECT_EQ(testing_support::layout(c.s), want);
}

TEST(IfSetupRecords, Ipv6IfLayoutHasGatewayListBeforeRecycleCount) {
    Converted<ifs::Ipv6If_s> c(ifs::Ipv6If_s{});
    const Layout want{{"NetworkInterface", TMV_STRUCT},
                      {"Address", TMV_STRUCT},
                      {"AddrStep", TMV_STRUCT},
                      {"AddrStepMask", TMV_STRUCT},
                      {"SkipReserved", TMV_BOOL},
                      {"AddrList", TMV_ARRAY},
                      {"AddrRepeatCount", TMV_UINT32},
                      {"PrefixLength", TMV_UINT8},
                      {"EnableGatewayLearning", TMV_BOOL},
                      {"Gateway", TMV_STRUCT},
                      {"GatewayStep", TMV_STRUCT},
                      {"GatewayRepeatCount", TMV_UINT32},
                      {"GatewayList", TMV_ARRAY},
                      {"GatewayRecycleCount", TMV_UINT32},
                      {"ResolveGatewayMac", TMV_BOOL},
                      {"GatewayMac", TMV_STRUCT},
                      {"HopLimit", TMV_UINT8},
                      {"TrafficClass", TMV_UINT8},
                      {"FlowLabel", TMV_UINT32},
                      {"Ipv6TunnelGateway", TMV_STRUCT},
                      {"VpnSiteType", TMV_UINT8},
                      {"VpnSiteId", TMV_UINT64},
                      {"AddrIncrementPerRouter", TMV_UINT32}};
    EXPECT_EQ(testing_support::layout(c.s), want);
}

TEST(IfSetupRecords, ChainOfBasesEndsInAnEmptyStruct) {
    Converted<ifs::TrillIf_s> c(ifs::TrillIf_s{});
    EXPECT_EQ(testing_support::layout(c.s), (Layout{{"NetworkInterface", TMV_STRUCT}}));
    const Tm_struct* ni = c.s.get_member_struct("NetworkInterface");
    EXPECT_EQ(testing_support::layout(*ni), (Layout{{"EmulatedIf", TMV_STRUCT},
                                                    {"IfCountPerLowerIf", TMV_UINT32},
                                                    {"IfRecycleCount", TMV_UINT32},
                                                    {"TotalCount", TMV_UINT32},
                                                    {"BllHandle", TMV_UINT32},
                                                    {"AffiliatedInterface", TMV_UINT32}}));
    const Tm_struct* emulated = ni->get_member_struct("EmulatedIf");
    EXPECT_EQ(
        testing_support::layout(*emulated),
        (Layout{{"NetworkEndpoint", TMV_STRUCT}, {"IsRange", TMV_BOOL}, {"IsDirectlyConnected", TMV_BOOL}}));
    EXPECT_EQ(emulated->get_member_struct("NetworkEndpoint")->get_member_count(), 0);
    EXPECT_EQ(ifs::NetworkEndpoint_t_names[0], nullptr);
}

TEST(IfSetupRecords, MacBlockLayoutWithListOfPrefixLengths) {
    ifs::MacBlock_s b;
    b.StartMacList.resize(2);
    b.PrefixLength = {24, 48};
    Converted<ifs::MacBlock_s> c(b);
    EXPECT_EQ(testing_support::layout(c.s), (Layout{{"NetworkBlock", TMV_STRUCT},
                                                    {"StartMacList", TMV_ARRAY},
                                                    {"Offset", TMV_UINT8},
                                                    {"PrefixLength", TMV_ARRAY}}));
    const Tm_array* p = c.s.get_member_array("PrefixLength");
    ASSERT_EQ(p->get_member_count(), 2);
    EXPECT_EQ(p->get_member_value_type(0), TMV_UINT8);
    EXPECT_EQ(p->get_member_uint8(1), 48);
    EXPECT_EQ(testing_support::layout(*c.s.get_member_struct("NetworkBlock")),
              (Layout{{"NetworkEndpoint", TMV_STRUCT},
                      {"NetworkCount", TMV_UINT32},
                      {"AddrIncrement", TMV_UINT32},
                      {"AddrIncrementPerRouter", TMV_UINT32},
                      {"NetworkInterfaceWithIpList", TMV_BOOL},
                      {"AddrModifierTypePerDevice", TMV_UINT8}}));
}

// Each address record is one uint8 array of exactly its length, which follows the copy
// flag: a view sees later changes to the record, a copy does not.
template <class A>
void check_address(int length) {
    for (bool copy : {true, false}) {
        SCOPED_TRACE(std::to_string(length) + (copy ? " copy" : " view"));
        A a;
        for (std::size_t i = 0; i < a.address.size(); ++i) a.address[i] = static_cast<uint8_t>(i + 1);
        Converted<A> c(a, copy);
        EXPECT_EQ(testing_support::layout(c.s), (Layout{{"address", TMV_ARRAY}}));
        const Tm_array* bytes = c.s.get_member_array("address");
        ASSERT_EQ(bytes->get_member_count(), length);
        EXPECT_EQ(bytes->get_member_value_type(length - 1), TMV_UINT8);
        EXPECT_EQ(bytes->get_member_uint8(length - 1), length);
        a.address[0] = 0xEE;
        EXPECT_EQ(bytes->get_member_uint8(0), copy ? 1 : 0xEE);
    }
}

TEST(IfSetupRecords, AddressesAreByteArraysOfTheirLength) {
    check_address<ifs::Ipv4Address_s>(4);
    check_address<ifs::Ipv6Address_s>(16);
    check_address<ifs::MacAddress_s>(6);
    check_address<ifs::WorldWideName_s>(8);
}

TEST(IfSetupRecords, ScalarListsFollowTheCopyFlag) {
    for (bool copy : {true, false}) {
        SCOPED_TRACE(copy);
        ifs::VlanIf_s v;
        v.IdList = {10, 20};
        Converted<ifs::VlanIf_s> c(v, copy);
        v.IdList[1] = 30;
        EXPECT_EQ(c.s.get_member_array("IdList")->get_member_uint16(1), copy ? 20 : 30);
    }
}

TEST(IfSetupRecords, EnumMembersTravelAsIntegersEvenOutsideTheirTables) {
    ifs::VxlanIf_s x;
    x.VtepAddrResolveState = static_cast<ifs::EnumResolveState>(200);
    x.BindingResolverFlag = static_cast<ifs::EnumBindingResolverFlag>(0);
    x.TrafficControlFlags = static_cast<ifs::EnumTrafficControlFlag>(3);
    x.EvpnOverlayIRBMode = ifs::EnumEvpnVxlanIRBMode::SYMMETRIC;
    Converted<ifs::VxlanIf_s> c(x);
    EXPECT_EQ(c.s.get_member_uint8("VtepAddrResolveState"), 200);
    EXPECT_EQ(c.s.get_member_uint32("BindingResolverFlag"), 0u);
    EXPECT_EQ(c.s.get_member_uint32("TrafficControlFlags"), 3u);
    EXPECT_EQ(c.s.get_member_uint8("EvpnOverlayIRBMode"), 2);
    testing_support::loop_record(x, true);

    ifs::PppIf_s p;
    p.ProtocolId = static_cast<ifs::EnumPppProtocolId>(0xC021);
    Converted<ifs::PppIf_s> cp(p);
    EXPECT_EQ(cp.s.get_member_value_type(1), TMV_UINT16);
    EXPECT_EQ(cp.s.get_member_uint16("ProtocolId"), 0xC021);
    testing_support::loop_record(p, false);

    ifs::HdlcIf_s h;
    h.ProtocolType = ifs::EnumHdlcProtocolType::HDLC_PROTOCOL_TYPE_MPLS;
    Converted<ifs::HdlcIf_s> ch(h);
    EXPECT_EQ(ch.s.get_member_uint16("ProtocolType"), 0x8847);
}

using Rows = std::vector<std::pair<int, std::string>>;
Rows rows_of(const tm_enum_map* map) {
    Rows out;
    for (; map->name; ++map) out.emplace_back(map->value, map->name);
    EXPECT_EQ(map->value, 0);
    return out;
}

TEST(IfSetupEnums, MapsHoldTheirRowsInTableOrder) {
    const std::vector<std::pair<const tm_enum_map*, Rows>> cases = {
        {ifs::em_EnumVpnSiteType,
         {{0, "VPN_NONE"},
          {1, "VPN_RFC2547"},
          {2, "VPN_6PE"},
          {3, "VPN_6VPE"},
          {4, "VPN_VPLS_BGP"},
          {5, "VPN_VPLS_LDP"},
          {6, "VPN_VPLS_LDP_FEC_129"},
          {7, "VPN_EVPN"}}},
        {ifs::em_EnumResolveState,
         {{0, "RESOLVE_DONE"},
          {1, "RESOLVE_NEEDED"},
          {2, "RESOLVE_FAILED"},
          {3, "RESOLVE_IN_PROGRESS"},
          {4, "RESOLVE_PARTIALLY_DONE"}}},
        {ifs::em_EnumLearningGatewayState,
         {{0, "RESOLVE_DONE"},
          {3, "RESOLVE_IN_PROGRESS"},
          {4, "RETRYING_GATEWAY"},
          {1, "RESOLVE_NEEDED"},
          {2, "RESOLVE_FAILED"},
          {5, "FAILURE"},
          {6, "SUCCESS"}}},
        {ifs::em_EnumPppProtocolId,
         {{0x57, "PPP_PROTOCOL_ID_IPV6"}, {0x21, "PPP_PROTOCOL_ID_IPV4"}, {0x281, "PPP_PROTOCOL_ID_MPLS"}}},
        {ifs::em_EnumHdlcProtocolType,
         {{0x0800, "HDLC_PROTOCOL_TYPE_IPV4"},
          {0x86DD, "HDLC_PROTOCOL_TYPE_IPV6"},
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
        {ifa::em_InterfaceTypeList_t,
         {{0, "IPv6"},   {1, "IPv4"},   {2, "ETHII"}, {3, "VLAN"},  {4, "MPLS"},    {5, "PPP"},
          {6, "PPPOE"},  {7, "GRE"},    {8, "HDLC"},  {9, "WIMAX"}, {10, "L2TPv2"}, {11, "L2TPv3"},
          {12, "ITAG"},  {13, "AAL5"},  {14, "FC"},   {15, "LISP"}, {16, "GIF"},    {17, "STF"},
          {18, "TRILL"}, {19, "VXLAN"}, {20, "GROUP"}}},
        {ifa::em_ifSetupOptionType_t, {{1, "DONTCREATEVIF"}, {2, "APPLYGATEWAYMAC"}, {4, "SETARPNOEXPIRE"}}},
        {ifa::em_ifSetupLibParamType_t, {{0, "CREATEDEFAULTROUTE"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.second.front().second);
        EXPECT_EQ(rows_of(c.first), c.second);
    }
    EXPECT_EQ(static_cast<int>(ifs::EnumLearningGatewayState::RETRYING_GATEWAY), 4);
    EXPECT_EQ(tms_string_to_enum("RESOLVE_NEEDED", ifs::em_EnumLearningGatewayState), 1);
    EXPECT_EQ(static_cast<int>(ifs::EnumBindingResolverFlag::NONE), 1);
    EXPECT_EQ(static_cast<int>(ifa::InterfaceTypeList_t::TRILL), 18);
}

// --- stacks and library parameters -----------------------------------------------------------

const std::vector<std::string> kStackMembers = {
    "ifDescriptors",       "Ipv6InterfaceList",  "Ipv4InterfaceList",  "EthIIInterfaceList",
    "VlanInterfaceList",   "MplsInterfaceList",  "PppInterfaceList",   "PppoeInterfaceList",
    "GreInterfaceList",    "HdlcInterfaceList",  "WimaxInterfaceList", "L2tpv2InterfaceList",
    "L2tpv3InterfaceList", "ItagInterfaceList",  "Aal5InterfaceList",  "FcInterfaceList",
    "LispInterfaceList",   "TrillInterfaceList", "VxlanInterfaceList", "GroupInterfaceList"};

TEST(IfSetupStack, EmptyStackIsTwentyEmptyArrays) {
    Message m;
    ifa::create_req_ConfigInterfaces(&m, {ifa::NetworkInterfaceStack_s{}}, true);
    Message far;
    tmsg::decode(tmsg::encode(m), far);
    const Tm_array* stacks = far.get_member_array(TMG_RECV, "ifStackList");
    ASSERT_EQ(stacks->get_member_count(), 1);
    const Tm_struct* s = stacks->get_member_struct(0);
    Layout want;
    for (const auto& n : kStackMembers) want.emplace_back(n, TMV_ARRAY);
    EXPECT_EQ(testing_support::layout(*s), want);
    for (const auto& n : kStackMembers) EXPECT_EQ(s->get_member_array(n)->get_member_count(), 0) << n;
}

TEST(IfSetupStack, DescriptorsAreCarriedUncheckedWithTypeNames) {
    ifa::NetworkInterfaceStack_s stack;
    stack.ifDescriptors = {{ifa::InterfaceTypeList_t::GIF, 9}, {ifa::InterfaceTypeList_t::VXLAN, 0}};
    stack.VxlanInterfaceList.resize(1);
    Converted<ifa::NetworkInterfaceStack_s> c(stack);
    const Tm_array* d = c.s.get_member_array("ifDescriptors");
    ASSERT_EQ(d->get_member_count(), 2);
    EXPECT_EQ(testing_support::layout(*d->get_member_struct(0)),
              (Layout{{"ifType", TMV_STRING}, {"indexInList", TMV_UINT32}}));
    EXPECT_EQ(d->get_member_struct(0)->get_member_string("ifType"), "GIF");
    EXPECT_EQ(d->get_member_struct(1)->get_member_string("ifType"), "VXLAN");
    testing_support::loop_record(stack, false);
}

TEST(IfSetupLibParam, WritesOnlyTheSelectedAlternative) {
    struct Case {
        int tag;
        bool value;
        Layout want;
    };
    const std::vector<Case> cases = {
        {0, true, {{"createDefaultRoute", TMV_BOOL}}},
        {0, false, {{"createDefaultRoute", TMV_BOOL}}},
        {1, true, {}},
        {-1, true, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.tag);
        ifa::ifSetupLibParam_t p{static_cast<ifa::ifSetupLibParamType_t>(c.tag), c.value};
        Message m;
        Tm_struct s;
        s.add_member("stale", 1);
        EXPECT_EQ(ifa::ifSetupLibParam_t_to_struct(&s, &p, true, m.get_send_member_string(TMG_SEND)), &s);
        EXPECT_EQ(testing_support::layout(s), c.want);
        if (!c.want.empty()) {
            EXPECT_EQ(s.get_member_bool("createDefaultRoute"), c.value);
        }
    }
}

TEST(IfSetupLibParam, ReadingSelectsOnlyWhenTheMemberIsPresent) {
    const ifa::ifSetupLibParam_t before{static_cast<ifa::ifSetupLibParamType_t>(7), true};

    ifa::ifSetupLibParam_t untouched = before;
    Tm_struct empty;
    ifa::ifSetupLibParam_t_from_struct(&empty, &untouched);
    EXPECT_EQ(static_cast<int>(untouched.type), 7);
    EXPECT_TRUE(untouched.createDefaultRoute);

    Tm_struct other;
    other.add_member("somethingElse", false);
    ifa::ifSetupLibParam_t_from_struct(&other, &untouched);
    EXPECT_EQ(static_cast<int>(untouched.type), 7);

    ifa::ifSetupLibParam_t read = before;
    Tm_struct present;
    present.add_member("createDefaultRoute", false);
    ifa::ifSetupLibParam_t_from_struct(&present, &read);
    EXPECT_EQ(read.type, ifa::ifSetupLibParamType_t::CREATEDEFAULTROUTE);
    EXPECT_FALSE(read.createDefaultRoute);
}

// --- methods --------------------------------------------------------------------------------

TEST(IfSetupMethods, EveryMethodLoopsBackWithoutARequestName) {
    testing_support::check_catalogue(ifa::catalogue, "", 11, 3);
}

TEST(IfSetupMethods, RequestMembersInOrder) {
    const std::map<std::string, std::vector<std::string>> want = {
        {"ConfigInterfaces", {"ifStackList"}},
        {"ConfigInterfacesWithIlHandle", {"ilHandleList", "ifStackList", "optionList"}},
        {"UpdateInterfaces", {"ifHandleList", "ifStackList", "optionList"}},
        {"DeleteInterfaces", {"ilHandleList"}},
        {"GetInterfaces", {"ifHandleList"}},
        {"GetStackedInterfaces", {"ifHandleList"}},
        {"AttachInterfaces", {"ifHandleList"}},
        {"DetachInterfaces", {"ifHandleList"}},
        {"SetGroupMembership", {"groupConfigList"}},
        {"SetInterfaceLibParams", {"paramList"}},
        {"GetInterfaceLibParams", {"paramTypeList"}},
    };
    std::size_t seen = 0;
    testing_support::for_each_entry(ifa::catalogue, [&](const auto& e) {
        const std::string name = e.desc->name;
        SCOPED_TRACE(name);
        ASSERT_EQ(want.count(name), 1u);
        ++seen;
        Message m;
        m.set_use_send_member_string(false);
        m.set_msg_type(TMT_RESPONSE);
        m.add_member(TMG_SEND, "stale", 1u);
        EXPECT_TRUE(testing_support::build_generated(e, &m, false, 5));
        EXPECT_TRUE(m.get_use_send_member_string());
        EXPECT_EQ(m.get_msg_type(), TMT_REQUEST);
        EXPECT_EQ(m.get_request_name(), "");
        EXPECT_EQ(m.get_member_count(TMG_RECV), 0);
        Layout expected;
        for (const auto& n : want.at(name)) expected.emplace_back(n, TMV_ARRAY);
        EXPECT_EQ(testing_support::layout(m), expected);
    });
    EXPECT_EQ(seen, want.size());
}

TEST(IfSetupMethods, HandleAndOptionListsAreAlwaysCopied) {
    for (bool copy : {false, true}) {
        SCOPED_TRACE(copy);
        std::vector<uint32_t> handles{1, 2, 3};
        std::vector<uint32_t> options{3};
        Message m;
        ifa::create_req_UpdateInterfaces(&m, handles, {}, options, copy);
        const auto before = tmsg::encode(m);
        handles[1] = 0xABCDEF;
        options[0] = 4;
        EXPECT_EQ(tmsg::encode(m), before);
        EXPECT_EQ(m.get_member_array(TMG_SEND, "ifHandleList")->get_member_uint32(1), 2u);
        EXPECT_EQ(m.get_member_array(TMG_SEND, "optionList")->get_member_uint32(0), 3u);

        std::vector<uint32_t> il{7};
        Message d;
        ifa::create_req_DeleteInterfaces(&d, il, copy);
        il[0] = 8;
        EXPECT_EQ(d.get_member_array(TMG_SEND, "ilHandleList")->get_member_uint32(0), 7u);
    }
}

TEST(IfSetupMethods, ParamTypesAreSentAsNames) {
    Message m;
    ifa::create_req_GetInterfaceLibParams(&m, {ifa::ifSetupLibParamType_t::CREATEDEFAULTROUTE}, false);
    const Tm_array* a = m.get_member_array(TMG_SEND, "paramTypeList");
    ASSERT_EQ(a->get_member_count(), 1);
    EXPECT_EQ(a->get_member_value_type(0), TMV_STRING);
    EXPECT_EQ(a->get_member_string(0), "CREATEDEFAULTROUTE");

    ifa::create_req_GetInterfaceLibParams(&m, {}, false);
    EXPECT_EQ(m.get_member_array(TMG_SEND, "paramTypeList")->get_member_count(), 0);
}

TEST(IfSetupMethods, ParsersReplaceEarlierContents) {
    testing_support::Filler filler(21);
    std::vector<uint32_t> handles{4, 5};
    std::vector<ifa::NetworkInterfaceStack_s> stacks(2);
    filler.fill(stacks[0]);
    stacks[1].Ipv4InterfaceList.resize(1);
    stacks[1].Ipv4InterfaceList[0].GatewayList = {v4(10, 0, 0, 1), v4(10, 0, 0, 2)};
    const Message in = response_of(ifa::methods::GetInterfaces, handles, stacks);

    std::vector<uint32_t> gotHandles{9, 9, 9};
    std::vector<ifa::NetworkInterfaceStack_s> gotStacks(3, stacks[1]);
    ifa::parse_resp_GetInterfaces(&in, gotHandles, gotStacks);
    EXPECT_EQ(gotHandles, handles);
    EXPECT_EQ(gotStacks, stacks);

    const std::vector<ifa::ifSetupLibParam_t> params{{ifa::ifSetupLibParamType_t::CREATEDEFAULTROUTE, true}};
    const Message libIn = response_of(ifa::methods::GetInterfaceLibParams, params);
    std::vector<ifa::ifSetupLibParam_t> gotParams(4);
    ifa::parse_resp_GetInterfaceLibParams(&libIn, gotParams);
    EXPECT_EQ(gotParams, params);

    const Message cfgIn = response_of(ifa::methods::ConfigInterfaces, std::vector<uint32_t>{});
    std::vector<uint32_t> il{1};
    ifa::parse_resp_ConfigInterfaces(&cfgIn, il);
    EXPECT_TRUE(il.empty());
}

TEST(IfSetupMethods, RequestKindThrowsAndLeavesOutputs) {
    const Message in = received_request();
    ifa::NetworkInterfaceStack_s stack;
    stack.GroupInterfaceList.resize(1);
    std::vector<uint32_t> handles{1, 2};
    std::vector<ifa::NetworkInterfaceStack_s> stacks{stack};
    std::vector<ifa::ifSetupLibParam_t> params{{ifa::ifSetupLibParamType_t::CREATEDEFAULTROUTE, true}};

    EXPECT_THROW(ifa::parse_resp_GetInterfaces(&in, handles, stacks), Tm_type_mismatch_exception);
    EXPECT_THROW(ifa::parse_resp_GetStackedInterfaces(&in, handles, stacks), Tm_type_mismatch_exception);
    EXPECT_THROW(ifa::parse_resp_ConfigInterfaces(&in, handles), Tm_type_mismatch_exception);
    EXPECT_THROW(ifa::parse_resp_GetInterfaceLibParams(&in, params), Tm_type_mismatch_exception);
    EXPECT_EQ(handles, (std::vector<uint32_t>{1, 2}));
    EXPECT_EQ(stacks, std::vector<ifa::NetworkInterfaceStack_s>{stack});
    EXPECT_EQ(params.size(), 1u);
    EXPECT_TRUE(params[0].createDefaultRoute);

    try {
        ifa::parse_resp_DeleteInterfaces(&in);
        ADD_FAILURE() << "no exception";
    } catch (const Tm_type_mismatch_exception& e) {
        EXPECT_TRUE(e.is_message_type());
        EXPECT_EQ(e.found(), TMT_REQUEST);
        EXPECT_EQ(e.wanted(), TMT_RESPONSE);
    }
}

}  // namespace
