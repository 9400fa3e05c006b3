// streamgen: describe a stream block in JSON, check it, see the values its modifiers take,
// write its frames to a pcap file and see the request the library builds for it.
//
// Exit status: 0 success; 1 the block is invalid (the library's validation lines say why)
// or an output could not be written; 2 bad input (options, JSON, wire bytes), with a
// one-line message naming the JSON path or the option.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <chrono>
#include <cstring>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "interfaces/generator_3_bll.h"
#include "interfaces/loadProfile_1_bll.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "platform/Tm_json.h"
#include "traffic/BlockFile.h"
#include "tools/streamgen/Catalogue.h"
#include "tools/streamgen/Requests.h"
#include "tools/streamgen/Signals.h"
#include "traffic/Checksums.h"
#include "traffic/BlockModifiers.h"
#include "traffic/FrameFields.h"
#include "traffic/JsonRecord.h"
#include "traffic/OutputFile.h"
#include "traffic/Port.h"
#include "traffic/Capture.h"
#include "traffic/FrameShaper.h"
#include "traffic/Send.h"
#include "traffic/Analyzer.h"
#include "traffic/CaptureReader.h"
#include "traffic/Receive.h"

namespace {

using namespace streamgen;
using namespace vrm::traffic;

constexpr int kOk = 0;
constexpr int kInvalid = 1;
constexpr int kBadInput = 2;
constexpr uint64_t kDefaultFrames = 16;
constexpr uint64_t kIndexLimit = uint64_t{1} << 32;  // frame indexes are 32-bit in the library

// Unsigned options refuse a minus sign (the conversion would wrap it round).
const CLI::Validator kNotNegative(
    [](std::string& text) {
        return text.find('-') == std::string::npos ? std::string() : "expected 0 or more, got " + text;
    },
    "", "not negative");

// A failure with its exit status and one-line message.
struct Exit {
    int status;
    std::string message;
};

// An invalid block: the library's validation lines, each with its JSON path.
struct Invalid {
    std::vector<std::string> lines;
};

// Prints a warning line to standard error.
void warn(const std::string& file, const std::string& text) {
    std::cerr << "streamgen: " << file << ": warning: " << text << '\n';
}

// Builds the block's modifiers; an invalid block ends the command with status 1 after the
// library's lines (on standard error: standard output is the command's own).
std::unique_ptr<BlockModifiers> build_valid(const BlockInput& in) {
    auto mods = std::make_unique<BlockModifiers>(in);
    if (!mods->Valid()) throw Invalid{mods->ValidationLines()};
    return mods;
}

uint64_t frame_count(const BlockInput& in, const CLI::Option* countOpt, uint64_t count) {
    if (countOpt->count() > 0) return count;
    return in.frames ? *in.frames : kDefaultFrames;
}

// Everything `frames` checks before it writes: the frame template, the fields, the plan.
vrm::common::FramePlan checked_plan(const BlockInput& in, BlockModifiers& mods,
                                    std::vector<std::string>* warnings) {
    if (in.frame.empty()) throw InputError("baseStream.frame.data", "the frame template is empty");
    if (in.frame.size() > kPcapMaxFrame) {
        throw InputError("baseStream.frame.data", "the frame template has " + std::to_string(in.frame.size()) +
                                                      " bytes; pcap readers accept at most " +
                                                      std::to_string(kPcapMaxFrame));
    }
    mods.PlaceFields(in, warnings);
    return mods.MakePlan(in);
}

// --- validate ----------------------------------------------------------------------------------

int cmd_validate(const std::string& file, const BlockInput& in) {
    BlockModifiers mods(in);
    for (const auto& line : mods.ValidationLines()) std::cout << line << '\n';
    if (!mods.Valid()) return kInvalid;
    std::vector<std::string> warnings;
    const FrameShaper shaper(in, checked_plan(in, mods, &warnings), mods);
    for (const auto& w : mods.Warnings(in)) warnings.push_back(w);
    for (const auto& w : shaper.Warnings()) warnings.push_back(w);
    for (const auto& w : warnings) warn(file, w);
    std::cout << "valid: " << in.block.rangeModifiers.size() << " range modifier(s), "
              << in.block.tableModifiers.size() << " table modifier(s), " << in.block.modLinks.size()
              << " link(s)" << (warnings.empty() ? "" : ", " + std::to_string(warnings.size()) + " warning(s)")
              << '\n';
    return kOk;
}

// --- values ----------------------------------------------------------------------------------

// One line per frame: the index, then per modifier (modIndex order) the frame bytes it writes
// bits of, as the frame holds them (the template's bits in the window included), or with
// `raw` the modifier's own value. Frames come from the frame plan (the stepping path, from
// any start); with `at` each value is the library's value by index instead.
int cmd_values(const std::string& file, const BlockInput& in, uint64_t count, uint64_t start, bool at, bool raw) {
    if (start >= kIndexLimit || count > kIndexLimit - start) {
        throw InputError("--start/--count", "frame indexes go from 0 to " + std::to_string(kIndexLimit - 1) +
                                                 "; --start " + std::to_string(start) + " --count " +
                                                 std::to_string(count) + " goes beyond");
    }
    auto mods = build_valid(in);
    const bool landed = !raw && !in.frame.empty();
    vrm::common::FramePlan plan;
    if (landed) {
        std::vector<std::string> warnings;
        plan = checked_plan(in, *mods, &warnings);
        for (const auto& w : warnings) warn(file, w);
    }
    const bool byIndex = at || (!landed && start > 0);
    std::string line;
    std::vector<uint8_t> value;
    std::vector<uint8_t> frame;
    if (!landed && !byIndex) {
        for (uint64_t i = 0; i < start; ++i) mods->Next();
    }
    for (uint64_t i = start; i < start + count; ++i) {
        line = std::to_string(i);
        if (landed) {
            if (at) {
                frame = in.frame;
                mods->ModifyAt(frame, static_cast<uint32_t>(i));
            } else {
                frame.resize(plan.FrameLength());
                plan.Stamp(i, 1, frame.data(), frame.size());
            }
        }
        for (std::size_t m = 0; m < mods->Size(); ++m) {
            line += ' ';
            if (landed) {
                const BlockModifiers::Window w = mods->WindowOf(m);
                line += w.size == 0 ? std::string("-") : to_hex(frame.data() + w.offset, w.size);
                continue;
            }
            if (byIndex) {
                mods->ValueAt(m, value, static_cast<uint32_t>(i));
            } else {
                mods->Value(m, value);
            }
            line += to_hex(value);
        }
        line += '\n';
        if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size()) return kInvalid;
        if (!landed && !byIndex) mods->Next();
    }
    return kOk;
}

