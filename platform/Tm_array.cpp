#include "platform/Tm_array.h"

#include <cstdint>
#include <cstring>
#include <typeinfo>

#include "platform/Message.h"
#include "platform/Tm_copy.h"
#include "platform/Tm_exception.h"

using tm_detail::Slot;

Tm_array::Tm_array(Tm_catalog<std::string>* catalog) : Tm_value_container(TMV_ARRAY), m_catalog(catalog) {}

Tm_array::Tm_array(const Tm_array& other) : Tm_value_container(TMV_ARRAY), m_catalog(other.m_catalog) {
    Packed p;
    if (other.packed(p)) {
        assign_packed(p.kind, p.data, p.count);
        return;
    }
    const int n = other.get_member_count();
    m_items.reserve(static_cast<size_t>(n));
    if (tm_detail::is_exactly<Tm_array>(other)) {
        for (const Slot& s : other.m_items) m_items.push_back(s.clone());
        m_interned = other.m_interned;
    } else {
        m_interned = tm_detail::kUnknown;
        // A derived array (for example one backed by a caller's container): copy through
        // its public interface.
        for (int i = 0; i < n; ++i) {
            switch (other.get_member_value_type(i)) {
                case TMV_INT8: m_items.push_back(Slot::of_signed(TMV_INT8, other.get_member_int8(i))); break;
                case TMV_UINT8: m_items.push_back(Slot::of_unsigned(TMV_UINT8, other.get_member_uint8(i))); break;
                case TMV_INT16: m_items.push_back(Slot::of_signed(TMV_INT16, other.get_member_int16(i))); break;
                case TMV_UINT16: m_items.push_back(Slot::of_unsigned(TMV_UINT16, other.get_member_uint16(i))); break;
                case TMV_INT32: m_items.push_back(Slot::of_signed(TMV_INT32, other.get_member_int32(i))); break;
                case TMV_UINT32: m_items.push_back(Slot::of_unsigned(TMV_UINT32, other.get_member_uint32(i))); break;
                case TMV_INT64: m_items.push_back(Slot::of_signed(TMV_INT64, other.get_member_int64(i))); break;
                case TMV_UINT64: m_items.push_back(Slot::of_unsigned(TMV_UINT64, other.get_member_uint64(i))); break;
                case TMV_DOUBLE: m_items.push_back(Slot::of_double(other.get_member_double(i))); break;
                case TMV_BOOL: m_items.push_back(Slot::of_bool(other.get_member_bool(i))); break;
                case TMV_STRING: m_items.push_back(Slot::owning(new Tm_string(other.get_member_string(i)))); break;
                case TMV_STRUCT: m_items.push_back(Slot::owning(other.get_member_struct(i)->clone())); break;
                case TMV_ARRAY: m_items.push_back(Slot::owning(other.get_member_array(i)->clone())); break;
                case TMV_BINARY: m_items.push_back(Slot::owning(other.get_member_binary(i)->clone())); break;
                case TMV_DATE: m_items.push_back(Slot::owning(other.get_member_date(i)->clone())); break;
                case TMV_FILE: m_items.push_back(Slot::owning(other.get_member_file(i)->clone())); break;
                case TMV_MESSAGE: m_items.push_back(Slot::owning(new Tm_message(*other.get_member_message(i)))); break;
            }
        }
    }
}

Tm_array& Tm_array::operator=(const Tm_array& other) {
    if (this != &other) {
        Tm_array copy(other);
        m_items.swap(copy.m_items);
        drop_packed();
        if (copy.m_ownsPacked) {
            if (copy.m_packedData == copy.m_inline) {
                std::memcpy(m_inline, copy.m_inline, kInlinePacked);
                m_packedData = m_inline;
            } else {
                m_packedData = copy.m_packedData;
            }
            m_packedCount = copy.m_packedCount;
            m_packedKind = copy.m_packedKind;
            m_ownsPacked = true;
            copy.m_packedData = nullptr;
            copy.m_ownsPacked = false;
        }
        m_interned = copy.m_interned;
        m_catalog = other.m_catalog;
    }
    return *this;
}

