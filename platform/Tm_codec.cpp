#include "platform/Tm_codec.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <string>
#include <unordered_map>
#include <utility>

#include "platform/Tm_copy.h"
#include "platform/Tm_exception.h"

namespace tmsg {
namespace {

constexpr unsigned char kMagic0 = 'T';
constexpr unsigned char kMagic1 = 'M';
// Element tag of an array whose items have different kinds; each item then carries its tag.
constexpr unsigned char kMixed = 0xFF;
constexpr int kMaxVarintBytes = 10;

// Smallest encoded payload of each kind; used to refuse counts the input cannot hold
// before anything is reserved.
constexpr std::size_t kMinPayload[TMV_LAST + 1] = {
    1,  // int8
    1,  // uint8
    2,  // int16
    2,  // uint16
    4,  // int32
    4,  // uint32
    8,  // int64
    8,  // uint64
    8,  // double
    1,  // bool
    1,  // string: length
    1,  // struct: member count
    2,  // array: count, element tag
    1,  // binary: length
    8,  // date
    2,  // file: name length, content length
    4,  // message: kind, name length, two member counts
};
// A struct member: name index, tag and at least one payload byte.
constexpr std::size_t kMinMember = 3;
// An item of a mixed array: tag and at least one payload byte.
constexpr std::size_t kMinMixedItem = 2;

std::string kind_text(int kind) { return std::string(tmv_name(kind)) + " (" + std::to_string(kind) + ")"; }

// --- encoding ------------------------------------------------------------------------------

// Appends to a byte vector through a raw cursor; the vector is grown geometrically and cut
// to the written length by finish().
class Writer {
  public:
    explicit Writer(std::vector<unsigned char>& out)
        : m_out(out), m_base(out.data()), m_len(out.size()), m_cap(out.size()) {}

    void ensure(std::size_t n) {
        if (m_cap - m_len < n) grow(n);
    }
    void u8(unsigned int v) {
        ensure(1);
        m_base[m_len++] = static_cast<unsigned char>(v);
    }
    template <int N>
    void fixed(std::uint64_t v) {
        ensure(N);
        tm_detail::store_le<N>(m_base + m_len, v);
        m_len += N;
    }
    void varint(std::uint64_t v) {
        ensure(kMaxVarintBytes);
        m_len = static_cast<std::size_t>(put_varint(m_base + m_len, v) - m_base);
    }
    void bytes(const void* data, std::size_t size) {
        varint(size);
        raw(data, size);
    }
    // A struct member holding a scalar of kind `kind` (raw bits `bits`, little-endian on the
    // wire): name index, tag and payload, with one check for room. The payload is stored as
    // eight bytes and the cursor advanced by its width; what lies beyond is overwritten next
    // or cut by finish().
    void scalar_member(std::uint64_t nameIndex, int kind, std::uint64_t bits) {
        ensure(kMaxVarintBytes + 1 + 8);
        unsigned char* p = put_varint(m_base + m_len, nameIndex);
        *p++ = static_cast<unsigned char>(kind);
        tm_detail::store_le<8>(p, bits);
        m_len = static_cast<std::size_t>(p - m_base) + kMinPayload[kind];
    }
    void raw(const void* data, std::size_t size) {
        if (size == 0) return;
        ensure(size);
        tm_detail::copy_bytes(m_base + m_len, static_cast<const unsigned char*>(data), size);
        m_len += size;
    }
    std::size_t length() const { return m_len; }
    void finish() { m_out.resize(m_len); }

  private:
    // Writes `v` as a varint at `p` (room checked by the caller); returns the end.
    static unsigned char* put_varint(unsigned char* p, std::uint64_t v) {
        while (v >= 0x80) {
            *p++ = static_cast<unsigned char>(v | 0x80);
            v >>= 7;
        }
        *p++ = static_cast<unsigned char>(v);
        return p;
    }
    void grow(std::size_t n) {
        const std::size_t want = std::max({m_len + n, m_cap * 2, std::size_t(256)});
        m_out.resize(want);
        m_base = m_out.data();
        m_cap = m_out.size();
    }
    std::vector<unsigned char>& m_out;
    unsigned char* m_base;
    std::size_t m_len;
    std::size_t m_cap;
};

// Writes a value tree as it is visited. Each open container is a frame: whether its items
// carry a tag (struct members, mixed arrays) or are bare payloads of one element kind
// (uniform arrays, the member lists of a message), and how many items it announced.
class Encoder final : public Tm_visitor {
  public:
    Encoder(Writer& w, const Tm_catalog<std::string>& catalog) : m_w(w), m_catalog(catalog) {
        // The root: one untagged member list at level 0.
        m_stack.push_back(Frame{false, true, TMV_STRUCT, 0, 1});
    }

