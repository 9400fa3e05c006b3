// The engine fuzz target's input: a stream block with its frame template, where its modifiers
// go and which frames to make, read from arbitrary bytes. Every read past the end gives 0, so
// any input is a case. Counts and values favour the edges (0, 1, 2^32 - 1, ...).
//
// Layout, in order:
//   range count (u8 % 7), table count (u8 % 4), link count (u8 % 5), frame length (u16 % 1600),
//   template fill (u8);
//   per range modifier: modIndex, offset, reference, initialValue, stepValue, mask (each a
//     value), recycleCount, stutterCount (words), mode (u8 % 5; 4 is no mode), useStream (u8 & 1);
//   per table modifier: modIndex, offset, reference, value count (u8 % 6) and values,
//     stutterCount, useStream;
//   per link: parent modIndex, child count (u8 % 5), child modIndexes;
//   placement (u8 % 3): 0 every modifier from the frame start; 1 per modifier in modIndex
//     order a bit offset and bit length (words); 2 a count (u8 % 9) of (modIndex, offset,
//     length);
//   first frame (word), frame count (1 + u8 % 8).
// modIndex: u8 < 0xF0 gives u8 % 16, else a word. Word: u8 selector % 8 -> 0, 1, u8,
// 2^32 - 1, 2^32 - 1 - u8, 2^31, raw u32 (twice). Offset: u8 selector % 4 -> u8, 0xFFFF, u16,
// 0. Value: u8 % 18 bytes (0 to 17), then the bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "interfaces/generator_3_bll_records.h"

namespace fuzzing {

class ByteReader {
  public:
    ByteReader(const uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
    uint8_t u8() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    uint16_t u16() { return static_cast<uint16_t>(u8() << 8 | u8()); }
    uint32_t u32() { return static_cast<uint32_t>(u16()) << 16 | u16(); }
    uint32_t word() {
        switch (u8() % 8) {
            case 0: return 0;
            case 1: return 1;
            case 2: return u8();
            case 3: return 0xFFFFFFFFu;
            case 4: return 0xFFFFFFFFu - u8();
            case 5: return 0x80000000u;
            default: return u32();
        }
    }
    uint32_t modIndex() {
        const uint8_t b = u8();
        return b < 0xF0 ? b % 16u : word();
    }
    uint16_t offset() {
        switch (u8() % 4) {
            case 0: return u8();
            case 1: return 0xFFFF;
            case 2: return u16();
            default: return 0;
        }
    }
    std::vector<uint8_t> value() {
        std::vector<uint8_t> v(u8() % 18u);
        for (auto& b : v) b = u8();
        return v;
    }

  private:
    const uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_pos = 0;
};

struct Placement {
    uint32_t modIndex;
    uint32_t bitOffset;
    uint32_t bitLength;
};

struct EngineCase {
    Generator_3_bll::streamBlock_s block;
    std::vector<unsigned char> frame;
    enum class Place { FromFrameStart, PerModifier, Listed } place = Place::FromFrameStart;
    std::vector<Placement> placements;  // PerModifier: modIndex unused, in modIndex order
    uint32_t first = 0;
    unsigned int count = 1;
};

inline EngineCase read_case(const uint8_t* data, std::size_t size) {
    ByteReader in(data, size);
    EngineCase c;
    auto& b = c.block;
    b.rangeModifiers.resize(in.u8() % 7u);
    b.tableModifiers.resize(in.u8() % 4u);
    b.modLinks.resize(in.u8() % 5u);
    c.frame.resize(in.u16() % 1600u);
    const uint8_t fill = in.u8();
    for (std::size_t i = 0; i < c.frame.size(); ++i) c.frame[i] = static_cast<unsigned char>(fill * (i + 1));
    for (auto& r : b.rangeModifiers) {
        r.modIndex = in.modIndex();
        r.offset = in.offset();
        r.offsetReference = "r" + std::to_string(r.modIndex);
        r.initialValue.data = in.value();
        r.stepValue.data = in.value();
        r.mask.data = in.value();
        r.recycleCount = in.word();
        r.stutterCount = in.word();
        r.mode = static_cast<Generator_3_bll::configModMode_t>(in.u8() % 5u);
        r.useStream = (in.u8() & 1) != 0;
    }
    for (auto& t : b.tableModifiers) {
        t.modIndex = in.modIndex();
        t.offset = in.offset();
        t.offsetReference = "t" + std::to_string(t.modIndex);
        t.data.resize(in.u8() % 6u);
        for (auto& d : t.data) d.data = in.value();
        t.stutterCount = in.word();
        t.useStream = (in.u8() & 1) != 0;
    }
    for (auto& l : b.modLinks) {
        l.modIndex = in.modIndex();
        l.childModIndex.resize(in.u8() % 5u);
        for (auto& child : l.childModIndex) child = in.modIndex();
    }
    switch (in.u8() % 3) {
        case 0:
            c.place = EngineCase::Place::FromFrameStart;
            break;
        case 1:
            c.place = EngineCase::Place::PerModifier;
            c.placements.resize(b.rangeModifiers.size() + b.tableModifiers.size());
            for (auto& p : c.placements) p = {0, in.word(), in.word()};
            break;
        default:
            c.place = EngineCase::Place::Listed;
            c.placements.resize(in.u8() % 9u);
            for (auto& p : c.placements) p = {in.modIndex(), in.word(), in.word()};
            break;
    }
    c.first = in.word();
    c.count = 1 + in.u8() % 8u;
    return c;
}

}  // namespace fuzzing
