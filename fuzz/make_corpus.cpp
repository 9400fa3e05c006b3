// Writes a few valid encodings as seeds for the decode fuzzer, one file per message.
#include <cstdio>
#include <string>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_codec.h"

namespace {

constexpr auto S = Message::TMG_SEND;

Message scalars() {
    Message m;
    m.set_request_name("Module.Scalars");
    m.add_member(S, "i8", static_cast<signed char>(-5));
    m.add_member(S, "u8", static_cast<unsigned char>(200));
    m.add_member(S, "i16", static_cast<short>(-300));
    m.add_member(S, "u16", static_cast<unsigned short>(60000));
    m.add_member(S, "i32", -70000);
    m.add_member(S, "u32", 4000000000u);
    m.add_member(S, "i64", -5000000000L);
    m.add_member(S, "u64", 18000000000000000000ul);
    m.add_member(S, "d", 2.5);
    m.add_member(S, "b", true);
    m.add_member(S, "s", std::string("text"));
    m.add_member_and_own(S, "bin", new Tm_binary(std::vector<unsigned char>{0, 1, 2, 255}));
    m.add_member_and_own(S, "date", new Tm_date(1700000000000000L));
    m.add_member_and_own(S, "file", new Tm_file("a.cfg", {'k', '=', 'v'}));
    return m;
}

Message nested() {
    Message m;
    m.set_msg_type(Message::TMT_RESPONSE);
    m.set_request_name("Module.Nested");
    auto* outer = new Tm_struct;
    auto* inner = new Tm_struct;
    inner->add_member("x", 1);
    inner->add_member("name", std::string("in"));
    outer->add_member_and_own("inner", inner);
    auto* bytes = new Tm_array;
    for (int i = 0; i < 16; ++i) bytes->add_member(static_cast<unsigned char>(i * 16));
    outer->add_member_and_own("bytes", bytes);
    auto* structs = new Tm_array;
    for (int i = 0; i < 3; ++i) {
        auto* s = new Tm_struct;
        s->add_member("index", static_cast<unsigned int>(i));
        s->add_member("on", i % 2 == 0);
        structs->add_member_and_own(s);
    }
    outer->add_member_and_own("rows", structs);
    auto* mixed = new Tm_array;
    mixed->add_member(1);
    mixed->add_member("two");
    mixed->add_member(3.0);
    mixed->add_member_and_own(new Tm_array);
    outer->add_member_and_own("mixed", mixed);
    m.add_member_and_own(S, "outer", outer);
    return m;
}

Message with_message() {
    Message inner;
    inner.set_request_name("Inner.Call");
    inner.add_member(S, "arg", 7u);
    inner.add_member(Message::TMG_RECV, "result", std::string("ok"));
    Message m;
    m.set_request_name("Module.Wrapped");
    m.add_member_and_own(S, "msg", new Tm_message(inner));
    auto* strings = new Tm_array;
    strings->add_member("a");
    strings->add_member("bc");
    m.add_member_and_own(S, "strings", strings);
    return m;
}

Message empty() {
    Message m;
    m.set_request_name("Module.Empty");
    return m;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string dir = argc > 1 ? argv[1] : ".";
    const std::vector<std::pair<const char*, Message>> seeds = {
        {"scalars", scalars()}, {"nested", nested()}, {"message", with_message()}, {"empty", empty()}};
    for (const auto& [name, message] : seeds) {
        Message m = message;
        m.create_send_member_string_meta();
        const std::vector<unsigned char> bytes = tmsg::encode(m);
        const std::string path = dir + "/" + name + ".bin";
        std::FILE* f = std::fopen(path.c_str(), "wb");
        if (!f || std::fwrite(bytes.data(), 1, bytes.size(), f) != bytes.size() || std::fclose(f) != 0) {
            std::perror(path.c_str());
            return 1;
        }
    }
    return 0;
}
