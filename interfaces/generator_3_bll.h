// Generator_3: the traffic generator module's methods and notifications.
//
// Own methods build their members themselves. Delegated methods (interface stacks, SQL
// statistics, load profiles) carry the members of the other module's method of the same name
// and take the same arguments as that module's builder; only the request name
// ("Generator_3.<Method>") is this module's. Every builder with arguments ends with
// `bool copy`: true sends owning copies of scalar vectors, false sends views into the
// caller's vectors, which must then outlive the message.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "interfaces/generator_3_bll_records.h"
#include "interfaces/ifSetup_Autogen_bll.h"
#include "interfaces/loadProfile_1_bll.h"
#include "interfaces/stats_1_bll.h"
#include "platform/Message.h"
#include "platform/tm_enum_map.h"

namespace Generator_3_bll {

// Argument of Control, ControlRange, ControlArray and ControlStream.
enum class genControl_t : int32_t {
    START = 0,
    STOP = 1,
};
extern const tm_enum_map em_genControl_t[];

// Argument of SetRealTimeAndRateEnabledUpdatePeriod.
enum class genTable_t : int32_t {
    MIN = 0,
    PORT_STATS = 1,
    PORT_CT_STATS = 2,
    STREAM_STATS = 3,
    MAX = 4,
};
extern const tm_enum_map em_genTable_t[];

// --- delegated: interface stacks -----------------------------------------------------------

bool create_req_SetInterfaceLibParams(Message* msg,
                                      const std::vector<IFSETUP_1_bll::ifSetupLibParam_t>& paramList,
                                      bool copy);
bool create_req_GetInterfaceLibParams(Message* msg,
                                      const std::vector<IFSETUP_1_bll::ifSetupLibParamType_t>& paramTypeList,
                                      bool copy);
bool create_req_ConfigInterfaces(Message* msg,
                                 const std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList,
                                 bool copy);
bool create_req_ConfigInterfacesWithIlHandle(
    Message* msg, const std::vector<uint32_t>& ilHandleList,
    const std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList,
    const std::vector<uint32_t>& optionList, bool copy);
bool create_req_UpdateInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList,
                                 const std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList,
                                 const std::vector<uint32_t>& optionList, bool copy);
bool create_req_DeleteInterfaces(Message* msg, const std::vector<uint32_t>& ilHandleList, bool copy);
bool create_req_GetInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy);
bool create_req_GetStackedInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy);
bool create_req_AttachInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy);
bool create_req_DetachInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy);
bool create_req_SetGroupMembership(Message* msg,
                                   const std::vector<IFSETUP_1_bll::GroupMemberConfig_s>& groupConfigList,
                                   bool copy);

void parse_resp_SetInterfaceLibParams(const Message* msg);
void parse_resp_GetInterfaceLibParams(const Message* msg,
                                      std::vector<IFSETUP_1_bll::ifSetupLibParam_t>& paramList);
void parse_resp_ConfigInterfaces(const Message* msg, std::vector<uint32_t>& ilHandleList);
void parse_resp_ConfigInterfacesWithIlHandle(const Message* msg);
void parse_resp_UpdateInterfaces(const Message* msg);
void parse_resp_DeleteInterfaces(const Message* msg);
void parse_resp_GetInterfaces(const Message* msg, std::vector<uint32_t>& ifHandleList,
                              std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList);
void parse_resp_GetStackedInterfaces(const Message* msg, std::vector<uint32_t>& ifHandleList,
                                     std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList);
void parse_resp_AttachInterfaces(const Message* msg);
void parse_resp_DetachInterfaces(const Message* msg);
void parse_resp_SetGroupMembership(const Message* msg);

// --- delegated: SQL statistics -------------------------------------------------------------

bool create_req_DoSQL(Message* msg, const std::vector<std::string>& commands, bool copy);
bool create_req_DoSQLFaster(Message* msg, const std::vector<std::string>& commands, bool copy);
bool create_req_DoSQLDatabase(Message* msg, const std::string& dbName,
                              const std::vector<std::string>& commands, bool copy);
bool create_req_DoSQLDatabaseFaster(Message* msg, const std::string& dbName,
                                    const std::vector<std::string>& commands, bool copy);