Tm_value* Tm_array::clone() const { return new Tm_array(*this); }

Tm_array::~Tm_array() { drop_packed(); }

bool Tm_array::equals(const Tm_value& other) const {
    if (other.get_value_type() != TMV_ARRAY) return false;
    const auto& o = static_cast<const Tm_array&>(other);
    if (!tm_detail::is_exactly<Tm_array>(o)) return o.equals(*this);  // let a derived array decide
    const int n = get_member_count();
    if (o.get_member_count() != n) return false;
    if (!m_ownsPacked && !o.m_ownsPacked) {
        for (size_t i = 0; i < m_items.size(); ++i) {
            if (!m_items[i].equals(o.m_items[i])) return false;
        }
        return true;
    }
    for (int i = 0; i < n; ++i) {
        const Slot a = m_ownsPacked ? element_slot(static_cast<size_t>(i)) : m_items[static_cast<size_t>(i)].clone();
        const Slot b = o.m_ownsPacked ? o.element_slot(static_cast<size_t>(i)) : o.m_items[static_cast<size_t>(i)].clone();
        if (!a.equals(b)) return false;
    }
    return true;
}

void Tm_array::accept(Tm_visitor& visitor) const {
    visitor.begin_array(*this);
    const int n = get_member_count();
    for (int i = 0; i < n; ++i) item_accept(i, visitor);
    visitor.end_array(*this);
}

bool Tm_array::is_plain() const { return tm_detail::is_exactly<Tm_array>(*this); }

std::size_t Tm_array::wire_size(TMV kind) {
    switch (kind) {
        case TMV_INT8:
        case TMV_UINT8:
        case TMV_BOOL: return 1;
        case TMV_INT16:
        case TMV_UINT16: return 2;
        case TMV_INT32:
        case TMV_UINT32: return 4;
        default: return 8;
    }
}

void Tm_array::assign_packed(TMV kind, const unsigned char* data, std::size_t count) {
    if (count > UINT32_MAX) throw Tm_exception("array too long for packed storage");
    m_items.clear();
    drop_packed();
    m_interned = tm_detail::kNoNames;
    const std::size_t bytes = count * wire_size(kind);
    unsigned char* to = bytes <= kInlinePacked ? m_inline : static_cast<unsigned char*>(Tm_node_pool::allocate(bytes));
    tm_detail::copy_bytes(to, data, bytes);
    m_packedData = count ? to : nullptr;
    m_packedCount = static_cast<std::uint32_t>(count);
    m_packedKind = static_cast<unsigned char>(kind);
    m_ownsPacked = true;
}

void Tm_array::drop_packed() {
    if (!m_ownsPacked) return;
    if (m_packedData && m_packedData != m_inline) {
        Tm_node_pool::release(const_cast<unsigned char*>(m_packedData),
                              m_packedCount * wire_size(static_cast<TMV>(m_packedKind)));
    }
    m_packedData = nullptr;
    m_packedCount = 0;
    m_ownsPacked = false;
}

Slot Tm_array::element_slot(std::size_t index) const {
    const TMV kind = static_cast<TMV>(m_packedKind);
    const std::size_t size = wire_size(kind);
    const unsigned char* p = m_packedData + index * size;
    std::uint64_t v = 0;
    for (std::size_t k = 0; k < size; ++k) v |= static_cast<std::uint64_t>(p[k]) << (8 * k);
    switch (kind) {
        case TMV_INT8: return Slot::of_signed(TMV_INT8, static_cast<signed char>(v));
        case TMV_INT16: return Slot::of_signed(TMV_INT16, static_cast<short>(static_cast<std::uint16_t>(v)));
        case TMV_INT32: return Slot::of_signed(TMV_INT32, static_cast<int>(static_cast<std::uint32_t>(v)));
        case TMV_INT64: return Slot::of_signed(TMV_INT64, static_cast<long>(v));
        case TMV_DOUBLE: {
            double d;
            std::memcpy(&d, &v, sizeof d);
            return Slot::of_double(d);
        }
        case TMV_BOOL: return Slot::of_bool(v != 0);
        default: return Slot::of_unsigned(kind, v);
    }
}

