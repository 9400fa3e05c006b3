#include "traffic/Port.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "traffic/BlockModifiers.h"
#include "traffic/FrameBytes.h"
#include "traffic/JsonRecord.h"
#include "traffic/Sequence.h"

namespace vrm::traffic {

namespace {

using Generator_3_bll::durationUnit_t;
using Generator_3_bll::genTxMode_t;
using Generator_3_bll::rateMode_t;

constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;
// Segments of a RANDOM port rate before they repeat.
constexpr std::uint64_t kRandomSegments = 4096;

void read_line(const Json& j, const std::string& path, PortInput& in) {
    if (!j.is_object()) throw InputError(path, "expected an object, got " + json_kind(j));
    for (const auto& item : j.items()) {
        const std::string sub = member_path(path, item.key());
        if (item.key() == "lineRate") {
            in.line.lineRate = read_integer<std::uint64_t>(item.value(), sub);
            if (in.line.lineRate == 0) throw InputError(sub, "a line rate of 0 sends nothing");
        } else if (item.key() == "overhead") {
            in.line.overhead = read_integer<std::uint32_t>(item.value(), sub);
        } else if (item.key() == "minimumGap") {
            in.line.minimumGap = read_integer<std::uint32_t>(item.value(), sub);
        } else if (item.key() == "frames") {
            in.frames = read_integer<std::uint64_t>(item.value(), sub);
        } else {
            throw InputError(sub, "unknown key (expected one of: lineRate, overhead, minimumGap, frames)");
        }
    }
    if (in.line.minimumGap > in.line.overhead) {
        throw InputError(member_path(path, "minimumGap"), "is more than the overhead, " + std::to_string(in.line.overhead));
    }
}

}  // namespace

PortInput parse_port(const std::string& text) {
    const Json doc = parse_json_document(text);
    if (!doc.is_object()) throw InputError("(document)", "expected an object, got " + json_kind(doc));
    PortInput in;
    for (const auto& item : doc.items()) {
        const std::string& key = item.key();
        const Json& v = item.value();
        if (key == "common") {
            read_record(v, key, in.common);
        } else if (key == "blocks") {
            if (!v.is_array()) throw InputError(key, "expected an array, got " + json_kind(v));
            for (std::size_t i = 0; i < v.size(); ++i) in.blocks.push_back(read_block(v[i], element_path(key, i)));
        } else if (key == "loadProfiles") {
            read_json(v, key, in.profiles);
        } else if (key == "bindings") {
            read_json(v, key, in.bindings);
        } else if (key == "sequence") {
            read_json(v, key, in.sequence);
        } else if (key == "host") {
            read_line(v, key, in);
        } else {
            throw InputError(key, "unknown key (expected one of: common, blocks, loadProfiles, bindings, sequence, host)");
        }
    }
    return in;
}

PortInput load_port(const std::string& file) { return parse_port(read_block_text(file)); }

std::vector<std::pair<std::size_t, std::size_t>> split_port_requests(const std::string& bytes) {
    std::vector<std::pair<std::size_t, std::size_t>> out;
    std::size_t at = 0;
    for (std::size_t k = 0; at < bytes.size(); ++k) {
        const std::string where = element_path("requests", k);
        if (bytes.size() - at < 4) {
            throw InputError(where, "a length needs 4 bytes, " + std::to_string(bytes.size() - at) + " are left");
        }
        std::uint32_t n = 0;
        for (unsigned b = 0; b < 4; ++b) n |= std::uint32_t{static_cast<unsigned char>(bytes[at + b])} << (8 * b);
        at += 4;
        if (n > bytes.size() - at) throw InputError(where, "a length of " + std::to_string(n) + " goes past the end of the file");
        out.emplace_back(at, n);
        at += n;
    }
    return out;
}

void append_port_request(std::vector<unsigned char>& out, const std::vector<unsigned char>& request) {
    const auto n = static_cast<std::uint32_t>(request.size());
    for (unsigned b = 0; b < 4; ++b) out.push_back(static_cast<unsigned char>(n >> (8 * b)));
    out.insert(out.end(), request.begin(), request.end());
}

bool add_port_request(Json& port, const std::string& name, Json& members) {
    // Request, its member, and the port file's key; lists are appended to.
    struct Section {
        const char* request;
        const char* member;
        const char* key;
        bool list;
    };
    static const Section sections[] = {
        {"Generator_3.SetCommonCfg", "config", "common", false},
        {"Generator_3.SetStreamBlock", "blocks", "blocks", true},
        {"Generator_3.SetLoadProfile", "loadProfile", "loadProfiles", true},
        {"Generator_3.StreamBlockLoadProfileBinding", "binding", "bindings", true},
        {"Generator_3.SetTrafficSequenceTable", "entries", "sequence", true},
    };
    for (const Section& s : sections) {
        if (name != s.request) continue;
        Json& value = members[s.member];
        if (!s.list) {
            port[s.key] = std::move(value);
        } else {
            for (auto& v : value) port[s.key].push_back(std::move(v));
        }
        return true;
    }
    return false;
}

Port::~Port() = default;

Port::Port(const PortInput& in, const ShapeOptions& options, std::uint64_t frames, std::uint64_t end) {
    const auto& common = in.common;
    // Profiles by id, and which block each binds.
    std::map<std::uint32_t, std::size_t> profiles;
    for (std::size_t p = 0; p < in.profiles.size(); ++p) {
        if (!profiles.emplace(in.profiles[p].loadProfileId, p).second) {
            throw InputError(element_path("loadProfiles", p) + ".loadProfileId",
                             "loadProfileId " + std::to_string(in.profiles[p].loadProfileId) + " is given twice");
        }
    }
    std::map<std::uint32_t, std::size_t> blockIds;
    for (std::size_t b = 0; b < in.blocks.size(); ++b) {
        if (!blockIds.emplace(in.blocks[b].block.blockID, b).second) {
            throw InputError(element_path("blocks", b) + ".blockID",
                             "blockID " + std::to_string(in.blocks[b].block.blockID) + " is given twice");
        }
    }
    std::map<std::uint32_t, std::size_t> bound;  // blockID -> profile position
    for (std::size_t i = 0; i < in.bindings.size(); ++i) {
        const auto& binding = in.bindings[i];
        const std::string path = element_path("bindings", i);
        if (blockIds.count(binding.streamBlockId) == 0) {
            throw InputError(path + ".streamBlockId", "no block has blockID " + std::to_string(binding.streamBlockId));
        }
        const auto p = profiles.find(binding.loadProfileId);
        if (p == profiles.end()) {
            throw InputError(path + ".loadProfileId", "no load profile has loadProfileId " + std::to_string(binding.loadProfileId));
        }
        if (!bound.emplace(binding.streamBlockId, p->second).second) {
            throw InputError(path + ".streamBlockId", "block " + std::to_string(binding.streamBlockId) + " is bound twice");
        }
    }

    // The blocks' frames.
    std::vector<std::size_t> positions;  // of the enabled blocks in the file
    for (std::size_t b = 0; b < in.blocks.size(); ++b) {
        if (!in.blocks[b].block.baseStream.enabled) continue;
        BlockInput block = in.blocks[b];
        if (!block.port) block.port = common;
        const std::string path = element_path("blocks", b);
        Block made;
        made.name = block.block.name.empty() ? "block " + std::to_string(block.block.blockID) : block.block.name;
        try {
            made.mods = std::make_unique<BlockModifiers>(block);
            if (!made.mods->Valid()) {
                throw BuildError(path + ": the block is invalid: " + made.mods->ValidationLines().front());
            }
            made.mods->PlaceFields(block);
            made.shaper = std::make_unique<FrameShaper>(block, made.mods->MakePlan(block), *made.mods, options);
        } catch (const InputError& e) {
            throw InputError(e.where().rfind(path, 0) == 0 ? e.where() : member_path(path, e.where()), e.what());
        }
        for (const auto& w : made.shaper->Warnings()) m_warnings.push_back(path + "." + w);
        m_maxLength = std::max(m_maxLength, made.shaper->MaxLength());
        m_signatures = m_signatures || made.shaper->SignsFrames();
        m_tagNames.push_back("block " + std::to_string(block.block.blockID) + " " + made.name);
        m_blocks.push_back(std::move(made));
        positions.push_back(b);
    }

    // Where the port stops.
    std::uint64_t limit = frames;
    std::uint64_t stop = end;
    bool repeatTable = true;  // a sequence table runs again and again unless DURATION is TABLE
    if (common.mode == genTxMode_t::DURATION) {
        if (common.duration.unit == durationUnit_t::SECONDS) {
            const u128 ns = u128{common.duration.duration} * kNanosecondsPerSecond;
            if (ns < stop) stop = static_cast<std::uint64_t>(ns);
        } else if (common.duration.unit == durationUnit_t::FRAMES) {
            limit = std::min(limit, common.duration.duration);
        } else if (common.duration.unit == durationUnit_t::TABLE) {
            if (in.sequence.empty()) throw InputError("common.duration.unit", "TABLE needs a sequence table");
            repeatTable = false;
        } else {
            throw InputError("common.duration.unit", "expected SECONDS, FRAMES or TABLE");
        }
    } else if (common.mode == genTxMode_t::STEP) {
        limit = std::min<std::uint64_t>(limit, common.stepSize);
    } else if (common.mode == genTxMode_t::MAX) {
        throw InputError("common.mode", "MAX is not a transmit mode");
    }
    if (!in.sequence.empty()) {
        m_timeline = MakeSequence(in, positions, repeatTable, limit, stop);
        return;
    }

    // Their timing.
    const bool randomRate = common.rate.rateMode == rateMode_t::RANDOM;
    std::size_t unbound = 0;
    for (const std::size_t b : positions) unbound += bound.count(in.blocks[b].block.blockID) == 0 ? 1 : 0;
    std::vector<BlockTiming> timings;
    long double load = 0;  // fraction of the line rate
    for (std::size_t k = 0; k < positions.size(); ++k) {
        const std::size_t b = positions[k];
        const auto found = bound.find(in.blocks[b].block.blockID);
        std::uint64_t meanNum = 0, meanDen = 1;
        m_blocks[k].shaper->MeanLength(meanNum, meanDen);
        BlockTiming t;
        std::uint32_t priority = 0;
        std::uint32_t burst = 0;
        LoadProfile_1_bll::rateUnit_t burstUnit{};
        std::uint64_t burstLoad = 0;
        std::string burstPath;
        if (found != bound.end()) {
            const auto& p = in.profiles[found->second];
            const std::string path = element_path("loadProfiles", found->second);
            t.steady = frame_interval(p.loadUnit, p.load, meanNum, meanDen, in.line, path + ".load");
            t.start = std::uint64_t{p.startDelay} * 1000;
            priority = p.priority;
            burst = p.burstSize;
            burstUnit = p.burstLoadUnit;
            burstLoad = p.burstLoad;
            burstPath = path + ".burstLoad";
        } else if (!randomRate) {
            t.steady = frame_interval(common.rate.fixed.rateUnit, common.rate.fixed.rate, meanNum, meanDen, in.line,
                                      "common.rate.fixed.rate");
            t.steady = scaled(t.steady, unbound, "common.rate.fixed.rate");
        } else {
            // A rate drawn anew every kSegmentFrames frames between the two rates' intervals,
            // in whole nanoseconds: segment s of block with blockID B has
            // fast + floor((slow - fast + 1) * (splitmix64(B * 2^32 XOR s) >> 32) / 2^32).
            const auto& r = common.rate.random;
            const Fraction lo = scaled(frame_interval(r.minRate.rateUnit, r.minRate.rate, meanNum, meanDen, in.line,
                                                     "common.rate.random.minRate.rate"),
                                      unbound, "common.rate.random.minRate.rate");
            const Fraction hi = scaled(frame_interval(r.maxRate.rateUnit, r.maxRate.rate, meanNum, meanDen, in.line,
                                                     "common.rate.random.maxRate.rate"),
                                      unbound, "common.rate.random.maxRate.rate");
            const std::uint64_t slow = std::max(lo.whole, hi.whole);
            const std::uint64_t fast = std::max<std::uint64_t>(1, std::min(lo.whole, hi.whole));
            const std::uint64_t key = std::uint64_t{in.blocks[b].block.blockID} << 32;
            u128 sum = 0;
            for (std::uint64_t seg = 0; seg < kRandomSegments; ++seg) {
                const std::uint64_t draw = splitmix64(key ^ seg) >> 32;
                const std::uint64_t i = fast + static_cast<std::uint64_t>((u128{slow - fast + 1} * draw) >> 32);
                t.segments.push_back(i);
                sum += i;
            }
            t.steady = with_parts(Fraction{sum, kRandomSegments});
        }
        if (burst <= 1 && common.schedParams.burstSize > 1 && t.segments.empty()) {
            burst = static_cast<std::uint32_t>(common.schedParams.burstSize);
            burstUnit = common.schedParams.burstLoad.rateUnit;
            burstLoad = common.schedParams.burstLoad.rate;
            burstPath = "common.schedParams.burstLoad.rate";
        }
        if (burst > 1) {
            t.burst = burst;
            t.inBurst = frame_interval(burstUnit, burstLoad, meanNum, meanDen, in.line, burstPath);
            // The burst must end before the next one starts: (burst - 1) * Ib + 1 <= burst * steady.
            const Fraction period = scaled(t.steady, burst, burstPath);
            if (times(burst - 1, t.inBurst) >= times(1, period)) {
                throw InputError(burstPath, "bursts of " + std::to_string(burst) +
                                                " frames at this load do not fit between bursts at the block's load");
            }
        }
        t.rank = 255 - priority;
        timings.push_back(t);
        const long double bitsPerNs =
            8.0L * (static_cast<long double>(meanNum) / static_cast<long double>(meanDen) + in.line.overhead) /
            (static_cast<long double>(t.steady.num) / static_cast<long double>(t.steady.den));
        load += bitsPerNs * 1e9L / static_cast<long double>(in.line.lineRate);
    }
    if (load > 1.0L + 1e-9L) {
        throw InputError(positions.empty() ? std::string("blocks") : std::string("loadProfiles"),
                         "the blocks' loads add up to " + std::to_string(static_cast<double>(load * 100)) +
                             "% of the line rate");
    }

    auto rates = std::make_unique<Schedule>(std::move(timings), limit, stop);
    m_rates = rates.get();
    m_timeline = std::move(rates);
}

std::unique_ptr<FrameTimeline> Port::MakeSequence(const PortInput& in, const std::vector<std::size_t>& positions,
                                                  bool repeat, std::uint64_t frames, std::uint64_t end) {
    if (!in.profiles.empty() || !in.bindings.empty()) {
        m_warnings.push_back("loadProfiles: not used: the sequence table times the frames");
    }
    std::map<std::uint32_t, std::uint32_t> byId;  // blockID -> position among the sending blocks
    for (std::size_t k = 0; k < positions.size(); ++k) {
        byId.emplace(in.blocks[positions[k]].block.blockID, static_cast<std::uint32_t>(k));
    }
    // Table index -> step (the first enabled entry at or after it).
    std::vector<std::uint32_t> stepAt(in.sequence.size() + 1, 0);
    std::vector<SequenceStep> steps;
    std::uint32_t enabled = 0;
    for (std::size_t e = 0; e < in.sequence.size(); ++e) {
        stepAt[e] = enabled;
        enabled += in.sequence[e].enabled ? 1 : 0;
    }
    stepAt[in.sequence.size()] = enabled;
    for (std::size_t e = 0; e < in.sequence.size(); ++e) {
        const auto& t = in.sequence[e];
        if (!t.enabled) continue;
        const std::string path = element_path("sequence", e);
        const auto b = byId.find(t.blockId);
        if (b == byId.end()) {
            throw InputError(path + ".blockId", "no sending block (baseStream.enabled) has blockID " + std::to_string(t.blockId));
        }
        SequenceStep s;
        s.block = b->second;
        s.burstSize = std::max<std::uint32_t>(1, t.burstSize);
        s.burstCount = std::max<std::uint32_t>(1, t.burstCount);
        std::uint64_t meanNum = 0, meanDen = 1;
        m_blocks[s.block].shaper->MeanLength(meanNum, meanDen);
        // A gap of 0 in any unit: back to back at the line rate.
        auto gap = [&](LoadProfile_1_bll::rateUnit_t unit, std::uint64_t value, const char* name) {
            if (value == 0) {
                return frame_interval(LoadProfile_1_bll::rateUnit_t::INTER_FRAME_GAP, in.line.minimumGap, meanNum, meanDen,
                                      in.line, path + "." + name);
            }
            return frame_interval(unit, value, meanNum, meanDen, in.line, path + "." + name);
        };
        s.frameGap = gap(t.interFrameGapUnit, t.interFrameGap, "interFrameGap");
        s.burstGap = gap(t.interBurstGapUnit, t.interBurstGap, "interBurstGap");
        s.entryGap = gap(t.interEntryGapUnit, t.interEntryGap, "interEntryGap");
        s.loopCount = t.loopCount;
        s.continuous = t.enableContinuousTransmission;
        if (t.loopCount > 0) {
            if (t.returnToIndex > e) {
                throw InputError(path + ".returnToIndex", "loops go back: " + std::to_string(t.returnToIndex) +
                                                              " is after this entry, " + std::to_string(e));
            }
            s.returnTo = stepAt[t.returnToIndex];
        }
        steps.push_back(s);
    }
    if (steps.empty()) throw InputError("sequence", "no entry is enabled");
    try {
        return std::make_unique<SequenceSchedule>(steps, m_blocks.size(), repeat, frames, end);
    } catch (const std::length_error& e) {
        throw InputError("sequence", e.what());
    }
}

struct Port::Scratch {
    FrameTimeline::Work work;
    FrameTimeline::Grouping grouping;
    std::vector<std::uint32_t> blocks, places;
    std::vector<unsigned char> bytes;
    std::vector<std::uint32_t> lengths;
    std::vector<std::uint64_t> times;
};

std::unique_ptr<Port::Scratch> Port::TakeScratch() const {
    std::lock_guard<std::mutex> lock(m_scratchMutex);
    if (m_spare.empty()) return std::make_unique<Scratch>();
    std::unique_ptr<Scratch> s = std::move(m_spare.back());
    m_spare.pop_back();
    return s;
}

void Port::GiveBack(std::unique_ptr<Scratch> s) const {
    std::lock_guard<std::mutex> lock(m_scratchMutex);
    m_spare.push_back(std::move(s));
}

void Port::Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
                 std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags) const {
    Make(first, count, out, stride, lengths, times, tags, nullptr);
}