    const std::vector<const std::string*>& extra_names() const { return m_extraNames; }

    void visit_int8(int v) override {
        item(TMV_INT8);
        m_w.u8(static_cast<unsigned int>(v) & 0xFFu);
    }
    void visit_uint8(unsigned int v) override {
        item(TMV_UINT8);
        m_w.u8(v & 0xFFu);
    }
    void visit_int16(int v) override {
        item(TMV_INT16);
        m_w.fixed<2>(static_cast<std::uint64_t>(v));
    }
    void visit_uint16(unsigned int v) override {
        item(TMV_UINT16);
        m_w.fixed<2>(v);
    }
    void visit_int32(int v) override {
        item(TMV_INT32);
        m_w.fixed<4>(static_cast<std::uint64_t>(v));
    }
    void visit_uint32(unsigned int v) override {
        item(TMV_UINT32);
        m_w.fixed<4>(v);
    }
    void visit_int64(long v) override {
        item(TMV_INT64);
        m_w.fixed<8>(static_cast<std::uint64_t>(v));
    }
    void visit_uint64(unsigned long v) override {
        item(TMV_UINT64);
        m_w.fixed<8>(v);
    }
    void visit_double(double v) override {
        item(TMV_DOUBLE);
        std::uint64_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        m_w.fixed<8>(bits);
    }
    void visit_bool(bool v) override {
        item(TMV_BOOL);
        m_w.u8(v ? 1 : 0);
    }
    void visit_string(const std::string& v) override {
        item(TMV_STRING);
        m_w.bytes(v.data(), v.size());
    }
    void visit_binary(const unsigned char* data, std::size_t size) override {
        item(TMV_BINARY);
        m_w.bytes(data, size);
    }
    void visit_date(long v) override {
        item(TMV_DATE);
        m_w.fixed<8>(static_cast<std::uint64_t>(v));
    }
    void visit_file(const Tm_file& f) override {
        item(TMV_FILE);
        m_w.bytes(f.name().data(), f.name().size());
        m_w.bytes(f.content().data(), f.content().size());
    }
    void visit_message(const Message& m) override {
        item(TMV_MESSAGE);
        const int level = nested_level(m_stack.back().level + 1);
        m_w.u8(static_cast<unsigned int>(m.get_msg_type()));
        m_w.bytes(m.get_request_name().data(), m.get_request_name().size());
        m_stack.push_back(Frame{false, true, TMV_STRUCT, level, 2});
        write_struct(m.get_group(TMG_SEND));
        write_struct(m.get_group(TMG_RECV));
        close();
    }

