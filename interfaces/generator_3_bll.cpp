#include "interfaces/generator_3_bll.h"

#include "binding/RecordCodec.h"
#include "interfaces/generator_3_bll_methods.h"

namespace Generator_3_bll {

const tm_enum_map em_genControl_t[] = {
    {0, "START"},
    {1, "STOP"},
    {0, nullptr},
};

const tm_enum_map em_genTable_t[] = {
    {0, "MIN"}, {1, "PORT_STATS"}, {2, "PORT_CT_STATS"}, {3, "STREAM_STATS"}, {4, "MAX"}, {0, nullptr},
};

// --- Delegated: interface stacks (members of IFSETUP_1_bll).

bool create_req_SetInterfaceLibParams(Message* msg,
                                      const std::vector<IFSETUP_1_bll::ifSetupLibParam_t>& paramList,
                                      bool copy) {
    return binding::build_request(msg, methods::SetInterfaceLibParams, copy, paramList);
}
bool create_req_GetInterfaceLibParams(Message* msg,
                                      const std::vector<IFSETUP_1_bll::ifSetupLibParamType_t>& paramTypeList,
                                      bool copy) {
    return binding::build_request(msg, methods::GetInterfaceLibParams, copy, paramTypeList);
}
bool create_req_ConfigInterfaces(Message* msg,
                                 const std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList,
                                 bool copy) {
    return binding::build_request(msg, methods::ConfigInterfaces, copy, ifStackList);
}
bool create_req_ConfigInterfacesWithIlHandle(
    Message* msg, const std::vector<uint32_t>& ilHandleList,
    const std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList,
    const std::vector<uint32_t>& optionList, bool copy) {
    return binding::build_request(msg, methods::ConfigInterfacesWithIlHandle, copy, ilHandleList, ifStackList,
                                  optionList);
}
bool create_req_UpdateInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList,
                                 const std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList,
                                 const std::vector<uint32_t>& optionList, bool copy) {
    return binding::build_request(msg, methods::UpdateInterfaces, copy, ifHandleList, ifStackList,
                                  optionList);
}
bool create_req_DeleteInterfaces(Message* msg, const std::vector<uint32_t>& ilHandleList, bool copy) {
    return binding::build_request(msg, methods::DeleteInterfaces, copy, ilHandleList);
}
bool create_req_GetInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy) {
    return binding::build_request(msg, methods::GetInterfaces, copy, ifHandleList);
}
bool create_req_GetStackedInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy) {
    return binding::build_request(msg, methods::GetStackedInterfaces, copy, ifHandleList);
}
bool create_req_AttachInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy) {
    return binding::build_request(msg, methods::AttachInterfaces, copy, ifHandleList);
}
bool create_req_DetachInterfaces(Message* msg, const std::vector<uint32_t>& ifHandleList, bool copy) {
    return binding::build_request(msg, methods::DetachInterfaces, copy, ifHandleList);
}
bool create_req_SetGroupMembership(Message* msg,
                                   const std::vector<IFSETUP_1_bll::GroupMemberConfig_s>& groupConfigList,
                                   bool copy) {
    return binding::build_request(msg, methods::SetGroupMembership, copy, groupConfigList);
}
void parse_resp_SetInterfaceLibParams(const Message* msg) {
    binding::parse_response(msg, methods::SetInterfaceLibParams);
}
void parse_resp_GetInterfaceLibParams(const Message* msg,
                                      std::vector<IFSETUP_1_bll::ifSetupLibParam_t>& paramList) {
    binding::parse_response(msg, methods::GetInterfaceLibParams, paramList);
}
void parse_resp_ConfigInterfaces(const Message* msg, std::vector<uint32_t>& ilHandleList) {
    binding::parse_response(msg, methods::ConfigInterfaces, ilHandleList);
}
void parse_resp_ConfigInterfacesWithIlHandle(const Message* msg) {
    binding::parse_response(msg, methods::ConfigInterfacesWithIlHandle);
}
void parse_resp_UpdateInterfaces(const Message* msg) {
    binding::parse_response(msg, methods::UpdateInterfaces);
}
void parse_resp_DeleteInterfaces(const Message* msg) {
    binding::parse_response(msg, methods::DeleteInterfaces);
}
void parse_resp_GetInterfaces(const Message* msg, std::vector<uint32_t>& ifHandleList,
                              std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList) {
    binding::parse_response(msg, methods::GetInterfaces, ifHandleList, ifStackList);
}
void parse_resp_GetStackedInterfaces(const Message* msg, std::vector<uint32_t>& ifHandleList,
                                     std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& ifStackList) {
    binding::parse_response(msg, methods::GetStackedInterfaces, ifHandleList, ifStackList);
}
void parse_resp_AttachInterfaces(const Message* msg) {
    binding::parse_response(msg, methods::AttachInterfaces);
}
void parse_resp_DetachInterfaces(const Message* msg) {
    binding::parse_response(msg, methods::DetachInterfaces);
}
void parse_resp_SetGroupMembership(const Message* msg) {
    binding::parse_response(msg, methods::SetGroupMembership);
}
// --- Delegated: SQL statistics (members of Stats_1_bll).

