// Internal storage cell of structs and arrays: scalars inline, other kinds as an owned value.
// Not part of the runtime's interface; code outside platform/ must not use it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <typeinfo>

#include "platform/Tm_value.h"

namespace tm_detail {

// Whether `v` is exactly of class T, not of a class derived from it. The runtime's classes
// have their type information emitted once, in this library, so comparing addresses
// decides (comparing type_info objects would compare mangled names when they differ).
template <class T>
bool is_exactly(const Tm_value& v) {
    return &typeid(v) == &typeid(T);
}

// Whether `t` is the NUL-terminated text `s`: one pass, without measuring `s` first (the first
// characters decide for nearly every pair).
inline bool same_text(const std::string& t, const char* s) {
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (s[i] == '\0' || s[i] != t[i]) return false;
    }
    return s[t.size()] == '\0';
}

// A member name shared by every struct member that carries it: one heap text per distinct
// name of a names table or of a decoded name table, however many members use it. Copies
// share the text (atomic reference count; names may be shared between messages that
// different threads use). Besides the text, a name remembers its index in the last
// catalog that interned it, so that interning a name again costs no hashing.
//
// A borrowed name refers to a text that something else keeps alive (a decoded message
// keeps its name table): making and dropping it costs no count. Copying it gives a counted
// name, so copies may outlive the keeper.
class Name {
public:
    explicit Name(const std::string& text) : m_bits(bits_of(new Rep(text))) {}
    explicit Name(const char* text) : m_bits(bits_of(new Rep(text))) {}
    // A name that lives as long as the process (the entries of static names tables): copies
    // share it without counting, which keeps building records free of atomic operations.
    struct Immortal {};
    Name(const char* text, Immortal) : m_bits(bits_of(new Rep(text)) | kImmortalBit) {}
    // A borrowed reference to `keeper`'s text, which must outlive every read through it.
    struct Borrowed {};
    Name(const Name& keeper, Borrowed) noexcept : m_bits(keeper.m_bits | kBorrowedBit) {}
    Name(const Name& o) noexcept : m_bits(o.m_bits & ~kBorrowedBit) {
        if (!(m_bits & kImmortalBit)) rep()->refs.fetch_add(1, std::memory_order_relaxed);
    }
    Name(Name&& o) noexcept : m_bits(o.m_bits) { o.m_bits = 0; }
    Name& operator=(const Name& o) noexcept {
        Name copy(o);
        std::swap(m_bits, copy.m_bits);
        return *this;
    }
    Name& operator=(Name&& o) noexcept {
        std::swap(m_bits, o.m_bits);
        return *this;
    }
    ~Name() {
        if (m_bits == 0 || (m_bits & (kBorrowedBit | kImmortalBit))) return;
        Rep* r = rep();
        if (r->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) delete r;
    }

    const std::string& text() const { return rep()->text; }
    // Whether the text is `s` (NUL-terminated). `s` must keep its text at its address for
    // the life of the process (a literal, as the record descriptions' names are): the name
    // remembers the address it last matched and recognises it again without comparing.
    bool is(const char* s) const {
        Rep* r = rep();
        if (r->matched.load(std::memory_order_relaxed) == s) return true;
        if (!same_text(r->text, s)) return false;
        r->matched.store(s, std::memory_order_relaxed);
        return true;
    }
    // Identity of the shared text: equal identities mean equal texts.
    const void* id() const { return rep(); }

