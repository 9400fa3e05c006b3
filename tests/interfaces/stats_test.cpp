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
namespace ts = testing_support;

namespace {

// Element counts of the array members of a record as the far side receives it.
template <class R>
std::vector<int> array_counts(const R& rec) {
    Message into;
    tmsg::decode(tmsg::encode(ts::holding(rec, true)), into);
    const Tm_struct* s = into.get_member_struct(TMG_RECV, "record");
    std::vector<int> counts;
    for (int i = 0; i < s->get_member_count(); ++i)
        counts.push_back(s->get_member_array(s->get_member_name(i))->get_member_count());
    return counts;
}

TEST(StatsRecords, RoundTripThroughTheWire) {
    ts::check_records<st::columnDesc_s, st::row_s, st::rowFaster_s, st::commandResult_s,
                                   st::commandResultFaster_s, st::rowDesc_s, st::tableEventData_s,
                                   st::tableEventProperties_s>();
}

TEST(StatsMethods, EveryMethodLoopsBackWithoutARequestName) {
    ts::check_catalogue(st::catalogue, "");
}

TEST(StatsMethods, EveryNotificationIsReadAndAnswered) {
    ts::check_notifications(st::notifications);
}

TEST(StatsMethods, BuildersSwitchOnSendMemberStringsReplaceMembersAndKeepTheCallersName) {
    ts::for_each_entry(st::catalogue, [](const auto& e) {
        SCOPED_TRACE(e.desc->name);
        Message m;
        m.set_use_send_member_string(false);
        m.set_request_name("Caller.Named");
        m.add_member(TMG_SEND, "stale", 1);
        m.add_member(TMG_RECV, "old", 1);
        EXPECT_TRUE(ts::build_generated(e, &m, false, 5));
        EXPECT_TRUE(m.get_use_send_member_string());
        EXPECT_EQ(m.get_request_name(), "Caller.Named");
        EXPECT_EQ(m.get_msg_type(), TMT_REQUEST);
        EXPECT_EQ(m.get_member_count(TMG_RECV), 0);
        EXPECT_EQ(m.get_member_index(TMG_SEND, "stale"), -1);
    });
    EXPECT_EQ(ts::wire_layout(st::tableEventProperties_s{}),
              "tableName:string deleteNotifiedAdded:bool subscribeAdded:bool subscribeModified:bool "
              "subscribeDeleted:bool");
    for (const auto& answer : {st::create_resp_DoSQLNotify, st::create_resp_DoSQLNotifyFaster,
                               st::create_resp_TableEventNotify}) {
        Message n;
        n.set_use_send_member_string(false);
        n.add_member(TMG_SEND, "left", 1u);
        EXPECT_TRUE(answer(&n));
        EXPECT_EQ(n.get_msg_type(), TMT_RESPONSE);
        EXPECT_EQ(n.get_member_count(TMG_SEND), 0);
    }
}

TEST(StatsMethods, WrongKindThrowsAndLeavesOutputs) {
    st::commandResult_s stale;
    stale.columnOrder.resize(1);
    const std::vector<st::commandResult_s> before{stale};
    const std::vector<st::commandResult_s> sent(2);

    const Message request = ts::received(st::methods::DoSQL.response, TMT_REQUEST, sent);
    std::vector<st::commandResult_s> out = before;
    EXPECT_THROW(st::parse_resp_DoSQL(&request, out), Tm_type_mismatch_exception);
    EXPECT_EQ(out, before);
    EXPECT_THROW(st::parse_resp_DeleteDoSQLNotification(&request), Tm_type_mismatch_exception);

    // A notification arrives as a request; a response there is refused the same way.
    const Message response =
        ts::received(st::methods::DoSQLNotify.request, TMT_RESPONSE, uint32_t{4}, sent);
    uint32_t id = 17;
    out = before;
    EXPECT_THROW(st::parse_req_DoSQLNotify(&response, id, out), Tm_type_mismatch_exception);
    EXPECT_EQ(id, 17u);
    EXPECT_EQ(out, before);

    st::commandResultFaster_s one;
    one.columnOrder = {{columnVal_t::INT64, 0}};
    one.rows = {st::rowFaster_s{{}, {-5}, {}}};
    const Message in = ts::received(st::methods::DoSQLFaster.response, TMT_RESPONSE, std::vector{one});
    std::vector<st::commandResultFaster_s> faster(3);
    st::parse_resp_DoSQLFaster(&in, faster);
    EXPECT_EQ(faster, std::vector{one});
}

TEST(StatsRecords, CopyFlagChoosesBetweenViewAndCopy) {
    for (int what = 0; what < 4; ++what) {
        for (bool copy : {false, true}) {
            st::row_s row;
            row.int32Values = {1, 2};
            row.uint8Values = {3, 4};
            st::tableEventData_s data;
            data.deletedRowIds = {7};
            data.addedRows = {st::rowDesc_s{1, row}};
            data.addedRows[0].row.uint64Values = {5};
            const Message m = what < 2 ? ts::holding(row, copy) : ts::holding(data, copy);
            const auto before = tmsg::encode(m);
            if (what == 0) row.int32Values[0] = -99;
            if (what == 1) row.uint8Values[1] = 0xEE;
            if (what == 2) data.deletedRowIds[0] = 1234567;
            if (what == 3) data.addedRows[0].row.uint64Values[0] = 42;
            EXPECT_EQ(tmsg::encode(m) != before, !copy) << what << " " << copy;
        }
    }
}

TEST(StatsRows, EmptyListsAreSentInOrder) {
    st::commandResult_s result;
    result.columnOrder = {{columnVal_t::STRING, 0}, {columnVal_t::UINT32, 0}};
    ts::loop_method(std::get<0>(st::catalogue), "", true, std::make_tuple(std::vector<std::string>{"select"}),
                    std::make_tuple(std::vector{result}));
    EXPECT_EQ(ts::wire_layout(result), "columnOrder:array rows:array");
    EXPECT_EQ(array_counts(result), (std::vector<int>{2, 0}));

    st::row_s row;
    row.stringValues = {"a", "b"};
    EXPECT_EQ(ts::wire_layout(row),
              "stringValues:array int8Values:array uint8Values:array int16Values:array uint16Values:array "
              "int32Values:array uint32Values:array int64Values:array uint64Values:array binaryValues:array");
    EXPECT_EQ(array_counts(row), (std::vector<int>{2, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    st::row_s back;
    back.int8Values = {1};
    st::row_t_from_struct(ts::holding(row, false).get_member_struct(TMG_SEND, "record"), &back);
    EXPECT_EQ(back, row);

    st::tableEventData_s data;
    data.columnOrder = {{columnVal_t::INT64, 0}};
    EXPECT_EQ(ts::wire_layout(data), "columnOrder:array addedRows:array modifiedRows:array deletedRowIds:array");
    EXPECT_EQ(array_counts(data), (std::vector<int>{1, 0, 0, 0}));
    ts::loop_notification(std::get<2>(st::notifications), false, std::make_tuple(uint32_t{3}, data));
}

TEST(StatsRows, UnknownValueTypeReadsBackAsTheMapsAnswer) {
    st::commandResult_s result;
    result.columnOrder = {{columnVal_t::BINARY, 0}, {columnVal_t::NULL_VALUE, 0}, {columnVal_t::UINT16, 0}};
    auto bytes = ts::far_bytes(st::methods::DoSQL.response, TMT_RESPONSE, std::vector{result});
    ASSERT_EQ(ts::replace_text(bytes, "BINARY", "BINARX"), 1);
    ASSERT_EQ(ts::replace_text(bytes, "UINT16", "000003"), 1);
    const Message in = ts::received(bytes);
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
    const char* names[] = {"STRING", "INT8", "UINT8", "INT16", "UINT16", "INT32",
                           "UINT32", "INT64", "UINT64", "BINARY", "DOUBLE", "NULL"};
    for (int v = 0; v < 12; ++v) {
        const Message m = ts::holding(st::columnDesc_s{static_cast<columnVal_t>(v), 3}, true);
        EXPECT_EQ(m.get_member_struct(TMG_SEND, "record")->get_member_string("valType"), names[v]);
    }
    EXPECT_EQ(static_cast<int>(columnVal_t::NULL_VALUE), 11);
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
