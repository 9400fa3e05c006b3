// The one generic converter between described records and typed-message structs.
//
// Included by the interface sources (and tests) only: the record headers need just
// Describe.h and the declarations of RecordApi.h.
//
// Wire kind by field type (Natural form):
//   bool, signed char, unsigned char, short, unsigned short, int, unsigned int, long,
//   unsigned long, double       the scalar of that kind
//   std::string                 string
//   a described record          struct, filled by the record's own converter (a choice
//                               record as a plain struct holding the selected alternative)
//   std::vector<scalar>         backed array over the vector (copy flag: owning copy or view)
//   std::vector<std::string>    array of strings
//   std::vector<record>         array of structs, sized up front
//   std::vector<std::vector<unsigned char>>   array of binaries
//   std::array<unsigned char, N>               backed uint8 array of exactly N elements
// Reading mirrors writing: members are looked up by name with the getter of their kind,
// vectors are cleared, reserved to the array's count and filled in order.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "binding/Describe.h"
#include "binding/Tm_backed_array.h"
#include "platform/Message.h"
#include "platform/Tm_array.h"
#include "platform/Tm_struct.h"
#include "platform/tm_enum_map.h"

namespace binding {

using Catalog = Tm_catalog<std::string>;

// --- kinds of C++ types --------------------------------------------------------------------

template <class T>
struct ScalarKind;
#define BINDING_SCALAR(T, K, GET)                                                        \
    template <>                                                                          \
    struct ScalarKind<T> {                                                               \
        static constexpr TMV kind = K;                                                   \
        static T at(const Tm_array* a, int i) { return a->GET(i); }                      \
    };
BINDING_SCALAR(bool, TMV_BOOL, get_member_bool)
BINDING_SCALAR(signed char, TMV_INT8, get_member_int8)
BINDING_SCALAR(unsigned char, TMV_UINT8, get_member_uint8)
BINDING_SCALAR(short, TMV_INT16, get_member_int16)
BINDING_SCALAR(unsigned short, TMV_UINT16, get_member_uint16)
BINDING_SCALAR(int, TMV_INT32, get_member_int32)
BINDING_SCALAR(unsigned int, TMV_UINT32, get_member_uint32)
BINDING_SCALAR(long, TMV_INT64, get_member_int64)
BINDING_SCALAR(unsigned long, TMV_UINT64, get_member_uint64)
BINDING_SCALAR(double, TMV_DOUBLE, get_member_double)
#undef BINDING_SCALAR

template <class T, class = void>
struct IsScalar : std::false_type {};
template <class T>
struct IsScalar<T, std::void_t<decltype(ScalarKind<T>::kind)>> : std::true_type {};
template <class T>
constexpr bool is_scalar = IsScalar<T>::value;

// --- sinks: where one member is written -------------------------------------------------

// A member of a prenamed struct, by its index in the names table.
struct PrenamedSink {
    Tm_prenamed_struct* target;
    int index;
    Catalog* catalog;
    template <class V>
    void put(V v) const { target->add_member(index, v, catalog); }
    void put(const std::string& v) const { target->add_member(index, v, catalog); }
    // Nested records and arrays are handed over as what they are.
    template <class V>
    void own(V* v) const { target->add_member_and_own(index, v, catalog); }
};

// A member of a plain struct, by name (choice records).
struct NamedSink {
    Tm_struct* target;
    const char* name;
    Catalog* catalog;
    template <class V>
    void put(V v) const { target->add_member(name, v); }
    void put(const std::string& v) const { target->add_member(name, v); }
    void own(Tm_value* v) const { target->add_member_and_own(name, v, catalog); }
};

// A member of the send group of a message (request arguments).
struct MessageSink {
    Message* message;
    const char* name;
    template <class V>
    void put(V v) const { message->add_member(TMG_SEND, name, v); }
    void put(const std::string& v) const { message->add_member(TMG_SEND, name, v); }
    void own(Tm_value* v) const { message->add_member_and_own(TMG_SEND, name, v); }
};

// --- values ------------------------------------------------------------------------------

// A uint8 array over exactly `n` bytes: an owning copy or a view.
inline Tm_array* make_byte_array(const unsigned char* data, int n, bool copy) {
    if (copy) return new Tm_copy_backed_array<unsigned char, const unsigned char*>(data, n, TMV_UINT8);
    return new Tm_backed_array<const unsigned char*>(data, n, TMV_UINT8);
}

template <class R>
Tm_prenamed_struct* choice_to_prenamed(Tm_prenamed_struct* target, const R& rec, bool copy, Catalog* catalog);

// A record's own value; a choice record's over the names table of its alternatives, so that
// its member shares its name as every other record's members do.
template <class R>
Tm_prenamed_struct* make_record_value(const R& rec, bool copy, Catalog* catalog) {
    auto s = std::make_unique<Tm_prenamed_struct>();
    if constexpr (decltype(description<R>())::is_choice) {
        choice_to_prenamed(s.get(), rec, copy, catalog);
    } else {
        binding_to_struct(s.get(), &rec, copy, catalog);
    }
    return s.release();
}

// A new value for a non-scalar field of natural form: a record's struct or an array.
template <class T>
auto make_value(const T& v, bool copy, Catalog* catalog) {
    if constexpr (is_record<T>) {
        return make_record_value(v, copy, catalog);
    } else if constexpr (IsByteArray<T>::value) {
        return make_byte_array(v.data(), static_cast<int>(v.size()), copy);
    } else if constexpr (IsVector<T>::value) {
        using U = typename T::value_type;
        if constexpr (is_scalar<U>) {
            return ::make_scalar_array(v, copy);
        } else {
            auto a = std::make_unique<Tm_array>();
            a->reserve(static_cast<int>(v.size()));
            for (const U& e : v) {
                if constexpr (std::is_same_v<U, std::string>) {
                    a->add_member(e);
                } else if constexpr (std::is_same_v<U, std::vector<unsigned char>>) {
                    a->add_member(e.data(), static_cast<unsigned int>(e.size()));
                } else if constexpr (is_record<U>) {
                    a->add_member_and_own(make_record_value(e, copy, catalog));
                } else {
                    static_assert(always_false<U>, "no wire form for this element type");
                }
            }
            return a.release();
        }
    } else {
        static_assert(always_false<T>, "no wire form for this field type; add a marker");
    }
}

// Hands `put` the text of enum value `value`: the map row's own name, so that the text is
// copied once (into its value), or for a value without a row tms_enum_to_string's text.
template <class Put>
void put_enum_text(int value, const tm_enum_map* map, const Put& put) {
    for (const tm_enum_map* row = map; row && row->name; ++row) {
        if (row->value == value) return put(row->name);
    }
    put(tms_enum_to_string(value, map));
}

// Writes one field; false when a bounded vector is too long (the struct ends there).
template <class Sink, class T>
bool write(const Sink& sink, const T& v, Natural, bool copy, Catalog* catalog) {
    if constexpr (is_scalar<T> || std::is_same_v<T, std::string>) {
        sink.put(v);
    } else {
        sink.own(make_value(v, copy, catalog));
    }
    return true;
}

template <class Sink, class T, std::size_t N>
bool write(const Sink& sink, const T& v, Bounded<N>, bool copy, Catalog* catalog) {
    static_assert(IsVector<T>::value, "only vectors are bounded");
    if (v.size() > N) return false;
    return write(sink, v, Natural{}, copy, catalog);
}

template <class Sink, class T, class W>
bool write(const Sink& sink, const T& v, EnumInt<W>, bool, Catalog*) {
    static_assert(std::is_enum_v<T>, "enum_int is for enum fields");
    sink.put(static_cast<W>(v));
    return true;
}

template <class Sink, class T>
bool write(const Sink& sink, const T& v, EnumString form, bool, Catalog*) {
    if constexpr (std::is_enum_v<T>) {
        put_enum_text(static_cast<int>(v), form.map, [&](const auto& text) { sink.put(text); });
    } else {
        static_assert(IsVector<T>::value && std::is_enum_v<typename T::value_type>, "enum_string needs enums");
        auto a = std::make_unique<Tm_array>();
        a->reserve(static_cast<int>(v.size()));
        for (auto e : v) put_enum_text(static_cast<int>(e), form.map, [&](const auto& text) { a->add_member(text); });
        sink.own(a.release());
    }
    return true;
}

// --- reading ------------------------------------------------------------------------------

template <class T>
void read_element(const Tm_array* a, int i, T& out) {
    if constexpr (is_scalar<T>) {
        out = ScalarKind<T>::at(a, i);
    } else if constexpr (std::is_same_v<T, std::string>) {
        out = a->get_member_string(i);
    } else if constexpr (std::is_same_v<T, std::vector<unsigned char>>) {
        const Tm_binary* b = a->get_member_binary(i);
        out.assign(b->data(), b->data() + b->size());
    } else if constexpr (is_record<T>) {
        binding_from_struct(a->get_member_struct(i), &out);
    } else {
        static_assert(always_false<T>, "no wire form for this element type");
    }
}

// Whether a value of type T holds a choice record anywhere inside (reading one leaves the
// record as it was when none of its alternatives is present).
template <class T>
constexpr bool holds_choice();
template <class Fields>
struct FieldsHoldChoice;
template <class... F>
struct FieldsHoldChoice<std::tuple<F...>> {
    static constexpr bool value = (holds_choice<typename F::value_type>() || ...);
};
template <class T>
constexpr bool holds_choice() {
    if constexpr (is_record<T>) {
        using D = decltype(description<T>());
        if constexpr (D::is_choice) {
            return true;
        } else {
            return FieldsHoldChoice<std::remove_cv_t<decltype(D::fields)>>::value;
        }
    } else if constexpr (IsVector<T>::value) {
        return holds_choice<typename T::value_type>();
    } else {
        return false;
    }
}

template <class T>
void read_vector(const Tm_array* a, std::vector<T>& out) {
    if constexpr (is_scalar<T> && tm_backed_detail::wire_kind<T>() >= 0) {
        // Elements kept in wire layout, of the kind asked for: one copy.
        Tm_array::Packed p;
        if (a->packed(p) && p.kind == ScalarKind<T>::kind) {
            out.resize(p.count);
            std::memcpy(out.data(), p.data, p.count * sizeof(T));
            return;
        }
    }
    const int n = a->get_member_count();
    if constexpr (is_scalar<T> || holds_choice<T>()) {
        // Each element read from its default.
        out.clear();
        out.reserve(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) {
            T e{};
            read_element(a, i, e);
            out.push_back(std::move(e));
        }
    } else {
        // Every field is read over, so elements already there keep the storage of their
        // strings and vectors.
        out.resize(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) read_element(a, i, out[static_cast<std::size_t>(i)]);
    }
}

// A member of `s` by name, expected at position `hint` (a reader finds the fields of a
// record in the order they were written), refused as the getters by name refuse.
template <class T>
T member_scalar(const Tm_struct* s, const char* name, int hint) {
    const tm_detail::Slot& v = s->member_of_kind(name, hint, ScalarKind<T>::kind);
    if constexpr (std::is_same_v<T, bool>) {
        return v.as_bool();
    } else if constexpr (std::is_same_v<T, double>) {
        return v.as_double();
    } else if constexpr (std::is_signed_v<T>) {
        return static_cast<T>(v.as_signed());
    } else {
        return static_cast<T>(v.as_unsigned());
    }
}
template <class V>
const V* member_value(const Tm_struct* s, const char* name, int hint, TMV kind) {
    return static_cast<const V*>(s->member_of_kind(name, hint, kind).value());
}
inline const std::string& member_string(const Tm_struct* s, const char* name, int hint) {
    return member_value<Tm_string>(s, name, hint, TMV_STRING)->get();
}
inline const Tm_array* member_array(const Tm_struct* s, const char* name, int hint) {
    return member_value<Tm_array>(s, name, hint, TMV_ARRAY);
}

template <class T>
void read(const Tm_struct* s, const char* name, int hint, T& out, Natural) {
    if constexpr (is_scalar<T>) {
        out = member_scalar<T>(s, name, hint);
    } else if constexpr (std::is_same_v<T, std::string>) {
        out = member_string(s, name, hint);
    } else if constexpr (is_record<T>) {
        binding_from_struct(member_value<Tm_struct>(s, name, hint, TMV_STRUCT), &out);
    } else if constexpr (IsByteArray<T>::value) {
        // Exactly N bytes: a shorter array leaves the rest zero, a longer one is cut.
        const Tm_array* a = member_array(s, name, hint);
        const int n = a->get_member_count();
        out.fill(0);
        Tm_array::Packed p;
        if (a->packed(p) && p.kind == TMV_UINT8) {
            std::memcpy(out.data(), p.data, std::min(p.count, out.size()));
            return;
        }
        for (int i = 0; i < n && i < static_cast<int>(out.size()); ++i) out[static_cast<std::size_t>(i)] = a->get_member_uint8(i);
    } else if constexpr (IsVector<T>::value) {
        read_vector(member_array(s, name, hint), out);
    } else {
        static_assert(always_false<T>, "no wire form for this field type; add a marker");
    }
}

template <class T, std::size_t N>
void read(const Tm_struct* s, const char* name, int hint, T& out, Bounded<N>) {
    read(s, name, hint, out, Natural{});
}

template <class T, class W>
void read(const Tm_struct* s, const char* name, int hint, T& out, EnumInt<W>) {
    out = static_cast<T>(member_scalar<W>(s, name, hint));
}

template <class T>
void read(const Tm_struct* s, const char* name, int hint, T& out, EnumString form) {
    if constexpr (std::is_enum_v<T>) {
        out = static_cast<T>(tms_string_to_enum(member_string(s, name, hint), form.map));
    } else {
        using E = typename T::value_type;
        const Tm_array* a = member_array(s, name, hint);
        const int n = a->get_member_count();
        out.clear();
        out.reserve(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) out.push_back(static_cast<E>(tms_string_to_enum(a->get_member_string(i), form.map)));
    }
}

// --- records ------------------------------------------------------------------------------

// The names table of R as registered with the runtime, looked up once.
template <class R>
const Tm_prenamed_struct::Names_table& names_table() {
    static const Tm_prenamed_struct::Names_table& table = Tm_prenamed_struct::names_table(names<R>());
    return table;
}

// (A record without fields, such as an empty base, leaves every parameter unused.)
template <class R, class Fields, std::size_t... I>
void write_fields([[maybe_unused]] Tm_prenamed_struct* t, [[maybe_unused]] const R& rec, [[maybe_unused]] bool copy,
                  [[maybe_unused]] Catalog* c, [[maybe_unused]] const Fields& f, std::index_sequence<I...>) {
    [[maybe_unused]] bool go = true;
    ((go = go && write(PrenamedSink{t, static_cast<int>(I), c}, rec.*(std::get<I>(f).member), std::get<I>(f).form,
                       copy, c)),
     ...);
}

template <class R>
Tm_prenamed_struct* to_struct(Tm_prenamed_struct* target, const R& rec, bool copy, Catalog* catalog) {
    constexpr auto d = description<R>();
    target->clear(names_table<R>());
    write_fields(target, rec, copy, catalog, d.fields, std::make_index_sequence<Names<R>::count>{});
    return target;
}

template <class R, class Fields, std::size_t... I>
void read_fields([[maybe_unused]] const Tm_struct* source, [[maybe_unused]] R& rec,
                 [[maybe_unused]] const Fields& f, std::index_sequence<I...>) {
    (read(source, std::get<I>(f).name, static_cast<int>(I), rec.*(std::get<I>(f).member), std::get<I>(f).form), ...);
}

template <class R>
void from_struct(const Tm_struct* source, R& rec) {
    constexpr auto d = description<R>();
    read_fields(source, rec, d.fields, std::make_index_sequence<std::tuple_size_v<decltype(d.fields)>>{});
}

// Writes the selected alternative of a choice record through the sink that `sink(index,
// name)` makes for it; a selector outside the alternatives writes nothing.
template <class R, class MakeSink, std::size_t... I>
void write_selected(const R& rec, bool copy, Catalog* catalog, const MakeSink& sink, std::index_sequence<I...>) {
    constexpr auto d = description<R>();
    (void)((rec.*(d.selector) == std::get<I>(d.alternatives).value &&
            write(sink(static_cast<int>(I), std::get<I>(d.alternatives).field.name),
                  rec.*(std::get<I>(d.alternatives).field.member), std::get<I>(d.alternatives).field.form, copy,
                  catalog)) ||
           ...);
}

// A choice record: only the selected alternative, as a member named after it.
template <class R>
Tm_struct* choice_to_struct(Tm_struct* target, const R& rec, bool copy, Catalog* catalog) {
    target->clear();
    write_selected(rec, copy, catalog, [&](int, const char* name) { return NamedSink{target, name, catalog}; },
                   std::make_index_sequence<Names<R>::count>{});
    return target;
}

// The same into a prenamed struct over the alternatives' names table.
template <class R>
Tm_prenamed_struct* choice_to_prenamed(Tm_prenamed_struct* target, const R& rec, bool copy, Catalog* catalog) {
    target->clear(names_table<R>());
    write_selected(rec, copy, catalog, [&](int index, const char*) { return PrenamedSink{target, index, catalog}; },
                   std::make_index_sequence<Names<R>::count>{});
    return target;
}

// Selects the first alternative present (in enumerator order), which starts afresh, then
// reads it; with none present the record is left as it was.
template <class R>
void choice_from_struct(const Tm_struct* source, R& rec) {
    constexpr auto d = description<R>();
    std::apply(
        [&](const auto&... a) {
            (void)((source->find_member(a.field.name, 0) != -1 &&
                    (rec.select(a.value), read(source, a.field.name, 0, rec.*(a.field.member), a.field.form),
                     true)) ||
                   ...);
        },
        d.alternatives);
}

// Field-wise equality (a choice record: same selector and same selected alternative).
template <class R>
bool equal(const R& a, const R& b) {
    constexpr auto d = description<R>();
    if constexpr (decltype(d)::is_choice) {
        if (!(a.*(d.selector) == b.*(d.selector))) return false;
        bool same = true;
        std::apply(
            [&](const auto&... alt) {
                (void)((a.*(d.selector) == alt.value &&
                        (same = (a.*(alt.field.member) == b.*(alt.field.member)), true)) ||
                       ...);
            },
            d.alternatives);
        return same;
    } else {
        return std::apply([&](const auto&... f) { return ((a.*(f.member) == b.*(f.member)) && ...); }, d.fields);
    }
}

}  // namespace binding