// --- frames ------------------------------------------------------------------------------------

std::string duration(double seconds) {
    const auto s = static_cast<unsigned long long>(seconds + 0.5);
    char buf[32];
    if (s >= 3600) {
        std::snprintf(buf, sizeof buf, "%lluh%02llum", s / 3600, s / 60 % 60);
    } else {
        std::snprintf(buf, sizeof buf, "%llum%02llus", s / 60, s % 60);
    }
    return buf;
}

int cmd_frames(const std::string& file, const BlockInput& in, const std::string& out, uint64_t count,
               unsigned threads, bool checksums, CaptureFormat format, bool fcs) {
    if (count > kIndexLimit)
        throw InputError("--count", "at most " + std::to_string(kIndexLimit) + " frames");
    if (same_file(file, out)) throw InputError("--output", out + " is the block file itself");
    auto mods = build_valid(in);
    std::vector<std::string> warnings;
    ShapeOptions shape;
    shape.checksums = checksums;
    shape.fcs = fcs;
    const FrameShaper shaper(in, checked_plan(in, *mods, &warnings), *mods, shape);
    for (const auto& w : mods->Warnings(in)) warnings.push_back(w);
    for (const auto& w : shaper.Warnings()) warnings.push_back(w);
    for (const auto& w : warnings) warn(file, w);

    const bool terminal = isatty(STDERR_FILENO) == 1;
    const auto started = std::chrono::steady_clock::now();
    bool drawn = false;
    CaptureOptions options;
    options.format = format;
    options.fcs = fcs;
    options.threads = threads;
    options.watcher = signal_watcher();
    options.progress = [&](uint64_t done) {
        const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
        if (!terminal || elapsed < 1.0 || count == 0 || done == 0) return;
        const double rate = static_cast<double>(done) / elapsed;
        const double left = static_cast<double>(count - done) / rate;
        std::fprintf(stderr, "\r\033[K%3d%% %llu/%llu frames, %.0f frames/s, %s left",
                     static_cast<int>(static_cast<double>(done) * 100.0 / static_cast<double>(count)),
                     static_cast<unsigned long long>(done), static_cast<unsigned long long>(count), rate,
                     duration(left).c_str());
        drawn = true;
    };
    if (!terminal) options.progress = nullptr;
    CaptureSummary s;
    try {
        s = write_capture(out, count, shaper, options);
    } catch (const std::runtime_error& e) {
        if (drawn) std::fprintf(stderr, "\r\033[K");
        throw Exit{kInvalid, e.what()};
    }
    if (drawn) std::fprintf(stderr, "\r\033[K");
    const double fps = s.seconds > 0 ? static_cast<double>(s.frames) / s.seconds : 0.0;
    std::fprintf(stderr, "%llu frames, %llu bytes in %.3f s (%.0f frames/s), lengths %s, checksums %s -> %s\n",
                 static_cast<unsigned long long>(s.frames), static_cast<unsigned long long>(s.bytes), s.seconds,
                 fps, shaper.LengthText().c_str(), checksums ? shaper.Checksums().Names().c_str() : "kept",
                 out == "-" ? "standard output" : out.c_str());
    return kOk;
}

// Writes `bytes` to `out` ("-": standard output), in place only when complete; a failure ends the
// command with status 1.
void write_bytes(const std::string& out, const std::vector<unsigned char>& bytes) {
    try {
        OutputFile f(out, signal_watcher());
        f.Write(bytes.data(), bytes.size());
        f.Commit();
    } catch (const std::runtime_error& e) {
        throw Exit{kInvalid, e.what()};
    }
}

// --- port --------------------------------------------------------------------------------------

