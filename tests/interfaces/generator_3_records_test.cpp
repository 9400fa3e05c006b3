// Records of the generator module: round trips, wire layouts, enum texts, the deliberate
// stops of bounded members and the choice records.
#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "interfaces/generator_3_bll.h"
#include "interfaces/generator_3_bll_records.h"
#include "platform/Tm_exception.h"
#include "support/Loopback.h"

using namespace Generator_3_bll;
namespace ts = testing_support;

namespace {

// Names tables are static, null-terminated arrays: one entry per member (a choice record: per
// alternative) and the terminator.
static_assert(std::size(rangeModifier_t_names) == 11 && rangeModifier_t_names[10] == nullptr);
static_assert(std::size(modLinkDesc_t_names) == 3 && modLinkDesc_t_names[2] == nullptr);
static_assert(std::size(portRate_t_names) == 3 && portRate_t_names[2] == nullptr);

using Names = std::vector<std::string>;

// Names of the members of a record converted on its own.
template <class R>
Names member_names(const R& rec) {
    Names out;
    for (const auto& m : ts::layout(*ts::holding(rec, true).get_member_struct(TMG_SEND, "record")))
        out.push_back(m.first);
    return out;
}

TEST(Generator3Records, EveryRecordRoundTripsThroughTheWire) {
    ts::check_records<modifierData_s, rangeModifier_s, tableModifier_s, modLinkDesc_s, frameDataModifier_s,
    frameIndexModifier_s, frameDataModArray_s, rate_s, randomRate_s, portRate_t, genTxDuration_s, schedCfg_s,
    imixDistCfg_s, imixCfg_s, counterCfg_s, genCommonCfg_s, startStopTime_s, genErrorCfg_s, genFrameLenCfg_s,
    genFrameOptCfg_s, genBasicStreamCfg_s, vfdConfig_s, genVFDCfg_s, genFrameInfo_s, genFrameDataType_s,
    genFrameCfg_s, routeOffset_s, genRouteInsCfg_s, genStreamCfg_s, tableEntry_s, tableEntryModData_s,
    genCustomPfc_s, genUitCfg_s, frameCfg_s, baseStreamCfg_s, networkInterfaceData_s, encapNi_s,
    pathDescriptor_s, rateRangeModifier_s, rateListModifier_s, rateRandomModifier_s, blockRateModifier_s,
    streamBlock_s, modBlockRateModifier_s, streamBlockModData_t, streamBlockModArray_s, streamBlockModRange_s,
    genericStreamModData_s, streamModData_t, streamModifier_s, streamModifierArray_s, streamIndexes_s,
    niStreamIndexes_s, streamRange_s, streamRate_s, streamRateArray_s, streamNIS_s, streamMultiplier_s,
    destMACMod_s, warningLog_s, tableInfo_s, ritInfo_s, strAttrDef_s, custColumnDef_s, genStrBlockRunState_s>(1, 6);
}

TEST(Generator3Records, Layouts) {
    EXPECT_EQ(ts::wire_layout(rangeModifier_s{}),
              "modIndex:uint32 offset:uint16 offsetReference:string initialValue:struct stepValue:struct "
              "recycleCount:uint32 stutterCount:uint32 mask:struct mode:string useStream:bool");
    EXPECT_EQ(ts::wire_layout(tableModifier_s{}),
              "modIndex:uint32 offset:uint16 offsetReference:string data:array stutterCount:uint32 useStream:bool");
    EXPECT_EQ(ts::wire_layout(streamBlock_s{}),
              "name:string blockID:uint32 baseStream:struct rateModifier:array modLinks:array "
              "rangeModifiers:array tableModifiers:array interfaces:array multiHomeNis:array "
              "pathDescriptors:array enableControlPlane:bool ilManaged:bool mergeWholeStack:bool "
              "fastStream:bool startStreamIndex:uint32 byPassSimpleIpSubnetChecking:bool schedulerGroup:uint8 "
              "customPfc:struct uitCfg:struct");
    EXPECT_EQ(ts::wire_layout(genCommonCfg_s{}),
              "mode:string duration:struct rate:struct schedParams:struct txTimestampLatchMode:string "
              "testStreamID:int32 randomLengthSeed:int32 imix:struct counterParams:struct "
              "signatureMode:string stepSize:uint16 smoothenRandom:bool");
}

TEST(Generator3Records, EnumsTravelAsTheirNamesOrAsDecimalText) {
    genCommonCfg_s cfg;
    cfg.mode = genTxMode_t::MAX;
    cfg.signatureMode = genSignatureMode_t::ENHANCED_DETECTION;
    cfg.rate.fixed.rateUnit = LoadProfile_1_bll::rateUnit_t::L2_RATE;
    Message m = ts::holding(cfg, true);
    const Tm_struct* s = m.get_member_struct(TMG_SEND, "record");
    EXPECT_EQ(s->get_member_string("mode"), "MAX");
    EXPECT_EQ(s->get_member_string("signatureMode"), "ENHANCED_DETECTION");
    EXPECT_EQ(s->get_member_struct("rate")->get_member_struct("fixed")->get_member_string("rateUnit"), "L2_RATE");

    rateListModifier_s list;
    list.loadUnit = {LoadProfile_1_bll::rateUnit_t::BITS_PER_SECOND, LoadProfile_1_bll::rateUnit_t::L2_RATE,
                     static_cast<LoadProfile_1_bll::rateUnit_t>(99)};
    Message l = ts::holding(list, true);
    const Tm_array* units = l.get_member_struct(TMG_SEND, "record")->get_member_array("loadUnit");
    ASSERT_EQ(units->get_member_count(), 3);
    EXPECT_EQ(units->get_member_string(1), "L2_RATE");
    EXPECT_EQ(units->get_member_string(2), "99");

    genUitCfg_s uit;
    uit.tsType = static_cast<tsType_t>(12);
    EXPECT_EQ(ts::holding(uit, true).get_member_struct(TMG_SEND, "record")->get_member_string("tsType"), "12");
    ts::loop_record(uit, false);
}

struct MapCase {
    const char* label;
    const tm_enum_map* map;
    Names rows;  // names of values 0, 1, 2, ...
};

TEST(Generator3Records, EnumMapsMatchTheirTables) {
    // clang-format off
    const std::vector<MapCase> cases = {
        {"configModMode", em_configModMode_t, {"INCREMENT", "DECREMENT", "RANDOM", "SHUFFLE"}},
        {"offsetReference", em_offsetReference_t, {"START_OF_FRAME", "IPV4", "IPV6", "TCP", "UDP"}},
        {"genTxMode", em_genTxMode_t, {"MIN", "CONTINUOUS", "DURATION", "STEP", "MAX"}},
        {"durationUnit", em_durationUnit_t, {"MIN", "SECONDS", "FRAMES", "TABLE", "MAX"}},
        {"rateMode", em_rateMode_t, {"FIXED", "RANDOM"}},
        {"sequenceTableMode", em_sequenceTableMode_t, {"MIN", "CUSTOM", "ROUND_ROBIN", "RATE_BASED", "NORMAL",
            "PRI_BASED", "MAX"}},
        {"timestampLatchMode", em_timestampLatchMode_t, {"MIN", "START_OF_FRAME", "END_OF_FRAME", "MAX"}},
        {"genSignatureMode", em_genSignatureMode_t, {"MIN", "LONG_SEQUENCE_NUM", "ENHANCED_DETECTION", "MAX"}},
        {"iMixLengthMode", em_iMixLengthMode_t, {"L3", "L2"}},
        {"selStartStopFields", em_selStartStopFields_t, {"START_ONLY", "STOP_ONLY", "ALL", "ALL_FOR_ASYNC"}},
        {"errorOffsetRef", em_errorOffsetRef_t, {"MIN", "ABSOLUTE", "START_OF_FRAME", "START_OF_FIRST_IP",
            "START_OF_SECOND_IP", "START_OF_TCPUDP_HDR", "MAX"}},
        {"routeOffsetRef", em_routeOffsetRef_t, {"MIN", "ABSOLUTE", "START_OF_FRAME", "START_OF_FIRST_IP",
            "START_OF_SECOND_IP", "START_OF_TCPUDP_HDR", "MAX"}},
        {"genFrmLenMode", em_genFrmLenMode_t, {"MIN", "FIXED", "INCR", "DECR", "IMIX", "RANDOM", "AUTO", "MAX"}},
        {"genFillType", em_genFillType_t, {"MIN", "NONE", "CONSTANT", "INCR", "DECR", "PRBS", "MAX"}},
        {"genVFDIndex", em_genVFDIndex_t, {"MIN", "1", "2", "3", "4", "5", "6", "MAX"}},
        {"genVFDMode", em_genVFDMode_t, {"MIN", "OFF", "INCR", "DECR", "RANDOM", "MAX"}},
        {"genIPHdrType", em_genIPHdrType_t, {"MIN", "NO_IP", "IPV4", "IPV6", "MAX"}},
        {"frmDataType", em_frmDataType_t, {"MIN", "PREAMBLE", "ETHERNET", "VLAN", "MPLS", "IPV4", "IPV6", "GRE",
            "TCP", "UDP", "POSHDLC", "FR", "PPPOE", "CUSTOM", "MAX"}},
        {"sbModType", em_sbModType_t, {"ENABLED", "ERRORCONTINUOUS", "ERRORFCS", "ERRORQUORVEXSIGNATURECRC16",
            "ERRORINNERFCS", "FRAMELENMODE", "FRAMELENSTEPEXP", "MINFRAMELENGTH", "MAXFRAMELENGTH",
            "FIXEDFRAMELENGTH", "INSERTSIGFIELD", "FILLTYPE", "FILLCONSTANT", "CUSTOMPFC", "UITCFG"}},
        {"streamModDataType", em_streamModDataType_t, {"GENERIC", "SRCIPV4ADDR", "DSTIPV4ADDR", "SRCIPV6ADDR",
            "DSTIPV6ADDR", "SRCUDPPORT", "DSTUDPPORT", "SRCTCPPORT", "DSTTCPPORT"}},
        {"pathPattern", em_pathPattern_t, {"PAIR", "BACKBONE", "INVERSE_BACKBONE"}},
        {"tsType", em_tsType_t, {"MIN", "IEEE_1588", "GM", "AVTP", "MAX"}},
        {"blockRateModType", em_blockRateModType_t, {"MIN", "RANGE", "LIST", "RANDOM", "MAX"}},
        {"rateRangeModMode", em_rateRangeModMode_t, {"INCREMENT", "DECREMENT", "SHUFFLE"}},
        {"warningCode", em_warningCode_t, {"SCHED_NORMALIZED", "SCHED_DENORMALIZED"}},
        {"custColIndex", em_custColIndex_t, {"ONE", "TWO", "THREE", "FOUR", "FIVE", "SIX", "SEVEN", "EIGHT"}},
        {"strAttrType", em_strAttrType_t, {"NONE", "PDU", "LENGTH", "RATE", "DEVICE", "RXPDU"}},
        {"genControl", em_genControl_t, {"START", "STOP"}},
        {"genTable", em_genTable_t, {"MIN", "PORT_STATS", "PORT_CT_STATS", "STREAM_STATS", "MAX"}},
    };
    // clang-format on
    for (const MapCase& c : cases) {
        SCOPED_TRACE(c.label);
        std::size_t n = 0;
        for (; c.map[n].name != nullptr; ++n) {
            ASSERT_LT(n, c.rows.size());
            EXPECT_EQ(c.map[n].value, static_cast<int>(n));
            EXPECT_EQ(std::string(c.map[n].name), c.rows[n]);
            EXPECT_EQ(tms_string_to_enum(c.rows[n], c.map), static_cast<int>(n));
        }
        EXPECT_EQ(n, c.rows.size());
        EXPECT_EQ(tms_enum_to_string(static_cast<int>(n) + 40, c.map), std::to_string(n + 40));
    }
}

// --- deliberate stops -----------------------------------------------------------------------------

TEST(Generator3Records, OverlongMembersEndTheStruct) {
    modifierData_s v;
    v.data.assign(16, 0xAB);
    EXPECT_EQ(ts::wire_layout(v), "data:array");
    v.data.push_back(0xCD);
    EXPECT_EQ(member_names(v), Names{});
    // Inside a range modifier the over-long value leaves an empty struct, which the
    // receiving side refuses.
    rangeModifier_s range;
    range.stepValue = v;
    EXPECT_EQ(member_names(range).size(), 10u);
    EXPECT_THROW(ts::through_wire(range, false), Tm_exception);

    streamBlock_s block;
    block.rateModifier.resize(2);
    EXPECT_EQ(member_names(block), (Names{"name", "blockID", "baseStream"}));
    block.rateModifier.resize(1);
    EXPECT_EQ(member_names(block).size(), 19u);

    pathDescriptor_s path;
    path.learningNiGatewayMac.resize(2);
    EXPECT_EQ(member_names(path), (Names{"srcNiIndex", "dstNiIndex", "learningNiIndex", "pattern", "encapNi"}));
    path.learningNiGatewayMac.resize(1);
    EXPECT_EQ(member_names(path).size(), 9u);

    modBlockRateModifier_s mod;
    mod.rateMod.resize(2);
    EXPECT_EQ(member_names(mod), Names{"blockId"});
    mod.rateMod.resize(1);
    EXPECT_EQ(member_names(mod), (Names{"blockId", "rateMod"}));

    genVFDCfg_s vfd;
    vfd.vfds.resize(7);
    EXPECT_EQ(member_names(vfd), Names{"stutterCount"});
    vfd.vfds.resize(6);
    EXPECT_EQ(ts::through_wire(vfd, true).vfds.size(), 6u);

    genFrameCfg_s frame;
    frame.data.assign(16385, 0x5A);
    EXPECT_EQ(member_names(frame), (Names{"info", "lengthCfg", "options", "dataTypes"}));
    frame.data.resize(16384);
    ts::loop_record(frame, false);
}

// --- choice records -------------------------------------------------------------------------------

// The layout of a choice record: the selector first, then every alternative at one offset.
template <std::size_t N>
constexpr bool one_offset(const std::size_t (&offsets)[N]) {
    for (std::size_t o : offsets)
        if (o != offsets[0]) return false;
    return offsets[0] >= sizeof(std::int32_t);
}

static_assert(std::is_standard_layout_v<portRate_t> && offsetof(portRate_t, rateMode) == 0 &&
              sizeof(portRate_t::rateMode) == sizeof(std::int32_t));
static_assert(one_offset({offsetof(portRate_t, fixed), offsetof(portRate_t, random)}));

static_assert(std::is_standard_layout_v<streamBlockModData_t> &&
              offsetof(streamBlockModData_t, modType) == 0 &&
              sizeof(streamBlockModData_t::modType) == sizeof(std::int32_t));
static_assert(one_offset(
    {offsetof(streamBlockModData_t, enabled), offsetof(streamBlockModData_t, errorContinuous),
     offsetof(streamBlockModData_t, errorFCS), offsetof(streamBlockModData_t, errorQuorvexSignatureCRC16),
     offsetof(streamBlockModData_t, errorInnerFCS), offsetof(streamBlockModData_t, frameLenMode),
     offsetof(streamBlockModData_t, frameLenStepExp), offsetof(streamBlockModData_t, minFrameLength),
     offsetof(streamBlockModData_t, maxFrameLength), offsetof(streamBlockModData_t, fixedFrameLength),
     offsetof(streamBlockModData_t, insertSigField), offsetof(streamBlockModData_t, fillType),
     offsetof(streamBlockModData_t, fillConstant), offsetof(streamBlockModData_t, customPfc),
     offsetof(streamBlockModData_t, uitCfg)}));

static_assert(std::is_standard_layout_v<streamModData_t> && offsetof(streamModData_t, dataType) == 0 &&
              sizeof(streamModData_t::dataType) == sizeof(std::int32_t));
static_assert(one_offset({offsetof(streamModData_t, generic), offsetof(streamModData_t, srcIpv4Addr),
                          offsetof(streamModData_t, dstIpv4Addr), offsetof(streamModData_t, srcIpv6Addr),
                          offsetof(streamModData_t, dstIpv6Addr), offsetof(streamModData_t, srcUdpPort),
                          offsetof(streamModData_t, dstUdpPort), offsetof(streamModData_t, srcTcpPort),
                          offsetof(streamModData_t, dstTcpPort)}));

// The selector changes only with the alternative alive (select()); records copy and move
// whatever they hold, moves without throwing.
static_assert(!std::is_assignable_v<decltype((std::declval<portRate_t&>().rateMode)), rateMode_t>);
static_assert(!std::is_assignable_v<decltype((std::declval<streamModData_t&>().dataType)),
                                    decltype(std::declval<streamModData_t&>().dataType)>);
static_assert(std::is_nothrow_move_constructible_v<streamModData_t> &&
              std::is_nothrow_move_assignable_v<streamModData_t>);
static_assert(std::is_copy_constructible_v<streamModData_t> && std::is_copy_assignable_v<streamModData_t>);

TEST(Generator3Records, ChoiceStartsWithItsFirstAlternative) {
    EXPECT_TRUE(portRate_t().rateMode == rateMode_t::FIXED);
    EXPECT_EQ(portRate_t().fixed.rate, 0u);
    EXPECT_TRUE(streamBlockModData_t().modType == sbModType_t::ENABLED);
    EXPECT_FALSE(streamBlockModData_t().enabled);
    const streamModData_t mod;
    EXPECT_TRUE(mod.dataType == streamModDataType_t::GENERIC && mod.generic.data.empty());
    EXPECT_EQ(ts::wire_layout(mod), "generic:struct");
}

TEST(Generator3Records, SelectStartsTheNamedAlternativeAfresh) {
    streamModData_t mod;
    mod.generic.offset = 7;
    mod.generic.data = {1, 2, 3};
    mod.select(streamModDataType_t::SRCUDPPORT);
    EXPECT_TRUE(mod.dataType == streamModDataType_t::SRCUDPPORT);
    EXPECT_EQ(mod.srcUdpPort, 0);
    mod.srcUdpPort = 80;
    mod.select(streamModDataType_t::SRCUDPPORT);
    EXPECT_EQ(mod.srcUdpPort, 0);
    mod.select(streamModDataType_t::GENERIC);
    EXPECT_EQ(mod.generic.offset, 0);
    EXPECT_TRUE(mod.generic.data.empty());
    mod.generic.data.assign(100, 9);
    mod.select(static_cast<streamModDataType_t>(42));  // no alternative alive
    EXPECT_EQ(static_cast<int>(mod.dataType.value()), 42);
    EXPECT_EQ(member_names(mod), Names{});
    const streamModData_t copy = mod;
    EXPECT_TRUE(copy == mod);
    streamModData_t other;
    EXPECT_FALSE(other == mod);
    other = copy;
    EXPECT_TRUE(other == mod);
}

TEST(Generator3Records, ChoiceRecordsCopyMoveAndCompareBySelection) {
    streamModData_t generic;
    generic.generic.data = {0xAA, 0xBB};
    generic.generic.length = 2;
    streamModData_t port;
    port.select(streamModDataType_t::DSTUDPPORT);
    port.dstUdpPort = 53;
    streamModData_t port2;
    port2.select(streamModDataType_t::SRCUDPPORT);
    port2.srcUdpPort = 53;
    EXPECT_FALSE(port == port2);  // same value, other alternative

    streamModData_t a = generic;  // copy
    EXPECT_TRUE(a == generic);
    streamModData_t b = std::move(a);  // move
    EXPECT_TRUE(b == generic);
    a = port;  // copy over another alternative
    EXPECT_TRUE(a == port);
    a = generic;
    EXPECT_TRUE(a == generic);
    a.generic.data.push_back(0xCC);  // a copy owns its bytes
    EXPECT_EQ(generic.generic.data.size(), 2u);
    EXPECT_FALSE(a == generic);
    a = generic;  // same alternative
    EXPECT_TRUE(a == generic);
    b = std::move(a);
    EXPECT_TRUE(b == generic);
    b = streamModData_t(port);  // move over another alternative
    EXPECT_TRUE(b == port);
    streamModData_t& self = b;
    b = std::move(self);
    EXPECT_TRUE(b == port);
    b = static_cast<const streamModData_t&>(self);
    EXPECT_TRUE(b == port);

    // Containers move their elements as they grow.
    std::vector<streamModData_t> mods;
    for (int i = 0; i < 20; ++i) mods.push_back(i % 2 ? port : generic);
    mods.erase(mods.begin());
    EXPECT_TRUE(mods[0] == port && mods[1] == generic);
    std::vector<streamModData_t> copies = mods;
    EXPECT_TRUE(copies == mods);

    streamModifier_s holder;
    holder.modifier = port;
    EXPECT_EQ(ts::through_wire(holder, true).modifier.dstUdpPort, 53);
}

TEST(Generator3Records, ChoiceCarriesOnlyTheSelectedAlternative) {
    struct Case {
        sbModType_t type;
        const char* layout;
    };
    const Case cases[] = {
        {sbModType_t::ERRORINNERFCS, "errorInnerFCS:bool"},    {sbModType_t::FRAMELENMODE, "frameLenMode:string"},
        {sbModType_t::FRAMELENSTEPEXP, "frameLenStepExp:int8"}, {sbModType_t::FIXEDFRAMELENGTH, "fixedFrameLength:int16"},
        {sbModType_t::FILLTYPE, "fillType:string"},             {sbModType_t::UITCFG, "uitCfg:struct"},
    };
    for (const Case& c : cases) {
        streamBlockModData_t value;
        value.select(c.type);
        EXPECT_EQ(ts::wire_layout(value), c.layout);
    }
    streamModData_t addr;
    addr.select(streamModDataType_t::DSTIPV6ADDR);
    EXPECT_EQ(ts::wire_layout(addr), "dstIpv6Addr:struct");
    addr.select(streamModDataType_t::SRCTCPPORT);
    EXPECT_EQ(ts::wire_layout(addr), "srcTcpPort:uint16");
    portRate_t rate;
    rate.select(rateMode_t::RANDOM);
    EXPECT_EQ(ts::wire_layout(rate), "random:struct");
    rate.random.maxRate.rate = 9;
    EXPECT_EQ(ts::through_wire(rate, false).random.maxRate.rate, 9u);
    rate.select(static_cast<rateMode_t>(5));
    EXPECT_EQ(member_names(rate), Names{});

    // A struct holding none of the alternatives leaves the record as it was.
    streamModData_t mod;
    mod.select(streamModDataType_t::DSTUDPPORT);
    mod.dstUdpPort = 53;
    Tm_struct other;
    other.add_member("unrelated", 1);
    streamModData_t_from_struct(&other, &mod);
    EXPECT_TRUE(mod.dataType == streamModDataType_t::DSTUDPPORT);
    EXPECT_EQ(mod.dstUdpPort, 53);

    // Reading another alternative ends the one alive and starts the one read.
    streamModData_t generic;
    generic.generic.data = {1, 2, 3, 4};
    streamModData_t_from_struct(ts::holding(generic, true).get_member_struct(TMG_SEND, "record"), &mod);
    EXPECT_TRUE(mod == generic);
    streamModData_t_from_struct(ts::holding(addr, true).get_member_struct(TMG_SEND, "record"), &mod);
    EXPECT_TRUE(mod == addr);
}

TEST(Generator3Records, ReadingReplacesVectorsAlreadyHeld) {
    streamBlock_s block;
    block.modLinks.resize(1);
    block.modLinks[0].childModIndex = {4};
    block.tableModifiers.resize(1);
    block.tableModifiers[0].data.resize(1);
    Message m = ts::holding(block, false);
    streamBlock_s target;
    target.modLinks.resize(3);
    target.modLinks[0].childModIndex = {1, 2, 3};
    target.tableModifiers.resize(2);
    target.tableModifiers[0].data.resize(5);
    target.rangeModifiers.resize(4);
    streamBlock_t_from_struct(m.get_member_struct(TMG_SEND, "record"), &target);
    EXPECT_TRUE(target == block);
}

}  // namespace
