// Internal storage cell of structs and arrays: scalars inline, other kinds as an owned value.
// Not part of the runtime's interface; code outside platform/ must not use it.
#pragma once

#include "platform/Tm_value.h"

namespace tm_detail {

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
