// Generator_3: the records and enumerations of the traffic generator module — modifier
// descriptors, stream blocks, generator and stream configuration, and the records of its
// methods and notifications. Each record is described once; the converters, names tables
// and equality come from the shared engine.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "binding/Describe.h"
#include "binding/RecordApi.h"
#include "interfaces/ifSetup_1_bll.h"
#include "interfaces/ifSetup_Autogen_bll.h"
#include "interfaces/loadProfile_1_bll.h"
#include "platform/tm_enum_map.h"

namespace Generator_3_bll {

// --- field modifiers ----------------------------------------------------------------------

enum class configModMode_t : int32_t {
    INCREMENT = 0,
    DECREMENT = 1,
    RANDOM = 2,
    SHUFFLE = 3,
};
extern const tm_enum_map em_configModMode_t[];

// Reference point of a stream-level modifier's offset.
enum class offsetReference_t : int32_t {
    START_OF_FRAME = 0,
    IPV4 = 1,
    IPV6 = 2,
    TCP = 3,
    UDP = 4,
};
extern const tm_enum_map em_offsetReference_t[];

// A modifier value of up to 16 bytes, most significant byte first. A longer value is left
// out of the outgoing struct.
struct modifierData_s {
    std::vector<uint8_t> data;
};
constexpr auto describe(const modifierData_s*) {
    using R = modifierData_s;
    using namespace binding;
    return record<R>(bounded<16>("data", &R::data));
}
VRM_RECORD_API(modifierData)

struct rangeModifier_s {
    uint32_t modIndex = 0;
    uint16_t offset = 0;
    std::string offsetReference;  // free text, not an enum
    modifierData_s initialValue;
    modifierData_s stepValue;
    uint32_t recycleCount = 0;
    uint32_t stutterCount = 0;
    modifierData_s mask;
    configModMode_t mode = configModMode_t::INCREMENT;
    bool useStream = false;
};
constexpr auto describe(const rangeModifier_s*) {
    using R = rangeModifier_s;
    using namespace binding;
    return record<R>(field("modIndex", &R::modIndex), field("offset", &R::offset),
                     field("offsetReference", &R::offsetReference), field("initialValue", &R::initialValue),
                     field("stepValue", &R::stepValue), field("recycleCount", &R::recycleCount),
                     field("stutterCount", &R::stutterCount), field("mask", &R::mask),
                     enum_string("mode", &R::mode, em_configModMode_t), field("useStream", &R::useStream));
}
VRM_RECORD_API(rangeModifier)

struct tableModifier_s {
    uint32_t modIndex = 0;
    uint16_t offset = 0;
    std::string offsetReference;
    std::vector<modifierData_s> data;
    uint32_t stutterCount = 0;
    bool useStream = false;
};
constexpr auto describe(const tableModifier_s*) {
    using R = tableModifier_s;
    using namespace binding;
    return record<R>(field("modIndex", &R::modIndex), field("offset", &R::offset),
                     field("offsetReference", &R::offsetReference), field("data", &R::data),
                     field("stutterCount", &R::stutterCount), field("useStream", &R::useStream));
}
VRM_RECORD_API(tableModifier)

// A parent modifier and its children, by modIndex.
struct modLinkDesc_s {
    uint32_t modIndex = 0;
    std::vector<uint32_t> childModIndex;
};
constexpr auto describe(const modLinkDesc_s*) {
    using R = modLinkDesc_s;
    using namespace binding;
    return record<R>(field("modIndex", &R::modIndex), field("childModIndex", &R::childModIndex));
}
VRM_RECORD_API(modLinkDesc)

// Per-frame field overrides of a block.
struct frameDataModifier_s {
    std::string field;
    std::string value;
};
constexpr auto describe(const frameDataModifier_s*) {
    using R = frameDataModifier_s;
    using namespace binding;
    return record<R>(binding::field("field", &R::field), binding::field("value", &R::value));
}
VRM_RECORD_API(frameDataModifier)

struct frameIndexModifier_s {
    uint32_t index = 0;
    std::vector<frameDataModifier_s> frameMods;
};
constexpr auto describe(const frameIndexModifier_s*) {
    using R = frameIndexModifier_s;
    using namespace binding;
    return record<R>(field("index", &R::index), field("frameMods", &R::frameMods));
}
VRM_RECORD_API(frameIndexModifier)

struct frameDataModArray_s {
    uint32_t blockId = 0;
    std::vector<frameIndexModifier_s> indexMods;
};
constexpr auto describe(const frameDataModArray_s*) {
    using R = frameDataModArray_s;
    using namespace binding;
    return record<R>(field("blockId", &R::blockId), field("indexMods", &R::indexMods));
}
VRM_RECORD_API(frameDataModArray)

// --- enumerations of the generator configuration ---------------------------------------------

enum class genTxMode_t : int32_t { MIN = 0, CONTINUOUS = 1, DURATION = 2, STEP = 3, MAX = 4 };
extern const tm_enum_map em_genTxMode_t[];

enum class durationUnit_t : int32_t { MIN = 0, SECONDS = 1, FRAMES = 2, TABLE = 3, MAX = 4 };
extern const tm_enum_map em_durationUnit_t[];

enum class rateMode_t : int32_t { FIXED = 0, RANDOM = 1 };
extern const tm_enum_map em_rateMode_t[];

enum class sequenceTableMode_t : int32_t {
    MIN = 0,
    CUSTOM = 1,
    ROUND_ROBIN = 2,
    RATE_BASED = 3,
    NORMAL = 4,
    PRI_BASED = 5,
    MAX = 6,
};
extern const tm_enum_map em_sequenceTableMode_t[];

enum class timestampLatchMode_t : int32_t { MIN = 0, START_OF_FRAME = 1, END_OF_FRAME = 2, MAX = 3 };
extern const tm_enum_map em_timestampLatchMode_t[];

enum class genSignatureMode_t : int32_t { MIN = 0, LONG_SEQUENCE_NUM = 1, ENHANCED_DETECTION = 2, MAX = 3 };
extern const tm_enum_map em_genSignatureMode_t[];

enum class iMixLengthMode_t : int32_t { L3 = 0, L2 = 1 };
extern const tm_enum_map em_iMixLengthMode_t[];

enum class selStartStopFields_t : int32_t { START_ONLY = 0, STOP_ONLY = 1, ALL = 2, ALL_FOR_ASYNC = 3 };
extern const tm_enum_map em_selStartStopFields_t[];

enum class errorOffsetRef_t : int32_t {
    MIN = 0,
    ABSOLUTE = 1,
    START_OF_FRAME = 2,
    START_OF_FIRST_IP = 3,
    START_OF_SECOND_IP = 4,
    START_OF_TCPUDP_HDR = 5,
    MAX = 6,
};
extern const tm_enum_map em_errorOffsetRef_t[];

enum class routeOffsetRef_t : int32_t {
    MIN = 0,
    ABSOLUTE = 1,
    START_OF_FRAME = 2,
    START_OF_FIRST_IP = 3,
    START_OF_SECOND_IP = 4,
    START_OF_TCPUDP_HDR = 5,
    MAX = 6,
};
extern const tm_enum_map em_routeOffsetRef_t[];

enum class genFrmLenMode_t : int32_t {
    MIN = 0,
    FIXED = 1,
    INCR = 2,
    DECR = 3,
    IMIX = 4,
    RANDOM = 5,
    AUTO = 6,
    MAX = 7,
};
extern const tm_enum_map em_genFrmLenMode_t[];

enum class genFillType_t : int32_t { MIN = 0, NONE = 1, CONSTANT = 2, INCR = 3, DECR = 4, PRBS = 5, MAX = 6 };
extern const tm_enum_map em_genFillType_t[];

// Wire names "1" to "6" for V1 to V6.
enum class genVFDIndex_t : int32_t { MIN = 0, V1 = 1, V2 = 2, V3 = 3, V4 = 4, V5 = 5, V6 = 6, MAX = 7 };
extern const tm_enum_map em_genVFDIndex_t[];

enum class genVFDMode_t : int32_t { MIN = 0, OFF = 1, INCR = 2, DECR = 3, RANDOM = 4, MAX = 5 };
extern const tm_enum_map em_genVFDMode_t[];

enum class genIPHdrType_t : int32_t { MIN = 0, NO_IP = 1, IPV4 = 2, IPV6 = 3, MAX = 4 };
extern const tm_enum_map em_genIPHdrType_t[];

enum class frmDataType_t : int32_t {
    MIN = 0,
    PREAMBLE = 1,
    ETHERNET = 2,
    VLAN = 3,
    MPLS = 4,
    IPV4 = 5,
    IPV6 = 6,
    GRE = 7,
    TCP = 8,
    UDP = 9,
    POSHDLC = 10,
    FR = 11,
    PPPOE = 12,
    CUSTOM = 13,
    MAX = 14,
};
extern const tm_enum_map em_frmDataType_t[];

// Which block setting a streamBlockModData_t changes.
enum class sbModType_t : int32_t {
    ENABLED = 0,
    ERRORCONTINUOUS = 1,
    ERRORFCS = 2,
    ERRORQUORVEXSIGNATURECRC16 = 3,
    ERRORINNERFCS = 4,
    FRAMELENMODE = 5,
    FRAMELENSTEPEXP = 6,
    MINFRAMELENGTH = 7,
    MAXFRAMELENGTH = 8,
    FIXEDFRAMELENGTH = 9,
    INSERTSIGFIELD = 10,
    FILLTYPE = 11,
    FILLCONSTANT = 12,
    CUSTOMPFC = 13,
    UITCFG = 14,
};
extern const tm_enum_map em_sbModType_t[];

// Which stream field a streamModData_t overrides.
enum class streamModDataType_t : int32_t {
    GENERIC = 0,
    SRCIPV4ADDR = 1,
    DSTIPV4ADDR = 2,
    SRCIPV6ADDR = 3,
    DSTIPV6ADDR = 4,
    SRCUDPPORT = 5,
    DSTUDPPORT = 6,
    SRCTCPPORT = 7,
    DSTTCPPORT = 8,
};
extern const tm_enum_map em_streamModDataType_t[];

// --- enumerations of stream blocks ----------------------------------------------------------

enum class pathPattern_t : int32_t { PAIR = 0, BACKBONE = 1, INVERSE_BACKBONE = 2 };
extern const tm_enum_map em_pathPattern_t[];

enum class tsType_t : int32_t { MIN = 0, IEEE_1588 = 1, GM = 2, AVTP = 3, MAX = 4 };
extern const tm_enum_map em_tsType_t[];

enum class blockRateModType_t : int32_t { MIN = 0, RANGE = 1, LIST = 2, RANDOM = 3, MAX = 4 };
extern const tm_enum_map em_blockRateModType_t[];

enum class rateRangeModMode_t : int32_t { INCREMENT = 0, DECREMENT = 1, SHUFFLE = 2 };
extern const tm_enum_map em_rateRangeModMode_t[];

// --- enumerations of method members and their records --------------------------------------

enum class warningCode_t : int32_t { SCHED_NORMALIZED = 0, SCHED_DENORMALIZED = 1 };
extern const tm_enum_map em_warningCode_t[];

enum class custColIndex_t : int32_t {
    ONE = 0,
    TWO = 1,
    THREE = 2,
    FOUR = 3,
    FIVE = 4,
    SIX = 5,
    SEVEN = 6,
    EIGHT = 7
};
extern const tm_enum_map em_custColIndex_t[];

enum class strAttrType_t : int32_t { NONE = 0, PDU = 1, LENGTH = 2, RATE = 3, DEVICE = 4, RXPDU = 5 };
extern const tm_enum_map em_strAttrType_t[];

// --- generator-wide configuration -----------------------------------------------------------

// A rate in one of the load-profile units.
struct rate_s {
    LoadProfile_1_bll::rateUnit_t rateUnit = LoadProfile_1_bll::rateUnit_t::PERCENT_LINE_RATE;
    uint64_t rate = 0;
};
constexpr auto describe(const rate_s*) {
    using R = rate_s;
    using namespace binding;
    return record<R>(enum_string("rateUnit", &R::rateUnit, LoadProfile_1_bll::em_rateUnit_t),
                     field("rate", &R::rate));
}
VRM_RECORD_API(rate)

struct randomRate_s {
    rate_s minRate;
    rate_s maxRate;
};
constexpr auto describe(const randomRate_s*) {
    using R = randomRate_s;
    using namespace binding;
    return record<R>(field("minRate", &R::minRate), field("maxRate", &R::maxRate));
}
VRM_RECORD_API(randomRate)

// A port's rate: fixed or random between two rates.
struct portRate_t {
    binding::Selector<rateMode_t> rateMode;  // FIXED by default; changed with select()
    union {
        rate_s fixed;
        randomRate_s random;
    };
    VRM_CHOICE_MEMBERS(portRate_t, rateMode_t)
};
constexpr auto describe(const portRate_t*) {
    using R = portRate_t;
    using namespace binding;
    return choice(&R::rateMode, alternative(rateMode_t::FIXED, field("fixed", &R::fixed)),
                  alternative(rateMode_t::RANDOM, field("random", &R::random)));
}
VRM_CHOICE_API(portRate)

struct genTxDuration_s {
    durationUnit_t unit = durationUnit_t::MIN;
    uint64_t duration = 0;
};
constexpr auto describe(const genTxDuration_s*) {
    using R = genTxDuration_s;
    using namespace binding;
    return record<R>(enum_string("unit", &R::unit, em_durationUnit_t), field("duration", &R::duration));
}
VRM_RECORD_API(genTxDuration)

struct schedCfg_s {
    sequenceTableMode_t schedulerMode = sequenceTableMode_t::MIN;
    int32_t burstSize = 0;
    rate_s burstLoad;
    bool interleaveBlocks = false;
};
constexpr auto describe(const schedCfg_s*) {
    using R = schedCfg_s;
    using namespace binding;
    return record<R>(enum_string("schedulerMode", &R::schedulerMode, em_sequenceTableMode_t),
                     field("burstSize", &R::burstSize), field("burstLoad", &R::burstLoad),
                     field("interleaveBlocks", &R::interleaveBlocks));
}
VRM_RECORD_API(schedCfg)

struct imixDistCfg_s {
    int16_t minLength = 0;
    int16_t maxLength = 0;
    int16_t weight = 0;
};
constexpr auto describe(const imixDistCfg_s*) {
    using R = imixDistCfg_s;
    using namespace binding;
    return record<R>(field("minLength", &R::minLength), field("maxLength", &R::maxLength),
                     field("weight", &R::weight));
}
VRM_RECORD_API(imixDistCfg)

struct imixCfg_s {
    int32_t seed = 0;
    iMixLengthMode_t lengthMode = iMixLengthMode_t::L3;
    std::vector<imixDistCfg_s> distCfg;
};
constexpr auto describe(const imixCfg_s*) {
    using R = imixCfg_s;
    using namespace binding;
    return record<R>(field("seed", &R::seed), enum_string("lengthMode", &R::lengthMode, em_iMixLengthMode_t),
                     field("distCfg", &R::distCfg));
}
VRM_RECORD_API(imixCfg)

struct counterCfg_s {
    bool countTotalBytes = false;
    int16_t jumboThreshold = 0;
    int16_t oversizedThreshold = 0;
    int16_t undersizedThreshold = 0;
};
constexpr auto describe(const counterCfg_s*) {
    using R = counterCfg_s;
    using namespace binding;
    return record<R>(field("countTotalBytes", &R::countTotalBytes),
                     field("jumboThreshold", &R::jumboThreshold),
                     field("oversizedThreshold", &R::oversizedThreshold),
                     field("undersizedThreshold", &R::undersizedThreshold));
}
VRM_RECORD_API(counterCfg)

struct genCommonCfg_s {
    genTxMode_t mode = genTxMode_t::MIN;
    genTxDuration_s duration;
    portRate_t rate;
    schedCfg_s schedParams;
    timestampLatchMode_t txTimestampLatchMode = timestampLatchMode_t::MIN;
    int32_t testStreamID = 0;
    int32_t randomLengthSeed = 0;
    imixCfg_s imix;
    counterCfg_s counterParams;
    genSignatureMode_t signatureMode = genSignatureMode_t::MIN;
    uint16_t stepSize = 0;
    bool smoothenRandom = false;
};
constexpr auto describe(const genCommonCfg_s*) {
    using R = genCommonCfg_s;
    using namespace binding;
    return record<R>(enum_string("mode", &R::mode, em_genTxMode_t), field("duration", &R::duration),
                     field("rate", &R::rate), field("schedParams", &R::schedParams),
                     enum_string("txTimestampLatchMode", &R::txTimestampLatchMode, em_timestampLatchMode_t),
                     field("testStreamID", &R::testStreamID), field("randomLengthSeed", &R::randomLengthSeed),
                     field("imix", &R::imix), field("counterParams", &R::counterParams),
                     enum_string("signatureMode", &R::signatureMode, em_genSignatureMode_t),
                     field("stepSize", &R::stepSize), field("smoothenRandom", &R::smoothenRandom));
}
VRM_RECORD_API(genCommonCfg)

struct startStopTime_s {
    selStartStopFields_t selStartStopFields = selStartStopFields_t::START_ONLY;
    uint64_t startTime = 0;
    uint64_t endTime = 0;
};
constexpr auto describe(const startStopTime_s*) {
    using R = startStopTime_s;
    using namespace binding;
    return record<R>(enum_string("selStartStopFields", &R::selStartStopFields, em_selStartStopFields_t),
                     field("startTime", &R::startTime), field("endTime", &R::endTime));
}
VRM_RECORD_API(startStopTime)

// --- frame, error and length settings of a block ----------------------------------------------

struct genErrorCfg_s {
    errorOffsetRef_t offsetReference = errorOffsetRef_t::MIN;
    int16_t offset = 0;
    uint8_t mask = 0;
    bool continuous = false;
    bool errorFCS = false;
    bool errorQuorvexSignatureCRC16 = false;
    bool errorInnerFCS = false;
};
constexpr auto describe(const genErrorCfg_s*) {
    using R = genErrorCfg_s;
    using namespace binding;
    return record<R>(enum_string("offsetReference", &R::offsetReference, em_errorOffsetRef_t),
                     field("offset", &R::offset), field("mask", &R::mask),
                     field("continuous", &R::continuous), field("errorFCS", &R::errorFCS),
                     field("errorQuorvexSignatureCRC16", &R::errorQuorvexSignatureCRC16),
                     field("errorInnerFCS", &R::errorInnerFCS));
}
VRM_RECORD_API(genErrorCfg)

struct genFrameLenCfg_s {
    genFrmLenMode_t mode = genFrmLenMode_t::MIN;
    int8_t stepExp = 0;
    int16_t minLength = 0;
    int16_t maxLength = 0;
    int16_t fixedFrameLength = 0;
};
constexpr auto describe(const genFrameLenCfg_s*) {
    using R = genFrameLenCfg_s;
    using namespace binding;
    return record<R>(enum_string("mode", &R::mode, em_genFrmLenMode_t), field("stepExp", &R::stepExp),
                     field("minLength", &R::minLength), field("maxLength", &R::maxLength),
                     field("fixedFrameLength", &R::fixedFrameLength));
}
VRM_RECORD_API(genFrameLenCfg)

struct genFrameOptCfg_s {
    bool insertSigField = false;
    bool enableUserFrame = false;
    genFillType_t fillType = genFillType_t::MIN;
    int16_t fillConstant = 0;
};
constexpr auto describe(const genFrameOptCfg_s*) {
    using R = genFrameOptCfg_s;
    using namespace binding;
    return record<R>(
        field("insertSigField", &R::insertSigField), field("enableUserFrame", &R::enableUserFrame),
        enum_string("fillType", &R::fillType, em_genFillType_t), field("fillConstant", &R::fillConstant));
}
VRM_RECORD_API(genFrameOptCfg)

// --- per-stream configuration -----------------------------------------------------------------

struct genBasicStreamCfg_s {
    bool enabled = false;
    int8_t rateUnit = 0;
    int64_t rate = 0;
};
constexpr auto describe(const genBasicStreamCfg_s*) {
    using R = genBasicStreamCfg_s;
    using namespace binding;
    return record<R>(field("enabled", &R::enabled), field("rateUnit", &R::rateUnit), field("rate", &R::rate));
}
VRM_RECORD_API(genBasicStreamCfg)

struct vfdConfig_s {
    genVFDIndex_t index = genVFDIndex_t::MIN;
    genVFDMode_t mode = genVFDMode_t::MIN;
    bool stutterEnable = false;
    bool carryChainEnable = false;
    bool skipReservedValue = false;
    int8_t subnetMask = 0;
    int8_t stepExp = 0;
    int8_t range = 0;
    int16_t offset = 0;
    int32_t componentID = 0;
    int32_t initialValue = 0;
    int32_t recycleCount = 0;
    int32_t randomMask = 0;
    int32_t randomSeed = 0;
};
constexpr auto describe(const vfdConfig_s*) {
    using R = vfdConfig_s;
    using namespace binding;
    return record<R>(
        enum_string("index", &R::index, em_genVFDIndex_t), enum_string("mode", &R::mode, em_genVFDMode_t),
        field("stutterEnable", &R::stutterEnable), field("carryChainEnable", &R::carryChainEnable),
        field("skipReservedValue", &R::skipReservedValue), field("subnetMask", &R::subnetMask),
        field("stepExp", &R::stepExp), field("range", &R::range), field("offset", &R::offset),
        field("componentID", &R::componentID), field("initialValue", &R::initialValue),
        field("recycleCount", &R::recycleCount), field("randomMask", &R::randomMask),
        field("randomSeed", &R::randomSeed));
}
VRM_RECORD_API(vfdConfig)

// At most six VFDs; more leave only stutterCount on the wire.
struct genVFDCfg_s {
    int16_t stutterCount = 0;
    std::vector<vfdConfig_s> vfds;
};
constexpr auto describe(const genVFDCfg_s*) {
    using R = genVFDCfg_s;
    using namespace binding;
    return record<R>(field("stutterCount", &R::stutterCount), bounded<6>("vfds", &R::vfds));
}
VRM_RECORD_API(genVFDCfg)

struct genFrameInfo_s {
    bool hasVLAN = false;
    bool hasMPLS = false;
    int16_t l4HdrOffset = 0;
    bool hasSecondUDPHdr = false;
    genIPHdrType_t firstIPHdrType = genIPHdrType_t::MIN;
    genIPHdrType_t secondIPHdrType = genIPHdrType_t::MIN;
    int16_t firstIPHdrOffset = 0;
    int16_t secondIPHdrOffset = 0;
};
constexpr auto describe(const genFrameInfo_s*) {
    using R = genFrameInfo_s;
    using namespace binding;
    return record<R>(field("hasVLAN", &R::hasVLAN), field("hasMPLS", &R::hasMPLS),
                     field("l4HdrOffset", &R::l4HdrOffset), field("hasSecondUDPHdr", &R::hasSecondUDPHdr),
                     enum_string("firstIPHdrType", &R::firstIPHdrType, em_genIPHdrType_t),
                     enum_string("secondIPHdrType", &R::secondIPHdrType, em_genIPHdrType_t),
                     field("firstIPHdrOffset", &R::firstIPHdrOffset),
                     field("secondIPHdrOffset", &R::secondIPHdrOffset));
}
VRM_RECORD_API(genFrameInfo)

struct genFrameDataType_s {
    frmDataType_t type = frmDataType_t::MIN;
    int16_t length = 0;
};
constexpr auto describe(const genFrameDataType_s*) {
    using R = genFrameDataType_s;
    using namespace binding;
    return record<R>(enum_string("type", &R::type, em_frmDataType_t), field("length", &R::length));
}
VRM_RECORD_API(genFrameDataType)

// Frame bytes beyond 16384 end the struct before "data".
struct genFrameCfg_s {
    genFrameInfo_s info;
    genFrameLenCfg_s lengthCfg;
    genFrameOptCfg_s options;
    std::vector<genFrameDataType_s> dataTypes;
    std::vector<uint8_t> data;
};
constexpr auto describe(const genFrameCfg_s*) {
    using R = genFrameCfg_s;
    using namespace binding;
    return record<R>(field("info", &R::info), field("lengthCfg", &R::lengthCfg),
                     field("options", &R::options), field("dataTypes", &R::dataTypes),
                     bounded<16384>("data", &R::data));
}
VRM_RECORD_API(genFrameCfg)

struct routeOffset_s {
    routeOffsetRef_t offsetReference = routeOffsetRef_t::MIN;
    int16_t offset = 0;
};
constexpr auto describe(const routeOffset_s*) {
    using R = routeOffset_s;
    using namespace binding;
    return record<R>(enum_string("offsetReference", &R::offsetReference, em_routeOffsetRef_t),
                     field("offset", &R::offset));
}
VRM_RECORD_API(routeOffset)

struct genRouteInsCfg_s {
    bool enable = false;
    uint16_t tableIndex = 0;
    std::vector<routeOffset_s> offset;
};
constexpr auto describe(const genRouteInsCfg_s*) {
    using R = genRouteInsCfg_s;
    using namespace binding;
    return record<R>(field("enable", &R::enable), field("tableIndex", &R::tableIndex),
                     field("offset", &R::offset));
}
VRM_RECORD_API(genRouteInsCfg)

struct genStreamCfg_s {
    int32_t index = 0;
    genBasicStreamCfg_s basic;
    genVFDCfg_s vfds;
    genErrorCfg_s error;
    genFrameCfg_s frame;
    genRouteInsCfg_s route;
};
constexpr auto describe(const genStreamCfg_s*) {
    using R = genStreamCfg_s;
    using namespace binding;
    return record<R>(field("index", &R::index), field("basic", &R::basic), field("vfds", &R::vfds),
                     field("error", &R::error), field("frame", &R::frame), field("route", &R::route));
}
VRM_RECORD_API(genStreamCfg)

// --- traffic sequence table ---------------------------------------------------------------------

struct tableEntry_s {
    bool enabled = false;
    uint32_t blockId = 0;
    uint64_t interFrameGap = 0;
    uint64_t interBurstGap = 0;
    uint64_t interEntryGap = 0;
    LoadProfile_1_bll::rateUnit_t interFrameGapUnit = LoadProfile_1_bll::rateUnit_t::PERCENT_LINE_RATE;
    LoadProfile_1_bll::rateUnit_t interBurstGapUnit = LoadProfile_1_bll::rateUnit_t::PERCENT_LINE_RATE;
    LoadProfile_1_bll::rateUnit_t interEntryGapUnit = LoadProfile_1_bll::rateUnit_t::PERCENT_LINE_RATE;
    uint16_t burstSize = 0;
    uint16_t burstCount = 0;
    uint32_t returnToIndex = 0;
    uint16_t loopCount = 0;
    bool enableContinuousTransmission = false;
};
constexpr auto describe(const tableEntry_s*) {
    using R = tableEntry_s;
    using namespace binding;
    using LoadProfile_1_bll::em_rateUnit_t;
    return record<R>(field("enabled", &R::enabled), field("blockId", &R::blockId),
                     field("interFrameGap", &R::interFrameGap), field("interBurstGap", &R::interBurstGap),
                     field("interEntryGap", &R::interEntryGap),
                     enum_string("interFrameGapUnit", &R::interFrameGapUnit, em_rateUnit_t),
                     enum_string("interBurstGapUnit", &R::interBurstGapUnit, em_rateUnit_t),
                     enum_string("interEntryGapUnit", &R::interEntryGapUnit, em_rateUnit_t),
                     field("burstSize", &R::burstSize), field("burstCount", &R::burstCount),
                     field("returnToIndex", &R::returnToIndex), field("loopCount", &R::loopCount),
                     field("enableContinuousTransmission", &R::enableContinuousTransmission));
}
VRM_RECORD_API(tableEntry)

struct tableEntryModData_s {
    uint32_t index = 0;
    tableEntry_s modData;
};
constexpr auto describe(const tableEntryModData_s*) {
    using R = tableEntryModData_s;
    using namespace binding;
    return record<R>(field("index", &R::index), field("modData", &R::modData));
}
VRM_RECORD_API(tableEntryModData)

// --- stream blocks ----------------------------------------------------------------------------

struct genCustomPfc_s {
    bool customPfcEnabled = false;
    uint8_t customPfcPriority = 0;
};
constexpr auto describe(const genCustomPfc_s*) {
    using R = genCustomPfc_s;
    using namespace binding;
    return record<R>(field("customPfcEnabled", &R::customPfcEnabled),
                     field("customPfcPriority", &R::customPfcPriority));
}
VRM_RECORD_API(genCustomPfc)

struct genUitCfg_s {
    uint16_t tsOffset = 0;
    tsType_t tsType = tsType_t::MIN;
};
constexpr auto describe(const genUitCfg_s*) {
    using R = genUitCfg_s;
    using namespace binding;
    return record<R>(field("tsOffset", &R::tsOffset), enum_string("tsType", &R::tsType, em_tsType_t));
}
VRM_RECORD_API(genUitCfg)

struct frameCfg_s {
    genFrameLenCfg_s lengthCfg;
    genFrameOptCfg_s options;
    std::string data;  // the frame template's bytes as text
};
constexpr auto describe(const frameCfg_s*) {
    using R = frameCfg_s;
    using namespace binding;
    return record<R>(field("lengthCfg", &R::lengthCfg), field("options", &R::options),
                     field("data", &R::data));
}
VRM_RECORD_API(frameCfg)

struct baseStreamCfg_s {
    bool enabled = false;
    genErrorCfg_s error;
    frameCfg_s frame;
};
constexpr auto describe(const baseStreamCfg_s*) {
    using R = baseStreamCfg_s;
    using namespace binding;
    return record<R>(field("enabled", &R::enabled), field("error", &R::error), field("frame", &R::frame));
}
VRM_RECORD_API(baseStreamCfg)

// An emulated interface stack a block is bound to.
struct networkInterfaceData_s {
    uint32_t index = 0;
    bool useStream = false;
    uint32_t deviceHandle = 0;
    IFSETUP_1_bll::NetworkInterfaceStack_s interfaces;
};
constexpr auto describe(const networkInterfaceData_s*) {
    using R = networkInterfaceData_s;
    using namespace binding;
    return record<R>(field("index", &R::index), field("useStream", &R::useStream),
                     field("deviceHandle", &R::deviceHandle), field("interfaces", &R::interfaces));
}
VRM_RECORD_API(networkInterfaceData)

struct encapNi_s {
    uint32_t niIndex = 0;
    uint8_t insertIndex = 0;
};
constexpr auto describe(const encapNi_s*) {
    using R = encapNi_s;
    using namespace binding;
    return record<R>(field("niIndex", &R::niIndex), field("insertIndex", &R::insertIndex));
}
VRM_RECORD_API(encapNi)

// learningNiGatewayMac is optional: more than one element ends the struct after encapNi.
struct pathDescriptor_s {
    uint32_t srcNiIndex = 0;
    uint32_t dstNiIndex = 0;
    uint32_t learningNiIndex = 0;
    pathPattern_t pattern = pathPattern_t::PAIR;
    std::vector<encapNi_s> encapNi;
    std::vector<ifSetup_1_bll::MacAddress_s> learningNiGatewayMac;
    bool learningNiIndexIsStack = false;
    bool insertEntropyLabel = false;
    bool insertControlWord = false;
};
constexpr auto describe(const pathDescriptor_s*) {
    using R = pathDescriptor_s;
    using namespace binding;
    return record<R>(field("srcNiIndex", &R::srcNiIndex), field("dstNiIndex", &R::dstNiIndex),
                     field("learningNiIndex", &R::learningNiIndex),
                     enum_string("pattern", &R::pattern, em_pathPattern_t), field("encapNi", &R::encapNi),
                     bounded<1>("learningNiGatewayMac", &R::learningNiGatewayMac),
                     field("learningNiIndexIsStack", &R::learningNiIndexIsStack),
                     field("insertEntropyLabel", &R::insertEntropyLabel),
                     field("insertControlWord", &R::insertControlWord));
}
VRM_RECORD_API(pathDescriptor)

struct rateRangeModifier_s {
    rateRangeModMode_t mode = rateRangeModMode_t::INCREMENT;
    uint64_t stepValue = 0;
    uint32_t recycleCount = 0;
    uint32_t repeatCount = 0;
};
constexpr auto describe(const rateRangeModifier_s*) {
    using R = rateRangeModifier_s;
    using namespace binding;
    return record<R>(enum_string("mode", &R::mode, em_rateRangeModMode_t), field("stepValue", &R::stepValue),
                     field("recycleCount", &R::recycleCount), field("repeatCount", &R::repeatCount));
}
VRM_RECORD_API(rateRangeModifier)

struct rateListModifier_s {
    std::vector<uint64_t> load;
    std::vector<LoadProfile_1_bll::rateUnit_t> loadUnit;
    uint32_t repeatCount = 0;
};
constexpr auto describe(const rateListModifier_s*) {
    using R = rateListModifier_s;
    using namespace binding;
    return record<R>(field("load", &R::load),
                     enum_string("loadUnit", &R::loadUnit, LoadProfile_1_bll::em_rateUnit_t),
                     field("repeatCount", &R::repeatCount));
}
VRM_RECORD_API(rateListModifier)

struct rateRandomModifier_s {
    uint64_t minLoad = 0;
    uint64_t maxLoad = 0;
    uint32_t repeatCount = 0;
};
constexpr auto describe(const rateRandomModifier_s*) {
    using R = rateRandomModifier_s;
    using namespace binding;
    return record<R>(field("minLoad", &R::minLoad), field("maxLoad", &R::maxLoad),
                     field("repeatCount", &R::repeatCount));
}
VRM_RECORD_API(rateRandomModifier)

// All three kinds travel; modType says which one counts.
struct blockRateModifier_s {
    blockRateModType_t modType = blockRateModType_t::MIN;
    rateRangeModifier_s rangeMod;
    rateListModifier_s listMod;
    rateRandomModifier_s randomMod;
};
constexpr auto describe(const blockRateModifier_s*) {
    using R = blockRateModifier_s;
    using namespace binding;
    return record<R>(enum_string("modType", &R::modType, em_blockRateModType_t),
                     field("rangeMod", &R::rangeMod), field("listMod", &R::listMod),
                     field("randomMod", &R::randomMod));
}
VRM_RECORD_API(blockRateModifier)

// One block of traffic. rateModifier is optional: more than one element ends the struct
// after baseStream.
struct streamBlock_s {
    std::string name;
    uint32_t blockID = 0;
    baseStreamCfg_s baseStream;
    std::vector<blockRateModifier_s> rateModifier;
    std::vector<modLinkDesc_s> modLinks;
    std::vector<rangeModifier_s> rangeModifiers;
    std::vector<tableModifier_s> tableModifiers;
    std::vector<networkInterfaceData_s> interfaces;
    std::vector<networkInterfaceData_s> multiHomeNis;
    std::vector<pathDescriptor_s> pathDescriptors;
    bool enableControlPlane = false;
    bool ilManaged = false;
    bool mergeWholeStack = false;
    bool fastStream = false;
    uint32_t startStreamIndex = 0;
    bool byPassSimpleIpSubnetChecking = false;
    uint8_t schedulerGroup = 0;
    genCustomPfc_s customPfc;
    genUitCfg_s uitCfg;
};
constexpr auto describe(const streamBlock_s*) {
    using R = streamBlock_s;
    using namespace binding;
    return record<R>(field("name", &R::name), field("blockID", &R::blockID),
                     field("baseStream", &R::baseStream), bounded<1>("rateModifier", &R::rateModifier),
                     field("modLinks", &R::modLinks), field("rangeModifiers", &R::rangeModifiers),
                     field("tableModifiers", &R::tableModifiers), field("interfaces", &R::interfaces),
                     field("multiHomeNis", &R::multiHomeNis), field("pathDescriptors", &R::pathDescriptors),
                     field("enableControlPlane", &R::enableControlPlane), field("ilManaged", &R::ilManaged),
                     field("mergeWholeStack", &R::mergeWholeStack), field("fastStream", &R::fastStream),
                     field("startStreamIndex", &R::startStreamIndex),
                     field("byPassSimpleIpSubnetChecking", &R::byPassSimpleIpSubnetChecking),
                     field("schedulerGroup", &R::schedulerGroup), field("customPfc", &R::customPfc),
                     field("uitCfg", &R::uitCfg));
}
VRM_RECORD_API(streamBlock)

// A new rate modifier for one block; more than one element ends the struct after blockId.
struct modBlockRateModifier_s {
    uint32_t blockId = 0;
    std::vector<blockRateModifier_s> rateMod;
};
constexpr auto describe(const modBlockRateModifier_s*) {
    using R = modBlockRateModifier_s;
    using namespace binding;
    return record<R>(field("blockId", &R::blockId), bounded<1>("rateMod", &R::rateMod));
}
VRM_RECORD_API(modBlockRateModifier)

// --- in-place changes of blocks and streams -------------------------------------------------

// One block setting's new value, chosen by modType.
struct streamBlockModData_t {
    binding::Selector<sbModType_t> modType;  // ENABLED by default; changed with select()
    union {
        bool enabled;
        bool errorContinuous;
        bool errorFCS;
        bool errorQuorvexSignatureCRC16;
        bool errorInnerFCS;
        genFrmLenMode_t frameLenMode;
        int8_t frameLenStepExp;
        int16_t minFrameLength;
        int16_t maxFrameLength;
        int16_t fixedFrameLength;
        bool insertSigField;
        genFillType_t fillType;
        int16_t fillConstant;
        genCustomPfc_s customPfc;
        genUitCfg_s uitCfg;
    };
    VRM_CHOICE_MEMBERS(streamBlockModData_t, sbModType_t)
};
constexpr auto describe(const streamBlockModData_t*) {
    using R = streamBlockModData_t;
    using E = sbModType_t;
    using namespace binding;
    return choice(
        &R::modType, alternative(E::ENABLED, field("enabled", &R::enabled)),
        alternative(E::ERRORCONTINUOUS, field("errorContinuous", &R::errorContinuous)),
        alternative(E::ERRORFCS, field("errorFCS", &R::errorFCS)),
        alternative(E::ERRORQUORVEXSIGNATURECRC16,
                    field("errorQuorvexSignatureCRC16", &R::errorQuorvexSignatureCRC16)),
        alternative(E::ERRORINNERFCS, field("errorInnerFCS", &R::errorInnerFCS)),
        alternative(E::FRAMELENMODE, enum_string("frameLenMode", &R::frameLenMode, em_genFrmLenMode_t)),
        alternative(E::FRAMELENSTEPEXP, field("frameLenStepExp", &R::frameLenStepExp)),
        alternative(E::MINFRAMELENGTH, field("minFrameLength", &R::minFrameLength)),
        alternative(E::MAXFRAMELENGTH, field("maxFrameLength", &R::maxFrameLength)),
        alternative(E::FIXEDFRAMELENGTH, field("fixedFrameLength", &R::fixedFrameLength)),
        alternative(E::INSERTSIGFIELD, field("insertSigField", &R::insertSigField)),
        alternative(E::FILLTYPE, enum_string("fillType", &R::fillType, em_genFillType_t)),
        alternative(E::FILLCONSTANT, field("fillConstant", &R::fillConstant)),
        alternative(E::CUSTOMPFC, field("customPfc", &R::customPfc)),
        alternative(E::UITCFG, field("uitCfg", &R::uitCfg)));
}
VRM_CHOICE_API(streamBlockModData)

struct streamBlockModArray_s {
    uint32_t blockId = 0;
    std::vector<streamBlockModData_t> modifiers;
    std::string name;
    bool modifyName = false;
};
constexpr auto describe(const streamBlockModArray_s*) {
    using R = streamBlockModArray_s;
    using namespace binding;
    return record<R>(field("blockId", &R::blockId), field("modifiers", &R::modifiers),
                     field("name", &R::name), field("modifyName", &R::modifyName));
}
VRM_RECORD_API(streamBlockModArray)

struct streamBlockModRange_s {
    uint32_t startBlockId = 0;
    uint32_t count = 0;
    std::vector<streamBlockModData_t> modifiers;
    std::string name;
    bool modifyName = false;
};
constexpr auto describe(const streamBlockModRange_s*) {
    using R = streamBlockModRange_s;
    using namespace binding;
    return record<R>(field("startBlockId", &R::startBlockId), field("count", &R::count),
                     field("modifiers", &R::modifiers), field("name", &R::name),
                     field("modifyName", &R::modifyName));
}
VRM_RECORD_API(streamBlockModRange)

// Bytes written at an offset of each stream's frame.
struct genericStreamModData_s {
    offsetReference_t offsetReference = offsetReference_t::START_OF_FRAME;
    uint16_t offset = 0;
    uint8_t length = 0;
    std::vector<uint8_t> data;
};
constexpr auto describe(const genericStreamModData_s*) {
    using R = genericStreamModData_s;
    using namespace binding;
    return record<R>(enum_string("offsetReference", &R::offsetReference, em_offsetReference_t),
                     field("offset", &R::offset), field("length", &R::length), field("data", &R::data));
}
VRM_RECORD_API(genericStreamModData)

// One stream field's new value, chosen by dataType.
struct streamModData_t {
    binding::Selector<streamModDataType_t> dataType;  // GENERIC by default; changed with select()
    union {
        genericStreamModData_s generic;
        ifSetup_1_bll::Ipv4Address_s srcIpv4Addr;
        ifSetup_1_bll::Ipv4Address_s dstIpv4Addr;
        ifSetup_1_bll::Ipv6Address_s srcIpv6Addr;
        ifSetup_1_bll::Ipv6Address_s dstIpv6Addr;
        uint16_t srcUdpPort;
        uint16_t dstUdpPort;
        uint16_t srcTcpPort;
        uint16_t dstTcpPort;
    };
    VRM_CHOICE_MEMBERS(streamModData_t, streamModDataType_t)
};
constexpr auto describe(const streamModData_t*) {
    using R = streamModData_t;
    using E = streamModDataType_t;
    using namespace binding;
    return choice(&R::dataType, alternative(E::GENERIC, field("generic", &R::generic)),
                  alternative(E::SRCIPV4ADDR, field("srcIpv4Addr", &R::srcIpv4Addr)),
                  alternative(E::DSTIPV4ADDR, field("dstIpv4Addr", &R::dstIpv4Addr)),
                  alternative(E::SRCIPV6ADDR, field("srcIpv6Addr", &R::srcIpv6Addr)),
                  alternative(E::DSTIPV6ADDR, field("dstIpv6Addr", &R::dstIpv6Addr)),
                  alternative(E::SRCUDPPORT, field("srcUdpPort", &R::srcUdpPort)),
                  alternative(E::DSTUDPPORT, field("dstUdpPort", &R::dstUdpPort)),
                  alternative(E::SRCTCPPORT, field("srcTcpPort", &R::srcTcpPort)),
                  alternative(E::DSTTCPPORT, field("dstTcpPort", &R::dstTcpPort)));
}
VRM_CHOICE_API(streamModData)

struct streamModifier_s {
    int8_t refCount = 0;
    streamModData_t modifier;
};
constexpr auto describe(const streamModifier_s*) {
    using R = streamModifier_s;
    using namespace binding;
    return record<R>(field("refCount", &R::refCount), field("modifier", &R::modifier));
}
VRM_RECORD_API(streamModifier)

// Modifiers applied to a list of streams (by stream index).
struct streamModifierArray_s {
    std::vector<uint32_t> streams;
    std::vector<streamModifier_s> modifiers;
};
constexpr auto describe(const streamModifierArray_s*) {
    using R = streamModifierArray_s;
    using namespace binding;
    return record<R>(field("streams", &R::streams), field("modifiers", &R::modifiers));
}
VRM_RECORD_API(streamModifierArray)

// --- records of method members and notifications ------------------------------------------

struct streamIndexes_s {
    uint32_t blockId = 0;
    std::vector<uint32_t> streamIndexes;
};
constexpr auto describe(const streamIndexes_s*) {
    using R = streamIndexes_s;
    using namespace binding;
    return record<R>(field("blockId", &R::blockId), field("streamIndexes", &R::streamIndexes));
}
VRM_RECORD_API(streamIndexes)

struct niStreamIndexes_s {
    std::vector<uint32_t> niStreamIndexes;
};
constexpr auto describe(const niStreamIndexes_s*) {
    using R = niStreamIndexes_s;
    using namespace binding;
    return record<R>(field("niStreamIndexes", &R::niStreamIndexes));
}
VRM_RECORD_API(niStreamIndexes)

struct streamRange_s {
    int32_t startStreamIndex = 0;
    int32_t streamCount = 0;
};
constexpr auto describe(const streamRange_s*) {
    using R = streamRange_s;
    using namespace binding;
    return record<R>(field("startStreamIndex", &R::startStreamIndex), field("streamCount", &R::streamCount));
}
VRM_RECORD_API(streamRange)

struct streamRate_s {
    uint32_t streamIndex = 0;
    rate_s rate;
};
constexpr auto describe(const streamRate_s*) {
    using R = streamRate_s;
    using namespace binding;
    return record<R>(field("streamIndex", &R::streamIndex), field("rate", &R::rate));
}
VRM_RECORD_API(streamRate)

struct streamRateArray_s {
    uint32_t blockId = 0;
    std::vector<streamRate_s> rates;
};
constexpr auto describe(const streamRateArray_s*) {
    using R = streamRateArray_s;
    using namespace binding;
    return record<R>(field("blockId", &R::blockId), field("rates", &R::rates));
}
VRM_RECORD_API(streamRateArray)

// A stream and the interface stacks it was resolved to.
struct streamNIS_s {
    uint32_t streamIndex = 0;
    uint32_t blockID = 0;
    networkInterfaceData_s sourceNIS;
    networkInterfaceData_s destL3NI;
};
constexpr auto describe(const streamNIS_s*) {
    using R = streamNIS_s;
    using namespace binding;
    return record<R>(field("streamIndex", &R::streamIndex), field("blockID", &R::blockID),
                     field("sourceNIS", &R::sourceNIS), field("destL3NI", &R::destL3NI));
}
VRM_RECORD_API(streamNIS)

// A multicast multiplier for ranges of streams and single streams (by stream index).
struct streamMultiplier_s {
    uint16_t multiplier = 0;
    std::vector<streamRange_s> rangeStreams;
    std::vector<uint32_t> indivStreams;
};
constexpr auto describe(const streamMultiplier_s*) {
    using R = streamMultiplier_s;
    using namespace binding;
    return record<R>(field("multiplier", &R::multiplier), field("rangeStreams", &R::rangeStreams),
                     field("indivStreams", &R::indivStreams));
}
VRM_RECORD_API(streamMultiplier)

// A new destination MAC for the given streams (by stream index) of an Ethernet interface.
struct destMACMod_s {
    uint32_t ethIntfIndex = 0;
    ifSetup_1_bll::MacAddress_s macAddress;
    std::vector<uint32_t> streams;
};
constexpr auto describe(const destMACMod_s*) {
    using R = destMACMod_s;
    using namespace binding;
    return record<R>(field("ethIntfIndex", &R::ethIntfIndex), field("macAddress", &R::macAddress),
                     field("streams", &R::streams));
}
VRM_RECORD_API(destMACMod)

struct warningLog_s {
    warningCode_t code = warningCode_t::SCHED_NORMALIZED;
    std::string log;
};
constexpr auto describe(const warningLog_s*) {
    using R = warningLog_s;
    using namespace binding;
    return record<R>(enum_string("code", &R::code, em_warningCode_t), field("log", &R::log));
}
VRM_RECORD_API(warningLog)

struct tableInfo_s {
    uint32_t index = 0;
    uint32_t columns = 0;
    uint32_t entryCount = 0;
};
constexpr auto describe(const tableInfo_s*) {
    using R = tableInfo_s;
    using namespace binding;
    return record<R>(field("index", &R::index), field("columns", &R::columns),
                     field("entryCount", &R::entryCount));
}
VRM_RECORD_API(tableInfo)

struct ritInfo_s {
    std::vector<tableInfo_s> tables;
    uint32_t totalEntryCount = 0;
    uint32_t avgEntryCount = 0;
    uint32_t minEntryCount = 0;
    uint32_t maxEntryCount = 0;
};
constexpr auto describe(const ritInfo_s*) {
    using R = ritInfo_s;
    using namespace binding;
    return record<R>(field("tables", &R::tables), field("totalEntryCount", &R::totalEntryCount),
                     field("avgEntryCount", &R::avgEntryCount), field("minEntryCount", &R::minEntryCount),
                     field("maxEntryCount", &R::maxEntryCount));
}
VRM_RECORD_API(ritInfo)

struct strAttrDef_s {
    strAttrType_t strAttrType = strAttrType_t::NONE;
    std::string pduFieldPattern;
    LoadProfile_1_bll::rateUnit_t rateUnit = LoadProfile_1_bll::rateUnit_t::PERCENT_LINE_RATE;
};
constexpr auto describe(const strAttrDef_s*) {
    using R = strAttrDef_s;
    using namespace binding;
    return record<R>(enum_string("strAttrType", &R::strAttrType, em_strAttrType_t),
                     field("pduFieldPattern", &R::pduFieldPattern),
                     enum_string("rateUnit", &R::rateUnit, LoadProfile_1_bll::em_rateUnit_t));
}
VRM_RECORD_API(strAttrDef)

struct custColumnDef_s {
    custColIndex_t custColIdx = custColIndex_t::ONE;
    strAttrDef_s custColDef;
};
constexpr auto describe(const custColumnDef_s*) {
    using R = custColumnDef_s;
    using namespace binding;
    return record<R>(enum_string("custColIdx", &R::custColIdx, em_custColIndex_t),
                     field("custColDef", &R::custColDef));
}
VRM_RECORD_API(custColumnDef)

// Run state of each stream of a block.
struct genStrBlockRunState_s {
    uint32_t blockId = 0;
    std::vector<bool> isRunning;
};
constexpr auto describe(const genStrBlockRunState_s*) {
    using R = genStrBlockRunState_s;
    using namespace binding;
    return record<R>(field("blockId", &R::blockId), field("isRunning", &R::isRunning));
}
VRM_RECORD_API(genStrBlockRunState)

}  // namespace Generator_3_bll
