// Values of the typed-message runtime and the visitor that walks them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "platform/Tm_types.h"

// Walks a value tree. Scalars arrive through their typed visit operation (narrow integers
// widened: int8/int16 sign-extended, uint8/uint16 zero-extended); a struct arrives as
// begin_struct, then for each member visit_member_name followed by the member's value,
// then end_struct; an array as begin_array, its items in order, then end_array.
class Tm_visitor {
public:
    virtual ~Tm_visitor();
    virtual void visit_int8(int v) = 0;
    virtual void visit_uint8(unsigned int v) = 0;
    virtual void visit_int16(int v) = 0;
    virtual void visit_uint16(unsigned int v) = 0;
    virtual void visit_int32(int v) = 0;
    virtual void visit_uint32(unsigned int v) = 0;
    virtual void visit_int64(long v) = 0;
    virtual void visit_uint64(unsigned long v) = 0;
    virtual void visit_double(double v) = 0;
    virtual void visit_bool(bool v) = 0;
    virtual void visit_string(const std::string& v) = 0;
    virtual void visit_binary(const unsigned char* data, std::size_t size) = 0;
    virtual void visit_date(long microsecondsSinceEpoch) = 0;
    virtual void visit_file(const Tm_file& file) = 0;
    virtual void visit_message(const Message& message) = 0;
    virtual void begin_struct(const Tm_struct& s) = 0;
    virtual void visit_member_name(const std::string& name) = 0;
    virtual void end_struct(const Tm_struct& s) = 0;
    virtual void begin_array(const Tm_array& a) = 0;
    virtual void end_array(const Tm_array& a) = 0;
};

// Base of every value. Values are owned through raw pointers handed to containers
// (add_member_and_own) or through clone(); the container deletes what it owns.
// Values made with `new` come from the runtime's node pool (see Tm_pool.h), which keeps
// the nodes of one message together; `delete` gives them back to it.
class Tm_value {
public:
    static void* operator new(std::size_t size);
    static void operator delete(void* p, std::size_t size) noexcept;
    // Types aligned beyond what the general heap guarantees bypass the pool.
    static void* operator new(std::size_t size, std::align_val_t align);
    static void operator delete(void* p, std::size_t size, std::align_val_t align) noexcept;

    virtual Tm_value* clone() const = 0;
    virtual ~Tm_value();
    // Deep equality: same kind and same contents (struct member names and order included).
    virtual bool equals(const Tm_value& other) const = 0;
    virtual TMV get_value_type() const { return m_type; }
    virtual void accept(Tm_visitor& visitor) const = 0;

protected:
    explicit Tm_value(TMV type) : m_type(type) {}
    Tm_value(const Tm_value&) = default;
    Tm_value& operator=(const Tm_value&) = default;

private:
    TMV m_type;
};

// A scalar of one of the ten fixed kinds.
template <class T, TMV Kind>
class Tm_scalar final : public Tm_value {
public:
    explicit Tm_scalar(T v = T()) : Tm_value(Kind), m_value(v) {}
    Tm_value* clone() const override { return new Tm_scalar(*this); }
    bool equals(const Tm_value& other) const override {
        return other.get_value_type() == Kind && static_cast<const Tm_scalar&>(other).m_value == m_value;
    }
    void accept(Tm_visitor& visitor) const override;
    T get() const { return m_value; }
    void set(T v) { m_value = v; }

private:
    T m_value;
};

using Tm_int8 = Tm_scalar<signed char, TMV_INT8>;
using Tm_uint8 = Tm_scalar<unsigned char, TMV_UINT8>;
using Tm_int16 = Tm_scalar<short, TMV_INT16>;
using Tm_uint16 = Tm_scalar<unsigned short, TMV_UINT16>;
using Tm_int32 = Tm_scalar<int, TMV_INT32>;
using Tm_uint32 = Tm_scalar<unsigned int, TMV_UINT32>;
using Tm_int64 = Tm_scalar<long, TMV_INT64>;
using Tm_uint64 = Tm_scalar<unsigned long, TMV_UINT64>;
using Tm_double = Tm_scalar<double, TMV_DOUBLE>;
using Tm_bool = Tm_scalar<bool, TMV_BOOL>;

