#ifndef VRM_COMMON_MODIFIER_H
#define VRM_COMMON_MODIFIER_H

#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "common/FieldPacker.h"

namespace Generator_3_bll {
struct streamBlock_s;
}

namespace vrm {
namespace common {

// Abstract base of every modifier. Owns the modifier's field packer and its parallel
// modifiers, keeps the (non-owning) parent and child links that chain modifiers into carry
// chains, and offers the frame operations that fetch the current value and pack it.
//
// A parent repeats each of its values until all of its children have gone through their
// cycles; the number of extra repeats is its child stutter count, recomputed from the least
// common multiple of the children's effective recycle counts whenever a link changes.
class Modifier {
  public:
    // Optional host predicate on the current value, bound to an object.
    using NotReadyCheck = bool (Modifier::*)(const std::vector<unsigned char>& value);

    Modifier();
    virtual ~Modifier();

    Modifier(const Modifier&) = delete;
    Modifier& operator=(const Modifier&) = delete;

    virtual void SetModIndex(unsigned int index);
    virtual unsigned int GetModIndex() const;
    virtual bool isRange() const;
    // Checks the configuration; appends one line per failure to `errors` when it is not null.
    // Never throws.
    virtual bool Validate(std::ostringstream* errors) = 0;
    virtual bool Update(std::ostringstream* errors);
    // Appends the modifier's descriptor to the stream block record.
    virtual void ToRpc(Generator_3_bll::streamBlock_s& block) = 0;
    virtual bool IsStreamModifier() const = 0;
    virtual void SetEnableStream(bool enable) = 0;
    virtual void SetStutterCount(unsigned int count) = 0;
    virtual unsigned int GetStutterCount() const = 0;
    virtual void SetTotalCount(unsigned int count) = 0;
    virtual unsigned int GetTotalCount() const = 0;
    virtual unsigned int GetEffectiveRecycleCount() const;
    virtual unsigned int GetRecycleCount() const;
    virtual unsigned int GetChildStutterCount() const;
    virtual unsigned int GetRelativeOffset() const = 0;
    virtual std::string GetOffsetReference() const = 0;
    virtual void SetOffsetReference(const std::string& reference);
    virtual unsigned char GetDataSizeInBytes() const = 0;
    // The packer's field bit length.
    virtual unsigned int GetBitLength() const;
    virtual void Reset() = 0;
    virtual void Next() = 0;
    // Clears the owned bits of part of the packer's window.
    virtual void ZeroBytes(std::vector<unsigned char>& frame, unsigned char windowOffset,
                           unsigned char windowSize);
    virtual void UpdateChildStutterCount(unsigned int count);
    // Current value, most significant byte first.
    virtual void GetValue(std::vector<unsigned char>& value) = 0;
    // Value of the given frame index, most significant byte first.
    virtual void GetValueAt(std::vector<unsigned char>& value, unsigned int index) = 0;

    // Frame operations: fetch a value into the internal buffer and pack it. They allocate
    // nothing once the buffer has the value's size (append-mode GetBytes may grow `out`).
    void ModifyBytes(std::vector<unsigned char>& frame, bool xorMode);
    void ModifyBytesAtIndex(std::vector<unsigned char>& frame, unsigned int index);
    void GetBytes(std::vector<unsigned char>& out, bool append);
    void GetBytesAtIndex(std::vector<unsigned char>& out, unsigned int index, bool append);
    void ZeroBytes(std::vector<unsigned char>& frame);
    unsigned int GetAbsoluteOffset() const;
    unsigned int GetAbsoluteBitOffset() const;
    FieldPacker* GetFieldPacker() const;

    bool HasParent() const;
    void SetEnabled(bool enabled);
    // True when the modifier was added as a parallel modifier with the flag set.
    bool GetParallelFlag() const { return m_parallelFlag; }

    // Builds the field packer for a field at `absoluteBitOffset` of `bitLength` bits. On an
    // exception from the packer the previous packer stays in place.
    void SetFieldParams(unsigned int absoluteBitOffset, unsigned int bitLength);

    // Chaining. Refusals are reported by a false result.
    bool AddParentModifier(Modifier& parent);
    bool AddChildModifier(Modifier& child);
    void RemoveParentModifier(Modifier& parent);
    void RemoveChildModifier(Modifier& child);
    void RemoveAllChildModifiers();
    void UpdateParents();
    void ChildUpdate();

