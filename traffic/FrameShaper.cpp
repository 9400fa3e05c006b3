#include "traffic/FrameShaper.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <stdexcept>
#include <string>
#include <unordered_map>

#include "traffic/BlockModifiers.h"
#include "traffic/FrameBytes.h"
#include "traffic/JsonRecord.h"
#include "traffic/Signature.h"

namespace vrm::traffic {

namespace {

using Generator_3_bll::genFillType_t;
using Generator_3_bll::genFrmLenMode_t;
using Generator_3_bll::iMixLengthMode_t;

const std::string kLengthPath = "baseStream.frame.lengthCfg";
const std::string kOptionsPath = "baseStream.frame.options";
const std::string kErrorPath = "baseStream.error";

std::string bytes_text(std::size_t first, std::size_t end) {
    return end == first + 1 ? "byte " + std::to_string(first)
                            : "bytes " + std::to_string(first) + ".." + std::to_string(end - 1);
}

}  // namespace

FrameShaper::FrameShaper(const BlockInput& in, vrm::common::FramePlan plan, BlockModifiers& mods,
                         const ShapeOptions& options)
    : m_plan(std::move(plan)), m_sums(in.frame), m_options(options), m_template(in.frame.size()) {
    if (in.frame.empty()) throw InputError("baseStream.frame.data", "the frame template is empty");
    m_sums.SetChangingBits(mods.WrittenBits(in));
    ReadLengths(in);

    const auto& opt = in.block.baseStream.frame.options;
    switch (opt.fillType) {
        case genFillType_t::MIN:
        case genFillType_t::NONE:
            m_fill = Fill::Zero;
            break;
        case genFillType_t::CONSTANT:
        case genFillType_t::INCR:
        case genFillType_t::DECR: {
            m_fill = Fill::Pattern;
            m_pattern.resize(kMaxFrameLength);
            const auto c = static_cast<std::uint16_t>(opt.fillConstant);
            for (std::size_t k = 0; k < m_pattern.size(); ++k) {
                m_pattern[k] = opt.fillType == genFillType_t::CONSTANT
                                   ? static_cast<unsigned char>(k % 2 == 0 ? c >> 8 : c & 0xffu)
                               : opt.fillType == genFillType_t::INCR ? static_cast<unsigned char>(k)
                                                                     : static_cast<unsigned char>(255 - k % 256);
            }
            break;
        }
        case genFillType_t::PRBS:
            m_fill = Fill::Prbs;
            break;
        default:
            throw InputError(kOptionsPath + ".fillType", "MAX is not a fill");
    }

    m_signature = opt.insertSigField;
    const auto& err = in.block.baseStream.error;
    m_badSignatureCrc = err.errorQuorvexSignatureCRC16;
    m_badFcs = err.errorFCS;
    m_blockId = in.block.blockID;
    if (m_signature && m_blockId >= kSignatureBlocks) {
        throw InputError("blockID", "the signature carries block numbers up to " +
                                        std::to_string(kSignatureBlocks - 1) + ", got " + std::to_string(m_blockId));
    }
    m_plain = !m_signature && m_mode == Lengths::Fixed && m_minLength == m_template;
    CheckRoom(mods);
    if (m_signature) MakeStreams(mods);

    if (m_badSignatureCrc && !m_signature) {
        m_warnings.push_back(kErrorPath + ".errorQuorvexSignatureCRC16: the frames carry no signature (insertSigField is off)");
    }
    if (m_badFcs && !m_options.fcs) {
        m_warnings.push_back(kErrorPath +
                             ".errorFCS: this output carries no frame check sequence, so the wrong one does not show "
                             "(ask for the FCS to see it)");
    }
    if (err.errorInnerFCS) m_warnings.push_back(kErrorPath + ".errorInnerFCS: not modelled; the frames are sent without it");
    if (err.continuous || err.mask != 0 || err.offset != 0 ||
        err.offsetReference != Generator_3_bll::errorOffsetRef_t::MIN) {
        m_warnings.push_back(kErrorPath +
                             ": bit errors at an offset (offsetReference, offset, mask, continuous) are not modelled; "
                             "the frames are sent without them");
    }
}

void FrameShaper::ReadLengths(const BlockInput& in) {
    const auto& lc = in.block.baseStream.frame.lengthCfg;
    const std::size_t lowest = std::max<std::size_t>(1, m_sums.HeadersEnd());
    auto length = [&](long v, const std::string& path) {
        if (v > static_cast<long>(kMaxFrameLength)) {
            throw InputError(path, std::to_string(v) + " bytes is beyond the longest frame, " +
                                       std::to_string(kMaxFrameLength) + " bytes");
        }
        if (v < static_cast<long>(lowest)) {
            throw InputError(path, "frames of " + std::to_string(v) + " bytes would cut the template's headers, which end at byte " +
                                       std::to_string(lowest));
        }
        return static_cast<std::size_t>(v);
    };
    auto range = [&](long lo, long hi, const std::string& path) {
        m_minLength = length(lo, path + ".minLength");
        m_maxLength = length(hi, path + ".maxLength");
        if (m_minLength > m_maxLength) {
            throw InputError(path + ".minLength", std::to_string(lo) + " is above maxLength " + std::to_string(hi));
        }
    };
    switch (lc.mode) {
        case genFrmLenMode_t::MIN:
        case genFrmLenMode_t::AUTO:
            m_mode = Lengths::Fixed;
            m_minLength = m_maxLength = m_template;
            m_lengthText = "AUTO " + std::to_string(m_template) + " (the template)";
            return;
        case genFrmLenMode_t::FIXED:
            m_mode = Lengths::Fixed;
            m_minLength = m_maxLength = length(lc.fixedFrameLength, kLengthPath + ".fixedFrameLength");
            m_lengthText = "FIXED " + std::to_string(m_minLength);
            return;
        case genFrmLenMode_t::INCR:
        case genFrmLenMode_t::DECR: {
            m_mode = lc.mode == genFrmLenMode_t::INCR ? Lengths::Incr : Lengths::Decr;
            range(lc.minLength, lc.maxLength, kLengthPath);
            if (lc.stepExp < 0 || lc.stepExp > 13) {
                throw InputError(kLengthPath + ".stepExp", "expected 0..13 (steps of 2^stepExp: 1..8192 bytes), got " +
                                                               std::to_string(lc.stepExp));
            }
            m_step = std::uint64_t{1} << lc.stepExp;
            m_lengthCount = (m_maxLength - m_minLength) / m_step + 1;
            // The lengths reached, for the room checks.
            if (m_mode == Lengths::Incr) {
                m_maxLength = m_minLength + (m_lengthCount - 1) * m_step;
            } else {
                m_minLength = m_maxLength - (m_lengthCount - 1) * m_step;
            }
            m_lengthText = std::string(m_mode == Lengths::Incr ? "INCR " : "DECR ") + std::to_string(m_minLength) +
                           ".." + std::to_string(m_maxLength) + " step " + std::to_string(m_step);
            return;
        }
        case genFrmLenMode_t::RANDOM: {
            m_mode = Lengths::Random;
            range(lc.minLength, lc.maxLength, kLengthPath);
            m_lengthCount = m_maxLength - m_minLength + 1;
            const std::int32_t seed = in.port ? in.port->randomLengthSeed : 0;
            m_seedKey = std::uint64_t{static_cast<std::uint32_t>(seed)} << 32;
            m_lengthText = "RANDOM " + std::to_string(m_minLength) + ".." + std::to_string(m_maxLength) + " seed " +
                           std::to_string(seed);
            return;
        }
        case genFrmLenMode_t::IMIX:
            break;
        default:
            throw InputError(kLengthPath + ".mode", "MAX is not a length mode");
    }

    m_mode = Lengths::Imix;
    const bool given = in.port && !in.port->imix.distCfg.empty();
    const std::string path = "host.port.imix";
    Generator_3_bll::imixCfg_s imix;
    if (given) {
        imix = in.port->imix;
    } else {
        imix.lengthMode = iMixLengthMode_t::L2;
        imix.distCfg = {{60, 60, 7}, {590, 590, 4}, {1514, 1514, 1}};
        if (in.port) imix.seed = in.port->imix.seed;
    }
    if (imix.lengthMode == iMixLengthMode_t::L3) {
        const FrameLayout l = frame_layout(in.frame);
        const long ip = l.ipv4 >= 0 ? l.ipv4 : l.ipv6;
        if (ip < 0) throw InputError(path + ".lengthMode", "L3 lengths need an IP header in the frame template");
        m_imixExtra = static_cast<std::uint32_t>(ip);
    } else if (imix.lengthMode != iMixLengthMode_t::L2) {
        throw InputError(path + ".lengthMode", "expected L2 or L3");
    }
    m_minLength = kMaxFrameLength;
    m_maxLength = 0;
    for (std::size_t e = 0; e < imix.distCfg.size(); ++e) {
        const auto& d = imix.distCfg[e];
        const std::string ep = element_path(path + ".distCfg", e);
        if (d.weight < 0) throw InputError(ep + ".weight", "expected 0 or more, got " + std::to_string(d.weight));
        const std::size_t lo = length(d.minLength + static_cast<long>(m_imixExtra), ep + ".minLength");
        const std::size_t hi = length(d.maxLength + static_cast<long>(m_imixExtra), ep + ".maxLength");
        if (lo > hi) {
            throw InputError(ep + ".minLength", std::to_string(d.minLength) + " is above maxLength " +
                                                    std::to_string(d.maxLength));
        }
        if (d.weight == 0) continue;
        m_imixTotal += static_cast<std::uint64_t>(d.weight);
        m_imix.push_back({m_imixTotal, static_cast<std::uint32_t>(lo), static_cast<std::uint32_t>(hi - lo + 1)});
        m_minLength = std::min(m_minLength, lo);
        m_maxLength = std::max(m_maxLength, hi);
    }
    if (m_imixTotal == 0) throw InputError(path + ".distCfg", "no entry has a weight above 0");
    m_seedKey = std::uint64_t{static_cast<std::uint32_t>(imix.seed)} << 32;
    m_lengthText = "IMIX " + std::to_string(m_imix.size()) + " entries " + std::to_string(m_minLength) + ".." +
                   std::to_string(m_maxLength) + (given ? "" : " (the default)");
}

void FrameShaper::CheckRoom(BlockModifiers& mods) {
    std::size_t lastEnd = 0;
    std::size_t last = 0;
    for (std::size_t i = 0; i < mods.Size(); ++i) {
        const BlockModifiers::Window w = mods.WindowOf(i);
        if (w.size == 0) continue;
        const std::size_t end = w.offset + w.size;
        if (end > m_minLength) {
            throw InputError(mods.Path(i), "writes " + bytes_text(w.offset, end) + " but the shortest frame has " +
                                               std::to_string(m_minLength) + " bytes (" + m_lengthText + ")");
        }
        if (end > lastEnd) {
            lastEnd = end;
            last = i;
        }
    }
    if (!m_signature) return;
    const std::string path = kOptionsPath + ".insertSigField";
    const std::size_t headers = m_sums.HeadersEnd();
    if (m_minLength < headers + kSignatureSize) {
        throw InputError(path, "the " + std::to_string(kSignatureSize) + "-byte signature needs frames of at least " +
                                   std::to_string(headers + kSignatureSize) + " bytes (the headers end at byte " +
                                   std::to_string(headers) + "); the shortest frame has " + std::to_string(m_minLength) +
                                   " (" + m_lengthText + ")");
    }
    if (m_minLength - kSignatureSize < lastEnd) {
        throw InputError(path, "the signature of the shortest frame (" +
                                   bytes_text(m_minLength - kSignatureSize, m_minLength) + ") would cover " +
                                   mods.Path(last) + "'s " + bytes_text(mods.WindowOf(last).offset, lastEnd));
    }
}

void FrameShaper::MakeStreams(BlockModifiers& mods) {
    std::vector<std::size_t> streamMods;
    std::uint64_t cycle = 1;
    for (std::size_t i = 0; i < mods.Size(); ++i) {
        if (!mods.IsStream(i) || mods.WindowOf(i).size == 0) continue;
        streamMods.push_back(i);
        const std::uint64_t c = m_plan.ModifierCycle(i);
        cycle = cycle / std::gcd(cycle, c) * c;
        if (cycle > kMaxStreamCycle) {
            throw InputError(mods.Path(i) + ".useStream",
                             "the stream modifiers' values repeat only after more than " +
                                 std::to_string(kMaxStreamCycle) + " frames; the signature tells streams apart over at most that many");
        }
    }
    m_streamCycle = cycle;
    m_streamOf.assign(cycle, 0);
    m_before.assign(cycle, 0);
    m_perCycle.assign(1, static_cast<std::uint32_t>(cycle));
    if (streamMods.empty()) return;

    // The stream of each frame of the cycle: its stream modifiers' bytes, numbered as they
    // first appear.
    m_perCycle.clear();
    std::unordered_map<std::string, std::uint32_t> ids;
    const std::size_t chunk = 256;
    const std::size_t length = m_plan.FrameLength();
    std::vector<unsigned char> frames(chunk * length);
    std::string key;
    for (std::uint64_t first = 0; first < cycle; first += chunk) {
        const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(chunk, cycle - first));
        m_plan.Stamp(first, n, frames.data(), length);
        for (std::size_t k = 0; k < n; ++k) {
            key.clear();
            for (const std::size_t i : streamMods) {
                const BlockModifiers::Window w = mods.WindowOf(i);
                key.append(reinterpret_cast<const char*>(frames.data() + k * length + w.offset), w.size);
            }
            const auto found = ids.emplace(key, static_cast<std::uint32_t>(ids.size()));
            const std::uint32_t s = found.first->second;
            if (found.second) {
                if (s >= kSignatureStreams) {
                    throw InputError(mods.Path(streamMods.front()) + ".useStream",
                                     "the stream modifiers make more than " + std::to_string(kSignatureStreams) +
                                         " streams; the signature numbers at most that many");
                }
                m_perCycle.push_back(0);
            }
            m_streamOf[first + k] = s;
            m_before[first + k] = m_perCycle[s]++;
        }
    }
    m_streamCount = static_cast<std::uint32_t>(m_perCycle.size());
}

