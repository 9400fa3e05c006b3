// Method and notification descriptions of Stats_1 (for the module's source, its delegating
// twins and tests).
#pragma once

#include <tuple>

#include "binding/Method.h"
#include "interfaces/stats_1_bll.h"

namespace Stats_1_bll {

// The builders name no request but do switch on send member strings.
inline constexpr binding::ModuleRules kRules{nullptr, true};

namespace methods {
using binding::arg;
using binding::members;
using binding::method;
using Commands = std::vector<std::string>;
using Results = std::vector<commandResult_s>;
using ResultsFaster = std::vector<commandResultFaster_s>;

inline constexpr auto DoSQL =
    method("DoSQL", kRules, members(arg<Commands>("commands")), members(arg<Results>("results")));
inline constexpr auto DoSQLFaster =
    method("DoSQLFaster", kRules, members(arg<Commands>("commands")), members(arg<ResultsFaster>("results")));
inline constexpr auto DoSQLDatabase =
    method("DoSQLDatabase", kRules, members(arg<std::string>("dbName"), arg<Commands>("commands")),
           members(arg<Results>("results")));
inline constexpr auto DoSQLDatabaseFaster =
    method("DoSQLDatabaseFaster", kRules, members(arg<std::string>("dbName"), arg<Commands>("commands")),
           members(arg<ResultsFaster>("results")));
inline constexpr auto RequestDoSQLNotification =
    method("RequestDoSQLNotification", kRules,
           members(arg<uint32_t>("id"), arg<uint32_t>("intervalMS"), arg<Commands>("commands")), members());
inline constexpr auto DeleteDoSQLNotification =
    method("DeleteDoSQLNotification", kRules, members(arg<uint32_t>("id")), members());
inline constexpr auto EnableDoSQLNotification =
    method("EnableDoSQLNotification", kRules, members(arg<uint32_t>("id"), arg<bool>("enable")), members());
inline constexpr auto RequestDoSQLNotificationFaster =
    method("RequestDoSQLNotificationFaster", kRules,
           members(arg<uint32_t>("id"), arg<uint32_t>("intervalMS"), arg<Commands>("commands")), members());
inline constexpr auto DeleteDoSQLNotificationFaster =
    method("DeleteDoSQLNotificationFaster", kRules, members(arg<uint32_t>("id")), members());
inline constexpr auto EnableDoSQLNotificationFaster = method(
    "EnableDoSQLNotificationFaster", kRules, members(arg<uint32_t>("id"), arg<bool>("enable")), members());
inline constexpr auto RequestTableEventNotification = method(
    "RequestTableEventNotification", kRules,
    members(arg<uint32_t>("id"), arg<uint32_t>("intervalMS"), arg<tableEventProperties_s>("properties")),
    members());
inline constexpr auto DeleteTableEventNotification =
    method("DeleteTableEventNotification", kRules, members(arg<uint32_t>("id")), members());
inline constexpr auto EnableTableEventNotification = method(
    "EnableTableEventNotification", kRules, members(arg<uint32_t>("id"), arg<bool>("enable")), members());

// Notifications: requests from the far side, answered with an empty response.
inline constexpr auto DoSQLNotify =
    method("DoSQLNotify", kRules, members(arg<uint32_t>("id"), arg<Results>("results")), members());
inline constexpr auto DoSQLNotifyFaster = method(
    "DoSQLNotifyFaster", kRules, members(arg<uint32_t>("id"), arg<ResultsFaster>("results")), members());
inline constexpr auto TableEventNotify = method(
    "TableEventNotify", kRules, members(arg<uint32_t>("id"), arg<tableEventData_s>("data")), members());
}  // namespace methods

// Every method with its builder and response parser.
inline constexpr auto catalogue = std::make_tuple(
    binding::entry(methods::DoSQL, &create_req_DoSQL, &parse_resp_DoSQL),
    binding::entry(methods::DoSQLFaster, &create_req_DoSQLFaster, &parse_resp_DoSQLFaster),
    binding::entry(methods::DoSQLDatabase, &create_req_DoSQLDatabase, &parse_resp_DoSQLDatabase),
    binding::entry(methods::DoSQLDatabaseFaster, &create_req_DoSQLDatabaseFaster,
                   &parse_resp_DoSQLDatabaseFaster),
    binding::entry(methods::RequestDoSQLNotification, &create_req_RequestDoSQLNotification,
                   &parse_resp_RequestDoSQLNotification),
    binding::entry(methods::DeleteDoSQLNotification, &create_req_DeleteDoSQLNotification,
                   &parse_resp_DeleteDoSQLNotification),
    binding::entry(methods::EnableDoSQLNotification, &create_req_EnableDoSQLNotification,
                   &parse_resp_EnableDoSQLNotification),
    binding::entry(methods::RequestDoSQLNotificationFaster, &create_req_RequestDoSQLNotificationFaster,
                   &parse_resp_RequestDoSQLNotificationFaster),
    binding::entry(methods::DeleteDoSQLNotificationFaster, &create_req_DeleteDoSQLNotificationFaster,
                   &parse_resp_DeleteDoSQLNotificationFaster),
    binding::entry(methods::EnableDoSQLNotificationFaster, &create_req_EnableDoSQLNotificationFaster,
                   &parse_resp_EnableDoSQLNotificationFaster),
    binding::entry(methods::RequestTableEventNotification, &create_req_RequestTableEventNotification,
                   &parse_resp_RequestTableEventNotification),
    binding::entry(methods::DeleteTableEventNotification, &create_req_DeleteTableEventNotification,
                   &parse_resp_DeleteTableEventNotification),
    binding::entry(methods::EnableTableEventNotification, &create_req_EnableTableEventNotification,
                   &parse_resp_EnableTableEventNotification));

// Every notification with its request parser and answer builder.
inline constexpr auto notifications = std::make_tuple(
    binding::entry(methods::DoSQLNotify, &parse_req_DoSQLNotify, &create_resp_DoSQLNotify),
    binding::entry(methods::DoSQLNotifyFaster, &parse_req_DoSQLNotifyFaster, &create_resp_DoSQLNotifyFaster),
    binding::entry(methods::TableEventNotify, &parse_req_TableEventNotify, &create_resp_TableEventNotify));

}  // namespace Stats_1_bll