PortInput read_port(const std::string& file, const std::string& requests) {
    if (requests.empty()) return load_port(file);
    std::string bytes;
    try {
        bytes = read_block_text(requests);
    } catch (const std::runtime_error& e) {
        throw Exit{kBadInput, requests + ": " + e.what()};
    }
    return port_from_requests(bytes);
}

int cmd_port(const std::string& file, const std::string& requests, const std::string& out, const CLI::Option* countOpt,
             uint64_t count, double seconds, unsigned threads, bool checksums, CaptureFormat format, bool fcs) {
    if (same_file(requests.empty() ? file : requests, out)) throw InputError("--output", out + " is the port's own file");
    const PortInput in = read_port(file, requests);
    uint64_t limit = Schedule::kNoLimit;
    if (countOpt->count() > 0) {
        limit = count;
    } else if (in.frames) {
        limit = *in.frames;
    }
    uint64_t end = Schedule::kNoLimit;
    if (seconds > 0) {
        if (seconds > 1.8e10) throw InputError("--duration", "at most 1.8e10 seconds");
        end = static_cast<uint64_t>(seconds * 1e9 + 0.5);
    }
    ShapeOptions shape;
    shape.checksums = checksums;
    shape.fcs = fcs;
    const Port port(in, shape, limit, end);
    for (const auto& w : port.Warnings()) warn(file == "-" ? "standard input" : file, w);
    if (port.Frames() == Schedule::kNoLimit) {
        throw InputError("--count/--duration", "the port sends for ever (CONTINUOUS): give --count, --duration or host.frames");
    }
    CaptureOptions options;
    options.format = format;
    options.fcs = fcs;
    options.threads = threads;
    options.watcher = signal_watcher();
    CaptureSummary s;
    try {
        s = write_capture(out, port.Frames(), port, options);
    } catch (const std::runtime_error& e) {
        throw Exit{kInvalid, e.what()};
    }
    uint64_t last = 0;
    if (s.frames > 0) {
        Schedule::Entry e{};
        port.Timeline().Entries(s.frames - 1, 1, &e);
        last = e.time;
    }
    std::fprintf(stderr, "%llu frames of %zu block(s) over %.9f s of schedule, %llu bytes in %.3f s -> %s\n",
                 static_cast<unsigned long long>(s.frames), port.Blocks(), static_cast<double>(last) / 1e9,
                 static_cast<unsigned long long>(s.bytes), s.seconds, out == "-" ? "standard output" : out.c_str());
    return kOk;
}

// --- send --------------------------------------------------------------------------------------

constexpr int kCannotSend = 3;  // no such interface, down, no permission, a frame too long
constexpr int kSendFailed = 4;  // the interface went away or failed during the run
constexpr int kInterrupted = 130;

struct SendArgs {
    std::string interface, rate, tx = "auto", signatureTimes = "schedule";
    uint64_t count = 0;
    double seconds = 0;
    uint32_t maxBurst = 256;
    bool force = false, json = false, checksums = true;
};

// One report line: text, or a JSON object with --json.
void print_counts(const SendCounts& c, bool json, bool last) {
    const double s = c.seconds > 0 ? c.seconds : 1e-9;
    const double pps = static_cast<double>(c.frames) / s;
    const double l2 = static_cast<double>(c.bytes + 4 * c.frames) * 8 / s;   // frames and their FCS
    const double l1 = static_cast<double>(c.bytes + 24 * c.frames) * 8 / s;  // and preamble, gap
    const unsigned long long txDelta = c.after.txPackets - std::min(c.after.txPackets, c.before.txPackets);
    if (json) {
        nlohmann::ordered_json j;
        j["final"] = last;
        j["seconds"] = c.seconds;
        j["frames"] = c.frames;
        j["bytes"] = c.bytes;
        j["pps"] = pps;
        j["l1_bps"] = l1;
        j["l2_bps"] = l2;
        j["mean_pps"] = c.meanRate;
        j["longest_burst"] = c.longestBurst;
        j["retries"] = c.retries;
        j["stalls"] = c.stalls;
        j["late_ns"] = {{"p50", c.lateP50}, {"p99", c.lateP99}, {"max", c.lateMax}};
        j["interface_tx_packets"] = {{"before", c.before.txPackets}, {"after", c.after.txPackets}};
        j["interface_tx_dropped"] = {{"before", c.before.txDropped}, {"after", c.after.txDropped}};
        j["sender"] = c.sender;
        std::fprintf(stderr, "%s\n", j.dump().c_str());
        return;
    }
    std::fprintf(stderr,
                 "%s%llu frames, %llu bytes in %.3f s: %.0f frames/s, L1 %.1f Mbit/s, L2 %.1f Mbit/s; retries %llu, "
                 "stalls %llu; late p50 %.1f us, p99 %.1f us, max %.1f us; interface tx_packets +%llu\n",
                 last ? "sent " : "", static_cast<unsigned long long>(c.frames), static_cast<unsigned long long>(c.bytes),
                 c.seconds, pps, l1 / 1e6, l2 / 1e6, static_cast<unsigned long long>(c.retries),
                 static_cast<unsigned long long>(c.stalls), static_cast<double>(c.lateP50) / 1e3,
                 static_cast<double>(c.lateP99) / 1e3, static_cast<double>(c.lateMax) / 1e3, txDelta);
}

