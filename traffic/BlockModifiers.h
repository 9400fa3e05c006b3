// The block's modifiers as the library builds them: one set per user (each frames thread
// has its own), in modIndex order.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/FramePlan.h"
#include "traffic/JsonRecord.h"
#include "traffic/BlockFile.h"

namespace vrm::common {
class Modifier;
}

namespace vrm::traffic {

// The library refused to build the modifiers (its exception text, without a final newline).
class BuildError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class BlockModifiers {
  public:
    // Builds and links every modifier of `in.block`, applies the host's total counts and
    // validates. Throws BuildError when the library refuses to build them.
    explicit BlockModifiers(const BlockInput& in);
    ~BlockModifiers();
    BlockModifiers(const BlockModifiers&) = delete;
    BlockModifiers& operator=(const BlockModifiers&) = delete;

    // The validation result and the library's lines, exactly as it wrote them.
    bool Valid() const { return m_valid; }
    const std::string& ValidationText() const { return m_validation; }
    // The same lines, each preceded by the JSON path of the record or link it concerns
    // ("modLinks[1]: Modifier link from ...") and followed by the sizes it is about where
    // the library's text names none.
    const std::vector<std::string>& ValidationLines() const { return m_lines; }

    // Modifiers in modIndex order.
    std::size_t Size() const;
    uint32_t ModIndex(std::size_t i) const;
    // True for a modifier whose values tell the block's streams apart (the record's useStream).
    bool IsStream(std::size_t i) const;
    // The JSON path of modifier i's record ("rangeModifiers[2]").
    const std::string& Path(std::size_t i) const;
    void Value(std::size_t i, std::vector<uint8_t>& out);
    // Throws InputError naming the modifier when the library cannot compute it by index.
    void ValueAt(std::size_t i, std::vector<uint8_t>& out, uint32_t index);
    // Writes every modifier's value of frame `index` (by index, GetValueAt) into `frame`.
    // Throws InputError naming the modifier when the library cannot compute it by index.
    void ModifyAt(std::vector<uint8_t>& frame, uint32_t index);
    // Moves every modifier on by one frame.
    void Next();
    // Moves every modifier to frame `index` (from a fresh state).
    void Seek(uint64_t index);

    // Gives every modifier its field: the host's (a named header field or a bit range);
    // without one, the field named by the record's offsetReference when it is a known field
    // name; otherwise the whole frame, with a warning. The record's offset is the byte
    // offset inside the field. Throws InputError naming the host entry (or the record's
    // offset) when the library refuses the field. Warnings are "<JSON path>: <text>".
    void PlaceFields(const BlockInput& in, std::vector<std::string>* warnings = nullptr);
    // The block's frames compiled for stamping (after PlaceFields). Throws InputError naming
    // the modifier whose value does not fit the frame.
    vrm::common::FramePlan MakePlan(const BlockInput& in);
    // What a valid, placed block does that a user may not expect: modifiers writing the same
    // bits of the frame, and range values whose stepping carries through bits outside the
    // mask (the frames then differ from the values by index). "<JSON path>: <text>" lines.
    std::vector<std::string> Warnings(const BlockInput& in);
    // The bits of the frame that any modifier writes (after PlaceFields), one mask byte per
    // frame byte.
    std::vector<uint8_t> WrittenBits(const BlockInput& in);
    // The frame bytes modifier i writes bits of (after PlaceFields): the first, how many,
    // and the bits it owns in each. Empty for a modifier that writes no frame data.
    struct Window {
        std::size_t offset = 0;
        std::size_t size = 0;
        const unsigned char* mask = nullptr;
    };
    Window WindowOf(std::size_t i) const;

    // Writes every modifier's current value into `frame`.
    void Modify(std::vector<uint8_t>& frame);

    // The block with its modifier lists as the library writes them back.
    Generator_3_bll::streamBlock_s ToRpc(const Generator_3_bll::streamBlock_s& block);

  private:
    std::vector<std::vector<uint8_t>> BitsOfEach(const BlockInput& in);
    std::vector<std::string> Annotate(const BlockInput& in) const;
    InputError IndexRefusal(const vrm::common::Modifier& m) const;
    struct Impl;
    std::unique_ptr<Impl> m_impl;
    bool m_valid = false;
    std::string m_validation;
    std::vector<std::string> m_lines;
    std::map<uint32_t, std::string> m_paths;  // JSON path of each modifier's record
};

}  // namespace vrm::traffic
