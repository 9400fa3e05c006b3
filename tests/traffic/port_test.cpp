// The port's timeline from its records: every rate unit to the nanosecond, shares, bursts,
// start delays, priorities, transmit modes, seeking from any frame, and the refusals.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "traffic/BlockFile.h"
#include "traffic/ByteSink.h"
#include "traffic/Capture.h"
#include "traffic/JsonRecord.h"
#include "traffic/Port.h"
#include "traffic/Signature.h"

namespace {

using namespace vrm::traffic;
using Json = nlohmann::ordered_json;
__extension__ typedef unsigned __int128 U128;

// A 60-byte IPv4/UDP block (84 bytes on the wire with the default overhead).
Json block(std::uint32_t id, const char* name) {
    Json b;
    b["name"] = name;
    b["blockID"] = id;
    b["baseStream"]["enabled"] = true;
    b["baseStream"]["frame"]["data"] =
        "0010940000020010940000010800 4500002e0000000040110000c0000201c6336401 04001389001a0000000102030405060708090a0b0c0d0e0f1011";
    return b;
}

Json profile(std::uint32_t id, std::uint64_t load, const char* unit) {
    return Json{{"loadProfileId", id}, {"load", load}, {"loadUnit", unit}};
}

Json one_block_port(std::uint64_t load, const char* unit) {
    Json p;
    p["blocks"] = {block(1, "a")};
    p["loadProfiles"] = {profile(7, load, unit)};
    p["bindings"] = {{{"streamBlockId", 1}, {"loadProfileId", 7}}};
    return p;
}

Port make(const Json& port, std::uint64_t frames = Schedule::kNoLimit) {
    return Port(parse_port(port.dump()), ShapeOptions{}, frames);
}

// floor(j num / den), or 2^64 - 1 past it (a time beyond 584 years).
std::uint64_t floor_times(std::uint64_t j, U128 num, U128 den) {
    const U128 t = U128{j} * num / den;
    return t > ~std::uint64_t{0} ? ~std::uint64_t{0} : static_cast<std::uint64_t>(t);
}

TEST(Port, EveryRateUnitGivesItsIntervalExactly) {
    struct Row {
        const char* unit;
        std::uint64_t value;
        std::uint64_t num, den;  // nanoseconds between frames, for 60-byte frames on 10 Gbit/s
    };
    const Row rows[] = {
        {"PERCENT_LINE_RATE", 10000000, 672, 1},          // 10%: 672 bits at 1 Gbit/s
        {"PERCENT_LINE_RATE", 33333333, 6720000000, 33333333},
        {"FRAMES_PER_SECOND", 1000000000, 1000, 1},       // a million frames per second
        {"FRAMES_PER_SECOND", 3, 1000000000000, 3},       // 0.003 frames per second
        {"INTER_FRAME_GAP", 100, 688, 5},                 // (60 + 12 + 100) bytes: 137.6 ns
        {"IFG_IN_MILLI_SECOND", 3, 15288, 5},             // 57.6 ns + 3 µs
        {"IFG_IN_NANO_SECOND", 50, 538, 5},               // 57.6 ns + 50 ns
        {"BITS_PER_SECOND", 300000000, 2240, 1},
        {"KILOBITS_PER_SECOND", 123456, 672000000, 123456},
        {"MEGABITS_PER_SECOND", 7, 96000, 1},
        {"L2_RATE", 500000000, 1024, 1},                  // 64 bytes with the FCS at 500 Mbit/s
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(std::string(r.unit) + " " + std::to_string(r.value));
        const Port port = make(one_block_port(r.value, r.unit));
        const Schedule& s = *port.Rates();
        for (const std::uint64_t j : {0ull, 1ull, 2ull, 3ull, 999ull, 1000000007ull, 1000000000000ull}) {
            EXPECT_EQ(s.TimeOf(0, j), floor_times(j, r.num, r.den)) << "frame " << j;
        }
        // The frames before t: exactly those the interval puts there.
        for (const std::uint64_t t : {1ull, 5000ull, 123456789ull, 1000000000000ull}) {
            const U128 x = U128{t} * r.den;
            EXPECT_EQ(s.CountBefore(0, t), static_cast<std::uint64_t>(x / r.num + (x % r.num != 0))) << "t " << t;
        }
    }
}

// Entries first .. first+count-1 of a timeline, made alone.
std::vector<Schedule::Entry> entries(const Schedule& s, std::uint64_t first, std::size_t count) {
    std::vector<Schedule::Entry> e(count);
    s.Entries(first, count, e.data());
    return e;
}

bool same(const Schedule::Entry& a, const Schedule::Entry& b) {
    return a.time == b.time && a.block == b.block && a.index == b.index;
}

TEST(Port, BlocksShareTheLineByTheirLoadsAndSeekFromAnyFrame) {
    Json p;
    p["blocks"] = {block(1, "fast"), block(2, "slow"), block(3, "late")};
    p["loadProfiles"] = {profile(1, 30000000, "PERCENT_LINE_RATE"), profile(2, 10000000, "PERCENT_LINE_RATE"),
                         profile(3, 1000000000, "FRAMES_PER_SECOND")};
    p["loadProfiles"][2]["startDelay"] = 5;  // µs
    p["bindings"] = {{{"streamBlockId", 1}, {"loadProfileId", 1}}, {{"streamBlockId", 2}, {"loadProfileId", 2}},
                     {{"streamBlockId", 3}, {"loadProfileId", 3}}};
    const Port port = make(p);
    const Schedule& s = *port.Rates();
    const auto all = entries(s, 0, 40000);
    std::uint64_t counts[3] = {0, 0, 0};
    for (std::size_t k = 0; k < all.size(); ++k) {
        const auto& e = all[k];
        ++counts[e.block];
        EXPECT_EQ(e.time, s.TimeOf(e.block, e.index));
        if (k > 0) {
            ASSERT_TRUE(all[k - 1].time < e.time || (all[k - 1].time == e.time && all[k - 1].block < e.block)) << k;
        }
    }
    // 224 ns, 672 ns and 1000 ns from 5 µs: the counts up to the last frame's time.
    const std::uint64_t end = all.back().time + 1;
    EXPECT_EQ(counts[0], (end + 223) / 224);
    EXPECT_EQ(counts[1], (end + 671) / 672);
    EXPECT_EQ(counts[2], (end - 5000 + 999) / 1000);
    EXPECT_EQ(all.front().time, 0u);
    // Any run made alone is the same run.
    for (const std::uint64_t first : {1ull, 2ull, 3ull, 777ull, 39000ull}) {
        const auto part = entries(s, first, 1000);
        for (std::size_t k = 0; k < part.size(); ++k) ASSERT_TRUE(same(part[k], all[first + k])) << first + k;
    }
    // Far away: frame n of the port at 10^12 ns and beyond, without walking there.
    const std::uint64_t n = s.CountBefore(0, 1000000000000ull) + s.CountBefore(1, 1000000000000ull) +
                            s.CountBefore(2, 1000000000000ull);
    const auto far = entries(s, n, 3);
    EXPECT_GE(far[0].time, 1000000000000ull);
    EXPECT_LT(far[0].time, 1000000000224ull);
}

TEST(Port, ManyBlocksMergeAsAReferenceSortOfEveryFrame) {
    // 3 and 40 blocks (the two ways of merging) at assorted rates, bursts, delays and
    // priorities, against every frame's time sorted by (time, rank, block).
    for (const int blocks : {3, 40}) {
        SCOPED_TRACE(blocks);
        std::vector<BlockTiming> timings;
        for (int b = 0; b < blocks; ++b) {
            BlockTiming t;
            t.start = static_cast<std::uint64_t>(b % 7) * 1000;
            t.steady = with_parts(Fraction{static_cast<U128>(1000 + 37 * b), static_cast<U128>(1 + b % 3)});
            if (b % 6 == 5) {  // a remainder that comes round unevenly
                t.steady = with_parts(Fraction{static_cast<U128>(1000 + 37 * b) * 1000003 + 999999, 1000003});
            }
            if (b == 38) t.start = 1500000;  // starts late: the mean rate misleads a search
            if (b % 4 == 1) {
                t.burst = 3;
                t.inBurst = with_parts(Fraction{7, 1});
            }
            t.rank = static_cast<std::uint32_t>(b % 5);
            timings.push_back(t);
        }
        const Schedule s(timings);
        std::vector<Schedule::Entry> all;
        const std::uint64_t horizon = 3000000;
        for (int b = 0; b < blocks; ++b) {
            for (std::uint64_t j = 0; s.TimeOf(b, j) < horizon; ++j) all.push_back({s.TimeOf(b, j), static_cast<std::uint32_t>(b), j});
        }
        std::sort(all.begin(), all.end(), [&](const Schedule::Entry& a, const Schedule::Entry& b) {
            if (a.time != b.time) return a.time < b.time;
            if (timings[a.block].rank != timings[b.block].rank) return timings[a.block].rank < timings[b.block].rank;
            return a.block < b.block;
        });
        // Every block's frames before horizon - 10 µs are all there.
        const auto usable = static_cast<std::size_t>(
            std::count_if(all.begin(), all.end(), [&](const Schedule::Entry& e) { return e.time < horizon - 10000; }));
        for (const std::uint64_t first : {0ull, 1ull, 17ull, 999ull, 5000ull, 60000ull}) {
            const auto got = entries(s, first, 1500);
            for (std::size_t k = 0; k < got.size() && first + k < usable; ++k) {
                ASSERT_TRUE(same(got[k], all[first + k])) << "frame " << first + k << ": block " << got[k].block << " index "
                                                          << got[k].index << " at " << got[k].time << ", want block "
                                                          << all[first + k].block << " at " << all[first + k].time;
            }
        }
    }
}

TEST(Port, RandomPortRatesChangeBySegmentAndStaySeekable) {
    Json p;
    p["blocks"] = {block(1, "a"), block(2, "b")};
    p["common"]["rate"]["random"] = {{"minRate", {{"rateUnit", "FRAMES_PER_SECOND"}, {"rate", 1000000000}}},
                                     {"maxRate", {{"rateUnit", "FRAMES_PER_SECOND"}, {"rate", 2000000000}}}};
    const Port port = make(p);
    const Schedule& s = *port.Rates();
    // Shared by two blocks: each between 1000 and 2000 ns, one interval a segment of 1024.
    std::set<std::uint64_t> seen;
    for (const std::uint64_t j0 : {0ull, 1024ull * 4095, 1024ull * 4096 * 3 + 1024 * 17, 1000000000000ull}) {
        const std::uint64_t seg = j0 - j0 % 1024;
        const std::uint64_t step = s.TimeOf(0, seg + 1) - s.TimeOf(0, seg);
        EXPECT_GE(step, 1000u);
        EXPECT_LE(step, 2000u);
        seen.insert(step);
        for (std::uint64_t j = seg; j < seg + 1024; ++j) {
            ASSERT_EQ(s.TimeOf(0, j + 1) - s.TimeOf(0, j), step) << j;
            const std::uint64_t t = s.TimeOf(0, j);
            ASSERT_EQ(s.CountBefore(0, t), j);
            ASSERT_EQ(s.CountBefore(0, t + 1), j + 1);
        }
    }
    EXPECT_GT(seen.size(), 1u);
    // The rounds repeat after 4096 segments.
    const std::uint64_t cycle = 1024ull * 4096;
    EXPECT_EQ(s.TimeOf(1, 2 * cycle + 5) - s.TimeOf(1, cycle + 5), s.TimeOf(1, cycle + 5) - s.TimeOf(1, 5));
    const auto all = entries(s, 0, 5000);
    const auto part = entries(s, 2500, 100);
    for (std::size_t k = 0; k < part.size(); ++k) ASSERT_TRUE(same(part[k], all[2500 + k])) << k;
}

TEST(Port, BurstsPrioritiesAndModes) {
    {   // Bursts of 4 at the line rate, 10% on average: 67.2 ns apart, every 2688 ns.
        Json p = one_block_port(10000000, "PERCENT_LINE_RATE");
        p["loadProfiles"][0]["burstSize"] = 4;
        p["loadProfiles"][0]["burstLoad"] = 100000000;
        const Port port = make(p);
        const std::uint64_t want[] = {0, 67, 134, 201, 2688, 2755, 2822, 2889, 5376};
        for (std::uint64_t j = 0; j < 9; ++j) EXPECT_EQ(port.Rates()->TimeOf(0, j), want[j]) << j;
    }
    {   // Equal rates and starts: the higher priority goes first at each nanosecond.
        Json p;
        p["blocks"] = {block(1, "low"), block(2, "high")};
        p["loadProfiles"] = {profile(1, 1000000, "FRAMES_PER_SECOND"), profile(2, 1000000, "FRAMES_PER_SECOND")};
        p["loadProfiles"][1]["priority"] = 3;
        p["bindings"] = {{{"streamBlockId", 1}, {"loadProfileId", 1}}, {{"streamBlockId", 2}, {"loadProfileId", 2}}};
        const Port port = make(p);
        const auto e = entries(*port.Rates(), 0, 6);
        for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(e[k].block, k % 2 == 0 ? 1u : 0u) << k;
    }
    struct Mode {
        const char* common;
        std::uint64_t frames;
    };
    const Mode modes[] = {
        {R"({"mode": "DURATION", "duration": {"unit": "SECONDS", "duration": 2}})", 2000000},
        {R"({"mode": "DURATION", "duration": {"unit": "FRAMES", "duration": 777}})", 777},
        {R"({"mode": "STEP", "stepSize": 12})", 12},
        {R"({"mode": "CONTINUOUS"})", Schedule::kNoLimit},
    };
    for (const Mode& m : modes) {
        SCOPED_TRACE(m.common);
        Json p = one_block_port(1000000000, "FRAMES_PER_SECOND");
        p["common"] = Json::parse(m.common);
        EXPECT_EQ(make(p).Frames(), m.frames);
    }
}

TEST(Port, CapturesAreTheSameForAnyThreadsAndRunAndSignaturesCarryTheTimes) {
    // 2 blocks (merged by a heap, made run by run in place) and 12 (merged in buckets, made
    // block by block): the capture for any threads, Stamp of a run and frame by frame agree.
    for (const int count : {2, 12}) {
        SCOPED_TRACE(count);
        Json p;
        p["blocks"] = Json::array();
        for (int k = 0; k < count; ++k) {
            Json b = block(static_cast<std::uint32_t>(k + 1), "b");
            if (k % 2 == 1) {
                b["baseStream"]["frame"]["options"] = {{"insertSigField", true}, {"fillType", "PRBS"}};
                b["baseStream"]["frame"]["lengthCfg"] = {{"mode", "RANDOM"}, {"minLength", 64}, {"maxLength", 300}};
            }
            p["blocks"].push_back(b);
        }
        p["common"]["rate"]["fixed"] = {{"rateUnit", "PERCENT_LINE_RATE"}, {"rate", 50000000}};
        const Port port = make(p, 5000);
        std::vector<unsigned char> reference;
        for (const unsigned threads : {1u, 2u, 3u}) {
            MemorySink sink;
            CaptureOptions o;
            o.format = CaptureFormat::PcapNano;
            o.threads = threads;
            write_capture(sink, port.Frames(), port, o);
            if (threads == 1) {
                reference = sink.Bytes();
            } else {
                EXPECT_EQ(sink.Bytes(), reference) << threads << " threads";
            }
        }
        const std::size_t stride = port.MaxLength();
        std::vector<unsigned char> out(64 * stride), one(stride);
        std::vector<std::uint32_t> lengths(64);
        std::vector<std::uint64_t> times(64);
        port.Stamp(4000, 64, out.data(), stride, lengths.data(), times.data(), nullptr);
        const auto e = entries(*port.Rates(), 4000, 64);
        // The capture's records from frame 4000 on: 16 bytes of header, then the frame.
        std::size_t at = 24;
        for (int k = 0; k < 4000; ++k) at += 16 + (reference[at + 8] | reference[at + 9] << 8);
        int signed_ = 0;
        for (std::size_t k = 0; k < 64; ++k) {
            EXPECT_EQ(times[k], e[k].time);
            std::uint32_t length = 0;
            std::uint64_t time = 0;
            port.Stamp(4000 + k, 1, one.data(), stride, &length, &time, nullptr);
            ASSERT_EQ(length, lengths[k]) << "frame " << 4000 + k;
            EXPECT_EQ(time, times[k]);
            EXPECT_TRUE(std::equal(one.begin(), one.begin() + length, out.begin() + k * stride)) << "frame " << 4000 + k;
            ASSERT_EQ(reference[at + 8] | reference[at + 9] << 8, static_cast<int>(length));
            EXPECT_TRUE(std::equal(one.begin(), one.begin() + length, reference.begin() + at + 16)) << "frame " << 4000 + k;
            at += 16 + length;
            Signature s;
            if (e[k].block % 2 == 1) {
                ASSERT_EQ(read_signature(out.data() + k * stride, lengths[k], s), SignatureCheck::Good);
                EXPECT_EQ(s.txTime, e[k].time);
                EXPECT_EQ(s.block, e[k].block + 1);
                EXPECT_EQ(s.sequence, e[k].index);
                ++signed_;
            }
        }
        EXPECT_GT(signed_, 10);
    }
}

// A sequence table's entry: `fps` thousandths of frames per second for every gap.
Json entry(std::uint32_t blockId, int burstSize, int burstCount, std::uint64_t frameFps, std::uint64_t burstFps,
           std::uint64_t entryFps) {
    return Json{{"enabled", true},
                {"blockId", blockId},
                {"burstSize", burstSize},
                {"burstCount", burstCount},
                {"interFrameGap", frameFps},
                {"interFrameGapUnit", "FRAMES_PER_SECOND"},
                {"interBurstGap", burstFps},
                {"interBurstGapUnit", "FRAMES_PER_SECOND"},
                {"interEntryGap", entryFps},
                {"interEntryGapUnit", "FRAMES_PER_SECOND"}};
}

TEST(Port, SequenceTableRunsItsEntriesLoopsAndRounds) {
    Json p;
    p["blocks"] = {block(1, "a"), block(2, "b")};
    // A: 2 bursts of 3, 1000 ns apart in a burst, 10000 ns between bursts, then 2000 ns.
    // B: one frame, then back to A twice. A disabled entry in between is skipped.
    Json disabled = entry(2, 1, 1, 1000000000, 1000000000, 1000000000);
    disabled["enabled"] = false;
    Json b = entry(2, 1, 1, 1000000000, 1000000000, 250000000);  // 4000 ns after B
    b["loopCount"] = 2;
    b["returnToIndex"] = 0;
    p["sequence"] = {entry(1, 3, 2, 1000000000, 100000000, 500000000), disabled, b};
    p["common"] = {{"mode", "DURATION"}, {"duration", {{"unit", "TABLE"}}}};
    const Port once = make(p);
    ASSERT_EQ(once.Frames(), 21u);
    // The reference: each run from its start, walked frame by frame.
    std::vector<Schedule::Entry> want;
    std::uint64_t start = 0, aIndex = 0, bIndex = 0;
    for (int round = 0; round < 3; ++round) {
        for (std::uint64_t k = 0; k < 2; ++k) {
            for (std::uint64_t i = 0; i < 3; ++i) want.push_back({start + (k * 2 + i) * 1000 + k * 10000, 0, aIndex++});
        }
        start = want.back().time + 2000;
        want.push_back({start, 1, bIndex++});
        start += 4000;
    }
    const auto got = [&](const Port& port, std::uint64_t first, std::size_t count) {
        std::vector<Schedule::Entry> e(count);
        port.Timeline().Entries(first, count, e.data());
        return e;
    };
    const auto all = got(once, 0, 21);
    for (std::size_t k = 0; k < 21; ++k) ASSERT_TRUE(same(all[k], want[k])) << k << ": " << all[k].time << " want " << want[k].time;
    for (const std::uint64_t first : {1ull, 6ull, 7ull, 20ull}) {
        ASSERT_TRUE(same(got(once, first, 1)[0], want[first])) << first;
    }
    // Round after round when the port repeats the table: round r is round 0 moved by its span.
    p["common"] = {{"mode", "CONTINUOUS"}};
    const Port rounds = make(p, 100);
    const std::uint64_t span = want.back().time + 4000;
    const auto r = got(rounds, 42, 21);
    for (std::size_t k = 0; k < 21; ++k) {
        ASSERT_EQ(r[k].time, want[k].time + 2 * span) << k;
        ASSERT_EQ(r[k].index, want[k].index + 2 * (want[k].block == 0 ? 18 : 3)) << k;
    }
    // A continuous entry sends for ever and ends the table there.
    Json c = entry(2, 1, 1, 500000000, 1000000000, 1000000000);
    c["enableContinuousTransmission"] = true;
    p["sequence"] = {entry(1, 1, 1, 1000000000, 1000000000, 1000000000), c, entry(1, 1, 1, 1, 1, 1)};
    const Port forever = make(p);
    EXPECT_EQ(forever.Frames(), Schedule::kNoLimit);
    const auto f = got(forever, 0, 5);
    const std::uint64_t times[] = {0, 1000, 3000, 5000, 7000};
    for (std::size_t k = 0; k < 5; ++k) EXPECT_EQ(f[k].time, times[k]) << k;
}

TEST(Port, RefusesWhatItCannotSend) {
    struct Row {
        const char* patch;
        const char* where;
        const char* text;
    };
    const Row rows[] = {
        {R"({"bindings": [{"streamBlockId": 9, "loadProfileId": 7}]})", "bindings[0].streamBlockId", "no block has blockID 9"},
        {R"({"bindings": [{"streamBlockId": 1, "loadProfileId": 8}]})", "bindings[0].loadProfileId", "no load profile has loadProfileId 8"},
        {R"({"loadProfiles": [{"loadProfileId": 7, "load": 0, "loadUnit": "FRAMES_PER_SECOND"}]})", "loadProfiles[0].load", "a rate of 0 sends nothing"},
        {R"({"loadProfiles": [{"loadProfileId": 7, "load": 200000000, "loadUnit": "PERCENT_LINE_RATE"}]})", "loadProfiles[0].load", "beyond the line rate"},
        {R"({"loadProfiles": [{"loadProfileId": 7, "load": 2000000000000000, "loadUnit": "FRAMES_PER_SECOND"}]})", "loadProfiles[0].load", "more than one frame per nanosecond"},
        {R"({"loadProfiles": [{"loadProfileId": 7, "load": 20000000000, "loadUnit": "BITS_PER_SECOND"}]})", "loadProfiles", "the blocks' loads add up to 200"},
        {R"({"host": {"lineRate": 0}})", "host.lineRate", "a line rate of 0 sends nothing"},
        {R"({"wires": 1})", "wires", "unknown key"},
        {R"({"sequence": [{"enabled": true, "blockId": 5}]})", "sequence[0].blockId", "no sending block (baseStream.enabled) has blockID 5"},
        {R"({"sequence": [{"enabled": false, "blockId": 1}]})", "sequence", "no entry is enabled"},
        {R"({"sequence": [{"enabled": true, "blockId": 1, "loopCount": 1, "returnToIndex": 3}]})", "sequence[0].returnToIndex", "loops go back"},
        {R"({"sequence": [{"enabled": true, "blockId": 1}, {"enabled": true, "blockId": 1, "loopCount": 2000, "returnToIndex": 0},
                          {"enabled": true, "blockId": 1, "loopCount": 2000, "returnToIndex": 0}]})", "sequence", "more than 1048576 entry runs"},
        {R"({"common": {"mode": "DURATION", "duration": {"unit": "TABLE"}}})", "common.duration.unit", "TABLE needs a sequence table"},
        {R"({"loadProfiles": [{"loadProfileId": 7, "load": 1000, "loadUnit": "FRAMES_PER_SECOND", "burstSize": 10, "burstLoad": 500, "burstLoadUnit": "FRAMES_PER_SECOND"}]})",
         "loadProfiles[0].burstLoad", "do not fit between bursts"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.patch);
        Json p = one_block_port(1000000, "FRAMES_PER_SECOND");
        p.merge_patch(Json::parse(r.patch));
        try {
            make(p);
            ADD_FAILURE() << "accepted";
        } catch (const InputError& e) {
            EXPECT_EQ(e.where(), r.where);
            EXPECT_NE(std::string(e.what()).find(r.text), std::string::npos) << e.what();
        }
    }
}

}  // namespace
