#include "platform/Tm_struct.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "platform/Message.h"
#include "platform/Tm_array.h"
#include "platform/Tm_exception.h"

using tm_detail::Name;
using tm_detail::Slot;

Tm_struct::Tm_struct() : Tm_value_container(TMV_STRUCT) {}

Tm_struct::Tm_struct(const Tm_struct& other) : Tm_value_container(TMV_STRUCT), m_interned(other.m_interned) {
    m_members.reserve(other.m_members.size());
    for (const Member& m : other.m_members) m_members.emplace_back(m.name, m.slot.clone());
}

Tm_struct& Tm_struct::operator=(const Tm_struct& other) {
    if (this != &other) {
        Tm_struct copy(other);
        m_members.swap(copy.m_members);
        m_interned = other.m_interned;
    }
    return *this;
}

Tm_struct::Tm_struct(Tm_struct&& other) noexcept
    : Tm_value_container(TMV_STRUCT), m_members(std::move(other.m_members)), m_interned(other.m_interned) {
    other.m_members.clear();
    other.m_interned = tm_detail::kNoNames;
}

Tm_struct& Tm_struct::operator=(Tm_struct&& other) noexcept {
    m_members = std::move(other.m_members);
    m_interned = other.m_interned;
    other.m_members.clear();
    other.m_interned = tm_detail::kNoNames;
    return *this;
}

std::uint64_t tm_detail::interned_in(const Slot& slot) {
    using tm_detail::is_exactly;
    const Tm_value* v = slot.value();
    if (!v) return kNoNames;
    switch (slot.kind()) {
        case TMV_STRUCT:
            return is_plain_struct(*v) ? static_cast<const Tm_struct*>(v)->interned_in() : kUnknown;
        case TMV_ARRAY: {
            const auto* a = static_cast<const Tm_array*>(v);
            Tm_array::Packed p;
            if (a->packed(p)) return kNoNames;
            return is_exactly<Tm_array>(*v) ? a->interned_in() : kUnknown;
        }
        case TMV_MESSAGE: return kUnknown;
        default: return kNoNames;
    }
}

Tm_struct::~Tm_struct() = default;

Tm_value* Tm_struct::clone() const { return new Tm_struct(*this); }

bool Tm_struct::equals(const Tm_value& other) const {
    if (other.get_value_type() != TMV_STRUCT) return false;
    const auto& o = static_cast<const Tm_struct&>(other);
    if (o.m_members.size() != m_members.size()) return false;
    for (size_t i = 0; i < m_members.size(); ++i) {
        if (m_members[i].name.text() != o.m_members[i].name.text() || !m_members[i].slot.equals(o.m_members[i].slot)) return false;
    }
    return true;
}

void Tm_struct::accept(Tm_visitor& visitor) const {
    visitor.begin_struct(*this);
    for (const Member& m : m_members) {
        visitor.visit_member_name(m.name.text());
        m.slot.accept(visitor);
    }
    visitor.end_struct(*this);
}

void Tm_struct::clear() {
    m_members.clear();
    m_interned = tm_detail::kNoNames;
}

int Tm_struct::get_member_index(const std::string& name) const {
    for (size_t i = 0; i < m_members.size(); ++i) {
        if (m_members[i].name.text() == name) return static_cast<int>(i);
    }
    return -1;
}

const std::string& Tm_struct::get_member_name(int index) const {
    if (index < 0 || index >= get_member_count()) throw Tm_out_of_range_exception(index, 0, get_member_count() - 1);
    return m_members[static_cast<size_t>(index)].name.text();
}

TMV Tm_struct::get_member_value_type(int index) const {
    if (index < 0 || index >= get_member_count()) throw Tm_out_of_range_exception(index, 0, get_member_count() - 1);
    return m_members[static_cast<size_t>(index)].slot.kind();
}

void Tm_struct::member_accept(int index, Tm_visitor& visitor) const {
    if (index < 0 || index >= get_member_count()) throw Tm_out_of_range_exception(index, 0, get_member_count() - 1);
    m_members[static_cast<size_t>(index)].slot.accept(visitor);
}

