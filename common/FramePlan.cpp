#include "common/FramePlan.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "common/FieldPackerImpl.h"
#include "common/GenericRangeModifier.h"
#include "common/RangeModifier.h"
#include "common/RangeModifierImpl.h"
#include "common/StreamBlockModifiers.h"
#include "common/TableModifier.h"

namespace vrm {
namespace common {

namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr std::uint64_t kTwoTo32 = std::uint64_t{1} << 32;
// Frames per value are capped here: positions inside a period stay below 2^32, so any larger
// count behaves the same.
constexpr std::uint64_t kRunCap = std::uint64_t{1} << 33;
// Window words a field can need: a 16-byte value shifted into 17 bytes.
constexpr unsigned int kMaxWords = 3;
// Modifiers stamped together over a range of frames; a block with more is stamped in
// several passes over the same frames, in modIndex order, which gives the same bytes.
constexpr std::size_t kGroup = 32;
// Frames shorter than a word are built in a word-sized buffer.
constexpr std::size_t kWordBytes = 8;
// Frames stamped together, track by track, while they stay in the cache.
constexpr std::size_t kBlockBytes = 16384;
constexpr std::size_t kBlockFrames = 32;
// Scratch space of WordsOf: the window (at most 17 bytes) at kWindowBase, words reaching up
// to 8 bytes before and after it, and the 17-byte number written in front of a short window.
constexpr int kWindowBase = 24;
constexpr std::size_t kWindowBuffer = 56;

enum class Kind : unsigned char { Count, Shuffle, Random, Table };

inline std::uint64_t Load64(const unsigned char* p) {
    std::uint64_t w;
    std::memcpy(&w, p, sizeof w);
    return w;
}

inline void Store64(unsigned char* p, std::uint64_t w) { std::memcpy(p, &w, sizeof w); }

// A 64-bit number whose bytes are given most significant first, as the word that holds those
// bytes in memory.
inline std::uint64_t BigEndianToMemory(std::uint64_t b) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return __builtin_bswap64(b);
#else
    return b;
#endif
}

Wide FromDigits(const unsigned char* digits, unsigned int n) {
    Wide v = 0;
    for (unsigned int i = n; i-- > 0;) v = (v << 8) | digits[i];
    return v;
}

std::vector<unsigned char> ToNetwork(Wide v, unsigned int n) {
    std::vector<unsigned char> bytes(n);
    for (unsigned int i = n; i-- > 0;) {
        bytes[i] = static_cast<unsigned char>(v);
        v >>= 8;
    }
    return bytes;
}

// The frames' template copy: for short frames straight-line 32-byte moves (the last one
// ending at the frame's end, overlapping the one before), the C library beyond.
inline void Copy32(unsigned char* dst, const unsigned char* src, std::size_t at) {
    std::memcpy(dst + at, src + at, 32);
}

inline void CopyFrame(unsigned char* dst, const unsigned char* src, std::size_t n) {
    if (n < 32 || n > 512) {
        std::memcpy(dst, src, n);
        return;
    }
    switch ((n - 1) / 32) {  // the 32-byte pieces before the last one
        case 15: Copy32(dst, src, 448); [[fallthrough]];
        case 14: Copy32(dst, src, 416); [[fallthrough]];
        case 13: Copy32(dst, src, 384); [[fallthrough]];
        case 12: Copy32(dst, src, 352); [[fallthrough]];
        case 11: Copy32(dst, src, 320); [[fallthrough]];
        case 10: Copy32(dst, src, 288); [[fallthrough]];
        case 9: Copy32(dst, src, 256); [[fallthrough]];
        case 8: Copy32(dst, src, 224); [[fallthrough]];
        case 7: Copy32(dst, src, 192); [[fallthrough]];
        case 6: Copy32(dst, src, 160); [[fallthrough]];
        case 5: Copy32(dst, src, 128); [[fallthrough]];
        case 4: Copy32(dst, src, 96); [[fallthrough]];
        case 3: Copy32(dst, src, 64); [[fallthrough]];
        case 2: Copy32(dst, src, 32); [[fallthrough]];
        case 1: Copy32(dst, src, 0); [[fallthrough]];
        default: break;
    }
    Copy32(dst, src, n - 32);
}

}  // namespace

