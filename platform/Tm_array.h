// Arrays: ordered, unnamed members, possibly of mixed kinds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/Tm_catalog.h"
#include "platform/Tm_pool.h"
#include "platform/Tm_slot.h"
#include "platform/Tm_struct.h"

// A growable array. Indexed getters check the kind first
// (Tm_type_mismatch_exception(found, wanted)), then the index
// (Tm_out_of_range_exception(index, 0, count - 1)). Scalars are read with the getter of
// exactly their kind.
//
// The virtual operations below are the array interface that derived arrays (for example
// arrays backed by a caller's container) implement; their order is part of the interface.
class Tm_array : public Tm_value_container {
public:
    explicit Tm_array(Tm_catalog<std::string>* catalog = nullptr);
    Tm_array(const Tm_array& other);
    Tm_array& operator=(const Tm_array& other);

    Tm_value* clone() const override;
    ~Tm_array() override;
    bool equals(const Tm_value& other) const override;
    void accept(Tm_visitor& visitor) const override;
    virtual void clear();
    // Reserves room for `count` members (negative: Tm_out_of_range_exception).
    virtual void reserve(int count);
    virtual void add_member(signed char v);
    virtual void add_member(unsigned char v);
    virtual void add_member(short v);
    virtual void add_member(unsigned short v);
    virtual void add_member(int v);
    virtual void add_member(unsigned int v);
    virtual void add_member(long v);
    virtual void add_member(unsigned long v);
    virtual void add_member(double v);
    virtual void add_member(bool v);
    virtual void add_member(const char* v);
    virtual void add_member(const std::string& v);
    // A copy of the binary (null: Tm_exception).
    virtual void add_member(const Tm_binary* v);
    // A binary member of `size` bytes from `data`.
    virtual void add_member(const unsigned char* data, unsigned int size);
    // A string member holding at most `maxLength` characters of `v`.
    virtual void add_member(const std::string& v, unsigned int maxLength);
    // A copy of `v` (null: Tm_exception).
    virtual void add_member(const Tm_value* v);
    // Takes ownership of `v` (null: Tm_exception); `v` is deleted on every failure path.
    virtual void add_member_and_own(Tm_value* v);
    virtual int get_member_count() const;
    virtual TMV get_member_value_type(int index) const;
    virtual signed char get_member_int8(int index) const;
    virtual unsigned char get_member_uint8(int index) const;
    virtual short get_member_int16(int index) const;
    virtual unsigned short get_member_uint16(int index) const;
    virtual int get_member_int32(int index) const;
    virtual unsigned int get_member_uint32(int index) const;
    virtual long get_member_int64(int index) const;
    virtual unsigned long get_member_uint64(int index) const;
    virtual double get_member_double(int index) const;
    virtual bool get_member_bool(int index) const;
    virtual const std::string& get_member_string(int index) const;
    virtual const Tm_array* get_member_array(int index) const;
    virtual const Tm_struct* get_member_struct(int index) const;
    virtual const Tm_date* get_member_date(int index) const;
    virtual const Tm_binary* get_member_binary(int index) const;
    virtual const Tm_file* get_member_file(int index) const;
    virtual const Message* get_member_message(int index) const;
    // Visits the item at `index` (checked like the getters).
    virtual void item_accept(int index, Tm_visitor& visitor) const;

    Tm_catalog<std::string>* get_catalog() const { return m_catalog; }