template <> inline void Tm_int8::accept(Tm_visitor& v) const { v.visit_int8(m_value); }
template <> inline void Tm_uint8::accept(Tm_visitor& v) const { v.visit_uint8(m_value); }
template <> inline void Tm_int16::accept(Tm_visitor& v) const { v.visit_int16(m_value); }
template <> inline void Tm_uint16::accept(Tm_visitor& v) const { v.visit_uint16(m_value); }
template <> inline void Tm_int32::accept(Tm_visitor& v) const { v.visit_int32(m_value); }
template <> inline void Tm_uint32::accept(Tm_visitor& v) const { v.visit_uint32(m_value); }
template <> inline void Tm_int64::accept(Tm_visitor& v) const { v.visit_int64(m_value); }
template <> inline void Tm_uint64::accept(Tm_visitor& v) const { v.visit_uint64(m_value); }
template <> inline void Tm_double::accept(Tm_visitor& v) const { v.visit_double(m_value); }
template <> inline void Tm_bool::accept(Tm_visitor& v) const { v.visit_bool(m_value); }

// A text value.
class Tm_string final : public Tm_value {
public:
    explicit Tm_string(std::string v = std::string()) : Tm_value(TMV_STRING), m_value(std::move(v)) {}
    Tm_string(const char* data, std::size_t size) : Tm_value(TMV_STRING), m_value(data, size) {}
    Tm_value* clone() const override { return new Tm_string(*this); }
    bool equals(const Tm_value& other) const override;
    void accept(Tm_visitor& visitor) const override { visitor.visit_string(m_value); }
    const std::string& get() const { return m_value; }

private:
    std::string m_value;
};

// An opaque byte string.
class Tm_binary final : public Tm_value {
public:
    Tm_binary() : Tm_value(TMV_BINARY) {}
    Tm_binary(const unsigned char* data, std::size_t size) : Tm_value(TMV_BINARY), m_data(data, data + size) {}
    explicit Tm_binary(std::vector<unsigned char> data) : Tm_value(TMV_BINARY), m_data(std::move(data)) {}
    Tm_value* clone() const override { return new Tm_binary(*this); }
    bool equals(const Tm_value& other) const override;
    void accept(Tm_visitor& visitor) const override { visitor.visit_binary(m_data.data(), m_data.size()); }
    const std::vector<unsigned char>& get() const { return m_data; }
    const unsigned char* data() const { return m_data.data(); }
    std::size_t size() const { return m_data.size(); }

private:
    std::vector<unsigned char> m_data;
};

// A point in time: microseconds since 1970-01-01T00:00:00Z.
class Tm_date final : public Tm_value {
public:
    explicit Tm_date(long microsecondsSinceEpoch = 0) : Tm_value(TMV_DATE), m_value(microsecondsSinceEpoch) {}
    Tm_value* clone() const override { return new Tm_date(*this); }
    bool equals(const Tm_value& other) const override;
    void accept(Tm_visitor& visitor) const override { visitor.visit_date(m_value); }
    long get() const { return m_value; }

private:
    long m_value;
};

// A named file content.
class Tm_file final : public Tm_value {
public:
    Tm_file() : Tm_value(TMV_FILE) {}
    Tm_file(std::string name, std::vector<unsigned char> content)
        : Tm_value(TMV_FILE), m_name(std::move(name)), m_content(std::move(content)) {}
    Tm_value* clone() const override { return new Tm_file(*this); }
    bool equals(const Tm_value& other) const override;
    void accept(Tm_visitor& visitor) const override { visitor.visit_file(*this); }
    const std::string& name() const { return m_name; }
    const std::vector<unsigned char>& content() const { return m_content; }

private:
    std::string m_name;
    std::vector<unsigned char> m_content;
};
