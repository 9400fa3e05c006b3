// Messages: a kind, a request name and two member groups.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Tm_array.h"
#include "platform/Tm_catalog.h"
#include "platform/Tm_struct.h"

// A request or response. Group TMG_SEND (1) holds the members this side sends, group
// TMG_RECV (0) those it received. Each group has its own name catalog: the send catalog is
// the one record converters intern member names into, and after
// create_send_member_string_meta() it holds every name of the send group, in the order the
// encoder writes them.
class Message {
public:
    using TMG = Tm_message_group;
    using TMT = Tm_message_type;
    static constexpr TMG TMG_RECV = ::TMG_RECV;
    static constexpr TMG TMG_SEND = ::TMG_SEND;
    static constexpr TMT TMT_REQUEST = ::TMT_REQUEST;
    static constexpr TMT TMT_RESPONSE = ::TMT_RESPONSE;

    Message();
    Message(const Message& other);
    Message& operator=(const Message& other);
    ~Message();

    void set_msg_type(TMT type) { m_type = type; }
    TMT get_msg_type() const { return m_type; }
    void set_request_name(const std::string& name) { m_requestName = name; }
    const std::string& get_request_name() const { return m_requestName; }

    // Whether member names of the send group are interned in its catalog (on by default).
    void set_use_send_member_string(bool use) { m_useSendMemberString = use; }
    bool get_use_send_member_string() const { return m_useSendMemberString; }
    // The name catalog of a group.
    Tm_catalog<std::string>* get_send_member_string(TMG group);
    const Tm_catalog<std::string>* get_send_member_string(TMG group) const;
    // Interns every member name of the send group (nested ones included, depth first, in
    // order) into the send catalog, which then is the name table the encoder writes.
    // Returns false, and does nothing, when send member strings are not in use.
    bool create_send_member_string_meta();

    // Removes every member of `group` and empties its catalog.
    void clear(TMG group);

    // For builders that fill the send group in one go (the record converters): while a scope
    // lives, the values this thread makes are placed in an arena that the message keeps and
    // drops at once with its send group, without a walk over them. Values made in the scope
    // must be added to this message's send group, and nothing else may be done with the
    // message meanwhile.
    class Build_scope {
    public:
        explicit Build_scope(Message& message);
        ~Build_scope();
        Build_scope(const Build_scope&) = delete;
        Build_scope& operator=(const Build_scope&) = delete;

    private:
        static tm_detail::Node_arena& arena_of(Message& message);
        tm_detail::Node_arena& m_arena;
        tm_detail::Node_arena::Scope m_scope;
        int m_uncaught;
    };

    void add_member(TMG group, const std::string& name, bool v);
    void add_member(TMG group, const std::string& name, signed char v);
    void add_member(TMG group, const std::string& name, unsigned char v);
    void add_member(TMG group, const std::string& name, short v);
    void add_member(TMG group, const std::string& name, unsigned short v);
    void add_member(TMG group, const std::string& name, int v);
    void add_member(TMG group, const std::string& name, unsigned int v);
    void add_member(TMG group, const std::string& name, long v);
    void add_member(TMG group, const std::string& name, unsigned long v);
    void add_member(TMG group, const std::string& name, double v);
    void add_member(TMG group, const std::string& name, const char* v);
    void add_member(TMG group, const std::string& name, const std::string& v);
    // Takes ownership of `v` (deleted on every failure path).
    void add_member_and_own(TMG group, const std::string& name, Tm_value* v);

    // The members of a group as a struct (read-only).
    const Tm_struct& get_group(TMG group) const { return m_groups[index(group)]; }
    int get_member_count(TMG group) const { return get_group(group).get_member_count(); }
    int get_member_index(TMG group, const std::string& name) const;

    // Getters by group and name; failures as Tm_struct's getters.
    bool get_member_bool(TMG group, const std::string& name) const;
    signed char get_member_int8(TMG group, const std::string& name) const;
    unsigned char get_member_uint8(TMG group, const std::string& name) const;
    short get_member_int16(TMG group, const std::string& name) const;
    unsigned short get_member_uint16(TMG group, const std::string& name) const;
    int get_member_int32(TMG group, const std::string& name) const;
    unsigned int get_member_uint32(TMG group, const std::string& name) const;
    long get_member_int64(TMG group, const std::string& name) const;
    unsigned long get_member_uint64(TMG group, const std::string& name) const;
    double get_member_double(TMG group, const std::string& name) const;
    const std::string& get_member_string(TMG group, const std::string& name) const;
    const Tm_struct* get_member_struct(TMG group, const std::string& name) const;
    const Tm_array* get_member_array(TMG group, const std::string& name) const;
    const Tm_binary* get_member_binary(TMG group, const std::string& name) const;

    // Same kind, request name and members of both groups (catalogs are not compared).
    bool equals(const Message& other) const;

    // Direct access to a group for the codec.
    Tm_struct& group_for_decoding(TMG group) { return m_groups[index(group)]; }
    // Keeps what the receive group's values borrow: the decoded name table and the arena that
    // owns the values (the codec installs the group first, then these).
    void keep_decoded(std::vector<tm_detail::Name> names, std::unique_ptr<tm_detail::Node_arena> arena) {
        m_decodedNames = std::move(names);
        m_arena = std::move(arena);
    }

private:
    static int index(TMG group);
    TMT m_type = TMT_REQUEST;
    std::string m_requestName;
    bool m_useSendMemberString = true;
    // Declared before the groups, so that they outlive them. A copy of a message owns its
    // values and names, so these are not copied. m_arena holds the receive group's decoded
    // values, m_sendArena the values built in a Build_scope.
    std::vector<tm_detail::Name> m_decodedNames;
    std::unique_ptr<tm_detail::Node_arena> m_arena;
    std::unique_ptr<tm_detail::Node_arena> m_sendArena;
    Tm_struct m_groups[2];
    Tm_catalog<std::string> m_catalogs[2];
};

// A message carried as a value inside another message.
class Tm_message final : public Tm_value {
public:
    Tm_message() : Tm_value(TMV_MESSAGE) {}
    explicit Tm_message(const Message& m) : Tm_value(TMV_MESSAGE), m_message(m) {}
    Tm_value* clone() const override { return new Tm_message(*this); }
    bool equals(const Tm_value& other) const override;
    void accept(Tm_visitor& visitor) const override { visitor.visit_message(m_message); }
    const Message& get() const { return m_message; }
    Message& get() { return m_message; }

private:
    Message m_message;
};
