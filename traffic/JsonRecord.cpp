#include "traffic/JsonRecord.h"

#include <cctype>

namespace vrm::traffic {

namespace {

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::vector<uint8_t> parse_hex_text(const std::string& text, const std::string& path) {
    std::size_t i = 0;
    if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) i = 2;
    std::vector<uint8_t> out;
    out.reserve(text.size() / 2);
    int high = -1;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c == ' ' || c == ':') {
            if (high >= 0) throw InputError(path, "expected hex bytes (a separator splits a byte)");
            continue;
        }
        const int d = hex_digit(c);
        if (d < 0)
            throw InputError(path,
                             "expected hex bytes (bad character at position " + std::to_string(i) + ")");
        if (high < 0) {
            high = d;
        } else {
            out.push_back(static_cast<uint8_t>(high * 16 + d));
            high = -1;
        }
    }
    if (high >= 0) throw InputError(path, "expected hex bytes (odd number of digits)");
    return out;
}

std::vector<uint8_t> read_hex(const Json& j, const std::string& path) {
    if (!j.is_string()) throw InputError(path, "expected hex bytes, got " + json_kind(j));
    return parse_hex_text(j.get_ref<const std::string&>(), path);
}

std::string to_hex(const uint8_t* bytes, std::size_t size) {
    static const char digits[] = "0123456789abcdef";
    std::string s;
    s.resize(size * 2);
    for (std::size_t i = 0; i < size; ++i) {
        s[2 * i] = digits[bytes[i] >> 4];
        s[2 * i + 1] = digits[bytes[i] & 15];
    }
    return s;
}

std::string json_kind(const Json& j) {
    switch (j.type()) {
        case Json::value_t::null:
            return "null";
        case Json::value_t::object:
            return "an object";
        case Json::value_t::array:
            return "an array";
        case Json::value_t::string:
            return "a string";
        case Json::value_t::boolean:
            return "a boolean";
        case Json::value_t::number_integer:
        case Json::value_t::number_unsigned:
            return "an integer";
        case Json::value_t::number_float:
            return "a number";
        case Json::value_t::binary:
            return "binary data";
        case Json::value_t::discarded:
            break;
    }
    return "nothing";
}

std::string enum_names(const tm_enum_map* map) {
    std::string s;
    for (const tm_enum_map* row = map; row->name != nullptr; ++row) {
        s += (s.empty() ? "" : ", ") + std::string(row->name);
    }
    return s;
}

int read_enum_name(const Json& j, const std::string& path, const tm_enum_map* map) {
    if (j.is_string()) {
        const auto& name = j.get_ref<const std::string&>();
        for (const tm_enum_map* row = map; row->name != nullptr; ++row) {
            if (name == row->name) return row->value;
        }
    }
    throw InputError(path, "expected one of " + enum_names(map) +
                               (j.is_string() ? std::string() : ", got " + json_kind(j)));
}

}  // namespace vrm::traffic
