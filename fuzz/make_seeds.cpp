// Writes the seed corpora of the parser, engine and block-reader fuzz targets:
//   make_seeds <dir>   ->  <dir>/parsers/*.bin, <dir>/engine/*.bin, <dir>/blockfile/*.json
// Parsers: one valid message per parser, its members generated from the description.
// Engine: a few blocks in the byte layout of EngineCase.h. Block reader: a few JSON blocks.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "binding/Method.h"
#include "fuzz/Parsers.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "support/RecordFill.h"

namespace {

using Bytes = std::vector<unsigned char>;

bool write_file(const std::filesystem::path& path, const Bytes& bytes) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f || std::fwrite(bytes.data(), 1, bytes.size(), f) != bytes.size() || std::fclose(f) != 0) {
        std::perror(path.c_str());
        return false;
    }
    return true;
}

// The selector byte, then a far-side message of the parser's kind with generated members.
template <class Parser>
Bytes parser_seed(std::size_t index, const Parser& p) {
    static const binding::ModuleRules rules{nullptr, true};
    testing_support::Filler filler(static_cast<uint32_t>(index));
    Message far;
    auto build = [&](const auto& ms) {
        const auto values = testing_support::make_values(filler, ms);
        std::apply([&](const auto&... v) { binding::build_message(&far, rules, "", p.kind, ms, true, v...); },
                   values);
    };
    const auto& method = testing_support::described_method(*p.desc);
    if (p.kind == TMT_RESPONSE) {
        build(method.response);
    } else {
        build(method.request);
    }
    Bytes bytes{static_cast<unsigned char>(index)};
    const Bytes message = tmsg::encode(far);
    bytes.insert(bytes.end(), message.begin(), message.end());
    return bytes;
}

// Engine cases, written in the reader's layout (EngineCase.h).
struct CaseWriter {
    Bytes out;
    CaseWriter& u8(unsigned v) { out.push_back(static_cast<unsigned char>(v)); return *this; }
    CaseWriter& u16(unsigned v) { return u8(v >> 8).u8(v & 0xFF); }
    CaseWriter& word(uint32_t v) { return u8(6).u16(v >> 16).u16(v & 0xFFFF); }  // raw
    CaseWriter& small(unsigned v) { return u8(2).u8(v); }
    CaseWriter& index(unsigned v) { return u8(v); }
    CaseWriter& offset(unsigned v) { return u8(0).u8(v); }
    CaseWriter& value(const Bytes& v) {
        u8(static_cast<unsigned>(v.size()));
        for (unsigned char b : v) u8(b);
        return *this;
    }
    CaseWriter& range(unsigned modIndex, unsigned off, const Bytes& init, const Bytes& step, const Bytes& mask,
                      uint32_t recycle, unsigned stutter, unsigned mode) {
        index(modIndex).offset(off).value(init).value(step).value(mask).word(recycle).small(stutter);
        return u8(mode).u8(1);
    }
    CaseWriter& table(unsigned modIndex, unsigned off, const std::vector<Bytes>& values, unsigned stutter) {
        index(modIndex).offset(off).u8(static_cast<unsigned>(values.size()));
        for (const auto& v : values) value(v);
        return small(stutter).u8(1);
    }
};