bool create_req_RequestDoSQLNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                         const std::vector<std::string>& commands, bool copy);
bool create_req_RequestDoSQLNotificationFaster(Message* msg, uint32_t id, uint32_t intervalMS,
                                               const std::vector<std::string>& commands, bool copy);
bool create_req_DeleteDoSQLNotification(Message* msg, uint32_t id, bool copy);
bool create_req_DeleteDoSQLNotificationFaster(Message* msg, uint32_t id, bool copy);
bool create_req_EnableDoSQLNotification(Message* msg, uint32_t id, bool enable, bool copy);
bool create_req_EnableDoSQLNotificationFaster(Message* msg, uint32_t id, bool enable, bool copy);
bool create_req_RequestTableEventNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                              const Stats_1_bll::tableEventProperties_s& properties,
                                              bool copy);
bool create_req_DeleteTableEventNotification(Message* msg, uint32_t id, bool copy);
bool create_req_EnableTableEventNotification(Message* msg, uint32_t id, bool enable, bool copy);

void parse_resp_DoSQL(const Message* msg, std::vector<Stats_1_bll::commandResult_s>& results);
void parse_resp_DoSQLFaster(const Message* msg, std::vector<Stats_1_bll::commandResultFaster_s>& results);
void parse_resp_DoSQLDatabase(const Message* msg, std::vector<Stats_1_bll::commandResult_s>& results);
void parse_resp_DoSQLDatabaseFaster(const Message* msg,
                                    std::vector<Stats_1_bll::commandResultFaster_s>& results);
void parse_resp_RequestDoSQLNotification(const Message* msg);
void parse_resp_RequestDoSQLNotificationFaster(const Message* msg);
void parse_resp_DeleteDoSQLNotification(const Message* msg);
void parse_resp_DeleteDoSQLNotificationFaster(const Message* msg);
void parse_resp_EnableDoSQLNotification(const Message* msg);
void parse_resp_EnableDoSQLNotificationFaster(const Message* msg);
void parse_resp_RequestTableEventNotification(const Message* msg);
void parse_resp_DeleteTableEventNotification(const Message* msg);
void parse_resp_EnableTableEventNotification(const Message* msg);

// --- delegated: load profiles --------------------------------------------------------------

bool create_req_SetLoadProfile(Message* msg, const std::vector<LoadProfile_1_bll::loadProfile_s>& loadProfile,
                               bool copy);
bool create_req_RemoveLoadProfile(Message* msg, const std::vector<uint32_t>& loadProfileIds, bool copy);
bool create_req_GetLoadProfile(Message* msg, const std::vector<uint32_t>& loadProfileIds, bool copy);
bool create_req_StreamBlockLoadProfileBinding(
    Message* msg, const std::vector<LoadProfile_1_bll::streamBlockLoadProfileBinding_s>& binding, bool copy);

void parse_resp_SetLoadProfile(const Message* msg);
void parse_resp_RemoveLoadProfile(const Message* msg);
void parse_resp_GetLoadProfile(const Message* msg,
                               std::vector<LoadProfile_1_bll::loadProfile_s>& loadProfile);
void parse_resp_StreamBlockLoadProfileBinding(const Message* msg);

// --- control and state ---------------------------------------------------------------------

bool create_req_Control(Message* msg, genControl_t action, bool copy);
bool create_req_ControlRange(Message* msg, genControl_t action, uint32_t blockId, uint32_t count, bool copy);
bool create_req_ControlArray(Message* msg, genControl_t action, const std::vector<uint32_t>& blockId,
                             bool copy);
bool create_req_ControlStream(Message* msg, genControl_t action, const std::vector<uint32_t>& streams,
                              bool copy);
bool create_req_Reset(Message* msg);
bool create_req_TriggerErroredFrame(Message* msg);
bool create_req_StreamReset(Message* msg);
bool create_req_Commit(Message* msg);
bool create_req_GetRunState(Message* msg);
bool create_req_SetMessageLogging(Message* msg, bool received, bool request, bool response, bool copy);
bool create_req_RequestRunStateNotification(Message* msg, uint32_t id, uint32_t intervalMS, bool copy);
bool create_req_DeleteRunStateNotification(Message* msg, uint32_t id, bool copy);
bool create_req_RequestStrBlockRunStateNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                                    bool copy);
bool create_req_DeleteStrBlockRunStateNotification(Message* msg, uint32_t id, bool copy);
bool create_req_RequestStreamNISNotification(Message* msg, uint32_t id, uint32_t intervalMS, bool copy);
bool create_req_DeleteStreamNISNotification(Message* msg, uint32_t id, bool copy);

