// JSON rendering of values and messages.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_json.h"

namespace {

constexpr auto R = Message::TMG_RECV;
constexpr auto S = Message::TMG_SEND;

Message small_message() {
    Message m;
    m.set_msg_type(Message::TMT_RESPONSE);
    m.set_request_name("Module.Get");
    m.add_member(S, "id", 18446744073709551615ul);
    m.add_member(S, "min", std::numeric_limits<long>::min());
    auto* rec = new Tm_struct;
    rec->add_member("on", true);
    rec->add_member("label", std::string("a\"b\\c\n\x01"));
    auto* data = new Tm_array;
    data->add_member(static_cast<unsigned char>(1));
    data->add_member(static_cast<unsigned char>(255));
    rec->add_member_and_own("data", data);
    m.add_member_and_own(S, "rec", rec);
    auto* mixed = new Tm_array;
    mixed->add_member(-1);
    mixed->add_member(0.1);
    m.add_member_and_own(S, "mixed", mixed);
    m.add_member_and_own(S, "none", new Tm_array);
    m.add_member(R, "got", static_cast<short>(-2));
    return m;
}

TEST(Json, SmallMessageOnOneLine) {
    EXPECT_EQ(
        tmsg::to_json(small_message()),
        R"({"kind": "response", "name": "Module.Get", )"
        R"("send": {"id:uint64": 18446744073709551615, "min:int64": -9223372036854775808, )"
        R"("rec:struct": {"on:bool": true, "label:string": "a\"b\\c\n\u0001", "data:array<uint8>": [1, 255]}, )"
        R"("mixed:array": [{"int32": -1}, {"double": 0.1}], "none:array": []}, )"
        R"("receive": {"got:int16": -2}})");
}

TEST(Json, SmallMessageIndented) {
    Message m;
    m.add_member(S, "n", 1);
    auto* a = new Tm_array;
    a->add_member(true);
    m.add_member_and_own(S, "a", a);
    m.add_member_and_own(S, "e", new Tm_struct);
    EXPECT_EQ(tmsg::to_json(m, 2),
              "{\n"
              "  \"kind\": \"request\",\n"
              "  \"name\": \"\",\n"
              "  \"send\": {\n"
              "    \"n:int32\": 1,\n"
              "    \"a:array<bool>\": [\n"
              "      true\n"
              "    ],\n"
              "    \"e:struct\": {}\n"
              "  },\n"
              "  \"receive\": {}\n"
              "}");
}

TEST(Json, ValuesOfEveryOtherKind) {
    struct Case {
        const char* what;
        Tm_value* value;
        std::string json;
    };
    Message inner;
    inner.set_request_name("In");
    inner.add_member(S, "x", 1u);
    const std::vector<Case> cases = {
        {"int8", new Tm_int8(-128), "-128"},
        {"uint16", new Tm_uint16(65535), "65535"},
        {"double third", new Tm_double(1.0 / 3), "0.3333333333333333"},
        {"double integral", new Tm_double(-2), "-2"},
        {"double large", new Tm_double(1e300), "1e+300"},
        {"nan", new Tm_double(std::numeric_limits<double>::quiet_NaN()), "\"NaN\""},
        {"-inf", new Tm_double(-std::numeric_limits<double>::infinity()), "\"-Infinity\""},
        {"utf-8 passes, stray bytes escaped", new Tm_string("\xc3\xa9\xff\x7f"),
         "\"\xc3\xa9\\u00ff\\u007f\""},
        {"tab and quote", new Tm_string("\t\""), "\"\\t\\\"\""},
        {"binary", new Tm_binary(std::vector<unsigned char>{0x00, 0xAB, 0x10}), "\"00ab10\""},
        {"date", new Tm_date(-5), "-5"},
        {"file", new Tm_file("f.txt", {0x41}), R"({"name": "f.txt", "content": "41"})"},
        {"message", new Tm_message(inner),
         R"({"kind": "request", "name": "In", "send": {"x:uint32": 1}, "receive": {}})"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(tmsg::to_json(*c.value), c.json) << c.what;
        delete c.value;
    }
}

TEST(Json, ArraysOfStructsAndArrays) {
    Tm_array rows;
    for (int i = 0; i < 2; ++i) {
        auto* s = new Tm_struct;
        s->add_member("i", i);
        rows.add_member_and_own(s);
    }
    EXPECT_EQ(tmsg::to_json(rows), R"([{"i:int32": 0}, {"i:int32": 1}])");
    Tm_struct holder;
    auto* grid = new Tm_array;
    auto* row = new Tm_array;
    row->add_member(std::string("x"));
    grid->add_member_and_own(row);
    grid->add_member_and_own(new Tm_array);
    holder.add_member_and_own("grid", grid);
    EXPECT_EQ(tmsg::to_json(holder), R"({"grid:array<array>": [["x"], []]})");
}

}  // namespace
