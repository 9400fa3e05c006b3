// libFuzzer target: decoding arbitrary bytes must never crash; refusals are Tm_exception.
// The heap that decoding takes at its peak, the decoded message included, stays within the
// bound that Tm_codec.h states (measured by a counting global allocator).
// Whatever decodes must also render, and must survive another trip through the codec
// unchanged (checked on the bytes, so NaN payloads compare too).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "platform/Tm_json.h"
#include "tests/support/AllocationMeter.h"

namespace {

// The message as a member of an otherwise empty message, encoded.
std::vector<unsigned char> wrapped(const Message& m) {
    Message outer;
    outer.add_member_and_own(Message::TMG_SEND, "m", new Tm_message(m));
    return tmsg::encode(outer);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Message m;
    bool refused = false;
    const std::size_t peak = alloc_meter::peak_of([&] {
        try {
            tmsg::decode(data, size, m);
        } catch (const Tm_exception&) {
            refused = true;
        }
    });
    if (peak > tmsg::kDecodeBytesPerInputByte * size + tmsg::kDecodeFixedBytes) std::abort();
    if (refused) return 0;
    (void)tmsg::to_json(m, 2);
    std::vector<unsigned char> first;
    try {
        first = wrapped(m);
    } catch (const Tm_exception&) {
        return 0;  // one level deeper than the limit allows
    }
    Message back;
    tmsg::decode(first, back);  // an exception here is a finding
    if (wrapped(*back.get_group(Message::TMG_RECV).get_member_message("m")) != first) std::abort();
    return 0;
}
