// Read-only message arrays over a container of simple scalars.
//
// Tm_backed_array<Iter> refers to the caller's elements (no copy: the storage must outlive
// the message and stay unchanged until it has been sent); Tm_copy_backed_array<T, Iter>
// copies them into a vector it owns. Both serialise like any array: the encoder and the
// JSON renderer walk them through item_accept. Every mutating operation, and every getter
// of a non-scalar kind, is refused with a Tm_exception.
#pragma once

#include <climits>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_array.h"
#include "platform/Tm_exception.h"

namespace tm_backed_detail {

[[noreturn]] inline void refuse(const char* operation) {
    throw Tm_exception(std::string(operation) + "() is not supported by backed arrays");
}

// The index check of Tm_array::check_index, inline: it runs once per element when an
// array is encoded or rendered.
inline void check_index(int index, int count) {
    if (index < 0 || index >= count) throw Tm_out_of_range_exception(index, 0, count - 1);
}

inline int checked_count(int count) {
    if (count < 0) throw Tm_out_of_range_exception(count, 0, INT_MAX);
    return count;
}

// The element kind whose wire layout a value of type V has in memory (little-endian hosts
// only), or -1: then the elements are walked one by one.
template <class V>
constexpr int wire_kind() {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    if constexpr (std::is_same_v<V, signed char>) return TMV_INT8;
    if constexpr (std::is_same_v<V, unsigned char>) return TMV_UINT8;
    if constexpr (std::is_same_v<V, short>) return TMV_INT16;
    if constexpr (std::is_same_v<V, unsigned short>) return TMV_UINT16;
    if constexpr (std::is_same_v<V, int>) return TMV_INT32;
    if constexpr (std::is_same_v<V, unsigned int>) return TMV_UINT32;
    if constexpr (std::is_same_v<V, long> && sizeof(long) == 8) return TMV_INT64;
    if constexpr (std::is_same_v<V, unsigned long> && sizeof(long) == 8) return TMV_UINT64;
#endif
    return -1;
}

// Whether Iter walks contiguous storage of its value type.
template <class Iter>
constexpr bool contiguous() {
    using V = typename std::iterator_traits<Iter>::value_type;
    return std::is_pointer_v<Iter> || (!std::is_same_v<V, bool> &&
                                       std::is_same_v<Iter, typename std::vector<V>::const_iterator>);
}

// Hands element `v` to the visitor operation of `tag`, widening narrow integers the way
// the visitor expects.
template <class V>
void visit_scalar(TMV tag, const V& v, Tm_visitor& visitor) {
    switch (tag) {
        case TMV_INT8:
            visitor.visit_int8(static_cast<signed char>(v));
            break;
        case TMV_UINT8:
            visitor.visit_uint8(static_cast<unsigned char>(v));
            break;
        case TMV_INT16:
            visitor.visit_int16(static_cast<short>(v));
            break;
        case TMV_UINT16:
            visitor.visit_uint16(static_cast<unsigned short>(v));
            break;
        case TMV_INT32:
            visitor.visit_int32(static_cast<int>(v));
            break;
        case TMV_UINT32:
            visitor.visit_uint32(static_cast<unsigned int>(v));
            break;
        case TMV_INT64:
            visitor.visit_int64(static_cast<long>(v));
            break;
        case TMV_UINT64:
            visitor.visit_uint64(static_cast<unsigned long>(v));
            break;
        case TMV_DOUBLE:
            visitor.visit_double(static_cast<double>(v));
            break;
        case TMV_BOOL:
            visitor.visit_bool(v != 0);
            break;
        default:
            throw Tm_exception("invalid use of Tm_backed_array: supports only simple TMV types");
    }
}

}  // namespace tm_backed_detail