std::uint32_t FrameShaper::StreamOf(std::uint64_t i) const { return m_streamOf[i % m_streamCycle]; }

std::uint32_t FrameShaper::SequenceOf(std::uint64_t i) const {
    const std::uint64_t p = i % m_streamCycle;
    return static_cast<std::uint32_t>((i / m_streamCycle) * m_perCycle[m_streamOf[p]] + m_before[p]);
}

std::size_t FrameShaper::LengthOf(std::uint64_t i) const {
    switch (m_mode) {
        case Lengths::Fixed:
            return m_minLength;
        case Lengths::Incr:
            return m_minLength + static_cast<std::size_t>(i % m_lengthCount * m_step);
        case Lengths::Decr:
            return m_maxLength - static_cast<std::size_t>(i % m_lengthCount * m_step);
        case Lengths::Random:
            return m_minLength + static_cast<std::size_t>(scale_random(splitmix64(m_seedKey ^ i), m_lengthCount));
        case Lengths::Imix: {
            const std::uint64_t r = splitmix64(m_seedKey ^ i);
            const std::uint64_t w = ((r >> 32) * m_imixTotal) >> 32;
            std::size_t e = 0;
            while (m_imix[e].weightEnd <= w) ++e;
            return m_imix[e].min + static_cast<std::size_t>(((r & 0xffffffffu) * m_imix[e].span) >> 32);
        }
    }
    return m_minLength;
}