    // The runtime's own structs and arrays are written directly, without visitor round trips;
    // any other value (derived structs and arrays) through its accept().
    void write_value(const Tm_value& v) {
        using tm_detail::is_exactly;
        if (tm_detail::is_plain_struct(v)) {
            write_struct(static_cast<const Tm_struct&>(v));
        } else if (v.get_value_type() == TMV_ARRAY) {
            const auto& a = static_cast<const Tm_array&>(v);
            Tm_array::Packed p;
            if (a.packed(p)) {
                write_packed(p);
            } else if (is_exactly<Tm_array>(v)) {
                write_plain_array(a);
            } else {
                v.accept(*this);
            }
        } else {
            v.accept(*this);
        }
    }
    void write_struct(const Tm_struct& s) {
        item(TMV_STRUCT);
        const Frame& parent = m_stack.back();
        const int level = parent.holdsBodies ? parent.level : nested_level(parent.level + 1);
        const int count = s.get_member_count();
        m_w.varint(static_cast<std::uint64_t>(count));
        m_stack.push_back(Frame{true, false, -1, level, count});
        for (int i = 0; i < count; ++i) {
            const auto index = static_cast<std::uint64_t>(name_index(s.member_name_handle(i)));
            const tm_detail::Slot& slot = s.member_slot(i);
            const TMV kind = slot.kind();
            if (tmv_is_scalar(kind)) {
                // The frame is this struct's own: the item needs no check.
                --m_stack.back().remaining;
                m_w.scalar_member(index, kind, scalar_bits(slot));
            } else {
                m_w.varint(index);
                write_slot(slot);
            }
        }
        close();
    }
    // The wire bits of a scalar cell: two's complement for signed kinds, IEEE-754 for double.
    static std::uint64_t scalar_bits(const tm_detail::Slot& slot) {
        switch (slot.kind()) {
            case TMV_INT8:
            case TMV_INT16:
            case TMV_INT32:
            case TMV_INT64: return static_cast<std::uint64_t>(slot.as_signed());
            case TMV_DOUBLE: {
                const double d = slot.as_double();
                std::uint64_t bits;
                std::memcpy(&bits, &d, sizeof bits);
                return bits;
            }
            case TMV_BOOL: return slot.as_bool() ? 1 : 0;
            default: return slot.as_unsigned();
        }
    }
    void write_slot(const tm_detail::Slot& slot) {
        switch (slot.kind()) {
            case TMV_INT8: return visit_int8(static_cast<int>(slot.as_signed()));
            case TMV_UINT8: return visit_uint8(static_cast<unsigned int>(slot.as_unsigned()));
            case TMV_INT16: return visit_int16(static_cast<int>(slot.as_signed()));
            case TMV_UINT16: return visit_uint16(static_cast<unsigned int>(slot.as_unsigned()));
            case TMV_INT32: return visit_int32(static_cast<int>(slot.as_signed()));
            case TMV_UINT32: return visit_uint32(static_cast<unsigned int>(slot.as_unsigned()));
            case TMV_INT64: return visit_int64(slot.as_signed());
            case TMV_UINT64: return visit_uint64(slot.as_unsigned());
            case TMV_DOUBLE: return visit_double(slot.as_double());
            case TMV_BOOL: return visit_bool(slot.as_bool());
            default: return write_value(*slot.value());
        }
    }
    void write_plain_array(const Tm_array& a) {
        item(TMV_ARRAY);
        const int level = nested_level(m_stack.back().level + 1);
        const int count = a.get_member_count();
        int tag = kMixed;
        if (count > 0) {
            tag = a.item_slot(0).kind();
            for (int i = 1; i < count; ++i) {
                if (a.item_slot(i).kind() != tag) {
                    tag = kMixed;
                    break;
                }
            }
        }
        m_w.varint(static_cast<std::uint64_t>(count));
        m_w.u8(static_cast<unsigned int>(tag));
        if (tag != kMixed && (tag <= TMV_BOOL || tag == TMV_DATE))
            m_w.ensure(static_cast<std::size_t>(count) * kMinPayload[tag]);
        m_stack.push_back(Frame{tag == kMixed, false, tag == kMixed ? -1 : tag, level, count});
        for (int i = 0; i < count; ++i) write_slot(a.item_slot(i));
        close();
    }
    // A uniform scalar array stored in wire layout: one copy of its payload.
    void write_packed(const Tm_array::Packed& p) {
        item(TMV_ARRAY);
        nested_level(m_stack.back().level + 1);
        m_w.varint(p.count);
        m_w.u8(static_cast<unsigned int>(p.kind));
        m_w.raw(p.data, p.count * Tm_array::wire_size(p.kind));
    }
    int name_index(const tm_detail::Name& name) {
        const int index = m_catalog.find(name);
        return index >= 0 ? index : extra_index(name.text());
    }
    void begin_struct(const Tm_struct& s) override {
        item(TMV_STRUCT);
        const Frame& parent = m_stack.back();
        // A message's member lists sit at the message's own level.
        const int level = parent.holdsBodies ? parent.level : nested_level(parent.level + 1);
        const int count = s.get_member_count();
        if (count < 0) throw Tm_exception("encode: struct reports a negative member count");
        m_w.varint(static_cast<std::uint64_t>(count));
        m_stack.push_back(Frame{true, false, -1, level, count});
    }
    void visit_member_name(const std::string& name) override {
        const int index = m_catalog.find(name);
        m_w.varint(static_cast<std::uint64_t>(index >= 0 ? index : extra_index(name)));
    }
    // Index of a name the catalog lacks, appended after the catalog's names.
    int extra_index(const std::string& name) {
        auto it = m_extraIndex.find(name);
        if (it == m_extraIndex.end()) {
            const int index = m_catalog.size() + static_cast<int>(m_extraNames.size());
            it = m_extraIndex.emplace(name, index).first;
            m_extraNames.push_back(&it->first);
        }
        return it->second;
    }
    void end_struct(const Tm_struct&) override { close(); }
    void begin_array(const Tm_array& a) override {
        item(TMV_ARRAY);
        const int level = nested_level(m_stack.back().level + 1);
        const int count = a.get_member_count();
        if (count < 0) throw Tm_exception("encode: array reports a negative member count");
        int tag = kMixed;
        if (count > 0) {
            tag = a.get_member_value_type(0);
            for (int i = 1; i < count; ++i) {
                if (a.get_member_value_type(i) != tag) {
                    tag = kMixed;
                    break;
                }
            }
        }
        m_w.varint(static_cast<std::uint64_t>(count));
        m_w.u8(static_cast<unsigned int>(tag));
        if (tag != kMixed) {
            if (tag < 0 || tag > TMV_LAST)
                throw Tm_exception("encode: array item of unknown kind " + std::to_string(tag));
            // Fixed-size payloads: room for all of them at once.
            if (tag <= TMV_BOOL || tag == TMV_DATE)
                m_w.ensure(static_cast<std::size_t>(count) * kMinPayload[tag]);
        }
        m_stack.push_back(Frame{tag == kMixed, false, tag == kMixed ? -1 : tag, level, count});
    }
    void end_array(const Tm_array&) override { close(); }

