#include "platform/Tm_json.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace tmsg {
namespace {

const char kHex[] = "0123456789abcdef";

// Length of the well-formed UTF-8 sequence starting at s[i], or 0 when it is not one.
std::size_t utf8_sequence(const std::string& s, std::size_t i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char c = byte(i);
    std::size_t len;
    unsigned char lo = 0x80, hi = 0xBF;  // bounds of the second byte
    if (c >= 0xC2 && c <= 0xDF) {
        len = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
        len = 3;
        if (c == 0xE0) lo = 0xA0;
        if (c == 0xED) hi = 0x9F;  // no surrogates
    } else if (c >= 0xF0 && c <= 0xF4) {
        len = 4;
        if (c == 0xF0) lo = 0x90;
        if (c == 0xF4) hi = 0x8F;
    } else {
        return 0;
    }
    if (i + len > s.size()) return 0;
    if (byte(i + 1) < lo || byte(i + 1) > hi) return 0;
    for (std::size_t k = 2; k < len; ++k) {
        if (byte(i + k) < 0x80 || byte(i + k) > 0xBF) return 0;
    }
    return len;
}

// A JSON string literal. Well-formed UTF-8 passes through; control characters and bytes
// that are not part of well-formed UTF-8 are written as \u00XX.
void append_quoted(std::string& out, const std::string& s) {
    out += '"';
    for (std::size_t i = 0; i < s.size();) {
        const unsigned char c = static_cast<unsigned char>(s[i]);
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\b':
                out += "\\b";
                break;
            case '\f':
                out += "\\f";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (c >= 0x20 && c < 0x7F) {
                    out += static_cast<char>(c);
                } else if (c >= 0x80) {
                    const std::size_t len = utf8_sequence(s, i);
                    if (len) {
                        out.append(s, i, len);
                        i += len;
                        continue;
                    }
                    out += "\\u00";
                    out += kHex[c >> 4];
                    out += kHex[c & 0xF];
                } else {
                    out += "\\u00";
                    out += kHex[c >> 4];
                    out += kHex[c & 0xF];
                }
        }
        ++i;
    }
    out += '"';
}

void append_hex(std::string& out, const unsigned char* data, std::size_t size) {
    out += '"';
    for (std::size_t i = 0; i < size; ++i) {
        out += kHex[data[i] >> 4];
        out += kHex[data[i] & 0xF];
    }
    out += '"';
}

// The shortest of 15, 16 or 17 significant digits that reads back as the same double.
void append_double(std::string& out, double v) {
    if (std::isnan(v)) {
        out += "\"NaN\"";
        return;
    }
    if (std::isinf(v)) {
        out += v > 0 ? "\"Infinity\"" : "\"-Infinity\"";
        return;
    }
    char buf[32];
    for (int precision = 15; precision <= 17; ++precision) {
        std::snprintf(buf, sizeof buf, "%.*g", precision, v);
        if (precision == 17 || std::strtod(buf, nullptr) == v) break;
    }
    out += buf;
}

int uniform_kind(const Tm_array& a) {
    const int n = a.get_member_count();
    if (n <= 0) return -1;
    const int kind = a.get_member_value_type(0);
    for (int i = 1; i < n; ++i) {
        if (a.get_member_value_type(i) != kind) return -1;
    }
    return kind;
}

class JsonWriter final : public Tm_visitor {
  public:
    JsonWriter(std::string& out, int indent) : m_out(out), m_indent(indent < 0 ? 0 : indent) {
        m_stack.push_back(Frame{Frame::Raw, true});
    }