int Tm_struct::find_member_from_start(const char* name) const {
    for (size_t i = 0; i < m_members.size(); ++i) {
        if (m_members[i].name.is(name)) return static_cast<int>(i);
    }
    return -1;
}

void Tm_struct::no_member(const char* name) { throw Tm_exception("no member named '" + std::string(name) + "'"); }

void Tm_struct::kind_mismatch(TMV found, TMV wanted) { throw Tm_type_mismatch_exception(found, wanted); }

const Slot& Tm_struct::typed(const std::string& name, TMV kind) const {
    const int i = get_member_index(name);
    if (i < 0) throw Tm_exception("no member named '" + name + "'");
    const Slot& s = m_members[static_cast<size_t>(i)].slot;
    if (s.kind() != kind) throw Tm_type_mismatch_exception(s.kind(), kind);
    return s;
}

void Tm_struct::add_member(const std::string& name, bool v) { append(Name(name), Slot::of_bool(v)); }
void Tm_struct::add_member(const std::string& name, signed char v) { append(Name(name), Slot::of_signed(TMV_INT8, v)); }
void Tm_struct::add_member(const std::string& name, unsigned char v) { append(Name(name), Slot::of_unsigned(TMV_UINT8, v)); }
void Tm_struct::add_member(const std::string& name, short v) { append(Name(name), Slot::of_signed(TMV_INT16, v)); }
void Tm_struct::add_member(const std::string& name, unsigned short v) { append(Name(name), Slot::of_unsigned(TMV_UINT16, v)); }
void Tm_struct::add_member(const std::string& name, int v) { append(Name(name), Slot::of_signed(TMV_INT32, v)); }
void Tm_struct::add_member(const std::string& name, unsigned int v) { append(Name(name), Slot::of_unsigned(TMV_UINT32, v)); }
void Tm_struct::add_member(const std::string& name, long v) { append(Name(name), Slot::of_signed(TMV_INT64, v)); }
void Tm_struct::add_member(const std::string& name, unsigned long v) { append(Name(name), Slot::of_unsigned(TMV_UINT64, v)); }
void Tm_struct::add_member(const std::string& name, double v) { append(Name(name), Slot::of_double(v)); }
void Tm_struct::add_member(const std::string& name, const char* v) {
    append(Name(name), Slot::owning(new Tm_string(v ? v : "")));
}
void Tm_struct::add_member(const std::string& name, const std::string& v) { append(Name(name), Slot::owning(new Tm_string(v))); }
void Tm_struct::add_member(const std::string& name, const unsigned char* data, unsigned int size) {
    if (!data && size) throw Tm_exception("null binary data");
    append(Name(name), Slot::owning(new Tm_binary(data, size)));
}
void Tm_struct::add_member(const std::string& name, const Tm_value* v) {
    if (!v) throw Tm_exception("null value for member '" + name + "'");
    append(Name(name), Slot::owning(v->clone()));
}
void Tm_struct::add_member_and_own(const std::string& name, Tm_value* v, Tm_catalog<std::string>* catalog) {
    Slot slot = Slot::owning(v);  // owns (or has deleted) v from here on
    Name shared(name);
    if (catalog) catalog->add(shared);
    const std::uint64_t names = tm_detail::interned_in(slot);
    append_interned(shared, std::move(slot), catalog, names);
}

