// Decoding bytes that are not a valid encoding: every refusal is a Tm_exception naming the
// byte offset, and the target message keeps what it had.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"

namespace {

using Bytes = std::vector<unsigned char>;
constexpr auto R = Message::TMG_RECV;
constexpr auto S = Message::TMG_SEND;

// A request with an empty name and the name table {"a", "b"}; the body starts at byte 10.
Bytes framed(const Bytes& body) {
    Bytes b{'T', 'M', 1, 0, 0, 2, 1, 'a', 1, 'b'};
    for (unsigned char byte : body) b.push_back(byte);
    return b;
}

// A message that holds something in its receive group, to show that a refused decode
// leaves it alone.
Message prefilled() {
    Message m;
    m.set_msg_type(Message::TMT_RESPONSE);
    m.set_request_name("before");
    m.add_member(R, "kept", 42);
    m.get_send_member_string(R)->add("kept");
    return m;
}

void expect_untouched(const Message& m) {
    EXPECT_TRUE(m.equals(prefilled()));
    EXPECT_EQ(m.get_send_member_string(R)->names(), std::vector<std::string>{"kept"});
}

// The text of the refusal, or a marker when nothing was thrown.
std::string refusal(const Bytes& bytes, Message& target) {
    try {
        tmsg::decode(bytes.data(), bytes.size(), target);
    } catch (const Tm_exception& e) {
        return e.what();
    }
    return "<accepted>";
}

struct Malformed {
    const char* what;
    Bytes bytes;
    std::size_t offset;
    const char* fragment;
};

TEST(CodecMalformed, RefusalsNameTheOffsetAndTheProblem) {
    const std::vector<Malformed> cases = {
        {"empty input", {}, 0, "bad magic"},
        {"one byte", {'T'}, 0, "bad magic"},
        {"wrong magic", {'X', 'M', 1, 0, 0, 0, 0}, 0, "bad magic"},
        {"newer version", {'T', 'M', 2, 0, 0, 0, 0}, 2, "unsupported version 2"},
        {"version zero", {'T', 'M', 0, 0, 0, 0, 0}, 2, "unsupported version 0"},
        {"unknown message kind", {'T', 'M', 1, 7, 0, 0, 0}, 3, "unknown message type 7"},
        {"request name longer than the input", {'T', 'M', 1, 0, 0x7F, 'x'}, 4, "length 127 exceeds"},
        {"name table count far beyond the input",
         {'T', 'M', 1, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F},
         5,
         "name count 4294967295 exceeds"},
        {"name twice in the table", {'T', 'M', 1, 0, 0, 2, 1, 'a', 1, 'a', 0}, 8, "appears twice"},
        {"member count far beyond the input",
         framed({0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x01}), 10,
         "member count 9223372036854775808 exceeds"},
        {"varint of eleven bytes", framed({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01}),
         10, "varint"},
        {"varint cut off", framed({0x80}), 11, "unexpected end of input"},
        {"name index outside the table", framed({1, 2, 1, 0}), 11,
         "name index 2 outside the name table of 2"},
        {"huge name index", framed({1, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F, 1, 0}), 11, "name index 4294967295"},
        {"unknown member tag", framed({1, 0, 17, 0}), 12, "unknown kind tag 17"},
        {"mixed marker as a member tag", framed({1, 0, 0xFF, 0}), 12, "unknown kind tag 255"},
        {"bool byte 2", framed({1, 0, 9, 2}), 13, "bool byte 2 is neither 0 nor 1"},
        {"bool byte 255 in an array", framed({1, 0, 12, 2, 9, 1, 255}), 16, "bool byte 255"},
        {"int32 cut short", framed({1, 0, 4, 1, 2}), 13, "unexpected end of input (need 4 bytes, 2 left)"},
        {"string length far beyond the input", framed({1, 0, 10, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F, 'x'}), 13,
         "length 4294967295 exceeds"},
        {"binary length one beyond the input", framed({1, 0, 13, 3, 1, 2}), 13, "length 3 exceeds"},
        {"array count far beyond the input",
         framed({1, 0, 12, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01, 1}), 13,
         "array count 18446744073709551615 exceeds"},
        {"array count beyond what its element size allows", framed({1, 0, 12, 2, 6, 1, 2, 3, 4, 5, 6, 7, 8}),
         13, "array count 2 exceeds what the remaining 8 bytes can hold"},
        {"unknown array element tag", framed({1, 0, 12, 1, 0x20, 0}), 14, "unknown kind tag 32"},
        {"unknown tag inside a mixed array", framed({1, 0, 12, 1, 0xFF, 0xFF, 0}), 15,
         "unknown kind tag 255"},
        {"nested message of unknown kind", framed({1, 0, 16, 5, 0, 0, 0}), 13, "unknown message type 5"},
        {"name index outside the table in a nested struct", framed({1, 0, 11, 1, 9, 1, 0}), 14,
         "name index 9"},
        {"trailing byte", framed({0, 0}), 11, "1 trailing bytes"},
        {"trailing bytes after members", framed({1, 1, 1, 7, 0xAA, 0xBB, 0xCC}), 14, "3 trailing bytes"},
    };
    for (const Malformed& c : cases) {
        SCOPED_TRACE(c.what);
        Message target = prefilled();
        const std::string text = refusal(c.bytes, target);
        EXPECT_NE(text.find("decode error at byte " + std::to_string(c.offset) + ":"), std::string::npos)
            << text;
        EXPECT_NE(text.find(c.fragment), std::string::npos) << text;
        expect_untouched(target);
    }
}

// A message touching every kind, so that every cut point lands inside some structure.
Bytes rich_encoding() {
    Message m;
    m.set_request_name("Module.Rich");
    m.add_member(S, "i8", static_cast<signed char>(-3));
    m.add_member(S, "u16", static_cast<unsigned short>(500));
    m.add_member(S, "i64", -5L);
    m.add_member(S, "d", 0.5);
    m.add_member(S, "b", true);
    m.add_member(S, "s", std::string("text"));
    m.add_member_and_own(S, "bin", new Tm_binary(Bytes{1, 2, 3}));
    m.add_member_and_own(S, "date", new Tm_date(99));
    m.add_member_and_own(S, "file", new Tm_file("f", {'z'}));
    auto* inner = new Tm_struct;
    inner->add_member("u32", 7u);
    auto* arr = new Tm_array;
    arr->add_member(1);
    arr->add_member("mixed");
    inner->add_member_and_own("mixed", arr);
    auto* packed = new Tm_array;
    packed->add_member(static_cast<unsigned char>(1));
    packed->add_member(static_cast<unsigned char>(2));
    inner->add_member_and_own("packed", packed);
    m.add_member_and_own(S, "inner", inner);
    Message nested;
    nested.add_member(S, "x", 1);
    nested.add_member(R, "y", 2u);
    m.add_member_and_own(S, "msg", new Tm_message(nested));
    m.create_send_member_string_meta();
    return tmsg::encode(m);
}

TEST(CodecMalformed, EveryTruncationIsRefused) {
    const Bytes full = rich_encoding();
    {
        Message ok;
        ASSERT_NO_THROW(tmsg::decode(full, ok));
    }
    for (std::size_t n = 0; n < full.size(); ++n) {
        SCOPED_TRACE("cut at " + std::to_string(n));
        Message target = prefilled();
        const Bytes cut(full.begin(), full.begin() + static_cast<std::ptrdiff_t>(n));
        const std::string text = refusal(cut, target);
        EXPECT_EQ(text.rfind("decode error at byte ", 0), 0u) << text;
        expect_untouched(target);
    }
}

// `levels` structs nested inside each other under the top-level group.
Bytes nested_structs(int levels) {
    Bytes body{1};
    for (int i = 0; i < levels; ++i) {
        body.push_back(0);   // name "a"
        body.push_back(11);  // struct
        body.push_back(i + 1 < levels ? 1 : 0);
    }
    return framed(body);
}

TEST(CodecMalformed, NestingIsLimited) {
    Message target;
    EXPECT_NO_THROW(tmsg::decode(nested_structs(tmsg::kMaxDepth), target));
    const Tm_struct* s = &target.get_group(R);
    int depth = 0;
    while (s->get_member_count() > 0) {
        s = s->get_member_struct("a");
        ++depth;
    }
    EXPECT_EQ(depth, tmsg::kMaxDepth);

    Message refused = prefilled();
    const std::string text = refusal(nested_structs(tmsg::kMaxDepth + 1), refused);
    // The 65th struct's tag sits at 10 + 1 + 64 * 3 + 1.
    EXPECT_NE(text.find("decode error at byte 204: values nested deeper than 64 levels"), std::string::npos)
        << text;
    expect_untouched(refused);

    // Arrays count as levels too: [[[...]]] one deeper than allowed.
    Bytes body{1, 0, 12};
    for (int i = 1; i < tmsg::kMaxDepth + 1; ++i) {
        body.push_back(1);
        body.push_back(12);
    }
    body.push_back(0);
    body.push_back(0xFF);
    EXPECT_NE(refusal(framed(body), refused).find("nested deeper than 64"), std::string::npos);
}

TEST(CodecMalformed, EncoderRefusesWhatTheDecoderWouldRefuse) {
    auto build = [](int levels) {
        Message m;
        Tm_struct* innermost = new Tm_struct;
        for (int i = 1; i < levels; ++i) {
            auto* outer = new Tm_struct;
            outer->add_member_and_own("a", innermost);
            innermost = outer;
        }
        m.add_member_and_own(S, "a", innermost);
        return m;
    };
    Message ok;
    EXPECT_NO_THROW(tmsg::decode(tmsg::encode(build(tmsg::kMaxDepth)), ok));
    Bytes out{7, 7};
    try {
        tmsg::encode(build(tmsg::kMaxDepth + 1), out);
        ADD_FAILURE() << "no exception";
    } catch (const Tm_exception& e) {
        EXPECT_NE(std::string(e.what()).find("nested deeper than 64"), std::string::npos) << e.what();
    }
    EXPECT_EQ(out, (Bytes{7, 7}));
}

TEST(CodecMalformed, NullInputWithLengthIsRefused) {
    Message target = prefilled();
    EXPECT_THROW(tmsg::decode(nullptr, 5, target), Tm_exception);
    expect_untouched(target);
}

}  // namespace
