#include "platform/Tm_slot.h"

#include <memory>

#include "platform/Tm_exception.h"
#include "platform/Tm_pool.h"

namespace tm_detail {

Slot Slot::owning(Tm_value* v) {
    std::unique_ptr<Tm_value> owned(v);
    if (!owned) throw Tm_exception("null value");
    switch (owned->get_value_type()) {
        case TMV_INT8: return of_signed(TMV_INT8, static_cast<Tm_int8&>(*owned).get());
        case TMV_UINT8: return of_unsigned(TMV_UINT8, static_cast<Tm_uint8&>(*owned).get());
        case TMV_INT16: return of_signed(TMV_INT16, static_cast<Tm_int16&>(*owned).get());
        case TMV_UINT16: return of_unsigned(TMV_UINT16, static_cast<Tm_uint16&>(*owned).get());
        case TMV_INT32: return of_signed(TMV_INT32, static_cast<Tm_int32&>(*owned).get());
        case TMV_UINT32: return of_unsigned(TMV_UINT32, static_cast<Tm_uint32&>(*owned).get());
        case TMV_INT64: return of_signed(TMV_INT64, static_cast<Tm_int64&>(*owned).get());
        case TMV_UINT64: return of_unsigned(TMV_UINT64, static_cast<Tm_uint64&>(*owned).get());
        case TMV_DOUBLE: return of_double(static_cast<Tm_double&>(*owned).get());
        case TMV_BOOL: return of_bool(static_cast<Tm_bool&>(*owned).get());
        default: {
            Slot s;
            s.m_kind = owned->get_value_type();
            s.m_u.p = owned.release();
            Node_arena::adopt(s.m_u.p);
            return s;
        }
    }
}

Slot& Slot::operator=(Slot&& o) noexcept {
    if (this != &o) {
        reset();
        m_kind = o.m_kind;
        m_inArena = o.m_inArena;
        m_u = o.m_u;
        o.m_kind = TMV_INT32;
        o.m_inArena = false;
        o.m_u.i = 0;
    }
    return *this;
}

void Slot::reset() {
    if (!tmv_is_scalar(m_kind) && !m_inArena) delete m_u.p;
    m_kind = TMV_INT32;
    m_inArena = false;
    m_u.i = 0;
}

Slot Slot::clone() const {
    if (tmv_is_scalar(m_kind)) {
        Slot s;
        s.m_kind = m_kind;
        s.m_u = m_u;
        return s;
    }
    return owning(m_u.p->clone());
}

bool Slot::equals(const Slot& o) const {
    if (m_kind != o.m_kind) return false;
    switch (m_kind) {
        case TMV_INT8:
        case TMV_INT16:
        case TMV_INT32:
        case TMV_INT64: return m_u.i == o.m_u.i;
        case TMV_DOUBLE: return m_u.d == o.m_u.d;
        case TMV_UINT8:
        case TMV_UINT16:
        case TMV_UINT32:
        case TMV_UINT64:
        case TMV_BOOL: return m_u.u == o.m_u.u;
        default: return m_u.p->equals(*o.m_u.p);
    }
}

void Slot::accept(Tm_visitor& v) const {
    switch (m_kind) {
        case TMV_INT8: v.visit_int8(static_cast<int>(m_u.i)); break;
        case TMV_UINT8: v.visit_uint8(static_cast<unsigned int>(m_u.u)); break;
        case TMV_INT16: v.visit_int16(static_cast<int>(m_u.i)); break;
        case TMV_UINT16: v.visit_uint16(static_cast<unsigned int>(m_u.u)); break;
        case TMV_INT32: v.visit_int32(static_cast<int>(m_u.i)); break;
        case TMV_UINT32: v.visit_uint32(static_cast<unsigned int>(m_u.u)); break;
        case TMV_INT64: v.visit_int64(m_u.i); break;
        case TMV_UINT64: v.visit_uint64(m_u.u); break;
        case TMV_DOUBLE: v.visit_double(m_u.d); break;
        case TMV_BOOL: v.visit_bool(m_u.u != 0); break;
        default: m_u.p->accept(v); break;
    }
}

}  // namespace tm_detail