Slot Tm_array::packed_slot(int index, TMV kind) const {
    check_index(index, static_cast<int>(m_packedCount));
    if (kind != m_packedKind) throw Tm_type_mismatch_exception(static_cast<TMV>(m_packedKind), kind);
    return element_slot(static_cast<size_t>(index));
}

void Tm_array::unpack() {
    if (!m_ownsPacked) return;
    decltype(m_items) items;
    items.reserve(m_packedCount);
    for (std::size_t i = 0; i < m_packedCount; ++i) items.push_back(element_slot(i));
    m_items.swap(items);
    drop_packed();
}

void Tm_array::clear() {
    unpack();
    m_items.clear();
    m_interned = tm_detail::kNoNames;
}

void Tm_array::reserve(int count) {
    if (count < 0) throw Tm_out_of_range_exception(count, 0, 0x7fffffff);
    unpack();
    m_items.reserve(static_cast<size_t>(count));
}

void Tm_array::add_member(signed char v) { unpack(); m_items.push_back(Slot::of_signed(TMV_INT8, v)); }
void Tm_array::add_member(unsigned char v) { unpack(); m_items.push_back(Slot::of_unsigned(TMV_UINT8, v)); }
void Tm_array::add_member(short v) { unpack(); m_items.push_back(Slot::of_signed(TMV_INT16, v)); }
void Tm_array::add_member(unsigned short v) { unpack(); m_items.push_back(Slot::of_unsigned(TMV_UINT16, v)); }
void Tm_array::add_member(int v) { unpack(); m_items.push_back(Slot::of_signed(TMV_INT32, v)); }
void Tm_array::add_member(unsigned int v) { unpack(); m_items.push_back(Slot::of_unsigned(TMV_UINT32, v)); }
void Tm_array::add_member(long v) { unpack(); m_items.push_back(Slot::of_signed(TMV_INT64, v)); }
void Tm_array::add_member(unsigned long v) { unpack(); m_items.push_back(Slot::of_unsigned(TMV_UINT64, v)); }
void Tm_array::add_member(double v) { unpack(); m_items.push_back(Slot::of_double(v)); }
void Tm_array::add_member(bool v) { unpack(); m_items.push_back(Slot::of_bool(v)); }
void Tm_array::add_member(const char* v) { unpack(); m_items.push_back(Slot::owning(new Tm_string(v ? v : ""))); }
void Tm_array::add_member(const std::string& v) { unpack(); m_items.push_back(Slot::owning(new Tm_string(v))); }
void Tm_array::add_member(const Tm_binary* v) { unpack();
    if (!v) throw Tm_exception("null binary value");
    m_items.push_back(Slot::owning(v->clone()));
}
void Tm_array::add_member(const unsigned char* data, unsigned int size) { unpack();
    if (!data && size) throw Tm_exception("null binary data");
    m_items.push_back(Slot::owning(new Tm_binary(data, size)));
}
void Tm_array::add_member(const std::string& v, unsigned int maxLength) { unpack();
    m_items.push_back(Slot::owning(new Tm_string(v.substr(0, maxLength))));
}
void Tm_array::add_member(const Tm_value* v) { unpack();
    if (!v) throw Tm_exception("null value");
    append_value(Slot::owning(v->clone()));
}
void Tm_array::add_member_and_own(Tm_value* v) {
    Slot slot = Slot::owning(v);
    unpack();
    append_value(std::move(slot));
}
void Tm_array::append_value(Slot slot) {
    const std::uint64_t interned = tm_detail::meet(m_interned, tm_detail::interned_in(slot));
    m_items.push_back(std::move(slot));
    m_interned = interned;
}