struct FramePlan::Track {
    Kind kind = Kind::Count;
    // Window words: frame byte of each, the bits the modifier owns and those it leaves.
    unsigned int words = 0;
    std::uint32_t offset[kMaxWords] = {};
    std::uint64_t own[kMaxWords] = {};
    std::uint64_t keep[kMaxWords] = {};
    // Whether no track before this one in its group owns a bit of its words: in frames that
    // hold the template, its words are then base[j] (the template's bits it leaves) | value,
    // stored without reading the frame back (a read that would wait for the template's copy).
    bool plain = false;
    std::uint64_t base[kMaxWords] = {};
    // Range values to words: X = (V >> valueShift) & valueMask are the packed value bytes, the
    // window is X << shift in windowSize bytes, and word j starts at window byte windowByte[j]
    // (negative for a word moved left to stay inside a short frame).
    unsigned int valueShift = 0;
    Wide valueMask = 0;
    unsigned int shift = 0;
    int windowSize = 0;
    int windowByte[kMaxWords] = {};
    // The value sequence: value number a after a restart (a = 0, 1, ...), each held `run`
    // frames; the sequence restarts after `period` frames, and everything restarts after
    // `epoch` frames (counted from frame 0, cutting a period short).
    Wide initial = 0;
    Wide step = 0;
    Wide mask = 0;
    Wide fixedBits = 0;
    std::uint32_t seed = 0;
    std::uint32_t randomMask = 0;
    std::uint32_t shuffleCount = 1;
    std::uint64_t run = 1;
    std::uint64_t period = 1;
    std::uint64_t epoch = 1;
    // Indexed tracks (tables, and ranges with few values per period) keep every value's words
    // at m_tableWords[tableFirst + a * words]; the index wraps to 0 at `wrap`.
    bool indexed = false;
    std::size_t tableFirst = 0;
    std::uint64_t wrap = 1;
    // Tracks whose frames repeat after a short cycle keep the words of every frame of the
    // cycle, and of kBlockFrames more, at m_tableWords[tableFirst + frame * words].
    bool perFrame = false;
    std::uint64_t cycle = 0;
    // Frames after which this modifier's values repeat from frame 0 on.
    std::uint64_t repeat = 1;
};

