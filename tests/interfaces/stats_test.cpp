#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "interfaces/stats_1_bll.h"
#include "interfaces/stats_1_bll_methods.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "support/Loopback.h"

namespace st = Stats_1_bll;
using st::columnVal_t;
using testing_support::Layout;

namespace {

// A record converted into the send group of a fresh message under the name "r".
template <class R>
Message holding(const R& rec, bool copy) {
    Message m;
    auto* s = new Tm_prenamed_struct();
    binding_to_struct(s, &rec, copy, m.get_send_member_string(TMG_SEND));
    m.add_member_and_own(TMG_SEND, "r", s);
    return m;
}

// Element counts of the array members of a received struct, in member order.
std::vector<int> array_counts(const Tm_struct* s) {
    std::vector<int> counts;
    for (int i = 0; i < s->get_member_count(); ++i)
        counts.push_back(s->get_member_array(s->get_member_name(i))->get_member_count());
    return counts;
}

const Tm_struct* received_record(const Message& sent, Message& into) {
    tmsg::decode(tmsg::encode(sent), into);
    return into.get_member_struct(TMG_RECV, "r");
}

TEST(StatsRecords, RoundTripThroughTheWire) {
    testing_support::check_records<st::columnDesc_s, st::row_s, st::rowFaster_s, st::commandResult_s,
                                   st::commandResultFaster_s, st::rowDesc_s, st::tableEventData_s,
                                   st::tableEventProperties_s>();
}

TEST(StatsMethods, EveryMethodLoopsBackWithoutARequestName) {
    testing_support::check_catalogue(st::catalogue, "");
}

TEST(StatsMethods, EveryNotificationIsReadAndAnswered) {
    testing_support::check_notifications(st::notifications);
}

TEST(StatsMethods, BuildersSwitchOnSendMemberStringsAndKeepTheCallersName) {
    testing_support::for_each_entry(st::catalogue, [](const auto& e) {
        SCOPED_TRACE(e.desc->name);
        Message m;
        m.set_use_send_member_string(false);
        m.set_request_name("Caller.Named");
        EXPECT_TRUE(testing_support::build_generated(e, &m, false, 5));
        EXPECT_TRUE(m.get_use_send_member_string());
        EXPECT_EQ(m.get_request_name(), "Caller.Named");
        EXPECT_EQ(m.get_msg_type(), TMT_REQUEST);
    });
}

TEST(StatsMethods, RequestLayouts) {
    st::tableEventProperties_s props;
    props.tableName = "t";
    struct Case {
        const char* what;
        std::function<void(Message*)> build;
        Layout layout;
    };
    const std::vector<std::string> cmds{"select 1"};
    const Case cases[] = {
        {"DoSQLDatabase",
         [&](Message* m) { st::create_req_DoSQLDatabase(m, "db", cmds, true); },
         {{"dbName", TMV_STRING}, {"commands", TMV_ARRAY}}},
        {"RequestDoSQLNotificationFaster",
         [&](Message* m) { st::create_req_RequestDoSQLNotificationFaster(m, 1, 2, cmds, true); },
         {{"id", TMV_UINT32}, {"intervalMS", TMV_UINT32}, {"commands", TMV_ARRAY}}},
        {"EnableTableEventNotification",
         [&](Message* m) { st::create_req_EnableTableEventNotification(m, 1, true, true); },
         {{"id", TMV_UINT32}, {"enable", TMV_BOOL}}},
        {"DeleteDoSQLNotification",
         [&](Message* m) { st::create_req_DeleteDoSQLNotification(m, 9, true); },
         {{"id", TMV_UINT32}}},
        {"RequestTableEventNotification",
         [&](Message* m) { st::create_req_RequestTableEventNotification(m, 1, 2, props, true); },
         {{"id", TMV_UINT32}, {"intervalMS", TMV_UINT32}, {"properties", TMV_STRUCT}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Message m;
        m.add_member(TMG_SEND, "stale", 1);
        m.add_member(TMG_RECV, "old", 1);
        c.build(&m);
        EXPECT_EQ(testing_support::layout(m), c.layout);
        EXPECT_EQ(m.get_member_count(TMG_RECV), 0);
    }
}

TEST(StatsMethods, TableEventPropertiesTravelInOrder) {
    Message m;
    st::create_req_RequestTableEventNotification(
        &m, 1, 2, st::tableEventProperties_s{"ports", true, false, true, false}, true);
    EXPECT_EQ(testing_support::layout(*m.get_group(TMG_SEND).get_member_struct("properties")),
              (Layout{{"tableName", TMV_STRING},
                      {"deleteNotifiedAdded", TMV_BOOL},
                      {"subscribeAdded", TMV_BOOL},
                      {"subscribeModified", TMV_BOOL},
                      {"subscribeDeleted", TMV_BOOL}}));
}

TEST(StatsMethods, EmptyCommandListIsSentAsEmptyArray) {
    Message m;
    st::create_req_DoSQL(&m, {}, true);
    EXPECT_EQ(testing_support::layout(m), (Layout{{"commands", TMV_ARRAY}}));
    const Message far = testing_support::received(tmsg::encode(m));
    EXPECT_EQ(far.get_member_array(TMG_RECV, "commands")->get_member_count(), 0);
}

TEST(StatsMethods, NotificationAnswerIsAnEmptyResponse) {
    const std::function<bool(Message*)> answers[] = {
        st::create_resp_DoSQLNotify, st::create_resp_DoSQLNotifyFaster, st::create_resp_TableEventNotify};
    for (const auto& answer : answers) {
        Message m;
        m.set_use_send_member_string(false);
        m.add_member(TMG_SEND, "left", 1u);
        EXPECT_TRUE(answer(&m));
        EXPECT_EQ(m.get_msg_type(), TMT_RESPONSE);
        EXPECT_EQ(m.get_member_count(TMG_SEND), 0);
        EXPECT_EQ(m.get_member_count(TMG_RECV), 0);
    }
}

TEST(StatsMethods, WrongKindThrowsAndLeavesOutputs) {
    st::commandResult_s stale;
    stale.columnOrder.resize(1);
    const std::vector<st::commandResult_s> before{stale};
    const std::vector<st::commandResult_s> sent(2);

    const Message request = testing_support::received(st::methods::DoSQL.response, TMT_REQUEST, sent);
    std::vector<st::commandResult_s> out = before;
    EXPECT_THROW(st::parse_resp_DoSQL(&request, out), Tm_type_mismatch_exception);
    EXPECT_EQ(out, before);
    EXPECT_THROW(st::parse_resp_DeleteDoSQLNotification(&request), Tm_type_mismatch_exception);

    // A notification arrives as a request; a response there is refused the same way.
    const Message response =
        testing_support::received(st::methods::DoSQLNotify.request, TMT_RESPONSE, uint32_t{4}, sent);
    uint32_t id = 17;
    out = before;
    EXPECT_THROW(st::parse_req_DoSQLNotify(&response, id, out), Tm_type_mismatch_exception);
    EXPECT_EQ(id, 17u);
    EXPECT_EQ(out, before);
}

TEST(StatsMethods, ParsingReplacesEarlierResults) {
    st::commandResultFaster_s one;
    one.columnOrder = {{columnVal_t::INT64, 0}};
    one.rows = {st::rowFaster_s{{}, {-5}, {}}};
    const Message in =
        testing_support::received(st::methods::DoSQLFaster.response, TMT_RESPONSE, std::vector{one});
    std::vector<st::commandResultFaster_s> out(3);
    st::parse_resp_DoSQLFaster(&in, out);
    EXPECT_EQ(out, std::vector{one});
}

TEST(StatsRecords, CopyFlagChoosesBetweenViewAndCopy) {
    struct Case {
        const char* what;
        std::function<Message(bool, st::row_s&, st::tableEventData_s&)> build;
        std::function<void(st::row_s&, st::tableEventData_s&)> change;
    };
    const Case cases[] = {
        {"row int32Values", [](bool copy, st::row_s& r, st::tableEventData_s&) { return holding(r, copy); },
         [](st::row_s& r, st::tableEventData_s&) { r.int32Values[0] = -99; }},
        {"row uint8Values", [](bool copy, st::row_s& r, st::tableEventData_s&) { return holding(r, copy); },
         [](st::row_s& r, st::tableEventData_s&) { r.uint8Values[1] = 0xEE; }},
        {"deletedRowIds", [](bool copy, st::row_s&, st::tableEventData_s& d) { return holding(d, copy); },
         [](st::row_s&, st::tableEventData_s& d) { d.deletedRowIds[0] = 1234567; }},
        {"added row's uint64Values",
         [](bool copy, st::row_s&, st::tableEventData_s& d) { return holding(d, copy); },
         [](st::row_s&, st::tableEventData_s& d) { d.addedRows[0].row.uint64Values[0] = 42; }},
    };
    for (const Case& c : cases) {
        for (bool copy : {false, true}) {
            SCOPED_TRACE(std::string(c.what) + (copy ? " copy" : " view"));
            st::row_s row;
            row.int32Values = {1, 2};
            row.uint8Values = {3, 4};
            st::tableEventData_s data;
            data.deletedRowIds = {7};
            data.addedRows = {st::rowDesc_s{1, row}};
            data.addedRows[0].row.uint64Values = {5};
            const Message m = c.build(copy, row, data);
            const auto before = tmsg::encode(m);
            c.change(row, data);
            EXPECT_EQ(tmsg::encode(m) != before, !copy);
        }
    }
}

TEST(StatsRows, ColumnsButNoRows) {
    st::commandResult_s result;
    result.columnOrder = {{columnVal_t::STRING, 0}, {columnVal_t::UINT32, 0}};
    testing_support::loop_method(std::get<0>(st::catalogue), "", true,
                                 std::make_tuple(std::vector<std::string>{"select a, b from t where 0"}),
                                 std::make_tuple(std::vector{result}));
    Message into;
    const Tm_struct* s = received_record(holding(result, true), into);
    EXPECT_EQ(testing_support::layout(*s), (Layout{{"columnOrder", TMV_ARRAY}, {"rows", TMV_ARRAY}}));
    EXPECT_EQ(array_counts(s), (std::vector<int>{2, 0}));
}

TEST(StatsRows, StringOnlyRowSendsNineEmptyLists) {
    st::row_s row;
    row.stringValues = {"a", "b"};
    Message into;
    const Tm_struct* s = received_record(holding(row, false), into);
    Layout expected;
    for (const char* n : {"stringValues", "int8Values", "uint8Values", "int16Values", "uint16Values",
                          "int32Values", "uint32Values", "int64Values", "uint64Values", "binaryValues"})
        expected.emplace_back(n, TMV_ARRAY);
    EXPECT_EQ(testing_support::layout(*s), expected);
    EXPECT_EQ(array_counts(s), (std::vector<int>{2, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    st::row_s back;
    back.int8Values = {1};
    st::row_t_from_struct(s, &back);
    EXPECT_EQ(back, row);
}

TEST(StatsRows, TableEventWithNothingSendsThreeEmptyListsAndTheColumns) {
    st::tableEventData_s data;
    data.columnOrder = {{columnVal_t::INT64, 0}};
    Message into;
    const Tm_struct* s = received_record(holding(data, true), into);
    EXPECT_EQ(testing_support::layout(*s), (Layout{{"columnOrder", TMV_ARRAY},
                                                   {"addedRows", TMV_ARRAY},
                                                   {"modifiedRows", TMV_ARRAY},
                                                   {"deletedRowIds", TMV_ARRAY}}));
    EXPECT_EQ(array_counts(s), (std::vector<int>{1, 0, 0, 0}));
    testing_support::loop_notification(std::get<2>(st::notifications), false,
                                       std::make_tuple(uint32_t{3}, data));
}

TEST(StatsRows, UnknownValueTypeReadsBackAsTheMapsAnswer) {
    st::commandResult_s result;
    result.columnOrder = {{columnVal_t::BINARY, 0}, {columnVal_t::NULL_VALUE, 0}, {columnVal_t::UINT16, 0}};
    auto bytes = testing_support::far_bytes(st::methods::DoSQL.response, TMT_RESPONSE, std::vector{result});
    ASSERT_EQ(testing_support::replace_text(bytes, "BINARY", "BINARX"), 1);
    ASSERT_EQ(testing_support::replace_text(bytes, "UINT16", "000003"), 1);
    const Message in = testing_support::received(bytes);
    std::vector<st::commandResult_s> out;
    st::parse_resp_DoSQL(&in, out);
    ASSERT_EQ(out.size(), 1u);
    ASSERT_EQ(out[0].columnOrder.size(), 3u);
    EXPECT_EQ(static_cast<int>(out[0].columnOrder[0].valType),
              tms_string_to_enum("BINARX", st::em_columnVal_t));
    EXPECT_EQ(out[0].columnOrder[1].valType, columnVal_t::NULL_VALUE);
    EXPECT_EQ(static_cast<int>(out[0].columnOrder[2].valType),
              tms_string_to_enum("000003", st::em_columnVal_t));
}

TEST(StatsRows, ValueTypesTravelAsTheirNames) {
    const std::pair<columnVal_t, const char*> names[] = {
        {columnVal_t::STRING, "STRING"}, {columnVal_t::INT8, "INT8"},     {columnVal_t::UINT8, "UINT8"},
        {columnVal_t::INT16, "INT16"},   {columnVal_t::UINT16, "UINT16"}, {columnVal_t::INT32, "INT32"},
        {columnVal_t::UINT32, "UINT32"}, {columnVal_t::INT64, "INT64"},   {columnVal_t::UINT64, "UINT64"},
        {columnVal_t::BINARY, "BINARY"}, {columnVal_t::DOUBLE, "DOUBLE"}, {columnVal_t::NULL_VALUE, "NULL"},
    };
    for (const auto& [value, name] : names) {
        Message into;
        const Tm_struct* s = received_record(holding(st::columnDesc_s{value, 3}, true), into);
        EXPECT_EQ(s->get_member_string("valType"), name);
        EXPECT_EQ(s->get_member_uint32("valIndex"), 3u);
    }
}

// One row holding a value of every listed type, and columns that point into it.
st::commandResult_s sample_result() {
    st::row_s r;
    r.stringValues = {"eth0", "eth1"};
    r.int8Values = {-5};
    r.uint8Values = {200};
    r.int16Values = {-300};
    r.uint16Values = {65535};
    r.int32Values = {-70000};
    r.uint32Values = {4000000000u};
    r.int64Values = {-9000000000L};
    r.uint64Values = {18446744073709551615UL};
    r.binaryValues = {{0xDE, 0xAD, 0x01}, {}};
    st::commandResult_s res;
    res.columnOrder = {{columnVal_t::STRING, 1},         {columnVal_t::INT8, 0},   {columnVal_t::UINT8, 0},
                       {columnVal_t::INT16, 0},          {columnVal_t::UINT16, 0}, {columnVal_t::INT32, 0},
                       {columnVal_t::UINT32, 0},         {columnVal_t::INT64, 0},  {columnVal_t::UINT64, 0},
                       {columnVal_t::BINARY, 0},         {columnVal_t::BINARY, 1}, {columnVal_t::DOUBLE, 0},
                       {columnVal_t::NULL_VALUE, 0},     {columnVal_t::STRING, 2}, {columnVal_t::INT8, 1},
                       {static_cast<columnVal_t>(-1), 0}};
    res.rows = {r};
    return res;
}

TEST(StatsColumns, LookUpThroughTheDescriptors) {
    struct Case {
        std::size_t row;
        std::size_t column;
        bool present;
        const char* text;
    };
    const Case cases[] = {
        {0, 0, true, "eth1"},
        {0, 1, true, "-5"},
        {0, 2, true, "200"},
        {0, 3, true, "-300"},
        {0, 4, true, "65535"},
        {0, 5, true, "-70000"},
        {0, 6, true, "4000000000"},
        {0, 7, true, "-9000000000"},
        {0, 8, true, "18446744073709551615"},
        {0, 9, true, "dead01"},
        {0, 10, true, ""},
        {0, 11, false, nullptr},  // DOUBLE: carried outside the row's lists
        {0, 12, false, nullptr},  // NULL
        {0, 13, false, nullptr},  // valIndex past the strings
        {0, 14, false, nullptr},  // valIndex past the int8 list
        {0, 15, false, nullptr},  // unknown value type
        {0, 16, false, nullptr},  // no such column
        {1, 0, false, nullptr},   // no such row
    };
    const st::commandResult_s res = sample_result();
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << c.row << " column " << c.column);
        std::string out = "untouched";
        EXPECT_EQ(st::column_as_string(res, c.row, c.column, out), c.present);
        EXPECT_EQ(out, c.present ? c.text : "untouched");
    }
}

TEST(StatsColumns, ReducedRowHasStringsInt64AndBinariesOnly) {
    st::commandResultFaster_s res;
    res.columnOrder = {{columnVal_t::STRING, 0},
                       {columnVal_t::INT64, 1},
                       {columnVal_t::BINARY, 0},
                       {columnVal_t::INT32, 0},
                       {columnVal_t::INT64, 2}};
    res.rows = {st::rowFaster_s{{"x"}, {1, -2}, {{0x0F}}}};
    const std::pair<bool, const char*> expected[] = {
        {true, "x"}, {true, "-2"}, {true, "0f"}, {false, "untouched"}, {false, "untouched"}};
    for (std::size_t c = 0; c < std::size(expected); ++c) {
        SCOPED_TRACE(c);
        std::string out = "untouched";
        EXPECT_EQ(st::column_as_string(res, 0, c, out), expected[c].first);
        EXPECT_EQ(out, expected[c].second);
    }
}

}  // namespace
