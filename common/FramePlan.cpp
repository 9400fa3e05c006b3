#include "common/FramePlan.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>

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

// The frames' template copy: 16-byte moves for short frames (inlined), the C library beyond.
inline void CopyFrame(unsigned char* dst, const unsigned char* src, std::size_t n) {
    if (n >= 16 && n <= 512) {
        std::size_t i = 0;
        for (; i + 16 <= n; i += 16) std::memcpy(dst + i, src + i, 16);
        if (i != n) std::memcpy(dst + n - 16, src + n - 16, 16);
    } else {
        std::memcpy(dst, src, n);
    }
}

}  // namespace

struct FramePlan::Track {
    Kind kind = Kind::Count;
    // Window words: frame byte of each, the bits the modifier owns and those it leaves.
    unsigned int words = 0;
    std::uint32_t offset[kMaxWords] = {};
    std::uint64_t own[kMaxWords] = {};
    std::uint64_t keep[kMaxWords] = {};
    // Range values to words: X = (V >> valueShift) & valueMask are the packed value bytes;
    // word j, read most significant byte first, is X << left[j] >> right[j] (low 64 bits).
    unsigned int valueShift = 0;
    Wide valueMask = 0;
    unsigned int left[kMaxWords] = {};
    unsigned int right[kMaxWords] = {};
    bool empty[kMaxWords] = {};
    // The value sequence.
    Wide initial = 0;
    Wide step = 0;
    Wide mask = 0;
    Wide fixedBits = 0;
    std::uint32_t seed = 0;
    std::uint32_t randomMask = 0;
    std::uint32_t shuffleCount = 1;
    std::uint64_t run = 1;     // frames per value
    std::uint64_t period = 1;  // frames before the value sequence restarts
    std::uint64_t epoch = 1;   // frames before everything restarts (a multiple of nothing)
    // Tables: their values' words at m_tableWords[tableFirst + item * words].
    std::size_t tableFirst = 0;
    std::uint64_t listSize = 0;
};

