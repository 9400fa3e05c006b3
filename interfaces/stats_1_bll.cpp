#include "interfaces/stats_1_bll.h"

#include "binding/RecordCodec.h"
#include "interfaces/stats_1_bll_methods.h"

namespace Stats_1_bll {

const tm_enum_map em_columnVal_t[] = {
    {0, "STRING"}, {1, "INT8"},   {2, "UINT8"},  {3, "INT16"},   {4, "UINT16"}, {5, "INT32"}, {6, "UINT32"},
    {7, "INT64"},  {8, "UINT64"}, {9, "BINARY"}, {10, "DOUBLE"}, {11, "NULL"},  {0, nullptr},
};

VRM_RECORD_IMPL(columnDesc)
VRM_RECORD_IMPL(row)
VRM_RECORD_IMPL(rowFaster)
VRM_RECORD_IMPL(commandResult)
VRM_RECORD_IMPL(commandResultFaster)
VRM_RECORD_IMPL(rowDesc)
VRM_RECORD_IMPL(tableEventData)
VRM_RECORD_IMPL(tableEventProperties)

// --- requests ------------------------------------------------------------------------------

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
bool create_req_DeleteDoSQLNotification(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteDoSQLNotification, copy, id);
}
bool create_req_EnableDoSQLNotification(Message* msg, uint32_t id, bool enable, bool copy) {
    return binding::build_request(msg, methods::EnableDoSQLNotification, copy, id, enable);
}
bool create_req_RequestDoSQLNotificationFaster(Message* msg, uint32_t id, uint32_t intervalMS,
                                               const std::vector<std::string>& commands, bool copy) {
    return binding::build_request(msg, methods::RequestDoSQLNotificationFaster, copy, id, intervalMS,
                                  commands);
}
bool create_req_DeleteDoSQLNotificationFaster(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteDoSQLNotificationFaster, copy, id);
}
bool create_req_EnableDoSQLNotificationFaster(Message* msg, uint32_t id, bool enable, bool copy) {
    return binding::build_request(msg, methods::EnableDoSQLNotificationFaster, copy, id, enable);
}
bool create_req_RequestTableEventNotification(Message* msg, uint32_t id, uint32_t intervalMS,
                                              const tableEventProperties_s& properties, bool copy) {
    return binding::build_request(msg, methods::RequestTableEventNotification, copy, id, intervalMS,
                                  properties);
}
bool create_req_DeleteTableEventNotification(Message* msg, uint32_t id, bool copy) {
    return binding::build_request(msg, methods::DeleteTableEventNotification, copy, id);
}
bool create_req_EnableTableEventNotification(Message* msg, uint32_t id, bool enable, bool copy) {
    return binding::build_request(msg, methods::EnableTableEventNotification, copy, id, enable);
}

// --- responses -----------------------------------------------------------------------------