namespace {

using Track = FramePlan::Track;

// Ranges with at most this many values per period are indexed; tracks whose frames repeat
// after at most kPerFrameCycle frames keep words per frame, within a budget of words.
constexpr std::uint64_t kIndexedValues = 4096;
constexpr std::uint64_t kPerFrameCycle = 8192;
constexpr std::uint64_t kPerFrameWords = 16384;

// Where one modifier stands while a range of frames is stamped.
struct Cursor {
    std::uint64_t epochLeft = 0;   // frames to the epoch's end, from the current run's start
    std::uint64_t periodLeft = 0;  // frames to the period's end, from the current run's start
    std::uint64_t runLength = 0;   // frames of the current run
    std::uint64_t left = 0;        // frames of the current run still to stamp
    std::uint64_t index = 0;       // value number since the restart (list position for tables)
    Wide current = 0;              // counting accumulator
    std::uint64_t state = 0;       // random register
    const std::uint64_t* words = nullptr;  // the current value's words
    std::uint64_t value[kMaxWords] = {};   // words computed for a track that is not indexed
};

inline std::uint32_t TranslateShuffle(std::uint32_t i, std::uint32_t count) {
    const bool odd = (i & 1) != 0;
    const bool mirrored = ((count & 1) != 0 || i < count / 2) ? odd : !odd;
    return mirrored ? count - 1 - i : i;
}

// The window words of range value v: the packed bytes X are shifted into place as a
// 136-bit number written most significant byte first so that its last byte is the window's
// last; each word is then a plain load from that buffer.
inline void WordsOf(const Track& t, Wide v, std::uint64_t* out) {
    const Wide x = (v >> t.valueShift) & t.valueMask;
    const Wide low = x << t.shift;
    const unsigned char high = t.shift == 0 ? 0 : static_cast<unsigned char>(x >> (128 - t.shift));
    unsigned char buffer[kWindowBuffer] = {};
    unsigned char* end = buffer + kWindowBase + t.windowSize;
    end[-17] = high;
    Store64(end - 16, BigEndianToMemory(static_cast<std::uint64_t>(low >> 64)));
    Store64(end - 8, BigEndianToMemory(static_cast<std::uint64_t>(low)));
    for (unsigned int j = 0; j < t.words; ++j) out[j] = Load64(buffer + kWindowBase + t.windowByte[j]) & t.own[j];
}

// Range value number `a` after a restart, from the counting accumulator or register the
// caller keeps for it.
inline Wide RangeValue(const Track& t, std::uint64_t a, const Wide& current, std::uint64_t state) {
    switch (t.kind) {
        case Kind::Count:
            return (current & t.mask) | t.fixedBits;
        case Kind::Shuffle: {
            const Wide position = TranslateShuffle(static_cast<std::uint32_t>(a % t.shuffleCount), t.shuffleCount);
            return ((t.initial + t.step * position) & t.mask) | t.fixedBits;
        }
        case Kind::Random:
            return static_cast<std::uint32_t>(state) & t.randomMask;
        case Kind::Table:
            break;
    }
    return 0;
}

inline void Evaluate(const Track& t, Cursor& c, const std::uint64_t* tableWords) {
    if (t.indexed) {
        c.words = tableWords + t.tableFirst + c.index * t.words;
    } else {
        WordsOf(t, RangeValue(t, c.index, c.current, c.state), c.value);
        c.words = c.value;
    }
}

// Places the cursor on `frame` (O(1), or O(log frame) for a random register).
void Seek(const Track& t, Cursor& c, std::uint64_t frame, const std::uint64_t* tableWords) {
    if (t.perFrame) {
        c.index = frame % t.cycle;
        return;
    }
    const std::uint64_t inEpoch = frame % t.epoch;
    const std::uint64_t inPeriod = inEpoch % t.period;
    const std::uint64_t a = inPeriod / t.run;
    c.epochLeft = t.epoch - inEpoch;
    c.periodLeft = t.period - inPeriod;
    c.runLength = std::min({t.run - inPeriod % t.run, c.periodLeft, c.epochLeft});
    c.left = c.runLength;
    c.index = t.kind == Kind::Table ? a % t.wrap : a;
    if (!t.indexed) {
        c.current = t.initial + t.step * static_cast<Wide>(a);
        if (t.kind == Kind::Random) c.state = RandomRegisterAdvance(t.seed, static_cast<unsigned int>(a));
    }
    Evaluate(t, c, tableWords);
}

// Moves the cursor on by `frames` frames, the rest of its current run (or, for an indexed
// track with runs of one frame, that many runs up to the next restart or wrap).
inline void Advance(const Track& t, Cursor& c, std::uint64_t frames, const std::uint64_t* tableWords) {
    c.epochLeft -= frames;
    c.periodLeft -= frames;
    bool restart = false;
    if (c.epochLeft == 0) {
        c.epochLeft = t.epoch;
        c.periodLeft = t.period;
        restart = true;
    } else if (c.periodLeft == 0) {
        c.periodLeft = t.period;
        restart = true;
    }
    c.runLength = std::min({t.run, c.periodLeft, c.epochLeft});
    c.left = c.runLength;
    if (restart) {
        c.index = 0;
        c.current = t.initial;
        c.state = t.seed;
    } else if (t.indexed) {
        c.index += t.run == 1 ? frames : 1;  // runs of one frame may be consumed many at once
        if (c.index == t.wrap) c.index = 0;
    } else {
        ++c.index;
        c.current += t.step;
        if (t.kind == Kind::Random) c.state = RandomRegisterStep(c.state);
    }
    Evaluate(t, c, tableWords);
}

// Merges the same words into n frames. The track's words are read into locals first: the
// frame stores are byte stores to the compiler, which could otherwise alias them. With
// Plain, the frames hold the template under the track's words (see Track::plain).
template <unsigned int W, bool Plain>
inline void MergeSame(const Track& t, const std::uint64_t* words, unsigned char* frame, std::size_t stride,
                      std::size_t n) {
    std::size_t offset[W];
    std::uint64_t keep[W];
    std::uint64_t value[W];
    for (unsigned int j = 0; j < W; ++j) {
        offset[j] = t.offset[j];
        keep[j] = t.keep[j];
        value[j] = Plain ? t.base[j] | words[j] : words[j];
    }
    for (std::size_t i = 0; i < n; ++i, frame += stride) {
        for (unsigned int j = 0; j < W; ++j) {
            Store64(frame + offset[j], Plain ? value[j] : (Load64(frame + offset[j]) & keep[j]) | value[j]);
        }
    }
}

// Merges consecutive values' words into n frames, one value a frame.
template <unsigned int W, bool Plain>
inline void MergeConsecutive(const Track& t, const std::uint64_t* words, unsigned char* frame, std::size_t stride,
                             std::size_t n) {
    std::size_t offset[W];
    std::uint64_t keep[W];
    std::uint64_t base[W];
    for (unsigned int j = 0; j < W; ++j) {
        offset[j] = t.offset[j];
        keep[j] = t.keep[j];
        base[j] = t.base[j];
    }
    for (std::size_t i = 0; i < n; ++i, frame += stride, words += W) {
        for (unsigned int j = 0; j < W; ++j) {
            Store64(frame + offset[j], (Plain ? base[j] : Load64(frame + offset[j]) & keep[j]) | words[j]);
        }
    }
}

template <unsigned int W, bool Plain>
void StampTrack(const Track& t, Cursor& c, unsigned char* frames, std::size_t stride, std::size_t count,
                const std::uint64_t* tableWords) {
    if (t.perFrame) {
        MergeConsecutive<W, Plain>(t, tableWords + t.tableFirst + c.index * W, frames, stride, count);
        c.index = (c.index + count) % t.cycle;
        return;
    }
    std::size_t k = 0;
    while (k < count) {
        if (t.indexed && t.run == 1) {
            const std::uint64_t n =
                std::min({std::uint64_t{count - k}, c.periodLeft, c.epochLeft, t.wrap - c.index});
            MergeConsecutive<W, Plain>(t, c.words, frames + k * stride, stride, static_cast<std::size_t>(n));
            k += static_cast<std::size_t>(n);
            Advance(t, c, n, tableWords);
        } else {
            const std::uint64_t n = std::min(std::uint64_t{count - k}, c.left);
            MergeSame<W, Plain>(t, c.words, frames + k * stride, stride, static_cast<std::size_t>(n));
            k += static_cast<std::size_t>(n);
            c.left -= n;
            if (c.left == 0) Advance(t, c, c.runLength, tableWords);
        }
    }
}

std::string Describe(const Modifier& m) {
    return "modifier " + m.GetOffsetReference() + " (modIndex " + std::to_string(m.GetModIndex()) + ")";
}

// The packer of a modifier that writes frame bytes, checked against the frame as the
// per-frame path checks it (same exceptions).
const FieldPackerImpl& PackerOf(Modifier& m, const std::vector<unsigned char>& frameTemplate) {
    FieldPacker* packer = m.GetFieldPacker();
    std::vector<unsigned char> probe(frameTemplate);
    const auto* impl = dynamic_cast<const FieldPackerImpl*>(packer);
    if (impl == nullptr) {
        packer->ZeroBytes(probe);  // the null and invalid packers throw their texts
        throw std::logic_error("FramePlan: " + Describe(m) + " has no field packer\n");
    }
    packer->ZeroBytes(probe);  // the window must lie inside the frame
    return *impl;
}

// Word positions and masks of a packer's window in frames of `frameLength` bytes (at least 8).
void PlaceWords(Track& t, const FieldPackerImpl& packer, std::size_t frameLength) {
    const std::size_t windowOffset = packer.WindowOffset();
    const std::vector<unsigned char>& applyMask = packer.ApplyMask();
    const std::size_t windowSize = applyMask.size();
    // Only the bytes the modifier owns bits of are written: the window less its ends without mask.
    std::size_t lo = 0;
    std::size_t hi = windowSize;
    while (lo < hi && applyMask[lo] == 0) ++lo;
    while (hi > lo && applyMask[hi - 1] == 0) --hi;
    std::size_t starts[kMaxWords];
    unsigned int words = 0;
    if (lo == hi) {
        // owns no bit: writes nothing
    } else if (hi - lo <= kWordBytes) {
        starts[words++] = std::min(windowOffset + lo, frameLength - kWordBytes);
    } else {
        for (std::size_t at = lo; at + kWordBytes < hi; at += kWordBytes) starts[words++] = windowOffset + at;
        starts[words++] = windowOffset + hi - kWordBytes;
    }
    t.words = words;
    for (unsigned int j = 0; j < words; ++j) {
        t.offset[j] = static_cast<std::uint32_t>(starts[j]);
        unsigned char maskBytes[kWordBytes] = {};
        for (std::size_t k = 0; k < kWordBytes; ++k) {
            const std::size_t frameByte = starts[j] + k;
            if (frameByte >= windowOffset && frameByte < windowOffset + windowSize) {
                maskBytes[k] = applyMask[frameByte - windowOffset];
            }
        }
        t.own[j] = Load64(maskBytes);
        t.keep[j] = ~t.own[j];
    }
}

// The words of a window given as bytes (window byte 0 at the packer's window offset).
void WordsOfWindow(const Track& t, const FieldPackerImpl& packer, const std::vector<unsigned char>& window,
                   std::uint64_t* out) {
    const std::size_t windowOffset = packer.WindowOffset();
    for (unsigned int j = 0; j < t.words; ++j) {
        unsigned char bytes[kWordBytes] = {};
        for (std::size_t k = 0; k < kWordBytes; ++k) {
            const std::size_t frameByte = t.offset[j] + k;
            if (frameByte >= windowOffset && frameByte < windowOffset + window.size()) {
                bytes[k] = window[frameByte - windowOffset];
            }
        }
        out[j] = Load64(bytes) & t.own[j];
    }
}

// How a range value of `width` bytes becomes the window words (see Track).
void PlaceValue(Track& t, const FieldPackerImpl& packer, unsigned int width) {
    const std::size_t required = packer.PackedValueSize();
    const std::size_t start = packer.PackedValueStart(width);
    const std::size_t windowSize = packer.ApplyMask().size();
    t.valueShift = static_cast<unsigned int>(8 * (width - start - required));
    t.valueMask = required >= 16 ? ~Wide{0} : ((Wide{1} << (8 * required)) - 1);
    t.shift = packer.Shift();
    t.windowSize = static_cast<int>(windowSize);
    for (unsigned int j = 0; j < t.words; ++j) {
        t.windowByte[j] = static_cast<int>(t.offset[j]) - static_cast<int>(packer.WindowOffset());
    }
}

std::uint64_t Gcd(std::uint64_t a, std::uint64_t b) {
    while (b != 0) {
        const std::uint64_t r = a % b;
        a = b;
        b = r;
    }
    return a;
}

}  // namespace