    void check_done() const {
        if (m_stack.size() != 1 || m_stack.back().remaining != 0)
            throw Tm_exception("encode: the member list was not visited completely");
    }

  private:
    struct Frame {
        bool tagged;       // items carry their kind tag
        bool holdsBodies;  // the root or a message: its items are member lists
        int elementKind;   // the one kind of an untagged container, else -1
        int level;
        long remaining;  // items still expected
    };

    // Starts one item of the innermost container: its tag, or a check that it has the
    // container's element kind.
    void item(int kind) {
        Frame& f = m_stack.back();
        if (f.remaining <= 0 || (!f.tagged && f.elementKind != kind)) bad_item(f, kind);
        --f.remaining;
        if (f.tagged) m_w.u8(static_cast<unsigned int>(kind));
    }
    [[noreturn]] static void bad_item(const Frame& f, int kind) {
        if (f.remaining <= 0) throw Tm_exception("encode: more items than the container announced");
        throw Tm_exception("encode: item of kind " + kind_text(kind) + " in a container of " +
                           kind_text(f.elementKind));
    }
    static int nested_level(int level) {
        if (level > kMaxDepth) {
            throw Tm_exception("encode: values nested deeper than " + std::to_string(kMaxDepth) + " levels");
        }
        return level;
    }
    void close() {
        if (m_stack.back().remaining != 0)
            throw Tm_exception("encode: fewer items than the container announced");
        m_stack.pop();
    }

    // The open containers. Each level holds at most two (a message's member list sits at the
    // message's level), and levels are checked before anything is pushed.
    class Frames {
      public:
        void push_back(const Frame& f) {
            if (m_count == kCapacity) throw Tm_exception("encode: values nested too deeply");
            m_frames[m_count++] = f;
        }
        Frame& back() { return m_frames[m_count - 1]; }
        const Frame& back() const { return m_frames[m_count - 1]; }
        void pop() { --m_count; }
        std::size_t size() const { return m_count; }

      private:
        static constexpr std::size_t kCapacity = 2 * (kMaxDepth + 4);
        Frame m_frames[kCapacity];
        std::size_t m_count = 0;
    };

