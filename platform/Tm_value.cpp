#include "platform/Tm_value.h"

#include "platform/Message.h"
#include "platform/Tm_pool.h"

const char* tmv_name(int kind) {
    static const char* const names[] = {"int8",   "uint8",  "int16",  "uint16", "int32", "uint32",
                                        "int64",  "uint64", "double", "bool",   "string", "struct",
                                        "array",  "binary", "date",   "file",   "message"};
    return kind >= 0 && kind <= TMV_LAST ? names[kind] : "unknown";
}

Tm_visitor::~Tm_visitor() = default;
Tm_value::~Tm_value() = default;

void* Tm_value::operator new(std::size_t size) { return Tm_node_pool::allocate(size); }
void Tm_value::operator delete(void* p, std::size_t size) noexcept { Tm_node_pool::release(p, size); }
void* Tm_value::operator new(std::size_t size, std::align_val_t align) { return ::operator new(size, align); }
void Tm_value::operator delete(void* p, std::size_t, std::align_val_t align) noexcept {
    ::operator delete(p, align);
}

bool Tm_string::equals(const Tm_value& other) const {
    return other.get_value_type() == TMV_STRING && static_cast<const Tm_string&>(other).m_value == m_value;
}

bool Tm_binary::equals(const Tm_value& other) const {
    return other.get_value_type() == TMV_BINARY && static_cast<const Tm_binary&>(other).m_data == m_data;
}

bool Tm_date::equals(const Tm_value& other) const {
    return other.get_value_type() == TMV_DATE && static_cast<const Tm_date&>(other).m_value == m_value;
}

bool Tm_file::equals(const Tm_value& other) const {
    if (other.get_value_type() != TMV_FILE) return false;
    const auto& o = static_cast<const Tm_file&>(other);
    return o.m_name == m_name && o.m_content == m_content;
}

bool Tm_message::equals(const Tm_value& other) const {
    return other.get_value_type() == TMV_MESSAGE && static_cast<const Tm_message&>(other).m_message.equals(m_message);
}