FramePlan::FramePlan() : m_template(kWordBytes, 0) {}
FramePlan::~FramePlan() = default;
FramePlan::FramePlan(const FramePlan& other) = default;
FramePlan::FramePlan(FramePlan&& other) noexcept = default;
FramePlan& FramePlan::operator=(const FramePlan& other) = default;
FramePlan& FramePlan::operator=(FramePlan&& other) noexcept = default;

FramePlan::FramePlan(const StreamBlockModifiers& modifiers, const std::vector<unsigned char>& frameTemplate)
    : m_template(frameTemplate), m_length(frameTemplate.size()) {
    if (m_template.size() < kWordBytes) m_template.resize(kWordBytes, 0);
    const std::size_t paddedLength = m_template.size();
    Wide cycle = 1;
    bool cycleFits = true;
    m_tracks.reserve(modifiers.Size());
    std::vector<unsigned char> owned(paddedLength, 0);  // the bits the group's tracks so far own
    for (std::size_t position = 0; position < modifiers.Size(); ++position) {
        Modifier& m = modifiers.At(position);
        const FieldPackerImpl& packer = PackerOf(m, frameTemplate);
        Track t;
        PlaceWords(t, packer, paddedLength);
        // Plain: no track before it in its group owns a bit of its words (a plain store writes
        // the whole word, the template's bits around its own included).
        if (position % kGroup == 0) std::fill(owned.begin(), owned.end(), 0);
        t.plain = true;
        for (unsigned int j = 0; j < t.words; ++j) {
            t.plain = t.plain && Load64(owned.data() + t.offset[j]) == 0;
            t.base[j] = Load64(m_template.data() + t.offset[j]) & t.keep[j];
        }
        for (unsigned int j = 0; j < t.words; ++j) Store64(owned.data() + t.offset[j], Load64(owned.data() + t.offset[j]) | t.own[j]);
        std::uint64_t stateLength = 0;  // a period of this modifier's frames
        if (auto* range = dynamic_cast<RangeModifier*>(&m)) {
            RangeSequence seq;
            if (!range->DescribeSequence(seq)) {
                std::vector<unsigned char> value;
                range->GetValue(value);  // throws the engine's text for a missing generator
                throw std::logic_error("FramePlan: " + Describe(m) + " has no value generator\n");
            }
            switch (seq.mode) {
                case 2: t.kind = Kind::Random; break;
                case 3: t.kind = Kind::Shuffle; break;
                default: t.kind = Kind::Count; break;
            }
            t.initial = FromDigits(seq.initial, seq.width);
            t.step = FromDigits(seq.step, seq.width);
            t.mask = FromDigits(seq.mask, seq.width);
            t.fixedBits = FromDigits(seq.fixedBits, seq.width);
            t.seed = seq.seed;
            t.randomMask = seq.randomMask;
            t.shuffleCount = seq.shuffleCount == 0 ? 1 : seq.shuffleCount;
            const Wide run = Wide{seq.childStutter + std::uint64_t{1}} * (seq.stutter + std::uint64_t{1});
            t.run = run > kRunCap ? kRunCap : static_cast<std::uint64_t>(run);
            t.period = seq.periodLength == 0 ? kTwoTo32 : seq.periodLength;
            t.epoch = seq.totalLength == 0 ? kTwoTo32 : seq.totalLength;
            stateLength = t.epoch % t.period == 0 ? t.period : t.epoch;
            PlaceValue(t, packer, seq.width);
            const std::uint64_t values = t.period / t.run + (t.period % t.run != 0 ? 1 : 0);
            // The arithmetic above must pack exactly as the packer does: compare on a few values.
            const Wide probes[] = {~Wide{0}, (Wide{0x0123456789ABCDEFull} << 64) | 0xFEDCBA9876543210ull,
                                   t.initial, Wide{1}};
            for (const Wide probe : probes) {
                std::vector<unsigned char> window;
                packer.AlignedValue(ToNetwork(probe, seq.width), window);
                std::uint64_t expected[kMaxWords];
                std::uint64_t actual[kMaxWords];
                WordsOfWindow(t, packer, window, expected);
                WordsOf(t, probe, actual);
                if (!std::equal(expected, expected + t.words, actual)) {
                    throw std::logic_error("FramePlan: window arithmetic disagrees with the packer for " +
                                           Describe(m) + "\n");
                }
            }
            if (values <= kIndexedValues && t.words != 0) {
                t.indexed = true;
                t.wrap = values;
                t.tableFirst = m_tableWords.size();
                m_tableWords.resize(m_tableWords.size() + values * t.words);
                Wide current = t.initial;
                std::uint64_t state = t.seed;
                for (std::uint64_t a = 0; a < values; ++a) {
                    WordsOf(t, RangeValue(t, a, current, state), m_tableWords.data() + t.tableFirst + a * t.words);
                    current += t.step;
                    state = RandomRegisterStep(state);
                }
            }
        } else if (auto* table = dynamic_cast<TableModifier*>(&m)) {
            const auto& list = table->GetRecord().data;
            t.kind = Kind::Table;
            t.indexed = true;
            t.wrap = list.size();
            if (t.wrap == 0) {
                std::vector<unsigned char> value;
                table->GetValue(value);  // throws the table's text for an empty list
                throw std::logic_error("FramePlan: " + Describe(m) + " has an empty list\n");
            }
            const std::uint64_t hold = table->GetHoldCount() == 0 ? kTwoTo32 : table->GetHoldCount();
            t.run = hold;
            if (table->GetTotalCount() != 0) {
                const std::uint32_t restart = table->GetTotalCount() * (table->GetChildStutterCount() + 1);
                t.epoch = restart == 0 ? kTwoTo32 : restart;
            } else {
                const Wide walk = Wide{hold} * t.wrap;
                t.epoch = walk > ~std::uint64_t{0} ? ~std::uint64_t{0} : static_cast<std::uint64_t>(walk);
            }
            t.period = t.epoch;
            const Wide walk = Wide{hold} * t.wrap;
            stateLength = (walk <= t.epoch && t.epoch % static_cast<std::uint64_t>(walk) == 0)
                              ? static_cast<std::uint64_t>(walk)
                              : t.epoch;
            t.tableFirst = m_tableWords.size();
            m_tableWords.resize(m_tableWords.size() + list.size() * t.words);
            std::vector<unsigned char> window;
            for (std::size_t i = 0; i < list.size(); ++i) {
                packer.AlignedValue(list[i].data, window);
                WordsOfWindow(t, packer, window, m_tableWords.data() + t.tableFirst + i * t.words);
            }
        } else {
            throw std::logic_error("FramePlan: " + Describe(m) + " is neither a range nor a table modifier\n");
        }
        if (t.words != 0 && stateLength <= kPerFrameCycle && (stateLength + kBlockFrames) * t.words <= kPerFrameWords) {
            // The words of every frame of the cycle, by walking the track once.
            const std::size_t frames = static_cast<std::size_t>(stateLength) + kBlockFrames;
            std::vector<std::uint64_t> perFrame(frames * t.words);
            Cursor c;
            Seek(t, c, 0, m_tableWords.data());
            for (std::size_t f = 0; f < frames; ++f) {
                std::copy(c.words, c.words + t.words, perFrame.data() + f * t.words);
                if (--c.left == 0) Advance(t, c, c.runLength, m_tableWords.data());
            }
            t.perFrame = true;
            t.cycle = stateLength;
            t.tableFirst = m_tableWords.size();
            m_tableWords.insert(m_tableWords.end(), perFrame.begin(), perFrame.end());
        }
        t.repeat = stateLength;
        if (cycleFits) {
            cycle = cycle / Gcd(static_cast<std::uint64_t>(cycle % stateLength), stateLength) * stateLength;
            if (cycle > ~std::uint64_t{0}) cycleFits = false;
        }
        m_tracks.push_back(t);
    }
    m_cycle = cycleFits ? static_cast<std::uint64_t>(cycle) : 0;
}