    Writer& m_w;
    const Tm_catalog<std::string>& m_catalog;
    Frames m_stack;
    std::unordered_map<std::string, int> m_extraIndex;
    std::vector<const std::string*> m_extraNames;
};

void write_table(Writer& w, const Tm_catalog<std::string>& catalog,
                 const std::vector<const std::string*>& extra) {
    w.varint(static_cast<std::uint64_t>(catalog.size()) + extra.size());
    for (const std::string& name : catalog.names()) w.bytes(name.data(), name.size());
    for (const std::string* name : extra) w.bytes(name->data(), name->size());
}

// --- decoding ------------------------------------------------------------------------------

[[noreturn]] void fail(std::size_t offset, const std::string& what) {
    throw Tm_exception("decode error at byte " + std::to_string(offset) + ": " + what);
}

void append_part(std::string& s, const char* part) { s += part; }
template <class N, std::enable_if_t<std::is_integral<N>::value, int> = 0>
void append_part(std::string& s, N part) {
    s += std::to_string(part);
}
// fail() with the text assembled from `parts` here, out of line, so that the checks on the
// decoder's hot paths stay a compare and a branch.
template <class... Parts>
[[noreturn, gnu::cold, gnu::noinline]] void fail_with(std::size_t offset, const Parts&... parts) {
    std::string what;
    (append_part(what, parts), ...);
    fail(offset, what);
}

using tm_detail::Name;
using tm_detail::Slot;

class Decoder {
  public:
    Decoder(const unsigned char* data, std::size_t size) : m_data(data), m_size(size) {}

    void run(Message& message) {
        if (m_size < 2 || m_data[0] != kMagic0 || m_data[1] != kMagic1) fail(0, "not a message (bad magic)");
        m_pos = 2;
        const std::size_t versionAt = m_pos;
        const unsigned int version = u8();
        if (version != kWireVersion) {
            fail(versionAt, "unsupported version " + std::to_string(version) + " (this side reads version " +
                                std::to_string(kWireVersion) + ")");
        }
        const Tm_message_type type = message_type();
        std::string name = bytes_as_string();

        Tm_catalog<std::string> catalog;
        read_table(catalog);

        // The values go into an arena that the message keeps, so that dropping them costs no
        // walk; declared before the group, so that it outlives it when decoding fails.
        auto arena = std::make_unique<tm_detail::Node_arena>();
        Tm_struct group;
        {
            tm_detail::Node_arena::Scope scope(*arena);
            m_arena = arena.get();
            read_body(group, 0, true);
        }
        if (m_pos != m_size)
            fail(m_pos, std::to_string(m_size - m_pos) + " trailing bytes after the message");

        // Everything decoded: install it. Only the name copy can throw, so it goes first.
        message.set_request_name(name);
        message.set_msg_type(type);
        message.group_for_decoding(TMG_RECV) = std::move(group);
        message.keep_decoded(std::move(m_names), std::move(arena));
        *message.get_send_member_string(TMG_RECV) = std::move(catalog);
    }

  private:
    std::size_t remaining() const { return m_size - m_pos; }
    // Whether `n` units of `unit` bytes (at most 8) fit in the remaining bytes. Without a
    // division: n is first held to the remaining bytes, which an input in memory keeps far
    // below where the product could overflow.
    bool fits(std::uint64_t n, std::size_t unit) const { return n <= remaining() && n * unit <= remaining(); }