// The refusals and the indexed getters shared by both forms. `Derived` provides
// `element(TMV wanted, int index)`, which checks the kind, then the index.
#define TM_BACKED_ARRAY_COMMON_OPERATIONS                                                                    \
    void clear() override { tm_backed_detail::refuse("clear"); }                                             \
    void add_member(signed char) override { tm_backed_detail::refuse("add_member"); }                        \
    void add_member(unsigned char) override { tm_backed_detail::refuse("add_member"); }                      \
    void add_member(short) override { tm_backed_detail::refuse("add_member"); }                              \
    void add_member(unsigned short) override { tm_backed_detail::refuse("add_member"); }                     \
    void add_member(int) override { tm_backed_detail::refuse("add_member"); }                                \
    void add_member(unsigned int) override { tm_backed_detail::refuse("add_member"); }                       \
    void add_member(long) override { tm_backed_detail::refuse("add_member"); }                               \
    void add_member(unsigned long) override { tm_backed_detail::refuse("add_member"); }                      \
    void add_member(double) override { tm_backed_detail::refuse("add_member"); }                             \
    void add_member(bool) override { tm_backed_detail::refuse("add_member"); }                               \
    void add_member(const char*) override { tm_backed_detail::refuse("add_member"); }                        \
    void add_member(const std::string&) override { tm_backed_detail::refuse("add_member"); }                 \
    void add_member(const Tm_binary*) override { tm_backed_detail::refuse("add_member"); }                   \
    void add_member(const unsigned char*, unsigned int) override { tm_backed_detail::refuse("add_member"); } \
    void add_member(const std::string&, unsigned int) override { tm_backed_detail::refuse("add_member"); }   \
    void add_member(const Tm_value*) override { tm_backed_detail::refuse("add_member"); }                    \
    /* The value handed over belongs to the array, so it is deleted before refusing. */                      \
    void add_member_and_own(Tm_value* v) override {                                                          \
        delete v;                                                                                            \
        tm_backed_detail::refuse("add_member_and_own");                                                      \
    }                                                                                                        \
    TMV get_member_value_type(int index) const override {                                                    \
        tm_backed_detail::check_index(index, element_count());                                               \
        return m_tag;                                                                                        \
    }                                                                                                        \
    signed char get_member_int8(int i) const override {                                                      \
        return static_cast<signed char>(element(TMV_INT8, i));                                               \
    }                                                                                                        \
    unsigned char get_member_uint8(int i) const override {                                                   \
        return static_cast<unsigned char>(element(TMV_UINT8, i));                                            \
    }                                                                                                        \
    short get_member_int16(int i) const override { return static_cast<short>(element(TMV_INT16, i)); }       \
    unsigned short get_member_uint16(int i) const override {                                                 \
        return static_cast<unsigned short>(element(TMV_UINT16, i));                                          \
    }                                                                                                        \
    int get_member_int32(int i) const override { return static_cast<int>(element(TMV_INT32, i)); }           \
    unsigned int get_member_uint32(int i) const override {                                                   \
        return static_cast<unsigned int>(element(TMV_UINT32, i));                                            \
    }                                                                                                        \
    long get_member_int64(int i) const override { return static_cast<long>(element(TMV_INT64, i)); }         \
    unsigned long get_member_uint64(int i) const override {                                                  \
        return static_cast<unsigned long>(element(TMV_UINT64, i));                                           \
    }                                                                                                        \
    double get_member_double(int i) const override { return static_cast<double>(element(TMV_DOUBLE, i)); }   \
    bool get_member_bool(int i) const override { return element(TMV_BOOL, i) != 0; }                         \
    const std::string& get_member_string(int) const override {                                               \
        tm_backed_detail::refuse("get_member_string");                                                       \
    }                                                                                                        \
    const Tm_array* get_member_array(int) const override { tm_backed_detail::refuse("get_member_array"); }   \
    const Tm_struct* get_member_struct(int) const override {                                                 \
        tm_backed_detail::refuse("get_member_struct");                                                       \
    }                                                                                                        \
    const Tm_date* get_member_date(int) const override { tm_backed_detail::refuse("get_member_date"); }      \
    const Tm_binary* get_member_binary(int) const override {                                                 \
        tm_backed_detail::refuse("get_member_binary");                                                       \
    }                                                                                                        \
    const Tm_file* get_member_file(int) const override { tm_backed_detail::refuse("get_member_file"); }      \
    const Message* get_member_message(int) const override { tm_backed_detail::refuse("get_member_message"); }