void Port::StampSlots(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
                      std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags, std::uint32_t* slots) const {
    Make(first, count, out, stride, lengths, times, tags, slots);
}

void Port::Make(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
                std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags, std::uint32_t* slots) const {
    std::unique_ptr<Scratch> scratch = TakeScratch();
    Scratch& sc = *scratch;
    sc.blocks.resize(count);
    sc.places.resize(count);
    std::uint32_t* blocks = tags != nullptr ? tags : sc.blocks.data();
    std::uint32_t* places = slots != nullptr ? slots : sc.places.data();
    const bool inOrder = m_timeline->Grouped(first, count, times, blocks, places, sc.grouping, sc.work);
    const std::vector<FrameTimeline::Run>& runs = sc.grouping.runs;
    if (inOrder) {
        // Long runs of one block's consecutive frames, each made at once where it goes.
        std::size_t k = 0;
        for (const auto& r : runs) {
            m_blocks[r.block].shaper->Shape(r.index, r.count, out + k * stride, stride, lengths + k, times + k);
            k += r.count;
        }
        if (slots != nullptr) {
            for (std::size_t i = 0; i < count; ++i) slots[i] = static_cast<std::uint32_t>(i);
        }
        GiveBack(std::move(scratch));
        return;
    }
    // Blocks taking turns: each block's frames of the run are made at once, one block after
    // the other, then (unless the caller takes them where they lie) moved to their places.
    unsigned char* made = out;
    if (slots == nullptr) {
        if (sc.bytes.size() < count * stride) sc.bytes.resize(count * stride);
        made = sc.bytes.data();
    }
    sc.lengths.resize(count);
    if (m_signatures) {  // the signatures carry the times: in the runs' order too
        sc.times.resize(count);
        for (std::size_t k = 0; k < count; ++k) sc.times[places[k]] = times[k];
    }
    std::size_t at = 0;
    for (const auto& r : runs) {
        m_blocks[r.block].shaper->Shape(r.index, r.count, made + at * stride, stride, sc.lengths.data() + at,
                                        m_signatures ? sc.times.data() + at : nullptr);
        at += r.count;
    }
    if (slots != nullptr) {
        for (std::size_t k = 0; k < count; ++k) lengths[k] = sc.lengths[places[k]];
    } else {
        for (std::size_t k = 0; k < count; ++k) {
            lengths[k] = sc.lengths[places[k]];
            std::memcpy(out + k * stride, made + std::size_t{places[k]} * stride, lengths[k]);
        }
    }
    GiveBack(std::move(scratch));
}

}  // namespace vrm::traffic
