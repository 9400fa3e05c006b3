// Decoding takes memory bounded by the input's size (Tm_codec.h), measured with a counting
// global allocator.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "support/AllocationMeter.h"

namespace {

using Bytes = std::vector<unsigned char>;

void varint(Bytes& b, std::size_t v) {
    while (v >= 0x80) {
        b.push_back(static_cast<unsigned char>(v | 0x80));
        v >>= 7;
    }
    b.push_back(static_cast<unsigned char>(v));
}

// A request whose name table holds one name of `nameLength` characters, and whose members,
// `members` uint8 members at the top level or inside one struct, all carry that name.
Bytes shared_name_message(std::size_t nameLength, std::size_t members, bool nested) {
    Bytes b{'T', 'M', tmsg::kWireVersion, 0, 0};
    varint(b, 1);
    varint(b, nameLength);
    b.insert(b.end(), nameLength, 'n');
    if (nested) {
        varint(b, 1);
        b.insert(b.end(), {0, TMV_STRUCT});
    }
    varint(b, members);
    for (std::size_t i = 0; i < members; ++i) b.insert(b.end(), {0, TMV_UINT8, static_cast<unsigned char>(i)});
    return b;
}

struct Case {
    const char* what;
    std::size_t nameLength, members;
    bool nested;
};

TEST(CodecMemory, ALongNameSharedByManyMembersIsStoredOnce) {
    const Case cases[] = {
        {"top-level members", 4000, 12000, false},
        {"members of a nested struct", 4000, 12000, true},
        {"a longer name", 60000, 40000, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Bytes input = shared_name_message(c.nameLength, c.members, c.nested);
        Message m;
        const std::size_t peak = alloc_meter::peak_of([&] { tmsg::decode(input, m); });
        const Tm_struct& group = c.nested ? *m.get_group(Message::TMG_RECV).get_member_struct(std::string(c.nameLength, 'n'))
                                          : m.get_group(Message::TMG_RECV);
        ASSERT_EQ(group.get_member_count(), static_cast<int>(c.members));
        EXPECT_EQ(group.get_member_name(static_cast<int>(c.members) - 1), std::string(c.nameLength, 'n'));
        EXPECT_LE(peak, tmsg::kDecodeBytesPerInputByte * input.size() + tmsg::kDecodeFixedBytes);
        // The name's text is held a few times (table, catalog), not once per member.
        EXPECT_LT(peak, 16 * input.size());
    }
}

}  // namespace
