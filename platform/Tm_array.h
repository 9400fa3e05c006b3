// Arrays: ordered, unnamed members, possibly of mixed kinds.
#pragma once

#include <string>
#include <vector>

#include "platform/Tm_catalog.h"
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

protected:
    // Throws Tm_out_of_range_exception(index, 0, count - 1) unless 0 <= index < count.
    static void check_index(int index, int count);

private:
    const tm_detail::Slot& typed(int index, TMV kind) const;
    Tm_catalog<std::string>* m_catalog;
    std::vector<tm_detail::Slot> m_items;
};