bool create_req_DoSQL(Message* msg, const std::vector<std::string>& commands, bool copy) {
    return binding::build_request(msg, methods::DoSQL, copy, commands);
}
bool create_req_DoSQLFaster(Message* msg, const std::vector<std::string>& commands, bool copy) {
    return binding::build_request(msg, methods::DoSQLFaster, copy, commands);
}
bool create_req_DoSQLDatabase(Message* msg, const std::string& dbName,
                              const std::vector<std::string>& commands, bool copy) {
    return binding::build_request(msg, methods::DoSQLDatabase, copy, dbName, commands);
}
bool create_req_DoSQLDatabaseFaster(Message* msg, const std::string& dbName,
                                    const std::vector<std::string>& commands, bool copy) {
    return binding::build_request(msg, methods::DoSQLDatabaseFaster, copy, dbName, commands);
}
bool create_req_RequestDoSQLNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                         const std::vector<std::string>& commands, bool copy) {
    return binding::build_request(msg, methods::RequestDoSQLNotification, copy, id, intervalMS, commands);
}
bool create_req_RequestDoSQLNotificationFaster(Message* msg, uint32_t id, uint32_t intervalMS,
                                               const std::vector<std::string>& commands, bool copy) {
    return binding::build_request(msg, methods::RequestDoSQLNotificationFaster, copy, id, intervalMS,
                                  commands);
}
bool create_req_DeleteDoSQLNotification(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteDoSQLNotification, copy, id);
}
bool create_req_DeleteDoSQLNotificationFaster(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteDoSQLNotificationFaster, copy, id);
}
bool create_req_EnableDoSQLNotification(Message* msg, uint32_t id, bool enable, bool copy) {
    return binding::build_request(msg, methods::EnableDoSQLNotification, copy, id, enable);
}
bool create_req_EnableDoSQLNotificationFaster(Message* msg, uint32_t id, bool enable, bool copy) {
    return binding::build_request(msg, methods::EnableDoSQLNotificationFaster, copy, id, enable);
}
bool create_req_RequestTableEventNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                              const Stats_1_bll::tableEventProperties_s& properties,
                                              bool copy) {
    return binding::build_request(msg, methods::RequestTableEventNotification, copy, id, intervalMS,
                                  properties);
}
bool create_req_DeleteTableEventNotification(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteTableEventNotification, copy, id);
}
bool create_req_EnableTableEventNotification(Message* msg, uint32_t id, bool enable, bool copy) {
    return binding::build_request(msg, methods::EnableTableEventNotification, copy, id, enable);
}
void parse_resp_DoSQL(const Message* msg, std::vector<Stats_1_bll::commandResult_s>& results) {
    binding::parse_response(msg, methods::DoSQL, results);
}
void parse_resp_DoSQLFaster(const Message* msg, std::vector<Stats_1_bll::commandResultFaster_s>& results) {
    binding::parse_response(msg, methods::DoSQLFaster, results);
}
void parse_resp_DoSQLDatabase(const Message* msg, std::vector<Stats_1_bll::commandResult_s>& results) {
    binding::parse_response(msg, methods::DoSQLDatabase, results);
}
void parse_resp_DoSQLDatabaseFaster(const Message* msg,
                                    std::vector<Stats_1_bll::commandResultFaster_s>& results) {
    binding::parse_response(msg, methods::DoSQLDatabaseFaster, results);
}
void parse_resp_RequestDoSQLNotification(const Message* msg) {
    binding::parse_response(msg, methods::RequestDoSQLNotification);
}
void parse_resp_RequestDoSQLNotificationFaster(const Message* msg) {
    binding::parse_response(msg, methods::RequestDoSQLNotificationFaster);
}
void parse_resp_DeleteDoSQLNotification(const Message* msg) {
    binding::parse_response(msg, methods::DeleteDoSQLNotification);
}
void parse_resp_DeleteDoSQLNotificationFaster(const Message* msg) {
    binding::parse_response(msg, methods::DeleteDoSQLNotificationFaster);
}
void parse_resp_EnableDoSQLNotification(const Message* msg) {
    binding::parse_response(msg, methods::EnableDoSQLNotification);
}
void parse_resp_EnableDoSQLNotificationFaster(const Message* msg) {
    binding::parse_response(msg, methods::EnableDoSQLNotificationFaster);
}
void parse_resp_RequestTableEventNotification(const Message* msg) {
    binding::parse_response(msg, methods::RequestTableEventNotification);
}
void parse_resp_DeleteTableEventNotification(const Message* msg) {
    binding::parse_response(msg, methods::DeleteTableEventNotification);
}
void parse_resp_EnableTableEventNotification(const Message* msg) {
    binding::parse_response(msg, methods::EnableTableEventNotification);
}
// --- Delegated: load profiles (members of LoadProfile_1_bll).