std::vector<std::pair<std::string, Bytes>> engine_seeds() {
    const Bytes four{0xC0, 0, 2, 1}, one4{0, 0, 0, 1}, ff4{0xFF, 0xFF, 0xFF, 0xFF};
    const Bytes wide(16, 0x11), wideStep(16, 0), wideMask(16, 0xFF);
    std::vector<std::pair<std::string, Bytes>> seeds;
    CaseWriter w;
    // One increment over 4 bytes, placed from the frame start.
    w.u8(1).u8(0).u8(0).u16(64).u8(3).range(1, 26, four, one4, ff4, 16, 0, 0).u8(0).word(0).u8(7);
    seeds.emplace_back("increment", w.out);
    // A chain: decrement above random above a table, each placed on its own bits.
    w = {};
    w.u8(2).u8(1).u8(2).u16(60).u8(5);
    w.range(1, 0, {0x10, 0x00}, {0x00, 0x01}, {0xFF, 0xFF}, 5, 1, 1);
    w.range(2, 0, {0xAB}, {0x01}, {0x0F}, 7, 0, 2);
    w.table(3, 0, {{1, 2}, {3, 4}, {5, 6}}, 0);
    w.index(1).u8(1).index(2).index(2).u8(1).index(3);
    w.u8(1).small(0).small(16).small(20).small(8).small(40).small(16).word(3).u8(5);
    seeds.emplace_back("chain", w.out);
    // Sixteen-byte shuffle and a table, listed placements, a far first frame.
    w = {};
    w.u8(1).u8(1).u8(1).u16(200).u8(9);
    w.range(4, 0, wide, wideStep, wideMask, 1000, 0, 3);
    w.table(9, 0, {{7}, {8}}, 2);
    w.index(9).u8(1).index(4);
    w.u8(2).u8(2).index(4).small(8).small(128).index(9).small(160).small(8).word(0xFFFFFFF0u).u8(3);
    seeds.emplace_back("shuffle-table", w.out);
    return seeds;
}

const char* const kBlocks[][2] = {
    {"minimal", R"({"name": "b", "blockID": 1, "baseStream": {"frame": {"data": "000102030405060708090a0b"}}})"},
    {"range", R"({"name": "r", "baseStream": {"frame": {"data": "00000000000000000000000000000000"}},
 "rangeModifiers": [{"modIndex": 1, "offset": 2, "initialValue": "0001", "stepValue": "0001",
   "mask": "ffff", "recycleCount": 4, "stutterCount": 1, "mode": "DECREMENT", "useStream": true}],
 "host": {"frames": 8, "modifiers": [{"modIndex": 1, "bitOffset": 16, "bitLength": 16, "totalCount": 10}]}})"},
    {"table-link", R"({"name": "t", "baseStream": {"frame": {"data": "0010940000020010940000010800450000140000000040060000c0000201c6336401"}},
 "rangeModifiers": [{"modIndex": 1, "offset": 0, "offsetReference": "ipv4.src", "initialValue": "c0000201",
   "stepValue": "00000001", "mask": "ffffffff", "recycleCount": 3, "stutterCount": 0, "mode": "RANDOM",
   "useStream": true}],
 "tableModifiers": [{"modIndex": 2, "offset": 0, "data": ["0a", "0b", "0c"], "stutterCount": 0, "useStream": true}],
 "modLinks": [{"modIndex": 1, "childModIndex": [2]}],
 "host": {"modifiers": [{"modIndex": 1, "field": "ipv4.src"}, {"modIndex": 2, "field": "ipv4.ttl"}]}})"},
};

}  // namespace

int main(int argc, char** argv) {
    const std::filesystem::path dir = argc > 1 ? argv[1] : ".";
    for (const char* sub : {"parsers", "engine", "blockfile"}) std::filesystem::create_directories(dir / sub);
    bool ok = true;
    for (std::size_t i = 0; i < fuzzing::kParserCount; ++i) {
        fuzzing::visit_parser(i, [&](const auto& p) {
            const std::string name = std::to_string(i) + "-" + testing_support::described_method(*p.desc).name;
            ok = write_file(dir / "parsers" / (name + ".bin"), parser_seed(i, p)) && ok;
        });
    }
    for (const auto& [name, bytes] : engine_seeds()) ok = write_file(dir / "engine" / (name + ".bin"), bytes) && ok;
    for (const auto& block : kBlocks) {
        const std::string text = block[1];
        ok = write_file(dir / "blockfile" / (std::string(block[0]) + ".json"), Bytes(text.begin(), text.end())) && ok;
    }
    return ok ? 0 : 1;
}