void parse_resp_Control(const Message* msg);
void parse_resp_ControlRange(const Message* msg);
void parse_resp_ControlArray(const Message* msg);
void parse_resp_ControlStream(const Message* msg);
void parse_resp_Reset(const Message* msg);
void parse_resp_TriggerErroredFrame(const Message* msg);
void parse_resp_StreamReset(const Message* msg);
void parse_resp_Commit(const Message* msg, std::vector<warningLog_s>& warningLog,
                       uint32_t& expectedBankSwitchDuration);
void parse_resp_GetRunState(const Message* msg, bool& isRunning);
void parse_resp_SetMessageLogging(const Message* msg);
void parse_resp_RequestRunStateNotification(const Message* msg);
void parse_resp_DeleteRunStateNotification(const Message* msg);
void parse_resp_RequestStrBlockRunStateNotification(const Message* msg);
void parse_resp_DeleteStrBlockRunStateNotification(const Message* msg);
void parse_resp_RequestStreamNISNotification(const Message* msg);
void parse_resp_DeleteStreamNISNotification(const Message* msg);

// --- configuration -------------------------------------------------------------------------

bool create_req_SetCommonCfg(Message* msg, const genCommonCfg_s& config, bool copy);
bool create_req_GetCommonCfg(Message* msg);
bool create_req_SetEthernetPaddingMode(Message* msg, bool enabled, bool copy);
bool create_req_GetEthernetPaddingMode(Message* msg);
bool create_req_SetAutoSeqNumReset(Message* msg, bool enabled, bool copy);
bool create_req_GetAutoSeqNumReset(Message* msg);
bool create_req_SetSyncStartStopPara(Message* msg, const startStopTime_s& startStopTime, bool copy);
bool create_req_GetSyncStartStopPara(Message* msg);
bool create_req_SetL1Cfg(Message* msg, uint16_t perFrameL1OverheadBytes, bool copy);
bool create_req_GetL1Cfg(Message* msg);
bool create_req_SetTrafficSequenceTable(Message* msg, const std::vector<tableEntry_s>& entries, bool copy);
bool create_req_ModTrafficSequenceTable(Message* msg, const std::vector<tableEntryModData_s>& entries,
                                        bool copy);
bool create_req_GetTrafficSequenceTable(Message* msg, const std::vector<uint32_t>& entryIndexes, bool copy);
bool create_req_GetRitInfo(Message* msg);
bool create_req_ValidatePayloadConfig(Message* msg, uint32_t payloadsLessThan128,
                                      const std::vector<uint32_t>& payloadsLengths, bool copy);

void parse_resp_SetCommonCfg(const Message* msg);
void parse_resp_GetCommonCfg(const Message* msg, genCommonCfg_s& genCfg);
void parse_resp_SetEthernetPaddingMode(const Message* msg);
void parse_resp_GetEthernetPaddingMode(const Message* msg, bool& enabled);
void parse_resp_SetAutoSeqNumReset(const Message* msg);
void parse_resp_GetAutoSeqNumReset(const Message* msg, bool& enabled);
void parse_resp_SetSyncStartStopPara(const Message* msg);
void parse_resp_GetSyncStartStopPara(const Message* msg, startStopTime_s& startStopTime);
void parse_resp_SetL1Cfg(const Message* msg);
void parse_resp_GetL1Cfg(const Message* msg, uint16_t& perFrameL1OverheadBytes);
void parse_resp_SetTrafficSequenceTable(const Message* msg);
void parse_resp_ModTrafficSequenceTable(const Message* msg);
void parse_resp_GetTrafficSequenceTable(const Message* msg, std::vector<tableEntry_s>& entries);
void parse_resp_GetRitInfo(const Message* msg, ritInfo_s& ritInfo);
void parse_resp_ValidatePayloadConfig(const Message* msg, bool& valid, uint32_t& overlimit);

// --- stream blocks and streams -------------------------------------------------------------

bool create_req_SetStreamBlock(Message* msg, const std::vector<streamBlock_s>& blocks, bool returnIndex,
                               bool copy);