bool create_req_SetLoadProfile(Message* msg, const std::vector<LoadProfile_1_bll::loadProfile_s>& loadProfile,
                               bool copy) {
    return binding::build_request(msg, methods::SetLoadProfile, copy, loadProfile);
}
bool create_req_RemoveLoadProfile(Message* msg, const std::vector<uint32_t>& loadProfileIds, bool copy) {
    return binding::build_request(msg, methods::RemoveLoadProfile, copy, loadProfileIds);
}
bool create_req_GetLoadProfile(Message* msg, const std::vector<uint32_t>& loadProfileIds, bool copy) {
    return binding::build_request(msg, methods::GetLoadProfile, copy, loadProfileIds);
}
bool create_req_StreamBlockLoadProfileBinding(
    Message* msg, const std::vector<LoadProfile_1_bll::streamBlockLoadProfileBinding_s>& binding, bool copy) {
    return binding::build_request(msg, methods::StreamBlockLoadProfileBinding, copy, binding);
}
void parse_resp_SetLoadProfile(const Message* msg) { binding::parse_response(msg, methods::SetLoadProfile); }
void parse_resp_RemoveLoadProfile(const Message* msg) {
    binding::parse_response(msg, methods::RemoveLoadProfile);
}
void parse_resp_GetLoadProfile(const Message* msg,
                               std::vector<LoadProfile_1_bll::loadProfile_s>& loadProfile) {
    binding::parse_response(msg, methods::GetLoadProfile, loadProfile);
}
void parse_resp_StreamBlockLoadProfileBinding(const Message* msg) {
    binding::parse_response(msg, methods::StreamBlockLoadProfileBinding);
}
// --- Control and state.

bool create_req_Control(Message* msg, genControl_t action, bool copy) {
    return binding::build_request(msg, methods::Control, copy, action);
}
bool create_req_ControlRange(Message* msg, genControl_t action, uint32_t blockId, uint32_t count, bool copy) {
    return binding::build_request(msg, methods::ControlRange, copy, action, blockId, count);
}
bool create_req_ControlArray(Message* msg, genControl_t action, const std::vector<uint32_t>& blockId,
                             bool copy) {
    return binding::build_request(msg, methods::ControlArray, copy, action, blockId);
}
bool create_req_ControlStream(Message* msg, genControl_t action, const std::vector<uint32_t>& streams,
                              bool copy) {
    return binding::build_request(msg, methods::ControlStream, copy, action, streams);
}
bool create_req_Reset(Message* msg) { return binding::build_request(msg, methods::Reset, false); }
bool create_req_TriggerErroredFrame(Message* msg) {
    return binding::build_request(msg, methods::TriggerErroredFrame, false);
}
bool create_req_StreamReset(Message* msg) { return binding::build_request(msg, methods::StreamReset, false); }
bool create_req_Commit(Message* msg) { return binding::build_request(msg, methods::Commit, false); }
bool create_req_GetRunState(Message* msg) { return binding::build_request(msg, methods::GetRunState, false); }
bool create_req_SetMessageLogging(Message* msg, bool received, bool request, bool response, bool copy) {
    return binding::build_request(msg, methods::SetMessageLogging, copy, received, request, response);
}
bool create_req_RequestRunStateNotification(Message* msg, uint32_t id, uint32_t intervalMS, bool copy) {
    return binding::build_request(msg, methods::RequestRunStateNotification, copy, id, intervalMS);
}
bool create_req_DeleteRunStateNotification(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteRunStateNotification, copy, id);
}
bool create_req_RequestStrBlockRunStateNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                                    bool copy) {
    return binding::build_request(msg, methods::RequestStrBlockRunStateNotification, copy, id, intervalMS);
}
bool create_req_DeleteStrBlockRunStateNotification(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteStrBlockRunStateNotification, copy, id);
}
bool create_req_RequestStreamNISNotification(Message* msg, uint32_t id, uint32_t intervalMS, bool copy) {
    return binding::build_request(msg, methods::RequestStreamNISNotification, copy, id, intervalMS);
}
bool create_req_DeleteStreamNISNotification(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteStreamNISNotification, copy, id);
}
void parse_resp_Control(const Message* msg) { binding::parse_response(msg, methods::Control); }
void parse_resp_ControlRange(const Message* msg) { binding::parse_response(msg, methods::ControlRange); }
void parse_resp_ControlArray(const Message* msg) { binding::parse_response(msg, methods::ControlArray); }
void parse_resp_ControlStream(const Message* msg) { binding::parse_response(msg, methods::ControlStream); }
void parse_resp_Reset(const Message* msg) { binding::parse_response(msg, methods::Reset); }
void parse_resp_TriggerErroredFrame(const Message* msg) {
    binding::parse_response(msg, methods::TriggerErroredFrame);
}
void parse_resp_StreamReset(const Message* msg) { binding::parse_response(msg, methods::StreamReset); }
void parse_resp_Commit(const Message* msg, std::vector<warningLog_s>& warningLog,
                       uint32_t& expectedBankSwitchDuration) {
    binding::parse_response(msg, methods::Commit, warningLog, expectedBankSwitchDuration);
}
void parse_resp_GetRunState(const Message* msg, bool& isRunning) {
    binding::parse_response(msg, methods::GetRunState, isRunning);
}
void parse_resp_SetMessageLogging(const Message* msg) {
    binding::parse_response(msg, methods::SetMessageLogging);
}
void parse_resp_RequestRunStateNotification(const Message* msg) {
    binding::parse_response(msg, methods::RequestRunStateNotification);
}
void parse_resp_DeleteRunStateNotification(const Message* msg) {
    binding::parse_response(msg, methods::DeleteRunStateNotification);
}
void parse_resp_RequestStrBlockRunStateNotification(const Message* msg) {
    binding::parse_response(msg, methods::RequestStrBlockRunStateNotification);
}
void parse_resp_DeleteStrBlockRunStateNotification(const Message* msg) {
    binding::parse_response(msg, methods::DeleteStrBlockRunStateNotification);
}
void parse_resp_RequestStreamNISNotification(const Message* msg) {
    binding::parse_response(msg, methods::RequestStreamNISNotification);
}
void parse_resp_DeleteStreamNISNotification(const Message* msg) {
    binding::parse_response(msg, methods::DeleteStreamNISNotification);
}
// --- Configuration.