    // The index remembered for catalog `catalogId`, or -1.
    int cached_index(std::uint64_t catalogId) const {
        const std::uint64_t v = rep()->cache.load(std::memory_order_relaxed);
        return (v >> kIndexBits) == catalogId && (v & kIndexMask) != 0 ? static_cast<int>((v & kIndexMask) - 1) : -1;
    }
    void remember_index(std::uint64_t catalogId, int index) const {
        if (static_cast<std::uint64_t>(index) + 1 > kIndexMask) return;
        rep()->cache.store((catalogId << kIndexBits) | (static_cast<std::uint64_t>(index) + 1),
                           std::memory_order_relaxed);
    }

private:
    static constexpr int kIndexBits = 24;
    static constexpr std::uint64_t kIndexMask = (std::uint64_t(1) << kIndexBits) - 1;
    // Which references cost no count, told by the reference itself so that copying and
    // dropping one (once per struct member) never reads the shared text's state.
    static constexpr std::uintptr_t kBorrowedBit = 1;
    static constexpr std::uintptr_t kImmortalBit = 2;
    struct Rep {
        explicit Rep(std::string t) : text(std::move(t)) {}
        std::string text;
        std::atomic<long> refs{1};
        std::atomic<std::uint64_t> cache{0};
        std::atomic<const char*> matched{nullptr};
    };
    static std::uintptr_t bits_of(Rep* r) { return reinterpret_cast<std::uintptr_t>(r); }
    Rep* rep() const { return reinterpret_cast<Rep*>(m_bits & ~(kBorrowedBit | kImmortalBit)); }
    static_assert(alignof(Rep) > (kBorrowedBit | kImmortalBit), "the tag bits must be free in a text's address");
    // The text's address, with kBorrowedBit set when the reference is borrowed and
    // kImmortalBit when the text lives as long as the process.
    std::uintptr_t m_bits;
};

class Slot {
public:
    Slot() : m_kind(TMV_INT32) { m_u.i = 0; }
    static Slot of_signed(TMV kind, long v) { Slot s; s.m_kind = kind; s.m_u.i = v; return s; }
    static Slot of_unsigned(TMV kind, unsigned long v) { Slot s; s.m_kind = kind; s.m_u.u = v; return s; }
    static Slot of_double(double v) { Slot s; s.m_kind = TMV_DOUBLE; s.m_u.d = v; return s; }
    static Slot of_bool(bool v) { return of_unsigned(TMV_BOOL, v ? 1 : 0); }
    // Takes ownership of `v` (non-null). A boxed scalar is unboxed and deleted.
    static Slot owning(Tm_value* v);
    // Takes ownership of `v` (non-null), whose kind is `kind`, not a scalar.
    static Slot of_value(TMV kind, Tm_value* v) {
        Slot s;
        s.m_kind = kind;
        s.m_u.p = v;
        return s;
    }
    // Holds `v` (non-null, of non-scalar kind `kind`), which a Node_arena owns: the slot
    // never deletes it.
    static Slot in_arena(TMV kind, Tm_value* v) {
        Slot s = of_value(kind, v);
        s.m_inArena = true;
        return s;
    }
    // From now on the value (if any) belongs to a Node_arena: the slot no longer deletes it.
    void leave_to_arena() {
        if (!tmv_is_scalar(m_kind)) m_inArena = true;
    }

    Slot(Slot&& o) noexcept : m_kind(o.m_kind), m_inArena(o.m_inArena), m_u(o.m_u) {
        o.m_kind = TMV_INT32;
        o.m_inArena = false;
        o.m_u.i = 0;
    }
    Slot& operator=(Slot&& o) noexcept;
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;
    // Inline: arrays of scalars destroy one slot per element.
    ~Slot() {
        if (!tmv_is_scalar(m_kind) && !m_inArena) delete m_u.p;
    }

    Slot clone() const;
    bool equals(const Slot& o) const;
    void accept(Tm_visitor& v) const;

    TMV kind() const { return m_kind; }
    long as_signed() const { return m_u.i; }
    unsigned long as_unsigned() const { return m_u.u; }
    double as_double() const { return m_u.d; }
    bool as_bool() const { return m_u.u != 0; }
    // The owned value of a non-scalar slot, null for scalars.
    const Tm_value* value() const { return tmv_is_scalar(m_kind) ? nullptr : m_u.p; }

private:
    void reset();
    TMV m_kind;
    bool m_inArena = false;
    union {
        long i;
        unsigned long u;
        double d;
        Tm_value* p;
    } m_u;
};

// Which catalog holds every member name of a value, nested ones included, so that
// interning the names of a message again can skip what its builder interned as it went:
// a catalog's id, kNoNames for a value without member names, or kUnknown.
constexpr std::uint64_t kNoNames = ~std::uint64_t(0);
constexpr std::uint64_t kUnknown = 0;
inline std::uint64_t meet(std::uint64_t a, std::uint64_t b) {
    return a == kNoNames ? b : b == kNoNames || a == b ? a : kUnknown;
}
// For the value in `slot` (the runtime's own structs and arrays know; other values with
// members do not).
std::uint64_t interned_in(const Slot& slot);

}  // namespace tm_detail
