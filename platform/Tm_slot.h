// Internal storage cell of structs and arrays: scalars inline, other kinds as an owned value.
// Not part of the runtime's interface; code outside platform/ must not use it.
#pragma once

#include <atomic>
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

// A member name shared by every struct member that carries it: one heap text per distinct
// name of a names table or of a decoded name table, however many members use it. Copies
// share the text (atomic reference count; names may be shared between messages that
// different threads use). Besides the text, a name remembers its index in the last
// catalog that interned it, so that interning a name again costs no hashing.
class Name {
public:
    explicit Name(const std::string& text) : m_rep(new Rep(text, false)) {}
    explicit Name(const char* text) : m_rep(new Rep(text, false)) {}
    // A name that lives as long as the process (the entries of static names tables): copies
    // share it without counting, which keeps building records free of atomic operations.
    struct Immortal {};
    Name(const char* text, Immortal) : m_rep(new Rep(text, true)) {}
    Name(const Name& o) noexcept : m_rep(o.m_rep) {
        if (!m_rep->immortal) m_rep->refs.fetch_add(1, std::memory_order_relaxed);
    }
    Name(Name&& o) noexcept : m_rep(o.m_rep) { o.m_rep = nullptr; }
    Name& operator=(const Name& o) noexcept {
        Name copy(o);
        std::swap(m_rep, copy.m_rep);
        return *this;
    }
    Name& operator=(Name&& o) noexcept {
        std::swap(m_rep, o.m_rep);
        return *this;
    }
    ~Name() {
        if (m_rep && !m_rep->immortal && m_rep->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) delete m_rep;
    }

    const std::string& text() const { return m_rep->text; }
    // Identity of the shared text: equal identities mean equal texts.
    const void* id() const { return m_rep; }

    // The index remembered for catalog `catalogId`, or -1.
    int cached_index(std::uint64_t catalogId) const {
        const std::uint64_t v = m_rep->cache.load(std::memory_order_relaxed);
        return (v >> kIndexBits) == catalogId && (v & kIndexMask) != 0 ? static_cast<int>((v & kIndexMask) - 1) : -1;
    }
    void remember_index(std::uint64_t catalogId, int index) const {
        if (static_cast<std::uint64_t>(index) + 1 > kIndexMask) return;
        m_rep->cache.store((catalogId << kIndexBits) | (static_cast<std::uint64_t>(index) + 1),
                           std::memory_order_relaxed);
    }

private:
    static constexpr int kIndexBits = 24;
    static constexpr std::uint64_t kIndexMask = (std::uint64_t(1) << kIndexBits) - 1;
    struct Rep {
        Rep(std::string t, bool forever) : text(std::move(t)), immortal(forever) {}
        std::string text;
        const bool immortal;
        std::atomic<long> refs{1};
        std::atomic<std::uint64_t> cache{0};
    };
    Rep* m_rep;
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

    Slot(Slot&& o) noexcept : m_kind(o.m_kind), m_u(o.m_u) { o.m_kind = TMV_INT32; o.m_u.i = 0; }
    Slot& operator=(Slot&& o) noexcept;
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;
    // Inline: arrays of scalars destroy one slot per element.
    ~Slot() {
        if (!tmv_is_scalar(m_kind)) delete m_u.p;
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
    union {
        long i;
        unsigned long u;
        double d;
        Tm_value* p;
    } m_u;
};

}  // namespace tm_detail