bool create_req_SetCommonCfg(Message* msg, const genCommonCfg_s& config, bool copy) {
    return binding::build_request(msg, methods::SetCommonCfg, copy, config);
}
bool create_req_GetCommonCfg(Message* msg) {
    return binding::build_request(msg, methods::GetCommonCfg, false);
}
bool create_req_SetEthernetPaddingMode(Message* msg, bool enabled, bool copy) {
    return binding::build_request(msg, methods::SetEthernetPaddingMode, copy, enabled);
}
bool create_req_GetEthernetPaddingMode(Message* msg) {
    return binding::build_request(msg, methods::GetEthernetPaddingMode, false);
}
bool create_req_SetAutoSeqNumReset(Message* msg, bool enabled, bool copy) {
    return binding::build_request(msg, methods::SetAutoSeqNumReset, copy, enabled);
}
bool create_req_GetAutoSeqNumReset(Message* msg) {
    return binding::build_request(msg, methods::GetAutoSeqNumReset, false);
}
bool create_req_SetSyncStartStopPara(Message* msg, const startStopTime_s& startStopTime, bool copy) {
    return binding::build_request(msg, methods::SetSyncStartStopPara, copy, startStopTime);
}
bool create_req_GetSyncStartStopPara(Message* msg) {
    return binding::build_request(msg, methods::GetSyncStartStopPara, false);
}
bool create_req_SetL1Cfg(Message* msg, uint16_t perFrameL1OverheadBytes, bool copy) {
    return binding::build_request(msg, methods::SetL1Cfg, copy, perFrameL1OverheadBytes);
}
bool create_req_GetL1Cfg(Message* msg) { return binding::build_request(msg, methods::GetL1Cfg, false); }
bool create_req_SetTrafficSequenceTable(Message* msg, const std::vector<tableEntry_s>& entries, bool copy) {
    return binding::build_request(msg, methods::SetTrafficSequenceTable, copy, entries);
}
bool create_req_ModTrafficSequenceTable(Message* msg, const std::vector<tableEntryModData_s>& entries,
                                        bool copy) {
    return binding::build_request(msg, methods::ModTrafficSequenceTable, copy, entries);
}
bool create_req_GetTrafficSequenceTable(Message* msg, const std::vector<uint32_t>& entryIndexes, bool copy) {
    return binding::build_request(msg, methods::GetTrafficSequenceTable, copy, entryIndexes);
}
bool create_req_GetRitInfo(Message* msg) { return binding::build_request(msg, methods::GetRitInfo, false); }
bool create_req_ValidatePayloadConfig(Message* msg, uint32_t payloadsLessThan128,
                                      const std::vector<uint32_t>& payloadsLengths, bool copy) {
    return binding::build_request(msg, methods::ValidatePayloadConfig, copy, payloadsLessThan128,
                                  payloadsLengths);
}
void parse_resp_SetCommonCfg(const Message* msg) { binding::parse_response(msg, methods::SetCommonCfg); }
void parse_resp_GetCommonCfg(const Message* msg, genCommonCfg_s& genCfg) {
    binding::parse_response(msg, methods::GetCommonCfg, genCfg);
}
void parse_resp_SetEthernetPaddingMode(const Message* msg) {
    binding::parse_response(msg, methods::SetEthernetPaddingMode);
}
void parse_resp_GetEthernetPaddingMode(const Message* msg, bool& enabled) {
    binding::parse_response(msg, methods::GetEthernetPaddingMode, enabled);
}
void parse_resp_SetAutoSeqNumReset(const Message* msg) {
    binding::parse_response(msg, methods::SetAutoSeqNumReset);
}
void parse_resp_GetAutoSeqNumReset(const Message* msg, bool& enabled) {
    binding::parse_response(msg, methods::GetAutoSeqNumReset, enabled);
}
void parse_resp_SetSyncStartStopPara(const Message* msg) {
    binding::parse_response(msg, methods::SetSyncStartStopPara);
}
void parse_resp_GetSyncStartStopPara(const Message* msg, startStopTime_s& startStopTime) {
    binding::parse_response(msg, methods::GetSyncStartStopPara, startStopTime);
}
void parse_resp_SetL1Cfg(const Message* msg) { binding::parse_response(msg, methods::SetL1Cfg); }
void parse_resp_GetL1Cfg(const Message* msg, uint16_t& perFrameL1OverheadBytes) {
    binding::parse_response(msg, methods::GetL1Cfg, perFrameL1OverheadBytes);
}
void parse_resp_SetTrafficSequenceTable(const Message* msg) {
    binding::parse_response(msg, methods::SetTrafficSequenceTable);
}
void parse_resp_ModTrafficSequenceTable(const Message* msg) {
    binding::parse_response(msg, methods::ModTrafficSequenceTable);
}
void parse_resp_GetTrafficSequenceTable(const Message* msg, std::vector<tableEntry_s>& entries) {
    binding::parse_response(msg, methods::GetTrafficSequenceTable, entries);
}
void parse_resp_GetRitInfo(const Message* msg, ritInfo_s& ritInfo) {
    binding::parse_response(msg, methods::GetRitInfo, ritInfo);
}
void parse_resp_ValidatePayloadConfig(const Message* msg, bool& valid, uint32_t& overlimit) {
    binding::parse_response(msg, methods::ValidatePayloadConfig, valid, overlimit);
}
// --- Stream blocks and streams.