bool create_req_GetStreamBlockArray(Message* msg, const std::vector<uint32_t>& blockIds, bool copy);
bool create_req_GetStreamBlockRange(Message* msg, uint32_t startBlockID, uint32_t count, bool copy);
bool create_req_DelStreamBlockArray(Message* msg, const std::vector<uint32_t>& blockIds, bool copy);
bool create_req_DelStreamBlockRange(Message* msg, uint32_t startBlockID, uint32_t count, bool copy);
bool create_req_ModStreamBlockArray(Message* msg, const std::vector<streamBlockModArray_s>& modifiers,
                                    bool copy);
bool create_req_ModStreamBlockRange(Message* msg, const std::vector<streamBlockModRange_s>& modifiers,
                                    bool copy);
bool create_req_ModAllStreamBlocks(Message* msg, const std::vector<streamBlockModData_t>& modifiers,
                                   bool copy);
bool create_req_ModFrameData(Message* msg, const std::vector<frameDataModArray_s>& modifiers, bool copy);
bool create_req_SetStreamBlockRateModifier(Message* msg,
                                           const std::vector<modBlockRateModifier_s>& rateModifiers,
                                           bool copy);
bool create_req_GetStreamBlockRate(Message* msg, const std::vector<uint32_t>& blockIds, bool copy);
bool create_req_GetStreamID(Message* msg, const std::vector<uint32_t>& blockIds, bool copy);
bool create_req_GetStreamCount(Message* msg);
bool create_req_GetStreamCfgRange(Message* msg, const streamRange_s& streams, bool copy);
bool create_req_GetStreamCfgArray(Message* msg, int32_t streamCount,
                                  const std::vector<int32_t>& streamIndexArray, bool copy);
bool create_req_GetNiStreamIndexes(Message* msg,
                                   const std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& niStacks,
                                   bool copy);
bool create_req_ModifyNI(Message* msg, const IFSETUP_1_bll::NetworkInterfaceStack_s& niStack, bool copy);
bool create_req_ModifyDestMAC(Message* msg, const std::vector<destMACMod_s>& mods, bool copy);
bool create_req_ClearInterfaceCache(Message* msg, const std::vector<uint32_t>& handles, bool copy);
bool create_req_SetStrMulticastMultiplier(Message* msg, const std::vector<streamMultiplier_s>& multiplier,
                                          bool copy);
bool create_req_UpdateStreamsAndDoSQL(Message* msg, const std::string& streams,
                                      const std::vector<std::string>& commands, bool copy);

void parse_resp_SetStreamBlock(const Message* msg, std::vector<streamIndexes_s>& indexes);
void parse_resp_GetStreamBlockArray(const Message* msg, std::vector<streamBlock_s>& blocks);
void parse_resp_GetStreamBlockRange(const Message* msg, std::vector<streamBlock_s>& blocks);
void parse_resp_DelStreamBlockArray(const Message* msg);
void parse_resp_DelStreamBlockRange(const Message* msg);
void parse_resp_ModStreamBlockArray(const Message* msg);
void parse_resp_ModStreamBlockRange(const Message* msg);
void parse_resp_ModAllStreamBlocks(const Message* msg);
void parse_resp_ModFrameData(const Message* msg);
void parse_resp_SetStreamBlockRateModifier(const Message* msg);
void parse_resp_GetStreamBlockRate(const Message* msg, std::vector<streamRateArray_s>& streamRates);
void parse_resp_GetStreamID(const Message* msg, std::vector<streamIndexes_s>& indexes);
void parse_resp_GetStreamCount(const Message* msg, int32_t& count);
void parse_resp_GetStreamCfgRange(const Message* msg, int32_t& count,
                                  std::vector<genStreamCfg_s>& streamConfig);
void parse_resp_GetStreamCfgArray(const Message* msg, int32_t& count,
                                  std::vector<genStreamCfg_s>& streamConfig);
void parse_resp_GetNiStreamIndexes(const Message* msg, std::vector<niStreamIndexes_s>& indexes);
void parse_resp_ModifyNI(const Message* msg);
void parse_resp_ModifyDestMAC(const Message* msg);
void parse_resp_ClearInterfaceCache(const Message* msg);
void parse_resp_SetStrMulticastMultiplier(const Message* msg);
void parse_resp_UpdateStreamsAndDoSQL(const Message* msg,
                                      std::vector<Stats_1_bll::commandResultFaster_s>& results);