namespace {

using Track = FramePlan::Track;

// Where one modifier stands while a range of frames is stamped.
struct Cursor {
    std::uint64_t epochPos = 0;   // frame within the epoch, at the start of the current run
    std::uint64_t periodPos = 0;  // frame within the period, at the start of the current run
    std::uint64_t runLength = 0;  // frames of the current run counted from those positions
    std::uint64_t left = 0;       // frames of the current run still to stamp
    std::uint64_t index = 0;      // values since the last restart (ranges) or list position (tables)
    Wide current = 0;             // counting accumulator
    std::uint64_t state = 0;      // random register
    std::uint64_t value[kMaxWords] = {};
};

inline std::uint32_t TranslateShuffle(std::uint32_t i, std::uint32_t count) {
    const bool odd = (i & 1) != 0;
    const bool mirrored = ((count & 1) != 0 || i < count / 2) ? odd : !odd;
    return mirrored ? count - 1 - i : i;
}

inline void WordsOf(const Track& t, Wide v, std::uint64_t* out) {
    const Wide x = (v >> t.valueShift) & t.valueMask;
    for (unsigned int j = 0; j < t.words; ++j) {
        const std::uint64_t b = t.empty[j] ? 0 : static_cast<std::uint64_t>((x << t.left[j]) >> t.right[j]);
        out[j] = BigEndianToMemory(b) & t.own[j];
    }
}

// The value for the cursor's index, from the state the cursor carries.
inline void Evaluate(const Track& t, Cursor& c, const std::uint64_t* tableWords) {
    switch (t.kind) {
        case Kind::Count:
            WordsOf(t, (c.current & t.mask) | t.fixedBits, c.value);
            break;
        case Kind::Shuffle: {
            const Wide position = TranslateShuffle(static_cast<std::uint32_t>(c.index), t.shuffleCount);
            WordsOf(t, ((t.initial + t.step * position) & t.mask) | t.fixedBits, c.value);
            break;
        }
        case Kind::Random:
            WordsOf(t, static_cast<std::uint32_t>(c.state) & t.randomMask, c.value);
            break;
        case Kind::Table: {
            const std::uint64_t* words = tableWords + t.tableFirst + c.index * t.words;
            for (unsigned int j = 0; j < t.words; ++j) c.value[j] = words[j];
            break;
        }
    }
}

// Places the cursor on `frame` (O(1), or O(log frame) for a random register).
void Seek(const Track& t, Cursor& c, std::uint64_t frame, const std::uint64_t* tableWords) {
    c.epochPos = frame % t.epoch;
    c.periodPos = c.epochPos % t.period;
    const std::uint64_t values = c.periodPos / t.run;
    const std::uint64_t intoRun = c.periodPos % t.run;
    c.runLength = std::min({t.run - intoRun, t.period - c.periodPos, t.epoch - c.epochPos});
    c.left = c.runLength;
    switch (t.kind) {
        case Kind::Count:
            c.index = values;
            c.current = t.initial + t.step * static_cast<Wide>(values);
            break;
        case Kind::Shuffle:
            c.index = values % t.shuffleCount;
            break;
        case Kind::Random:
            c.index = values;
            c.state = RandomRegisterAdvance(t.seed, static_cast<unsigned int>(values));
            break;
        case Kind::Table:
            c.index = values % t.listSize;
            break;
    }
    Evaluate(t, c, tableWords);
}

// Moves the cursor to the run that follows the current one.
void Advance(const Track& t, Cursor& c, const std::uint64_t* tableWords) {
    c.epochPos += c.runLength;
    c.periodPos += c.runLength;
    bool restart = false;
    if (c.epochPos == t.epoch) {
        c.epochPos = 0;
        c.periodPos = 0;
        restart = true;
    } else if (c.periodPos == t.period) {
        c.periodPos = 0;
        restart = true;
    }
    c.runLength = std::min({t.run, t.period - c.periodPos, t.epoch - c.epochPos});
    c.left = c.runLength;
    switch (t.kind) {
        case Kind::Count:
            if (restart) {
                c.index = 0;
                c.current = t.initial;
            } else {
                ++c.index;
                c.current += t.step;
            }
            break;
        case Kind::Shuffle:
            c.index = (restart || c.index + 1 == t.shuffleCount) ? 0 : c.index + 1;
            break;
        case Kind::Random:
            if (restart) {
                c.index = 0;
                c.state = t.seed;
            } else {
                ++c.index;
                c.state = RandomRegisterStep(c.state);
            }
            break;
        case Kind::Table:
            c.index = (restart || c.index + 1 == t.listSize) ? 0 : c.index + 1;
            break;
    }
    Evaluate(t, c, tableWords);
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
    std::size_t starts[kMaxWords];
    unsigned int words = 0;
    if (windowSize <= kWordBytes) {
        starts[words++] = std::min(windowOffset, frameLength - kWordBytes);
    } else {
        for (std::size_t at = 0; at + kWordBytes < windowSize; at += kWordBytes) starts[words++] = windowOffset + at;
        starts[words++] = windowOffset + windowSize - kWordBytes;
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
    for (unsigned int j = 0; j < t.words; ++j) {
        // Word j holds window bytes i0 .. i0 + 7 (i0 may be negative for a word moved left to
        // stay inside a short frame); as a number it is the window shifted right by
        // 8 * (windowSize - i0 - 8) bits, and the window is X << shift.
        const long long i0 = static_cast<long long>(t.offset[j]) - static_cast<long long>(packer.WindowOffset());
        const long long down = 8 * (static_cast<long long>(windowSize) - i0 - 8) - packer.Shift();
        t.left[j] = 0;
        t.right[j] = 0;
        t.empty[j] = false;
        if (down >= 128 || down <= -128) {
            t.empty[j] = true;
        } else if (down >= 0) {
            t.right[j] = static_cast<unsigned int>(down);
        } else {
            t.left[j] = static_cast<unsigned int>(-down);
        }
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
    for (std::size_t position = 0; position < modifiers.Size(); ++position) {
        Modifier& m = modifiers.At(position);
        const FieldPackerImpl& packer = PackerOf(m, frameTemplate);
        Track t;
        PlaceWords(t, packer, paddedLength);
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
        } else if (auto* table = dynamic_cast<TableModifier*>(&m)) {
            const auto& list = table->GetRecord().data;
            t.kind = Kind::Table;
            t.listSize = list.size();
            if (t.listSize == 0) {
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
                const Wide walk = Wide{hold} * t.listSize;
                t.epoch = walk > ~std::uint64_t{0} ? ~std::uint64_t{0} : static_cast<std::uint64_t>(walk);
            }
            t.period = t.epoch;
            const Wide walk = Wide{hold} * t.listSize;
            stateLength = (walk <= t.epoch && t.epoch % static_cast<std::uint64_t>(walk) == 0)
                              ? static_cast<std::uint64_t>(walk)
                              : t.epoch;
            t.tableFirst = m_tableWords.size();
            m_tableWords.resize(m_tableWords.size() + list.size() * t.words);
            std::vector<unsigned char> window;
            for (std::size_t i = 0; i < list.size(); ++i) {
                packer.AlignedValue(list[i].data, window);
                WordsOfWindow(t, packer, window, &m_tableWords[t.tableFirst + i * t.words]);
            }
        } else {
            throw std::logic_error("FramePlan: " + Describe(m) + " is neither a range nor a table modifier\n");
        }
        if (cycleFits) {
            cycle = cycle / Gcd(static_cast<std::uint64_t>(cycle % stateLength), stateLength) * stateLength;
            if (cycle > ~std::uint64_t{0}) cycleFits = false;
        }
        m_tracks.push_back(t);
    }
    m_cycle = cycleFits ? static_cast<std::uint64_t>(cycle) : 0;
}

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
    Cursor cursors[kGroup];
    for (std::size_t i = 0; i < trackCount; ++i) Seek(tracks[i], cursors[i], first, tableWords);

    const std::size_t length = m_length;
    const unsigned char* frameTemplate = m_template.data();
    unsigned char small[kWordBytes];
    for (std::size_t k = 0; k < count; ++k) {
        unsigned char* frame = out + k * stride;
        unsigned char* target = frame;
        if (length < kWordBytes) {
            target = small;
            if (copyTemplate) {
                std::memcpy(small, frameTemplate, kWordBytes);
            } else {
                std::memcpy(small, frameTemplate, kWordBytes);
                std::memcpy(small, frame, length);
            }
        } else if (copyTemplate) {
            CopyFrame(frame, frameTemplate, length);
        }
        for (std::size_t i = 0; i < trackCount; ++i) {
            const Track& t = tracks[i];
            Cursor& c = cursors[i];
            for (unsigned int j = 0; j < t.words; ++j) {
                unsigned char* at = target + t.offset[j];
                Store64(at, (Load64(at) & t.keep[j]) | c.value[j]);
            }
            if (--c.left == 0) Advance(t, c, tableWords);
        }
        if (length < kWordBytes) std::memcpy(frame, small, length);
    }
}

}  // namespace common
}  // namespace vrm