bool create_req_SetStreamBlock(Message* msg, const std::vector<streamBlock_s>& blocks, bool returnIndex,
                               bool copy) {
    return binding::build_request(msg, methods::SetStreamBlock, copy, blocks, returnIndex);
}
bool create_req_GetStreamBlockArray(Message* msg, const std::vector<uint32_t>& blockIds, bool copy) {
    return binding::build_request(msg, methods::GetStreamBlockArray, copy, blockIds);
}
bool create_req_GetStreamBlockRange(Message* msg, uint32_t startBlockID, uint32_t count, bool copy) {
    return binding::build_request(msg, methods::GetStreamBlockRange, copy, startBlockID, count);
}
bool create_req_DelStreamBlockArray(Message* msg, const std::vector<uint32_t>& blockIds, bool copy) {
    return binding::build_request(msg, methods::DelStreamBlockArray, copy, blockIds);
}
bool create_req_DelStreamBlockRange(Message* msg, uint32_t startBlockID, uint32_t count, bool copy) {
    return binding::build_request(msg, methods::DelStreamBlockRange, copy, startBlockID, count);
}
bool create_req_ModStreamBlockArray(Message* msg, const std::vector<streamBlockModArray_s>& modifiers,
                                    bool copy) {
    return binding::build_request(msg, methods::ModStreamBlockArray, copy, modifiers);
}
bool create_req_ModStreamBlockRange(Message* msg, const std::vector<streamBlockModRange_s>& modifiers,
                                    bool copy) {
    return binding::build_request(msg, methods::ModStreamBlockRange, copy, modifiers);
}
bool create_req_ModAllStreamBlocks(Message* msg, const std::vector<streamBlockModData_t>& modifiers,
                                   bool copy) {
    return binding::build_request(msg, methods::ModAllStreamBlocks, copy, modifiers);
}
bool create_req_ModFrameData(Message* msg, const std::vector<frameDataModArray_s>& modifiers, bool copy) {
    return binding::build_request(msg, methods::ModFrameData, copy, modifiers);
}
bool create_req_SetStreamBlockRateModifier(Message* msg,
                                           const std::vector<modBlockRateModifier_s>& rateModifiers,
                                           bool copy) {
    return binding::build_request(msg, methods::SetStreamBlockRateModifier, copy, rateModifiers);
}
bool create_req_GetStreamBlockRate(Message* msg, const std::vector<uint32_t>& blockIds, bool copy) {
    return binding::build_request(msg, methods::GetStreamBlockRate, copy, blockIds);
}
bool create_req_GetStreamID(Message* msg, const std::vector<uint32_t>& blockIds, bool copy) {
    return binding::build_request(msg, methods::GetStreamID, copy, blockIds);
}
bool create_req_GetStreamCount(Message* msg) {
    return binding::build_request(msg, methods::GetStreamCount, false);
}
bool create_req_GetStreamCfgRange(Message* msg, const streamRange_s& streams, bool copy) {
    return binding::build_request(msg, methods::GetStreamCfgRange, copy, streams);
}
bool create_req_GetStreamCfgArray(Message* msg, int32_t streamCount,
                                  const std::vector<int32_t>& streamIndexArray, bool copy) {
    return binding::build_request(msg, methods::GetStreamCfgArray, copy, streamCount, streamIndexArray);
}
bool create_req_GetNiStreamIndexes(Message* msg,
                                   const std::vector<IFSETUP_1_bll::NetworkInterfaceStack_s>& niStacks,
                                   bool copy) {
    return binding::build_request(msg, methods::GetNiStreamIndexes, copy, niStacks);
}
bool create_req_ModifyNI(Message* msg, const IFSETUP_1_bll::NetworkInterfaceStack_s& niStack, bool copy) {
    return binding::build_request(msg, methods::ModifyNI, copy, niStack);
}
bool create_req_ModifyDestMAC(Message* msg, const std::vector<destMACMod_s>& mods, bool copy) {
    return binding::build_request(msg, methods::ModifyDestMAC, copy, mods);
}
bool create_req_ClearInterfaceCache(Message* msg, const std::vector<uint32_t>& handles, bool copy) {
    return binding::build_request(msg, methods::ClearInterfaceCache, copy, handles);
}
bool create_req_SetStrMulticastMultiplier(Message* msg, const std::vector<streamMultiplier_s>& multiplier,
                                          bool copy) {
    return binding::build_request(msg, methods::SetStrMulticastMultiplier, copy, multiplier);
}
bool create_req_UpdateStreamsAndDoSQL(Message* msg, const std::string& streams,
                                      const std::vector<std::string>& commands, bool copy) {
    return binding::build_request(msg, methods::UpdateStreamsAndDoSQL, copy, streams, commands);
}
void parse_resp_SetStreamBlock(const Message* msg, std::vector<streamIndexes_s>& indexes) {
    binding::parse_response(msg, methods::SetStreamBlock, indexes);
}
void parse_resp_GetStreamBlockArray(const Message* msg, std::vector<streamBlock_s>& blocks) {
    binding::parse_response(msg, methods::GetStreamBlockArray, blocks);
}
void parse_resp_GetStreamBlockRange(const Message* msg, std::vector<streamBlock_s>& blocks) {
    binding::parse_response(msg, methods::GetStreamBlockRange, blocks);
}
void parse_resp_DelStreamBlockArray(const Message* msg) {
    binding::parse_response(msg, methods::DelStreamBlockArray);
}
void parse_resp_DelStreamBlockRange(const Message* msg) {
    binding::parse_response(msg, methods::DelStreamBlockRange);
}
void parse_resp_ModStreamBlockArray(const Message* msg) {
    binding::parse_response(msg, methods::ModStreamBlockArray);
}
void parse_resp_ModStreamBlockRange(const Message* msg) {
    binding::parse_response(msg, methods::ModStreamBlockRange);
}
void parse_resp_ModAllStreamBlocks(const Message* msg) {
    binding::parse_response(msg, methods::ModAllStreamBlocks);
}
void parse_resp_ModFrameData(const Message* msg) { binding::parse_response(msg, methods::ModFrameData); }
void parse_resp_SetStreamBlockRateModifier(const Message* msg) {
    binding::parse_response(msg, methods::SetStreamBlockRateModifier);
}
void parse_resp_GetStreamBlockRate(const Message* msg, std::vector<streamRateArray_s>& streamRates) {
    binding::parse_response(msg, methods::GetStreamBlockRate, streamRates);
}
void parse_resp_GetStreamID(const Message* msg, std::vector<streamIndexes_s>& indexes) {
    binding::parse_response(msg, methods::GetStreamID, indexes);
}
void parse_resp_GetStreamCount(const Message* msg, int32_t& count) {
    binding::parse_response(msg, methods::GetStreamCount, count);
}
void parse_resp_GetStreamCfgRange(const Message* msg, int32_t& count,
                                  std::vector<genStreamCfg_s>& streamConfig) {
    binding::parse_response(msg, methods::GetStreamCfgRange, count, streamConfig);
}
void parse_resp_GetStreamCfgArray(const Message* msg, int32_t& count,
                                  std::vector<genStreamCfg_s>& streamConfig) {
    binding::parse_response(msg, methods::GetStreamCfgArray, count, streamConfig);
}
void parse_resp_GetNiStreamIndexes(const Message* msg, std::vector<niStreamIndexes_s>& indexes) {
    binding::parse_response(msg, methods::GetNiStreamIndexes, indexes);
}
void parse_resp_ModifyNI(const Message* msg) { binding::parse_response(msg, methods::ModifyNI); }
void parse_resp_ModifyDestMAC(const Message* msg) { binding::parse_response(msg, methods::ModifyDestMAC); }
void parse_resp_ClearInterfaceCache(const Message* msg) {
    binding::parse_response(msg, methods::ClearInterfaceCache);
}
void parse_resp_SetStrMulticastMultiplier(const Message* msg) {
    binding::parse_response(msg, methods::SetStrMulticastMultiplier);
}
void parse_resp_UpdateStreamsAndDoSQL(const Message* msg,
                                      std::vector<Stats_1_bll::commandResultFaster_s>& results) {
    binding::parse_response(msg, methods::UpdateStreamsAndDoSQL, results);
}
// --- Statistics tables.