// An array that refers to `count` elements starting at `begin` in the caller's storage.
template <class Iter>
class Tm_backed_array : public Tm_array {
  public:
    using value_type = typename std::iterator_traits<Iter>::value_type;

    Tm_backed_array(Iter begin, int count, TMV tag)
        : Tm_array(), m_begin(begin), m_count(tm_backed_detail::checked_count(count)), m_tag(tag) {
        announce_layout();
        set_owns_nothing();
    }
    Tm_backed_array(const Tm_backed_array& other)
        : Tm_array(), m_begin(other.m_begin), m_count(other.m_count), m_tag(other.m_tag) {
        announce_layout();
        set_owns_nothing();
    }
    Tm_backed_array& operator=(const Tm_backed_array&) = delete;

    Tm_value* clone() const override { return new Tm_backed_array(*this); }
    ~Tm_backed_array() override = default;
    // Never equal to anything, itself included.
    bool equals(const Tm_value&) const override { return false; }
    void accept(Tm_visitor& visitor) const override { Tm_array::accept(visitor); }
    void reserve(int) override { tm_backed_detail::refuse("reserve"); }
    int get_member_count() const override { return m_count; }
    void item_accept(int index, Tm_visitor& visitor) const override {
        tm_backed_detail::check_index(index, m_count);
        tm_backed_detail::visit_scalar(m_tag, *(m_begin + index), visitor);
    }

    TM_BACKED_ARRAY_COMMON_OPERATIONS

    TMV get_element_type() const { return m_tag; }

  protected:
    // The element at `index`: Tm_type_mismatch_exception(array tag, wanted) unless `wanted`
    // is the array's tag, then Tm_out_of_range_exception(index, 0, count - 1).
    Iter get_member_iterator(TMV wanted, int index) const {
        if (wanted != m_tag) throw Tm_type_mismatch_exception(m_tag, wanted);
        tm_backed_detail::check_index(index, m_count);
        return m_begin + index;
    }

  private:
    // Elements stored as the wire lays them out are encoded with one copy.
    void announce_layout() {
        if constexpr (tm_backed_detail::contiguous<Iter>()) {
            if (m_count > 0 && tm_backed_detail::wire_kind<value_type>() == m_tag)
                set_packed_view(&*m_begin, static_cast<std::size_t>(m_count), m_tag);
        }
    }
    int element_count() const { return m_count; }
    value_type element(TMV wanted, int index) const { return *get_member_iterator(wanted, index); }

    Iter m_begin;
    int m_count;
    TMV m_tag;
};

// An array holding its own copy of `count` elements taken from `begin`.
template <class T, class Iter>
class Tm_copy_backed_array : public Tm_array {
  public:
    Tm_copy_backed_array(Iter begin, int count, TMV tag)
        : Tm_array(), m_values(begin, begin + tm_backed_detail::checked_count(count)), m_tag(tag) {
        announce_layout();
    }
    Tm_copy_backed_array(const Tm_copy_backed_array& other)
        : Tm_array(), m_values(other.m_values), m_tag(other.m_tag) {
        announce_layout();
    }
    Tm_copy_backed_array& operator=(const Tm_copy_backed_array&) = delete;

    Tm_value* clone() const override { return new Tm_copy_backed_array(*this); }
    ~Tm_copy_backed_array() override = default;
    // Never equal to anything, itself included.
    bool equals(const Tm_value&) const override { return false; }
    void accept(Tm_visitor& visitor) const override { Tm_array::accept(visitor); }
    int get_member_count() const override { return element_count(); }
    void item_accept(int index, Tm_visitor& visitor) const override {
        tm_backed_detail::check_index(index, element_count());
        tm_backed_detail::visit_scalar(m_tag, static_cast<T>(m_values[static_cast<std::size_t>(index)]),
                                       visitor);
    }

    TM_BACKED_ARRAY_COMMON_OPERATIONS

    TMV get_element_type() const { return m_tag; }