    void need(std::size_t n) const {
        if (remaining() < n) {
            fail_with(m_pos, "unexpected end of input (need ", n, " bytes, ", remaining(), " left)");
        }
    }
    unsigned int u8() {
        need(1);
        return m_data[m_pos++];
    }
    template <int N>
    std::uint64_t fixed() {
        need(N);
        const std::uint64_t v = tm_detail::load_le<N>(m_data + m_pos);
        m_pos += N;
        return v;
    }
    std::uint64_t varint() {
        // Most varints (name indices, counts, short lengths) are one byte.
        if (m_pos < m_size && m_data[m_pos] < 0x80) return m_data[m_pos++];
        return long_varint();
    }
    std::uint64_t long_varint() {
        const std::size_t at = m_pos;
        std::uint64_t v = 0;
        for (int i = 0; i < kMaxVarintBytes; ++i) {
            if (m_pos >= m_size) fail(m_pos, "unexpected end of input inside a varint");
            const unsigned int b = m_data[m_pos++];
            if (i == kMaxVarintBytes - 1 && b > 1) fail(at, "varint exceeds 64 bits");
            v |= static_cast<std::uint64_t>(b & 0x7Fu) << (7 * i);
            if (!(b & 0x80u)) return v;
        }
        fail(at, "varint longer than 10 bytes");
    }
    // A length or count, checked against what the remaining bytes can hold when each unit
    // takes at least `unit` bytes.
    std::size_t count(std::size_t unit, const char* what) {
        const std::size_t at = m_pos;
        const std::uint64_t n = varint();
        if (!fits(n, unit)) {
            fail_with(at, what, " ", n, " exceeds what the remaining ", remaining(), " bytes can hold");
        }
        return static_cast<std::size_t>(n);
    }
    int item_count(std::size_t unit, const char* what) {
        const std::size_t at = m_pos;
        const std::size_t n = count(unit, what);
        if (n > static_cast<std::size_t>(INT_MAX)) fail_with(at, what, " too large");
        return static_cast<int>(n);
    }
    const unsigned char* take(std::size_t n) {
        const unsigned char* p = m_data + m_pos;
        m_pos += n;
        return p;
    }
    std::string bytes_as_string() {
        const std::size_t n = count(1, "length");
        const char* p = reinterpret_cast<const char*>(take(n));
        return std::string(p, n);
    }
    std::vector<unsigned char> bytes_as_vector() {
        const std::size_t n = count(1, "length");
        const unsigned char* p = take(n);
        return std::vector<unsigned char>(p, p + n);
    }
    Tm_message_type message_type() {
        const std::size_t at = m_pos;
        const unsigned int t = u8();
        if (t != TMT_REQUEST && t != TMT_RESPONSE) fail(at, "unknown message type " + std::to_string(t));
        return static_cast<Tm_message_type>(t);
    }
    int kind_tag(bool allowMixed) {
        const std::size_t at = m_pos;
        const unsigned int t = u8();
        if (t <= static_cast<unsigned int>(TMV_LAST) || (allowMixed && t == kMixed))
            return static_cast<int>(t);
        fail_with(at, "unknown kind tag ", t);
    }
    int deeper(int level, std::size_t at) const {
        if (level >= kMaxDepth)
            fail(at, "values nested deeper than " + std::to_string(kMaxDepth) + " levels");
        return level + 1;
    }

    // Each table name is kept once, shared by every member that names it.
    void read_table(Tm_catalog<std::string>& catalog) {
        const std::size_t n = count(1, "name count");
        m_names.clear();
        m_names.reserve(n);
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t at = m_pos;
            m_names.emplace_back(bytes_as_string());
            if (static_cast<std::size_t>(catalog.add(m_names.back())) != i) {
                fail(at, "name '" + m_names.back().text() + "' appears twice in the name table");
            }
        }
    }

    // A member list; `level` is the nesting level of its holder.
    // `ownList`: the list belongs to a message's group, which may later grow or be dropped on
    // its own, so it is taken outside the arena.
    void read_body(Tm_struct& target, int level, bool ownList = false) {
        const int n = item_count(kMinMember, "member count");
        if (ownList) {
            tm_detail::Node_arena::Pause pause;
            target.reserve_members(static_cast<std::size_t>(n));
        } else {
            target.reserve_members(static_cast<std::size_t>(n));
        }
        for (int i = 0; i < n; ++i) {
            const std::size_t at = m_pos;
            const std::uint64_t index = varint();
            if (index >= m_names.size()) {
                fail_with(at, "name index ", index, " outside the name table of ", m_names.size(), " names");
            }
            const std::size_t tagAt = m_pos;
            const int tag = kind_tag(false);
            Name name(m_names[static_cast<std::size_t>(index)], Name::Borrowed{});
            // Scalars, most members, are read here; other values through read_payload.
            if (tmv_is_scalar(tag)) {
                target.append(std::move(name), read_scalar(tag));
            } else {
                target.append(std::move(name), read_payload(tag, tagAt, level));
            }
        }
    }