bool Tm_struct::get_member_bool(const std::string& n) const { return typed(n, TMV_BOOL).as_bool(); }
signed char Tm_struct::get_member_int8(const std::string& n) const {
    return static_cast<signed char>(typed(n, TMV_INT8).as_signed());
}
unsigned char Tm_struct::get_member_uint8(const std::string& n) const {
    return static_cast<unsigned char>(typed(n, TMV_UINT8).as_unsigned());
}
short Tm_struct::get_member_int16(const std::string& n) const { return static_cast<short>(typed(n, TMV_INT16).as_signed()); }
unsigned short Tm_struct::get_member_uint16(const std::string& n) const {
    return static_cast<unsigned short>(typed(n, TMV_UINT16).as_unsigned());
}
int Tm_struct::get_member_int32(const std::string& n) const { return static_cast<int>(typed(n, TMV_INT32).as_signed()); }
unsigned int Tm_struct::get_member_uint32(const std::string& n) const {
    return static_cast<unsigned int>(typed(n, TMV_UINT32).as_unsigned());
}
long Tm_struct::get_member_int64(const std::string& n) const { return typed(n, TMV_INT64).as_signed(); }
unsigned long Tm_struct::get_member_uint64(const std::string& n) const { return typed(n, TMV_UINT64).as_unsigned(); }
double Tm_struct::get_member_double(const std::string& n) const { return typed(n, TMV_DOUBLE).as_double(); }
const std::string& Tm_struct::get_member_string(const std::string& n) const {
    return static_cast<const Tm_string*>(typed(n, TMV_STRING).value())->get();
}
const Tm_struct* Tm_struct::get_member_struct(const std::string& n) const {
    return static_cast<const Tm_struct*>(typed(n, TMV_STRUCT).value());
}
const Tm_array* Tm_struct::get_member_array(const std::string& n) const {
    return static_cast<const Tm_array*>(typed(n, TMV_ARRAY).value());
}
const Tm_binary* Tm_struct::get_member_binary(const std::string& n) const {
    return static_cast<const Tm_binary*>(typed(n, TMV_BINARY).value());
}
const Tm_date* Tm_struct::get_member_date(const std::string& n) const {
    return static_cast<const Tm_date*>(typed(n, TMV_DATE).value());
}
const Tm_file* Tm_struct::get_member_file(const std::string& n) const {
    return static_cast<const Tm_file*>(typed(n, TMV_FILE).value());
}
const Message* Tm_struct::get_member_message(const std::string& n) const {
    return &static_cast<const Tm_message*>(typed(n, TMV_MESSAGE).value())->get();
}

// --- Tm_prenamed_struct --------------------------------------------------------------------

Tm_value* Tm_prenamed_struct::clone() const { return new Tm_prenamed_struct(*this); }

namespace {

// The shared names of one names table. Tables are static (their texts never change), so
// they are registered once, by address, and kept for the life of the process; a different
// table met later at the same address gets a new entry (the old one stays, as structs may
// still use its names).
struct NameTable {
    std::vector<const char*> entries;  // the table's pointers, terminator excluded
    std::vector<Name> handles;
    tm_detail::Names_entry entry{nullptr, 0};
    bool matches(const char* const* names, int count) const {
        if (static_cast<int>(entries.size()) != count) return false;
        // Compared in place: most tables are a few entries, shorter than a call to memcmp.
        for (int i = 0; i < count; ++i) {
            if (entries[static_cast<size_t>(i)] != names[i]) return false;
        }
        return true;
    }
};

// Each thread remembers the tables it used last in a small direct-mapped cache, so that
// records of several types filled in turn find their names without the registry's lock.
const NameTable& shared_table(const char* const* names, int count) {
    struct Cached {
        const char* const* names;
        const NameTable* table;
    };
    constexpr std::size_t kCacheSize = 64;
    thread_local Cached cache[kCacheSize] = {};
    Cached& slot = cache[(reinterpret_cast<std::uintptr_t>(names) >> 3) % kCacheSize];
    if (slot.names == names && slot.table->matches(names, count)) return *slot.table;
    // The registry lives as long as the process (its names are immortal); it is reachable
    // from these statics until the end, never destroyed.
    static std::mutex& mutex = *new std::mutex;
    static auto& tables = *new std::unordered_map<const char* const*, std::unique_ptr<NameTable>>;
    static auto& replaced = *new std::vector<std::unique_ptr<NameTable>>;
    std::lock_guard<std::mutex> lock(mutex);
    std::unique_ptr<NameTable>& entry = tables[names];
    if (!entry || !entry->matches(names, count)) {
        auto table = std::make_unique<NameTable>();
        table->entries.assign(names, names + count);
        table->handles.reserve(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i) table->handles.emplace_back(names[i], Name::Immortal{});
        table->entry.handles = table->handles.data();
        table->entry.count = count;
        if (entry) replaced.push_back(std::move(entry));
        entry = std::move(table);
    }
    slot = Cached{names, entry.get()};
    return *entry;
}

}  // namespace