void parse_resp_DoSQL(const Message* msg, std::vector<commandResult_s>& results) {
    binding::parse_response(msg, methods::DoSQL, results);
}
void parse_resp_DoSQLFaster(const Message* msg, std::vector<commandResultFaster_s>& results) {
    binding::parse_response(msg, methods::DoSQLFaster, results);
}
void parse_resp_DoSQLDatabase(const Message* msg, std::vector<commandResult_s>& results) {
    binding::parse_response(msg, methods::DoSQLDatabase, results);
}
void parse_resp_DoSQLDatabaseFaster(const Message* msg, std::vector<commandResultFaster_s>& results) {
    binding::parse_response(msg, methods::DoSQLDatabaseFaster, results);
}
void parse_resp_RequestDoSQLNotification(const Message* msg) {
    binding::parse_response(msg, methods::RequestDoSQLNotification);
}
void parse_resp_DeleteDoSQLNotification(const Message* msg) {
    binding::parse_response(msg, methods::DeleteDoSQLNotification);
}
void parse_resp_EnableDoSQLNotification(const Message* msg) {
    binding::parse_response(msg, methods::EnableDoSQLNotification);
}
void parse_resp_RequestDoSQLNotificationFaster(const Message* msg) {
    binding::parse_response(msg, methods::RequestDoSQLNotificationFaster);
}
void parse_resp_DeleteDoSQLNotificationFaster(const Message* msg) {
    binding::parse_response(msg, methods::DeleteDoSQLNotificationFaster);
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

// --- notifications -------------------------------------------------------------------------

void parse_req_DoSQLNotify(const Message* msg, uint32_t& id, std::vector<commandResult_s>& results) {
    binding::parse_request(msg, methods::DoSQLNotify, id, results);
}
void parse_req_DoSQLNotifyFaster(const Message* msg, uint32_t& id,
                                 std::vector<commandResultFaster_s>& results) {
    binding::parse_request(msg, methods::DoSQLNotifyFaster, id, results);
}
void parse_req_TableEventNotify(const Message* msg, uint32_t& id, tableEventData_s& data) {
    binding::parse_request(msg, methods::TableEventNotify, id, data);
}
bool create_resp_DoSQLNotify(Message* msg) { return binding::build_response(msg, methods::DoSQLNotify); }
bool create_resp_DoSQLNotifyFaster(Message* msg) {
    return binding::build_response(msg, methods::DoSQLNotifyFaster);
}
bool create_resp_TableEventNotify(Message* msg) {
    return binding::build_response(msg, methods::TableEventNotify);
}

// --- column look-up ------------------------------------------------------------------------

namespace {

template <class T>
std::string text_of(const T& v) {
    return std::to_string(v);
}
std::string text_of(const std::string& v) { return v; }
std::string text_of(const std::vector<uint8_t>& v) {
    static const char kDigits[] = "0123456789abcdef";
    std::string out;
    out.reserve(v.size() * 2);
    for (uint8_t b : v) {
        out += kDigits[b >> 4];
        out += kDigits[b & 0xF];
    }
    return out;
}

template <class T>
bool pick(const std::vector<T>& list, uint32_t index, std::string& out) {
    if (index >= list.size()) return false;
    out = text_of(list[index]);
    return true;
}

// DOUBLE, NULL and unknown types have no list in a row.
bool value_text(const row_s& r, const columnDesc_s& c, std::string& out) {
    switch (c.valType) {
        case columnVal_t::STRING:
            return pick(r.stringValues, c.valIndex, out);
        case columnVal_t::INT8:
            return pick(r.int8Values, c.valIndex, out);
        case columnVal_t::UINT8:
            return pick(r.uint8Values, c.valIndex, out);
        case columnVal_t::INT16:
            return pick(r.int16Values, c.valIndex, out);
        case columnVal_t::UINT16:
            return pick(r.uint16Values, c.valIndex, out);
        case columnVal_t::INT32:
            return pick(r.int32Values, c.valIndex, out);
        case columnVal_t::UINT32:
            return pick(r.uint32Values, c.valIndex, out);
        case columnVal_t::INT64:
            return pick(r.int64Values, c.valIndex, out);
        case columnVal_t::UINT64:
            return pick(r.uint64Values, c.valIndex, out);
        case columnVal_t::BINARY:
            return pick(r.binaryValues, c.valIndex, out);
        default:
            return false;
    }
}

bool value_text(const rowFaster_s& r, const columnDesc_s& c, std::string& out) {
    switch (c.valType) {
        case columnVal_t::STRING:
            return pick(r.stringValues, c.valIndex, out);
        case columnVal_t::INT64:
            return pick(r.int64Values, c.valIndex, out);
        case columnVal_t::BINARY:
            return pick(r.binaryValues, c.valIndex, out);
        default:
            return false;
    }
}

template <class Result>
bool column_text(const Result& result, std::size_t row, std::size_t column, std::string& out) {
    if (row >= result.rows.size() || column >= result.columnOrder.size()) return false;
    return value_text(result.rows[row], result.columnOrder[column], out);
}

}  // namespace

bool column_as_string(const commandResult_s& result, std::size_t row, std::size_t column, std::string& out) {
    return column_text(result, row, column, out);
}
bool column_as_string(const commandResultFaster_s& result, std::size_t row, std::size_t column,
                      std::string& out) {
    return column_text(result, row, column, out);
}

}  // namespace Stats_1_bll
