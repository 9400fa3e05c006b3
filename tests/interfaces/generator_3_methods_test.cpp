// Generator_3 methods and notifications, through the public builders and parsers and a
// loopback far side that reads and answers every request over the wire codec.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "interfaces/generator_3_bll.h"
#include "interfaces/generator_3_bll_methods.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "support/Loopback.h"

namespace {

using namespace Generator_3_bll;
namespace ts = testing_support;

// Request and response members of every method (and the members of every notification) as
// "name:kind" in wire order; kinds as the message reports them.
struct Expected {
    const char* method;
    const char* request;
    const char* response;
};

// clang-format off
const Expected kMethods[] = {
    // interface stacks (members of the interface-setup module)
    {"SetInterfaceLibParams",          "paramList:array", ""},
    {"GetInterfaceLibParams",          "paramTypeList:array", "paramList:array"},
    {"ConfigInterfaces",               "ifStackList:array", "ilHandleList:array"},
    {"ConfigInterfacesWithIlHandle",   "ilHandleList:array ifStackList:array optionList:array", ""},
    {"UpdateInterfaces",               "ifHandleList:array ifStackList:array optionList:array", ""},
    {"DeleteInterfaces",               "ilHandleList:array", ""},
    {"GetInterfaces",                  "ifHandleList:array", "ifHandleList:array ifStackList:array"},
    {"GetStackedInterfaces",           "ifHandleList:array", "ifHandleList:array ifStackList:array"},
    {"AttachInterfaces",               "ifHandleList:array", ""},
    {"DetachInterfaces",               "ifHandleList:array", ""},
    {"SetGroupMembership",             "groupConfigList:array", ""},
    // SQL statistics (members of the statistics module)
    {"DoSQL",                          "commands:array", "results:array"},
    {"DoSQLFaster",                    "commands:array", "results:array"},
    {"DoSQLDatabase",                  "dbName:string commands:array", "results:array"},
    {"DoSQLDatabaseFaster",            "dbName:string commands:array", "results:array"},
    {"RequestDoSQLNotification",       "id:uint32 intervalMS:uint32 commands:array", ""},
    {"RequestDoSQLNotificationFaster", "id:uint32 intervalMS:uint32 commands:array", ""},
    {"DeleteDoSQLNotification",        "id:uint32", ""},
    {"DeleteDoSQLNotificationFaster",  "id:uint32", ""},
    {"EnableDoSQLNotification",        "id:uint32 enable:bool", ""},
    {"EnableDoSQLNotificationFaster",  "id:uint32 enable:bool", ""},
    {"RequestTableEventNotification",  "id:uint32 intervalMS:uint32 properties:struct", ""},
    {"DeleteTableEventNotification",   "id:uint32", ""},
    {"EnableTableEventNotification",   "id:uint32 enable:bool", ""},
    // load profiles (members of the load-profile module)
    {"SetLoadProfile",                 "loadProfile:array", ""},
    {"RemoveLoadProfile",              "loadProfileIds:array", ""},
    {"GetLoadProfile",                 "loadProfileIds:array", "loadProfile:array"},
    {"StreamBlockLoadProfileBinding",  "binding:array", ""},
    // control and state
    {"Control",                        "action:string", ""},
    {"ControlRange",                   "action:string blockId:uint32 count:uint32", ""},
    {"ControlArray",                   "action:string blockId:array", ""},
    {"ControlStream",                  "action:string streams:array", ""},
    {"Reset",                          "", ""},
    {"TriggerErroredFrame",            "", ""},
    {"StreamReset",                    "", ""},
    {"Commit",                         "", "warningLog:array expectedBankSwitchDuration:uint32"},
    {"GetRunState",                    "", "isRunning:bool"},
    {"SetMessageLogging",              "received:bool request:bool response:bool", ""},
    {"RequestRunStateNotification",    "id:uint32 intervalMS:uint32", ""},
    {"DeleteRunStateNotification",     "id:uint32", ""},
    {"RequestStrBlockRunStateNotification", "id:uint32 intervalMS:uint32", ""},
    {"DeleteStrBlockRunStateNotification",  "id:uint32", ""},
    {"RequestStreamNISNotification",   "id:uint32 intervalMS:uint32", ""},
    {"DeleteStreamNISNotification",    "id:uint32", ""},
    // configuration
    {"SetCommonCfg",                   "config:struct", ""},
    {"GetCommonCfg",                   "", "genCfg:struct"},
    {"SetEthernetPaddingMode",         "enabled:bool", ""},
    {"GetEthernetPaddingMode",         "", "enabled:bool"},
    {"SetAutoSeqNumReset",             "enabled:bool", ""},
    {"GetAutoSeqNumReset",             "", "enabled:bool"},
    {"SetSyncStartStopPara",           "startStopTime:struct", ""},
    {"GetSyncStartStopPara",           "", "startStopTime:struct"},
    {"SetL1Cfg",                       "perFrameL1OverheadBytes:uint16", ""},
    {"GetL1Cfg",                       "", "perFrameL1OverheadBytes:uint16"},
    {"SetTrafficSequenceTable",        "entries:array", ""},
    {"ModTrafficSequenceTable",        "entries:array", ""},
    {"GetTrafficSequenceTable",        "entryIndexes:array", "entries:array"},
    {"GetRitInfo",                     "", "ritInfo:struct"},
    {"ValidatePayloadConfig",          "payloadsLessThan128:uint32 payloadsLengths:array", "valid:bool overlimit:uint32"},
    // stream blocks and streams
    {"SetStreamBlock",                 "blocks:array returnIndex:bool", "indexes:array"},
    {"GetStreamBlockArray",            "blockIds:array", "blocks:array"},
    {"GetStreamBlockRange",            "startBlockID:uint32 count:uint32", "blocks:array"},
    {"DelStreamBlockArray",            "blockIds:array", ""},
    {"DelStreamBlockRange",            "startBlockID:uint32 count:uint32", ""},
    {"ModStreamBlockArray",            "modifiers:array", ""},
    {"ModStreamBlockRange",            "modifiers:array", ""},
    {"ModAllStreamBlocks",             "modifiers:array", ""},
    {"ModFrameData",                   "modifiers:array", ""},
    {"SetStreamBlockRateModifier",     "rateModifiers:array", ""},
    {"GetStreamBlockRate",             "blockIds:array", "streamRates:array"},
    {"GetStreamID",                    "blockIds:array", "indexes:array"},
    {"GetStreamCount",                 "", "count:int32"},
    {"GetStreamCfgRange",              "streams:struct", "count:int32 streamConfig:array"},
    {"GetStreamCfgArray",              "streamCount:int32 streamIndexArray:array", "count:int32 streamConfig:array"},
    {"GetNiStreamIndexes",             "niStacks:array", "indexes:array"},
    {"ModifyNI",                       "niStack:struct", ""},
    {"ModifyDestMAC",                  "mods:array", ""},
    {"ClearInterfaceCache",            "handles:array", ""},
    {"SetStrMulticastMultiplier",      "multiplier:array", ""},
    {"UpdateStreamsAndDoSQL",          "streams:string commands:array", "results:array"},
    // statistics tables
    {"ClearPortStats",                 "absExecTime:uint64", ""},
    {"ClearPortCtStats",               "absExecTime:uint64", ""},
    {"ClearAllStats",                  "absExecTime:uint64", ""},
    {"ClearStreamStatsRange",          "absExecTime:uint64 streams:struct", ""},
    {"ClearStreamStatsArray",          "absExecTime:uint64 streamCount:int32 streamIndexArray:array", ""},
    {"ClearStreamStatsWhere",          "absExecTime:uint64 streams:string", ""},
    {"SetGenericStrIdColumns",         "columnDef:array", ""},
    {"GetGenericStrIdColumns",         "", "columnDef:array"},
    {"SetRealTimeAndRateEnabledUpdatePeriod", "table:string periodMs:uint32", ""},
    {"SetRateEnabledRows_StreamStatsTable",   "rows:array", ""},
    {"GetRateEnabledRows_StreamStatsTable",   "", "rows:array"},
    {"SetRealTimeRows_StreamStatsTable",      "rows:array", ""},
    {"GetRealTimeRows_StreamStatsTable",      "", "rows:array"},
};

const Expected kNotifications[] = {
    {"RunStateNotify",         "id:uint32 isRunning:array", ""},
    {"StrBlockRunStateNotify", "id:uint32 blockState:array", ""},
    {"StreamNISNotify",        "id:uint32 added:array deleted:array", ""},
    {"DoSQLNotify",            "id:uint32 results:array", ""},
    {"DoSQLNotifyFaster",      "id:uint32 results:array", ""},
    {"TableEventNotify",       "id:uint32 data:struct", ""},
};
// clang-format on

template <std::size_t N>
std::map<std::string, const Expected*> by_name(const Expected (&table)[N]) {
    std::map<std::string, const Expected*> out;
    for (const Expected& e : table) out[e.method] = &e;
    return out;
}

// Builds `members` with generated values into a message of kind `type` (the far side's way)
// and carries it over the wire into a fresh client message.
template <class D, class Members>
void far_side_sends(const D& desc, Tm_message_type type, const Members& ms, uint32_t seed, Message& client) {
    ts::Filler filler(seed);
    const auto values = ts::make_values(filler, ms);
    Message far;
    ts::detail::build_all(&far, *desc.rules, desc.name, type, ms, true, values, binding::indexes_of(ms));
    tmsg::decode(tmsg::encode(far), client);
}

TEST(Generator3Methods, EveryMethodLoopsBack) { ts::check_catalogue(catalogue, "Generator_3.", 11, 3); }

TEST(Generator3Methods, EveryNotificationLoopsBack) { ts::check_notifications(notifications, 11, 3); }

TEST(Generator3Methods, RequestsAndResponsesHaveTheDocumentedMembers) {
    const auto expected = by_name(kMethods);
    std::set<std::string> seen;
    ts::for_each_entry(catalogue, [&](const auto& e) {
        const auto& desc = ts::described_method(*e.desc);
        SCOPED_TRACE(desc.name);
        const auto it = expected.find(desc.name);
        ASSERT_NE(it, expected.end()) << "method missing from the expected table";
        EXPECT_TRUE(seen.insert(desc.name).second) << "method listed twice in the catalogue";

        Message client;
        ts::build_generated(e, &client, true, 5);
        EXPECT_EQ(client.get_request_name(), std::string("Generator_3.") + desc.name);
        EXPECT_EQ(client.get_msg_type(), TMT_REQUEST);
        EXPECT_EQ(client.get_member_count(TMG_RECV), 0);
        Message far;
        tmsg::decode(tmsg::encode(client), far);
        EXPECT_EQ(far.get_request_name(), std::string("Generator_3.") + desc.name);
        EXPECT_EQ(ts::text(ts::layout(far, TMG_RECV)), it->second->request);

        Message answer;
        far_side_sends(desc, TMT_RESPONSE, desc.response, 5, answer);
        EXPECT_EQ(ts::text(ts::layout(answer, TMG_RECV)), it->second->response);
    });
    EXPECT_EQ(seen.size(), std::size(kMethods));
}

TEST(Generator3Methods, NotificationsHaveTheDocumentedMembers) {
    const auto expected = by_name(kNotifications);
    std::set<std::string> seen;
    ts::for_each_entry(notifications, [&](const auto& e) {
        const auto& desc = ts::described_method(*e.desc);
        SCOPED_TRACE(desc.name);
        const auto it = expected.find(desc.name);
        ASSERT_NE(it, expected.end()) << "notification missing from the expected table";
        seen.insert(desc.name);
        Message received;
        far_side_sends(desc, TMT_REQUEST, desc.request, 5, received);
        EXPECT_EQ(ts::text(ts::layout(received, TMG_RECV)), it->second->request);
    });
    EXPECT_EQ(seen.size(), std::size(kNotifications));
}

// A response of request kind is refused before any output is touched, for every method
// (with or without results).
TEST(Generator3Methods, ResponseOfRequestKindIsRefusedAndOutputsStayUntouched) {
    ts::for_each_entry(catalogue, [&](const auto& e) {
        const auto& desc = ts::described_method(*e.desc);
        SCOPED_TRACE(desc.name);
        Message wrongKind;
        far_side_sends(desc, TMT_REQUEST, desc.response, 9, wrongKind);
        ASSERT_EQ(wrongKind.get_msg_type(), TMT_REQUEST);

        ts::Filler filler(21);
        auto outputs = ts::make_values(filler, desc.response);
        const auto before = outputs;
        EXPECT_THROW(ts::detail::call_parse(e.parse, &wrongKind, outputs, binding::indexes_of(desc.response)),
                     Tm_type_mismatch_exception);
        EXPECT_TRUE(outputs == before);
    });
}

// The delegated builders carry the other module's members; that module's own builder
// leaves the request unnamed, the generator's twin names it.
TEST(Generator3Methods, DelegatedBuildersNameTheOtherModulesRequest) {
    const std::vector<uint32_t> handles{3, 1, 4};
    const std::vector<std::string> commands{"select 1", "select 2"};
    struct Case {
        const char* method;
        std::function<void(Message*)> own;
        std::function<void(Message*)> twin;
    };
    const Case cases[] = {
        {"DeleteInterfaces",
         [&](Message* m) { IFSETUP_1_bll::create_req_DeleteInterfaces(m, handles, true); },
         [&](Message* m) { create_req_DeleteInterfaces(m, handles, true); }},
        {"DoSQLDatabase", [&](Message* m) { Stats_1_bll::create_req_DoSQLDatabase(m, "db", commands, true); },
         [&](Message* m) { create_req_DoSQLDatabase(m, "db", commands, true); }},
        {"EnableTableEventNotification",
         [&](Message* m) { Stats_1_bll::create_req_EnableTableEventNotification(m, 9, true, true); },
         [&](Message* m) { create_req_EnableTableEventNotification(m, 9, true, true); }},
        {"RemoveLoadProfile",
         [&](Message* m) { LoadProfile_1_bll::create_req_RemoveLoadProfile(m, handles, true); },
         [&](Message* m) { create_req_RemoveLoadProfile(m, handles, true); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.method);
        Message own;
        Message twin;
        c.own(&own);
        c.twin(&twin);
        EXPECT_EQ(own.get_request_name(), "");
        EXPECT_EQ(twin.get_request_name(), std::string("Generator_3.") + c.method);
        EXPECT_TRUE(twin.get_use_send_member_string());
        EXPECT_EQ(ts::layout(twin), ts::layout(own));
        Message ownFar;
        Message twinFar;
        tmsg::decode(tmsg::encode(own), ownFar);
        tmsg::decode(tmsg::encode(twin), twinFar);
        twinFar.set_request_name("");
        EXPECT_TRUE(twinFar.equals(ownFar));
    }
}

// An empty vector argument is sent as an empty array member, never left out.
TEST(Generator3Methods, EmptyVectorArgumentIsSentAsEmptyArray) {
    struct Case {
        const char* member;
        std::function<void(Message*)> build;
    };
    const Case cases[] = {
        {"blockId", [](Message* m) { create_req_ControlArray(m, genControl_t::STOP, {}, false); }},
        {"blocks", [](Message* m) { create_req_SetStreamBlock(m, {}, true, true); }},
        {"streamIndexArray", [](Message* m) { create_req_ClearStreamStatsArray(m, 1, 0, {}, false); }},
        {"commands", [](Message* m) { create_req_DoSQL(m, {}, true); }},
        {"ifStackList", [](Message* m) { create_req_ConfigInterfaces(m, {}, false); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.member);
        Message client;
        c.build(&client);
        Message far;
        tmsg::decode(tmsg::encode(client), far);
        ASSERT_NE(far.get_member_index(TMG_RECV, c.member), -1);
        EXPECT_EQ(far.get_member_array(TMG_RECV, c.member)->get_member_count(), 0);
    }
}

// A request's values go with its message at once; a request built over another, and copies
// of it, encode as a fresh one does after what they replaced is gone.
TEST(Generator3Methods, RebuiltAndCopiedRequestsEncodeAsFreshOnes) {
    streamBlock_s b;
    b.name = std::string(40, 'n');  // longer than a string's own buffer
    b.rangeModifiers.resize(2);
    b.rangeModifiers[0].offsetReference = std::string(30, 'r');
    b.rangeModifiers[0].initialValue.data = {1, 2, 3, 4};
    b.modLinks.push_back(modLinkDesc_s{0, {1}});
    const std::vector<streamBlock_s> blocks{b, b};
    const std::vector<uint32_t> ids{1, 2};
    Message fresh;
    create_req_SetStreamBlock(&fresh, blocks, true, true);
    const auto expected = tmsg::encode(fresh);
    Message copy;
    {
        Message client;
        create_req_DelStreamBlockArray(&client, ids, true);
        create_req_SetStreamBlock(&client, blocks, true, true);
        copy = client;
        create_req_SetStreamBlock(&client, blocks, true, false);
        EXPECT_EQ(tmsg::encode(client), expected);
        client.add_member(TMG_SEND, "extra", std::string(50, 'x'));
    }
    EXPECT_EQ(tmsg::encode(copy), expected);
}

// With copy false the request views the caller's vector until it is sent.
TEST(Generator3Methods, CopyFlagChoosesBetweenViewAndCopy) {
    for (bool copy : {false, true}) {
        std::vector<uint32_t> blockIds{10, 20, 30};
        Message client;
        create_req_DelStreamBlockArray(&client, blockIds, copy);
        const auto before = tmsg::encode(client);
        blockIds[1] = 99;
        EXPECT_EQ(tmsg::encode(client) != before, !copy) << copy;
    }
}

}  // namespace