    Slot read_scalar(int tag) {
        switch (tag) {
            case TMV_INT8:
                return Slot::of_signed(TMV_INT8, static_cast<signed char>(u8()));
            case TMV_UINT8:
                return Slot::of_unsigned(TMV_UINT8, u8());
            case TMV_INT16:
                return Slot::of_signed(TMV_INT16, static_cast<short>(static_cast<std::uint16_t>(fixed<2>())));
            case TMV_UINT16:
                return Slot::of_unsigned(TMV_UINT16, fixed<2>());
            case TMV_INT32:
                return Slot::of_signed(TMV_INT32, static_cast<int>(static_cast<std::uint32_t>(fixed<4>())));
            case TMV_UINT32:
                return Slot::of_unsigned(TMV_UINT32, fixed<4>());
            case TMV_INT64:
                return Slot::of_signed(TMV_INT64, static_cast<long>(fixed<8>()));
            case TMV_UINT64:
                return Slot::of_unsigned(TMV_UINT64, fixed<8>());
            case TMV_DOUBLE: {
                const std::uint64_t bits = fixed<8>();
                double d;
                std::memcpy(&d, &bits, sizeof d);
                return Slot::of_double(d);
            }
            default:
                return Slot::of_bool(read_bool());
        }
    }

    Slot read_payload(int tag, std::size_t tagAt, int level) {
        if (tmv_is_scalar(tag)) return read_scalar(tag);
        switch (tag) {
            // Each value is read before its node is made: a node of the arena must not be
            // given back on its own, as a throwing initializer would.
            case TMV_STRING: {
                const std::size_t n = count(1, "length");
                const char* p = reinterpret_cast<const char*>(take(n));
                // A text that fits the string's own buffer is copied once, straight into the
                // node (nothing can throw after it is taken); a longer one has storage
                // outside the arena, taken before the node.
                static const std::size_t kShortText = std::string().capacity();
                if (n <= kShortText) return Slot::in_arena(TMV_STRING, new Tm_string(p, n));
                std::string text(p, n);
                return arena_value(TMV_STRING, new Tm_string(std::move(text)), true);
            }
            case TMV_BINARY: {
                std::vector<unsigned char> bytes = bytes_as_vector();
                auto* v = new Tm_binary(std::move(bytes));
                return arena_value(TMV_BINARY, v, v->get().capacity() != 0);
            }
            case TMV_DATE: {
                const long when = static_cast<long>(fixed<8>());
                return arena_value(TMV_DATE, new Tm_date(when), false);
            }
            case TMV_FILE: {
                std::string name = bytes_as_string();
                std::vector<unsigned char> content = bytes_as_vector();
                return arena_value(TMV_FILE, new Tm_file(std::move(name), std::move(content)), true);
            }
            case TMV_STRUCT: {
                const int deeperLevel = deeper(level, tagAt);
                auto* v = new Tm_struct;
                Slot slot = arena_value(TMV_STRUCT, v, false);
                read_body(*v, deeperLevel);
                return slot;
            }
            case TMV_ARRAY: {
                const int deeperLevel = deeper(level, tagAt);
                auto* v = new Tm_array;
                Slot slot = arena_value(TMV_ARRAY, v, false);
                read_array(*v, deeperLevel);
                return slot;
            }
            case TMV_MESSAGE: {
                const int deeperLevel = deeper(level, tagAt);
                auto* v = new Tm_message;
                // Registered before it is filled: its member lists are its own.
                Slot slot = arena_value(TMV_MESSAGE, v, true);
                read_message(v->get(), deeperLevel);
                return slot;
            }
            default:
                fail(tagAt, "unknown kind tag " + std::to_string(tag));
        }
    }

    // A cell for `v`, a node of the arena; `destroy`: `v` owns storage outside the arena, so
    // its destructor runs when the arena goes.
    Slot arena_value(TMV kind, Tm_value* v, bool destroy) {
        if (destroy) {
            try {
                m_arena->keep_destructor(v);
            } catch (...) {
                v->~Tm_value();
                throw;
            }
        }
        return Slot::in_arena(kind, v);
    }

