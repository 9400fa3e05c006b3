// libFuzzer target: the modifier engine under hostile stream blocks (EngineCase.h). Builds,
// validates, places and makes a few frames through the per-frame path and through the frame
// plan, which must agree byte for byte; the frame-by-index path runs too. The engine may refuse
// with its documented exceptions (std::invalid_argument, std::out_of_range,
// std::logic_error); validation never throws.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "common/FramePlan.h"
#include "common/StreamBlockModifiers.h"
#include "fuzz/EngineCase.h"
#include "interfaces/generator_3_bll_records.h"

namespace {

using Frame = std::vector<unsigned char>;
using vrm::common::FramePlan;
using vrm::common::StreamBlockModifiers;

// Frames walked one by one to reach a first frame to compare with the plan.
constexpr uint32_t kSequenceLimit = 1u << 14;

// Runs f; true when the engine refused with a documented exception.
template <class F>
bool refused(F&& f) {
    try {
        f();
        return false;
    } catch (const std::length_error&) {
        std::abort();  // a size nobody documented
    } catch (const std::domain_error&) {
        std::abort();
    } catch (const std::logic_error&) {
        return true;  // std::invalid_argument, std::out_of_range and misuse
    }
}

void place(StreamBlockModifiers& mods, const fuzzing::EngineCase& c) {
    using Place = fuzzing::EngineCase::Place;
    switch (c.place) {
        case Place::FromFrameStart:
            mods.SetFieldParamsFromFrameStart(static_cast<unsigned int>(c.frame.size()));
            break;
        case Place::PerModifier:
            for (std::size_t i = 0; i < mods.Size(); ++i)
                mods.SetFieldParams(mods.At(i).GetModIndex(), c.placements[i].bitOffset, c.placements[i].bitLength);
            break;
        case Place::Listed:
            for (const auto& p : c.placements) mods.SetFieldParams(p.modIndex, p.bitOffset, p.bitLength);
            break;
    }
}

// Frames 0 .. count - 1 of the per-frame path, as far as it gets before a refusal.
std::vector<Frame> per_frame(StreamBlockModifiers& mods, const Frame& tmpl, unsigned int count) {
    std::vector<Frame> frames;
    refused([&] {
        mods.Reset();
        for (unsigned int k = 0; k < count; ++k) {
            Frame f = tmpl;
            mods.ModifyBytes(f);
            frames.push_back(f);
            mods.Next();
        }
    });
    return frames;
}

// The plan's frames first .. first + count - 1, with a guard byte between frames that must
// stay as it was.
std::vector<Frame> stamped(const FramePlan& plan, std::uint64_t first, unsigned int count) {
    const std::size_t length = plan.FrameLength();
    const std::size_t stride = length + 1;
    std::vector<unsigned char> out(stride * count, 0xA5);
    plan.Stamp(first, count, out.data(), stride);
    std::vector<Frame> frames;
    for (unsigned int k = 0; k < count; ++k) {
        const auto* begin = out.data() + k * stride;
        if (begin[length] != 0xA5) std::abort();
        frames.emplace_back(begin, begin + length);
    }
    return frames;
}

void compare_plan(StreamBlockModifiers& mods, const fuzzing::EngineCase& c, const std::vector<Frame>& frames,
                  const Frame* atFirst) {
    FramePlan plan;
    const bool planRefused = refused([&] { plan = mods.MakeFramePlan(c.frame); });
    // The plan refuses exactly what the per-frame path refuses on the first frame.
    if (planRefused != frames.empty()) std::abort();
    if (planRefused) return;
    if (plan.FrameLength() != c.frame.size()) std::abort();
    const std::vector<Frame> fromPlan = stamped(plan, 0, c.count);
    for (std::size_t k = 0; k < frames.size(); ++k) {
        if (fromPlan[k] != frames[k]) std::abort();
    }
    if (atFirst != nullptr && stamped(plan, c.first, 1)[0] != *atFirst) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzzing::EngineCase c = fuzzing::read_case(data, size);
    std::unique_ptr<StreamBlockModifiers> mods;
    if (refused([&] { mods = std::make_unique<StreamBlockModifiers>(c.block); })) return 0;

    bool valid = false;
    try {
        std::ostringstream errors;
        valid = mods->Validate(&errors);
        if (valid != errors.str().empty()) std::abort();
        if (mods->Validate(nullptr) != valid) std::abort();
    } catch (...) {
        std::abort();
    }

    if (valid && !refused([&] { place(*mods, c); })) {
        const std::vector<Frame> frames = per_frame(*mods, c.frame, c.count);
        // Frame `first` by the sequence when it is near (the plan is checked against it), and
        // by index, which only has to run: its values differ from the sequence's where a
        // masked step carries into the fixed bits, and a recycle period that wraps to 0 in
        // 32 bits is refused as misuse.
        Frame atFirst = c.frame;
        const bool nearFirst = c.first <= kSequenceLimit && !frames.empty() &&
                               !refused([&] {
                                   mods->Reset();
                                   for (uint32_t k = 0; k < c.first; ++k) mods->Next();
                                   mods->ModifyBytes(atFirst);
                               });
        Frame byIndex = c.frame;
        refused([&] { mods->ModifyBytesAtIndex(byIndex, c.first); });
        compare_plan(*mods, c, frames, nearFirst ? &atFirst : nullptr);
    }
    mods->ToRpc(c.block);
    return 0;
}