const Tm_prenamed_struct::Names_table& Tm_prenamed_struct::names_table(const char* const* names) {
    int count = 0;
    while (names && names[count]) ++count;
    return count ? shared_table(names, count).entry : tm_detail::kNoNamesEntry;
}

void Tm_prenamed_struct::clear(const char* const* names) { clear(names_table(names)); }

void Tm_prenamed_struct::intern(int index, Tm_catalog<std::string>& catalog) const {
    catalog.add(m_table->handles[index]);
    constexpr int kBits = tm_detail::Names_entry::kRunBits;
    constexpr std::uint64_t kMask = (std::uint64_t(1) << kBits) - 1;
    const std::uint64_t id = catalog.id();
    if (id > (~std::uint64_t(0) >> kBits) || static_cast<std::uint64_t>(index) >= kMask) return;
    // The run grows by one when this name is the next after it.
    const std::uint64_t run = m_table->run.load(std::memory_order_relaxed);
    const std::uint64_t length = (run >> kBits) == id ? (run & kMask) : 0;
    if (static_cast<std::uint64_t>(index) == length) m_table->run.store((id << kBits) | (length + 1), std::memory_order_relaxed);
}

void Tm_prenamed_struct::adopt(Tm_value* v) { tm_detail::Node_arena::adopt(v); }

void Tm_prenamed_struct::bad_index(int index) const { throw Tm_out_of_range_exception(index, 0, m_table->count - 1); }

const Name& Tm_prenamed_struct::name_handle(int index) const {
    check(index);
    return m_table->handles[index];
}

// A new text's cell (Slot::owning without asking the value what it is).
Slot Tm_prenamed_struct::text_slot(Tm_string* text) {
    Slot slot = Slot::of_value(TMV_STRING, text);  // owns the text from here on
    tm_detail::Node_arena::adopt(text);
    return slot;
}

void Tm_prenamed_struct::add_member(int index, const char* v, Tm_catalog<std::string>* catalog) {
    check(index);
    put(index, text_slot(new Tm_string(v ? v : "")), catalog);
}

void Tm_prenamed_struct::add_member(int index, const std::string& v, Tm_catalog<std::string>* catalog) {
    check(index);
    put(index, text_slot(new Tm_string(v)), catalog);
}

void Tm_prenamed_struct::add_member_and_own(int index, Tm_value* v, Tm_catalog<std::string>* catalog) {
    Slot slot = Slot::owning(v);  // owns (or has deleted) v from here on
    const std::uint64_t names = tm_detail::interned_in(slot);
    put(index, std::move(slot), catalog, names);
}

void tm_detail::Node_arena::adopt(Tm_value* v) {
    Node_arena* arena = current();
    if (!arena) return;
    switch (v->get_value_type()) {
        case TMV_STRUCT:
            if (is_plain_struct(*v)) return;
            break;
        case TMV_ARRAY:
            if (static_cast<const Tm_array*>(v)->owns_nothing() || is_exactly<Tm_array>(*v)) return;
            break;
        case TMV_DATE:
            return;
        case TMV_STRING: {
            // A text short enough for the string's own buffer lives in the node.
            const auto text = reinterpret_cast<std::uintptr_t>(static_cast<const Tm_string*>(v)->get().data());
            const auto node = reinterpret_cast<std::uintptr_t>(v);
            if (text >= node && text < node + sizeof(Tm_string)) return;
            break;
        }
        default:
            break;
    }
    arena->keep_destructor(v);
}