void FrameShaper::MeanLength(std::uint64_t& num, std::uint64_t& den) const {
    switch (m_mode) {
        case Lengths::Fixed:
            num = m_minLength;
            den = 1;
            return;
        case Lengths::Incr:
        case Lengths::Decr:
        case Lengths::Random:
            num = m_minLength + m_maxLength;
            den = 2;
            return;
        case Lengths::Imix:
            num = 0;
            for (std::size_t e = 0; e < m_imix.size(); ++e) {
                const std::uint64_t weight = m_imix[e].weightEnd - (e == 0 ? 0 : m_imix[e - 1].weightEnd);
                num += weight * (2 * std::uint64_t{m_imix[e].min} + m_imix[e].span - 1);
            }
            den = 2 * m_imixTotal;
            return;
    }
}

void FrameShaper::Finish(unsigned char* f, std::uint64_t i, std::size_t length, std::uint64_t txTime) const {
    if (length > m_template) {
        unsigned char* fill = f + m_template;
        const std::size_t n = length - m_template;
        switch (m_fill) {
            case Fill::Zero:
                std::memset(fill, 0, n);
                break;
            case Fill::Pattern:
                std::memcpy(fill, m_pattern.data(), n);
                break;
            case Fill::Prbs:
                prbs31_fill(static_cast<std::uint32_t>(splitmix64(i) >> 33), fill, n);
                break;
        }
    }
    if (length != m_template) m_sums.SetLengths(f, length);
    if (m_signature) {
        Signature s;
        s.block = static_cast<std::uint16_t>(m_blockId);
        s.stream = static_cast<std::uint16_t>(StreamOf(i));
        s.sequence = SequenceOf(i);
        s.txTime = txTime + m_options.signatureEpoch;
        write_signature(s, f + length - kSignatureSize, m_badSignatureCrc);
    }
    if (m_options.checksums) {
        if (length == m_template && !m_signature) {
            m_sums.Apply(f);
        } else {
            m_sums.Apply(f, length);
        }
    }
}

