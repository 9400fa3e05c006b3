#include "interfaces/generator_3_bll_records.h"

#include "binding/RecordCodec.h"

namespace Generator_3_bll {

// --- enumeration maps ---------------------------------------------------------------------------

const tm_enum_map em_configModMode_t[] = {
    {0, "INCREMENT"}, {1, "DECREMENT"}, {2, "RANDOM"}, {3, "SHUFFLE"}, {0, nullptr},
};
const tm_enum_map em_offsetReference_t[] = {
    {0, "START_OF_FRAME"}, {1, "IPV4"}, {2, "IPV6"}, {3, "TCP"}, {4, "UDP"}, {0, nullptr},
};
const tm_enum_map em_genTxMode_t[] = {
    {0, "MIN"}, {1, "CONTINUOUS"}, {2, "DURATION"}, {3, "STEP"}, {4, "MAX"}, {0, nullptr},
};
const tm_enum_map em_durationUnit_t[] = {
    {0, "MIN"}, {1, "SECONDS"}, {2, "FRAMES"}, {3, "TABLE"}, {4, "MAX"}, {0, nullptr},
};
const tm_enum_map em_rateMode_t[] = {
    {0, "FIXED"},
    {1, "RANDOM"},
    {0, nullptr},
};
const tm_enum_map em_sequenceTableMode_t[] = {
    {0, "MIN"},    {1, "CUSTOM"},    {2, "ROUND_ROBIN"}, {3, "RATE_BASED"},
    {4, "NORMAL"}, {5, "PRI_BASED"}, {6, "MAX"},         {0, nullptr},
};
const tm_enum_map em_timestampLatchMode_t[] = {
    {0, "MIN"}, {1, "START_OF_FRAME"}, {2, "END_OF_FRAME"}, {3, "MAX"}, {0, nullptr},
};
const tm_enum_map em_genSignatureMode_t[] = {
    {0, "MIN"}, {1, "LONG_SEQUENCE_NUM"}, {2, "ENHANCED_DETECTION"}, {3, "MAX"}, {0, nullptr},
};
const tm_enum_map em_iMixLengthMode_t[] = {
    {0, "L3"},
    {1, "L2"},
    {0, nullptr},
};
const tm_enum_map em_selStartStopFields_t[] = {
    {0, "START_ONLY"}, {1, "STOP_ONLY"}, {2, "ALL"}, {3, "ALL_FOR_ASYNC"}, {0, nullptr},
};
const tm_enum_map em_errorOffsetRef_t[] = {
    {0, "MIN"},
    {1, "ABSOLUTE"},
    {2, "START_OF_FRAME"},
    {3, "START_OF_FIRST_IP"},
    {4, "START_OF_SECOND_IP"},
    {5, "START_OF_TCPUDP_HDR"},
    {6, "MAX"},
    {0, nullptr},
};
const tm_enum_map em_routeOffsetRef_t[] = {
    {0, "MIN"},
    {1, "ABSOLUTE"},
    {2, "START_OF_FRAME"},
    {3, "START_OF_FIRST_IP"},
    {4, "START_OF_SECOND_IP"},
    {5, "START_OF_TCPUDP_HDR"},
    {6, "MAX"},
    {0, nullptr},
};
const tm_enum_map em_genFrmLenMode_t[] = {
    {0, "MIN"},    {1, "FIXED"}, {2, "INCR"}, {3, "DECR"},  {4, "IMIX"},
    {5, "RANDOM"}, {6, "AUTO"},  {7, "MAX"},  {0, nullptr},
};
const tm_enum_map em_genFillType_t[] = {
    {0, "MIN"}, {1, "NONE"}, {2, "CONSTANT"}, {3, "INCR"}, {4, "DECR"}, {5, "PRBS"}, {6, "MAX"}, {0, nullptr},
};
const tm_enum_map em_genVFDIndex_t[] = {
    {0, "MIN"}, {1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {5, "5"}, {6, "6"}, {7, "MAX"}, {0, nullptr},
};
const tm_enum_map em_genVFDMode_t[] = {
    {0, "MIN"}, {1, "OFF"}, {2, "INCR"}, {3, "DECR"}, {4, "RANDOM"}, {5, "MAX"}, {0, nullptr},
};
const tm_enum_map em_genIPHdrType_t[] = {
    {0, "MIN"}, {1, "NO_IP"}, {2, "IPV4"}, {3, "IPV6"}, {4, "MAX"}, {0, nullptr},
};
const tm_enum_map em_frmDataType_t[] = {
    {0, "MIN"},    {1, "PREAMBLE"}, {2, "ETHERNET"}, {3, "VLAN"},  {4, "MPLS"},     {5, "IPV4"},
    {6, "IPV6"},   {7, "GRE"},      {8, "TCP"},      {9, "UDP"},   {10, "POSHDLC"}, {11, "FR"},
    {12, "PPPOE"}, {13, "CUSTOM"},  {14, "MAX"},     {0, nullptr},
};
const tm_enum_map em_sbModType_t[] = {
    {0, "ENABLED"},        {1, "ERRORCONTINUOUS"},  {2, "ERRORFCS"},        {3, "ERRORQUORVEXSIGNATURECRC16"},
    {4, "ERRORINNERFCS"},  {5, "FRAMELENMODE"},     {6, "FRAMELENSTEPEXP"}, {7, "MINFRAMELENGTH"},
    {8, "MAXFRAMELENGTH"}, {9, "FIXEDFRAMELENGTH"}, {10, "INSERTSIGFIELD"}, {11, "FILLTYPE"},
    {12, "FILLCONSTANT"},  {13, "CUSTOMPFC"},       {14, "UITCFG"},         {0, nullptr},
};
const tm_enum_map em_streamModDataType_t[] = {
    {0, "GENERIC"},    {1, "SRCIPV4ADDR"}, {2, "DSTIPV4ADDR"}, {3, "SRCIPV6ADDR"}, {4, "DSTIPV6ADDR"},
    {5, "SRCUDPPORT"}, {6, "DSTUDPPORT"},  {7, "SRCTCPPORT"},  {8, "DSTTCPPORT"},  {0, nullptr},
};
const tm_enum_map em_pathPattern_t[] = {
    {0, "PAIR"},
    {1, "BACKBONE"},
    {2, "INVERSE_BACKBONE"},
    {0, nullptr},
};
const tm_enum_map em_tsType_t[] = {
    {0, "MIN"}, {1, "IEEE_1588"}, {2, "GM"}, {3, "AVTP"}, {4, "MAX"}, {0, nullptr},
};
const tm_enum_map em_blockRateModType_t[] = {
    {0, "MIN"}, {1, "RANGE"}, {2, "LIST"}, {3, "RANDOM"}, {4, "MAX"}, {0, nullptr},
};
const tm_enum_map em_rateRangeModMode_t[] = {
    {0, "INCREMENT"},
    {1, "DECREMENT"},
    {2, "SHUFFLE"},
    {0, nullptr},
};
const tm_enum_map em_warningCode_t[] = {
    {0, "SCHED_NORMALIZED"},
    {1, "SCHED_DENORMALIZED"},
    {0, nullptr},
};
const tm_enum_map em_custColIndex_t[] = {
    {0, "ONE"}, {1, "TWO"},   {2, "THREE"}, {3, "FOUR"},  {4, "FIVE"},
    {5, "SIX"}, {6, "SEVEN"}, {7, "EIGHT"}, {0, nullptr},
};
const tm_enum_map em_strAttrType_t[] = {
    {0, "NONE"}, {1, "PDU"}, {2, "LENGTH"}, {3, "RATE"}, {4, "DEVICE"}, {5, "RXPDU"}, {0, nullptr},
};

// --- records ----------------------------------------------------------------------------------

VRM_RECORD_IMPL(modifierData)
VRM_RECORD_IMPL(rangeModifier)
VRM_RECORD_IMPL(tableModifier)
VRM_RECORD_IMPL(modLinkDesc)
VRM_RECORD_IMPL(frameDataModifier)
VRM_RECORD_IMPL(frameIndexModifier)
VRM_RECORD_IMPL(frameDataModArray)

VRM_RECORD_IMPL(rate)
VRM_RECORD_IMPL(randomRate)
VRM_CHOICE_IMPL(portRate)
VRM_RECORD_IMPL(genTxDuration)
VRM_RECORD_IMPL(schedCfg)
VRM_RECORD_IMPL(imixDistCfg)
VRM_RECORD_IMPL(imixCfg)
VRM_RECORD_IMPL(counterCfg)
VRM_RECORD_IMPL(genCommonCfg)
VRM_RECORD_IMPL(startStopTime)
VRM_RECORD_IMPL(genErrorCfg)
VRM_RECORD_IMPL(genFrameLenCfg)
VRM_RECORD_IMPL(genFrameOptCfg)
VRM_RECORD_IMPL(genBasicStreamCfg)
VRM_RECORD_IMPL(vfdConfig)
VRM_RECORD_IMPL(genVFDCfg)
VRM_RECORD_IMPL(genFrameInfo)
VRM_RECORD_IMPL(genFrameDataType)
VRM_RECORD_IMPL(genFrameCfg)
VRM_RECORD_IMPL(routeOffset)
VRM_RECORD_IMPL(genRouteInsCfg)
VRM_RECORD_IMPL(genStreamCfg)
VRM_RECORD_IMPL(tableEntry)
VRM_RECORD_IMPL(tableEntryModData)

VRM_RECORD_IMPL(genCustomPfc)
VRM_RECORD_IMPL(genUitCfg)
VRM_RECORD_IMPL(frameCfg)
VRM_RECORD_IMPL(baseStreamCfg)
VRM_RECORD_IMPL(networkInterfaceData)
VRM_RECORD_IMPL(encapNi)
VRM_RECORD_IMPL(pathDescriptor)
VRM_RECORD_IMPL(rateRangeModifier)
VRM_RECORD_IMPL(rateListModifier)
VRM_RECORD_IMPL(rateRandomModifier)
VRM_RECORD_IMPL(blockRateModifier)
VRM_RECORD_IMPL(streamBlock)
VRM_RECORD_IMPL(modBlockRateModifier)

VRM_CHOICE_IMPL(streamBlockModData)
VRM_RECORD_IMPL(streamBlockModArray)
VRM_RECORD_IMPL(streamBlockModRange)
VRM_RECORD_IMPL(genericStreamModData)
VRM_CHOICE_IMPL(streamModData)
VRM_RECORD_IMPL(streamModifier)
VRM_RECORD_IMPL(streamModifierArray)

VRM_RECORD_IMPL(streamIndexes)
VRM_RECORD_IMPL(niStreamIndexes)
VRM_RECORD_IMPL(streamRange)
VRM_RECORD_IMPL(streamRate)
VRM_RECORD_IMPL(streamRateArray)
VRM_RECORD_IMPL(streamNIS)
VRM_RECORD_IMPL(streamMultiplier)
VRM_RECORD_IMPL(destMACMod)
VRM_RECORD_IMPL(warningLog)
VRM_RECORD_IMPL(tableInfo)
VRM_RECORD_IMPL(ritInfo)
VRM_RECORD_IMPL(strAttrDef)
VRM_RECORD_IMPL(custColumnDef)
VRM_RECORD_IMPL(genStrBlockRunState)

}  // namespace Generator_3_bll