int cmd_send(const std::string& file, const std::string& requests, const SendArgs& a, const CLI::Option* countOpt) {
    SendOptions o;
    o.interface = a.interface;
    o.maxBurst = a.maxBurst;
    o.force = a.force;
    o.stop = interrupt_flag();
    if (countOpt->count() > 0) o.count = a.count;
    if (a.seconds > 0) {
        if (a.seconds > 1.8e10) throw InputError("--duration", "at most 1.8e10 seconds");
        o.durationNs = static_cast<uint64_t>(a.seconds * 1e9 + 0.5);
    }
    if (a.rate == "max") {
        o.topSpeed = true;
    } else if (!a.rate.empty()) {
        char* end = nullptr;
        o.rate = std::strtod(a.rate.c_str(), &end);
        if (end == a.rate.c_str() || *end != '\0' || !(o.rate > 0) || o.rate > 1e10) {
            throw InputError("--rate", "expected frames per second (above 0, at most 1e10) or max, got " + a.rate);
        }
    }
    o.tx = a.tx == "xdp" ? SendOptions::Tx::Xdp : a.tx == "packet" ? SendOptions::Tx::Packet : SendOptions::Tx::Auto;
    ShapeOptions shape;
    shape.checksums = a.checksums;
    if (a.signatureTimes == "system") {
        // Time 0 of the schedule a moment from now on the system clock: the signatures carry
        // the frames' times on it, so that a receiver on the same clock measures latency.
        const auto epoch = std::chrono::duration_cast<std::chrono::nanoseconds>(
                               (std::chrono::system_clock::now() + std::chrono::milliseconds(300)).time_since_epoch())
                               .count();
        shape.signatureEpoch = static_cast<uint64_t>(epoch);
        o.startRealtimeNs = shape.signatureEpoch;
    }
    std::unique_ptr<FrameSource> source;
    std::unique_ptr<BlockModifiers> mods;
    const std::string shown = file == "-" ? "standard input" : file;
    std::string text;
    if (requests.empty()) text = read_block_text(file);
    const bool isPort = !requests.empty() || parse_json_document(text).contains("blocks");
    if (isPort) {
        PortInput in = requests.empty() ? parse_port(text) : read_port(file, requests);
        auto port = std::make_unique<Port>(in, shape, o.count, o.durationNs);
        for (const auto& w : port->Warnings()) warn(shown, w);
        o.count = std::min(o.count, port->Frames());
        source = std::move(port);
    } else if (o.rate > 0) {
        // A block at a rate: a port of that block alone at the rate, so that its frames' times
        // (and their signatures) are the schedule's, k / rate.
        PortInput in;
        in.blocks.push_back(parse_block(text));
        if (countOpt->count() == 0 && in.blocks[0].frames) o.count = *in.blocks[0].frames;
        LoadProfile_1_bll::loadProfile_s profile;
        profile.loadProfileId = 1;
        profile.load = static_cast<uint64_t>(o.rate * 1000 + 0.5);  // thousandths of a frame per second
        profile.loadUnit = LoadProfile_1_bll::rateUnit_t::FRAMES_PER_SECOND;
        in.profiles.push_back(profile);
        in.bindings.push_back({in.blocks[0].block.blockID, 1});
        in.line.lineRate = ~uint64_t{0} / 1000;  // the interface's own limit holds, not the records'
        std::unique_ptr<Port> port;
        try {
            port = std::make_unique<Port>(in, shape, o.count, o.durationNs);
        } catch (const InputError& e) {
            if (e.where().rfind("loadProfiles", 0) == 0) throw InputError("--rate", e.what());
            throw;
        }
        for (const auto& w : port->Warnings()) warn(shown, w);
        o.count = std::min(o.count, port->Frames());
        o.rate = 0;
        source = std::move(port);
    } else {
        const BlockInput in = parse_block(text);
        mods = build_valid(in);
        std::vector<std::string> warnings;
        auto shaper = std::make_unique<FrameShaper>(in, checked_plan(in, *mods, &warnings), *mods, shape);
        for (const auto& w : shaper->Warnings()) warnings.push_back(w);
        for (const auto& w : warnings) warn(shown, w);
        if (countOpt->count() == 0 && in.frames) o.count = *in.frames;
        o.topSpeed = true;  // a block alone has no rate of its own
        source = std::move(shaper);
    }
    if (o.count == ~uint64_t{0} && o.durationNs == ~uint64_t{0}) {
        std::fprintf(stderr, "streamgen: sending until interrupted (Ctrl-C)\n");
    }
    // Reports while sending (and the counts at a failure); the final one is printed below.
    o.progress = [&](const SendCounts& now) { print_counts(now, a.json, false); };
    SendCounts c;
    try {
        c = send_frames(*source, o);
    } catch (const SendError& e) {
        const bool during = e.kind() == SendError::Kind::Vanished || e.kind() == SendError::Kind::System;
        throw Exit{during ? kSendFailed : kCannotSend, e.what()};
    }
    print_counts(c, a.json, true);
    return o.stop->load() ? kInterrupted : kOk;
}

// --- analyze -----------------------------------------------------------------------------------