    // Takes ownership of `modifier` (leaving the argument empty) and returns true, or refuses
    // it (null, this modifier, different stream kind, already listed) and returns false; a
    // refused modifier stays with the argument, so a temporary owner destroys it.
    bool AddParallelModifier(std::unique_ptr<Modifier>&& modifier, bool flag);
    // Hands the parallel modifiers and their ownership to the caller; the list is emptied.
    void ReleaseParallelModifiers(std::vector<Modifier*>& out);

    static unsigned long Gcd(unsigned long a, unsigned long b);
    // Least common multiple of the distinct values; 0 for an empty list, a zero value or a
    // result above 32 bits.
    static unsigned int FindLcm(const std::vector<unsigned int>& values);

    // Binds (or, with a null target or check, unbinds) the not-ready predicate.
    void BindNotReadyCheck(Modifier* target, NotReadyCheck check);
    // False without a bound predicate; otherwise the predicate applied to the current value.
    bool CurrentValueIndicatesIfNotReady(int unused);

    // Bit index, counted from the value's most significant bit, of the first significant
    // bit of `mask` when its first non-zero byte is `byteIndex`: 8 * byteIndex, plus the
    // leading zero bits of that byte when it lies inside the mask and is neither 0x00 nor
    // 0xFF.
    static unsigned int MaskOffsetAdjust(const std::vector<unsigned char>* mask, unsigned int byteIndex);

  protected:
    // What a range modifier tells SetFieldParams about its value.
    struct RangeFieldInfo {
        // Index (from the most significant byte) of the last byte of the four-byte span a
        // hardware counter steps.
        unsigned char stepByteIndex = 0;
        // Index of the first non-zero mask byte within the searched span.
        unsigned char msbMaskByteIndex = 0;
        // The mask value; may be null or empty when there is none.
        const std::vector<unsigned char>* mask = nullptr;
    };

    // Hook of the range modifier, consulted by SetFieldParams when isRange() is true. A range
    // modifier overrides it to fill `info` from its own record (its GetStepByteIndex(),
    // GetMsbMaskByteIndex() and mask value) and return true. The base returns false, and
    // SetFieldParams then packs the modifier like any other: the full data size, no offset
    // adjustment and no mask.
    //
    // With the information, SetFieldParams limits a non-stream modifier wider than four bytes
    // to the four bytes ending at the step byte (offsetAdjust = stepByteIndex - 3 when that is
    // positive, value bytes taken from the front), and places the mask's first significant
    // bit with MaskOffsetAdjust(mask, msbMaskByteIndex).
    virtual bool GetRangeFieldInfo(RangeFieldInfo& info) const;

    // Marks the modifier as one that never touches frame data: SetFieldParams then installs
    // a null packer.
    void SetFrameDataSupported(bool supported) { m_frameDataSupported = supported; }

  private:
    friend class StreamBlockModifiers;
    // Bulk linking for a set of modifiers that recomputes the repeat counts once, children
    // before parents, instead of after every link. LinkChildWithoutUpdate refuses what
    // AddChildModifier refuses, except that the caller guarantees the link is new.
    bool LinkChildWithoutUpdate(Modifier& child);
    // ChildUpdate's recomputation of this modifier alone; true when ChildUpdate would go on
    // to the parents.
    bool RefreshChildStutterCount();
    // Drops every parent and child link without any update (the set is being destroyed).
    void UnlinkWithoutUpdate();
    // FindLcm's fold over values already distinct and ascending (n >= 1).
    static unsigned int LcmOfDistinctAscending(const unsigned int* values, std::size_t n);

    // The modifier's place in the StreamBlockModifiers that owns it (or -1).
    std::size_t m_setPosition = static_cast<std::size_t>(-1);

    std::vector<Modifier*> m_children;  // not owned
    std::vector<Modifier*> m_parents;   // not owned
    bool m_enabled = true;
    bool m_frameDataSupported = true;
    std::unique_ptr<FieldPacker> m_fieldPacker;
    std::vector<unsigned char> m_value;
    std::vector<std::unique_ptr<Modifier>> m_parallelModifiers;

  protected:
    // Flags for the host; the engine only initialises them, and sets m_parallelFlag of a
    // modifier added as a parallel modifier.
    bool m_hostFlag1 = false;
    bool m_parallelFlag = false;
    bool m_hostFlag3 = false;
    bool m_hostFlag4 = true;

  private:
    Modifier* m_notReadyTarget = nullptr;
    NotReadyCheck m_notReadyCheck = nullptr;
    // Set while ChildUpdate runs on this modifier, so that a cycle of links ends instead of
    // recursing forever.
    bool m_inChildUpdate = false;
};

}  // namespace common
}  // namespace vrm

#endif  // VRM_COMMON_MODIFIER_H
