// Encoding a message's send group and decoding it into another message's receive group.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "platform/Tm_json.h"

namespace {

Message round_trip(const Message& sent) {
    Message received;
    tmsg::decode(tmsg::encode(sent), received);
    return received;
}

constexpr auto R = Message::TMG_RECV;
constexpr auto S = Message::TMG_SEND;

Tm_struct* make_inner() {
    auto* s = new Tm_struct;
    s->add_member("x", 7);
    s->add_member("label", std::string("inner"));
    auto* a = new Tm_array;
    a->add_member(1.5);
    a->add_member(-2.25);
    s->add_member_and_own("ds", a);
    return s;
}

// Each case fills a send group; the receive group must render exactly as the send group
// did (names, kinds and values, in order) and compare equal to it.
const std::vector<std::pair<const char*, std::function<void(Message&)>>>& cases() {
    static const std::vector<std::pair<const char*, std::function<void(Message&)>>> table = {
        {"integer extremes",
         [](Message& m) {
             m.add_member(S, "lo", static_cast<signed char>(-128));
             m.add_member(S, "hi", static_cast<signed char>(127));
             m.add_member(S, "v1", static_cast<unsigned char>(255));
             m.add_member(S, "v2", static_cast<short>(-32768));
             m.add_member(S, "v3", static_cast<unsigned short>(65535));
             m.add_member(S, "v4", std::numeric_limits<int>::min());
             m.add_member(S, "v5", 0xFEDCBA98u);
             m.add_member(S, "v6", std::numeric_limits<long>::min() + 1);
             m.add_member(S, "v7", 0xFFFFFFFFFFFFFFFEul);
             m.add_member(S, "t", true);
             m.add_member(S, "f", false);
             m.add_member(S, "pi", 3.141592653589793);
         }},
        {"strings with any bytes, binary, date and file",
         [](Message& m) {
             m.add_member(S, "empty", std::string());
             m.add_member(S, "bytes", std::string("a\0b\xff\"\\", 6));
             m.add_member_and_own(S, "bin", new Tm_binary(std::vector<unsigned char>{0, 1, 254, 255}));
             m.add_member_and_own(S, "when", new Tm_date(-1234567890123L));
             m.add_member_and_own(S, "doc", new Tm_file("a.txt", {'h', 'i'}));
         }},
        {"nested structs",
         [](Message& m) {
             auto* outer = new Tm_struct;
             outer->add_member_and_own("inner", make_inner());
             outer->add_member("after", 5u);
             m.add_member_and_own(S, "outer", outer);
         }},
        {"uniform arrays of every packed kind",
         [](Message& m) {
             auto* a8 = new Tm_array;
             for (int v : {-1, 0, 127}) a8->add_member(static_cast<signed char>(v));
             auto* a16 = new Tm_array;
             for (int v : {-300, 300}) a16->add_member(static_cast<short>(v));
             auto* u64 = new Tm_array;
             for (unsigned long v : {0ul, ~0ul}) u64->add_member(v);
             auto* b = new Tm_array;
             for (bool v : {true, false, true}) b->add_member(v);
             m.add_member_and_own(S, "a8", a8);
             m.add_member_and_own(S, "a16", a16);
             m.add_member_and_own(S, "u64", u64);
             m.add_member_and_own(S, "b", b);
         }},
        {"arrays of structs, strings and arrays",
         [](Message& m) {
             auto* structs = new Tm_array;
             structs->add_member_and_own(make_inner());
             structs->add_member_and_own(make_inner());
             auto* strings = new Tm_array;
             strings->add_member("one");
             strings->add_member(std::string("two"));
             auto* grid = new Tm_array;
             for (int row = 0; row < 2; ++row) {
                 auto* r = new Tm_array;
                 for (int col = 0; col < 3; ++col) r->add_member(row * 10 + col);
                 grid->add_member_and_own(r);
             }
             m.add_member_and_own(S, "structs", structs);
             m.add_member_and_own(S, "strings", strings);
             m.add_member_and_own(S, "grid", grid);
         }},
        {"mixed and empty arrays",
         [](Message& m) {
             auto* mixed = new Tm_array;
             mixed->add_member(1);
             mixed->add_member("two");
             mixed->add_member(3.0);
             mixed->add_member_and_own(new Tm_struct);
             mixed->add_member(static_cast<unsigned char>(9));
             m.add_member_and_own(S, "mixed", mixed);
             m.add_member_and_own(S, "none", new Tm_array);
         }},
        {"nested message value keeps both groups, kind and name",
         [](Message& m) {
             Message inner;
             inner.set_msg_type(Message::TMT_RESPONSE);
             inner.set_request_name("Inner.Call");
             inner.add_member(S, "asked", 1);
             inner.add_member(R, "answered", std::string("yes"));
             m.add_member_and_own(S, "msg", new Tm_message(inner));
         }},
        {"repeated names keep their order",
         [](Message& m) {
             m.add_member(S, "dup", 1);
             m.add_member(S, "other", 2);
             m.add_member(S, "dup", 3);
         }},
    };
    return table;
}

TEST(CodecRoundTrip, EveryCaseReadsBackAsSent) {
    Message all;
    all.set_msg_type(Message::TMT_RESPONSE);
    for (const auto& [what, build] : cases()) {
        SCOPED_TRACE(what);
        build(all);
        for (bool meta : {false, true}) {
            Message sent;
            sent.set_request_name("Module.Method");
            build(sent);
            if (meta) {
                ASSERT_TRUE(sent.create_send_member_string_meta());
            }
            const Message received = round_trip(sent);
            EXPECT_EQ(received.get_request_name(), "Module.Method");
            EXPECT_EQ(received.get_member_count(S), 0);
            EXPECT_EQ(tmsg::to_json(received.get_group(R)), tmsg::to_json(sent.get_group(S)));
            EXPECT_TRUE(received.get_group(R).equals(sent.get_group(S)));
        }
    }
    const Message received = round_trip(all);
    EXPECT_EQ(received.get_msg_type(), Message::TMT_RESPONSE);
    EXPECT_EQ(tmsg::to_json(received.get_group(R)), tmsg::to_json(all.get_group(S)));
}

// Doubles keep their bits: negative zero and NaN included.
TEST(CodecRoundTrip, DoublesKeepTheirBits) {
    Message sent;
    sent.add_member(S, "neg0", -0.0);
    sent.add_member(S, "inf", std::numeric_limits<double>::infinity());
    sent.add_member(S, "nan", std::numeric_limits<double>::quiet_NaN());
    const Message received = round_trip(sent);
    EXPECT_TRUE(std::signbit(received.get_member_double(R, "neg0")));
    EXPECT_EQ(received.get_member_double(R, "inf"), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(received.get_member_double(R, "nan")));
}

TEST(CodecRoundTrip, NameTableIsTheSendCatalogThenUnknownNames) {
    Message sent;
    sent.get_send_member_string(S)->add("unused");
    sent.get_send_member_string(S)->add("b");
    sent.add_member(S, "a", 1);
    sent.add_member(S, "b", 2);
    const Message received = round_trip(sent);
    EXPECT_EQ(received.get_send_member_string(R)->names(), (std::vector<std::string>{"unused", "b", "a"}));
    EXPECT_EQ(received.get_member_int32(R, "a"), 1);
    EXPECT_EQ(received.get_member_int32(R, "b"), 2);
}

TEST(CodecRoundTrip, EncodeAppendsAndDecodeReplacesOnlyTheReceiveGroup) {
    Message sent;
    sent.add_member(S, "v", 1);
    std::vector<unsigned char> bytes{0xAA};
    tmsg::encode(sent, bytes);
    EXPECT_EQ(bytes[0], 0xAA);
    EXPECT_EQ(std::vector<unsigned char>(bytes.begin() + 1, bytes.end()), tmsg::encode(sent));

    Message target;
    target.add_member(S, "mine", 5);
    target.add_member(R, "old", 6);
    tmsg::decode(bytes.data() + 1, bytes.size() - 1, target);
    EXPECT_EQ(target.get_member_int32(S, "mine"), 5);
    EXPECT_EQ(target.get_member_index(R, "old"), -1);
    EXPECT_EQ(target.get_member_int32(R, "v"), 1);
}

TEST(CodecRoundTrip, EncodingIsDeterministicAndStartsWithMagicAndVersion) {
    Message sent;
    sent.add_member(S, "v", 1);
    const std::vector<unsigned char> a = tmsg::encode(sent);
    EXPECT_EQ(a, tmsg::encode(sent));
    ASSERT_GE(a.size(), 3u);
    EXPECT_EQ(a[0], 'T');
    EXPECT_EQ(a[1], 'M');
    EXPECT_EQ(a[2], tmsg::kWireVersion);
}

// Decoded values are dropped with their message at once; the receive group itself may still
// grow, be copied, cleared and decoded into again, and copies outlive the original.
TEST(CodecRoundTrip, DecodedGroupsGrowAndCopiesOutliveTheMessage) {
    Message sent;
    // Texts of 0 to 99 characters: both sides of what a string holds in its own buffer.
    for (int i = 0; i < 100; ++i) sent.add_member(S, "m" + std::to_string(i), std::string(i, 'a'));
    sent.add_member_and_own(S, "inner", make_inner());
    Message nested;
    nested.add_member(R, "deep", std::string(40, 'd'));
    sent.add_member_and_own(S, "msg", new Tm_message(nested));
    Message copy;
    {
        Message received = round_trip(sent);
        for (int i = 0; i < 100; ++i) received.add_member(R, "more", i);
        copy = received;
        received.clear(R);
        received.add_member(R, "again", 1);
        EXPECT_EQ(received.get_member_int32(R, "again"), 1);
        tmsg::decode(tmsg::encode(sent), received);
        EXPECT_EQ(received.get_member_string(R, "m7"), std::string(7, 'a'));
    }
    EXPECT_EQ(copy.get_member_count(R), 202);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(copy.get_member_string(R, "m" + std::to_string(i)), std::string(i, 'a'));
    EXPECT_EQ(copy.get_member_struct(R, "inner")->get_member_string("label"), "inner");
    const Message* deep = copy.get_group(R).get_member_message("msg");
    EXPECT_EQ(deep->get_member_string(R, "deep"), std::string(40, 'd'));
}

// Decoded uniform arrays of any length (short ones are held in the array itself, longer
// ones beside it) survive copying, assignment in every direction, growth and their message.
TEST(CodecRoundTrip, DecodedUniformArraysCopyAssignAndGrow) {
    const std::vector<int> lengths = {0, 1, 13, 14, 200, 3000};
    Message sent;
    for (int n : lengths) {
        auto* a = new Tm_array;
        for (int i = 0; i < n; ++i) a->add_member(static_cast<unsigned char>(i * 7));
        sent.add_member_and_own(S, "a" + std::to_string(n), a);
    }
    auto expect_bytes = [](const Tm_array& a, int n) {
        ASSERT_EQ(a.get_member_count(), n);
        for (int i = 0; i < n; ++i) ASSERT_EQ(a.get_member_uint8(i), static_cast<unsigned char>(i * 7));
    };
    std::vector<Tm_array> copies;
    {
        const Message received = round_trip(sent);
        for (int n : lengths) copies.push_back(*received.get_member_array(R, "a" + std::to_string(n)));
    }
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        for (std::size_t j = 0; j < lengths.size(); ++j) {
            SCOPED_TRACE(std::to_string(lengths[i]) + " over " + std::to_string(lengths[j]));
            Tm_array target = copies[j];
            target = copies[i];
            expect_bytes(target, lengths[i]);
            EXPECT_TRUE(target.equals(copies[i]));
            target.add_member(static_cast<unsigned char>(99));
            EXPECT_EQ(target.get_member_uint8(lengths[i]), 99);
            target = copies[i];
            expect_bytes(target, lengths[i]);
        }
    }
    Message again;
    for (std::size_t i = 0; i < lengths.size(); ++i)
        again.add_member_and_own(S, "a" + std::to_string(lengths[i]), copies[i].clone());
    EXPECT_EQ(tmsg::encode(again), tmsg::encode(sent));
}

TEST(CodecRoundTrip, LongStringsAndLargeArraysUseMultiByteLengths) {
    Message sent;
    const std::string text(100000, 'x');
    sent.add_member(S, "text", text);
    auto* big = new Tm_array;
    big->reserve(70000);
    for (int i = 0; i < 70000; ++i) big->add_member(static_cast<unsigned short>(i));
    sent.add_member_and_own(S, "big", big);
    const Message received = round_trip(sent);
    EXPECT_EQ(received.get_member_string(R, "text"), text);
    const Tm_array* a = received.get_member_array(R, "big");
    ASSERT_EQ(a->get_member_count(), 70000);
    EXPECT_EQ(a->get_member_uint16(69999), static_cast<unsigned short>(69999));
}

}  // namespace