    bool read_bool() {
        const std::size_t at = m_pos;
        const unsigned int b = u8();
        if (b > 1) fail_with(at, "bool byte ", b, " is neither 0 nor 1");
        return b != 0;
    }

    void read_message(Message& m, int level) {
        const Tm_message_type type = message_type();
        std::string name = bytes_as_string();
        read_body(m.group_for_decoding(TMG_SEND), level, true);
        read_body(m.group_for_decoding(TMG_RECV), level, true);
        m.set_msg_type(type);
        m.set_request_name(name);
    }

    void read_array(Tm_array& a, int level) {
        const std::size_t countAt = m_pos;
        const std::uint64_t raw = varint();
        const std::size_t tagAt = m_pos;
        const int tag = kind_tag(true);
        const std::size_t unit = tag == kMixed ? kMinMixedItem : kMinPayload[tag];
        if (!fits(raw, unit) || raw > static_cast<std::uint64_t>(INT_MAX)) {
            fail(countAt, "array count " + std::to_string(raw) + " exceeds what the remaining " +
                              std::to_string(remaining()) + " bytes can hold");
        }
        const int n = static_cast<int>(raw);
        if (tmv_is_scalar(tag)) {
            // Bare payloads of one scalar kind: kept packed, as the wire carries them.
            const std::size_t bytes = static_cast<std::size_t>(n) * kMinPayload[tag];
            const unsigned char* p = m_data + m_pos;
            if (tag == TMV_BOOL) {
                for (std::size_t i = 0; i < bytes; ++i) {
                    if (p[i] > 1) fail(m_pos + i, "bool byte " + std::to_string(p[i]) + " is neither 0 nor 1");
                }
            }
            a.assign_packed(static_cast<TMV>(tag), take(bytes), static_cast<std::size_t>(n));
            return;
        }
        a.Tm_array::reserve(n);
        for (int i = 0; i < n; ++i) {
            const std::size_t at = m_pos;
            const int itemTag = tag == kMixed ? kind_tag(false) : tag;
            a.append_item(read_payload(itemTag, tag == kMixed ? at : tagAt, level));
        }
    }

    const unsigned char* m_data;
    std::size_t m_size;
    std::size_t m_pos = 0;
    std::vector<Name> m_names;
    tm_detail::Node_arena* m_arena = nullptr;
};

}  // namespace

void encode(const Message& message, std::vector<unsigned char>& out) {
    const std::size_t start = out.size();
    try {
        const Tm_catalog<std::string>& catalog = *message.get_send_member_string(TMG_SEND);
        Writer w(out);
        w.u8(kMagic0);
        w.u8(kMagic1);
        w.u8(kWireVersion);
        w.u8(static_cast<unsigned int>(message.get_msg_type()));
        w.bytes(message.get_request_name().data(), message.get_request_name().size());
        const std::size_t tableAt = w.length();
        write_table(w, catalog, {});
        const std::size_t tableEnd = w.length();

        Encoder e(w, catalog);
        e.write_struct(message.get_group(TMG_SEND));
        e.check_done();
        w.finish();

        if (!e.extra_names().empty()) {
            // Names met during the walk that the catalog lacks: rewrite the table with them
            // appended (their indices already follow the catalog's).
            std::vector<unsigned char> body(out.begin() + static_cast<std::ptrdiff_t>(tableEnd), out.end());
            out.resize(tableAt);
            Writer t(out);
            write_table(t, catalog, e.extra_names());
            t.finish();
            out.insert(out.end(), body.begin(), body.end());
        }
    } catch (...) {
        out.resize(start);
        throw;
    }
}

std::vector<unsigned char> encode(const Message& message) {
    std::vector<unsigned char> out;
    encode(message, out);
    return out;
}

void decode(const unsigned char* data, std::size_t size, Message& message) {
    if (!data && size) throw Tm_exception("decode error at byte 0: null input");
    Decoder(data, size).run(message);
}

void decode(const std::vector<unsigned char>& bytes, Message& message) {
    decode(bytes.data(), bytes.size(), message);
}

}  // namespace tmsg
