#include "platform/Message.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <typeinfo>

#include "platform/Tm_exception.h"

using Pause = tm_detail::Node_arena::Pause;

Message::Message() = default;
// Copies own their values (cloned, names counted), so the decoded names and the arena stay
// with the original.
Message::Message(const Message& other)
    : m_type(other.m_type),
      m_requestName(other.m_requestName),
      m_useSendMemberString(other.m_useSendMemberString),
      m_groups{other.m_groups[0], other.m_groups[1]},
      m_catalogs{other.m_catalogs[0], other.m_catalogs[1]} {}

Message& Message::operator=(const Message& other) {
    if (this != &other) {
        Message copy(other);
        m_type = copy.m_type;
        m_requestName = std::move(copy.m_requestName);
        m_useSendMemberString = copy.m_useSendMemberString;
        for (int g = 0; g < 2; ++g) {
            m_groups[g] = std::move(copy.m_groups[g]);
            m_catalogs[g] = std::move(copy.m_catalogs[g]);
        }
        // Nothing refers to them any more.
        m_arena.reset();
        m_sendArena.reset();
        m_decodedNames.clear();
    }
    return *this;
}
Message::~Message() = default;

int Message::index(TMG group) {
    if (group != TMG_RECV && group != TMG_SEND) throw Tm_out_of_range_exception(group, 0, 1);
    return group;
}

Tm_catalog<std::string>* Message::get_send_member_string(TMG group) { return &m_catalogs[index(group)]; }

const Tm_catalog<std::string>* Message::get_send_member_string(TMG group) const { return &m_catalogs[index(group)]; }

namespace {

// Interns every member name of a tree, depth first, in member order.
class NameCollector final : public Tm_visitor {
public:
    explicit NameCollector(Tm_catalog<std::string>& c) : m_catalog(c) {}
    void visit_int8(int) override {}
    void visit_uint8(unsigned int) override {}
    void visit_int16(int) override {}
    void visit_uint16(unsigned int) override {}
    void visit_int32(int) override {}
    void visit_uint32(unsigned int) override {}
    void visit_int64(long) override {}
    void visit_uint64(unsigned long) override {}
    void visit_double(double) override {}
    void visit_bool(bool) override {}
    void visit_string(const std::string&) override {}
    void visit_binary(const unsigned char*, std::size_t) override {}
    void visit_date(long) override {}
    void visit_file(const Tm_file&) override {}
    void visit_message(const Message& m) override {
        m.get_group(TMG_SEND).accept(*this);
        m.get_group(TMG_RECV).accept(*this);
    }
    void begin_struct(const Tm_struct&) override {}
    void visit_member_name(const std::string& name) override { m_catalog.add(name); }
    void end_struct(const Tm_struct&) override {}
    void begin_array(const Tm_array&) override {}
    void end_array(const Tm_array&) override {}

private:
    Tm_catalog<std::string>& m_catalog;
};

// Interns the member names of a value tree in the same order as NameCollector, reading
// the runtime's own structs and arrays directly (shared names intern without hashing) and
// handing any other value to the collector. Subtrees whose names were all interned in this
// catalog as they were added are skipped.
void collect_names(const Tm_value& v, Tm_catalog<std::string>& catalog);

// Whether a value's names (its interned_in()) need no walk for `catalog`.
bool nothing_to_intern(std::uint64_t interned, const Tm_catalog<std::string>& catalog) {
    return interned == catalog.id() || interned == tm_detail::kNoNames;
}

void collect_struct(const Tm_struct& s, Tm_catalog<std::string>& catalog) {
    if (nothing_to_intern(s.interned_in(), catalog)) return;
    const int n = s.get_member_count();
    for (int i = 0; i < n; ++i) {
        catalog.add(s.member_name_handle(i));
        if (const Tm_value* v = s.member_slot(i).value()) collect_names(*v, catalog);
    }
}

void collect_names(const Tm_value& v, Tm_catalog<std::string>& catalog) {
    using tm_detail::is_exactly;
    if (tm_detail::is_plain_struct(v)) {
        collect_struct(static_cast<const Tm_struct&>(v), catalog);
    } else if (is_exactly<Tm_array>(v)) {
        const auto& a = static_cast<const Tm_array&>(v);
        if (a.holds_packed() || nothing_to_intern(a.interned_in(), catalog)) return;
        const int n = a.get_member_count();
        for (int i = 0; i < n; ++i) {
            if (const Tm_value* item = a.item_slot(i).value()) collect_names(*item, catalog);
        }
    } else if (is_exactly<Tm_message>(v)) {
        const Message& m = static_cast<const Tm_message&>(v).get();
        collect_struct(m.get_group(TMG_SEND), catalog);
        collect_struct(m.get_group(TMG_RECV), catalog);
    } else if (v.get_value_type() == TMV_ARRAY || v.get_value_type() == TMV_STRUCT) {
        Tm_array::Packed p;
        if (v.get_value_type() == TMV_ARRAY && static_cast<const Tm_array&>(v).packed(p)) return;
        NameCollector collector(catalog);
        v.accept(collector);
    }
}

}  // namespace