  protected:
    // The element at `index`, checked like Tm_backed_array::get_member_iterator.
    T get_member(TMV wanted, int index) const {
        if (wanted != m_tag) throw Tm_type_mismatch_exception(m_tag, wanted);
        tm_backed_detail::check_index(index, element_count());
        return m_values[static_cast<std::size_t>(index)];
    }

  private:
    void announce_layout() {
        if constexpr (!std::is_same_v<T, bool>) {
            if (!m_values.empty() && tm_backed_detail::wire_kind<T>() == m_tag)
                set_packed_view(m_values.data(), m_values.size(), m_tag);
        }
    }
    int element_count() const { return static_cast<int>(m_values.size()); }
    T element(TMV wanted, int index) const { return get_member(wanted, index); }

    std::vector<T> m_values;
    TMV m_tag;
};

#undef TM_BACKED_ARRAY_COMMON_OPERATIONS

// The element kind of each supported scalar type.
template <class T>
struct Tm_scalar_kind;
template <>
struct Tm_scalar_kind<signed char> : std::integral_constant<TMV, TMV_INT8> {};
template <>
struct Tm_scalar_kind<unsigned char> : std::integral_constant<TMV, TMV_UINT8> {};
template <>
struct Tm_scalar_kind<short> : std::integral_constant<TMV, TMV_INT16> {};
template <>
struct Tm_scalar_kind<unsigned short> : std::integral_constant<TMV, TMV_UINT16> {};
template <>
struct Tm_scalar_kind<int> : std::integral_constant<TMV, TMV_INT32> {};
template <>
struct Tm_scalar_kind<unsigned int> : std::integral_constant<TMV, TMV_UINT32> {};
template <>
struct Tm_scalar_kind<long> : std::integral_constant<TMV, TMV_INT64> {};
template <>
struct Tm_scalar_kind<unsigned long> : std::integral_constant<TMV, TMV_UINT64> {};
template <>
struct Tm_scalar_kind<bool> : std::integral_constant<TMV, TMV_BOOL> {};

// The array types over a vector of T: referring and copying.
template <class T>
using Tm_vector_backed_array = Tm_backed_array<typename std::vector<T>::const_iterator>;
template <class T>
using Tm_vector_copy_backed_array = Tm_copy_backed_array<T, typename std::vector<T>::const_iterator>;

// An array over `v` with the element kind of T: a copy when `copy` is true, else a view of
// `v` (which must then outlive the array, unchanged). The caller owns the result, normally
// by handing it to add_member_and_own. A vector longer than INT_MAX elements is refused.
template <class T>
Tm_array* make_scalar_array(const std::vector<T>& v, bool copy) {
    if (v.size() > static_cast<std::size_t>(INT_MAX))
        throw Tm_exception("vector too long for a message array");
    const int count = static_cast<int>(v.size());
    if (copy) return new Tm_vector_copy_backed_array<T>(v.begin(), count, Tm_scalar_kind<T>::value);
    return new Tm_vector_backed_array<T>(v.begin(), count, Tm_scalar_kind<T>::value);
}

// The twenty instantiations are compiled once, in the library.
#define TM_BACKED_ARRAY_ROW(T)                                             \
    extern template class Tm_backed_array<std::vector<T>::const_iterator>; \
    extern template class Tm_copy_backed_array<T, std::vector<T>::const_iterator>;
TM_BACKED_ARRAY_ROW(signed char)
TM_BACKED_ARRAY_ROW(unsigned char)
TM_BACKED_ARRAY_ROW(short)
TM_BACKED_ARRAY_ROW(unsigned short)
TM_BACKED_ARRAY_ROW(int)
TM_BACKED_ARRAY_ROW(unsigned int)
TM_BACKED_ARRAY_ROW(long)
TM_BACKED_ARRAY_ROW(unsigned long)
TM_BACKED_ARRAY_ROW(bool)
#undef TM_BACKED_ARRAY_ROW
extern template class Tm_backed_array<const unsigned char*>;
extern template class Tm_copy_backed_array<unsigned char, const unsigned char*>;