void FrameShaper::Shape(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
                        std::uint32_t* lengths, const std::uint64_t* txTimes) const {
    if (count == 0) return;
    if (count > 1 && stride < MaxLength()) {
        throw std::invalid_argument("frames need " + std::to_string(MaxLength()) + " bytes each; the stride is " +
                                    std::to_string(stride));
    }
    m_plan.Stamp(first, count, out, stride);
    if (m_plain) {
        if (m_options.checksums) m_sums.Apply(out, count, stride);
        for (std::size_t k = 0; k < count; ++k) lengths[k] = static_cast<std::uint32_t>(m_template);
    } else {
        for (std::size_t k = 0; k < count; ++k) {
            const std::uint64_t i = first + k;
            const std::size_t length = LengthOf(i);
            Finish(out + k * stride, i, length, txTimes != nullptr ? txTimes[k] : i * 1000);
            lengths[k] = static_cast<std::uint32_t>(length);
        }
    }
    if (!m_options.fcs) return;
    for (std::size_t k = 0; k < count; ++k) {
        unsigned char* f = out + k * stride;
        std::uint32_t crc = crc32_ethernet(f, lengths[k]);
        if (m_badFcs) crc = ~crc;
        for (unsigned b = 0; b < 4; ++b) f[lengths[k] + b] = static_cast<unsigned char>(crc >> (8 * b));
        lengths[k] += 4;
    }
}

void FrameShaper::Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
                        std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags) const {
    for (std::size_t k = 0; k < count; ++k) times[k] = (first + k) * 1000;
    if (tags != nullptr) std::fill(tags, tags + count, 0u);
    Shape(first, count, out, stride, lengths, times);
}

std::size_t FrameShaper::Frame(std::uint64_t i, unsigned char* out) const {
    std::uint32_t length = 0;
    Shape(i, 1, out, MaxLength(), &length);
    return length;
}

}  // namespace vrm::traffic