bool create_req_ClearPortStats(Message* msg, uint64_t absExecTime, bool copy) {
    return binding::build_request(msg, methods::ClearPortStats, copy, absExecTime);
}
bool create_req_ClearPortCtStats(Message* msg, uint64_t absExecTime, bool copy) {
    return binding::build_request(msg, methods::ClearPortCtStats, copy, absExecTime);
}
bool create_req_ClearAllStats(Message* msg, uint64_t absExecTime, bool copy) {
    return binding::build_request(msg, methods::ClearAllStats, copy, absExecTime);
}
bool create_req_ClearStreamStatsRange(Message* msg, uint64_t absExecTime, const streamRange_s& streams,
                                      bool copy) {
    return binding::build_request(msg, methods::ClearStreamStatsRange, copy, absExecTime, streams);
}
bool create_req_ClearStreamStatsArray(Message* msg, uint64_t absExecTime, int32_t streamCount,
                                      const std::vector<int32_t>& streamIndexArray, bool copy) {
    return binding::build_request(msg, methods::ClearStreamStatsArray, copy, absExecTime, streamCount,
                                  streamIndexArray);
}
bool create_req_ClearStreamStatsWhere(Message* msg, uint64_t absExecTime, const std::string& streams,
                                      bool copy) {
    return binding::build_request(msg, methods::ClearStreamStatsWhere, copy, absExecTime, streams);
}
bool create_req_SetGenericStrIdColumns(Message* msg, const std::vector<custColumnDef_s>& columnDef,
                                       bool copy) {
    return binding::build_request(msg, methods::SetGenericStrIdColumns, copy, columnDef);
}
bool create_req_GetGenericStrIdColumns(Message* msg) {
    return binding::build_request(msg, methods::GetGenericStrIdColumns, false);
}
bool create_req_SetRealTimeAndRateEnabledUpdatePeriod(Message* msg, genTable_t table, uint32_t periodMs,
                                                      bool copy) {
    return binding::build_request(msg, methods::SetRealTimeAndRateEnabledUpdatePeriod, copy, table, periodMs);
}
bool create_req_SetRateEnabledRows_StreamStatsTable(Message* msg, const std::vector<uint32_t>& rows,
                                                    bool copy) {
    return binding::build_request(msg, methods::SetRateEnabledRows_StreamStatsTable, copy, rows);
}
bool create_req_GetRateEnabledRows_StreamStatsTable(Message* msg) {
    return binding::build_request(msg, methods::GetRateEnabledRows_StreamStatsTable, false);
}
bool create_req_SetRealTimeRows_StreamStatsTable(Message* msg, const std::vector<uint32_t>& rows, bool copy) {
    return binding::build_request(msg, methods::SetRealTimeRows_StreamStatsTable, copy, rows);
}
bool create_req_GetRealTimeRows_StreamStatsTable(Message* msg) {
    return binding::build_request(msg, methods::GetRealTimeRows_StreamStatsTable, false);
}
void parse_resp_ClearPortStats(const Message* msg) { binding::parse_response(msg, methods::ClearPortStats); }
void parse_resp_ClearPortCtStats(const Message* msg) {
    binding::parse_response(msg, methods::ClearPortCtStats);
}
void parse_resp_ClearAllStats(const Message* msg) { binding::parse_response(msg, methods::ClearAllStats); }
void parse_resp_ClearStreamStatsRange(const Message* msg) {
    binding::parse_response(msg, methods::ClearStreamStatsRange);
}
void parse_resp_ClearStreamStatsArray(const Message* msg) {
    binding::parse_response(msg, methods::ClearStreamStatsArray);
}
void parse_resp_ClearStreamStatsWhere(const Message* msg) {
    binding::parse_response(msg, methods::ClearStreamStatsWhere);
}
void parse_resp_SetGenericStrIdColumns(const Message* msg) {
    binding::parse_response(msg, methods::SetGenericStrIdColumns);
}
void parse_resp_GetGenericStrIdColumns(const Message* msg, std::vector<custColumnDef_s>& columnDef) {
    binding::parse_response(msg, methods::GetGenericStrIdColumns, columnDef);
}
void parse_resp_SetRealTimeAndRateEnabledUpdatePeriod(const Message* msg) {
    binding::parse_response(msg, methods::SetRealTimeAndRateEnabledUpdatePeriod);
}
void parse_resp_SetRateEnabledRows_StreamStatsTable(const Message* msg) {
    binding::parse_response(msg, methods::SetRateEnabledRows_StreamStatsTable);
}
void parse_resp_GetRateEnabledRows_StreamStatsTable(const Message* msg, std::vector<uint32_t>& rows) {
    binding::parse_response(msg, methods::GetRateEnabledRows_StreamStatsTable, rows);
}
void parse_resp_SetRealTimeRows_StreamStatsTable(const Message* msg) {
    binding::parse_response(msg, methods::SetRealTimeRows_StreamStatsTable);
}
void parse_resp_GetRealTimeRows_StreamStatsTable(const Message* msg, std::vector<uint32_t>& rows) {
    binding::parse_response(msg, methods::GetRealTimeRows_StreamStatsTable, rows);
}
// --- Notifications.

