// Method descriptions of Generator_3 (for the module's source and tests): one constant per
// method and notification, and the catalogues that list them with their public functions.
#pragma once

#include <tuple>

#include "binding/Method.h"
#include "interfaces/generator_3_bll.h"
#include "interfaces/ifSetup_Autogen_bll_methods.h"
#include "interfaces/loadProfile_1_bll_methods.h"
#include "interfaces/stats_1_bll_methods.h"

namespace Generator_3_bll {

inline constexpr binding::ModuleRules kRules{"Generator_3.", true};

namespace methods {
using binding::arg;
using binding::delegated;
using binding::enum_arg;
using binding::members;
using binding::method;

// Delegated: interface stacks.
inline constexpr auto SetInterfaceLibParams =
    delegated(IFSETUP_1_bll::methods::SetInterfaceLibParams, kRules);
inline constexpr auto GetInterfaceLibParams =
    delegated(IFSETUP_1_bll::methods::GetInterfaceLibParams, kRules);
inline constexpr auto ConfigInterfaces = delegated(IFSETUP_1_bll::methods::ConfigInterfaces, kRules);
inline constexpr auto ConfigInterfacesWithIlHandle =
    delegated(IFSETUP_1_bll::methods::ConfigInterfacesWithIlHandle, kRules);
inline constexpr auto UpdateInterfaces = delegated(IFSETUP_1_bll::methods::UpdateInterfaces, kRules);
inline constexpr auto DeleteInterfaces = delegated(IFSETUP_1_bll::methods::DeleteInterfaces, kRules);
inline constexpr auto GetInterfaces = delegated(IFSETUP_1_bll::methods::GetInterfaces, kRules);
inline constexpr auto GetStackedInterfaces = delegated(IFSETUP_1_bll::methods::GetStackedInterfaces, kRules);
inline constexpr auto AttachInterfaces = delegated(IFSETUP_1_bll::methods::AttachInterfaces, kRules);
inline constexpr auto DetachInterfaces = delegated(IFSETUP_1_bll::methods::DetachInterfaces, kRules);
inline constexpr auto SetGroupMembership = delegated(IFSETUP_1_bll::methods::SetGroupMembership, kRules);

// Delegated: SQL statistics.
inline constexpr auto DoSQL = delegated(Stats_1_bll::methods::DoSQL, kRules);
inline constexpr auto DoSQLFaster = delegated(Stats_1_bll::methods::DoSQLFaster, kRules);
inline constexpr auto DoSQLDatabase = delegated(Stats_1_bll::methods::DoSQLDatabase, kRules);
inline constexpr auto DoSQLDatabaseFaster = delegated(Stats_1_bll::methods::DoSQLDatabaseFaster, kRules);
inline constexpr auto RequestDoSQLNotification =
    delegated(Stats_1_bll::methods::RequestDoSQLNotification, kRules);
inline constexpr auto RequestDoSQLNotificationFaster =
    delegated(Stats_1_bll::methods::RequestDoSQLNotificationFaster, kRules);
inline constexpr auto DeleteDoSQLNotification =
    delegated(Stats_1_bll::methods::DeleteDoSQLNotification, kRules);
inline constexpr auto DeleteDoSQLNotificationFaster =
    delegated(Stats_1_bll::methods::DeleteDoSQLNotificationFaster, kRules);
inline constexpr auto EnableDoSQLNotification =
    delegated(Stats_1_bll::methods::EnableDoSQLNotification, kRules);
inline constexpr auto EnableDoSQLNotificationFaster =
    delegated(Stats_1_bll::methods::EnableDoSQLNotificationFaster, kRules);
inline constexpr auto RequestTableEventNotification =
    delegated(Stats_1_bll::methods::RequestTableEventNotification, kRules);
inline constexpr auto DeleteTableEventNotification =
    delegated(Stats_1_bll::methods::DeleteTableEventNotification, kRules);
inline constexpr auto EnableTableEventNotification =
    delegated(Stats_1_bll::methods::EnableTableEventNotification, kRules);

// Delegated: load profiles.
inline constexpr auto SetLoadProfile = delegated(LoadProfile_1_bll::methods::SetLoadProfile, kRules);
inline constexpr auto RemoveLoadProfile = delegated(LoadProfile_1_bll::methods::RemoveLoadProfile, kRules);
inline constexpr auto GetLoadProfile = delegated(LoadProfile_1_bll::methods::GetLoadProfile, kRules);
inline constexpr auto StreamBlockLoadProfileBinding =
    delegated(LoadProfile_1_bll::methods::StreamBlockLoadProfileBinding, kRules);

// Own: control and state.
inline constexpr auto Control =
    method("Control", kRules, members(enum_arg<genControl_t>("action", em_genControl_t)), members());
inline constexpr auto ControlRange = method("ControlRange", kRules,
                                            members(enum_arg<genControl_t>("action", em_genControl_t),
                                                    arg<uint32_t>("blockId"), arg<uint32_t>("count")),
                                            members());
inline constexpr auto ControlArray =
    method("ControlArray", kRules,
           members(enum_arg<genControl_t>("action", em_genControl_t), arg<std::vector<uint32_t>>("blockId")),
           members());
inline constexpr auto ControlStream =
    method("ControlStream", kRules,
           members(enum_arg<genControl_t>("action", em_genControl_t), arg<std::vector<uint32_t>>("streams")),
           members());
inline constexpr auto Reset = method("Reset", kRules, members(), members());
inline constexpr auto TriggerErroredFrame = method("TriggerErroredFrame", kRules, members(), members());
inline constexpr auto StreamReset = method("StreamReset", kRules, members(), members());
inline constexpr auto Commit = method(
    "Commit", kRules, members(),
    members(arg<std::vector<warningLog_s>>("warningLog"), arg<uint32_t>("expectedBankSwitchDuration")));
inline constexpr auto GetRunState = method("GetRunState", kRules, members(), members(arg<bool>("isRunning")));
inline constexpr auto SetMessageLogging =
    method("SetMessageLogging", kRules,
           members(arg<bool>("received"), arg<bool>("request"), arg<bool>("response")), members());
inline constexpr auto RequestRunStateNotification =
    method("RequestRunStateNotification", kRules, members(arg<uint32_t>("id"), arg<uint32_t>("intervalMS")),
           members());
inline constexpr auto DeleteRunStateNotification =
    method("DeleteRunStateNotification", kRules, members(arg<uint32_t>("id")), members());
inline constexpr auto RequestStrBlockRunStateNotification =
    method("RequestStrBlockRunStateNotification", kRules,
           members(arg<uint32_t>("id"), arg<uint32_t>("intervalMS")), members());
inline constexpr auto DeleteStrBlockRunStateNotification =
    method("DeleteStrBlockRunStateNotification", kRules, members(arg<uint32_t>("id")), members());
inline constexpr auto RequestStreamNISNotification =
    method("RequestStreamNISNotification", kRules, members(arg<uint32_t>("id"), arg<uint32_t>("intervalMS")),
           members());
inline constexpr auto DeleteStreamNISNotification =
    method("DeleteStreamNISNotification", kRules, members(arg<uint32_t>("id")), members());
// Own: configuration.
inline constexpr auto SetCommonCfg =
    method("SetCommonCfg", kRules, members(arg<genCommonCfg_s>("config")), members());
inline constexpr auto GetCommonCfg =
    method("GetCommonCfg", kRules, members(), members(arg<genCommonCfg_s>("genCfg")));
inline constexpr auto SetEthernetPaddingMode =
    method("SetEthernetPaddingMode", kRules, members(arg<bool>("enabled")), members());
inline constexpr auto GetEthernetPaddingMode =
    method("GetEthernetPaddingMode", kRules, members(), members(arg<bool>("enabled")));
inline constexpr auto SetAutoSeqNumReset =
    method("SetAutoSeqNumReset", kRules, members(arg<bool>("enabled")), members());
inline constexpr auto GetAutoSeqNumReset =
    method("GetAutoSeqNumReset", kRules, members(), members(arg<bool>("enabled")));
inline constexpr auto SetSyncStartStopPara =
    method("SetSyncStartStopPara", kRules, members(arg<startStopTime_s>("startStopTime")), members());
inline constexpr auto GetSyncStartStopPara =
    method("GetSyncStartStopPara", kRules, members(), members(arg<startStopTime_s>("startStopTime")));
inline constexpr auto SetL1Cfg =
    method("SetL1Cfg", kRules, members(arg<uint16_t>("perFrameL1OverheadBytes")), members());
inline constexpr auto GetL1Cfg =
    method("GetL1Cfg", kRules, members(), members(arg<uint16_t>("perFrameL1OverheadBytes")));
inline constexpr auto SetTrafficSequenceTable =
    method("SetTrafficSequenceTable", kRules, members(arg<std::vector<tableEntry_s>>("entries")), members());
inline constexpr auto ModTrafficSequenceTable = method(
    "ModTrafficSequenceTable", kRules, members(arg<std::vector<tableEntryModData_s>>("entries")), members());
inline constexpr auto GetTrafficSequenceTable =
    method("GetTrafficSequenceTable", kRules, members(arg<std::vector<uint32_t>>("entryIndexes")),
           members(arg<std::vector<tableEntry_s>>("entries")));
inline constexpr auto GetRitInfo =
    method("GetRitInfo", kRules, members(), members(arg<ritInfo_s>("ritInfo")));
inline constexpr auto ValidatePayloadConfig =
    method("ValidatePayloadConfig", kRules,
           members(arg<uint32_t>("payloadsLessThan128"), arg<std::vector<uint32_t>>("payloadsLengths")),
           members(arg<bool>("valid"), arg<uint32_t>("overlimit")));
// Own: stream blocks and streams.
inline constexpr auto SetStreamBlock = method(
    "SetStreamBlock", kRules, members(arg<std::vector<streamBlock_s>>("blocks"), arg<bool>("returnIndex")),
    members(arg<std::vector<streamIndexes_s>>("indexes")));
inline constexpr auto GetStreamBlockArray =
    method("GetStreamBlockArray", kRules, members(arg<std::vector<uint32_t>>("blockIds")),
           members(arg<std::vector<streamBlock_s>>("blocks")));
inline constexpr auto GetStreamBlockRange =
    method("GetStreamBlockRange", kRules, members(arg<uint32_t>("startBlockID"), arg<uint32_t>("count")),
           members(arg<std::vector<streamBlock_s>>("blocks")));
inline constexpr auto DelStreamBlockArray =
    method("DelStreamBlockArray", kRules, members(arg<std::vector<uint32_t>>("blockIds")), members());
inline constexpr auto DelStreamBlockRange = method(
    "DelStreamBlockRange", kRules, members(arg<uint32_t>("startBlockID"), arg<uint32_t>("count")), members());
inline constexpr auto ModStreamBlockArray = method(
    "ModStreamBlockArray", kRules, members(arg<std::vector<streamBlockModArray_s>>("modifiers")), members());
inline constexpr auto ModStreamBlockRange = method(
    "ModStreamBlockRange", kRules, members(arg<std::vector<streamBlockModRange_s>>("modifiers")), members());
inline constexpr auto ModAllStreamBlocks = method(
    "ModAllStreamBlocks", kRules, members(arg<std::vector<streamBlockModData_t>>("modifiers")), members());
inline constexpr auto ModFrameData =
    method("ModFrameData", kRules, members(arg<std::vector<frameDataModArray_s>>("modifiers")), members());
inline constexpr auto SetStreamBlockRateModifier =
    method("SetStreamBlockRateModifier", kRules,
           members(arg<std::vector<modBlockRateModifier_s>>("rateModifiers")), members());
inline constexpr auto GetStreamBlockRate =
    method("GetStreamBlockRate", kRules, members(arg<std::vector<uint32_t>>("blockIds")),
           members(arg<std::vector<streamRateArray_s>>("streamRates")));
inline constexpr auto GetStreamID =
    method("GetStreamID", kRules, members(arg<std::vector<uint32_t>>("blockIds")),
           members(arg<std::vector<streamIndexes_s>>("indexes")));
inline constexpr auto GetStreamCount =
    method("GetStreamCount", kRules, members(), members(arg<int32_t>("count")));
inline constexpr auto GetStreamCfgRange =
    method("GetStreamCfgRange", kRules, members(arg<streamRange_s>("streams")),
           members(arg<int32_t>("count"), arg<std::vector<genStreamCfg_s>>("streamConfig")));
inline constexpr auto GetStreamCfgArray =
    method("GetStreamCfgArray", kRules,
           members(arg<int32_t>("streamCount"), arg<std::vector<int32_t>>("streamIndexArray")),
           members(arg<int32_t>("count"), arg<std::vector<genStreamCfg_s>>("streamConfig")));
inline constexpr auto GetNiStreamIndexes =
    method("GetNiStreamIndexes", kRules,
           members(arg<std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>>("niStacks")),
           members(arg<std::vector<niStreamIndexes_s>>("indexes")));
inline constexpr auto ModifyNI =
    method("ModifyNI", kRules, members(arg<IFSETUP_1_bll::NetworkInterfaceStack_s>("niStack")), members());
inline constexpr auto ModifyDestMAC =
    method("ModifyDestMAC", kRules, members(arg<std::vector<destMACMod_s>>("mods")), members());
inline constexpr auto ClearInterfaceCache =
    method("ClearInterfaceCache", kRules, members(arg<std::vector<uint32_t>>("handles")), members());
inline constexpr auto SetStrMulticastMultiplier =
    method("SetStrMulticastMultiplier", kRules, members(arg<std::vector<streamMultiplier_s>>("multiplier")),
           members());
inline constexpr auto UpdateStreamsAndDoSQL =
    method("UpdateStreamsAndDoSQL", kRules,
           members(arg<std::string>("streams"), arg<std::vector<std::string>>("commands")),
           members(arg<std::vector<Stats_1_bll::commandResultFaster_s>>("results")));
// Own: statistics tables.
inline constexpr auto ClearPortStats =
    method("ClearPortStats", kRules, members(arg<uint64_t>("absExecTime")), members());
inline constexpr auto ClearPortCtStats =
    method("ClearPortCtStats", kRules, members(arg<uint64_t>("absExecTime")), members());
inline constexpr auto ClearAllStats =
    method("ClearAllStats", kRules, members(arg<uint64_t>("absExecTime")), members());
inline constexpr auto ClearStreamStatsRange =
    method("ClearStreamStatsRange", kRules,
           members(arg<uint64_t>("absExecTime"), arg<streamRange_s>("streams")), members());
inline constexpr auto ClearStreamStatsArray =
    method("ClearStreamStatsArray", kRules,
           members(arg<uint64_t>("absExecTime"), arg<int32_t>("streamCount"),
                   arg<std::vector<int32_t>>("streamIndexArray")),
           members());
inline constexpr auto ClearStreamStatsWhere =
    method("ClearStreamStatsWhere", kRules,
           members(arg<uint64_t>("absExecTime"), arg<std::string>("streams")), members());
inline constexpr auto SetGenericStrIdColumns = method(
    "SetGenericStrIdColumns", kRules, members(arg<std::vector<custColumnDef_s>>("columnDef")), members());
inline constexpr auto GetGenericStrIdColumns = method(
    "GetGenericStrIdColumns", kRules, members(), members(arg<std::vector<custColumnDef_s>>("columnDef")));
inline constexpr auto SetRealTimeAndRateEnabledUpdatePeriod =
    method("SetRealTimeAndRateEnabledUpdatePeriod", kRules,
           members(enum_arg<genTable_t>("table", em_genTable_t), arg<uint32_t>("periodMs")), members());
inline constexpr auto SetRateEnabledRows_StreamStatsTable = method(
    "SetRateEnabledRows_StreamStatsTable", kRules, members(arg<std::vector<uint32_t>>("rows")), members());
inline constexpr auto GetRateEnabledRows_StreamStatsTable = method(
    "GetRateEnabledRows_StreamStatsTable", kRules, members(), members(arg<std::vector<uint32_t>>("rows")));
inline constexpr auto SetRealTimeRows_StreamStatsTable = method(
    "SetRealTimeRows_StreamStatsTable", kRules, members(arg<std::vector<uint32_t>>("rows")), members());
inline constexpr auto GetRealTimeRows_StreamStatsTable = method(
    "GetRealTimeRows_StreamStatsTable", kRules, members(), members(arg<std::vector<uint32_t>>("rows")));

// Notifications: members read from the received request; the answer is empty.
inline constexpr auto RunStateNotify = method(
    "RunStateNotify", kRules, members(arg<uint32_t>("id"), arg<std::vector<bool>>("isRunning")), members());
inline constexpr auto StrBlockRunStateNotify =
    method("StrBlockRunStateNotify", kRules,
           members(arg<uint32_t>("id"), arg<std::vector<genStrBlockRunState_s>>("blockState")), members());
inline constexpr auto StreamNISNotify =
    method("StreamNISNotify", kRules,
           members(arg<uint32_t>("id"), arg<std::vector<streamNIS_s>>("added"),
                   arg<std::vector<uint32_t>>("deleted")),
           members());
inline constexpr auto DoSQLNotify = delegated(Stats_1_bll::methods::DoSQLNotify, kRules);
inline constexpr auto DoSQLNotifyFaster = delegated(Stats_1_bll::methods::DoSQLNotifyFaster, kRules);
inline constexpr auto TableEventNotify = delegated(Stats_1_bll::methods::TableEventNotify, kRules);
}  // namespace methods

// Every method with its builder and response parser.
inline constexpr auto catalogue = std::make_tuple(
    binding::entry(methods::SetInterfaceLibParams, &create_req_SetInterfaceLibParams,
                   &parse_resp_SetInterfaceLibParams),
    binding::entry(methods::GetInterfaceLibParams, &create_req_GetInterfaceLibParams,
                   &parse_resp_GetInterfaceLibParams),
    binding::entry(methods::ConfigInterfaces, &create_req_ConfigInterfaces, &parse_resp_ConfigInterfaces),
    binding::entry(methods::ConfigInterfacesWithIlHandle, &create_req_ConfigInterfacesWithIlHandle,
                   &parse_resp_ConfigInterfacesWithIlHandle),
    binding::entry(methods::UpdateInterfaces, &create_req_UpdateInterfaces, &parse_resp_UpdateInterfaces),
    binding::entry(methods::DeleteInterfaces, &create_req_DeleteInterfaces, &parse_resp_DeleteInterfaces),
    binding::entry(methods::GetInterfaces, &create_req_GetInterfaces, &parse_resp_GetInterfaces),
    binding::entry(methods::GetStackedInterfaces, &create_req_GetStackedInterfaces,
                   &parse_resp_GetStackedInterfaces),
    binding::entry(methods::AttachInterfaces, &create_req_AttachInterfaces, &parse_resp_AttachInterfaces),
    binding::entry(methods::DetachInterfaces, &create_req_DetachInterfaces, &parse_resp_DetachInterfaces),
    binding::entry(methods::SetGroupMembership, &create_req_SetGroupMembership,
                   &parse_resp_SetGroupMembership),
    binding::entry(methods::DoSQL, &create_req_DoSQL, &parse_resp_DoSQL),
    binding::entry(methods::DoSQLFaster, &create_req_DoSQLFaster, &parse_resp_DoSQLFaster),
    binding::entry(methods::DoSQLDatabase, &create_req_DoSQLDatabase, &parse_resp_DoSQLDatabase),
    binding::entry(methods::DoSQLDatabaseFaster, &create_req_DoSQLDatabaseFaster,
                   &parse_resp_DoSQLDatabaseFaster),
    binding::entry(methods::RequestDoSQLNotification, &create_req_RequestDoSQLNotification,
                   &parse_resp_RequestDoSQLNotification),
    binding::entry(methods::RequestDoSQLNotificationFaster, &create_req_RequestDoSQLNotificationFaster,
                   &parse_resp_RequestDoSQLNotificationFaster),
    binding::entry(methods::DeleteDoSQLNotification, &create_req_DeleteDoSQLNotification,
                   &parse_resp_DeleteDoSQLNotification),
    binding::entry(methods::DeleteDoSQLNotificationFaster, &create_req_DeleteDoSQLNotificationFaster,
                   &parse_resp_DeleteDoSQLNotificationFaster),
    binding::entry(methods::EnableDoSQLNotification, &create_req_EnableDoSQLNotification,
                   &parse_resp_EnableDoSQLNotification),
    binding::entry(methods::EnableDoSQLNotificationFaster, &create_req_EnableDoSQLNotificationFaster,
                   &parse_resp_EnableDoSQLNotificationFaster),
    binding::entry(methods::RequestTableEventNotification, &create_req_RequestTableEventNotification,
                   &parse_resp_RequestTableEventNotification),
    binding::entry(methods::DeleteTableEventNotification, &create_req_DeleteTableEventNotification,
                   &parse_resp_DeleteTableEventNotification),
    binding::entry(methods::EnableTableEventNotification, &create_req_EnableTableEventNotification,
                   &parse_resp_EnableTableEventNotification),
    binding::entry(methods::SetLoadProfile, &create_req_SetLoadProfile, &parse_resp_SetLoadProfile),
    binding::entry(methods::RemoveLoadProfile, &create_req_RemoveLoadProfile, &parse_resp_RemoveLoadProfile),
    binding::entry(methods::GetLoadProfile, &create_req_GetLoadProfile, &parse_resp_GetLoadProfile),
    binding::entry(methods::StreamBlockLoadProfileBinding, &create_req_StreamBlockLoadProfileBinding,
                   &parse_resp_StreamBlockLoadProfileBinding),
    binding::entry(methods::Control, &create_req_Control, &parse_resp_Control),
    binding::entry(methods::ControlRange, &create_req_ControlRange, &parse_resp_ControlRange),
    binding::entry(methods::ControlArray, &create_req_ControlArray, &parse_resp_ControlArray),
    binding::entry(methods::ControlStream, &create_req_ControlStream, &parse_resp_ControlStream),
    binding::entry(methods::Reset, &create_req_Reset, &parse_resp_Reset),
    binding::entry(methods::TriggerErroredFrame, &create_req_TriggerErroredFrame,
                   &parse_resp_TriggerErroredFrame),
    binding::entry(methods::StreamReset, &create_req_StreamReset, &parse_resp_StreamReset),
    binding::entry(methods::Commit, &create_req_Commit, &parse_resp_Commit),
    binding::entry(methods::GetRunState, &create_req_GetRunState, &parse_resp_GetRunState),
    binding::entry(methods::SetMessageLogging, &create_req_SetMessageLogging, &parse_resp_SetMessageLogging),
    binding::entry(methods::RequestRunStateNotification, &create_req_RequestRunStateNotification,
                   &parse_resp_RequestRunStateNotification),
    binding::entry(methods::DeleteRunStateNotification, &create_req_DeleteRunStateNotification,
                   &parse_resp_DeleteRunStateNotification),
    binding::entry(methods::RequestStrBlockRunStateNotification,
                   &create_req_RequestStrBlockRunStateNotification,
                   &parse_resp_RequestStrBlockRunStateNotification),
    binding::entry(methods::DeleteStrBlockRunStateNotification,
                   &create_req_DeleteStrBlockRunStateNotification,
                   &parse_resp_DeleteStrBlockRunStateNotification),
    binding::entry(methods::RequestStreamNISNotification, &create_req_RequestStreamNISNotification,
                   &parse_resp_RequestStreamNISNotification),
    binding::entry(methods::DeleteStreamNISNotification, &create_req_DeleteStreamNISNotification,
                   &parse_resp_DeleteStreamNISNotification),
    binding::entry(methods::SetCommonCfg, &create_req_SetCommonCfg, &parse_resp_SetCommonCfg),
    binding::entry(methods::GetCommonCfg, &create_req_GetCommonCfg, &parse_resp_GetCommonCfg),
    binding::entry(methods::SetEthernetPaddingMode, &create_req_SetEthernetPaddingMode,
                   &parse_resp_SetEthernetPaddingMode),
    binding::entry(methods::GetEthernetPaddingMode, &create_req_GetEthernetPaddingMode,
                   &parse_resp_GetEthernetPaddingMode),
    binding::entry(methods::SetAutoSeqNumReset, &create_req_SetAutoSeqNumReset,
                   &parse_resp_SetAutoSeqNumReset),
    binding::entry(methods::GetAutoSeqNumReset, &create_req_GetAutoSeqNumReset,
                   &parse_resp_GetAutoSeqNumReset),
    binding::entry(methods::SetSyncStartStopPara, &create_req_SetSyncStartStopPara,
                   &parse_resp_SetSyncStartStopPara),
    binding::entry(methods::GetSyncStartStopPara, &create_req_GetSyncStartStopPara,
                   &parse_resp_GetSyncStartStopPara),
    binding::entry(methods::SetL1Cfg, &create_req_SetL1Cfg, &parse_resp_SetL1Cfg),
    binding::entry(methods::GetL1Cfg, &create_req_GetL1Cfg, &parse_resp_GetL1Cfg),
    binding::entry(methods::SetTrafficSequenceTable, &create_req_SetTrafficSequenceTable,
                   &parse_resp_SetTrafficSequenceTable),
    binding::entry(methods::ModTrafficSequenceTable, &create_req_ModTrafficSequenceTable,
                   &parse_resp_ModTrafficSequenceTable),
    binding::entry(methods::GetTrafficSequenceTable, &create_req_GetTrafficSequenceTable,
                   &parse_resp_GetTrafficSequenceTable),
    binding::entry(methods::GetRitInfo, &create_req_GetRitInfo, &parse_resp_GetRitInfo),
    binding::entry(methods::ValidatePayloadConfig, &create_req_ValidatePayloadConfig,
                   &parse_resp_ValidatePayloadConfig),
    binding::entry(methods::SetStreamBlock, &create_req_SetStreamBlock, &parse_resp_SetStreamBlock),
    binding::entry(methods::GetStreamBlockArray, &create_req_GetStreamBlockArray,
                   &parse_resp_GetStreamBlockArray),
    binding::entry(methods::GetStreamBlockRange, &create_req_GetStreamBlockRange,
                   &parse_resp_GetStreamBlockRange),
    binding::entry(methods::DelStreamBlockArray, &create_req_DelStreamBlockArray,
                   &parse_resp_DelStreamBlockArray),
    binding::entry(methods::DelStreamBlockRange, &create_req_DelStreamBlockRange,
                   &parse_resp_DelStreamBlockRange),
    binding::entry(methods::ModStreamBlockArray, &create_req_ModStreamBlockArray,
                   &parse_resp_ModStreamBlockArray),
    binding::entry(methods::ModStreamBlockRange, &create_req_ModStreamBlockRange,
                   &parse_resp_ModStreamBlockRange),
    binding::entry(methods::ModAllStreamBlocks, &create_req_ModAllStreamBlocks,
                   &parse_resp_ModAllStreamBlocks),
    binding::entry(methods::ModFrameData, &create_req_ModFrameData, &parse_resp_ModFrameData),
    binding::entry(methods::SetStreamBlockRateModifier, &create_req_SetStreamBlockRateModifier,
                   &parse_resp_SetStreamBlockRateModifier),
    binding::entry(methods::GetStreamBlockRate, &create_req_GetStreamBlockRate,
                   &parse_resp_GetStreamBlockRate),
    binding::entry(methods::GetStreamID, &create_req_GetStreamID, &parse_resp_GetStreamID),
    binding::entry(methods::GetStreamCount, &create_req_GetStreamCount, &parse_resp_GetStreamCount),
    binding::entry(methods::GetStreamCfgRange, &create_req_GetStreamCfgRange, &parse_resp_GetStreamCfgRange),
    binding::entry(methods::GetStreamCfgArray, &create_req_GetStreamCfgArray, &parse_resp_GetStreamCfgArray),
    binding::entry(methods::GetNiStreamIndexes, &create_req_GetNiStreamIndexes,
                   &parse_resp_GetNiStreamIndexes),
    binding::entry(methods::ModifyNI, &create_req_ModifyNI, &parse_resp_ModifyNI),
    binding::entry(methods::ModifyDestMAC, &create_req_ModifyDestMAC, &parse_resp_ModifyDestMAC),
    binding::entry(methods::ClearInterfaceCache, &create_req_ClearInterfaceCache,
                   &parse_resp_ClearInterfaceCache),
    binding::entry(methods::SetStrMulticastMultiplier, &create_req_SetStrMulticastMultiplier,
                   &parse_resp_SetStrMulticastMultiplier),
    binding::entry(methods::UpdateStreamsAndDoSQL, &create_req_UpdateStreamsAndDoSQL,
                   &parse_resp_UpdateStreamsAndDoSQL),
    binding::entry(methods::ClearPortStats, &create_req_ClearPortStats, &parse_resp_ClearPortStats),
    binding::entry(methods::ClearPortCtStats, &create_req_ClearPortCtStats, &parse_resp_ClearPortCtStats),
    binding::entry(methods::ClearAllStats, &create_req_ClearAllStats, &parse_resp_ClearAllStats),
    binding::entry(methods::ClearStreamStatsRange, &create_req_ClearStreamStatsRange,
                   &parse_resp_ClearStreamStatsRange),
    binding::entry(methods::ClearStreamStatsArray, &create_req_ClearStreamStatsArray,
                   &parse_resp_ClearStreamStatsArray),
    binding::entry(methods::ClearStreamStatsWhere, &create_req_ClearStreamStatsWhere,
                   &parse_resp_ClearStreamStatsWhere),
    binding::entry(methods::SetGenericStrIdColumns, &create_req_SetGenericStrIdColumns,
                   &parse_resp_SetGenericStrIdColumns),
    binding::entry(methods::GetGenericStrIdColumns, &create_req_GetGenericStrIdColumns,
                   &parse_resp_GetGenericStrIdColumns),
    binding::entry(methods::SetRealTimeAndRateEnabledUpdatePeriod,
                   &create_req_SetRealTimeAndRateEnabledUpdatePeriod,
                   &parse_resp_SetRealTimeAndRateEnabledUpdatePeriod),
    binding::entry(methods::SetRateEnabledRows_StreamStatsTable,
                   &create_req_SetRateEnabledRows_StreamStatsTable,
                   &parse_resp_SetRateEnabledRows_StreamStatsTable),
    binding::entry(methods::GetRateEnabledRows_StreamStatsTable,
                   &create_req_GetRateEnabledRows_StreamStatsTable,
                   &parse_resp_GetRateEnabledRows_StreamStatsTable),
    binding::entry(methods::SetRealTimeRows_StreamStatsTable, &create_req_SetRealTimeRows_StreamStatsTable,
                   &parse_resp_SetRealTimeRows_StreamStatsTable),
    binding::entry(methods::GetRealTimeRows_StreamStatsTable, &create_req_GetRealTimeRows_StreamStatsTable,
                   &parse_resp_GetRealTimeRows_StreamStatsTable));

// Every notification with its request parser and answer builder.
inline constexpr auto notifications = std::make_tuple(
    binding::entry(methods::RunStateNotify, &parse_req_RunStateNotify, &create_resp_RunStateNotify),
    binding::entry(methods::StrBlockRunStateNotify, &parse_req_StrBlockRunStateNotify,
                   &create_resp_StrBlockRunStateNotify),
    binding::entry(methods::StreamNISNotify, &parse_req_StreamNISNotify, &create_resp_StreamNISNotify),
    binding::entry(methods::DoSQLNotify, &parse_req_DoSQLNotify, &create_resp_DoSQLNotify),
    binding::entry(methods::DoSQLNotifyFaster, &parse_req_DoSQLNotifyFaster, &create_resp_DoSQLNotifyFaster),
    binding::entry(methods::TableEventNotify, &parse_req_TableEventNotify, &create_resp_TableEventNotify));

}  // namespace Generator_3_bll