std::uint64_t FramePlan::ModifierCycle(std::size_t i) const { return m_tracks.at(i).repeat; }

void FramePlan::Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride) const {
    if (count == 0) return;
    if (count > 1 && stride < m_length) {
        std::ostringstream text;
        text << "FramePlan::Stamp : stride " << stride << " is shorter than the frame length " << m_length
             << "\n";
        throw std::invalid_argument(text.str());
    }
    if (m_tracks.empty()) {
        for (std::size_t k = 0; k < count; ++k) CopyFrame(out + k * stride, m_template.data(), m_length);
        return;
    }
    for (std::size_t group = 0; group < m_tracks.size(); group += kGroup) {
        StampGroup(group, std::min(kGroup, m_tracks.size() - group), group == 0, first, count, out, stride);
    }
}

void FramePlan::StampGroup(std::size_t firstTrack, std::size_t trackCount, bool copyTemplate,
                           std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride) const {
    const Track* tracks = m_tracks.data() + firstTrack;
    const std::uint64_t* tableWords = m_tableWords.data();
    // Cursors for the group's tracks only: a whole group's would be cleared on every call,
    // which costs more than stamping a few frames.
    static_assert(std::is_trivially_destructible<Cursor>::value, "cursors in slots are never destroyed");
    union Place {
        Place() {}
        Cursor cursor;
    };
    Place places[kGroup];
    for (std::size_t i = 0; i < trackCount; ++i) {
        new (&places[i].cursor) Cursor();
        Seek(tracks[i], places[i].cursor, first, tableWords);
    }

    const std::size_t length = m_length;
    const unsigned char* frameTemplate = m_template.data();
    const bool small = length < kWordBytes;  // built in word-sized slots, then copied out
    const std::size_t blockFrames =
        small ? kBlockFrames : std::max<std::size_t>(1, std::min(kBlockFrames, kBlockBytes / std::max<std::size_t>(stride, 1)));
    unsigned char slots[kBlockFrames * kWordBytes];
    for (std::size_t done = 0; done < count; done += blockFrames) {
        const std::size_t n = std::min(blockFrames, count - done);
        unsigned char* block = out + done * stride;
        unsigned char* frames = block;
        std::size_t step = stride;
        if (small) {
            frames = slots;
            step = kWordBytes;
            for (std::size_t k = 0; k < n; ++k) {
                std::memcpy(slots + k * kWordBytes, frameTemplate, kWordBytes);
                if (!copyTemplate) std::memcpy(slots + k * kWordBytes, block + k * stride, length);
            }
        } else if (copyTemplate) {
            for (std::size_t k = 0; k < n; ++k) CopyFrame(block + k * stride, frameTemplate, length);
        }
        for (std::size_t i = 0; i < trackCount; ++i) {
            if (tracks[i].plain && copyTemplate && !small) {
                switch (tracks[i].words) {
                    case 0: break;
                    case 1: StampTrack<1, true>(tracks[i], places[i].cursor, frames, step, n, tableWords); break;
                    case 2: StampTrack<2, true>(tracks[i], places[i].cursor, frames, step, n, tableWords); break;
                    default: StampTrack<3, true>(tracks[i], places[i].cursor, frames, step, n, tableWords); break;
                }
                continue;
            }
            switch (tracks[i].words) {
                case 0: break;
                case 1: StampTrack<1, false>(tracks[i], places[i].cursor, frames, step, n, tableWords); break;
                case 2: StampTrack<2, false>(tracks[i], places[i].cursor, frames, step, n, tableWords); break;
                default: StampTrack<3, false>(tracks[i], places[i].cursor, frames, step, n, tableWords); break;
            }
        }
        if (small) {
            for (std::size_t k = 0; k < n; ++k) std::memcpy(block + k * stride, slots + k * kWordBytes, length);
        }
    }
}

}  // namespace common
}  // namespace vrm