int cmd_analyze(const std::string& file, const std::string& interface, double duration, bool json) {
    std::unique_ptr<CaptureReader> reader;
    if (interface.empty()) {
        try {
            reader = std::make_unique<CaptureReader>(file);
        } catch (const std::system_error& e) {
            throw Exit{kBadInput, e.what() + std::string()};
        }
    }
    Analyzer analyzer(reader != nullptr && reader->Fcs());
    const auto started = std::chrono::steady_clock::now();
    std::string missed;
    if (reader != nullptr) {
        const unsigned char* data = nullptr;
        std::size_t length = 0;
        std::uint64_t ns = 0;
        while (reader->Next(data, length, ns)) analyzer.Add(data, length, ns);
    } else {
        ReceiveOptions o;
        o.interface = interface;
        if (duration > 0) o.durationNs = static_cast<uint64_t>(duration * 1e9 + 0.5);
        o.stop = interrupt_flag();
        o.ready = [&] { std::fprintf(stderr, "listening on %s\n", interface.c_str()); };
        ReceiveCounts c;
        try {
            c = receive_frames(analyzer, o);
        } catch (const SendError& e) {
            throw Exit{e.kind() == SendError::Kind::System ? kSendFailed : kCannotSend, e.what()};
        }
        missed = ", " + std::to_string(c.drops) + " the receive ring missed";
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    const std::vector<StreamReport> streams = analyzer.Report();
    if (json) {
        nlohmann::ordered_json j;
        j["frames"] = analyzer.Frames();
        j["unsigned"] = analyzer.Unsigned();
        j["bad_signatures"] = analyzer.BadSignatures();
        j["streams"] = nlohmann::ordered_json::array();
        for (const auto& r : streams) {
            nlohmann::ordered_json o;
            for_each_figure(r, [&](const char* name, auto value) { o[name] = value; });
            j["streams"].push_back(o);
        }
        std::cout << j.dump() << '\n';
    } else {
        std::printf("%6s %6s %10s %12s %12s %8s %6s %6s %7s %11s %11s %11s %11s\n", "block", "stream", "frames",
                    "bytes", "frames/s", "lost", "dup", "order", "reorder", "lat min us", "lat mean", "lat p99",
                    "lat max");
        for (const auto& r : streams) {
            std::printf("%6u %6u %10llu %12llu %12.1f %8llu %6llu %6llu %7llu %11.3f %11.3f %11.3f %11.3f\n", r.block,
                        r.stream, static_cast<unsigned long long>(r.frames), static_cast<unsigned long long>(r.bytes),
                        r.rate, static_cast<unsigned long long>(r.lost), static_cast<unsigned long long>(r.duplicates),
                        static_cast<unsigned long long>(r.outOfOrder), static_cast<unsigned long long>(r.maxReorder),
                        static_cast<double>(r.latencyMin) / 1e3, r.latencyMean / 1e3,
                        static_cast<double>(r.latencyP99) / 1e3, static_cast<double>(r.latencyMax) / 1e3);
        }
    }
    std::fprintf(stderr, "%llu frames, %zu stream(s), %llu without a signature (%llu with a wrong CRC)%s in %.3f s\n",
                 static_cast<unsigned long long>(analyzer.Frames()), streams.size(),
                 static_cast<unsigned long long>(analyzer.Unsigned()),
                 static_cast<unsigned long long>(analyzer.BadSignatures()), missed.c_str(), seconds);
    return kOk;
}

int cmd_requests(const std::string& file, const std::string& out) {
    if (same_file(file, out)) throw InputError("--output", out + " is the port file itself");
    const std::vector<unsigned char> bytes = port_requests(load_port(file));
    write_bytes(out, bytes);
    std::cerr << "port requests: " << bytes.size() << " bytes -> " << (out == "-" ? "standard output" : out) << '\n';
    return kOk;
}

// --- request, decode, describe -----------------------------------------------------------------

int cmd_request(const std::string& file, const BlockInput& in, const std::string& out) {
    if (!out.empty() && same_file(file, out)) throw InputError("--output", out + " is the block file itself");
    auto mods = build_valid(in);
    const std::vector<Generator_3_bll::streamBlock_s> blocks{mods->ToRpc(in.block)};
    Message m;
    Generator_3_bll::create_req_SetStreamBlock(&m, blocks, false, true);
    const std::vector<unsigned char> bytes = tmsg::encode(m);
    if (out.empty()) {
        // The records as decode prints them (and as a block file takes them back).
        Message decoded;
        tmsg::decode(bytes, decoded);
        Json doc;
        request_document(decoded, doc);
        std::cout << doc.dump(2) << '\n';
        return kOk;
    }
    write_bytes(out, bytes);
    std::cerr << m.get_request_name() << ": " << bytes.size() << " bytes -> "
              << (out == "-" ? "standard output" : out) << '\n';
    return kOk;
}

int cmd_decode(const std::string& file) {
    std::string text;
    try {
        text = read_block_text(file);
    } catch (const std::runtime_error& e) {
        throw Exit{kBadInput, file + ": " + e.what()};
    }
    if (text.size() > kMaxBlockBytes) {
        throw Exit{kBadInput, file + ": larger than the limit of " + std::to_string(kMaxBlockBytes >> 20) + " MiB"};
    }
    const std::vector<unsigned char> bytes(text.begin(), text.end());
    Message m;
    try {
        tmsg::decode(bytes, m);
    } catch (const std::exception& e) {
        throw Exit{kBadInput, file + ": " + e.what()};
    }
    Json doc;
    try {
        if (request_document(m, doc)) {
            std::cout << doc.dump(2) << '\n';
            return kOk;
        }
    } catch (const std::exception& e) {
        throw Exit{kBadInput, file + ": " + e.what()};
    }
    std::cout << tmsg::to_json(m, 2) << '\n';
    return kOk;
}

int cmd_describe(const std::string& method) {
    if (method.empty()) {
        for (const auto& name : method_names()) std::cout << name << '\n';
        return kOk;
    }
    if (!describe_method(method, std::cout)) {
        throw Exit{kBadInput, "unknown method " + method + " (streamgen describe lists them)"};
    }
    return kOk;
}

std::string field_list() {
    std::string s;
    for (const auto& n : field_names()) s += (s.empty() ? "" : ", ") + n;
    return s;
}

}  // namespace

