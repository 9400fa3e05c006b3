// Stats_1: SQL queries against the far side's statistics databases, subscriptions to their
// periodic re-run and to row events of a table. Result rows travel column-wise: each row
// holds one value list per value type, and the shared column descriptors say which list and
// which position hold column c.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "binding/Describe.h"
#include "binding/RecordApi.h"
#include "platform/Message.h"
#include "platform/tm_enum_map.h"

namespace Stats_1_bll {

// Value type of a column. "NULL" is a macro name in C++, hence NULL_VALUE.
enum class columnVal_t : int32_t {
    STRING = 0,
    INT8 = 1,
    UINT8 = 2,
    INT16 = 3,
    UINT16 = 4,
    INT32 = 5,
    UINT32 = 6,
    INT64 = 7,
    UINT64 = 8,
    BINARY = 9,
    DOUBLE = 10,
    NULL_VALUE = 11,
};
extern const tm_enum_map em_columnVal_t[];

// Where column values lie: the list of the row selected by valType, at valIndex.
struct columnDesc_s {
    columnVal_t valType = columnVal_t::STRING;
    uint32_t valIndex = 0;
};
constexpr auto describe(const columnDesc_s*) {
    using R = columnDesc_s;
    using namespace binding;
    return record<R>(enum_string("valType", &R::valType, em_columnVal_t), field("valIndex", &R::valIndex));
}
VRM_RECORD_API(columnDesc)

// One result row, its values grouped by type. There is no list for DOUBLE or NULL columns.
struct row_s {
    std::vector<std::string> stringValues;
    std::vector<int8_t> int8Values;
    std::vector<uint8_t> uint8Values;
    std::vector<int16_t> int16Values;
    std::vector<uint16_t> uint16Values;
    std::vector<int32_t> int32Values;
    std::vector<uint32_t> uint32Values;
    std::vector<int64_t> int64Values;
    std::vector<uint64_t> uint64Values;
    std::vector<std::vector<uint8_t>> binaryValues;
};
constexpr auto describe(const row_s*) {
    using R = row_s;
    using namespace binding;
    return record<R>(field("stringValues", &R::stringValues), field("int8Values", &R::int8Values),
                     field("uint8Values", &R::uint8Values), field("int16Values", &R::int16Values),
                     field("uint16Values", &R::uint16Values), field("int32Values", &R::int32Values),
                     field("uint32Values", &R::uint32Values), field("int64Values", &R::int64Values),
                     field("uint64Values", &R::uint64Values), field("binaryValues", &R::binaryValues));
}
VRM_RECORD_API(row)

// The reduced row of the "Faster" methods.
struct rowFaster_s {
    std::vector<std::string> stringValues;
    std::vector<int64_t> int64Values;
    std::vector<std::vector<uint8_t>> binaryValues;
};
constexpr auto describe(const rowFaster_s*) {
    using R = rowFaster_s;
    using namespace binding;
    return record<R>(field("stringValues", &R::stringValues), field("int64Values", &R::int64Values),
                     field("binaryValues", &R::binaryValues));
}
VRM_RECORD_API(rowFaster)

// The result table of one command.
struct commandResult_s {
    std::vector<columnDesc_s> columnOrder;
    std::vector<row_s> rows;
};
constexpr auto describe(const commandResult_s*) {
    using R = commandResult_s;
    using namespace binding;
    return record<R>(field("columnOrder", &R::columnOrder), field("rows", &R::rows));
}
VRM_RECORD_API(commandResult)

struct commandResultFaster_s {
    std::vector<columnDesc_s> columnOrder;
    std::vector<rowFaster_s> rows;
};
constexpr auto describe(const commandResultFaster_s*) {
    using R = commandResultFaster_s;
    using namespace binding;
    return record<R>(field("columnOrder", &R::columnOrder), field("rows", &R::rows));
}
VRM_RECORD_API(commandResultFaster)

struct rowDesc_s {
    int64_t rowId = 0;
    row_s row;
};
constexpr auto describe(const rowDesc_s*) {
    using R = rowDesc_s;
    using namespace binding;
    return record<R>(field("rowId", &R::rowId), field("row", &R::row));
}
VRM_RECORD_API(rowDesc)

// Rows added, modified and deleted in a subscribed table since the last event.
struct tableEventData_s {
    std::vector<columnDesc_s> columnOrder;
    std::vector<rowDesc_s> addedRows;
    std::vector<rowDesc_s> modifiedRows;
    std::vector<int64_t> deletedRowIds;
};
constexpr auto describe(const tableEventData_s*) {
    using R = tableEventData_s;
    using namespace binding;
    return record<R>(field("columnOrder", &R::columnOrder), field("addedRows", &R::addedRows),
                     field("modifiedRows", &R::modifiedRows), field("deletedRowIds", &R::deletedRowIds));
}
VRM_RECORD_API(tableEventData)

// What a table-event subscription reports.
struct tableEventProperties_s {
    std::string tableName;
    bool deleteNotifiedAdded = false;
    bool subscribeAdded = false;
    bool subscribeModified = false;
    bool subscribeDeleted = false;
};
constexpr auto describe(const tableEventProperties_s*) {
    using R = tableEventProperties_s;
    using namespace binding;
    return record<R>(field("tableName", &R::tableName), field("deleteNotifiedAdded", &R::deleteNotifiedAdded),
                     field("subscribeAdded", &R::subscribeAdded),
                     field("subscribeModified", &R::subscribeModified),
                     field("subscribeDeleted", &R::subscribeDeleted));
}
VRM_RECORD_API(tableEventProperties)

// Builders of this module leave the request name unset: the caller (or the generator's twin
// builders) names the request.
bool create_req_DoSQL(Message* msg, const std::vector<std::string>& commands, bool copy);
bool create_req_DoSQLFaster(Message* msg, const std::vector<std::string>& commands, bool copy);
bool create_req_DoSQLDatabase(Message* msg, const std::string& dbName,
                              const std::vector<std::string>& commands, bool copy);
bool create_req_DoSQLDatabaseFaster(Message* msg, const std::string& dbName,
                                    const std::vector<std::string>& commands, bool copy);
bool create_req_RequestDoSQLNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                         const std::vector<std::string>& commands, bool copy);
bool create_req_DeleteDoSQLNotification(Message* msg, uint32_t id, bool copy);
bool create_req_EnableDoSQLNotification(Message* msg, uint32_t id, bool enable, bool copy);
bool create_req_RequestDoSQLNotificationFaster(Message* msg, uint32_t id, uint32_t intervalMS,
                                               const std::vector<std::string>& commands, bool copy);
