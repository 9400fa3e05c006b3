// Records of the generator module: round trips through the wire codec, wire layouts, enum
// maps, the deliberate stops of bounded members and the choice records.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "interfaces/generator_3_bll_records.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "support/RecordFill.h"

using namespace Generator_3_bll;

namespace {

// --- round trip of every record --------------------------------------------------------------

template <class R>
using StructFor =
    std::conditional_t<decltype(binding::description<R>())::is_choice, Tm_struct, Tm_prenamed_struct>;

// Record -> struct -> message -> bytes -> message -> record.
template <class R>
R through_wire(const R& rec, bool copy) {
    Message out;
    auto s = std::make_unique<StructFor<R>>();
    binding_to_struct(s.get(), &rec, copy, out.get_send_member_string(Message::TMG_SEND));
    out.add_member_and_own(Message::TMG_SEND, "r", s.release());
    const std::vector<unsigned char> bytes = tmsg::encode(out);
    Message in;
    tmsg::decode(bytes, in);
    R back{};
    binding_from_struct(in.get_member_struct(Message::TMG_RECV, "r"), &back);
    return back;
}

template <class R>
void round_trip_one() {
    for (uint32_t seed : {1u, 2u, 3u, 17u, 99u, 2024u}) {
        for (bool copy : {true, false}) {
            testing_support::Filler filler(seed);
            R rec{};
            filler.fill(rec);
            SCOPED_TRACE(std::string(typeid(R).name()) + " seed " + std::to_string(seed) +
                         (copy ? " copy" : " view"));
            EXPECT_TRUE(through_wire(rec, copy) == rec);
        }
    }
}

template <class... R>
struct TypeList {};

template <class... R>
void round_trip_all(TypeList<R...>) {
    (round_trip_one<R>(), ...);
}

using AllRecords = TypeList<
    modifierData_s, rangeModifier_s, tableModifier_s, modLinkDesc_s, frameDataModifier_s,
    frameIndexModifier_s, frameDataModArray_s, rate_s, randomRate_s, portRate_t, genTxDuration_s, schedCfg_s,
    imixDistCfg_s, imixCfg_s, counterCfg_s, genCommonCfg_s, startStopTime_s, genErrorCfg_s, genFrameLenCfg_s,
    genFrameOptCfg_s, genBasicStreamCfg_s, vfdConfig_s, genVFDCfg_s, genFrameInfo_s, genFrameDataType_s,
    genFrameCfg_s, routeOffset_s, genRouteInsCfg_s, genStreamCfg_s, tableEntry_s, tableEntryModData_s,
    genCustomPfc_s, genUitCfg_s, frameCfg_s, baseStreamCfg_s, networkInterfaceData_s, encapNi_s,
    pathDescriptor_s, rateRangeModifier_s, rateListModifier_s, rateRandomModifier_s, blockRateModifier_s,
    streamBlock_s, modBlockRateModifier_s, streamBlockModData_t, streamBlockModArray_s, streamBlockModRange_s,
    genericStreamModData_s, streamModData_t, streamModifier_s, streamModifierArray_s, streamIndexes_s,
    niStreamIndexes_s, streamRange_s, streamRate_s, streamRateArray_s, streamNIS_s, streamMultiplier_s,
    destMACMod_s, warningLog_s, tableInfo_s, ritInfo_s, strAttrDef_s, custColumnDef_s, genStrBlockRunState_s>;

TEST(Generator3Records, EveryRecordRoundTripsThroughTheWire) { round_trip_all(AllRecords{}); }

// --- wire layouts ---------------------------------------------------------------------------------

const char* kind_name(TMV k) {
    switch (k) {
        case TMV_INT8:
            return "int8";
        case TMV_UINT8:
            return "uint8";
        case TMV_INT16:
            return "int16";
        case TMV_UINT16:
            return "uint16";
        case TMV_INT32:
            return "int32";
        case TMV_UINT32:
            return "uint32";
        case TMV_INT64:
            return "int64";
        case TMV_UINT64:
            return "uint64";
        case TMV_BOOL:
            return "bool";
        case TMV_STRING:
            return "string";
        case TMV_STRUCT:
            return "struct";
        case TMV_ARRAY:
            return "array";
        default:
            return "other";
    }
}

// "name:kind" of each member, in order.
std::vector<std::string> layout(const Tm_struct& s) {
    std::vector<std::string> out;
    for (int i = 0; i < s.get_member_count(); ++i)
        out.push_back(s.get_member_name(i) + ":" + kind_name(s.get_member_value_type(i)));
    return out;
}

// Layout of a record as the far side decodes it.
template <class R>
std::vector<std::string> wire_layout(const R& rec) {
    Message out;
    auto s = std::make_unique<StructFor<R>>();
    binding_to_struct(s.get(), &rec, true, out.get_send_member_string(Message::TMG_SEND));
    out.add_member_and_own(Message::TMG_SEND, "r", s.release());
    Message in;
    tmsg::decode(tmsg::encode(out), in);
    return layout(*in.get_member_struct(Message::TMG_RECV, "r"));
}

// Names only, of a struct built directly.
template <class R>
std::vector<std::string> member_names(const R& rec) {
    Tm_catalog<std::string> catalog;
    StructFor<R> s;
    binding_to_struct(&s, &rec, true, &catalog);
    std::vector<std::string> out;
    for (int i = 0; i < s.get_member_count(); ++i) out.push_back(s.get_member_name(i));
    return out;
}

using Names = std::vector<std::string>;

TEST(Generator3Records, RangeModifierLayout) {
    EXPECT_EQ(wire_layout(rangeModifier_s{}),
              (Names{"modIndex:uint32", "offset:uint16", "offsetReference:string", "initialValue:struct",
                     "stepValue:struct", "recycleCount:uint32", "stutterCount:uint32", "mask:struct",
                     "mode:string", "useStream:bool"}));
}

TEST(Generator3Records, TableModifierLayout) {
    EXPECT_EQ(wire_layout(tableModifier_s{}),
              (Names{"modIndex:uint32", "offset:uint16", "offsetReference:string", "data:array",
                     "stutterCount:uint32", "useStream:bool"}));
}

TEST(Generator3Records, StreamBlockLayout) {
    EXPECT_EQ(
        wire_layout(streamBlock_s{}),
        (Names{"name:string", "blockID:uint32", "baseStream:struct", "rateModifier:array", "modLinks:array",
               "rangeModifiers:array", "tableModifiers:array", "interfaces:array", "multiHomeNis:array",
               "pathDescriptors:array", "enableControlPlane:bool", "ilManaged:bool", "mergeWholeStack:bool",
               "fastStream:bool", "startStreamIndex:uint32", "byPassSimpleIpSubnetChecking:bool",
               "schedulerGroup:uint8", "customPfc:struct", "uitCfg:struct"}));
}

TEST(Generator3Records, CommonConfigLayout) {
    EXPECT_EQ(
        wire_layout(genCommonCfg_s{}),
        (Names{"mode:string", "duration:struct", "rate:struct", "schedParams:struct",
               "txTimestampLatchMode:string", "testStreamID:int32", "randomLengthSeed:int32", "imix:struct",
               "counterParams:struct", "signatureMode:string", "stepSize:uint16", "smoothenRandom:bool"}));
}

TEST(Generator3Records, EnumsTravelAsTheirNames) {
    genCommonCfg_s cfg;
    cfg.mode = genTxMode_t::MAX;
    cfg.signatureMode = genSignatureMode_t::ENHANCED_DETECTION;
    cfg.rate.rateMode = rateMode_t::FIXED;
    cfg.rate.fixed.rateUnit = LoadProfile_1_bll::rateUnit_t::L2_RATE;
    Tm_catalog<std::string> catalog;
    Tm_prenamed_struct s;
    genCommonCfg_t_to_struct(&s, &cfg, true, &catalog);
    EXPECT_EQ(s.get_member_string("mode"), "MAX");
    EXPECT_EQ(s.get_member_string("signatureMode"), "ENHANCED_DETECTION");
    EXPECT_EQ(s.get_member_struct("rate")->get_member_struct("fixed")->get_member_string("rateUnit"),
              "L2_RATE");

    rateListModifier_s list;
    list.loadUnit = {LoadProfile_1_bll::rateUnit_t::BITS_PER_SECOND, LoadProfile_1_bll::rateUnit_t::L2_RATE};
    Tm_prenamed_struct l;
    rateListModifier_t_to_struct(&l, &list, true, &catalog);
    const Tm_array* units = l.get_member_array("loadUnit");
    ASSERT_EQ(units->get_member_count(), 2);
    EXPECT_EQ(units->get_member_string(0), "BITS_PER_SECOND");
    EXPECT_EQ(units->get_member_string(1), "L2_RATE");
}

// --- enum maps ------------------------------------------------------------------------------------

struct MapCase {
    const char* label;
    const tm_enum_map* map;
    Names rows;  // names of values 0, 1, 2, ...
};

TEST(Generator3Records, EnumMapsMatchTheirTables) {
    const std::vector<MapCase> cases = {
        {"configModMode", em_configModMode_t, {"INCREMENT", "DECREMENT", "RANDOM", "SHUFFLE"}},
        {"offsetReference", em_offsetReference_t, {"START_OF_FRAME", "IPV4", "IPV6", "TCP", "UDP"}},
        {"genTxMode", em_genTxMode_t, {"MIN", "CONTINUOUS", "DURATION", "STEP", "MAX"}},
        {"durationUnit", em_durationUnit_t, {"MIN", "SECONDS", "FRAMES", "TABLE", "MAX"}},
        {"rateMode", em_rateMode_t, {"FIXED", "RANDOM"}},
        {"sequenceTableMode",
         em_sequenceTableMode_t,
         {"MIN", "CUSTOM", "ROUND_ROBIN", "RATE_BASED", "NORMAL", "PRI_BASED", "MAX"}},
        {"timestampLatchMode", em_timestampLatchMode_t, {"MIN", "START_OF_FRAME", "END_OF_FRAME", "MAX"}},
        {"genSignatureMode",
         em_genSignatureMode_t,
         {"MIN", "LONG_SEQUENCE_NUM", "ENHANCED_DETECTION", "MAX"}},
        {"iMixLengthMode", em_iMixLengthMode_t, {"L3", "L2"}},
        {"selStartStopFields", em_selStartStopFields_t, {"START_ONLY", "STOP_ONLY", "ALL", "ALL_FOR_ASYNC"}},
        {"errorOffsetRef",
         em_errorOffsetRef_t,
         {"MIN", "ABSOLUTE", "START_OF_FRAME", "START_OF_FIRST_IP", "START_OF_SECOND_IP",
          "START_OF_TCPUDP_HDR", "MAX"}},
        {"routeOffsetRef",
         em_routeOffsetRef_t,
         {"MIN", "ABSOLUTE", "START_OF_FRAME", "START_OF_FIRST_IP", "START_OF_SECOND_IP",
          "START_OF_TCPUDP_HDR", "MAX"}},
        {"genFrmLenMode",
         em_genFrmLenMode_t,
         {"MIN", "FIXED", "INCR", "DECR", "IMIX", "RANDOM", "AUTO", "MAX"}},
        {"genFillType", em_genFillType_t, {"MIN", "NONE", "CONSTANT", "INCR", "DECR", "PRBS", "MAX"}},
        {"genVFDIndex", em_genVFDIndex_t, {"MIN", "1", "2", "3", "4", "5", "6", "MAX"}},
        {"genVFDMode", em_genVFDMode_t, {"MIN", "OFF", "INCR", "DECR", "RANDOM", "MAX"}},
        {"genIPHdrType", em_genIPHdrType_t, {"MIN", "NO_IP", "IPV4", "IPV6", "MAX"}},
        {"frmDataType",
         em_frmDataType_t,
         {"MIN", "PREAMBLE", "ETHERNET", "VLAN", "MPLS", "IPV4", "IPV6", "GRE", "TCP", "UDP", "POSHDLC", "FR",
          "PPPOE", "CUSTOM", "MAX"}},
        {"sbModType",
         em_sbModType_t,
         {"ENABLED", "ERRORCONTINUOUS", "ERRORFCS", "ERRORQUORVEXSIGNATURECRC16", "ERRORINNERFCS",
          "FRAMELENMODE", "FRAMELENSTEPEXP", "MINFRAMELENGTH", "MAXFRAMELENGTH", "FIXEDFRAMELENGTH",
          "INSERTSIGFIELD", "FILLTYPE", "FILLCONSTANT", "CUSTOMPFC", "UITCFG"}},
        {"streamModDataType",
         em_streamModDataType_t,
         {"GENERIC", "SRCIPV4ADDR", "DSTIPV4ADDR", "SRCIPV6ADDR", "DSTIPV6ADDR", "SRCUDPPORT", "DSTUDPPORT",
          "SRCTCPPORT", "DSTTCPPORT"}},
        {"pathPattern", em_pathPattern_t, {"PAIR", "BACKBONE", "INVERSE_BACKBONE"}},
        {"tsType", em_tsType_t, {"MIN", "IEEE_1588", "GM", "AVTP", "MAX"}},
        {"blockRateModType", em_blockRateModType_t, {"MIN", "RANGE", "LIST", "RANDOM", "MAX"}},
        {"rateRangeModMode", em_rateRangeModMode_t, {"INCREMENT", "DECREMENT", "SHUFFLE"}},
        {"warningCode", em_warningCode_t, {"SCHED_NORMALIZED", "SCHED_DENORMALIZED"}},
        {"custColIndex", em_custColIndex_t, {"ONE", "TWO", "THREE", "FOUR", "FIVE", "SIX", "SEVEN", "EIGHT"}},
        {"strAttrType", em_strAttrType_t, {"NONE", "PDU", "LENGTH", "RATE", "DEVICE", "RXPDU"}},
    };
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

TEST(Generator3Records, UnknownEnumValueTravelsAsDecimalText) {
    genUitCfg_s uit;
    uit.tsType = static_cast<tsType_t>(12);
    Tm_catalog<std::string> catalog;
    Tm_prenamed_struct s;
    genUitCfg_t_to_struct(&s, &uit, true, &catalog);
    EXPECT_EQ(s.get_member_string("tsType"), "12");
    genUitCfg_s back;
    genUitCfg_t_from_struct(&s, &back);
    EXPECT_EQ(back.tsType, static_cast<tsType_t>(12));
}

// --- deliberate stops -----------------------------------------------------------------------------

TEST(Generator3Records, ModifierDataOfSixteenBytesIsSentSeventeenIsDropped) {
    modifierData_s v;
    v.data.assign(16, 0xAB);
    Tm_catalog<std::string> catalog;
    Tm_prenamed_struct s;
    modifierData_t_to_struct(&s, &v, true, &catalog);
    ASSERT_EQ(member_names(v), Names{"data"});
    EXPECT_EQ(s.get_member_array("data")->get_member_count(), 16);

    v.data.push_back(0xCD);
    modifierData_t_to_struct(&s, &v, true, &catalog);
    EXPECT_EQ(s.get_member_count(), 0);
    EXPECT_EQ(s.get_member_index("data"), -1);

    // Inside a range modifier the over-long value leaves an empty struct in its place, which
    // the receiving side then refuses.
    rangeModifier_s range;
    range.stepValue = v;
    range.initialValue.data = {1, 2};
    EXPECT_THROW(through_wire(range, false), Tm_exception);
    Tm_prenamed_struct r;
    rangeModifier_t_to_struct(&r, &range, true, &catalog);
    EXPECT_EQ(r.get_member_struct("stepValue")->get_member_count(), 0);
    EXPECT_EQ(r.get_member_count(), 10);
}

TEST(Generator3Records, BoundedMembersEndTheStructWhenTooLong) {
    streamBlock_s block;
    block.name = "b";
    block.rateModifier.resize(2);
    EXPECT_EQ(member_names(block), (Names{"name", "blockID", "baseStream"}));
    block.rateModifier.resize(1);
    EXPECT_EQ(member_names(block).size(), 19u);

    pathDescriptor_s path;
    path.learningNiGatewayMac.resize(2);
    EXPECT_EQ(member_names(path),
              (Names{"srcNiIndex", "dstNiIndex", "learningNiIndex", "pattern", "encapNi"}));
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
    EXPECT_EQ(through_wire(vfd, true).vfds.size(), 6u);

    genFrameCfg_s frame;
    frame.data.assign(16385, 0x5A);
    EXPECT_EQ(member_names(frame), (Names{"info", "lengthCfg", "options", "dataTypes"}));
    frame.data.resize(16384);
    EXPECT_TRUE(through_wire(frame, false) == frame);
}

// --- choice records -------------------------------------------------------------------------------

TEST(Generator3Records, ChoiceCarriesOnlyTheSelectedAlternative) {
    struct Case {
        streamBlockModData_t value;
        std::string expected;  // "name:kind" of the single member
    };
    std::vector<Case> cases(6);
    cases[0].value.modType = sbModType_t::ERRORINNERFCS;
    cases[0].value.errorInnerFCS = true;
    cases[0].expected = "errorInnerFCS:bool";
    cases[1].value.modType = sbModType_t::FRAMELENMODE;
    cases[1].value.frameLenMode = genFrmLenMode_t::IMIX;
    cases[1].expected = "frameLenMode:string";
    cases[2].value.modType = sbModType_t::FRAMELENSTEPEXP;
    cases[2].value.frameLenStepExp = -3;
    cases[2].expected = "frameLenStepExp:int8";
    cases[3].value.modType = sbModType_t::FIXEDFRAMELENGTH;
    cases[3].value.fixedFrameLength = 1518;
    cases[3].expected = "fixedFrameLength:int16";
    cases[4].value.modType = sbModType_t::FILLTYPE;
    cases[4].value.fillType = genFillType_t::PRBS;
    cases[4].expected = "fillType:string";
    cases[5].value.modType = sbModType_t::UITCFG;
    cases[5].value.uitCfg.tsOffset = 12;
    cases[5].value.uitCfg.tsType = tsType_t::AVTP;
    cases[5].expected = "uitCfg:struct";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(wire_layout(c.value), Names{c.expected});
        EXPECT_TRUE(through_wire(c.value, true) == c.value);
    }

    streamModData_t addr;
    addr.dataType = streamModDataType_t::DSTIPV6ADDR;
    addr.dstIpv6Addr.address[15] = 7;
    EXPECT_EQ(wire_layout(addr), Names{"dstIpv6Addr:struct"});
    addr.dataType = streamModDataType_t::SRCTCPPORT;
    addr.srcTcpPort = 8080;
    EXPECT_EQ(wire_layout(addr), Names{"srcTcpPort:uint16"});

    portRate_t rate;
    rate.rateMode = rateMode_t::RANDOM;
    rate.random.maxRate.rate = 100;
    EXPECT_EQ(wire_layout(rate), Names{"random:struct"});
    const portRate_t back = through_wire(rate, true);
    EXPECT_EQ(back.rateMode, rateMode_t::RANDOM);
    EXPECT_EQ(back.random.maxRate.rate, 100u);
}

TEST(Generator3Records, ChoiceOutsideItsAlternativesOrAbsent) {
    portRate_t rate;
    rate.rateMode = static_cast<rateMode_t>(5);
    Tm_catalog<std::string> catalog;
    Tm_struct s;
    s.add_member("stale", 1);
    portRate_t_to_struct(&s, &rate, true, &catalog);
    EXPECT_EQ(s.get_member_count(), 0);

    // A struct holding none of the alternatives leaves the record as it was.
    streamModData_t mod;
    mod.dataType = streamModDataType_t::DSTUDPPORT;
    mod.dstUdpPort = 53;
    Tm_struct other;
    other.add_member("unrelated", 1);
    streamModData_t_from_struct(&other, &mod);
    EXPECT_EQ(mod.dataType, streamModDataType_t::DSTUDPPORT);
    EXPECT_EQ(mod.dstUdpPort, 53);
    streamModData_t_from_struct(&s, &mod);
    EXPECT_EQ(mod.dataType, streamModDataType_t::DSTUDPPORT);
}

TEST(Generator3Records, ReadingReplacesVectorsAlreadyHeld) {
    tableModifier_s sent;
    sent.data.resize(1);
    sent.data[0].data = {9};
    streamBlock_s block;
    block.modLinks.resize(1);
    block.modLinks[0].childModIndex = {4};
    block.tableModifiers = {sent};

    Tm_catalog<std::string> catalog;
    Tm_prenamed_struct s;
    streamBlock_t_to_struct(&s, &block, true, &catalog);

    streamBlock_s target;
    target.modLinks.resize(3);
    target.tableModifiers.resize(2);
    target.tableModifiers[0].data.resize(5);
    target.rangeModifiers.resize(4);
    target.pathDescriptors.resize(1);
    streamBlock_t_from_struct(&s, &target);
    EXPECT_TRUE(target == block);
    ASSERT_EQ(target.tableModifiers.size(), 1u);
    EXPECT_EQ(target.tableModifiers[0].data.size(), 1u);
    EXPECT_TRUE(target.rangeModifiers.empty());

    modLinkDesc_s link;
    link.childModIndex = {1, 2, 3};
    Tm_prenamed_struct l;
    modLinkDesc_t_to_struct(&l, &block.modLinks[0], false, &catalog);
    modLinkDesc_t_from_struct(&l, &link);
    EXPECT_EQ(link.childModIndex, std::vector<uint32_t>{4});
}

TEST(Generator3Records, InterfacesAndMultiHomeNisStayApart) {
    streamBlock_s block;
    block.interfaces.resize(1);
    block.interfaces[0].index = 1;
    block.multiHomeNis.resize(2);
    block.multiHomeNis[1].deviceHandle = 77;
    const streamBlock_s back = through_wire(block, true);
    ASSERT_EQ(back.interfaces.size(), 1u);
    ASSERT_EQ(back.multiHomeNis.size(), 2u);
    EXPECT_EQ(back.interfaces[0].index, 1u);
    EXPECT_EQ(back.multiHomeNis[1].deviceHandle, 77u);
}

}  // namespace