    // Internal access for the codec, the catalog walk and the record converters.
    // The elements of a uniform scalar array laid out as the wire carries them (little-endian,
    // each of its kind's wire size), when this array stores or refers to them that way:
    // `data` then points at `count` elements of kind `kind` and the call returns true.
    struct Packed {
        const unsigned char* data;
        std::size_t count;
        TMV kind;
    };
    bool packed(Packed& out) const {
        if (!m_packedData) return false;
        out = Packed{m_packedData, m_packedCount, static_cast<TMV>(m_packedKind)};
        return true;
    }
    // Whether this is a plain array (not a derived one), whose items item_slot() reads.
    bool is_plain() const;
    // Whether a plain array holds its items packed (then item_slot() does not apply).
    bool holds_packed() const { return m_ownsPacked; }
    // The storage cell of item `index` of a plain array without packed storage (unchecked).
    const tm_detail::Slot& item_slot(int index) const { return m_items[static_cast<size_t>(index)]; }
    // Replaces the items of a plain array with `count` packed elements of scalar kind `kind`
    // copied from `data` (wire layout).
    void assign_packed(TMV kind, const unsigned char* data, std::size_t count);
    // Appends a storage cell to a plain array without packed storage.
    void append_item(tm_detail::Slot slot) {
        m_items.push_back(std::move(slot));
        m_interned = tm_detail::kUnknown;
    }
    // The catalog that holds every member name of this array's items (see
    // tm_detail::interned_in).
    std::uint64_t interned_in() const { return m_interned; }
    // Wire size of one element of scalar kind `kind`.
    static std::size_t wire_size(TMV kind);

    // Whether a derived array said it owns nothing that its destructor must free (an arena
    // holding it then need not run its destructor).
    bool owns_nothing() const { return m_ownsNothing && m_items.capacity() == 0; }

protected:
    // Derived arrays whose elements sit contiguously in wire layout announce them here (a
    // count beyond 32 bits is not announced; such an array is walked item by item).
    void set_packed_view(const void* data, std::size_t count, TMV kind) {
        if (count > UINT32_MAX) return;
        m_packedData = static_cast<const unsigned char*>(data);
        m_packedCount = static_cast<std::uint32_t>(count);
        m_packedKind = static_cast<unsigned char>(kind);
    }
    // Derived arrays that hold nothing of their own (views of storage that outlives them,
    // refusing every mutation) say so once constructed.
    void set_owns_nothing() { m_ownsNothing = true; }
    // Throws Tm_out_of_range_exception(index, 0, count - 1) unless 0 <= index < count.
    static void check_index(int index, int count);

private:
    const tm_detail::Slot& typed(int index, TMV kind) const;
    tm_detail::Slot scalar(int index, TMV kind) const;
    // Turns packed storage into one slot per element (before a mutation).
    void unpack();
    // Element `index` of packed storage of kind `kind` (checked like the getters).
    tm_detail::Slot packed_slot(int index, TMV kind) const;
    tm_detail::Slot element_slot(std::size_t index) const;
    // Appends a value (a struct, array or other non-scalar) and notes where its names are.
    void append_value(tm_detail::Slot slot);
    // Gives back the packed storage a plain array owns, if any.
    void drop_packed();

    // Laid out so that the whole array is 80 bytes: the count fills the padding after the
    // value's kind, and short packed payloads (most are a few bytes) sit in the node.
    static constexpr std::size_t kInlinePacked = 13;
    // Elements of the packed storage (a plain array's own, or a derived array's view).
    std::uint32_t m_packedCount = 0;
    Tm_catalog<std::string>* m_catalog;
    std::vector<tm_detail::Slot, tm_detail::Pool_allocator<tm_detail::Slot>> m_items;
    // The packed elements: m_inline, a block of the node pool that the array owns, or a
    // derived array's view.
    const unsigned char* m_packedData = nullptr;
    std::uint64_t m_interned = tm_detail::kNoNames;
    unsigned char m_inline[kInlinePacked];
    unsigned char m_packedKind = TMV_UINT8;
    bool m_ownsPacked = false;
    bool m_ownsNothing = false;
};

inline void Tm_prenamed_struct::add_member_and_own(int index, Tm_array* v, Tm_catalog<std::string>* catalog) {
    if (!v || !valid(index)) return add_member_and_own(index, static_cast<Tm_value*>(v), catalog);
    tm_detail::Slot slot = tm_detail::Slot::of_value(TMV_ARRAY, v);  // owns v from here on
    const bool plain = tm_detail::is_exactly<Tm_array>(*v);
    // Only a derived array that owns storage has a destructor for an arena to run.
    if (!plain && !v->owns_nothing()) adopt(v);
    Tm_array::Packed p;
    const std::uint64_t names = v->packed(p) ? tm_detail::kNoNames : plain ? v->interned_in() : tm_detail::kUnknown;
    put(index, std::move(slot), catalog, names);
}
