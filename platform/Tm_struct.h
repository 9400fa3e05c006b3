// Structs: ordered, named members.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/Tm_catalog.h"
#include "platform/Tm_pool.h"
#include "platform/Tm_slot.h"
#include "platform/Tm_value.h"

// Common base of the values that hold members (structs and arrays).
class Tm_value_container : public Tm_value {
protected:
    using Tm_value::Tm_value;
};

// A struct: members in the order they were added, each with a name. Names need not be
// unique; look-ups by name find the first member of that name.
//
// Getters by name throw Tm_exception ("no member named 'x'") when the member is absent and
// Tm_type_mismatch_exception(found, wanted) when it has another kind. Scalars are read
// with the getter of exactly their kind; no widening.
class Tm_struct : public Tm_value_container {
public:
    Tm_struct();
    Tm_struct(const Tm_struct& other);
    Tm_struct& operator=(const Tm_struct& other);
    Tm_struct(Tm_struct&&) noexcept;
    Tm_struct& operator=(Tm_struct&&) noexcept;
    ~Tm_struct() override;

    Tm_value* clone() const override;
    bool equals(const Tm_value& other) const override;
    void accept(Tm_visitor& visitor) const override;

    // Removes every member.
    virtual void clear();

    int get_member_count() const { return static_cast<int>(m_members.size()); }
    // Index of the first member called `name`, or -1.
    int get_member_index(const std::string& name) const;
    // Name and kind of the member at `index`; Tm_out_of_range_exception outside the members.
    const std::string& get_member_name(int index) const;
    TMV get_member_value_type(int index) const;
    // Visits the member at `index` alone (no name).
    void member_accept(int index, Tm_visitor& visitor) const;

    void add_member(const std::string& name, bool v);
    void add_member(const std::string& name, signed char v);
    void add_member(const std::string& name, unsigned char v);
    void add_member(const std::string& name, short v);
    void add_member(const std::string& name, unsigned short v);
    void add_member(const std::string& name, int v);
    void add_member(const std::string& name, unsigned int v);
    void add_member(const std::string& name, long v);
    void add_member(const std::string& name, unsigned long v);
    void add_member(const std::string& name, double v);
    void add_member(const std::string& name, const char* v);
    void add_member(const std::string& name, const std::string& v);
    // A binary member holding `size` bytes from `data`.
    void add_member(const std::string& name, const unsigned char* data, unsigned int size);
    // A copy of `v` (null: Tm_exception).
    void add_member(const std::string& name, const Tm_value* v);
    // Takes ownership of `v` (null: Tm_exception); `v` is deleted on every failure path.
    // When `catalog` is given, the name is also interned there.
    void add_member_and_own(const std::string& name, Tm_value* v, Tm_catalog<std::string>* catalog = nullptr);

    bool get_member_bool(const std::string& name) const;
    signed char get_member_int8(const std::string& name) const;
    unsigned char get_member_uint8(const std::string& name) const;
    short get_member_int16(const std::string& name) const;
    unsigned short get_member_uint16(const std::string& name) const;
    int get_member_int32(const std::string& name) const;
    unsigned int get_member_uint32(const std::string& name) const;
    long get_member_int64(const std::string& name) const;
    unsigned long get_member_uint64(const std::string& name) const;
    double get_member_double(const std::string& name) const;
    const std::string& get_member_string(const std::string& name) const;
    const Tm_struct* get_member_struct(const std::string& name) const;
    const Tm_array* get_member_array(const std::string& name) const;
    const Tm_binary* get_member_binary(const std::string& name) const;
    const Tm_date* get_member_date(const std::string& name) const;
    const Tm_file* get_member_file(const std::string& name) const;
    const Message* get_member_message(const std::string& name) const;