// Standard output must have taken every byte: a full disk or a closed pipe is a failure.
bool stdout_ok() {
    std::cout.flush();
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && !std::cout.fail();
}

int finish(int status) {
    if (!stdout_ok()) {
        std::cerr << "streamgen: standard output: " << std::strerror(errno != 0 ? errno : EIO) << '\n';
        return status == kOk ? kInvalid : status;
    }
    return status;
}

int main(int argc, char** argv) {
    // A closed pipe ends the program as it ends other filters (status 141 in the shell), even
    // when the parent left SIGPIPE ignored.
    std::signal(SIGPIPE, SIG_DFL);
    CLI::App app{
        "streamgen: check a stream block described in JSON, see the values its modifiers take, "
        "write its frames to a pcap file and see the request the library builds for it.\n"
        "The block format is described in docs/streamgen.md."};
    app.require_subcommand(1);
    app.set_version_flag("--version", std::string("streamgen ") + STREAMGEN_VERSION);
    app.footer(
        "BLOCK and -o accept - for standard input and standard output; summaries, warnings and progress "
        "go to standard error.\n"
        "Exit status: 0 success, 1 invalid block or output failure, 2 bad input.\n"
        "Example: streamgen frames examples/ipv4-udp.json -o ipv4-udp.pcap --count 1000\n"
        "Fields for host.modifiers[].field: " +
        field_list() + " (vlan[N].id and vlan[N].pcp for inner tags).");

    std::string file, out, method, checksums = "recompute", format = "pcap";
    bool fcs = false;
    uint64_t count = 0, start = 0;
    unsigned threads = 1;
    bool at = false, json = false, raw = false;

    auto* validate = app.add_subcommand(
        "validate", "Run every check of frames short of writing: the library's lines, fields, warnings");
    validate->add_option("BLOCK", file, "Stream block JSON file (- for standard input)")->required();
    validate->footer(
        "Warnings (standard error): modifiers writing the same bits, stepping that carries through bits "
        "outside the mask, modifiers without a field.\n"
        "Exit status 0 valid, 1 invalid, 2 bad input.\nExample: streamgen validate examples/invalid.json");

    auto* values = app.add_subcommand(
        "values",
        "One line per frame: the index, then the frame bytes each modifier writes, in hex, as the frame holds "
        "them (modIndex order)");
    values->add_option("BLOCK", file, "Stream block JSON file (- for standard input)")->required();
    auto* valuesCount = values->add_option("--count", count, "Frames (default: host.frames, else 16)")
                            ->check(kNotNegative);
    values->add_option("--start", start, "First frame index (default 0)")->check(kNotNegative);
    values->add_flag("--at", at, "Take each value by index (GetValueAt) instead of stepping from frame 0");
    values->add_flag("--raw", raw,
                     "Print each modifier's own value (its fixed bits from initialValue) instead of the frame's "
                     "bytes");
    values->footer(
        "The frame's bytes include the template's bits that a modifier's mask leaves alone; a block without a "
        "frame template prints the modifiers' own values.\n"
        "Example: streamgen values examples/ipv4-udp.json --count 8 --start 250");

    auto* frames = app.add_subcommand(
        "frames", "Write the frames as the block describes them (lengths, fill, signature) to a capture (Ethernet)");
    frames->add_option("BLOCK", file, "Stream block JSON file (- for standard input)")->required();
    frames->add_option("-o,--output", out, "Output pcap file (- for standard output)")->required();
    auto* framesCount = frames->add_option("--count", count, "Frames (default: host.frames, else 16)")
                            ->check(kNotNegative);
    frames->add_option("--threads", threads, "Threads; the file is the same for any number")
        ->check(CLI::Range(1u, 256u));
    frames->add_option("--checksums", checksums,
                       "recompute (default): IPv4 header, UDP, TCP, ICMPv4 and ICMPv6 checksums of every "
                       "frame; keep: the bytes as the modifiers leave them")
        ->check(CLI::IsMember({"recompute", "keep"}));
    frames->add_option("--format", format,
                       "pcap (default; microsecond times), pcap-ns (nanosecond times) or pcapng")
        ->check(CLI::IsMember({"pcap", "pcap-ns", "pcapng"}));
    frames->add_flag("--fcs", fcs,
                     "End every frame with its frame check sequence (wrong in blocks with errorFCS) and mark "
                     "the capture's link as carrying it");
    frames->footer(
        "The capture appears only when complete; an existing file is replaced then, never before.\n"
        "Example: streamgen frames examples/ipv4-udp.json -o /tmp/ipv4-udp.pcap --count 1000000 --threads 2");

    double seconds = 0;
    auto* port = app.add_subcommand(
        "port", "Write the traffic of a port (several blocks at their rates, docs/port.md) to a capture");
    std::string requestsFile;
    auto* portFile = port->add_option("PORT", file, "Port JSON file (- for standard input)");
    auto* portRequests = port->add_option(
        "--requests", requestsFile,
        "Instead of PORT: the port as the requests a host sends (streamgen requests writes them)");
    portFile->excludes(portRequests);
    port->require_option(1, 0);
    port->add_option("-o,--output", out, "Output capture (- for standard output)")->required();
    auto* portCount = port->add_option("--count", count, "At most this many frames (default: host.frames)")
                          ->check(kNotNegative);
    port->add_option("--duration", seconds, "At most this many seconds of schedule")->check(CLI::PositiveNumber);
    port->add_option("--threads", threads, "Threads; the file is the same for any number")->check(CLI::Range(1u, 256u));
    port->add_option("--checksums", checksums, "recompute (default) or keep")->check(CLI::IsMember({"recompute", "keep"}));
    port->add_option("--format", format, "pcap-ns (default), pcapng or pcap (microseconds)")
        ->check(CLI::IsMember({"pcap", "pcap-ns", "pcapng"}));
    port->add_flag("--fcs", fcs, "End every frame with its frame check sequence");
    port->footer("Frames are stamped with their scheduled times, from 0 at the port's start.\n"
                 "Example: streamgen port examples/ports/two-blocks.json -o /tmp/port.pcap --count 100000");

    auto* requests = app.add_subcommand(
        "requests",
        "The requests that configure a port (SetCommonCfg, SetStreamBlock, SetLoadProfile, "
        "StreamBlockLoadProfileBinding, SetTrafficSequenceTable), each after its length (32-bit little-endian)");
    requests->add_option("PORT", file, "Port JSON file (- for standard input)")->required();
    requests->add_option("-o,--output", out, "Output file (- for standard output)")->required();
    requests->footer("Example: streamgen requests examples/ports/two-blocks.json -o port.req && "
                     "streamgen port --requests port.req -o port.pcap");

    auto* request =
        app.add_subcommand("request", "The Generator_3.SetStreamBlock request for the block (after ToRpc)");
    request->add_option("BLOCK", file, "Stream block JSON file (- for standard input)")->required();
    auto* jsonFlag = request->add_flag("--json", json, "Print the request as JSON (the default)");
    request->add_option("-o,--output", out, "Write the request's wire bytes to this file (- for standard output)")
        ->excludes(jsonFlag);
    request->footer(
        "Examples: streamgen request examples/vlan-table.json --json\n"
        "          streamgen request examples/vlan-table.json -o vlan-table.bin");

    auto* decode = app.add_subcommand("decode", "Decode a message's wire bytes and print it as JSON");
    decode->add_option("FILE", file, "File of wire bytes (- for standard input)")->required();
    decode->footer(
        "Exit status 2 for a malformed file.\n"
        "Example: streamgen request examples/vlan-table.json -o vlan-table.bin && streamgen decode "
        "vlan-table.bin");

    auto* describe =
        app.add_subcommand("describe", "List the methods, or show one request's members and kinds");
    describe->add_option("METHOD", method, "Method name, e.g. SetStreamBlock");
    describe->footer("Examples: streamgen describe\n          streamgen describe SetStreamBlock");

    SendArgs sendArgs;
    auto* send = app.add_subcommand(
        "send", "Send a block's or a port's frames on a network interface, at the port's times (docs/send.md)");
    auto* sendFile = send->add_option("SOURCE", file, "Block or port JSON file (- for standard input)");
    auto* sendRequests =
        send->add_option("--requests", requestsFile, "Instead of SOURCE: a port as the requests a host sends");
    sendFile->excludes(sendRequests);
    send->require_option(1, 0);
    send->add_option("-i,--interface", sendArgs.interface, "The interface to send on")->required();
    auto* sendCount = send->add_option("--count", sendArgs.count, "Exactly this many frames (default: all, or until interrupted)")
                          ->check(kNotNegative);
    send->add_option("--duration", sendArgs.seconds, "Stop after this many seconds")->check(CLI::PositiveNumber);
    send->add_option("--rate", sendArgs.rate,
                     "Frames per second instead of the port's times, or max: as fast as the interface takes them "
                     "(a block alone: max unless given)");
    send->add_option("--tx", sendArgs.tx,
                     "auto (default: AF_XDP where it opens, else a packet socket), xdp or packet (sendmmsg)")
        ->check(CLI::IsMember({"auto", "packet", "xdp"}));
    send->add_option("--max-burst", sendArgs.maxBurst, "Frames sent back to back when behind, at most (default 256)")
        ->check(CLI::Range(1u, 1000000u));
    send->add_option("--signature-times", sendArgs.signatureTimes,
                     "schedule (default): signatures carry the schedule's times from 0, the bytes of streamgen "
                     "frames/port; system: the times on the system clock, for a receiver's latency")
        ->check(CLI::IsMember({"schedule", "system"}));
    send->add_flag("--force", sendArgs.force, "Send on an interface that is down or has no carrier");
    send->add_flag("--json", sendArgs.json, "Reports as JSON lines (on standard error)");
    send->footer("Reports about once a second and at the end on standard error. Ctrl-C stops, and the final counts "
                 "still print.\nExit status: 0 sent, 1 invalid block, 2 bad input, 3 cannot send (no such interface, "
                 "down, no permission, a frame too long), 4 the interface failed during the run, 130 interrupted.\n"
                 "Example: streamgen send examples/ports/two-blocks.json -i veth0 --duration 5");

    auto* analyze = app.add_subcommand(
        "analyze",
        "Judge a capture's or an interface's frames by their signatures: per stream frames, rate, loss, duplicates, "
        "order, latency");
    std::string analyzeInterface;
    double analyzeSeconds = 0;
    auto* analyzeFile = analyze->add_option("CAPTURE", file, "pcap or pcapng file (- for standard input)");
    auto* analyzeLive = analyze->add_option("-i,--interface", analyzeInterface,
                                            "Instead of CAPTURE: the frames arriving on this interface");
    analyzeFile->excludes(analyzeLive);
    analyze->require_option(1, 0);
    analyze->add_option("--duration", analyzeSeconds, "With --interface: listen this many seconds (else until Ctrl-C)")
        ->check(CLI::PositiveNumber);
    analyze->add_flag("--json", json, "One JSON object on standard output instead of the table");
    analyze->footer("Latency is the receive time less the signature's transmit time, on the capture's clock.\n"
                    "Example: streamgen port examples/ports/two-blocks.json -o p.pcap && streamgen analyze p.pcap");

    bool known = argc < 2 || argv[1][0] == '-';
    for (const CLI::App* sub : app.get_subcommands({})) known = known || sub->get_name() == argv[1];
    if (!known) {
        std::cerr << "streamgen: unknown command " << argv[1]
                  << " (expected validate, values, frames, port, send, analyze, requests, request, decode or describe)\n";
        return kBadInput;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& e) {
        return finish(app.exit(e));
    } catch (const CLI::ParseError& e) {
        std::string what = e.what();
        for (char& c : what) c = c == '\n' ? ' ' : c;
        std::cerr << "streamgen: " << what << " (streamgen --help lists the options)\n";
        return kBadInput;
    }

    const std::string shown = file == "-" ? "standard input" : file;
    try {
        if (validate->parsed()) return finish(cmd_validate(shown, load_block(file)));
        if (values->parsed()) {
            const BlockInput in = load_block(file);
            return finish(cmd_values(shown, in, frame_count(in, valuesCount, count), start, at, raw));
        }
        if (frames->parsed()) {
            const BlockInput in = load_block(file);
            CaptureFormat f = CaptureFormat::Pcap;
            parse_capture_format(format, f);  // checked by the option
            return finish(cmd_frames(file, in, out, frame_count(in, framesCount, count), threads,
                                     checksums == "recompute", f, fcs));
        }
        if (port->parsed()) {
            CaptureFormat f = CaptureFormat::PcapNano;  // a port's default: its times are nanoseconds
            if (port->count("--format") > 0) parse_capture_format(format, f);
            return finish(cmd_port(file, requestsFile, out, portCount, count, seconds, threads,
                                   checksums == "recompute", f, fcs));
        }
        if (requests->parsed()) return finish(cmd_requests(file, out));
        if (analyze->parsed()) return finish(cmd_analyze(file, analyzeInterface, analyzeSeconds, json));
        if (send->parsed()) {
            sendArgs.checksums = true;
            return finish(cmd_send(file, requestsFile, sendArgs, sendCount));
        }
        if (request->parsed()) return finish(cmd_request(file, load_block(file), out));
        if (decode->parsed()) return finish(cmd_decode(file));
        if (describe->parsed()) return finish(cmd_describe(method));
    } catch (const Exit& e) {
        std::cerr << "streamgen: " << e.message
                  << (e.message.empty() || e.message.back() != '\n' ? "\n" : "");
        return e.status;
    } catch (const Invalid& e) {
        // One message per line of the library: "streamgen: FILE: the block is invalid: LINE".
        for (const auto& line : e.lines) std::cerr << "streamgen: " << shown << ": the block is invalid: " << line << '\n';
        return kInvalid;
    } catch (const InputError& e) {
        std::cerr << "streamgen: " << shown << ": " << e.line() << '\n';
        return kBadInput;
    } catch (const BuildError& e) {
        std::cerr << "streamgen: " << shown << ": " << e.what() << '\n';
        return kInvalid;
    } catch (const std::exception& e) {
        std::cerr << "streamgen: " << shown << ": " << e.what() << '\n';
        return kBadInput;
    }
    return kBadInput;
}
