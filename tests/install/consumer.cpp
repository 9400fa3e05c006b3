// A program that uses the installed package only: builds a stream block's modifiers, makes
// frames both ways, and sends the block through a request and the wire codec.
#include <cstdio>
#include <sstream>
#include <vector>

#include "common/FramePlan.h"
#include "common/StreamBlockModifiers.h"
#include "interfaces/generator_3_bll.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"

int main() {
    Generator_3_bll::streamBlock_s block;
    block.name = "consumer";
    Generator_3_bll::rangeModifier_s range;
    range.modIndex = 1;
    range.offset = 2;
    range.initialValue.data = {0x10};
    range.stepValue.data = {0x01};
    range.mask.data = {0xFF};
    range.recycleCount = 4;
    block.rangeModifiers.push_back(range);

    vrm::common::StreamBlockModifiers mods(block);
    std::ostringstream errors;
    if (!mods.Validate(&errors)) {
        std::fprintf(stderr, "invalid: %s", errors.str().c_str());
        return 1;
    }
    const std::vector<unsigned char> frameTemplate(8, 0);
    mods.SetFieldParamsFromFrameStart(static_cast<unsigned int>(frameTemplate.size()));
    const vrm::common::FramePlan plan = mods.MakeFramePlan(frameTemplate);
    std::vector<unsigned char> stamped(plan.FrameLength() * 5);
    plan.Stamp(0, 5, stamped.data(), plan.FrameLength());
    mods.Reset();
    for (unsigned int i = 0; i < 5; ++i) {
        std::vector<unsigned char> frame = frameTemplate;
        mods.ModifyBytes(frame);
        mods.Next();
        const unsigned char want = static_cast<unsigned char>(0x10 + i % 4);
        if (frame[2] != want || stamped[i * plan.FrameLength() + 2] != want) {
            std::fprintf(stderr, "frame %u: byte 2 is %02x, plan %02x, want %02x\n", i, frame[2],
                         stamped[i * plan.FrameLength() + 2], want);
            return 1;
        }
    }

    Message request;
    Generator_3_bll::create_req_SetStreamBlock(&request, {block}, false, true);
    Message far;
    tmsg::decode(tmsg::encode(request), far);
    std::printf("%s: %zu bytes on the wire, frames as expected\n", far.get_request_name().c_str(),
                tmsg::encode(request).size());
    return 0;
}