    void visit_int8(int v) override { number(TMV_INT8, std::to_string(v)); }
    void visit_uint8(unsigned int v) override { number(TMV_UINT8, std::to_string(v)); }
    void visit_int16(int v) override { number(TMV_INT16, std::to_string(v)); }
    void visit_uint16(unsigned int v) override { number(TMV_UINT16, std::to_string(v)); }
    void visit_int32(int v) override { number(TMV_INT32, std::to_string(v)); }
    void visit_uint32(unsigned int v) override { number(TMV_UINT32, std::to_string(v)); }
    void visit_int64(long v) override { number(TMV_INT64, std::to_string(v)); }
    void visit_uint64(unsigned long v) override { number(TMV_UINT64, std::to_string(v)); }
    void visit_double(double v) override {
        open_item(tmv_name(TMV_DOUBLE));
        append_double(m_out, v);
        close_item();
    }
    void visit_bool(bool v) override { number(TMV_BOOL, v ? "true" : "false"); }
    void visit_string(const std::string& v) override {
        open_item(tmv_name(TMV_STRING));
        append_quoted(m_out, v);
        close_item();
    }
    void visit_binary(const unsigned char* data, std::size_t size) override {
        open_item(tmv_name(TMV_BINARY));
        append_hex(m_out, data, size);
        close_item();
    }
    void visit_date(long v) override { number(TMV_DATE, std::to_string(v)); }
    void visit_file(const Tm_file& f) override {
        open_item(tmv_name(TMV_FILE));
        open('{');
        bool first = true;
        separator(first);
        m_out += "\"name\": ";
        append_quoted(m_out, f.name());
        separator(first);
        m_out += "\"content\": ";
        append_hex(m_out, f.content().data(), f.content().size());
        close('}', false);
        close_item();
    }
    void visit_message(const Message& m) override {
        open_item(tmv_name(TMV_MESSAGE));
        message(m);
        close_item();
    }
    void begin_struct(const Tm_struct&) override {
        open_item(tmv_name(TMV_STRUCT));
        open('{');
        m_stack.push_back(Frame{Frame::Struct, true});
    }
    void visit_member_name(const std::string& name) override { m_name = &name; }
    void end_struct(const Tm_struct&) override { end_container('}'); }
    void begin_array(const Tm_array& a) override {
        const int kind = uniform_kind(a);
        const std::string label = kind < 0 ? "array" : std::string("array<") + tmv_name(kind) + ">";
        open_item(label);
        open('[');
        m_stack.push_back(Frame{kind < 0 ? Frame::MixedArray : Frame::UniformArray, true});
    }
    void end_array(const Tm_array&) override { end_container(']'); }

    void message(const Message& m) {
        open('{');
        bool first = true;
        separator(first);
        m_out += "\"kind\": ";
        m_out += m.get_msg_type() == TMT_RESPONSE ? "\"response\"" : "\"request\"";
        separator(first);
        m_out += "\"name\": ";
        append_quoted(m_out, m.get_request_name());
        separator(first);
        m_out += "\"send\": ";
        group(m.get_group(TMG_SEND));
        separator(first);
        m_out += "\"receive\": ";
        group(m.get_group(TMG_RECV));
        close('}', false);
    }

  private:
    struct Frame {
        enum Kind { Raw, Struct, UniformArray, MixedArray } kind;
        bool first;
    };

    void group(const Tm_struct& s) {
        m_stack.push_back(Frame{Frame::Raw, true});
        s.accept(*this);
        m_stack.pop_back();
    }
    void newline() {
        m_out += '\n';
        m_out.append(static_cast<std::size_t>(m_depth * m_indent), ' ');
    }
    // Before the next entry of an open object or array.
    void separator(bool& first) {
        if (!first) m_out += ',';
        if (m_indent > 0) {
            newline();
        } else if (!first) {
            m_out += ' ';
        }
        first = false;
    }
    void open(char bracket) {
        m_out += bracket;
        ++m_depth;
    }
    void close(char bracket, bool empty) {
        --m_depth;
        if (m_indent > 0 && !empty) newline();
        m_out += bracket;
    }
    // Starts an item in the innermost container: a "<name>:<kind>" key in a struct, the
    // {"<kind>": wrapper in a mixed array, nothing elsewhere.
    void open_item(const std::string& kind) {
        Frame& f = m_stack.back();
        switch (f.kind) {
            case Frame::Raw:
                break;
            case Frame::Struct:
                separator(f.first);
                append_quoted(m_out, (m_name ? *m_name : std::string()) + ":" + kind);
                m_out += ": ";
                break;
            case Frame::UniformArray:
                separator(f.first);
                break;
            case Frame::MixedArray:
                separator(f.first);
                m_out += '{';
                append_quoted(m_out, kind);
                m_out += ": ";
                break;
        }
    }
    void close_item() {
        if (m_stack.back().kind == Frame::MixedArray) m_out += '}';
    }
    void number(TMV kind, const std::string& text) {
        open_item(tmv_name(kind));
        m_out += text;
        close_item();
    }
    void end_container(char bracket) {
        const bool empty = m_stack.back().first;
        m_stack.pop_back();
        close(bracket, empty);
        close_item();
    }

    std::string& m_out;
    int m_indent;
    int m_depth = 0;
    const std::string* m_name = nullptr;
    std::vector<Frame> m_stack;
};

}  // namespace

std::string to_json(const Tm_value& value, int indent) {
    std::string out;
    JsonWriter w(out, indent);
    value.accept(w);
    return out;
}

std::string to_json(const Message& message, int indent) {
    std::string out;
    JsonWriter w(out, indent);
    w.message(message);
    return out;
}

}  // namespace tmsg