int Tm_array::get_member_count() const {
    return m_ownsPacked ? static_cast<int>(m_packedCount) : static_cast<int>(m_items.size());
}

void Tm_array::check_index(int index, int count) {
    if (index < 0 || index >= count) throw Tm_out_of_range_exception(index, 0, count - 1);
}

TMV Tm_array::get_member_value_type(int index) const {
    check_index(index, get_member_count());
    return m_ownsPacked ? static_cast<TMV>(m_packedKind) : m_items[static_cast<size_t>(index)].kind();
}

Slot Tm_array::scalar(int index, TMV kind) const {
    if (m_ownsPacked) return packed_slot(index, kind);
    return typed(index, kind).clone();
}

const Slot& Tm_array::typed(int index, TMV kind) const {
    check_index(index, get_member_count());
    if (m_ownsPacked) throw Tm_type_mismatch_exception(static_cast<TMV>(m_packedKind), kind);
    const Slot& s = m_items[static_cast<size_t>(index)];
    if (s.kind() != kind) throw Tm_type_mismatch_exception(s.kind(), kind);
    return s;
}

signed char Tm_array::get_member_int8(int i) const { return static_cast<signed char>(scalar(i, TMV_INT8).as_signed()); }
unsigned char Tm_array::get_member_uint8(int i) const {
    return static_cast<unsigned char>(scalar(i, TMV_UINT8).as_unsigned());
}
short Tm_array::get_member_int16(int i) const { return static_cast<short>(scalar(i, TMV_INT16).as_signed()); }
unsigned short Tm_array::get_member_uint16(int i) const {
    return static_cast<unsigned short>(scalar(i, TMV_UINT16).as_unsigned());
}
int Tm_array::get_member_int32(int i) const { return static_cast<int>(scalar(i, TMV_INT32).as_signed()); }
unsigned int Tm_array::get_member_uint32(int i) const {
    return static_cast<unsigned int>(scalar(i, TMV_UINT32).as_unsigned());
}
long Tm_array::get_member_int64(int i) const { return scalar(i, TMV_INT64).as_signed(); }
unsigned long Tm_array::get_member_uint64(int i) const { return scalar(i, TMV_UINT64).as_unsigned(); }
double Tm_array::get_member_double(int i) const { return scalar(i, TMV_DOUBLE).as_double(); }
bool Tm_array::get_member_bool(int i) const { return scalar(i, TMV_BOOL).as_bool(); }
const std::string& Tm_array::get_member_string(int i) const {
    return static_cast<const Tm_string*>(typed(i, TMV_STRING).value())->get();
}
const Tm_array* Tm_array::get_member_array(int i) const {
    return static_cast<const Tm_array*>(typed(i, TMV_ARRAY).value());
}
const Tm_struct* Tm_array::get_member_struct(int i) const {
    return static_cast<const Tm_struct*>(typed(i, TMV_STRUCT).value());
}
const Tm_date* Tm_array::get_member_date(int i) const { return static_cast<const Tm_date*>(typed(i, TMV_DATE).value()); }
const Tm_binary* Tm_array::get_member_binary(int i) const {
    return static_cast<const Tm_binary*>(typed(i, TMV_BINARY).value());
}
const Tm_file* Tm_array::get_member_file(int i) const { return static_cast<const Tm_file*>(typed(i, TMV_FILE).value()); }
const Message* Tm_array::get_member_message(int i) const {
    return &static_cast<const Tm_message*>(typed(i, TMV_MESSAGE).value())->get();
}

void Tm_array::item_accept(int index, Tm_visitor& visitor) const {
    check_index(index, get_member_count());
    if (m_ownsPacked) return element_slot(static_cast<size_t>(index)).accept(visitor);
    m_items[static_cast<size_t>(index)].accept(visitor);
}