void parse_req_RunStateNotify(const Message* msg, uint32_t& id, std::vector<bool>& isRunning) {
    binding::parse_request(msg, methods::RunStateNotify, id, isRunning);
}
void parse_req_StrBlockRunStateNotify(const Message* msg, uint32_t& id,
                                      std::vector<genStrBlockRunState_s>& blockState) {
    binding::parse_request(msg, methods::StrBlockRunStateNotify, id, blockState);
}
void parse_req_StreamNISNotify(const Message* msg, uint32_t& id, std::vector<streamNIS_s>& added,
                               std::vector<uint32_t>& deleted) {
    binding::parse_request(msg, methods::StreamNISNotify, id, added, deleted);
}
void parse_req_DoSQLNotify(const Message* msg, uint32_t& id,
                           std::vector<Stats_1_bll::commandResult_s>& results) {
    binding::parse_request(msg, methods::DoSQLNotify, id, results);
}
void parse_req_DoSQLNotifyFaster(const Message* msg, uint32_t& id,
                                 std::vector<Stats_1_bll::commandResultFaster_s>& results) {
    binding::parse_request(msg, methods::DoSQLNotifyFaster, id, results);
}
void parse_req_TableEventNotify(const Message* msg, uint32_t& id, Stats_1_bll::tableEventData_s& data) {
    binding::parse_request(msg, methods::TableEventNotify, id, data);
}
bool create_resp_RunStateNotify(Message* msg) {
    return binding::build_response(msg, methods::RunStateNotify);
}
bool create_resp_StrBlockRunStateNotify(Message* msg) {
    return binding::build_response(msg, methods::StrBlockRunStateNotify);
}
bool create_resp_StreamNISNotify(Message* msg) {
    return binding::build_response(msg, methods::StreamNISNotify);
}
bool create_resp_DoSQLNotify(Message* msg) { return binding::build_response(msg, methods::DoSQLNotify); }
bool create_resp_DoSQLNotifyFaster(Message* msg) {
    return binding::build_response(msg, methods::DoSQLNotifyFaster);
}
bool create_resp_TableEventNotify(Message* msg) {
    return binding::build_response(msg, methods::TableEventNotify);
}

}  // namespace Generator_3_bll
