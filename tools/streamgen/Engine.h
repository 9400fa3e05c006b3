// The block's modifiers as the library builds them: one set per user (each frames thread
// has its own), in modIndex order.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/FramePlan.h"
#include "tools/streamgen/BlockFile.h"

namespace streamgen {

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

    // Modifiers in modIndex order.
    std::size_t Size() const;
    uint32_t ModIndex(std::size_t i) const;
    void Value(std::size_t i, std::vector<uint8_t>& out);
    void ValueAt(std::size_t i, std::vector<uint8_t>& out, uint32_t index);
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
    // Writes every modifier's current value into `frame`.
    void Modify(std::vector<uint8_t>& frame);

    // The block with its modifier lists as the library writes them back.
    Generator_3_bll::streamBlock_s ToRpc(const Generator_3_bll::streamBlock_s& block);

  private:
    std::vector<std::vector<uint8_t>> BitsOfEach(const BlockInput& in);
    struct Impl;
    std::unique_ptr<Impl> m_impl;
    bool m_valid = false;
    std::string m_validation;
};

}  // namespace streamgen
