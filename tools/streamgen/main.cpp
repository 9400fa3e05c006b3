// streamgen: describe a stream block in JSON, check it, see the values its modifiers take,
// write its frames to a pcap file and see the request the library builds for it.
//
// Exit status: 0 success; 1 the block is invalid (the library's validation lines say why)
// or an output could not be written; 2 bad input (options, JSON, wire bytes), with a
// one-line message naming the JSON path or the option.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <chrono>
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
#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "platform/Tm_json.h"
#include "tools/streamgen/BlockFile.h"
#include "tools/streamgen/Catalogue.h"
#include "tools/streamgen/Engine.h"
#include "tools/streamgen/FrameFields.h"
#include "tools/streamgen/JsonRecord.h"
#include "tools/streamgen/PcapOut.h"

namespace {

using namespace streamgen;

constexpr int kOk = 0;
constexpr int kInvalid = 1;
constexpr int kBadInput = 2;
constexpr uint64_t kDefaultFrames = 16;
constexpr uint64_t kIndexLimit = uint64_t{1} << 32;  // frame indexes are 32-bit in the library

// A failure with its exit status and one-line message.
struct Exit {
    int status;
    std::string message;
};

// Builds the block's modifiers; an invalid block ends the command with status 1 after the
// library's lines (on standard error: standard output is the command's own).
std::unique_ptr<BlockModifiers> build_valid(const BlockInput& in) {
    auto mods = std::make_unique<BlockModifiers>(in);
    if (!mods->Valid()) throw Exit{kInvalid, "the block is invalid:\n" + mods->ValidationText()};
    return mods;
}

uint64_t frame_count(const BlockInput& in, const CLI::Option* countOpt, uint64_t count) {
    if (countOpt->count() > 0) return count;
    return in.frames ? *in.frames : kDefaultFrames;
}

// --- validate ----------------------------------------------------------------------------------

int cmd_validate(const BlockInput& in) {
    BlockModifiers mods(in);
    std::cout << mods.ValidationText();
    if (!mods.Valid()) return kInvalid;
    std::cout << "valid: " << in.block.rangeModifiers.size() << " range modifier(s), "
              << in.block.tableModifiers.size() << " table modifier(s), " << in.block.modLinks.size()
              << " link(s)\n";
    return kOk;
}

// --- values ------------------------------------------------------------------------------------

int cmd_values(const BlockInput& in, uint64_t count, uint64_t start, bool at) {
    if (start + count > kIndexLimit) {
        throw InputError("--start/--count", "frame indexes go up to " + std::to_string(kIndexLimit - 1));
    }
    auto mods = build_valid(in);
    std::string line;
    std::vector<uint8_t> value;
    if (!at) mods->Seek(start);
    for (uint64_t i = start; i < start + count; ++i) {
        line = std::to_string(i);
        for (std::size_t m = 0; m < mods->Size(); ++m) {
            if (at) {
                mods->ValueAt(m, value, static_cast<uint32_t>(i));
            } else {
                mods->Value(m, value);
            }
            line += ' ';
            line += to_hex(value);
        }
        line += '\n';
        std::fwrite(line.data(), 1, line.size(), stdout);
        if (!at) mods->Next();
    }
    return kOk;
}

// --- frames ------------------------------------------------------------------------------------

class BlockProducer : public FrameProducer {
  public:
    BlockProducer(const BlockInput& in, uint64_t first) : m_template(in.frame), m_frame(in.frame) {
        m_mods = build_valid(in);
        m_mods->PlaceFields(in);
        m_mods->Seek(first);
    }
    const std::vector<uint8_t>& Next() override {
        std::copy(m_template.begin(), m_template.end(), m_frame.begin());
        m_mods->Modify(m_frame);
        m_mods->Next();
        return m_frame;
    }