    // Internal access for the codec, the catalog walk and the record converters: the shared
    // name and the storage cell of member `index` (unchecked), a reservation of room for
    // `count` members, and an append that shares `name`.
    const tm_detail::Name& member_name_handle(int index) const { return m_members[static_cast<size_t>(index)].name; }
    const tm_detail::Slot& member_slot(int index) const { return m_members[static_cast<size_t>(index)].slot; }
    void reserve_members(std::size_t count) { m_members.reserve(count); }
    void append(tm_detail::Name name, tm_detail::Slot slot) {
        m_members.emplace_back(std::move(name), std::move(slot));
        m_interned = tm_detail::kUnknown;
    }
    // The catalog that holds every member name of this struct, nested ones included
    // (see tm_detail::interned_in).
    std::uint64_t interned_in() const { return m_interned; }
    // Index of the member called `name`, trying position `hint` first (record readers find
    // their fields in order), or -1. `name` keeps its text at its address for the life of
    // the process (a literal, as the record descriptions' names are; see Name::is).
    int find_member(const char* name, int hint) const {
        if (hint >= 0 && hint < get_member_count() && m_members[static_cast<size_t>(hint)].name.is(name)) return hint;
        return find_member_from_start(name);
    }
    // The storage cell of the member called `name` (position `hint` tried first), refused as
    // the getters by name refuse: absent (Tm_exception) or of another kind than `kind`
    // (Tm_type_mismatch_exception).
    const tm_detail::Slot& member_of_kind(const char* name, int hint, TMV kind) const {
        const int i = find_member(name, hint);
        if (i < 0) no_member(name);
        const tm_detail::Slot& s = m_members[static_cast<size_t>(i)].slot;
        if (s.kind() != kind) kind_mismatch(s.kind(), kind);
        return s;
    }

protected:
    const tm_detail::Slot& typed(const std::string& name, TMV kind) const;
    // Tm_struct::clear(), with no call when there is nothing to remove (a struct filled once).
    void clear_members() {
        if (m_members.empty()) {
            m_interned = tm_detail::kNoNames;
        } else {
            Tm_struct::clear();
        }
    }
    // Appends a member whose name `catalog` (may be null) has just interned; `valueNames` says
    // where the names of the value's own members are (see tm_detail::interned_in).
    void append_interned(const tm_detail::Name& name, tm_detail::Slot&& slot, const Tm_catalog<std::string>* catalog,
                         std::uint64_t valueNames) {
        m_members.emplace_back(name, std::move(slot));
        m_interned =
            tm_detail::meet(m_interned, tm_detail::meet(catalog ? catalog->id() : tm_detail::kUnknown, valueNames));
    }

private:
    int find_member_from_start(const char* name) const;
    [[noreturn]] static void no_member(const char* name);
    [[noreturn]] static void kind_mismatch(TMV found, TMV wanted);
    // Made in place in the list (no temporary to move from and destroy).
    struct Member {
        Member(const tm_detail::Name& n, tm_detail::Slot&& s) : name(n), slot(std::move(s)) {}
        Member(tm_detail::Name&& n, tm_detail::Slot&& s) : name(std::move(n)), slot(std::move(s)) {}
        tm_detail::Name name;
        tm_detail::Slot slot;
    };
    std::vector<Member, tm_detail::Pool_allocator<Member>> m_members;
    std::uint64_t m_interned = tm_detail::kNoNames;
};

namespace tm_detail {

// A registered names table: the shared names of its entries, and the longest run of them,
// from the first, known to be interned in one catalog. So building records of one type
// interns each name once per catalog, not once per member. The run is noted as
// (catalog id << kRunBits) | length; a catalog's contents only grow under one id.
struct Names_entry {
    static constexpr int kRunBits = 24;
    const Name* handles;
    int count;
    mutable std::atomic<std::uint64_t> run{0};
    // Whether names[index] is known to be interned in `catalog`.
    bool interned(int index, const Tm_catalog<std::string>& catalog) const {
        const std::uint64_t r = run.load(std::memory_order_relaxed);
        return (r >> kRunBits) == catalog.id() &&
               static_cast<std::uint64_t>(index) < (r & ((std::uint64_t(1) << kRunBits) - 1));
    }
};
inline const Names_entry kNoNamesEntry{nullptr, 0};

}  // namespace tm_detail

// A struct whose member names come from a static, null-terminated names table: clear(names)
// installs the table, then members are added by their index in it. The catalog given with
// each member interns the name (normally the message's send catalog) so that the encoder's
// name table holds it once.
class Tm_prenamed_struct : public Tm_struct {
public:
    using Tm_struct::add_member;
    using Tm_struct::add_member_and_own;
    using Tm_struct::clear;

    Tm_prenamed_struct() = default;
    Tm_value* clone() const override;

    // Removes every member and installs `names` (may be null: no names).
    void clear(const char* const* names);
    int get_names_count() const { return m_table->count; }

