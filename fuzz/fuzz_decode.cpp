// libFuzzer target: decoding arbitrary bytes must never crash; refusals are Tm_exception.
#include <cstddef>
#include <cstdint>

#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "platform/Tm_json.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Message m;
    try {
        tmsg::decode(data, size, m);
        (void)tmsg::to_json(m);
    } catch (const Tm_exception&) {
    }
    return 0;
}