bool create_req_DeleteDoSQLNotificationFaster(Message* msg, uint32_t id, bool copy);
bool create_req_EnableDoSQLNotificationFaster(Message* msg, uint32_t id, bool enable, bool copy);
bool create_req_RequestTableEventNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                              const tableEventProperties_s& properties, bool copy);
bool create_req_DeleteTableEventNotification(Message* msg, uint32_t id, bool copy);
bool create_req_EnableTableEventNotification(Message* msg, uint32_t id, bool enable, bool copy);

void parse_resp_DoSQL(const Message* msg, std::vector<commandResult_s>& results);
void parse_resp_DoSQLFaster(const Message* msg, std::vector<commandResultFaster_s>& results);
void parse_resp_DoSQLDatabase(const Message* msg, std::vector<commandResult_s>& results);
void parse_resp_DoSQLDatabaseFaster(const Message* msg, std::vector<commandResultFaster_s>& results);
void parse_resp_RequestDoSQLNotification(const Message* msg);
void parse_resp_DeleteDoSQLNotification(const Message* msg);
void parse_resp_EnableDoSQLNotification(const Message* msg);
void parse_resp_RequestDoSQLNotificationFaster(const Message* msg);
void parse_resp_DeleteDoSQLNotificationFaster(const Message* msg);
void parse_resp_EnableDoSQLNotificationFaster(const Message* msg);
void parse_resp_RequestTableEventNotification(const Message* msg);
void parse_resp_DeleteTableEventNotification(const Message* msg);
void parse_resp_EnableTableEventNotification(const Message* msg);

// Notifications: the far side's request is read, the answer is an empty response.
void parse_req_DoSQLNotify(const Message* msg, uint32_t& id, std::vector<commandResult_s>& results);
void parse_req_DoSQLNotifyFaster(const Message* msg, uint32_t& id,
                                 std::vector<commandResultFaster_s>& results);
void parse_req_TableEventNotify(const Message* msg, uint32_t& id, tableEventData_s& data);
bool create_resp_DoSQLNotify(Message* msg);
bool create_resp_DoSQLNotifyFaster(Message* msg);
bool create_resp_TableEventNotify(Message* msg);

// Column `column` of row `row` of a result, as text: strings as they are, integers in
// decimal, byte strings in lower-case hexadecimal. False, leaving `out` alone, when the
// value is absent: row or column out of range, a DOUBLE or NULL column (no row list carries
// them) or an unknown type, or a valIndex past the end of its list. In a reduced row only
// STRING, INT64 and BINARY columns have a list; other types are reported absent.
bool column_as_string(const commandResult_s& result, std::size_t row, std::size_t column, std::string& out);
bool column_as_string(const commandResultFaster_s& result, std::size_t row, std::size_t column,
                      std::string& out);

}  // namespace Stats_1_bll
