// A software port: the generator's common configuration, stream blocks, load profiles bound to
// them and the host's facts about the line, read from a port file, and the frames the port
// sends on its timeline (a FrameSource: any run of frames alone, any number of threads).
//
//   {
//     "common": {...},           genCommonCfg_s: mode, duration, rate, schedParams,
//                                randomLengthSeed, imix, stepSize
//     "blocks": [{...}, ...],    stream blocks as in a block file (each with its own "host"
//                                for field placement); only blocks with baseStream.enabled
//     "loadProfiles": [{...}],   loadProfile_s
//     "bindings": [{...}],       streamBlockLoadProfileBinding_s (streamBlockId = blockID)
//     "sequence": [{...}],       tableEntry_s: when given, the table times the frames
//                                (traffic/Sequence.h) and the profiles are not used
//     "host": {"lineRate": 10000000000, "overhead": 24, "minimumGap": 12, "frames": 1000}
//   }
//
// A block's rate is its bound profile's load; blocks without a profile share the port's rate
// (common.rate, FIXED) equally. A profile's burstSize and burstLoad make bursts (else the
// port's schedParams burstSize and burstLoad do): burstSize frames at burstLoad, the bursts
// spaced so that the block's mean rate is its load. startDelay is in microseconds. Frames at
// the same nanosecond go by priority (higher first), then by their blocks' order in the file.
// Transmit modes: CONTINUOUS (and unset) sends until the caller's limit; DURATION stops after
// duration SECONDS or FRAMES, or after one round of the sequence table (TABLE); STEP sends
// stepSize frames. A sequence table runs round after round except with DURATION TABLE.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "interfaces/generator_3_bll_records.h"
#include "interfaces/loadProfile_1_bll.h"
#include "traffic/BlockFile.h"
#include "traffic/FrameShaper.h"
#include "traffic/FrameSource.h"
#include "traffic/Rates.h"
#include "traffic/Schedule.h"

namespace vrm::traffic {

class BlockModifiers;

struct PortInput {
    Generator_3_bll::genCommonCfg_s common;
    std::vector<BlockInput> blocks;
    std::vector<LoadProfile_1_bll::loadProfile_s> profiles;
    std::vector<LoadProfile_1_bll::streamBlockLoadProfileBinding_s> bindings;
    std::vector<Generator_3_bll::tableEntry_s> sequence;
    LineSettings line;
    std::optional<std::uint64_t> frames;  // host.frames
};

// Reads a port file's JSON text; throws InputError with the JSON path of bad input.
PortInput parse_port(const std::string& text);
PortInput load_port(const std::string& file);

// A port as the requests a host sends to configure it: Generator_3.SetCommonCfg,
// SetStreamBlock, SetLoadProfile, StreamBlockLoadProfileBinding and SetTrafficSequenceTable,
// in a file of their wire bytes, each after its length (32 bits, little-endian).
//
// The requests of such a file as (offset, size); throws InputError("requests[k]") for a
// length the file cannot hold.
std::vector<std::pair<std::size_t, std::size_t>> split_port_requests(const std::string& bytes);
// `request` after its length, at the end of `out`.
void append_port_request(std::vector<unsigned char>& out, const std::vector<unsigned char>& request);
// Adds a decoded request's members (records in their JSON form) to a port file document;
// false for a request that configures no port.
bool add_port_request(nlohmann::ordered_json& port, const std::string& requestName, nlohmann::ordered_json& members);

class Port : public FrameSource {
  public:
    // Builds every enabled block's frames and the timeline. `frames` and `end` (nanoseconds)
    // limit a port that would send for ever (and cut one that would not). Throws InputError
    // naming the record of a setting that cannot be honoured, BuildError when the library
    // refuses a block.
    Port(const PortInput& in, const ShapeOptions& options = {}, std::uint64_t frames = Schedule::kNoLimit,
         std::uint64_t end = Schedule::kNoLimit);
    ~Port() override;

    std::size_t MaxLength() const override { return m_maxLength; }
    // Frames first .. first + count - 1 of the port; times[k] is the scheduled time (also in
    // the signature), tags[k] the block.
    void Stamp(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
               std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags) const override;
    // Many blocks' frames stay where their blocks made them, in turn, without being moved.
    void StampSlots(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride,
                    std::uint32_t* lengths, std::uint64_t* times, std::uint32_t* tags,
                    std::uint32_t* slots) const override;

    // pcapng names each frame's block: "block <blockID> <name>".
    const std::vector<std::string>& TagNames() const override { return m_tagNames; }

    std::uint64_t Frames() const { return m_timeline->Frames(); }
    const FrameTimeline& Timeline() const { return *m_timeline; }
    // The rate-based schedule (null when a sequence table times the frames).
    const Schedule* Rates() const { return m_rates; }
    // The enabled blocks, in file order: their names and their place in the port file.
    std::size_t Blocks() const { return m_blocks.size(); }
    const std::string& BlockName(std::size_t b) const { return m_blocks[b].name; }
    const std::vector<std::string>& Warnings() const { return m_warnings; }

  private:
    struct Block {
        std::string name;
        std::unique_ptr<BlockModifiers> mods;
        std::unique_ptr<FrameShaper> shaper;
    };
    std::vector<Block> m_blocks;
    std::vector<std::string> m_tagNames;
    std::unique_ptr<FrameTimeline> MakeSequence(const PortInput& in, const std::vector<std::size_t>& positions,
                                                bool repeat, std::uint64_t frames, std::uint64_t end);
    std::unique_ptr<FrameTimeline> m_timeline;
    const Schedule* m_rates = nullptr;
    // Room that Stamp reuses, one set per thread in a call at once.
    struct Scratch;
    std::unique_ptr<Scratch> TakeScratch() const;
    void GiveBack(std::unique_ptr<Scratch> s) const;
    // Stamp's work: frames in order, or (with `slots`) where their blocks made them.
    void Make(std::uint64_t first, std::size_t count, unsigned char* out, std::size_t stride, std::uint32_t* lengths,
              std::uint64_t* times, std::uint32_t* tags, std::uint32_t* slots) const;
    mutable std::mutex m_scratchMutex;
    mutable std::vector<std::unique_ptr<Scratch>> m_spare;
    std::size_t m_maxLength = 0;
    bool m_signatures = false;  // a block signs its frames (with their times)
    std::vector<std::string> m_warnings;
};

}  // namespace vrm::traffic