// --- statistics tables ---------------------------------------------------------------------

bool create_req_ClearPortStats(Message* msg, uint64_t absExecTime, bool copy);
bool create_req_ClearPortCtStats(Message* msg, uint64_t absExecTime, bool copy);
bool create_req_ClearAllStats(Message* msg, uint64_t absExecTime, bool copy);
bool create_req_ClearStreamStatsRange(Message* msg, uint64_t absExecTime, const streamRange_s& streams,
                                      bool copy);
bool create_req_ClearStreamStatsArray(Message* msg, uint64_t absExecTime, int32_t streamCount,
                                      const std::vector<int32_t>& streamIndexArray, bool copy);
bool create_req_ClearStreamStatsWhere(Message* msg, uint64_t absExecTime, const std::string& streams,
                                      bool copy);
bool create_req_SetGenericStrIdColumns(Message* msg, const std::vector<custColumnDef_s>& columnDef,
                                       bool copy);
bool create_req_GetGenericStrIdColumns(Message* msg);
bool create_req_SetRealTimeAndRateEnabledUpdatePeriod(Message* msg, genTable_t table, uint32_t periodMs,
                                                      bool copy);
bool create_req_SetRateEnabledRows_StreamStatsTable(Message* msg, const std::vector<uint32_t>& rows,
                                                    bool copy);
bool create_req_GetRateEnabledRows_StreamStatsTable(Message* msg);
bool create_req_SetRealTimeRows_StreamStatsTable(Message* msg, const std::vector<uint32_t>& rows, bool copy);
bool create_req_GetRealTimeRows_StreamStatsTable(Message* msg);

void parse_resp_ClearPortStats(const Message* msg);
void parse_resp_ClearPortCtStats(const Message* msg);
void parse_resp_ClearAllStats(const Message* msg);
void parse_resp_ClearStreamStatsRange(const Message* msg);
void parse_resp_ClearStreamStatsArray(const Message* msg);
void parse_resp_ClearStreamStatsWhere(const Message* msg);
void parse_resp_SetGenericStrIdColumns(const Message* msg);
void parse_resp_GetGenericStrIdColumns(const Message* msg, std::vector<custColumnDef_s>& columnDef);
void parse_resp_SetRealTimeAndRateEnabledUpdatePeriod(const Message* msg);
void parse_resp_SetRateEnabledRows_StreamStatsTable(const Message* msg);
void parse_resp_GetRateEnabledRows_StreamStatsTable(const Message* msg, std::vector<uint32_t>& rows);
void parse_resp_SetRealTimeRows_StreamStatsTable(const Message* msg);
void parse_resp_GetRealTimeRows_StreamStatsTable(const Message* msg, std::vector<uint32_t>& rows);

// --- notifications (sent by the generator as requests, answered with an empty response) ----

void parse_req_RunStateNotify(const Message* msg, uint32_t& id, std::vector<bool>& isRunning);
void parse_req_StrBlockRunStateNotify(const Message* msg, uint32_t& id,
                                      std::vector<genStrBlockRunState_s>& blockState);
void parse_req_StreamNISNotify(const Message* msg, uint32_t& id, std::vector<streamNIS_s>& added,
                               std::vector<uint32_t>& deleted);
void parse_req_DoSQLNotify(const Message* msg, uint32_t& id,
                           std::vector<Stats_1_bll::commandResult_s>& results);
void parse_req_DoSQLNotifyFaster(const Message* msg, uint32_t& id,
                                 std::vector<Stats_1_bll::commandResultFaster_s>& results);
void parse_req_TableEventNotify(const Message* msg, uint32_t& id, Stats_1_bll::tableEventData_s& data);

bool create_resp_RunStateNotify(Message* msg);
bool create_resp_StrBlockRunStateNotify(Message* msg);
bool create_resp_StreamNISNotify(Message* msg);
bool create_resp_DoSQLNotify(Message* msg);
bool create_resp_DoSQLNotifyFaster(Message* msg);
bool create_resp_TableEventNotify(Message* msg);

}  // namespace Generator_3_bll