    // A static names table as clear(names) registers it, for callers that install one table
    // many times (the record converters): clear(table) then skips the look-up.
    using Names_table = tm_detail::Names_entry;
    static const Names_table& names_table(const char* const* names);
    void clear(const Names_table& table) {
        clear_members();
        m_table = &table;
        reserve_members(static_cast<std::size_t>(table.count));
    }

    // Adds a member named names[index]. An index outside the table throws
    // Tm_out_of_range_exception(index, 0, count - 1) and adds nothing.
    void add_member(int index, bool v, Tm_catalog<std::string>* catalog) { put(index, tm_detail::Slot::of_bool(v), catalog); }
    void add_member(int index, signed char v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_signed(TMV_INT8, v), catalog);
    }
    void add_member(int index, unsigned char v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_unsigned(TMV_UINT8, v), catalog);
    }
    void add_member(int index, short v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_signed(TMV_INT16, v), catalog);
    }
    void add_member(int index, unsigned short v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_unsigned(TMV_UINT16, v), catalog);
    }
    void add_member(int index, int v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_signed(TMV_INT32, v), catalog);
    }
    void add_member(int index, unsigned int v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_unsigned(TMV_UINT32, v), catalog);
    }
    void add_member(int index, long v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_signed(TMV_INT64, v), catalog);
    }
    void add_member(int index, unsigned long v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_unsigned(TMV_UINT64, v), catalog);
    }
    void add_member(int index, double v, Tm_catalog<std::string>* catalog) {
        put(index, tm_detail::Slot::of_double(v), catalog);
    }
    void add_member(int index, const char* v, Tm_catalog<std::string>* catalog);
    void add_member(int index, const std::string& v, Tm_catalog<std::string>* catalog);
    // Takes ownership of `v`; it is deleted on every failure path.
    void add_member_and_own(int index, Tm_value* v, Tm_catalog<std::string>* catalog);
    // The same for the values the record converters make, whose kind the call tells: nested
    // records and arrays (inline, without asking the value what it is).
    void add_member_and_own(int index, Tm_prenamed_struct* v, Tm_catalog<std::string>* catalog) {
        if (!v || !valid(index) || !tm_detail::is_exactly<Tm_prenamed_struct>(*v))
            return add_member_and_own(index, static_cast<Tm_value*>(v), catalog);
        const std::uint64_t names = v->interned_in();
        put(index, tm_detail::Slot::of_value(TMV_STRUCT, v), catalog, names);
    }
    void add_member_and_own(int index, Tm_array* v, Tm_catalog<std::string>* catalog);

    // The shared name of entry `index` of the installed table (checked like add_member).
    const tm_detail::Name& name_handle(int index) const;

private:
    bool valid(int index) const { return static_cast<unsigned int>(index) < static_cast<unsigned int>(m_table->count); }
    void check(int index) const {
        if (!valid(index)) bad_index(index);
    }
    [[noreturn]] void bad_index(int index) const;
    // tm_detail::Node_arena::adopt, reachable from code inlined into other libraries.
    static void adopt(Tm_value* v);
    // Appends `slot` named names[index], interned in `catalog` (may be null), for a value
    // whose members' names are where `valueNames` says (see tm_detail::interned_in).
    void put(int index, tm_detail::Slot&& slot, Tm_catalog<std::string>* catalog,
             std::uint64_t valueNames = tm_detail::kNoNames) {
        check(index);
        if (catalog && !m_table->interned(index, *catalog)) intern(index, *catalog);
        append_interned(m_table->handles[index], std::move(slot), catalog, valueNames);
    }
    static tm_detail::Slot text_slot(Tm_string* text);
    // Interns names[index] in `catalog`, extending what the table knows is interned there.
    void intern(int index, Tm_catalog<std::string>& catalog) const;
    // The installed table (owned by a process-wide registry of tables, or the empty one).
    const tm_detail::Names_entry* m_table = &tm_detail::kNoNamesEntry;
};

namespace tm_detail {

// Whether `v` is one of the runtime's own structs (not a class a host derives from them).
inline bool is_plain_struct(const Tm_value& v) {
    return is_exactly<Tm_prenamed_struct>(v) || is_exactly<Tm_struct>(v);
}

}  // namespace tm_detail