  private:
    const std::vector<uint8_t>& m_template;
    std::vector<uint8_t> m_frame;
    std::unique_ptr<BlockModifiers> m_mods;
};

int cmd_frames(const BlockInput& in, const std::string& out, uint64_t count, unsigned threads) {
    if (count > kIndexLimit)
        throw InputError("--count", "at most " + std::to_string(kIndexLimit) + " frames");
    build_valid(in);
    if (in.frame.empty()) throw InputError("baseStream.frame.data", "the frame template is empty");
    {
        // Checks the block and the field places once, before any file is touched.
        BlockProducer check(in, 0);
    }
    const bool terminal = isatty(STDERR_FILENO) == 1;
    const auto started = std::chrono::steady_clock::now();
    bool drawn = false;
    auto progress = [&](uint64_t done) {
        const double elapsed =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
        if (!terminal || elapsed < 1.0 || count == 0) return;
        const int width = 40;
        const int filled = static_cast<int>(static_cast<double>(done) / static_cast<double>(count) * width);
        std::fprintf(stderr, "\r[%s%s] %3d%% %llu/%llu frames",
                     std::string(static_cast<std::size_t>(filled), '#').c_str(),
                     std::string(static_cast<std::size_t>(width - filled), ' ').c_str(),
                     static_cast<int>(static_cast<double>(done) * 100.0 / static_cast<double>(count)),
                     static_cast<unsigned long long>(done), static_cast<unsigned long long>(count));
        std::fflush(stderr);
        drawn = true;
    };
    ProducerFactory make = [&in](uint64_t first) { return std::make_unique<BlockProducer>(in, first); };
    PcapSummary s;
    try {
        s = write_pcap(out, count, threads, in.frame.size(), make, progress);
    } catch (const std::runtime_error& e) {
        if (dynamic_cast<const InputError*>(&e) != nullptr || dynamic_cast<const BuildError*>(&e) != nullptr)
            throw;
        throw Exit{kInvalid, e.what()};
    }
    if (drawn) std::fprintf(stderr, "\r\033[K");
    const double fps = s.seconds > 0 ? static_cast<double>(s.frames) / s.seconds : 0.0;
    std::printf("%llu frames, %llu bytes in %.3f s (%.0f frames/s) -> %s\n",
                static_cast<unsigned long long>(s.frames), static_cast<unsigned long long>(s.bytes),
                s.seconds, fps, out.c_str());
    return kOk;
}

// --- request, decode, describe -----------------------------------------------------------------

int cmd_request(const BlockInput& in, const std::string& out) {
    auto mods = build_valid(in);
    const std::vector<Generator_3_bll::streamBlock_s> blocks{mods->ToRpc(in.block)};
    Message m;
    Generator_3_bll::create_req_SetStreamBlock(&m, blocks, false, true);
    if (out.empty()) {
        std::cout << tmsg::to_json(m, 2) << '\n';
        return kOk;
    }
    const std::vector<unsigned char> bytes = tmsg::encode(m);
    std::ofstream f(out, std::ios::binary | std::ios::trunc);
    f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    f.close();
    if (!f) throw Exit{kInvalid, out + ": cannot write"};
    std::cout << m.get_request_name() << ": " << bytes.size() << " bytes -> " << out << '\n';
    return kOk;
}

int cmd_decode(const std::string& file) {
    std::ifstream f(file, std::ios::binary);
    if (!f) throw Exit{kBadInput, file + ": cannot open"};
    const std::vector<unsigned char> bytes((std::istreambuf_iterator<char>(f)),
                                           std::istreambuf_iterator<char>());
    Message m;
    try {
        tmsg::decode(bytes, m);
    } catch (const Tm_exception& e) {
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

int main(int argc, char** argv) {
    CLI::App app{
        "streamgen: check a stream block described in JSON, see the values its modifiers take, "
        "write its frames to a pcap file and see the request the library builds for it."};
    app.require_subcommand(1);
    app.footer(
        "Exit status: 0 success, 1 invalid block or output failure, 2 bad input.\n"
        "Example: streamgen frames examples/ipv4-udp.json -o ipv4-udp.pcap --count 1000\n"
        "Fields for host.modifiers[].field: " +
        field_list() + " (vlan[N].id and vlan[N].pcp for inner tags).");

    std::string file, out, method;
    uint64_t count = 0, start = 0;
    unsigned threads = 1;
    bool at = false, json = false;

    auto* validate =
        app.add_subcommand("validate", "Build, link and validate all modifiers; print the library's lines");
    validate->add_option("BLOCK", file, "Stream block JSON file")->required();
    validate->footer(
        "Exit status 0 valid, 1 invalid, 2 bad input.\nExample: streamgen validate examples/invalid.json");

    auto* values = app.add_subcommand(
        "values", "One line per frame: the index, then each modifier's value in hex (modIndex order)");
    values->add_option("BLOCK", file, "Stream block JSON file")->required();
    auto* valuesCount = values->add_option("--count", count, "Frames (default: host.frames, else 16)");
    values->add_option("--start", start, "First frame index (default 0)");
    values->add_flag("--at", at, "Compute each line by index (GetValueAt) instead of stepping");
    values->footer("Example: streamgen values examples/ipv4-udp.json --count 8 --start 250 --at");

    auto* frames = app.add_subcommand("frames", "Write the frames to a pcap file (Ethernet) through libpcap");
    frames->add_option("BLOCK", file, "Stream block JSON file")->required();
    frames->add_option("-o,--output", out, "Output pcap file")->required();
    auto* framesCount = frames->add_option("--count", count, "Frames (default: host.frames, else 16)");
    frames->add_option("--threads", threads, "Threads; the file is the same for any number")
        ->check(CLI::Range(1u, 256u));
    frames->footer(
        "Example: streamgen frames examples/ipv4-udp.json -o /tmp/ipv4-udp.pcap --count 1000000 --threads 2");

    auto* request =
        app.add_subcommand("request", "The Generator_3.SetStreamBlock request for the block (after ToRpc)");
    request->add_option("BLOCK", file, "Stream block JSON file")->required();
    auto* jsonFlag = request->add_flag("--json", json, "Print the request as JSON (the default)");
    request->add_option("-o,--output", out, "Write the request's wire bytes to this file")
        ->excludes(jsonFlag);
    request->footer(
        "Examples: streamgen request examples/vlan-table.json --json\n"
        "          streamgen request examples/vlan-table.json -o vlan-table.bin");

    auto* decode = app.add_subcommand("decode", "Decode a message's wire bytes and print it as JSON");
    decode->add_option("FILE", file, "File of wire bytes")->required();
    decode->footer(
        "Exit status 2 for a malformed file.\n"
        "Example: streamgen request examples/vlan-table.json -o vlan-table.bin && streamgen decode "
        "vlan-table.bin");

    auto* describe =
        app.add_subcommand("describe", "List the methods, or show one request's members and kinds");
    describe->add_option("METHOD", method, "Method name, e.g. SetStreamBlock");
    describe->footer("Examples: streamgen describe\n          streamgen describe SetStreamBlock");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? kOk : kBadInput;
    }

    try {
        if (validate->parsed()) return cmd_validate(load_block(file));
        if (values->parsed()) {
            const BlockInput in = load_block(file);
            return cmd_values(in, frame_count(in, valuesCount, count), start, at);
        }
        if (frames->parsed()) {
            const BlockInput in = load_block(file);
            return cmd_frames(in, out, frame_count(in, framesCount, count), threads);
        }
        if (request->parsed()) return cmd_request(load_block(file), out);
        if (decode->parsed()) return cmd_decode(file);
        if (describe->parsed()) return cmd_describe(method);
    } catch (const Exit& e) {
        std::cerr << "streamgen: " << e.message
                  << (e.message.empty() || e.message.back() != '\n' ? "\n" : "");
        return e.status;
    } catch (const InputError& e) {
        std::cerr << "streamgen: " << file << ": " << e.line() << '\n';
        return kBadInput;
    } catch (const BuildError& e) {
        std::cerr << "streamgen: " << file << ": " << e.what() << '\n';
        return kInvalid;
    } catch (const std::exception& e) {
        std::cerr << "streamgen: " << e.what() << '\n';
        return kBadInput;
    }
    return kBadInput;
}