bool Message::create_send_member_string_meta() {
    if (!m_useSendMemberString) return false;
    collect_struct(m_groups[TMG_SEND], m_catalogs[TMG_SEND]);
    return true;
}

void Message::clear(TMG group) {
    m_groups[index(group)].clear();
    m_catalogs[index(group)].clear();
    if (group == TMG_RECV) {
        m_arena.reset();
        m_decodedNames.clear();
    } else {
        m_sendArena.reset();
    }
}

tm_detail::Node_arena& Message::Build_scope::arena_of(Message& m) {
    if (!m.m_sendArena) m.m_sendArena = std::make_unique<tm_detail::Node_arena>();
    return *m.m_sendArena;
}

Message::Build_scope::Build_scope(Message& m)
    : m_arena(arena_of(m)), m_scope(m_arena), m_uncaught(std::uncaught_exceptions()) {}

Message::Build_scope::~Build_scope() {
    if (std::uncaught_exceptions() > m_uncaught) m_arena.abandon();
}

// A group's own member list may grow or go on its own later, so it never comes from a build
// scope's arena (the Pause); members that are texts are made outside it too.
void Message::add_member(TMG g, const std::string& n, bool v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, signed char v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, unsigned char v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, short v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, unsigned short v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, int v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, unsigned int v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, long v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, unsigned long v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, double v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, const char* v) { Pause p; m_groups[index(g)].add_member(n, v); }
void Message::add_member(TMG g, const std::string& n, const std::string& v) {
    Pause p;
    m_groups[index(g)].add_member(n, v);
}
void Message::add_member_and_own(TMG g, const std::string& n, Tm_value* v) {
    std::unique_ptr<Tm_value> owned(v);
    const int i = index(g);
    if (g == TMG_SEND && m_sendArena && tm_detail::Node_arena::current() == m_sendArena.get()) {
        // Made in this message's build scope: the arena owns it.
        tm_detail::Slot slot = tm_detail::Slot::owning(owned.release());
        slot.leave_to_arena();
        Pause p;
        m_groups[i].append(tm_detail::Name(n), std::move(slot));
        return;
    }
    m_groups[i].add_member_and_own(n, owned.release());
}

int Message::get_member_index(TMG g, const std::string& n) const { return get_group(g).get_member_index(n); }
bool Message::get_member_bool(TMG g, const std::string& n) const { return get_group(g).get_member_bool(n); }
signed char Message::get_member_int8(TMG g, const std::string& n) const { return get_group(g).get_member_int8(n); }
unsigned char Message::get_member_uint8(TMG g, const std::string& n) const { return get_group(g).get_member_uint8(n); }
short Message::get_member_int16(TMG g, const std::string& n) const { return get_group(g).get_member_int16(n); }
unsigned short Message::get_member_uint16(TMG g, const std::string& n) const { return get_group(g).get_member_uint16(n); }
int Message::get_member_int32(TMG g, const std::string& n) const { return get_group(g).get_member_int32(n); }
unsigned int Message::get_member_uint32(TMG g, const std::string& n) const { return get_group(g).get_member_uint32(n); }
long Message::get_member_int64(TMG g, const std::string& n) const { return get_group(g).get_member_int64(n); }
unsigned long Message::get_member_uint64(TMG g, const std::string& n) const { return get_group(g).get_member_uint64(n); }
double Message::get_member_double(TMG g, const std::string& n) const { return get_group(g).get_member_double(n); }
const std::string& Message::get_member_string(TMG g, const std::string& n) const {
    return get_group(g).get_member_string(n);
}
const Tm_struct* Message::get_member_struct(TMG g, const std::string& n) const {
    return get_group(g).get_member_struct(n);
}
const Tm_array* Message::get_member_array(TMG g, const std::string& n) const { return get_group(g).get_member_array(n); }
const Tm_binary* Message::get_member_binary(TMG g, const std::string& n) const {
    return get_group(g).get_member_binary(n);
}

bool Message::equals(const Message& o) const {
    return m_type == o.m_type && m_requestName == o.m_requestName && m_groups[0].equals(o.m_groups[0]) &&
           m_groups[1].equals(o.m_groups[1]);
}
